// A stock viewer in which a click on the mesh puts a dot with a label there: first_label MESH

#include <KelvOsgTools/KelvOsgTools.h>

#include <osg/MatrixTransform>
#include <osgDB/ReadFile>
#include <osgViewer/Viewer>

#include <QGuiApplication>

using namespace KelvOsgTools;

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
        return false;
    }

    int m_count = 0;
};

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv); // measures the label texts
    const osg::ref_ptr<osg::Node> mesh = osgDB::readRefNodeFile(argc > 1 ? argv[1] : "");
    if (!mesh) return 1;

    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> meshData = new osg::Group;
    const osg::ref_ptr<osg::MatrixTransform> transform = new osg::MatrixTransform;
    meshData->setName("meshData"); // where picks look for meshes
    scene->addChild(meshData);
    meshData->addChild(transform);
    transform->addChild(mesh);

    osgViewer::Viewer viewer;
    viewer.setUpViewInWindow(100, 100, 1024, 768);
    viewer.setSceneData(scene);
    viewer.addEventHandler(new DotOnClick);
    return viewer.run();
}
