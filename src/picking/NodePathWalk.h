#pragma once

#include "foundation/UserValues.h"

#include <osg/Node>

namespace KelvOsgTools::detail {

/// The kind that a walk along a node path has met last.
class RunningKind
{
public:
    /// Takes over the "feature_type" of a node that has one.
    int pass(const osg::Node& node)
    {
        m_kind = featureTypeOf(node).value_or(m_kind);
        return m_kind;
    }

private:
    int m_kind = kPartOfFeature; // no feature met yet counts like a part of one
};

/// Calls visit(node, running kind) for the nodes of a hit from the drawable's parent up to the root,
/// until it answers true.
/// @return whether it did
template <typename Visit>
bool walkUp(const osg::NodePath& path, RunningKind& kind, Visit&& visit)
{
    auto node = path.rbegin();
    // A drawable without a geode stands on its own path, one in a geode does not: pass over it in
    // either case.
    if (node != path.rend() && (*node)->asDrawable()) ++node;
    for (; node != path.rend(); ++node)
        if (visit(**node, kind.pass(**node))) return true;
    return false;
}

} // namespace KelvOsgTools::detail
