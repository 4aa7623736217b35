#include <KelvOsgTools/FeatureFunctions.h>

#include "foundation/SceneMarks.h"
#include "picking/NodePathWalk.h"
#include "picking/ScenePick.h"
#include "picking/TablePick.h"
#include "picking/WindowProjection.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <typeinfo>

namespace KelvOsgTools {
namespace {

using detail::CameraPosition;
using detail::RayHits;

constexpr float kSamePositionPixels = 1e-3f;

bool passesNodeNamed(const osg::NodePath& path, const std::string& name)
{
    return std::any_of(path.begin(), path.end(), [&](const osg::Node* node) { return node->getName() == name; });
}

bool takeLocalPoint(const RayHits& hits, osg::Vec3f& point)
{
    if (hits.empty()) return false;
    point = hits.begin()->getLocalIntersectPoint();
    return true;
}

bool takeWorldPoint(const RayHits& hits, osg::Vec3f& point)
{
    if (hits.empty()) return false;
    point = hits.begin()->getWorldIntersectPoint();
    return true;
}

/// Whether a ray that hits anything below the scene enters it, with the coordinates of the world.
bool letsRaysThrough(osg::Group& scene)
{
    return typeid(scene) == typeid(osg::Group) && scene.getNodeMask() != 0 &&
           !scene.getComputeBoundingSphereCallback() && !scene.getInitialBound().valid();
}

/// Whether a camera's position is that of the window, as far as the view's single-precision
/// arithmetic lets it arrive there.
bool isSamePosition(const CameraPosition& position, float x, float y)
{
    return std::abs(position.x - x) < kSamePositionPixels && std::abs(position.y - y) < kSamePositionPixels;
}

/// Whether what the master camera's ray hits of a child of the scene, looked at alone, the ray
/// through the whole scene hits too: the same camera, the same ray, and nothing in between.
bool seesChildrenAsTheyAre(const CameraPosition& position, osg::Camera& master, osg::Group& scene)
{
    return position.camera == &master && typeid(master) == typeid(osg::Camera) && master.getNodeMask() != 0 &&
           master.containsNode(&scene) && letsRaysThrough(scene);
}

/// A dot takes its stored centre, not the point on its sphere.
bool takeDot(osg::Node* node, osg::Vec3f& point, CAutoScaleSphereMeta*& dot)
{
    auto* const picked = dynamic_cast<CAutoScaleSphereMeta*>(node);
    if (!picked) return false;
    point = picked->getCenterPos();
    dot = picked;
    return true;
}

bool takeDotByLabel(osgViewer::Viewer* viewer, const QList<QVariant>& features, float x, float y, osg::Vec3f& point,
                    CAutoScaleSphereMeta*& dot)
{
    const auto labelled = detail::pickFeatureTable(viewer, features, x, y);
    return labelled && labelled->kind == featureDot && takeDot(labelled->node, point, dot);
}

} // namespace

bool getClickedPoint(osgViewer::Viewer* viewer, float x, float y, const QString& nodeName, osg::Vec3f& point)
try {
    if (!viewer) return false;
    const RayHits hits = detail::rayHits(*viewer, x, y);
    if (nodeName.isEmpty()) return takeLocalPoint(hits, point);

    const std::string name = nodeName.toStdString();
    const auto hit =
        std::find_if(hits.begin(), hits.end(), [&](const auto& each) { return passesNodeNamed(each.nodePath, name); });
    if (hit == hits.end()) return false;
    point = hit->getLocalIntersectPoint();
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

bool getClickedPointToMeshData(osgViewer::Viewer* viewer, float x, float y, osg::Vec3f& point, QString meshName)
try {
    const osg::ref_ptr<osg::Group> scene = detail::sceneGroupOf(viewer);
    const auto position = scene ? detail::cameraAt(*viewer, x, y) : std::nullopt;
    if (!position) return false;

    const osg::ref_ptr<osg::Node> named = findChildByName(meshName.toStdString(), scene);
    osg::Group* const mesh = named ? named->asGroup() : nullptr;
    osg::Camera& master = *viewer->getCamera();
    const detail::PartialHits meshHits = mesh ? detail::rayHitsOf(*mesh, master, x, y) : detail::PartialHits();

    const bool isSameRay = isSamePosition(*position, x, y) && seesChildrenAsTheyAre(*position, master, *scene);
    if (!mesh || !isSameRay || !meshHits.isAsInWhole)
        return takeWorldPoint(detail::rayHits(*position), point) && takeLocalPoint(meshHits.hits, point);
    // A hit on the mesh is a hit in the scene: nothing else needs to be looked at. Without one the
    // rest of the scene gives the nearest hit, and the mesh's triangles are not tested again.
    if (takeLocalPoint(meshHits.hits, point)) return true;
    takeWorldPoint(detail::rayHits(*position, {&master, scene.get(), mesh}), point);
    return false;
} catch (const std::bad_alloc&) {
    return false;
}

bool getClickedPointToMeshDataAndDotFeature(osgViewer::Viewer* viewer, const QList<QVariant>& features, float x,
                                            float y, osg::Vec3f& point, CAutoScaleSphereMeta*& dot, QString meshName)
try {
    if (!detail::sceneGroupOf(viewer)) return false;
    if (takeDotByLabel(viewer, features, x, y, point, dot)) return true;

    const std::string name = meshName.toStdString();
    detail::RunningKind kind; // runs on from hit to hit
    for (const auto& hit : detail::rayHits(*viewer, x, y)) {
        const auto takeDotOrMesh = [&](osg::Node& node, int runningKind) {
            if (runningKind == featureDot) return takeDot(&node, point, dot);
            if (node.getName() != name) return false;
            point = hit.getLocalIntersectPoint();
            return true;
        };
        if (detail::walkUp(hit.nodePath, kind, takeDotOrMesh)) return true;
    }
    return false;
} catch (const std::bad_alloc&) {
    return false;
}

} // namespace KelvOsgTools
