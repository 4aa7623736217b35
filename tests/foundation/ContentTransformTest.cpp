#include "ChildShapes.h"

#include "foundation/ContentTransform.h"

#include <gtest/gtest.h>

#include <vector>

namespace {
using KelvOsgTools::detail::ContentTransform;
using namespace kelvtest;

/// Notes the nodes that a cull traversal meets.
class CullNotebook : public osg::NodeVisitor
{
public:
    explicit CullNotebook(TraversalMode mode) : osg::NodeVisitor(osg::NodeVisitor::CULL_VISITOR, mode) {}

    using osg::NodeVisitor::apply;
    void apply(osg::Node& node) override
    {
        met.push_back(&node);
        traverse(node);
    }

    std::vector<osg::Node*> met;
};

std::vector<osg::Node*> metBelow(osg::Group& top, osg::NodeVisitor::TraversalMode mode)
{
    CullNotebook notebook(mode);
    top.traverse(notebook);
    return notebook.met;
}

class ContentTransformOf : public ::testing::TestWithParam<unsigned int>
{
protected:
    ContentTransformOf()
    {
        for (unsigned int i = 0; i < GetParam(); ++i) {
            const osg::ref_ptr<osg::Node> child = childOfShape(i);
            content->addChild(child);
            plain->addChild(child);
        }
    }

    osg::ref_ptr<ContentTransform> content = new ContentTransform;
    osg::ref_ptr<osg::MatrixTransform> plain = new osg::MatrixTransform;
};

TEST_P(ContentTransformOf, IsCulledInTheOrderOfAPlainTransform)
{
    for (const auto mode : {osg::NodeVisitor::TRAVERSE_ACTIVE_CHILDREN, osg::NodeVisitor::TRAVERSE_ALL_CHILDREN}) {
        const std::vector<osg::Node*> expected = metBelow(*plain, mode);
        EXPECT_EQ(expected.empty(), GetParam() == 0);
        EXPECT_EQ(metBelow(*content, mode), expected);
    }
}

// Around the number from which on children are fetched ahead.
INSTANTIATE_TEST_SUITE_P(Children, ContentTransformOf, ::testing::Values(0u, 1u, 499u, 500u, 501u, 3000u));

/// Lets the last child of a group go when it is met, as a host may that watches over its features.
class Watch : public osg::NodeCallback
{
public:
    explicit Watch(osg::Group& group) : m_group(group) {}
    void operator()(osg::Node* node, osg::NodeVisitor* visitor) override
    {
        if (m_group.getNumChildren() > 500) m_group.removeChildren(m_group.getNumChildren() - 1, 1);
        traverse(node, visitor);
    }

private:
    osg::Group& m_group;
};

/// Calls cull callbacks.
class CallingVisitor : public CullNotebook
{
public:
    CallingVisitor() : CullNotebook(TRAVERSE_ACTIVE_CHILDREN) {}

    using CullNotebook::apply;
    void apply(osg::Node& node) override
    {
        met.push_back(&node);
        if (osg::Callback* const callback = node.getCullCallback())
            callback->run(&node, this);
        else
            traverse(node);
    }
};

TEST(ContentTransform, LosesChildrenWhileItIsCulled)
{
    const osg::ref_ptr<ContentTransform> content = new ContentTransform;
    for (int i = 0; i < 2100; ++i) content->addChild(new osg::Group);
    content->getChild(10)->setCullCallback(new Watch(*content));
    content->getChild(20)->setCullCallback(new Watch(*content));
    CallingVisitor visitor;
    content->traverse(visitor);
    EXPECT_EQ(visitor.met.size(), 2098u);
}

TEST(ContentTransform, IsAMatrixTransformToHostsAndTheirFiles)
{
    const osg::ref_ptr<osg::Object> content = new ContentTransform;
    EXPECT_STREQ(content->libraryName(), "osg");
    EXPECT_STREQ(content->className(), "MatrixTransform");
}

TEST(ContentTransform, StaysOfItsKindWhenCloned)
{
    const osg::ref_ptr<ContentTransform> content = new ContentTransform;
    content->setMatrix(osg::Matrixd::translate(1.0, 2.0, 3.0));
    content->addChild(new osg::Group);
    const osg::ref_ptr<osg::Object> fresh = content->cloneType();
    const osg::ref_ptr<osg::Object> object = content->clone(osg::CopyOp::DEEP_COPY_ALL);
    const auto* const clone = dynamic_cast<ContentTransform*>(object.get());
    EXPECT_NE(dynamic_cast<ContentTransform*>(fresh.get()), nullptr);
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->getMatrix(), content->getMatrix());
    EXPECT_EQ(clone->getNumChildren(), 1u);
    EXPECT_NE(clone->getChild(0), content->getChild(0));
}

} // namespace
