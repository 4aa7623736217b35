#include "FeatureScenes.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <benchmark/benchmark.h>

#include <malloc.h>

namespace {
using kelvbench::SceneBuilder;
using kelvbench::Sort;

/// Builds a scene of N features with unique names; each of them looks for a namesake to replace.
void create(benchmark::State& state, Sort sort, SceneBuilder build)
{
    const auto count = static_cast<int>(state.range(0));
    double bytes = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        malloc_trim(0);
        const std::size_t before = kelvbench::heapInUse();
        state.ResumeTiming();
        osg::ref_ptr<osg::Group> scene = build(sort, count);
        state.PauseTiming();
        bytes = static_cast<double>(kelvbench::heapInUse() - before) / count;
        scene = nullptr;
        state.ResumeTiming();
    }
    state.counters["bytes_each"] = bytes;
    state.counters["us_each"] = benchmark::Counter(
        static_cast<double>(count) * 1e-6, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// 1,000 features created, recoloured, hidden, shown and removed, over and over: what stays behind.
void drift(benchmark::State& state)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    std::size_t afterThirdRound = 0;
    int round = 0;
    for (auto _ : state) {
        for (int i = 0; i < 1000; ++i)
            KelvOsgTools::createAutoScaleShpereAndTable(QString::number(i), scene, osg::Vec3f(), 1,
                                                        QStringLiteral("Point"), i, KelvOsgTools::featureStateSelected,
                                                        false);
        KelvOsgTools::switchFeatureRoot(scene, false, KelvOsgTools::featureDot);
        KelvOsgTools::switchFeatureRoot(scene, true, KelvOsgTools::featureDot);
        const osg::ref_ptr<osg::Group> dots = kelvbench::featuresOf(*scene, Sort::Dot);
        dots->removeChildren(0, dots->getNumChildren());
        if (++round == 3) afterThirdRound = kelvbench::residentMemory();
    }
    state.counters["growth_bytes"] =
        static_cast<double>(kelvbench::residentMemory()) - static_cast<double>(afterThirdRound);
}

} // namespace

#define KELV_CREATE(sort, builder, name, most)                                                                         \
    BENCHMARK_CAPTURE(create, name, Sort::sort, builder)                                                               \
        ->RangeMultiplier(10)                                                                                          \
        ->Range(100, most)                                                                                             \
        ->Unit(benchmark::kMillisecond)

KELV_CREATE(Dot, kelvbench::sceneOf, Dot, 10000);
KELV_CREATE(FlagDot, kelvbench::sceneOf, FlagDot, 10000);
KELV_CREATE(LineArrow, kelvbench::sceneOf, LineArrow, 10000);
KELV_CREATE(SolidArrow, kelvbench::sceneOf, SolidArrow, 10000);
KELV_CREATE(Plane, kelvbench::sceneOf, Plane, 10000);
// At 10,000 straightforward spheres alone would take six gigabytes.
KELV_CREATE(Dot, kelvbench::straightforwardSceneOf, StraightforwardDot, 1000);
KELV_CREATE(FlagDot, kelvbench::straightforwardSceneOf, StraightforwardFlagDot, 1000);
KELV_CREATE(LineArrow, kelvbench::straightforwardSceneOf, StraightforwardLineArrow, 1000);
KELV_CREATE(SolidArrow, kelvbench::straightforwardSceneOf, StraightforwardSolidArrow, 1000);
KELV_CREATE(Plane, kelvbench::straightforwardSceneOf, StraightforwardPlane, 1000);
KELV_CREATE(BareTransform, kelvbench::sceneOf, BareTransform, 10000);
BENCHMARK(drift)->Iterations(100)->Unit(benchmark::kMillisecond);
