#include "support/PictureRig.h"

#include <KelvOsgTools/CConeAndCylinderMeta.h>
#include <KelvOsgTools/CFeatureConfig.h>

#include <gtest/gtest.h>

#include <osg/Camera>
#include <osg/DisplaySettings>
#include <osg/GL>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/Group>
#include <osg/MatrixTransform>
#include <osg/NodeVisitor>
#include <osg/Notify>
#include <osg/Program>
#include <osg/Shape>
#include <osg/ShapeDrawable>
#include <osg/State>
#include <osg/Uniform>
#include <osgDB/ReadFile>
#include <osgDB/Registry>
#include <osgGA/TrackballManipulator>
#include <osgViewer/Viewer>

#include <cstdlib>
#include <cstring>
#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace {
using namespace KelvOsgTools;
using kelvtest::alike;
using kelvtest::matchesStored;
using kelvtest::PictureRig;
using kelvtest::Pixel;
using kelvtest::pixelAt;

constexpr int kSize = 240;
constexpr Pixel kWhite{255, 255, 255};
const osg::Vec3d kRightAbove(300, 200, 250);

osg::ref_ptr<osg::Switch> triad()
{
    CFeatureConfig::sigleFeatureConfig()->setFontPath(KELVOSGTOOLS_TEST_FONT);
    CConeAndCylinderMeta::structConeAndCylinderMeta meta;
    meta.length = 80.0f;
    meta.radius = 2.0f;
    return CConeAndCylinderMeta::createAxis(meta);
}

osg::ref_ptr<osg::Group> groupOf(const std::vector<osg::ref_ptr<osg::Node>>& children)
{
    osg::ref_ptr<osg::Group> group = new osg::Group;
    for (const osg::ref_ptr<osg::Node>& child : children) group->addChild(child);
    return group;
}

osg::ref_ptr<osg::Node> grey(osg::Shape* shape)
{
    const osg::ref_ptr<osg::ShapeDrawable> drawable = new osg::ShapeDrawable(shape);
    drawable->setColor(osg::Vec4(0.5f, 0.5f, 0.5f, 1.0f));
    return drawable;
}

/// A box before the X axis, seen from the right above: it hides all of it but its foot.
osg::ref_ptr<osg::Node> boxBeforeX()
{
    return grey(new osg::Box(osg::Vec3(120.0f, 40.0f, 65.0f), 40.0f));
}

osg::ref_ptr<osg::Image> pictureOf(osg::Node* scene, const osg::Vec3d& eye = kRightAbove)
{
    PictureRig rig(kSize, kSize);
    rig.setScene(scene);
    rig.lookInPerspective(eye, osg::Vec3d(), osg::Y_AXIS);
    return rig.render();
}

osg::State& stateOf(PictureRig& rig)
{
    return *rig.camera().getGraphicsContext()->getState();
}

struct Direction
{
    const char* name;
    const char* picture;
    osg::Vec3d eye;
};

std::ostream& operator<<(std::ostream& stream, const Direction& tested)
{
    return stream << tested.name;
}

class AxisPictureFrom : public testing::TestWithParam<Direction>
{};

TEST_P(AxisPictureFrom, ShowsAShadedTriadWithItsLetters)
{
    EXPECT_TRUE(matchesStored(*pictureOf(triad(), GetParam().eye), GetParam().picture));
}

INSTANTIATE_TEST_SUITE_P(Directions, AxisPictureFrom,
                         testing::Values(Direction{"RightAbove", "primitives/axis-right-above", kRightAbove},
                                         Direction{"LeftAbove", "primitives/axis-left-above",
                                                   osg::Vec3d(-300, 150, 200)},
                                         Direction{"Below", "primitives/axis-below", osg::Vec3d(150, -300, 250)}),
                         [](const auto& tested) { return std::string(tested.param.name); });

osg::ref_ptr<osg::Group> blending(osg::ref_ptr<osg::Group> scene)
{
    scene->getOrCreateStateSet()->setMode(GL_BLEND, osg::StateAttribute::ON);
    return scene;
}

