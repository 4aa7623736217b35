#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CFeatureMetaObject.h>
#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include "support/PictureScenes.h"
#include "support/PictureWindow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

constexpr int kWidth = 320;
constexpr int kHeight = 240;
constexpr std::size_t kMaxFeatures = 40;
constexpr unsigned int kSeed = 20240229;

/// A few hundred, or as many as the environment asks for.
int frameCount()
{
    const char* const wanted = std::getenv("KELVOSGTOOLS_STRESS_FRAMES");
    return wanted ? std::atoi(wanted) : 200;
}

const featureType kKinds[] = {featureDot, featureLine, featurePlane};

/// What a feature was created from, and its present state.
struct Feature
{
    featureType kind; // featureFlagDot hangs under the root of the dots
    std::string name;
    osg::Vec3f position;
    int number;
    featureState state;
};

osg::ref_ptr<osg::Group> create(const osg::ref_ptr<osg::Group>& scene, const Feature& feature)
{
    const QString name = QString::fromStdString(feature.name);
    const osg::Vec3f& at = feature.position;
    switch (feature.kind) {
    case featureDot:
        return createAutoScaleShpereAndTable(name, scene, at, 11, "Dot", feature.number, featureStateNone, false);
    case featureFlagDot:
        return createFlagAutoScaleShpereAndTable(name, scene, at, 12, "Flag", feature.number, featureDot, true, false);
    case featureLine: {
        CArrowMeta::structArrowMeta meta;
        meta.name = feature.name;
        meta.startPos = at;
        meta.endPos = at + osg::Vec3f(30, 20, 0);
        meta.radius = 2;
        meta.isLineArrow = feature.number % 2 == 0;
        return createArrowAndTable(featureStateNone, meta, scene, 13, "Line", feature.number);
    }
    default:
        return createPlaneAndTable(
            featureStateNone, name, scene,
            {at, at + osg::Vec3f(40, 0, 0), at + osg::Vec3f(40, 30, 0), at + osg::Vec3f(0, 30, 0)}, osg::Vec3f(0, 0, 1),
            14, "Plane", feature.number);
    }
}

/// A scene whose roots stand in a fixed order, so that equal features are drawn in equal order.
osg::ref_ptr<osg::Group> sceneWithRoots()
{
    osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (const featureType kind : kKinds) findOrCreateFeatureRootNode(scene, kind, true);
    return scene;
}

osg::ref_ptr<osg::Group> sceneOf(const std::vector<Feature>& features)
{
    osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    for (const Feature& feature : features)
        static_cast<CFeatureMetaObject&>(*create(scene, feature)).setState(feature.state);
    return scene;
}

/// A host at work: changes its features at random, and knows what there must be.
class BusyHost
{
public:
    explicit BusyHost(osg::ref_ptr<osg::Group> scene) : m_scene(std::move(scene)) {}

    void work()
    {
        const unsigned int action = below(10);
        if (m_features.empty() || (action < 3 && m_features.size() < kMaxFeatures))
            createOne("feature " + std::to_string(++m_created));
        else if (action < 4)
            replaceOne();
        else if (action < 6)
            removeOne();
        else if (action < 8)
            recolourOne();
        else if (action < 9)
            relabelOne();
        else
            switchFeatureRoot(m_scene, below(2) == 0, kKinds[below(3)]);
    }

    const std::vector<Feature>& features() const { return m_features; }

private:
    unsigned int below(unsigned int limit) { return static_cast<unsigned int>(m_random() % limit); }

    void createOne(const std::string& name)
    {
        const featureType kinds[] = {featureDot, featureFlagDot, featureLine, featurePlane};
        Feature feature{kinds[below(4)], name, {}, static_cast<int>(below(1000)), featureStateNone};
        feature.position.set(static_cast<float>(below(kWidth)) - kWidth / 2,
                             static_cast<float>(below(kHeight)) - kHeight / 2, -static_cast<float>(m_created) * 0.1f);
        if (feature.kind == featureFlagDot) feature.state = featureStateSelected;
        create(m_scene, feature);
        m_features.push_back(feature);
    }

    void replaceOne()
    {
        Feature feature = m_features[below(static_cast<unsigned int>(m_features.size()))];
        forget(feature.name);
        ++feature.number;
        feature.state = feature.kind == featureFlagDot ? featureStateSelected : featureStateNone;
        create(m_scene, feature);
        m_features.push_back(feature);
    }

    void removeOne()
    {
        const std::string name = m_features[below(static_cast<unsigned int>(m_features.size()))].name;
        osg::ref_ptr<osg::Group> parent;
        const osg::ref_ptr<osg::Node> node = findFeatureByName(name, m_scene, parent);
        parent->removeChild(node);
        forget(name);
    }

    void recolourOne()
    {
        Feature& feature = m_features[below(static_cast<unsigned int>(m_features.size()))];
        feature.state = static_cast<featureState>(below(4));
        static_cast<CFeatureMetaObject&>(*nodeOf(feature)).setState(feature.state);
    }

    void relabelOne()
    {
        osg::Group& node = *nodeOf(m_features[below(static_cast<unsigned int>(m_features.size()))])->asGroup();
        static_cast<CTableMeta&>(*node.getChild(node.getNumChildren() - 1)).updateLanguage();
    }

    osg::ref_ptr<osg::Node> nodeOf(const Feature& feature) const
    {
        osg::ref_ptr<osg::Group> parent;
        return findFeatureByName(feature.name, m_scene, parent);
    }

    void forget(const std::string& name)
    {
        const auto isNamed = [&](const Feature& feature) { return feature.name == name; };
        m_features.erase(std::remove_if(m_features.begin(), m_features.end(), isNamed), m_features.end());
    }

    osg::ref_ptr<osg::Group> m_scene;
    std::vector<Feature> m_features;
    std::mt19937 m_random{kSeed};
    int m_created = 0;
};

class ThreadedStress : public PictureTest, public ::testing::WithParamInterface<osgViewer::ViewerBase::ThreadingModel>
{};

TEST_P(ThreadedStress, ManyChangesWhileFramesAreDrawnLeaveTheRightPicture)
{
    PictureWindow window(kWidth, kHeight, GetParam());
    const osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    window.setScene(scene);
    BusyHost host(scene);
    for (int i = 0, end = frameCount(); i < end; ++i) {
        for (int change = 0; change <= i % 4; ++change) host.work();
        window.frame();
    }
    switchFeatureRoot(scene, true, featureAll);
    for (const featureType kind : kKinds) switchFeatureRoot(scene, true, kind);
    const osg::ref_ptr<osg::Image> afterAll = window.render();
    ASSERT_GT(host.features().size(), 10u);
    EXPECT_FALSE(boxOfDifference(*afterAll, kWhite).isEmpty());

    window.setScene(sceneOf(host.features()));
    window.render(); // auto-scaled nodes know their scale from then on
    // The same features, drawn in the same order.
    EXPECT_TRUE(alike(*afterAll, *window.render(), "stress-" + nameOf(GetParam()), {0, 0.0}));
}

INSTANTIATE_TEST_SUITE_P(Models, ThreadedStress,
                         ::testing::Values(osgViewer::ViewerBase::DrawThreadPerContext,
                                           osgViewer::ViewerBase::CullThreadPerCameraDrawThreadPerContext),
                         [](const auto& test) { return nameOf(test.param); });

} // namespace
