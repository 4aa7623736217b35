#include "ViewportDecor.h"

#include <KelvOsgTools/CConeAndCylinderMeta.h>

#include <osg/BlendFunc>
#include <osg/Geometry>
#include <osg/Group>

namespace viewer {

namespace {

constexpr double kTriadSizePixels = 130.0; // of its corner of the window
constexpr float kAxisLengthPixels = 44.0f;
constexpr float kAxisRadiusPixels = 2.2f;
constexpr double kTriadDepth = 1000.0;

const osg::Vec4f kTopColour(0.78f, 0.84f, 0.91f, 1.0f);
const osg::Vec4f kBottomColour(0.97f, 0.98f, 0.99f, 1.0f);

osg::ref_ptr<osg::Node> gradient()
{
    const osg::ref_ptr<osg::Geometry> quad =
        osg::createTexturedQuadGeometry(osg::Vec3(), osg::X_AXIS, osg::Y_AXIS, 0.0f, 0.0f, 1.0f, 1.0f);
    const osg::ref_ptr<osg::Vec4Array> colours = new osg::Vec4Array;
    for (const osg::Vec3f& corner : static_cast<const osg::Vec3Array&>(*quad->getVertexArray()))
        colours->push_back(corner.y() > 0.5f ? kTopColour : kBottomColour);
    quad->setColorArray(colours, osg::Array::BIND_PER_VERTEX);
    osg::StateSet& state = *quad->getOrCreateStateSet();
    state.setMode(GL_LIGHTING, osg::StateAttribute::OFF);
    state.setMode(GL_DEPTH_TEST, osg::StateAttribute::OFF);
    return quad;
}

osg::ref_ptr<osg::Group> triad()
{
    KelvOsgTools::CConeAndCylinderMeta::structConeAndCylinderMeta meta;
    meta.length = kAxisLengthPixels;
    meta.radius = kAxisRadiusPixels;
    const osg::ref_ptr<osg::Group> axes = KelvOsgTools::CConeAndCylinderMeta::createAxis(meta);
    axes->getOrCreateStateSet()->setAttributeAndModes(new osg::BlendFunc); // for what an axis hides of another
    return axes;
}

osg::ref_ptr<osg::Camera> addCamera(osgViewer::Viewer& viewer, osg::Camera::RenderOrder order, osg::Node* content)
{
    const osg::ref_ptr<osg::Camera> camera = new osg::Camera;
    camera->setReferenceFrame(osg::Transform::ABSOLUTE_RF);
    camera->setGraphicsContext(viewer.getCamera()->getGraphicsContext());
    camera->setViewport(new osg::Viewport(0, 0, 1, 1));
    camera->setProjectionResizePolicy(osg::Camera::FIXED);
    camera->setRenderOrder(order);
    camera->setAllowEventFocus(false);
    camera->addChild(content);
    viewer.addSlave(camera, false);
    return camera;
}

} // namespace

ViewportDecor::ViewportDecor(osgViewer::Viewer& viewer)
    : m_background(addCamera(viewer, osg::Camera::PRE_RENDER, gradient())),
      m_triad(addCamera(viewer, osg::Camera::POST_RENDER, triad()))
{
    m_background->setProjectionMatrixAsOrtho2D(0.0, 1.0, 0.0, 1.0);
    m_triad->setClearMask(GL_DEPTH_BUFFER_BIT);
    viewer.getCamera()->setClearMask(GL_DEPTH_BUFFER_BIT);
}

void ViewportDecor::resize(int width, int height, double pixelRatio)
{
    const double size = kTriadSizePixels * pixelRatio;
    m_background->setViewport(0, 0, width, height);
    m_triad->setViewport(0, 0, int(size), int(size));
    // The triad has a fixed size in device pixels, so a finer screen needs a narrower view.
    const double half = kTriadSizePixels / 2.0;
    m_triad->setProjectionMatrixAsOrtho(-half, half, -half, half, 0.0, 2.0 * kTriadDepth);
}

void ViewportDecor::follow(const osg::Quat& eyeToWorld)
{
    m_triad->setViewMatrixAsLookAt(eyeToWorld * osg::Vec3d(0, 0, kTriadDepth), osg::Vec3d(),
                                   eyeToWorld * osg::Vec3d(0, 1, 0));
}

} // namespace viewer
