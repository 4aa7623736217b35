#include <KelvOsgTools/CSphereMeta.h>

#include "OrangeDot.h"
#include "support/PictureRig.h"
#include "support/PictureScenes.h"

#include <gtest/gtest.h>

#include <osg/BlendFunc>
#include <osg/Depth>
#include <osg/GLExtensions>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/LightSource>
#include <osg/Material>
#include <osg/Point>
#include <osg/PolygonMode>
#include <osg/PolygonOffset>
#include <osg/Program>
#include <osg/ShapeDrawable>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

struct SphereView
{
    float radius;
    bool isNear; // in perspective: at a unit of the scene, or at thousands
    unsigned int samples;
};

std::string nameOf(const SphereView& view)
{
    return "Radius" + std::to_string(static_cast<int>(view.radius)) + (view.isNear ? "Near" : "Far") +
           (view.samples > 0 ? "Multisampled" : "");
}

class SphereDrawn : public PictureTest, public ::testing::WithParamInterface<SphereView>
{};

/// The same dot with a stock shape, fully tessellated, in place of its sphere.
osg::ref_ptr<CAutoScaleSphereMeta> withStockSphere(const CAutoScaleSphereMeta::structSphereMeta& meta)
{
    osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(meta);
    const osg::ref_ptr<osg::TessellationHints> hints = new osg::TessellationHints;
    hints->setDetailRatio(meta.ratio);
    const osg::ref_ptr<osg::ShapeDrawable> stock =
        new osg::ShapeDrawable(new osg::Sphere(osg::Vec3f(), meta.radius), hints);
    stock->setColor(meta.color);
    osg::Geode& geode = *dot->getChild(0)->asGroup()->getChild(0)->asGeode();
    geode.replaceDrawable(geode.getDrawable(0), stock);
    return dot;
}

constexpr int kUnseen = 2; // of 255

/// How two pictures of one sphere differ, inside of it and where its outline crosses pixels.
struct SphereDifference
{
    int inside = 0;        // largest of all pixels whose surroundings are covered
    int outlinePixels = 0; // how many there are
    double outline = 0.0;  // mean of these
    int outlineOdd = 0;    // how many of these differ visibly
};

SphereDifference compareSpheres(const osg::Image& a, const osg::Image& b)
{
    constexpr int kReach = 2; // an edge that is shared between samples reaches into neighbouring pixels
    SphereDifference result;
    for (int y = kReach; y < a.t() - kReach; ++y)
        for (int x = kReach; x < a.s() - kReach; ++x) {
            const osg::ref_ptr<osg::Image> around = cut(b, {x - kReach, y - kReach, x + kReach, y + kReach});
            const int delta = difference(pixelAt(a, x, y), pixelAt(b, x, y));
            const int whitePixels = countPixels(*around, kWhite, 0);
            if (whitePixels == 0)
                result.inside = std::max(result.inside, delta);
            else if (whitePixels < around->s() * around->t()) {
                ++result.outlinePixels;
                result.outline += delta;
                if (delta > kUnseen) ++result.outlineOdd;
            }
        }
    result.outline /= std::max(1, result.outlinePixels);
    return result;
}

