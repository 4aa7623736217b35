#pragma once

#include "support/Picture.h"

#include <osg/Image>
#include <osg/Node>
#include <osg/ref_ptr>
#include <osgViewer/Viewer>

namespace kelvtest {

/// Draws scenes in a real GL context, without a window, and hands out the picture.
///
/// Background white, single-threaded, no multisampling unless asked for: pictures are the same in
/// every run. The camera starts as that of pixelViewer(): parallel, a unit is a pixel, the origin
/// is the middle, z from -100 to 99.
class PictureRig
{
public:
    explicit PictureRig(int width = 200, int height = 200, unsigned int samples = 0);
    ~PictureRig();

    osgViewer::Viewer& viewer() { return *m_viewer; }
    osg::Camera& camera() { return *m_viewer->getCamera(); }

    void setScene(osg::Node* scene);

    /// Sees the scene in parallel again, with that many pixels to a unit.
    void lookInParallel(double pixelsPerUnit);

    /// Sees the scene in perspective, 30 degrees from bottom to top.
    void lookInPerspective(const osg::Vec3d& eye, const osg::Vec3d& centre, const osg::Vec3d& up);

    /// From world coordinates to the picture's pixels, origin in the lower left corner.
    osg::Matrixd toWindow();

    /// Draws frames (the first compiles, and auto-scaled nodes need it to know their scale) and gives
    /// the last one's picture, RGB.
    osg::ref_ptr<osg::Image> render(int frames = 2);

private:
    int m_width;
    int m_height;
    osg::ref_ptr<osgViewer::Viewer> m_viewer;
    osg::ref_ptr<osg::Image> m_picture;
};

/// Creates a context, or throws after trying for some seconds: a virtual display starts anew when its
/// last client has left, as every test program does at its end, and takes no client meanwhile.
osg::ref_ptr<osg::GraphicsContext> createPatiently(osg::GraphicsContext::Traits* traits);

/// Gives a viewer of a rig its background, light and camera: see PictureRig.
void prepareViewer(osgViewer::Viewer& viewer, int width, int height);

} // namespace kelvtest
