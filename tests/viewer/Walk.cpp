/// A scripted walk through the viewer that leaves a screenshot of every station in a folder.

#include "Application.h"
#include "FeatureListModel.h"
#include "SettingsDialog.h"
#include "ViewportWidget.h"
#include "viewer/WindowDriver.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QScreen>
#include <QSettings>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <cstdlib>

namespace {

using viewer::OrbitCamera;
using viewertest::WindowDriver;

class Walk
{
public:
    explicit Walk(const QString& folder) : m_folder(folder) {}

    void run()
    {
        m_driver.openMesh(*viewertest::samplePart());
        save("01-mesh");
        placeFeatures();
        lookAround();
        work();
    }

    bool hasFailed() const { return m_hasFailed; }

private:
    void placeFeatures()
    {
        m_driver.press(Qt::Key_D);
        m_driver.clickPoint({-70, -40, 10});
        m_driver.clickPoint({70, -40, 10});
        m_driver.moveTo(m_driver.positionOf({62, 20, 10}));
        save("02-dots");

        m_driver.press(Qt::Key_L);
        m_driver.clickPoint({-70, -40, 10});
        m_driver.moveTo(m_driver.positionOf({60, -40, 10}));
        save("03-line-preview");
        m_driver.clickPoint({70, -40, 10});

        m_driver.press(Qt::Key_P);
        m_driver.clickPoint({20, -45, 10});
        m_driver.clickPoint({54, -45, 10});
        m_driver.moveTo(m_driver.positionOf({52, -20, 10}));
        save("04-plane-preview");
        m_driver.clickPoint({52, -20, 10});
        m_driver.press(Qt::Key_L, Qt::ShiftModifier);
        m_driver.clickPoint({-20, -16, 46});
        m_driver.clickPoint({-60, -20, 10});
        m_driver.press(Qt::Key_S);
        save("05-measured");
    }

    void lookAround()
    {
        m_driver.moveTo(m_driver.positionOf({0, -40, 10}));
        save("06-hover");
        m_driver.click(m_driver.positionOf({0, -40, 10}));
        save("07-selected");
        m_driver.window().setLanguage(QLocale::Chinese);
        save("08-chinese");
        m_driver.window().setLanguage(QLocale::German);
        m_driver.viewport().lookFrom(OrbitCamera::Direction::Top);
        m_driver.viewport().setOrthographic(true);
        m_driver.viewport().fit();
        save("09-top-german");
        m_driver.window().setLanguage(QLocale::English);
    }

    void work()
    {
        m_driver.press(Qt::Key_Delete);
        save("10-deleted");
        m_driver.press(Qt::Key_Z, Qt::ControlModifier);
        m_driver.document().rename(0, QStringLiteral("Datum A"));
        const QString file = QDir(m_driver.folder()).filePath(QStringLiteral("features.xml"));
        m_hasFailed |= !m_driver.window().saveFeatures(file);
        m_hasFailed |= !m_driver.window().openFeatures(file);
        m_driver.viewport().setOrthographic(false);
        m_driver.viewport().lookFrom(OrbitCamera::Direction::Isometric);
        m_driver.viewport().fit();
        m_driver.window().list().selectRow(3);
        save("11-reopened");

        viewer::SettingsDialog dialog(viewer::ViewerSettings::load(), &m_driver.window());
        dialog.show();
        m_hasFailed |= !QTest::qWaitForWindowExposed(&dialog);
        savePicture(dialog.grab(), "12-settings");
    }

    void save(const char* station)
    {
        m_driver.picture(); // so that nodes of constant size have it
        QTest::qWait(50);
        savePicture(m_driver.window().grab(), station);
    }

    void savePicture(const QPixmap& picture, const char* station)
    {
        const QString path = QDir(m_folder).filePath(QStringLiteral("viewer-%1.png").arg(station));
        const bool isSaved = picture.save(path);
        m_hasFailed |= !isSaved;
        std::printf("%s %s\n", isSaved ? "saved" : "could not save", qPrintable(path));
    }

    QString m_folder;
    WindowDriver m_driver{QSize(1280, 800)};
    bool m_hasFailed = false;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: kelv-viewer-walk FOLDER\n");
        return EXIT_FAILURE;
    }
    viewer::prepareApplication();
    QApplication application(argc, argv);
    viewer::describeApplication();
    const QTemporaryDir settings; // the user's own stay as they are
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());

    const QString folder = QString::fromLocal8Bit(argv[1]);
    if (!QDir().mkpath(folder)) return EXIT_FAILURE;
    Walk walk(folder);
    walk.run();
    return walk.hasFailed() ? EXIT_FAILURE : EXIT_SUCCESS;
}
