#include <KelvOsgTools/FeatureFunctions.h>

#include "picking/CountedGroup.h"
#include "picking/FeatureScene.h"
#include "picking/PickingViewers.h"
#include "support/ViewerBuilders.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

using namespace KelvOsgTools;
using namespace kelvtest;

namespace {

constexpr float kOnNothing = 10.0f;
constexpr float kOnMesh = 70.0f;
constexpr float kBelowText = 111.0f; // on the label of the dot in the middle

/// A scene with a dot in the middle and a group of the host's among the dots.
class CountedScene
{
public:
    CountedScene()
    {
        dot = m_scene.addDot("dot", osg::Vec3f(0, 0, 10));
        dot->getParent(0)->addChild(hosts);
        viewer = pixelViewer(m_scene.root, 200, 200);
        cullOnce(*viewer);
        hosts->count = 0;
    }

    osg::ref_ptr<CountedGroup> hosts = new CountedGroup;
    osg::ref_ptr<CAutoScaleSphereMeta> dot;
    osg::ref_ptr<osgViewer::Viewer> viewer;

private:
    FeatureScene m_scene;
};

void pickPoint(osgViewer::Viewer& viewer, float x, float y)
{
    osg::Vec3f point;
    getClickedPoint(&viewer, x, y, QString(), point);
}

void pickMesh(osgViewer::Viewer& viewer, float x, float y)
{
    osg::Vec3f point;
    getClickedPointToMeshData(&viewer, x, y, point, QStringLiteral("meshData"));
}

void pickDot(osgViewer::Viewer& viewer, float x, float y)
{
    osg::Vec3f point;
    CAutoScaleSphereMeta* dot = nullptr;
    getClickedPointToMeshDataAndDotFeature(&viewer, listOf({"dot"}), x, y, point, dot, QStringLiteral("meshData"));
}

void pickFeature(osgViewer::Viewer& viewer, float x, float y)
{
    osg::Vec3f point;
    CFeatureMetaObject* feature = nullptr;
    featureType kind = featureAll;
    std::vector<osg::Vec3f> points;
    getIntersectionToFeatureBranch(&viewer, listOf({"dot"}), x, y, featureAll, point, feature, kind, points);
}

struct Pick
{
    const char* name;
    std::function<void(osgViewer::Viewer&, float, float)> at;
    int walksOnNothing;
    int walksOnMesh;
    int walksOnLabel;
};

class WalksOf : public ::testing::TestWithParam<Pick>
{
protected:
    /// How often the host's group is visited by a pick there.
    int walksAt(float x, float y)
    {
        m_scene.hosts->count = 0;
        GetParam().at(*m_scene.viewer, x, y);
        return m_scene.hosts->count;
    }

private:
    CountedScene m_scene;
};

} // namespace

TEST_P(WalksOf, APickAreAsManyAsItHasWaysToFindSomething)
{
    EXPECT_EQ(walksAt(kOnNothing, kOnNothing), GetParam().walksOnNothing);
    EXPECT_EQ(walksAt(kOnMesh, kOnMesh), GetParam().walksOnMesh);
    EXPECT_EQ(walksAt(100.0f, kBelowText), GetParam().walksOnLabel);
}

INSTANTIATE_TEST_SUITE_P(Pick, WalksOf,
                         ::testing::Values(Pick{"Point", pickPoint, 1, 1, 1},      // one ray
                                           Pick{"Mesh", pickMesh, 1, 0, 0},        // a ray, unless the mesh is hit
                                           Pick{"Dot", pickDot, 2, 2, 1},          // labels, then a ray
                                           Pick{"Feature", pickFeature, 3, 3, 1}), // labels, a box, a ray
                         [](const auto& test) { return std::string(test.param.name); });
