#include "support/Config.h"
#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CTableMeta.h>

#include <gtest/gtest.h>

#include <osg/MatrixTransform>
#include <osg/ShapeDrawable>
#include <osg/io_utils>
#include <osg/observer_ptr>

#include <algorithm>
#include <limits>

namespace {
using namespace KelvOsgTools;
using kelvtest::childOf;
using kelvtest::labelSaying;
using kelvtest::lineArrow;
using kelvtest::overallColour;
using kelvtest::solidArrow;

const osg::Vec4f kBlack(0.0f, 0.0f, 0.0f, 1.0f);
const osg::Vec4f kColour(0.1f, 0.2f, 0.3f, 0.4f);

osg::ref_ptr<CArrowMeta> make(const CArrowMeta::structArrowMeta& meta)
{
    return new CArrowMeta(meta);
}

osg::MatrixTransform& transformOf(CArrowMeta& arrow, unsigned int part)
{
    return *childOf<osg::MatrixTransform>(arrow, part);
}

template <typename Drawable>
Drawable& drawableOf(CArrowMeta& arrow, unsigned int part)
{
    return dynamic_cast<Drawable&>(*childOf<osg::Geode>(transformOf(arrow, part), 0)->getDrawable(0));
}

osg::Geometry& lineOf(CArrowMeta& arrow)
{
    return drawableOf<osg::Geometry>(arrow, 0);
}

const osg::Vec3Array& verticesOf(CArrowMeta& arrow)
{
    return dynamic_cast<const osg::Vec3Array&>(*lineOf(arrow).getVertexArray());
}

osg::ShapeDrawable& shaftOf(CArrowMeta& arrow)
{
    return drawableOf<osg::ShapeDrawable>(arrow, 0);
}

osg::ShapeDrawable& headOf(CArrowMeta& arrow)
{
    return drawableOf<osg::ShapeDrawable>(arrow, 1);
}

::testing::AssertionResult near(const osg::Vec3d& a, const osg::Vec3d& b)
{
    if ((a - b).length() < 1e-5) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << a << " instead of " << b;
}

/// Where a point of a part's own coordinates lies in those of the arrow's parent.
osg::Vec3d placed(CArrowMeta& arrow, unsigned int part, const osg::Vec3d& point)
{
    return point * transformOf(arrow, part).getMatrix();
}

// Record

TEST(ArrowRecord, HasItsDefaults)
{
    const CArrowMeta::structArrowMeta meta;
    EXPECT_EQ(meta.startPos, osg::Vec3f());
    EXPECT_EQ(meta.endPos, osg::Vec3f());
    EXPECT_EQ(meta.name, "ConeAndCylinderMeta");
    EXPECT_EQ(meta.color, osg::Vec4f(1.0f, 1.0f, 1.0f, 1.0f));
    EXPECT_EQ(meta.radius, 0.1f);
    EXPECT_EQ(meta.ratio, 3.0f);
    EXPECT_FALSE(meta.isLineArrow);
    EXPECT_EQ(meta.lineWidth, 2.0f);
    EXPECT_TRUE(meta.isDepthTest);
    EXPECT_TRUE(meta.isArrowHead);
}

TEST(CArrowMeta, KeepsACopyOfItsRecord)
{
    CArrowMeta::structArrowMeta meta{{1, 2, 3}, {4, 5, 6}, "arrow", kColour, 0.7f, 1.5f, true, 4.0f, false, false};
    const osg::ref_ptr<CArrowMeta> arrow = make(meta);
    meta = {};
    EXPECT_EQ(arrow->getStartPos(), osg::Vec3f(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(arrow->getEndPos(), osg::Vec3f(4.0f, 5.0f, 6.0f));
    const CArrowMeta::structArrowMeta& kept = arrow->getMetaStruct();
    EXPECT_EQ(kept.name, "arrow");
    EXPECT_EQ(kept.color, kColour);
    EXPECT_EQ(kept.radius, 0.7f);
    EXPECT_EQ(kept.ratio, 1.5f);
    EXPECT_TRUE(kept.isLineArrow);
    EXPECT_EQ(kept.lineWidth, 4.0f);
    EXPECT_FALSE(kept.isDepthTest);
    EXPECT_FALSE(kept.isArrowHead);
}

class AnyArrow : public ::testing::TestWithParam<bool>
{
protected:
    osg::ref_ptr<CArrowMeta> arrow() const
    {
        CArrowMeta::structArrowMeta meta = solidArrow({1.0f, 2.0f, 3.0f}, {4.0f, 6.0f, 3.0f});
        meta.isLineArrow = GetParam();
        meta.color = kColour;
        return make(meta);
    }

    static osg::Vec4f colourOf(CArrowMeta& arrow)
    {
        return GetParam() ? overallColour(lineOf(arrow)).value() : shaftOf(arrow).getColor();
    }
};

TEST_P(AnyArrow, IsAMarkedFeatureNodeWithoutAName)
{
    const osg::ref_ptr<CArrowMeta> made = arrow();
    EXPECT_EQ(kelvtest::kindOf(*made), 2);
    EXPECT_STREQ(made->className(), "Switch");
    EXPECT_EQ(made->getName(), "");
}

TEST_P(AnyArrow, IsBlackNotInItsOwnColourAfterAChangeOfState)
{
    const osg::ref_ptr<CArrowMeta> made = arrow();
    made->setState(featureStateSelected);
    made->setState(featureStateNormal);
    EXPECT_EQ(colourOf(*made), kBlack);
}

TEST_P(AnyArrow, StartsNormalSoThatNormalChangesNothing)
{
    const osg::ref_ptr<CArrowMeta> made = arrow();
    made->setState(featureStateNormal);
    EXPECT_EQ(colourOf(*made), kColour);
}

TEST_P(AnyArrow, FollowsTheArrowConfiguration)
{
    const kelvtest::RestoredConfig config;
    const osg::Vec4f wrong(0.9f, 0.0f, 0.9f, 1.0f);
    const osg::Vec4f highlighted(0.4f, 0.5f, 0.6f, 0.7f);
    const osg::Vec4f selected(0.1f, 0.2f, 0.3f, 0.8f);
    config->setArrowConfig({wrong, wrong, highlighted, selected});
    config->setPlaneConfig({wrong, wrong, wrong, wrong});
    const osg::ref_ptr<CArrowMeta> made = arrow();
    for (const auto& [state, color] : std::vector<std::pair<int, osg::Vec4f>>{{2, selected},
                                                                              {3, highlighted},
                                                                              {0, kBlack},
                                                                              {2, selected},
                                                                              {-1, kBlack},
                                                                              {3, highlighted},
                                                                              {99, kBlack}}) {
        made->setState(static_cast<featureState>(state));
        EXPECT_EQ(colourOf(*made), color) << state;
    }
}

TEST_P(AnyArrow, MakesATableItsLabelAndLastChild)
{
    const osg::ref_ptr<CArrowMeta> made = arrow();
    const unsigned int parts = made->getNumChildren();
    const osg::ref_ptr<CTableMeta> table = new CTableMeta(labelSaying("Gap"));
    EXPECT_TRUE(made->addTable(table));
    ASSERT_EQ(made->getNumChildren(), parts + 1);
    EXPECT_EQ(made->getChild(parts), table);
}

TEST_P(AnyArrow, RefusesANullLabelAndKeepsTheOneItHas)
{
    const osg::ref_ptr<CArrowMeta> made = arrow();
    made->addTable(new CTableMeta(labelSaying("Gap")));
    const unsigned int children = made->getNumChildren();
    EXPECT_FALSE(made->addTable(nullptr));
    EXPECT_EQ(made->getNumChildren(), children);
    made->setState(featureStateSelected);
    EXPECT_EQ(kelvtest::firstBelow<osgText::Text>(*made, "textNode")->getColor(), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST_P(AnyArrow, AcceptsAGroupThatIsNoTableWithoutKeepingIt)
{
    const osg::ref_ptr<CArrowMeta> made = arrow();
    made->addTable(new CTableMeta(labelSaying("Gap")));
    const unsigned int children = made->getNumChildren();
    EXPECT_TRUE(made->addTable(new osg::Group));
    EXPECT_EQ(made->getNumChildren(), children);
    made->setState(featureStateSelected); // no longer reaches the label
    EXPECT_EQ(kelvtest::firstBelow<osgText::Text>(*made, "textNode")->getColor(), kBlack);
}

TEST_P(AnyArrow, KeepsAFormerLabelAsAChildThatNoStateReaches)
{
    const osg::ref_ptr<CArrowMeta> made = arrow();
    made->addTable(new CTableMeta(labelSaying("first")));
    made->addTable(new CTableMeta(labelSaying("second")));
    made->setState(featureStateSelected);
    const auto texts = kelvtest::namedBelow<osgText::Text>(*made, "textNode");
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0]->getColor(), kBlack);
    EXPECT_EQ(texts[1]->getColor(), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST_P(AnyArrow, SharesPartsLabelAndRecordWithItsCopy)
{
    const osg::ref_ptr<CArrowMeta> made = arrow();
    made->addTable(new CTableMeta(labelSaying("Gap")));
    const osg::ref_ptr<CArrowMeta> copy = new CArrowMeta(*made);
    ASSERT_EQ(copy->getNumChildren(), made->getNumChildren());
    EXPECT_EQ(copy->getChild(0), made->getChild(0));
    EXPECT_EQ(copy->getEndPos(), made->getEndPos());
    EXPECT_EQ(copy->getMetaStruct().isLineArrow, GetParam());
    EXPECT_EQ(kelvtest::kindOf(*copy), 2);
    copy->setState(featureStateSelected);
    EXPECT_EQ(kelvtest::firstBelow<osgText::Text>(*made, "textNode")->getColor(), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST_P(AnyArrow, GivesItsCopyItsState)
{
    const osg::ref_ptr<CArrowMeta> made = arrow();
    made->setState(featureStateSelected);
    const osg::ref_ptr<CArrowMeta> copy = new CArrowMeta(*made);
    made->setState(featureStateNormal);
    copy->setState(featureStateSelected); // the copy's state all along
    EXPECT_EQ(colourOf(*made), kBlack);
}

TEST_P(AnyArrow, TakesAStateWhereItsPartsAreGone)
{
    const osg::ref_ptr<CArrowMeta> made = arrow();
    made->removeChildren(0, made->getNumChildren());
    made->addTable(new CTableMeta(labelSaying("Gap")));
    made->setState(featureStateSelected);
    EXPECT_EQ(kelvtest::firstBelow<osgText::Text>(*made, "textNode")->getColor(), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST_P(AnyArrow, PassesOverNodesOfItsPartsNamesThatAreOfAnotherType)
{
    const osg::ref_ptr<CArrowMeta> made = arrow();
    for (const char* const name : {"arrowLineNode", "cylinderDrawable", "coneDrawable"})
        made->insertChild(0, kelvtest::namedGroup(name));
    made->setState(featureStateSelected);
    for (osg::ShapeDrawable* shape : kelvtest::nodesOfType<osg::ShapeDrawable>(*made))
        EXPECT_EQ(shape->getColor(), kColour);
}

INSTANTIATE_TEST_SUITE_P(Modes, AnyArrow, ::testing::Values(false, true),
                         [](const auto& mode) { return mode.param ? "Line" : "Solid"; });

// Solid arrow

TEST(SolidArrow, HoldsShaftAndHeadInThatOrder)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(solidArrow({}, {0.0f, 0.0f, 10.0f}));
    ASSERT_EQ(arrow->getNumChildren(), 2u);
    EXPECT_EQ(shaftOf(*arrow).getName(), "cylinderDrawable");
    EXPECT_EQ(headOf(*arrow).getName(), "coneDrawable");
    EXPECT_NE(dynamic_cast<const osg::Cylinder*>(shaftOf(*arrow).getShape()), nullptr);
    EXPECT_NE(dynamic_cast<const osg::Cone*>(headOf(*arrow).getShape()), nullptr);
}

TEST(SolidArrow, GivesTheShaftFourFifthsOfTheLength)
{
    CArrowMeta::structArrowMeta meta = solidArrow({}, {0.0f, 0.0f, 10.0f});
    meta.radius = 0.5f;
    const osg::ref_ptr<CArrowMeta> arrow = make(meta);
    const auto& shaft = dynamic_cast<const osg::Cylinder&>(*shaftOf(*arrow).getShape());
    EXPECT_FLOAT_EQ(shaft.getHeight(), 8.0f);
    EXPECT_EQ(shaft.getRadius(), 0.5f);
    EXPECT_EQ(shaft.getCenter(), osg::Vec3f());
    EXPECT_TRUE(near(transformOf(*arrow, 0).getMatrix().getTrans(), {0.0, 0.0, 4.0}));
}

TEST(SolidArrow, GivesTheHeadTheRestAndTwiceTheRadius)
{
    CArrowMeta::structArrowMeta meta = solidArrow({}, {0.0f, 0.0f, 10.0f});
    meta.radius = 0.5f;
    const osg::ref_ptr<CArrowMeta> arrow = make(meta);
    const auto& head = dynamic_cast<const osg::Cone&>(*headOf(*arrow).getShape());
    EXPECT_FLOAT_EQ(head.getHeight(), 2.0f);
    EXPECT_EQ(head.getRadius(), 1.0f);
    EXPECT_EQ(head.getCenter(), osg::Vec3f());
    EXPECT_TRUE(near(transformOf(*arrow, 1).getMatrix().getTrans(), {0.0, 0.0, 8.5}));
}

TEST(SolidArrow, ColoursAndTessellatesBothShapesByTheRecord)
{
    CArrowMeta::structArrowMeta meta = solidArrow({}, {0.0f, 0.0f, 10.0f});
    meta.color = kColour;
    meta.ratio = 1.5f;
    const osg::ref_ptr<CArrowMeta> arrow = make(meta);
    EXPECT_EQ(shaftOf(*arrow).getColor(), kColour);
    EXPECT_EQ(headOf(*arrow).getColor(), kColour);
    const osg::TessellationHints& hints = *shaftOf(*arrow).getTessellationHints();
    EXPECT_EQ(headOf(*arrow).getTessellationHints(), &hints);
    EXPECT_EQ(hints.getDetailRatio(), 1.5f);
    EXPECT_EQ(hints.getTargetNumFaces(), 100u);
    EXPECT_EQ(hints.getTessellationMode(), osg::TessellationHints::USE_SHAPE_DEFAULTS);
    EXPECT_TRUE(hints.getCreateFrontFace());
    EXPECT_FALSE(hints.getCreateBackFace());
    EXPECT_TRUE(hints.getCreateNormals());
    EXPECT_FALSE(hints.getCreateTextureCoords());
    EXPECT_TRUE(hints.getCreateTop() && hints.getCreateBody() && hints.getCreateBottom());
}

TEST(SolidArrow, SharesTheNormalsOfHeadsThatRiseAlike)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(solidArrow({}, {0.0f, 0.0f, 10.0f}));
    const osg::ref_ptr<CArrowMeta> nearlyAlike = make(solidArrow({}, {0.0f, 0.0f, 10.001f}));
    const osg::ref_ptr<CArrowMeta> longer = make(solidArrow({}, {0.0f, 0.0f, 20.0f}));
    EXPECT_EQ(headOf(*arrow).getNormalArray(), headOf(*nearlyAlike).getNormalArray());
    EXPECT_NE(headOf(*arrow).getNormalArray(), headOf(*longer).getNormalArray());
}

TEST(SolidArrow, KeepsNoNormalsThatNoHeadUses)
{
    osg::ref_ptr<CArrowMeta> arrow = make(solidArrow({}, {0.0f, 0.0f, 10.0f}));
    const osg::observer_ptr<osg::Array> normals = headOf(*arrow).getNormalArray();
    arrow = nullptr;
    EXPECT_FALSE(normals.valid());
}

class HeadOfLength : public ::testing::TestWithParam<float>
{};

/// The greatest z of a drawable's normals.
float steepestRise(const osg::ShapeDrawable& drawable)
{
    float rise = -1.0f;
    for (const osg::Vec3f& normal : dynamic_cast<const osg::Vec3Array&>(*drawable.getNormalArray()))
        rise = std::max(rise, normal.z());
    return rise;
}

TEST_P(HeadOfLength, IsShadedAsAConeOfOpenSceneGraphIs)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(solidArrow({}, {0.0f, 0.0f, GetParam()}));
    const auto& cone = dynamic_cast<const osg::Cone&>(*headOf(*arrow).getShape());
    const osg::ref_ptr<osg::ShapeDrawable> stock =
        new osg::ShapeDrawable(new osg::Cone(osg::Vec3f(), cone.getRadius(), cone.getHeight()));
    EXPECT_NEAR(steepestRise(headOf(*arrow)), steepestRise(*stock), 2e-4); // a twentieth of a colour level
}

INSTANTIATE_TEST_SUITE_P(SolidArrow, HeadOfLength, ::testing::Values(0.01f, 0.3f, 1.0f, 3.0f, 7.77f, 100.0f, 1e6f));

TEST(SolidArrow, ColoursShaftAndHeadByState)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(solidArrow({}, {0.0f, 0.0f, 10.0f}));
    arrow->setState(featureStateHighlighted);
    EXPECT_EQ(shaftOf(*arrow).getColor(), osg::Vec4f(0.0f, 1.0f, 0.0f, 1.0f));
    EXPECT_EQ(headOf(*arrow).getColor(), osg::Vec4f(0.0f, 1.0f, 0.0f, 1.0f));
}

TEST(SolidArrow, ColoursTheHeadEvenWhereTheShaftIsGone)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(solidArrow({}, {0.0f, 0.0f, 10.0f}));
    arrow->removeChildren(0, 1);
    arrow->setState(featureStateHighlighted);
    EXPECT_EQ(shaftOf(*arrow).getName(), "coneDrawable");
    EXPECT_EQ(shaftOf(*arrow).getColor(), osg::Vec4f(0.0f, 1.0f, 0.0f, 1.0f));
}

TEST(SolidArrow, IgnoresTheStateThatItHasEvenIfColoursChanged)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(solidArrow({}, {0.0f, 0.0f, 10.0f}));
    arrow->setState(featureStateHighlighted);
    shaftOf(*arrow).setColor(kColour);
    arrow->setState(featureStateHighlighted);
    EXPECT_EQ(shaftOf(*arrow).getColor(), kColour);
}

TEST(SolidArrow, HasDynamicShapes)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(solidArrow({}, {0.0f, 0.0f, 10.0f}));
    EXPECT_EQ(shaftOf(*arrow).getDataVariance(), osg::Object::DYNAMIC);
    EXPECT_EQ(headOf(*arrow).getDataVariance(), osg::Object::DYNAMIC);
}

TEST(SolidArrow, TakesNoHeedOfTheLineOptions)
{
    CArrowMeta::structArrowMeta meta = solidArrow({}, {0.0f, 0.0f, 10.0f});
    meta.isDepthTest = false;
    meta.isArrowHead = false;
    const osg::ref_ptr<CArrowMeta> arrow = make(meta);
    EXPECT_EQ(arrow->getNumChildren(), 2u);
    EXPECT_EQ(transformOf(*arrow, 0).getChild(0)->getStateSet(), nullptr);
}

// Both modes along any direction

struct Course
{
    const char* label;
    osg::Vec3f start;
    osg::Vec3f end;
};

void PrintTo(const Course& course, std::ostream* stream)
{
    *stream << course.label;
}

class ArrowAlong : public ::testing::TestWithParam<Course>
{
protected:
    osg::Vec3d start() const { return GetParam().start; }
    osg::Vec3d end() const { return GetParam().end; }
    double length() const { return (end() - start()).length(); }
};

TEST_P(ArrowAlong, CoversTheWholeWayWhenSolid)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(solidArrow(GetParam().start, GetParam().end));
    const double shaft = 0.8 * length();
    const double head = length() - shaft;
    const osg::Vec3d joint = start() + (end() - start()) * 0.8;
    EXPECT_TRUE(near(placed(*arrow, 0, {0.0, 0.0, -shaft / 2.0}), start()));
    EXPECT_TRUE(near(placed(*arrow, 0, {0.0, 0.0, shaft / 2.0}), joint));
    EXPECT_TRUE(near(placed(*arrow, 1, {0.0, 0.0, -head * 0.25}), joint));
    EXPECT_TRUE(near(placed(*arrow, 1, {0.0, 0.0, head * 0.75}), end()));
}

TEST_P(ArrowAlong, EndsWithTheTipOfItsCone)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(solidArrow(GetParam().start, GetParam().end));
    EXPECT_TRUE(near(placed(*arrow, 1, {0.0, 0.0, headOf(*arrow).getBoundingBox().zMax()}), end()));
}

