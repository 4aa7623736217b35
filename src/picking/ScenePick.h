#pragma once

#include <osg/Camera>
#include <osg/Node>
#include <osgUtil/LineSegmentIntersector>
#include <osgUtil/PolytopeIntersector>
#include <osgViewer/View>

#include <optional>

namespace KelvOsgTools::detail {

using RayHits = osgUtil::LineSegmentIntersector::Intersections;
using BoxHit = osgUtil::PolytopeIntersector::Intersection;

/// A camera of a view and a position in its viewport.
struct CameraPosition
{
    const osg::Camera* camera = nullptr; // owned by the view
    float x = 0.0f;
    float y = 0.0f;
};

/// The camera under a window position, as the view's event state knows the window: the master
/// camera, or a slave. Empty outside every viewport, and while the view knows no window.
std::optional<CameraPosition> cameraAt(const osgViewer::View& view, float x, float y);

/// What the ray through a position hits in the scene of its camera, nearest first.
/// @param leftOut a path whose subtree is not looked at; empty for none
RayHits rayHits(const CameraPosition& position, const osg::NodePath& leftOut = {});

/// What the ray through a window position hits in the whole scene of a view, nearest first.
RayHits rayHits(const osgViewer::View& view, float x, float y);

/// What a ray hits of a part of a scene, nearest first.
struct PartialHits
{
    RayHits hits;
    /// Whether a ray through the whole scene would take the same way through this part: it has no
    /// camera, projection or absolute transform that the ray met.
    bool isAsInWhole = true;
};

/// What the ray through a window position of the camera hits of a node and below. The parents of
/// the node are not looked at: its parent's coordinates are taken for the world.
PartialHits rayHitsOf(osg::Node& node, const osg::Camera& camera, float x, float y);

/// What of the camera's scene is nearest in a box around a window position.
/// @param halfSide in pixels
std::optional<BoxHit> nearestInBox(const osg::Camera& camera, float x, float y, double halfSide);

} // namespace KelvOsgTools::detail
