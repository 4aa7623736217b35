#include "primitives/ScreenCull.h"

#include "primitives/FlatGeometry.h"
#include "primitives/SphereDrawable.h"

#include <osg/Geode>
#include <osg/LineWidth>
#include <osgText/Text>
#include <osgUtil/CullVisitor>
#include <osgUtil/RenderBin>
#include <osgUtil/StateGraph>

#include <cmath>
#include <typeinfo>
#include <utility>

namespace KelvOsgTools::detail {
namespace {

using osgUtil::CullVisitor;
using osgUtil::RenderBin;
using osgUtil::StateGraph;

// The drawables of a label, in their order.
constexpr unsigned int kOutlineChild = 0;
constexpr unsigned int kFillChild = 1;
constexpr unsigned int kTextChild = 2;
constexpr unsigned int kLabelDrawables = 3;

constexpr double kRoundingMargin = 1e-3; // what the visitor calculates in other coordinates may differ by less

/// By address, which is quicker than comparing and at worst takes a kind for an unknown one.
template <typename Kind, typename Object>
bool isExactly(const Object& object)
{
    return &typeid(object) == &typeid(Kind);
}

/// The visitor, if it is known what it does: a derived one may have ways of its own.
CullVisitor* plainCullVisitor(osg::NodeVisitor& visitor)
{
    if (visitor.getVisitorType() != osg::NodeVisitor::CULL_VISITOR || !isExactly<CullVisitor>(visitor) ||
        visitor.getTraversalMode() != osg::NodeVisitor::TRAVERSE_ACTIVE_CHILDREN)
        return nullptr;
    return static_cast<CullVisitor*>(&visitor);
}

/// The geode in a transform, if neither has been given what a cull would have to heed.
osg::Geode* plainGeodeOf(osg::AutoTransform& transform)
{
    if (transform.getNumChildren() != 1 || transform.getStateSet() || transform.getCullCallback() ||
        transform.getReferenceFrame() != osg::Transform::RELATIVE_RF || !transform.getAutoScaleToScreen() ||
        transform.getPivotPoint() != osg::Vec3d())
        return nullptr;
    osg::Node& child = *transform.getChild(0);
    if (!isExactly<osg::Geode>(child) || child.getCullCallback() || !child.isCullingActive()) return nullptr;
    return static_cast<osg::Geode*>(&child);
}

// Graphs and matrices stay with the viewer, which a plug-in that uses this library may leave behind when it is
// unloaded. So they must not be objects that this library has made: OpenSceneGraph's own ones clone themselves.

/// The visitor's pool of matrices, which is open to its kin only.
class MatrixPool : private osg::CullStack
{
public:
    /// What createOrReuseMatrix() does.
    static osg::RefMatrix& takeCopy(CullVisitor& visitor, const osg::RefMatrix& matrix)
    {
        MatrixList& pool = visitor.*(&MatrixPool::_reuseMatrixList);
        unsigned int& next = visitor.*(&MatrixPool::_currentReuseMatrixIndex);
        while (next < pool.size() && pool[next]->referenceCount() > 1) ++next;
        if (next == pool.size()) pool.push_back(static_cast<osg::RefMatrix*>(matrix.clone(osg::CopyOp::SHALLOW_COPY)));
        osg::RefMatrix& taken = *pool[next++];
        taken.set(matrix);
        return taken;
    }
};

/// What visitor.pushStateSet() does, which is enough where the graph is known to be there.
void pushStateSet(CullVisitor& visitor, const osg::StateSet& state)
{
    StateGraph& around = *visitor.getCurrentStateGraph();
    if (around._children.find(&state) == around._children.end()) {
        const osg::ref_ptr<StateGraph> graph = around.cloneStateGraph();
        graph->_parent = &around;
        graph->setStateSet(&state);
        graph->_depth = around._depth + 1;
        graph->_dynamic = around._dynamic || state.getDataVariance() == osg::Object::DYNAMIC;
        around._children[&state] = graph;
    }
    visitor.pushStateSet(&state);
}

enum class Sight
{
    Whole,
    None,
    Unsure
};

/// What a frustum shows of a sphere. It is unsure of what its planes cut.
Sight sightThrough(const osg::Polytope& frustum, const osg::Vec3d& centre, double radius)
{
    for (const osg::Plane& plane : frustum.getPlaneList()) {
        const double distance = plane.distance(centre);
        if (distance < -radius) return Sight::None;
        if (!(distance >= radius)) return Sight::Unsure; // nor of what is no number
    }
    return Sight::Whole;
}

/// Whether the visitor could take a sphere, somewhere within reach of centre, for too small to be seen.
bool mayBeTooSmall(const osg::CullingSet& cullingSet, const osg::Vec3d& centre, double reach, double radius)
{
    const osg::Vec4& pixelSize = cullingSet.getPixelSizeVector();
    const double atCentre = osg::Vec3(centre) * pixelSize;
    const double furtherAtMost = reach * osg::Vec3(pixelSize.x(), pixelSize.y(), pixelSize.z()).length();
    const double leastRadius = (atCentre + furtherAtMost) * cullingSet.getSmallFeatureCullingPixelSize();
    return !(leastRadius * (1.0 + kRoundingMargin) <= radius);
}

double distanceFromEye(const osg::Vec3& point, const osg::Matrixd& toEye)
{
    return -(point.x() * toEye(0, 2) + point.y() * toEye(1, 2) + point.z() * toEye(2, 2) + toEye(3, 2));
}

/// Whether the visitor would ask more of what it culls than where it is and how large.
bool asksForMore(CullVisitor& visitor)
{
    const auto mode = visitor.getComputeNearFarMode();
    return !visitor.getOccluderList().empty() || !visitor.getCurrentCullingSet().getStateFrustumList().empty() ||
           mode == osg::CullSettings::COMPUTE_NEAR_FAR_USING_PRIMITIVES ||
           mode == osg::CullSettings::COMPUTE_NEAR_USING_PRIMITIVES;
}

Sight sightOf(CullVisitor& visitor, const osg::AutoTransform& transform, const osg::Geode& geode,
              const osg::Matrixd& toEye)
{
    const osg::BoundingSphere& bound = geode.getBound();
    const double scale = transform.getScale().x(); // 0 in the plane of the eye
    if (!bound.valid() || !std::isnormal(scale) || std::isnan(distanceFromEye(bound.center(), toEye)) ||
        asksForMore(visitor))
        return Sight::Unsure;

    // Around the anchor point, so that it does not matter how the transform turns what it holds.
    const double reach = scale * (bound.center().length() + bound.radius()) * (1.0 + kRoundingMargin);
    const osg::CullingSet& cullingSet = visitor.getCurrentCullingSet();
    if ((cullingSet.getCullingMask() & osg::CullingSet::VIEW_FRUSTUM_CULLING) != 0) {
        const Sight sight = sightThrough(cullingSet.getFrustum(), transform.getPosition(), reach);
        if (sight != Sight::Whole) return sight;
    }
    if ((cullingSet.getCullingMask() & osg::CullingSet::SMALL_FEATURE_CULLING) != 0 &&
        mayBeTooSmall(cullingSet, transform.getPosition(), reach, scale * bound.radius()))
        return Sight::Unsure;
    return Sight::Whole;
}

/// Lets the near and far planes take in a box.
/// @return false if all of it lies behind the eye
bool expandNearAndFar(CullVisitor& visitor, const osg::Matrixd& toEye, const osg::BoundingBox& box)
{
    const unsigned int farCorner =
        (toEye(0, 2) <= 0.0 ? 1u : 0u) | (toEye(1, 2) <= 0.0 ? 2u : 0u) | (toEye(2, 2) <= 0.0 ? 4u : 0u);
    double nearest = distanceFromEye(box.corner(~farCorner & 7u), toEye);
    double farthest = distanceFromEye(box.corner(farCorner), toEye);
    if (nearest > farthest) std::swap(nearest, farthest); // by rounding
    if (farthest < 0.0) return false;

    if (nearest < visitor.getCalculatedNearPlane()) visitor.setCalculatedNearPlane(nearest);
    if (farthest > visitor.getCalculatedFarPlane()) visitor.setCalculatedFarPlane(farthest);
    return true;
}

/// Adds a drawable with a state of its own, if it has one.
void add(osg::Drawable& drawable, const osg::StateSet* state, osg::RefMatrix& toEye, CullVisitor& visitor)
{
    if (!visitor.validNodeMask(drawable)) return;
    const osg::BoundingBox& box = drawable.getBoundingBox();
    const bool isMeasured = visitor.getComputeNearFarMode() != osg::CullSettings::DO_NOT_COMPUTE_NEAR_FAR;
    if (isMeasured && box.valid() && !expandNearAndFar(visitor, toEye, box)) return;

    const double depth = box.valid() ? distanceFromEye(box.center(), toEye) : 0.0;
    if (state) pushStateSet(visitor, *state);
    visitor.addDrawableAndDepth(&drawable, &toEye, static_cast<float>(depth));
    if (state) visitor.popStateSet();
}

bool hasNoneButModesAndAttributes(const osg::StateSet& state)
{
    return state.getTextureModeList().empty() && state.getTextureAttributeList().empty() &&
           state.getUniformList().empty() && state.getDefineList().empty();
}

/// Whether all that a state set does is to set modes and a render bin.
bool hasModesOnly(const osg::StateSet& state)
{
    return state.getAttributeList().empty() && hasNoneButModesAndAttributes(state);
}

/// Whether another state set does what one with modes only does, if both lead to the same bin.
bool areEqual(const osg::StateSet& modesOnly, const osg::StateSet& other)
{
    return &modesOnly == &other || (modesOnly.getDataVariance() == other.getDataVariance() &&
                                    modesOnly.getRenderBinMode() == other.getRenderBinMode() &&
                                    modesOnly.getModeList() == other.getModeList() && hasModesOnly(other));
}

/// The line width that is all that a state set sets, or null. What is drawn with it is dynamic for its own sake.
const osg::LineWidth* onlyLineWidthOf(const osg::StateSet& state)
{
    if (state.getAttributeList().size() != 1 || !state.getModeList().empty() || state.getRenderBinMode() != 0 ||
        state.getDataVariance() == osg::Object::DYNAMIC || !hasNoneButModesAndAttributes(state))
        return nullptr;
    const osg::StateSet::RefAttributePair& entry = state.getAttributeList().begin()->second;
    const bool isPlain = entry.second == osg::StateAttribute::OFF && isExactly<osg::LineWidth>(*entry.first);
    return isPlain ? static_cast<const osg::LineWidth*>(entry.first.get()) : nullptr;
}

bool areEqualWidths(const osg::StateSet& a, const osg::StateSet& b)
{
    if (&a == &b) return true;
    const osg::LineWidth* const width = onlyLineWidthOf(a);
    const osg::LineWidth* const otherWidth = onlyLineWidthOf(b);
    return width && otherWidth && width->getWidth() == otherWidth->getWidth();
}

/// Whether a state set around those of a feature decides over render bins, or how polygons are drawn.
bool isSwayedFromAbove(CullVisitor& visitor)
{
    for (const StateGraph* graph = visitor.getCurrentStateGraph(); graph; graph = graph->_parent) {
        const osg::StateSet* const state = graph->getStateSet();
        if (state && ((state->getRenderBinMode() & osg::StateSet::OVERRIDE_RENDERBIN_DETAILS) != 0 ||
                      state->getAttribute(osg::StateAttribute::POLYGONMODE)))
            return true;
    }
    return false;
}

RenderBin& binOf(const osg::StateSet& state, CullVisitor& visitor)
{
    RenderBin& current = *visitor.getCurrentRenderBin();
    if (!state.useRenderBinDetails() || state.getBinName().empty()) return current;
    RenderBin& outer = state.getNestRenderBins() ? current : *current.getStage();
    return *outer.find_or_insert(state.getBinNumber(), state.getBinName());
}

/// Whether a bin draws its graphs in the order in which they were first added to.
bool isDrawnInOrder(const RenderBin& bin)
{
    return bin.getSortMode() == RenderBin::SORT_BY_STATE && !bin.getSortCallback();
}

/// The graph that a bin draws last so far: only to this one can be added without changing the order.
const StateGraph* lastGraphOf(RenderBin& bin)
{
    return bin.getStateGraphList().empty() ? nullptr : bin.getStateGraphList().back();
}

/// Finds the bin for a geode whose state sets only modes. Null if there is none that leaves its graphs in order.
RenderBin* plainBinOf(const osg::Geode& geode, CullVisitor& visitor)
{
    const osg::StateSet* const state = geode.getStateSet();
    if (!state || !hasModesOnly(*state) || isSwayedFromAbove(visitor)) return nullptr;
    RenderBin& bin = binOf(*state, visitor);
    return isDrawnInOrder(bin) ? &bin : nullptr;
}

bool addSphere(osg::Geode& geode, osg::RefMatrix& toEye, CullVisitor& visitor)
{
    if (geode.getNumChildren() != 1) return false;
    osg::Node& sphere = *geode.getChild(0);
    if (!isExactly<SphereDrawable>(sphere) || sphere.getCullCallback() || sphere.getStateSet()) return false;
    RenderBin* const bin = plainBinOf(geode, visitor);
    if (!bin) return false;

    const StateGraph* const last = lastGraphOf(*bin);
    const bool goesOn =
        last && last->_parent == visitor.getCurrentStateGraph() && areEqual(*geode.getStateSet(), *last->getStateSet());
    if (goesOn)
        visitor.pushStateSet(last->getStateSet());
    else
        pushStateSet(visitor, *geode.getStateSet());
    add(static_cast<SphereDrawable&>(sphere), nullptr, toEye, visitor);
    visitor.popStateSet();
    return true;
}

/// Whether a geode holds a label of which only colours, sizes and widths may have changed.
bool isPlainLabel(const osg::Geode& geode)
{
    if (geode.getNumChildren() != kLabelDrawables) return false;
    const osg::Node& outline = *geode.getChild(kOutlineChild);
    const osg::Node& fill = *geode.getChild(kFillChild);
    const osg::Node& text = *geode.getChild(kTextChild);
    return isExactly<FlatGeometry>(outline) && isExactly<FlatGeometry>(fill) && isExactly<osgText::Text>(text) &&
           !outline.getCullCallback() && !fill.getCullCallback() && !text.getCullCallback() && !fill.getStateSet() &&
           outline.getStateSet() && onlyLineWidthOf(*outline.getStateSet());
}

bool addLabel(osg::Geode& geode, osg::RefMatrix& toEye, CullVisitor& visitor)
{
    if (!isPlainLabel(geode)) return false;
    RenderBin* const bin = plainBinOf(geode, visitor);
    if (!bin) return false;

    auto& outline = static_cast<FlatGeometry&>(*geode.getChild(kOutlineChild));
    auto& fill = static_cast<FlatGeometry&>(*geode.getChild(kFillChild));
    auto& text = static_cast<osgText::Text&>(*geode.getChild(kTextChild));
    const StateGraph* const last = lastGraphOf(*bin);
    const StateGraph* const around = last ? last->_parent : nullptr;
    const bool goesOn = around && around->_parent && around->_parent == visitor.getCurrentStateGraph() &&
                        areEqual(*geode.getStateSet(), *around->getStateSet()) &&
                        areEqualWidths(*outline.getStateSet(), *last->getStateSet());

    if (goesOn) {
        visitor.pushStateSet(around->getStateSet());
        visitor.pushStateSet(last->getStateSet());
    } else {
        pushStateSet(visitor, *geode.getStateSet());
        pushStateSet(visitor, *outline.getStateSet());
    }
    add(outline, nullptr, toEye, visitor);
    add(fill, nullptr, toEye, visitor); // to which a line width means nothing: so the graph stays the last
    visitor.popStateSet();
    add(text, text.getStateSet(), toEye, visitor);
    visitor.popStateSet();
    return true;
}

bool cull(osg::NodeVisitor& nodeVisitor, osg::AutoTransform& transform,
          bool (*addContent)(osg::Geode&, osg::RefMatrix&, CullVisitor&))
{
    CullVisitor* const visitor = plainCullVisitor(nodeVisitor);
    osg::Geode* const geode = visitor ? plainGeodeOf(transform) : nullptr;
    if (!geode) return false;
    if (!visitor->validNodeMask(transform) || visitor->isCulled(transform)) return true;

    osg::RefMatrix& toEye = MatrixPool::takeCopy(*visitor, *visitor->getModelViewMatrix());
    transform.computeLocalToWorldMatrix(toEye, visitor);
    if (!visitor->validNodeMask(*geode)) return true;
    const Sight sight = sightOf(*visitor, transform, *geode, toEye);
    return sight == Sight::None || (sight == Sight::Whole && addContent(*geode, toEye, *visitor));
}

} // namespace

bool cullSphere(osg::NodeVisitor& visitor, osg::AutoTransform& transform)
{
    return cull(visitor, transform, addSphere);
}

bool cullLabel(osg::NodeVisitor& visitor, osg::AutoTransform& transform)
{
    return cull(visitor, transform, addLabel);
}

} // namespace KelvOsgTools::detail
