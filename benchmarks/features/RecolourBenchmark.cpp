#include "FeatureScenes.h"

#include <KelvOsgTools/CFeatureMetaObject.h>

#include <benchmark/benchmark.h>

namespace {
using kelvbench::Sort;
using namespace KelvOsgTools;

/// Selects N features, or highlights them again, in turn: every call is a change.
void recolour(benchmark::State& state, Sort sort)
{
    const osg::ref_ptr<osg::Group> scene = kelvbench::sceneOf(sort, static_cast<int>(state.range(0)));
    const osg::ref_ptr<osg::Group> features = kelvbench::featuresOf(*scene, sort);
    featureState next = featureStateHighlighted;
    for (auto _ : state) {
        for (unsigned int i = 0; i < features->getNumChildren(); ++i)
            static_cast<CFeatureMetaObject*>(features->getChild(i))->setState(next);
        next = next == featureStateSelected ? featureStateHighlighted : featureStateSelected;
    }
}

} // namespace

BENCHMARK_CAPTURE(recolour, Dot, Sort::Dot)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(recolour, FlagDot, Sort::FlagDot)
    ->RangeMultiplier(10)
    ->Range(100, 10000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(recolour, LineArrow, Sort::LineArrow)
    ->RangeMultiplier(10)
    ->Range(100, 10000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(recolour, SolidArrow, Sort::SolidArrow)
    ->RangeMultiplier(10)
    ->Range(100, 10000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(recolour, Plane, Sort::Plane)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMillisecond);
