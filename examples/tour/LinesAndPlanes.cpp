#include "Tour.h"

#include <KelvOsgTools/KelvOsgTools.h>

#include <algorithm>

using namespace KelvOsgTools;

namespace tour {
namespace {

const osg::Vec4f kBlue(0.10f, 0.32f, 0.70f, 1.0f);
constexpr int kLabelsBeforePlanes = 30; // render bins: planes draw in number 10
// Shares of the mesh's radius:
constexpr float kArrowRadius = 0.012f;
constexpr float kNormalLength = 0.18f;
constexpr float kLift = 0.004f; // planes hover that far above the surface, so as not to fight with it

CArrowMeta::structArrowMeta arrowRecord(const char* name, const Segment& segment)
{
    CArrowMeta::structArrowMeta record;
    record.name = name;
    record.startPos = segment.start;
    record.endPos = segment.end;
    record.color = kBlue;
    return record;
}

/// A solid arrow that stands on the mesh.
CArrowMeta::structArrowMeta standingArrow(const char* name, const Tour& tour, std::size_t place)
{
    CArrowMeta::structArrowMeta record = arrowRecord(name, tour.stand(place));
    record.radius = tour.share(kArrowRadius);
    return record;
}

/// A thin arrow from one point to another, seen through whatever stands before it.
CArrowMeta::structArrowMeta measuringLine(const char* name, const Tour& tour, std::size_t place)
{
    CArrowMeta::structArrowMeta record = arrowRecord(name, tour.segment(place));
    record.isLineArrow = true;
    record.isDepthTest = false;
    record.lineWidth = 3.0f;
    return record;
}

std::vector<osg::Vec3f> lifted(std::vector<osg::Vec3f> corners, const osg::Vec3f& offset)
{
    for (osg::Vec3f& corner : corners) corner += offset;
    return corners;
}

/// The normal to pass for normal arrows of a given length: the library draws them |normal| times a
/// fifth of the longer of the first two edges, or times 4, whichever is more.
osg::Vec3f normalForLength(const FlatSquare& square, float length)
{
    return square.normal * (length / std::max(0.2f * square.side, 4.0f));
}

} // namespace

void showLines(Tour& tour)
{
    const auto add = [&tour](const CArrowMeta::structArrowMeta& record, featureState state, int number) {
        createArrowAndTable(state, record, tour.scene(), kLabelsBeforePlanes + number, QStringLiteral("Line "), number);
    };
    add(measuringLine("line-1", tour, 0), featureStateNormal, 1);
    add(measuringLine("line-2", tour, 1), featureStateSelected, 2);
    add(standingArrow("line-3", tour, 0), featureStateNormal, 3);
    add(standingArrow("line-4", tour, 1), featureStateHighlighted, 4);
    tour.picture("lines", "Lines: solid arrows, and thin ones that are seen through the mesh");
}

void showPlanes(Tour& tour)
{
    switchFeatureRoot(tour.scene(), false, featureLine);
    const featureState states[] = {featureStateNormal, featureStateHighlighted, featureStateSelected};
    int number = 0;
    for (const featureState state : states) {
        const FlatSquare& place = tour.plane(static_cast<std::size_t>(number));
        ++number;
        createPlaneAndTable(state, QStringLiteral("plane-%1").arg(number), tour.scene(),
                            lifted(place.corners, place.normal * tour.share(kLift)),
                            normalForLength(place, tour.share(kNormalLength)), kLabelsBeforePlanes + number,
                            QStringLiteral("Plane "), number);
    }
    tour.picture("planes", "Planes on flat places, with their normals");
}

void showAllFeatures(Tour& tour)
{
    for (const featureType kind : {featureDot, featureLine, featurePlane}) switchFeatureRoot(tour.scene(), true, kind);
    tour.picture("all-features", "Dots, lines and planes together");
}

} // namespace tour
