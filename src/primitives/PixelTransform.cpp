#include "primitives/PixelTransform.h"

#include "primitives/PixelScale.h"
#include "primitives/ScreenCull.h"

namespace KelvOsgTools::detail {

PixelTransform::PixelTransform(const PixelTransform& other, const osg::CopyOp& copyop)
    : osg::AutoTransform(other, copyop)
{}

osg::Object* PixelTransform::cloneType() const
{
    return new PixelTransform;
}

osg::Object* PixelTransform::clone(const osg::CopyOp& copyop) const
{
    return new PixelTransform(*this, copyop);
}

void PixelTransform::accept(osg::NodeVisitor& visitor)
{
    if (!cullSphere(visitor, *this)) osg::AutoTransform::accept(visitor);
}

bool PixelTransform::computeLocalToWorldMatrix(osg::Matrix& matrix, osg::NodeVisitor* visitor) const
{
    // Without a visitor the base class takes scale and rotation as they are.
    const bool isScaled = scaleToPixels(*this, visitor, _scale, _rotation);
    return osg::AutoTransform::computeLocalToWorldMatrix(matrix, isScaled ? nullptr : visitor);
}

bool PixelTransform::computeWorldToLocalMatrix(osg::Matrix& matrix, osg::NodeVisitor* visitor) const
{
    const bool isScaled = scaleToPixels(*this, visitor, _scale, _rotation);
    return osg::AutoTransform::computeWorldToLocalMatrix(matrix, isScaled ? nullptr : visitor);
}

} // namespace KelvOsgTools::detail
