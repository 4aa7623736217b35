// A stock viewer in which a click on the mesh puts a dot with a label there: first_label [MESH]
// With --click it clicks once into the middle, without a window, and says what is there then.

#include <KelvOsgTools/KelvOsgTools.h>

#include <osg/MatrixTransform>
#include <osg/ShapeDrawable>
#include <osgDB/ReadFile>
#include <osgViewer/Viewer>

#include <QGuiApplication>

#include <iostream>

using namespace KelvOsgTools;
//! [click]
struct DotOnClick : osgGA::GUIEventHandler
{
    bool handle(const osgGA::GUIEventAdapter& event, osgGA::GUIActionAdapter& action) override
    {
        auto* const viewer = dynamic_cast<osgViewer::Viewer*>(&action);
        osg::Vec3f point;
        if (!viewer || event.getEventType() != osgGA::GUIEventAdapter::PUSH ||
            !getClickedPointToMeshData(viewer, event.getX(), event.getY(), point, "meshData"))
            return false;
        ++m_count;
        createAutoScaleShpereAndTable(QString("dot-%1").arg(m_count), viewer->getSceneData()->asGroup(), point, m_count,
                                      "Point", m_count, featureStateHighlighted, false);
        std::cout << "dot-" << m_count << " at " << point.x() << ' ' << point.y() << ' ' << point.z() << std::endl;
        return false;
    }

    int m_count = 0;
};
//! [click]
int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv); // measures the label texts
    const bool clicksItself = osg::ArgumentParser(&argc, argv).read("--click");
    osg::ref_ptr<osg::Node> mesh = new osg::ShapeDrawable(new osg::Box(osg::Vec3(), 2.0f));
    if (argc > 1 && !(mesh = osgDB::readRefNodeFile(argv[1]))) return 1;

    const osg::ref_ptr<osg::Group> scene = new osg::Group, meshData = new osg::Group;
    const osg::ref_ptr<osg::MatrixTransform> transform = new osg::MatrixTransform;
    meshData->setName("meshData"); // where picks look for meshes
    scene->addChild(meshData);
    meshData->addChild(transform);
    transform->addChild(mesh);

    osgViewer::Viewer viewer;
    viewer.setSceneData(scene);
    viewer.addEventHandler(new DotOnClick);
    if (!clicksItself) return viewer.setUpViewInWindow(100, 100, 1024, 768), viewer.run();
    viewer.getCamera()->setViewMatrixAsLookAt(osg::Vec3d(0, -10, 0), osg::Vec3d(), osg::Z_AXIS);
    osgGA::EventQueue& events = *viewer.setUpViewerAsEmbeddedInWindow(0, 0, 1024, 768)->getEventQueue();
    events.syncWindowRectangleWithGraphicsContext(); // a real window does that itself
    events.mouseButtonPress(512, 384, 1);
    viewer.advance();
    viewer.eventTraversal();
}
