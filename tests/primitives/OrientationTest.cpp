#include <KelvOsgTools/FeatureFunctions.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <osg/Array>
#include <osg/Matrixd>
#include <osg/Vec3f>

#include <algorithm>
#include <cmath>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace {
using namespace KelvOsgTools;

constexpr float kPi = 3.1415927f;
constexpr float kHalfPi = kPi / 2.0f;

osg::Vec3f anglesOf(float angle, const osg::Vec3f& axis)
{
    osg::Vec3f angles(9.0f, 9.0f, 9.0f);
    calculateRotateAngles(angles, angle, axis);
    return angles;
}

/// Rx * Ry * Rz for column vectors. OpenSceneGraph's matrices multiply row vectors: the order turns around.
osg::Matrixd productOf(const osg::Vec3f& angles)
{
    return osg::Matrixd::rotate(angles.z(), osg::Z_AXIS) * osg::Matrixd::rotate(angles.y(), osg::Y_AXIS) *
           osg::Matrixd::rotate(angles.x(), osg::X_AXIS);
}

double largestDifference(const osg::Matrixd& a, const osg::Matrixd& b)
{
    double largest = 0.0;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            largest = std::max(largest, std::abs(a(row, column) - b(row, column)));
    return largest;
}

MATCHER_P(IsCloseTo, expected, "")
{
    return (arg - expected).length() < 1e-6f;
}

TEST(CalculateRotateAngles, ReproducesRandomRotationsWithinTheDocumentedRanges)
{
    std::mt19937 random(20250301); // fixed: every run checks the same rotations
    std::uniform_real_distribution<float> component(-1.0f, 1.0f);
    std::uniform_real_distribution<float> turn(-2.0f * kPi, 2.0f * kPi);
    for (int i = 0; i < 20000; ++i) {
        const osg::Vec3f axis(component(random), component(random), component(random));
        const float angle = turn(random);
        const osg::Vec3f angles = anglesOf(angle, axis);
        // Single precision: some roundings of matrix elements of at most 1.
        ASSERT_LT(largestDifference(productOf(angles), osg::Matrixd::rotate(angle, axis)), 2e-6) << i;
        ASSERT_GE(angles.x(), 0.0f) << i;
        ASSERT_LE(angles.x(), kPi) << i;
        ASSERT_LE(std::abs(angles.y()), kPi) << i;
        ASSERT_LE(std::abs(angles.z()), kPi) << i;
    }
}

struct RotationCase
{
    const char* name;
    float angle;
    osg::Vec3f axis;
    osg::Vec3f expected;
};

std::ostream& operator<<(std::ostream& stream, const RotationCase& tested)
{
    return stream << tested.name;
}

class KnownRotation : public testing::TestWithParam<RotationCase>
{};

