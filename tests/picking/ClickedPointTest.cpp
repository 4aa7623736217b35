#include <KelvOsgTools/FeatureFunctions.h>

#include "picking/FeatureScene.h"
#include "picking/PickingViewers.h"
#include "picking/RandomScene.h"
#include "support/NodeBuilders.h"
#include "support/ViewerBuilders.h"

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/ValueObject>

#include <gtest/gtest.h>

#include <functional>

using namespace KelvOsgTools;
using namespace kelvtest;

namespace {

const osg::Vec3f kUntouched(7.0f, 8.0f, 9.0f);
constexpr float kTolerance = 1e-4f;
constexpr float kBelowText = 111.0f; // on a label of the middle of the window, but on none of its letters

void expectNear(const osg::Vec3f& actual, const osg::Vec3f& expected, float tolerance = kTolerance)
{
    EXPECT_LE((actual - expected).length(), tolerance)
        << actual.x() << ", " << actual.y() << ", " << actual.z() << " instead of " << expected.x() << ", "
        << expected.y() << ", " << expected.z();
}

/// A matrix that rotates, scales and moves: (x, y, z) goes to (10 - 2y, 2x, 2z).
osg::Matrixd turnedDoubledMoved()
{
    return osg::Matrixd::scale(2, 2, 2) * osg::Matrixd::rotate(osg::PI_2, osg::Z_AXIS) *
           osg::Matrixd::translate(10, 0, 0);
}

bool hits(osgViewer::Viewer& viewer, float x, float y)
{
    osg::Vec3f point;
    return getClickedPoint(&viewer, x, y, QString(), point);
}

struct DotPick
{
    bool isHit = false;
    osg::Vec3f point = kUntouched;
    CAutoScaleSphereMeta* dot = nullptr;
};

DotPick pickDot(osgViewer::Viewer& viewer, const QStringList& listed, float x, float y,
                const QString& meshName = "meshData")
{
    DotPick pick;
    pick.isHit = getClickedPointToMeshDataAndDotFeature(&viewer, listOf(listed), x, y, pick.point, pick.dot, meshName);
    return pick;
}

} // namespace

TEST(ClickedPoint, LiesInTheCoordinatesOfTheDrawable)
{
    const auto viewer = pixelViewer(FeatureScene(20.0f, turnedDoubledMoved()).root, 200, 200);
    osg::Vec3f point;
    ASSERT_TRUE(getClickedPoint(viewer, 130, 104, QString(), point));
    expectNear(point, osg::Vec3f(2, -10, 0)); // at (30, 4) of the world
}

TEST(ClickedPoint, IsHitUpToTheEdgesOfTheMeshSeenInParallel)
{
    const auto viewer = pixelViewer(FeatureScene(50.0f).root, 200, 200);
    for (const float sign : {-1.0f, 1.0f}) {
        EXPECT_TRUE(hits(*viewer, 100 + sign * 49.5f, 100));
        EXPECT_FALSE(hits(*viewer, 100 + sign * 50.5f, 100));
        EXPECT_TRUE(hits(*viewer, 100, 100 + sign * 49.5f));
        EXPECT_FALSE(hits(*viewer, 100, 100 + sign * 50.5f));
    }
}

TEST(ClickedPoint, IsHitUpToTheEdgesOfTheMeshSeenInPerspective)
{
    const auto halfSide = static_cast<float>(std::tan(osg::DegreesToRadians(15.0)) * 100.0 / 2.0); // 50 pixels
    const auto viewer = perspectiveViewer(FeatureScene(halfSide).root, 200, 200, 100.0);
    for (const float sign : {-1.0f, 1.0f}) {
        EXPECT_TRUE(hits(*viewer, 100 + sign * 49.5f, 100));
        EXPECT_FALSE(hits(*viewer, 100 + sign * 50.5f, 100));
        EXPECT_TRUE(hits(*viewer, 100, 100 + sign * 49.5f));
        EXPECT_FALSE(hits(*viewer, 100, 100 + sign * 50.5f));
    }
}

TEST(ClickedPoint, IsTheNearestHitWithoutAName)
{
    FeatureScene scene;
    scene.addDot("dot", osg::Vec3f(0, 0, 10));
    const auto viewer = pixelViewer(scene.root, 200, 200);
    cullOnce(*viewer);
    osg::Vec3f point;
    ASSERT_TRUE(getClickedPoint(viewer, 101, 101, QString(), point));
    expectNear(point, osg::Vec3f(1, 1, 2.65f), 0.1f); // on the sphere of radius 3, around its own origin
}