TEST_P(SphereDrawn, LooksLikeTheFullTessellation)
{
    const auto [radius, isNear, samples] = GetParam();
    const double distance = isNear ? 2.0 : 4000.0;
    PictureRig rig(140, 140, samples);
    rig.lookInPerspective(osg::Vec3d(0, 0, distance), osg::Vec3d(), osg::Y_AXIS);
    const double unitsPerPixel = 2.0 * distance * std::tan(osg::DegreesToRadians(15.0)) / 140.0;

    std::vector<osg::ref_ptr<osg::Group>> stocks;
    const osg::Vec2d fractions[] = {{0.0, 0.0}, {0.5, 0.5}, {0.27, 0.81}, {0.93, 0.36}};
    for (const osg::Vec2d& fraction : fractions) {
        const osg::Vec3f centre(osg::Vec3d(fraction, 0.0) * unitsPerPixel);
        // Kept: OpenSceneGraph takes a new array at the address of a released one for the same.
        const osg::ref_ptr<osg::Group> stock = groupOf({withStockSphere(dotRecord(radius, centre))});
        stocks.push_back(stock);
        rig.setScene(stock);
        const osg::ref_ptr<osg::Image> expected = rig.render();
        rig.setScene(groupOf({new CAutoScaleSphereMeta(dotRecord(radius, centre))}));
        EXPECT_FALSE(boxOfDifference(*expected, kWhite).isEmpty());

        const SphereDifference found = compareSpheres(*rig.render(), *expected);
        EXPECT_LE(found.inside, samples > 0 ? kUnseen + 1 : kUnseen); // mixing samples adds one
        // Any other triangles may win or lose a sample here and there along the outline; of whole pixels
        // there are two at most, whose middles the outline touches.
        if (samples > 0)
            EXPECT_LE(found.outline, 3.0);
        else
            EXPECT_LE(found.outlineOdd, 2);
    }
}

std::vector<SphereView> allSphereViews()
{
    std::vector<SphereView> views;
    for (const float radius : {1.0f, 3.0f, 5.0f, 8.0f, 12.0f, 60.0f})
        for (const bool isNear : {true, false})
            for (const unsigned int samples : {0u, 4u}) views.push_back({radius, isNear, samples});
    return views;
}
INSTANTIATE_TEST_SUITE_P(Views, SphereDrawn, ::testing::ValuesIn(allSphereViews()),
                         [](const auto& test) { return nameOf(test.param); });

// Under a host's state

/// What a host may do to a scene with a dot, and to the view of it.
struct Surroundings
{
    const char* name;
    void (*arrange)(osg::Group& scene, PictureRig& rig);
    float radius = 4.0f;
    osg::Vec3f centre = osg::Vec3f(0.3f, -0.4f, 0.0f);
};

void addProgram(osg::Group& scene, PictureRig&)
{
    const osg::ref_ptr<osg::Program> program = new osg::Program; // that enlarges what it draws
    program->addShader(new osg::Shader(osg::Shader::VERTEX, "varying vec3 n; void main() { n = gl_Normal;"
                                                            "vec4 place = gl_Vertex * vec4(2.0, 2.0, 2.0, 1.0);"
                                                            "gl_Position = gl_ModelViewProjectionMatrix * place; }"));
    program->addShader(new osg::Shader(osg::Shader::FRAGMENT, "varying vec3 n; void main() {"
                                                              "gl_FragColor = vec4(0.5 + 0.5 * normalize(n), 1.0); }"));
    scene.getOrCreateStateSet()->setAttribute(program);
}

void drawEdges(osg::Group& scene, PictureRig&)
{
    scene.getOrCreateStateSet()->setAttribute(
        new osg::PolygonMode(osg::PolygonMode::FRONT_AND_BACK, osg::PolygonMode::LINE));
}

void enlargePoints(osg::Group& scene, PictureRig&)
{
    osg::StateSet& state = *scene.getOrCreateStateSet();
    state.setAttribute(new osg::Point(9.0f));
    state.setMode(GL_POINT_SMOOTH, osg::StateAttribute::ON);
    state.setAttributeAndModes(new osg::BlendFunc);
}

void blend(osg::Group& scene, PictureRig&)
{
    scene.getOrCreateStateSet()->setAttributeAndModes(new osg::BlendFunc);
}

