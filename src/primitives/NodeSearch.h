#pragma once

#include <osg/Group>
#include <osg/Node>
#include <osg/NodeVisitor>
#include <osg/ref_ptr>

#include <string>

namespace KelvOsgTools::detail {

/// Finds what findNodeVisitor would find first, and stops there.
class FirstNodeOfName : public osg::NodeVisitor
{
public:
    explicit FirstNodeOfName(const char* name) : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN), m_name(name) {}

    void apply(osg::Node& node) override
    {
        if (m_found) return;
        if (node.getName() == m_name)
            m_found = &node;
        else
            traverse(node);
    }

    osg::Node* found() const { return m_found; }

private:
    const char* m_name;
    osg::ref_ptr<osg::Node> m_found;
};

/// The first node of that name below group, as a T; null if there is none or it is no T. The group
/// itself is not looked at: its name is the host's to choose. A primitive's own parts stand at the
/// start of its tree, so that this ends after a few nodes.
template <typename T>
osg::ref_ptr<T> findBelow(osg::Group& group, const char* name)
{
    FirstNodeOfName search(name);
    group.traverse(search);
    return dynamic_cast<T*>(search.found());
}

} // namespace KelvOsgTools::detail
