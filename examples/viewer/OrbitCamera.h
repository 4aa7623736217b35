#pragma once

#include <osg/BoundingBox>
#include <osg/BoundingSphere>
#include <osg/Camera>
#include <osg/Quat>
#include <osg/Vec3d>

namespace viewer {

/// Eye that turns around a centre, in perspective or parallel projection.
class OrbitCamera
{
public:
    enum class Direction
    {
        Front,
        Back,
        Left,
        Right,
        Top,
        Bottom,
        Isometric
    };

    /// Shows the whole box as large as the window allows; an empty one changes nothing.
    /// @param aspect width of the window by its height
    void fit(const osg::BoundingBox& box, double aspect);

    /// Looks at the centre from a standard direction: z is up, the front faces -y.
    void lookFrom(Direction direction);

    /// Brings a point to the middle and shows so much around it.
    void flyTo(const osg::Vec3d& point, double radius);

    /// Turns the scene; a way of one window height turns it by half a turn.
    /// @param dx,dy way of the cursor in window heights, to the right and upwards
    void orbit(double dx, double dy);

    /// Shifts the scene so that what lies at the centre's depth follows the cursor.
    void pan(double dx, double dy);

    /// Scales the view around a point, which stays where it is in the window.
    /// @param factor below 1 comes closer
    void zoom(double factor, const osg::Vec3d& fixedPoint);

    void setOrthographic(bool orthographic) { m_isOrthographic = orthographic; }
    bool isOrthographic() const { return m_isOrthographic; }

    const osg::Vec3d& centre() const { return m_centre; }
    osg::Quat rotation() const { return m_rotation; }

    /// The way the eye looks, of length 1.
    osg::Vec3d lookVector() const { return m_rotation * osg::Vec3d(0, 0, -1); }

    /// Sets view and projection so that nothing within the bound is cut off.
    void applyTo(osg::Camera& camera, double aspect, const osg::BoundingSphere& bound) const;

private:
    osg::Vec3d eye() const { return m_centre - lookVector() * m_distance; }
    double halfHeight() const; // of what is seen at the centre's depth

    osg::Vec3d m_centre;
    osg::Quat m_rotation = standardRotation(Direction::Isometric); // from eye to world coordinates
    double m_distance = 10.0;
    bool m_isOrthographic = false;

    static osg::Quat standardRotation(Direction direction);
};

} // namespace viewer
