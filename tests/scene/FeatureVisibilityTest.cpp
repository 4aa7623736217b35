#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <gtest/gtest.h>

#include <osg/Geometry>
#include <osg/Switch>
#include <osg/ValueObject>

namespace {
using namespace KelvOsgTools;
using kelvtest::childNames;
using kelvtest::childOf;
using kelvtest::contentOf;

const std::vector<featureType> kFeatureKinds = {featureDot, featureLine, featurePlane};

osg::ref_ptr<osg::Group> addFeature(const osg::ref_ptr<osg::Group>& scene, featureType kind, const std::string& name)
{
    switch (kind) {
    case featureDot:
        return kelvtest::addDot(scene, name);
    case featureLine:
        return kelvtest::addLine(scene, name);
    default:
        return kelvtest::addPlane(scene, name);
    }
}

osg::ref_ptr<osg::Group> addTemporary(const osg::ref_ptr<osg::Group>& scene, featureType kind, const std::string& name)
{
    osg::ref_ptr<osg::Group> feature = addFeature(scene, kind, name);
    feature->setUserValue("tmpData", true);
    return feature;
}

/// A scene with one feature of each kind, and the root of tables.
osg::ref_ptr<osg::Group> sceneWithFeatures()
{
    osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (const featureType kind : kFeatureKinds) addFeature(scene, kind, "feature");
    findOrCreateFeatureRootNode(scene, featureTable, true);
    return scene;
}

bool isOn(const osg::ref_ptr<osg::Group>& node)
{
    const auto* const parts = dynamic_cast<const osg::Switch*>(node.get());
    return parts && parts->getValue(0);
}

bool isRootOn(const osg::ref_ptr<osg::Group>& scene, featureType kind)
{
    return isOn(findOrCreateFeatureRootNode(scene, kind, false));
}

bool allPartsAre(const osg::ref_ptr<osg::Group>& feature, bool on)
{
    const auto* const parts = dynamic_cast<const osg::Switch*>(feature.get());
    for (unsigned int i = 0; i < parts->getNumChildren(); ++i)
        if (parts->getValue(i) != on) return false;
    return true;
}

// switchFeatureRoot

class SwitchFeatureRoot : public ::testing::TestWithParam<featureType>
{};

TEST_P(SwitchFeatureRoot, HidesAndShowsItsKindAlone)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    EXPECT_TRUE(switchFeatureRoot(scene, false, GetParam()));
    for (const featureType kind : kFeatureKinds) EXPECT_EQ(isRootOn(scene, kind), kind != GetParam());
    EXPECT_TRUE(isRootOn(scene, featureAll));

    EXPECT_TRUE(switchFeatureRoot(scene, true, GetParam()));
    EXPECT_TRUE(isRootOn(scene, GetParam()));
}

TEST_P(SwitchFeatureRoot, LeavesTheFeaturesThemselvesAsTheyAre)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    switchFeatureRoot(scene, false, GetParam());
    EXPECT_TRUE(isOn(childOf(*contentOf(*scene, GetParam()), 0)));
}

TEST_P(SwitchFeatureRoot, SwitchesWhateverHangsUnderTheRoot)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    auto* const root = dynamic_cast<osg::Switch*>(findOrCreateFeatureRootNode(scene, GetParam(), false).get());
    root->addChild(new osg::Group);
    switchFeatureRoot(scene, false, GetParam());
    EXPECT_FALSE(root->getValue(0));
    EXPECT_FALSE(root->getValue(1));
}

TEST_P(SwitchFeatureRoot, SucceedsAndCreatesNothingWithoutARoot)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    EXPECT_TRUE(switchFeatureRoot(scene, false, GetParam()));
    EXPECT_EQ(scene->getNumChildren(), 0u);

    findOrCreateFeatureRootNode(scene, featureAll, true);
    EXPECT_TRUE(switchFeatureRoot(scene, false, GetParam()));
    EXPECT_EQ(contentOf(*scene, featureAll)->getNumChildren(), 0u);
    EXPECT_TRUE(isRootOn(scene, featureAll));
}

