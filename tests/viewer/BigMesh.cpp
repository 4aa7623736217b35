/// Measures how the viewer copes with a mesh of a million triangles: the time until it is seen, and
/// the time that a move of the cursor takes, with KdTrees and without.

#include "Application.h"
#include "ViewportWidget.h"
#include "viewer/WindowDriver.h"

#include <osg/Geometry>

#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QSettings>
#include <QTemporaryDir>

#include <cstdio>

namespace {

constexpr unsigned int kCells = 708; // twice that squared: a million triangles
constexpr int kMovesWithTrees = 200;
constexpr int kMovesWithout = 5;

class TreeRemover : public osg::NodeVisitor
{
public:
    TreeRemover() : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) {}
    void apply(osg::Geometry& geometry) override { geometry.setShape(nullptr); }
};

/// Milliseconds that the program needs to answer a move of the cursor; drawing is not counted.
double hoverMilliseconds(viewertest::WindowDriver& driver, int moves)
{
    QElapsedTimer timer;
    double total = 0.0;
    for (int i = 0; i < moves; ++i) {
        const float share = float(i) / float(moves) - 0.5f;
        const QPoint position = driver.positionOf({60.0f * share, 40.0f * share, 0.0f});
        QMouseEvent move(QEvent::MouseMove, position, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        timer.start();
        QApplication::sendEvent(&driver.viewport(), &move);
        total += double(timer.nsecsElapsed()) * 1e-6;
    }
    return total / moves;
}

} // namespace

int main(int argc, char** argv)
{
    viewer::prepareApplication();
    QApplication application(argc, argv);
    viewer::describeApplication();
    const QTemporaryDir settings;
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());

    viewertest::WindowDriver driver;
    const QString file = viewertest::writeMesh(*viewertest::bumpySquare(kCells), driver.folder(), "big.osgb");
    QElapsedTimer timer;
    timer.start();
    driver.openFile(file);
    std::printf("triangles %u\n", 2 * kCells * kCells);
    std::printf("from opening to the first picture %.1f s\n", double(timer.elapsed()) * 1e-3);
    std::printf("move of the cursor with KdTrees %.2f ms\n", hoverMilliseconds(driver, kMovesWithTrees));
    TreeRemover remover;
    driver.window().scene().mesh()->accept(remover);
    std::printf("move of the cursor without KdTrees %.1f ms\n", hoverMilliseconds(driver, kMovesWithout));
    return 0;
}