void lightFromTheSide(osg::Group& scene, PictureRig& rig)
{
    const osg::ref_ptr<osg::LightSource> source = new osg::LightSource;
    source->getLight()->setPosition(osg::Vec4f(1.0f, 0.5f, 0.3f, 0.0f));
    source->getLight()->setDiffuse(osg::Vec4f(1, 1, 1, 1));
    source->getLight()->setSpecular(osg::Vec4f(1, 1, 1, 1));
    rig.viewer().setLightingMode(osg::View::NO_LIGHT);
    osg::StateSet& state = *scene.getOrCreateStateSet();
    state.setMode(GL_LIGHT0, osg::StateAttribute::ON);
    const osg::ref_ptr<osg::Material> material = new osg::Material;
    material->setColorMode(osg::Material::AMBIENT_AND_DIFFUSE);
    material->setSpecular(osg::Material::FRONT_AND_BACK, osg::Vec4f(0.6f, 0.6f, 0.6f, 1.0f));
    material->setShininess(osg::Material::FRONT_AND_BACK, 20.0f);
    state.setAttribute(material);
    scene.addChild(source);
}

void lookFromTheCorner(osg::Group&, PictureRig& rig)
{
    rig.camera().setProjectionMatrixAsPerspective(100.0, 1.0, 1.0, 1000.0);
    rig.camera().setViewMatrixAsLookAt(osg::Vec3d(-95, -90, 100), osg::Vec3d(-95, -90, 0), osg::Y_AXIS);
}

void lookOffAxis(osg::Group&, PictureRig& rig)
{
    rig.camera().setProjectionMatrixAsFrustum(-0.1, 0.7, -0.5, 0.2, 1.0, 1000.0);
}

void lookInReversedDepth(osg::Group& scene, PictureRig& rig)
{
    rig.camera().setProjectionMatrix(rig.camera().getProjectionMatrix() * osg::Matrixd::scale(1.0, 1.0, -1.0));
    rig.camera().setClearDepth(0.0);
    scene.getOrCreateStateSet()->setAttributeAndModes(new osg::Depth(osg::Depth::GREATER));
}

void turnTheView(osg::Group&, PictureRig& rig)
{
    rig.camera().setViewMatrix(rig.camera().getViewMatrix() * osg::Matrixd::rotate(0.7, osg::Vec3d(0, 0, 1)));
}

void moveTheViewport(osg::Group&, PictureRig& rig)
{
    rig.camera().setViewport(17, 9, 60, 80);
    rig.camera().setProjectionMatrixAsOrtho(-30, 30, -40, 40, 1, 200);
}

void scaleTheViewport(osg::Group&, PictureRig& rig)
{
    rig.camera().setViewport(new osg::Viewport(17.7, 9.9, 60.8, 80.6)); // as where a screen's scale is no whole number
    rig.camera().setProjectionMatrixAsOrtho(-30, 30, -40, 40, 1, 200);
}

void leaveAlone(osg::Group&, PictureRig&) {}

class SphereUnder : public PictureTest, public ::testing::WithParamInterface<Surroundings>
{};

osg::ref_ptr<osg::Image> pictureUnder(const Surroundings& surroundings, osg::Node* dot)
{
    const osg::ref_ptr<osg::Group> scene = groupOf({dot});
    PictureRig rig(100, 100);
    surroundings.arrange(*scene, rig);
    rig.setScene(scene);
    return rig.render();
}

TEST_P(SphereUnder, LooksLikeAStockOne)
{
    const auto record = dotRecord(GetParam().radius, GetParam().centre);
    const osg::ref_ptr<osg::Image> expected = pictureUnder(GetParam(), withStockSphere(record));
    const osg::ref_ptr<osg::Image> found = pictureUnder(GetParam(), new CAutoScaleSphereMeta(record));
    EXPECT_FALSE(boxOfDifference(*expected, kWhite).isEmpty());
    const SphereDifference difference = compareSpheres(*found, *expected);
    EXPECT_LE(difference.inside, kUnseen);
    EXPECT_LE(difference.outlineOdd, 2); // pixels whose middles the outline touches
}

