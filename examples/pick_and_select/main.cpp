// A stock viewer in which a click selects the feature, or the label, under the mouse.
// With --click X Y, any number of times, it clicks there without a window and says what it selected.
#include <KelvOsgTools/FeatureFunctions.h>

#include <osg/MatrixTransform>
#include <osgViewer/Viewer>

#include <QGuiApplication>

#include <iostream>

using namespace KelvOsgTools;

struct SelectOnClick : osgGA::GUIEventHandler
{
    bool handle(const osgGA::GUIEventAdapter& event, osgGA::GUIActionAdapter& action) override
    {
        auto* const viewer = dynamic_cast<osgViewer::Viewer*>(&action);
        if (!viewer || event.getEventType() != osgGA::GUIEventAdapter::PUSH) return false;
        CFeatureMetaObject* feature = nullptr; // stays null where nothing is hit
        featureType kind = featureAll;
        osg::Vec3f point;
        std::vector<osg::Vec3f> points;
        getIntersectionToFeatureBranch(viewer, m_visible, event.getX(), event.getY(), featureAll, point, feature, kind,
                                       points);
        if (m_selected) m_selected->setState(featureStateNormal); // black: see docs/features.md
        if (feature) feature->setState(featureStateSelected);
        m_selected = feature;
        std::cout << (feature ? feature->getName() : "nothing") << " selected" << std::endl;
        return false;
    }

    QList<QVariant> m_visible; // the features whose labels may be hit
    osg::ref_ptr<CFeatureMetaObject> m_selected;
};

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv); // measures the label texts
    const osg::ref_ptr<osg::Group> scene = new osg::Group, meshData = new osg::Group;
    meshData->setName("meshData");
    meshData->addChild(new osg::MatrixTransform); // of the mesh; picks on labels need it
    scene->addChild(meshData);
    createAutoScaleShpereAndTable("dot-1", scene, {0, 0, 0}, 11, "Point", 1, featureStateNormal, false);
    createArrowAndTable(featureStateNormal, {{-200, 0, -150}, {-50, 0, -50}, "line-1", {1, 1, 1, 1}, 4}, scene, 12,
                        "line", 1);
    const osg::ref_ptr<SelectOnClick> clicks = new SelectOnClick;
    for (const char* name : {"dot-1", "line-1"}) clicks->m_visible << QVariantMap{{"feature_uid", name}};
    osgViewer::Viewer viewer;
    viewer.setSceneData(scene);
    viewer.addEventHandler(clicks);
    osg::ArgumentParser arguments(&argc, argv);
    float x = 0, y = 0;
    if (!arguments.read("--click", x, y)) return viewer.setUpViewInWindow(100, 100, 800, 600), viewer.run();
    viewer.getCamera()->setViewMatrixAsLookAt(osg::Vec3d(0, -1000, 0), osg::Vec3d(), osg::Z_AXIS);
    osgGA::EventQueue& events = *viewer.setUpViewerAsEmbeddedInWindow(0, 0, 800, 600)->getEventQueue();
    events.syncWindowRectangleWithGraphicsContext(); // a real window does that itself
    do events.mouseButtonPress(x, y, 1), viewer.advance(), viewer.eventTraversal();
    while (arguments.read("--click", x, y));
}
