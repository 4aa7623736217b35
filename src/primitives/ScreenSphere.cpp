#include "primitives/ScreenSphere.h"

#include "foundation/Finite.h"
#include "primitives/PixelTransform.h"
#include "primitives/SphereDrawable.h"

#include <osg/GL>
#include <osg/Geode>

#include <limits>

namespace KelvOsgTools::detail {

osg::ref_ptr<osg::ShapeDrawable> makeSphere(float radius, float detailRatio, const osg::Vec4f& color,
                                            const std::string& name)
{
    osg::ref_ptr<osg::ShapeDrawable> drawable = new SphereDrawable(radius, detailRatio);
    drawable->setColor(color);
    drawable->setName(name);
    return drawable;
}

void prepareSphere(osg::ShapeDrawable& drawable, float radius)
{
    if (auto* const shared = dynamic_cast<SphereDrawable*>(&drawable)) shared->prepare(radius);
}

void resizeSphere(osg::ShapeDrawable& drawable, float radius)
{
    auto* const sphere = dynamic_cast<osg::Sphere*>(drawable.getShape());
    if (!sphere) return;
    if (auto* const shared = dynamic_cast<SphereDrawable*>(&drawable)) {
        shared->resize(*sphere, radius);
        return;
    }
    sphere->setRadius(radius);
    drawable.build();
}

osg::ref_ptr<osg::AutoTransform> screenSized(osg::Drawable* drawable, const osg::Vec3f& position,
                                             osg::AutoTransform::AutoRotateMode rotation)
{
    const osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(drawable);
    geode->getOrCreateStateSet()->setMode(GL_RESCALE_NORMAL, osg::StateAttribute::ON);

    osg::ref_ptr<osg::AutoTransform> transform = new PixelTransform;
    transform->addChild(geode);
    transform->setAutoRotateMode(rotation);
    keepScreenSize(*transform);
    if (isFinite(position))
        transform->setPosition(position);
    else
        geode->setNodeMask(0);
    transform->dirtyBound();
    return transform;
}

void keepScreenSize(osg::AutoTransform& transform)
{
    transform.setAutoScaleToScreen(true);
    transform.setMinimumScale(0.0);
    transform.setMaximumScale(std::numeric_limits<float>::max());
}

} // namespace KelvOsgTools::detail