TEST(ClickedPoint, IsTheNearestHitOnANodeOfTheName)
{
    FeatureScene scene;
    scene.addDot("dot", osg::Vec3f(0, 0, 10));
    const auto viewer = pixelViewer(scene.root, 200, 200);
    cullOnce(*viewer);
    osg::Vec3f point;
    ASSERT_TRUE(getClickedPoint(viewer, 101, 102, "meshData", point));
    expectNear(point, osg::Vec3f(1, 2, 0));
}

class UnmatchedName : public testing::TestWithParam<const char*>
{};
INSTANTIATE_TEST_SUITE_P(ClickedPoint, UnmatchedName,
                         testing::Values("MeshData", "mesh", "meshData ", "featureData", "drawableInGeode"));

TEST_P(UnmatchedName, LeavesThePointUntouched)
{
    FeatureScene scene;
    scene.meshData->getChild(0)->asGroup()->getChild(0)->asGroup()->getChild(0)->setName("drawableInGeode");
    const auto viewer = pixelViewer(scene.root, 200, 200);
    osg::Vec3f point = kUntouched;
    EXPECT_FALSE(getClickedPoint(viewer, 100, 100, GetParam(), point));
    EXPECT_EQ(point, kUntouched);
}

TEST(ClickedPoint, MayBeNamedByADrawableWithoutAGeode)
{
    const osg::ref_ptr<osg::Group> geode = squareMesh(50.0f)->asGroup();
    const osg::ref_ptr<osg::Node> drawable = geode->getChild(0);
    drawable->setName("Fl\xc3\xa4"
                      "che");
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    scene->addChild(drawable);
    const auto viewer = pixelViewer(scene, 200, 200);
    osg::Vec3f point;
    EXPECT_TRUE(getClickedPoint(viewer, 100, 100, QString::fromUtf8("Fläche"), point));
}

TEST(ClickedPoint, StaysUntouchedOnEmptyBackground)
{
    const auto viewer = pixelViewer(FeatureScene(50.0f).root, 200, 200);
    osg::Vec3f point = kUntouched;
    EXPECT_FALSE(getClickedPoint(viewer, 10, 10, QString(), point));
    EXPECT_EQ(point, kUntouched);
}

TEST(ClickedPoint, FollowsAWindowWhoseYGrowsDownwards)
{
    const auto viewer = pixelViewer(FeatureScene(50.0f).root, 200, 200);
    viewer->getEventQueue()->getCurrentEventState()->setMouseYOrientation(
        osgGA::GUIEventAdapter::Y_INCREASING_DOWNWARDS);
    osg::Vec3f point;
    ASSERT_TRUE(getClickedPoint(viewer, 110, 80, QString(), point));
    expectNear(point, osg::Vec3f(10, 20, 0));
}

TEST(ClickedPoint, IsFoundInTheViewportOfASlaveCamera)
{
    const auto viewer = pixelViewer(FeatureScene(50.0f).root, 200, 200);
    moveToSlave(*viewer, 50, 50, 100, 100); // half as large, around the same middle
    osg::Vec3f point;
    ASSERT_TRUE(getClickedPoint(viewer, 120, 90, QString(), point));
    expectNear(point, osg::Vec3f(20, -10, 0)); // the event state still speaks of the whole window
}

TEST(ClickedPoint, IsNotHitWhereAParentIsSwitchedOff)
{
    FeatureScene scene;
    scene.meshData->setNodeMask(0);
    scene.addDot("dot", osg::Vec3f(0, 0, 10));
    const auto viewer = pixelViewer(scene.root, 200, 200);
    cullOnce(*viewer);
    EXPECT_TRUE(hits(*viewer, 100, 100));
    switchFeatureRoot(scene.root, false, featureAll);
    EXPECT_FALSE(hits(*viewer, 100, 100));
}

TEST(ClickedMeshPoint, LiesInTheCoordinatesOfTheMesh)
{
    const auto viewer = pixelViewer(FeatureScene(20.0f, turnedDoubledMoved()).root, 200, 200);
    osg::Vec3f point;
    ASSERT_TRUE(getClickedPointToMeshData(viewer, 130, 104, point, "meshData"));
    expectNear(point, osg::Vec3f(2, -10, 0));
}

TEST(ClickedMeshPoint, LiesBehindWhatStandsBeforeTheMesh)
{
    FeatureScene scene;
    scene.addPlane("plane", osg::Vec3f(0, 0, 30), 20.0f);
    const auto viewer = pixelViewer(scene.root, 200, 200);
    osg::Vec3f point;
    ASSERT_TRUE(getClickedPointToMeshData(viewer, 105, 103, point, "meshData"));
    expectNear(point, osg::Vec3f(5, 3, 0));
}

