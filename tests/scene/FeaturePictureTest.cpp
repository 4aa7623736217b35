#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include "support/PictureRig.h"
#include "support/PictureScenes.h"

#include <gtest/gtest.h>

#include <osg/MatrixTransform>
#include <osg/ValueObject>

#include <array>
#include <limits>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

constexpr int kWidth = 300;
constexpr int kHeight = 120;
constexpr int kOverPlanes = 11; // planes are drawn with what is translucent, in bin 10

/// A dot in the left third of the picture, a line in the middle, a plane on the right.
class FeaturePicture : public PictureTest
{
protected:
    FeaturePicture() { m_rig.setScene(m_scene); }

    void createAllKinds(featureState state = featureStateSelected)
    {
        createAutoScaleShpereAndTable("dot", m_scene, osg::Vec3f(-100, 0, 0), 1, "Dot", 1, state, false);
        createArrowAndTable(state, lineRecord(), m_scene, 1, "Line", 2);
        createPlaneAndTable(state, "plane", m_scene, squareAround(100), osg::Vec3f(0, 0, 1), kOverPlanes, "Plane", 3);
    }

    static CArrowMeta::structArrowMeta lineRecord()
    {
        CArrowMeta::structArrowMeta meta;
        meta.name = "line";
        meta.startPos.set(-30, -30, 0);
        meta.endPos.set(30, 20, 0);
        meta.radius = 3;
        return meta;
    }

    static std::vector<osg::Vec3f> squareAround(float x, float half = 25)
    {
        return {osg::Vec3f(x - half, -half, 0), osg::Vec3f(x + half, -half, 0), osg::Vec3f(x + half, half, 0),
                osg::Vec3f(x - half, half, 0)};
    }

    osg::ref_ptr<osg::Image> render() { return m_rig.render(); }

    /// Whether anything is drawn in the thirds of the picture.
    std::array<bool, 3> shownThirds()
    {
        const osg::ref_ptr<osg::Image> picture = render();
        std::array<bool, 3> shown{};
        for (int i = 0; i < 3; ++i) {
            const PixelBox third{i * kWidth / 3, 0, (i + 1) * kWidth / 3 - 1, kHeight - 1};
            shown[static_cast<std::size_t>(i)] = !boxOfDifference(*cut(*picture, third), kWhite).isEmpty();
        }
        return shown;
    }

    osg::ref_ptr<osg::Group> m_scene = new osg::Group;
    PictureRig m_rig{kWidth, kHeight};
};

constexpr std::array<bool, 3> kAllShown{true, true, true};
constexpr std::array<bool, 3> kNoneShown{false, false, false};

// Assembly

TEST_F(FeaturePicture, OfAllKindsLooksAsStored)
{
    createAllKinds();
    // Share: glyph edges, should another version of the font library round them otherwise.
    EXPECT_TRUE(matchesStored(*render(), "scene/all-kinds", {8, 0.01}));
}

class FeatureInState : public FeaturePicture, public ::testing::WithParamInterface<featureState>
{};

TEST_P(FeatureInState, IsCreatedInTheColoursOfTheState)
{
    createAllKinds(GetParam());
    const osg::ref_ptr<osg::Image> picture = render();
    const Pixel state = defaultColourOf(GetParam());
    const auto isLitIn = [&](const Pixel& pixel) {
        return (pixel.r > 60) == (state.r > 0) && (pixel.g > 60) == (state.g > 0) && pixel.b < 10;
    };
    // A feature created in the normal state keeps the white of its record; its label is black then.
    const bool isFresh = GetParam() == featureStateNormal;
    EXPECT_EQ(isLitIn(pixelAt(*picture, 50, 60)), !isFresh);            // dot
    EXPECT_EQ(isLitIn(pixelAt(*picture, 150 - 15, 60 - 18)), !isFresh); // line
    const PixelBox plane{200, 0, 299, 119};
    const Pixel border = isFresh ? kRed : state; // of the record
    const Pixel drawnBorder{(border.r + 255) / 2, (border.g + 255) / 2, 127};
    EXPECT_GT(countPixels(*cut(*picture, plane), drawnBorder, 1), 80); // half over white
    for (const int anchor : {50, 150, 250})                            // the outline of the label on each
        EXPECT_GT(countPixels(*cut(*picture, {anchor - 40, 60 + 3, anchor + 40, 60 + 12}), state, 0), 40);
}

