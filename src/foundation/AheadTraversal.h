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
    for (std::size_t offset = 0; offset < size; offset += kCacheLine)
        __builtin_prefetch(static_cast<const char*>(memory) + offset);
#endif
}

/// Fetches the nodes that lie so many levels below a node; those in between were fetched before.
inline void prefetchBelow(const osg::Node& node, unsigned int levels)
{
    constexpr unsigned int kMostChildren = 16; // of a feature; what has more is no part of one
    if (levels == 0) return prefetch(&node, sizeof(osg::Group));
    const osg::Group* const group = node.asGroup();
    if (!group || group->getNumChildren() > kMostChildren) return;
    for (unsigned int i = 0; i < group->getNumChildren(); ++i) prefetchBelow(*group->getChild(i), levels - 1);
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
    constexpr unsigned int kLead = 3; // children that a level is fetched ahead of the next
    if (!isWideGroup(group)) return group.traverse(visitor);

    for (unsigned int i = 0; i < group.getNumChildren(); ++i) {
        for (unsigned int level = 0; level < levels; ++level) {
            const unsigned int ahead = i + (levels - level) * kLead;
            if (ahead < group.getNumChildren()) prefetchBelow(*group.getChild(ahead), level);
        }
        group.getChild(i)->accept(visitor);
    }
}

} // namespace KelvOsgTools::detail
