#include "support/Config.h"
#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/CTableMeta.h>

#include <gtest/gtest.h>

#include <osg/io_utils>

namespace {
using namespace KelvOsgTools;
using kelvtest::labelSaying;

const osg::Vec4f kBlack(0.0f, 0.0f, 0.0f, 1.0f);
const osg::Vec4f kColour(0.1f, 0.2f, 0.3f, 0.4f);

osg::ref_ptr<CFlagAutoScaleSphereMeta> makeFlag(float radius = 3.0f)
{
    return new CFlagAutoScaleSphereMeta(
        CAutoScaleSphereMeta::structSphereMeta{{1.0f, 2.0f, 3.0f}, "scaled", radius, 1.5f, kColour});
}

osg::ShapeDrawable& sphereOf(CFlagAutoScaleSphereMeta& flag)
{
    return *kelvtest::firstBelow<osg::ShapeDrawable>(flag, "drawableShpere");
}

float shapeRadius(CFlagAutoScaleSphereMeta& flag)
{
    return dynamic_cast<const osg::Sphere*>(sphereOf(flag).getShape())->getRadius();
}

/// How far the geometry reaches from its centre along z, where its poles lie.
float drawnRadius(CFlagAutoScaleSphereMeta& flag)
{
    return sphereOf(flag).getBoundingBox().zMax();
}

osg::Vec4f textColour(CFlagAutoScaleSphereMeta& flag)
{
    return kelvtest::firstBelow<osgText::Text>(flag, "textNode")->getColor();
}

TEST(FlagNames, AreTheNamesOfTheirMembers)
{
    using Flag = CFlagAutoScaleSphereMeta;
    EXPECT_EQ(Flag::flag_feature_dot_name_one, QStringLiteral("flag_feature_dot_name_one"));
    EXPECT_EQ(Flag::flag_feature_line_name_start, QStringLiteral("flag_feature_line_name_start"));
    EXPECT_EQ(Flag::flag_feature_line_name_end, QStringLiteral("flag_feature_line_name_end"));
    EXPECT_EQ(Flag::flag_feature_plane_name_first, QStringLiteral("flag_feature_plane_name_first"));
    EXPECT_EQ(Flag::flag_feature_plane_name_second, QStringLiteral("flag_feature_plane_name_second"));
    EXPECT_EQ(Flag::flag_feature_plane_name_third, QStringLiteral("flag_feature_plane_name_third"));
}

TEST(CFlagAutoScaleSphereMeta, IsAMarkedFeatureNodeButNoDot)
{
    const osg::ref_ptr<CFeatureMetaObject> flag = makeFlag();
    EXPECT_EQ(kelvtest::kindOf(*flag), 5);
    EXPECT_STREQ(flag->className(), "Switch");
    static_assert(!std::is_base_of_v<CAutoScaleSphereMeta, CFlagAutoScaleSphereMeta>);
}

TEST(CFlagAutoScaleSphereMeta, HoldsItsSphereAsADotDoes)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    ASSERT_EQ(flag->getNumChildren(), 1u);
    auto* const transform = kelvtest::childOf<osg::AutoTransform>(*flag, 0);
    ASSERT_NE(transform, nullptr);
    EXPECT_EQ(transform->getName(), "scaled");
    EXPECT_EQ(transform->getPosition(), osg::Vec3d(1.0, 2.0, 3.0));
    EXPECT_EQ(transform->getAutoRotateMode(), osg::AutoTransform::NO_ROTATION);
    EXPECT_TRUE(transform->getAutoScaleToScreen());
    EXPECT_EQ(transform->getMinimumScale(), 0.0);
    EXPECT_EQ(transform->getMaximumScale(), 3.4028234663852886e38);
    auto* const geode = kelvtest::childOf<osg::Geode>(*transform, 0);
    EXPECT_EQ(geode->getStateSet()->getMode(GL_RESCALE_NORMAL), static_cast<unsigned int>(osg::StateAttribute::ON));
    EXPECT_EQ(geode->getDrawable(0), &sphereOf(*flag));
}

TEST(CFlagAutoScaleSphereMeta, DrawsTheSphereOfItsRecord)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    EXPECT_EQ(shapeRadius(*flag), 3.0f);
    EXPECT_EQ(sphereOf(*flag).getColor(), kColour);
    EXPECT_EQ(sphereOf(*flag).getTessellationHints()->getDetailRatio(), 1.5f);
    EXPECT_EQ(flag->getCenterPos(), osg::Vec3f(1.0f, 2.0f, 3.0f));
}

