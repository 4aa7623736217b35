#include "CullScene.h"

#include "support/Records.h"
#include "support/SceneQueries.h"

#include <osg/ConvexPlanarOccluder>
#include <osg/ShadowVolumeOccluder>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

std::string nameOfView(const ::testing::TestParamInfo<View>& info)
{
    return info.param.name;
}

class ScreenCullOfView : public ::testing::TestWithParam<View>
{};

TEST_P(ScreenCullOfView, DrawsWhatTheVisitorDraws)
{
    CullScene scene;
    const Culled expected = detourCull(*scene.top, GetParam());
    EXPECT_EQ(shortCull(*scene.top, GetParam()), expected);
}

TEST_P(ScreenCullOfView, DrawsOfALabelAloneWhatTheVisitorDraws)
{
    CullScene scene;
    const Culled expected = detourCull(scene.label(), GetParam());
    EXPECT_EQ(shortCull(scene.label(), GetParam()), expected);
}

TEST_P(ScreenCullOfView, DrawsOfASphereAloneWhatTheVisitorDraws)
{
    CullScene scene;
    const Culled expected = detourCull(scene.mark(), GetParam());
    EXPECT_EQ(shortCull(scene.mark(), GetParam()), expected);
}

TEST_P(ScreenCullOfView, DrawsOfManyLabelsSideBySideWhatTheVisitorDraws)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (int i = 0; i < 40; ++i) addDot(scene, std::to_string(i), osg::Vec3f(static_cast<float>(i), 0.0f, 0.0f));
    const Culled expected = detourCull(*scene, GetParam());
    EXPECT_EQ(shortCull(*scene, GetParam()), expected);
}

INSTANTIATE_TEST_SUITE_P(Views, ScreenCullOfView, ::testing::ValuesIn(cullViews()), nameOfView);

/// What is told to the visitor, or to its bins, before it culls.
const View kToldViews[] = {
    parallelBut(
        "LabelsFromTheFront",
        [](View& v) {
            v.prepare = [](osgUtil::CullVisitor& c) {
                c.getRenderStage()->find_or_insert(1, "RenderBin")->setSortMode(osgUtil::RenderBin::SORT_FRONT_TO_BACK);
            };
        }),
    parallelBut(
        "LabelsInTheOrderOfTheScene",
        [](View& v) {
            v.prepare = [](osgUtil::CullVisitor& c) {
                c.getRenderStage()->find_or_insert(1, "RenderBin")->setSortMode(osgUtil::RenderBin::TRAVERSAL_ORDER);
            };
        }),
    parallelBut("LabelsByStateFromTheFront",
                [](View& v) {
                    v.prepare = [](osgUtil::CullVisitor& c) {
                        c.getRenderStage()
                            ->find_or_insert(1, "RenderBin")
                            ->setSortMode(osgUtil::RenderBin::SORT_BY_STATE_THEN_FRONT_TO_BACK);
                    };
                }),
    parallelBut("MarksFromTheBack",
                [](View& v) {
                    v.prepare = [](osgUtil::CullVisitor& c) {
                        c.getRenderStage()->setSortMode(osgUtil::RenderBin::SORT_BACK_TO_FRONT);
                    };
                }),
    parallelBut("StateOfWhatIsInAVolume",
                [](View& v) {
                    v.prepare = [](osgUtil::CullVisitor& c) {
                        const osg::ref_ptr<osg::StateSet> inside = new osg::StateSet;
                        inside->setMode(GL_BLEND, osg::StateAttribute::ON);
                        osg::Polytope right;
                        right.add(osg::Plane(1.0, 0.0, 0.0, 0.0));
                        c.getProjectionCullingStack().back().addStateFrustum(inside, right);
                        const osg::ref_ptr<osg::RefMatrix> view = c.getModelViewMatrix();
                        c.popModelViewMatrix(); // and again, now with the volume
                        c.pushModelViewMatrix(view, osg::Transform::ABSOLUTE_RF);
                    };
                }),
};

INSTANTIATE_TEST_SUITE_P(ToldViews, ScreenCullOfView, ::testing::ValuesIn(kToldViews), nameOfView);

/// Turns the graphs of a bin round when it is sorted.
class TurnRound : public osgUtil::RenderBin::SortCallback
{
public:
    void sortImplementation(osgUtil::RenderBin* bin) override
    {
        std::reverse(bin->getStateGraphList().begin(), bin->getStateGraphList().end());
    }
};

