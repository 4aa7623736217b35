#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include "picking/FeatureScene.h"
#include "picking/PickingViewers.h"
#include "support/NodeBuilders.h"
#include "support/ViewerBuilders.h"

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/ValueObject>

#include <gtest/gtest.h>

using namespace KelvOsgTools;
using namespace kelvtest;

namespace {

const osg::Vec3f kUntouched(7.0f, 8.0f, 9.0f);
constexpr float kBelowText = 111.0f; // on a label of the middle of the window, but on none of its letters

struct FeaturePick
{
    bool isHit = false;
    osg::Vec3f point = kUntouched;
    CFeatureMetaObject* feature = nullptr;
    featureType kind = featureFlagDot;
    std::vector<osg::Vec3f> points{kUntouched};
};

FeaturePick pickFeature(osgViewer::Viewer& viewer, featureType wanted, float x, float y, const QStringList& listed = {})
{
    FeaturePick pick;
    pick.isHit = getIntersectionToFeatureBranch(&viewer, listOf(listed), x, y, wanted, pick.point, pick.feature,
                                                pick.kind, pick.points);
    return pick;
}

void expectUntouched(const FeaturePick& pick)
{
    EXPECT_FALSE(pick.isHit);
    EXPECT_EQ(pick.point, kUntouched);
    EXPECT_EQ(pick.feature, nullptr);
    EXPECT_EQ(pick.kind, featureFlagDot);
    EXPECT_EQ(pick.points, std::vector<osg::Vec3f>{kUntouched});
}

osg::ref_ptr<osgViewer::Viewer> culledViewer(const FeatureScene& scene)
{
    osg::ref_ptr<osgViewer::Viewer> viewer = pixelViewer(scene.root, 200, 200);
    cullOnce(*viewer);
    return viewer;
}

/// A line along X through the middle of the window, without a label to be hit there.
FeatureScene sceneWithLine()
{
    FeatureScene scene(5.0f, osg::Matrixd::translate(0, -80, 0));
    scene.addLine("line", osg::Vec3f(-40, 80, 10), osg::Vec3f(40, 80, 10));
    return scene;
}

} // namespace

class KindWithoutRoot : public testing::TestWithParam<int>
{};
INSTANTIATE_TEST_SUITE_P(FeatureBranch, KindWithoutRoot, testing::Values(-1, featureFlagDot, 6, featurePlane));

TEST_P(KindWithoutRoot, IsNotPicked)
{
    FeatureScene scene;
    scene.addDot("dot", osg::Vec3f(0, 0, 10));
    const auto viewer = culledViewer(scene);
    expectUntouched(pickFeature(*viewer, static_cast<featureType>(GetParam()), 101, 101, {"dot"}));
    EXPECT_FALSE(findOrCreateFeatureRootNode(scene.root, featurePlane, false)) << "a pick creates no roots";
}

TEST(FeatureBranch, NeedsAFeatureRoot)
{
    const MeshScene scene = meshScene(squareMesh(50.0f));
    scene.transform->setUserValue("feature_type", 2);
    const auto viewer = pixelViewer(scene.root, 200, 200);
    expectUntouched(pickFeature(*viewer, featureAll, 100, 100));
}

TEST(FeatureBranch, LeavesEverythingUntouchedOnAMissAndOnTheMesh)
{
    FeatureScene scene(20.0f);
    scene.addDot("dot", osg::Vec3f(60, 60, 10));
    const auto viewer = culledViewer(scene);
    expectUntouched(pickFeature(*viewer, featureAll, 10, 10, {"dot"}));
    expectUntouched(pickFeature(*viewer, featureAll, 100, 100, {"dot"}));
}

TEST(FeatureBranch, TakesALabelWithoutWritingThePoint)
{
    FeatureScene scene;
    CFeatureMetaObject* const dot = scene.addDot("dot", osg::Vec3f(0, 0, 10));
    const auto viewer = culledViewer(scene);
    const FeaturePick pick = pickFeature(*viewer, featureAll, 100, kBelowText, {"dot"});
    EXPECT_TRUE(pick.isHit);
    EXPECT_EQ(pick.point, kUntouched);
    EXPECT_EQ(pick.feature, dot);
    EXPECT_EQ(pick.kind, featureDot);
    EXPECT_EQ(pick.points, (std::vector<osg::Vec3f>{kUntouched, osg::Vec3f(0, 0, 10)}));
}

