#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CPlaneMeta.h>

#include "support/PictureRig.h"
#include "support/PictureScenes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

const osg::Vec4f kBackdrop(0.2f, 0.4f, 0.8f, 1.0f);

/// A square of 80 pixels around the middle of a picture, without a border in sight.
CPlaneMeta::structPlaneMeta square(float alpha)
{
    CPlaneMeta::structPlaneMeta meta;
    meta.planeColor.set(1.0f, 0.5f, 0.0f);
    meta.lineColor.set(0.0f, 0.0f, 1.0f);
    meta.pointVec = {osg::Vec3f(-40, -40, 0), osg::Vec3f(40, -40, 0), osg::Vec3f(40, 40, 0), osg::Vec3f(-40, 40, 0)};
    meta.lineWidth = 4;
    meta.alpha = alpha;
    return meta;
}

osg::ref_ptr<CPlaneMeta> planeOf(CPlaneMeta::structPlaneMeta meta)
{
    return new CPlaneMeta(meta);
}

osg::ref_ptr<osg::Node> backdropAt(float z)
{
    return unlitRectangle({-100, -100, 100, 100, z}, kBackdrop);
}

osg::ref_ptr<osg::Image> pictureOf(osg::Node* node)
{
    PictureRig rig;
    rig.setScene(groupOf({node}));
    return rig.render();
}

/// A colour over another with constant opacity.
Pixel blended(const osg::Vec3f& over, const osg::Vec4f& under, float alpha)
{
    return drawnAs(osg::Vec4f(over, 1.0f) * alpha + under * (1.0f - alpha));
}

constexpr int kRounding = 1; // of the blend unit

#define EXPECT_COLOUR(actual, expected, tolerance) EXPECT_LE(difference(actual, expected), tolerance) << (actual)

// Opacity

class PlaneOfAlpha : public PictureTest, public ::testing::WithParamInterface<float>
{};

TEST_P(PlaneOfAlpha, BlendsPatchAndBorderWithTheMeshBehind)
{
    const osg::ref_ptr<osg::Image> picture = pictureOf(groupOf({planeOf(square(GetParam())), backdropAt(-50)}));
    EXPECT_COLOUR(pixelAt(*picture, 100, 100), blended({1.0f, 0.5f, 0.0f}, kBackdrop, GetParam()), kRounding);
    // The border's outer half lies over the mesh alone.
    EXPECT_COLOUR(pixelAt(*picture, 59, 100), blended({0.0f, 0.0f, 1.0f}, kBackdrop, GetParam()), kRounding);
    EXPECT_COLOUR(pixelAt(*picture, 20, 100), drawnAs(kBackdrop), 0);
}

TEST_P(PlaneOfAlpha, BlendsWithTheBackgroundWhereThereIsNoMesh)
{
    const Pixel patch = pixelAt(*pictureOf(planeOf(square(GetParam()))), 100, 100);
    EXPECT_COLOUR(patch, blended({1.0f, 0.5f, 0.0f}, {1, 1, 1, 1}, GetParam()), kRounding);
}

INSTANTIATE_TEST_SUITE_P(Alphas, PlaneOfAlpha, ::testing::Values(0.0f, 0.25f, 0.5f, 1.0f),
                         [](const auto& test) { return "Percent" + std::to_string(std::lround(test.param * 100)); });

class PlanePicture : public PictureTest
{};

TEST_F(PlanePicture, BlendsTwoPlanesOneOverTheOther)
{
    CPlaneMeta::structPlaneMeta nearer = square(0.5f);
    for (osg::Vec3f& point : nearer.pointVec) point.z() = 20;
    nearer.planeColor.set(0.0f, 1.0f, 0.0f);
    const Pixel patch = pixelAt(*pictureOf(groupOf({planeOf(nearer), planeOf(square(0.5f))})), 100, 100);
    const osg::Vec4f below(1.0f, 0.75f, 0.5f, 1.0f); // the farther plane over white
    EXPECT_COLOUR(patch, blended({0.0f, 1.0f, 0.0f}, below, 0.5f), 2 * kRounding);
}

TEST_F(PlanePicture, IsHiddenBehindANearerMesh)
{
    const osg::ref_ptr<osg::Image> picture = pictureOf(groupOf({planeOf(square(0.5f)), backdropAt(50)}));
    EXPECT_EQ(countPixels(*picture, drawnAs(kBackdrop), 0), 200 * 200);
}

