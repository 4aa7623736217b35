#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include "support/PictureRig.h"
#include "support/PictureScenes.h"

#include <gtest/gtest.h>

#include <osg/MatrixTransform>

#include <QFont>
#include <QFontMetrics>

#include <cmath>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

/// Thin strokes of small glyphs never reach their full colour over the fill.
constexpr int kThinStroke = 110;

class LabelPicture : public PictureTest
{};

/// Where the hit test finds the label, asked at the centre of every pixel.
PixelBox boxOfHits(CTableMeta& label, const osg::Matrixd& toWindow, const osg::Image& picture)
{
    return boxWhere(picture.s(), picture.t(), [&](int x, int y) {
        return label.checkClickPointIsInsideTable(toWindow, static_cast<float>(x) + 0.5f, static_cast<float>(y) + 0.5f);
    });
}

TEST_F(LabelPicture, StandsAboveItsDot)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    createAutoScaleShpereAndTable("dot", scene, osg::Vec3f(), 1, "Point", 12, featureStateHighlighted, false);

    PictureRig rig(120, 80);
    rig.setScene(scene);
    EXPECT_TRUE(matchesStored(*rig.render(), "primitives/label-above-dot"));
}

class LabelOfFontSize : public PictureTest, public ::testing::WithParamInterface<int>
{};

TEST_P(LabelOfFontSize, IsFilledWhereTheHitTestFindsIt)
{
    const osg::ref_ptr<CTableMeta> label = new CTableMeta(blueOnYellow("A rather long label 123", GetParam()));
    PictureRig rig(560, 130);
    rig.setScene(groupOf({label}));
    const osg::ref_ptr<osg::Image> picture = rig.render();

    // One pixel: edges between two pixel centres may fall to either.
    const PixelBox hits = boxOfHits(*label, rig.toWindow(), *picture);
    EXPECT_GT(hits.width(), 10 * GetParam());
    EXPECT_TRUE(boxesNear(boxOfColour(*picture, kLabelFill), hits, 1));
}

TEST_P(LabelOfFontSize, IsAsWideAndHighAsQtMeasuresItsText)
{
    const QString text = "A rather long label 123";
    const osg::ref_ptr<CTableMeta> label = new CTableMeta(blueOnYellow(text, GetParam()));
    PictureRig rig(560, 130);
    rig.setScene(groupOf({label}));
    const PixelBox fill = boxOfColour(*rig.render(), kLabelFill);

    const QFontMetrics metrics(QFont(KELVOSGTOOLS_TEST_FONT, GetParam()));
    EXPECT_NEAR(fill.width(), metrics.horizontalAdvance(text), 1);
    EXPECT_NEAR(fill.height(), metrics.height(), 1);
    EXPECT_NEAR(fill.bottom, 65 + 10, 1); // the anchor is the middle of the picture
    EXPECT_NEAR(fill.centreX(), 280.0, 1.0);
}

TEST_P(LabelOfFontSize, HoldsItsTextCentredThreePixelsAboveTheBottomEdge)
{
    PictureRig rig(560, 130);
    rig.setScene(groupOf({new CTableMeta(blueOnYellow("HOHOHO", GetParam()))}));
    const osg::ref_ptr<osg::Image> picture = rig.render();
    const PixelBox inside = boxOfColour(*picture, kLabelFill);
    const osg::ref_ptr<osg::Image> filled = cut(*picture, inside.shrunk(1));
    const PixelBox ink = boxOfDifference(*filled, kLabelFill, 100); // 100: skips the faint edges of glyphs

    EXPECT_NEAR(ink.bottom + 1, 3, 1);
    EXPECT_NEAR(ink.centreX(), filled->s() * 0.5, 1.5); // glyph bearings are not the same on both sides
    // Capitals are 0.73 of the character size high in this font.
    EXPECT_NEAR(ink.height(), 0.73 * GetParam(), 2.0); // round letters overshoot, edges fade
}