TEST(ClickedMeshPoint, IsTheNearestWorldPointBesideTheMeshAndYetNoHit)
{
    FeatureScene scene(20.0f, osg::Matrixd::translate(0, 0, 5));
    scene.addPlane("plane", osg::Vec3f(60, 0, 30), 10.0f);
    const auto viewer = pixelViewer(scene.root, 200, 200);
    osg::Vec3f point;
    EXPECT_FALSE(getClickedPointToMeshData(viewer, 161, 102, point, "meshData"));
    expectNear(point, osg::Vec3f(61, 2, 35));
}

TEST(ClickedMeshPoint, StaysUntouchedOnEmptyBackground)
{
    const auto viewer = pixelViewer(FeatureScene(20.0f).root, 200, 200);
    osg::Vec3f point = kUntouched;
    EXPECT_FALSE(getClickedPointToMeshData(viewer, 161, 102, point, "meshData"));
    EXPECT_EQ(point, kUntouched);
}

TEST(ClickedMeshPoint, IsTheNearestWorldPointForAWrongName)
{
    const auto viewer = pixelViewer(FeatureScene(20.0f, turnedDoubledMoved()).root, 200, 200);
    osg::Vec3f point;
    EXPECT_FALSE(getClickedPointToMeshData(viewer, 130, 104, point, "meshdata"));
    expectNear(point, osg::Vec3f(30, 4, 0));
}

TEST(ClickedMeshPoint, NeedsTheMeshDirectlyBelowTheScene)
{
    FeatureScene scene;
    scene.meshData->getChild(0)->setName("transform");
    const auto viewer = pixelViewer(scene.root, 200, 200);
    osg::Vec3f point;
    EXPECT_FALSE(getClickedPointToMeshData(viewer, 105, 103, point, "transform"));
    expectNear(point, osg::Vec3f(5, 3, 0));
}

TEST(ClickedMeshPoint, IsNotHitInASceneThatIsMaskedOut)
{
    FeatureScene scene;
    const auto viewer = pixelViewer(scene.root, 200, 200);
    scene.root->setNodeMask(0);
    osg::Vec3f point = kUntouched;
    EXPECT_FALSE(getClickedPointToMeshData(viewer, 105, 103, point, "meshData"));
    EXPECT_EQ(point, kUntouched);
}

TEST(ClickedMeshPoint, NeedsAMeshThatIsAGroup)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    scene->addChild(squareMesh(50.0f)->asGroup()->getChild(0));
    scene->getChild(0)->setName("meshData");
    const auto viewer = pixelViewer(scene, 200, 200);
    osg::Vec3f point;
    EXPECT_FALSE(getClickedPointToMeshData(viewer, 105, 103, point, "meshData"));
    expectNear(point, osg::Vec3f(5, 3, 0));
}

namespace {

/// The rule step by step, with OpenSceneGraph's own picks.
bool meshPointStepByStep(osgViewer::Viewer& viewer, float x, float y, osg::Vec3f& point)
{
    osgUtil::LineSegmentIntersector::Intersections hits;
    if (!viewer.computeIntersections(x, y, hits)) return false;
    point = hits.begin()->getWorldIntersectPoint();
    const osg::ref_ptr<osg::Node> mesh = findChildByName("meshData", viewer.getSceneData()->asGroup());

    const osg::Camera& camera = *viewer.getCamera();
    const osg::Matrixd toWorld = osg::Matrixd::inverse(camera.getViewMatrix() * camera.getProjectionMatrix() *
                                                       camera.getViewport()->computeWindowMatrix());
    const osg::ref_ptr<osgUtil::LineSegmentIntersector> ray =
        new osgUtil::LineSegmentIntersector(osg::Vec3d(x, y, 0) * toWorld, osg::Vec3d(x, y, 1) * toWorld);
    osgUtil::IntersectionVisitor visitor(ray);
    mesh->accept(visitor);
    if (ray->containsIntersections()) point = ray->getFirstIntersection().getLocalIntersectPoint();
    return ray->containsIntersections();
}

/// A random scene with another one for its mesh.
osg::ref_ptr<osg::Group> randomSceneWithMesh(Random& random)
{
    const osg::ref_ptr<osg::Group> mesh = randomScene(random);
    mesh->setName("meshData");
    osg::ref_ptr<osg::Group> scene = randomScene(random);
    if (oneIn(random, 6)) // a scene of its own coordinates
    {
        const osg::ref_ptr<osg::Group> moved = new osg::MatrixTransform(osg::Matrixd::translate(20, 0, 0));
        moved->addChild(scene);
        scene = moved;
    }
    scene->addChild(mesh);
    return scene;
}

} // namespace

