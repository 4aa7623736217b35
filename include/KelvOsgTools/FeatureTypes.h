#pragma once

namespace KelvOsgTools {

/// Kind of a feature; stored on every primitive as the `int` user value "feature_type".
///
/// The value -1 stands on nodes that belong to a feature without being one (a plane's normal
/// arrows); no search by kind finds them.
enum featureType : int
{
    featureAll = 0,    ///< all features; as a root: the common root "featureData"
    featureDot = 1,    ///< CAutoScaleSphereMeta; root "featureDotData"
    featureLine = 2,   ///< CArrowMeta; root "featureLineData"
    featurePlane = 3,  ///< CPlaneMeta; root "featurePlaneData"
    featureTable = 4,  ///< CTableMeta; root "featureTableData"
    featureFlagDot = 5 ///< CFlagAutoScaleSphereMeta; has no root of its own
};

/// What a primitive's setState() receives.
///
/// Only the last two colour a primitive, in the configured colours of its kind. Every other state
/// paints it opaque black; no state brings the colour of its record back.
///
/// @image html states.png "Features that are new, and in the four states"
/// @snippet feature_recipes/main.cpp own colour
enum featureState : int
{
    featureStateNone = 0,       ///< opaque black
    featureStateNormal = 1,     ///< opaque black; the state of every new primitive
    featureStateSelected = 2,   ///< `selectedColor` of the kind's configuration
    featureStateHighlighted = 3 ///< `highlightedColor` of the kind's configuration
};

/// Language of label texts, a Windows language identifier.
///
/// The library keeps the value for the host and never interprets it: any int may be cast to it.
enum languageType : int
{
    languageEnglishUnitedStates = 1033
};

} // namespace KelvOsgTools
