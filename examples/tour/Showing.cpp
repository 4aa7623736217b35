// Steps: what features look like.

#include "Features.h"

#include <KelvOsgTools/KelvOsgTools.h>

using namespace KelvOsgTools;

namespace tour {
namespace {

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
    addDots(tour, {featureStateNormal, featureStateSelected, featureStateHighlighted, featureStateNone});
    tour.picture("dots", "Dots with labels, in their four states");
}

void showFlagDots(Tour& tour)
{
    switchFeatureRoot(tour.scene(), false, featureDot);
    const std::vector<osg::Vec3f>& corners = tour.plane(0).corners;
    addFlag(tour, CFlagAutoScaleSphereMeta::flag_feature_line_name_start, tour.segment(1).start, "start", featureLine);
    addFlag(tour, CFlagAutoScaleSphereMeta::flag_feature_line_name_end, tour.segment(1).end, "end", featureLine);
    addFlag(tour, CFlagAutoScaleSphereMeta::flag_feature_plane_name_first, corners[0], "1", featurePlane);
    addFlag(tour, CFlagAutoScaleSphereMeta::flag_feature_plane_name_second, corners[1], "2", featurePlane);
    addFlag(tour, CFlagAutoScaleSphereMeta::flag_feature_plane_name_third, corners[2], "3", featurePlane);
    tour.picture("flag-dots", "Flag dots mark the points from which a line and a plane are being made");
    clearFeatureRootTempNode(tour.scene(), featureAll);
}

void showLines(Tour& tour)
{
    addLines(tour, {featureStateNormal, featureStateSelected, featureStateNormal, featureStateHighlighted});
    tour.picture("lines", "Lines: solid arrows, and thin ones that are seen through the mesh");
}

void showPlanes(Tour& tour)
{
    switchFeatureRoot(tour.scene(), false, featureLine);
    addPlanes(tour, {featureStateNormal, featureStateHighlighted, featureStateSelected});
    tour.picture("planes", "Planes on flat places, with their normals");
}

void showAllFeatures(Tour& tour)
{
    for (const featureType kind : {featureDot, featureLine, featurePlane}) switchFeatureRoot(tour.scene(), true, kind);
    tour.picture("all-features", "Dots, lines and planes together");
}

} // namespace tour
