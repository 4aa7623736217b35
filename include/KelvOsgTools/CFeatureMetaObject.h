#pragma once

#include <KelvOsgTools/Export.h>
#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Switch>

namespace KelvOsgTools {

/// Base class of every feature primitive: a switch that takes a state.
///
/// The scene graph owns primitives through reference counting, as it owns any node.
///
/// @image html states.png "Features that are new, and in the four states"
/// @snippet gallery/Subjects.cpp CFeatureMetaObject
class KELVOSGTOOLS_EXPORT CFeatureMetaObject : public osg::Switch
{
public:
    CFeatureMetaObject(); ///< without children
    ~CFeatureMetaObject() override;

    /// Shallow: the copy shares the children of other.
    CFeatureMetaObject(const CFeatureMetaObject& other);

    /// Shows a state of the feature. Does nothing here; primitives that can change their look
    /// override it. Call it from the thread that owns the scene, between two frames.
    virtual void setState(featureState state);
};

} // namespace KelvOsgTools
