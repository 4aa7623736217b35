#include "picking/PickVisitor.h"
#include "picking/ScenePick.h"

#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/CTableMeta.h>

#include "picking/PickingViewers.h"
#include "picking/RandomScene.h"
#include "support/PictureScenes.h"
#include "support/ViewerBuilders.h"

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/Notify>
#include <osg/Projection>

#include <gtest/gtest.h>

using namespace KelvOsgTools;
using namespace kelvtest;

namespace {

constexpr int kScenes = 600;
constexpr int kCrowds = 8; // of eighty scenes each
constexpr int kPositionsPerScene = 10;

osgUtil::PolytopeIntersector::Intersections plainBoxHits(osg::Camera& camera, float x, float y)
{
    const osg::ref_ptr<osgUtil::PolytopeIntersector> box =
        new osgUtil::PolytopeIntersector(osgUtil::Intersector::WINDOW, x - 2.0, y - 2.0, x + 2.0, y + 2.0);
    osgUtil::IntersectionVisitor visitor(box);
    camera.accept(visitor);
    return box->getIntersections();
}

void expectSameHit(const osgUtil::LineSegmentIntersector::Intersection& actual,
                   const osgUtil::LineSegmentIntersector::Intersection& expected)
{
    EXPECT_EQ(actual.ratio, expected.ratio);
    EXPECT_EQ(actual.nodePath, expected.nodePath);
    EXPECT_EQ(actual.drawable, expected.drawable);
    EXPECT_EQ(actual.primitiveIndex, expected.primitiveIndex);
    EXPECT_EQ(actual.localIntersectionPoint, expected.localIntersectionPoint);
    EXPECT_EQ(*actual.matrix, *expected.matrix);
}

/// Counts the geodes that a ray is tested against.
class GeodeCounter : public detail::RayVisitor
{
public:
    using detail::RayVisitor::apply;
    using detail::RayVisitor::RayVisitor;
    void apply(osg::Geode& geode) override
    {
        ++count;
        detail::RayVisitor::apply(geode);
    }
    int count = 0;
};

int geodesTested(osgViewer::Viewer& viewer, double x, double y)
{
    const osg::ref_ptr<osgUtil::LineSegmentIntersector> ray =
        new osgUtil::LineSegmentIntersector(osgUtil::Intersector::WINDOW, x, y);
    GeodeCounter counter(ray);
    viewer.getCamera()->accept(counter);
    return counter.count;
}

osg::ref_ptr<osg::Node> dotAt(const osg::Vec3f& place)
{
    CAutoScaleSphereMeta::structSphereMeta meta;
    meta.cneterPos = place;
    meta.radius = 3.0f;
    return new CAutoScaleSphereMeta(meta);
}

osg::ref_ptr<osg::Node> labelAt(const osg::Vec3f& place)
{
    CTableMeta::structTableMeta meta;
    meta.pos = place;
    return new CTableMeta(meta);
}

} // namespace

namespace {

/// Expects of rays at random positions what the plain visitor finds. Returns how much that was.
std::size_t compareRays(osgViewer::Viewer& viewer, Random& random)
{
    std::size_t found = 0;
    for (int i = 0; i < kPositionsPerScene && !testing::Test::HasFailure(); ++i) {
        const auto x = static_cast<float>(between(random, 0.0, 200.0));
        const auto y = static_cast<float>(between(random, 0.0, 200.0));
        SCOPED_TRACE(testing::Message() << "at " << x << ", " << y);
        osgUtil::LineSegmentIntersector::Intersections expected;
        viewer.computeIntersections(x, y, expected);
        const detail::RayHits actual = detail::rayHits(viewer, x, y);
        EXPECT_EQ(actual.size(), expected.size());
        if (actual.size() != expected.size()) break;
        for (auto a = actual.begin(), e = expected.begin(); a != actual.end(); ++a, ++e) expectSameHit(*a, *e);
        found += expected.size();
    }
    return found;
}

/// The same of boxes.
int compareBoxes(osgViewer::Viewer& viewer, Random& random)
{
    int found = 0;
    for (int i = 0; i < kPositionsPerScene && !testing::Test::HasFailure(); ++i) {
        const auto x = static_cast<float>(between(random, 0.0, 200.0));
        const auto y = static_cast<float>(between(random, 0.0, 200.0));
        SCOPED_TRACE(testing::Message() << "at " << x << ", " << y);
        const auto expected = plainBoxHits(*viewer.getCamera(), x, y);
        const auto actual = detail::nearestInBox(*viewer.getCamera(), x, y, 2.0);
        EXPECT_EQ(actual.has_value(), !expected.empty());
        if (!actual || expected.empty()) continue;
        EXPECT_EQ(actual->distance, expected.begin()->distance);
        EXPECT_EQ(actual->nodePath, expected.begin()->nodePath);
        EXPECT_EQ(actual->drawable, expected.begin()->drawable);
        EXPECT_EQ(actual->localIntersectionPoint, expected.begin()->localIntersectionPoint);
        ++found;
    }
    return found;
}

} // namespace

