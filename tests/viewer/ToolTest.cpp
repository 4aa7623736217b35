#include "Tool.h"
#include "OrbitCamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <osg/Viewport>

namespace viewer {
namespace {

using namespace KelvOsgTools;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;

const osg::Vec3f kA(1, 0, 0);
const osg::Vec3f kB(0, 1, 0);
const osg::Vec3f kC(0, 0, 1);

TEST(Tool, MakesADotOfOneClick)
{
    Tool tool;
    tool.choose(ToolKind::Dot);
    EXPECT_THAT(tool.click(kA), Optional(ElementsAre(kA)));
}

TEST(Tool, MakesALineOfTwoClicksAndStartsOver)
{
    Tool tool;
    tool.choose(ToolKind::Line);
    EXPECT_EQ(tool.click(kA), std::nullopt);
    EXPECT_THAT(tool.click(kB), Optional(ElementsAre(kA, kB)));
    EXPECT_THAT(tool.clicks(), IsEmpty());
    EXPECT_EQ(tool.kind(), ToolKind::Line);
}

TEST(Tool, MakesAPlaneOfThreeClicks)
{
    Tool tool;
    tool.choose(ToolKind::Plane);
    tool.click(kA);
    tool.click(kB);
    EXPECT_THAT(tool.click(kC), Optional(ElementsAre(kA, kB, kC)));
}

TEST(Tool, MakesNothingWhileItSelects)
{
    Tool tool;
    EXPECT_EQ(tool.click(kA), std::nullopt);
    EXPECT_THAT(tool.clicks(), IsEmpty());
}

TEST(Tool, ForgetsItsClicksFirstAndItselfThen)
{
    Tool tool;
    tool.choose(ToolKind::Plane);
    tool.click(kA);
    tool.cancel();
    EXPECT_EQ(tool.kind(), ToolKind::Plane);
    EXPECT_THAT(tool.clicks(), IsEmpty());
    tool.cancel();
    EXPECT_EQ(tool.kind(), ToolKind::Select);
}

TEST(Tool, ForgetsItsClicksWhenAnotherIsChosen)
{
    Tool tool;
    tool.choose(ToolKind::Line);
    tool.click(kA);
    tool.choose(ToolKind::SolidLine);
    EXPECT_THAT(tool.clicks(), IsEmpty());
    EXPECT_FALSE(tool.isLineArrow());
}

/// Where a point stands in a window of 200 by 100.
osg::Vec3d seen(const OrbitCamera& orbit, const osg::Vec3d& point)
{
    const osg::ref_ptr<osg::Camera> camera = new osg::Camera;
    camera->setViewport(0, 0, 200, 100);
    orbit.applyTo(*camera, 2.0, osg::BoundingSphere(osg::Vec3(), 10.0f));
    return point *
           (camera->getViewMatrix() * camera->getProjectionMatrix() * camera->getViewport()->computeWindowMatrix());
}

class OrbitCameraTest : public ::testing::TestWithParam<bool>
{
protected:
    OrbitCameraTest()
    {
        m_orbit.setOrthographic(GetParam());
        m_orbit.lookFrom(OrbitCamera::Direction::Front);
        m_orbit.flyTo(osg::Vec3d(), 10.0);
    }

    OrbitCamera m_orbit;
};
INSTANTIATE_TEST_SUITE_P(Projections, OrbitCameraTest, ::testing::Bool(),
                         [](const auto& projection) { return projection.param ? "Parallel" : "Perspective"; });

TEST_P(OrbitCameraTest, KeepsThePointUnderTheCursorWhileZooming)
{
    const osg::Vec3d point(3, -2, 1);
    const osg::Vec3d before = seen(m_orbit, point);
    m_orbit.zoom(0.5, point);
    EXPECT_NEAR(seen(m_orbit, point).x(), before.x(), 1e-3);
    EXPECT_NEAR(seen(m_orbit, point).y(), before.y(), 1e-3);
    EXPECT_GT((seen(m_orbit, osg::Vec3d()) - before).length(), (seen(m_orbit, point) - before).length());
}

TEST_P(OrbitCameraTest, MovesTheCentreWithTheCursorWhilePanning)
{
    m_orbit.pan(0.25, 0.1);
    const osg::Vec3d origin = seen(m_orbit, osg::Vec3d());
    EXPECT_NEAR(origin.x(), 100.0 + 25.0, 1e-3);
    EXPECT_NEAR(origin.y(), 50.0 + 10.0, 1e-3);
}

TEST_P(OrbitCameraTest, TurnsTheFrontToTheRightWhenDraggedToTheRight)
{
    const osg::Vec3d front(0, -5, 0);
    m_orbit.orbit(0.1, 0.0);
    EXPECT_GT(seen(m_orbit, front).x(), 100.0 + 1.0);
    m_orbit.lookFrom(OrbitCamera::Direction::Front);
    m_orbit.orbit(0.0, 0.1);
    EXPECT_GT(seen(m_orbit, front).y(), 50.0 + 1.0);
}

TEST_P(OrbitCameraTest, FitsTheWholeBoxIntoTheWindow)
{
    const osg::BoundingBox box(-10, -1, -2, 10, 1, 2);
    m_orbit.lookFrom(OrbitCamera::Direction::Isometric);
    m_orbit.fit(box, 2.0);
    double widest = 0.0;
    for (unsigned int i = 0; i < 8; ++i) {
        const osg::Vec3d corner = seen(m_orbit, box.corner(i));
        EXPECT_TRUE(corner.x() > 0 && corner.x() < 200 && corner.y() > 0 && corner.y() < 100) << i;
        widest = std::max({widest, std::abs(corner.x() - 100) / 100, std::abs(corner.y() - 50) / 50});
    }
    EXPECT_GT(widest, 0.7); // and no smaller than needed
}

TEST_P(OrbitCameraTest, LooksFromEveryStandardDirection)
{
    using Direction = OrbitCamera::Direction;
    m_orbit.lookFrom(Direction::Top);
    EXPECT_NEAR((m_orbit.lookVector() - osg::Vec3d(0, 0, -1)).length(), 0.0, 1e-9);
    m_orbit.lookFrom(Direction::Right);
    EXPECT_NEAR((m_orbit.lookVector() - osg::Vec3d(-1, 0, 0)).length(), 0.0, 1e-9);
    m_orbit.lookFrom(Direction::Back);
    EXPECT_NEAR((m_orbit.lookVector() - osg::Vec3d(0, -1, 0)).length(), 0.0, 1e-9);
}

} // namespace
} // namespace viewer
