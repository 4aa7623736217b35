#include "support/Config.h"
#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/CSphereMeta.h>

#include <gtest/gtest.h>

#include <osg/MatrixTransform>
#include <osg/io_utils>

#include <limits>
#include <typeinfo>

namespace {
using namespace KelvOsgTools;
using kelvtest::dotAt;
using kelvtest::labelSaying;

const osg::Vec4f kBlack(0.0f, 0.0f, 0.0f, 1.0f);
const osg::Vec4f kColour(0.1f, 0.2f, 0.3f, 0.4f);

CSphereMeta::structSphereMeta ballRecord()
{
    CSphereMeta::structSphereMeta meta;
    meta.cneterPos.set(1.0f, 2.0f, 3.0f);
    meta.radius = 2.5f;
    meta.nodeName = "ball";
    meta.ratio = 1.5f;
    meta.color = kColour;
    return meta;
}

const osg::Sphere* sphereOf(const osg::ShapeDrawable& drawable)
{
    return dynamic_cast<const osg::Sphere*>(drawable.getShape());
}

/// Whether a box reaches about as far in all six directions as a sphere does. Tessellated spheres
/// stay a little inside.
::testing::AssertionResult surrounds(const osg::BoundingBox& box, const osg::Vec3f& centre, float radius)
{
    for (unsigned int i = 0; i < 3; ++i)
        for (const float reach : {box._max[i] - centre[i], centre[i] - box._min[i]})
            if (reach > radius * 1.001f || reach < radius * 0.9f)
                return ::testing::AssertionFailure() << "reaches " << reach << " instead of " << radius;
    return ::testing::AssertionSuccess();
}

void expectStandardHints(const osg::TessellationHints& hints, float ratio)
{
    const osg::ref_ptr<osg::TessellationHints> standard = new osg::TessellationHints;
    EXPECT_EQ(hints.getDetailRatio(), ratio);
    EXPECT_EQ(hints.getTessellationMode(), standard->getTessellationMode());
    EXPECT_EQ(hints.getTargetNumFaces(), standard->getTargetNumFaces());
    EXPECT_EQ(hints.getCreateFrontFace(), standard->getCreateFrontFace());
    EXPECT_EQ(hints.getCreateBackFace(), standard->getCreateBackFace());
    EXPECT_EQ(hints.getCreateNormals(), standard->getCreateNormals());
    EXPECT_EQ(hints.getCreateTextureCoords(), standard->getCreateTextureCoords());
}

void expectScreenSized(const osg::AutoTransform& transform, osg::AutoTransform::AutoRotateMode rotation)
{
    EXPECT_TRUE(transform.getAutoScaleToScreen());
    EXPECT_EQ(transform.getMinimumScale(), 0.0);
    EXPECT_EQ(transform.getMaximumScale(), 3.4028234663852886e38);
    EXPECT_EQ(transform.getAutoRotateMode(), rotation);
}

// Plain spheres

TEST(SphereRecord, HasItsDefaults)
{
    const CSphereMeta::structSphereMeta meta;
    EXPECT_EQ(meta.cneterPos, osg::Vec3f());
    EXPECT_EQ(meta.radius, 1.0f);
    EXPECT_EQ(meta.nodeName, "SphereMeta");
    EXPECT_EQ(meta.ratio, 3.0f);
    EXPECT_EQ(meta.color, osg::Vec4f(1.0f, 1.0f, 1.0f, 1.0f));
}

TEST(SphereRecord, HoldsItsFieldsInOrder)
{
    const CSphereMeta::structSphereMeta meta{{1, 2, 3}, 4.0f, "name", 5.0f, {6, 7, 8, 9}};
    EXPECT_EQ(meta.radius, 4.0f);
    EXPECT_EQ(meta.nodeName, "name");
    EXPECT_EQ(meta.ratio, 5.0f);
}

TEST(CSphereMeta, IsAFeatureNodeWithoutChildren)
{
    const osg::ref_ptr<CFeatureMetaObject> maker = new CSphereMeta;
    EXPECT_EQ(maker->getNumChildren(), 0u);
    EXPECT_STREQ(maker->className(), "Switch");
}

TEST(CSphereMeta, MakesASphereInSceneUnits)
{
    const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
    const osg::ref_ptr<osg::Geode> geode = maker->CreateSphereMeta(ballRecord());
    EXPECT_EQ(geode->getName(), "ball");
    ASSERT_EQ(geode->getNumDrawables(), 1u);
    const auto* const drawable = dynamic_cast<const osg::ShapeDrawable*>(geode->getDrawable(0));
    ASSERT_NE(drawable, nullptr);
    EXPECT_EQ(sphereOf(*drawable)->getCenter(), osg::Vec3f(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(sphereOf(*drawable)->getRadius(), 2.5f);
    EXPECT_EQ(drawable->getColor(), kColour);
    EXPECT_TRUE(surrounds(drawable->getBoundingBox(), osg::Vec3f(1.0f, 2.0f, 3.0f), 2.5f));
    expectStandardHints(*drawable->getTessellationHints(), 1.5f);
}

TEST(CSphereMeta, LeavesTheSphereToTheCaller)
{
    const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
    const osg::ref_ptr<osg::Geode> geode = maker->CreateSphereMeta(ballRecord());
    EXPECT_EQ(geode->getNumParents(), 0u);
    EXPECT_EQ(maker->getNumChildren(), 0u);
}

TEST(CSphereMeta, MakesASphereInScreenUnits)
{
    const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
    const osg::ref_ptr<osg::AutoTransform> transform = maker->CreateAutoScaleSphereMeta(ballRecord());
    EXPECT_EQ(transform->getName(), "");
    EXPECT_EQ(transform->getPosition(), osg::Vec3d(1.0, 2.0, 3.0));
    expectScreenSized(*transform, osg::AutoTransform::ROTATE_TO_SCREEN);

    ASSERT_EQ(transform->getNumChildren(), 1u);
    osg::Geode& geode = *kelvtest::childOf<osg::Geode>(*transform, 0);
    EXPECT_EQ(geode.getStateSet()->getMode(GL_RESCALE_NORMAL), static_cast<unsigned int>(osg::StateAttribute::ON));
    ASSERT_EQ(geode.getNumDrawables(), 1u);
    const auto& drawable = dynamic_cast<const osg::ShapeDrawable&>(*geode.getDrawable(0));
    EXPECT_EQ(sphereOf(drawable)->getCenter(), osg::Vec3f());
    EXPECT_EQ(sphereOf(drawable)->getRadius(), 2.5f);
    EXPECT_EQ(drawable.getColor(), kColour);
    expectStandardHints(*drawable.getTessellationHints(), 1.5f);
}

TEST(CSphereMeta, ColoursEveryShapeOfItsGeodeAlone)
{
    const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
    const osg::ref_ptr<osg::Geode> geode = maker->CreateSphereMeta(ballRecord());
    const osg::ref_ptr<osg::ShapeDrawable> box = new osg::ShapeDrawable(new osg::Box);
    geode->addDrawable(new osg::Geometry); // no shape: passed over
    geode->addDrawable(box);
    maker->setColor(kBlack);
    EXPECT_EQ(dynamic_cast<const osg::ShapeDrawable*>(geode->getDrawable(0))->getColor(), kBlack);
    EXPECT_EQ(box->getColor(), kBlack);
}

TEST(CSphereMeta, ActsOnTheSphereMadeLast)
{
    const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
    const osg::ref_ptr<osg::Geode> first = maker->CreateSphereMeta(ballRecord());
    const osg::ref_ptr<osg::Geode> second = maker->CreateSphereMeta(ballRecord());
    maker->CreateAutoScaleSphereMeta(ballRecord()); // not remembered
    maker->setColor(kBlack);
    maker->visible(false);
    EXPECT_EQ(dynamic_cast<const osg::ShapeDrawable*>(first->getDrawable(0))->getColor(), kColour);
    EXPECT_EQ(dynamic_cast<const osg::ShapeDrawable*>(second->getDrawable(0))->getColor(), kBlack);
    EXPECT_EQ(first->getNodeMask(), ~0u);
    EXPECT_EQ(second->getNodeMask(), 0u);
}

TEST(CSphereMeta, SetsTheWholeNodeMask)
{
    const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
    const osg::ref_ptr<osg::Geode> geode = maker->CreateSphereMeta(ballRecord());
    geode->setNodeMask(0xff00);
    maker->visible(true);
    EXPECT_EQ(geode->getNodeMask(), 1u);
    maker->visible(false);
    EXPECT_EQ(geode->getNodeMask(), 0u);
}

TEST(CSphereMeta, DoesNothingBeforeItMadeASphere)
{
    const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
    maker->setColor(kBlack);
    maker->visible(false);
    maker->setState(featureStateSelected);
    EXPECT_EQ(maker->getNodeMask(), ~0u);
}

TEST(CSphereMeta, SharesItsGeodeWithItsCopy)
{
    const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
    const osg::ref_ptr<osg::Geode> geode = maker->CreateSphereMeta(ballRecord());
    const osg::ref_ptr<CSphereMeta> copy = new CSphereMeta(*maker);
    copy->visible(false);
    EXPECT_EQ(geode->getNodeMask(), 0u);
}

TEST(CSphereMeta, HoldsASphereWithoutAFiniteCentreOutOfSight)
{
    CSphereMeta::structSphereMeta meta = ballRecord();
    meta.cneterPos.y() = std::numeric_limits<float>::infinity();
    const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
    const osg::ref_ptr<osg::Geode> geode = maker->CreateSphereMeta(meta);
    const osg::ref_ptr<osg::AutoTransform> transform = maker->CreateAutoScaleSphereMeta(meta);
    EXPECT_TRUE(kelvtest::isFiniteEverywhere(*geode));
    EXPECT_TRUE(kelvtest::isFiniteEverywhere(*transform));
    maker->visible(true);
    EXPECT_EQ(geode->getDrawable(0)->getNodeMask(), 0u);
}

class SphereOfAnyRatio : public ::testing::TestWithParam<float>
{};

TEST_P(SphereOfAnyRatio, IsASphereAndReportsTheRatio)
{
    CAutoScaleSphereMeta::structSphereMeta meta = dotAt({});
    meta.ratio = GetParam();
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(meta);
    EXPECT_EQ(dot->getShpereDrawableNode()->getTessellationHints()->getDetailRatio(), GetParam());
    EXPECT_TRUE(dot->getShpereDrawableNode()->getBoundingBox().valid());
    EXPECT_TRUE(kelvtest::isFiniteEverywhere(*dot));
}

INSTANTIATE_TEST_SUITE_P(Ratios, SphereOfAnyRatio,
                         ::testing::Values(-3.0f, 0.0f, 0.01f, 1.0f, 3.0f, 1e6f,
                                           std::numeric_limits<float>::infinity()));

// Dots

TEST(DotRecord, HasItsDefaults)
{
    const CAutoScaleSphereMeta::structSphereMeta meta;
    EXPECT_EQ(meta.cneterPos, osg::Vec3f());
    EXPECT_EQ(meta.nodeName, "SphereMeta");
    EXPECT_EQ(meta.radius, 1.0f);
    EXPECT_EQ(meta.ratio, 3.0f);
    EXPECT_EQ(meta.color, osg::Vec4f(1.0f, 1.0f, 1.0f, 1.0f));
}

TEST(DotRecord, HoldsItsFieldsInOrder)
{
    const CAutoScaleSphereMeta::structSphereMeta meta{{1, 2, 3}, "name", 4.0f, 5.0f, {6, 7, 8, 9}};
    EXPECT_EQ(meta.nodeName, "name");
    EXPECT_EQ(meta.radius, 4.0f);
    EXPECT_EQ(meta.ratio, 5.0f);
}

CAutoScaleSphereMeta::structSphereMeta dotRecord()
{
    return {{1.0f, 2.0f, 3.0f}, "scaled", 4.5f, 1.5f, kColour};
}

TEST(CAutoScaleSphereMeta, IsAMarkedFeatureNode)
{
    const osg::ref_ptr<CFeatureMetaObject> dot = new CAutoScaleSphereMeta(dotRecord());
    EXPECT_EQ(kelvtest::kindOf(*dot), 1);
    EXPECT_STREQ(dot->className(), "Switch");
    EXPECT_EQ(dot->getName(), "");
}

TEST(CAutoScaleSphereMeta, HoldsItsSphereUnderAScreenSizedTransform)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    ASSERT_EQ(dot->getNumChildren(), 1u);
    auto* const transform = kelvtest::childOf<osg::AutoTransform>(*dot, 0);
    ASSERT_NE(transform, nullptr);
    EXPECT_EQ(transform->getName(), "scaled");
    EXPECT_EQ(transform->getPosition(), osg::Vec3d(1.0, 2.0, 3.0));
    expectScreenSized(*transform, osg::AutoTransform::NO_ROTATION);

    ASSERT_EQ(transform->getNumChildren(), 1u);
    auto* const geode = kelvtest::childOf<osg::Geode>(*transform, 0);
    EXPECT_EQ(geode->getName(), "");
    EXPECT_EQ(geode->getStateSet()->getMode(GL_RESCALE_NORMAL), static_cast<unsigned int>(osg::StateAttribute::ON));
    EXPECT_EQ(geode->getNumDrawables(), 1u);
}

TEST(CAutoScaleSphereMeta, DrawsASphereAroundTheOriginOfItsTransform)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    const osg::ref_ptr<osg::ShapeDrawable> drawable = dot->getShpereDrawableNode();
    ASSERT_NE(drawable, nullptr);
    EXPECT_EQ(drawable->getName(), "drawableShpere");
    EXPECT_EQ(sphereOf(*drawable)->getCenter(), osg::Vec3f());
    EXPECT_EQ(sphereOf(*drawable)->getRadius(), 4.5f);
    EXPECT_EQ(drawable->getColor(), kColour);
    EXPECT_TRUE(surrounds(drawable->getBoundingBox(), osg::Vec3f(), 4.5f));
    expectStandardHints(*drawable->getTessellationHints(), 1.5f);
}

TEST(CAutoScaleSphereMeta, KeepsACopyOfItsRecord)
{
    CAutoScaleSphereMeta::structSphereMeta meta = dotRecord();
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(meta);
    meta = {};
    EXPECT_EQ(dot->getMetaStruct().cneterPos, osg::Vec3f(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(dot->getMetaStruct().nodeName, "scaled");
    EXPECT_EQ(dot->getMetaStruct().radius, 4.5f);
    EXPECT_EQ(dot->getMetaStruct().ratio, 1.5f);
    EXPECT_EQ(dot->getMetaStruct().color, kColour);
}

TEST(CAutoScaleSphereMeta, KnowsItsCentreWithoutAnyTransform)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    const osg::ref_ptr<osg::MatrixTransform> parent = new osg::MatrixTransform;
    parent->addChild(dot);
    parent->setMatrix(osg::Matrixd::translate(100.0, 0.0, 0.0));
    EXPECT_EQ(dot->getCenterPos(), osg::Vec3f(1.0f, 2.0f, 3.0f));
}

TEST(CAutoScaleSphereMeta, HasNoLabelAtFirst)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    EXPECT_EQ(dot->getTextNode(), nullptr);
    EXPECT_EQ(dot->getTableInfo().tableNamePrefix, QStringLiteral("Table"));
    EXPECT_EQ(dot->getTableInfo().tableNameIndexSuffix, -1);
    EXPECT_EQ(dot->getTableInfo().fontSize, 14);
}

TEST(DotLabel, BecomesAChildAndIsKnown)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    const osg::ref_ptr<CTableMeta> table = new CTableMeta(labelSaying("Gap", 3));
    EXPECT_TRUE(dot->addTable(table));
    ASSERT_EQ(dot->getNumChildren(), 2u);
    EXPECT_EQ(dot->getChild(1), table);
    EXPECT_EQ(dot->getTableInfo().tableNamePrefix, QStringLiteral("Gap"));
    EXPECT_EQ(kelvtest::textOf(*dot->getTextNode()), QStringLiteral("Gap3"));
}