TEST(ScreenCull, LeavesGraphsApartWhereTheHostSortsThem)
{
    CullScene scene;
    View view;
    view.prepare = [](osgUtil::CullVisitor& visitor) {
        visitor.getRenderStage()->find_or_insert(1, "RenderBin")->setSortCallback(new TurnRound);
    };
    const Culled expected = detourCull(*scene.top, view);
    EXPECT_EQ(shortCull(*scene.top, view), expected);
}

TEST(ScreenCull, DrawsWhatTheVisitorDrawsFrameByFrame)
{
    CullScene scene;
    Cull shorter(new osgUtil::CullVisitor);
    for (const View& view : cullViews()) {
        const Culled expected = detourCull(*scene.top, view);
        EXPECT_EQ(shorter(*scene.top, view), expected) << view.name;
    }
}

TEST(ScreenCull, LeavesOutWhatAnOccluderHides)
{
    CullScene scene;
    View view = viewFrom("Perspective", {0, 0, 120}, {}, perspective());
    const std::size_t all = detourCull(*scene.top, view).drawn.size();
    view.prepare = [&view](osgUtil::CullVisitor& visitor) {
        const osg::ref_ptr<osg::ConvexPlanarOccluder> wall = new osg::ConvexPlanarOccluder;
        for (const auto& [x, y] : {std::pair{-9.0f, -9.0f}, {9.0f, -9.0f}, {9.0f, 9.0f}, {-9.0f, 9.0f}})
            wall->getOccluder().add(osg::Vec3(x, y, 60.0f));
        osg::ShadowVolumeOccluder shadow;
        ASSERT_TRUE(shadow.computeOccluder({}, *wall, visitor));
        visitor.getOccluderList().push_back(shadow);
        visitor.getProjectionCullingStack().back().addOccluder(shadow);
        visitor.popModelViewMatrix(); // and again, now with the occluder
        visitor.pushModelViewMatrix(new osg::RefMatrix(view.view), osg::Transform::ABSOLUTE_RF);
    };
    const Culled expected = detourCull(*scene.top, view);
    ASSERT_LT(expected.drawn.size(), all);
    EXPECT_EQ(shortCull(*scene.top, view), expected);
}

/// The drawables of that name, in the order in which they are drawn.
std::vector<const osg::Drawable*> drawnByName(const Culled& culled, const std::string& name)
{
    std::vector<const osg::Drawable*> found;
    for (const Drawn& drawn : culled.drawn)
        if (drawn.drawable->getName() == name) found.push_back(drawn.drawable);
    return found;
}

TEST(ScreenCull, DrawsADotThatHangsInTheSceneTwiceInBothPlaces)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (const char* name : {"a", "b"}) addDot(scene, name);
    osg::Group& dots = *contentOf(*scene, featureDot);
    dots.addChild(dots.getChild(0));
    const std::vector<osg::Geometry*> fills = namedBelow<osg::Geometry>(*scene, "squareNode");
    ASSERT_EQ(fills.size(), 3u);
    EXPECT_EQ(drawnByName(shortCull(*scene, View{}), "squareNode"),
              std::vector<const osg::Drawable*>(fills.begin(), fills.end()));
}

/// How many state graphs draw something, from one downwards.
std::size_t filledBelow(const osgUtil::StateGraph& graph)
{
    std::size_t count = graph.leaves_empty() ? 0 : 1;
    for (const auto& [state, child] : graph._children) count += filledBelow(*child);
    return count;
}

/// How many state graphs draw something, of so many dots with labels.
std::size_t graphsOfDots(unsigned int count, const std::function<void(CTableMeta&, unsigned int)>& change = {})
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (unsigned int i = 0; i < count; ++i) addDot(scene, std::to_string(i));
    unsigned int index = 0;
    for (CTableMeta* label : nodesOfType<CTableMeta>(*scene))
        if (change) change(*label, index++);
    Cull cull(new osgUtil::CullVisitor);
    EXPECT_EQ(cull(*scene, View{}).drawn.size(), 4u * count);
    return filledBelow(cull.graph());
}

TEST(ScreenCull, DrawsEqualFeaturesWithTheStateOfTheFirst)
{
    EXPECT_EQ(graphsOfDots(1), 3u); // of the sphere, of outline and fill, and of the text
    EXPECT_EQ(graphsOfDots(50), 3u);
}

TEST(ScreenCull, StartsAnewBehindALabelOfAnotherState)
{
    const auto fade = [](CTableMeta& label, unsigned int index) {
        if (index == 20) stateOf(*label.getChild(0)).setMode(GL_BLEND, osg::StateAttribute::ON);
    };
    EXPECT_EQ(graphsOfDots(50, fade), 3u + 2u + 2u); // two more for the label, and for those behind it
}