INSTANTIATE_TEST_SUITE_P(States, FeatureInState,
                         ::testing::Values(featureStateNone, featureStateNormal, featureStateSelected,
                                           featureStateHighlighted),
                         [](const auto& test) { return nameOf(test.param); });

TEST_F(FeaturePicture, HasLabelsUnderTranslucentPlanesUnlessTheirIndexIsHigherThanTen)
{
    for (const int renderIndex : {1, kOverPlanes}) {
        createPlaneAndTable(featureStateSelected, "plane", m_scene, squareAround(0), osg::Vec3f(0, 0, 1), renderIndex,
                            "Plane", 3);
        const Pixel fill = pixelAt(*render(), 150, 60 + 12); // below the text
        EXPECT_EQ(fill == kWhite, renderIndex == kOverPlanes) << fill;
    }
}

TEST_F(FeaturePicture, ReplacesAFeatureOfTheSameName)
{
    createAutoScaleShpereAndTable("dot", m_scene, osg::Vec3f(-100, 0, 0), 1, "Dot", 1, featureStateSelected, false);
    const osg::ref_ptr<osg::Image> expected = render();
    createAutoScaleShpereAndTable("dot", m_scene, osg::Vec3f(0, 0, 0), 1, "Other", 2, featureStateHighlighted, false);
    render();
    createAutoScaleShpereAndTable("dot", m_scene, osg::Vec3f(-100, 0, 0), 1, "Dot", 1, featureStateSelected, false);
    EXPECT_TRUE(alike(*render(), *expected, "feature-replaced", {0, 0.0})); // the same feature again
}

TEST_F(FeaturePicture, MovesWithTheTransformOfTheCommonRoot)
{
    createAutoScaleShpereAndTable("dot", m_scene, osg::Vec3f(-10, 0, 0), 1, "Dot", 1, featureStateSelected, false);
    const PixelBox before = boxOfDifference(*render(), kWhite);
    auto* const transform =
        dynamic_cast<osg::MatrixTransform*>(findOrCreateFeatureRootNode(m_scene, featureAll, false)->getChild(0));
    transform->setMatrix(osg::Matrixd::scale(3, 3, 3) * osg::Matrixd::translate(50, 20, 0));
    // From -10 to -30 + 50: 30 to the right, 20 up, and as large as before.
    const PixelBox expected{before.left + 30, before.bottom + 20, before.right + 30, before.top + 20};
    EXPECT_TRUE(boxesNear(boxOfDifference(*render(), kWhite), expected, 1)); // one: rounding of the scale
}

TEST_F(FeaturePicture, HasTheLabelOfALineAboveItsMidpoint)
{
    CFeatureConfig::sigleFeatureConfig()->setPlaneConfig({{0, 0, 1, 1}, {0, 0, 1, 1}, {0, 1, 0, 1}, {1, 0, 0, 1}});
    CArrowMeta::structArrowMeta meta = lineRecord();
    meta.startPos.set(-60, -50, 0);
    meta.endPos.set(100, 20, 0); // midpoint (20, -15)
    createArrowAndTable(featureStateSelected, meta, m_scene, 1, "Line", 2);
    const PixelBox outline = boxOfColour(*render(), kBlue);
    EXPECT_NEAR(outline.centreX(), 150 + 20, 1);
    EXPECT_NEAR(outline.bottom, 60 - 15 + 10 - 1, 1);
}

TEST_F(FeaturePicture, HasTheLabelOfAPlaneAboveItsCentroid)
{
    CFeatureConfig::sigleFeatureConfig()->setPlaneConfig({{0, 0, 1, 1}, {0, 0, 1, 1}, {0, 1, 0, 1}, {1, 0, 0, 1}});
    createPlaneAndTable(featureStateSelected, "plane", m_scene, squareAround(40), osg::Vec3f(0, 0, 1), 1, "Plane", 3);
    const PixelBox outline = boxOfColour(*render(), kBlue);
    EXPECT_NEAR(outline.centreX(), 150 + 40, 1);
    EXPECT_NEAR(outline.bottom, 60 + 10 - 1, 1);
}

struct NormalArrows
{
    const char* name;
    float side;
    osg::Vec3f normal;
    int height; // in the picture, of what stands on the plane
};

class PlaneWithNormal : public FeaturePicture, public ::testing::WithParamInterface<NormalArrows>
{};