TEST(AxisPicture, ShowsHiddenPartsTranslucentOnlyBehindTheBox)
{
    const auto picture = pictureOf(blending(groupOf({boxBeforeX(), triad()})));
    EXPECT_TRUE(matchesStored(*picture, "primitives/axis-behind-box"));

    const auto boxOnly = pictureOf(blending(groupOf({boxBeforeX()})));
    const auto triadOnly = pictureOf(blending(groupOf({triad()})));
    int translucent = 0;
    for (int y = 0; y < kSize; ++y)
        for (int x = 0; x < kSize; ++x) {
            const Pixel box = pixelAt(*boxOnly, x, y);
            const Pixel axis = pixelAt(*triadOnly, x, y);
            const Pixel both = pixelAt(*picture, x, y);
            if (axis == kWhite)
                ASSERT_EQ(both, box) << x << ", " << y;
            else if (box == kWhite)
                ASSERT_EQ(both, axis) << x << ", " << y;
            else if (both.g > 0 && both.g < box.g && both.r > both.g)
                ++translucent; // red, with the grey of the box showing through
        }
    EXPECT_GT(translucent, 100);
}

TEST(AxisPicture, ShowsHiddenPartsOpaqueWithoutBlending)
{
    EXPECT_TRUE(matchesStored(*pictureOf(groupOf({boxBeforeX(), triad()})), "primitives/axis-behind-box-opaque"));
}

osg::ref_ptr<osg::Node> inTransparentBin(osg::ref_ptr<osg::Node> node)
{
    node->getOrCreateStateSet()->setRenderingHint(osg::StateSet::TRANSPARENT_BIN);
    return node;
}

TEST(AxisPicture, LeavesWhatItsHiddenLettersLieBehindInFront)
{
    // Drawn last, between box and letter: the letter must not have pushed the depth of the box back.
    const auto between = [] { return inTransparentBin(grey(new osg::Sphere(osg::Vec3(100.0f, 12.0f, 22.0f), 10.0f))); };
    const auto without = pictureOf(groupOf({boxBeforeX(), triad()}));
    const auto with = pictureOf(groupOf({boxBeforeX(), triad(), between()}));
    EXPECT_TRUE(alike(*with, *without, "axis-hidden-letter-depth"));
}

struct ReadWindow : osg::Camera::DrawCallback
{
    void operator()(osg::RenderInfo&) const override
    {
        picture->readPixels(0, 0, kSize, kSize, GL_RGB, GL_UNSIGNED_BYTE);
    }
    osg::ref_ptr<osg::Image> picture = new osg::Image;
};

TEST(AxisPicture, ShowsTheTriadInAWindowOfAViewerLeftAsItComes)
{
    const PictureRig displayIsThere(1, 1);
    const osg::ref_ptr<ReadWindow> reader = new ReadWindow;
    const osg::ref_ptr<osgViewer::Viewer> viewer = new osgViewer::Viewer;
    viewer->setUpViewInWindow(0, 0, kSize, kSize);
    const osg::ref_ptr<osgGA::TrackballManipulator> manipulator = new osgGA::TrackballManipulator;
    manipulator->setHomePosition(osg::Vec3d(9, -12, 7), osg::Vec3d(), osg::Z_AXIS);
    viewer->setCameraManipulator(manipulator);
    viewer->setSceneData(groupOf({grey(new osg::Box(osg::Vec3(0, 0, -0.5f), 4.0f, 4.0f, 1.0f)), triad()}));
    viewer->getCamera()->setFinalDrawCallback(reader);
    viewer->realize();
    for (int i = 0; i < 3; ++i) viewer->frame();
    viewer->stopThreading(); // waits for the last frame
    EXPECT_TRUE(matchesStored(*reader->picture, "primitives/axis-in-a-window"));
}

