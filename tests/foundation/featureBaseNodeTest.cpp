#include <KelvOsgTools/featureBaseNode.h>

#include <gtest/gtest.h>

#include <osg/MatrixTransform>

#include <type_traits>

namespace {
using namespace KelvOsgTools;

TEST(FeatureBaseNode, HoldsOneIdentityTransformWhenNew)
{
    const osg::ref_ptr<featureBaseNode> node = new featureBaseNode;
    ASSERT_EQ(node->getNumChildren(), 1u);
    const auto* const content = dynamic_cast<osg::MatrixTransform*>(node->getChild(0));
    ASSERT_NE(content, nullptr);
    EXPECT_EQ(content->getName(), "MatrixTransform");
    EXPECT_TRUE(content->getMatrix().isIdentity());
    EXPECT_EQ(content->getNumChildren(), 0u);
}

TEST(FeatureBaseNode, ShowsItsTransformWhenNew)
{
    const osg::ref_ptr<featureBaseNode> node = new featureBaseNode;
    EXPECT_TRUE(node->getValue(0));
}

TEST(FeatureBaseNode, IsNamedWhenNew)
{
    const osg::ref_ptr<featureBaseNode> node = new featureBaseNode;
    EXPECT_EQ(node->getName(), "featureNodeBase");
}

TEST(FeatureBaseNode, IsDynamicLikeItsTransform)
{
    const osg::ref_ptr<featureBaseNode> node = new featureBaseNode;
    EXPECT_EQ(node->getDataVariance(), osg::Object::DYNAMIC);
    EXPECT_EQ(node->getChild(0)->getDataVariance(), osg::Object::DYNAMIC);
}

TEST(FeatureBaseNode, KeepsTheClassNameOfASwitch)
{
    const osg::ref_ptr<osg::Object> node = new featureBaseNode;
    EXPECT_STREQ(node->className(), "Switch");
}

TEST(FeatureBaseNode, CarriesNoKind)
{
    const osg::ref_ptr<featureBaseNode> node = new featureBaseNode;
    EXPECT_EQ(node->getUserDataContainer(), nullptr);
}

TEST(FeatureBaseNode, SharesItsTransformWithItsCopy)
{
    const osg::ref_ptr<featureBaseNode> node = new featureBaseNode;
    const osg::ref_ptr<featureBaseNode> copy = new featureBaseNode(*node);
    ASSERT_EQ(copy->getNumChildren(), 1u);
    EXPECT_EQ(copy->getChild(0), node->getChild(0));
    EXPECT_EQ(node->getChild(0)->getNumParents(), 2u);
}

TEST(FeatureBaseNode, GivesItsCopyNameAndSwitchSettings)
{
    const osg::ref_ptr<featureBaseNode> node = new featureBaseNode;
    node->setName("group");
    node->setAllChildrenOff();
    const osg::ref_ptr<featureBaseNode> copy = new featureBaseNode(*node);
    EXPECT_EQ(copy->getName(), "group");
    EXPECT_FALSE(copy->getValue(0));
    EXPECT_EQ(copy->getDataVariance(), osg::Object::DYNAMIC);
}

TEST(FeatureBaseNode, HasAVirtualDestructor)
{
    static_assert(std::has_virtual_destructor_v<featureBaseNode>);
}

} // namespace
