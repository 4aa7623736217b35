#pragma once

#include "foundation/SceneMarks.h"

#include <osg/Object>
#include <osg/UserDataContainer>
#include <osg/ValueObject>

#include <optional>

namespace KelvOsgTools::detail {

/// A user value of exactly the type T; empty if there is none of that key or it has another type.
template <typename T>
std::optional<T> exactUserValue(const osg::Object& object, const char* key)
{
    const osg::UserDataContainer* container = object.getUserDataContainer();
    const osg::Object* value = container ? container->getUserObject(key) : nullptr;
    const auto* typed = dynamic_cast<const osg::TemplateValueObject<T>*>(value);
    if (!typed) return std::nullopt;
    return typed->getValue();
}

/// The "feature_type" of a node; empty where it is missing or no int.
inline std::optional<int> featureTypeOf(const osg::Object& object)
{
    return exactUserValue<int>(object, kFeatureTypeKey);
}

/// Whether the host marked a node as temporary.
inline bool isTemporary(const osg::Object& object)
{
    return exactUserValue<bool>(object, kTemporaryKey).value_or(false);
}

} // namespace KelvOsgTools::detail