INSTANTIATE_TEST_SUITE_P(Sizes, LabelOfFontSize, ::testing::Values(12, 14, 16, 19, 22, 25, 28),
                         [](const auto& test) { return "Size" + std::to_string(test.param); });

struct LabelView
{
    const char* name;
    osg::Matrixd parent;
    double perspectiveDistance; // 0: parallel
};

class LabelSeenFrom : public PictureTest, public ::testing::WithParamInterface<LabelView>
{};

TEST_P(LabelSeenFrom, LooksTheSame)
{
    const osg::ref_ptr<CTableMeta> label = new CTableMeta(blueOnYellow("Label"));
    PictureRig rig(120, 100);
    rig.setScene(groupOf({label}));
    const osg::ref_ptr<osg::Image> expected = rig.render();

    const osg::ref_ptr<osg::MatrixTransform> parent = new osg::MatrixTransform(GetParam().parent);
    parent->addChild(label);
    rig.setScene(parent);
    if (const double distance = GetParam().perspectiveDistance; distance > 0.0)
        rig.lookInPerspective(osg::Vec3d(0, -distance, 0), osg::Vec3d(), osg::Z_AXIS);
    // Share: four corners of the outline, where a line may or may not draw its end.
    EXPECT_TRUE(alike(*rig.render(), *expected, std::string("label-seen-") + GetParam().name, {2, 4.0 / 12000}));
}

INSTANTIATE_TEST_SUITE_P(Views, LabelSeenFrom,
                         ::testing::Values(LabelView{"UnderAScaledParent", osg::Matrixd::scale(7, 7, 7), 0},
                                           LabelView{"UnderARotatedParent",
                                                     osg::Matrixd::rotate(1.0, osg::Vec3d(1, 2, 3)), 0},
                                           LabelView{"InPerspectiveNear", osg::Matrixd(), 5},
                                           LabelView{"InPerspectiveFar", osg::Matrixd(), 5000}),
                         [](const auto& test) { return test.param.name; });

TEST_F(LabelPicture, TransformsBackWhatItTransforms)
{
    const osg::ref_ptr<ThereAndBack> compare = new ThereAndBack;
    const osg::ref_ptr<CTableMeta> label = new CTableMeta(blueOnYellow("Label"));
    label->setCullCallback(compare);
    PictureRig rig;
    rig.setScene(groupOf({label}));
    rig.render();

    EXPECT_NEAR((compare->moved - compare->point).length(), 0.0, 1e-4); // a unit is a pixel
    EXPECT_NEAR((compare->returned - compare->point).length(), 0.0, 1e-6);
    EXPECT_NEAR(label->getScale().x(), 1.0, 1e-6);
}

TEST_F(LabelPicture, HasAnOutlineOfTwoPixelsWhoseInnerHalfTheFillCovers)
{
    PictureRig rig;
    rig.setScene(groupOf({new CTableMeta(blueOnYellow("Label"))}));
    const osg::ref_ptr<osg::Image> picture = rig.render();

    const PixelBox fill = boxOfColour(*picture, kLabelFill);
    EXPECT_TRUE(boxesNear(boxOfDifference(*picture, kWhite), fill.shrunk(-1), 0));
    for (int x = fill.left + 1; x < fill.right; ++x) // a line may or may not draw the pixel at its end
    {
        EXPECT_EQ(pixelAt(*picture, x, fill.bottom - 1), kLabelInk);
        EXPECT_EQ(pixelAt(*picture, x, fill.top + 1), kLabelInk);
    }
    for (int y = fill.bottom + 1; y < fill.top; ++y) {
        EXPECT_EQ(pixelAt(*picture, fill.left - 1, y), kLabelInk);
        EXPECT_EQ(pixelAt(*picture, fill.right + 1, y), kLabelInk);
    }
}

