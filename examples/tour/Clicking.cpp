// Steps: what a click or a hovering mouse finds. The clicks are simulated, the picking is real.

#include "Features.h"

#include <KelvOsgTools/KelvOsgTools.h>

#include <QVariant>

#include <stdexcept>

using namespace KelvOsgTools;

namespace tour {
namespace {

const osg::Vec2f kOntoLabel(22.0f, 14.0f); // pixels from the anchor of a label into its right half
constexpr float kBesideArrow = 1.5f;       // pixels beside a thin line where a click still takes it

/// The features whose labels can be hit, by their names.
QList<QVariant> listed(const QStringList& names)
{
    QList<QVariant> features;
    for (const QString& name : names) features.append(QVariantMap{{QStringLiteral("feature_uid"), name}});
    return features;
}

QList<QVariant> allFeatures()
{
    return listed({"dot-1", "dot-2", "dot-3", "dot-4", "dot-5", "line-1", "line-2", "line-3", "line-4", "plane-1",
                   "plane-2", "plane-3"});
}

/// Shows the state on the feature under a window position, and takes a picture of that.
void click(Tour& tour, const osg::Vec2f& at, featureState state, const std::string& picture, const std::string& caption)
{
    tour.studio().showPointer(at);
    osg::Vec3f point;
    CFeatureMetaObject* feature = nullptr;
    featureType kind = featureAll;
    std::vector<osg::Vec3f> points;
    if (getIntersectionToFeatureBranch(&tour.studio().viewer(), allFeatures(), at.x(), at.y(), featureAll, point,
                                       feature, kind, points))
        feature->setState(state);
    tour.picture(picture, caption + (feature ? feature->getName() : "nothing"));
    tour.studio().hidePointer();
}

/// Where the normal arrow at the first corner of a plane is seen, halfway up.
osg::Vec2f normalArrowPosition(const Tour& tour, const FlatSquare& plane)
{
    return tour.windowPosition(plane.corners[0] + plane.normal * tour.share(kNormalLength / 2));
}

} // namespace

void clickOnMesh(Tour& tour)
{
    // A scene of its own, with every feature in the normal state.
    tour.showOtherScene(sceneAround(tour.mesh()));
    addDots(tour, {featureStateNormal, featureStateNormal, featureStateNormal, featureStateNormal});
    addLines(tour, {featureStateNormal, featureStateNormal, featureStateNormal, featureStateNormal});
    addPlanes(tour, {featureStateNormal, featureStateNormal, featureStateNormal});

    const osg::Vec2f at = tour.freePosition();
    osg::Vec3f point;
    if (!getClickedPointToMeshData(&tour.studio().viewer(), at.x(), at.y(), point, QStringLiteral("meshData")))
        throw std::runtime_error("a click on the mesh found no point");
    addDot(tour, 5, point, featureStateNormal);
    tour.studio().showPointer(at);
    tour.picture("click-mesh", "A click on the mesh gives a point, and here a new dot: P5");
    tour.studio().hidePointer();
}

void clickOnFeatures(Tour& tour)
{
    click(tour, tour.windowPosition(tour.stand(0).middle()), featureStateSelected, "click-line",
          "A click on a solid arrow selects ");
    click(tour, normalArrowPosition(tour, tour.plane(0)) + osg::Vec2f(kBesideArrow, 0.0f), featureStateSelected,
          "click-plane", "A click beside a thin normal arrow selects ");
    const std::vector<osg::Vec3f>& corners = tour.plane(1).corners;
    click(tour, tour.windowPosition((corners[0] + corners[2]) * 0.5f) + kOntoLabel, featureStateHighlighted,
          "hover-label", "The mouse over a label highlights ");
}

} // namespace tour