TEST_P(KnownRotation, HasTheseAngles)
{
    EXPECT_THAT(anglesOf(GetParam().angle, GetParam().axis), IsCloseTo(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(CalculateRotateAngles, KnownRotation,
                         testing::Values(RotationCase{"NoneAboutX", 0.0f, osg::X_AXIS, {}},
                                         RotationCase{"NoneAboutTheDiagonal", 0.0f, {1, 1, 1}, {}},
                                         RotationCase{"QuarterTurnAboutX", kHalfPi, osg::X_AXIS, {kHalfPi, 0, 0}},
                                         RotationCase{"QuarterTurnAboutY", kHalfPi, osg::Y_AXIS, {0, kHalfPi, 0}},
                                         RotationCase{"QuarterTurnAboutZ", kHalfPi, osg::Z_AXIS, {0, 0, kHalfPi}},
                                         RotationCase{"AxisOfAnyLength", kHalfPi, {25, 0, 0}, {kHalfPi, 0, 0}},
                                         RotationCase{"BackAboutZ", -0.5f, osg::Z_AXIS, {0, 0, -0.5f}}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(CalculateRotateAngles, LeavesAFirstAngleBelowHalfATurnUnfolded)
{
    EXPECT_THAT(anglesOf(3.1415f, osg::X_AXIS), IsCloseTo(osg::Vec3f(3.1415f, 0.0f, 0.0f)));
}

TEST(CalculateRotateAngles, FoldsANegativeFirstAngleThroughTheOtherTwo)
{
    const osg::Vec3f angles = anglesOf(-0.25f, osg::X_AXIS);
    EXPECT_NEAR(angles.x(), kPi - 0.25f, 1e-6f);
    EXPECT_NEAR(std::abs(angles.y()), kPi, 1e-6f);
    EXPECT_NEAR(std::abs(angles.z()), kPi, 1e-6f);
}

TEST(CalculateRotateAngles, FoldsWhereTheRoundedSineOfHalfATurnChangesSign)
{
    // The float nearest to pi lies beyond pi: the first angle has just turned negative.
    const osg::Vec3f angles = anglesOf(kPi, osg::X_AXIS);
    EXPECT_NEAR(angles.x(), 0.0f, 1e-6f);
    EXPECT_NEAR(std::abs(angles.y()), kPi, 1e-6f);
    EXPECT_NEAR(std::abs(angles.z()), kPi, 1e-6f);
}

TEST(CalculateRotateAngles, ComputesInSinglePrecision)
{
    // In double precision the difference would be half a step of single precision, not a whole one.
    EXPECT_EQ(anglesOf(kPi, osg::X_AXIS).x(), kPi - std::nextafter(kPi, 0.0f));
}

TEST(CalculateRotateAngles, GivesNoNumbersForAZeroAxis)
{
    const osg::Vec3f angles = anglesOf(1.0f, osg::Vec3f());
    EXPECT_TRUE(std::isnan(angles.x()));
    EXPECT_TRUE(std::isnan(angles.y()));
    EXPECT_TRUE(std::isnan(angles.z()));
}

osg::ref_ptr<osg::Vec3Array> pointsOf(const std::vector<osg::Vec3f>& points)
{
    return new osg::Vec3Array(points.begin(), points.end());
}

/// Gives points a w of 1 + x.
osg::Matrixd perspectiveAlongX()
{
    osg::Matrixd matrix;
    matrix(0, 3) = 1.0;
    return matrix;
}

TEST(GetCenterPosAfterTransForm, IsTheOriginWithoutPoints)
{
    const osg::Matrixd shift = osg::Matrixd::translate(1, 2, 3);
    EXPECT_EQ(getCenterPosAfterTransForm(nullptr, shift), osg::Vec3f());
    EXPECT_EQ(getCenterPosAfterTransForm(pointsOf({}), shift), osg::Vec3f());
}

TEST(GetCenterPosAfterTransForm, IsASinglePointTransformed)
{
    const osg::Matrixd matrix = osg::Matrixd::scale(2, 2, 2) * osg::Matrixd::translate(1, 2, 3);
    EXPECT_EQ(getCenterPosAfterTransForm(pointsOf({{1, 1, 1}}), matrix), osg::Vec3f(3, 4, 5));
}

TEST(GetCenterPosAfterTransForm, IsTheCentreOfTheBoxNotTheMean)
{
    const auto points = pointsOf({{0, 0, 0}, {2, 0, 0}, {0, 4, 0}});
    EXPECT_EQ(getCenterPosAfterTransForm(points, osg::Matrixd()), osg::Vec3f(1, 2, 0));
}

TEST(GetCenterPosAfterTransForm, TransformsBeforeItTakesTheBox)
{
    // A shear moves the centre of the box of these points elsewhere than to the centre of their new box.
    const osg::Matrixd shear(1, 0, 0, 0, 1, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    const auto points = pointsOf({{0, 0, 0}, {2, 0, 0}, {0, 4, 0}}); // sheared: (0, 0), (2, 0), (4, 4)
    EXPECT_EQ(getCenterPosAfterTransForm(points, shear), osg::Vec3f(2, 2, 0));
}

TEST(GetCenterPosAfterTransForm, SeedsTheBoxWithTheProjectedFirstPoint)
{
    // Projected: (1/2, 0, 0). Not projected: (1, 0, 0) and (2, 0, 0). The box spans 1/2 to 2.
    const auto points = pointsOf({{1, 0, 0}, {2, 0, 0}});
    EXPECT_EQ(getCenterPosAfterTransForm(points, perspectiveAlongX()), osg::Vec3f(1.25f, 0, 0));
}

TEST(GetCenterPosAfterTransForm, ProjectsNoOtherPoint)
{
    // The second point projected would be (3/4, 0, 0), below the seed of (7/8, 0, 0).
    const auto points = pointsOf({{7, 0, 0}, {3, 0, 0}});
    EXPECT_EQ(getCenterPosAfterTransForm(points, perspectiveAlongX()), osg::Vec3f(3.9375f, 0, 0));
}

} // namespace
