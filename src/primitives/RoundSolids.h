#pragma once

#include <osg/BufferObject>
#include <osg/Geometry>
#include <osg/Referenced>
#include <osg/ref_ptr>

namespace KelvOsgTools::detail {

/// Gives a geometry the arrays of a closed cylinder along Z around the origin, kept in buffer on the GPU. Cylinders of
/// as many segments share their normals and triangles, as long as somebody keeps what this returns.
osg::ref_ptr<osg::Referenced> setCylinderArrays(osg::Geometry& geometry, unsigned int segments, float radius,
                                                float height, osg::VertexBufferObject* buffer);

/// Gives a geometry the arrays of a closed cone along Z, a quarter of it below the origin, kept in
/// buffer on the GPU. Cones of
/// as many segments share their triangles, as long as somebody keeps what this returns.
osg::ref_ptr<osg::Referenced> setConeArrays(osg::Geometry& geometry, unsigned int segments, float radius, float height,
                                            osg::VertexBufferObject* buffer);

} // namespace KelvOsgTools::detail