TEST_P(PlaneWithNormal, HasNormalArrowsOfTheLengthThatItsSideGives)
{
    const osg::ref_ptr<osg::Group> plane = createPlaneAndTable(
        featureStateSelected, "plane", m_scene, squareAround(0, GetParam().side / 2), GetParam().normal, 1, "Plane", 3);
    const osg::ref_ptr<osg::Node> label = plane->getChild(plane->getNumChildren() - 1);
    label->setNodeMask(0); // out of the picture
    m_rig.camera().setViewMatrixAsLookAt(osg::Vec3d(0, -100, 0), osg::Vec3d(), osg::Z_AXIS);

    const PixelBox drawn = boxOfDifference(*render(), kWhite);
    // Seen from the side the plane is its border, three pixels wide or fewer.
    EXPECT_NEAR(drawn.top - 60, GetParam().height, 2);
    EXPECT_LE(60 - drawn.bottom, 3);
}

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
INSTANTIATE_TEST_SUITE_P(Planes, PlaneWithNormal,
                         ::testing::Values(NormalArrows{"OfSideTen", 10, {0, 0, 1}, 4},
                                           NormalArrows{"OfSideHundred", 100, {0, 0, 1}, 20},
                                           NormalArrows{"OfSideHundredAndNormalTwo", 100, {0, 0, 2}, 40},
                                           NormalArrows{"OfNoNormal", 100, {kNaN, 0, 0}, 1}),
                         [](const auto& test) { return test.param.name; });

TEST_F(FeaturePicture, OfAFlagDotIsRedAndLargerInSphereAndLabel)
{
    createAutoScaleShpereAndTable("dot", m_scene, osg::Vec3f(-100, 0, 0), 1, "Dot", 1, featureStateSelected, false);
    createFlagAutoScaleShpereAndTable("flag", m_scene, osg::Vec3f(100, 0, 0), 1, "Dot", 1, featureDot, true, false);
    const osg::ref_ptr<osg::Image> picture = render();
    const auto boxBetween = [&](int left, int bottom, int right, int top) {
        return boxOfDifference(*cut(*picture, {left, bottom, right, top}), kWhite);
    };
    EXPECT_NEAR(boxBetween(0, 40, 99, 68).width(), 2 * 3, 1); // spheres: up to the labels
    EXPECT_NEAR(boxBetween(200, 40, 299, 68).width(), 2 * (4 + 5), 1);
    const PixelBox dotLabel = boxBetween(0, 70, 99, 119);
    const PixelBox flagLabel = boxBetween(200, 70, 299, 119);
    EXPECT_NEAR(flagLabel.height() - 2, (dotLabel.height() - 2) * 19.0 / 14.0, 2); // the font sizes; whole pixels
}

TEST_F(FeaturePicture, OfAFlagDotIsHiddenWithTheRootThatItHangsUnder)
{
    createFlagAutoScaleShpereAndTable("flag", m_scene, osg::Vec3f(100, 0, 0), 1, "Dot", 1, featureLine, true, false);
    switchFeatureRoot(m_scene, false, featureDot);
    EXPECT_TRUE(shownThirds()[2]);
    switchFeatureRoot(m_scene, false, featureLine);
    EXPECT_FALSE(shownThirds()[2]);
}

TEST_F(FeaturePicture, OfAPlainSphereIsBlueAndReplacesItself)
{
    findOrCreateShpere("sphere", m_scene, osg::Vec3f(-100, 0, 0));
    findOrCreateShpere("sphere", m_scene, osg::Vec3f(100, 0, 0));
    m_rig.lookInParallel(1.0);
    EXPECT_EQ(shownThirds(), (std::array<bool, 3>{false, false, true}));
    const PixelBox sphere = boxOfDifference(*render(), kWhite);
    EXPECT_LE(sphere.width(), 3); // a radius of one unit, which is a pixel here
    const Pixel colour = pixelAt(*render(), 249, 60);
    EXPECT_GT(colour.b, colour.r + 50);
}

// Visibility

struct SwitchedKind
{
    const char* name;
    featureType kind;
    std::array<bool, 3> shown; // while it is off
};

class SwitchedRoot : public FeaturePicture, public ::testing::WithParamInterface<SwitchedKind>
{};

TEST_P(SwitchedRoot, HidesAndShowsItsFeaturesWithTheirLabels)
{
    createAllKinds();
    const osg::ref_ptr<osg::Image> before = render();
    EXPECT_TRUE(switchFeatureRoot(m_scene, false, GetParam().kind));
    EXPECT_EQ(shownThirds(), GetParam().shown);
    EXPECT_TRUE(switchFeatureRoot(m_scene, true, GetParam().kind));
    EXPECT_TRUE(alike(*render(), *before, std::string("switched-") + GetParam().name, {0, 0.0})); // all back again
}

