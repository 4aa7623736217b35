#pragma once

#include <osg/AutoTransform>
#include <osg/NodeVisitor>

namespace KelvOsgTools::detail {

/// The factor by which the scale that a cull traversal just gave an auto-scaled transform is to be
/// multiplied for a unit to be exactly a pixel; 1 for any other visitor, and without auto-scaling.
///
/// OpenSceneGraph's own estimate is some percent too large in a parallel projection, and too small
/// in perspective, by 20 % where the view is wide.
double pixelCorrection(const osg::AutoTransform& transform, const osg::NodeVisitor* visitor);

} // namespace KelvOsgTools::detail