TEST_P(SwitchFeatureRoot, SucceedsWhereTheRootIsNoSwitch)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    osg::Group& content = *contentOf(*scene, featureAll);
    const std::string name = findOrCreateFeatureRootNode(scene, GetParam(), false)->getName();
    content.replaceChild(findOrCreateFeatureRootNode(scene, GetParam(), false), kelvtest::namedGroup(name));
    EXPECT_TRUE(switchFeatureRoot(scene, false, GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Kinds, SwitchFeatureRoot, ::testing::ValuesIn(kFeatureKinds));

class SwitchAllFeatures : public ::testing::TestWithParam<int>
{
protected:
    featureType kind() const { return static_cast<featureType>(GetParam()); }
};

TEST_P(SwitchAllFeatures, HidesAndShowsTheCommonRoot)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    EXPECT_TRUE(switchFeatureRoot(scene, false, kind()));
    EXPECT_FALSE(isRootOn(scene, featureAll));
    for (const featureType each : kFeatureKinds) EXPECT_TRUE(isRootOn(scene, each));
    EXPECT_TRUE(isRootOn(scene, featureTable));

    EXPECT_TRUE(switchFeatureRoot(scene, true, kind()));
    EXPECT_TRUE(isRootOn(scene, featureAll));
}

TEST_P(SwitchAllFeatures, SucceedsAndCreatesNothingWithoutARoot)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    EXPECT_TRUE(switchFeatureRoot(scene, true, kind()));
    EXPECT_EQ(scene->getNumChildren(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Kinds, SwitchAllFeatures, ::testing::Values(featureAll, featureTable, featureFlagDot, -1, 99));

TEST(SwitchFeatureRootWithoutAScene, Fails)
{
    for (const int kind : {-1, 0, 1, 2, 3, 4, 5, 99})
        EXPECT_FALSE(switchFeatureRoot(nullptr, true, static_cast<featureType>(kind)));
}

TEST(SwitchFeatureRoot, SurvivesACommonRootWithoutTransform)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    removeFeatureRoot(scene, featureAll);
    for (const int kind : {0, 1, 2, 3, 4}) EXPECT_TRUE(switchFeatureRoot(scene, true, static_cast<featureType>(kind)));
}

// switchFeatureRootFlagNode

class TemporaryFeatures : public ::testing::TestWithParam<featureType>
{};

TEST_P(TemporaryFeatures, AreHiddenAndShownAlone)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    const osg::ref_ptr<osg::Group> first = addTemporary(scene, GetParam(), "first");
    const osg::ref_ptr<osg::Group> second = addTemporary(scene, GetParam(), "second");
    EXPECT_TRUE(switchFeatureRootFlagNode(scene, false, GetParam()));
    EXPECT_TRUE(allPartsAre(first, false));
    EXPECT_TRUE(allPartsAre(second, false));
    EXPECT_TRUE(allPartsAre(childOf(*contentOf(*scene, GetParam()), 0), true));

    EXPECT_TRUE(switchFeatureRootFlagNode(scene, true, GetParam()));
    EXPECT_TRUE(allPartsAre(first, true));
}

TEST_P(TemporaryFeatures, AreSwitchedForTheirKindAlone)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    std::vector<osg::ref_ptr<osg::Group>> features;
    for (const featureType kind : kFeatureKinds) features.push_back(addTemporary(scene, kind, "temporary"));
    switchFeatureRootFlagNode(scene, false, GetParam());
    for (std::size_t i = 0; i < kFeatureKinds.size(); ++i) EXPECT_EQ(isOn(features[i]), kFeatureKinds[i] != GetParam());
}

