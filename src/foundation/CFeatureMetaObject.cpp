#include <KelvOsgTools/CFeatureMetaObject.h>

namespace KelvOsgTools {

CFeatureMetaObject::CFeatureMetaObject() = default;

CFeatureMetaObject::CFeatureMetaObject(const CFeatureMetaObject& other) : osg::Switch(other, osg::CopyOp::SHALLOW_COPY)
{}

CFeatureMetaObject::~CFeatureMetaObject() = default;

void CFeatureMetaObject::setState(featureState) {}

} // namespace KelvOsgTools