TEST_P(ArrowAlong, CoversTheWholeWayAsALine)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(lineArrow(GetParam().start, GetParam().end));
    EXPECT_TRUE(near(placed(*arrow, 0, verticesOf(*arrow)[0]), start()));
    EXPECT_TRUE(near(placed(*arrow, 0, verticesOf(*arrow)[1]), end()));
    EXPECT_TRUE(near(transformOf(*arrow, 0).getMatrix().getTrans(), (start() + end()) * 0.5));
}

TEST_P(ArrowAlong, IsTurnedWithoutBeingScaled)
{
    for (const bool isLineArrow : {true, false}) {
        CArrowMeta::structArrowMeta meta = solidArrow(GetParam().start, GetParam().end);
        meta.isLineArrow = isLineArrow;
        const osg::ref_ptr<CArrowMeta> arrow = make(meta);
        EXPECT_TRUE(near(transformOf(*arrow, 0).getMatrix().getScale(), {1.0, 1.0, 1.0}));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Directions, ArrowAlong,
    ::testing::Values(Course{"PlusZ", {0, 0, 0}, {0, 0, 10}}, Course{"MinusZ", {0, 0, 0}, {0, 0, -10}},
                      Course{"PlusX", {0, 0, 0}, {4, 0, 0}}, Course{"MinusY", {1, 2, 3}, {1, -7, 3}},
                      Course{"Oblique", {1, 2, 3}, {-4, 6, 9}}, Course{"Short", {0, 0, 0}, {1e-3f, 1e-3f, 0}}),
    [](const auto& course) { return std::string(course.param.label); });

// Line arrow

TEST(LineArrow, HoldsItsLineUnderOneTransform)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(lineArrow({}, {4.0f, 0.0f, 0.0f}));
    ASSERT_EQ(arrow->getNumChildren(), 1u);
    EXPECT_EQ(transformOf(*arrow, 0).getNumChildren(), 1u);
    EXPECT_EQ(childOf<osg::Geode>(transformOf(*arrow, 0), 0)->getNumDrawables(), 1u);
    EXPECT_EQ(lineOf(*arrow).getName(), "arrowLineNode");
    EXPECT_EQ(kelvtest::kindOf(lineOf(*arrow)), 2);
}