TEST(DotLabel, IsKeptAliveByTheDot)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    dot->addTable(new CTableMeta(labelSaying("Gap")));
    dot->removeChildren(1, 1);
    dot->setState(featureStateSelected); // colours the label, which only the dot holds now
    EXPECT_EQ(dot->getTableInfo().tableNamePrefix, QStringLiteral("Gap"));
}

TEST(DotLabel, OfNullChangesNothing)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    dot->addTable(new CTableMeta(labelSaying("Gap")));
    EXPECT_FALSE(dot->addTable(nullptr));
    EXPECT_EQ(dot->getNumChildren(), 2u);
    dot->setState(featureStateSelected);
    EXPECT_EQ(dot->getTextNode()->getColor(), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST(DotLabel, ThatIsNoTableIsRefusedAndDropsTheFormerOne)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    dot->addTable(new CTableMeta(labelSaying("Gap")));
    EXPECT_FALSE(dot->addTable(new osg::Group));
    EXPECT_EQ(dot->getNumChildren(), 2u);
    EXPECT_EQ(dot->getTableInfo().tableNamePrefix, QStringLiteral("Gap"));
    dot->setState(featureStateSelected); // no longer reaches the label
    EXPECT_EQ(dot->getTextNode()->getColor(), kBlack);
}

