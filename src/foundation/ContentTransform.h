#pragma once

#include <osg/MatrixTransform>

namespace KelvOsgTools::detail {

/// The transform below a grouping node, which may hold thousands of features: culls fetch them ahead.
/// To hosts, and in files of theirs, it is a plain osg::MatrixTransform.
class ContentTransform : public osg::MatrixTransform
{
public:
    ContentTransform() = default;
    ContentTransform(const ContentTransform& other, const osg::CopyOp& copyop);

    osg::Object* cloneType() const override;
    osg::Object* clone(const osg::CopyOp& copyop) const override;

    void traverse(osg::NodeVisitor& visitor) override;

protected:
    ~ContentTransform() override = default;
};

} // namespace KelvOsgTools::detail
