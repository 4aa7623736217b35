#include "support/Config.h"
#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CPlaneMeta.h>
#include <KelvOsgTools/CTableMeta.h>

#include <gtest/gtest.h>

#include <osg/BlendColor>
#include <osg/BlendFunc>
#include <osg/Geode>
#include <osg/TriangleFunctor>
#include <osg/io_utils>

namespace {
using namespace KelvOsgTools;
using kelvtest::childOf;
using kelvtest::labelSaying;
using kelvtest::overallColour;
using kelvtest::planeThrough;
using kelvtest::squareCorners;

const osg::Vec4f kRed(1.0f, 0.0f, 0.0f, 1.0f);
const osg::Vec4f kBlack(0.0f, 0.0f, 0.0f, 1.0f);

osg::ref_ptr<CPlaneMeta> make(CPlaneMeta::structPlaneMeta meta = planeThrough(squareCorners(10.0f)))
{
    return new CPlaneMeta(meta);
}

std::vector<osg::Vec3f> points(std::size_t count)
{
    std::vector<osg::Vec3f> result;
    for (std::size_t i = 0; i < count; ++i)
        result.emplace_back(static_cast<float>(i), static_cast<float>(i * i), static_cast<float>(i % 2));
    return result;
}

osg::Geode& geodeOf(CPlaneMeta& plane)
{
    return *childOf<osg::Geode>(plane, 0);
}

osg::Geometry& borderOf(CPlaneMeta& plane)
{
    return *geodeOf(plane).getDrawable(0)->asGeometry();
}

osg::Geometry& patchOf(CPlaneMeta& plane)
{
    return *geodeOf(plane).getDrawable(1)->asGeometry();
}

osg::Vec3f borderColour(CPlaneMeta& plane)
{
    return overallColour<osg::Vec3Array>(borderOf(plane)).value();
}

osg::ref_ptr<CArrowMeta> arrowNamed(const std::string& name)
{
    osg::ref_ptr<CArrowMeta> arrow = new CArrowMeta(kelvtest::lineArrow({}, {0.0f, 0.0f, 4.0f}));
    arrow->setName(name);
    return arrow;
}

osg::Vec4f colourOf(CArrowMeta& arrow)
{
    return overallColour(*kelvtest::firstBelow<osg::Geometry>(arrow, "arrowLineNode")).value();
}

osg::Vec4f textColour(osg::Node& plane, std::size_t index = 0)
{
    return kelvtest::namedBelow<osgText::Text>(plane, "textNode").at(index)->getColor();
}

const osg::DrawArrays& onlyPrimitive(const osg::Geometry& geometry)
{
    EXPECT_EQ(geometry.getNumPrimitiveSets(), 1u);
    return dynamic_cast<const osg::DrawArrays&>(*geometry.getPrimitiveSet(0));
}

struct CountTriangles
{
    void operator()(const osg::Vec3&, const osg::Vec3&, const osg::Vec3&, bool = false) { ++count; }
    int count = 0;
};

// Record

TEST(PlaneRecord, HasItsDefaults)
{
    const CPlaneMeta::structPlaneMeta meta;
    EXPECT_EQ(meta.planeColor, osg::Vec3f(0.6f, 0.6f, 0.6f));
    EXPECT_EQ(meta.lineColor, osg::Vec3f(1.0f, 0.0f, 0.0f));
    EXPECT_EQ(meta.planeNormal, osg::Vec3f());
    EXPECT_EQ(meta.name, QStringLiteral("planeMeta"));
    EXPECT_TRUE(meta.pointVec.empty());
    EXPECT_EQ(meta.lineWidth, 3.0f);
    EXPECT_EQ(meta.alpha, 0.5f);
}

TEST(CPlaneMeta, KeepsACopyOfItsRecordAndLeavesTheRecordAsItIs)
{
    CPlaneMeta::structPlaneMeta meta{
        {0.1f, 0.2f, 0.3f}, {0.4f, 0.5f, 0.6f}, {1, 2, 3}, "plane", points(4), 5.0f, 0.25f};
    const osg::ref_ptr<CPlaneMeta> plane = new CPlaneMeta(meta);
    EXPECT_EQ(meta.pointVec, points(4));
    meta = {};
    const CPlaneMeta::structPlaneMeta& kept = plane->getMetaStruct();
    EXPECT_EQ(kept.planeColor, osg::Vec3f(0.1f, 0.2f, 0.3f));
    EXPECT_EQ(kept.lineColor, osg::Vec3f(0.4f, 0.5f, 0.6f));
    EXPECT_EQ(kept.planeNormal, osg::Vec3f(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(kept.name, QStringLiteral("plane"));
    EXPECT_EQ(kept.pointVec, points(4));
    EXPECT_EQ(kept.lineWidth, 5.0f);
    EXPECT_EQ(kept.alpha, 0.25f);
    EXPECT_EQ(&plane->getPlaneInfo(), &plane->getMetaStruct().pointVec);
}

// Nodes

TEST(CPlaneMeta, IsAMarkedFeatureNodeWithoutAName)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    EXPECT_EQ(kelvtest::kindOf(*plane), 3);
    EXPECT_STREQ(plane->className(), "Switch");
    EXPECT_EQ(plane->getName(), "");
}

TEST(CPlaneMeta, HoldsBorderAndPatchInThatOrder)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    ASSERT_EQ(plane->getNumChildren(), 1u);
    ASSERT_EQ(geodeOf(*plane).getNumDrawables(), 2u);
    EXPECT_EQ(borderOf(*plane).getName(), "line");
    EXPECT_EQ(patchOf(*plane).getName(), "plane");
}

TEST(CPlaneMeta, ColoursBorderAndPatchByTheRecord)
{
    CPlaneMeta::structPlaneMeta meta = planeThrough(squareCorners(10.0f));
    meta.planeColor.set(0.1f, 0.2f, 0.3f);
    meta.lineColor.set(0.4f, 0.5f, 0.6f);
    const osg::ref_ptr<CPlaneMeta> plane = make(meta);
    EXPECT_EQ(borderColour(*plane), osg::Vec3f(0.4f, 0.5f, 0.6f));
    EXPECT_EQ(overallColour<osg::Vec3Array>(patchOf(*plane)), osg::Vec3f(0.1f, 0.2f, 0.3f));
}

class PlaneOfPoints : public ::testing::TestWithParam<std::size_t>
{};

TEST_P(PlaneOfPoints, SharesOneArrayOfAllPoints)
{
    const osg::ref_ptr<CPlaneMeta> plane = make(planeThrough(points(GetParam())));
    EXPECT_EQ(borderOf(*plane).getVertexArray(), patchOf(*plane).getVertexArray());
    const auto& vertices = dynamic_cast<const osg::Vec3Array&>(*borderOf(*plane).getVertexArray());
    EXPECT_EQ(vertices.asVector(), points(GetParam()));
}

TEST_P(PlaneOfPoints, RunsItsBorderThroughAllPoints)
{
    const osg::ref_ptr<CPlaneMeta> plane = make(planeThrough(points(GetParam())));
    const osg::DrawArrays& loop = onlyPrimitive(borderOf(*plane));
    EXPECT_EQ(loop.getMode(), static_cast<GLenum>(GL_LINE_LOOP));
    EXPECT_EQ(loop.getFirst(), 0);
    EXPECT_EQ(loop.getCount(), static_cast<GLsizei>(GetParam()));
}

TEST_P(PlaneOfPoints, DrawsItsPatchInQuads)
{
    const osg::ref_ptr<CPlaneMeta> plane = make(planeThrough(points(GetParam())));
    const osg::DrawArrays& quads = onlyPrimitive(patchOf(*plane));
    EXPECT_EQ(quads.getMode(), static_cast<GLenum>(GL_QUADS));
    EXPECT_EQ(quads.getFirst(), 0);
    EXPECT_EQ(quads.getCount(), static_cast<GLsizei>(GetParam()));
}

TEST_P(PlaneOfPoints, HasTwoTrianglesForEveryWholeQuad)
{
    const osg::ref_ptr<CPlaneMeta> plane = make(planeThrough(points(GetParam())));
    osg::TriangleFunctor<CountTriangles> triangles;
    patchOf(*plane).accept(triangles);
    EXPECT_EQ(triangles.count, static_cast<int>(GetParam() / 4 * 2));
}

TEST_P(PlaneOfPoints, TakesItsStates)
{
    const osg::ref_ptr<CPlaneMeta> plane = make(planeThrough(points(GetParam())));
    plane->setState(featureStateSelected);
    EXPECT_EQ(borderColour(*plane), osg::Vec3f(1.0f, 0.0f, 0.0f));
    EXPECT_TRUE(kelvtest::isFiniteEverywhere(*plane));
}

INSTANTIATE_TEST_SUITE_P(Counts, PlaneOfPoints, ::testing::Values(0u, 1u, 2u, 3u, 4u, 5u, 7u, 8u, 9u));

TEST(PlaneOfFewerThanFourPoints, DrawsNoPatch)
{
    for (const std::size_t count : {0u, 1u, 2u, 3u})
        EXPECT_EQ(patchOf(*make(planeThrough(points(count)))).getNodeMask(), 0u) << count;
    for (const std::size_t count : {4u, 5u})
        EXPECT_NE(patchOf(*make(planeThrough(points(count)))).getNodeMask(), 0u) << count;
}

TEST(PlaneOfFewerThanFourPoints, StillDrawsItsBorder)
{
    const osg::ref_ptr<CPlaneMeta> plane = make(planeThrough(points(3)));
    EXPECT_NE(borderOf(*plane).getNodeMask(), 0u);
    EXPECT_NE(geodeOf(*plane).getNodeMask(), 0u);
}

// Appearance

TEST(PlaneAppearance, IsUnlitTransparentAndAsWideAsTheRecordSays)
{
    CPlaneMeta::structPlaneMeta meta = planeThrough(squareCorners(10.0f));
    meta.lineWidth = 5.5f;
    const osg::ref_ptr<CPlaneMeta> plane = make(meta);
    const osg::StateSet* const state = geodeOf(*plane).getStateSet();
    ASSERT_NE(state, nullptr);
    EXPECT_EQ(state->getMode(GL_LIGHTING), static_cast<unsigned int>(osg::StateAttribute::OFF));
    EXPECT_EQ(state->getRenderingHint(), static_cast<int>(osg::StateSet::TRANSPARENT_BIN));
    EXPECT_EQ(kelvtest::lineWidthOf(geodeOf(*plane)), 5.5f);
}

class PlaneOpacity : public ::testing::TestWithParam<float>
{};

TEST_P(PlaneOpacity, IsTheConstantBlendColour)
{
    CPlaneMeta::structPlaneMeta meta = planeThrough(squareCorners(10.0f));
    meta.alpha = GetParam();
    const osg::ref_ptr<CPlaneMeta> plane = make(meta);
    const auto* const blend = dynamic_cast<const osg::BlendColor*>(
        geodeOf(*plane).getStateSet()->getAttribute(osg::StateAttribute::BLENDCOLOR));
    ASSERT_NE(blend, nullptr);
    EXPECT_EQ(blend->getConstantColor(), osg::Vec4(1.0f, 1.0f, 1.0f, GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Alphas, PlaneOpacity, ::testing::Values(0.0f, 0.25f, 0.5f, 1.0f));

TEST(PlaneAppearance, BlendsByTheConstantAlphaForColourAndAlpha)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    const osg::StateSet& state = *geodeOf(*plane).getStateSet();
    const auto* const blend = dynamic_cast<const osg::BlendFunc*>(state.getAttribute(osg::StateAttribute::BLENDFUNC));
    ASSERT_NE(blend, nullptr);
    EXPECT_EQ(blend->getSource(), static_cast<GLenum>(osg::BlendFunc::CONSTANT_ALPHA));
    EXPECT_EQ(blend->getSourceAlpha(), static_cast<GLenum>(osg::BlendFunc::CONSTANT_ALPHA));
    EXPECT_EQ(blend->getDestination(), static_cast<GLenum>(osg::BlendFunc::ONE_MINUS_CONSTANT_ALPHA));
    EXPECT_EQ(blend->getDestinationAlpha(), static_cast<GLenum>(osg::BlendFunc::ONE_MINUS_CONSTANT_ALPHA));
    EXPECT_EQ(state.getMode(GL_BLEND), static_cast<unsigned int>(osg::StateAttribute::ON));
}

TEST(PlaneAppearance, IsSharedByBorderAndPatch)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    EXPECT_EQ(borderOf(*plane).getStateSet(), nullptr);
    EXPECT_EQ(patchOf(*plane).getStateSet(), nullptr);
}

// Normal arrows

TEST(PlaneArrow, BecomesAChildWhateverItIs)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    const osg::ref_ptr<osg::Group> arrow = arrowNamed("normalArrow1");
    const osg::ref_ptr<osg::Group> group = new osg::Group;
    EXPECT_TRUE(plane->addNormalArrow(arrow));
    EXPECT_TRUE(plane->addNormalArrow(group));
    ASSERT_EQ(plane->getNumChildren(), 3u);
    EXPECT_EQ(plane->getChild(1), arrow);
    EXPECT_EQ(plane->getChild(2), group);
}

