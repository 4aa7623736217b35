#include "Application.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QSettings>
#include <QSurfaceFormat>
#include <QTemporaryDir>

// The tests of this program need a display. They see the picture as it is drawn, without samples
// mixed at edges, and leave the user's settings alone.
int main(int argc, char** argv)
{
    qputenv("LC_ALL", "C.UTF-8");
    ::testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS(); // asked while no display is there

    viewer::prepareApplication();
    QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    format.setSamples(0);
    QSurfaceFormat::setDefaultFormat(format);
    const QTemporaryDir settings;
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());

    QApplication application(argc, argv);
    viewer::describeApplication();
    return RUN_ALL_TESTS();
}
