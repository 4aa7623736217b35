#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/CSphereMeta.h>

#include <osg/Geode>
#include <osg/observer_ptr>

#include <gtest/gtest.h>

#include <limits>

namespace {
using namespace KelvOsgTools;

osg::ref_ptr<CAutoScaleSphereMeta> dotOf(float radius)
{
    CAutoScaleSphereMeta::structSphereMeta meta;
    meta.radius = radius;
    return new CAutoScaleSphereMeta(meta);
}

osg::ShapeDrawable& sphereOf(osg::Group& dot)
{
    return static_cast<osg::ShapeDrawable&>(*dot.getChild(0)->asGroup()->getChild(0)->asGeode()->getDrawable(0));
}

TEST(SphereSharing, GivesEqualSpheresTheSameArrays)
{
    const auto one = dotOf(3.0f);
    const auto other = dotOf(3.0f);
    EXPECT_EQ(sphereOf(*one).getVertexArray(), sphereOf(*other).getVertexArray());
    EXPECT_EQ(sphereOf(*one).getNormalArray(), sphereOf(*other).getNormalArray());
    ASSERT_EQ(sphereOf(*one).getNumPrimitiveSets(), 1u);
    EXPECT_EQ(sphereOf(*one).getPrimitiveSet(0), sphereOf(*other).getPrimitiveSet(0));
}

TEST(SphereSharing, GivesUnequalSpheresArraysOfTheirOwn)
{
    const auto small = dotOf(3.0f);
    const auto large = dotOf(4.0f);
    EXPECT_NE(sphereOf(*small).getVertexArray(), sphereOf(*large).getVertexArray());
}

TEST(SphereSharing, RecoloursOneSphereOnly)
{
    const auto one = dotOf(3.0f);
    const auto other = dotOf(3.0f);
    one->setState(featureStateSelected);
    EXPECT_EQ(sphereOf(*one).getColor(), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_EQ(sphereOf(*other).getColor(), osg::Vec4f(1.0f, 1.0f, 1.0f, 1.0f));
    EXPECT_NE(sphereOf(*one).getColorArray(), sphereOf(*other).getColorArray());
}

TEST(SphereSharing, EndsForTheSphereThatTheHostBuildsAnew)
{
    const auto one = dotOf(3.0f);
    const auto other = dotOf(3.0f);
    const unsigned int vertices = sphereOf(*other).getVertexArray()->getNumElements();
    sphereOf(*one).setShape(new osg::Box);
    EXPECT_NE(sphereOf(*one).getVertexArray(), sphereOf(*other).getVertexArray());
    EXPECT_EQ(sphereOf(*other).getVertexArray()->getNumElements(), vertices);
    EXPECT_FLOAT_EQ(sphereOf(*one).getBoundingBox().xMax(), 0.5f);
    EXPECT_FLOAT_EQ(sphereOf(*other).getBoundingBox().xMax(), 3.0f);
}

TEST(SphereSharing, KeepsNothingAliveOnceNoSphereUsesIt)
{
    osg::ref_ptr<CAutoScaleSphereMeta> dot = dotOf(3.5f);
    const osg::observer_ptr<osg::Array> vertices = sphereOf(*dot).getVertexArray();
    dot = nullptr;
    EXPECT_FALSE(vertices.valid());
}

TEST(SphereSharing, KeepsTheHintsThatTheRecordAsksFor)
{
    CAutoScaleSphereMeta::structSphereMeta meta;
    meta.ratio = 1e9f;
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(meta);
    EXPECT_EQ(sphereOf(*dot).getTessellationHints()->getDetailRatio(), 1e9f);
    EXPECT_LT(sphereOf(*dot).getVertexArray()->getNumElements(), 2000000u);
}

TEST(SphereSharing, CopesWithARadiusThatIsNoNumber)
{
    const auto one = dotOf(std::numeric_limits<float>::quiet_NaN());
    const auto other = dotOf(std::numeric_limits<float>::quiet_NaN());
    EXPECT_NE(sphereOf(*one).getVertexArray(), sphereOf(*other).getVertexArray());
}

TEST(SphereSharing, LetsAFlagSwitchBetweenTwoSharedShapes)
{
    CAutoScaleSphereMeta::structSphereMeta meta;
    meta.radius = 4.0f;
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = new CFlagAutoScaleSphereMeta(meta);
    const osg::Array* const small = sphereOf(*flag).getVertexArray();
    flag->setState(featureStateSelected);
    const osg::Array* const large = sphereOf(*flag).getVertexArray();
    EXPECT_NE(small, large);
    flag->setState(featureStateHighlighted);
    EXPECT_EQ(sphereOf(*flag).getVertexArray(), small);
    flag->setState(featureStateSelected);
    EXPECT_EQ(sphereOf(*flag).getVertexArray(), large);
}

TEST(SphereSharing, HasTheShapeOfASelectedFlagReady)
{
    CAutoScaleSphereMeta::structSphereMeta meta;
    meta.radius = 4.0f;
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = new CFlagAutoScaleSphereMeta(meta);
    const osg::observer_ptr<osg::Array> selectedSize = sphereOf(*dotOf(9.0f)).getVertexArray();
    ASSERT_TRUE(selectedSize.valid()); // kept by the flag alone: the dot is gone
    flag->setState(featureStateSelected);
    EXPECT_EQ(sphereOf(*flag).getVertexArray(), selectedSize.get());
}

} // namespace
