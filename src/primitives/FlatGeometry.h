#pragma once

#include <osg/Geometry>

namespace KelvOsgTools::detail {

/// Geometry with two-component vertices.
///
/// OpenSceneGraph's intersectors cannot read such vertices: they find nothing and print a warning
/// for each geometry under each ray. This one shows them no triangles, so that they find nothing
/// without the warning, in the host's own picks too.
class FlatGeometry : public osg::Geometry
{
public:
    FlatGeometry() = default;

    using osg::Geometry::accept;
    void accept(osg::PrimitiveFunctor&) const override {}

    osg::BoundingBox computeBoundingBox() const override
    {
        osg::BoundingBox box;
        if (const auto* const vertices = dynamic_cast<const osg::Vec2Array*>(getVertexArray()))
            for (const osg::Vec2f& vertex : *vertices) box.expandBy(vertex.x(), vertex.y(), 0.0f);
        return box;
    }

protected:
    ~FlatGeometry() override = default;
};

} // namespace KelvOsgTools::detail