TEST(FeatureBranch, TakesALabelOfTheWantedKindOnly)
{
    FeatureScene scene;
    CFeatureMetaObject* const line = scene.addLine("line", osg::Vec3f(-40, 0, 10), osg::Vec3f(40, 0, 10));
    scene.addPlane("plane", osg::Vec3f(0, 0, 5), 40.0f);
    const auto viewer = culledViewer(scene);
    EXPECT_EQ(pickFeature(*viewer, featureLine, 100, kBelowText, {"line"}).feature, line);
    const FeaturePick pick = pickFeature(*viewer, featurePlane, 100, kBelowText, {"line"});
    EXPECT_EQ(pick.kind, featurePlane) << "the geometric picks go on";
}

TEST(FeatureBranch, FindsADotByTheRay)
{
    FeatureScene scene;
    CFeatureMetaObject* const dot = scene.addDot("dot", osg::Vec3f(30, 0, 10));
    const auto viewer = culledViewer(scene);
    for (const featureType wanted : {featureDot, featureAll}) {
        const FeaturePick pick = pickFeature(*viewer, wanted, 131, 101);
        EXPECT_TRUE(pick.isHit);
        EXPECT_EQ(pick.feature, dot);
        EXPECT_EQ(pick.kind, featureDot);
        EXPECT_NEAR((pick.point - osg::Vec3f(1, 1, 2.65f)).length(), 0.0f, 0.1f);
        EXPECT_EQ(pick.points, (std::vector<osg::Vec3f>{kUntouched, osg::Vec3f(30, 0, 10)}));
    }
}

TEST(FeatureBranch, FindsADotOnItsSphereOnly)
{
    FeatureScene scene;
    scene.addDot("dot", osg::Vec3f(30, 0, 10));
    const auto viewer = culledViewer(scene);
    EXPECT_TRUE(pickFeature(*viewer, featureDot, 132.5f, 100.0f).isHit);
    EXPECT_FALSE(pickFeature(*viewer, featureDot, 133.5f, 100.0f).isHit) << "no box pick for dots";
}

TEST(FeatureBranch, FindsAThinLineWithinTwoPixels)
{
    FeatureScene scene = sceneWithLine();
    const auto viewer = culledViewer(scene);
    for (const float offset : {-1.5f, 0.0f, 1.5f}) {
        const FeaturePick pick = pickFeature(*viewer, featureLine, 120, 100 + offset);
        EXPECT_TRUE(pick.isHit) << offset;
        EXPECT_EQ(pick.kind, featureLine);
        EXPECT_EQ(pick.points, (std::vector<osg::Vec3f>{kUntouched, osg::Vec3f(-40, 80, 10), osg::Vec3f(40, 80, 10)}));
    }
    for (const float offset : {-2.5f, 2.5f}) EXPECT_FALSE(pickFeature(*viewer, featureLine, 120, 100 + offset).isHit);
}

TEST(FeatureBranch, FindsAThinLineUpToTwoPixelsBeyondItsEnds)
{
    FeatureScene scene = sceneWithLine();
    const auto viewer = culledViewer(scene);
    EXPECT_TRUE(pickFeature(*viewer, featureLine, 141.5f, 100).isHit);
    EXPECT_FALSE(pickFeature(*viewer, featureLine, 142.5f, 100).isHit);
    EXPECT_TRUE(pickFeature(*viewer, featureLine, 58.5f, 100).isHit);
    EXPECT_FALSE(pickFeature(*viewer, featureLine, 57.5f, 100).isHit);
}

TEST(FeatureBranch, FindsAThinLineWithinTwoPixelsInPerspective)
{
    FeatureScene scene;
    scene.addLine("line", osg::Vec3f(-20, 0, 1), osg::Vec3f(20, 0, 1));
    const auto viewer = perspectiveViewer(scene.root, 200, 200, 100.0);
    EXPECT_TRUE(pickFeature(*viewer, featureLine, 150, 101.5f).isHit);
    EXPECT_FALSE(pickFeature(*viewer, featureLine, 150, 102.5f).isHit);
}

