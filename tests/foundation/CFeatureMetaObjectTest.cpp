#include "support/NodeBuilders.h"

#include <KelvOsgTools/CFeatureMetaObject.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace {
using namespace KelvOsgTools;

osg::ref_ptr<CFeatureMetaObject> featureWithChildren(bool firstOn, bool secondOn)
{
    osg::ref_ptr<CFeatureMetaObject> feature = new CFeatureMetaObject;
    feature->addChild(kelvtest::namedGroup("first"), firstOn);
    feature->addChild(kelvtest::namedGroup("second"), secondOn);
    feature->setName("feature");
    return feature;
}

TEST(CFeatureMetaObject, IsAnEmptySwitchWhenNew)
{
    const osg::ref_ptr<osg::Switch> feature = new CFeatureMetaObject;
    EXPECT_EQ(feature->getNumChildren(), 0u);
    EXPECT_EQ(feature->getName(), "");
    EXPECT_EQ(feature->getUserDataContainer(), nullptr);
}

TEST(CFeatureMetaObject, KeepsTheClassNameOfASwitch)
{
    const osg::ref_ptr<osg::Object> feature = new CFeatureMetaObject;
    EXPECT_STREQ(feature->className(), "Switch");
    EXPECT_STREQ(feature->libraryName(), "osg");
}

TEST(CFeatureMetaObject, HasAVirtualDestructor)
{
    static_assert(std::has_virtual_destructor_v<CFeatureMetaObject>);
}

TEST(CFeatureMetaObject, SharesItsChildrenWithItsCopy)
{
    const osg::ref_ptr<CFeatureMetaObject> feature = featureWithChildren(true, true);
    const osg::ref_ptr<CFeatureMetaObject> copy = new CFeatureMetaObject(*feature);
    ASSERT_EQ(copy->getNumChildren(), 2u);
    EXPECT_EQ(copy->getChild(0), feature->getChild(0));
    EXPECT_EQ(copy->getChild(1), feature->getChild(1));
}

TEST(CFeatureMetaObject, GivesItsCopyNameAndSwitchSettings)
{
    const osg::ref_ptr<CFeatureMetaObject> copy = new CFeatureMetaObject(*featureWithChildren(false, true));
    EXPECT_EQ(copy->getName(), "feature");
    EXPECT_FALSE(copy->getValue(0));
    EXPECT_TRUE(copy->getValue(1));
}

TEST(CFeatureMetaObject, IsIndependentOfItsCopyInWhichChildrenAreOn)
{
    const osg::ref_ptr<CFeatureMetaObject> feature = featureWithChildren(true, true);
    const osg::ref_ptr<CFeatureMetaObject> copy = new CFeatureMetaObject(*feature);
    copy->setAllChildrenOff();
    EXPECT_TRUE(feature->getValue(0));
}

TEST(CFeatureMetaObject, ChangesNothingInAnyState)
{
    const osg::ref_ptr<CFeatureMetaObject> feature = featureWithChildren(false, true);
    for (const int state : {-1, 0, 1, 2, 3, 99}) feature->setState(static_cast<featureState>(state));

    EXPECT_EQ(kelvtest::childNames(*feature), (std::vector<std::string>{"first", "second"}));
    EXPECT_FALSE(feature->getValue(0));
    EXPECT_TRUE(feature->getValue(1));
    EXPECT_EQ(feature->getStateSet(), nullptr);
    EXPECT_EQ(feature->getUserDataContainer(), nullptr);
}

struct CountingFeature : CFeatureMetaObject
{
    void setState(featureState) override { ++calls; }
    int calls = 0;
};

TEST(CFeatureMetaObject, LetsPrimitivesOverrideTheirState)
{
    const osg::ref_ptr<CountingFeature> feature = new CountingFeature;
    CFeatureMetaObject& base = *feature;
    base.setState(featureStateSelected);
    EXPECT_EQ(feature->calls, 1);
}

} // namespace
