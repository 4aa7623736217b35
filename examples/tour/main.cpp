// A walk through the library: features on a mesh, one numbered picture for each step.

#include "Tour.h"

#include <KelvOsgTools/CFeatureConfig.h>

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLoggingCategory>

#include <osg/Notify>

#include <cstdio>
#include <exception>

namespace {

/// A font that is there on most systems and has the letters of the tour; empty for the default font.
QString labelFont()
{
    for (const char* const path :
         {"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", "/usr/share/fonts/dejavu/DejaVuSans.ttf",
          "/usr/local/share/fonts/DejaVuSans.ttf", "C:/Windows/Fonts/segoeui.ttf"})
        if (QFileInfo::exists(QString::fromLatin1(path))) return QString::fromLatin1(path);
    return QString();
}

/// Colours that are readable on a light background, where the defaults are pure red and green.
void chooseAppearance()
{
    KelvOsgTools::CFeatureConfig& config = *KelvOsgTools::CFeatureConfig::sigleFeatureConfig();
    const osg::Vec4f selected(0.84f, 0.15f, 0.10f, 1.0f), highlighted(0.00f, 0.52f, 0.30f, 1.0f);
    config.setDotConfig({highlighted, selected, highlighted, selected});
    config.setFlagDotConfig({highlighted, selected, highlighted, selected});
    config.setArrowConfig({highlighted, selected, highlighted, selected});
    config.setPlaneConfig({highlighted, selected, highlighted, selected});
    config.setFontPath(labelFont());
}

void walk(const std::string& meshFile, const std::string& folder)
{
    const osg::ref_ptr<osg::Node> mesh = tour::loadMesh(meshFile);
    if (!QDir().mkpath(QString::fromLocal8Bit(folder.c_str())))
        throw std::runtime_error("cannot make the folder " + folder);
    tour::Studio studio(labelFont().toStdString());
    tour::Tour tour(studio, mesh, folder);
    for (void (*const step)(tour::Tour&) :
         {tour::showMesh, tour::showDots, tour::showFlagDots, tour::showLines, tour::showPlanes, tour::showAllFeatures,
          tour::clickOnMesh, tour::clickOnFeatures, tour::saveAndReload, tour::showAxes})
        step(tour);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s MESH FOLDER\nwrites pictures of features on the mesh to the folder\n", argv[0]);
        return 2;
    }
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen"); // Qt only measures text
    const QGuiApplication application(argc, argv);
    // Saving and loading tell each of their steps, and readers of meshes each of their doubts.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    if (!qEnvironmentVariableIsSet("OSG_NOTIFY_LEVEL")) osg::setNotifyLevel(osg::FATAL);
    try {
        chooseAppearance();
        walk(argv[1], argv[2]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tour: %s\n", error.what());
        return 1;
    }
    return 0;
}
