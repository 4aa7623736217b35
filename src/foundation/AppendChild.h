#pragma once

#include <osg/Group>
#include <osg/Node>

namespace KelvOsgTools::detail {

/// Appends child to group, completely or, if memory is exhausted, not at all.
inline void appendChild(osg::Group& group, osg::Node* child)
{
    const unsigned int end = group.getNumChildren();
    try {
        group.addChild(child);
    } catch (...) {
        // The group may hold the child already while the child does not know its parent.
        if (group.getNumChildren() > end) group.removeChildren(end, 1);
        throw;
    }
}

} // namespace KelvOsgTools::detail
