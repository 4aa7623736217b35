#pragma once

#include <osg/AutoTransform>

namespace KelvOsgTools::detail {

/// An auto-scaled transform whose unit is exactly a pixel, within the limits that are set for its scale.
class PixelTransform : public osg::AutoTransform
{
public:
    PixelTransform() = default;
    PixelTransform(const PixelTransform& other, const osg::CopyOp& copyop);

    osg::Object* cloneType() const override;
    osg::Object* clone(const osg::CopyOp& copyop) const override;

    void accept(osg::NodeVisitor& visitor) override;

    bool computeLocalToWorldMatrix(osg::Matrix& matrix, osg::NodeVisitor* visitor) const override;
    bool computeWorldToLocalMatrix(osg::Matrix& matrix, osg::NodeVisitor* visitor) const override;

protected:
    ~PixelTransform() override = default;
};

} // namespace KelvOsgTools::detail