TEST(PlaneArrow, OfNullIsRefused)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    EXPECT_FALSE(plane->addNormalArrow(nullptr));
    EXPECT_EQ(plane->getNumChildren(), 1u);
}

TEST(PlaneArrow, TakesTheStateIfItHasOneOfTheTwoNames)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    const osg::ref_ptr<CArrowMeta> first = arrowNamed("normalArrow1");
    const osg::ref_ptr<CArrowMeta> second = arrowNamed("normalArrow2");
    const osg::ref_ptr<CArrowMeta> third = arrowNamed("normalArrow3");
    for (const auto& arrow : {second, first, third}) plane->addNormalArrow(arrow);
    plane->setState(featureStateSelected);
    EXPECT_EQ(colourOf(*first), kRed);
    EXPECT_EQ(colourOf(*second), kRed);
    EXPECT_EQ(colourOf(*third), osg::Vec4f(1.0f, 1.0f, 1.0f, 1.0f));
}

TEST(PlaneArrow, OfThatNameThatIsNoFeatureIsPassedOver)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    plane->addNormalArrow(kelvtest::namedGroup("normalArrow1"));
    const osg::ref_ptr<CArrowMeta> second = arrowNamed("normalArrow2");
    plane->addNormalArrow(second);
    plane->setState(featureStateSelected);
    EXPECT_EQ(colourOf(*second), kRed);
}

