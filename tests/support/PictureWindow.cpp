#include "support/PictureWindow.h"

#include "support/PictureRig.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>

namespace kelvtest {

/// Reads every frame in the thread that drew it.
class PictureWindow::LastPicture : public osg::Camera::DrawCallback
{
public:
    LastPicture(int width, int height) : m_width(width), m_height(height) {}

    void operator()(osg::RenderInfo& info) const override
    {
        const osg::ref_ptr<osg::Image> picture = new osg::Image;
        picture->readPixels(0, 0, m_width, m_height, GL_RGB, GL_UNSIGNED_BYTE);
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_picture = picture;
        m_frame = info.getState()->getFrameStamp()->getFrameNumber();
        m_drawn.notify_all();
    }

    osg::ref_ptr<osg::Image> waitFor(unsigned int frame) const
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (!m_drawn.wait_for(lock, std::chrono::seconds(30), [&] { return m_picture && m_frame >= frame; }))
            throw std::runtime_error("the frame was never drawn");
        return m_picture;
    }

private:
    int m_width;
    int m_height;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_drawn;
    mutable osg::ref_ptr<osg::Image> m_picture;
    mutable unsigned int m_frame = 0;
};

namespace {

osg::ref_ptr<osg::GraphicsContext> window(int width, int height)
{
    const osg::ref_ptr<osg::GraphicsContext::Traits> traits = new osg::GraphicsContext::Traits;
    traits->width = width;
    traits->height = height;
    traits->depth = 24;
    traits->windowDecoration = false;
    traits->doubleBuffer = true;
    traits->vsync = false;
    traits->readDISPLAY();
    return createPatiently(traits);
}

} // namespace

PictureWindow::PictureWindow(int width, int height, osgViewer::ViewerBase::ThreadingModel threading, int windows)
    : m_viewer(new osgViewer::Viewer)
{
    prepareViewer(*m_viewer, width, height);
    for (int i = 0; i < windows; ++i) {
        const osg::ref_ptr<osg::Camera> shown = i == 0 ? &camera() : new osg::Camera;
        m_lastPictures.push_back(new LastPicture(width, height));
        shown->setGraphicsContext(window(width, height));
        shown->setFinalDrawCallback(m_lastPictures.back());
        if (i == 0) continue;
        shown->setViewport(0, 0, width, height);
        shown->setClearColor(camera().getClearColor());
        m_viewer->addSlave(shown);
    }
    m_viewer->setThreadingModel(threading);
    m_viewer->realize();
}

PictureWindow::~PictureWindow() = default;

void PictureWindow::setScene(osg::Node* scene)
{
    m_viewer->setSceneData(scene);
}

void PictureWindow::frame()
{
    m_viewer->frame();
}

osg::ref_ptr<osg::Image> PictureWindow::render()
{
    frame();
    return pictureOfLastFrame();
}

osg::ref_ptr<osg::Image> PictureWindow::pictureOfLastFrame(std::size_t window)
{
    return m_lastPictures[window]->waitFor(m_viewer->getViewerFrameStamp()->getFrameNumber());
}

std::string nameOf(osgViewer::ViewerBase::ThreadingModel threading)
{
    switch (threading) {
    case osgViewer::ViewerBase::SingleThreaded:
        return "SingleThreaded";
    case osgViewer::ViewerBase::CullDrawThreadPerContext:
        return "CullDrawThreadPerContext";
    case osgViewer::ViewerBase::DrawThreadPerContext:
        return "DrawThreadPerContext";
    case osgViewer::ViewerBase::CullThreadPerCameraDrawThreadPerContext:
        return "CullThreadPerCameraDrawThreadPerContext";
    case osgViewer::ViewerBase::AutomaticSelection:
        return "AutomaticSelection";
    }
    return "Unknown";
}

} // namespace kelvtest
