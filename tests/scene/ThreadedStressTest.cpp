#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CFeatureMetaObject.h>
#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include "support/PictureScenes.h"
#include "support/PictureWindow.h"

#include <gtest/gtest.h>

#include <osg/ValueObject>

#include <QCoreApplication>
#include <QStringList>
#include <QTranslator>

#include <algorithm>
#include <cstdlib>
#include <random>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

constexpr int kWidth = 160;
constexpr int kHeight = 120;
constexpr std::size_t kMaxFeatures = 24;
constexpr unsigned int kSeed = 20240229;

/// As many as a test needs, or as the environment asks for.
int frameCount(int needed)
{
    const char* const wanted = std::getenv("KELVOSGTOOLS_STRESS_FRAMES");
    return wanted ? std::atoi(wanted) : needed;
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
    bool isTemporary = false;
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

/// Makes the roots in a fixed order, so that equal features are drawn in equal order.
void makeRoots(const osg::ref_ptr<osg::Group>& scene)
{
    for (const featureType kind : kKinds) findOrCreateFeatureRootNode(scene, kind, true);
}

osg::ref_ptr<osg::Group> sceneWithRoots()
{
    osg::ref_ptr<osg::Group> scene = new osg::Group;
    makeRoots(scene);
    return scene;
}

osg::ref_ptr<osg::Group> sceneOf(const std::vector<Feature>& features)
{
    osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    for (const Feature& feature : features)
        static_cast<CFeatureMetaObject&>(*create(scene, feature)).setState(feature.state);
    return scene;
}

/// Translates "Plane" to words of different lengths.
class Interpreter : public QTranslator
{
public:
    Interpreter() { QCoreApplication::installTranslator(this); }
    ~Interpreter() override { QCoreApplication::removeTranslator(this); }

    void speak(unsigned int language)
    {
        m_word = QStringList{"Ebene", "P", "Flächenstück"}[static_cast<int>(language)];
    }

    bool isEmpty() const override { return false; }
    QString translate(const char*, const char* text, const char*, int) const override
    {
        return QString(text) == "Plane" ? m_word : QString();
    }

private:
    QString m_word = "Plane";
};

/// A host at work: changes its features at random, and knows what there must be.
class BusyHost
{
public:
    explicit BusyHost(osg::ref_ptr<osg::Group> scene) : m_scene(std::move(scene)) {}

    void work()
    {
        const unsigned int action = below(100);
        if (m_features.empty() || (action < 35 && m_features.size() < kMaxFeatures))
            createOne("feature " + std::to_string(++m_created));
        else if (action < 43)
            replaceOne();
        else if (action < 55)
            removeOne();
        else if (action < 72)
            recolourOne();
        else if (action < 82)
            relabelOne();
        else if (action < 90)
            switchFeatureRoot(m_scene, below(2) == 0, kKinds[below(3)]);
        else if (action < 94)
            markOne();
        else if (action < 96)
            switchFeatureRootFlagNode(m_scene, below(2) == 0, kKinds[below(3)]);
        else if (action < 99)
            clearMarked();
        else
            startAnew();
    }

    /// Shows all there is, in one language.
    void finish()
    {
        clearMarked();
        switchFeatureRoot(m_scene, true, featureAll);
        for (const featureType kind : kKinds) switchFeatureRoot(m_scene, true, kind);
        for (const Feature& feature : m_features) relabel(feature);
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
        feature.isTemporary = false;
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
        m_interpreter.speak(below(3));
        relabel(m_features[below(static_cast<unsigned int>(m_features.size()))]);
    }

    void relabel(const Feature& feature)
    {
        osg::Group& node = *nodeOf(feature)->asGroup();
        static_cast<CTableMeta&>(*node.getChild(node.getNumChildren() - 1)).updateLanguage();
    }

    void markOne()
    {
        Feature& feature = m_features[below(static_cast<unsigned int>(m_features.size()))];
        feature.isTemporary = true;
        nodeOf(feature)->setUserValue("tmpData", true);
    }

    void clearMarked()
    {
        clearFeatureRootTempNode(m_scene, featureAll);
        const auto isMarked = [](const Feature& feature) { return feature.isTemporary; };
        m_features.erase(std::remove_if(m_features.begin(), m_features.end(), isMarked), m_features.end());
    }

    void startAnew()
    {
        removeFeatureRoot(m_scene, featureAll);
        m_scene->removeChildren(0, 1);
        makeRoots(m_scene);
        m_features.clear();
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
    Interpreter m_interpreter;
    std::mt19937 m_random{kSeed};
    int m_created = 0;
};

class ThreadedStress : public PictureTest, public ::testing::WithParamInterface<osgViewer::ViewerBase::ThreadingModel>
{};

/// Draws frames, and changes the scene between them while the former may still be drawn.
void drawWhileBusy(PictureWindow& window, BusyHost& host, int frames)
{
    for (int i = 0; i < frames; ++i) {
        for (int change = 0; change <= i % 4; ++change) host.work();
        window.frame();
    }
    while (host.features().size() < kMaxFeatures / 2) host.work();
    host.finish();
}

TEST_P(ThreadedStress, ManyChangesWhileFramesAreDrawnLeaveTheRightPicture)
{
    PictureWindow window(kWidth, kHeight, GetParam());
    const osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    window.setScene(scene);
    BusyHost host(scene);
    drawWhileBusy(window, host, frameCount(1000));
    const osg::ref_ptr<osg::Image> afterAll = window.render();
    EXPECT_FALSE(boxOfDifference(*afterAll, kWhite).isEmpty());

    window.setScene(sceneOf(host.features()));
    window.render(); // auto-scaled nodes know their scale from then on
    // The same features, drawn in the same order.
    EXPECT_TRUE(alike(*afterAll, *window.render(), "stress-" + nameOf(GetParam()), {0, 0.0}));
}

TEST_P(ThreadedStress, ManyChangesLeaveTwoWindowsWithTheSamePicture)
{
    PictureWindow windows(kWidth, kHeight, GetParam(), 2);
    const osg::ref_ptr<osg::Group> scene = sceneWithRoots();
    windows.setScene(scene);
    BusyHost host(scene);
    drawWhileBusy(windows, host, frameCount(300));
    windows.render();
    windows.frame();
    const osg::ref_ptr<osg::Image> one = windows.pictureOfLastFrame(0);
    EXPECT_FALSE(boxOfDifference(*one, kWhite).isEmpty());
    EXPECT_TRUE(alike(*windows.pictureOfLastFrame(1), *one, "stress-windows-" + nameOf(GetParam()), {0, 0.0}));
}

INSTANTIATE_TEST_SUITE_P(Models, ThreadedStress,
                         ::testing::Values(osgViewer::ViewerBase::DrawThreadPerContext,
                                           osgViewer::ViewerBase::CullThreadPerCameraDrawThreadPerContext),
                         [](const auto& test) { return nameOf(test.param); });

} // namespace
