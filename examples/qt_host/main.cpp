// A Qt widget that shows a mesh and puts a dot with a label where it is clicked: qt_host [MESH]
// With --click X Y and --picture FILE.png it clicks itself, draws into the file and ends.

#include <KelvOsgTools/KelvOsgTools.h>

#include <osg/MatrixTransform>
#include <osg/ShapeDrawable>
#include <osgDB/ReadFile>
#include <osgViewer/Viewer>

#include <QApplication>
#include <QMouseEvent>
#include <QOpenGLWidget>

#include <iostream>

using namespace KelvOsgTools;

class MeasureWidget : public QOpenGLWidget
{
public:
    explicit MeasureWidget(osg::Group* scene) : m_scene(scene)
    {
        m_window = m_viewer.setUpViewerAsEmbeddedInWindow(0, 0, width(), height());
        osg::Camera& camera = *m_viewer.getCamera();
        camera.setComputeNearFarMode(osg::Camera::DO_NOT_COMPUTE_NEAR_FAR); // picks use the matrices as they stand here
        const osg::BoundingSphere bound = scene->getBound();
        camera.setViewMatrixAsLookAt(bound.center() - osg::Y_AXIS * bound.radius() * 5.0f, bound.center(), osg::Z_AXIS);
        camera.setProjectionMatrixAsPerspective(30.0, 4.0 / 3.0, bound.radius(), bound.radius() * 10.0);
        m_viewer.setSceneData(scene);
    }

    ~MeasureWidget() override
    {
        makeCurrent();
        m_window->close(true); // gives the scene's objects in graphics memory back
        doneCurrent();
    }

protected:
    void resizeGL(int, int) override
    {
        const int deviceWidth = qRound(width() * devicePixelRatioF());
        const int deviceHeight = qRound(height() * devicePixelRatioF());
        m_window->resized(0, 0, deviceWidth, deviceHeight); // the camera's viewport and aspect ratio follow
        osgGA::GUIEventAdapter& state = *m_viewer.getEventQueue()->getCurrentEventState();
        state.setGraphicsContext(m_window); // without these three no ray finds anything
        state.setInputRange(0.0f, 0.0f, float(deviceWidth), float(deviceHeight));
        state.setMouseYOrientation(osgGA::GUIEventAdapter::Y_INCREASING_UPWARDS);
        m_framesOwed = 2;
    }

    void paintGL() override
    {
        m_window->setDefaultFboId(defaultFramebufferObject());
        m_viewer.frame();
        if (--m_framesOwed > 0) update(); // what keeps its size on screen learns its scale from the frame before
    }

    void mousePressEvent(QMouseEvent* event) override
    {
        const QPointF pixel = event->localPos() * devicePixelRatioF(); // y downwards
        const float x = float(pixel.x()), y = float(m_window->getTraits()->height - 1 - pixel.y());
        osg::Vec3f point;
        if (!getClickedPointToMeshData(&m_viewer, x, y, point, "meshData")) return;
        ++m_count;
        createAutoScaleShpereAndTable(QString("dot-%1").arg(m_count), m_scene, point, m_count, "Point", m_count,
                                      featureStateHighlighted, false);
        std::cout << "dot-" << m_count << " at " << point.x() << ' ' << point.y() << ' ' << point.z() << std::endl;
        m_framesOwed = 2;
        update();
    }

private:
    osg::ref_ptr<osg::Group> m_scene;
    osgViewer::Viewer m_viewer;
    osg::ref_ptr<osgViewer::GraphicsWindowEmbedded> m_window;
    int m_framesOwed = 0;
    int m_count = 0;
};

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    osg::ArgumentParser arguments(&argc, argv);
    float x = 0, y = 0;
    const bool clicksItself = arguments.read("--click", x, y);
    std::string picture;
    arguments.read("--picture", picture);
    osg::ref_ptr<osg::Node> mesh = new osg::ShapeDrawable(new osg::Box(osg::Vec3(), 2.0f));
    if (argc > 1 && !(mesh = osgDB::readRefNodeFile(argv[1]))) return 1;

    const osg::ref_ptr<osg::Group> scene = new osg::Group, meshData = new osg::Group;
    const osg::ref_ptr<osg::MatrixTransform> transform = new osg::MatrixTransform;
    meshData->setName("meshData"); // where picks look for meshes
    scene->addChild(meshData);
    meshData->addChild(transform);
    transform->addChild(mesh);

    MeasureWidget widget(scene);
    widget.resize(400, 300);
    widget.show();
    if (!clicksItself) return QApplication::exec();
    widget.grabFramebuffer();
    QMouseEvent click(QEvent::MouseButtonPress, QPointF(x, y), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &click);
    widget.grabFramebuffer();
    return widget.grabFramebuffer().save(QString::fromStdString(picture)) ? 0 : 1;
}