TEST(DotLabel, ThatIsNoTableIsRefusedByADotWithoutLabel)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    EXPECT_FALSE(dot->addTable(new osg::Group));
    EXPECT_EQ(dot->getNumChildren(), 1u);
    EXPECT_EQ(dot->getTextNode(), nullptr);
}

TEST(DotLabel, TakesTheStateFromItsDot)
{
    const kelvtest::RestoredConfig config;
    config->setPlaneConfig({{0.4f, 0.4f, 0.4f, 1.0f}, {0.5f, 0.5f, 0.5f, 1.0f}, kBlack, kBlack});
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    dot->addTable(new CTableMeta(labelSaying("Gap")));
    dot->setState(featureStateHighlighted);
    EXPECT_EQ(dot->getTextNode()->getColor(), osg::Vec4f(0.4f, 0.4f, 0.4f, 1.0f));
    dot->setState(featureStateSelected);
    EXPECT_EQ(dot->getTextNode()->getColor(), osg::Vec4f(0.5f, 0.5f, 0.5f, 1.0f));
}

struct DotState
{
    int state;
    osg::Vec4f color;
};

void PrintTo(const DotState& state, std::ostream* stream)
{
    *stream << "state " << state.state;
}

class ColourOfDot : public ::testing::TestWithParam<DotState>
{};

