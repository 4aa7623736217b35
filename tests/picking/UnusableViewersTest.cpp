#include <KelvOsgTools/FeatureFunctions.h>

#include "picking/FeatureScene.h"
#include "picking/PickingViewers.h"
#include "support/NodeBuilders.h"
#include "support/ViewerBuilders.h"

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/Notify>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

using namespace KelvOsgTools;
using namespace kelvtest;

namespace {

const osg::Vec3f kUntouched(7.0f, 8.0f, 9.0f);

osg::ref_ptr<osg::Node> usualScene()
{
    FeatureScene scene(50.0f);
    scene.addDot("dot", osg::Vec3f(0, 0, 10));
    scene.addLine("line", osg::Vec3f(-40, 0, 10), osg::Vec3f(40, 0, 10));
    return scene.root;
}

osg::ref_ptr<osgViewer::Viewer> usualViewer()
{
    return pixelViewer(usualScene(), 200, 200);
}

/// Picks with every function and expects that none finds or writes anything.
void expectNothing(osgViewer::Viewer* viewer, float x = 100.0f, float y = 101.0f)
{
    const QList<QVariant> listed = listOf({"dot", "line"});
    osg::Vec3f point = kUntouched;
    CAutoScaleSphereMeta* dot = nullptr;
    CFeatureMetaObject* feature = nullptr;
    featureType kind = featureFlagDot;
    std::vector<osg::Vec3f> points;
    EXPECT_FALSE(getClickedPoint(viewer, x, y, QString(), point));
    EXPECT_FALSE(getClickedPointToMeshData(viewer, x, y, point, "meshData"));
    EXPECT_FALSE(getClickedPointToMeshDataAndDotFeature(viewer, listed, x, y, point, dot, "meshData"));
    EXPECT_FALSE(getIntersectionToFeatureBranch(viewer, listed, x, y, featureAll, point, feature, kind, points));
    EXPECT_EQ(point, kUntouched);
    EXPECT_EQ(dot, nullptr);
    EXPECT_EQ(feature, nullptr);
    EXPECT_EQ(kind, featureFlagDot);
    EXPECT_TRUE(points.empty());
}

/// Keeps what OpenSceneGraph prints.
class NoticeKeeper : public osg::NotifyHandler
{
public:
    void notify(osg::NotifySeverity severity, const char* message) override
    {
        if (severity <= osg::WARN) kept += message;
    }
    std::string kept;
};

} // namespace

TEST(PickWithoutAViewer, FindsNothing)
{
    expectNothing(nullptr);
}

TEST(PickWithoutSceneData, FindsNothing)
{
    expectNothing(pixelViewer(nullptr, 200, 200));
}

TEST(PickInAnEmptyScene, FindsNothing)
{
    expectNothing(pixelViewer(new osg::Group, 200, 200));
}

TEST(PickInASceneThatIsNoGroup, FindsOnlyThePointUnderTheCursor)
{
    const osg::ref_ptr<osg::Node> drawable = squareMesh(50.0f)->asGroup()->getChild(0);
    drawable->setName("meshData");
    const auto viewer = pixelViewer(drawable, 200, 200);
    osg::Vec3f point = kUntouched;
    CAutoScaleSphereMeta* dot = nullptr;
    EXPECT_TRUE(getClickedPoint(viewer, 100, 101, QString(), point));
    point = kUntouched;
    EXPECT_FALSE(getClickedPointToMeshData(viewer, 100, 101, point, "meshData"));
    EXPECT_FALSE(getClickedPointToMeshDataAndDotFeature(viewer, {}, 100, 101, point, dot, "meshData"));
    EXPECT_EQ(point, kUntouched);
}

TEST(PickWithoutAWindow, FindsNothingByRaysOrLabels)
{
    const osg::ref_ptr<osgViewer::Viewer> viewer = new osgViewer::Viewer;
    viewer->setSceneData(usualScene());
    expectNothing(viewer);
}

TEST(PickWithAContextWithoutTraits, FindsNothing)
{
    /// A context that never says how large it is.
    class BareContext : public osgViewer::GraphicsWindow
    {};
    const auto viewer = usualViewer();
    const osg::ref_ptr<BareContext> context = new BareContext;
    viewer->getCamera()->setGraphicsContext(context);
    viewer->getEventQueue()->getCurrentEventState()->setGraphicsContext(context);
    osg::Vec3f point = kUntouched;
    EXPECT_FALSE(getClickedPoint(viewer, 100, 101, QString(), point));
    EXPECT_FALSE(getClickedPointToMeshData(viewer, 100, 101, point, "meshData"));
}

