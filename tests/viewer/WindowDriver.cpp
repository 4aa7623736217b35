#include "viewer/WindowDriver.h"

#include "ViewportWidget.h"

#include <QApplication>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

namespace viewertest {
namespace {

constexpr int kLoadMilliseconds = 60000;

} // namespace

WindowDriver::WindowDriver(const QSize& size)
{
    m_window.resize(size);
    m_window.show();
    QTest::qWaitForWindowExposed(&m_window) || (qFatal("the window does not appear"), false);
    QApplication::setActiveWindow(&m_window); // there may be no window manager to do so
    QTest::qWait(0);
}

WindowDriver::~WindowDriver()
{
    document().undoStack().setClean(); // nobody is there to answer questions
}

void WindowDriver::openMesh(const osg::Node& mesh)
{
    openFile(writeMesh(mesh, folder(), QStringLiteral("mesh.osgb")));
}

void WindowDriver::openFile(const QString& path)
{
    QSignalSpy shown(&m_window, &viewer::MainWindow::meshShown);
    m_window.openMesh(path);
    if (!shown.wait(kLoadMilliseconds)) qFatal("the mesh is not shown");
    picture();
}

QPoint WindowDriver::positionOf(const osg::Vec3d& point)
{
    const QPointF position = viewport().widgetPosition(point * m_window.scene().matrix());
    return {int(position.x()), int(position.y())};
}

void WindowDriver::moveTo(const QPoint& position)
{
    // QTest would move the cursor of the screen, which ends before a window at two pixels per pixel does.
    QMouseEvent move(QEvent::MouseMove, position, viewport().mapToGlobal(position), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QApplication::sendEvent(&viewport(), &move);
    QTest::qWait(0);
}

void WindowDriver::click(const QPoint& position, Qt::KeyboardModifiers modifiers)
{
    moveTo(position);
    QTest::mouseClick(&viewport(), Qt::LeftButton, modifiers, position);
    QTest::qWait(0);
}

void WindowDriver::drag(const QPoint& from, const QPoint& to, Qt::MouseButton button)
{
    constexpr int kSteps = 8;
    QTest::mousePress(&viewport(), button, Qt::NoModifier, from);
    for (int i = 1; i <= kSteps; ++i) {
        const QPointF position = from + QPointF(to - from) * i / kSteps;
        QMouseEvent move(QEvent::MouseMove, position, viewport().mapToGlobal(position.toPoint()), Qt::NoButton, button,
                         Qt::NoModifier);
        QApplication::sendEvent(&viewport(), &move); // QTest moves without buttons
    }
    QTest::mouseRelease(&viewport(), button, Qt::NoModifier, to);
    QTest::qWait(0);
}

void WindowDriver::wheel(const QPoint& position, int notches)
{
    constexpr int kAngleOfNotch = 120;
    QWheelEvent event(position, viewport().mapToGlobal(position), QPoint(), QPoint(0, notches * kAngleOfNotch),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&viewport(), &event);
    QTest::qWait(0);
}

void WindowDriver::press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(&m_window, key, modifiers);
    QTest::qWait(0);
}

QImage WindowDriver::picture()
{
    return viewport().picture();
}

QColor WindowDriver::colourAt(const QPoint& position)
{
    return picture().pixelColor(position * viewport().devicePixelRatio());
}

} // namespace viewertest