TEST(LineArrow, IsTwoPointsAlongZWithoutAHead)
{
    CArrowMeta::structArrowMeta meta = lineArrow({}, {4.0f, 0.0f, 0.0f});
    meta.isArrowHead = false;
    const osg::ref_ptr<CArrowMeta> arrow = make(meta);
    EXPECT_EQ(verticesOf(*arrow).asVector(), (std::vector<osg::Vec3f>{{0.0f, 0.0f, -2.0f}, {0.0f, 0.0f, 2.0f}}));
    EXPECT_TRUE(near(transformOf(*arrow, 0).getMatrix().getTrans(), {2.0, 0.0, 0.0}));
    EXPECT_TRUE(
        near(osg::Matrixd::transform3x3(osg::Vec3d(osg::Z_AXIS), transformOf(*arrow, 0).getMatrix()), osg::X_AXIS));
}

TEST(LineArrow, AppendsItsWireHeadStrokeByStroke)
{
    // Length 30: the diamond has radius 0.6, 1.5 behind the tip. Each edge has feet at its thirds.
    const float z = 13.5f;
    const osg::Vec3f tip(0.0f, 0.0f, 15.0f);
    const osg::Vec3f q1q2Far(0.2f, 0.4f, z);
    const osg::Vec3f q1q2Near(0.4f, 0.2f, z);
    const osg::Vec3f q1q3Near(0.4f, -0.2f, z);
    const osg::Vec3f q1q3Far(0.2f, -0.4f, z);
    const osg::Vec3f q3q4Near(-0.2f, -0.4f, z);
    const osg::Vec3f q3q4Far(-0.4f, -0.2f, z);
    const osg::Vec3f q4q2Near(-0.4f, 0.2f, z);
    const osg::Vec3f q4q2Far(-0.2f, 0.4f, z);
    const std::vector<osg::Vec3f> expected = {{0.0f, 0.0f, -15.0f},
                                              tip,
                                              q1q2Far, // shaft, first foot
                                              q1q2Near,
                                              tip,
                                              q1q2Near,
                                              q1q3Near,
                                              tip,
                                              q1q3Near, //
                                              q1q3Far,
                                              tip,
                                              q1q3Far,
                                              q3q4Near,
                                              tip,
                                              q3q4Near, //
                                              q3q4Far,
                                              tip,
                                              q3q4Far,
                                              q4q2Near,
                                              tip,
                                              q4q2Near, //
                                              q4q2Far,
                                              tip,
                                              q4q2Far,
                                              q1q2Far,
                                              tip};

    const osg::ref_ptr<CArrowMeta> arrow = make(lineArrow({}, {0.0f, 0.0f, 30.0f}));
    const osg::Vec3Array& vertices = verticesOf(*arrow);
    ASSERT_EQ(vertices.size(), 26u);
    ASSERT_EQ(expected.size(), 26u);
    for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_TRUE(near(vertices[i], expected[i])) << "vertex " << i;
}

