#include "scene/OpenedPlugin.h"

#include <gtest/gtest.h>

// A program without Qt and OpenSceneGraph: they too come with the library.
namespace {
using namespace kelvtest;

constexpr int kRounds = 100;

/// Once it has loaded plug-ins, OpenSceneGraph closes them when the program ends. Nobody else holding it by
/// then, it unloads itself with them, and goes on in code that is gone.
void keepOpenSceneGraph()
{
    const std::string path = pathInMemory("libosgDB.so");
    ASSERT_TRUE(dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE)) << dlerror();
}

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
            keepOpenSceneGraph();
            ASSERT_EQ(plugin.use(), 0);
        }
        ASSERT_FALSE(isInMemory("libKelvOsgTools.so")) << i;
    }
}

} // namespace
