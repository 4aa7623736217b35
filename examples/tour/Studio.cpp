#include "Studio.h"

#include <osg/Depth>
#include <osg/GLExtensions>
#include <osg/Geometry>
#include <osg/GraphicsContext>
#include <osg/LightSource>
#include <osg/LineWidth>
#include <osg/MatrixTransform>
#include <osg/NodeVisitor>
#include <osg/Projection>
#include <osg/Transform>
#include <osgDB/WriteFile>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

namespace tour {
namespace {

constexpr double kFieldOfViewDegrees = 26.0; // from bottom to top: a long lens keeps parallels nearly parallel
constexpr double kMargin = 1.25;             // room around the mesh for labels and arrows
constexpr unsigned int kSamples = 8;         // for smooth edges; the driver may give fewer
constexpr int kBeforeTheScene = -10;         // render bins
constexpr int kAfterTheScene = 1000;
const osg::Vec3d kFromMeshToEye(-0.50, -1.0, 0.78);

osg::ref_ptr<osg::GraphicsContext> offscreenContext()
{
    const osg::ref_ptr<osg::GraphicsContext::Traits> traits = new osg::GraphicsContext::Traits;
    traits->width = Studio::kWidth;
    traits->height = Studio::kHeight;
    traits->pbuffer = true;
    traits->readDISPLAY();
    osg::ref_ptr<osg::GraphicsContext> context = osg::GraphicsContext::createGraphicsContext(traits);
    if (!context) throw std::runtime_error("no OpenGL context: a display is needed, a virtual one will do (xvfb-run)");
    return context;
}

/// Some drivers hand out an address for every function, supported or not, and the multisampled
/// picture would then be set up by one that is not.
void forgetMissingFunctions(osg::GraphicsContext& context)
{
    context.makeCurrent();
    const unsigned int id = context.getState()->getContextID();
    if (!osg::isGLExtensionSupported(id, "GL_NV_framebuffer_multisample_coverage"))
        osg::GLExtensions::Get(id, true)->glRenderbufferStorageMultisampleCoverageNV = nullptr;
    context.releaseContext();
}

/// A light that stays where it is beside the camera; directions are in eye coordinates.
osg::ref_ptr<osg::LightSource> eyeLight(unsigned int number, const osg::Vec3f& from, float brightness, float ambient)
{
    const osg::ref_ptr<osg::Light> light = new osg::Light(number);
    light->setPosition(osg::Vec4(from, 0.0f));
    light->setDiffuse(osg::Vec4(brightness, brightness, brightness, 1.0f));
    light->setSpecular(osg::Vec4(brightness, brightness, brightness, 1.0f));
    light->setAmbient(osg::Vec4(ambient, ambient, ambient, 1.0f));
    osg::ref_ptr<osg::LightSource> source = new osg::LightSource;
    source->setLight(light);
    source->setReferenceFrame(osg::LightSource::ABSOLUTE_RF);
    return source;
}

osg::ref_ptr<osg::Group> threePointLight()
{
    osg::ref_ptr<osg::Group> lights = new osg::Group;
    lights->setName("lights");
    lights->addChild(eyeLight(0, osg::Vec3f(-0.55f, 0.75f, 0.60f), 0.80f, 0.34f)); // key, over the left shoulder
    lights->addChild(eyeLight(1, osg::Vec3f(0.85f, 0.10f, 0.55f), 0.45f, 0.0f));   // fill
    lights->addChild(eyeLight(2, osg::Vec3f(0.10f, 0.65f, -0.75f), 0.30f, 0.0f));  // rim, from behind
    return lights;
}

osg::ref_ptr<osg::Geometry> coloured(GLenum mode, const std::vector<osg::Vec2f>& points,
                                     const std::vector<osg::Vec4f>& colours)
{
    const osg::ref_ptr<osg::Vec3Array> vertices = new osg::Vec3Array;
    for (const osg::Vec2f& point : points) vertices->push_back(osg::Vec3f(point, 0.0f));
    osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
    geometry->setVertexArray(vertices);
    geometry->setColorArray(new osg::Vec4Array(colours.begin(), colours.end()),
                            colours.size() == 1 ? osg::Array::BIND_OVERALL : osg::Array::BIND_PER_VERTEX);
    geometry->addPrimitiveSet(new osg::DrawArrays(mode, 0, static_cast<GLsizei>(points.size())));
    return geometry;
}

/// Draws its child in pixels, before (order below 0) or after the scene.
osg::ref_ptr<osg::Node> inPixels(osg::Node* child, int order)
{
    const osg::ref_ptr<osg::MatrixTransform> place = new osg::MatrixTransform;
    place->setReferenceFrame(osg::Transform::ABSOLUTE_RF);
    place->addChild(child);
    const osg::ref_ptr<osg::Projection> pixels =
        new osg::Projection(osg::Matrixd::ortho2D(0, Studio::kWidth, 0, Studio::kHeight));
    pixels->addChild(place);
    pixels->setCullingActive(false);
    osg::StateSet& state = *pixels->getOrCreateStateSet();
    state.setMode(GL_LIGHTING, osg::StateAttribute::OFF);
    state.setMode(GL_DEPTH_TEST, osg::StateAttribute::OFF);
    state.setMode(GL_BLEND, osg::StateAttribute::ON);
    state.setAttribute(new osg::Depth(osg::Depth::ALWAYS, 0.0, 1.0, false));
    state.setRenderBinDetails(order, "RenderBin");
    return pixels;
}

osg::ref_ptr<osg::Geometry> background()
{
    const osg::Vec4f bottom(0.75f, 0.79f, 0.84f, 1.0f), top(0.97f, 0.98f, 0.99f, 1.0f);
    return coloured(GL_TRIANGLE_STRIP,
                    {{0, 0}, {Studio::kWidth, 0}, {0, Studio::kHeight}, {Studio::kWidth, Studio::kHeight}},
                    {bottom, bottom, top, top});
}

osg::ref_ptr<osgText::Text> captionText(const std::string& font)
{
    osg::ref_ptr<osgText::Text> text = new osgText::Text;
    if (!font.empty()) text->setFont(font);
    text->setCharacterSize(22.0f);
    text->setFontResolution(44, 44);
    text->setColor(osg::Vec4f(0.13f, 0.16f, 0.20f, 1.0f));
    text->setPosition(osg::Vec3f(32.0f, Studio::kHeight - 54.0f, 0.0f));
    return text;
}

osg::ref_ptr<osg::MatrixTransform> mousePointer()
{
    const std::vector<osg::Vec2f> outline{{0, 0},    {0, -26},        {6, -20.5f}, {10.5f, -30},
                                          {15, -28}, {10.5f, -18.5f}, {18.5f, -18}};
    const std::vector<osg::Vec2f> head{{0, 0},          {0, -26}, {6, -20.5f},     {0, 0},      {6, -20.5f},
                                       {10.5f, -18.5f}, {0, 0},   {10.5f, -18.5f}, {18.5f, -18}};
    const std::vector<osg::Vec2f> shaft{{6, -20.5f}, {10.5f, -30}, {15, -28}, {10.5f, -18.5f}};
    const osg::Vec4f white(1, 1, 1, 1), black(0, 0, 0, 1);
    osg::ref_ptr<osg::MatrixTransform> pointer = new osg::MatrixTransform;
    pointer->addChild(coloured(GL_TRIANGLES, head, {white}));
    pointer->addChild(coloured(GL_TRIANGLE_FAN, shaft, {white}));
    pointer->addChild(coloured(GL_LINE_LOOP, outline, {black}));
    pointer->getOrCreateStateSet()->setAttributeAndModes(new osg::LineWidth(2.0f));
    return pointer;
}

/// The box around all points of a subtree, as seen by an eye in the origin that looks along -z.
class SeenBoxVisitor : public osg::NodeVisitor
{
public:
    explicit SeenBoxVisitor(const osg::Matrixd& turn) : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN), m_turn(turn) {}

