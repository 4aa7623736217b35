#pragma once

#include <osg/AutoTransform>
#include <osg/NodeVisitor>
#include <osg/Quat>
#include <osg/Vec3d>

namespace KelvOsgTools::detail {

/// Gives an auto-scaled transform the scale at which a unit is exactly a pixel in the view of a cull
/// traversal, within the limits that its host has set, and the rotation that its mode asks for.
///
/// OpenSceneGraph's own estimate is some percent too large in a parallel projection, and too small
/// in perspective, by 20 % where the view is wide.
/// @return false, with nothing changed, for any other visitor, without auto-scaling, and in the
///         plane of the eye, where there is no size on screen to keep
bool scaleToPixels(const osg::AutoTransform& transform, osg::NodeVisitor* visitor, osg::Vec3d& scale,
                   osg::Quat& rotation);

} // namespace KelvOsgTools::detail
