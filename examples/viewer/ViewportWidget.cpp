#include "ViewportWidget.h"

#include "MeasureScene.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <QApplication>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QOpenGLFunctions>

#include <cmath>

namespace viewer {

namespace {

constexpr double kZoomPerNotch = 0.85;
constexpr double kAngleOfNotch = 120.0; // in the unit of wheel events

/// From above the eye's left shoulder: surfaces that face the eye differ more than in light from it.
void setUpLight(osgViewer::Viewer& viewer)
{
    osg::Light& light = *viewer.getLight();
    light.setPosition(osg::Vec4(-0.55f, 0.45f, 1.0f, 0.0f));
    light.setAmbient(osg::Vec4(0.25f, 0.25f, 0.27f, 1.0f));
    light.setDiffuse(osg::Vec4(0.80f, 0.80f, 0.78f, 1.0f));
    light.setSpecular(osg::Vec4(0.9f, 0.9f, 0.9f, 1.0f));
}

/// Translucent features leave their alpha in the frame; composed with the window it must be opaque.
void makeOpaque(QOpenGLFunctions& gl)
{
    const bool isScissored = gl.glIsEnabled(GL_SCISSOR_TEST);
    gl.glDisable(GL_SCISSOR_TEST);
    gl.glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_TRUE);
    gl.glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    gl.glClear(GL_COLOR_BUFFER_BIT);
    gl.glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    if (isScissored) gl.glEnable(GL_SCISSOR_TEST); // as the viewer left it
}

} // namespace

ViewportWidget::ViewportWidget(MeasureScene& scene, QWidget* parent) : QOpenGLWidget(parent), m_scene(scene)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(200, 150);

    m_window = m_viewer->setUpViewerAsEmbeddedInWindow(0, 0, width(), height());
    // Picks unproject with the camera's own matrices, so nothing may change them while drawing.
    m_viewer->getCamera()->setComputeNearFarMode(osg::Camera::DO_NOT_COMPUTE_NEAR_FAR);
    m_viewer->getCamera()->setProjectionResizePolicy(osg::Camera::FIXED);
    m_viewer->setSceneData(scene.root());
    setUpLight(*m_viewer);
    m_decor.emplace(*m_viewer);

    osgGA::GUIEventAdapter& state = *m_viewer->getEventQueue()->getCurrentEventState();
    state.setGraphicsContext(m_window);
    state.setMouseYOrientation(osgGA::GUIEventAdapter::Y_INCREASING_UPWARDS);
    connect(&scene, &MeasureScene::changed, this, &ViewportWidget::cameraChanged);
}

ViewportWidget::~ViewportWidget()
{
    makeCurrent();
    m_window->close(true); // gives the scene's objects in graphics memory back
    doneCurrent();
}

osg::Vec2d ViewportWidget::pickPosition(const QPointF& position) const
{
    const QPointF pixel = position * devicePixelRatioF() + QPointF(0.5, 0.5);
    return {pixel.x(), m_window->getTraits()->height - pixel.y()};
}

QPointF ViewportWidget::widgetPosition(const osg::Vec3d& point) const
{
    const osg::Camera& camera = *m_viewer->getCamera();
    const osg::Vec3d window =
        point * (camera.getViewMatrix() * camera.getProjectionMatrix() * camera.getViewport()->computeWindowMatrix());
    return QPointF(window.x(), m_window->getTraits()->height - window.y()) / devicePixelRatioF();
}

void ViewportWidget::fit()
{
    m_camera.fit(m_scene.box(), double(width()) / height());
    cameraChanged();
}

void ViewportWidget::lookFrom(OrbitCamera::Direction direction)
{
    m_camera.lookFrom(direction);
    cameraChanged();
}

void ViewportWidget::flyTo(const osg::Vec3d& point, double radius)
{
    m_camera.flyTo(point, radius);
    cameraChanged();
}

void ViewportWidget::setOrthographic(bool orthographic)
{
    m_camera.setOrthographic(orthographic);
    cameraChanged();
}

QImage ViewportWidget::picture()
{
    grabFramebuffer(); // nodes of constant screen size know their scale only from the frame before
    return grabFramebuffer().convertToFormat(QImage::Format_RGB32);
}

void ViewportWidget::resizeGL(int, int)
{
    const int deviceWidth = qRound(width() * devicePixelRatioF());
    const int deviceHeight = qRound(height() * devicePixelRatioF());
    m_window->resized(0, 0, deviceWidth, deviceHeight);
    m_viewer->getCamera()->setViewport(0, 0, deviceWidth, deviceHeight);
    m_viewer->getEventQueue()->getCurrentEventState()->setInputRange(0.0f, 0.0f, float(deviceWidth),
                                                                     float(deviceHeight));
    m_decor->resize(deviceWidth, deviceHeight, devicePixelRatioF());
    cameraChanged();
}

void ViewportWidget::paintGL()
{
    m_window->setDefaultFboId(defaultFramebufferObject());
    m_viewer->frame();
    makeOpaque(*context()->functions());
    if (m_framesOwed > 0) {
        --m_framesOwed;
        update();
    }
}

void ViewportWidget::mousePressEvent(QMouseEvent* event)
{
    m_pressed = m_last = event->localPos();
    m_isDragging = false;
}

void ViewportWidget::mouseMoveEvent(QMouseEvent* event)
{
    const QPointF position = event->localPos();
    if (event->buttons() == Qt::NoButton) {
        emit hovered(position);
        return;
    }
    m_isDragging = m_isDragging || (position - m_pressed).manhattanLength() >= QApplication::startDragDistance();
    if (!m_isDragging) return;
    const osg::Vec2d way((position.x() - m_last.x()) / height(), (m_last.y() - position.y()) / height());
    m_last = position;
    if (event->buttons() == Qt::LeftButton && !(event->modifiers() & Qt::ShiftModifier))
        m_camera.orbit(way.x(), way.y());
    else
        m_camera.pan(way.x(), way.y());
    cameraChanged();
}

void ViewportWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && !m_isDragging) emit clicked(event->localPos(), event->modifiers());
    m_isDragging = false;
}

void ViewportWidget::wheelEvent(QWheelEvent* event)
{
    m_camera.zoom(std::pow(kZoomPerNotch, event->angleDelta().y() / kAngleOfNotch), pointUnder(event->position()));
    cameraChanged();
}

void ViewportWidget::leaveEvent(QEvent*)
{
    emit cursorLeft();
}

void ViewportWidget::cameraChanged()
{
    m_camera.applyTo(*m_viewer->getCamera(), double(width()) / height(), m_scene.bound());
    m_decor->follow(m_camera.rotation());
    m_framesOwed = 1; // nodes of constant screen size know their scale only from the frame before
    update();
}

osg::Vec3d ViewportWidget::pointUnder(const QPointF& position)
{
    const osg::Vec2d pick = pickPosition(position);
    osg::Vec3f onMesh;
    if (KelvOsgTools::getClickedPointToMeshData(m_viewer, float(pick.x()), float(pick.y()), onMesh,
                                                QStringLiteral("meshData")))
        return osg::Vec3d(onMesh) * m_scene.matrix();

    // Beside the mesh: at the depth of the centre.
    const osg::Camera& camera = *m_viewer->getCamera();
    const osg::Matrixd toWindow =
        camera.getViewMatrix() * camera.getProjectionMatrix() * camera.getViewport()->computeWindowMatrix();
    const double depth = (m_camera.centre() * toWindow).z();
    return osg::Vec3d(pick.x(), pick.y(), depth) * osg::Matrixd::inverse(toWindow);
}

} // namespace viewer
