#pragma once

#include "support/Picture.h"

#include <osg/Image>
#include <osg/Node>
#include <osg/ref_ptr>
#include <osgViewer/Viewer>

#include <cstddef>
#include <string>
#include <vector>

namespace kelvtest {

/// Draws scenes in a window whose viewer runs its own threads, and hands out the picture of a frame.
///
/// Same background and camera as PictureRig. The thread that owns the window owns the scene: it
/// changes it between two frames, while the former may still be drawn. More windows, each with a
/// context of its own, show the same picture.
class PictureWindow
{
public:
    PictureWindow(int width, int height, osgViewer::ViewerBase::ThreadingModel threading, int windows = 1);
    ~PictureWindow();

    osgViewer::Viewer& viewer() { return *m_viewer; }
    osg::Camera& camera() { return *m_viewer->getCamera(); }

    void setScene(osg::Node* scene);

    /// Sends one frame on its way, as hosts do, without waiting until it is drawn.
    void frame();

    /// Waits until the last frame is drawn and gives its picture, RGB.
    osg::ref_ptr<osg::Image> pictureOfLastFrame(std::size_t window = 0);

    /// Both of these.
    osg::ref_ptr<osg::Image> render();

private:
    class LastPicture;

    osg::ref_ptr<osgViewer::Viewer> m_viewer;
    std::vector<osg::ref_ptr<LastPicture>> m_lastPictures; // of each window
};

/// A name for each threading model, for parameters of tests.
std::string nameOf(osgViewer::ViewerBase::ThreadingModel threading);

} // namespace kelvtest
