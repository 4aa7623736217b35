#include "picking/PickVisitor.h"

#include <KelvOsgTools/CTableMeta.h>

#include "foundation/AheadTraversal.h"
#include "primitives/PixelTransform.h"

#include <osg/Camera>
#include <osg/Geode>
#include <osg/Projection>

#include <algorithm>
#include <cmath>
#include <typeinfo>

namespace KelvOsgTools::detail {
namespace {

// Margins around what a pick must not miss. Rounding in a sound scene stays orders of magnitude
// below them, and they stay far below a pixel.
constexpr double kRadiusMargin = 1.1;
constexpr double kDistanceMargin = 1e-5;
constexpr double kPositionMargin = 1e-6;

// Transforms beyond these scales, or not rotated by a unit quaternion, are left to the plain visitor.
constexpr double kLeastScale = 1e-9;
constexpr double kLargestScale = 1e9;
constexpr double kUnitTolerance = 1e-6;

constexpr double kLeadsBackTolerance = 1e-6;

constexpr unsigned int kLevelsToTransforms = 2; // a feature and the transforms below, where most picks miss

double sumOfSizes(const osg::Vec3d& vector)
{
    return std::abs(vector.x()) + std::abs(vector.y()) + std::abs(vector.z());
}

bool isWithin(double value, double least, double largest)
{
    return least <= value && value <= largest; // false for NaN
}

/// Only kinds whose matrix and traversal are known can be judged from outside.
bool isPlainAutoTransform(const osg::Transform& transform)
{
    const std::type_info& kind = typeid(transform);
    return kind == typeid(CTableMeta) || kind == typeid(PixelTransform) || kind == typeid(osg::AutoTransform);
}

bool isPlainGeode(const osg::Node& node)
{
    return typeid(node) == typeid(osg::Geode);
}

bool isWellConditioned(const osg::AutoTransform& transform)
{
    const osg::Vec3d& scale = transform.getScale();
    for (int i = 0; i < 3; ++i)
        if (!isWithin(scale[i], kLeastScale, kLargestScale)) return false;
    return transform.getReferenceFrame() == osg::Transform::RELATIVE_RF &&
           isWithin(transform.getRotation().length2(), 1.0 - kUnitTolerance, 1.0 + kUnitTolerance);
}

double largestOf(const osg::Vec3d& scale)
{
    return std::max({scale.x(), scale.y(), scale.z()});
}

/// A distance that a sphere at centre may be off by: rounding grows with the way along the ray and
/// with the coordinates.
double marginAt(const osg::Vec3d& centre, const osg::Vec3d& fromStart)
{
    return kDistanceMargin * sumOfSizes(fromStart) + kPositionMargin * sumOfSizes(centre);
}

osg::Matrixd matrixOrIdentity(const osg::RefMatrix* matrix)
{
    return matrix ? osg::Matrixd(*matrix) : osg::Matrixd();
}

/// From the coordinates of the subtree that the visitor is in to those of a frame.
osg::Matrixd toFrame(const osgUtil::IntersectionVisitor& visitor, osgUtil::Intersector::CoordinateFrame frame)
{
    osg::Matrixd matrix = matrixOrIdentity(visitor.getModelMatrix());
    if (frame == osgUtil::Intersector::MODEL) return matrix;
    matrix.postMult(matrixOrIdentity(visitor.getViewMatrix()));
    if (frame == osgUtil::Intersector::VIEW) return matrix;
    matrix.postMult(matrixOrIdentity(visitor.getProjectionMatrix()));
    if (frame == osgUtil::Intersector::PROJECTION) return matrix;
    return matrix * matrixOrIdentity(visitor.getWindowMatrix());
}

bool isClose(const osg::Vec3d& a, const osg::Vec3d& b)
{
    return sumOfSizes(a - b) <= kLeadsBackTolerance * (1.0 + sumOfSizes(b)); // false for NaN
}

} // namespace

PickVisitor::PickVisitor(osgUtil::Intersector* intersector) : osgUtil::IntersectionVisitor(intersector) {}

void PickVisitor::leaveOut(const osg::NodePath& path)
{
    m_leftOut = path;
}

void PickVisitor::apply(osg::Group& group)
{
    if (isLeftOut() || !enter(group)) return;
    traverseAhead(group, *this, kLevelsToTransforms);
    leave();
}

void PickVisitor::apply(osg::Transform& transform)
{
    if (isLeftOut() || surelyMisses(transform)) return;
    if (transform.getReferenceFrame() != osg::Transform::RELATIVE_RF)
        m_stayedInWorld = false;
    else if (isWideGroup(transform))
        return applyWide(transform);
    osgUtil::IntersectionVisitor::apply(transform);
}

/// As the plain visitor does, but for the way through the children.
void PickVisitor::applyWide(osg::Transform& transform)
{
    if (!enter(transform)) return;
    const osg::ref_ptr<osg::RefMatrix> matrix = new osg::RefMatrix(matrixOrIdentity(getModelMatrix()));
    transform.computeLocalToWorldMatrix(*matrix, this);
    pushModelMatrix(matrix);
    push_clone();
    traverseAhead(transform, *this, kLevelsToTransforms);
    pop_clone();
    popModelMatrix();
    leave();
}

void PickVisitor::apply(osg::Projection& projection)
{
    m_stayedInWorld = false;
    osgUtil::IntersectionVisitor::apply(projection);
}

void PickVisitor::apply(osg::Camera& camera)
{
    m_stayedInWorld = false;
    osgUtil::IntersectionVisitor::apply(camera);
}

bool PickVisitor::isLeftOut() const
{
    return !m_leftOut.empty() && getNodePath() == m_leftOut;
}

bool PickVisitor::surelyMisses(const osg::Transform& transform)
{
    if (!isPlainAutoTransform(transform)) return false;
    const auto& screenSized = static_cast<const osg::AutoTransform&>(transform);
    if (!isWellConditioned(screenSized) || !isReliable()) return false;

    for (unsigned int i = 0; i < transform.getNumChildren(); ++i) {
        const osg::Node& child = *transform.getChild(i);
        // The plain visitor would not enter a geode whose bound the pick misses, nor draw any
        // conclusion about one that is not to be culled.
        if (!isPlainGeode(child) || !child.isCullingActive()) return false;
        if (!surelyMisses(screenSized, child.getBound())) return false;
    }
    return true;
}

bool PickVisitor::surelyMisses(const osg::AutoTransform& transform, const osg::BoundingSphere& content)
{
    const osg::Vec3d& scale = transform.getScale();
    const osg::Vec3d fromPivot = osg::Vec3d(content.center()) - transform.getPivotPoint();
    const double radius = largestOf(scale) * content.radius();

    // Around the position first, whatever the rotation: that settles nearly all of them.
    const double reach = radius + largestOf(scale) * fromPivot.length();
    if (!mayTouch(transform.getPosition(), reach)) return true;
    const osg::Vec3d centre =
        transform.getPosition() + transform.getRotation() * osg::componentMultiply(fromPivot, scale);
    return !mayTouch(centre, radius);
}

RayVisitor::RayVisitor(osgUtil::LineSegmentIntersector* ray) : PickVisitor(ray) {}

bool RayVisitor::mayTouch(const osg::Vec3d& centre, double radius)
{
    const auto& ray = static_cast<const osgUtil::LineSegmentIntersector&>(*_intersectorStack.back());
    const osg::Vec3d along = ray.getEnd() - ray.getStart();
    const osg::Vec3d fromStart = centre - ray.getStart();
    const double share = std::clamp((fromStart * along) / along.length2(), 0.0, 1.0);
    const double limit = kRadiusMargin * radius + marginAt(centre, fromStart);
    // Negated, so that a NaN may touch.
    return !((fromStart - along * share).length2() > limit * limit);
}

bool RayVisitor::isReliable()
{
    const auto& ray = static_cast<const osgUtil::LineSegmentIntersector&>(*_intersectorStack.back());
    if (ray.getStart() == m_checkedStart && ray.getEnd() == m_checkedEnd) return m_isReliable;

    m_checkedStart = ray.getStart();
    m_checkedEnd = ray.getEnd();
    m_isReliable = leadsBack(ray);
    return m_isReliable;
}

bool RayVisitor::leadsBack(const osgUtil::LineSegmentIntersector& segment) const
{
    const auto& origin = static_cast<const osgUtil::LineSegmentIntersector&>(*_intersectorStack.front());
    const osg::Matrixd back = toFrame(*this, origin.getCoordinateFrame());
    return isClose(segment.getStart() * back, origin.getStart()) && isClose(segment.getEnd() * back, origin.getEnd());
}

BoxVisitor::BoxVisitor(osgUtil::PolytopeIntersector* box) : PickVisitor(box) {}

bool BoxVisitor::mayTouch(const osg::Vec3d& centre, double radius)
{
    const auto& box = static_cast<const osgUtil::PolytopeIntersector&>(*_intersectorStack.back());
    const double limit = kRadiusMargin * radius + kPositionMargin * sumOfSizes(centre);
    for (const osg::Plane& plane : box.getPolytope().getPlaneList())
        if (plane.distance(centre) < -limit) return false;
    return true;
}

bool BoxVisitor::isReliable()
{
    return true; // planes are carried over without an inversion
}

} // namespace KelvOsgTools::detail
