#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CPlaneMeta.h>
#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include "foundation/SceneMarks.h"
#include "picking/NodePathWalk.h"
#include "picking/ScenePick.h"
#include "picking/TablePick.h"
#include "picking/WindowProjection.h"

namespace KelvOsgTools {
namespace {

constexpr double kBoxHalfSidePixels = 2.0; // thin lines are hit beside them, too
constexpr int kNoKind = -1;

/// A primitive hit by the box or the ray.
struct FeatureHit
{
    CFeatureMetaObject* feature = nullptr;
    featureType kind = featureAll;
    osg::Vec3f point; // in the coordinates of the drawable
};

bool accepts(featureType wanted, featureType kind)
{
    return wanted == featureAll || wanted == kind;
}

/// Changes all of the points or, if memory is exhausted, none.
void getFeaturePoints(CFeatureMetaObject* feature, std::vector<osg::Vec3f>& points)
{
    if (auto* const dot = dynamic_cast<CAutoScaleSphereMeta*>(feature)) {
        points.push_back(dot->getCenterPos());
    } else if (auto* const arrow = dynamic_cast<CArrowMeta*>(feature)) {
        points.insert(points.end(), {arrow->getStartPos(), arrow->getEndPos()});
    } else if (const auto* const plane = dynamic_cast<CPlaneMeta*>(feature)) {
        points = plane->getPlaneInfo(); // replaces, where dots and lines append: hosts rely on both
    }
}

/// The plane that a node is a normal arrow of; null if it is none.
CPlaneMeta* planeOfNormalArrow(osg::Node& node)
{
    if (!dynamic_cast<CArrowMeta*>(&node) || node.getNumParents() == 0) return nullptr;
    return dynamic_cast<CPlaneMeta*>(node.getParent(0));
}

/// The first node from below that is a plane's normal arrow or belongs to a line. A normal arrow
/// stands for its plane, so that a plane is hit by its thin arrows too.
std::optional<FeatureHit> boxHit(const osg::Camera& camera, float x, float y, featureType wanted)
{
    if (wanted != featureAll && wanted != featureLine && wanted != featurePlane) return std::nullopt;
    const std::optional<detail::BoxHit> nearest = detail::nearestInBox(camera, x, y, kBoxHalfSidePixels);
    if (!nearest) return std::nullopt;

    FeatureHit hit;
    hit.point = nearest->localIntersectionPoint;
    detail::RunningKind running;
    const auto takePlaneOrLine = [&](osg::Node& node, int kind) {
        if (accepts(wanted, featurePlane) && (hit.feature = planeOfNormalArrow(node)))
            hit.kind = featurePlane;
        else if (accepts(wanted, featureLine) && kind == featureLine) {
            hit.feature = dynamic_cast<CFeatureMetaObject*>(&node);
            hit.kind = featureLine;
        }
        return hit.feature != nullptr;
    };
    if (!detail::walkUp(nearest->nodePath, running, takePlaneOrLine)) return std::nullopt;
    return hit;
}

/// The primitive of the wanted kind around the nearest hit of the ray; of nested ones the outermost.
std::optional<FeatureHit> rayHit(const osgViewer::View& view, float x, float y, featureType wanted)
{
    const detail::RayHits hits = detail::rayHits(view, x, y);
    if (hits.empty()) return std::nullopt;

    FeatureHit hit;
    hit.point = hits.begin()->getLocalIntersectPoint();
    detail::RunningKind running;
    const auto takeOutermost = [&](osg::Node& node, int kind) {
        const bool matches = kind == wanted || (wanted == featureAll && kind != kNoKind);
        if (auto* const feature = matches ? dynamic_cast<CFeatureMetaObject*>(&node) : nullptr) {
            hit.feature = feature;
            hit.kind = static_cast<featureType>(kind);
        }
        return false;
    };
    detail::walkUp(hits.begin()->nodePath, running, takeOutermost);
    if (!hit.feature) return std::nullopt;
    return hit;
}

double distanceFromEye(const osg::Camera& camera, const osg::Vec3f& point)
{
    osg::Vec3d eye;
    osg::Vec3d centre;
    osg::Vec3d up;
    camera.getViewMatrixAsLookAt(eye, centre, up, 1.0);
    return (osg::Vec3d(point) - eye).length();
}

/// The one nearer to the eye, the ray's if neither is. Points in the coordinates of their drawables
/// are measured as they are from the eye in the world: hosts rely on it.
std::optional<FeatureHit> nearerOf(const std::optional<FeatureHit>& box, const std::optional<FeatureHit>& ray,
                                   const osg::Camera& camera)
{
    if (!box || !ray) return box ? box : ray;
    return distanceFromEye(camera, box->point) < distanceFromEye(camera, ray->point) ? box : ray;
}

} // namespace

bool getIntersectionToFeatureBranch(osgViewer::Viewer* viewer, const QList<QVariant>& features, float x, float y,
                                    featureType wanted, osg::Vec3f& point, CFeatureMetaObject*& feature,
                                    featureType& kind, std::vector<osg::Vec3f>& points)
try {
    const osg::ref_ptr<osg::Group> scene = detail::sceneGroupOf(viewer);
    if (!scene || !findOrCreateFeatureRootNode(scene, wanted, false)) return false;

    if (const auto labelled = detail::pickFeatureTable(viewer, features, x, y);
        labelled && accepts(wanted, static_cast<featureType>(labelled->kind))) {
        auto* const picked = dynamic_cast<CFeatureMetaObject*>(labelled->node.get());
        getFeaturePoints(picked, points);
        feature = picked;
        kind = static_cast<featureType>(labelled->kind);
        return true;
    }

    const osg::Camera& camera = *viewer->getCamera();
    const auto hit = nearerOf(boxHit(camera, x, y, wanted), rayHit(*viewer, x, y, wanted), camera);
    if (!hit) return false;
    getFeaturePoints(hit->feature, points); // first: it may fail for want of memory
    kind = hit->kind;
    point = hit->point;
    feature = hit->feature;
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

} // namespace KelvOsgTools
