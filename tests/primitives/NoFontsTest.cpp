#include "support/Picture.h"
#include "support/PictureRig.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include <gtest/gtest.h>

#include <osg/io_utils>

#include <QFile>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QTemporaryDir>

// This program has a main of its own, which hides all fonts of the system from it.
namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

CTableMeta::structTableMeta blackOnYellow(const QString& text)
{
    CTableMeta::structTableMeta meta = labelSaying(text);
    meta.backgroundColor.set(1, 1, 0);
    return meta;
}

TEST(SystemWithoutFonts, IsWhatTheseTestsRunOn)
{
    // Names that stand for any font are always there.
    for (const QString& family : QFontDatabase().families())
        EXPECT_TRUE(QStringList({"Monospace", "Sans Serif", "Serif"}).contains(family)) << family.toStdString();
}

TEST(SystemWithoutFonts, LetsFeaturesBeMadeAndUsed)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (const osg::ref_ptr<osg::Group>& feature :
         {addDot(scene, "dot"), addFlagDot(scene, "flag"), addLine(scene, "line"), addPlane(scene, "plane")}) {
        ASSERT_TRUE(feature);
        dynamic_cast<CFeatureMetaObject&>(*feature).setState(featureStateHighlighted);
    }
    const std::vector<CTableMeta*> labels = nodesOfType<CTableMeta>(*scene);
    ASSERT_EQ(labels.size(), 4u);
    for (CTableMeta* label : labels) label->updateLanguage();
    EXPECT_TRUE(isFiniteEverywhere(*scene));
}

TEST(SystemWithoutFonts, GivesALabelItsText)
{
    const osg::ref_ptr<CTableMeta> label = new CTableMeta(labelSaying("Gap", 12));
    EXPECT_EQ(textOf(*firstBelow<osgText::Text>(*label, "textNode")), QString("Gap12"));
}

TEST(SystemWithoutFonts, GivesALabelARectangle)
{
    const osg::ref_ptr<CTableMeta> label = new CTableMeta(labelSaying("Gap", 12));
    const osg::BoundingBox box = firstBelow<osg::Geometry>(*label, "squareNode")->getBoundingBox();
    EXPECT_GT(box.xMax() - box.xMin(), 0.0f);
    EXPECT_GT(box.yMax() - box.yMin(), 0.0f);
}

TEST(SystemWithoutFonts, DrawsLabels)
{
    PictureRig rig(100, 100);
    rig.setScene(new CTableMeta(blackOnYellow("Gap")));
    EXPECT_GT(countPixels(*rig.render(), kYellow), 50);
}

TEST(SystemWithoutFonts, DrawsLabelsInAFontFileThatTheHostBrings)
{
    CFeatureConfig& config = *CFeatureConfig::sigleFeatureConfig();
    PictureRig rig(100, 100);
    rig.setScene(new CTableMeta(blackOnYellow("Gap")));
    const osg::ref_ptr<osg::Image> without = rig.render();
    config.setFontPath(KELVOSGTOOLS_TEST_FONT);
    rig.setScene(new CTableMeta(blackOnYellow("Gap")));
    EXPECT_FALSE(alike(*rig.render(), *without, "no-fonts-host-font"));
    config.setFontPath(QString());
}

} // namespace

int main(int argc, char** argv)
{
    const QTemporaryDir folder;
    QFile fontconfig(folder.filePath("fonts.conf"));
    if (!fontconfig.open(QIODevice::WriteOnly)) return 1;
    fontconfig.write("<?xml version=\"1.0\"?><fontconfig><cachedir>" + folder.path().toUtf8() +
                     "</cachedir></fontconfig>\n");
    fontconfig.close();
    qputenv("FONTCONFIG_FILE", fontconfig.fileName().toUtf8());
    qputenv("OSGFONTPATH", folder.path().toUtf8());
    qputenv("LC_ALL", "C.UTF-8");
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
