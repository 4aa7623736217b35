#include "CullScene.h"

#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <osg/LineWidth>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

namespace kelvtest {
using namespace KelvOsgTools;

namespace {

/// Whether numbers are equal, or both none.
bool areSame(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool areSame(const osg::Matrixd& a, const osg::Matrixd& b)
{
    return std::equal(a.ptr(), a.ptr() + 16, b.ptr(), [](double x, double y) { return areSame(x, y); });
}

void PrintTo(const Drawn& drawn, std::ostream* out)
{
    *out << drawn.drawable->getName() << " at depth " << drawn.depth << " in bin " << drawn.bin
         << (drawn.isDynamic ? ", dynamic" : "");
    for (const auto& [name, value] : drawn.state) *out << ", " << name << '=' << value;
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

} // namespace

bool operator==(const Drawn& a, const Drawn& b)
{
    return a.drawable == b.drawable && areSame(a.matrix, b.matrix) && areSame(a.projection, b.projection) &&
           areSame(a.depth, b.depth) && a.isDynamic == b.isDynamic && a.bin == b.bin && a.state == b.state;
}

bool operator==(const Culled& a, const Culled& b)
{
    return a.drawn == b.drawn && a.bins == b.bins && a.nearest == b.nearest && a.farthest == b.farthest &&
           std::equal(a.poses.begin(), a.poses.end(), b.poses.begin(), b.poses.end(),
                      [](const osg::Matrixd& one, const osg::Matrixd& other) { return areSame(one, other); });
}

void PrintTo(const Culled& culled, std::ostream* out)
{
    *out << "from " << culled.nearest << " to " << culled.farthest << '\n';
    for (const Drawn& drawn : culled.drawn) {
        PrintTo(drawn, out);
        *out << '\n';
    }
}

void PrintTo(const View& view, std::ostream* out)
{
    *out << view.name;
}

osg::Matrixd perspective()
{
    return osg::Matrixd::perspective(40.0, double(kCullWidth) / kCullHeight, 1.0, 1000.0);
}

View viewFrom(const char* name, const osg::Vec3d& eye, const osg::Vec3d& target, const osg::Matrixd& projection)
{
    View view;
    view.name = name;
    view.view = osg::Matrixd::lookAt(eye, target, osg::Vec3d(0.1, 1.0, 0.2));
    view.projection = projection;
    return view;
}

View closeUp(const char* name, const osg::Vec2d& centre, double across)
{
    const double up = across * kCullHeight / kCullWidth;
    View view;
    view.name = name;
    view.projection = osg::Matrixd::ortho(centre.x() - across / 2, centre.x() + across / 2, centre.y() - up / 2,
                                          centre.y() + up / 2, 1.0, 200.0);
    return view;
}

const std::vector<View>& cullViews()
{
    static const std::vector<View> views = {
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
                        v.projection = osg::Matrixd::ortho(-kCullWidth / 2.0, kCullWidth / 2.0, 25.0,
                                                           25.0 + kCullHeight, 1.0, 200.0);
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
                        v.view =
                            osg::Matrixd::lookAt(osg::Vec3d(0.5, 0.2, 3.3), osg::Vec3d(7, 1, 3), osg::Vec3d(0, 1, 0));
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
                        v.prepare = [](osgUtil::CullVisitor& c) {
                            c.setTraversalMode(osg::NodeVisitor::TRAVERSE_NONE);
                        };
                    }),
    };
    return views;
}

Culled Cull::operator()(osg::Node& scene, const View& view)
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

Culled shortCull(osg::Node& scene, const View& view)
{
    return Cull(new osgUtil::CullVisitor)(scene, view);
}

Culled detourCull(osg::Node& scene, const View& view)
{
    return Cull(new DetourVisitor)(scene, view);
}

CullScene::CullScene(unsigned int changedDot, bool isTurned)
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

osg::Group& CullScene::dots()
{
    return *contentOf(*around, featureDot);
}

osg::Group& CullScene::dot()
{
    return *dots().getChild(changed)->asGroup();
}

osg::AutoTransform& CullScene::mark()
{
    return *childOf<osg::AutoTransform>(dot(), 0);
}

osg::Geode& CullScene::markGeode()
{
    return *mark().getChild(0)->asGeode();
}

osg::Drawable& CullScene::sphere()
{
    return *markGeode().getDrawable(0);
}

KelvOsgTools::CTableMeta& CullScene::label()
{
    return *childOf<CTableMeta>(dot(), 1);
}

osg::Geode& CullScene::labelGeode()
{
    return *label().getChild(0)->asGeode();
}

osg::Drawable& CullScene::outline()
{
    return *labelGeode().getDrawable(0);
}

osg::Drawable& CullScene::fill()
{
    return *labelGeode().getDrawable(1);
}

osgText::Text& CullScene::text()
{
    return *dynamic_cast<osgText::Text*>(labelGeode().getDrawable(2));
}

osg::StateSet& stateOf(osg::Node& node)
{
    return *node.getOrCreateStateSet();
}

} // namespace kelvtest