TEST(ScreenCull, GivesOtherFeaturesNothingOfWhatAHostSetsLater)
{
    CullScene scene(0);
    Cull cull(new osgUtil::CullVisitor);
    cull(*scene.top, View{});
    stateOf(scene.labelGeode()).setMode(GL_BLEND, osg::StateAttribute::ON);
    const Culled expected = detourCull(*scene.top, View{});
    EXPECT_EQ(cull(*scene.top, View{}), expected);
}

/// Whether an object was made by OpenSceneGraph or this program. What this library makes is of a hidden twin of
/// the kind.
template <typename Kind>
bool outlivesTheLibrary(const Kind& object)
{
    return &typeid(object) == &typeid(Kind);
}

void expectToOutliveTheLibrary(const osgUtil::StateGraph& graph)
{
    EXPECT_TRUE(outlivesTheLibrary(graph));
    EXPECT_EQ(graph._depth, graph._parent ? graph._parent->_depth + 1 : 0);
    for (const auto& leaf : graph._leaves) {
        EXPECT_TRUE(outlivesTheLibrary(*leaf));
        EXPECT_TRUE(outlivesTheLibrary(*leaf->_modelview));
    }
    for (const auto& [state, child] : graph._children) expectToOutliveTheLibrary(*child);
}

TEST(ScreenCull, LeavesTheVisitorNothingThatNeedsTheLibraryLater)
{
    CullScene scene;
    stateOf(scene.dot()).setMode(GL_BLEND, osg::StateAttribute::ON);
    stateOf(scene.labelGeode()).setMode(GL_BLEND, osg::StateAttribute::ON);
    Cull cull(new osgUtil::CullVisitor);
    ASSERT_FALSE(cull(*scene.top, View{}).drawn.empty());
    expectToOutliveTheLibrary(cull.graph());
}

TEST(ScreenCull, LeavesMatricesAloneThatAreStillHeld)
{
    CullScene scene;
    Cull cull(new osgUtil::CullVisitor);
    cull(*scene.top, View{});
    std::vector<osg::ref_ptr<osg::RefMatrix>> held;
    std::vector<osg::Matrixd> expected;
    for (const auto& [state, graph] : cull.graph()._children)
        for (const auto& leaf : graph->_leaves) {
            held.push_back(leaf->_modelview);
            expected.push_back(*leaf->_modelview);
        }
    ASSERT_FALSE(held.empty());
    cull(*scene.top, viewFrom("", {30, 40, 120}, {}, perspective()));
    for (std::size_t i = 0; i < held.size(); ++i) EXPECT_EQ(static_cast<osg::Matrixd&>(*held[i]), expected[i]);
}

/// Counts the transforms that it is asked to cull.
class CountingVisitor : public DetourVisitor
{
public:
    using DetourVisitor::apply;
    void apply(osg::Transform& transform) override
    {
        ++transforms;
        DetourVisitor::apply(transform);
    }

    unsigned int transforms = 0;
};

TEST(ScreenCull, LeavesDerivedVisitorsTheirWays)
{
    CullScene scene;
    const osg::ref_ptr<CountingVisitor> visitor = new CountingVisitor;
    Cull{visitor}(*scene.top, View{});
    EXPECT_EQ(visitor->transforms, nodesOfType<osg::Transform>(*scene.top).size());
}

TEST(ScreenCull, ShowsANarrowLabelWhoseAnchorIsOutOfSight)
{
    const osg::ref_ptr<CTableMeta> label = new CTableMeta(labelSaying("1"));
    View view;
    view.projection = osg::Matrixd::ortho(-kCullWidth / 2.0, kCullWidth / 2.0, 20.0, 20.0 + kCullHeight, 1.0, 200.0);
    const Culled expected = detourCull(*label, view);
    ASSERT_FALSE(expected.drawn.empty());
    EXPECT_EQ(shortCull(*label, view), expected);
}

/// A label of a host's own kind, which shows nothing.
class SilentLabel : public CTableMeta
{
public:
    SilentLabel() : CTableMeta(labelSaying("Silent")) {}
    void traverse(osg::NodeVisitor&) override {}
};

TEST(ScreenCull, LeavesDerivedLabelsToThemselves)
{
    EXPECT_TRUE(shortCull(*osg::ref_ptr<osg::Node>(new SilentLabel), View{}).drawn.empty());
}

} // namespace
