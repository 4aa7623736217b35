#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <gtest/gtest.h>

#include <osg/Geometry>

namespace {
using namespace KelvOsgTools;
using kelvtest::childOf;
using kelvtest::contentOf;
using kelvtest::namedGroup;

/// A scene with the roots of dots, lines, planes and tables.
osg::ref_ptr<osg::Group> sceneWithRoots()
{
    osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (const featureType kind : {featureDot, featureLine, featurePlane, featureTable})
        findOrCreateFeatureRootNode(scene, kind, true);
    return scene;
}

osg::ref_ptr<osg::Group> addNamed(osg::Group& parent, const std::string& name)
{
    osg::ref_ptr<osg::Group> child = namedGroup(name);
    parent.addChild(child);
    return child;
}

// Anywhere below the common root

TEST(FindFeatureAnywhere, ReturnsTheFirstNodeInTraversalOrderWithItsParent)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    const osg::ref_ptr<osg::Group> group = addNamed(*contentOf(*scene, featureLine), "group");
    const osg::ref_ptr<osg::Group> deep = addNamed(*group, "wanted");
    addNamed(*contentOf(*scene, featurePlane), "wanted");

    osg::ref_ptr<osg::Group> parent;
    EXPECT_EQ(findFeatureByName("wanted", scene, parent), deep);
    EXPECT_EQ(parent, group);
}

TEST(FindFeatureAnywhere, FindsHiddenNodes)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    const osg::ref_ptr<osg::Group> dot = addNamed(*contentOf(*scene, featureDot), "wanted");
    switchFeatureRoot(scene, false, featureAll);
    osg::ref_ptr<osg::Group> parent;
    EXPECT_EQ(findFeatureByName("wanted", scene, parent), dot);
}

TEST(FindFeatureAnywhere, StartsAtTheCommonRootItself)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    osg::ref_ptr<osg::Group> parent;
    EXPECT_EQ(findFeatureByName("featureData", scene, parent), scene->getChild(0));
    EXPECT_EQ(parent, scene);
}

TEST(FindFeatureAnywhere, NamesTheFirstOfSeveralParents)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    const osg::ref_ptr<osg::Group> elsewhere = namedGroup("elsewhere");
    const osg::ref_ptr<osg::Group> shared = addNamed(*elsewhere, "shared");
    contentOf(*scene, featureDot)->addChild(shared);
    osg::ref_ptr<osg::Group> parent;
    EXPECT_EQ(findFeatureByName("shared", scene, parent), shared);
    EXPECT_EQ(parent, elsewhere);
}

TEST(FindFeatureAnywhere, DoesNotLookBesideTheFeatures)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    addNamed(*scene, "wanted");
    osg::ref_ptr<osg::Group> parent;
    EXPECT_EQ(findFeatureByName("wanted", scene, parent), nullptr);
}

TEST(FindFeatureAnywhere, LeavesTheParentUntouchedWithoutAFind)
{
    const osg::ref_ptr<osg::Group> before = new osg::Group;
    osg::ref_ptr<osg::Group> parent = before;
    EXPECT_EQ(findFeatureByName("absent", sceneWithRoots(), parent), nullptr);
    EXPECT_EQ(parent, before);
}

TEST(FindFeatureAnywhere, LeavesTheParentUntouchedWithoutACommonRoot)
{
    const osg::ref_ptr<osg::Group> before = new osg::Group;
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    osg::ref_ptr<osg::Group> parent = before;
    EXPECT_EQ(findFeatureByName("absent", scene, parent), nullptr);
    EXPECT_EQ(findFeatureByName("absent", nullptr, parent), nullptr);
    EXPECT_EQ(parent, before);
    EXPECT_EQ(scene->getNumChildren(), 0u);
}

TEST(FindFeatureAnywhere, MayWriteTheParentOverTheSceneThatItSearches)
{
    osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    const osg::ref_ptr<osg::Group> dot = addNamed(*contentOf(*scene, featureDot), "wanted");
    EXPECT_EQ(findFeatureByName("wanted", scene, scene), dot);
    EXPECT_EQ(scene->getName(), "MatrixTransform");
}

// Under the root of one kind

class FindFeatureOfKind : public ::testing::TestWithParam<featureType>
{};

TEST_P(FindFeatureOfKind, ReturnsTheFirstOfTwoEqualNames)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    osg::Group& content = *contentOf(*scene, GetParam());
    addNamed(content, "other");
    const osg::ref_ptr<osg::Group> first = addNamed(content, "wanted");
    addNamed(content, "wanted");
    EXPECT_EQ(findFeatureByName("wanted", scene, GetParam()), first);
}

TEST_P(FindFeatureOfKind, DoesNotFindNestedFeatures)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    addNamed(*addNamed(*contentOf(*scene, GetParam()), "group"), "deep");
    EXPECT_EQ(findFeatureByName("deep", scene, GetParam()), nullptr);
}

TEST_P(FindFeatureOfKind, FindsNothingOfOtherKinds)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    for (const featureType kind : {featureDot, featureLine, featurePlane, featureTable})
        if (kind != GetParam()) addNamed(*contentOf(*scene, kind), "wanted");
    EXPECT_EQ(findFeatureByName("wanted", scene, GetParam()), nullptr);
}