TEST(LineArrow, DrawsAllItsVerticesAsOneLoop)
{
    for (const bool isArrowHead : {true, false}) {
        CArrowMeta::structArrowMeta meta = lineArrow({}, {4.0f, 0.0f, 0.0f});
        meta.isArrowHead = isArrowHead;
        const osg::ref_ptr<CArrowMeta> arrow = make(meta);
        ASSERT_EQ(lineOf(*arrow).getNumPrimitiveSets(), 1u);
        const auto& loop = dynamic_cast<const osg::DrawArrays&>(*lineOf(*arrow).getPrimitiveSet(0));
        EXPECT_EQ(loop.getMode(), static_cast<GLenum>(GL_LINE_LOOP));
        EXPECT_EQ(loop.getFirst(), 0);
        EXPECT_EQ(loop.getCount(), isArrowHead ? 26 : 2);
    }
}

TEST(LineArrow, HasTheColourAndWidthOfItsRecord)
{
    CArrowMeta::structArrowMeta meta = lineArrow({}, {4.0f, 0.0f, 0.0f});
    meta.color = kColour;
    meta.lineWidth = 4.5f;
    const osg::ref_ptr<CArrowMeta> arrow = make(meta);
    EXPECT_EQ(overallColour(lineOf(*arrow)), kColour);
    EXPECT_EQ(kelvtest::lineWidthOf(lineOf(*arrow)), 4.5f);
}

