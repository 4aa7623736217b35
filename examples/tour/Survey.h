#pragma once

#include <osg/Matrixd>
#include <osg/Vec2f>
#include <osg/Vec3f>
#include <osgViewer/Viewer>

#include <vector>

namespace tour {

/// A point of the mesh that the camera sees; in the coordinates of the mesh.
struct SurfacePoint
{
    osg::Vec2f window; ///< where it is seen, pixels from the bottom left
    osg::Vec3f point;
    osg::Vec3f normal; ///< of length 1
    bool isSmooth = false;
};

/// A flat square on the mesh, with its four corners in order.
struct FlatSquare
{
    osg::Vec3f centre() const;

    std::vector<osg::Vec3f> corners;
    osg::Vec3f normal;
    float side = 0.0f;
};

/// How far apart two window positions are for labels: these are wide, so side by side counts less.
float labelDistance(const osg::Vec2f& a, const osg::Vec2f& b);

/// Looks for places to put features on, in any mesh, as a user would: by clicks into the window.
class Survey
{
public:
    /// Clicks a grid over the whole window. The mesh must be in the viewer's scene.
    /// @param toWindow from the coordinates of the mesh to the window
    /// @param meshSize radius of the mesh in its own coordinates
    Survey(osgViewer::Viewer& viewer, const osg::Matrixd& toWindow, float meshSize);

    /// Points on smooth spots (if there are such), seen far from each other and from the given window positions; fewer
    /// than count if there are fewer.
    std::vector<SurfacePoint> spreadPoints(std::size_t count, const std::vector<osg::Vec2f>& takenPositions = {}) const;

    /// The largest squares that lie flat on the mesh and are wholly seen; each faces another way than
    /// the ones before, as far as there are such. A mesh without flat places gives squares that touch it.
    std::vector<FlatSquare> flatSquares(std::size_t count) const;

private:
    bool pointUnder(const osg::Vec2f& window, osg::Vec3f& point) const;
    bool examine(const osg::Vec2f& window, SurfacePoint& spot) const;
    bool liesOnMesh(const FlatSquare& square) const;
    FlatSquare largestSquareAt(const SurfacePoint& spot) const;
    std::vector<FlatSquare> squaresBySize() const;

    osgViewer::Viewer& m_viewer;
    osg::Matrixd m_toWindow;
    float m_meshSize;
    std::vector<SurfacePoint> m_spots;
};

} // namespace tour
