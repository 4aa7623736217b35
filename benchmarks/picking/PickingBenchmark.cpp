#include "PickingScene.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <osg/NodeVisitor>
#include <osgUtil/IntersectionVisitor>
#include <osgUtil/PolytopeIntersector>

#include <QGuiApplication>

#include <benchmark/benchmark.h>

using namespace KelvOsgTools;
using kelvbench::Mesh;
using kelvbench::pickingScene;
using kelvbench::PickingScene;

namespace {

struct Position
{
    float x;
    float y;
};
constexpr Position kNothing{50.0f, 900.0f};  // neither features nor mesh
constexpr Position kMeshOnly{50.0f, 100.0f}; // mesh, no feature

/// A position on the label of the feature in the middle of the list.
Position labelOf(const PickingScene& scene, featureType kind)
{
    const int index = scene.listed.size() / 2;
    const std::string name = "feature-" + std::to_string(index);
    const osg::ref_ptr<osg::Node> feature = findFeatureByName(name, scene.root, kind);
    const osg::Vec3f centre = static_cast<CAutoScaleSphereMeta&>(*feature).getCenterPos();
    return {centre.x() + kelvbench::kWidth / 2.0f, centre.y() + kelvbench::kHeight / 2.0f + 15.0f};
}

/// The floor of every ray pick: the plain visitor over the whole scene.
void rawRay(benchmark::State& state, featureType kind, Position at, Mesh mesh = Mesh::WithKdTree)
{
    const PickingScene& scene = pickingScene(kind, int(state.range(0)), mesh);
    for (auto _ : state) {
        osgUtil::LineSegmentIntersector::Intersections hits;
        benchmark::DoNotOptimize(scene.viewer->computeIntersections(at.x, at.y, hits));
    }
}

/// The floor of the box pick.
void rawBox(benchmark::State& state, featureType kind, Position at, Mesh mesh = Mesh::WithKdTree)
{
    const PickingScene& scene = pickingScene(kind, int(state.range(0)), mesh);
    for (auto _ : state) {
        const osg::ref_ptr<osgUtil::PolytopeIntersector> box = new osgUtil::PolytopeIntersector(
            osgUtil::Intersector::WINDOW, at.x - 2.0, at.y - 2.0, at.x + 2.0, at.y + 2.0);
        osgUtil::IntersectionVisitor visitor(box);
        scene.viewer->getCamera()->accept(visitor);
        benchmark::DoNotOptimize(box->containsIntersections());
    }
}

/// The floor of the label pick: a walk that does nothing.
void rawSceneWalk(benchmark::State& state, featureType kind)
{
    const PickingScene& scene = pickingScene(kind, int(state.range(0)), Mesh::WithKdTree);
    for (auto _ : state) {
        osg::NodeVisitor visitor(osg::NodeVisitor::TRAVERSE_ALL_CHILDREN);
        scene.root->accept(visitor);
    }
}

void clickedPoint(benchmark::State& state, featureType kind, Position at, Mesh mesh = Mesh::WithKdTree)
{
    const PickingScene& scene = pickingScene(kind, int(state.range(0)), mesh);
    osg::Vec3f point;
    for (auto _ : state) benchmark::DoNotOptimize(getClickedPoint(scene.viewer, at.x, at.y, QString(), point));
}

void clickedMesh(benchmark::State& state, featureType kind, Position at, Mesh mesh = Mesh::WithKdTree)
{
    const PickingScene& scene = pickingScene(kind, int(state.range(0)), mesh);
    osg::Vec3f point;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            getClickedPointToMeshData(scene.viewer, at.x, at.y, point, QStringLiteral("meshData")));
}

bool pickDot(const PickingScene& scene, Position at)
{
    osg::Vec3f point;
    CAutoScaleSphereMeta* dot = nullptr;
    return getClickedPointToMeshDataAndDotFeature(scene.viewer, scene.listed, at.x, at.y, point, dot,
                                                  QStringLiteral("meshData"));
}

void meshOrDot(benchmark::State& state, featureType kind, Position at, Mesh mesh = Mesh::WithKdTree)
{
    const PickingScene& scene = pickingScene(kind, int(state.range(0)), mesh);
    for (auto _ : state) benchmark::DoNotOptimize(pickDot(scene, at));
}