TEST(LineArrow, IsOnePixelWiderWhileItIsSelected)
{
    CArrowMeta::structArrowMeta meta = lineArrow({}, {4.0f, 0.0f, 0.0f});
    meta.lineWidth = 4.5f;
    const osg::ref_ptr<CArrowMeta> arrow = make(meta);
    for (const auto& [state, width] : std::vector<std::pair<int, float>>{
             {2, 5.5f}, {3, 4.5f}, {2, 5.5f}, {1, 4.5f}, {2, 5.5f}, {0, 4.5f}, {99, 4.5f}}) {
        arrow->setState(static_cast<featureState>(state));
        EXPECT_EQ(kelvtest::lineWidthOf(lineOf(*arrow)), width) << state;
    }
}

TEST(LineArrow, GetsFreshColoursAndAFreshWidthWithEachState)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(lineArrow({}, {4.0f, 0.0f, 0.0f}));
    const osg::ref_ptr<const osg::Array> colours = lineOf(*arrow).getColorArray();
    const osg::ref_ptr<const osg::StateAttribute> width =
        lineOf(*arrow).getStateSet()->getAttribute(osg::StateAttribute::LINEWIDTH);
    arrow->setState(featureStateSelected);
    EXPECT_NE(lineOf(*arrow).getColorArray(), colours);
    EXPECT_NE(lineOf(*arrow).getStateSet()->getAttribute(osg::StateAttribute::LINEWIDTH), width);
}