TEST(AxisExample, WritesAPictureOfTheTriad)
{
#ifdef KELVOSGTOOLS_AXIS_EXAMPLE
    const PictureRig displayIsThere(1, 1);
    const std::string file = testing::TempDir() + "axis-example.png";
    ASSERT_EQ(std::system((KELVOSGTOOLS_AXIS_EXAMPLE " --picture " + file).c_str()), 0);
    const osg::ref_ptr<osg::Image> picture = osgDB::readRefImageFile(file);
    ASSERT_TRUE(picture);
    EXPECT_TRUE(matchesStored(*picture, "primitives/axis-example"));
#else
    GTEST_SKIP() << "the examples are not built";
#endif
}

class ForEachShape : public osg::NodeVisitor
{
public:
    explicit ForEachShape(std::function<void(osg::ShapeDrawable&)> action)
        : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN), m_action(std::move(action))
    {}
    void apply(osg::Drawable& drawable) override
    {
        if (auto* const shape = dynamic_cast<osg::ShapeDrawable*>(&drawable)) m_action(*shape);
    }

private:
    std::function<void(osg::ShapeDrawable&)> m_action;
};

struct Variant
{
    const char* name;
    std::function<void(osg::State&)> prepareState = [](osg::State&) {};
    std::function<void(osg::ShapeDrawable&)> prepareShape = [](osg::ShapeDrawable&) {};
};

std::ostream& operator<<(std::ostream& stream, const Variant& tested)
{
    return stream << tested.name;
}

class AxisPictureVariant : public testing::TestWithParam<Variant>
{};

TEST_P(AxisPictureVariant, LooksAsInAStockViewer)
{
    const osg::ref_ptr<osg::Switch> scene = triad();
    ForEachShape prepareShapes(GetParam().prepareShape);
    scene->accept(prepareShapes);
    PictureRig rig(kSize, kSize);
    GetParam().prepareState(stateOf(rig));
    rig.setScene(scene);
    rig.lookInPerspective(kRightAbove, osg::Vec3d(), osg::Y_AXIS);
    EXPECT_TRUE(alike(*rig.render(), *pictureOf(triad()), std::string("axis-") + GetParam().name));
}

