#pragma once

#include "Scene.h"
#include "Studio.h"
#include "Survey.h"

#include <string>
#include <vector>

namespace tour {

/// From one point to another, in the coordinates of the mesh.
struct Segment
{
    osg::Vec3f start;
    osg::Vec3f end;
    osg::Vec3f middle() const { return (start + end) * 0.5f; }
};

/// What the steps of the tour share.
class Tour
{
public:
    /// @param folder for the pictures; it must exist
    Tour(Studio& studio, osg::Node* mesh, std::string folder);

    Studio& studio() { return m_studio; }
    const std::string& folder() const { return m_folder; }
    osg::Node* mesh() const { return m_mesh; }
    osg::Group* scene() const { return m_scene.root; }
    const osg::Matrixd& meshMatrix() const { return m_scene.meshTransform->getMatrix(); }

    /// A share of the mesh's radius, in the coordinates of the mesh.
    float share(float ofRadius) const { return ofRadius * m_mesh->getBound().radius(); }

    /// @name Places on the mesh for the features, chosen so that labels do not cover each other
    /// @{
    static constexpr std::size_t kDots = 4;
    static constexpr std::size_t kSegments = 2;
    static constexpr std::size_t kPlanes = 3;
    static constexpr std::size_t kStands = 2;
    const osg::Vec3f& dot(std::size_t index) const { return m_dots.at(index).point; }
    const Segment& segment(std::size_t index) const { return m_segments.at(index); }
    const FlatSquare& plane(std::size_t index) const { return m_squares.at(index); }
    const Segment& stand(std::size_t index) const { return m_stands.at(index); }
    osg::Vec2f freePosition() const { return m_dots.back().window; } ///< window position of a spot without feature
    /// @}

    /// Where a point of the mesh is seen, pixels from the bottom left.
    osg::Vec2f windowPosition(const osg::Vec3f& meshPoint) const;

    /// Takes another scene with the same mesh in place of the first.
    void showOtherScene(const Scene& scene);

    /// Saves a picture under the next number: NN-name.png.
    void picture(const std::string& name, const std::string& caption);

private:
    void choosePlaces();
    std::vector<osg::Vec2f> labelPositions() const;
    std::vector<Segment> bestPairs(const std::vector<SurfacePoint>& ends) const;

    Studio& m_studio;
    osg::ref_ptr<osg::Node> m_mesh;
    Scene m_scene;
    std::vector<FlatSquare> m_squares;
    std::vector<Segment> m_stands; // upright, on squares that hold no plane
    std::vector<Segment> m_segments;
    std::vector<SurfacePoint> m_dots;
    std::string m_folder;
    int m_pictures = 0;
};

/// @name The steps, in the order in which they build on each other
/// @{
void showMesh(Tour& tour);
void showDots(Tour& tour);
void showFlagDots(Tour& tour);
void showLines(Tour& tour);
void showPlanes(Tour& tour);
void showAllFeatures(Tour& tour);
void clickOnMesh(Tour& tour);
void clickOnFeatures(Tour& tour);
void saveAndReload(Tour& tour);
void showAxes(Tour& tour);
/// @}

} // namespace tour
