#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/CSphereMeta.h>

#include "OrangeDot.h"
#include "support/PictureRig.h"
#include "support/PictureScenes.h"

#include <gtest/gtest.h>

#include <osg/AutoTransform>
#include <osg/Geode>
#include <osg/MatrixTransform>
#include <osg/ShapeDrawable>

#include <cmath>
#include <limits>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

osg::ref_ptr<osg::Image> pictureOf(osg::Node* node)
{
    PictureRig rig;
    rig.setScene(groupOf({node}));
    return rig.render();
}

/// The disc that a picture on white shows.
PixelBox discOf(const osg::Image& picture)
{
    return boxOfDifference(picture, kWhite);
}

// Size

struct DotView
{
    const char* name;
    float radius;
    double pixelsPerUnit;       // of a parallel projection
    double perspectiveDistance; // 0: parallel
    osg::Matrixd parent;
};

class DotSeenFrom : public PictureTest, public ::testing::WithParamInterface<DotView>
{};

TEST_P(DotSeenFrom, HasItsRadiusInPixelsAroundItsPoint)
{
    const osg::ref_ptr<osg::MatrixTransform> parent = new osg::MatrixTransform(GetParam().parent);
    parent->addChild(new CAutoScaleSphereMeta(dotRecord(GetParam().radius)));
    PictureRig rig;
    rig.setScene(parent);
    if (const double distance = GetParam().perspectiveDistance; distance > 0.0)
        rig.lookInPerspective(osg::Vec3d(0, -distance, 0), osg::Vec3d(), osg::Z_AXIS);
    else
        rig.lookInParallel(GetParam().pixelsPerUnit);
    const PixelBox disc = discOf(*rig.render());

    EXPECT_NEAR(disc.width(), 2 * GetParam().radius, 1); // one: either edge may fall half a pixel away
    EXPECT_NEAR(disc.height(), 2 * GetParam().radius, 1);
    EXPECT_NEAR(disc.centreX(), 100.0, 0.5);
    EXPECT_NEAR(disc.centreY(), 100.0, 0.5);
}

const osg::Matrixd kTurned = osg::Matrixd::rotate(1.0, osg::Vec3d(1, 2, 3));
INSTANTIATE_TEST_SUITE_P(Views, DotSeenFrom,
                         ::testing::Values(DotView{"Parallel", 3, 1, 0, {}}, DotView{"ParallelLarge", 60, 1, 0, {}},
                                           DotView{"ParallelNear", 8, 50, 0, {}},
                                           DotView{"ParallelFar", 8, 0.02, 0, {}},
                                           DotView{"PerspectiveNear", 8, 0, 2, {}},
                                           DotView{"PerspectiveFar", 8, 0, 20000, {}},
                                           DotView{"PerspectiveLarge", 40, 0, 2000, {}},
                                           DotView{"UnderAScaledParent", 8, 1, 0, osg::Matrixd::scale(9, 9, 9)},
                                           DotView{"UnderARotatedParent", 8, 1, 0, kTurned},
                                           DotView{"UnderAScaledAndRotatedParent", 20, 0, 500,
                                                   osg::Matrixd::scale(0.1, 0.1, 0.1) * kTurned}),
                         [](const auto& test) { return test.param.name; });

class DotPicture : public PictureTest
{};

TEST_F(DotPicture, StandsWhereItsPointIsProjected)
{
    PictureRig rig;
    rig.setScene(groupOf({new CAutoScaleSphereMeta(dotRecord(6, osg::Vec3f(30, 0, 20)))}));
    rig.lookInPerspective(osg::Vec3d(20, -300, 50), osg::Vec3d(), osg::Z_AXIS);
    const PixelBox disc = discOf(*rig.render());
    const osg::Vec3d expected = osg::Vec3d(30, 0, 20) * rig.toWindow();
    EXPECT_NEAR(disc.centreX(), expected.x(), 0.6); // a box of whole pixels
    EXPECT_NEAR(disc.centreY(), expected.y(), 0.6);
}

TEST_F(DotPicture, TransformsBackWhatItTransforms)
{
    const osg::ref_ptr<ThereAndBack> compare = new ThereAndBack;
    const osg::ref_ptr<osg::Group> dot = new CAutoScaleSphereMeta(dotRecord(8));
    const auto* const transform = dynamic_cast<osg::AutoTransform*>(dot->getChild(0));
    dot->getChild(0)->setCullCallback(compare);
    PictureRig rig;
    rig.setScene(groupOf({dot}));
    rig.render();

    EXPECT_NEAR((compare->moved - compare->point).length(), 0.0, 1e-4); // a unit is a pixel
    EXPECT_NEAR((compare->returned - compare->point).length(), 0.0, 1e-6);
    EXPECT_NEAR(transform->getScale().x(), 1.0, 1e-6);
}