INSTANTIATE_TEST_SUITE_P(Hosts, AxisPictureVariant,
                         testing::Values(Variant{"UniformsOnByTheHost",
                                                 [](osg::State& state) {
                                                     state.setUseModelViewAndProjectionUniforms(true);
                                                 }},
                                         Variant{"VertexAttributesAliased",
                                                 [](osg::State& state) {
                                                     state.setUseModelViewAndProjectionUniforms(true);
                                                     state.setUseVertexAttributeAliasing(true);
                                                 }},
                                         Variant{"DisplayLists", [](osg::State&) {},
                                                 [](osg::ShapeDrawable& shape) {
                                                     shape.setUseVertexBufferObjects(false);
                                                     shape.setUseDisplayList(true);
                                                 }},
                                         Variant{"ClientArrays", [](osg::State&) {},
                                                 [](osg::ShapeDrawable& shape) {
                                                     shape.setUseVertexBufferObjects(false);
                                                     shape.setUseDisplayList(false);
                                                 }},
                                         Variant{"PositionsInAttributeZeroOnly", [](osg::State&) {},
                                                 [](osg::ShapeDrawable& shape) { shape.setVertexArray(nullptr); }}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(AxisPicture, IsTheSameWithVertexArrayObjectsEverywhere)
{
    osg::DisplaySettings& settings = *osg::DisplaySettings::instance();
    settings.setVertexBufferHint(osg::DisplaySettings::VERTEX_ARRAY_OBJECT);
    const auto picture = pictureOf(triad());
    settings.setVertexBufferHint(osg::DisplaySettings::NO_PREFERENCE);
    EXPECT_TRUE(alike(*picture, *pictureOf(triad()), "axis-vertex-array-objects"));
}

TEST(AxisPicture, FollowsACameraMovedWhileTheUniformsWereOff)
{
    PictureRig rig(kSize, kSize);
    rig.setScene(triad());
    rig.lookInPerspective(osg::Vec3d(-300, 150, 200), osg::Vec3d(), osg::Y_AXIS);
    rig.render();
    stateOf(rig).setUseModelViewAndProjectionUniforms(false);
    rig.lookInPerspective(kRightAbove, osg::Vec3d(), osg::Y_AXIS);
    EXPECT_TRUE(alike(*rig.render(1), *pictureOf(triad()), "axis-moved-camera"));
}

TEST(AxisPicture, KeepsItsLettersWhereTextsAreDrawnWithoutShaders)
{
    const auto stock = pictureOf(triad());
    osgDB::Registry::instance()->clearObjectCache(); // the font, once read, keeps how it is drawn
    osg::DisplaySettings::instance()->setTextShaderTechnique("NO_TEXT_SHADER");
    const auto plain = pictureOf(triad());
    osg::DisplaySettings::instance()->setTextShaderTechnique("");
    osgDB::Registry::instance()->clearObjectCache();
    // The two ways of drawing text weigh the borders of letters differently; a filled square would
    // be some hundred pixels off.
    EXPECT_TRUE(alike(*plain, *stock, "axis-plain-letters", {60, 0.001}));
}

TEST(AxisPicture, IsTheSameInASecondContext)
{
    const osg::ref_ptr<osg::Switch> scene = triad();
    const auto first = pictureOf(scene);
    EXPECT_TRUE(alike(*pictureOf(scene), *first, "axis-second-context"));
}

TEST(AxisPicture, IsTheSameWithAThreadForEachContext)
{
    const osg::ref_ptr<osg::Switch> scene = triad();
    PictureRig rig(kSize, kSize);
    rig.setScene(scene);
    rig.lookInPerspective(kRightAbove, osg::Vec3d(), osg::Y_AXIS);
    rig.viewer().setThreadingModel(osgViewer::ViewerBase::DrawThreadPerContext);
    rig.render();
    rig.viewer().stopThreading(); // waits for the last frame
    EXPECT_TRUE(alike(*rig.render(0), *pictureOf(triad()), "axis-draw-thread"));
}

constexpr char kHostVertexShader[] = "varying vec3 normal;\n"
                                     "void main()\n"
                                     "{\n"
                                     "    normal = gl_NormalMatrix * gl_Normal;\n"
                                     "    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;\n"
                                     "}\n";
constexpr char kHostFragmentShader[] = "varying vec3 normal;\n"
                                       "void main() { gl_FragColor = vec4(normalize(normal) * 0.5 + 0.5, 1.0); }\n";

osg::ref_ptr<osg::Node> sphereAt(float y)
{
    osg::ref_ptr<osg::MatrixTransform> transform = new osg::MatrixTransform(osg::Matrix::translate(-90.0, y, 0.0));
    transform->addChild(grey(new osg::Sphere(osg::Vec3(), 15.0f)));
    return transform;
}

/// A sphere coloured by its normals, with a program that knows nothing of OpenSceneGraph's uniforms.
osg::ref_ptr<osg::Node> sphereWithProgramAt(float y)
{
    osg::ref_ptr<osg::Node> sphere = sphereAt(y);
    const osg::ref_ptr<osg::Program> program = new osg::Program;
    program->addShader(new osg::Shader(osg::Shader::VERTEX, kHostVertexShader));
    program->addShader(new osg::Shader(osg::Shader::FRAGMENT, kHostFragmentShader));
    sphere->getOrCreateStateSet()->setAttributeAndModes(program);
    return sphere;
}

/// The left quarter of a picture, where the spheres are.
osg::ref_ptr<osg::Image> leftPart(const osg::Image& picture)
{
    constexpr int kWidth = kSize / 4;
    osg::ref_ptr<osg::Image> part = new osg::Image;
    part->allocateImage(kWidth, kSize, 1, GL_RGB, GL_UNSIGNED_BYTE);
    for (int y = 0; y < kSize; ++y) std::memcpy(part->data(0, unsigned(y)), picture.data(0, unsigned(y)), 3 * kWidth);
    return part;
}

osg::ref_ptr<osg::Group> hostObjectsAround(osg::Node* middle)
{
    return groupOf({sphereWithProgramAt(90), sphereAt(50), middle, sphereAt(10), sphereWithProgramAt(-30)});
}

TEST(AxisPicture, LeavesHostObjectsBesideItAsTheyAre)
{
    PictureRig with(kSize, kSize);
    with.setScene(hostObjectsAround(triad()));
    const auto picture = with.render(3);
    EXPECT_TRUE(matchesStored(*picture, "primitives/axis-beside-host-objects"));

    PictureRig without(kSize, kSize);
    without.setScene(hostObjectsAround(new osg::Group));
    EXPECT_TRUE(alike(*leftPart(*picture), *leftPart(*without.render(3)), "axis-host-objects"));
}

TEST(AxisPicture, LeavesAHostProgramFirstUsedAfterItAsItIs)
{
    PictureRig with(kSize, kSize);
    const osg::ref_ptr<osg::Group> scene = groupOf({triad()});
    with.setScene(scene);
    with.render();
    scene->addChild(sphereWithProgramAt(0));

    PictureRig without(kSize, kSize);
    without.setScene(groupOf({sphereWithProgramAt(0)}));
    EXPECT_TRUE(alike(*leftPart(*with.render()), *leftPart(*without.render()), "axis-late-host-program"));
}

TEST(AxisPicture, SwitchesNothingButTheUniformsOn)
{
    PictureRig rig(kSize, kSize);
    rig.setScene(triad());
    rig.render();
    EXPECT_TRUE(stateOf(rig).getUseModelViewAndProjectionUniforms());
    EXPECT_FALSE(stateOf(rig).getUseVertexAttributeAliasing());
}

TEST(AxisPicture, LeavesAContextWithoutATriadAlone)
{
    PictureRig other(kSize, kSize);
    other.setScene(sphereAt(0));
    other.render();
    pictureOf(triad());
    EXPECT_FALSE(stateOf(other).getUseModelViewAndProjectionUniforms());
}

/// Keeps what OpenSceneGraph warns of while it lives.
class Warnings
{
public:
    Warnings() : m_handler(new Handler), m_former(osg::getNotifyHandler()) { osg::setNotifyHandler(m_handler); }
    ~Warnings() { osg::setNotifyHandler(m_former); }
    const std::string& text() const { return m_handler->text; }

private:
    struct Handler : osg::NotifyHandler
    {
        void notify(osg::NotifySeverity severity, const char* message) override
        {
            if (severity <= osg::NOTICE) text += message;
        }
        std::string text;
    };
    osg::ref_ptr<Handler> m_handler;
    osg::ref_ptr<osg::NotifyHandler> m_former;
};

TEST(AxisProgram, LinksWithoutAWarning)
{
    PictureRig rig(kSize, kSize);
    rig.render(); // what a virtual display has to say of its pixel buffers is said by then
    osg::GraphicsContext& context = *rig.camera().getGraphicsContext();
    ASSERT_TRUE(context.makeCurrent());
    osg::State& state = *context.getState();
    const osg::ref_ptr<osg::Switch> scene = triad();
    const osg::StateSet& firstPass = *scene->getChild(0)->asGroup()->getChild(0)->getStateSet();
    const auto& program = dynamic_cast<const osg::Program&>(*firstPass.getAttribute(osg::StateAttribute::PROGRAM));

    const Warnings warnings;
    program.compileGLObjects(state);
    EXPECT_TRUE(program.getPCP(state)->isLinked());
    std::string log;
    program.getGlProgramInfoLog(state.getContextID(), log);
    EXPECT_EQ(log, "");
    EXPECT_EQ(warnings.text(), "");
    context.releaseContext();
}

} // namespace
