#pragma once

#include <osg/RenderInfo>

namespace KelvOsgTools::detail {

/// Draws an opaque sphere around the origin of the current model-view matrix pixel by pixel, in the
/// current colour: a point for each pixel whose middle it covers, with the normal that it has there.
/// A sphere of a few pixels takes so many points and looks as if it had triangles without end.
/// @param radius in units of the current model-view matrix
/// @return false, with nothing drawn, if the sphere is too large on screen for that, or if points
///         would not look like it: with several samples for each pixel, say, or under a shader program
bool drawSpherePixels(osg::RenderInfo& renderInfo, double radius);

} // namespace KelvOsgTools::detail
