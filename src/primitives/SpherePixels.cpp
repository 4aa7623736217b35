#include "primitives/SpherePixels.h"

#include <osg/Camera>
#include <osg/FrameStamp>
#include <osg/GL>
#include <osg/Matrixd>
#include <osg/Point>
#include <osg/State>
#include <osg/Vec3d>
#include <osg/Vec4d>
#include <osg/Viewport>

#include <cmath>

namespace KelvOsgTools::detail {
namespace {

#ifdef OSG_GL_VERTEX_FUNCS_AVAILABLE

constexpr double kOutline = 0.9997; // of the radius: where the facets of a full tessellation end in the mean
constexpr double kMaxPixels = 32.0; // across; with more there are so many that triangles are as fast

osg::Vec3d spatial(const osg::Vec4d& point)
{
    return {point.x(), point.y(), point.z()};
}

osg::Vec3d columnOf(const osg::Matrixd& matrix, int index)
{
    return {matrix(0, index), matrix(1, index), matrix(2, index)};
}

/// A measure of a viewport as osg::Viewport hands it to OpenGL.
int wholePixels(double measure)
{
    return static_cast<int>(measure);
}

/// The pixels in one direction of the window whose middles a sphere around the origin may cover.
class PixelRange
{
public:
    /// @param axis of clip coordinates
    PixelRange(const osg::Matrixd& toClip, int axis, double radius, int windowFirst, int windowSize)
        : m_windowFirst(windowFirst), m_pixelsPerClip(0.5 * windowSize)
    {
        // Of the planes through the eye that cross the window in a line of equal coordinates, two touch
        // the sphere: their distances from the origin are the radius.
        const osg::Vec3d grade = columnOf(toClip, axis) * radius;
        const osg::Vec3d gradeW = columnOf(toClip, 3) * radius;
        const double offset = toClip(3, axis);
        const double w = toClip(3, 3);
        const double a = w * w - gradeW.length2();
        const double b = w * offset - gradeW * grade;
        const double c = offset * offset - grade.length2();
        const double reach = std::sqrt(b * b - a * c) / a;
        const double firstEdge = toPixel(b / a - reach);
        const double lastEdge = toPixel(b / a + reach);
        m_isShort = a > 0.0 && w > 0.0 && lastEdge - firstEdge < kMaxPixels; // false for NaN
        if (!m_isShort) return;
        m_first = std::ceil(firstEdge - 0.5);
        m_count = static_cast<int>(std::floor(lastEdge - 0.5) - m_first) + 1;
    }

    /// Whether the sphere lies in front of the eye and takes few pixels.
    bool isShort() const { return m_isShort; }
    int count() const { return m_count; }

    /// The clip coordinate of the middle of a pixel.
    double middle(int index) const { return (m_first + index + 0.5 - m_windowFirst) / m_pixelsPerClip - 1.0; }

private:
    double toPixel(double clip) const { return m_windowFirst + (clip + 1.0) * m_pixelsPerClip; }

    double m_windowFirst;
    double m_pixelsPerClip;
    double m_first = 0.0;
    int m_count = 0;
    bool m_isShort = false;
};

/// What a pixel shows of a sphere around the origin.
class PixelRays
{
public:
    PixelRays(const osg::Matrixd& modelView, const osg::Matrixd& fromClip, double radius)
        : m_fromClip(fromClip),
          m_eye(osg::Vec4d(0.0, 0.0, 1.0, 0.0) * fromClip),
          m_towardsEye(columnOf(modelView, 2)),
          m_radius(radius)
    {}