TEST_F(DotPicture, LooksTheSameAsADeepCopy)
{
    const osg::ref_ptr<osg::Group> dot = new CAutoScaleSphereMeta(dotRecord(60));
    const osg::ref_ptr<osg::Node> copy = osg::clone(dot->getChild(0), osg::CopyOp::DEEP_COPY_ALL);
    EXPECT_TRUE(alike(*pictureOf(copy), *pictureOf(dot), "dot-copy", {0, 0.0})); // the same sphere
}

TEST_F(DotPicture, IsHiddenBehindANearerMesh)
{
    const osg::ref_ptr<osg::Node> dot = new CAutoScaleSphereMeta(dotRecord(8));
    const osg::Vec4f green(0, 1, 0, 1);
    EXPECT_EQ(pixelAt(*pictureOf(groupOf({dot, unlitRectangle({-20, -20, 20, 20, 50}, green)})), 100, 100), kGreen);
    EXPECT_GT(pixelAt(*pictureOf(groupOf({dot, unlitRectangle({-20, -20, 20, 20, -50}, green)})), 100, 100).r, 150);
}

TEST_F(DotPicture, IsShadedFromTheMiddleToTheEdgeInTheColourOfItsRecord)
{
    const osg::ref_ptr<osg::Image> picture = pictureOf(new CAutoScaleSphereMeta(dotRecord(60)));
    const Pixel middle = pixelAt(*picture, 100, 100);
    const Pixel nearEdge = pixelAt(*picture, 100 + 54, 100);
    EXPECT_GT(middle.r, 200);
    EXPECT_NEAR(middle.g, middle.r / 2, 2); // orange; two for rounding
    EXPECT_EQ(middle.b, 0);
    EXPECT_LT(nearEdge.r, middle.r - 40);
    EXPECT_NEAR(nearEdge.g, nearEdge.r / 2, 2);
}

TEST_F(DotPicture, LooksAsStored)
{
    PictureRig rig(50, 50);
    rig.setScene(new CAutoScaleSphereMeta(dotRecord(20)));
    EXPECT_TRUE(matchesStored(*rig.render(), "primitives/dot", {4, 0.01})); // rounding along the edge of the disc
}

// States

/// A lit colour is its channel times the light, which is the same for all channels.
void expectShadeOf(const Pixel& pixel, const Pixel& colour)
{
    const int light = std::max({pixel.r, pixel.g, pixel.b});
    const bool isBlack = colour == kBlack;
    EXPECT_EQ(isBlack, light < 10);
    if (isBlack) return;
    EXPECT_GT(light, 180);
    const Pixel shade{light * colour.r / 255, light * colour.g / 255, light * colour.b / 255};
    EXPECT_LE(difference(pixel, shade), 2); // rounding
}

class DotInState : public PictureTest, public ::testing::WithParamInterface<featureState>
{};

TEST_P(DotInState, ShowsTheStateInItsColour)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord(8));
    dot->setState(GetParam() == featureStateSelected ? featureStateNormal : featureStateSelected);
    dot->setState(GetParam());
    expectShadeOf(pixelAt(*pictureOf(dot), 100, 100), defaultColourOf(GetParam()));
}

TEST_P(DotInState, ShowsTheStateInTheColourOfAFlag)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = new CFlagAutoScaleSphereMeta(dotRecord(8));
    flag->setState(GetParam() == featureStateSelected ? featureStateNormal : featureStateSelected);
    flag->setState(GetParam());
    expectShadeOf(pixelAt(*pictureOf(flag), 100, 100), defaultColourOf(GetParam()));
}

TEST_P(DotInState, ChangesTheRadiusOfAFlagByFivePixelsWhileSelected)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = new CFlagAutoScaleSphereMeta(dotRecord(8));
    PictureRig rig;
    rig.setScene(groupOf({flag}));
    const int before = discOf(*rig.render()).width();
    flag->setState(GetParam() == featureStateSelected ? featureStateNormal : featureStateSelected);
    rig.render(); // so that a changed sphere has to be drawn anew
    flag->setState(GetParam());
    const int after = discOf(*rig.render(1)).width();

    const int growth = GetParam() == featureStateSelected ? 2 * 5 : 0;
    EXPECT_NEAR(before, 2 * 8, 1);
    EXPECT_NEAR(after - before, growth, 1); // one: either edge may fall half a pixel away
}

TEST_P(DotInState, KeepsTheRadiusOfADot)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord(8));
    PictureRig rig;
    rig.setScene(groupOf({dot}));
    const PixelBox before = discOf(*rig.render());
    dot->setState(GetParam());
    EXPECT_TRUE(boxesNear(discOf(*rig.render()), before, 0)); // the same sphere
}

INSTANTIATE_TEST_SUITE_P(States, DotInState,
                         ::testing::Values(featureStateNone, featureStateNormal, featureStateSelected,
                                           featureStateHighlighted),
                         [](const auto& test) { return nameOf(test.param); });