TEST(ClickedMeshPoint, IsThatOfTheStepByStepRuleInRandomScenes)
{
    int found = 0;
    for (unsigned int seed = 0; seed < 500 && !HasFailure(); ++seed) {
        Random random(seed);
        const auto viewer = randomViewer(random, randomSceneWithMesh(random));
        for (int i = 0; i < 10; ++i) {
            const auto x = static_cast<float>(between(random, 0.0, 200.0));
            const auto y = static_cast<float>(between(random, 0.0, 200.0));
            osg::Vec3f expected = kUntouched;
            osg::Vec3f actual = kUntouched;
            const bool isHit = meshPointStepByStep(*viewer, x, y, expected);
            EXPECT_EQ(getClickedPointToMeshData(viewer, x, y, actual, "meshData"), isHit) << "scene " << seed;
            EXPECT_EQ(actual, expected) << "scene " << seed;
            found += isHit ? 1 : 0;
        }
    }
    EXPECT_GT(found, 500) << "the scenes leave nothing to hit";
}

namespace {

/// A mesh that counts how often its triangles are asked for.
class CountedMesh : public osg::Geometry
{
public:
    explicit CountedMesh(const osg::Geometry& mesh) : osg::Geometry(mesh) {}
    using osg::Geometry::accept;
    void accept(osg::PrimitiveFunctor& functor) const override
    {
        ++count;
        osg::Geometry::accept(functor);
    }
    mutable int count = 0;
};

osg::ref_ptr<CountedMesh> replaceByCounted(FeatureScene& scene)
{
    osg::Group& geode = *scene.meshData->getChild(0)->asGroup()->getChild(0)->asGroup();
    osg::ref_ptr<CountedMesh> counted = new CountedMesh(*geode.getChild(0)->asGeometry());
    counted->setInitialBound(osg::BoundingBox(-90, -90, -1, 90, 90, 1)); // asked for beside the square, too
    geode.setChild(0, counted);
    return counted;
}

} // namespace

TEST(ClickedMeshPoint, TestsTheTrianglesOnce)
{
    FeatureScene scene(50.0f);
    const osg::ref_ptr<CountedMesh> mesh = replaceByCounted(scene);
    const auto viewer = pixelViewer(scene.root, 200, 200);
    hits(*viewer, 0, 0); // computes the bounds, which asks for the triangles too
    mesh->count = 0;
    osg::Vec3f point;
    EXPECT_TRUE(getClickedPointToMeshData(viewer, 105, 103, point, "meshData"));
    EXPECT_EQ(mesh->count, 1);
    EXPECT_FALSE(getClickedPointToMeshData(viewer, 170, 103, point, "meshData"));
    EXPECT_EQ(mesh->count, 2);
}

TEST(ClickedDot, GivesItsCentreForAHitOnItsSphere)
{
    FeatureScene scene(50.0f, turnedDoubledMoved());
    CAutoScaleSphereMeta* const dot = scene.addDot("dot", osg::Vec3f(5, 10, 20)); // at (-10, 10) of the window
    const auto viewer = pixelViewer(scene.root, 200, 200);
    cullOnce(*viewer);
    const DotPick pick = pickDot(*viewer, {}, 91, 111);
    EXPECT_TRUE(pick.isHit);
    EXPECT_EQ(pick.dot, dot);
    EXPECT_EQ(pick.point, osg::Vec3f(5, 10, 20));
}

TEST(ClickedDot, GivesItsCentreForAHitOnItsLabel)
{
    FeatureScene scene(50.0f, turnedDoubledMoved());
    CAutoScaleSphereMeta* const dot = scene.addDot("dot", osg::Vec3f(5, 10, 20));
    const auto viewer = pixelViewer(scene.root, 200, 200);
    const DotPick pick = pickDot(*viewer, {"dot"}, 90, 125);
    EXPECT_TRUE(pick.isHit);
    EXPECT_EQ(pick.dot, dot);
    EXPECT_EQ(pick.point, osg::Vec3f(5, 10, 20));
}

TEST(ClickedDot, GivesTheMeshPointAndNoDotBesideDots)
{
    FeatureScene scene(20.0f, turnedDoubledMoved());
    scene.addDot("dot", osg::Vec3f(5, 10, 20));
    const auto viewer = pixelViewer(scene.root, 200, 200);
    cullOnce(*viewer);
    const DotPick pick = pickDot(*viewer, {"dot"}, 130, 104);
    EXPECT_TRUE(pick.isHit);
    EXPECT_EQ(pick.dot, nullptr);
    expectNear(pick.point, osg::Vec3f(2, -10, 0));
}