    /// The point of the sphere that is seen through a point in clip coordinates.
    /// @return whether there is any
    bool meet(const osg::Vec4d& clip, osg::Vec3d& seen) const
    {
        const osg::Vec4d through = clip * m_fromClip;
        const osg::Vec3d start = spatial(through) / through.w();
        osg::Vec3d along = spatial(m_eye) - start * m_eye.w(); // the eye of a parallel view is far away
        along.normalize();
        if (along * m_towardsEye < 0.0) along = -along;

        const osg::Vec3d foot = start - along * (start * along); // of the perpendicular from the centre
        const double fromCentre = foot.length();
        if (!(fromCentre < kOutline * m_radius)) return false; // nor with a NaN
        seen = foot + along * std::sqrt(m_radius * m_radius - fromCentre * fromCentre);
        return true;
    }

private:
    osg::Matrixd m_fromClip;
    osg::Vec4d m_eye;
    osg::Vec3d m_towardsEye;
    double m_radius;
};

/// Whether pixels take several samples, asked once for each camera and frame: drivers answer late.
bool isMultisampled(osg::RenderInfo& renderInfo)
{
    struct Answer
    {
        const osg::State* state;
        const osg::Camera* camera;
        unsigned int frame;
        bool isMultisampled;
    };
    static thread_local Answer last = {};

    const osg::State* const state = renderInfo.getState();
    const osg::Camera* const camera = renderInfo.getCurrentCamera();
    const osg::FrameStamp* const stamp = state->getFrameStamp();
    const bool isKnown = stamp && last.state == state && last.camera == camera && last.frame == stamp->getFrameNumber();
    if (isKnown) return last.isMultisampled;

    GLint buffers = 0;
    glGetIntegerv(GL_SAMPLE_BUFFERS_ARB, &buffers);
    last = {state, camera, stamp ? stamp->getFrameNumber() : 0, buffers > 0};
    return last.isMultisampled;
}

/// Whether points are lit and blended as triangles are.
bool drawsPointsLikeTriangles(osg::RenderInfo& renderInfo)
{
    const osg::State& state = *renderInfo.getState();
    return !state.getLastAppliedProgramObject() && !state.getUseVertexAttributeAliasing() &&
           !state.getLastAppliedMode(GL_POLYGON_OFFSET_FILL) && !isMultisampled(renderInfo);
}

/// Makes a point one whole pixel, whatever the host made points before.
void usePixelPoints(osg::State& state)
{
    static const osg::ref_ptr<const osg::Point> onePixel = new osg::Point;
    onePixel->apply(state);
    state.haveAppliedAttribute(osg::StateAttribute::POINT); // the host's own is due again
    state.applyMode(GL_POINT_SMOOTH, false);
}

#endif

} // namespace

#ifdef OSG_GL_VERTEX_FUNCS_AVAILABLE

bool drawSpherePixels(osg::RenderInfo& renderInfo, double radius)
{
    osg::State& state = *renderInfo.getState();
    const osg::Viewport* const viewport = state.getCurrentViewport();
    if (!viewport || !(radius > 0.0) || !drawsPointsLikeTriangles(renderInfo)) return false;

    const osg::Matrixd toClip = state.getModelViewMatrix() * state.getProjectionMatrix();
    const PixelRange columns(toClip, 0, radius, wholePixels(viewport->x()), wholePixels(viewport->width()));
    const PixelRange rows(toClip, 1, radius, wholePixels(viewport->y()), wholePixels(viewport->height()));
    osg::Matrixd fromClip;
    if (!columns.isShort() || !rows.isShort() || !fromClip.invert(toClip)) return false;

    usePixelPoints(state);
    const PixelRays rays(state.getModelViewMatrix(), fromClip, radius);
    const double depth = toClip(3, 2) / toClip(3, 3); // of the centre
    glBegin(GL_POINTS);
    for (int row = 0; row < rows.count(); ++row)
        for (int column = 0; column < columns.count(); ++column) {
            osg::Vec3d seen;
            if (!rays.meet(osg::Vec4d(columns.middle(column), rows.middle(row), depth, 1.0), seen)) continue;
            const osg::Vec3f normal(seen / radius);
            state.Normal(normal.x(), normal.y(), normal.z());
            glVertex3d(seen.x(), seen.y(), seen.z());
        }
    glEnd();
    return true;
}

#else

bool drawSpherePixels(osg::RenderInfo&, double)
{
    return false;
}

#endif

} // namespace KelvOsgTools::detail