TEST_F(PlanePicture, IsNotLit)
{
    CPlaneMeta::structPlaneMeta tilted = square(1.0f);
    for (osg::Vec3f& point : tilted.pointVec) point.z() = point.y(); // away from the light
    EXPECT_COLOUR(pixelAt(*pictureOf(planeOf(tilted)), 100, 100), drawnAs({1.0f, 0.5f, 0.0f, 1.0f}), kRounding);
}

TEST_F(PlanePicture, LooksAsStored)
{
    PictureRig rig(100, 100);
    rig.setScene(groupOf({planeOf(square(0.5f)), unlitRectangle({-100, 0, 100, 100, -50}, kBackdrop)}));
    EXPECT_TRUE(matchesStored(*rig.render(), "primitives/plane", {4, 0.01})); // rounding along the border
}

// Extent

TEST_F(PlanePicture, FillsTheSquareOfItsFourPoints)
{
    CPlaneMeta::structPlaneMeta meta = square(1.0f);
    meta.lineColor = meta.planeColor;
    meta.lineWidth = 1;
    const osg::ref_ptr<osg::Image> picture = pictureOf(planeOf(meta));
    EXPECT_TRUE(boxesNear(boxOfDifference(*picture, kWhite), {60, 60, 139, 139}, 1)); // one: the border's thickness
    EXPECT_EQ(countPixels(*cut(*picture, {61, 61, 138, 138}), drawnAs({1.0f, 0.5f, 0.0f, 1.0f}), kRounding), 78 * 78);
}

struct PointCount
{
    const char* name;
    std::vector<osg::Vec3f> points;
    std::vector<bool> filled; // at the middles of the squares from x -80 to 0, and from 0 to 80
};

class PlaneOfPoints : public PictureTest, public ::testing::WithParamInterface<PointCount>
{};

TEST_P(PlaneOfPoints, FillsEveryFourOfThemAndJoinsThemAll)
{
    CPlaneMeta::structPlaneMeta meta = square(1.0f);
    meta.pointVec = GetParam().points;
    const osg::ref_ptr<CPlaneMeta> plane = planeOf(meta);
    plane->setState(featureStateSelected);
    const osg::ref_ptr<osg::Image> picture = pictureOf(groupOf({plane}));

    const Pixel patch = drawnAs({1.0f, 0.5f, 0.0f, 1.0f});
    for (std::size_t i = 0; i < GetParam().filled.size(); ++i) {
        const Pixel middle = pixelAt(*picture, 50 + 80 * static_cast<int>(i), 90); // beside every diagonal
        EXPECT_COLOUR(middle, GetParam().filled[i] ? patch : kWhite, kRounding);
    }
    for (const osg::Vec3f& point : meta.pointVec) {
        const osg::ref_ptr<osg::Image> around =
            cut(*picture, {static_cast<int>(point.x()) + 94, static_cast<int>(point.y()) + 94,
                           static_cast<int>(point.x()) + 106, static_cast<int>(point.y()) + 106});
        EXPECT_GT(countPixels(*around, kRed), meta.pointVec.size() > 1 ? 8 : 0);
    }
}

const std::vector<osg::Vec3f> kEightPoints = {osg::Vec3f(-80, -40, 0), osg::Vec3f(-10, -40, 0), osg::Vec3f(-10, 40, 0),
                                              osg::Vec3f(-80, 40, 0),  osg::Vec3f(10, -40, 0),  osg::Vec3f(80, -40, 0),
                                              osg::Vec3f(80, 40, 0),   osg::Vec3f(10, 40, 0)};
std::vector<osg::Vec3f> firstPoints(int count)
{
    return {kEightPoints.begin(), kEightPoints.begin() + count};
}
INSTANTIATE_TEST_SUITE_P(Counts, PlaneOfPoints,
                         ::testing::Values(PointCount{"None", firstPoints(0), {false, false}},
                                           PointCount{"Two", firstPoints(2), {false, false}},
                                           PointCount{"Three", firstPoints(3), {false, false}},
                                           PointCount{"Four", firstPoints(4), {true, false}},
                                           PointCount{"Five", firstPoints(5), {true, false}},
                                           PointCount{"Seven", firstPoints(7), {true, false}},
                                           PointCount{"Eight", firstPoints(8), {true, true}}),
                         [](const auto& test) { return test.param.name; });