TEST_P(TemporaryFeatures, ThatAreNoSwitchStayAsTheyAre)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    const osg::ref_ptr<osg::Group> plain = kelvtest::groupWithChildren({"part"});
    plain->setUserValue("tmpData", true);
    contentOf(*scene, GetParam())->addChild(plain);
    EXPECT_TRUE(switchFeatureRootFlagNode(scene, false, GetParam()));
    EXPECT_EQ(childNames(*plain), (std::vector<std::string>{"part"}));
}

TEST_P(TemporaryFeatures, AreNotSwitchedWithoutARootOfTheKind)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    EXPECT_FALSE(switchFeatureRootFlagNode(scene, false, GetParam()));
    EXPECT_EQ(scene->getNumChildren(), 0u);
    EXPECT_FALSE(switchFeatureRootFlagNode(nullptr, false, GetParam()));
}

TEST_P(TemporaryFeatures, AreNotSwitchedWhereTheRootLostItsTransform)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    const osg::ref_ptr<osg::Group> root = findOrCreateFeatureRootNode(scene, GetParam(), false);
    root->removeChildren(0, root->getNumChildren());
    EXPECT_FALSE(switchFeatureRootFlagNode(scene, false, GetParam()));
    root->addChild(new osg::Geometry);
    EXPECT_FALSE(switchFeatureRootFlagNode(scene, false, GetParam()));
}

// clearFeatureRootTempNode

TEST_P(TemporaryFeatures, AreClearedWhileTheOthersStayInOrder)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    addTemporary(scene, GetParam(), "temporary 1");
    addFeature(scene, GetParam(), "kept 1");
    addTemporary(scene, GetParam(), "temporary 2");
    addTemporary(scene, GetParam(), "temporary 3");
    addFeature(scene, GetParam(), "kept 2");
    EXPECT_TRUE(clearFeatureRootTempNode(scene, GetParam()));
    EXPECT_EQ(childNames(*contentOf(*scene, GetParam())), (std::vector<std::string>{"kept 1", "kept 2"}));
}

TEST_P(TemporaryFeatures, AreClearedForTheirKindAlone)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (const featureType kind : kFeatureKinds) addTemporary(scene, kind, "temporary");
    clearFeatureRootTempNode(scene, GetParam());
    for (const featureType kind : kFeatureKinds)
        EXPECT_EQ(contentOf(*scene, kind)->getNumChildren(), kind == GetParam() ? 0u : 1u);
}

TEST_P(TemporaryFeatures, AreClearedWhateverTheirType)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    findOrCreateFeatureRootNode(scene, GetParam(), true);
    for (const osg::ref_ptr<osg::Node>& node :
         {osg::ref_ptr<osg::Node>(new osg::Group), osg::ref_ptr<osg::Node>(new osg::Geometry)}) {
        node->setUserValue("tmpData", true);
        contentOf(*scene, GetParam())->addChild(node);
    }
    EXPECT_TRUE(clearFeatureRootTempNode(scene, GetParam()));
    EXPECT_EQ(contentOf(*scene, GetParam())->getNumChildren(), 0u);
}

TEST_P(TemporaryFeatures, AreNotClearedDeeperInTheTree)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> feature = addFeature(scene, GetParam(), "kept");
    feature->getChild(0)->setUserValue("tmpData", true);
    const unsigned int parts = feature->getNumChildren();
    EXPECT_TRUE(clearFeatureRootTempNode(scene, GetParam()));
    EXPECT_EQ(feature->getNumChildren(), parts);
}

TEST_P(TemporaryFeatures, AreNotClearedWithoutARootOfTheKind)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    EXPECT_FALSE(clearFeatureRootTempNode(scene, GetParam()));
    EXPECT_EQ(scene->getNumChildren(), 0u);
    EXPECT_FALSE(clearFeatureRootTempNode(nullptr, GetParam()));
}