TEST(LineArrow, IgnoresTheStateThatItHasEvenIfColoursChanged)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(lineArrow({}, {4.0f, 0.0f, 0.0f}));
    arrow->setState(featureStateSelected);
    const osg::ref_ptr<osg::Vec4Array> colours = new osg::Vec4Array(osg::Array::BIND_OVERALL);
    colours->push_back(kColour);
    lineOf(*arrow).setColorArray(colours);
    arrow->setState(featureStateSelected);
    EXPECT_EQ(lineOf(*arrow).getColorArray(), colours);
}

TEST(LineArrow, HasADynamicLineAndState)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(lineArrow({}, {4.0f, 0.0f, 0.0f}));
    EXPECT_EQ(lineOf(*arrow).getDataVariance(), osg::Object::DYNAMIC);
    EXPECT_EQ(lineOf(*arrow).getStateSet()->getDataVariance(), osg::Object::DYNAMIC);
}

TEST(LineArrow, IsLitAndDepthTestedAsItsSurroundings)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(lineArrow({}, {4.0f, 0.0f, 0.0f}));
    EXPECT_EQ(transformOf(*arrow, 0).getChild(0)->getStateSet(), nullptr);
}

TEST(LineArrow, IsNeitherLitNorDepthTestedWithoutDepthTest)
{
    CArrowMeta::structArrowMeta meta = lineArrow({}, {4.0f, 0.0f, 0.0f});
    meta.isDepthTest = false;
    const osg::ref_ptr<CArrowMeta> arrow = make(meta);
    const osg::StateSet* const state = transformOf(*arrow, 0).getChild(0)->getStateSet();
    ASSERT_NE(state, nullptr);
    EXPECT_EQ(state->getMode(GL_LIGHTING), static_cast<unsigned int>(osg::StateAttribute::OFF));
    EXPECT_EQ(state->getMode(GL_DEPTH_TEST), static_cast<unsigned int>(osg::StateAttribute::OFF));
}