TEST(CFlagAutoScaleSphereMeta, GrowsInShapeAndGeometryWhileItIsSelected)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag(3.0f);
    EXPECT_NEAR(drawnRadius(*flag), 3.0f, 0.05f);
    flag->setState(featureStateSelected);
    EXPECT_EQ(shapeRadius(*flag), 8.0f);
    EXPECT_NEAR(drawnRadius(*flag), 8.0f, 0.1f);
    flag->setState(featureStateHighlighted);
    EXPECT_EQ(shapeRadius(*flag), 3.0f);
    EXPECT_NEAR(drawnRadius(*flag), 3.0f, 0.05f);
}

TEST(CFlagAutoScaleSphereMeta, ShrinksBackInEveryOtherState)
{
    for (const int state : {-1, 0, 1, 3, 99}) {
        const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag(3.0f);
        flag->setState(featureStateSelected);
        flag->setState(static_cast<featureState>(state));
        EXPECT_EQ(shapeRadius(*flag), 3.0f);
        EXPECT_NEAR(drawnRadius(*flag), 3.0f, 0.05f);
    }
}

TEST(CFlagAutoScaleSphereMeta, PassesItsGrowthOnToTheBoundsAboveIt)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag(3.0f);
    const float before = flag->getBound().radius();
    flag->setState(featureStateSelected);
    EXPECT_GT(flag->getBound().radius(), before + 3.0f);
}

TEST(CFlagAutoScaleSphereMeta, KeepsColourAndNormalsWhenItGrows)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    flag->setState(featureStateSelected);
    EXPECT_EQ(sphereOf(*flag).getColor(), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_NE(sphereOf(*flag).getNormalArray(), nullptr);
}

TEST(CFlagAutoScaleSphereMeta, LeavesAShapeOfTheHostsOwnItsSize)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    sphereOf(*flag).setShape(new osg::Box(osg::Vec3f(), 2.0f));
    flag->setState(featureStateSelected);
    EXPECT_EQ(dynamic_cast<const osg::Box*>(sphereOf(*flag).getShape())->getHalfLengths().x(), 1.0f);
    EXPECT_EQ(sphereOf(*flag).getColor(), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

struct FlagState
{
    int state;
    osg::Vec4f color;
};

void PrintTo(const FlagState& state, std::ostream* stream)
{
    *stream << "state " << state.state;
}

class ColourOfFlag : public ::testing::TestWithParam<FlagState>
{};

TEST_P(ColourOfFlag, FollowsTheFlagDotConfiguration)
{
    const kelvtest::RestoredConfig config;
    const osg::Vec4f wrong(0.9f, 0.0f, 0.9f, 1.0f);
    config->setFlagDotConfig({wrong, wrong, {0.4f, 0.5f, 0.6f, 0.7f}, {0.1f, 0.2f, 0.3f, 0.8f}});
    config->setDotConfig({wrong, wrong, wrong, wrong});
    config->setPlaneConfig({wrong, wrong, wrong, wrong});
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    flag->setState(static_cast<featureState>(GetParam().state));
    EXPECT_EQ(sphereOf(*flag).getColor(), GetParam().color);
}

INSTANTIATE_TEST_SUITE_P(States, ColourOfFlag,
                         ::testing::Values(FlagState{2, {0.1f, 0.2f, 0.3f, 0.8f}},
                                           FlagState{3, {0.4f, 0.5f, 0.6f, 0.7f}}, FlagState{0, kBlack},
                                           FlagState{1, kColour}, FlagState{-1, kBlack}, FlagState{99, kBlack}));

TEST(FlagState, BackToAPlainOneIsBlackNotTheColourOfTheRecord)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    flag->setState(featureStateSelected);
    flag->setState(featureStateNormal);
    EXPECT_EQ(sphereOf(*flag).getColor(), kBlack);
}

TEST(FlagState, IsIgnoredWhenItIsThePresentOneEvenIfColoursChanged)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    flag->setState(featureStateSelected);
    sphereOf(*flag).setColor(kColour);
    flag->setState(featureStateSelected);
    EXPECT_EQ(sphereOf(*flag).getColor(), kColour);
}

TEST(FlagState, ReachesTheLabelInThePlaneConfigurationsColours)
{
    const kelvtest::RestoredConfig config;
    config->setPlaneConfig({{0.4f, 0.4f, 0.4f, 1.0f}, {0.5f, 0.5f, 0.5f, 1.0f}, kBlack, kBlack});
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    flag->addTable(new CTableMeta(labelSaying("Gap")));
    flag->setState(featureStateHighlighted);
    EXPECT_EQ(textColour(*flag), osg::Vec4f(0.4f, 0.4f, 0.4f, 1.0f));
    flag->setState(featureStateSelected);
    EXPECT_EQ(textColour(*flag), osg::Vec4f(0.5f, 0.5f, 0.5f, 1.0f));
}

