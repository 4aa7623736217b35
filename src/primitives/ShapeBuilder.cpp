#include "primitives/ShapeBuilder.h"

#include <cmath>

namespace KelvOsgTools::detail {
namespace {

constexpr float kMaxBuiltRatio = 25.0f; // a sphere of 1000 segments

float buildableRatio(float ratio)
{
    // Neither a NaN nor a negative number can become a number of segments.
    return ratio > 0.0f ? std::fmin(ratio, kMaxBuiltRatio) : 0.0f;
}

} // namespace

ShapeBuilder::ShapeBuilder(float detailRatio) : m_reportedRatio(detailRatio), m_hints(new osg::TessellationHints) {}

osg::ref_ptr<osg::ShapeDrawable> ShapeBuilder::build(osg::Shape* shape, const osg::Vec4f& color,
                                                     const std::string& name) const
{
    m_hints->setDetailRatio(buildableRatio(m_reportedRatio));
    osg::ref_ptr<osg::ShapeDrawable> drawable = new osg::ShapeDrawable(shape, m_hints);
    m_hints->setDetailRatio(m_reportedRatio);
    drawable->setDataVariance(osg::Object::DYNAMIC); // states recolour it while frames are drawn
    drawable->setColor(color);
    drawable->setName(name);
    return drawable;
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
