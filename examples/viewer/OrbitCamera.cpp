#include "OrbitCamera.h"

#include <osg/Math>
#include <osg/Matrixd>

#include <algorithm>
#include <cmath>

namespace viewer {

namespace {

constexpr double kFieldOfViewDegrees = 30.0; // from bottom to top
constexpr double kFitMargin = 1.12;
constexpr unsigned int kCornersOfBox = 8;
constexpr double kDepthMargin = 1.5; // of the scene's radius: arrows of planes reach beyond it
constexpr double kNearShare = 0.01;  // of the distance to the centre; keeps depth precise

const double kTanHalfField = std::tan(osg::DegreesToRadians(kFieldOfViewDegrees) / 2.0);
const double kSinHalfField = std::sin(osg::DegreesToRadians(kFieldOfViewDegrees) / 2.0);

} // namespace

void OrbitCamera::fit(const osg::BoundingBox& box, double aspect)
{
    if (!box.valid()) return;
    m_centre = box.center();
    m_distance = 0.0;
    for (unsigned int i = 0; i < kCornersOfBox; ++i) {
        const osg::Vec3d corner = m_rotation.inverse() * (osg::Vec3d(box.corner(i)) - m_centre);
        const double halfHeightNeeded = std::max(std::abs(corner.y()), std::abs(corner.x()) / aspect) * kFitMargin;
        m_distance = std::max(m_distance, halfHeightNeeded / kTanHalfField + std::max(corner.z(), 0.0));
    }
    if (m_distance == 0.0) m_distance = 1.0; // a single point
}

void OrbitCamera::lookFrom(Direction direction)
{
    m_rotation = standardRotation(direction);
}

void OrbitCamera::flyTo(const osg::Vec3d& point, double radius)
{
    m_centre = point;
    m_distance = radius * kFitMargin / kSinHalfField;
}

void OrbitCamera::orbit(double dx, double dy)
{
    // Around the world's z axis and the window's x axis: the part stays upright.
    const osg::Quat turn(-dx * osg::PI, osg::Z_AXIS);
    const osg::Quat tilt(dy * osg::PI, osg::X_AXIS);
    m_rotation = tilt * m_rotation * turn;
}

void OrbitCamera::pan(double dx, double dy)
{
    m_centre -= m_rotation * osg::Vec3d(dx, dy, 0.0) * (2.0 * halfHeight());
}

void OrbitCamera::zoom(double factor, const osg::Vec3d& fixedPoint)
{
    m_centre = fixedPoint + (m_centre - fixedPoint) * factor;
    m_distance *= factor;
}

void OrbitCamera::applyTo(osg::Camera& camera, double aspect, const osg::BoundingSphere& bound) const
{
    const osg::Vec3d back = m_rotation * osg::Vec3d(0, 0, 1);
    const double radius = bound.valid() && bound.radius() > 0.0f ? bound.radius() * kDepthMargin : m_distance;
    const double depth = bound.valid() ? (eye() - bound.center()) * back : m_distance; // of the scene's middle
    const double zFar = std::max(depth + radius, m_distance * (1.0 + kNearShare));

    camera.setViewMatrixAsLookAt(eye(), m_centre, m_rotation * osg::Vec3d(0, 1, 0));
    const double top = halfHeight();
    if (m_isOrthographic)
        camera.setProjectionMatrixAsOrtho(-top * aspect, top * aspect, -top, top, std::min(depth - radius, 0.0), zFar);
    else
        camera.setProjectionMatrixAsPerspective(kFieldOfViewDegrees, aspect,
                                                std::max(depth - radius, m_distance * kNearShare), zFar);
}

double OrbitCamera::halfHeight() const
{
    return m_distance * kTanHalfField;
}

osg::Quat OrbitCamera::standardRotation(Direction direction)
{
    const auto lookingAlong = [](const osg::Vec3d& look, const osg::Vec3d& up) {
        return osg::Matrixd::inverse(osg::Matrixd::lookAt(osg::Vec3d(), look, up)).getRotate();
    };
    switch (direction) {
    case Direction::Front:
        return lookingAlong(osg::Y_AXIS, osg::Z_AXIS);
    case Direction::Back:
        return lookingAlong(-osg::Vec3d(osg::Y_AXIS), osg::Z_AXIS);
    case Direction::Left:
        return lookingAlong(osg::X_AXIS, osg::Z_AXIS);
    case Direction::Right:
        return lookingAlong(-osg::Vec3d(osg::X_AXIS), osg::Z_AXIS);
    case Direction::Top:
        return lookingAlong(-osg::Vec3d(osg::Z_AXIS), osg::Y_AXIS);
    case Direction::Bottom:
        return lookingAlong(osg::Z_AXIS, osg::Y_AXIS);
    default:
        return lookingAlong(osg::Vec3d(-0.8, 1.0, -0.8), osg::Z_AXIS);
    }
}

} // namespace viewer
