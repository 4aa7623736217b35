#include "Tour.h"

#include <KelvOsgTools/KelvOsgTools.h>

#include <utility>

using namespace KelvOsgTools;

namespace tour {
namespace {

// Labels draw in the render bin of their index. Planes draw in the transparent bin, number 10: what
// is to stand before them needs a higher one.
constexpr int kLabelsBeforePlanes = 20;

/// A flag dot, marked as temporary.
void addFlag(Tour& tour, const QString& name, const osg::Vec3f& point, const char* label, featureType kind)
{
    createFlagAutoScaleShpereAndTable(name, tour.scene(), point, kLabelsBeforePlanes, QLatin1String(label), -1, kind,
                                      true, false)
        ->setUserValue("tmpData", true);
}

} // namespace

void showMesh(Tour& tour)
{
    tour.picture("mesh", "A mesh");
}

void showDots(Tour& tour)
{
    const std::pair<const char*, featureState> dots[] = {{"normal", featureStateNormal},
                                                         {"selected", featureStateSelected},
                                                         {"highlighted", featureStateHighlighted},
                                                         {"none", featureStateNone}};
    int number = 0;
    for (const auto& [word, state] : dots) {
        const osg::Vec3f point = tour.dot(static_cast<std::size_t>(number));
        ++number;
        createAutoScaleShpereAndTable(QStringLiteral("dot-%1").arg(number), tour.scene(), point,
                                      kLabelsBeforePlanes + number,
                                      QStringLiteral("P%1 %2").arg(number).arg(QLatin1String(word)), -1, state, false);
    }
    tour.picture("dots", "Dots with labels, in their four states");
}

void showFlagDots(Tour& tour)
{
    switchFeatureRoot(tour.scene(), false, featureDot);
    const std::vector<osg::Vec3f>& corners = tour.plane(0).corners;
    addFlag(tour, CFlagAutoScaleSphereMeta::flag_feature_line_name_start, tour.segment(0).start, "start", featureLine);
    addFlag(tour, CFlagAutoScaleSphereMeta::flag_feature_line_name_end, tour.segment(0).end, "end", featureLine);
    addFlag(tour, CFlagAutoScaleSphereMeta::flag_feature_plane_name_first, corners[0], "1", featurePlane);
    addFlag(tour, CFlagAutoScaleSphereMeta::flag_feature_plane_name_second, corners[1], "2", featurePlane);
    addFlag(tour, CFlagAutoScaleSphereMeta::flag_feature_plane_name_third, corners[2], "3", featurePlane);
    tour.picture("flag-dots", "Flag dots mark the points from which a line and a plane are being made");
    clearFeatureRootTempNode(tour.scene(), featureAll);
}

} // namespace tour
