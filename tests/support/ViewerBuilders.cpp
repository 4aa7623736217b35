#include "support/ViewerBuilders.h"

#include <osgUtil/CullVisitor>
#include <osgUtil/RenderStage>
#include <osgUtil/StateGraph>

namespace kelvtest {
namespace {

osg::ref_ptr<osgViewer::Viewer> embeddedViewer(osg::Node* scene, int width, int height)
{
    osg::ref_ptr<osgViewer::Viewer> viewer = new osgViewer::Viewer;
    viewer->setThreadingModel(osgViewer::ViewerBase::SingleThreaded);
    osgViewer::GraphicsWindowEmbedded* const window = viewer->setUpViewerAsEmbeddedInWindow(0, 0, width, height);
    viewer->getCamera()->setComputeNearFarMode(osg::Camera::DO_NOT_COMPUTE_NEAR_FAR);
    viewer->setSceneData(scene);

    osgGA::GUIEventAdapter& state = *viewer->getEventQueue()->getCurrentEventState();
    state.setGraphicsContext(window);
    state.setInputRange(0.0f, 0.0f, static_cast<float>(width), static_cast<float>(height));
    state.setMouseYOrientation(osgGA::GUIEventAdapter::Y_INCREASING_UPWARDS);
    return viewer;
}

} // namespace

osg::ref_ptr<osgViewer::Viewer> pixelViewer(osg::Node* scene, int width, int height)
{
    osg::ref_ptr<osgViewer::Viewer> viewer = embeddedViewer(scene, width, height);
    viewer->getCamera()->setViewMatrixAsLookAt(osg::Vec3d(0, 0, 100), osg::Vec3d(), osg::Y_AXIS);
    viewer->getCamera()->setProjectionMatrixAsOrtho(-width / 2.0, width / 2.0, -height / 2.0, height / 2.0, 1.0, 200.0);
    return viewer;
}

osg::ref_ptr<osgViewer::Viewer> perspectiveViewer(osg::Node* scene, int width, int height, double distance)
{
    osg::ref_ptr<osgViewer::Viewer> viewer = embeddedViewer(scene, width, height);
    viewer->getCamera()->setViewMatrixAsLookAt(osg::Vec3d(0, 0, distance), osg::Vec3d(), osg::Y_AXIS);
    viewer->getCamera()->setProjectionMatrixAsPerspective(30.0, double(width) / height, distance / 100.0,
                                                          distance * 100.0);
    return viewer;
}

void cullOnce(osgViewer::Viewer& viewer)
{
    osg::Camera& camera = *viewer.getCamera();
    const osg::ref_ptr<osgUtil::StateGraph> graph = new osgUtil::StateGraph;
    const osg::ref_ptr<osgUtil::RenderStage> stage = new osgUtil::RenderStage;
    const osg::ref_ptr<osgUtil::CullVisitor> cull = new osgUtil::CullVisitor;
    cull->setStateGraph(graph);
    cull->setRenderStage(stage);
    cull->setComputeNearFarMode(osg::CullSettings::DO_NOT_COMPUTE_NEAR_FAR);
    cull->pushViewport(camera.getViewport());
    cull->pushProjectionMatrix(new osg::RefMatrix(camera.getProjectionMatrix()));
    cull->pushModelViewMatrix(new osg::RefMatrix(camera.getViewMatrix()), osg::Transform::ABSOLUTE_RF);
    if (viewer.getSceneData()) viewer.getSceneData()->accept(*cull);
    cull->popModelViewMatrix();
    cull->popProjectionMatrix();
    cull->popViewport();
}

MeshScene meshScene(osg::Node* mesh, const osg::Matrixd& matrix)
{
    MeshScene scene{new osg::Group, new osg::Group, new osg::MatrixTransform(matrix)};
    scene.meshData->setName("meshData");
    scene.root->addChild(scene.meshData);
    scene.meshData->addChild(scene.transform);
    scene.transform->addChild(mesh);
    return scene;
}

} // namespace kelvtest
