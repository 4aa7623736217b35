#pragma once

#include <KelvOsgTools/CSphereMeta.h>

namespace kelvtest {

inline const osg::Vec4f kOrange(1.0f, 0.5f, 0.0f, 1.0f);

inline KelvOsgTools::CAutoScaleSphereMeta::structSphereMeta dotRecord(float radius,
                                                                      const osg::Vec3f& centre = osg::Vec3f())
{
    KelvOsgTools::CAutoScaleSphereMeta::structSphereMeta meta;
    meta.cneterPos = centre;
    meta.radius = radius;
    meta.color = kOrange;
    return meta;
}

} // namespace kelvtest