TEST(FeatureBranch, GivesThePointOfALineInTheCoordinatesOfItsDrawable)
{
    FeatureScene scene = sceneWithLine();
    const auto viewer = culledViewer(scene);
    const FeaturePick pick = pickFeature(*viewer, featureLine, 120, 100);
    EXPECT_NEAR(pick.point.z(), 20.0f, 1e-3f); // along the line's own Z, from its middle
    EXPECT_NEAR(pick.point.x(), 0.0f, 1e-3f);
}

TEST(FeatureBranch, FindsALineForAllKindsToo)
{
    FeatureScene scene = sceneWithLine();
    const auto viewer = culledViewer(scene);
    EXPECT_EQ(pickFeature(*viewer, featureAll, 120, 101.5f).kind, featureLine);
    expectUntouched(pickFeature(*viewer, featureDot, 120, 101.5f));
}

TEST(FeatureBranch, FindsASolidArrowByTheRay)
{
    FeatureScene scene(5.0f);
    CFeatureMetaObject* const line = scene.addLine("line", osg::Vec3f(-40, 50, 10), osg::Vec3f(40, 50, 10), false);
    const auto viewer = culledViewer(scene);
    const FeaturePick pick = pickFeature(*viewer, featureLine, 90, 151);
    EXPECT_EQ(pick.feature, line);
    EXPECT_EQ(pick.kind, featureLine);
}

TEST(FeatureBranch, FindsAPlaneOnItsPatch)
{
    FeatureScene scene(5.0f);
    CPlaneMeta* const plane = scene.addPlane("plane", osg::Vec3f(0, -40, 10), 20.0f);
    const auto viewer = culledViewer(scene);
    for (const featureType wanted : {featurePlane, featureAll}) {
        const FeaturePick pick = pickFeature(*viewer, wanted, 103, 58);
        EXPECT_TRUE(pick.isHit);
        EXPECT_EQ(pick.feature, plane);
        EXPECT_EQ(pick.kind, featurePlane);
        EXPECT_NEAR((pick.point - osg::Vec3f(3, -42, 10)).length(), 0.0f, 1e-3f);
        EXPECT_EQ(pick.points, plane->getPlaneInfo()) << "replaced, not appended";
    }
    EXPECT_FALSE(pickFeature(*viewer, featureLine, 103, 58).isHit);
}

TEST(FeatureBranch, FindsAPlaneToTheEdgesOfItsPatch)
{
    FeatureScene scene(5.0f);
    scene.addPlane("plane", osg::Vec3f(0, -40, 10), 20.0f);
    const auto viewer = culledViewer(scene);
    EXPECT_TRUE(pickFeature(*viewer, featurePlane, 119.5f, 60).isHit);
    EXPECT_FALSE(pickFeature(*viewer, featurePlane, 120.5f, 60).isHit);
}

class PlaneSeeker : public testing::TestWithParam<featureType>
{};
INSTANTIATE_TEST_SUITE_P(FeatureBranch, PlaneSeeker, testing::Values(featurePlane, featureAll));

TEST_P(PlaneSeeker, FindsAPlaneBesideItsNormalArrows)
{
    FeatureScene scene(5.0f);
    CPlaneMeta* const plane = scene.addPlane("plane", osg::Vec3f(0, -40, 10), 20.0f); // an arrow from (20, -20) on
    const auto viewer = culledViewer(scene);
    for (const float offset : {-1.5f, 1.5f}) {
        const FeaturePick pick = pickFeature(*viewer, GetParam(), 125, 80 + offset);
        EXPECT_EQ(pick.feature, plane);
        EXPECT_EQ(pick.kind, featurePlane);
        EXPECT_EQ(pick.points, plane->getPlaneInfo());
    }
    EXPECT_FALSE(pickFeature(*viewer, GetParam(), 125, 82.5f).isHit);
}

TEST(FeatureBranch, DoesNotTakeANormalArrowForALine)
{
    FeatureScene scene = sceneWithLine();
    scene.addPlane("plane", osg::Vec3f(0, 40, 10), 20.0f);
    const auto viewer = culledViewer(scene);
    expectUntouched(pickFeature(*viewer, featureLine, 125, 61.5f));
}

