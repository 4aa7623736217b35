#include <gtest/gtest.h>

#include <QGuiApplication>

// Every test program runs inside a Qt application, without a display unless told otherwise: labels
// are measured by Qt.
int main(int argc, char** argv)
{
    qputenv("LC_ALL", "C.UTF-8"); // node names are UTF-8, and name searches read the local encoding
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
