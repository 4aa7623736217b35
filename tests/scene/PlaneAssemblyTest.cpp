#include "support/Config.h"
#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/NodeVisitors.h>

#include <gtest/gtest.h>

#include <osg/io_utils>

#include <cmath>
#include <limits>
#include <stdexcept>

namespace {
using namespace KelvOsgTools;
using kelvtest::childNames;
using kelvtest::childOf;
using kelvtest::contentOf;
using kelvtest::squareCorners;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
const osg::Vec3f kNoNormal(kNaN, kNaN, kNaN);

/// What createPlaneAndTable takes, with a value for everything.
struct PlaneArguments
{
    featureState state = featureStateNormal;
    QString name = QStringLiteral("plane 1");
    std::vector<osg::Vec3f> points = squareCorners(10.0f);
    osg::Vec3f normal{0.0f, 0.0f, 1.0f};
};

osg::ref_ptr<CPlaneMeta> make(const osg::ref_ptr<osg::Group>& scene, const PlaneArguments& plane = {})
{
    return dynamic_cast<CPlaneMeta*>(
        createPlaneAndTable(plane.state, plane.name, scene, plane.points, plane.normal, 7, QStringLiteral("Gap"), 42)
            .get());
}

PlaneArguments withPoints(const std::vector<osg::Vec3f>& points)
{
    PlaneArguments plane;
    plane.points = points;
    return plane;
}

PlaneArguments withNormal(const osg::Vec3f& normal)
{
    PlaneArguments plane;
    plane.normal = normal;
    return plane;
}

CArrowMeta* normalArrow(CPlaneMeta& plane, unsigned int number)
{
    return childOf<CArrowMeta>(plane, number);
}

CTableMeta* labelOf(CPlaneMeta& plane)
{
    return childOf<CTableMeta>(plane, plane.getNumChildren() - 1);
}

TEST(PlaneAssembly, HangsThePlaneUnderItsRoot)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<CPlaneMeta> plane = make(scene);
    ASSERT_NE(plane, nullptr);
    EXPECT_EQ(childNames(*contentOf(*scene, featurePlane)), (std::vector<std::string>{"plane 1"}));
    EXPECT_EQ(contentOf(*scene, featurePlane)->getChild(0), plane);
    EXPECT_EQ(kelvtest::kindOf(*plane), 3);
}

TEST(PlaneAssembly, FillsThePlaneRecord)
{
    const osg::ref_ptr<CPlaneMeta> plane = make(new osg::Group);
    const CPlaneMeta::structPlaneMeta& meta = plane->getMetaStruct();
    EXPECT_EQ(meta.planeColor, osg::Vec3f(0.6f, 0.6f, 0.6f));
    EXPECT_EQ(meta.lineColor, osg::Vec3f(1.0f, 0.0f, 0.0f));
    EXPECT_EQ(meta.planeNormal, osg::Vec3f()); // the normal passed is not stored
    EXPECT_EQ(meta.name, QStringLiteral("plane 1"));
    EXPECT_EQ(meta.pointVec, squareCorners(10.0f));
    EXPECT_EQ(meta.lineWidth, 3.0f);
    EXPECT_EQ(meta.alpha, 0.5f);
}

TEST(PlaneAssembly, HangsPatchArrowsAndLabelInThatOrder)
{
    const osg::ref_ptr<CPlaneMeta> plane = make(new osg::Group);
    EXPECT_EQ(childNames(*plane), (std::vector<std::string>{"", "normalArrow1", "normalArrow2", "showTableNode"}));
}

