#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/featureBaseNode.h>

#include <gtest/gtest.h>

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/MatrixTransform>

namespace {
using namespace KelvOsgTools;
using kelvtest::childNames;
using kelvtest::childOf;
using kelvtest::groupWithChildren;
using kelvtest::namedGroup;

const osg::ref_ptr<osg::Group> kNoGroup;

osg::ref_ptr<osg::Group> findRoot(const osg::ref_ptr<osg::Group>& scene, int kind)
{
    return findOrCreateFeatureRootNode(scene, static_cast<featureType>(kind), false);
}

osg::ref_ptr<osg::Group> makeRoot(const osg::ref_ptr<osg::Group>& scene, int kind)
{
    return findOrCreateFeatureRootNode(scene, static_cast<featureType>(kind), true);
}

// findOrCreateNode

TEST(FindOrCreateNode, GivesNullWithoutAParent)
{
    EXPECT_EQ(findOrCreateNode("name", nullptr, false), nullptr);
    EXPECT_EQ(findOrCreateNode("name", nullptr, true), nullptr);
}

TEST(FindOrCreateNode, ReturnsTheFirstOfTwoEqualNames)
{
    const osg::ref_ptr<osg::Group> parent = groupWithChildren({"a", "b", "b"});
    EXPECT_EQ(findOrCreateNode("b", parent, true), parent->getChild(1));
    EXPECT_EQ(parent->getNumChildren(), 3u);
}

TEST(FindOrCreateNode, ReturnsANodeOfAnyType)
{
    const osg::ref_ptr<osg::Group> parent = new osg::Group;
    const osg::ref_ptr<osg::Geometry> drawable = new osg::Geometry;
    drawable->setName("drawable");
    parent->addChild(drawable);
    EXPECT_EQ(findOrCreateNode("drawable", parent, true), drawable);
}

TEST(FindOrCreateNode, CreatesNothingUnlessToldTo)
{
    const osg::ref_ptr<osg::Group> parent = groupWithChildren({"a"});
    EXPECT_EQ(findOrCreateNode("b", parent, false), nullptr);
    EXPECT_EQ(childNames(*parent), (std::vector<std::string>{"a"}));
}

TEST(FindOrCreateNode, AppendsANamedBaseNode)
{
    const osg::ref_ptr<osg::Group> parent = groupWithChildren({"a"});
    const osg::ref_ptr<osg::Node> made = findOrCreateNode("b", parent, true);
    EXPECT_EQ(childNames(*parent), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(parent->getChild(1), made);

    auto* const base = dynamic_cast<featureBaseNode*>(made.get());
    ASSERT_NE(base, nullptr);
    ASSERT_EQ(base->getNumChildren(), 1u);
    EXPECT_EQ(base->getChild(0)->getName(), "MatrixTransform");
}

TEST(FindOrCreateNode, FindsWhatItMade)
{
    const osg::ref_ptr<osg::Group> parent = new osg::Group;
    const osg::ref_ptr<osg::Node> made = findOrCreateNode("b", parent, true);
    EXPECT_EQ(findOrCreateNode("b", parent, true), made);
    EXPECT_EQ(findOrCreateNode("b", parent, false), made);
    EXPECT_EQ(parent->getNumChildren(), 1u);
}

TEST(FindOrCreateNode, ComparesTheWholeNameAndItsCase)
{
    const osg::ref_ptr<osg::Group> parent = groupWithChildren({"Dot", "dot1"});
    EXPECT_EQ(findOrCreateNode("dot", parent, false), nullptr);
}

TEST(FindOrCreateNode, DoesNotDescend)
{
    const osg::ref_ptr<osg::Group> parent = groupWithChildren({"a"});
    childOf(*parent, 0)->addChild(namedGroup("deep"));
    EXPECT_EQ(findOrCreateNode("deep", parent, false), nullptr);
}

// findChildByName

TEST(FindChildByName, ReturnsTheFirstOfTwoEqualNames)
{
    const osg::ref_ptr<osg::Group> parent = groupWithChildren({"dot-1", "dot-2", "dot-2"});
    EXPECT_EQ(findChildByName("dot-2", parent), parent->getChild(1));
}

TEST(FindChildByName, GivesNullWithoutAParentOrChildren)
{
    EXPECT_EQ(findChildByName("dot", nullptr), nullptr);
    EXPECT_EQ(findChildByName("dot", new osg::Group), nullptr);
}

TEST(FindChildByName, GivesNullForANameThatNoChildHas)
{
    const osg::ref_ptr<osg::Group> parent = groupWithChildren({"Dot", "dot1", " dot"});
    parent->setName("dot");
    EXPECT_EQ(findChildByName("dot", parent), nullptr);
}

TEST(FindChildByName, DoesNotDescend)
{
    const osg::ref_ptr<osg::Group> parent = groupWithChildren({"a"});
    childOf(*parent, 0)->addChild(namedGroup("deep"));
    EXPECT_EQ(findChildByName("deep", parent), nullptr);
}

// findOrCreateFeatureRootNode

struct RootOfKind
{
    int kind;
    const char* name;
};

void PrintTo(const RootOfKind& root, std::ostream* stream)
{
    *stream << root.kind << " " << root.name;
}

class FeatureRoot : public ::testing::TestWithParam<RootOfKind>
{};

TEST_P(FeatureRoot, IsMadeWithItsWholePathInOneCall)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> root = makeRoot(scene, GetParam().kind);

    ASSERT_EQ(childNames(*scene), (std::vector<std::string>{"featureData"}));
    osg::Group* const common = childOf(*scene, 0);
    ASSERT_EQ(childNames(*common), (std::vector<std::string>{"MatrixTransform"}));
    osg::Group* const content = childOf(*common, 0);
    ASSERT_EQ(childNames(*content), (std::vector<std::string>{GetParam().name}));
    EXPECT_EQ(content->getChild(0), root);
}

TEST_P(FeatureRoot, IsABaseNodeLikeTheCommonRoot)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> root = makeRoot(scene, GetParam().kind);
    EXPECT_NE(dynamic_cast<featureBaseNode*>(root.get()), nullptr);
    EXPECT_NE(childOf<featureBaseNode>(*scene, 0), nullptr);
}

