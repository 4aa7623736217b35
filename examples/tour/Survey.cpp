#include "Survey.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tour {
namespace {

constexpr float kGridPixels = 24.0f;
constexpr float kNeighbourPixels = 14.0f; // a spot is smooth if its neighbours at this distance say so
constexpr std::size_t kEnoughSpots = 40;  // with fewer smooth spots than that, rough ones must do
constexpr float kFlatness = 0.004f;       // of the mesh's size: how far a neighbour may be off the plane
constexpr float kSides[] = {0.9f, 0.75f, 0.6f, 0.5f,  0.42f, 0.36f,
                            0.3f, 0.25f, 0.2f, 0.16f, 0.13f, 0.1f}; // of the mesh's size
constexpr float kTouchingSide = 0.3f; // of the mesh's size: square on a mesh without flat places
constexpr int kProbes = 5;            // along each side of a square
constexpr float kOtherWay = 0.9f;     // cosine: normals further apart face another way

osg::Vec2f seenAt(const osg::Vec3f& point, const osg::Matrixd& toWindow)
{
    const osg::Vec3d window = osg::Vec3d(point) * toWindow;
    return osg::Vec2f(static_cast<float>(window.x()), static_cast<float>(window.y()));
}

FlatSquare squareAround(const SurfacePoint& spot, float side)
{
    // Two sides run level, so that squares on walls stand straight.
    osg::Vec3f level = osg::Vec3f(0, 0, 1) ^ spot.normal;
    if (level.normalize() < 0.1f) level = osg::Vec3f(1, 0, 0);
    osg::Vec3f upwards = spot.normal ^ level;
    upwards.normalize();
    const osg::Vec3f a = level * (side / 2), b = upwards * (side / 2);
    return {{spot.point - a - b, spot.point + a - b, spot.point + a + b, spot.point - a + b}, spot.normal, side};
}

bool areApart(const FlatSquare& a, const FlatSquare& b)
{
    return (a.centre() - b.centre()).length() > 0.75f * (a.side + b.side);
}

} // namespace

osg::Vec3f FlatSquare::centre() const
{
    return (corners[0] + corners[2]) * 0.5f;
}

float labelDistance(const osg::Vec2f& a, const osg::Vec2f& b)
{
    return osg::Vec2f((a.x() - b.x()) * 0.35f, a.y() - b.y()).length();
}

Survey::Survey(osgViewer::Viewer& viewer, const osg::Matrixd& toWindow, float meshSize)
    : m_viewer(viewer), m_toWindow(toWindow), m_meshSize(meshSize)
{
    const osg::Viewport& viewport = *viewer.getCamera()->getViewport();
    std::vector<SurfacePoint> roughSpots;
    SurfacePoint spot;
    for (float y = kGridPixels; y < viewport.height() - kGridPixels; y += kGridPixels)
        for (float x = kGridPixels; x < viewport.width() - kGridPixels; x += kGridPixels)
            if (examine(osg::Vec2f(x, y), spot)) (spot.isSmooth ? m_spots : roughSpots).push_back(spot);
    if (m_spots.size() < kEnoughSpots) m_spots.insert(m_spots.end(), roughSpots.begin(), roughSpots.end());
}

bool Survey::pointUnder(const osg::Vec2f& window, osg::Vec3f& point) const
{
    return KelvOsgTools::getClickedPointToMeshData(&m_viewer, window.x(), window.y(), point,
                                                   QStringLiteral("meshData"));
}

bool Survey::examine(const osg::Vec2f& window, SurfacePoint& spot) const
{
    const osg::Vec2f right(kNeighbourPixels, 0), up(0, kNeighbourPixels);
    osg::Vec3f east, west, north, south;
    spot.window = window;
    if (!pointUnder(window, spot.point) || !pointUnder(window + right, east) || !pointUnder(window - right, west) ||
        !pointUnder(window + up, north) || !pointUnder(window - up, south))
        return false;
    spot.normal = (east - west) ^ (north - south);
    spot.normal.normalize();
    const auto isOff = [&](const osg::Vec3f& neighbour) {
        return std::abs((neighbour - spot.point) * spot.normal) > kFlatness * m_meshSize;
    };
    spot.isSmooth = !isOff(east) && !isOff(west) && !isOff(north) && !isOff(south);
    return true;
}

std::vector<SurfacePoint> Survey::spreadPoints(std::size_t count, const std::vector<osg::Vec2f>& takenPositions) const
{
    // Always the spot that is farthest from all positions taken so far.
    std::vector<float> distances(m_spots.size(), std::numeric_limits<float>::max());
    const auto take = [&](const osg::Vec2f& position) {
        for (std::size_t i = 0; i < m_spots.size(); ++i)
            distances[i] = std::min(distances[i], labelDistance(m_spots[i].window, position));
    };
    for (const osg::Vec2f& position : takenPositions) take(position);

    std::vector<SurfacePoint> chosen;
    while (chosen.size() < std::min(count, m_spots.size())) {
        const auto farthest = std::max_element(distances.begin(), distances.end()) - distances.begin();
        chosen.push_back(m_spots[static_cast<std::size_t>(farthest)]);
        take(chosen.back().window);
    }
    return chosen;
}

bool Survey::liesOnMesh(const FlatSquare& square) const
{
    const osg::Vec3f along = square.corners[1] - square.corners[0], across = square.corners[3] - square.corners[0];
    for (int i = 0; i < kProbes; ++i)
        for (int j = 0; j < kProbes; ++j) {
            const osg::Vec3f probe =
                square.corners[0] + along * (float(i) / (kProbes - 1)) + across * (float(j) / (kProbes - 1));
            osg::Vec3f hit;
            if (!pointUnder(seenAt(probe, m_toWindow), hit)) return false;
            if ((hit - probe).length() > kFlatness * m_meshSize) return false;
        }
    return true;
}

FlatSquare Survey::largestSquareAt(const SurfacePoint& spot) const
{
    for (const float side : kSides) {
        FlatSquare square = squareAround(spot, side * m_meshSize);
        if (liesOnMesh(square)) return square;
    }
    return {};
}

std::vector<FlatSquare> Survey::squaresBySize() const
{
    std::vector<FlatSquare> squares;
    for (const SurfacePoint& spot : m_spots) {
        const FlatSquare square = largestSquareAt(spot);
        if (!square.corners.empty()) squares.push_back(square);
    }
    std::stable_sort(squares.begin(), squares.end(),
                     [](const FlatSquare& a, const FlatSquare& b) { return a.side > b.side; });
    return squares;
}

std::vector<FlatSquare> Survey::flatSquares(std::size_t count) const
{
    std::vector<FlatSquare> chosen;
    const auto choose = [&](const FlatSquare& square, bool mustFaceAnotherWay) {
        const auto isInTheWay = [&](const FlatSquare& other) {
            return !areApart(square, other) || (mustFaceAnotherWay && square.normal * other.normal > kOtherWay);
        };
        if (chosen.size() < count && std::none_of(chosen.begin(), chosen.end(), isInTheWay)) chosen.push_back(square);
    };
    const std::vector<FlatSquare> squares = squaresBySize();
    for (const bool mustFaceAnotherWay : {true, false})
        for (const FlatSquare& square : squares) choose(square, mustFaceAnotherWay);
    for (const SurfacePoint& spot : spreadPoints(4 * count))
        choose(squareAround(spot, kTouchingSide * m_meshSize), false);
    return chosen;
}

} // namespace tour