TEST(PickByAnEventStateOfNoWindow, FindsNothingByRays)
{
    const auto viewer = usualViewer();
    viewer->getEventQueue()->getCurrentEventState()->setGraphicsContext(nullptr);
    osg::Vec3f point = kUntouched;
    EXPECT_FALSE(getClickedPoint(viewer, 100, 101, QString(), point));
    EXPECT_FALSE(getClickedPointToMeshData(viewer, 100, 101, point, "meshData"));
    EXPECT_EQ(point, kUntouched);
}

TEST(PickWithoutAnEventQueue, FindsNothingByRays)
{
    const auto viewer = usualViewer();
    viewer->setEventQueue(nullptr);
    osg::Vec3f point = kUntouched;
    EXPECT_FALSE(getClickedPoint(viewer, 100, 101, QString(), point));
}

TEST(PickWithoutAViewport, FindsNothing)
{
    const auto viewer = usualViewer();
    viewer->getCamera()->setViewport(nullptr);
    expectNothing(viewer);
    expectNothing(viewer, 0.0f, 0.0f);
}

TEST(PickInAnEmptyViewport, FindsNothing)
{
    const auto viewer = usualViewer();
    viewer->getCamera()->setViewport(100, 100, 0, 0);
    expectNothing(viewer, 100.0f, 100.0f);
    expectNothing(viewer, 100.0f, 115.0f);
}

TEST(PickWithAnEmptyInputRange, FindsNothingByRays)
{
    const auto viewer = usualViewer();
    viewer->getEventQueue()->getCurrentEventState()->setInputRange(0, 0, 0, 0);
    osg::Vec3f point = kUntouched;
    EXPECT_FALSE(getClickedPoint(viewer, 100, 101, QString(), point));
}

TEST(PickWithACollapsedProjection, FindsNothingAndDoesNotCrash)
{
    const auto viewer = usualViewer();
    viewer->getCamera()->setProjectionMatrix(osg::Matrixd::scale(0, 0, 0));
    osg::Vec3f point = kUntouched;
    EXPECT_FALSE(getClickedPointToMeshData(viewer, 100, 101, point, "meshData"));
}

class NoNumber : public testing::TestWithParam<float>
{};
INSTANTIATE_TEST_SUITE_P(Pick, NoNumber,
                         testing::Values(std::numeric_limits<float>::quiet_NaN(),
                                         std::numeric_limits<float>::infinity(),
                                         -std::numeric_limits<float>::infinity()));

TEST_P(NoNumber, AsAPositionFindsNothing)
{
    FeatureScene scene(50.0f);
    scene.addLine("line", osg::Vec3f(-40, 0, 10), osg::Vec3f(40, 0, 10));
    const osg::ref_ptr<CFeatureMetaObject> cloud = new CFeatureMetaObject; // points, which no plane keeps out
    cloud->setUserValue("feature_type", 2);
    const osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
    geometry->setVertexArray(new osg::Vec3Array(3));
    geometry->addPrimitiveSet(new osg::DrawArrays(GL_POINTS, 0, 3));
    cloud->addChild(geometry);
    scene.root->addChild(cloud);
    const auto viewer = pixelViewer(scene.root, 200, 200);
    expectNothing(viewer, GetParam(), 101.0f);
    expectNothing(viewer, 100.0f, GetParam());
}

TEST(PickInASceneThatWasNeverDrawn, FindsTheMeshAndTheLine)
{
    const auto viewer = usualViewer();
    osg::Vec3f point;
    ASSERT_TRUE(getClickedPointToMeshData(viewer, 120, 80, point, "meshData"));
    EXPECT_NEAR((point - osg::Vec3f(20, -20, 0)).length(), 0.0f, 1e-4f);
    CFeatureMetaObject* feature = nullptr;
    featureType kind = featureAll;
    std::vector<osg::Vec3f> points;
    EXPECT_TRUE(getIntersectionToFeatureBranch(viewer, {}, 130, 101, featureLine, point, feature, kind, points));
}

