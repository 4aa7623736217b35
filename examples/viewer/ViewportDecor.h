#pragma once

#include <osg/Camera>
#include <osg/Quat>
#include <osg/ref_ptr>
#include <osgViewer/Viewer>

namespace viewer {

/// What is drawn around the scene, out of the reach of picks: the background and the axis triad.
class ViewportDecor
{
public:
    /// Adds cameras to the viewer, which must have a graphics context.
    explicit ViewportDecor(osgViewer::Viewer& viewer);

    /// @param width,height  of the window, device pixels
    /// @param pixelRatio    device pixels per pixel of the platform
    void resize(int width, int height, double pixelRatio);

    /// Turns the triad as the scene is turned.
    void follow(const osg::Quat& eyeToWorld);

private:
    osg::ref_ptr<osg::Camera> m_background;
    osg::ref_ptr<osg::Camera> m_triad;
};

} // namespace viewer
