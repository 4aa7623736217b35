#pragma once

#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Group>
#include <osg/ref_ptr>

#include <cstddef>

namespace kelvbench {

/// What the benchmarks fill a scene with.
enum class Sort
{
    Dot,
    FlagDot,
    LineArrow,
    SolidArrow,
    Plane,
    BareTransform, ///< the floor: as many auto-scaled transforms and drawables, with shared arrays and state
    BareLabel      ///< the same with texts, in transforms that turn to the screen
};

// The window that they are drawn in: a unit is a pixel.
inline constexpr int kWidth = 1000;
inline constexpr int kHeight = 800;

/// A scene with that many of one sort, with names of their own, scattered over a square of 1000 by
/// 800 units around the origin. Lengths differ, so that arrows share no more than they would in a
/// host's scene.
osg::ref_ptr<osg::Group> sceneOf(Sort sort, int count);

/// The same scene as it would be without sharing: each sphere, cylinder, cone and text is a stock one of
/// its own. Not for what is bare.
osg::ref_ptr<osg::Group> straightforwardSceneOf(Sort sort, int count);

using SceneBuilder = osg::ref_ptr<osg::Group> (*)(Sort, int);

/// The group that holds them.
osg::ref_ptr<osg::Group> featuresOf(osg::Group& scene, Sort sort);

/// Bytes of the heap in use.
std::size_t heapInUse();

/// Bytes of the process in memory.
std::size_t residentMemory();

} // namespace kelvbench
