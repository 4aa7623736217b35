#pragma once

#include <osg/Group>
#include <osg/ref_ptr>

#include <vector>

namespace gallery {

/// Something to draw: the file name of its picture, and what puts it into a scene. A unit is a pixel,
/// the origin is the middle of a picture of kWidth by kHeight pixels, z is up.
struct Subject
{
    const char* name;
    void (*addTo)(const osg::ref_ptr<osg::Group>& scene);
    bool isSeenFromTheFront = false; ///< true: along y; false: a little from the left and from above
};

constexpr int kWidth = 520;
constexpr int kHeight = 200;

const std::vector<Subject>& subjects();

} // namespace gallery
