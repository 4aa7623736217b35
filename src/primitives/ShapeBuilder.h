#pragma once

#include <osg/BufferObject>
#include <osg/Drawable>
#include <osg/MatrixTransform>
#include <osg/Matrixd>
#include <osg/Shape>
#include <osg/ShapeDrawable>
#include <osg/Vec3f>
#include <osg/Vec4f>
#include <osg/ref_ptr>

#include <string>

namespace KelvOsgTools::detail {

/// Builds shape drawables that share one set of tessellation hints: the standard ones with a given
/// detail ratio.
class ShapeBuilder
{
public:
    /// @param detailRatio reported by the hints as it is. Shapes are built with at most a ratio that
    ///        keeps them within some hundred thousand vertices, since it may come from a file.
    explicit ShapeBuilder(float detailRatio);

    /// Any shape, tessellated by OpenSceneGraph.
    osg::ref_ptr<osg::ShapeDrawable> build(const osg::ref_ptr<osg::Shape>& shape, const osg::Vec4f& color,
                                           const std::string& name = {}) const;

    /// A cylinder along Z around the origin: the surface that build() makes, in one indexed primitive.
    osg::ref_ptr<osg::ShapeDrawable> buildCylinder(float radius, float height, const osg::Vec4f& color,
                                                   const std::string& name) const;

    /// A cone along Z around the origin: the surface that build() makes, in one indexed primitive and
    /// without the rows that OpenSceneGraph divides its flat facets into, a twentieth of the memory.
    osg::ref_ptr<osg::ShapeDrawable> buildCone(float radius, float height, const osg::Vec4f& color,
                                               const std::string& name) const;

private:
    unsigned int segments() const;

    float m_reportedRatio;
    osg::ref_ptr<osg::TessellationHints> m_hints;
    osg::ref_ptr<osg::VertexBufferObject> m_buffer; // of the indexed shapes
};

/// Turns what is built along +Z onto direction and moves it to position. No direction, no rotation:
/// OpenSceneGraph's rotation onto a zero vector is NaN.
osg::Matrixd poseAlong(const osg::Vec3f& direction, const osg::Vec3f& position);

/// A transform with that matrix over a geode with that drawable.
osg::ref_ptr<osg::MatrixTransform> placed(osg::Drawable* drawable, const osg::Matrixd& pose);

} // namespace KelvOsgTools::detail