TEST_P(ColourOfDot, FollowsTheDotConfiguration)
{
    const kelvtest::RestoredConfig config;
    const osg::Vec4f wrong(0.9f, 0.0f, 0.9f, 1.0f);
    config->setDotConfig({wrong, wrong, {0.4f, 0.5f, 0.6f, 0.7f}, {0.1f, 0.2f, 0.3f, 0.8f}});
    config->setFlagDotConfig({wrong, wrong, wrong, wrong});
    config->setPlaneConfig({wrong, wrong, wrong, wrong});
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    dot->setState(static_cast<featureState>(GetParam().state));
    EXPECT_EQ(dot->getShpereDrawableNode()->getColor(), GetParam().color);
    EXPECT_EQ(sphereOf(*dot->getShpereDrawableNode())->getRadius(), 4.5f);
}

INSTANTIATE_TEST_SUITE_P(States, ColourOfDot,
                         ::testing::Values(DotState{2, {0.1f, 0.2f, 0.3f, 0.8f}}, DotState{3, {0.4f, 0.5f, 0.6f, 0.7f}},
                                           DotState{0, kBlack}, DotState{1, kColour}, DotState{-1, kBlack},
                                           DotState{99, kBlack}));

TEST(DotColour, BackToAPlainStateIsBlackNotThatOfTheRecord)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    dot->setState(featureStateSelected);
    dot->setState(featureStateNormal);
    EXPECT_EQ(dot->getShpereDrawableNode()->getColor(), kBlack);
}