INSTANTIATE_TEST_SUITE_P(
    Surroundings, SphereUnder,
    ::testing::Values(Surroundings{"NoStateOfTheHost", leaveAlone}, Surroundings{"AShaderProgram", addProgram},
                      Surroundings{"LargeSmoothPoints", enlargePoints},
                      Surroundings{"ALightFromTheSide", lightFromTheSide},
                      Surroundings{"ALightFromTheSideLarger", lightFromTheSide, 11.0f},
                      Surroundings{"AWideView", lookFromTheCorner, 8.0f, osg::Vec3f(0, 0, 0)},
                      Surroundings{"AWideViewLarger", lookFromTheCorner, 11.0f, osg::Vec3f(-30, -30, 0)},
                      Surroundings{"AnOffAxisView", lookOffAxis, 6.0f, osg::Vec3f(12, -10, 60)},
                      Surroundings{"ReversedDepth", lookInReversedDepth, 6.0f},
                      Surroundings{"ATurnedView", turnTheView, 6.0f, osg::Vec3f(13, 20, 5)},
                      Surroundings{"AViewportApart", moveTheViewport, 6.0f, osg::Vec3f(3, 7, 0)},
                      Surroundings{"AViewportOfBrokenPixels", scaleTheViewport, 6.0f, osg::Vec3f(3, 7, 0)},
                      Surroundings{"TheEdgeOfTheViewport", moveTheViewport, 6.0f, osg::Vec3f(-30, 7, 0)}),
    [](const auto& test) { return test.param.name; });

class SpherePicture : public PictureTest
{};

/// Spheres that show their triangles, in a way of their own.
struct Unround
{
    const char* name;
    void (*arrange)(osg::Group& scene, PictureRig& rig);
    float ratio;
    float alpha;
};

class UnroundSphere : public PictureTest, public ::testing::WithParamInterface<Unround>
{};

TEST_P(UnroundSphere, DrawsTheFullTessellation)
{
    const Surroundings surroundings{"", GetParam().arrange};
    auto record = dotRecord(9);
    record.ratio = GetParam().ratio;
    record.color.a() = GetParam().alpha;
    EXPECT_TRUE(alike(*pictureUnder(surroundings, new CAutoScaleSphereMeta(record)),
                      *pictureUnder(surroundings, withStockSphere(record)), std::string("sphere-") + GetParam().name,
                      {0, 0.0})); // the same triangles
}

INSTANTIATE_TEST_SUITE_P(Spheres, UnroundSphere,
                         ::testing::Values(Unround{"OfEdges", drawEdges, 3.0f, 1.0f},
                                           Unround{"Coarse", leaveAlone, 0.2f, 1.0f},
                                           Unround{"Translucent", blend, 3.0f, 0.5f}),
                         [](const auto& test) { return test.param.name; });

/// A point of a size that it inherits.
osg::ref_ptr<osg::Geometry> inheritingPoint(const osg::Vec3f& place, int renderBin)
{
    const osg::ref_ptr<osg::Vec3Array> places = new osg::Vec3Array;
    places->push_back(place);
    osg::ref_ptr<osg::Geometry> point = new osg::Geometry;
    point->setVertexArray(places);
    point->addPrimitiveSet(new osg::DrawArrays(GL_POINTS, 0, 1));
    osg::StateSet& state = *point->getOrCreateStateSet();
    state.setMode(GL_LIGHTING, osg::StateAttribute::OFF);
    state.setRenderBinDetails(renderBin, "RenderBin");
    return point;
}