    void apply(osg::Geometry& geometry) override
    {
        const auto* const points = dynamic_cast<const osg::Vec3Array*>(geometry.getVertexArray());
        if (!points) return;
        const osg::Matrixd toEye = osg::computeLocalToWorld(getNodePath()) * m_turn;
        for (const osg::Vec3f& point : *points) m_box.expandBy(osg::Vec3d(point) * toEye);
    }

    osg::BoundingBoxd m_box;

private:
    osg::Matrixd m_turn;
};

/// How far from its centre the eye must be for a box to lie within the picture.
double distanceFor(const osg::BoundingBoxd& box)
{
    const double up = std::tan(osg::DegreesToRadians(kFieldOfViewDegrees / 2.0));
    const double right = up * Studio::kWidth / Studio::kHeight;
    return std::max((box.xMax() - box.xMin()) / 2.0 / right, (box.yMax() - box.yMin()) / 2.0 / up);
}

} // namespace

Studio::Studio(const std::string& font)
    : m_viewer(new osgViewer::Viewer),
      m_picture(new osg::Image),
      m_frame(new osg::Group),
      m_caption(captionText(font)),
      m_pointer(mousePointer())
{
    m_viewer->setThreadingModel(osgViewer::ViewerBase::SingleThreaded);
    m_viewer->setLightingMode(osg::View::NO_LIGHT);
    const osg::ref_ptr<osg::GraphicsContext> context = offscreenContext();
    osg::Camera& camera = *m_viewer->getCamera();
    camera.setGraphicsContext(context);
    camera.setViewport(0, 0, kWidth, kHeight);
    camera.setComputeNearFarMode(osg::Camera::DO_NOT_COMPUTE_NEAR_FAR);
    m_picture->allocateImage(kWidth, kHeight, 1, GL_RGB, GL_UNSIGNED_BYTE);
    camera.setRenderTargetImplementation(osg::Camera::FRAME_BUFFER_OBJECT);
    camera.attach(osg::Camera::COLOR_BUFFER, m_picture, kSamples);

    m_frame->addChild(inPixels(background(), kBeforeTheScene));
    m_frame->addChild(inPixels(m_caption, kAfterTheScene));
    m_frame->addChild(inPixels(m_pointer, kAfterTheScene));
    hidePointer();

    // No window tells the viewer about the mouse's range; picks need to know it.
    osgGA::GUIEventAdapter& state = *m_viewer->getEventQueue()->getCurrentEventState();
    state.setGraphicsContext(context);
    state.setInputRange(0.0f, 0.0f, kWidth, kHeight);
    state.setMouseYOrientation(osgGA::GUIEventAdapter::Y_INCREASING_UPWARDS);
    m_viewer->realize();
    forgetMissingFunctions(*context);
}

