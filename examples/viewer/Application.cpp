#include "Application.h"

#include "FeatureDocument.h"
#include "MainWindow.h"
#include "MeasureScene.h"
#include "MeshLoader.h"
#include "ViewerSettings.h"
#include "ViewportWidget.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QOpenGLContext>
#include <QRegularExpression>
#include <QSurfaceFormat>

#include <clocale>
#include <cstdio>

namespace viewer {

namespace {

constexpr int kSamplesPerPixel = 4;

struct Arguments
{
    QString mesh;
    QString features;
    QString screenshot;
    QSize size;
};

int fail(const QString& message)
{
    std::fprintf(stderr, "kelv-viewer: %s\n", qPrintable(message));
    return EXIT_FAILURE;
}

/// Ends the program for --help, --version and options that are not understood.
Arguments parsed(const QApplication& application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Measures meshes: dots, lines and planes with labels."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("MESH"), QStringLiteral("Mesh to open."), QStringLiteral("[MESH]"));
    const QCommandLineOption features(QStringLiteral("features"), QStringLiteral("Features to open."),
                                      QStringLiteral("FILE"));
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                        QStringLiteral("Save a picture of the view, without a window, and exit."),
                                        QStringLiteral("FILE.png"));
    const QCommandLineOption size(QStringLiteral("size"), QStringLiteral("Size of the picture in pixels."),
                                  QStringLiteral("WxH"), QStringLiteral("1280x800"));
    parser.addOptions({features, screenshot, size});
    parser.process(application);

    const QRegularExpressionMatch match =
        QRegularExpression(QStringLiteral("^([1-9]\\d{0,3})x([1-9]\\d{0,3})$")).match(parser.value(size));
    if (!match.hasMatch() || parser.positionalArguments().size() > 1) {
        std::fputs(qPrintable(parser.helpText()), stderr);
        std::exit(EXIT_FAILURE);
    }
    return {parser.positionalArguments().value(0), parser.value(features), parser.value(screenshot),
            QSize(match.captured(1).toInt(), match.captured(2).toInt())};
}

/// Draws a mesh and its features into a file, without a window.
int saveScreenshot(const Arguments& arguments)
{
    MeasureScene scene;
    FeatureDocument document(scene);
    if (!arguments.mesh.isEmpty()) {
        const LoadedMesh mesh = loadMesh(arguments.mesh, [](double) { return true; });
        if (!mesh.node) return fail(QStringLiteral("%1: %2").arg(arguments.mesh, mesh.error));
        scene.setMesh(mesh.node);
    }
    ViewerSettings::load().apply(qApp->devicePixelRatio());
    ViewportWidget viewport(scene);
    viewport.setAttribute(Qt::WA_DontShowOnScreen);
    viewport.setMinimumSize(1, 1);
    QString error;
    if (!arguments.features.isEmpty() && !document.open(arguments.features, error))
        return fail(QStringLiteral("%1: %2").arg(arguments.features, error));
    viewport.resize(arguments.size / viewport.devicePixelRatioF());
    viewport.show();
    viewport.fit();
    if (!viewport.isValid()) return fail(QStringLiteral("there is no OpenGL to draw with"));
    if (!viewport.picture().save(arguments.screenshot))
        return fail(QStringLiteral("%1: the picture could not be written").arg(arguments.screenshot));
    return EXIT_SUCCESS;
}

} // namespace

void prepareApplication()
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    format.setDepthBufferSize(24);
    format.setSamples(kSamplesPerPixel);
    QSurfaceFormat::setDefaultFormat(format);
}

void describeApplication()
{
    std::setlocale(LC_NUMERIC, "C"); // readers of meshes expect points in numbers, whatever the language
    QCoreApplication::setOrganizationName(QStringLiteral("KelvOsgTools"));
    QCoreApplication::setApplicationName(QStringLiteral("kelv-viewer"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KELV_VIEWER_VERSION));
    QApplication::setStyle(QStringLiteral("Fusion"));
}

int runApplication(int argc, char** argv)
{
    prepareApplication();
    QApplication application(argc, argv);
    describeApplication();
    const Arguments arguments = parsed(application);
    if (!arguments.screenshot.isEmpty()) return saveScreenshot(arguments);

    MainWindow window;
    window.show();
    if (!arguments.mesh.isEmpty())
        window.openMesh(arguments.mesh, arguments.features);
    else if (!arguments.features.isEmpty())
        window.openFeatures(arguments.features);
    return QApplication::exec();
}

} // namespace viewer
