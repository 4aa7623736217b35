#include <KelvOsgTools/CTableMeta.h>

#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <osg/AutoTransform>
#include <osg/ConvexPlanarOccluder>
#include <osg/Depth>
#include <osg/Geode>
#include <osg/LineWidth>
#include <osg/Material>
#include <osg/MatrixTransform>
#include <osg/PolygonMode>
#include <osg/ShadowVolumeOccluder>
#include <osg/ShapeDrawable>
#include <osg/Texture2D>
#include <osg/Viewport>
#include <osgText/Text>
#include <osgUtil/CullVisitor>
#include <osgUtil/RenderStage>
#include <osgUtil/StateGraph>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <ostream>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

constexpr int kWidth = 640;
constexpr int kHeight = 480;

/// A cull visitor that is led no shorter way, as features know nothing of its kind.
class DetourVisitor : public osgUtil::CullVisitor
{};

/// Whether numbers are equal, or both none.
bool areSame(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool areSame(const osg::Matrixd& a, const osg::Matrixd& b)
{
    return std::equal(a.ptr(), a.ptr() + 16, b.ptr(), [](double x, double y) { return areSame(x, y); });
}

/// What a drawable is drawn with. Of no account is the line width of what is filled.
struct Drawn
{
    const osg::Drawable* drawable = nullptr;
    osg::Matrixd matrix;
    osg::Matrixd projection;
    float depth = 0.0f;
    bool isDynamic = false;
    int bin = 0;
    std::map<std::string, std::string> state;

    bool operator==(const Drawn& other) const
    {
        return drawable == other.drawable && areSame(matrix, other.matrix) && areSame(projection, other.projection) &&
               areSame(depth, other.depth) && isDynamic == other.isDynamic && bin == other.bin && state == other.state;
    }
};

void PrintTo(const Drawn& drawn, std::ostream* out)
{
    *out << drawn.drawable->getName() << " at depth " << drawn.depth << " in bin " << drawn.bin
         << (drawn.isDynamic ? ", dynamic" : "");
    for (const auto& [name, value] : drawn.state) *out << ", " << name << '=' << value;
}

struct Culled
{
    std::vector<Drawn> drawn; // in order
    std::vector<int> bins;
    double nearest = 0.0;
    double farthest = 0.0;
    std::vector<osg::Matrixd> poses; // of auto-scaled transforms: their scales and rotations

    bool operator==(const Culled& other) const
    {
        return drawn == other.drawn && bins == other.bins && nearest == other.nearest && farthest == other.farthest &&
               std::equal(poses.begin(), poses.end(), other.poses.begin(), other.poses.end(),
                          [](const osg::Matrixd& a, const osg::Matrixd& b) { return areSame(a, b); });
    }
};

void PrintTo(const Culled& culled, std::ostream* out)
{
    *out << "from " << culled.nearest << " to " << culled.farthest << '\n';
    for (const Drawn& drawn : culled.drawn) {
        PrintTo(drawn, out);
        *out << '\n';
    }
}

std::string addressOf(const void* object)
{
    return std::to_string(reinterpret_cast<std::uintptr_t>(object));
}

/// Overlays the settings of state sets from the outermost to the innermost, as OpenSceneGraph does.
class EffectiveState
{
public:
    void overlay(const osg::StateSet& state)
    {
        for (const auto& [mode, value] : state.getModeList())
            set("mode " + std::to_string(mode), std::to_string(value & osg::StateAttribute::ON), value);
        for (const auto& [type, entry] : state.getAttributeList()) {
            const auto* const width = dynamic_cast<const osg::LineWidth*>(entry.first.get());
            set("attribute " + std::to_string(type.first),
                width ? std::to_string(width->getWidth()) : addressOf(entry.first), entry.second);
        }
        for (std::size_t unit = 0; unit < state.getTextureModeList().size(); ++unit)
            for (const auto& [mode, value] : state.getTextureModeList()[unit])
                set("texture mode " + std::to_string(mode), std::to_string(value & osg::StateAttribute::ON), value);
        for (std::size_t unit = 0; unit < state.getTextureAttributeList().size(); ++unit)
            for (const auto& [type, entry] : state.getTextureAttributeList()[unit])
                set("texture " + std::to_string(type.first), addressOf(entry.first), entry.second);
        for (const auto& [name, entry] : state.getUniformList())
            set("uniform " + name, addressOf(entry.first), entry.second);
        for (const auto& [name, entry] : state.getDefineList()) set("define " + name, entry.first, entry.second);
    }

    std::map<std::string, std::string> settings(const osg::Drawable& drawable) const
    {
        const auto widthKey = "attribute " + std::to_string(osg::StateAttribute::LINEWIDTH);
        const auto polygonKey = "attribute " + std::to_string(osg::StateAttribute::POLYGONMODE);
        std::map<std::string, std::string> found;
        for (const auto& [name, value] : m_values)
            if (name != widthKey || m_values.count(polygonKey) != 0 || drawable.getName() == "squareLineNode")
                found[name] = value.first;
        return found;
    }

private:
    void set(const std::string& name, const std::string& value, unsigned int flags)
    {
        const auto found = m_values.find(name);
        const bool isBound = found != m_values.end() && (found->second.second & osg::StateAttribute::OVERRIDE) != 0;
        if (!isBound || (flags & osg::StateAttribute::PROTECTED) != 0) m_values[name] = {value, flags};
    }

    std::map<std::string, std::pair<std::string, unsigned int>> m_values;
};

Drawn drawnOf(const osgUtil::RenderLeaf& leaf, int bin)
{
    std::vector<const osg::StateSet*> states;
    for (const osgUtil::StateGraph* graph = leaf._parent; graph; graph = graph->_parent)
        if (graph->getStateSet()) states.push_back(graph->getStateSet());
    EffectiveState effective;
    std::for_each(states.rbegin(), states.rend(), [&](const osg::StateSet* state) { effective.overlay(*state); });
    return {leaf.getDrawable(),
            *leaf._modelview,
            *leaf._projection,
            leaf._depth,
            leaf._dynamic,
            bin,
            effective.settings(*leaf.getDrawable())};
}

/// Lists what a bin draws, in order.
void listDrawn(osgUtil::RenderBin& bin, Culled& culled)
{
    culled.bins.push_back(bin.getBinNum());
    auto inner = bin.getRenderBinList().begin();
    const auto end = bin.getRenderBinList().end();
    for (; inner != end && inner->first < 0; ++inner) listDrawn(*inner->second, culled);
    for (const osgUtil::RenderLeaf* leaf : bin.getRenderLeafList())
        culled.drawn.push_back(drawnOf(*leaf, bin.getBinNum()));
    for (const osgUtil::StateGraph* graph : bin.getStateGraphList())
        for (const auto& leaf : graph->_leaves) culled.drawn.push_back(drawnOf(*leaf, bin.getBinNum()));
    for (; inner != end; ++inner) listDrawn(*inner->second, culled);
}

/// How a scene is looked at.
struct View
{
    const char* name = "Parallel";
    osg::Matrixd view = osg::Matrixd::lookAt(osg::Vec3d(0, 0, 100), osg::Vec3d(), osg::Vec3d(0, 1, 0));
    osg::Matrixd projection =
        osg::Matrixd::ortho(-kWidth / 2.0, kWidth / 2.0, -kHeight / 2.0, kHeight / 2.0, 1.0, 200.0);
    osg::CullSettings::ComputeNearFarMode nearFar = osg::CullSettings::COMPUTE_NEAR_FAR_USING_BOUNDING_VOLUMES;
    osg::CullSettings::CullingMode culling = osg::CullSettings::DEFAULT_CULLING;
    float smallPixels = 2.0f;
    std::function<void(osgUtil::CullVisitor&)> prepare = [](osgUtil::CullVisitor&) {};
};

class Cull
{
public:
    explicit Cull(osgUtil::CullVisitor* visitor) : m_visitor(visitor) {}

    Culled operator()(osg::Node& scene, const View& view)
    {
        m_graph->clean();
        m_stage->reset();
        m_visitor->reset();
        m_visitor->setStateGraph(m_graph);
        m_visitor->setRenderStage(m_stage);
        m_visitor->setComputeNearFarMode(view.nearFar);
        m_visitor->setCullingMode(view.culling);
        m_visitor->setSmallFeatureCullingPixelSize(view.smallPixels);
        m_visitor->pushViewport(m_viewport);
        m_visitor->pushProjectionMatrix(new osg::RefMatrix(view.projection));
        m_visitor->pushModelViewMatrix(new osg::RefMatrix(view.view), osg::Transform::ABSOLUTE_RF);
        view.prepare(*m_visitor);
        scene.accept(*m_visitor);
        m_visitor->popModelViewMatrix();
        Culled culled;
        culled.nearest = m_visitor->getCalculatedNearPlane();
        culled.farthest = m_visitor->getCalculatedFarPlane();
        m_visitor->popProjectionMatrix();
        m_visitor->popViewport();
        m_stage->sort();
        listDrawn(*m_stage, culled);
        for (const auto* transform : nodesOfType<osg::AutoTransform>(scene))
            culled.poses.push_back(osg::Matrixd::scale(transform->getScale()) *
                                   osg::Matrixd::rotate(transform->getRotation()));
        return culled;
    }

    const osgUtil::StateGraph& graph() const { return *m_graph; }

    /// How many graphs draw something.
    std::size_t filledGraphs() const { return filledBelow(*m_graph); }

private:
    static std::size_t filledBelow(const osgUtil::StateGraph& graph)
    {
        std::size_t count = graph.leaves_empty() ? 0 : 1;
        for (const auto& [state, child] : graph._children) count += filledBelow(*child);
        return count;
    }

    osg::ref_ptr<osgUtil::CullVisitor> m_visitor;
    osg::ref_ptr<osgUtil::StateGraph> m_graph = new osgUtil::StateGraph;
    osg::ref_ptr<osgUtil::RenderStage> m_stage = new osgUtil::RenderStage;
    osg::ref_ptr<osg::Viewport> m_viewport = new osg::Viewport(0, 0, kWidth, kHeight);
};

Culled shortCull(osg::Node& scene, const View& view)
{
    return Cull(new osgUtil::CullVisitor)(scene, view);
}

Culled detourCull(osg::Node& scene, const View& view)
{
    return Cull(new DetourVisitor)(scene, view);
}

/// Features with overlapping labels, one after the other, of which a host may change the middle one; and some
/// that stand elsewhere, turned.
struct Scene
{
    explicit Scene(unsigned int changedDot = 2, bool isTurned = false)
        : changed(changedDot), around(isTurned ? turned.get() : top.get())
    {
        const auto fill = [](const osg::ref_ptr<osg::Group>& group, const osg::Vec3f& at) {
            for (const char* name : {"dot-1", "dot-2", "dot-3", "dot-4", "dot-5"})
                addDot(group, name, at + osg::Vec3f(7.0f * static_cast<float>(name[4] - '3'), 0.0f, 3.0f));
            addFlagDot(group, "flag", featureDot, at + osg::Vec3f(30.0f, 20.0f, 0.0f));
            addLine(group, "line", at, at + osg::Vec3f(40.0f, 30.0f, 10.0f));
            addPlane(group, "plane");
        };
        fill(top, osg::Vec3f());
        fill(turned, osg::Vec3f(15.0f, 10.0f, 5.0f));
        turned->setMatrix(osg::Matrixd::scale(1.5, 1.5, 1.5) * osg::Matrixd::rotate(0.4, osg::Vec3d(1.0, 2.0, 3.0)) *
                          osg::Matrixd::translate(-60.0, 40.0, -20.0));
        top->addChild(turned);
    }

    osg::Group& dots() { return *contentOf(*around, featureDot); }
    osg::Group& dot() { return *dots().getChild(changed)->asGroup(); }
    osg::AutoTransform& mark() { return *childOf<osg::AutoTransform>(dot(), 0); }
    osg::Geode& markGeode() { return *mark().getChild(0)->asGeode(); }
    osg::Drawable& sphere() { return *markGeode().getDrawable(0); }
    CTableMeta& label() { return *childOf<CTableMeta>(dot(), 1); }
    osg::Geode& labelGeode() { return *label().getChild(0)->asGeode(); }
    osg::Drawable& outline() { return *labelGeode().getDrawable(0); }
    osg::Drawable& fill() { return *labelGeode().getDrawable(1); }
    osgText::Text& text() { return *dynamic_cast<osgText::Text*>(labelGeode().getDrawable(2)); }

    osg::ref_ptr<osg::Group> top = new osg::Group;
    osg::ref_ptr<osg::MatrixTransform> turned = new osg::MatrixTransform;
    unsigned int changed;
    osg::ref_ptr<osg::Group> around; // the changed dot
};

osg::Matrixd perspective()
{
    return osg::Matrixd::perspective(40.0, double(kWidth) / kHeight, 1.0, 1000.0);
}

View viewFrom(const char* name, const osg::Vec3d& eye, const osg::Vec3d& target, const osg::Matrixd& projection)
{
    View view;
    view.name = name;
    view.view = osg::Matrixd::lookAt(eye, target, osg::Vec3d(0.1, 1.0, 0.2));
    view.projection = projection;
    return view;
}

/// A parallel view that shows so many units across, around a point.
View closeUp(const char* name, const osg::Vec2d& centre, double across)
{
    const double up = across * kHeight / kWidth;
    View view;
    view.name = name;
    view.projection = osg::Matrixd::ortho(centre.x() - across / 2, centre.x() + across / 2, centre.y() - up / 2,
                                          centre.y() + up / 2, 1.0, 200.0);
    return view;
}

template <typename Change>
View parallelBut(const char* name, Change&& change)
{
    View view;
    view.name = name;
    change(view);
    return view;
}

void PrintTo(const View& view, std::ostream* out)
{
    *out << view.name;
}

const View kViews[] = {
    View{},
    viewFrom("Perspective", {30, 40, 120}, {}, perspective()),
    viewFrom("Near", {5, 4, 12}, {0, 0, 3}, perspective()),
    viewFrom("FromAmidst", {0, 0, 3}, {7, 1, 3}, perspective()),
    viewFrom("FromBehind", {0, 10, -150}, {}, perspective()),
    viewFrom("LookingAway", {0, 0, 100}, {0, 0, 300}, perspective()),
    closeUp("CloseUp", {0.0, 0.0}, 60.0),
    closeUp("CutAtTheEdge", {-20.0, 10.0}, 40.0),
    closeUp("Above", {0.0, 18.0}, 12.0),
    parallelBut("LabelsPeepIn",
                [](View& v) {
                    v.projection = osg::Matrixd::ortho(-kWidth / 2.0, kWidth / 2.0, 25.0, 25.0 + kHeight, 1.0, 200.0);
                }),
    closeUp("FarOff", {500.0, 0.0}, 100.0),
    closeUp("Wide", {0.0, 0.0}, 1e5),
    parallelBut("WithoutPlanes", [](View& v) { v.nearFar = osg::CullSettings::DO_NOT_COMPUTE_NEAR_FAR; }),
    parallelBut("PlanesByPrimitives",
                [](View& v) { v.nearFar = osg::CullSettings::COMPUTE_NEAR_FAR_USING_PRIMITIVES; }),
    parallelBut("NearByPrimitives", [](View& v) { v.nearFar = osg::CullSettings::COMPUTE_NEAR_USING_PRIMITIVES; }),
    parallelBut("NoCulling", [](View& v) { v.culling = osg::CullSettings::NO_CULLING; }),
    parallelBut("AllCulling", [](View& v) { v.culling = osg::CullSettings::ENABLE_ALL_CULLING; }),
    parallelBut("SmallFeaturesOnly", [](View& v) { v.culling = osg::CullSettings::SMALL_FEATURE_CULLING; }),
    parallelBut("DotsTooSmall", [](View& v) { v.smallPixels = 12.0f; }),
    parallelBut("LabelsTooSmall", [](View& v) { v.smallPixels = 60.0f; }),
    parallelBut("PrimitivesWithoutCulling",
                [](View& v) {
                    v.culling = osg::CullSettings::NO_CULLING;
                    v.nearFar = osg::CullSettings::COMPUTE_NEAR_FAR_USING_PRIMITIVES;
                }),
    parallelBut("NearByPrimitivesWithoutCulling",
                [](View& v) {
                    v.culling = osg::CullSettings::NO_CULLING;
                    v.nearFar = osg::CullSettings::COMPUTE_NEAR_USING_PRIMITIVES;
                }),
    parallelBut("FarOffWithoutCulling",
                [](View& v) {
                    v.projection = closeUp("", {500.0, 0.0}, 100.0).projection;
                    v.culling = osg::CullSettings::NO_CULLING;
                }),
    parallelBut("FromAmidstWithoutCulling",
                [](View& v) {
                    v.view = osg::Matrixd::lookAt(osg::Vec3d(0.5, 0.2, 3.3), osg::Vec3d(7, 1, 3), osg::Vec3d(0, 1, 0));
                    v.projection = perspective();
                    v.culling = osg::CullSettings::NO_CULLING;
                }),
    parallelBut("Flat", [](View& v) { v.view.makeScale(1.0, 1.0, 0.0); }),
    parallelBut("NotANumber", [](View& v) { v.view(0, 2) = std::numeric_limits<double>::quiet_NaN(); }),
    parallelBut("NotANumberWithoutCulling",
                [](View& v) {
                    v.view(3, 2) = std::numeric_limits<double>::quiet_NaN();
                    v.culling = osg::CullSettings::NO_CULLING;
                }),
    parallelBut("AnotherTraversalMask",
                [](View& v) { v.prepare = [](osgUtil::CullVisitor& c) { c.setTraversalMask(2); }; }),
    parallelBut("SwitchedOffNodesToo",
                [](View& v) {
                    v.prepare = [](osgUtil::CullVisitor& c) {
                        c.setTraversalMode(osg::NodeVisitor::TRAVERSE_ALL_CHILDREN);
                    };
                }),
    parallelBut("NoChildren",
                [](View& v) {
                    v.prepare = [](osgUtil::CullVisitor& c) { c.setTraversalMode(osg::NodeVisitor::TRAVERSE_NONE); };
                }),
};

std::string nameOfView(const ::testing::TestParamInfo<View>& info)
{
    return info.param.name;
}

class ScreenCullOfView : public ::testing::TestWithParam<View>
{};

TEST_P(ScreenCullOfView, DrawsWhatTheVisitorDraws)
{
    Scene scene;
    const Culled expected = detourCull(*scene.top, GetParam());
    EXPECT_EQ(shortCull(*scene.top, GetParam()), expected);
}

TEST_P(ScreenCullOfView, DrawsOfALabelAloneWhatTheVisitorDraws)
{
    Scene scene;
    const Culled expected = detourCull(scene.label(), GetParam());
    EXPECT_EQ(shortCull(scene.label(), GetParam()), expected);
}

TEST_P(ScreenCullOfView, DrawsOfASphereAloneWhatTheVisitorDraws)
{
    Scene scene;
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

INSTANTIATE_TEST_SUITE_P(Views, ScreenCullOfView, ::testing::ValuesIn(kViews), nameOfView);

/// A change by the host to the middle dot, or to what is around it.
struct Change
{
    const char* name;
    std::function<void(Scene&)> make;
};

void PrintTo(const Change& change, std::ostream* out)
{
    *out << change.name;
}

class CullCallback : public osg::NodeCallback
{
public:
    void operator()(osg::Node*, osg::NodeVisitor*) override {}
};

class DrawableCullCallback : public osg::DrawableCullCallback
{
public:
    bool cull(osg::NodeVisitor*, osg::Drawable*, osg::RenderInfo*) const override { return true; }
};

/// A drawable that keeps away from visitors.
class ShyDrawable : public osg::Geometry
{
public:
    explicit ShyDrawable(osg::StateSet* state = nullptr)
    {
        setStateSet(state);
        setInitialBound(osg::BoundingBox(-5.0f, -5.0f, -5.0f, 5.0f, 5.0f, 5.0f));
    }
    using osg::Geometry::accept;
    void accept(osg::NodeVisitor&) override {}
};

void hide(osg::Node& node)
{
    node.setNodeMask(0);
}

void withhold(osg::Node& node)
{
    node.setCullCallback(new CullCallback);
}

void withhold(osg::Drawable& drawable)
{
    drawable.setCullCallback(new DrawableCullCallback);
}

osg::StateSet& stateOf(osg::Node& node)
{
    return *node.getOrCreateStateSet();
}

/// A plain geode that is drawn among the labels.
osg::ref_ptr<osg::Geode> hostGeode()
{
    osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(new osg::ShapeDrawable(new osg::Box));
    geode->getOrCreateStateSet()->setRenderBinDetails(-1, "RenderBin");
    return geode;
}

constexpr auto kProtectedBin = static_cast<osg::StateSet::RenderBinMode>(osg::StateSet::USE_RENDERBIN_DETAILS |
                                                                         osg::StateSet::PROTECTED_RENDERBIN_DETAILS);

const Change kStateChanges[] = {
    {"ModeOfLabel", [](Scene& s) { stateOf(s.labelGeode()).setMode(GL_DEPTH_TEST, osg::StateAttribute::ON); }},
    {"ModeOfLabelProtected",
     [](Scene& s) {
         stateOf(s.labelGeode()).setMode(GL_LIGHTING, osg::StateAttribute::OFF | osg::StateAttribute::PROTECTED);
     }},
    {"OneModeMore", [](Scene& s) { stateOf(s.labelGeode()).setMode(GL_BLEND, osg::StateAttribute::ON); }},
    {"OneModeLess", [](Scene& s) { stateOf(s.labelGeode()).removeMode(GL_LIGHTING); }},
    {"AttributeOfLabel", [](Scene& s) { stateOf(s.labelGeode()).setAttribute(new osg::Depth); }},
    {"TextureOfLabel", [](Scene& s) { stateOf(s.labelGeode()).setTextureAttribute(0, new osg::Texture2D); }},
    {"TextureModeOfLabel",
     [](Scene& s) { stateOf(s.labelGeode()).setTextureMode(0, GL_TEXTURE_2D, osg::StateAttribute::ON); }},
    {"UniformOfLabel", [](Scene& s) { stateOf(s.labelGeode()).addUniform(new osg::Uniform("glow", 1.0f)); }},
    {"DefineOfLabel", [](Scene& s) { stateOf(s.labelGeode()).setDefine("GLOW"); }},
    {"BinOfLabel", [](Scene& s) { stateOf(s.labelGeode()).setRenderBinDetails(3, "RenderBin"); }},
    {"KindOfBin", [](Scene& s) { stateOf(s.labelGeode()).setRenderBinDetails(4, "DepthSortedBin"); }},
    {"BinNotNested",
     [](Scene& s) {
         for (auto* label : nodesOfType<CTableMeta>(*s.top)) stateOf(*label->getChild(0)).setNestRenderBins(false);
         s.top->getOrCreateStateSet()->setRenderBinDetails(2, "RenderBin");
     }},
    {"BinWithoutName", [](Scene& s) { stateOf(s.labelGeode()).setBinName(""); }},
    {"BinInherited", [](Scene& s) { stateOf(s.labelGeode()).setRenderBinToInherit(); }},
    {"BinModeInherited",
     [](Scene& s) { stateOf(s.labelGeode()).setRenderBinMode(osg::StateSet::INHERIT_RENDERBIN_DETAILS); }},
    {"BinProtected", [](Scene& s) { stateOf(s.labelGeode()).setRenderBinDetails(-1, "RenderBin", kProtectedBin); }},
    {"BinOverriding",
     [](Scene& s) {
         stateOf(s.labelGeode()).setRenderBinDetails(-1, "RenderBin", osg::StateSet::OVERRIDE_RENDERBIN_DETAILS);
     }},
    {"BinUsedAndOverriding",
     [](Scene& s) {
         stateOf(s.labelGeode())
             .setRenderBinDetails(1, "RenderBin",
                                  static_cast<osg::StateSet::RenderBinMode>(osg::StateSet::USE_RENDERBIN_DETAILS |
                                                                            osg::StateSet::OVERRIDE_RENDERBIN_DETAILS));
     }},
    {"DynamicLabelState", [](Scene& s) { stateOf(s.labelGeode()).setDataVariance(osg::Object::DYNAMIC); }},
    {"LabelWithoutState", [](Scene& s) { s.labelGeode().setStateSet(nullptr); }},
    {"LabelOfAnothersState", [](Scene& s) { s.labelGeode().setStateSet(new osg::StateSet(stateOf(s.labelGeode()))); }},
    {"StateOfTable", [](Scene& s) { stateOf(s.label()).setMode(GL_BLEND, osg::StateAttribute::ON); }},
    {"StateOfDot", [](Scene& s) { stateOf(s.dot()).setMode(GL_BLEND, osg::StateAttribute::ON); }},
    {"WidthOfOutline", [](Scene& s) { stateOf(s.outline()).setAttribute(new osg::LineWidth(5.0f)); }},
    {"OutlineWithoutState", [](Scene& s) { s.outline().setStateSet(nullptr); }},
    {"ModeOfOutline", [](Scene& s) { stateOf(s.outline()).setMode(GL_BLEND, osg::StateAttribute::ON); }},
    {"AttributeOfOutline", [](Scene& s) { stateOf(s.outline()).setAttribute(new osg::Depth); }},
    {"OtherAttributeOfOutline",
     [](Scene& s) {
         s.outline().setStateSet(new osg::StateSet);
         stateOf(s.outline()).setAttribute(new osg::Depth);
     }},
    {"UniformOfOutline", [](Scene& s) { stateOf(s.outline()).addUniform(new osg::Uniform("glow", 1.0f)); }},
    {"BinOfOutline", [](Scene& s) { stateOf(s.outline()).setRenderBinDetails(1, "RenderBin"); }},
    {"DynamicOutlineState", [](Scene& s) { stateOf(s.outline()).setDataVariance(osg::Object::DYNAMIC); }},
    {"OverridingWidth",
     [](Scene& s) { stateOf(s.outline()).setAttribute(new osg::LineWidth(2.0f), osg::StateAttribute::OVERRIDE); }},
    {"ProtectedWidth",
     [](Scene& s) {
         stateOf(*s.top).setAttribute(new osg::LineWidth(7.0f), osg::StateAttribute::OVERRIDE);
         stateOf(s.outline()).setAttribute(new osg::LineWidth(2.0f), osg::StateAttribute::PROTECTED);
     }},
    {"StateOfFill", [](Scene& s) { stateOf(s.fill()).setMode(GL_BLEND, osg::StateAttribute::ON); }},
    {"StateOfText",
     [](Scene& s) {
         s.text().setStateSet(new osg::StateSet);
         stateOf(s.text()).setMode(GL_BLEND, osg::StateAttribute::ON);
     }},
    {"TextWithoutState", [](Scene& s) { s.text().setStateSet(nullptr); }},
    {"ModeOfMark", [](Scene& s) { stateOf(s.markGeode()).setMode(GL_RESCALE_NORMAL, osg::StateAttribute::OFF); }},
    {"AttributeOfMark", [](Scene& s) { stateOf(s.markGeode()).setAttribute(new osg::Material); }},
    {"BinOfMark", [](Scene& s) { stateOf(s.markGeode()).setRenderBinDetails(7, "RenderBin"); }},
    {"MarkWithoutState", [](Scene& s) { s.markGeode().setStateSet(nullptr); }},
    {"StateOfSphere", [](Scene& s) { stateOf(s.sphere()).setMode(GL_BLEND, osg::StateAttribute::ON); }},
    {"StateOfMarkTransform", [](Scene& s) { stateOf(s.mark()).setMode(GL_BLEND, osg::StateAttribute::ON); }},
    {"WireframeAbove",
     [](Scene& s) {
         stateOf(*s.top).setAttribute(new osg::PolygonMode(osg::PolygonMode::FRONT_AND_BACK, osg::PolygonMode::LINE));
     }},
    {"WireframeOfLabel",
     [](Scene& s) {
         for (auto* label : nodesOfType<CTableMeta>(*s.top))
             stateOf(*label->getChild(0))
                 .setAttribute(new osg::PolygonMode(osg::PolygonMode::FRONT_AND_BACK, osg::PolygonMode::LINE));
     }},
    {"BinAboveOverriding",
     [](Scene& s) { stateOf(*s.top).setRenderBinDetails(6, "RenderBin", osg::StateSet::OVERRIDE_RENDERBIN_DETAILS); }},
    {"BinAbove", [](Scene& s) { stateOf(*s.top).setRenderBinDetails(6, "RenderBin"); }},
    {"WidthAboveOverriding",
     [](Scene& s) { stateOf(*s.top).setAttribute(new osg::LineWidth(7.0f), osg::StateAttribute::OVERRIDE); }},
};

const Change kNodeChanges[] = {
    {"HiddenDot", [](Scene& s) { hide(s.dot()); }},
    {"HiddenMark", [](Scene& s) { hide(s.mark()); }},
    {"HiddenMarkGeode", [](Scene& s) { hide(s.markGeode()); }},
    {"HiddenSphere", [](Scene& s) { hide(s.sphere()); }},
    {"HiddenLabel", [](Scene& s) { hide(s.label()); }},
    {"HiddenLabelGeode", [](Scene& s) { hide(s.labelGeode()); }},
    {"HiddenOutline", [](Scene& s) { hide(s.outline()); }},
    {"HiddenFill", [](Scene& s) { hide(s.fill()); }},
    {"HiddenText", [](Scene& s) { hide(s.text()); }},
    {"CallbackOfMark", [](Scene& s) { withhold(s.mark()); }},
    {"CallbackOfMarkGeode", [](Scene& s) { withhold(s.markGeode()); }},
    {"CallbackOfSphere", [](Scene& s) { withhold(s.sphere()); }},
    {"CallbackOfLabel", [](Scene& s) { withhold(s.label()); }},
    {"CallbackOfLabelGeode", [](Scene& s) { withhold(s.labelGeode()); }},
    {"CallbackOfOutline", [](Scene& s) { withhold(s.outline()); }},
    {"CallbackOfFill", [](Scene& s) { withhold(s.fill()); }},
    {"CallbackOfText", [](Scene& s) { withhold(s.text()); }},
    {"SelectedDot", [](Scene& s) { static_cast<CAutoScaleSphereMeta&>(s.dot()).setState(featureStateSelected); }},
    {"ChildMoreBelowLabel", [](Scene& s) { s.label().addChild(hostGeode()); }},
    {"ChildMoreBelowMark", [](Scene& s) { s.mark().addChild(hostGeode()); }},
    {"NoChildBelowLabel", [](Scene& s) { s.label().removeChildren(0, 1); }},
    {"GroupBelowLabel",
     [](Scene& s) {
         const osg::ref_ptr<osg::Group> group = new osg::Group;
         group->addChild(&s.labelGeode());
         s.label().setChild(0, group);
     }},
    {"AnotherChildOfDot", [](Scene& s) { s.dot().addChild(hostGeode()); }},
    {"HostDrawableBetweenLabels", [](Scene& s) { s.dots().insertChild(2, hostGeode()); }},
    {"DrawableMore", [](Scene& s) { s.labelGeode().addDrawable(new osg::ShapeDrawable(new osg::Box)); }},
    {"DrawableLess", [](Scene& s) { s.labelGeode().removeDrawables(2, 1); }},
    {"DrawablesInAnotherOrder",
     [](Scene& s) {
         const osg::ref_ptr<osg::Drawable> outline = &s.outline();
         s.labelGeode().removeDrawables(0, 1);
         s.labelGeode().addDrawable(outline);
     }},
    {"OutlineAndFillExchanged",
     [](Scene& s) {
         const osg::ref_ptr<osg::Drawable> outline = &s.outline();
         const osg::ref_ptr<osg::Drawable> fill = &s.fill();
         s.labelGeode().setDrawable(0, fill);
         s.labelGeode().setDrawable(1, outline);
     }},
    {"AnotherOutline", [](Scene& s) { s.labelGeode().setDrawable(0, new osg::ShapeDrawable(new osg::Box)); }},
    {"AnotherFill", [](Scene& s) { s.labelGeode().setDrawable(1, new osg::ShapeDrawable(new osg::Box)); }},
    {"AnotherText", [](Scene& s) { s.labelGeode().setDrawable(2, new osg::ShapeDrawable(new osg::Box)); }},
    {"AnotherSphere", [](Scene& s) { s.markGeode().setDrawable(0, new osg::ShapeDrawable(new osg::Box)); }},
    {"TwoSpheres", [](Scene& s) { s.markGeode().addDrawable(new osg::ShapeDrawable(new osg::Box)); }},
    {"NoText", [](Scene& s) { s.text().setText(""); }},
    {"LongText", [](Scene& s) { s.text().setText(std::string(100, 'M')); }},
    {"ShyOutline", [](Scene& s) { s.labelGeode().setDrawable(0, new ShyDrawable(&stateOf(s.outline()))); }},
    {"ShyFill", [](Scene& s) { s.labelGeode().setDrawable(1, new ShyDrawable); }},
    {"ShyText", [](Scene& s) { s.labelGeode().setDrawable(2, new ShyDrawable(s.text().getStateSet())); }},
    {"ShySphere", [](Scene& s) { s.markGeode().setDrawable(0, new ShyDrawable); }},
    {"EmptyFill", [](Scene& s) { s.fill().asGeometry()->setVertexArray(new osg::Vec2Array); }},
    {"UnculledOutline", [](Scene& s) { s.outline().setCullingActive(false); }},
    {"UnculledSphere", [](Scene& s) { s.sphere().setCullingActive(false); }},
    {"UnculledLabelGeode", [](Scene& s) { s.labelGeode().setCullingActive(false); }},
    {"UnculledMarkGeode", [](Scene& s) { s.markGeode().setCullingActive(false); }},
    {"CulledLabel", [](Scene& s) { s.label().setCullingActive(true); }},
    {"AbsoluteLabel",
     [](Scene& s) {
         s.label().setReferenceFrame(osg::Transform::ABSOLUTE_RF);
         s.label().setPosition(osg::Vec3d(400.0, 0.0, -60.0));
     }},
    {"PivotOfLabel", [](Scene& s) { s.label().setPivotPoint(osg::Vec3d(5.0, 20.0, 0.0)); }},
    {"FarPivotOfLabel", [](Scene& s) { s.label().setPivotPoint(osg::Vec3d(600.0, 0.0, 0.0)); }},
    {"FarLabelOfAFarPivot",
     [](Scene& s) {
         s.label().setPivotPoint(osg::Vec3d(600.0, 0.0, 0.0));
         s.label().setPosition(osg::Vec3d(600.0, 0.0, 0.0));
     }},
    {"LabelTurnedAsItIs", [](Scene& s) { s.label().setAutoRotateMode(osg::AutoTransform::NO_ROTATION); }},
    {"LabelTurnedToTheCamera", [](Scene& s) { s.label().setAutoRotateMode(osg::AutoTransform::ROTATE_TO_CAMERA); }},
    {"LabelTurnedAboutAnAxis",
     [](Scene& s) {
         s.label().setAxis(osg::Vec3f(0, 1, 0));
         s.label().setAutoRotateMode(osg::AutoTransform::ROTATE_TO_AXIS);
     }},
    {"TurnedMark", [](Scene& s) { s.mark().setRotation(osg::Quat(0.7, osg::Vec3d(1, 1, 0))); }},
    {"MarkTurnedToTheScreen", [](Scene& s) { s.mark().setAutoRotateMode(osg::AutoTransform::ROTATE_TO_SCREEN); }},
    {"LabelOfWorldSize", [](Scene& s) { s.label().setAutoScaleToScreen(false); }},
    {"StretchedLabelOfWorldSize",
     [](Scene& s) {
         s.label().setAutoScaleToScreen(false);
         s.label().setScale(osg::Vec3d(0.01, 1.0, 1.0));
     }},
    {"LeastScaleOfLabel", [](Scene& s) { s.label().setMinimumScale(2.0); }},
    {"LargestScaleOfLabel", [](Scene& s) { s.label().setMaximumScale(0.5); }},
    {"MovedLabel", [](Scene& s) { s.label().setPosition(osg::Vec3d(200.0, 0.0, 0.0)); }},
    {"MaskOfAnotherBit", [](Scene& s) { s.label().setNodeMask(2); }},
};

class ScreenCullOfChange : public ::testing::TestWithParam<Change>
{};

TEST_P(ScreenCullOfChange, DrawsWhatTheVisitorDraws)
{
    Scene scene;
    GetParam().make(scene);
    for (const View& view : kViews) {
        const Culled expected = detourCull(*scene.top, view);
        EXPECT_EQ(shortCull(*scene.top, view), expected) << view.name;
    }
}

TEST_P(ScreenCullOfChange, DrawsWhatTheVisitorDrawsInATurnedGroup)
{
    Scene scene(2, true);
    GetParam().make(scene);
    for (const View& view : kViews) {
        const Culled expected = detourCull(*scene.top, view);
        EXPECT_EQ(shortCull(*scene.top, view), expected) << view.name;
    }
}

TEST_P(ScreenCullOfChange, DrawsWhatTheVisitorDrawsIfTheFirstDotIsChanged)
{
    Scene scene(0);
    GetParam().make(scene);
    const Culled expected = detourCull(*scene.top, View{});
    EXPECT_EQ(shortCull(*scene.top, View{}), expected);
}

std::string nameOfChange(const ::testing::TestParamInfo<Change>& info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(OfStates, ScreenCullOfChange, ::testing::ValuesIn(kStateChanges), nameOfChange);
INSTANTIATE_TEST_SUITE_P(OfNodes, ScreenCullOfChange, ::testing::ValuesIn(kNodeChanges), nameOfChange);

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
    Scene scene;
    View view;
    view.prepare = [](osgUtil::CullVisitor& visitor) {
        visitor.getRenderStage()->find_or_insert(1, "RenderBin")->setSortCallback(new TurnRound);
    };
    const Culled expected = detourCull(*scene.top, view);
    EXPECT_EQ(shortCull(*scene.top, view), expected);
}

TEST(ScreenCull, DrawsWhatTheVisitorDrawsFrameByFrame)
{
    Scene scene;
    Cull shorter(new osgUtil::CullVisitor);
    for (const View& view : kViews) {
        const Culled expected = detourCull(*scene.top, view);
        EXPECT_EQ(shorter(*scene.top, view), expected) << view.name;
    }
}

TEST(ScreenCull, LeavesOutWhatAnOccluderHides)
{
    Scene scene;
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
    return cull.filledGraphs();
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
    Scene scene(0);
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
    Scene scene;
    stateOf(scene.dot()).setMode(GL_BLEND, osg::StateAttribute::ON);
    stateOf(scene.labelGeode()).setMode(GL_BLEND, osg::StateAttribute::ON);
    Cull cull(new osgUtil::CullVisitor);
    ASSERT_FALSE(cull(*scene.top, View{}).drawn.empty());
    expectToOutliveTheLibrary(cull.graph());
}

TEST(ScreenCull, LeavesMatricesAloneThatAreStillHeld)
{
    Scene scene;
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
    Scene scene;
    const osg::ref_ptr<CountingVisitor> visitor = new CountingVisitor;
    Cull{visitor}(*scene.top, View{});
    EXPECT_EQ(visitor->transforms, nodesOfType<osg::Transform>(*scene.top).size());
}

TEST(ScreenCull, ShowsANarrowLabelWhoseAnchorIsOutOfSight)
{
    const osg::ref_ptr<CTableMeta> label = new CTableMeta(labelSaying("1"));
    View view;
    view.projection = osg::Matrixd::ortho(-kWidth / 2.0, kWidth / 2.0, 20.0, 20.0 + kHeight, 1.0, 200.0);
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
