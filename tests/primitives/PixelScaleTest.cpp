#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/CTableMeta.h>

#include "support/Records.h"
#include "support/ViewerBuilders.h"

#include <osg/AutoTransform>
#include <osg/Math>
#include <osg/NodeVisitor>
#include <osgViewer/Viewer>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

constexpr int kWidth = 400;
constexpr int kHeight = 300;
constexpr double kTolerance = 1e-6;

osg::ref_ptr<osg::AutoTransform> labelTransform()
{
    return new CTableMeta(labelSaying("A label"));
}

osg::ref_ptr<osg::AutoTransform> dotTransform()
{
    const osg::ref_ptr<osg::Group> dot = new CAutoScaleSphereMeta(dotAt(osg::Vec3f()));
    return dynamic_cast<osg::AutoTransform*>(dot->getChild(0));
}

struct Kind
{
    const char* name;
    osg::ref_ptr<osg::AutoTransform> (*make)();
};

/// Of the transforms whose unit is a pixel.
class PixelScale : public ::testing::TestWithParam<Kind>
{
protected:
    /// The scale that a viewer's cull gives the transform.
    double scaleIn(osgViewer::Viewer& viewer)
    {
        cullOnce(viewer);
        EXPECT_EQ(transform->getScale().x(), transform->getScale().y());
        EXPECT_EQ(transform->getScale().x(), transform->getScale().z());
        return transform->getScale().x();
    }

    double scaleInPixelViewer() { return scaleIn(*pixelViewer(transform, kWidth, kHeight)); }

    osg::ref_ptr<osg::AutoTransform> transform = GetParam().make();
};

TEST_P(PixelScale, IsOneWhereAUnitIsAPixel)
{
    EXPECT_NEAR(scaleInPixelViewer(), 1.0, kTolerance);
}

TEST_P(PixelScale, FollowsTheDistanceInPerspective)
{
    transform->setPosition(osg::Vec3d(3.0, 2.0, 40.0));
    const double unitsFromBottomToTop = 2.0 * (100.0 - 40.0) * std::tan(osg::DegreesToRadians(15.0));
    EXPECT_NEAR(scaleIn(*perspectiveViewer(transform, kWidth, kHeight, 100.0)), unitsFromBottomToTop / kHeight,
                kTolerance);
}

TEST_P(PixelScale, IsTheMeanOfBothDirections)
{
    const osg::ref_ptr<osgViewer::Viewer> viewer = pixelViewer(transform, kWidth, kHeight);
    viewer->getCamera()->setProjectionMatrixAsOrtho(-kWidth / 2.0, kWidth / 2.0, -kHeight, kHeight, 1.0, 200.0);
    EXPECT_NEAR(scaleIn(*viewer), 1.0 / std::sqrt((1.0 + 0.25) / 2.0), kTolerance);
}

TEST_P(PixelScale, IsThatOfTheLatestView)
{
    const osg::ref_ptr<osgViewer::Viewer> viewer = pixelViewer(transform, kWidth, kHeight);
    const osg::ref_ptr<osgViewer::Viewer> close = pixelViewer(transform, 2 * kWidth, 2 * kHeight);
    close->getCamera()->setProjectionMatrixAsOrtho(-kWidth / 2.0, kWidth / 2.0, -kHeight / 2.0, kHeight / 2.0, 1.0,
                                                   200.0);
    for (int round = 0; round < 2; ++round) {
        EXPECT_NEAR(scaleIn(*viewer), 1.0, kTolerance);
        EXPECT_NEAR(scaleIn(*close), 0.5, kTolerance);
    }
}

TEST_P(PixelScale, RecoversFromAViewOfNoNumbers)
{
    const osg::ref_ptr<osgViewer::Viewer> broken = pixelViewer(transform, kWidth, kHeight);
    broken->getCamera()->setViewMatrix(osg::Matrixd::scale(osg::Vec3d(1, 1, 1) * std::nan("")));
    cullOnce(*broken);
    EXPECT_NEAR(scaleInPixelViewer(), 1.0, kTolerance);
}

