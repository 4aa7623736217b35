#pragma once

#include <osg/Camera>
#include <osg/Group>
#include <osg/Matrixd>
#include <osg/ref_ptr>
#include <osgViewer/Viewer>

namespace KelvOsgTools::detail {

/// The scene data of a viewer as a group; null if anything on the way is missing.
osg::ref_ptr<osg::Group> sceneGroupOf(osgViewer::Viewer* viewer);

/// Whether a window position is a number in both coordinates.
bool isFinitePosition(float x, float y);

/// Whether the camera has a viewport with an area. Without one no window position means anything.
bool hasWindow(const osg::Camera& camera);

/// From the world to the window; to normalised device coordinates without a viewport.
osg::Matrixd worldToWindow(const osg::Camera& camera);

} // namespace KelvOsgTools::detail
