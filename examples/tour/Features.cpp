#include "Features.h"

#include <KelvOsgTools/KelvOsgTools.h>

#include <algorithm>

using namespace KelvOsgTools;

namespace tour {
namespace {

const osg::Vec4f kBlue(0.10f, 0.32f, 0.70f, 1.0f);
// Shares of the mesh's radius:
constexpr float kArrowRadius = 0.012f;
constexpr float kThinRadius = 0.006f;
constexpr float kLift = 0.004f; // planes hover that far above the surface, so as not to fight with it

QString stateWord(featureState state)
{
    switch (state) {
    case featureStateSelected:
        return QStringLiteral(" selected");
    case featureStateHighlighted:
        return QStringLiteral(" highlighted");
    case featureStateNone:
        return QStringLiteral(" none");
    default:
        return QString();
    }
}

CArrowMeta::structArrowMeta arrowRecord(int number, const Segment& segment)
{
    CArrowMeta::structArrowMeta record;
    record.name = "line-" + std::to_string(number);
    record.startPos = segment.start;
    record.endPos = segment.end;
    record.color = kBlue;
    return record;
}

CArrowMeta::structArrowMeta thinLine(const Tour& tour, int number, const Segment& segment)
{
    CArrowMeta::structArrowMeta record = arrowRecord(number, segment);
    makeThin(record, tour);
    return record;
}

CArrowMeta::structArrowMeta solidArrow(const Tour& tour, int number, const Segment& segment)
{
    CArrowMeta::structArrowMeta record = arrowRecord(number, segment);
    record.radius = tour.share(kArrowRadius);
    return record;
}

std::vector<osg::Vec3f> lifted(std::vector<osg::Vec3f> corners, const osg::Vec3f& offset)
{
    for (osg::Vec3f& corner : corners) corner += offset;
    return corners;
}

} // namespace

void makeThin(CArrowMeta::structArrowMeta& record, const Tour& tour)
{
    record.isLineArrow = true;
    record.isDepthTest = false;
    record.lineWidth = 3.0f;
    record.radius = tour.share(kThinRadius);
}

bool isThin(const CArrowMeta::structArrowMeta& record, const Tour& tour)
{
    return record.radius < tour.share((kThinRadius + kArrowRadius) / 2.0f);
}

osg::Vec3f normalForLength(const std::vector<osg::Vec3f>& corners, const osg::Vec3f& unitNormal, float length)
{
    const float longerEdge = std::max((corners[1] - corners[0]).length(), (corners[2] - corners[1]).length());
    return unitNormal * (length / std::max(0.2f * longerEdge, 4.0f));
}

void addDot(Tour& tour, int number, const osg::Vec3f& point, featureState state)
{
    createAutoScaleShpereAndTable(QStringLiteral("dot-%1").arg(number), tour.scene(), point,
                                  kLabelsBeforePlanes + number,
                                  QStringLiteral("P%1%2").arg(number).arg(stateWord(state)), -1, state, false);
}

void addDots(Tour& tour, const std::array<featureState, Tour::kDots>& states)
{
    for (std::size_t i = 0; i < states.size(); ++i) addDot(tour, static_cast<int>(i) + 1, tour.dot(i), states[i]);
}

void addLines(Tour& tour, const std::array<featureState, 4>& states)
{
    const CArrowMeta::structArrowMeta records[] = {
        thinLine(tour, 1, tour.segment(0)), thinLine(tour, 2, tour.segment(1)), solidArrow(tour, 3, tour.stand(0)),
        solidArrow(tour, 4, tour.stand(1))};
    int number = 0;
    for (const CArrowMeta::structArrowMeta& record : records) {
        const featureState state = states[static_cast<std::size_t>(number)];
        ++number;
        createArrowAndTable(state, record, tour.scene(), kLabelsBeforePlanes + number, QStringLiteral("Line "), number);
    }
}

void addPlanes(Tour& tour, const std::array<featureState, Tour::kPlanes>& states)
{
    for (std::size_t i = 0; i < states.size(); ++i) {
        const FlatSquare& place = tour.plane(i);
        const int number = static_cast<int>(i) + 1;
        createPlaneAndTable(states[i], QStringLiteral("plane-%1").arg(number), tour.scene(),
                            lifted(place.corners, place.normal * tour.share(kLift)),
                            normalForLength(place.corners, place.normal, tour.share(kNormalLength)),
                            kLabelsBeforePlanes + number, QStringLiteral("Plane "), number);
    }
}

} // namespace tour