// Label

TEST(PlaneLabel, BecomesAChild)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    const osg::ref_ptr<CTableMeta> table = new CTableMeta(labelSaying("Gap"));
    EXPECT_TRUE(plane->addTable(table));
    ASSERT_EQ(plane->getNumChildren(), 2u);
    EXPECT_EQ(plane->getChild(1), table);
}

TEST(PlaneLabel, OfNullChangesNothing)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    plane->addTable(new CTableMeta(labelSaying("Gap")));
    EXPECT_FALSE(plane->addTable(nullptr));
    EXPECT_EQ(plane->getNumChildren(), 2u);
    plane->setState(featureStateSelected);
    EXPECT_EQ(textColour(*plane), kRed);
}

TEST(PlaneLabel, ThatIsNoTableIsAcceptedButNotKept)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    plane->addTable(new CTableMeta(labelSaying("Gap")));
    EXPECT_TRUE(plane->addTable(new osg::Group));
    EXPECT_EQ(plane->getNumChildren(), 2u);
    plane->setState(featureStateSelected); // no longer reaches the label
    EXPECT_EQ(textColour(*plane), kBlack);
}

TEST(PlaneLabel, IsReplacedAndStaysAChildThatNoStateReaches)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    plane->addTable(new CTableMeta(labelSaying("first")));
    plane->addTable(new CTableMeta(labelSaying("second")));
    EXPECT_EQ(plane->getNumChildren(), 3u);
    plane->setState(featureStateSelected);
    EXPECT_EQ(textColour(*plane, 0), kBlack);
    EXPECT_EQ(textColour(*plane, 1), kRed);
}

