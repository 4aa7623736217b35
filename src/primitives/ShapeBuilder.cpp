#include "primitives/ShapeBuilder.h"

#include "primitives/RoundSolids.h"
#include "primitives/SharingDrawable.h"

#include <osg/Geode>

#include <algorithm>
#include <cmath>

namespace KelvOsgTools::detail {
namespace {

constexpr float kMaxBuiltRatio = 25.0f; // a sphere of 1000 segments
constexpr float kStandardSegments = 40.0f;
constexpr float kMinSegments = 5.0f;

float buildableRatio(float ratio)
{
    // Neither a NaN nor a negative number can become a number of segments; 0 stands for the standard.
    return ratio > 0.0f ? std::fmin(ratio, kMaxBuiltRatio) : 0.0f;
}

/// The look of a new drawable.
void dress(osg::ShapeDrawable& drawable, const osg::Vec4f& color, const std::string& name)
{
    drawable.setDataVariance(osg::Object::DYNAMIC); // states recolour it while frames are drawn
    drawable.setColor(color);
    drawable.setName(name);
}

} // namespace

// The buffer is made here, not where it is declared: GCC 12 does not free what an initializer there allocated
// when the constructor of it throws.
ShapeBuilder::ShapeBuilder(float detailRatio)
    : m_reportedRatio(detailRatio), m_hints(new osg::TessellationHints), m_buffer(new osg::VertexBufferObject)
{
    m_hints->setDetailRatio(detailRatio);
}

osg::ref_ptr<osg::ShapeDrawable> ShapeBuilder::build(const osg::ref_ptr<osg::Shape>& shape, const osg::Vec4f& color,
                                                     const std::string& name) const
{
    m_hints->setDetailRatio(buildableRatio(m_reportedRatio));
    osg::ref_ptr<osg::ShapeDrawable> drawable = new osg::ShapeDrawable(shape, m_hints);
    m_hints->setDetailRatio(m_reportedRatio);
    dress(*drawable, color, name);
    return drawable;
}

osg::ref_ptr<osg::ShapeDrawable> ShapeBuilder::buildCylinder(float radius, float height, const osg::Vec4f& color,
                                                             const std::string& name) const
{
    osg::ref_ptr<SharingDrawable> drawable =
        new SharingDrawable(new osg::Cylinder(osg::Vec3f(), radius, height), m_hints);
    drawable->keep(setCylinderArrays(*drawable, segments(), radius, height, m_buffer));
    dress(*drawable, color, name);
    return drawable;
}

osg::ref_ptr<osg::ShapeDrawable> ShapeBuilder::buildCone(float radius, float height, const osg::Vec4f& color,
                                                         const std::string& name) const
{
    osg::ref_ptr<SharingDrawable> drawable = new SharingDrawable(new osg::Cone(osg::Vec3f(), radius, height), m_hints);
    drawable->keep(setConeArrays(*drawable, segments(), radius, height, m_buffer));
    dress(*drawable, color, name);
    return drawable;
}

unsigned int ShapeBuilder::segments() const
{
    const float ratio = buildableRatio(m_reportedRatio);
    return static_cast<unsigned int>(ratio > 0.0f ? std::max(kStandardSegments * ratio, kMinSegments)
                                                  : kStandardSegments);
}

osg::Matrixd poseAlong(const osg::Vec3f& direction, const osg::Vec3f& position)
{
    osg::Matrixd pose;
    if (direction != osg::Vec3f()) pose.makeRotate(osg::Z_AXIS, direction);
    pose.postMultTranslate(position);
    return pose;
}

osg::ref_ptr<osg::MatrixTransform> placed(osg::Drawable* drawable, const osg::Matrixd& pose)
{
    const osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(drawable);
    osg::ref_ptr<osg::MatrixTransform> transform = new osg::MatrixTransform(pose);
    transform->addChild(geode);
    return transform;
}

} // namespace KelvOsgTools::detail
