#include "picking/LabelSearch.h"

#include "foundation/AheadTraversal.h"
#include "foundation/SceneMarks.h"
#include "primitives/FlatGeometry.h"
#include "primitives/SharingDrawable.h"
#include "primitives/SphereDrawable.h"

#include <osg/Geometry>
#include <osg/ShapeDrawable>
#include <osgText/Text>

#include <string_view>
#include <typeinfo>
#include <utility>

namespace KelvOsgTools::detail {
namespace {

constexpr unsigned int kLevelsToDrawables = 5; // from a plane to the drawables of its normal arrows

/// Looks at the lengths first: most names then need not be read.
bool hasName(const osg::Node& node, std::string_view name)
{
    return std::string_view(node.getName()) == name;
}

bool isNamedLikeLabel(const osg::Node& node)
{
    return hasName(node, kTableName);
}

/// Whether nothing can hang below a node: the kinds of drawables that features are made of. Most
/// nodes of a scene full of features are such, and visiting them would be most of the work.
bool isPlainDrawable(const osg::Node& node)
{
    // By address, which is quicker than comparing and at worst takes a drawable for an unknown one.
    const std::type_info* const kind = &typeid(node);
    return kind == &typeid(FlatGeometry) || kind == &typeid(osgText::Text) || kind == &typeid(SphereDrawable) ||
           kind == &typeid(SharingDrawable) || kind == &typeid(osg::ShapeDrawable) || kind == &typeid(osg::Geometry);
}

} // namespace

LabelSearch::LabelSearch(std::function<bool(CTableMeta&)> isHit)
    : osg::NodeVisitor(osg::NodeVisitor::TRAVERSE_ALL_CHILDREN), m_isHit(std::move(isHit))
{}

void LabelSearch::apply(osg::Node& node)
{
    visit(node, [&] { traverse(node); });
}

void LabelSearch::apply(osg::Group& group)
{
    visit(group, [&] { traverseAhead(group, *this, kLevelsToDrawables); });
}

void LabelSearch::apply(osg::Geode& geode)
{
    // Only a plain geode is known to traverse nothing but its children.
    if (typeid(geode) == typeid(osg::Geode))
        visit(geode, [&] { traverseGeode(geode); });
    else
        apply(static_cast<osg::Node&>(geode));
}

template <typename TraverseChildren>
void LabelSearch::visit(osg::Node& node, TraverseChildren&& traverseChildren)
{
    if (m_stage == Stage::BelowRoot) return search(node, traverseChildren);
    if (m_stage == Stage::AfterRoot) return;
    // Compared as bytes: an ASCII name has no other spelling in any encoding.
    if (!hasName(node, kCommonRootName)) return traverseChildren();

    m_stage = Stage::BelowRoot;
    search(node, traverseChildren);
    m_stage = Stage::AfterRoot;
}

template <typename TraverseChildren>
void LabelSearch::search(osg::Node& node, TraverseChildren&& traverseChildren)
{
    const std::size_t rank = m_traversed.size();
    m_traversed.push_back({&node, node.getName().size()});
    m_withoutLabel.push_back(rank);
    if (isNamedLikeLabel(node)) meetLabel(node);
    traverseChildren();
    if (!m_withoutLabel.empty() && m_withoutLabel.back() == rank) m_withoutLabel.pop_back();
}

void LabelSearch::traverseGeode(osg::Geode& geode)
{
    for (unsigned int i = 0; i < geode.getNumChildren(); ++i) {
        osg::Node& child = *geode.getChild(i);
        if (m_stage == Stage::BelowRoot && isPlainDrawable(child))
            passLeaf(child);
        else
            child.accept(*this);
    }
}

void LabelSearch::passLeaf(osg::Node& drawable)
{
    m_traversed.push_back({&drawable, drawable.getName().size()});
    if (isNamedLikeLabel(drawable) && drawable.getNodeMask() != 0) meetLabel(drawable);
}

/// The node is the first label below all nodes around it that have met none yet.
void LabelSearch::meetLabel(osg::Node& node)
{
    if (m_withoutLabel.empty()) return;
    auto* const label = dynamic_cast<CTableMeta*>(&node);
    if (label && m_isHit(*label))
        for (const std::size_t rank : m_withoutLabel)
            m_owners.push_back({m_traversed[rank].node, rank, label->getMetaStruct().renderIndex});
    m_withoutLabel.clear();
}

} // namespace KelvOsgTools::detail