// States

TEST(PlaneState, ColoursTheBorderFromThePlaneConfiguration)
{
    const kelvtest::RestoredConfig config;
    config->setPlaneConfig({kBlack, kBlack, osg::Vec4f(0.4f, 0.5f, 0.6f, 0.7f), osg::Vec4f(0.1f, 0.2f, 0.3f, 0.8f)});
    const osg::ref_ptr<CPlaneMeta> plane = make();
    const osg::Vec3f selected(0.1f, 0.2f, 0.3f);
    const osg::Vec3f highlighted(0.4f, 0.5f, 0.6f);
    for (const auto& [state, color] : std::vector<std::pair<int, osg::Vec3f>>{
             {2, selected}, {3, highlighted}, {0, {}}, {2, selected}, {1, {}}, {3, highlighted}, {-1, {}}, {99, {}}}) {
        plane->setState(static_cast<featureState>(state));
        EXPECT_EQ(borderColour(*plane), color) << state;
    }
}

TEST(PlaneState, ColoursTheLabelFromThePlaneConfiguration)
{
    const kelvtest::RestoredConfig config;
    config->setPlaneConfig({{0.4f, 0.4f, 0.4f, 1.0f}, {0.5f, 0.5f, 0.5f, 1.0f}, kBlack, kBlack});
    const osg::ref_ptr<CPlaneMeta> plane = make();
    plane->addTable(new CTableMeta(labelSaying("Gap")));
    plane->setState(featureStateHighlighted);
    EXPECT_EQ(textColour(*plane), osg::Vec4f(0.4f, 0.4f, 0.4f, 1.0f));
    plane->setState(featureStateSelected);
    EXPECT_EQ(textColour(*plane), osg::Vec4f(0.5f, 0.5f, 0.5f, 1.0f));
}

