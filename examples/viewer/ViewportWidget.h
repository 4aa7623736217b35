#pragma once

#include "OrbitCamera.h"
#include "ViewportDecor.h"

#include <osg/Vec2d>
#include <osgViewer/GraphicsWindow>
#include <osgViewer/Viewer>

#include <QImage>
#include <QOpenGLWidget>

#include <optional>

namespace viewer {
class MeasureScene;

/// The 3D view: draws the scene and turns drags and the wheel into camera moves. Clicks and moves of
/// the free cursor it hands on.
class ViewportWidget : public QOpenGLWidget
{
    Q_OBJECT

public:
    explicit ViewportWidget(MeasureScene& scene, QWidget* parent = nullptr);
    ~ViewportWidget() override;

    osgViewer::Viewer& viewer() { return *m_viewer; }
    const OrbitCamera& camera() const { return m_camera; }

    /// A position of the widget as picks take it: device pixels, origin bottom left, middle of the pixel.
    osg::Vec2d pickPosition(const QPointF& position) const;

    /// Where a point of the world stands in the widget.
    QPointF widgetPosition(const osg::Vec3d& point) const;

    void fit();
    void lookFrom(OrbitCamera::Direction direction);
    void flyTo(const osg::Vec3d& point, double radius);
    void setOrthographic(bool orthographic);

    /// What is shown, without the widgets around it.
    QImage picture();

signals:
    void hovered(const QPointF& position);
    void clicked(const QPointF& position, Qt::KeyboardModifiers modifiers);
    void cursorLeft();

protected:
    void resizeGL(int width, int height) override;
    void paintGL() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void cameraChanged();
    osg::Vec3d pointUnder(const QPointF& position);

    MeasureScene& m_scene;
    OrbitCamera m_camera;
    osg::ref_ptr<osgViewer::Viewer> m_viewer = new osgViewer::Viewer;
    osg::ref_ptr<osgViewer::GraphicsWindowEmbedded> m_window;
    std::optional<ViewportDecor> m_decor;
    QPointF m_pressed;
    QPointF m_last;
    bool m_isDragging = false;
    int m_framesOwed = 0;
};

} // namespace viewer