TEST(DotState, IsIgnoredWhenItIsThePresentOneEvenIfColoursChanged)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    dot->setState(featureStateSelected);
    dot->getShpereDrawableNode()->setColor(kColour);
    dot->setState(featureStateSelected);
    EXPECT_EQ(dot->getShpereDrawableNode()->getColor(), kColour);
}

TEST(DotState, ReachesTheLabelEvenWhereTheSphereIsGone)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    dot->addTable(new CTableMeta(labelSaying("Gap")));
    dot->removeChildren(0, 1);
    dot->setState(featureStateSelected);
    EXPECT_EQ(dot->getShpereDrawableNode(), nullptr);
    EXPECT_EQ(dot->getTextNode()->getColor(), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST(DotState, ChangesADrawableThatIsDynamic)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    EXPECT_EQ(dot->getShpereDrawableNode()->getDataVariance(), osg::Object::DYNAMIC);
    dot->setState(featureStateSelected);
    EXPECT_EQ(dot->getShpereDrawableNode()->getDataVariance(), osg::Object::DYNAMIC);
}

TEST(DotParts, AreSoughtWhereTheHostPutThem)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    const osg::ref_ptr<osg::Group> group = new osg::Group;
    const osg::ref_ptr<osg::ShapeDrawable> own = dot->getShpereDrawableNode();
    group->addChild(dot->getChild(0));
    dot->setChild(0, group);
    EXPECT_EQ(dot->getShpereDrawableNode(), own);
}

