#pragma once

#include <KelvOsgTools/Export.h>
#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Switch>

namespace KelvOsgTools {

/// Base class of every feature primitive: a switch that takes a state.
///
/// The scene graph owns primitives through reference counting, as it owns any node.
class KELVOSGTOOLS_EXPORT CFeatureMetaObject : public osg::Switch
{
public:
    CFeatureMetaObject();
    ~CFeatureMetaObject() override;

    /// Shallow: the copy shares the children of other.
    CFeatureMetaObject(const CFeatureMetaObject& other);

    /// Shows a state of the feature. Does nothing here; primitives that can change their look
    /// override it.
    virtual void setState(featureState state);
};

} // namespace KelvOsgTools
