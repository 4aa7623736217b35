#include "scene/TreeWalk.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <sstream>

// Random calls on random scenes, compared with a model of the tree after each. To look further than the
// suite does: KELVOSGTOOLS_TREE_SEED, the first of the seeds, and KELVOSGTOOLS_TREE_STEPS for each;
// KELVOSGTOOLS_TREE_LOG tells every call before it is made.
namespace {
using namespace kelvtest;

constexpr unsigned int kSeeds = 8;

unsigned int fromEnvironment(const char* name, unsigned int otherwise)
{
    const char* const value = std::getenv(name);
    return value ? static_cast<unsigned int>(std::strtoul(value, nullptr, 10)) : otherwise;
}

std::string story(const Steps& steps)
{
    std::ostringstream log;
    const std::string failure = failureOf(steps, &log);
    return log.str() + failure;
}

class RandomTree : public ::testing::TestWithParam<unsigned int>
{};

TEST_P(RandomTree, IsWhatTheModelSaysAfterEachOfThousandsOfCalls)
{
    const unsigned int seed = fromEnvironment("KELVOSGTOOLS_TREE_SEED", 1) + GetParam();
    const Steps steps = randomSteps(seed, fromEnvironment("KELVOSGTOOLS_TREE_STEPS", 700));
    const std::string failure = failureOf(steps, std::getenv("KELVOSGTOOLS_TREE_LOG") ? &std::cerr : nullptr);
    if (!failure.empty()) FAIL() << "seed " << seed << ", " << failure << "\nshrunk to:\n" << story(shrunk(steps));
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomTree, ::testing::Range(0u, kSeeds));

TEST(RandomTreeItself, ComparesScenesThatHoldSomething)
{
    TreeWalk walk;
    for (const Step& step : randomSteps(1, 300)) ASSERT_EQ(walk.take(step), "");
    EXPECT_GT(walk.featuresMade(), 30);
}

TEST(RandomTreeItself, ShrinksAFailureToTheStepThatCausesIt)
{
    Steps steps = randomSteps(1, 200);
    steps.insert(steps.begin() + 150, tampering(1));
    EXPECT_EQ(failureOf(steps).rfind("step 150: ", 0), 0u);
    const Steps cause = shrunk(steps);
    ASSERT_EQ(cause.size(), 1u);
    EXPECT_EQ(cause[0].call, tampering(1).call);
}

} // namespace