INSTANTIATE_TEST_SUITE_P(Kinds, SwitchedRoot,
                         ::testing::Values(SwitchedKind{"Dots", featureDot, {false, true, true}},
                                           SwitchedKind{"Lines", featureLine, {true, false, true}},
                                           SwitchedKind{"Planes", featurePlane, {true, true, false}},
                                           SwitchedKind{"Tables", featureTable, kNoneShown},
                                           SwitchedKind{"FlagDots", featureFlagDot, kNoneShown},
                                           SwitchedKind{"All", featureAll, kNoneShown},
                                           SwitchedKind{"Unknown", static_cast<featureType>(42), kNoneShown}),
                         [](const auto& test) { return test.param.name; });

/// A lasting, a temporary and a falsely marked dot, in the thirds of the picture.
class TemporaryFeature : public FeaturePicture
{
protected:
    TemporaryFeature()
    {
        createDot("lasting", -100);
        createDot("temporary", 0)->setUserValue("tmpData", true);
        createDot("marked with a number", 100)->setUserValue("tmpData", 1);
    }

    osg::ref_ptr<osg::Group> createDot(const char* name, float x)
    {
        return createAutoScaleShpereAndTable(name, m_scene, osg::Vec3f(x, 0, 0), 1, "Dot", 1, featureStateSelected,
                                             false);
    }

    static constexpr std::array<bool, 3> kWithoutTemporary{true, false, true};
};

TEST_F(TemporaryFeature, IsHiddenAloneAndShownAgain)
{
    const osg::ref_ptr<osg::Image> before = render();
    EXPECT_TRUE(switchFeatureRootFlagNode(m_scene, false, featureDot));
    EXPECT_EQ(shownThirds(), kWithoutTemporary);
    EXPECT_TRUE(switchFeatureRootFlagNode(m_scene, true, featureDot));
    EXPECT_TRUE(alike(*render(), *before, "temporary-shown", {0, 0.0})); // all back again
}

TEST_F(TemporaryFeature, StaysWhenThoseOfOtherKindsAreHidden)
{
    switchFeatureRootFlagNode(m_scene, false, featureLine);
    switchFeatureRootFlagNode(m_scene, false, featureAll);
    EXPECT_EQ(shownThirds(), kAllShown);
}

TEST_F(TemporaryFeature, IsGoneAloneAfterClearingItsKind)
{
    EXPECT_TRUE(clearFeatureRootTempNode(m_scene, featureDot));
    EXPECT_EQ(shownThirds(), kWithoutTemporary);
}

TEST_F(TemporaryFeature, IsGoneAloneAfterClearingAllKinds)
{
    EXPECT_FALSE(clearFeatureRootTempNode(m_scene, featureAll));
    EXPECT_EQ(shownThirds(), kWithoutTemporary);
}

TEST_F(FeaturePicture, IsEmptyAfterRemovingAllFeatures)
{
    createAllKinds();
    EXPECT_TRUE(removeFeatureRoot(m_scene, featureAll));
    EXPECT_EQ(shownThirds(), kNoneShown);
}

class RemovedKind : public FeaturePicture, public ::testing::WithParamInterface<featureType>
{};

TEST_P(RemovedKind, StaysInThePicture)
{
    createAllKinds();
    const osg::ref_ptr<osg::Image> before = render();
    EXPECT_TRUE(removeFeatureRoot(m_scene, GetParam()));
    EXPECT_TRUE(alike(*render(), *before, "removed-" + std::to_string(GetParam()), {0, 0.0})); // nothing was removed
}

INSTANTIATE_TEST_SUITE_P(Kinds, RemovedKind, ::testing::Values(featureDot, featureLine, featurePlane, featureTable),
                         [](const auto& test) { return "Kind" + std::to_string(test.param); });

TEST_F(FeaturePicture, OfAFeatureThatTheHostRemovesIsGone)
{
    createAllKinds();
    osg::ref_ptr<osg::Group> parent;
    const osg::ref_ptr<osg::Node> line = findFeatureByName("line", m_scene, parent);
    parent->removeChild(line);
    EXPECT_EQ(shownThirds(), (std::array<bool, 3>{true, false, true}));
}

} // namespace