TEST_P(FindFeatureOfKind, CreatesNoRoot)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    EXPECT_EQ(findFeatureByName("wanted", scene, GetParam()), nullptr);
    EXPECT_EQ(scene->getNumChildren(), 0u);
    EXPECT_EQ(findFeatureByName("wanted", nullptr, GetParam()), nullptr);
}

TEST_P(FindFeatureOfKind, GivesNullWhereTheRootLostItsTransform)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    const osg::ref_ptr<osg::Group> root = findOrCreateFeatureRootNode(scene, GetParam(), false);
    root->removeChildren(0, 1);
    EXPECT_EQ(findFeatureByName("wanted", scene, GetParam()), nullptr);
    root->addChild(new osg::Geometry);
    EXPECT_EQ(findFeatureByName("wanted", scene, GetParam()), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Kinds, FindFeatureOfKind, ::testing::Values(featureDot, featureLine, featurePlane));

class FindFeatureOfOtherKind : public ::testing::TestWithParam<int>
{};

TEST_P(FindFeatureOfOtherKind, GivesNullEvenForAnExistingNode)
{
    const osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    for (const featureType kind : {featureAll, featureDot, featureTable}) addNamed(*contentOf(*scene, kind), "wanted");
    EXPECT_EQ(findFeatureByName("wanted", scene, static_cast<featureType>(GetParam())), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Kinds, FindFeatureOfOtherKind,
                         ::testing::Values(featureAll, featureTable, featureFlagDot, -1, 99));

// Names in any script

class FeatureNameInAnyScript : public ::testing::TestWithParam<const char*>
{};

TEST_P(FeatureNameInAnyScript, IsFoundAgainByEveryLookup)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const std::string name = GetParam();
    const osg::ref_ptr<osg::Group> dot = kelvtest::addDot(scene, name);
    const osg::ref_ptr<osg::Group> line = kelvtest::addLine(scene, name);
    const osg::ref_ptr<osg::Group> plane = kelvtest::addPlane(scene, name);

    EXPECT_EQ(dot->getName(), name);
    EXPECT_EQ(findFeatureByName(name, scene, featureDot), dot);
    EXPECT_EQ(findFeatureByName(name, scene, featureLine), line);
    EXPECT_EQ(findFeatureByName(name, scene, featurePlane), plane);
    osg::ref_ptr<osg::Group> parent;
    EXPECT_EQ(findFeatureByName(name, scene, parent), dot);
    EXPECT_EQ(parent, contentOf(*scene, featureDot));
}

TEST_P(FeatureNameInAnyScript, IsReplacedByItsNamesake)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    kelvtest::addDot(scene, GetParam());
    const osg::ref_ptr<osg::Group> second = kelvtest::addDot(scene, GetParam());
    ASSERT_EQ(contentOf(*scene, featureDot)->getNumChildren(), 1u);
    EXPECT_EQ(contentOf(*scene, featureDot)->getChild(0), second);
}

INSTANTIATE_TEST_SUITE_P(Scripts, FeatureNameInAnyScript,
                         ::testing::Values("Spaltmaß größer", "测量点一", "نقطة القياس", "𝛥-gap"));

// Names that primitives use for their own parts

class FeatureNamedLikeAPart : public ::testing::TestWithParam<const char*>
{};

TEST_P(FeatureNamedLikeAPart, StillTakesItsState)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::Vec4f red(1.0f, 0.0f, 0.0f, 1.0f);
    for (const auto& group : {kelvtest::addDot(scene, GetParam()), kelvtest::addLine(scene, GetParam()),
                              kelvtest::addPlane(scene, GetParam())}) {
        auto* const feature = dynamic_cast<CFeatureMetaObject*>(group.get());
        feature->setState(featureStateSelected);
        const auto* const outline = kelvtest::firstBelow<osg::Geometry>(*feature, "squareLineNode");
        EXPECT_EQ(kelvtest::overallColour(*outline), red);
    }
    const auto* const sphere = kelvtest::firstBelow<osg::ShapeDrawable>(*scene, "drawableShpere");
    EXPECT_EQ(sphere->getColor(), red);
    const auto* const arrow = kelvtest::firstBelow<osg::Geometry>(*contentOf(*scene, featureLine), "arrowLineNode");
    EXPECT_EQ(kelvtest::overallColour(*arrow), red);
    osg::Group& plane = *childOf(*contentOf(*scene, featurePlane), 0);
    const auto* const border = childOf(plane, 0)->getChild(0)->asGeometry();
    EXPECT_EQ(kelvtest::overallColour<osg::Vec3Array>(*border), osg::Vec3f(1.0f, 0.0f, 0.0f));
}

INSTANTIATE_TEST_SUITE_P(Parts, FeatureNamedLikeAPart,
                         ::testing::Values("drawableShpere", "textNode", "line", "plane", "arrowLineNode",
                                           "cylinderDrawable", "coneDrawable", "normalArrow1", "normalArrow2",
                                           "squareLineNode", "showTableNode", "MatrixTransform", "featureData"));

} // namespace
