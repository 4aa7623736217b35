#pragma once

#include <osg/Node>
#include <osg/ref_ptr>
#include <osgViewer/Viewer>

#include <QList>
#include <QVariant>

#include <optional>

namespace KelvOsgTools::detail {

/// A feature found by its label.
struct LabelledFeature
{
    osg::ref_ptr<osg::Node> node;
    int kind = 0; ///< its "feature_type"; 0 without one
};

/// Finds the feature whose label lies under a window position: of the listed ones the one whose
/// label has the highest renderIndex, and the first of these in the list. A renderIndex below 1 is
/// never found.
///
/// The anchors of labels are taken through the matrix of the mesh, the first child of "meshData":
/// features hang in its coordinates. Of several nodes of a listed name only the first is looked at,
/// and of its labels the first. Takes one walk through the scene, however many are listed.
/// @param viewer not owned; null gives nothing
std::optional<LabelledFeature> pickFeatureTable(osgViewer::Viewer* viewer, const QList<QVariant>& features, float x,
                                                float y);

} // namespace KelvOsgTools::detail