TEST(FeatureBranch, LooksOnlyAtTheNearestThingInTheBox)
{
    FeatureScene scene = sceneWithLine();
    const osg::ref_ptr<osg::MatrixTransform> cover = new osg::MatrixTransform(osg::Matrixd::translate(0, 0, 30));
    cover->addChild(squareMesh(60.0f));
    scene.root->addChild(cover);
    const auto viewer = culledViewer(scene);
    EXPECT_FALSE(pickFeature(*viewer, featureLine, 120, 101.5f).isHit);
}

TEST(FeatureBranch, LooksOnlyAtTheNearestHitOfTheRay)
{
    FeatureScene scene;
    scene.addPlane("plane", osg::Vec3f(0, 0, 10), 20.0f);
    scene.addDot("dot", osg::Vec3f(0, 0, -10));
    const auto viewer = culledViewer(scene);
    EXPECT_FALSE(pickFeature(*viewer, featureDot, 101, 101).isHit);
}

TEST(FeatureBranch, LiftsTheHitToTheOutermostFeatureOfTheKind)
{
    FeatureScene scene(5.0f);
    CPlaneMeta* const outer = scene.addPlane("outer", osg::Vec3f(60, 60, 10), 5.0f);
    CPlaneMeta* const inner = scene.addPlane("inner", osg::Vec3f(0, -40, 10), 20.0f);
    outer->addChild(inner);
    inner->getParent(0)->removeChild(inner);
    const auto viewer = culledViewer(scene);
    EXPECT_EQ(pickFeature(*viewer, featurePlane, 103, 58).feature, outer);
}

TEST(FeatureBranch, KeepsTheKindOfANodeBelowOnTheWayUp)
{
    // The switch around the mesh has no kind of its own and takes that of the node below.
    FeatureScene scene(5.0f);
    const osg::ref_ptr<CFeatureMetaObject> feature = new CFeatureMetaObject;
    const osg::ref_ptr<osg::Node> mesh = squareMesh(20.0f);
    mesh->setUserValue("feature_type", 2);
    feature->addChild(mesh);
    scene.root->addChild(feature);
    scene.addLine("line", osg::Vec3f(-40, 80, 10), osg::Vec3f(40, 80, 10));
    const auto viewer = culledViewer(scene);
    const FeaturePick pick = pickFeature(*viewer, featureLine, 110, 90);
    EXPECT_EQ(pick.feature, feature);
    EXPECT_EQ(pick.points, std::vector<osg::Vec3f>{kUntouched}) << "no points for a feature of unknown class";
}

TEST(FeatureBranch, PassesOverNodesOfTheKindThatAreNoPrimitives)
{
    FeatureScene scene = sceneWithLine();
    CArrowMeta* const line = dynamic_cast<CArrowMeta*>(findFeatureByName("line", scene.root, featureLine).get());
    line->getChild(0)->setUserValue("feature_type", 2); // the transform below the arrow
    const auto viewer = culledViewer(scene);
    EXPECT_EQ(pickFeature(*viewer, featureLine, 120, 101.5f).feature, line);
}

TEST(FeatureBranch, DoesNotAskTheDrawableItselfForAKind)
{
    FeatureScene scene = sceneWithLine();
    const osg::ref_ptr<osg::Node> drawable = squareMesh(20.0f)->asGroup()->getChild(0);
    drawable->setUserValue("feature_type", 2);
    const osg::ref_ptr<CFeatureMetaObject> feature = new CFeatureMetaObject;
    feature->addChild(drawable); // without a geode
    scene.root->addChild(feature);
    const auto viewer = culledViewer(scene);
    EXPECT_FALSE(pickFeature(*viewer, featureLine, 90, 85).isHit);
}

TEST(FeatureBranch, DoesNotTakePartsForFeatures)
{
    FeatureScene scene = sceneWithLine();
    const osg::ref_ptr<CFeatureMetaObject> part = new CFeatureMetaObject;
    part->setUserValue("feature_type", -1);
    part->addChild(squareMesh(20.0f));
    scene.root->addChild(part);
    const auto viewer = culledViewer(scene);
    EXPECT_FALSE(pickFeature(*viewer, featureAll, 90, 85).isHit);
}