TEST(PlaneAssembly, PutsTheLabelAtTheCentroid)
{
    const kelvtest::RestoredConfig config;
    config->setNormalTableFontSize(23);
    const osg::ref_ptr<CPlaneMeta> plane = make(
        new osg::Group, withPoints({{0.0f, 0.0f, 0.0f}, {4.0f, 0.0f, 1.0f}, {4.0f, 6.0f, 2.0f}, {0.0f, 8.0f, 5.0f}}));
    const CTableMeta::structTableMeta& record = labelOf(*plane)->getMetaStruct();
    EXPECT_EQ(record.pos, osg::Vec3f(2.0f, 3.5f, 2.0f));
    EXPECT_EQ(record.textColor, osg::Vec4f(0.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_EQ(record.backgroundColor, osg::Vec3f(1.0f, 1.0f, 1.0f));
    EXPECT_EQ(record.tableNamePrefix, QStringLiteral("Gap"));
    EXPECT_EQ(record.tableNameIndexSuffix, 42);
    EXPECT_EQ(record.fontSize, 23);
    EXPECT_EQ(record.renderIndex, 7);
    EXPECT_TRUE(record.isAutoScale);
    EXPECT_FALSE(record.isBottom);
}

TEST(PlaneAssembly, TakesTheMeanOfAllPointsForTheCentroid)
{
    const osg::ref_ptr<CPlaneMeta> plane =
        make(new osg::Group, withPoints({{0.0f, 0.0f, 0.0f}, {0.0f, 0.0f, 0.0f}, {9.0f, 3.0f, 6.0f}}));
    EXPECT_EQ(labelOf(*plane)->getMetaStruct().pos, osg::Vec3f(3.0f, 1.0f, 2.0f));
}

TEST(PlaneAssembly, FillsTheRecordsOfTheNormalArrows)
{
    const osg::ref_ptr<CPlaneMeta> plane = make(new osg::Group);
    for (const unsigned int number : {1u, 2u}) {
        ASSERT_NE(normalArrow(*plane, number), nullptr);
        const CArrowMeta::structArrowMeta& meta = normalArrow(*plane, number)->getMetaStruct();
        EXPECT_EQ(meta.name, "ConeAndCylinderMeta");
        EXPECT_EQ(meta.color, osg::Vec4f(1.0f, 1.0f, 1.0f, 1.0f));
        EXPECT_EQ(meta.radius, 0.1f);
        EXPECT_EQ(meta.ratio, 3.0f);
        EXPECT_TRUE(meta.isLineArrow);
        EXPECT_EQ(meta.lineWidth, 2.0f);
        EXPECT_TRUE(meta.isDepthTest);
        EXPECT_TRUE(meta.isArrowHead);
    }
}

struct ArrowLength
{
    const char* label;
    std::vector<osg::Vec3f> points;
    osg::Vec3f normal;
    osg::Vec3f shaft; ///< from the start to the end of both arrows
};

void PrintTo(const ArrowLength& length, std::ostream* stream)
{
    *stream << length.label;
}

class NormalArrows : public ::testing::TestWithParam<ArrowLength>
{};

TEST_P(NormalArrows, RiseFromTheFirstAndTheThirdPoint)
{
    PlaneArguments arguments = withPoints(GetParam().points);
    arguments.normal = GetParam().normal;
    const osg::ref_ptr<CPlaneMeta> plane = make(new osg::Group, arguments);
    const osg::Vec3f starts[] = {arguments.points[0], arguments.points[2]};
    for (const unsigned int number : {1u, 2u}) {
        CArrowMeta& arrow = *normalArrow(*plane, number);
        const osg::Vec3f expectedEnd = starts[number - 1] + GetParam().shaft;
        EXPECT_EQ(arrow.getStartPos(), starts[number - 1]);
        for (unsigned int i = 0; i < 3; ++i) EXPECT_FLOAT_EQ(arrow.getEndPos()[i], expectedEnd[i]);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Lengths, NormalArrows,
    ::testing::Values(
        ArrowLength{"floor", squareCorners(10.0f), {0, 0, 1}, {0, 0, 4}},
        ArrowLength{"atTheFloor", squareCorners(20.0f), {0, 0, 1}, {0, 0, 4}},
        ArrowLength{"fifthOfTheEdge", squareCorners(100.0f), {0, 0, 1}, {0, 0, 20}},
        ArrowLength{"firstEdgeLonger", {{0, 0, 0}, {50, 0, 0}, {50, 5, 0}, {0, 5, 0}}, {1, 0, 0}, {10, 0, 0}},
        ArrowLength{"secondEdgeLonger", {{0, 0, 0}, {5, 0, 0}, {5, 50, 0}, {0, 50, 0}}, {0, 1, 0}, {0, 10, 0}},
        ArrowLength{"thirdEdgeDoesNotCount", {{0, 0, 0}, {5, 0, 0}, {5, 5, 0}, {900, 5, 0}}, {0, 0, 1}, {0, 0, 4}},
        ArrowLength{"threePoints", {{0, 0, 0}, {100, 0, 0}, {100, 10, 0}}, {0, 0, -1}, {0, 0, -20}},
        ArrowLength{"normalIsNotNormalised", squareCorners(10.0f), {0, 3, 4}, {0, 12, 16}},
        ArrowLength{"zeroNormal", squareCorners(10.0f), {0, 0, 0}, {0, 0, 0}}),
    [](const auto& length) { return std::string(length.param.label); });

TEST(PlaneAssembly, MarksTheNormalArrowsAsPartOfAFeature)
{
    const osg::ref_ptr<CPlaneMeta> plane = make(new osg::Group);
    for (const unsigned int number : {1u, 2u}) {
        CArrowMeta& arrow = *normalArrow(*plane, number);
        EXPECT_EQ(kelvtest::kindOf(arrow), -1);
        EXPECT_EQ(kelvtest::kindOf(*kelvtest::firstBelow(arrow, "arrowLineNode")), -1);
    }
}

TEST(PlaneAssembly, LeavesNothingForASearchForLines)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    make(scene);
    FindFeatureNodeVisitor search({featureLine});
    scene->accept(search);
    EXPECT_TRUE(search.m_foundNodes.empty());
}

TEST(PlaneAssembly, LeavesTheNormalArrowsOutForAnyNaNInTheNormal)
{
    for (const osg::Vec3f& normal :
         {osg::Vec3f(kNaN, 0, 0), osg::Vec3f(0, kNaN, 0), osg::Vec3f(0, 0, kNaN), kNoNormal}) {
        const osg::ref_ptr<osg::Group> scene = new osg::Group;
        const osg::ref_ptr<CPlaneMeta> plane = make(scene, withNormal(normal));
        ASSERT_NE(plane, nullptr);
        EXPECT_EQ(childNames(*plane), (std::vector<std::string>{"", "showTableNode"}));
        EXPECT_EQ(plane->getName(), "plane 1");
        EXPECT_EQ(contentOf(*scene, featurePlane)->getChild(0), plane);
    }
}

TEST(PlaneAssembly, ShowsTheStateAtOnceOnBorderArrowsAndLabel)
{
    const kelvtest::RestoredConfig config;
    featurePlaneConfig colours;
    colours.highlightedColor.set(0.1f, 0.2f, 0.3f, 1.0f);
    colours.tableHighlightedColor.set(0.4f, 0.5f, 0.6f, 1.0f);
    config->setPlaneConfig(colours);
    featureArrowConfig arrowColours;
    arrowColours.highlightedColor.set(0.7f, 0.8f, 0.9f, 1.0f);
    config->setArrowConfig(arrowColours);

    PlaneArguments arguments;
    arguments.state = featureStateHighlighted;
    const osg::ref_ptr<CPlaneMeta> plane = make(new osg::Group, arguments);
    EXPECT_EQ(kelvtest::overallColour<osg::Vec3Array>(*kelvtest::firstBelow<osg::Geometry>(*plane, "line")),
              osg::Vec3f(0.1f, 0.2f, 0.3f));
    for (const auto* const shaft : kelvtest::namedBelow<osg::Geometry>(*plane, "arrowLineNode"))
        EXPECT_EQ(kelvtest::overallColour(*shaft), arrowColours.highlightedColor);
    EXPECT_EQ(kelvtest::firstBelow<osgText::Text>(*plane, "textNode")->getColor(), colours.tableHighlightedColor);
}

TEST(PlaneAssembly, ReplacesItsNamesakesAndAppends)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    kelvtest::addPlane(scene, "plane 1");
    kelvtest::addPlane(scene, "other");
    const osg::ref_ptr<CPlaneMeta> newer = make(scene);
    EXPECT_EQ(childNames(*contentOf(*scene, featurePlane)), (std::vector<std::string>{"other", "plane 1"}));
    EXPECT_EQ(contentOf(*scene, featurePlane)->getChild(1), newer);
}

TEST(PlaneAssembly, TakesThePointsOfThePlaneThatItReplaces)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    make(scene);
    const auto& former = *childOf<CPlaneMeta>(*contentOf(*scene, featurePlane), 0);
    PlaneArguments arguments = withPoints(former.getPlaneInfo());
    arguments.name = former.getMetaStruct().name;
    const osg::ref_ptr<CPlaneMeta> newer = make(scene, arguments);
    EXPECT_EQ(newer->getPlaneInfo(), squareCorners(10.0f));
    EXPECT_EQ(contentOf(*scene, featurePlane)->getNumChildren(), 1u);
}

