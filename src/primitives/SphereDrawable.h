#pragma once

#include <osg/BoundingBox>
#include <osg/Geometry>
#include <osg/Referenced>
#include <osg/ShapeDrawable>
#include <osg/ref_ptr>

#include <array>

namespace KelvOsgTools::detail {

/// Arrays of a sphere around the origin, shared by all spheres of its radius and detail ratio.
class SphereMesh : public osg::Referenced
{
public:
    /// The mesh of that size and detail: the one that some sphere uses already, or a new one. It
    /// lives as long as it is used.
    static osg::ref_ptr<SphereMesh> shared(float radius, float detailRatio);

    SphereMesh(float radius, float detailRatio);

    const float radius;
    const float detailRatio;

    /// The full tessellation, as the shape's hints ask for it: what picking intersects.
    osg::ref_ptr<osg::Array> vertices;
    osg::ref_ptr<osg::Array> normals;
    osg::ref_ptr<osg::PrimitiveSet> triangles;
    osg::BoundingBox box;

    /// Half the sphere, the pole at +Z, for drawing it from that side at the size of its radius in
    /// pixels: the same look from a fraction of the triangles. Without colours; null where the full
    /// tessellation is what has to be drawn.
    osg::ref_ptr<osg::Geometry> cap;

protected:
    ~SphereMesh() override;
};

/// The sphere of a marker of constant screen size: a shape drawable that shares its arrays with
/// its equals.
///
/// Picking sees the full tessellation. Drawing sets the few pixels of a small sphere one by one
/// (SpherePixels.h) or, where that would look different, turns a lighter half to the eye: at a
/// radius of three pixels nobody sees 14,400 triangles. Once a host gives it other arrays (by
/// setShape, build or the setters of osg::Geometry), it is what the host made of it. It has no class
/// name of its own: to hosts and files it is an osg::ShapeDrawable.
class SphereDrawable : public osg::ShapeDrawable
{
public:
    SphereDrawable(float radius, float detailRatio);

    /// Keeps the mesh of a radius at hand, so that resize() to it makes none.
    void prepare(float radius);

    /// Gives the sphere another radius, and the shared arrays of that radius.
    void resize(osg::Sphere& sphere, float radius);

    using osg::ShapeDrawable::accept;
    osg::BoundingBox computeBoundingBox() const override;
    void drawImplementation(osg::RenderInfo& renderInfo) const override;
    void compileGLObjects(osg::RenderInfo& renderInfo) const override;
    void resizeGLObjectBuffers(unsigned int maxSize) override;
    void releaseGLObjects(osg::State* state = nullptr) const override;

protected:
    ~SphereDrawable() override;

private:
    void use(const osg::ref_ptr<SphereMesh>& mesh);
    bool showsMesh() const;
    bool looksRound() const;
    void drawCap(osg::RenderInfo& renderInfo) const;

    float m_detailRatio;
    osg::ref_ptr<SphereMesh> m_mesh;
    osg::ref_ptr<SphereMesh> m_spare; // of the other radius of a sphere that is resized
};

} // namespace KelvOsgTools::detail
