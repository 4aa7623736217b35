#pragma once

#include <KelvOsgTools/Export.h>

#include <osg/Switch>

namespace KelvOsgTools {

/// Grouping node of the feature tree: the common root, the root of a kind, or a named group.
///
/// Child 0 is an identity `osg::MatrixTransform` named "MatrixTransform". All content hangs under
/// that transform, never directly under the switch.
///
/// @snippet feature_recipes/main.cpp group
class KELVOSGTOOLS_EXPORT featureBaseNode : public osg::Switch
{
public:
    /// A node named "featureNodeBase" with its transform as only child.
    featureBaseNode();
    ~featureBaseNode() override;

    /// Shallow: the copy shares the transform of other and makes none of its own.
    featureBaseNode(const featureBaseNode& other);
};

} // namespace KelvOsgTools
