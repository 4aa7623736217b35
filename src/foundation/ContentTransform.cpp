#include "foundation/ContentTransform.h"

#include "foundation/AheadTraversal.h"

#include <osg/AutoTransform>
#include <osg/Drawable>
#include <osg/Geode>
#include <osg/StateSet>
#include <osg/Switch>

namespace KelvOsgTools::detail {
namespace {

/// Fetches what a cull reads of a node: its kind and what follows its name. It reads most of it.
template <typename Kind>
void prefetchWhole(const osg::Node& node)
{
    constexpr std::size_t kBound = 96;
    prefetch(&node, sizeof(void*));
    prefetch(reinterpret_cast<const char*>(&node) + kBound, sizeof(Kind) - kBound);
}

void prefetchStateSet(const osg::Node& node)
{
    if (const osg::StateSet* const state = node.getStateSet()) prefetch(state, sizeof(*state));
}

/// Fetches the first entry of a map, with the links before it and a second one that as a rule lies behind.
template <typename Map>
void prefetchEntries(const Map& map)
{
    constexpr std::size_t kLinks = 32;
    if (map.empty()) return;
    const auto& first = *map.begin();
    prefetch(reinterpret_cast<const char*>(&first) - kLinks, 2 * (kLinks + sizeof(first)));
}

void prefetchStateLists(const osg::Node& node)
{
    const osg::StateSet* const state = node.getStateSet();
    if (!state) return;
    prefetchEntries(state->getModeList());
    prefetchEntries(state->getAttributeList());
}

/// Fetches which children of a switch are on.
void prefetchValues([[maybe_unused]] const osg::Node& node)
{
#if defined(__GLIBCXX__) // elsewhere a bit does not tell where it is
    if (const osg::Switch* const feature = node.asSwitch()) prefetch(feature->getValueList().begin()._M_p, 1);
#endif
}

void prefetchAttribute(const osg::Node& node)
{
    const osg::StateSet* const state = node.getStateSet();
    if (!state || state->getAttributeList().empty()) return;
    const osg::StateAttribute* const attribute = state->getAttributeList().begin()->second.first;
    prefetch(attribute, sizeof(*attribute));
}

struct Step
{
    unsigned int level; // below a feature
    void (*fetch)(const osg::Node&);
};

/// The way down from a feature to the states of its drawables.
constexpr Step kSteps[] = {
    {0, prefetchWhole<osg::Switch>},
    {0, prefetchChildList},
    {0, prefetchValues},
    {1, prefetchWhole<osg::AutoTransform>},
    {1, prefetchChildList},
    {2, prefetchWhole<osg::Geode>},
    {2, prefetchChildList},
    {2, prefetchStateSet},
    {2, prefetchStateLists},
    {3, prefetchWhole<osg::Drawable>},
    {3, prefetchStateSet},
    {3, prefetchStateLists},
    {3, prefetchAttribute},
};

} // namespace

ContentTransform::ContentTransform(const ContentTransform& other, const osg::CopyOp& copyop)
    : osg::MatrixTransform(other, copyop)
{}

osg::Object* ContentTransform::cloneType() const
{
    return new ContentTransform;
}

osg::Object* ContentTransform::clone(const osg::CopyOp& copyop) const
{
    return new ContentTransform(*this, copyop);
}

void ContentTransform::traverse(osg::NodeVisitor& visitor)
{
    constexpr std::size_t kLead = 1;
    constexpr std::size_t kTooManyForCaches = 500; // features, of six kilobytes each that a cull reads, and scattered
    if (visitor.getVisitorType() != osg::NodeVisitor::CULL_VISITOR || _children.size() < kTooManyForCaches)
        return osg::MatrixTransform::traverse(visitor);
    acceptAhead(*this, visitor, std::size(kSteps), kLead, [](const osg::Node& child, unsigned int step) {
        fetchBelow(child, kSteps[step].level, kSteps[step].fetch);
    });
}

} // namespace KelvOsgTools::detail