TEST(Pick, PrintsNoWarningOfOpenSceneGraph)
{
    const auto viewer = usualViewer();
    cullOnce(*viewer);
    const osg::ref_ptr<NoticeKeeper> keeper = new NoticeKeeper;
    const osg::ref_ptr<osg::NotifyHandler> former = osg::getNotifyHandler();
    osg::setNotifyHandler(keeper);
    for (float y = 95.0f; y < 140.0f; y += 1.0f) {
        osg::Vec3f point;
        CAutoScaleSphereMeta* dot = nullptr;
        CFeatureMetaObject* feature = nullptr;
        featureType kind = featureAll;
        std::vector<osg::Vec3f> points;
        getClickedPoint(viewer, 100, y, QString(), point);
        getClickedPointToMeshData(viewer, 100, y, point, "meshData");
        getClickedPointToMeshDataAndDotFeature(viewer, {}, 100, y, point, dot, "meshData");
        getIntersectionToFeatureBranch(viewer, {}, 100, y, featureAll, point, feature, kind, points);
    }
    osg::setNotifyHandler(former);
    EXPECT_EQ(keeper->kept, "");
}

namespace {

/// Adds a feature of the kind whose points hold a coordinate, to a scene with a mesh.
void addLineTo(FeatureScene& scene, float coordinate)
{
    scene.addLine("odd", osg::Vec3f(coordinate, 0, 10), osg::Vec3f(20, 0, 10));
    scene.addLine("solid", osg::Vec3f(0, coordinate, 10), osg::Vec3f(20, 0, 10), false);
}

void addPlaneTo(FeatureScene& scene, float coordinate)
{
    scene.addPlane("odd", osg::Vec3f(0, coordinate, 10), 5.0f);
}

void addDotTo(FeatureScene& scene, float coordinate)
{
    scene.addDot("odd", osg::Vec3f(0, 0, coordinate));
}

using AddFeature = void (*)(FeatureScene&, float);

} // namespace

class MeshBesideFeature : public testing::TestWithParam<std::tuple<AddFeature, float>>
{};
INSTANTIATE_TEST_SUITE_P(Pick, MeshBesideFeature,
                         testing::Combine(testing::Values(&addLineTo, &addPlaneTo, &addDotTo),
                                          testing::Values(std::numeric_limits<float>::quiet_NaN(),
                                                          std::numeric_limits<float>::infinity(),
                                                          -std::numeric_limits<float>::infinity(), 3e38f)));

TEST_P(MeshBesideFeature, IsStillPicked)
{
    FeatureScene scene(50.0f);
    std::get<0>(GetParam())(scene, std::get<1>(GetParam()));
    const auto viewer = pixelViewer(scene.root, 200, 200);
    cullOnce(*viewer);
    osg::Vec3f point;
    CAutoScaleSphereMeta* dot = nullptr;
    EXPECT_TRUE(getClickedPoint(viewer, 110, 70, "meshData", point));
    EXPECT_TRUE(getClickedPointToMeshData(viewer, 110, 70, point, "meshData"));
    EXPECT_TRUE(getClickedPointToMeshDataAndDotFeature(viewer, listOf({"odd"}), 110, 70, point, dot, "meshData"));
    EXPECT_NEAR((point - osg::Vec3f(10, -30, 0)).length(), 0.0f, 1e-4f);
}

TEST(Pick, FindsTheMeshBesideALineWithoutLengthAndAPlaneWithoutPoints)
{
    FeatureScene scene(50.0f);
    scene.addLine("line", osg::Vec3f(10, -30, 0), osg::Vec3f(10, -30, 0));
    scene.addLine("solid", osg::Vec3f(10, -30, 0), osg::Vec3f(10, -30, 0), false);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    createPlaneAndTable(featureStateNormal, "plane", scene.root, {}, osg::Vec3f(nan, 0, 0), 1, "A", 1);
    const auto viewer = pixelViewer(scene.root, 200, 200);
    cullOnce(*viewer);
    osg::Vec3f point;
    ASSERT_TRUE(getClickedPointToMeshData(viewer, 110, 70, point, "meshData"));
    EXPECT_NEAR((point - osg::Vec3f(10, -30, 0)).length(), 0.0f, 1e-4f);
}
