#include "picking/PickingViewers.h"

namespace kelvtest {

void moveToSlave(osgViewer::Viewer& viewer, double x, double y, double width, double height)
{
    osg::Camera& master = *viewer.getCamera();
    const osg::ref_ptr<osg::Camera> slave = new osg::Camera;
    slave->setGraphicsContext(master.getGraphicsContext());
    slave->setViewport(new osg::Viewport(x, y, width, height));
    master.setGraphicsContext(nullptr);
    viewer.addSlave(slave);
    viewer.updateSlaves();
}

osg::Vec3d windowPosition(const osgViewer::Viewer& viewer, const osg::Vec3d& worldPoint)
{
    const osg::Camera& camera = *viewer.getCamera();
    return worldPoint *
           (camera.getViewMatrix() * camera.getProjectionMatrix() * camera.getViewport()->computeWindowMatrix());
}

QList<QVariant> listOf(const QStringList& uids)
{
    QList<QVariant> list;
    for (const QString& uid : uids) list.append(QVariantMap{{QStringLiteral("feature_uid"), uid}});
    return list;
}

} // namespace kelvtest
