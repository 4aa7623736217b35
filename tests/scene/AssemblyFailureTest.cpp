#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <gtest/gtest.h>

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/MatrixTransform>

#include <functional>

namespace {
using namespace KelvOsgTools;
using kelvtest::childNames;
using kelvtest::childOf;

const std::string kName = "feature";

/// An assembly function, with the root that its features hang under.
struct Assembly
{
    const char* label;
    featureType kind;
    std::function<osg::ref_ptr<osg::Node>(const osg::ref_ptr<osg::Group>& scene)> make;
};

void PrintTo(const Assembly& assembly, std::ostream* stream)
{
    *stream << assembly.label;
}

class AnyAssembly : public ::testing::TestWithParam<Assembly>
{
protected:
    osg::ref_ptr<osg::Node> make(const osg::ref_ptr<osg::Group>& scene) const { return GetParam().make(scene); }
    featureType kind() const { return GetParam().kind; }
};

const auto kAssemblies = ::testing::Values(
    Assembly{"Dot", featureDot, [](const auto& scene) { return kelvtest::addDot(scene, kName); }},
    Assembly{"FlagDotOfDots", featureDot,
             [](const auto& scene) { return kelvtest::addFlagDot(scene, kName, featureDot); }},
    Assembly{"FlagDotOfTables", featureTable,
             [](const auto& scene) { return kelvtest::addFlagDot(scene, kName, featureTable); }},
    Assembly{"Line", featureLine, [](const auto& scene) { return kelvtest::addLine(scene, kName); }},
    Assembly{"Plane", featurePlane, [](const auto& scene) { return kelvtest::addPlane(scene, kName); }},
    Assembly{"Sphere", featureDot, [](const auto& scene) { return findOrCreateShpere(kName, scene, osg::Vec3f()); }});

TEST_P(AnyAssembly, GivesNullWithoutAScene)
{
    EXPECT_EQ(make(nullptr), nullptr);
}

TEST_P(AnyAssembly, GivesNullAndChangesNothingOnceAllFeaturesWereRemoved)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    make(scene);
    removeFeatureRoot(scene, featureAll);
    EXPECT_EQ(make(scene), nullptr);
    EXPECT_EQ(kelvtest::allNodes(*scene).size(), 2u);
}

TEST_P(AnyAssembly, GivesNullAndChangesNothingWhereTheRootLostItsTransform)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> root = findOrCreateFeatureRootNode(scene, kind(), true);
    root->removeChildren(0, 1);
    EXPECT_EQ(make(scene), nullptr);
    EXPECT_EQ(root->getNumChildren(), 0u);
}

TEST_P(AnyAssembly, GivesNullAndChangesNothingWhereTheTransformBecameADrawable)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> root = findOrCreateFeatureRootNode(scene, kind(), true);
    const osg::ref_ptr<osg::Geometry> drawable = new osg::Geometry;
    root->setChild(0, drawable);
    EXPECT_EQ(make(scene), nullptr);
    EXPECT_EQ(root->getNumChildren(), 1u);
    EXPECT_EQ(drawable->getNumParents(), 1u);
}

TEST_P(AnyAssembly, GivesNullAndChangesNothingWhereADrawableHasTheNameOfTheCommonRoot)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Geometry> drawable = new osg::Geometry;
    drawable->setName("featureData");
    scene->addChild(drawable);
    EXPECT_EQ(make(scene), nullptr);
    EXPECT_EQ(childNames(*scene), (std::vector<std::string>{"featureData"}));
}

TEST_P(AnyAssembly, GivesNullAndChangesNothingWhereAnEmptyGeodeHasTheNameOfTheCommonRoot)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->setName("featureData");
    scene->addChild(geode);
    EXPECT_EQ(make(scene), nullptr);
    EXPECT_EQ(geode->getNumChildren(), 0u);
}

TEST_P(AnyAssembly, UsesWhateverGroupTheHostPutInPlaceOfTheTransform)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> root = findOrCreateFeatureRootNode(scene, kind(), true);
    const osg::ref_ptr<osg::Group> content = new osg::MatrixTransform;
    root->setChild(0, content);
    EXPECT_EQ(make(scene)->getParent(0), content);
}

TEST_P(AnyAssembly, AppendsToWhatTheHostHungThere)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> content = childOf(*findOrCreateFeatureRootNode(scene, kind(), true), 0);
    content->addChild(kelvtest::namedGroup(kName));
    content->addChild(kelvtest::namedGroup("host 1"));
    content->addChild(kelvtest::namedGroup(kName));
    content->addChild(kelvtest::namedGroup("host 2"));
    const osg::ref_ptr<osg::Node> feature = make(scene);
    EXPECT_EQ(childNames(*content), (std::vector<std::string>{"host 1", "host 2", kName}));
    EXPECT_EQ(content->getChild(2), feature);
}

TEST_P(AnyAssembly, LeavesARemovedNamesakeWholeForWhoStillHoldsIt)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Node> former = make(scene);
    const std::size_t nodes = kelvtest::allNodes(*former).size();
    make(scene);
    EXPECT_EQ(former->getNumParents(), 0u);
    EXPECT_EQ(former->getName(), kName);
    EXPECT_EQ(kelvtest::allNodes(*former).size(), nodes);
}

TEST_P(AnyAssembly, AppendsTheFeatureSwitchedOnUnderAHiddenRoot)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    findOrCreateFeatureRootNode(scene, kind(), true);
    switchFeatureRoot(scene, false, featureAll);
    const osg::ref_ptr<osg::Node> feature = make(scene);
    ASSERT_NE(feature, nullptr);
    EXPECT_FALSE(dynamic_cast<osg::Switch&>(*scene->getChild(0)).getValue(0));
    const auto* const parts = dynamic_cast<osg::Switch*>(feature.get());
    EXPECT_TRUE(!parts || parts->getValue(0));
}

INSTANTIATE_TEST_SUITE_P(Functions, AnyAssembly, kAssemblies,
                         [](const auto& assembly) { return std::string(assembly.param.label); });

} // namespace
