#pragma once

#include <KelvOsgTools/NodeVisitors.h>

#include <osg/Group>
#include <osg/ref_ptr>

#include <string>

namespace KelvOsgTools::detail {

/// The first node of that name below group, as a T; null if there is none or it is no T. The group
/// itself is not looked at: its name is the host's to choose.
template <typename T>
osg::ref_ptr<T> findBelow(osg::Group& group, const std::string& name)
{
    findNodeVisitor search(name);
    group.traverse(search);
    return search.m_foundNodes.empty() ? nullptr : dynamic_cast<T*>(search.m_foundNodes.front().get());
}

} // namespace KelvOsgTools::detail
