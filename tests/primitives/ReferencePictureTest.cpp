#include "support/Picture.h"
#include "support/PictureRig.h"

#include <gtest/gtest.h>

#include <osgDB/FileNameUtils>
#include <osgDB/FileUtils>
#include <osgDB/ReadFile>

#include <cstdlib>

namespace {
using namespace kelvtest;

/// Smoothed edges, should another driver place its samples otherwise. A selected flag dot drawn in its
/// usual size, say, changes more.
constexpr Tolerance kSmoothedEdges{64, 0.001};

TEST(ReferencePictures, AreThoseThatTheGalleryDraws)
{
    const PictureRig displayIsThere(1, 1);
    const std::string drawn = testing::TempDir() + "gallery";
    ASSERT_TRUE(osgDB::makeDirectory(drawn));
    ASSERT_EQ(std::system((KELVOSGTOOLS_GALLERY " " + drawn).c_str()), 0);

    int pictures = 0;
    for (const std::string& file : osgDB::getDirectoryContents(KELVOSGTOOLS_REFERENCE_PICTURES)) {
        if (osgDB::getFileExtension(file) != "png") continue;
        // Its rectangle is as wide as the characters are in whatever font of the machine has them.
        if (file == "missing-characters.png") continue;
        const osg::ref_ptr<osg::Image> stored = osgDB::readRefImageFile(KELVOSGTOOLS_REFERENCE_PICTURES "/" + file);
        const osg::ref_ptr<osg::Image> picture = osgDB::readRefImageFile(drawn + "/" + file);
        ASSERT_TRUE(stored && picture) << file;
        EXPECT_TRUE(alike(*picture, *stored, "reference-" + osgDB::getNameLessExtension(file), kSmoothedEdges));
        ++pictures;
    }
    EXPECT_GT(pictures, 10);
}

} // namespace