TEST_F(LabelPicture, IgnoresIsBottom)
{
    CTableMeta::structTableMeta meta = blueOnYellow("Label");
    PictureRig rig;
    rig.setScene(groupOf({new CTableMeta(meta)}));
    const osg::ref_ptr<osg::Image> expected = rig.render();

    meta.isBottom = true;
    rig.setScene(groupOf({new CTableMeta(meta)}));
    EXPECT_TRUE(alike(*rig.render(), *expected, "label-bottom", {0, 0.0})); // the same drawing, bit by bit
}

TEST_F(LabelPicture, DrawsNothingAtAPositionThatIsNotANumber)
{
    CTableMeta::structTableMeta meta = blueOnYellow("Label");
    meta.pos.set(std::nanf(""), 0.0f, 0.0f);
    PictureRig rig;
    rig.setScene(groupOf({new CTableMeta(meta), unlitRectangle({10, 10, 20, 20}, osg::Vec4(0, 1, 0, 1))}));

    const osg::ref_ptr<osg::Image> picture = rig.render();
    EXPECT_TRUE(boxesNear(boxOfDifference(*picture, kWhite), {110, 110, 119, 119}, 0));
    EXPECT_EQ(countPixels(*picture, kGreen), 100);
}

// States

class LabelInState : public PictureTest, public ::testing::WithParamInterface<featureState>
{};

TEST_P(LabelInState, ShowsTheStateInOutlineAndTextAndKeepsItsFill)
{
    const osg::ref_ptr<CTableMeta> label = new CTableMeta(blueOnYellow("Label"));
    label->setState(GetParam() == featureStateNormal ? featureStateSelected : featureStateNormal);
    label->setState(GetParam());
    PictureRig rig;
    rig.setScene(groupOf({label}));
    const osg::ref_ptr<osg::Image> picture = rig.render();

    const PixelBox fill = boxOfColour(*picture, kLabelFill);
    ASSERT_FALSE(fill.isEmpty());
    EXPECT_EQ(pixelAt(*picture, fill.left - 1, fill.bottom + 3), defaultColourOf(GetParam()));
    EXPECT_GT(countPixels(*cut(*picture, fill.shrunk(1)), defaultColourOf(GetParam()), kThinStroke), 20);
    EXPECT_EQ(countPixels(*picture, kLabelInk), 0);
}

TEST_P(LabelInState, KeepsItsColoursInTheScaledLayout)
{
    CTableMeta::structTableMeta meta = blueOnYellow("Label");
    meta.isAutoScale = false;
    const osg::ref_ptr<CTableMeta> label = new CTableMeta(meta);
    PictureRig rig;
    rig.setScene(groupOf({label}));
    const osg::ref_ptr<osg::Image> before = rig.render();

    label->setState(GetParam() == featureStateNormal ? featureStateSelected : featureStateNormal);
    label->setState(GetParam());
    EXPECT_TRUE(alike(*rig.render(), *before, "scaled-label-" + nameOf(GetParam()), {0, 0.0})); // nothing changed
}

INSTANTIATE_TEST_SUITE_P(States, LabelInState,
                         ::testing::Values(featureStateNone, featureStateNormal, featureStateSelected,
                                           featureStateHighlighted),
                         [](const auto& test) { return nameOf(test.param); });

TEST_F(LabelPicture, IsColouredByThePlaneConfiguration)
{
    featurePlaneConfig plane;
    plane.tableSelectedColor.set(1.0f, 0.0f, 1.0f, 1.0f);
    CFeatureConfig::sigleFeatureConfig()->setPlaneConfig(plane);
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    createAutoScaleShpereAndTable("dot", scene, osg::Vec3f(), 1, "Label", -1, featureStateSelected, false);

    PictureRig rig;
    rig.setScene(scene);
    const osg::ref_ptr<osg::Image> picture = rig.render();
    const PixelBox outline = boxOfColour(*picture, {255, 0, 255});
    EXPECT_GT(outline.width(), 30);
    EXPECT_GE(outline.bottom, 100 + 10 - 2);
}

// The scaled layout