TEST_P(TemporaryFeatures, AreNotClearedWhereTheRootLostItsTransform)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    const osg::ref_ptr<osg::Group> root = findOrCreateFeatureRootNode(scene, GetParam(), false);
    root->removeChildren(0, root->getNumChildren());
    EXPECT_FALSE(clearFeatureRootTempNode(scene, GetParam()));
    root->addChild(new osg::Geometry);
    EXPECT_FALSE(clearFeatureRootTempNode(scene, GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Kinds, TemporaryFeatures, ::testing::ValuesIn(kFeatureKinds));

TEST(ClearAllTemporaryFeatures, ClearsAllThreeKindsAndYetReportsFalse)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    for (const featureType kind : kFeatureKinds) addTemporary(scene, kind, "temporary");
    EXPECT_FALSE(clearFeatureRootTempNode(scene, featureAll));
    for (const featureType kind : kFeatureKinds)
        EXPECT_EQ(childNames(*contentOf(*scene, kind)), (std::vector<std::string>{"feature"}));
}

TEST(ClearAllTemporaryFeatures, FailsWithoutAScene)
{
    EXPECT_FALSE(clearFeatureRootTempNode(nullptr, featureAll));
}

class TemporaryFeaturesOfOtherKind : public ::testing::TestWithParam<int>
{};

TEST_P(TemporaryFeaturesOfOtherKind, AreNeitherSwitchedNorCleared)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    std::vector<osg::ref_ptr<osg::Switch>> nodes;
    for (const featureType kind : {featureAll, featureDot, featureLine, featurePlane, featureTable}) {
        nodes.push_back(new osg::Switch);
        nodes.back()->addChild(new osg::Group);
        nodes.back()->setUserValue("tmpData", true);
        contentOf(*scene, kind)->addChild(nodes.back());
    }
    EXPECT_FALSE(switchFeatureRootFlagNode(scene, false, static_cast<featureType>(GetParam())));
    EXPECT_FALSE(clearFeatureRootTempNode(scene, static_cast<featureType>(GetParam())));
    for (const auto& node : nodes) {
        EXPECT_TRUE(node->getValue(0));
        EXPECT_EQ(node->getNumParents(), 1u);
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, TemporaryFeaturesOfOtherKind, ::testing::Values(featureTable, featureFlagDot, -1, 99));

TEST(SwitchTemporaryFeatures, RejectsAllKindsAtOnce)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> dot = addTemporary(scene, featureDot, "temporary");
    EXPECT_FALSE(switchFeatureRootFlagNode(scene, false, featureAll));
    EXPECT_TRUE(isOn(dot));
    EXPECT_FALSE(switchFeatureRootFlagNode(nullptr, false, featureAll));
}

template <typename Value>
class TemporaryMarkOfWrongType : public ::testing::Test
{};
using NoBools = ::testing::Types<int, char, unsigned char, short, unsigned int, float, double>;
TYPED_TEST_SUITE(TemporaryMarkOfWrongType, NoBools);

TYPED_TEST(TemporaryMarkOfWrongType, CountsAsFalse)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> dot = kelvtest::addDot(scene, "kept");
    dot->setUserValue("tmpData", static_cast<TypeParam>(1));
    EXPECT_TRUE(switchFeatureRootFlagNode(scene, false, featureDot));
    EXPECT_TRUE(isOn(dot));
    EXPECT_TRUE(clearFeatureRootTempNode(scene, featureDot));
    EXPECT_EQ(contentOf(*scene, featureDot)->getNumChildren(), 1u);
}

TEST(TemporaryMark, ThatIsFalseCountsAsFalse)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> dot = kelvtest::addDot(scene, "kept");
    dot->setUserValue("tmpData", false);
    switchFeatureRootFlagNode(scene, false, featureDot);
    EXPECT_TRUE(isOn(dot));
    clearFeatureRootTempNode(scene, featureDot);
    EXPECT_EQ(contentOf(*scene, featureDot)->getNumChildren(), 1u);
}

