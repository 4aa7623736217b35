#pragma once

#include <gtest/gtest.h>

#include <osg/Image>
#include <osg/Vec3f>
#include <osg/ref_ptr>

#include <functional>
#include <iosfwd>
#include <string>

namespace kelvtest {

/// Colour of one pixel, red, green and blue from 0 to 255; x to the right, y upwards.
struct Pixel
{
    int r = 0;
    int g = 0;
    int b = 0;
};
bool operator==(const Pixel& a, const Pixel& b);
std::ostream& operator<<(std::ostream& stream, const Pixel& pixel);

inline constexpr Pixel kWhite{255, 255, 255};
inline constexpr Pixel kBlack{0, 0, 0};
inline constexpr Pixel kRed{255, 0, 0};
inline constexpr Pixel kGreen{0, 255, 0};
inline constexpr Pixel kBlue{0, 0, 255};
inline constexpr Pixel kYellow{255, 255, 0};

Pixel pixelAt(const osg::Image& picture, int x, int y);

/// The largest difference of two pixels over their three channels.
int difference(const Pixel& a, const Pixel& b);

/// A box of pixels, bounds inclusive; empty (width and height 0) as it stands.
struct PixelBox
{
    int left = 0;
    int bottom = 0;
    int right = -1;
    int top = -1;
    int width() const { return right - left + 1; }
    int height() const { return top - bottom + 1; }
    bool isEmpty() const { return right < left; }
    /// Of the box's area, in pixels from the picture's lower left corner.
    double centreX() const { return (left + right + 1) * 0.5; }
    double centreY() const { return (bottom + top + 1) * 0.5; }
    /// The box without a margin on each side.
    PixelBox shrunk(int margin) const { return {left + margin, bottom + margin, right - margin, top - margin}; }
};
std::ostream& operator<<(std::ostream& stream, const PixelBox& box);

/// Equal within so many pixels at each of the four edges.
::testing::AssertionResult boxesNear(const PixelBox& a, const PixelBox& b, int pixels);

/// The part of a picture inside a box that lies in it.
osg::ref_ptr<osg::Image> cut(const osg::Image& picture, const PixelBox& box);

/// The box around all pixels x, y for which test holds; empty if there is none.
PixelBox boxWhere(int width, int height, const std::function<bool(int x, int y)>& test);

/// The box around all pixels that differ from the background by more than tolerance.
PixelBox boxOfDifference(const osg::Image& picture, const Pixel& background, int tolerance = 8);

/// The box around all pixels that differ from the colour by at most tolerance.
PixelBox boxOfColour(const osg::Image& picture, const Pixel& colour, int tolerance = 8);

int countPixels(const osg::Image& picture, const Pixel& colour, int tolerance = 8);

/// How much a picture may differ from the stored one.
struct Tolerance
{
    int perChannel = 2; ///< up to this a pixel counts as equal: blends and light are rounded
    double share = 0.0; ///< of all pixels that may count as different
};

/// Compares a picture with the stored one, tests/ROOM/pictures/NAME.png. A failure keeps the
/// rendered, the expected and a difference picture in the build folder. With the environment
/// variable KELVOSGTOOLS_UPDATE_PICTURES set it stores the picture instead: look at it then.
/// @param path ROOM/NAME
::testing::AssertionResult matchesStored(const osg::Image& picture, const std::string& path, Tolerance tolerance = {});

/// Compares two pictures of equal size; a failure keeps both and their difference under the name.
::testing::AssertionResult alike(const osg::Image& picture, const osg::Image& expected, const std::string& name,
                                 Tolerance tolerance = {});

} // namespace kelvtest
