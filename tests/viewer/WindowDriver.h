#pragma once

#include "MainWindow.h"
#include "SamplePart.h"

#include <osg/Vec3d>

#include <QImage>
#include <QTemporaryDir>

namespace viewertest {

/// A user before the real window: shows it and sends it mouse and key events.
class WindowDriver
{
public:
    /// Opens a window of that size and waits until it is on the screen.
    explicit WindowDriver(const QSize& size = QSize(1100, 720));
    ~WindowDriver();

    viewer::MainWindow& window() { return m_window; }
    viewer::FeatureDocument& document() { return m_window.document(); }
    viewer::ViewportWidget& viewport() { return m_window.viewport(); }

    /// A folder that vanishes with the driver.
    QString folder() const { return m_folder.path(); }

    /// Opens a mesh from a file in the folder and waits until it is shown.
    void openMesh(const osg::Node& mesh);

    /// Opens a mesh and waits until it is shown.
    void openFile(const QString& path);

    /// Where a point of the mesh stands in the view.
    QPoint positionOf(const osg::Vec3d& point);

    /// @name Events in the view
    /// @{
    void moveTo(const QPoint& position);
    void click(const QPoint& position, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void clickPoint(const osg::Vec3d& point) { click(positionOf(point)); }
    void drag(const QPoint& from, const QPoint& to, Qt::MouseButton button = Qt::LeftButton);
    void wheel(const QPoint& position, int notches);
    /// @}

    /// Presses a key with the window in front, as a user presses a shortcut.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

    /// The view as it is drawn, and its colour at a position.
    QImage picture();
    QColor colourAt(const QPoint& position);

private:
    QTemporaryDir m_folder;
    viewer::MainWindow m_window;
};

} // namespace viewertest
