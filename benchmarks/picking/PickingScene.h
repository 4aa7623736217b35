#pragma once

#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Group>
#include <osg/ref_ptr>
#include <osgViewer/Viewer>

#include <QList>
#include <QVariant>

namespace kelvbench {

inline constexpr int kWidth = 1280;
inline constexpr int kHeight = 1024;
inline constexpr int kStripWidth = 200; // on the left, free of features and labels

enum class Mesh
{
    WithKdTree,
    WithoutKdTree // each ray tests every triangle
};

/// A viewer over a scene as hosts build it: a mesh of a million triangles that fills the lower half of the window, and
/// labelled features in rows over all of it but a strip. One unit is a pixel, the origin the middle of the window.
struct PickingScene
{
    osg::ref_ptr<osgViewer::Viewer> viewer;
    osg::ref_ptr<osg::Group> root;
    QList<QVariant> listed; // every feature
};

/// The same scene for the same arguments, built once in a process.
/// @param kind featureDot, featureLine or featurePlane
const PickingScene& pickingScene(KelvOsgTools::featureType kind, int count, Mesh mesh);

} // namespace kelvbench
