#include "FeatureScenes.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <benchmark/benchmark.h>

#include <malloc.h>

namespace {
using kelvbench::Sort;

/// Builds a scene of N features with unique names; each of them looks for a namesake to replace.
void create(benchmark::State& state, Sort sort)
{
    const auto count = static_cast<int>(state.range(0));
    double bytes = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        malloc_trim(0);
        const std::size_t before = kelvbench::heapInUse();
        state.ResumeTiming();
        osg::ref_ptr<osg::Group> scene = kelvbench::sceneOf(sort, count);
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

BENCHMARK_CAPTURE(create, Dot, Sort::Dot)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(create, FlagDot, Sort::FlagDot)
    ->RangeMultiplier(10)
    ->Range(100, 10000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(create, LineArrow, Sort::LineArrow)
    ->RangeMultiplier(10)
    ->Range(100, 10000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(create, SolidArrow, Sort::SolidArrow)
    ->RangeMultiplier(10)
    ->Range(100, 10000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(create, Plane, Sort::Plane)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMillisecond);
// At 10,000 the straightforward spheres alone would take six gigabytes.
BENCHMARK_CAPTURE(create, StraightforwardDot, Sort::StraightforwardDot)
    ->RangeMultiplier(10)
    ->Range(100, 1000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(create, BareTransform, Sort::BareTransform)
    ->RangeMultiplier(10)
    ->Range(100, 10000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(drift)->Iterations(100)->Unit(benchmark::kMillisecond);
