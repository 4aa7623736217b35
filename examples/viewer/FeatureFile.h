#pragma once

#include "Feature.h"

#include <osg/Group>
#include <osg/ref_ptr>

#include <QString>

#include <vector>

namespace viewer {

/// What a feature file holds. Features have no names yet, files carry none.
struct FeatureFileContent
{
    std::vector<Feature> features; ///< dots, then lines, then planes
    int dotCount = 0;              ///< last number given out
    int lineCount = 0;
    int planeCount = 0;
};

/// Reads a feature file as a whole or, with a reason in error, not at all.
bool readFeatureFile(const QString& path, FeatureFileContent& content, QString& error);

/// Saves the features of a scene, which must be those of content, and reads them back to be sure.
/// The former file stays whole if that fails.
bool writeFeatureFile(const QString& path, const osg::ref_ptr<osg::Group>& scene, const FeatureFileContent& content,
                      QString& error);

/// Writes one row per feature, points and measures in columns of their own.
bool writeCsv(const QString& path, const std::vector<Feature>& features, QString& error);

} // namespace viewer