TEST(TemporaryMark, ThatIsAStringCountsAsFalse)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    kelvtest::addDot(scene, "kept")->setUserValue("tmpData", std::string("true"));
    clearFeatureRootTempNode(scene, featureDot);
    EXPECT_EQ(contentOf(*scene, featureDot)->getNumChildren(), 1u);
}

// removeFeatureRoot

TEST(RemoveFeatureRoot, TakesAllFeaturesAndLeavesTheCommonRootEmpty)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    EXPECT_TRUE(removeFeatureRoot(scene, featureAll));
    EXPECT_EQ(childNames(*scene), (std::vector<std::string>{"featureData"}));
    EXPECT_EQ(childOf(*scene, 0)->getNumChildren(), 0u);
}

TEST(RemoveFeatureRoot, TakesChildZeroOfTheCommonRootAlone)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    childOf(*scene, 0)->addChild(kelvtest::namedGroup("extra"));
    removeFeatureRoot(scene, featureAll);
    EXPECT_EQ(childNames(*childOf(*scene, 0)), (std::vector<std::string>{"extra"}));
}

TEST(RemoveFeatureRoot, MayBeRepeated)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    removeFeatureRoot(scene, featureAll);
    EXPECT_TRUE(removeFeatureRoot(scene, featureAll));
    EXPECT_EQ(childNames(*scene), (std::vector<std::string>{"featureData"}));
}

TEST(RemoveFeatureRoot, LeavesNoRootOfAKindToBeFound)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    removeFeatureRoot(scene, featureAll);
    for (const featureType kind : {featureDot, featureLine, featurePlane, featureTable}) {
        EXPECT_EQ(findOrCreateFeatureRootNode(scene, kind, false), nullptr);
        EXPECT_EQ(findOrCreateFeatureRootNode(scene, kind, true), nullptr);
        EXPECT_EQ(findFeatureByName("feature", scene, kind), nullptr);
        EXPECT_TRUE(removeFeatureRoot(scene, kind));
    }
}

class RemoveRootOfOneKind : public ::testing::TestWithParam<int>
{};

TEST_P(RemoveRootOfOneKind, RemovesNothing)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    const std::vector<osg::Node*> before = kelvtest::allNodes(*scene);
    EXPECT_TRUE(removeFeatureRoot(scene, static_cast<featureType>(GetParam())));
    EXPECT_EQ(kelvtest::allNodes(*scene), before);
}

TEST_P(RemoveRootOfOneKind, SucceedsAndCreatesNothingWithoutACommonRoot)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    EXPECT_TRUE(removeFeatureRoot(scene, static_cast<featureType>(GetParam())));
    EXPECT_EQ(scene->getNumChildren(), 0u);
}

TEST_P(RemoveRootOfOneKind, FailsWithoutAScene)
{
    EXPECT_FALSE(removeFeatureRoot(nullptr, static_cast<featureType>(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(Kinds, RemoveRootOfOneKind,
                         ::testing::Values(featureDot, featureLine, featurePlane, featureTable, featureFlagDot, -1,
                                           99));

TEST(RemoveFeatureRoot, FailsOnlyWithoutAScene)
{
    EXPECT_FALSE(removeFeatureRoot(nullptr, featureAll));
    EXPECT_TRUE(removeFeatureRoot(new osg::Group, featureAll));
}

TEST(RemoveFeatureRoot, AsksTheCommonRootForADirectChild)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    const osg::ref_ptr<osg::Group> root = findOrCreateFeatureRootNode(scene, featureDot, false);
    childOf(*scene, 0)->addChild(root);
    EXPECT_TRUE(removeFeatureRoot(scene, featureDot));
    EXPECT_EQ(childNames(*childOf(*scene, 0)), (std::vector<std::string>{"MatrixTransform"}));
    EXPECT_EQ(findOrCreateFeatureRootNode(scene, featureDot, false), root);
}

} // namespace
