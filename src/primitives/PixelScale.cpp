#include "primitives/PixelScale.h"

#include <osg/CullStack>
#include <osg/Math>
#include <osg/Matrixd>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <type_traits>

namespace KelvOsgTools::detail {
namespace {

using Elements = std::array<double, 16>;

Elements elementsOf(const osg::Matrixd& matrix)
{
    Elements elements;
    std::copy_n(matrix.ptr(), elements.size(), elements.begin());
    return elements;
}

/// Element by element: osg::Matrixd takes a matrix with a NaN for equal to any other.
bool areEqual(const Elements& elements, const osg::Matrixd& matrix)
{
    return std::equal(elements.begin(), elements.end(), matrix.ptr());
}

double squaredLengthOfColumn(const osg::Matrixd& matrix, int index)
{
    return osg::Vec3d(matrix(0, index), matrix(1, index), matrix(2, index)).length2();
}

/// What the transforms below one node need to know of a view. A view is looked at for thousands of
/// them, one after the other.
class ScreenView
{
public:
    explicit ScreenView(const osg::CullStack& stack)
        : m_modelView(elementsOf(*stack.getModelViewMatrix())),
          m_projection(elementsOf(*stack.getProjectionMatrix())),
          m_width(stack.getViewport()->width()),
          m_height(stack.getViewport()->height())
    {
        const osg::Matrixd& modelView = *stack.getModelViewMatrix();
        const osg::Matrixd& projection = *stack.getProjectionMatrix();
        const osg::Matrixd toClip = modelView * projection;
        m_toClipW.set(toClip(0, 3), toClip(1, 3), toClip(2, 3), toClip(3, 3));

        const double across = osg::square(projection(0, 0) * m_width * 0.5) * squaredLengthOfColumn(modelView, 0);
        const double up = osg::square(projection(1, 1) * m_height * 0.5) * squaredLengthOfColumn(modelView, 1);
        m_pixelsTimesW = std::sqrt((across + up) * 0.5);

        osg::Vec3d translation;
        osg::Vec3d scale;
        osg::Quat rotation;
        osg::Quat scaleOrientation;
        modelView.decompose(translation, rotation, scale, scaleOrientation);
        m_toScreen = rotation.inverse();
    }

    bool isOf(const osg::CullStack& stack) const
    {
        return m_width == stack.getViewport()->width() && m_height == stack.getViewport()->height() &&
               areEqual(m_modelView, *stack.getModelViewMatrix()) &&
               areEqual(m_projection, *stack.getProjectionMatrix());
    }

    /// How many pixels a unit at position takes if it lies parallel to the screen, as a mean of the
    /// window's two directions.
    double pixelsPerUnit(const osg::Vec3d& position) const
    {
        return m_pixelsTimesW / std::abs(osg::Vec4d(position, 1.0) * m_toClipW);
    }

    /// The rotation that turns what is turned in this view to the screen.
    const osg::Quat& toScreen() const { return m_toScreen; }

private:
    Elements m_modelView;
    Elements m_projection;
    double m_width;
    double m_height;
    osg::Vec4d m_toClipW; // the dot product with a point is its w in clip coordinates
    double m_pixelsTimesW = 0.0;
    osg::Quat m_toScreen;
};

const ScreenView& viewOf(const osg::CullStack& stack)
{
    // Else the library could not be unloaded before the thread ends.
    static_assert(std::is_trivially_destructible_v<ScreenView>);
    thread_local ScreenView latest(stack); // viewers may cull in several threads
    if (!latest.isOf(stack)) latest = ScreenView(stack);
    return latest;
}

/// A scale within the limits of a transform. OpenSceneGraph draws near to them by and by, which leads
/// far astray where the largest scale is the largest number.
double limited(double scale, const osg::AutoTransform& transform)
{
    return std::max(std::min(scale, transform.getMaximumScale()), transform.getMinimumScale());
}

} // namespace

bool scaleToPixels(const osg::AutoTransform& transform, osg::NodeVisitor* visitor, osg::Vec3d& scale,
                   osg::Quat& rotation)
{
    const osg::CullStack* const stack = visitor ? visitor->asCullStack() : nullptr;
    if (!stack || !stack->getViewport() || !transform.getAutoScaleToScreen()) return false;

    const ScreenView& view = viewOf(*stack);
    const double pixel = 1.0 / view.pixelsPerUnit(transform.getPosition());
    if (!std::isnormal(pixel)) return false;
    const double size = limited(pixel, transform);

    const osg::AutoTransform::AutoRotateMode mode = transform.getAutoRotateMode();
    if (mode == osg::AutoTransform::ROTATE_TO_SCREEN) {
        rotation = view.toScreen();
    } else if (mode != osg::AutoTransform::NO_ROTATION) {
        osg::Matrixd ignored;
        transform.osg::AutoTransform::computeLocalToWorldMatrix(ignored, visitor);
        rotation = transform.getRotation();
    }
    scale.set(size, size, size);
    return true;
}

} // namespace KelvOsgTools::detail
