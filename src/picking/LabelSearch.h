#pragma once

#include <KelvOsgTools/CTableMeta.h>

#include <osg/Geode>
#include <osg/Node>
#include <osg/NodeVisitor>

#include <cstddef>
#include <functional>
#include <vector>

namespace KelvOsgTools::detail {

/// A node whose first label was hit.
struct LabelOwner
{
    osg::Node* node = nullptr;
    std::size_t rank = 0; ///< place of the node in the order of traversal
    int renderIndex = 0;  ///< of the label
};

/// A node with the length of its name in bytes, which tells most names apart without a look at the
/// node again.
struct TraversedNode
{
    osg::Node* node = nullptr;
    std::size_t nameLength = 0;
};

/// Finds, below the first node named "featureData", every node whose first label is hit.
///
/// "First" is meant in the order in which the node search visitors list nodes: depth first, a node
/// before its children, hidden ones too. A node is itself below itself. Each node is visited once,
/// however many labels there are.
class LabelSearch : public osg::NodeVisitor
{
public:
    /// @param isHit tells whether a label counts as hit; asked once for each label at most
    explicit LabelSearch(std::function<bool(CTableMeta&)> isHit);

    using osg::NodeVisitor::apply;
    void apply(osg::Node& node) override;
    void apply(osg::Group& group) override;
    void apply(osg::Geode& geode) override;

    /// In the order of traversal.
    const std::vector<LabelOwner>& owners() const { return m_owners; }

    /// Every node up to the end of the search, in the order of traversal; a node's place is its rank.
    /// Drawables are among them even when they are masked out.
    const std::vector<TraversedNode>& traversed() const { return m_traversed; }

private:
    enum class Stage
    {
        BeforeRoot,
        BelowRoot,
        AfterRoot
    };

    template <typename TraverseChildren>
    void visit(osg::Node& node, TraverseChildren&& traverseChildren);
    template <typename TraverseChildren>
    void search(osg::Node& node, TraverseChildren&& traverseChildren);
    void traverseGeode(osg::Geode& geode);
    void passLeaf(osg::Node& drawable);
    void meetLabel(osg::Node& node);

    std::function<bool(CTableMeta&)> m_isHit;
    std::vector<LabelOwner> m_owners;
    std::vector<TraversedNode> m_traversed;
    std::vector<std::size_t> m_withoutLabel; // ranks of the nodes around the present one, outermost first
    Stage m_stage = Stage::BeforeRoot;
};

} // namespace KelvOsgTools::detail
