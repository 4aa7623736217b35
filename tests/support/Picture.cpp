#include "support/Picture.h"

#include <osgDB/FileUtils>
#include <osgDB/ReadFile>
#include <osgDB/WriteFile>

#include <algorithm>
#include <cstdlib>
#include <ostream>

namespace kelvtest {
namespace {

std::string keepFailure(const osg::Image& picture, const std::string& name, const std::string& role)
{
    std::string flat = name;
    std::replace(flat.begin(), flat.end(), '/', '-');
    osgDB::makeDirectory(KELVOSGTOOLS_PICTURE_FAILURES_DIR);
    std::string file = std::string(KELVOSGTOOLS_PICTURE_FAILURES_DIR) + "/" + flat + "-" + role + ".png";
    osgDB::writeImageFile(picture, file);
    return file;
}

osg::ref_ptr<osg::Image> differencePicture(const osg::Image& a, const osg::Image& b)
{
    osg::ref_ptr<osg::Image> result = new osg::Image;
    result->allocateImage(a.s(), a.t(), 1, GL_RGB, GL_UNSIGNED_BYTE);
    for (int y = 0; y < a.t(); ++y)
        for (int x = 0; x < a.s(); ++x) {
            const int value = std::min(255, 8 * difference(pixelAt(a, x, y), pixelAt(b, x, y)));
            std::fill_n(result->data(static_cast<unsigned>(x), static_cast<unsigned>(y)), 3,
                        static_cast<unsigned char>(value));
        }
    return result;
}

} // namespace

bool operator==(const Pixel& a, const Pixel& b)
{
    return a.r == b.r && a.g == b.g && a.b == b.b;
}

std::ostream& operator<<(std::ostream& stream, const Pixel& pixel)
{
    return stream << "(" << pixel.r << ", " << pixel.g << ", " << pixel.b << ")";
}

Pixel pixelAt(const osg::Image& picture, int x, int y)
{
    const unsigned char* const data = picture.data(static_cast<unsigned>(x), static_cast<unsigned>(y));
    return {data[0], data[1], data[2]};
}

int difference(const Pixel& a, const Pixel& b)
{
    return std::max({std::abs(a.r - b.r), std::abs(a.g - b.g), std::abs(a.b - b.b)});
}

std::ostream& operator<<(std::ostream& stream, const PixelBox& box)
{
    return stream << "x " << box.left << " to " << box.right << ", y " << box.bottom << " to " << box.top;
}

::testing::AssertionResult boxesNear(const PixelBox& a, const PixelBox& b, int pixels)
{
    const int farthest = std::max({std::abs(a.left - b.left), std::abs(a.right - b.right),
                                   std::abs(a.bottom - b.bottom), std::abs(a.top - b.top)});
    if (farthest <= pixels) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "boxes differ by " << farthest << " pixels: " << a << " and " << b;
}

osg::ref_ptr<osg::Image> cut(const osg::Image& picture, const PixelBox& box)
{
    osg::ref_ptr<osg::Image> part = new osg::Image;
    part->allocateImage(box.width(), box.height(), 1, GL_RGB, GL_UNSIGNED_BYTE);
    for (int y = 0; y < box.height(); ++y)
        std::copy_n(picture.data(static_cast<unsigned>(box.left), static_cast<unsigned>(box.bottom + y)),
                    3 * box.width(), part->data(0, static_cast<unsigned>(y)));
    return part;
}

PixelBox boxWhere(int width, int height, const std::function<bool(int x, int y)>& test)
{
    PixelBox box{width, height, -1, -1};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (test(x, y)) {
                box.left = std::min(box.left, x);
                box.right = std::max(box.right, x);
                box.bottom = std::min(box.bottom, y);
                box.top = std::max(box.top, y);
            }
    return box.right < 0 ? PixelBox{} : box;
}

PixelBox boxOfDifference(const osg::Image& picture, const Pixel& background, int tolerance)
{
    return boxWhere(picture.s(), picture.t(),
                    [&](int x, int y) { return difference(pixelAt(picture, x, y), background) > tolerance; });
}

PixelBox boxOfColour(const osg::Image& picture, const Pixel& colour, int tolerance)
{
    return boxWhere(picture.s(), picture.t(),
                    [&](int x, int y) { return difference(pixelAt(picture, x, y), colour) <= tolerance; });
}

int countPixels(const osg::Image& picture, const Pixel& colour, int tolerance)
{
    int count = 0;
    for (int y = 0; y < picture.t(); ++y)
        for (int x = 0; x < picture.s(); ++x)
            if (difference(pixelAt(picture, x, y), colour) <= tolerance) ++count;
    return count;
}

::testing::AssertionResult alike(const osg::Image& picture, const osg::Image& expected, const std::string& name,
                                 Tolerance tolerance)
{
    if (picture.s() != expected.s() || picture.t() != expected.t())
        return ::testing::AssertionFailure() << name << ": pictures differ in size";

    int different = 0;
    int largest = 0;
    for (int y = 0; y < picture.t(); ++y)
        for (int x = 0; x < picture.s(); ++x) {
            const int delta = difference(pixelAt(picture, x, y), pixelAt(expected, x, y));
            largest = std::max(largest, delta);
            if (delta > tolerance.perChannel) ++different;
        }
    if (different <= tolerance.share * picture.s() * picture.t()) return ::testing::AssertionSuccess();

    keepFailure(expected, name, "expected");
    keepFailure(*differencePicture(picture, expected), name, "difference");
    return ::testing::AssertionFailure() << name << ": " << different << " pixels differ, by at most " << largest
                                         << "; see " << keepFailure(picture, name, "rendered");
}

::testing::AssertionResult matchesStored(const osg::Image& picture, const std::string& path, Tolerance tolerance)
{
    const std::size_t slash = path.find('/');
    const std::string folder = std::string(KELVOSGTOOLS_TESTS_DIR) + "/" + path.substr(0, slash) + "/pictures";
    const std::string file = folder + "/" + path.substr(slash + 1) + ".png";
    if (std::getenv("KELVOSGTOOLS_UPDATE_PICTURES")) {
        osgDB::makeDirectory(folder);
        osgDB::writeImageFile(picture, file);
    }
    const osg::ref_ptr<osg::Image> expected = osgDB::readRefImageFile(file);
    if (!expected) {
        return ::testing::AssertionFailure()
               << "no stored picture " << file << "; rendered: " << keepFailure(picture, path, "rendered");
    }
    return alike(picture, *expected, path, tolerance);
}

} // namespace kelvtest
