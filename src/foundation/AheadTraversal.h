#pragma once

#include <osg/Group>
#include <osg/MatrixTransform>
#include <osg/Node>
#include <osg/NodeVisitor>

#include <cstddef>
#include <typeinfo>

namespace KelvOsgTools::detail {

/// Fetches memory ahead of its use. Thousands of nodes lie scattered in memory: waiting for each is
/// what a walk over them would spend most of its time on.
inline void prefetch([[maybe_unused]] const void* memory, [[maybe_unused]] std::size_t size)
{
#if defined(__GNUC__)
    constexpr std::size_t kCacheLine = 64;
    const auto* const bytes = static_cast<const char*>(memory);
    for (std::size_t offset = 0; offset < size; offset += kCacheLine) __builtin_prefetch(bytes + offset);
    __builtin_prefetch(bytes + size - 1); // in one more line if the memory begins within a line
#endif
}

/// Fetches what every walk reads of a node: its kind and name, with which it begins, and its mask
/// and list of children, with which osg::Group ends. What lies between is left where it is: the
/// more lines are fetched, the longer each takes.
inline void prefetchNode(const osg::Node& node)
{
    constexpr std::size_t kHead = 56;
    constexpr std::size_t kTail = 48;
    prefetch(&node, kHead);
    prefetch(reinterpret_cast<const char*>(&node) + sizeof(osg::Group) - kTail, kTail);
}

/// The list that a group keeps its children in. The group itself answers only what lies in the list,
/// and its length through a virtual call.
class ChildList : private osg::Group
{
public:
    static const osg::NodeList& of(const osg::Group& group) { return group.*(&ChildList::_children); }
};

/// What of a level of nodes is fetched in one go; the second can only be found when the first is there.
enum class Fetched
{
    Nodes,
    ChildLists
};

/// Fetches from the nodes that lie so many levels below a node; those in between were fetched before.
inline void prefetchBelow(const osg::Node& node, unsigned int levels, Fetched what)
{
    constexpr std::size_t kMostChildren = 16; // of a feature; what has more is no part of one
    if (levels == 0 && what == Fetched::Nodes) return prefetchNode(node);
    const osg::Group* const group = node.asGroup();
    if (!group) return;
    const osg::NodeList& children = ChildList::of(*group);
    if (children.empty() || children.size() > kMostChildren) return;
    if (levels == 0) return prefetch(children.data(), sizeof(children.front()));
    for (const osg::ref_ptr<osg::Node>& child : children) prefetchBelow(*child, levels - 1, what);
}

/// Whether a group traverses all its children one after the other, and has so many of them that it
/// pays to fetch them ahead.
inline bool isWideGroup(const osg::Group& group)
{
    constexpr unsigned int kWide = 64;
    const std::type_info& kind = typeid(group);
    return group.getNumChildren() >= kWide && (kind == typeid(osg::Group) || kind == typeid(osg::MatrixTransform));
}

/// What group.traverse(visitor) does for a visitor of all or of active children.
/// @param levels that the visitor goes below the children as a rule: fetching more than it looks at
///        costs as much as it gains
inline void traverseAhead(osg::Group& group, osg::NodeVisitor& visitor, unsigned int levels)
{
    constexpr std::size_t kLead = 2; // children that a step is ahead of the next
    if (!isWideGroup(group)) return group.traverse(visitor);

    const osg::NodeList& children = ChildList::of(group);
    const unsigned int steps = levels == 0 ? 0 : 2 * levels - 1; // the last level needs no lists
    for (std::size_t i = 0; i < children.size(); ++i) {
        for (unsigned int step = 0; step < steps; ++step) {
            const std::size_t ahead = i + (steps - step) * kLead;
            if (ahead >= children.size()) continue;
            prefetchBelow(*children[ahead], step / 2, step % 2 == 0 ? Fetched::Nodes : Fetched::ChildLists);
        }
        children[i]->accept(visitor);
    }
}

} // namespace KelvOsgTools::detail
