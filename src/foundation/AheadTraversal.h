#pragma once

#include "foundation/ContentTransform.h"

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

/// The children of a node that may be part of a feature; null if it has none.
inline const osg::NodeList* childrenOfPart(const osg::Node& node)
{
    constexpr std::size_t kMostChildren = 16; // of a feature; what has more is no part of one
    const osg::Group* const group = node.asGroup();
    if (!group) return nullptr;
    const osg::NodeList& children = ChildList::of(*group);
    return children.empty() || children.size() > kMostChildren ? nullptr : &children;
}

/// Fetches the list of a node's children, with which the children can be found.
inline void prefetchChildList(const osg::Node& node)
{
    if (const osg::NodeList* const children = childrenOfPart(node))
        prefetch(children->data(), sizeof(children->front()));
}

/// Calls fetch with the nodes that lie so many levels below a node; those in between, and their lists of
/// children, were fetched before.
template <typename Fetch>
void fetchBelow(const osg::Node& node, unsigned int levels, const Fetch& fetch)
{
    if (levels == 0) return fetch(node);
    if (const osg::NodeList* const children = childrenOfPart(node))
        for (const osg::ref_ptr<osg::Node>& child : *children) fetchBelow(*child, levels - 1, fetch);
}

/// Lets all children of a group accept a visitor, one after the other.
/// @param steps that it takes to fetch a child with what is below it, as each step finds what the next one fetches
/// @param lead  how many children a step is ahead of the next
/// @param fetch called with the child and the number of the step, from 0
template <typename Fetch>
void acceptAhead(osg::Group& group, osg::NodeVisitor& visitor, unsigned int steps, std::size_t lead, const Fetch& fetch)
{
    const osg::NodeList& children = ChildList::of(group);
    for (std::size_t i = 0; i < children.size(); ++i) {
        for (unsigned int step = 0; step < steps; ++step) {
            const std::size_t ahead = i + (steps - step) * lead;
            if (ahead < children.size()) fetch(*children[ahead], step);
        }
        children[i]->accept(visitor);
    }
}

/// Whether a group traverses all its children one after the other, and has so many of them that it
/// pays to fetch them ahead.
inline bool isWideGroup(const osg::Group& group)
{
    constexpr std::size_t kWide = 64;
    const std::type_info& kind = typeid(group);
    return ChildList::of(group).size() >= kWide &&
           (kind == typeid(osg::Group) || kind == typeid(osg::MatrixTransform) || kind == typeid(ContentTransform));
}

/// What group.traverse(visitor) does for a visitor of all or of active children.
/// @param levels that the visitor goes below the children as a rule: fetching more than it looks at
///        costs as much as it gains
inline void traverseAhead(osg::Group& group, osg::NodeVisitor& visitor, unsigned int levels)
{
    constexpr std::size_t kLead = 2;
    if (!isWideGroup(group)) return group.traverse(visitor);

    const unsigned int steps = levels == 0 ? 0 : 2 * levels - 1; // the last level needs no lists
    acceptAhead(group, visitor, steps, kLead, [](const osg::Node& child, unsigned int step) {
        fetchBelow(child, step / 2, step % 2 == 0 ? prefetchNode : prefetchChildList);
    });
}

} // namespace KelvOsgTools::detail
