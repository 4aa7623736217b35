#include <KelvOsgTools/FeatureFunctions.h>

#include <osg/BoundingBox>
#include <osg/Vec4f>

#include <cmath>

namespace KelvOsgTools {
namespace {

constexpr float kPi = 3.1415927f;

/// Element (row, column) of a rotation that multiplies column vectors.
struct RotationMatrix
{
    /// @param axis of length 1
    RotationMatrix(float angle, const osg::Vec3f& axis)
    {
        const float x = axis.x();
        const float y = axis.y();
        const float z = axis.z();
        const float s = std::sin(angle);
        const float c = std::cos(angle);
        const float t = 1.0f - c;
        const float rows[3][3] = {{t * x * x + c, t * x * y - s * z, t * x * z + s * y},
                                  {t * x * y + s * z, t * y * y + c, t * y * z - s * x},
                                  {t * x * z - s * y, t * y * z + s * x, t * z * z + c}};
        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 3; ++column) m_elements[row][column] = rows[row][column];
    }

    float operator()(int row, int column) const { return m_elements[row][column]; }

private:
    float m_elements[3][3];
};

osg::Vec3f normalised(const osg::Vec3f& axis)
{
    const float length = std::sqrt(axis.x() * axis.x() + axis.y() * axis.y() + axis.z() * axis.z());
    return osg::Vec3f(axis.x() / length, axis.y() / length, axis.z() / length);
}

/// Of the two triples of angles that give the same rotation, the one whose first angle, negated, is
/// not negative.
osg::Vec3f negatedAnglesOf(const RotationMatrix& rotation)
{
    float e0 = std::atan2(rotation(1, 2), rotation(2, 2));
    float c2 = std::sqrt(rotation(0, 0) * rotation(0, 0) + rotation(0, 1) * rotation(0, 1));
    if (e0 > 0.0f) {
        e0 -= kPi;
        c2 = -c2;
    }
    const float e1 = std::atan2(-rotation(0, 2), c2);
    const float s1 = std::sin(e0);
    const float c1 = std::cos(e0);
    const float e2 = std::atan2(s1 * rotation(2, 0) - c1 * rotation(1, 0), c1 * rotation(1, 1) - s1 * rotation(2, 1));
    return osg::Vec3f(e0, e1, e2);
}

} // namespace

void calculateRotateAngles(osg::Vec3f& angles, float angle, osg::Vec3f axis)
{
    angles = -negatedAnglesOf(RotationMatrix(angle, normalised(axis)));
}

osg::Vec3f getCenterPosAfterTransForm(const osg::Vec3Array* points, const osg::Matrixd& transform)
{
    if (!points || points->empty()) return osg::Vec3f();

    // The first point is projected, all points are not: for a matrix that is not affine the box spans
    // both, and hosts rely on the centre of just that box.
    const osg::Vec3f seed = transform.preMult(points->front());
    osg::BoundingBoxf box(seed, seed);
    for (const osg::Vec3f& point : *points) {
        const osg::Vec4f transformed = transform.preMult(osg::Vec4f(point, 1.0f));
        box.expandBy(transformed.x(), transformed.y(), transformed.z());
    }
    return box.center();
}

} // namespace KelvOsgTools
