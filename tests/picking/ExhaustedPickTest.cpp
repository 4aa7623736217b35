#include <KelvOsgTools/FeatureFunctions.h>

#include "picking/FeatureScene.h"
#include "picking/PickingViewers.h"
#include "support/ViewerBuilders.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <string>

namespace {

long allocationsUntilFailure = 0; // 0: none fails

} // namespace

void* operator new(std::size_t size)
{
    if (allocationsUntilFailure > 0 && --allocationsUntilFailure == 0) throw std::bad_alloc();
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
using namespace kelvtest;

const osg::Vec3f kUntouched(7.0f, 8.0f, 9.0f);

/// What a pick answers, and what it writes.
struct Answer
{
    bool isHit = false;
    osg::Vec3f point = kUntouched;
    CFeatureMetaObject* feature = nullptr;
    featureType kind = featureTable;
    std::vector<osg::Vec3f> points;

    bool operator==(const Answer& other) const
    {
        return isHit == other.isHit && point == other.point && feature == other.feature && kind == other.kind &&
               points == other.points;
    }
};

using PickAt = std::function<void(osgViewer::Viewer*, const QList<QVariant>&, float, float, Answer&)>;

void pickPoint(osgViewer::Viewer* viewer, const QList<QVariant>&, float x, float y, Answer& answer)
{
    answer.isHit = getClickedPoint(viewer, x, y, QString(), answer.point);
}

void pickMesh(osgViewer::Viewer* viewer, const QList<QVariant>&, float x, float y, Answer& answer)
{
    answer.isHit = getClickedPointToMeshData(viewer, x, y, answer.point, QStringLiteral("meshData"));
}

void pickDot(osgViewer::Viewer* viewer, const QList<QVariant>& features, float x, float y, Answer& answer)
{
    CAutoScaleSphereMeta* dot = nullptr;
    answer.isHit =
        getClickedPointToMeshDataAndDotFeature(viewer, features, x, y, answer.point, dot, QStringLiteral("meshData"));
    answer.feature = dot;
}

void pickFeature(osgViewer::Viewer* viewer, const QList<QVariant>& features, float x, float y, Answer& answer)
{
    answer.isHit = getIntersectionToFeatureBranch(viewer, features, x, y, featureAll, answer.point, answer.feature,
                                                  answer.kind, answer.points);
}

struct NamedPick
{
    const char* name;
    PickAt at;
};

class ExhaustedMemoryInAPick : public ::testing::TestWithParam<NamedPick>
{};

TEST_P(ExhaustedMemoryInAPick, IsAMissThatTouchesNothing)
{
    FeatureScene scene;
    scene.addDot("dot", osg::Vec3f(0, 0, 10));
    scene.addLine("line", osg::Vec3f(-40, 30, 10), osg::Vec3f(40, 30, 10));
    scene.addPlane("plane", osg::Vec3f(0, -30, 10), 8.0f);
    const osg::ref_ptr<osgViewer::Viewer> viewer = pixelViewer(scene.root, 200, 200);
    cullOnce(*viewer);
    const QList<QVariant> listed = listOf({"dot", "line", "plane"});

    // On the dot's label, the dot, the line, the plane, the mesh, and nothing.
    for (const auto& [x, y] : {std::pair{100.0f, 111.0f},
                               {100.0f, 100.0f},
                               {80.0f, 131.0f},
                               {103.0f, 73.0f},
                               {65.0f, 65.0f},
                               {10.0f, 10.0f}}) {
        Answer sound;
        GetParam().at(viewer, listed, x, y, sound);
        for (long n = 1;; n += 1 + n / 50) { // a box around a sphere asks 25,000 times
            Answer answer;
            answer.points.reserve(1); // that of a dot fits, two of a line do not
            allocationsUntilFailure = n;
            EXPECT_NO_THROW(GetParam().at(viewer, listed, x, y, answer));
            const bool failed = allocationsUntilFailure == 0;
            allocationsUntilFailure = 0;
            if (!failed) {
                EXPECT_EQ(answer, sound);
                EXPECT_GT(n, 1) << "nothing asked for memory";
                break;
            }
            // A miss, or as if the memory had not been needed.
            EXPECT_TRUE(answer == Answer() || answer == sound) << "allocation " << n << " at " << x << ' ' << y;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Picks, ExhaustedMemoryInAPick,
                         ::testing::Values(NamedPick{"Point", pickPoint}, NamedPick{"Mesh", pickMesh},
                                           NamedPick{"Dot", pickDot}, NamedPick{"Feature", pickFeature}),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
