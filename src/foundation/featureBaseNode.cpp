#include <KelvOsgTools/featureBaseNode.h>

#include "foundation/ContentTransform.h"
#include "foundation/SceneMarks.h"

namespace KelvOsgTools {

featureBaseNode::featureBaseNode()
{
    const osg::ref_ptr<osg::MatrixTransform> content = new detail::ContentTransform;
    content->setDataVariance(osg::Object::DYNAMIC);
    content->setName(detail::kContentTransformName);
    addChild(content);
    setName(detail::kFreshBaseNodeName);
    setDataVariance(osg::Object::DYNAMIC);
}

featureBaseNode::featureBaseNode(const featureBaseNode& other) : osg::Switch(other, osg::CopyOp::SHALLOW_COPY) {}

featureBaseNode::~featureBaseNode() = default;

} // namespace KelvOsgTools
