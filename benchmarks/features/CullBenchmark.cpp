#include "FeatureScenes.h"

#include <osg/Viewport>
#include <osgUtil/CullVisitor>
#include <osgUtil/RenderStage>
#include <osgUtil/StateGraph>

#include <benchmark/benchmark.h>

namespace {
using kelvbench::kHeight;
using kelvbench::kWidth;
using kelvbench::Sort;

/// A cull visitor of a kind that features do not know, so that they leave themselves to OpenSceneGraph.
class StockWay : public osgUtil::CullVisitor
{};

/// What a frame does before it draws: walks the scene and sorts what is to be drawn.
void cullWith(const osg::ref_ptr<osgUtil::CullVisitor>& visitor, benchmark::State& state, Sort sort)
{
    const osg::ref_ptr<osg::Group> scene = kelvbench::sceneOf(sort, static_cast<int>(state.range(0)));
    const osg::ref_ptr<osg::Viewport> viewport = new osg::Viewport(0, 0, kWidth, kHeight);
    const osg::ref_ptr<osg::RefMatrix> projection =
        new osg::RefMatrix(osg::Matrixd::ortho(-kWidth / 2.0, kWidth / 2.0, -kHeight / 2.0, kHeight / 2.0, 1.0, 200.0));
    const osg::ref_ptr<osg::RefMatrix> view =
        new osg::RefMatrix(osg::Matrixd::lookAt(osg::Vec3d(0, 0, 100), osg::Vec3d(), osg::Vec3d(0, 1, 0)));
    visitor->setComputeNearFarMode(osg::CullSettings::DO_NOT_COMPUTE_NEAR_FAR);
    const osg::ref_ptr<osgUtil::StateGraph> graph = new osgUtil::StateGraph;
    const osg::ref_ptr<osgUtil::RenderStage> stage = new osgUtil::RenderStage;
    for (auto _ : state) {
        graph->clean();
        stage->reset();
        visitor->reset();
        visitor->setStateGraph(graph);
        visitor->setRenderStage(stage);
        visitor->pushViewport(viewport);
        visitor->pushProjectionMatrix(projection);
        visitor->pushModelViewMatrix(view, osg::Transform::ABSOLUTE_RF);
        scene->accept(*visitor);
        visitor->popModelViewMatrix();
        visitor->popProjectionMatrix();
        visitor->popViewport();
        stage->sort();
    }
}

void cull(benchmark::State& state, Sort sort)
{
    cullWith(new osgUtil::CullVisitor, state, sort);
}

void cullTheStockWay(benchmark::State& state, Sort sort)
{
    cullWith(new StockWay, state, sort);
}

#define KELV_CULL(sort)                                                                                                \
    BENCHMARK_CAPTURE(cull, sort, Sort::sort)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMillisecond)

KELV_CULL(Dot);
KELV_CULL(FlagDot);
KELV_CULL(LineArrow);
KELV_CULL(SolidArrow);
KELV_CULL(Plane);
BENCHMARK_CAPTURE(cullTheStockWay, Dot, Sort::Dot)
    ->RangeMultiplier(10)
    ->Range(100, 10000)
    ->Unit(benchmark::kMillisecond);
KELV_CULL(BareTransform);
KELV_CULL(BareLabel);

} // namespace
