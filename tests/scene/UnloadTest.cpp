#include "scene/OpenedPlugin.h"

#include <osg/Group>
#include <osgViewer/Viewer>

#include <gtest/gtest.h>

#include <QFontMetrics>
#include <QGuiApplication>

#include <malloc.h>

// The library comes into this program, and goes again, with the plug-ins of a host that are linked to it.
// The program itself uses Qt and OpenSceneGraph, which stay.
namespace {
using namespace kelvtest;

constexpr int kRounds = 100;
const char* const kPlugin = KELVOSGTOOLS_TEST_PLUGIN;
const char* const kOtherPlugin = KELVOSGTOOLS_OTHER_TEST_PLUGIN;

void openUseAndClose(const char* path)
{
    {
        const OpenedPlugin plugin(path);
        ASSERT_TRUE(plugin);
        ASSERT_TRUE(isInMemory("libKelvOsgTools.so"));
        ASSERT_EQ(plugin.use(), 0);
    }
    ASSERT_FALSE(isInMemory("libKelvOsgTools.so"));
}

void openManyTimes(const char* path)
{
    for (int i = 0; i < kRounds && !::testing::Test::HasFatalFailure(); ++i) openUseAndClose(path);
}

/// An application of Qt, as long as a test needs one.
class Application
{
public:
    Application() : m_application(m_count, m_arguments) {}

private:
    int m_count = 1;
    char m_name[8] = "program";
    char* m_arguments[2] = {m_name, nullptr};
    QGuiApplication m_application;
};

/// A viewer of the host, drawing in a context of its own.
osg::ref_ptr<osgViewer::Viewer> drawingViewer(osg::Node* scene)
{
    const osg::ref_ptr<osg::GraphicsContext::Traits> traits = new osg::GraphicsContext::Traits;
    traits->width = traits->height = 64;
    traits->alpha = 0;
    traits->pbuffer = true;
    traits->readDISPLAY();
    const osg::ref_ptr<osg::GraphicsContext> context = osg::GraphicsContext::createGraphicsContext(traits);
    if (!context) return nullptr;

    osg::ref_ptr<osgViewer::Viewer> viewer = new osgViewer::Viewer;
    viewer->setThreadingModel(osgViewer::ViewerBase::SingleThreaded);
    viewer->getCamera()->setGraphicsContext(context);
    viewer->getCamera()->setViewport(0, 0, 64, 64);
    viewer->getCamera()->setProjectionMatrixAsPerspective(30, 1, 1, 1000);
    viewer->getCamera()->setViewMatrixAsLookAt(osg::Vec3d(0, 0, 50), osg::Vec3d(), osg::Y_AXIS);
    viewer->setSceneData(scene);
    viewer->realize();
    return viewer;
}

void drawFrames(osgViewer::Viewer& viewer)
{
    for (int i = 0; i < 2; ++i) viewer.frame();
}

TEST(Unloading, WorksTimeAndAgainBeforeQtIsUsed)
{
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    openManyTimes(kPlugin);
}

TEST(Unloading, WorksTimeAndAgainWhileQtIsUsed)
{
    const Application application;
    openManyTimes(kPlugin);
    EXPECT_GT(QFontMetrics(QFont()).horizontalAdvance("text"), 0);
    QCoreApplication::processEvents();
}

TEST(Unloading, WorksTimeAndAgainWhileGlIsUsed)
{
    const Application application;
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osgViewer::Viewer> viewer = drawingViewer(scene);
    ASSERT_TRUE(viewer) << "no OpenGL context: this test needs a display, a virtual one will do";
    drawFrames(*viewer);
    for (int i = 0; i < kRounds; ++i) {
        {
            const OpenedPlugin plugin(kPlugin);
            ASSERT_TRUE(plugin);
            plugin.show(scene);
            drawFrames(*viewer);
            plugin.hide(scene);
            drawFrames(*viewer); // a viewer holds what it drew last
        }
        ASSERT_FALSE(isInMemory("libKelvOsgTools.so"));
        drawFrames(*viewer);
    }
}

TEST(Unloading, LeavesNothingOnTheHeap)
{
    const Application application;
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const auto openShowAndClose = [&](int times) {
        for (int i = 0; i < times; ++i) {
            const OpenedPlugin plugin(kPlugin);
            plugin.show(scene);
            plugin.hide(scene);
        }
    };
    openShowAndClose(20); // what Qt and OpenSceneGraph load once, and what the allocator keeps for itself
    const std::size_t before = mallinfo2().uordblks;
    openShowAndClose(20);
    const std::size_t after = mallinfo2().uordblks;
    constexpr std::size_t kBytesPerRound = 256; // still the allocator's; one label alone takes more
    EXPECT_LT(after, before + 20 * kBytesPerRound);
}

TEST(TwoPlugins, ShareOneLibraryAndItsConfiguration)
{
    const OpenedPlugin one(kPlugin);
    const OpenedPlugin other(kOtherPlugin);
    ASSERT_TRUE(one && other);
    one.setFontSize(23);
    EXPECT_EQ(other.fontSize(), 23);
    EXPECT_EQ(one.use(), 0);
    EXPECT_EQ(other.use(), 0);
}

TEST(TwoPlugins, KeepFeaturesOfTheirOwn)
{
    const OpenedPlugin one(kPlugin);
    const OpenedPlugin other(kOtherPlugin);
    ASSERT_TRUE(one && other);
    one.keep(5);
    other.keep(7);
    EXPECT_EQ(one.countKept(), 5);
    EXPECT_EQ(other.countKept(), 7);
    one.keep(0);
    EXPECT_EQ(other.countKept(), 7);
}

TEST(TwoPlugins, MayGoOneAfterTheOther)
{
    const Application application;
    for (int i = 0; i < 10; ++i) {
        {
            const OpenedPlugin staying(kOtherPlugin);
            ASSERT_TRUE(staying);
            {
                const OpenedPlugin going(kPlugin);
                ASSERT_TRUE(going);
                staying.keep(3);
                going.keep(4); // and goes with them
                ASSERT_EQ(going.use(), 0);
            }
            ASSERT_TRUE(isInMemory("libKelvOsgTools.so"));
            ASSERT_EQ(staying.use(), 0);
            ASSERT_EQ(staying.countKept(), 3);
        }
        ASSERT_FALSE(isInMemory("libKelvOsgTools.so"));
    }
}

TEST(Configuration, IsTheDefaultOneAgainOnceTheLibraryIsOpenedAnew)
{
    {
        const OpenedPlugin plugin(kPlugin);
        ASSERT_TRUE(plugin);
        plugin.setFontSize(23);
    }
    const OpenedPlugin plugin(kPlugin);
    ASSERT_TRUE(plugin);
    EXPECT_EQ(plugin.fontSize(), 14);
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