TEST_F(DotPicture, TakesItsColoursFromItsOwnConfiguration)
{
    featureDotConfig dots;
    dots.selectedColor.set(0.0f, 0.0f, 1.0f, 1.0f);
    CFeatureConfig::sigleFeatureConfig()->setDotConfig(dots);
    featureFlagDotConfig flags;
    flags.selectedColor.set(0.0f, 1.0f, 1.0f, 1.0f);
    CFeatureConfig::sigleFeatureConfig()->setFlagDotConfig(flags);

    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord(8, osg::Vec3f(-50, 0, 0)));
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag =
        new CFlagAutoScaleSphereMeta(dotRecord(8, osg::Vec3f(50, 0, 0)));
    dot->setState(featureStateSelected);
    flag->setState(featureStateSelected);
    const osg::ref_ptr<osg::Image> picture = pictureOf(groupOf({dot, flag}));
    expectShadeOf(pixelAt(*picture, 50, 100), kBlue);
    expectShadeOf(pixelAt(*picture, 150, 100), {0, 255, 255});
}

// Points that are none

struct BadPoint
{
    const char* name;
    osg::Vec3f point;
};

class DotAtBadPoint : public PictureTest, public ::testing::WithParamInterface<BadPoint>
{};

TEST_P(DotAtBadPoint, IsNotDrawnAndItsNeighbourIs)
{
    const osg::ref_ptr<osg::Node> neighbour = new CAutoScaleSphereMeta(dotRecord(8, osg::Vec3f(-40, 0, 0)));
    const osg::ref_ptr<osg::Image> expected = pictureOf(neighbour);
    const auto nodes = {osg::ref_ptr<osg::Node>(new CAutoScaleSphereMeta(dotRecord(8, GetParam().point))),
                        osg::ref_ptr<osg::Node>(new CFlagAutoScaleSphereMeta(dotRecord(8, GetParam().point)))};
    for (const osg::ref_ptr<osg::Node>& dot : nodes)
        EXPECT_TRUE(alike(*pictureOf(groupOf({dot, neighbour})), *expected, std::string("dot-bad-") + GetParam().name,
                          {0, 0.0})); // nothing else is drawn
    EXPECT_NEAR(discOf(*expected).width(), 16, 1);
}

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
INSTANTIATE_TEST_SUITE_P(Points, DotAtBadPoint,
                         ::testing::Values(BadPoint{"NotANumber", osg::Vec3f(kNaN, 0, 0)},
                                           BadPoint{"Infinite", osg::Vec3f(0, kInfinity, 0)},
                                           BadPoint{"MinusInfinite", osg::Vec3f(0, 0, -kInfinity)}),
                         [](const auto& test) { return test.param.name; });

// Plain spheres

CSphereMeta::structSphereMeta sphereRecord(float radius)
{
    CSphereMeta::structSphereMeta meta;
    meta.radius = radius;
    meta.color = kOrange;
    return meta;
}

TEST_F(DotPicture, OfAPlainSphereGrowsWithTheZoom)
{
    const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
    PictureRig rig;
    rig.setScene(maker->CreateSphereMeta(sphereRecord(10)));
    EXPECT_NEAR(discOf(*rig.render()).width(), 20, 1); // one: either edge may fall half a pixel away
    rig.lookInParallel(4.0);
    EXPECT_NEAR(discOf(*rig.render()).width(), 80, 1);
}

TEST_F(DotPicture, OfAScreenSizedSphereStaysUnderTheZoom)
{
    const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
    PictureRig rig;
    rig.setScene(maker->CreateAutoScaleSphereMeta(sphereRecord(10)));
    EXPECT_NEAR(discOf(*rig.render()).width(), 20, 1); // one: either edge may fall half a pixel away
    rig.lookInParallel(4.0);
    EXPECT_NEAR(discOf(*rig.render()).width(), 20, 1);
}

TEST_F(DotPicture, OfAPlainSphereTakesTheColourThatItIsGiven)
{
    const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
    const osg::ref_ptr<osg::Node> sphere = maker->CreateSphereMeta(sphereRecord(10));
    PictureRig rig;
    rig.setScene(sphere);
    rig.render();
    maker->setColor(osg::Vec4f(0, 0, 1, 1));
    expectShadeOf(pixelAt(*rig.render(1), 100, 100), kBlue);
}

TEST_F(DotPicture, OfAPlainSphereCanBeHiddenAndShown)
{
    const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
    PictureRig rig;
    rig.setScene(groupOf({maker->CreateSphereMeta(sphereRecord(10))}));
    const osg::ref_ptr<osg::Image> shown = rig.render();
    maker->visible(false);
    EXPECT_TRUE(discOf(*rig.render()).isEmpty());
    maker->visible(true);
    EXPECT_TRUE(alike(*rig.render(), *shown, "sphere-shown", {0, 0.0})); // the same sphere
}

} // namespace
