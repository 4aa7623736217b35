#include "primitives/PixelScale.h"

#include <osg/CullStack>

#include <cmath>

namespace KelvOsgTools::detail {
namespace {

osg::Vec3d column(const osg::Matrixd& matrix, int index)
{
    return {matrix(0, index), matrix(1, index), matrix(2, index)};
}

/// How many pixels a unit at position takes if it lies parallel to the screen, as a mean of the
/// window's two directions.
double pixelsPerUnit(const osg::CullStack& view, const osg::Vec3d& position)
{
    const osg::Matrixd& modelView = *view.getModelViewMatrix();
    const osg::Matrixd& projection = *view.getProjectionMatrix();
    const osg::Vec4d clip = osg::Vec4d(position, 1.0) * modelView * projection;

    const double across = column(modelView, 0).length() * projection(0, 0) * view.getViewport()->width() * 0.5;
    const double up = column(modelView, 1).length() * projection(1, 1) * view.getViewport()->height() * 0.5;
    return std::hypot(across, up) * std::sqrt(0.5) / std::abs(clip.w());
}

} // namespace

double pixelCorrection(const osg::AutoTransform& transform, const osg::NodeVisitor* visitor)
{
    const osg::CullStack* const view = visitor ? visitor->asCullStack() : nullptr;
    if (!view || !view->getViewport() || !transform.getAutoScaleToScreen()) return 1.0;

    const double correction = 1.0 / (pixelsPerUnit(*view, transform.getPosition()) * transform.getScale().x());
    // In the plane of the eye there is no size on screen to keep.
    return std::isfinite(correction) ? correction : 1.0;
}

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

bool PixelTransform::computeLocalToWorldMatrix(osg::Matrix& matrix, osg::NodeVisitor* visitor) const
{
    osg::AutoTransform::computeLocalToWorldMatrix(matrix, visitor);
    const double correction = pixelCorrection(*this, visitor);
    matrix.preMultScale(osg::Vec3d(correction, correction, correction));
    _scale *= correction; // which stays for the visitors that follow, until the next cull
    return true;
}

bool PixelTransform::computeWorldToLocalMatrix(osg::Matrix& matrix, osg::NodeVisitor* visitor) const
{
    osg::AutoTransform::computeWorldToLocalMatrix(matrix, visitor);
    const double correction = pixelCorrection(*this, visitor);
    const double inverse = 1.0 / correction;
    matrix.postMultScale(osg::Vec3d(inverse, inverse, inverse));
    _scale *= correction;
    return true;
}

} // namespace KelvOsgTools::detail
