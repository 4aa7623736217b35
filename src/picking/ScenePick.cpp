#include "picking/ScenePick.h"

#include "picking/PickVisitor.h"
#include "picking/WindowProjection.h"

#include <osg/GraphicsContext>
#include <osgGA/EventQueue>

#include <utility>

namespace KelvOsgTools::detail {
namespace {

/// Whether a view can tell the camera under a position: it reads all of this without a check.
bool knowsWindow(const osgViewer::View& view)
{
    if (!view.getCamera() || !view.getEventQueue() || !view.getEventQueue()->getCurrentEventState()) return false;
    const osg::GraphicsContext* const context = view.getCamera()->getGraphicsContext();
    return !context || context->getTraits();
}

} // namespace

std::optional<CameraPosition> cameraAt(const osgViewer::View& view, float x, float y)
{
    if (!isFinitePosition(x, y) || !knowsWindow(view)) return std::nullopt;
    CameraPosition position;
    position.camera = view.getCameraContainingPosition(x, y, position.x, position.y);
    if (!position.camera || !hasWindow(*position.camera)) return std::nullopt;
    return position;
}

RayHits rayHits(const CameraPosition& position, const osg::NodePath& leftOut)
{
    const osg::ref_ptr<osgUtil::LineSegmentIntersector> ray =
        new osgUtil::LineSegmentIntersector(osgUtil::Intersector::WINDOW, position.x, position.y);
    RayVisitor visitor(ray);
    visitor.leaveOut(leftOut);
    const_cast<osg::Camera&>(*position.camera).accept(visitor);
    return std::move(ray->getIntersections());
}

RayHits rayHits(const osgViewer::View& view, float x, float y)
{
    const std::optional<CameraPosition> position = cameraAt(view, x, y);
    return position ? rayHits(*position) : RayHits();
}

PartialHits rayHitsOf(osg::Node& node, const osg::Camera& camera, float x, float y)
{
    osg::Matrixd toWorld;
    if (!isFinitePosition(x, y) || !toWorld.invert(worldToWindow(camera))) return {};
    const osg::Vec3d start = osg::Vec3d(x, y, 0.0) * toWorld;
    const osg::Vec3d end = osg::Vec3d(x, y, 1.0) * toWorld;
    const osg::ref_ptr<osgUtil::LineSegmentIntersector> ray = new osgUtil::LineSegmentIntersector(start, end);
    RayVisitor visitor(ray);
    node.accept(visitor);
    return {std::move(ray->getIntersections()), visitor.stayedInWorld()};
}

std::optional<BoxHit> nearestInBox(const osg::Camera& camera, float x, float y, double halfSide)
{
    if (!isFinitePosition(x, y) || !hasWindow(camera)) return std::nullopt;
    const osg::ref_ptr<osgUtil::PolytopeIntersector> box = new osgUtil::PolytopeIntersector(
        osgUtil::Intersector::WINDOW, x - halfSide, y - halfSide, x + halfSide, y + halfSide);
    BoxVisitor visitor(box);
    const_cast<osg::Camera&>(camera).accept(visitor);
    if (!box->containsIntersections()) return std::nullopt;
    return box->getFirstIntersection();
}

} // namespace KelvOsgTools::detail
