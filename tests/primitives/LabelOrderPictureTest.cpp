#include <KelvOsgTools/CTableMeta.h>

#include "support/PictureRig.h"
#include "support/PictureScenes.h"

#include <gtest/gtest.h>

#include <climits>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

constexpr int kInsideLabelX = 77; // left of the text, in a picture 200 wide around the label's anchor
constexpr int kInsideLabelY = 125;

osg::ref_ptr<CTableMeta> labelOf(const osg::Vec3f& fill, int renderIndex)
{
    CTableMeta::structTableMeta meta = blueOnYellow("A label");
    meta.backgroundColor = fill;
    meta.renderIndex = renderIndex;
    return new CTableMeta(meta);
}

osg::ref_ptr<osg::Image> pictureOf(std::initializer_list<osg::Node*> nodes)
{
    PictureRig rig;
    rig.setScene(groupOf(nodes));
    return rig.render();
}

const osg::Vec3f kFirstFill(1.0f, 1.0f, 0.0f);
const osg::Vec3f kSecondFill(0.0f, 1.0f, 1.0f);
const Pixel kSecondFillPixel{0, 255, 255};

struct BinPair
{
    const char* name;
    int lower;
    int higher;
};

class LabelsInBins : public PictureTest, public ::testing::WithParamInterface<BinPair>
{};

TEST_P(LabelsInBins, TheHigherIndexIsDrawnOverTheLowerWhateverTheirOrderInTheScene)
{
    const osg::ref_ptr<CTableMeta> lower = labelOf(kFirstFill, GetParam().lower);
    const osg::ref_ptr<CTableMeta> higher = labelOf(kSecondFill, GetParam().higher);

    EXPECT_EQ(pixelAt(*pictureOf({lower, higher}), kInsideLabelX, kInsideLabelY), kSecondFillPixel);
    EXPECT_EQ(pixelAt(*pictureOf({higher, lower}), kInsideLabelX, kInsideLabelY), kSecondFillPixel);
}

INSTANTIATE_TEST_SUITE_P(Indices, LabelsInBins,
                         ::testing::Values(BinPair{"OneAndTwo", 1, 2}, BinPair{"ZeroAndOne", 0, 1},
                                           BinPair{"MinusOneAndZero", -1, 0}, BinPair{"MinusThreeAndMinusTwo", -3, -2},
                                           BinPair{"NineAndEleven", 9, 11}, BinPair{"OneAndLargest", 1, INT_MAX},
                                           BinPair{"SmallestAndMinusOne", INT_MIN, -1}),
                         [](const auto& test) { return test.param.name; });

class LabelOrder : public PictureTest
{};

TEST_F(LabelOrder, OfEqualIndicesTheLaterInTheSceneIsDrawnOver)
{
    const osg::ref_ptr<CTableMeta> first = labelOf(kFirstFill, 5);
    const osg::ref_ptr<CTableMeta> second = labelOf(kSecondFill, 5);
    EXPECT_EQ(pixelAt(*pictureOf({first, second}), kInsideLabelX, kInsideLabelY), kSecondFillPixel);
    EXPECT_EQ(pixelAt(*pictureOf({second, first}), kInsideLabelX, kInsideLabelY), kYellow);
}

/// A label whose own text cannot be told from its fill.
osg::ref_ptr<CTableMeta> coverOf(int renderIndex)
{
    CTableMeta::structTableMeta meta = blueOnYellow("A label");
    meta.backgroundColor = kSecondFill;
    meta.textColor = osg::Vec4f(kSecondFill, 1.0f);
    meta.renderIndex = renderIndex;
    return new CTableMeta(meta);
}

TEST_F(LabelOrder, OfEqualIndicesTheLowerTextShowsThrough)
{
    const PixelBox inside = boxOfColour(*pictureOf({coverOf(5)}), kSecondFillPixel).shrunk(3);
    const auto shades = [&](int coverIndex) {
        const osg::ref_ptr<osg::Image> found = cut(*pictureOf({labelOf(kFirstFill, 5), coverOf(coverIndex)}), inside);
        return found->s() * found->t() - countPixels(*found, kSecondFillPixel, 2);
    };
    EXPECT_GT(shades(5), 20);
    EXPECT_EQ(shades(6), 0);
}

TEST_F(LabelOrder, ALabelIsDrawnOverANearerMeshAndUnlit)
{
    const osg::ref_ptr<osg::Node> mesh = unlitRectangle({-60, -60, 60, 60, 50}, osg::Vec4(0, 1, 0, 1));
    const osg::ref_ptr<osg::Image> alone = pictureOf({labelOf(kFirstFill, 1)});
    const osg::ref_ptr<osg::Image> overMesh = pictureOf({labelOf(kFirstFill, 1), mesh});

    const PixelBox label = boxOfDifference(*alone, kWhite).shrunk(1);
    EXPECT_TRUE(
        alike(*cut(*overMesh, label), *cut(*alone, label), "label-over-mesh", {0, 0.0})); // nothing shines through
    EXPECT_EQ(pixelAt(*overMesh, 50, 50), kGreen);
}

TEST_F(LabelOrder, ALabelOfANegativeIndexIsDrawnBeforeTheMeshWhichThenCoversIt)
{
    const osg::ref_ptr<osg::Node> mesh = unlitRectangle({-60, -60, 60, 60, -50}, osg::Vec4(0, 1, 0, 1));
    EXPECT_EQ(pixelAt(*pictureOf({mesh, labelOf(kFirstFill, -1)}), kInsideLabelX, kInsideLabelY), kGreen);
    EXPECT_EQ(pixelAt(*pictureOf({mesh, labelOf(kFirstFill, 1)}), kInsideLabelX, kInsideLabelY), kYellow);
}

TEST_F(LabelOrder, ALabelOfIndexZeroIsDrawnOverTheMeshWhateverTheirOrderInTheScene)
{
    const osg::ref_ptr<osg::Node> mesh = unlitRectangle({-60, -60, 60, 60, 50}, osg::Vec4(0, 1, 0, 1));
    EXPECT_EQ(pixelAt(*pictureOf({labelOf(kFirstFill, 0), mesh}), kInsideLabelX, kInsideLabelY), kYellow);
    EXPECT_EQ(pixelAt(*pictureOf({mesh, labelOf(kFirstFill, 0)}), kInsideLabelX, kInsideLabelY), kYellow);
}

TEST_F(LabelOrder, TwoOverlappingLabelsLookAsStored)
{
    CTableMeta::structTableMeta lower = blueOnYellow("Below");
    CTableMeta::structTableMeta higher = blueOnYellow("Above");
    lower.pos.set(-15, -25, 0);
    lower.renderIndex = 3;
    higher.pos.set(15, -40, -20); // farther away, yet drawn over
    higher.renderIndex = 4;
    higher.backgroundColor.set(0.8f, 1.0f, 0.8f);

    PictureRig rig(120, 80);
    rig.setScene(groupOf({new CTableMeta(higher), new CTableMeta(lower)}));
    // Share: glyph edges, should another version of the font library round them otherwise.
    EXPECT_TRUE(matchesStored(*rig.render(), "primitives/label-over-label", {8, 0.005}));
}

} // namespace