// Fewer than three points

class PlaneOfTooFewPoints : public ::testing::TestWithParam<std::size_t>
{
protected:
    PlaneArguments arguments() const { return withPoints(std::vector<osg::Vec3f>(GetParam())); }
};

TEST_P(PlaneOfTooFewPoints, RaisesOutOfRangeAndLeavesAnEmptySceneEmpty)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    EXPECT_THROW(make(scene, arguments()), std::out_of_range);
    EXPECT_EQ(scene->getNumChildren(), 0u);
}

TEST_P(PlaneOfTooFewPoints, KeepsTheFormerPlaneOfThatName)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    make(scene);
    const std::vector<osg::Node*> before = kelvtest::allNodes(*scene);
    EXPECT_THROW(make(scene, arguments()), std::out_of_range);
    EXPECT_EQ(kelvtest::allNodes(*scene), before);
}

TEST_P(PlaneOfTooFewPoints, AddsNoRootToASceneWithoutPlanes)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    kelvtest::addDot(scene, "dot");
    const std::vector<osg::Node*> before = kelvtest::allNodes(*scene);
    EXPECT_THROW(make(scene, arguments()), std::out_of_range);
    EXPECT_EQ(kelvtest::allNodes(*scene), before);
}

TEST_P(PlaneOfTooFewPoints, IsMadeWithoutANormal)
{
    PlaneArguments plane = arguments();
    plane.normal = kNoNormal;
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    ASSERT_NE(make(scene, plane), nullptr);
    EXPECT_EQ(childNames(*childOf(*contentOf(*scene, featurePlane), 0)),
              (std::vector<std::string>{"", "showTableNode"}));
}

TEST_P(PlaneOfTooFewPoints, IsNullWithoutAScene)
{
    EXPECT_EQ(make(nullptr, arguments()), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Counts, PlaneOfTooFewPoints, ::testing::Values(0u, 1u, 2u));

TEST(PlaneAssembly, GivesAPlaneWithoutPointsALabelRecordWithoutAPlace)
{
    const osg::ref_ptr<CPlaneMeta> plane = make(new osg::Group, PlaneArguments{featureStateNormal, {}, {}, kNoNormal});
    EXPECT_TRUE(labelOf(*plane)->getMetaStruct().pos.isNaN());
}

} // namespace
