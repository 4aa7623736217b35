#include "FeatureScenes.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <benchmark/benchmark.h>

#include <osg/NodeVisitor>

#include <string>

// What finds features, or changes one or all of them, among N dots.

namespace {
using kelvbench::Sort;
using namespace KelvOsgTools;

osg::ref_ptr<osg::Group> dots(const benchmark::State& state)
{
    return kelvbench::sceneOf(Sort::Dot, static_cast<int>(state.range(0)));
}

/// Compares the names of all nodes, as a host without the library would do.
struct NameVisitor : osg::NodeVisitor
{
    explicit NameVisitor(const std::string& name) : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN), m_name(name) {}

    void apply(osg::Node& node) override
    {
        if (node.getName() == m_name) found = &node;
        traverse(node);
    }

    std::string m_name;
    osg::ref_ptr<osg::Node> found;
};

void findByBareVisitor(benchmark::State& state)
{
    const osg::ref_ptr<osg::Group> scene = dots(state);
    for (auto _ : state) {
        NameVisitor visitor("no such feature");
        scene->accept(visitor);
        benchmark::DoNotOptimize(visitor.found);
    }
}

void findFeature(benchmark::State& state)
{
    const osg::ref_ptr<osg::Group> scene = dots(state);
    for (auto _ : state) benchmark::DoNotOptimize(findFeatureByName("no such feature", scene, featureDot));
}

void replaceFeature(benchmark::State& state)
{
    const osg::ref_ptr<osg::Group> scene = dots(state);
    const QString name = QStringLiteral("feature-%1").arg(state.range(0) / 2);
    for (auto _ : state)
        createAutoScaleShpereAndTable(name, scene, osg::Vec3f(), 1, QStringLiteral("Point"), 1, featureStateNormal,
                                      false);
}

void hideAndShowRoot(benchmark::State& state)
{
    const osg::ref_ptr<osg::Group> scene = dots(state);
    for (auto _ : state) {
        switchFeatureRoot(scene, false, featureDot);
        switchFeatureRoot(scene, true, featureDot);
    }
}

void hideAndShowFlags(benchmark::State& state)
{
    const osg::ref_ptr<osg::Group> scene = kelvbench::sceneOf(Sort::FlagDot, static_cast<int>(state.range(0)));
    for (auto _ : state) {
        switchFeatureRootFlagNode(scene, false, featureDot);
        switchFeatureRootFlagNode(scene, true, featureDot);
    }
}

void clearTemporaries(benchmark::State& state)
{
    const osg::ref_ptr<osg::Group> scene = dots(state);
    for (auto _ : state) clearFeatureRootTempNode(scene, featureDot);
}

} // namespace

#define KELV_LOOKUP(operation)                                                                                         \
    BENCHMARK(operation)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMicrosecond)

KELV_LOOKUP(findByBareVisitor);
KELV_LOOKUP(findFeature);
KELV_LOOKUP(replaceFeature);
KELV_LOOKUP(hideAndShowRoot);
KELV_LOOKUP(hideAndShowFlags);
KELV_LOOKUP(clearTemporaries);
