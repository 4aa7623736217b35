#pragma once

#include <osg/Group>
#include <osg/MatrixTransform>
#include <osg/ref_ptr>
#include <osgViewer/Viewer>

namespace kelvtest {

/// A viewer without a window that can pick: its event state knows the window's size, origin bottom
/// left. It looks from (0, 0, 100) at the origin, y upwards; parallel, a unit being a pixel and
/// the origin the middle of the window.
osg::ref_ptr<osgViewer::Viewer> pixelViewer(osg::Node* scene, int width, int height);

/// The same window, seen in perspective from (0, 0, distance) with 30 degrees from bottom to top.
osg::ref_ptr<osgViewer::Viewer> perspectiveViewer(osg::Node* scene, int width, int height, double distance);

/// Runs one cull traversal, after which auto-scaled nodes know their scale. Draws nothing.
void cullOnce(osgViewer::Viewer& viewer);

/// The scene that picking expects: a root with "meshData", whose first child is a transform with
/// the matrix, which holds the mesh.
struct MeshScene
{
    osg::ref_ptr<osg::Group> root;
    osg::ref_ptr<osg::Group> meshData;
    osg::ref_ptr<osg::MatrixTransform> transform;
};
MeshScene meshScene(osg::Node* mesh, const osg::Matrixd& matrix = osg::Matrixd());

} // namespace kelvtest