TEST_F(SpherePicture, LeavesTheHostsPointsTheirSize)
{
    const osg::ref_ptr<osg::Group> scene =
        groupOf({inheritingPoint(osg::Vec3f(-20.5f, 20.5f, 0.0f), -1), new CAutoScaleSphereMeta(dotRecord(3)),
                 inheritingPoint(osg::Vec3f(20.5f, 20.5f, 0.0f), 1)});
    scene->getOrCreateStateSet()->setAttribute(new osg::Point(7.0f));
    PictureRig rig(100, 100);
    rig.setScene(scene);
    const osg::ref_ptr<osg::Image> picture = rig.render();
    EXPECT_EQ(boxOfDifference(*cut(*picture, {15, 60, 45, 90}), kWhite).width(), 7); // drawn before the dot
    EXPECT_EQ(boxOfDifference(*cut(*picture, {60, 60, 90, 90}), kWhite).width(), 7); // and after it
}

TEST_F(SpherePicture, IsEmptyWhereTheSphereLiesBehindTheEye)
{
    PictureRig rig(100, 100);
    rig.lookInPerspective(osg::Vec3d(0, 0, 100), osg::Vec3d(), osg::Y_AXIS);
    rig.setScene(groupOf({new CAutoScaleSphereMeta(dotRecord(4, osg::Vec3f(0, 0, 130)))}));
    EXPECT_TRUE(boxOfDifference(*rig.render(), kWhite).isEmpty());
}

/// What a camera does before or after it draws.
struct DrawStep : osg::Camera::DrawCallback
{
    explicit DrawStep(std::function<void(const osg::GLExtensions&)> step) : m_step(std::move(step)) {}
    void operator()(osg::RenderInfo& info) const override { m_step(*info.getState()->get<osg::GLExtensions>()); }
    std::function<void(const osg::GLExtensions&)> m_step;
};

/// Gives a camera of a window a frame buffer of its own with four samples for each pixel, and reads
/// what it draws there. By hand: OpenSceneGraph's own way takes any driver of Mesa for one of another.
class MultisampledTarget
{
public:
    explicit MultisampledTarget(osg::Camera& camera)
    {
        camera.setPreDrawCallback(new DrawStep([this](const osg::GLExtensions& gl) { begin(gl); }));
        camera.setPostDrawCallback(new DrawStep([this](const osg::GLExtensions& gl) { end(gl); }));
    }

    const osg::ref_ptr<osg::Image> image = new osg::Image;

private:
    static constexpr int kSide = 100;

    static GLuint bindNew(const osg::GLExtensions& gl, int samples)
    {
        GLuint frame = 0;
        gl.glGenFramebuffers(1, &frame);
        gl.glBindFramebuffer(GL_FRAMEBUFFER, frame);
        for (const auto& [attachment, format] :
             {std::pair<GLenum, GLenum>(GL_COLOR_ATTACHMENT0, GL_RGBA8),
              std::pair<GLenum, GLenum>(GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24)}) {
            GLuint buffer = 0;
            gl.glGenRenderbuffers(1, &buffer);
            gl.glBindRenderbuffer(GL_RENDERBUFFER, buffer);
            gl.glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, kSide, kSide);
            gl.glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, buffer);
        }
        return frame;
    }

    void begin(const osg::GLExtensions& gl) { m_frame = bindNew(gl, 4); }

    void end(const osg::GLExtensions& gl)
    {
        const GLuint resolved = bindNew(gl, 0);
        gl.glBindFramebuffer(GL_READ_FRAMEBUFFER, m_frame);
        gl.glBlitFramebuffer(0, 0, kSide, kSide, 0, 0, kSide, kSide, GL_COLOR_BUFFER_BIT, GL_NEAREST);
        gl.glBindFramebuffer(GL_READ_FRAMEBUFFER, resolved);
        image->readPixels(0, 0, kSide, kSide, GL_RGB, GL_UNSIGNED_BYTE);
        gl.glBindFramebuffer(GL_FRAMEBUFFER, 0);
    }

    GLuint m_frame = 0; // these go with the context
};

