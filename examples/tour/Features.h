#pragma once

#include "Tour.h"

#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/FeatureTypes.h>

#include <array>

namespace tour {

/// @name The features of the tour on their places, in the states given, named "dot-1", "line-1", ...
/// @{
void addDots(Tour& tour, const std::array<KelvOsgTools::featureState, Tour::kDots>& states);
void addLines(Tour& tour, const std::array<KelvOsgTools::featureState, 4>& states);
void addPlanes(Tour& tour, const std::array<KelvOsgTools::featureState, Tour::kPlanes>& states);
/// @}

/// A dot anywhere on the mesh. The label is its number, with the state if that is not the normal one.
void addDot(Tour& tour, int number, const osg::Vec3f& point, KelvOsgTools::featureState state);

/// Makes a line a thin one, seen through whatever stands before it.
void makeThin(KelvOsgTools::CArrowMeta::structArrowMeta& record, const Tour& tour);

/// Whether a line was made thin; tells by the radius, which thin lines carry but do not show.
bool isThin(const KelvOsgTools::CArrowMeta::structArrowMeta& record, const Tour& tour);

/// The normal to pass for normal arrows of a given length: the library draws them as long as the
/// normal, times a fifth of the longer of the first two edges, or times 4, whichever is more.
osg::Vec3f normalForLength(const std::vector<osg::Vec3f>& corners, const osg::Vec3f& unitNormal, float length);

/// Length of the normal arrows in the tour, as a share of the mesh's radius.
constexpr float kNormalLength = 0.18f;

/// Labels draw in the render bin of their index. Planes draw in the transparent bin, number 10: what
/// is to stand before them needs a higher one.
constexpr int kLabelsBeforePlanes = 20;

} // namespace tour
