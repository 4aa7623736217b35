#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include <gtest/gtest.h>

#include <malloc.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <string>

namespace {

std::size_t bytesAsked = 0;

} // namespace

void* operator new(std::size_t size)
{
    bytesAsked += size;
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

struct Sort
{
    const char* name;
    std::size_t mostBytes; // of one feature with its label
    std::function<osg::ref_ptr<osg::Group>(const osg::ref_ptr<osg::Group>& scene, int index)> add;
};

QString nameOf(int index)
{
    return QStringLiteral("feature-%1").arg(index);
}

osg::Vec3f placeOf(int index)
{
    return {static_cast<float>(index), 0.5f * static_cast<float>(index), 0.0f};
}

osg::ref_ptr<osg::Group> addDot(const osg::ref_ptr<osg::Group>& scene, int index)
{
    return createAutoScaleShpereAndTable(nameOf(index), scene, placeOf(index), 1, QStringLiteral("Point"), index,
                                         featureStateNormal, false);
}

osg::ref_ptr<osg::Group> addFlagDot(const osg::ref_ptr<osg::Group>& scene, int index)
{
    return createFlagAutoScaleShpereAndTable(nameOf(index), scene, placeOf(index), 1, QStringLiteral("Point"), index,
                                             featureDot, true, false);
}

/// Each arrow has a length of its own, so that no two could share their vertices.
osg::ref_ptr<osg::Group> addArrow(const osg::ref_ptr<osg::Group>& scene, int index, bool isLineArrow)
{
    CArrowMeta::structArrowMeta meta;
    meta.name = nameOf(index).toStdString();
    meta.startPos = placeOf(index);
    meta.endPos = meta.startPos + osg::Vec3f(10.0f + 0.001f * static_cast<float>(index), 5.0f, 0.0f);
    meta.isLineArrow = isLineArrow;
    return createArrowAndTable(featureStateNormal, meta, scene, 1, QStringLiteral("Line"), index);
}

osg::ref_ptr<osg::Group> addPlane(const osg::ref_ptr<osg::Group>& scene, int index)
{
    const osg::Vec3f corner = placeOf(index);
    return createPlaneAndTable(featureStateNormal, nameOf(index), scene,
                               {corner, corner + osg::Vec3f(9.0f, 0.0f, 0.0f), corner + osg::Vec3f(9.0f, 7.0f, 0.0f),
                                corner + osg::Vec3f(0.0f, 7.0f, 0.0f)},
                               osg::Z_AXIS, 1, QStringLiteral("Plane"), index);
}

class CostOf : public ::testing::TestWithParam<Sort>
{};

TEST_P(CostOf, AFeatureInMemoryIsBounded)
{
    constexpr int kWarmUp = 100; // loads fonts and glyphs, and what equals share
    constexpr int kCount = 400;
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (int i = 0; i < kWarmUp; ++i) GetParam().add(scene, i);
    const std::size_t before = mallinfo2().uordblks;
    for (int i = kWarmUp; i < kWarmUp + kCount; ++i) GetParam().add(scene, i);
    EXPECT_LE((mallinfo2().uordblks - before) / kCount, GetParam().mostBytes);
}

TEST_P(CostOf, AStateChangeIsNoNewGeometry)
{
    // Colours and line widths are made anew. A sphere's vertices would be 600,000 bytes, an arrow's 5,000.
    constexpr std::size_t kMostBytes = 3000;
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    auto& feature = dynamic_cast<CFeatureMetaObject&>(*GetParam().add(scene, 1));
    for (const featureState state : {featureStateHighlighted, featureStateSelected, featureStateHighlighted}) {
        const std::size_t before = bytesAsked;
        feature.setState(state);
        const std::size_t asked = bytesAsked - before;
        EXPECT_GT(asked, 0u) << "state " << state;
        EXPECT_LE(asked, kMostBytes) << "state " << state;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Features, CostOf,
    ::testing::Values(Sort{"Dot", 30000, addDot}, Sort{"FlagDot", 30000, addFlagDot},
                      Sort{"LineArrow", 20000, [](const auto& scene, int i) { return addArrow(scene, i, true); }},
                      Sort{"SolidArrow", 30000, [](const auto& scene, int i) { return addArrow(scene, i, false); }},
                      Sort{"Plane", 30000, addPlane}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