TEST(ClickedDot, LeavesEverythingUntouchedOnEmptyBackground)
{
    FeatureScene scene(20.0f);
    CAutoScaleSphereMeta* const dot = scene.addDot("dot", osg::Vec3f());
    const auto viewer = pixelViewer(scene.root, 200, 200);
    CAutoScaleSphereMeta* picked = dot;
    osg::Vec3f point = kUntouched;
    EXPECT_FALSE(getClickedPointToMeshDataAndDotFeature(viewer, listOf({"dot"}), 190, 10, point, picked, "meshData"));
    EXPECT_EQ(point, kUntouched);
    EXPECT_EQ(picked, dot);
}

TEST(ClickedDot, IsNotHitByTheLabelOfALine)
{
    FeatureScene scene;
    scene.addLine("line", osg::Vec3f(-40, 0, 10), osg::Vec3f(40, 0, 10));
    const auto viewer = pixelViewer(scene.root, 200, 200);
    const DotPick pick = pickDot(*viewer, {"line"}, 100, kBelowText);
    EXPECT_TRUE(pick.isHit);
    EXPECT_EQ(pick.dot, nullptr);
    expectNear(pick.point, osg::Vec3f(0, kBelowText - 100, 0)); // the mesh behind it
}

TEST(ClickedDot, IsNotHitByALabelOfAnotherNodeThatCallsItselfADot)
{
    FeatureScene scene;
    CArrowMeta* const line = scene.addLine("line", osg::Vec3f(-40, 0, 10), osg::Vec3f(40, 0, 10));
    line->setUserValue("feature_type", 1);
    const auto viewer = pixelViewer(scene.root, 200, 200);
    const DotPick pick = pickDot(*viewer, {"line"}, 100, kBelowText);
    EXPECT_EQ(pick.dot, nullptr);
    expectNear(pick.point, osg::Vec3f(0, kBelowText - 100, 0));
}

TEST(ClickedDot, IsNotHitThroughAMeshOfAnotherName)
{
    FeatureScene scene;
    const auto viewer = pixelViewer(scene.root, 200, 200);
    EXPECT_TRUE(pickDot(*viewer, {}, 100, 115).isHit);
    EXPECT_FALSE(pickDot(*viewer, {}, 100, 115, "MeshData").isHit);
}

TEST(ClickedDot, MeetsItsKindOnAHitBeforeAndFindsTheDotBehind)
{
    // The running kind of the first hit, 1 from a group that is no dot, goes on to the second hit:
    // so the mesh's name counts for nothing, and nothing is hit.
    FeatureScene scene;
    const auto marked = namedGroup("marked");
    marked->setUserValue("feature_type", 1);
    const osg::ref_ptr<osg::MatrixTransform> before = new osg::MatrixTransform(osg::Matrixd::translate(0, 0, 10));
    before->addChild(squareMesh(50.0f));
    marked->addChild(before);
    scene.root->addChild(marked);
    const auto viewer = pixelViewer(scene.root, 200, 200);
    EXPECT_FALSE(pickDot(*viewer, {}, 100, 115).isHit);

    marked->setUserValue("feature_type", 2);
    EXPECT_TRUE(pickDot(*viewer, {}, 100, 115).isHit);
}

TEST(ClickedDot, KnowsAKindOnlyAsAnInt)
{
    FeatureScene scene;
    scene.meshData->setUserValue("feature_type", 1.0f);
    const auto viewer = pixelViewer(scene.root, 200, 200);
    EXPECT_TRUE(pickDot(*viewer, {}, 100, 115).isHit);
    scene.meshData->setUserValue("feature_type", 1);
    EXPECT_FALSE(pickDot(*viewer, {}, 100, 115).isHit);
}

TEST(ClickedDot, DoesNotTakeADrawableWithoutAGeodeForTheMesh)
{
    const osg::ref_ptr<osg::Node> drawable = squareMesh(50.0f)->asGroup()->getChild(0);
    drawable->setName("meshData");
    const osg::ref_ptr<osg::Group> scene = namedGroup("parent");
    scene->addChild(drawable);
    const auto viewer = pixelViewer(scene, 200, 200);
    EXPECT_FALSE(pickDot(*viewer, {}, 100, 115, "meshData").isHit);
    EXPECT_TRUE(pickDot(*viewer, {}, 100, 115, "parent").isHit);
}