TEST(FeatureBranch, FindsAFlagDotWithoutPoints)
{
    FeatureScene scene(5.0f);
    const osg::ref_ptr<osg::Group> flag = createFlagAutoScaleShpereAndTable("flag", scene.root, osg::Vec3f(30, 0, 10),
                                                                            1, "F", 1, featureDot, true, false);
    const auto viewer = culledViewer(scene);
    const FeaturePick pick = pickFeature(*viewer, featureAll, 132, 101);
    EXPECT_EQ(pick.feature, flag);
    EXPECT_EQ(pick.kind, featureFlagDot);
    EXPECT_EQ(pick.points, std::vector<osg::Vec3f>{kUntouched});
}

namespace {

/// A patch that is a line for the box and for the ray, under one primitive for each of them: two
/// squares side by side, of which the ray hits the left and the box sees both.
osg::ref_ptr<CFeatureMetaObject> patchFeature(featureType kind, const osg::Vec3f& place, const osg::Vec3f& localShift)
{
    const osg::ref_ptr<osg::Vec3Array> corners = new osg::Vec3Array;
    for (const osg::Vec3f& corner :
         {osg::Vec3f(-10, -10, 0), osg::Vec3f(10, -10, 0), osg::Vec3f(10, 10, 0), osg::Vec3f(-10, 10, 0)})
        corners->push_back(corner + localShift);
    const osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
    geometry->setVertexArray(corners);
    geometry->addPrimitiveSet(new osg::DrawArrays(GL_QUADS, 0, 4));
    const osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(geometry);
    const osg::ref_ptr<osg::MatrixTransform> transform =
        new osg::MatrixTransform(osg::Matrixd::translate(place - localShift));
    transform->addChild(geode);
    osg::ref_ptr<CFeatureMetaObject> feature = new CFeatureMetaObject;
    feature->setUserValue("feature_type", static_cast<int>(kind));
    feature->addChild(transform);
    return feature;
}

/// The kind that wins where the box finds a line one pixel beside a dot that the ray finds. Both
/// are seen from (0, 0, 100); the shift of the line's drawable moves only its local point.
featureType winnerBesideDot(const osg::Vec3f& lineShift)
{
    FeatureScene scene = sceneWithLine();
    scene.root->addChild(patchFeature(featureLine, osg::Vec3f(11, 0, 20), lineShift)); // from x = 1 on, nearer
    scene.root->addChild(patchFeature(featureDot, osg::Vec3f(-10, 0, 10), osg::Vec3f()));
    const auto viewer = culledViewer(scene);
    return pickFeature(*viewer, featureAll, 99.5f, 100).kind;
}

} // namespace

TEST(FeatureBranch, PrefersWhatTheBoxFindsWhereItsPointIsNearerToTheEye)
{
    EXPECT_EQ(winnerBesideDot(osg::Vec3f(0, 0, 20)), featureLine);
}

TEST(FeatureBranch, MeasuresPointsInTheCoordinatesOfTheirDrawables)
{
    EXPECT_EQ(winnerBesideDot(osg::Vec3f(0, 0, -50)), featureDot) << "its drawable's points are far from the eye";
}

TEST(FeatureBranch, PrefersTheRayWhereBothAreEquallyNear)
{
    // A square around the cursor: the box clips a square around the ray's own point.
    FeatureScene scene = sceneWithLine();
    const osg::ref_ptr<CFeatureMetaObject> outer = new CFeatureMetaObject;
    const osg::ref_ptr<CFeatureMetaObject> inner = patchFeature(featureLine, osg::Vec3f(0, 0, 20), osg::Vec3f());
    outer->addChild(inner);
    scene.root->addChild(outer);
    const auto viewer = culledViewer(scene);
    // The box takes the innermost line, the ray the outermost: so the answer tells them apart.
    EXPECT_EQ(pickFeature(*viewer, featureLine, 100, 100).feature, outer);
}

TEST(FeatureBranch, UsesTheMastersWindowForTheBoxAndTheSlavesForTheRay)
{
    FeatureScene scene = sceneWithLine();
    const auto viewer = culledViewer(scene);
    moveToSlave(*viewer, 50, 50, 100, 100);
    EXPECT_TRUE(pickFeature(*viewer, featureLine, 120, 101.5f).isHit);
}
