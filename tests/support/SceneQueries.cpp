#include "support/SceneQueries.h"

#include <osg/LineWidth>
#include <osg/Transform>

#include <cmath>

namespace kelvtest {
namespace {

void append(osg::Node& node, std::vector<osg::Node*>& nodes)
{
    nodes.push_back(&node);
    if (const osg::Group* const group = node.asGroup())
        for (unsigned int i = 0; i < group->getNumChildren(); ++i)
            append(*const_cast<osg::Node*>(group->getChild(i)), nodes);
}

bool isFinite(const osg::BoundingSphere& bound)
{
    return std::isfinite(bound.radius()) && std::isfinite(bound.center().x()) && std::isfinite(bound.center().y()) &&
           std::isfinite(bound.center().z());
}

bool isFinite(const osg::BoundingBox& box)
{
    for (unsigned int i = 0; i < 3; ++i)
        if (!std::isfinite(box._min[i]) || !std::isfinite(box._max[i])) return false;
    return true;
}

bool isFinite(const osg::Matrixd& matrix)
{
    for (int i = 0; i < 16; ++i)
        if (!std::isfinite(matrix.ptr()[i])) return false;
    return true;
}

bool hasFiniteMatrix(osg::Node& node)
{
    const osg::Transform* const transform = node.asTransform();
    osg::Matrixd matrix;
    return !transform || (transform->computeLocalToWorldMatrix(matrix, nullptr) && isFinite(matrix));
}

bool hasFiniteBound(osg::Node& node)
{
    const osg::Drawable* const drawable = node.asDrawable();
    return isFinite(node.getBound()) && (!drawable || isFinite(drawable->getBoundingBox()));
}

} // namespace

std::vector<osg::Node*> allNodes(osg::Node& top)
{
    std::vector<osg::Node*> nodes;
    append(top, nodes);
    return nodes;
}

std::optional<int> kindOf(const osg::Object& node)
{
    int kind = 0;
    return node.getUserValue("feature_type", kind) ? std::optional<int>(kind) : std::nullopt;
}

float lineWidthOf(const osg::Node& node)
{
    const osg::StateSet* const state = node.getStateSet();
    const auto* const width =
        state ? dynamic_cast<const osg::LineWidth*>(state->getAttribute(osg::StateAttribute::LINEWIDTH)) : nullptr;
    return width ? width->getWidth() : 0.0f;
}

QString textOf(const osgText::Text& text)
{
    const osgText::String& characters = text.getText();
    return QString::fromUcs4(characters.data(), static_cast<int>(characters.size()));
}

::testing::AssertionResult isFiniteEverywhere(osg::Node& top)
{
    for (osg::Node* node : allNodes(top)) {
        if (!hasFiniteMatrix(*node))
            return ::testing::AssertionFailure() << node->className() << " '" << node->getName() << "': matrix";
        if (!hasFiniteBound(*node))
            return ::testing::AssertionFailure() << node->className() << " '" << node->getName() << "': bound";
    }
    return ::testing::AssertionSuccess();
}

} // namespace kelvtest