TEST(DotParts, AreFoundWhileTheyAreSwitchedOff)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    dot->addTable(new CTableMeta(labelSaying("Gap")));
    dot->setAllChildrenOff();
    EXPECT_NE(dot->getShpereDrawableNode(), nullptr);
    EXPECT_NE(dot->getTextNode(), nullptr);
}

TEST(DotParts, AreNullWhereTheFirstNodeOfThatNameHasAnotherType)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    dot->addTable(new CTableMeta(labelSaying("Gap")));
    dot->insertChild(0, kelvtest::namedGroup("drawableShpere"));
    dot->insertChild(0, kelvtest::namedGroup("textNode"));
    EXPECT_EQ(dot->getShpereDrawableNode(), nullptr);
    EXPECT_EQ(dot->getTextNode(), nullptr);
    dot->setState(featureStateSelected); // passes over the sphere, reaches the label
}

TEST(DotParts, AreNotSoughtInTheDotItself)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    dot->addTable(new CTableMeta(labelSaying("Gap")));
    dot->setName("drawableShpere");
    EXPECT_NE(dot->getShpereDrawableNode(), nullptr);
    dot->setName("textNode");
    EXPECT_NE(dot->getTextNode(), nullptr);
}

TEST(DotCopy, SharesSphereLabelAndRecords)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    dot->addTable(new CTableMeta(labelSaying("Gap", 3)));
    const osg::ref_ptr<CAutoScaleSphereMeta> copy = new CAutoScaleSphereMeta(*dot);
    ASSERT_EQ(copy->getNumChildren(), 2u);
    EXPECT_EQ(copy->getShpereDrawableNode(), dot->getShpereDrawableNode());
    EXPECT_EQ(copy->getTextNode(), dot->getTextNode());
    EXPECT_EQ(copy->getCenterPos(), dot->getCenterPos());
    EXPECT_EQ(copy->getMetaStruct().nodeName, "scaled");
    EXPECT_EQ(copy->getTableInfo().tableNameIndexSuffix, 3);
    EXPECT_EQ(kelvtest::kindOf(*copy), 1);

    copy->setState(featureStateSelected);
    EXPECT_EQ(dot->getTextNode()->getColor(), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST(DotCopy, TakesTheStateOver)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord());
    dot->setState(featureStateSelected);
    const osg::ref_ptr<CAutoScaleSphereMeta> copy = new CAutoScaleSphereMeta(*dot);
    dot->getShpereDrawableNode()->setColor(kColour);
    copy->setState(featureStateSelected);
    EXPECT_EQ(dot->getShpereDrawableNode()->getColor(), kColour);
}

TEST(CAutoScaleSphereMeta, HoldsATransformThatMakesOthersOfItsKind)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(CAutoScaleSphereMeta::structSphereMeta());
    const osg::Node& transform = *dot->getChild(0);
    const osg::ref_ptr<osg::Object> other = transform.cloneType();
    EXPECT_EQ(typeid(*other), typeid(transform));
}

} // namespace
