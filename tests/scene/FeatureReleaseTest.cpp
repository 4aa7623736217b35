#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/NodeVisitors.h>

#include <gtest/gtest.h>

#include <osg/observer_ptr>

#include <algorithm>
#include <functional>

namespace {
using namespace KelvOsgTools;

using Observers = std::vector<osg::observer_ptr<osg::Node>>;
using Scene = osg::ref_ptr<osg::Group>;

Observers observe(osg::Node& top)
{
    const std::vector<osg::Node*> nodes = kelvtest::allNodes(top);
    return Observers(nodes.begin(), nodes.end());
}

std::ptrdiff_t countAlive(const Observers& observers)
{
    return std::count_if(observers.begin(), observers.end(), [](const auto& observer) { return observer.valid(); });
}

/// Makes a feature and puts it through all states.
struct Maker
{
    const char* label;
    std::function<osg::ref_ptr<osg::Group>(const Scene&)> make;
};

void PrintTo(const Maker& maker, std::ostream* stream)
{
    *stream << maker.label;
}

osg::ref_ptr<osg::Group> addSolidLine(const Scene& scene)
{
    CArrowMeta::structArrowMeta meta = kelvtest::solidArrow({}, {0.0f, 0.0f, 10.0f});
    meta.name = "feature";
    return createArrowAndTable(featureStateNormal, meta, scene, 1, QStringLiteral("line"), 1);
}

class ReleasedFeature : public ::testing::TestWithParam<Maker>
{
protected:
    Observers makeAndUse(const Scene& scene) const
    {
        const osg::ref_ptr<osg::Group> group = GetParam().make(scene);
        auto& feature = dynamic_cast<CFeatureMetaObject&>(*group);
        for (const int state : {3, 2, 0, 1}) feature.setState(static_cast<featureState>(state));
        return observe(*group);
    }
};

TEST_P(ReleasedFeature, LivesAsLongAsTheSceneHoldsIt)
{
    const Scene scene = new osg::Group;
    const Observers nodes = makeAndUse(scene);
    EXPECT_EQ(countAlive(nodes), static_cast<std::ptrdiff_t>(nodes.size()));
}

TEST_P(ReleasedFeature, IsGoneWithAllItsNodesOnceAllFeaturesAreRemoved)
{
    const Scene scene = new osg::Group;
    const Observers nodes = makeAndUse(scene);
    removeFeatureRoot(scene, featureAll);
    EXPECT_EQ(countAlive(nodes), 0);
}

TEST_P(ReleasedFeature, IsGoneOnceItsNamesakeReplacedIt)
{
    const Scene scene = new osg::Group;
    const Observers former = makeAndUse(scene);
    const Observers newer = makeAndUse(scene);
    EXPECT_EQ(countAlive(former), 0);
    EXPECT_EQ(countAlive(newer), static_cast<std::ptrdiff_t>(newer.size()));
}

TEST_P(ReleasedFeature, IsGoneWithTheScene)
{
    Scene scene = new osg::Group;
    makeAndUse(scene);
    const Observers nodes = observe(*scene);
    scene = nullptr;
    EXPECT_EQ(countAlive(nodes), 0);
}

TEST_P(ReleasedFeature, IsGoneOnceItWasClearedAsTemporary)
{
    const Scene scene = new osg::Group;
    osg::ref_ptr<osg::Group> feature = GetParam().make(scene);
    feature->setUserValue("tmpData", true);
    const Observers nodes = observe(*feature);
    feature = nullptr;
    clearFeatureRootTempNode(scene, featureAll);
    EXPECT_EQ(countAlive(nodes), 0);
}

TEST_P(ReleasedFeature, OutlivesTheSceneInTheHandsOfItsHolder)
{
    Scene scene = new osg::Group;
    osg::ref_ptr<osg::Group> feature = GetParam().make(scene);
    const Observers nodes = observe(*feature);
    scene = nullptr;
    EXPECT_EQ(countAlive(nodes), static_cast<std::ptrdiff_t>(nodes.size()));
    feature = nullptr;
    EXPECT_EQ(countAlive(nodes), 0);
}

TEST_P(ReleasedFeature, IsGoneAfterItsLabelChangedItsLanguage)
{
    const Scene scene = new osg::Group;
    osg::ref_ptr<osg::Group> feature = GetParam().make(scene);
    Observers nodes = observe(*feature);
    for (CTableMeta* label : kelvtest::nodesOfType<CTableMeta>(*feature)) label->updateLanguage();
    const Observers rebuilt = observe(*feature);
    nodes.insert(nodes.end(), rebuilt.begin(), rebuilt.end());
    feature = nullptr;
    removeFeatureRoot(scene, featureAll);
    EXPECT_EQ(countAlive(nodes), 0);
}

TEST_P(ReleasedFeature, IsNotHeldBySearchesThatEnded)
{
    const Scene scene = new osg::Group;
    const Observers nodes = makeAndUse(scene);
    osg::ref_ptr<osg::Group> parent;
    findFeatureByName("feature", scene, parent);
    parent = nullptr;
    {
        FindFeatureNodeVisitor search({featureAll, featureDot, featureLine, featurePlane, featureTable});
        scene->accept(search);
    }
    removeFeatureRoot(scene, featureAll);
    EXPECT_EQ(countAlive(nodes), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Features, ReleasedFeature,
    ::testing::Values(Maker{"Dot", [](const Scene& scene) { return kelvtest::addDot(scene, "feature"); }},
                      Maker{"FlagDot", [](const Scene& scene) { return kelvtest::addFlagDot(scene, "feature"); }},
                      Maker{"Line", [](const Scene& scene) { return kelvtest::addLine(scene, "feature"); }},
                      Maker{"SolidLine", addSolidLine},
                      Maker{"Plane", [](const Scene& scene) { return kelvtest::addPlane(scene, "feature"); }}),
    [](const auto& maker) { return std::string(maker.param.label); });

} // namespace
