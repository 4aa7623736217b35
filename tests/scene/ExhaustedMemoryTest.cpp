#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include "support/NodeBuilders.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

// The allocation, counted from now, that fails; 0 means none does.
long allocationsUntilFailure = 0;

// What the next call of the library is to start with; arguments of its callers are none of its business.
long nextAllocationsUntilFailure = 0;

void arm()
{
    allocationsUntilFailure = nextAllocationsUntilFailure;
}

bool failsNow()
{
    return allocationsUntilFailure > 0 && --allocationsUntilFailure == 0;
}

} // namespace

void* operator new(std::size_t size)
{
    if (failsNow()) throw std::bad_alloc();
    if (void* const memory = std::malloc(size > 0 ? size : 1)) return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace {
using namespace KelvOsgTools;

using Assembly = std::function<osg::ref_ptr<osg::Group>(const osg::ref_ptr<osg::Group>&)>;

osg::ref_ptr<osg::Group> dotIn(const osg::ref_ptr<osg::Group>& scene)
{
    arm();
    return createAutoScaleShpereAndTable(QStringLiteral("feature"), scene, osg::Vec3f(), 1, QStringLiteral("Point"), 1,
                                         featureStateSelected, false);
}

osg::ref_ptr<osg::Group> flagDotIn(const osg::ref_ptr<osg::Group>& scene)
{
    arm();
    return createFlagAutoScaleShpereAndTable(QStringLiteral("feature"), scene, osg::Vec3f(), 1, QStringLiteral("Point"),
                                             1, featureLine, true, false);
}

osg::ref_ptr<osg::Group> arrowIn(const osg::ref_ptr<osg::Group>& scene, bool isLineArrow)
{
    CArrowMeta::structArrowMeta meta;
    meta.name = "feature";
    meta.endPos.set(1.0f, 2.0f, 3.0f);
    meta.isLineArrow = isLineArrow;
    arm();
    return createArrowAndTable(featureStateSelected, meta, scene, 1, QStringLiteral("line"), 1);
}

osg::ref_ptr<osg::Group> planeIn(const osg::ref_ptr<osg::Group>& scene)
{
    std::vector<osg::Vec3f> corners = {osg::Vec3f(), osg::X_AXIS, osg::X_AXIS + osg::Y_AXIS, osg::Y_AXIS};
    arm();
    return createPlaneAndTable(featureStateSelected, QStringLiteral("feature"), scene, std::move(corners), osg::Z_AXIS,
                               1, QStringLiteral("Plane"), 1);
}

osg::ref_ptr<osg::Group> sphereIn(const osg::ref_ptr<osg::Group>& scene)
{
    arm();
    const osg::ref_ptr<osg::Node> sphere = findOrCreateShpere("feature", scene, osg::Vec3f());
    return sphere ? sphere->asGroup() : nullptr;
}

struct NamedAssembly
{
    const char* name;
    Assembly build;
};

class ExhaustedMemory : public ::testing::TestWithParam<NamedAssembly>
{};

/// Fails the first, the second, ... allocation of an assembly in turn, until one passes without.
/// @param check called after every failed assembly
void failEachAllocation(const Assembly& build, const osg::ref_ptr<osg::Group>& scene,
                        const std::function<void(long)>& check)
{
    for (long n = 1;; ++n) {
        nextAllocationsUntilFailure = n;
        const osg::ref_ptr<osg::Group> feature = build(scene);
        const bool failed = allocationsUntilFailure == 0;
        allocationsUntilFailure = 0;
        nextAllocationsUntilFailure = 0;
        if (!failed) {
            EXPECT_TRUE(feature.valid());
            return;
        }
        // What asks for memory that it can do without (a cache, say) may survive a failure.
        if (feature) return;
        check(n);
    }
}

TEST_P(ExhaustedMemory, LeavesAnEmptySceneEmpty)
{
    GetParam().build(new osg::Group); // loads what is loaded once per process
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    failEachAllocation(GetParam().build, scene,
                       [&](long n) { EXPECT_EQ(scene->getNumChildren(), 0u) << "allocation " << n; });
}

TEST_P(ExhaustedMemory, LeavesTheFeatureThatWasToBeReplaced)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> former = GetParam().build(scene);
    const osg::ref_ptr<osg::Group> siblings = former->getParent(0);
    failEachAllocation(GetParam().build, scene, [&](long n) {
        ASSERT_EQ(siblings->getNumChildren(), 1u) << "allocation " << n;
        EXPECT_EQ(siblings->getChild(0), former) << "allocation " << n;
        EXPECT_EQ(former->getNumParents(), 1u) << "allocation " << n;
    });
}

INSTANTIATE_TEST_SUITE_P(Assemblies, ExhaustedMemory,
                         ::testing::Values(NamedAssembly{"Dot", dotIn}, NamedAssembly{"FlagDot", flagDotIn},
                                           NamedAssembly{"LineArrow", [](const auto& s) { return arrowIn(s, true); }},
                                           NamedAssembly{"SolidArrow", [](const auto& s) { return arrowIn(s, false); }},
                                           NamedAssembly{"Plane", planeIn}, NamedAssembly{"Sphere", sphereIn}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(ExhaustedMemoryOfALabel, GivesNone)
{
    const CTableMeta::structTableMeta record;
    createTable(record); // loads what is loaded once per process
    nextAllocationsUntilFailure = 1;
    arm();
    const osg::ref_ptr<osg::Group> label = createTable(record);
    EXPECT_EQ(allocationsUntilFailure, 0) << "no allocation failed";
    allocationsUntilFailure = 0;
    nextAllocationsUntilFailure = 0;
    EXPECT_FALSE(label.valid());
}

} // namespace