/// What a camera with four samples for each pixel sees of a dot, in a window that has one.
osg::ref_ptr<osg::Image> multisampledImage(osg::Node* dot)
{
    const osg::ref_ptr<osg::Camera> camera = new osg::Camera;
    camera->setReferenceFrame(osg::Transform::ABSOLUTE_RF);
    camera->setRenderOrder(osg::Camera::POST_RENDER);
    camera->setViewport(0, 0, 100, 100);
    camera->setProjectionMatrixAsOrtho(-50, 50, -50, 50, -100, 100);
    camera->setClearColor(osg::Vec4f(1, 1, 1, 1));
    camera->setClearMask(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    camera->setDrawBuffer(GL_COLOR_ATTACHMENT0);
    camera->setReadBuffer(GL_COLOR_ATTACHMENT0);
    camera->addChild(dot);

    PictureRig rig(100, 100);
    MultisampledTarget target(*camera);
    rig.setScene(groupOf({new CAutoScaleSphereMeta(dotRecord(4)), camera}));
    rig.render();
    return target.image;
}

TEST_F(SpherePicture, HasSmoothEdgesForACameraWithSamplesInAWindowWithout)
{
    const auto record = dotRecord(4, osg::Vec3f(0.3f, 0.1f, 0.0f));
    const osg::ref_ptr<osg::Image> expected = multisampledImage(withStockSphere(record));
    EXPECT_FALSE(boxOfDifference(*expected, kWhite).isEmpty());
    const SphereDifference found = compareSpheres(*multisampledImage(new CAutoScaleSphereMeta(record)), *expected);
    EXPECT_LE(found.inside, kUnseen + 1); // mixing samples adds one
    EXPECT_LE(found.outline, 3.0);
}

/// Counts the primitives that a camera draws.
struct PrimitiveCounter
{
    explicit PrimitiveCounter(osg::Camera& camera)
    {
        camera.setPreDrawCallback(new DrawStep([this](const osg::GLExtensions& gl) {
            gl.glGenQueries(1, &query);
            gl.glBeginQuery(GL_PRIMITIVES_GENERATED, query);
        }));
        camera.setPostDrawCallback(new DrawStep([this](const osg::GLExtensions& gl) {
            gl.glEndQuery(GL_PRIMITIVES_GENERATED);
            gl.glGetQueryObjectuiv(query, GL_QUERY_RESULT, &count);
            gl.glDeleteQueries(1, &query);
        }));
    }

    GLuint query = 0;
    GLuint count = 0;
};

TEST_F(SpherePicture, TakesATenthOfTheTrianglesWherePixelsHaveSamples)
{
    PictureRig rig(100, 100, 4);
    PrimitiveCounter counter(rig.camera());
    rig.setScene(groupOf({new CAutoScaleSphereMeta(dotRecord(3))}));
    rig.render();
    EXPECT_GT(counter.count, 100u); // points would not be smooth
    EXPECT_LT(counter.count, 1440u);
}

TEST_F(SpherePicture, TakesTrianglesWhereTheHostOffsetsThem)
{
    const osg::ref_ptr<osg::Group> scene = groupOf({new CAutoScaleSphereMeta(dotRecord(3))});
    scene->getOrCreateStateSet()->setAttributeAndModes(new osg::PolygonOffset(1.0f, 1.0f));
    PictureRig rig(100, 100);
    PrimitiveCounter counter(rig.camera());
    rig.setScene(scene);
    rig.render();
    EXPECT_GT(counter.count, 100u); // points know no such offset
}

TEST_F(SpherePicture, TakesOnePrimitiveForEachPixelOfASmallSphere)
{
    PictureRig rig(100, 100);
    PrimitiveCounter counter(rig.camera());
    rig.setScene(groupOf({new CAutoScaleSphereMeta(dotRecord(3, osg::Vec3f(0.2f, 0.3f, 0.0f)))}));
    const osg::ref_ptr<osg::Image> picture = rig.render();
    EXPECT_EQ(static_cast<int>(counter.count), 100 * 100 - countPixels(*picture, kWhite, 0));
    EXPECT_LT(counter.count, 40u);
}

} // namespace