TEST_P(FeatureRoot, IsMadeOnce)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> root = makeRoot(scene, GetParam().kind);
    const std::size_t nodes = kelvtest::allNodes(*scene).size();
    EXPECT_EQ(makeRoot(scene, GetParam().kind), root);
    EXPECT_EQ(findRoot(scene, GetParam().kind), root);
    EXPECT_EQ(kelvtest::allNodes(*scene).size(), nodes);
}

TEST_P(FeatureRoot, IsNotMadeUnlessToldTo)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    EXPECT_EQ(findRoot(scene, GetParam().kind), nullptr);
    EXPECT_EQ(scene->getNumChildren(), 0u);
}

TEST_P(FeatureRoot, IsNotMadeUnderAnExistingCommonRootUnlessToldTo)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    makeRoot(scene, featureAll);
    EXPECT_EQ(findRoot(scene, GetParam().kind), nullptr);
    EXPECT_EQ(kelvtest::contentOf(*scene, featureAll)->getNumChildren(), 0u);
}

TEST_P(FeatureRoot, IsMissingOnceTheCommonRootLostItsTransform)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    makeRoot(scene, GetParam().kind);
    childOf(*scene, 0)->removeChildren(0, 1);
    EXPECT_EQ(findRoot(scene, GetParam().kind), nullptr);
    EXPECT_EQ(makeRoot(scene, GetParam().kind), nullptr);
    EXPECT_EQ(childOf(*scene, 0)->getNumChildren(), 0u);
}

TEST_P(FeatureRoot, IsMissingWhereTheTransformIsNoGroup)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    makeRoot(scene, featureAll);
    childOf(*scene, 0)->setChild(0, new osg::Geometry);
    EXPECT_EQ(findRoot(scene, GetParam().kind), nullptr);
    EXPECT_EQ(makeRoot(scene, GetParam().kind), nullptr);
}

TEST_P(FeatureRoot, IsMissingWhereTheCommonRootIsADrawable)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Geometry> drawable = new osg::Geometry;
    drawable->setName("featureData");
    scene->addChild(drawable);
    EXPECT_EQ(findRoot(scene, GetParam().kind), nullptr);
    EXPECT_EQ(makeRoot(scene, GetParam().kind), nullptr);
    EXPECT_EQ(childNames(*scene), (std::vector<std::string>{"featureData"}));
}

