#include <KelvOsgTools/CArrowMeta.h>

#include "support/PictureRig.h"
#include "support/PictureScenes.h"

#include <gtest/gtest.h>

#include <limits>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

const osg::Vec4f kCyan(0.0f, 1.0f, 1.0f, 1.0f);
const Pixel kCyanPixel{0, 255, 255};

/// An arrow of 160 pixels from left to right across the middle of a picture.
CArrowMeta::structArrowMeta acrossTheMiddle(bool isLineArrow)
{
    CArrowMeta::structArrowMeta meta;
    meta.startPos.set(-80, 0, 0);
    meta.endPos.set(80, 0, 0);
    meta.color = kCyan;
    meta.radius = 6;
    meta.isLineArrow = isLineArrow;
    return meta;
}

/// A line that is drawn in its very colour.
CArrowMeta::structArrowMeta unlitLine()
{
    CArrowMeta::structArrowMeta meta = acrossTheMiddle(true);
    meta.isDepthTest = false;
    return meta;
}

osg::ref_ptr<osg::Image> pictureOf(osg::Node* node)
{
    PictureRig rig;
    rig.setScene(groupOf({node}));
    return rig.render();
}

/// How many pixels of column x are not white.
int heightAt(const osg::Image& picture, int x)
{
    return boxOfDifference(*cut(picture, {x, 0, x, picture.t() - 1}), kWhite).height();
}

class ArrowPicture : public PictureTest
{};

// Shape of the solid arrow

TEST_F(ArrowPicture, OfASolidArrowReachesFromStartToTip)
{
    const PixelBox box = boxOfDifference(*pictureOf(new CArrowMeta(acrossTheMiddle(false))), kWhite);
    EXPECT_NEAR(box.left, 100 - 80, 1);      // one: an edge between two pixel centres
    EXPECT_NEAR(box.right, 100 + 80 - 1, 2); // two: the last pixel of the tip is less than half full
    EXPECT_NEAR(box.height(), 2 * 12, 1);    // the head is twice as wide as the shaft
    EXPECT_NEAR(box.centreY(), 100.0, 0.5);
}

TEST_F(ArrowPicture, OfASolidArrowHasTheBaseOfItsHeadAtFourFifths)
{
    const osg::ref_ptr<osg::Image> picture = pictureOf(new CArrowMeta(acrossTheMiddle(false)));
    constexpr int kHeadBase = 100 - 80 + 128;
    EXPECT_NEAR(heightAt(*picture, 30), 2 * 6, 1); // one: an edge between two pixel centres
    EXPECT_NEAR(heightAt(*picture, kHeadBase - 2), 2 * 6, 1);
    EXPECT_NEAR(heightAt(*picture, kHeadBase + 1), 2 * 12, 2); // two: the cone narrows at once
    EXPECT_NEAR(heightAt(*picture, kHeadBase + 16), 12, 2);
}

struct Direction
{
    const char* name;
    osg::Vec3f way;
};

class ArrowAlong : public PictureTest, public ::testing::WithParamInterface<Direction>
{};

