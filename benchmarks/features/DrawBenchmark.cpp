#include "FeatureScenes.h"

#include <benchmark/benchmark.h>

#include <osgViewer/Viewer>

namespace {
using kelvbench::kHeight;
using kelvbench::kWidth;
using kelvbench::SceneBuilder;
using kelvbench::Sort;

/// A viewer without a window; null where there is no GL context to be had.
osg::ref_ptr<osgViewer::Viewer> offscreenViewer(osg::Node* scene)
{
    const osg::ref_ptr<osg::GraphicsContext::Traits> traits = new osg::GraphicsContext::Traits;
    traits->width = kWidth;
    traits->height = kHeight;
    traits->red = traits->green = traits->blue = traits->alpha = 8;
    traits->depth = 24;
    traits->pbuffer = true;
    traits->doubleBuffer = true;
    traits->readDISPLAY();
    const osg::ref_ptr<osg::GraphicsContext> context = osg::GraphicsContext::createGraphicsContext(traits);
    if (!context) return nullptr;

    osg::ref_ptr<osgViewer::Viewer> viewer = new osgViewer::Viewer;
    viewer->setThreadingModel(osgViewer::ViewerBase::SingleThreaded);
    viewer->setUseConfigureAffinity(false); // or the process, and software rendering, is left with one core
    osg::Camera& camera = *viewer->getCamera();
    camera.setGraphicsContext(context);
    camera.setViewport(0, 0, kWidth, kHeight);
    camera.setComputeNearFarMode(osg::Camera::DO_NOT_COMPUTE_NEAR_FAR);
    camera.setViewMatrixAsLookAt(osg::Vec3d(0, 0, 100), osg::Vec3d(), osg::Y_AXIS);
    camera.setProjectionMatrixAsOrtho(-kWidth / 2.0, kWidth / 2.0, -kHeight / 2.0, kHeight / 2.0, 1.0, 200.0);
    viewer->setSceneData(scene);
    viewer->realize();
    return viewer;
}

/// Draws and waits until it is drawn.
void drawFrame(osgViewer::Viewer& viewer)
{
    viewer.frame();
    osg::GraphicsContext& context = *viewer.getCamera()->getGraphicsContext();
    context.makeCurrent();
    glFinish();
    context.releaseContext();
}

void firstFrame(benchmark::State& state, Sort sort, SceneBuilder build)
{
    for (auto _ : state) {
        state.PauseTiming();
        osg::ref_ptr<osgViewer::Viewer> viewer = offscreenViewer(build(sort, static_cast<int>(state.range(0))));
        if (!viewer) {
            state.SkipWithError("no GL context");
            break;
        }
        state.ResumeTiming();
        drawFrame(*viewer);
        state.PauseTiming();
        viewer = nullptr;
        state.ResumeTiming();
    }
}

void steadyFrame(benchmark::State& state, Sort sort, SceneBuilder build)
{
    const osg::ref_ptr<osgViewer::Viewer> viewer = offscreenViewer(build(sort, static_cast<int>(state.range(0))));
    if (!viewer) {
        state.SkipWithError("no GL context");
        return;
    }
    drawFrame(*viewer);
    for (auto _ : state) drawFrame(*viewer);
}

} // namespace

#define KELV_FRAMES(sort, builder, name, most)                                                                         \
    BENCHMARK_CAPTURE(firstFrame, name, Sort::sort, builder)                                                           \
        ->RangeMultiplier(10)                                                                                          \
        ->Range(100, most)                                                                                             \
        ->Iterations(1)                                                                                                \
        ->UseRealTime()                                                                                                \
        ->Unit(benchmark::kMillisecond);                                                                               \
    BENCHMARK_CAPTURE(steadyFrame, name, Sort::sort, builder)                                                          \
        ->RangeMultiplier(10)                                                                                          \
        ->Range(100, most)                                                                                             \
        ->UseRealTime()                                                                                                \
        ->Unit(benchmark::kMillisecond)

KELV_FRAMES(Dot, kelvbench::sceneOf, Dot, 10000);
KELV_FRAMES(FlagDot, kelvbench::sceneOf, FlagDot, 10000);
KELV_FRAMES(LineArrow, kelvbench::sceneOf, LineArrow, 10000);
KELV_FRAMES(SolidArrow, kelvbench::sceneOf, SolidArrow, 10000);
KELV_FRAMES(Plane, kelvbench::sceneOf, Plane, 10000);
KELV_FRAMES(Dot, kelvbench::straightforwardSceneOf, StraightforwardDot, 1000);
KELV_FRAMES(FlagDot, kelvbench::straightforwardSceneOf, StraightforwardFlagDot, 1000);
KELV_FRAMES(LineArrow, kelvbench::straightforwardSceneOf, StraightforwardLineArrow, 1000);
KELV_FRAMES(SolidArrow, kelvbench::straightforwardSceneOf, StraightforwardSolidArrow, 1000);
KELV_FRAMES(Plane, kelvbench::straightforwardSceneOf, StraightforwardPlane, 1000);
KELV_FRAMES(BareTransform, kelvbench::sceneOf, BareTransform, 10000);
