#include "Tour.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace tour {

namespace {

constexpr float kStandHeight = 0.42f; // of the mesh's radius

} // namespace

Tour::Tour(Studio& studio, osg::Node* mesh, std::string folder)
    : m_studio(studio), m_mesh(mesh), m_folder(std::move(folder))
{
    showOtherScene(sceneAround(mesh));
    choosePlaces();
}

void Tour::choosePlaces()
{
    const osg::Camera& camera = *m_studio.viewer().getCamera();
    const osg::Matrixd toWindow = meshMatrix() * camera.getViewMatrix() * camera.getProjectionMatrix() *
                                  camera.getViewport()->computeWindowMatrix();
    const Survey survey(m_studio.viewer(), toWindow, share(1.0f));

    m_squares = survey.flatSquares(kPlanes + kStands);
    if (m_squares.size() < kPlanes + kStands) throw std::runtime_error("the mesh has too little smooth surface");
    for (std::size_t i = kPlanes; i < m_squares.size(); ++i) {
        const osg::Vec3f foot = m_squares[i].centre();
        m_stands.push_back({foot, foot + m_squares[i].normal * share(kStandHeight)});
    }
    m_segments = bestPairs(survey.spreadPoints(2 * kSegments, labelPositions()));
    m_dots = survey.spreadPoints(kDots + 1, labelPositions());
    if (m_dots.size() <= kDots) throw std::runtime_error("the mesh has too little smooth surface");
}

std::vector<osg::Vec2f> Tour::labelPositions() const
{
    std::vector<osg::Vec2f> positions;
    for (std::size_t i = 0; i < kPlanes; ++i) positions.push_back(windowPosition(m_squares[i].centre()));
    for (const std::vector<Segment>* const segments : {&m_stands, &m_segments})
        for (const Segment& segment : *segments)
            for (const osg::Vec3f& point : {segment.start, segment.middle(), segment.end})
                positions.push_back(windowPosition(point));
    return positions;
}

/// The pairs whose middles, where the labels will be, are farthest from other labels.
std::vector<Segment> Tour::bestPairs(const std::vector<SurfacePoint>& ends) const
{
    if (ends.size() < 2 * kSegments) throw std::runtime_error("the mesh has too little smooth surface");
    const std::vector<osg::Vec2f> taken = labelPositions();
    std::vector<Segment> best;
    float bestRoom = -1.0f;
    for (const auto& order : {std::array<std::size_t, 4>{0, 1, 2, 3}, std::array<std::size_t, 4>{0, 2, 1, 3},
                              std::array<std::size_t, 4>{0, 3, 1, 2}}) {
        const std::vector<Segment> pairs{{ends[order[0]].point, ends[order[1]].point},
                                         {ends[order[2]].point, ends[order[3]].point}};
        const osg::Vec2f first = windowPosition(pairs[0].middle()), second = windowPosition(pairs[1].middle());
        float room = labelDistance(first, second);
        for (const osg::Vec2f& position : taken)
            room = std::min({room, labelDistance(first, position), labelDistance(second, position)});
        if (room > bestRoom) {
            bestRoom = room;
            best = pairs;
        }
    }
    return best;
}

osg::Vec2f Tour::windowPosition(const osg::Vec3f& meshPoint) const
{
    return m_studio.windowPosition(osg::Vec3d(meshPoint) * meshMatrix());
}

void Tour::showOtherScene(const Scene& scene)
{
    m_scene = scene;
    m_studio.show(m_scene.root, m_scene.meshTransform);
}

void Tour::picture(const std::string& name, const std::string& caption)
{
    char number[16];
    std::snprintf(number, sizeof number, "%02d", ++m_pictures);
    const std::string path = m_folder + "/" + number + "-" + name + ".png";
    m_studio.save(path, caption);
    std::printf("%s  %s\n", path.c_str(), caption.c_str());
    std::fflush(stdout);
}

} // namespace tour
