#include "picking/WindowProjection.h"

#include <cmath>

namespace KelvOsgTools::detail {

osg::ref_ptr<osg::Group> sceneGroupOf(osgViewer::Viewer* viewer)
{
    osg::Node* const scene = viewer ? viewer->getSceneData() : nullptr;
    return scene && viewer->getCamera() ? scene->asGroup() : nullptr;
}

bool isFinitePosition(float x, float y)
{
    return std::isfinite(x) && std::isfinite(y);
}

bool hasWindow(const osg::Camera& camera)
{
    const osg::Viewport* const viewport = camera.getViewport();
    return viewport && viewport->width() > 0 && viewport->height() > 0;
}

osg::Matrixd worldToWindow(const osg::Camera& camera)
{
    const osg::Matrixd projected = camera.getViewMatrix() * camera.getProjectionMatrix();
    return camera.getViewport() ? projected * camera.getViewport()->computeWindowMatrix() : projected;
}

} // namespace KelvOsgTools::detail
