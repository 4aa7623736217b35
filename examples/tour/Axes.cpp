// Step: the axis triad at the mesh's origin.

#include "Tour.h"

#include <KelvOsgTools/KelvOsgTools.h>

#include <osg/BlendFunc>

using namespace KelvOsgTools;

namespace tour {
namespace {

constexpr float kLengthPixels = 150.0f;
constexpr float kRadiusPixels = 2.5f;

osg::ref_ptr<osg::Node> triad()
{
    CConeAndCylinderMeta::structConeAndCylinderMeta record;
    record.length = kLengthPixels;
    record.radius = kRadiusPixels;
    const osg::ref_ptr<osg::Switch> axes = CConeAndCylinderMeta::createAxis(record);
    // What the mesh hides is drawn translucent where blending is on, and needs the mesh to be drawn before.
    osg::StateSet& state = *axes->getOrCreateStateSet();
    state.setAttributeAndModes(new osg::BlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA));
    state.setRenderBinDetails(5, "RenderBin");
    return axes;
}

} // namespace

void showAxes(Tour& tour)
{
    const osg::ref_ptr<osg::MatrixTransform> origin = new osg::MatrixTransform(tour.meshMatrix());
    origin->addChild(triad());
    tour.scene()->addChild(origin);
    tour.picture("axes", "An axis triad at the mesh's origin, translucent where the mesh hides it");
}

} // namespace tour
