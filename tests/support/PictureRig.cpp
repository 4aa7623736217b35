#include "support/PictureRig.h"

#include <chrono>
#include <stdexcept>
#include <thread>

namespace kelvtest {
namespace {

struct ReadPicture : osg::Camera::DrawCallback
{
    ReadPicture(osg::Image* target, int width, int height) : m_target(target), m_width(width), m_height(height) {}

    void operator()(osg::RenderInfo&) const override
    {
        m_target->readPixels(0, 0, m_width, m_height, GL_RGB, GL_UNSIGNED_BYTE);
    }

    osg::ref_ptr<osg::Image> m_target;
    int m_width;
    int m_height;
};

osg::ref_ptr<osg::GraphicsContext> pixelBuffer(int width, int height, unsigned int samples)
{
    const osg::ref_ptr<osg::GraphicsContext::Traits> traits = new osg::GraphicsContext::Traits;
    traits->width = width;
    traits->height = height;
    traits->red = traits->green = traits->blue = 8;
    traits->alpha = 0; // 8 would not match the depth of a virtual display: Mesa prints an error each frame
    traits->depth = 24;
    traits->samples = samples;
    traits->sampleBuffers = samples > 0 ? 1 : 0;
    traits->pbuffer = true;
    traits->doubleBuffer = false;
    traits->readDISPLAY();
    return createPatiently(traits);
}

/// Keeps the display from starting anew between two rigs of a program.
void stayAClient()
{
    static const osg::ref_ptr<osg::GraphicsContext> client = pixelBuffer(1, 1, 0);
}

/// A view on the x-y plane with that many pixels to a unit.
void lookAlongMinusZ(osg::Camera& camera, int width, int height, double pixelsPerUnit)
{
    const double halfWidth = 0.5 * width / pixelsPerUnit;
    const double halfHeight = 0.5 * height / pixelsPerUnit;
    camera.setViewMatrixAsLookAt(osg::Vec3d(0, 0, 100), osg::Vec3d(), osg::Y_AXIS);
    camera.setProjectionMatrixAsOrtho(-halfWidth, halfWidth, -halfHeight, halfHeight, 1.0, 200.0);
}

} // namespace

osg::ref_ptr<osg::GraphicsContext> createPatiently(osg::GraphicsContext::Traits* traits)
{
    constexpr int kAttempts = 50;
    for (int i = 0; i < kAttempts; ++i) {
        if (const osg::ref_ptr<osg::GraphicsContext> context = osg::GraphicsContext::createGraphicsContext(traits))
            return context;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    throw std::runtime_error("no OpenGL context: picture tests need a display, a virtual one will do");
}

void prepareViewer(osgViewer::Viewer& viewer, int width, int height)
{
    viewer.setKeyEventSetsDone(0);
    viewer.setLightingMode(osg::View::HEADLIGHT);
    osg::Camera& camera = *viewer.getCamera();
    camera.setViewport(0, 0, width, height);
    camera.setClearColor(osg::Vec4(1.0f, 1.0f, 1.0f, 1.0f));
    camera.setComputeNearFarMode(osg::Camera::DO_NOT_COMPUTE_NEAR_FAR);
    lookAlongMinusZ(camera, width, height, 1.0);
}

PictureRig::PictureRig(int width, int height, unsigned int samples)
    : m_width(width), m_height(height), m_viewer(new osgViewer::Viewer), m_picture(new osg::Image)
{
    stayAClient();
    m_viewer->setThreadingModel(osgViewer::ViewerBase::SingleThreaded);
    osg::Camera& master = camera();
    master.setGraphicsContext(pixelBuffer(width, height, samples));
    master.setDrawBuffer(GL_FRONT);
    master.setReadBuffer(GL_FRONT);
    prepareViewer(*m_viewer, width, height);
    master.setFinalDrawCallback(new ReadPicture(m_picture, width, height));
    m_viewer->realize();
}

PictureRig::~PictureRig() = default;

void PictureRig::setScene(osg::Node* scene)
{
    m_viewer->setSceneData(scene);
}

void PictureRig::lookInParallel(double pixelsPerUnit)
{
    lookAlongMinusZ(camera(), m_width, m_height, pixelsPerUnit);
}

void PictureRig::lookInPerspective(const osg::Vec3d& eye, const osg::Vec3d& centre, const osg::Vec3d& up)
{
    const double distance = (eye - centre).length();
    camera().setViewMatrixAsLookAt(eye, centre, up);
    camera().setProjectionMatrixAsPerspective(30.0, double(m_width) / m_height, distance / 100.0, distance * 100.0);
}

osg::Matrixd PictureRig::toWindow()
{
    return camera().getViewMatrix() * camera().getProjectionMatrix() * camera().getViewport()->computeWindowMatrix();
}

osg::ref_ptr<osg::Image> PictureRig::render(int frames)
{
    for (int i = 0; i < frames; ++i) m_viewer->frame();
    return new osg::Image(*m_picture, osg::CopyOp::DEEP_COPY_ALL);
}

} // namespace kelvtest
