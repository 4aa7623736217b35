#pragma once

#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Vec2d>
#include <osg/Vec3f>
#include <osgViewer/Viewer>

#include <QList>
#include <QString>
#include <QVariant>

#include <optional>

namespace viewer {
class FeatureDocument;

/// Answers what lies under a position of the window: device pixels, origin bottom left.
class Picker
{
public:
    Picker(osgViewer::Viewer& viewer, FeatureDocument& document) : m_viewer(viewer), m_document(document) {}

    /// Name of the feature that is seen there, itself or its label; empty if there is none.
    QString featureAt(const osg::Vec2d& position);

    /// The point of the mesh there, in the coordinates of the features.
    std::optional<osg::Vec3f> meshPointAt(const osg::Vec2d& position);

    /// The same, but a dot there gives its centre.
    std::optional<osg::Vec3f> meshOrDotPointAt(const osg::Vec2d& position);

private:
    struct Hit
    {
        QString name;
        osg::Vec3f point; ///< in the coordinates of the drawable
    };

    Hit pick(const osg::Vec2d& position, KelvOsgTools::featureType wanted, const QList<QVariant>& labelled);
    QString lineOverMesh(const osg::Vec2d& position);
    QString planeOnMesh(const osg::Vec2d& position);

    osgViewer::Viewer& m_viewer;
    FeatureDocument& m_document;
};

} // namespace viewer