TEST(PlaneState, NeverColoursThePatch)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    for (const int state : {2, 3, 0, 1}) {
        plane->setState(static_cast<featureState>(state));
        EXPECT_EQ(overallColour<osg::Vec3Array>(patchOf(*plane)), osg::Vec3f(0.6f, 0.6f, 0.6f));
    }
}

TEST(PlaneState, LeavesWidthAndOpacityAsTheyAre)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    plane->setState(featureStateSelected);
    EXPECT_EQ(kelvtest::lineWidthOf(geodeOf(*plane)), 3.0f);
    EXPECT_EQ(borderOf(*plane).getStateSet(), nullptr);
}

TEST(PlaneState, StartsNormalSoThatNormalChangesNothing)
{
    CPlaneMeta::structPlaneMeta meta = planeThrough(squareCorners(10.0f));
    meta.lineColor.set(0.4f, 0.5f, 0.6f);
    const osg::ref_ptr<CPlaneMeta> plane = make(meta);
    plane->setState(featureStateNormal);
    EXPECT_EQ(borderColour(*plane), osg::Vec3f(0.4f, 0.5f, 0.6f));
}

TEST(PlaneState, IsIgnoredWhenItIsThePresentOneEvenIfColoursChanged)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    plane->setState(featureStateSelected);
    const osg::ref_ptr<osg::Vec3Array> colours = new osg::Vec3Array(osg::Array::BIND_OVERALL);
    colours->push_back(osg::Vec3f(0.5f, 0.5f, 0.5f));
    borderOf(*plane).setColorArray(colours);
    plane->setState(featureStateSelected);
    EXPECT_EQ(borderOf(*plane).getColorArray(), colours);
}

