#pragma once

#include <osg/NodeVisitor>
#include <osg/Vec3d>
#include <osgViewer/Viewer>

#include <QList>
#include <QString>
#include <QVariant>

namespace kelvtest {

/// Lets a slave camera with that viewport show the scene in place of the master.
void moveToSlave(osgViewer::Viewer& viewer, double x, double y, double width, double height);

/// Where a point of the world lies in the window of the master camera.
osg::Vec3d windowPosition(const osgViewer::Viewer& viewer, const osg::Vec3d& worldPoint);

/// A list for picking: one map with "feature_uid" for each name.
QList<QVariant> listOf(const QStringList& uids);

} // namespace kelvtest