Studio::~Studio() = default;

void Studio::show(osg::Group* scene, osg::Node* subject)
{
    scene->addChild(threePointLight());
    osg::StateSet& state = *scene->getOrCreateStateSet();
    for (const int mode : {GL_LIGHTING, GL_LIGHT0, GL_LIGHT1, GL_LIGHT2})
        state.setMode(static_cast<GLenum>(mode), osg::StateAttribute::ON);
    m_viewer->setSceneData(scene);
    m_viewer->getCamera()->addChild(m_frame); // setSceneData removed it
    m_frame->setNodeMask(0u);

    const osg::Matrixd turn = osg::Matrixd::lookAt(kFromMeshToEye, osg::Vec3d(), osg::Vec3d(0, 0, 1));
    SeenBoxVisitor seen(osg::Matrixd::rotate(turn.getRotate()));
    subject->accept(seen);
    const double depth = seen.m_box.zMax() - seen.m_box.zMin();
    const double distance = distanceFor(seen.m_box) * kMargin + depth / 4.0; // what is near looks larger
    const osg::Vec3d eye = osg::Vec3d(seen.m_box.center()) + osg::Vec3d(0, 0, distance);

    osg::Camera& camera = *m_viewer->getCamera();
    camera.setViewMatrix(osg::Matrixd::rotate(turn.getRotate()) * osg::Matrixd::translate(-eye));
    camera.setProjectionMatrixAsPerspective(kFieldOfViewDegrees, double(kWidth) / kHeight, distance * 0.05,
                                            (distance + depth) * 4.0);
}

osg::Vec2f Studio::windowPosition(const osg::Vec3d& world) const
{
    const osg::Camera& camera = *m_viewer->getCamera();
    const osg::Vec3d window =
        world * camera.getViewMatrix() * camera.getProjectionMatrix() * camera.getViewport()->computeWindowMatrix();
    return osg::Vec2f(static_cast<float>(window.x()), static_cast<float>(window.y()));
}

void Studio::showPointer(const osg::Vec2f& position)
{
    m_pointer->setMatrix(osg::Matrixd::translate(osg::Vec3d(position.x(), position.y(), 0.0)));
    m_pointer->setNodeMask(~0u);
}

void Studio::hidePointer()
{
    m_pointer->setNodeMask(0u);
}

void Studio::save(const std::string& path, const std::string& caption)
{
    m_caption->setText(caption, osgText::String::ENCODING_UTF8);
    m_frame->setNodeMask(~0u); // shown only now: it must not be in the way of picks
    m_viewer->frame();         // the first frame compiles, and auto-scaled nodes learn their size from it
    m_viewer->frame();
    m_frame->setNodeMask(0u);
    if (!osgDB::writeImageFile(*m_picture, path)) throw std::runtime_error("cannot write " + path);
}

} // namespace tour