TEST_P(FeatureRoot, IsMissingWhereADrawableHasItsName)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    makeRoot(scene, featureAll);
    const osg::ref_ptr<osg::Geometry> drawable = new osg::Geometry;
    drawable->setName(GetParam().name);
    kelvtest::contentOf(*scene, featureAll)->addChild(drawable);
    EXPECT_EQ(makeRoot(scene, GetParam().kind), nullptr);
}

TEST_P(FeatureRoot, StandsInWhateverGroupTheHostPutInPlaceOfTheTransform)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Geode> common = new osg::Geode;
    const osg::ref_ptr<osg::Group> content = namedGroup("content");
    common->setName("featureData");
    common->addChild(content);
    scene->addChild(common);
    EXPECT_EQ(makeRoot(scene, GetParam().kind)->getParent(0), content);
}

INSTANTIATE_TEST_SUITE_P(Kinds, FeatureRoot,
                         ::testing::Values(RootOfKind{featureDot, "featureDotData"},
                                           RootOfKind{featureLine, "featureLineData"},
                                           RootOfKind{featurePlane, "featurePlaneData"},
                                           RootOfKind{featureTable, "featureTableData"}));

TEST(FeatureRoots, StandInTheOrderInWhichTheyWereAskedFor)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (const int kind : {featureTable, featurePlane, featureDot, featureLine, featurePlane}) makeRoot(scene, kind);
    EXPECT_EQ(childNames(*kelvtest::contentOf(*scene, featureAll)),
              (std::vector<std::string>{"featureTableData", "featurePlaneData", "featureDotData", "featureLineData"}));
}

TEST(FeatureRoots, StandBesideWhatTheHostPutIntoItsScene)
{
    const osg::ref_ptr<osg::Group> scene = groupWithChildren({"meshData"});
    makeRoot(scene, featureDot);
    EXPECT_EQ(childNames(*scene), (std::vector<std::string>{"meshData", "featureData"}));
}

TEST(FeatureRoots, AreNotSoughtDeeperInTheScene)
{
    const osg::ref_ptr<osg::Group> scene = groupWithChildren({"group"});
    childOf(*scene, 0)->addChild(namedGroup("featureData"));
    EXPECT_EQ(findRoot(scene, featureAll), nullptr);
}

TEST(FeatureRoots, AreMissingWithoutAScene)
{
    for (const int kind : {-1, 0, 1, 2, 3, 4, 5, 99}) {
        EXPECT_EQ(findRoot(kNoGroup, kind), nullptr);
        EXPECT_EQ(makeRoot(kNoGroup, kind), nullptr);
    }
}

TEST(CommonFeatureRoot, IsTheRootOfAllKinds)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> root = makeRoot(scene, featureAll);
    ASSERT_EQ(childNames(*scene), (std::vector<std::string>{"featureData"}));
    EXPECT_EQ(root, scene->getChild(0));
    EXPECT_EQ(kelvtest::contentOf(*scene, featureAll)->getNumChildren(), 0u);
}

TEST(CommonFeatureRoot, IsFoundEvenWithoutItsTransform)
{
    const osg::ref_ptr<osg::Group> scene = groupWithChildren({"featureData"});
    EXPECT_EQ(findRoot(scene, featureAll), scene->getChild(0));
}

TEST(CommonFeatureRoot, IsMissingWhereADrawableHasItsName)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Geometry> drawable = new osg::Geometry;
    drawable->setName("featureData");
    scene->addChild(drawable);
    EXPECT_EQ(findRoot(scene, featureAll), nullptr);
    EXPECT_EQ(makeRoot(scene, featureAll), nullptr);
}

class KindWithoutRoot : public ::testing::TestWithParam<int>
{};

TEST_P(KindWithoutRoot, GivesNullEvenWhereTheTreeExists)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (const int kind : {1, 2, 3, 4}) makeRoot(scene, kind);
    const std::size_t nodes = kelvtest::allNodes(*scene).size();
    EXPECT_EQ(findRoot(scene, GetParam()), nullptr);
    EXPECT_EQ(makeRoot(scene, GetParam()), nullptr);
    EXPECT_EQ(kelvtest::allNodes(*scene).size(), nodes);
}

TEST_P(KindWithoutRoot, CreatesNothingUnlessToldTo)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    EXPECT_EQ(findRoot(scene, GetParam()), nullptr);
    EXPECT_EQ(scene->getNumChildren(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Kinds, KindWithoutRoot, ::testing::Values(featureFlagDot, -1, 6, 99, 2147483647));

} // namespace