bool pickFeature(const PickingScene& scene, Position at)
{
    osg::Vec3f point;
    CFeatureMetaObject* feature = nullptr;
    featureType kind = featureAll;
    std::vector<osg::Vec3f> points;
    return getIntersectionToFeatureBranch(scene.viewer, scene.listed, at.x, at.y, featureAll, point, feature, kind,
                                          points);
}

void featureBranch(benchmark::State& state, featureType kind, Position at, Mesh mesh = Mesh::WithKdTree)
{
    const PickingScene& scene = pickingScene(kind, int(state.range(0)), mesh);
    for (auto _ : state) benchmark::DoNotOptimize(pickFeature(scene, at));
}

void meshOrDotByLabel(benchmark::State& state)
{
    const PickingScene& scene = pickingScene(featureDot, int(state.range(0)), Mesh::WithKdTree);
    const Position at = labelOf(scene, featureDot);
    for (auto _ : state)
        if (!pickDot(scene, at)) state.SkipWithError("no label hit");
}

void featureBranchByLabel(benchmark::State& state)
{
    const PickingScene& scene = pickingScene(featureDot, int(state.range(0)), Mesh::WithKdTree);
    const Position at = labelOf(scene, featureDot);
    for (auto _ : state)
        if (!pickFeature(scene, at)) state.SkipWithError("no label hit");
}

void sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(rawRay, DotsNothing, featureDot, kNothing)->Apply(sizes);
BENCHMARK_CAPTURE(rawRay, DotsMesh, featureDot, kMeshOnly)->Apply(sizes);
BENCHMARK_CAPTURE(rawBox, DotsNothing, featureDot, kNothing)->Apply(sizes);
BENCHMARK_CAPTURE(rawBox, DotsMesh, featureDot, kMeshOnly)->Apply(sizes);
BENCHMARK_CAPTURE(rawSceneWalk, Dots, featureDot)->Apply(sizes);
BENCHMARK_CAPTURE(clickedPoint, DotsNothing, featureDot, kNothing)->Apply(sizes);
BENCHMARK_CAPTURE(clickedPoint, DotsMesh, featureDot, kMeshOnly)->Apply(sizes);
BENCHMARK_CAPTURE(clickedMesh, DotsNothing, featureDot, kNothing)->Apply(sizes);
BENCHMARK_CAPTURE(clickedMesh, DotsMesh, featureDot, kMeshOnly)->Apply(sizes);
BENCHMARK_CAPTURE(meshOrDot, DotsNothing, featureDot, kNothing)->Apply(sizes);
BENCHMARK_CAPTURE(meshOrDot, DotsMesh, featureDot, kMeshOnly)->Apply(sizes);
BENCHMARK(meshOrDotByLabel)->Apply(sizes);
BENCHMARK_CAPTURE(featureBranch, DotsNothing, featureDot, kNothing)->Apply(sizes);
BENCHMARK_CAPTURE(featureBranch, DotsMesh, featureDot, kMeshOnly)->Apply(sizes);
BENCHMARK(featureBranchByLabel)->Apply(sizes);
BENCHMARK_CAPTURE(rawRay, LinesNothing, featureLine, kNothing)->Apply(sizes);
BENCHMARK_CAPTURE(rawBox, LinesNothing, featureLine, kNothing)->Apply(sizes);
BENCHMARK_CAPTURE(featureBranch, LinesNothing, featureLine, kNothing)->Apply(sizes);
BENCHMARK_CAPTURE(rawRay, PlanesNothing, featurePlane, kNothing)->Apply(sizes);
BENCHMARK_CAPTURE(rawBox, PlanesNothing, featurePlane, kNothing)->Apply(sizes);
BENCHMARK_CAPTURE(featureBranch, PlanesNothing, featurePlane, kNothing)->Apply(sizes);

// Where the triangles of a mesh are what a pick takes its time for.
#define KELV_MESH_PICK(function)                                                                                       \
    BENCHMARK_CAPTURE(function, MeshWithoutKdTree, featureDot, kMeshOnly, Mesh::WithoutKdTree)                         \
        ->Arg(100)                                                                                                     \
        ->Unit(benchmark::kMillisecond)
KELV_MESH_PICK(rawRay);
KELV_MESH_PICK(rawBox);
KELV_MESH_PICK(clickedPoint);
KELV_MESH_PICK(clickedMesh);
KELV_MESH_PICK(meshOrDot);
KELV_MESH_PICK(featureBranch);

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