TEST_P(PixelScale, IsLeftToOpenSceneGraphInThePlaneOfTheEye)
{
    transform->setPosition(osg::Vec3d(5.0, 0.0, 100.0));
    const osg::ref_ptr<osg::AutoTransform> stock = new osg::AutoTransform;
    stock->setAutoScaleToScreen(true);
    stock->setPosition(transform->getPosition());
    const double scale = scaleIn(*perspectiveViewer(transform, kWidth, kHeight, 100.0));
    cullOnce(*perspectiveViewer(stock, kWidth, kHeight, 100.0));
    EXPECT_EQ(scale, stock->getScale().x());
}

TEST_P(PixelScale, KeepsToTheLeastScaleOfAHost)
{
    transform->setMinimumScale(2.0);
    EXPECT_EQ(scaleInPixelViewer(), 2.0);
}

TEST_P(PixelScale, KeepsToTheLargestScaleOfAHost)
{
    transform->setMaximumScale(0.5);
    EXPECT_EQ(scaleInPixelViewer(), 0.5);
}

TEST_P(PixelScale, IsAsSetWithoutAutoScaling)
{
    transform->setAutoScaleToScreen(false);
    transform->setScale(3.0);
    EXPECT_EQ(scaleInPixelViewer(), 3.0);
}

TEST_P(PixelScale, OfTheLatestCullHoldsForOtherVisitors)
{
    const osg::ref_ptr<osgViewer::Viewer> viewer = pixelViewer(transform, kWidth, kHeight);
    viewer->getCamera()->setProjectionMatrixAsOrtho(-kWidth, kWidth, -kHeight, kHeight, 1.0, 200.0);
    cullOnce(*viewer);
    osg::NodeVisitor other;
    osg::Matrixd toWorld;
    osg::Matrixd toLocal;
    transform->computeLocalToWorldMatrix(toWorld, &other);
    transform->computeWorldToLocalMatrix(toLocal, nullptr);
    EXPECT_NEAR(toWorld(0, 0), 2.0, kTolerance);
    EXPECT_NEAR(toLocal(0, 0), 0.5, kTolerance);
}

class PixelScaleTurned : public ::testing::TestWithParam<osg::AutoTransform::AutoRotateMode>
{};

/// Looks at the origin from the side.
osg::ref_ptr<osgViewer::Viewer> viewerFromTheSide(osg::Node* scene)
{
    osg::ref_ptr<osgViewer::Viewer> viewer = pixelViewer(scene, kWidth, kHeight);
    viewer->getCamera()->setViewMatrixAsLookAt(osg::Vec3d(80, 30, 50), osg::Vec3d(), osg::Y_AXIS);
    return viewer;
}

TEST_P(PixelScaleTurned, IsOneWhereAUnitIsAPixel)
{
    const osg::ref_ptr<osg::AutoTransform> label = labelTransform();
    label->setAutoRotateMode(GetParam());
    cullOnce(*viewerFromTheSide(label));
    EXPECT_NEAR(label->getScale().x(), 1.0, kTolerance);
}

TEST_P(PixelScaleTurned, TurnsAsOpenSceneGraphDoes)
{
    const osg::ref_ptr<osg::AutoTransform> label = labelTransform();
    const osg::ref_ptr<osg::AutoTransform> stock = new osg::AutoTransform;
    for (const auto& transform : {label, stock}) {
        transform->setRotation(osg::Quat(0.3, osg::Vec3d(1.0, 2.0, 3.0)));
        transform->setAutoRotateMode(GetParam());
        cullOnce(*viewerFromTheSide(transform));
    }
    EXPECT_EQ(label->getRotation(), stock->getRotation());
}

INSTANTIATE_TEST_SUITE_P(Modes, PixelScaleTurned,
                         ::testing::Values(osg::AutoTransform::NO_ROTATION, osg::AutoTransform::ROTATE_TO_SCREEN,
                                           osg::AutoTransform::ROTATE_TO_CAMERA, osg::AutoTransform::ROTATE_TO_AXIS));

INSTANTIATE_TEST_SUITE_P(Kinds, PixelScale, ::testing::Values(Kind{"Label", labelTransform}, Kind{"Dot", dotTransform}),
                         [](const auto& kind) { return kind.param.name; });

} // namespace
