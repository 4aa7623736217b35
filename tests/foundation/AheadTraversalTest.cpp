#include "foundation/AheadTraversal.h"

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/Switch>

#include <gtest/gtest.h>

#include <vector>

using namespace KelvOsgTools;

namespace {

constexpr unsigned int kLevels = 3;

/// Notes the nodes that it meets, and walks on ahead or as plain visitors do.
class Notebook : public osg::NodeVisitor
{
public:
    Notebook(TraversalMode mode, bool isAhead) : osg::NodeVisitor(mode), m_isAhead(isAhead) {}

    using osg::NodeVisitor::apply;
    void apply(osg::Node& node) override
    {
        met.push_back(&node);
        traverse(node);
    }
    void apply(osg::Group& group) override
    {
        if (!m_isAhead) return apply(static_cast<osg::Node&>(group));
        met.push_back(&group);
        detail::traverseAhead(group, *this, kLevels);
    }

    std::vector<osg::Node*> met;

private:
    bool m_isAhead;
};

std::vector<osg::Node*> metBelow(osg::Group& top, osg::NodeVisitor::TraversalMode mode, bool isAhead)
{
    Notebook notebook(mode, isAhead);
    top.accept(notebook);
    return notebook.met;
}

osg::ref_ptr<osg::Group> groupOfGroups(unsigned int count)
{
    osg::ref_ptr<osg::Group> group = new osg::Group;
    for (unsigned int i = 0; i < count; ++i) group->addChild(new osg::Group);
    return group;
}

osg::ref_ptr<osg::Node> switchWithOneOff()
{
    osg::ref_ptr<osg::Switch> toggle = new osg::Switch;
    toggle->addChild(groupOfGroups(2), true);
    toggle->addChild(groupOfGroups(3), false);
    toggle->addChild(new osg::Geometry, true);
    return toggle;
}

/// A child of one of five shapes: without children, a leaf, a tree deeper than what is fetched, one
/// partly switched off, and one that is a wide group itself.
osg::ref_ptr<osg::Node> childOfShape(unsigned int shape)
{
    switch (shape % 5) {
    case 0:
        return new osg::Group;
    case 1:
        return new osg::Geometry;
    case 2: {
        osg::ref_ptr<osg::Group> top = new osg::Group;
        osg::Group* lowest = top;
        for (unsigned int depth = 0; depth < 2 * kLevels; ++depth) {
            const osg::ref_ptr<osg::Group> next = new osg::Group;
            lowest->addChild(next);
            lowest->addChild(new osg::Geode);
            lowest = next;
        }
        return top;
    }
    case 3:
        return switchWithOneOff();
    default:
        return groupOfGroups(100);
    }
}

class AheadTraversal : public ::testing::TestWithParam<unsigned int>
{
protected:
    AheadTraversal()
    {
        for (unsigned int i = 0; i < GetParam(); ++i) top->addChild(childOfShape(i));
    }

    osg::ref_ptr<osg::Group> top = new osg::Group;
};

} // namespace

TEST_P(AheadTraversal, MeetsAllNodesInTheOrderOfAPlainTraversal)
{
    const auto mode = osg::NodeVisitor::TRAVERSE_ALL_CHILDREN;
    EXPECT_EQ(metBelow(*top, mode, true), metBelow(*top, mode, false));
}

TEST_P(AheadTraversal, MeetsTheActiveNodesInTheOrderOfAPlainTraversal)
{
    const auto mode = osg::NodeVisitor::TRAVERSE_ACTIVE_CHILDREN;
    EXPECT_EQ(metBelow(*top, mode, true), metBelow(*top, mode, false));
}

// Around the number from which on nodes are fetched ahead.
INSTANTIATE_TEST_SUITE_P(Children, AheadTraversal, ::testing::Values(0u, 1u, 63u, 64u, 65u, 200u));