TEST(PlaneState, GivesTheBorderAFreshColourArray)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    const osg::ref_ptr<const osg::Array> before = borderOf(*plane).getColorArray();
    plane->setState(featureStateHighlighted);
    EXPECT_NE(borderOf(*plane).getColorArray(), before);
}

TEST(PlaneState, ChangesABorderThatIsDynamic)
{
    EXPECT_EQ(borderOf(*make()).getDataVariance(), osg::Object::DYNAMIC);
}

TEST(PlaneState, ReachesLabelAndArrowsEvenWhereTheBorderIsGone)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    const osg::ref_ptr<CArrowMeta> arrow = arrowNamed("normalArrow1");
    plane->addNormalArrow(arrow);
    plane->addTable(new CTableMeta(labelSaying("Gap")));
    plane->removeChildren(0, 1);
    plane->setState(featureStateSelected);
    EXPECT_EQ(colourOf(*arrow), kRed);
    EXPECT_EQ(textColour(*plane), kRed);
}

TEST(PlaneState, PassesOverANodeOfTheBordersNameThatIsNoGeometry)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    const osg::ref_ptr<osg::Geometry> border = &borderOf(*plane);
    plane->insertChild(0, kelvtest::namedGroup("line"));
    plane->setState(featureStateHighlighted);
    EXPECT_EQ(overallColour<osg::Vec3Array>(*border), osg::Vec3f(1.0f, 0.0f, 0.0f));
}

TEST(PlaneState, ReachesThePartsOfAPlaneThatIsNamedLikeThem)
{
    for (const char* const name : {"line", "plane", "normalArrow1", "normalArrow2"}) {
        const osg::ref_ptr<CPlaneMeta> plane = make();
        const osg::ref_ptr<CArrowMeta> arrow = arrowNamed("normalArrow1");
        plane->addNormalArrow(arrow);
        plane->setName(name);
        plane->setState(featureStateHighlighted);
        EXPECT_EQ(borderColour(*plane), osg::Vec3f(0.0f, 1.0f, 0.0f));
        EXPECT_EQ(colourOf(*arrow), osg::Vec4f(0.0f, 1.0f, 0.0f, 1.0f));
    }
}

// Copy

TEST(PlaneCopy, SharesPartsLabelAndRecord)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    plane->addTable(new CTableMeta(labelSaying("Gap")));
    const osg::ref_ptr<CPlaneMeta> copy = new CPlaneMeta(*plane);
    ASSERT_EQ(copy->getNumChildren(), 2u);
    EXPECT_EQ(copy->getChild(0), plane->getChild(0));
    EXPECT_EQ(copy->getPlaneInfo(), plane->getPlaneInfo());
    EXPECT_EQ(kelvtest::kindOf(*copy), 3);
    copy->setState(featureStateSelected);
    EXPECT_EQ(textColour(*plane), kRed);
    EXPECT_EQ(borderColour(*plane), osg::Vec3f(1.0f, 0.0f, 0.0f));
}

TEST(PlaneCopy, TakesTheStateOver)
{
    const osg::ref_ptr<CPlaneMeta> plane = make();
    plane->setState(featureStateHighlighted);
    const osg::ref_ptr<CPlaneMeta> copy = new CPlaneMeta(*plane);
    plane->setState(featureStateNormal);
    copy->setState(featureStateHighlighted); // the copy's state all along
    EXPECT_EQ(borderColour(*plane), osg::Vec3f());
}

} // namespace