TEST_P(ArrowAlong, PointsThereWithItsTip)
{
    CArrowMeta::structArrowMeta meta = acrossTheMiddle(false);
    meta.startPos = GetParam().way * -70.0f;
    meta.endPos = GetParam().way * 70.0f;
    PictureRig rig;
    rig.setScene(groupOf({new CArrowMeta(meta)}));
    rig.camera().setViewMatrixAsLookAt(osg::Vec3d(40, -60, 50), osg::Vec3d(), osg::Z_AXIS);
    const osg::ref_ptr<osg::Image> picture = rig.render();

    // Around the base of the head there is more of the arrow than as far from the start.
    const auto fullness = [&](const osg::Vec3f& point) {
        const osg::Vec3d seen = osg::Vec3d(point) * rig.toWindow();
        const int x = static_cast<int>(seen.x());
        const int y = static_cast<int>(seen.y());
        const osg::ref_ptr<osg::Image> part = cut(*picture, {x - 12, y - 12, x + 12, y + 12});
        return part->s() * part->t() - countPixels(*part, kWhite);
    };
    EXPECT_GT(fullness(meta.startPos + (meta.endPos - meta.startPos) * 0.84f),
              1.25 * fullness(meta.startPos + (meta.endPos - meta.startPos) * 0.16f));
    // At the ends: an arrow at the middle of a small box, none beyond.
    EXPECT_GT(fullness(meta.startPos), 0);
    EXPECT_GT(fullness(meta.endPos), 0);
    EXPECT_EQ(fullness(meta.endPos * 1.35f), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Directions, ArrowAlong,
    ::testing::Values(Direction{"X", osg::Vec3f(1, 0, 0)}, Direction{"MinusX", osg::Vec3f(-1, 0, 0)},
                      Direction{"Y", osg::Vec3f(0, 1, 0)}, Direction{"MinusY", osg::Vec3f(0, -1, 0)},
                      Direction{"Z", osg::Vec3f(0, 0, 1)}, Direction{"MinusZ", osg::Vec3f(0, 0, -1)},
                      Direction{"Diagonal", osg::Vec3f(0.577f, 0.577f, 0.577f)}),
    [](const auto& test) { return test.param.name; });

TEST_F(ArrowPicture, OfASolidArrowLooksAsStored)
{
    CArrowMeta::structArrowMeta meta = acrossTheMiddle(false);
    meta.startPos.set(-30, -20, 0);
    meta.endPos.set(30, 25, 20);
    PictureRig rig(100, 80);
    rig.setScene(new CArrowMeta(meta));
    EXPECT_TRUE(matchesStored(*rig.render(), "primitives/arrow-solid", {4, 0.01})); // rounding along the edges
}

// Shape of the line arrow

TEST_F(ArrowPicture, OfALineReachesFromStartToEndInItsWidth)
{
    CArrowMeta::structArrowMeta meta = unlitLine();
    meta.isArrowHead = false;
    meta.lineWidth = 4;
    const osg::ref_ptr<osg::Image> picture = pictureOf(new CArrowMeta(meta));
    // One: the pixels at the ends of a line may be drawn or not.
    EXPECT_TRUE(boxesNear(boxOfColour(*picture, kCyanPixel), {20, 98, 179, 101}, 1));
    EXPECT_EQ(heightAt(*picture, 100), 4);
}

TEST_F(ArrowPicture, OfALineWithAHeadHasItWithinTheLastTwentieth)
{
    CArrowMeta::structArrowMeta meta = unlitLine();
    meta.lineWidth = 1;
    meta.startPos *= 6.0f; // a head large enough to be measured: 48 long, 19 in radius
    meta.endPos *= 6.0f;
    PictureRig rig(1000, 60);
    rig.setScene(groupOf({new CArrowMeta(meta)}));
    const osg::ref_ptr<osg::Image> picture = rig.render();

    constexpr int kTip = 500 + 480;
    constexpr int kBase = kTip - 48;
    EXPECT_EQ(heightAt(*picture, kBase - 3), 1);
    // The strokes end at a third of the diamond's edges: 2/3 of the radius from the shaft.
    EXPECT_NEAR(heightAt(*picture, kBase + 1), 2.0 * 19.2 * 2.0 / 3.0, 2.5);
    EXPECT_NEAR(heightAt(*picture, kBase + 24), 19.2 * 2.0 / 3.0, 2.5); // half-way: half as high
    EXPECT_NEAR(boxOfDifference(*picture, kWhite).right, kTip - 1, 1);

    meta.isArrowHead = false;
    rig.setScene(groupOf({new CArrowMeta(meta)}));
    EXPECT_EQ(boxOfDifference(*rig.render(), kWhite).height(), 1);
}

TEST_F(ArrowPicture, OfALineWithAHeadLooksAsStored)
{
    CArrowMeta::structArrowMeta meta = unlitLine();
    meta.startPos.set(0, 0, -900);
    meta.endPos.set(0, 0, 100);
    meta.color.set(0, 0, 0, 1);
    meta.lineWidth = 1;
    PictureRig rig(100, 100);
    rig.setScene(groupOf({new CArrowMeta(meta)}));
    rig.lookInPerspective(osg::Vec3d(100, -60, 130), osg::Vec3d(0, 0, 75), osg::Z_AXIS);
    EXPECT_TRUE(matchesStored(*rig.render(), "primitives/arrow-line-head", {4, 0.01})); // rounding along the lines
}

class LineOfWidth : public PictureTest, public ::testing::WithParamInterface<int>
{};

TEST_P(LineOfWidth, IsThatWideAndOnePixelWiderWhileSelected)
{
    CArrowMeta::structArrowMeta meta = unlitLine();
    meta.isArrowHead = false;
    meta.lineWidth = static_cast<float>(GetParam());
    const osg::ref_ptr<CArrowMeta> arrow = new CArrowMeta(meta);
    PictureRig rig;
    rig.setScene(groupOf({arrow}));
    EXPECT_EQ(heightAt(*rig.render(), 100), GetParam());
    arrow->setState(featureStateSelected);
    EXPECT_EQ(heightAt(*rig.render(1), 100), GetParam() + 1);
    arrow->setState(featureStateHighlighted);
    EXPECT_EQ(heightAt(*rig.render(1), 100), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Widths, LineOfWidth, ::testing::Values(1, 2, 3, 6),
                         [](const auto& test) { return "Pixels" + std::to_string(test.param); });

// States

class ArrowInState : public PictureTest, public ::testing::WithParamInterface<featureState>
{
protected:
    static void setFresh(CArrowMeta& arrow)
    {
        arrow.setState(GetParam() == featureStateSelected ? featureStateNormal : featureStateSelected);
        arrow.setState(GetParam());
    }

    /// Lit in the colour of the state: that channel bright, the others dark.
    static void expectLit(const Pixel& pixel)
    {
        const Pixel colour = defaultColourOf(GetParam());
        EXPECT_EQ(pixel.r > 60, colour.r > 0) << pixel;
        EXPECT_EQ(pixel.g > 60, colour.g > 0) << pixel;
        EXPECT_LT(pixel.b, 10) << pixel;
    }
};

TEST_P(ArrowInState, ShowsTheStateOnShaftAndHeadOfASolidArrow)
{
    const osg::ref_ptr<CArrowMeta> arrow = new CArrowMeta(acrossTheMiddle(false));
    setFresh(*arrow);
    const osg::ref_ptr<osg::Image> picture = pictureOf(arrow);
    expectLit(pixelAt(*picture, 60, 100));
    expectLit(pixelAt(*picture, 155, 100));
}

TEST_P(ArrowInState, ShowsTheStateOnALineArrowWithAHead)
{
    const osg::ref_ptr<CArrowMeta> arrow = new CArrowMeta(unlitLine());
    setFresh(*arrow);
    const osg::ref_ptr<osg::Image> picture = pictureOf(arrow);
    EXPECT_EQ(pixelAt(*picture, 60, 100), defaultColourOf(GetParam()));
    EXPECT_EQ(countPixels(*picture, kWhite) + countPixels(*picture, defaultColourOf(GetParam())), 200 * 200);
}

TEST_P(ArrowInState, ShowsTheStateOnALineArrowWithoutAHead)
{
    CArrowMeta::structArrowMeta meta = unlitLine();
    meta.isArrowHead = false;
    const osg::ref_ptr<CArrowMeta> arrow = new CArrowMeta(meta);
    setFresh(*arrow);
    EXPECT_EQ(pixelAt(*pictureOf(arrow), 60, 100), defaultColourOf(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(States, ArrowInState,
                         ::testing::Values(featureStateNone, featureStateNormal, featureStateSelected,
                                           featureStateHighlighted),
                         [](const auto& test) { return nameOf(test.param); });

TEST_F(ArrowPicture, OfANewArrowHasTheColourOfItsRecord)
{
    EXPECT_EQ(pixelAt(*pictureOf(new CArrowMeta(unlitLine())), 60, 100), kCyanPixel);
    const Pixel lit = pixelAt(*pictureOf(new CArrowMeta(acrossTheMiddle(false))), 60, 100);
    EXPECT_LT(lit.r, 10);
    EXPECT_GT(lit.g, 150);
    EXPECT_EQ(lit.g, lit.b);
}

TEST_F(ArrowPicture, TakesItsColoursFromTheArrowConfiguration)
{
    featureArrowConfig config;
    config.selectedColor.set(1.0f, 0.0f, 1.0f, 1.0f);
    CFeatureConfig::sigleFeatureConfig()->setArrowConfig(config);
    const osg::ref_ptr<CArrowMeta> arrow = new CArrowMeta(unlitLine());
    arrow->setState(featureStateSelected);
    EXPECT_EQ(pixelAt(*pictureOf(arrow), 60, 100), (Pixel{255, 0, 255}));
}

// Depth and light

const Rectangle kNearerMesh{-40, -40, 40, 40, 30};

TEST_F(ArrowPicture, OfALineWithoutDepthTestIsDrawnOverTheMeshDrawnBefore)
{
    const osg::ref_ptr<osg::Node> mesh = unlitRectangle(kNearerMesh, osg::Vec4(0, 1, 0, 1));
    const osg::ref_ptr<osg::Image> picture = pictureOf(groupOf({mesh, new CArrowMeta(unlitLine())}));
    EXPECT_EQ(pixelAt(*picture, 100, 100), kCyanPixel);
    EXPECT_EQ(pixelAt(*picture, 100, 110), kGreen);
}

TEST_F(ArrowPicture, OfALineWithDepthTestIsHiddenBehindTheMesh)
{
    const osg::ref_ptr<osg::Node> mesh = unlitRectangle(kNearerMesh, osg::Vec4(0, 1, 0, 1));
    const osg::ref_ptr<osg::Image> picture = pictureOf(groupOf({mesh, new CArrowMeta(acrossTheMiddle(true))}));
    EXPECT_EQ(pixelAt(*picture, 100, 100), kGreen);
    EXPECT_LT(pixelAt(*picture, 30, 100).r, 10); // beside the mesh: no white any more
}

TEST_F(ArrowPicture, OfASolidArrowIsHiddenBehindTheMesh)
{
    const osg::ref_ptr<osg::Node> mesh = unlitRectangle(kNearerMesh, osg::Vec4(0, 1, 0, 1));
    const osg::ref_ptr<osg::Image> picture = pictureOf(groupOf({new CArrowMeta(acrossTheMiddle(false)), mesh}));
    EXPECT_EQ(pixelAt(*picture, 100, 100), kGreen);
    EXPECT_LT(pixelAt(*picture, 30, 100).r, 10);
}

// Arrows that are none

struct BadArrow
{
    const char* name;
    osg::Vec3f start;
    osg::Vec3f end;
    bool isLineArrow;
};

class BadArrowPicture : public PictureTest, public ::testing::WithParamInterface<BadArrow>
{};

TEST_P(BadArrowPicture, LeavesTheMeshBesideItAsItIs)
{
    CArrowMeta::structArrowMeta meta = acrossTheMiddle(GetParam().isLineArrow);
    meta.startPos = GetParam().start;
    meta.endPos = GetParam().end;
    const osg::ref_ptr<CArrowMeta> arrow = new CArrowMeta(meta);
    arrow->setState(featureStateSelected);
    const osg::ref_ptr<osg::Image> picture =
        pictureOf(groupOf({arrow, unlitRectangle({20, 20, 60, 60}, osg::Vec4(0, 1, 0, 1))}));

    EXPECT_TRUE(boxesNear(boxOfColour(*picture, kGreen), {120, 120, 159, 159}, 0));
    EXPECT_EQ(countPixels(*picture, kGreen), 40 * 40);
    // Of zero length: at most the disc of its radius, or a dot of its line width.
    EXPECT_LE(boxOfDifference(*cut(*picture, {0, 0, 119, 119}), kWhite).width(), 2 * 12 + 1);
}

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
const osg::Vec3f kSomewhere(10, 0, 0);

std::vector<BadArrow> badArrows()
{
    std::vector<BadArrow> arrows;
    for (const bool isLine : {false, true}) {
        arrows.push_back({isLine ? "ZeroLengthLine" : "ZeroLengthSolid", osg::Vec3f(), osg::Vec3f(), isLine});
        arrows.push_back({isLine ? "NaNStartLine" : "NaNStartSolid", osg::Vec3f(kNaN, 0, 0), kSomewhere, isLine});
        arrows.push_back({isLine ? "NaNEndLine" : "NaNEndSolid", kSomewhere, osg::Vec3f(0, kNaN, 0), isLine});
        arrows.push_back({isLine ? "InfiniteLine" : "InfiniteSolid", kSomewhere, osg::Vec3f(0, 0, kInfinity), isLine});
        arrows.push_back(
            {isLine ? "HugeLine" : "HugeSolid", osg::Vec3f(-3e38f, 0, 0), osg::Vec3f(3e38f, 0, 0), isLine});
    }
    return arrows;
}
INSTANTIATE_TEST_SUITE_P(Arrows, BadArrowPicture, ::testing::ValuesIn(badArrows()),
                         [](const auto& test) { return test.param.name; });

} // namespace
