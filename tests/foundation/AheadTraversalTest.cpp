#include "ChildShapes.h"

#include "foundation/AheadTraversal.h"

#include <gtest/gtest.h>

#include <vector>

using namespace KelvOsgTools;
using namespace kelvtest;

namespace {

constexpr unsigned int kLevels = 3; // that are fetched ahead

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
