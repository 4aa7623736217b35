#pragma once

#include <osg/PrimitiveSet>
#include <osg/ref_ptr>

#include <cstddef>
#include <vector>

namespace KelvOsgTools::detail {

/// Indexed triangles over that many vertices, in the smallest index type that reaches them all.
inline osg::ref_ptr<osg::PrimitiveSet> triangleSet(const std::vector<unsigned int>& indices, std::size_t vertexCount)
{
    if (vertexCount <= 0xffff) return new osg::DrawElementsUShort(GL_TRIANGLES, indices.begin(), indices.end());
    return new osg::DrawElementsUInt(GL_TRIANGLES, indices.begin(), indices.end());
}

} // namespace KelvOsgTools::detail
