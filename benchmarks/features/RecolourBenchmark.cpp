#include "FeatureScenes.h"

#include <KelvOsgTools/CFeatureMetaObject.h>

#include <osg/Geometry>
#include <osg/ShapeDrawable>
#include <osgText/Text>

#include <benchmark/benchmark.h>

#include <vector>

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

/// The colours of N dots, each of a shape, an outline and a text, without any features.
void recolourBareDrawables(benchmark::State& state)
{
    struct Drawables
    {
        osg::ref_ptr<osg::ShapeDrawable> shape = new osg::ShapeDrawable(new osg::Box);
        osg::ref_ptr<osg::Vec4Array> outline = new osg::Vec4Array(osg::Array::BIND_OVERALL, 1);
        osg::ref_ptr<osgText::Text> text = new osgText::Text;
    };
    std::vector<Drawables> dots(static_cast<std::size_t>(state.range(0)));
    bool isRed = false;
    for (auto _ : state) {
        const osg::Vec4f colour = isRed ? osg::Vec4f(1, 0, 0, 1) : osg::Vec4f(0, 1, 0, 1);
        for (const Drawables& dot : dots) {
            dot.shape->setColor(colour);
            dot.outline->front() = colour;
            dot.outline->dirty();
            dot.text->setColor(colour);
        }
        isRed = !isRed;
    }
}

} // namespace

#define KELV_RECOLOUR(sort)                                                                                            \
    BENCHMARK_CAPTURE(recolour, sort, Sort::sort)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMillisecond)

KELV_RECOLOUR(Dot);
KELV_RECOLOUR(FlagDot);
KELV_RECOLOUR(LineArrow);
KELV_RECOLOUR(SolidArrow);
KELV_RECOLOUR(Plane);
BENCHMARK(recolourBareDrawables)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMillisecond);
