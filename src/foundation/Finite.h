#pragma once

#include <osg/Vec3f>

#include <cmath>

namespace KelvOsgTools::detail {

/// Whether a point can stand in a transform or a bound: one NaN or infinity there spreads through
/// the bounds up to the scene, which then is neither drawn nor picked.
inline bool isFinite(const osg::Vec3f& point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y()) && std::isfinite(point.z());
}

} // namespace KelvOsgTools::detail
