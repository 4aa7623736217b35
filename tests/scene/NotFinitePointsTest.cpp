#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"
#include "support/ViewerBuilders.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <gtest/gtest.h>

#include <osgUtil/LineSegmentIntersector>

#include <functional>
#include <limits>

// Coordinates come from files and from fits that fail. Whatever they are, the scene around the
// feature must stay drawn and pickable: one NaN in a bound hides all of it.
namespace {
using namespace KelvOsgTools;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kLargest = std::numeric_limits<float>::max();

using Scene = osg::ref_ptr<osg::Group>;

struct Value
{
    const char* label;
    float value;
};

/// Adds features of one sort at a point.
struct Adder
{
    const char* label;
    std::function<void(const Scene&, const osg::Vec3f& point)> add;
};

void PrintTo(const Value& value, std::ostream* stream)
{
    *stream << value.label;
}

void PrintTo(const Adder& adder, std::ostream* stream)
{
    *stream << adder.label;
}

void addSolidLine(const Scene& scene, const osg::Vec3f& start, const osg::Vec3f& end)
{
    createArrowAndTable(featureStateHighlighted, kelvtest::solidArrow(start, end), scene, 1, QStringLiteral("line"), 1);
}

const osg::Vec3f kElsewhere(10.0f, 20.0f, 30.0f);

std::vector<osg::Vec3f> squareWithCorner(std::size_t index, const osg::Vec3f& corner)
{
    std::vector<osg::Vec3f> points = kelvtest::squareCorners(10.0f);
    points[index] = corner;
    return points;
}

const Adder kAdders[] = {
    {"Dot", [](const Scene& s, const osg::Vec3f& p) { kelvtest::addDot(s, "f", p); }},
    {"FlagDot", [](const Scene& s, const osg::Vec3f& p) { kelvtest::addFlagDot(s, "f", featureDot, p); }},
    {"Sphere", [](const Scene& s, const osg::Vec3f& p) { findOrCreateShpere("f", s, p); }},
    {"LineStart", [](const Scene& s, const osg::Vec3f& p) { kelvtest::addLine(s, "f", p, kElsewhere); }},
    {"LineEnd", [](const Scene& s, const osg::Vec3f& p) { kelvtest::addLine(s, "f", kElsewhere, p); }},
    {"LineOfNoLength", [](const Scene& s, const osg::Vec3f& p) { kelvtest::addLine(s, "f", p, p); }},
    {"SolidLineStart", [](const Scene& s, const osg::Vec3f& p) { addSolidLine(s, p, kElsewhere); }},
    {"SolidLineEnd", [](const Scene& s, const osg::Vec3f& p) { addSolidLine(s, kElsewhere, p); }},
    {"SolidLineOfNoLength", [](const Scene& s, const osg::Vec3f& p) { addSolidLine(s, p, p); }},
    {"FirstPlanePoint",
     [](const Scene& s, const osg::Vec3f& p) { kelvtest::addPlane(s, "f", squareWithCorner(0, p)); }},
    {"LastPlanePoint", [](const Scene& s, const osg::Vec3f& p) { kelvtest::addPlane(s, "f", squareWithCorner(3, p)); }},
    {"PlaneNormal",
     [](const Scene& s, const osg::Vec3f& p) {
         createPlaneAndTable(featureStateHighlighted, "f", s, kelvtest::squareCorners(10.0f), p, 1, "Plane", 1);
     }},
};

const Value kValues[] = {{"NaN", kNaN}, {"Infinity", kInfinity}, {"MinusInfinity", -kInfinity}};

class PointThatIsNotFinite : public ::testing::TestWithParam<std::tuple<Adder, Value>>
{
protected:
    /// A scene with a square mesh of side 40 and the feature, whose point is not finite in one of
    /// its three components, or in all of them (component 3).
    Scene sceneWithFeature(unsigned int component) const
    {
        const auto& [adder, value] = GetParam();
        const kelvtest::MeshScene scene = kelvtest::meshScene(kelvtest::squareMesh(20.0f));
        osg::Vec3f point(1.0f, 2.0f, 3.0f);
        for (unsigned int i = 0; i < 3; ++i)
            if (component == i || component == 3) point[i] = value.value;
        adder.add(scene.root, point);
        return scene.root;
    }
};

TEST_P(PointThatIsNotFinite, ReachesNoMatrixAndNoBound)
{
    for (const unsigned int component : {0u, 1u, 2u, 3u})
        EXPECT_TRUE(kelvtest::isFiniteEverywhere(*sceneWithFeature(component)));
}

TEST_P(PointThatIsNotFinite, ReachesNoMatrixAndNoBoundWhenTheStateChanges)
{
    const Scene scene = sceneWithFeature(0);
    for (CFeatureMetaObject* feature : kelvtest::nodesOfType<CFeatureMetaObject>(*scene))
        for (const int state : {2, 3, 1}) feature->setState(static_cast<featureState>(state));
    for (CTableMeta* label : kelvtest::nodesOfType<CTableMeta>(*scene)) label->updateLanguage();
    EXPECT_TRUE(kelvtest::isFiniteEverywhere(*scene));
}

TEST_P(PointThatIsNotFinite, LeavesTheMeshBesideItPickable)
{
    for (const unsigned int component : {0u, 3u}) {
        const osg::ref_ptr<osgViewer::Viewer> viewer = kelvtest::pixelViewer(sceneWithFeature(component), 200, 200);
        kelvtest::cullOnce(*viewer);
        osgUtil::LineSegmentIntersector::Intersections hits;
        ASSERT_TRUE(viewer->computeIntersections(115.0f, 85.0f, hits));
        EXPECT_NEAR(hits.rbegin()->getWorldIntersectPoint().z(), 0.0, 1e-4);
    }
}

TEST_P(PointThatIsNotFinite, LeavesTheSizeOfTheMeshBesideIt)
{
    const kelvtest::MeshScene scene = kelvtest::meshScene(kelvtest::squareMesh(20.0f));
    const float radius = scene.root->getBound().radius();
    EXPECT_GE(sceneWithFeature(3)->getBound().radius(), radius);
    EXPECT_LT(sceneWithFeature(3)->getBound().radius(), 100.0f);
}

INSTANTIATE_TEST_SUITE_P(Features, PointThatIsNotFinite,
                         ::testing::Combine(::testing::ValuesIn(kAdders), ::testing::ValuesIn(kValues)),
                         [](const auto& combination) {
                             return std::string(std::get<0>(combination.param).label) +
                                    std::get<1>(combination.param).label;
                         });

TEST(FeaturesThatAreNotFinite, DoNotHideTheFeaturesBesideThem)
{
    const Scene scene = new osg::Group;
    kelvtest::addDot(scene, "broken", osg::Vec3f(kNaN, 0.0f, 0.0f));
    const osg::ref_ptr<osg::Group> dot = kelvtest::addDot(scene, "whole", osg::Vec3f(5.0f, 0.0f, 0.0f));
    EXPECT_TRUE(scene->getBound().valid());
    EXPECT_TRUE(scene->getBound().contains(osg::Vec3f(5.0f, 0.0f, 0.0f)));
}

TEST(FeaturesThatAreNotFinite, KeepTheirRecords)
{
    const Scene scene = new osg::Group;
    kelvtest::addDot(scene, "dot", osg::Vec3f(kInfinity, 2.0f, 3.0f));
    kelvtest::addLine(scene, "line", osg::Vec3f(1.0f, kInfinity, 3.0f), osg::Vec3f());
    kelvtest::addPlane(scene, "plane", squareWithCorner(1, osg::Vec3f(1.0f, 2.0f, kInfinity)));
    EXPECT_EQ(kelvtest::nodesOfType<CAutoScaleSphereMeta>(*scene).at(0)->getCenterPos().x(), kInfinity);
    EXPECT_EQ(kelvtest::nodesOfType<CArrowMeta>(*scene).at(0)->getStartPos().y(), kInfinity);
    EXPECT_EQ(kelvtest::nodesOfType<CPlaneMeta>(*scene).at(0)->getPlaneInfo().at(1).z(), kInfinity);
}

TEST(FeaturesThatAreNotFinite, AreNotHitByTheirLabels)
{
    const Scene scene = new osg::Group;
    kelvtest::addDot(scene, "dot", osg::Vec3f(kNaN, 0.0f, 0.0f));
    CTableMeta& label = *kelvtest::nodesOfType<CTableMeta>(*scene).at(0);
    EXPECT_FALSE(label.checkClickPointIsInsideTable(osg::Matrixd(), 0.0f, 15.0f));
}

TEST(PlaneWithoutPoints, ReachesNoMatrixAndNoBound)
{
    const Scene scene = new osg::Group;
    createPlaneAndTable(featureStateSelected, "plane", scene, {}, osg::Vec3f(kNaN, 0.0f, 0.0f), 1, "Plane", 1);
    EXPECT_TRUE(kelvtest::isFiniteEverywhere(*scene));
}

TEST(LineOfLargestFloats, ReachesNoMatrixAndNoBound)
{
    for (const bool isLineArrow : {true, false}) {
        const Scene scene = new osg::Group;
        CArrowMeta::structArrowMeta meta = kelvtest::solidArrow({kLargest, 0.0f, 0.0f}, {-kLargest, 0.0f, 0.0f});
        meta.isLineArrow = isLineArrow;
        createArrowAndTable(featureStateNormal, meta, scene, 1, QStringLiteral("line"), 1);
        EXPECT_TRUE(kelvtest::isFiniteEverywhere(*scene));
    }
}

} // namespace
