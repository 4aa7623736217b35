#pragma once

#include <osg/AutoTransform>
#include <osg/NodeVisitor>

namespace KelvOsgTools::detail {

/// The factor by which the scale that a cull traversal just gave an auto-scaled transform is to be
/// multiplied for a unit to be exactly a pixel; 1 for any other visitor, and without auto-scaling.
///
/// OpenSceneGraph's own estimate is some percent too large in a parallel projection, and too small
/// in perspective, by 20 % where the view is wide.
double pixelCorrection(const osg::AutoTransform& transform, const osg::NodeVisitor* visitor);

/// An auto-scaled transform whose unit is exactly a pixel.
class PixelTransform : public osg::AutoTransform
{
public:
    PixelTransform() = default;
    PixelTransform(const PixelTransform& other, const osg::CopyOp& copyop);

    osg::Object* cloneType() const override;
    osg::Object* clone(const osg::CopyOp& copyop) const override;

    bool computeLocalToWorldMatrix(osg::Matrix& matrix, osg::NodeVisitor* visitor) const override;
    bool computeWorldToLocalMatrix(osg::Matrix& matrix, osg::NodeVisitor* visitor) const override;

protected:
    ~PixelTransform() override = default;
};

} // namespace KelvOsgTools::detail