TEST(FlagState, ReachesTheLabelEvenWhereTheSphereIsGone)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    flag->addTable(new CTableMeta(labelSaying("Gap")));
    flag->removeChildren(0, 1);
    flag->setState(featureStateSelected);
    EXPECT_EQ(textColour(*flag), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST(FlagState, PassesOverANodeOfTheSpheresNameThatIsNoShape)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    flag->insertChild(0, kelvtest::namedGroup("drawableShpere"));
    flag->setState(featureStateSelected);
    EXPECT_EQ(shapeRadius(*flag), 3.0f);
}

TEST(FlagState, ReachesASphereUnderAFlagThatIsNamedLikeIt)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    flag->setName("drawableShpere");
    flag->setState(featureStateSelected);
    EXPECT_EQ(shapeRadius(*flag), 8.0f);
}

TEST(FlagState, ChangesADrawableThatIsDynamic)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    EXPECT_EQ(sphereOf(*flag).getDataVariance(), osg::Object::DYNAMIC);
    flag->setState(featureStateSelected);
    EXPECT_EQ(sphereOf(*flag).getDataVariance(), osg::Object::DYNAMIC);
}

TEST(FlagLabel, BecomesAChild)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    const osg::ref_ptr<CTableMeta> table = new CTableMeta(labelSaying("Gap"));
    EXPECT_TRUE(flag->addTable(table));
    ASSERT_EQ(flag->getNumChildren(), 2u);
    EXPECT_EQ(flag->getChild(1), table);
}

TEST(FlagLabel, OfNullChangesNothing)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    flag->addTable(new CTableMeta(labelSaying("Gap")));
    EXPECT_FALSE(flag->addTable(nullptr));
    flag->setState(featureStateSelected);
    EXPECT_EQ(textColour(*flag), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST(FlagLabel, ThatIsNoTableIsAcceptedButNotKept)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    flag->addTable(new CTableMeta(labelSaying("Gap")));
    EXPECT_TRUE(flag->addTable(new osg::Group));
    EXPECT_EQ(flag->getNumChildren(), 2u);
    flag->setState(featureStateSelected); // no longer reaches the label
    EXPECT_EQ(textColour(*flag), kBlack);
}

TEST(FlagCopy, SharesSphereAndLabel)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    flag->addTable(new CTableMeta(labelSaying("Gap")));
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> copy = new CFlagAutoScaleSphereMeta(*flag);
    EXPECT_EQ(copy->getNumChildren(), 2u);
    EXPECT_EQ(&sphereOf(*copy), &sphereOf(*flag));
    EXPECT_EQ(copy->getCenterPos(), flag->getCenterPos());
    EXPECT_EQ(kelvtest::kindOf(*copy), 5);
    copy->setState(featureStateSelected);
    EXPECT_EQ(shapeRadius(*flag), 8.0f);
    EXPECT_EQ(textColour(*flag), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST(FlagCopy, TakesTheStateOver)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = makeFlag();
    flag->setState(featureStateSelected);
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> copy = new CFlagAutoScaleSphereMeta(*flag);
    sphereOf(*flag).setColor(kColour);
    copy->setState(featureStateSelected);
    EXPECT_EQ(sphereOf(*flag).getColor(), kColour);
}

TEST(CFlagAutoScaleSphereMeta, ResizesASphereThatTheHostBuiltAnew)
{
    const auto flag = makeFlag(3.0f);
    sphereOf(*flag).build(); // its arrays are no longer those of other spheres
    flag->setState(featureStateSelected);
    EXPECT_FLOAT_EQ(drawnRadius(*flag), 8.0f);
    flag->setState(featureStateNormal);
    EXPECT_FLOAT_EQ(drawnRadius(*flag), 3.0f);
}

TEST(CFlagAutoScaleSphereMeta, ResizesADrawableThatTheHostPutInTheSpheresPlace)
{
    const auto flag = makeFlag(3.0f);
    const osg::ref_ptr<osg::ShapeDrawable> plain = new osg::ShapeDrawable(new osg::Sphere(osg::Vec3f(), 3.0f));
    plain->setName(sphereOf(*flag).getName());
    sphereOf(*flag).getParent(0)->replaceChild(&sphereOf(*flag), plain);
    flag->setState(featureStateSelected);
    EXPECT_FLOAT_EQ(drawnRadius(*flag), 8.0f);
}

} // namespace
