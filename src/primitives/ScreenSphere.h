#pragma once

#include <osg/AutoTransform>
#include <osg/ShapeDrawable>
#include <osg/Vec3f>
#include <osg/Vec4f>
#include <osg/ref_ptr>

#include <string>

namespace KelvOsgTools::detail {

/// A sphere around the origin.
osg::ref_ptr<osg::ShapeDrawable> makeSphere(float radius, float detailRatio, const osg::Vec4f& color,
                                            const std::string& name = {});

/// Has the geometry of another radius ready, so that resizeSphere() to it makes none.
void prepareSphere(osg::ShapeDrawable& drawable, float radius);

/// Gives a sphere another radius, and a geometry that shows it. Leaves a drawable of any other
/// shape alone.
void resizeSphere(osg::ShapeDrawable& drawable, float radius);

/// A transform that keeps the drawable, in a geode, at a constant size on screen. A position that
/// is not finite hides it.
osg::ref_ptr<osg::AutoTransform> screenSized(osg::Drawable* drawable, const osg::Vec3f& position,
                                             osg::AutoTransform::AutoRotateMode rotation);

/// Lets a transform keep its content at a constant size on screen, however near or far it is.
void keepScreenSize(osg::AutoTransform& transform);

} // namespace KelvOsgTools::detail