TEST_F(PlanePicture, OfAPointThatIsNotANumberHidesItselfAndNothingElse)
{
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
        CPlaneMeta::structPlaneMeta meta = square(1.0f);
        meta.pointVec[2].x() = bad;
        const osg::ref_ptr<CPlaneMeta> plane = planeOf(meta);
        plane->setState(featureStateSelected);
        const osg::ref_ptr<osg::Image> picture =
            pictureOf(groupOf({plane, unlitRectangle({20, 20, 60, 60}, osg::Vec4(0, 1, 0, 1))}));
        EXPECT_TRUE(boxesNear(boxOfDifference(*picture, kWhite), {120, 120, 159, 159}, 0));
        EXPECT_EQ(countPixels(*picture, kGreen), 40 * 40);
    }
}

// Border and states

class PlaneInState : public PictureTest, public ::testing::WithParamInterface<featureState>
{};

TEST_P(PlaneInState, ShowsTheStateOnItsBorderAndKeepsItsPatch)
{
    const osg::ref_ptr<CPlaneMeta> plane = planeOf(square(0.5f));
    plane->setState(GetParam() == featureStateSelected ? featureStateNormal : featureStateSelected);
    plane->setState(GetParam());
    const osg::ref_ptr<osg::Image> picture = pictureOf(plane);

    const Pixel state = defaultColourOf(GetParam());
    const osg::Vec3f colour(static_cast<float>(state.r) / 255, static_cast<float>(state.g) / 255, 0.0f);
    EXPECT_COLOUR(pixelAt(*picture, 59, 100), blended(colour, {1, 1, 1, 1}, 0.5f), kRounding);
    EXPECT_COLOUR(pixelAt(*picture, 100, 100), blended({1.0f, 0.5f, 0.0f}, {1, 1, 1, 1}, 0.5f), kRounding);
}

TEST_P(PlaneInState, PassesTheStateOnToItsNormalArrows)
{
    CArrowMeta::structArrowMeta meta;
    meta.startPos.set(0, 0, 0);
    meta.endPos.set(0, 90, 0);
    meta.isLineArrow = true;
    meta.isDepthTest = false;
    const osg::ref_ptr<CArrowMeta> arrow = new CArrowMeta(meta);
    arrow->setName("normalArrow2");
    const osg::ref_ptr<CPlaneMeta> plane = planeOf(square(0.5f));
    plane->addNormalArrow(arrow);
    plane->setState(GetParam() == featureStateSelected ? featureStateNormal : featureStateSelected);
    plane->setState(GetParam());
    EXPECT_COLOUR(pixelAt(*pictureOf(plane), 100, 160), defaultColourOf(GetParam()), 0);
}

INSTANTIATE_TEST_SUITE_P(States, PlaneInState,
                         ::testing::Values(featureStateNone, featureStateNormal, featureStateSelected,
                                           featureStateHighlighted),
                         [](const auto& test) { return nameOf(test.param); });

class BorderOfWidth : public PictureTest, public ::testing::WithParamInterface<int>
{};

TEST_P(BorderOfWidth, IsThatWide)
{
    CPlaneMeta::structPlaneMeta meta = square(1.0f);
    meta.lineWidth = static_cast<float>(GetParam());
    meta.pointVec.resize(3); // no patch to cover the inner half of the border
    const osg::ref_ptr<osg::Image> picture = pictureOf(planeOf(meta));
    const osg::ref_ptr<osg::Image> column = cut(*picture, {90, 0, 90, 75}); // across the lower edge
    EXPECT_EQ(boxOfColour(*column, kBlue).height(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Widths, BorderOfWidth, ::testing::Values(1, 3, 6),
                         [](const auto& test) { return "Pixels" + std::to_string(test.param); });

TEST_F(PlanePicture, TakesItsColoursFromThePlaneConfiguration)
{
    featurePlaneConfig config;
    config.highlightedColor.set(1.0f, 0.0f, 1.0f, 0.25f); // whose alpha does not count
    CFeatureConfig::sigleFeatureConfig()->setPlaneConfig(config);
    const osg::ref_ptr<CPlaneMeta> plane = planeOf(square(1.0f));
    plane->setState(featureStateHighlighted);
    EXPECT_COLOUR(pixelAt(*pictureOf(plane), 59, 100), (Pixel{255, 0, 255}), 0);
}

} // namespace
