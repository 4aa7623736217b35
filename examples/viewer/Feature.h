#pragma once

#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Vec3f>

#include <QString>

#include <vector>

namespace viewer {

/// A measurement as the user knows it, independent of the nodes that show it.
struct Feature
{
    static constexpr int kNoNumber = -1;

    KelvOsgTools::featureType kind = KelvOsgTools::featureDot; ///< featureDot, featureLine or featurePlane
    QString name;                                              ///< name of its node, unique in the document
    QString word;                                              ///< text of the label before translation
    int number = kNoNumber;                                    ///< behind the word
    std::vector<osg::Vec3f> points;                            ///< centre; start and end; four corners
    bool isLineArrow = true;                                   ///< of a line: thin arrow or solid one
    float radius = 0.0f;                                       ///< of a solid arrow's shaft, scene units
    int renderIndex = 1; ///< labels with higher ones lie over those with lower ones
};

/// Whether two features measure the same under the same label, whatever their names.
bool isSameMeasurement(const Feature& a, const Feature& b);

/// What a feature of that kind is called, and the word of its label.
QString kindName(KelvOsgTools::featureType kind);
QString defaultWord(KelvOsgTools::featureType kind);

/// The label as it is shown, in the present language.
QString labelText(const Feature& feature);

/// Points as "x, y, z", several of them separated by "; ".
QString coordinatesText(const Feature& feature);
QString coordinatesText(const osg::Vec3f& point);

/// A line's length, a plane's normal, nothing for a dot.
QString measureText(const Feature& feature);

/// How many clicks define a feature of that kind.
std::size_t clicksFor(KelvOsgTools::featureType kind);

/// The points of a feature from its clicks: a plane gets the fourth corner of the parallelogram.
std::vector<osg::Vec3f> pointsFromClicks(KelvOsgTools::featureType kind, const std::vector<osg::Vec3f>& clicks);

/// The mean of the points, where the label is.
osg::Vec3f middleOf(const Feature& feature);

/// Unit normal of the plane through the first three points; zero if they lie on one line.
osg::Vec3f normalOf(const std::vector<osg::Vec3f>& points);

/// How far the second of three points lies from the line through the others; 0 if two coincide.
float heightOf(const std::vector<osg::Vec3f>& points);

} // namespace viewer