// No length

TEST(ArrowOfNoLength, IsNotTurnedAndStandsAtItsPoint)
{
    const osg::Vec3f point(1.0f, 2.0f, 3.0f);
    for (const bool isLineArrow : {true, false}) {
        CArrowMeta::structArrowMeta meta = solidArrow(point, point);
        meta.isLineArrow = isLineArrow;
        const osg::ref_ptr<CArrowMeta> arrow = make(meta);
        EXPECT_TRUE(kelvtest::isFiniteEverywhere(*arrow));
        for (unsigned int i = 0; i < arrow->getNumChildren(); ++i)
            EXPECT_EQ(transformOf(*arrow, i).getMatrix(), osg::Matrixd::translate(point));
    }
}

TEST(ArrowOfNoLength, HasShapesOfZeroHeight)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(solidArrow({}, {}));
    EXPECT_EQ(dynamic_cast<const osg::Cylinder&>(*shaftOf(*arrow).getShape()).getHeight(), 0.0f);
    EXPECT_EQ(dynamic_cast<const osg::Cone&>(*headOf(*arrow).getShape()).getHeight(), 0.0f);
}

TEST(ArrowOfNoLength, HasAllItsLineVerticesInOnePoint)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(lineArrow({}, {}));
    EXPECT_EQ(verticesOf(*arrow).asVector(), std::vector<osg::Vec3f>(26));
}

TEST(ArrowOfNoLength, TakesItsState)
{
    const osg::ref_ptr<CArrowMeta> arrow = make(lineArrow({}, {}));
    arrow->setState(featureStateSelected);
    EXPECT_EQ(overallColour(lineOf(*arrow)), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST(ArrowOfSmallestLength, IsFinite)
{
    for (const bool isLineArrow : {true, false}) {
        CArrowMeta::structArrowMeta meta = solidArrow({}, {std::numeric_limits<float>::denorm_min(), 0.0f, 0.0f});
        meta.isLineArrow = isLineArrow;
        EXPECT_TRUE(kelvtest::isFiniteEverywhere(*make(meta)));
    }
}

} // namespace
