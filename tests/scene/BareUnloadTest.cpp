#include "scene/OpenedPlugin.h"

#include <gtest/gtest.h>

// A program without Qt and OpenSceneGraph: they too come with the library.
namespace {
using namespace kelvtest;

constexpr int kRounds = 100;

TEST(UnloadingFromABareProgram, WorksTimeAndAgain)
{
    ASSERT_FALSE(isInMemory("libosg.so"));
    ASSERT_FALSE(isInMemory("libQt5Core.so"));
    for (int i = 0; i < kRounds; ++i) {
        {
            const OpenedPlugin library(KELVOSGTOOLS_LIBRARY);
            ASSERT_TRUE(library);
        }
        ASSERT_FALSE(isInMemory("libKelvOsgTools.so")) << i;
    }
}

TEST(UnloadingFromABareProgram, WorksTimeAndAgainAfterUse)
{
    for (int i = 0; i < kRounds; ++i) {
        {
            const OpenedPlugin plugin(KELVOSGTOOLS_OTHER_TEST_PLUGIN); // which exports no more than it must
            ASSERT_TRUE(plugin);
            ASSERT_EQ(plugin.use(), 0);
        }
        ASSERT_FALSE(isInMemory("libKelvOsgTools.so")) << i;
    }
}

} // namespace