TEST_F(LabelPicture, GrowsWithTheZoomInTheScaledLayout)
{
    CTableMeta::structTableMeta meta = blueOnYellow("Label");
    meta.isAutoScale = false;
    PictureRig rig(240, 240);
    rig.setScene(groupOf({new CTableMeta(meta)}));
    const PixelBox once = boxOfColour(*rig.render(), kLabelFill);
    rig.lookInParallel(3.0);
    const PixelBox thrice = boxOfColour(*rig.render(), kLabelFill);

    // One pixel for the rounding of either edge, three for that of the smaller picture.
    EXPECT_NEAR(thrice.width(), 3 * once.width(), 4);
    EXPECT_NEAR(thrice.height(), 3 * once.height(), 4);
    EXPECT_NEAR(thrice.bottom - 120, 3 * (once.bottom - 120), 4);
}

TEST_F(LabelPicture, KeepsItsSizeUnderTheZoomInTheNormalLayout)
{
    PictureRig rig;
    rig.setScene(groupOf({new CTableMeta(blueOnYellow("Label"))}));
    const PixelBox once = boxOfColour(*rig.render(), kLabelFill);
    rig.lookInParallel(30.0);
    EXPECT_TRUE(boxesNear(boxOfColour(*rig.render(), kLabelFill), once, 1)); // one: rounding of the scale
}

TEST_F(LabelPicture, HasTheSizeOfTheNormalLayoutInTheScaledOneWhenAUnitIsAPixel)
{
    CTableMeta::structTableMeta meta = blueOnYellow("Label");
    PictureRig rig;
    rig.setScene(groupOf({new CTableMeta(meta)}));
    const PixelBox normal = boxOfColour(*rig.render(), kLabelFill);
    meta.isAutoScale = false;
    rig.setScene(groupOf({new CTableMeta(meta)}));
    EXPECT_TRUE(boxesNear(boxOfColour(*rig.render(), kLabelFill), normal, 0)); // the same corners
}

TEST_F(LabelPicture, HasABlackOutlineAroundColouredTextInTheScaledLayout)
{
    CTableMeta::structTableMeta meta = blueOnYellow("Label");
    meta.isAutoScale = false;
    PictureRig rig;
    rig.setScene(groupOf({new CTableMeta(meta)}));
    const osg::ref_ptr<osg::Image> picture = rig.render();

    const PixelBox fill = boxOfColour(*picture, kLabelFill);
    EXPECT_TRUE(boxesNear(boxOfColour(*picture, kBlack), fill.shrunk(-1), 0));
    EXPECT_GT(countPixels(*cut(*picture, fill.shrunk(1)), kLabelInk, kThinStroke), 20);
}

TEST_F(LabelPicture, FacesTheViewerInTheScaledLayout)
{
    CTableMeta::structTableMeta meta = blueOnYellow("Label");
    meta.isAutoScale = false;
    PictureRig rig;
    rig.setScene(groupOf({new CTableMeta(meta)}));
    const PixelBox fromAbove = boxOfColour(*rig.render(), kLabelFill);
    rig.camera().setViewMatrixAsLookAt(osg::Vec3d(60, -80, 20), osg::Vec3d(), osg::Z_AXIS);
    EXPECT_TRUE(boxesNear(boxOfColour(*rig.render(), kLabelFill), fromAbove, 1)); // one: rounding of the rotation
}

TEST_F(LabelPicture, LooksAsStoredInTheScaledLayout)
{
    CTableMeta::structTableMeta meta = blueOnYellow("Scaled");
    meta.tableNameIndexSuffix = 7;
    meta.isAutoScale = false;
    PictureRig rig(170, 150);
    rig.lookInParallel(2.0);
    rig.setScene(groupOf({new CTableMeta(meta)}));
    // Share: glyph edges, should another version of the font library round them otherwise.
    EXPECT_TRUE(matchesStored(*rig.render(), "primitives/label-scaled-layout", {8, 0.005}));
}

} // namespace