TEST(RayVisitor, FindsWhatThePlainVisitorFindsInRandomScenes)
{
    std::size_t found = 0;
    for (unsigned int seed = 0; seed < kScenes; ++seed) {
        SCOPED_TRACE(testing::Message() << "scene " << seed);
        Random random(seed);
        const osg::ref_ptr<osgViewer::Viewer> viewer = randomViewer(random, randomScene(random));
        found += compareRays(*viewer, random);
    }
    EXPECT_GT(found, 10000u) << "the scenes leave nothing to hit";
}

TEST(RayVisitor, FindsWhatThePlainVisitorFindsInRandomCrowds)
{
    std::size_t found = 0;
    for (unsigned int seed = 0; seed < kCrowds; ++seed) {
        SCOPED_TRACE(testing::Message() << "crowd " << seed);
        Random random(seed);
        const osg::ref_ptr<osgViewer::Viewer> viewer = randomViewer(random, randomCrowd(random));
        found += compareRays(*viewer, random);
    }
    EXPECT_GT(found, 500u) << "the crowds leave nothing to hit";
}

TEST(BoxVisitor, FindsTheHitThatThePlainVisitorFindsInRandomScenes)
{
    int found = 0;
    for (unsigned int seed = 0; seed < kScenes; ++seed) {
        SCOPED_TRACE(testing::Message() << "scene " << seed);
        Random random(seed);
        const osg::ref_ptr<osgViewer::Viewer> viewer = randomViewer(random, randomScene(random));
        found += compareBoxes(*viewer, random);
    }
    EXPECT_GT(found, 1000) << "the scenes leave nothing to hit";
}

TEST(BoxVisitor, FindsTheHitThatThePlainVisitorFindsInRandomCrowds)
{
    int found = 0;
    for (unsigned int seed = 0; seed < kCrowds; ++seed) {
        SCOPED_TRACE(testing::Message() << "crowd " << seed);
        Random random(seed);
        const osg::ref_ptr<osgViewer::Viewer> viewer = randomViewer(random, randomCrowd(random));
        found += compareBoxes(*viewer, random);
    }
    EXPECT_GT(found, 20) << "the crowds leave nothing to hit";
}

TEST(RayVisitor, FindsWhatThePlainVisitorFindsBelowAProjection)
{
    const auto viewer = pixelViewer(new osg::Group, 200, 200);
    // Below it, everything is drawn in half its size.
    const osg::ref_ptr<osg::Projection> halved =
        new osg::Projection(viewer->getCamera()->getProjectionMatrix() * osg::Matrixd::scale(0.5, 0.5, 1.0));
    halved->addChild(unlitRectangle({-50, -50, 50, 50, 0}, osg::Vec4f()));
    halved->addChild(dotAt(osg::Vec3f(60.0f, 0.0f, 0.0f)));
    viewer->setSceneData(halved);
    cullOnce(*viewer);
    std::size_t found = 0;
    for (float x = 50.0f; x < 200.0f; x += 1.0f) {
        osgUtil::LineSegmentIntersector::Intersections expected;
        viewer->computeIntersections(x, 100.0f, expected);
        ASSERT_EQ(detail::rayHits(*viewer, x, 100.0f).size(), expected.size()) << x;
        found += expected.size();
    }
    EXPECT_GT(found, 40u); // the rectangle alone is 50 pixels wide
}

TEST(RayVisitor, TestsNoContentOfDotsAndLabelsThatItMisses)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (int i = 0; i < 50; ++i) scene->addChild(dotAt(osg::Vec3f(-90.0f + 3.0f * float(i), -60.0f, 0.0f)));
    for (int i = 0; i < 50; ++i) scene->addChild(labelAt(osg::Vec3f(-90.0f + 3.0f * float(i), 20.0f, 0.0f)));
    const auto viewer = pixelViewer(scene, 200, 200);
    cullOnce(*viewer);
    EXPECT_EQ(geodesTested(*viewer, 100, 5), 0);
}

TEST(RayVisitor, TestsTheContentOfADotThatItMayHit)
{
    const auto viewer = pixelViewer(dotAt(osg::Vec3f(10.0f, 0.0f, 0.0f)), 200, 200);
    cullOnce(*viewer);
    EXPECT_EQ(geodesTested(*viewer, 112.5, 100), 1);
}

TEST(RayVisitor, TestsEverythingWhereTheProjectionCannotBeInverted)
{
    const auto viewer = pixelViewer(dotAt(osg::Vec3f(90.0f, 0.0f, 0.0f)), 200, 200);
    viewer->getCamera()->setProjectionMatrix(osg::Matrixd::scale(0.01, 0.0, 0.01));
    EXPECT_EQ(geodesTested(*viewer, 10, 10), 1);
}
