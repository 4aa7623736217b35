#include "PersistenceSupport.h"

#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/featureBaseNode.h>

#include <osg/ValueObject>

#include <gtest/gtest.h>

#include <QDir>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

const char* const kWriteFinished = "exportFeature : write finished.";

/// An exporter that has gathered a scene, with counters that a file can carry.
exportFeature exporterOf(const osg::ref_ptr<osg::Group>& scene)
{
    exportFeature exporter;
    exporter.getMetaStructInfo(scene);
    return exporter;
}

QStringList logOfSaving(exportFeature exporter, const QString& path, const QString& name)
{
    const LoggedMessages messages;
    exporter.createXML(new osg::Group, path, name);
    return messages.all();
}

/// What the file of an exporter brings back.
importFeature savedAndLoaded(exportFeature exporter)
{
    const TestFolder folder;
    exporter.createXML(new osg::Group, folder.path(), "saved.xml");
    importFeature importer;
    importer.getFeatureInfoIntoXML(folder.path(), "saved.xml");
    return importer;
}

QStringList prefixesOfDots(const importFeature& importer)
{
    QStringList prefixes;
    for (const TableRecord& table : importer.getAutoScaleShpereTableInfo()) prefixes.append(table.tableNamePrefix);
    return prefixes;
}

TEST(ExportFeature, WritesNothingWithoutARootAndSaysSo)
{
    const TestFolder folder;
    const LoggedMessages messages;
    exporterOf(sceneOf(1, 1, 1)).createXML(nullptr, folder.path(), "saved.xml");
    EXPECT_EQ(messages.all(), QStringList("exportFeature Error: root is nullptr."));
    EXPECT_TRUE(folder.fileNames().isEmpty());
}

TEST(ExportFeature, SaysTwiceThatItFinished)
{
    const TestFolder folder;
    EXPECT_EQ(logOfSaving(exporterOf(sceneOf(0, 0, 1)), folder.path(), "a.xml"),
              (QStringList{kWriteFinished, kWriteFinished}));
}

TEST(ExportFeature, CallsAFileWithoutNameFeatureMark)
{
    const TestFolder folder;
    logOfSaving(exporterOf(sceneOf(1, 0, 0)), folder.path(), "");
    EXPECT_EQ(folder.fileNames(), QStringList("featureMark"));
}

TEST(ExportFeature, UsesTheNameExactlyAsPassed)
{
    const TestFolder folder;
    logOfSaving(exporterOf(sceneOf(1, 0, 0)), folder.path(), QString::fromUtf8("Maße 1"));
    EXPECT_EQ(folder.fileNames(), QStringList(QString::fromUtf8("Maße 1")));
}

TEST(ExportFeature, ReplacesAnExistingFileAndSaysSo)
{
    const TestFolder folder;
    folder.write("a.xml", QByteArray(100000, 'x'));
    EXPECT_EQ(logOfSaving(exporterOf(sceneOf(0, 0, 1)), folder.path(), "a.xml"),
              (QStringList{"exportFeature Error: file exists.", kWriteFinished, kWriteFinished}));
    EXPECT_TRUE(folder.read("a.xml").endsWith("</featureInfoXML>\n\n"));
    EXPECT_EQ(folder.fileNames(), QStringList("a.xml")) << "nothing is left beside it";
}

TEST(ExportFeature, SaysThatItCannotOpenAFileInAMissingFolder)
{
    const TestFolder folder;
    EXPECT_EQ(logOfSaving(exporterOf(sceneOf(0, 0, 1)), folder.pathOf("missing"), "a.xml"),
              (QStringList{"exportFeature Error: cannot open file.", kWriteFinished}));
}

TEST(ExportFeature, SaysThatItCannotOpenAFolder)
{
    const TestFolder folder;
    QDir(folder.path()).mkdir("a.xml");
    EXPECT_EQ(
        logOfSaving(exporterOf(sceneOf(0, 0, 1)), folder.path(), "a.xml"),
        (QStringList{"exportFeature Error: file exists.", "exportFeature Error: cannot open file.", kWriteFinished}));
}

TEST(ExportFeature, SaysThatThereAreNoPlanes)
{
    const TestFolder folder;
    EXPECT_EQ(logOfSaving(exporterOf(sceneOf(1, 1, 0)), folder.path(), "a.xml"),
              (QStringList{"KelvOsgTools::exportFeature::createPlaneFeatureInfoXML can not createPlaneFeatureInfoXML "
                           ", m_PlaneMeta.size() =  0 , m_PlaneTableMeta.size() =  0",
                           kWriteFinished, kWriteFinished}));
}

struct Counters
{
    const char* description;
    int dot, line, plane;
};

class ExportFeatureNegativeCounters : public testing::TestWithParam<Counters>
{};

TEST_P(ExportFeatureNegativeCounters, AreLeftOutWithAMessage)
{
    const TestFolder folder;
    exportFeature exporter = exporterOf(sceneOf(0, 0, 1));
    exporter.setFeatureTagCount(GetParam().dot, GetParam().line, GetParam().plane);
    const QString message = QString("KelvOsgTools::exportFeature::createFeatureTagCountInfoXML can not "
                                    "createFeatureTagCountInfoXML , m_dotTagCount =  %1 , m_arrowTagCount =  %2 , "
                                    "m_planeTagCount =  %3")
                                .arg(GetParam().dot)
                                .arg(GetParam().line)
                                .arg(GetParam().plane);
    EXPECT_EQ(logOfSaving(exporter, folder.path(), "a.xml"), (QStringList{message, kWriteFinished, kWriteFinished}));
    EXPECT_TRUE(folder.read("a.xml").contains("            <featureTagCountInfo></featureTagCountInfo>\n"));
}

INSTANTIATE_TEST_SUITE_P(ExportFeature, ExportFeatureNegativeCounters,
                         testing::Values(Counters{"OfDots", -1, 2, 3}, Counters{"OfLines", 1, -2, 3},
                                         Counters{"OfPlanes", 1, 2, -3}, Counters{"OfAll", -7, -8, -9}),
                         [](const auto& variant) { return variant.param.description; });

TEST(ExportFeature, WritesTheCountersOfTheHost)
{
    exportFeature exporter;
    exporter.setFeatureTagCount(7, 8, 9);
    int dot = 0, line = 0, plane = 0;
    savedAndLoaded(exporter).getFeatureTagCount(dot, line, plane);
    EXPECT_EQ(QList<int>({dot, line, plane}), QList<int>({7, 8, 9}));
}

TEST(ExportFeature, StartsWithCountersOfZero)
{
    int dot = -1, line = -1, plane = -1;
    savedAndLoaded(exportFeature()).getFeatureTagCount(dot, line, plane);
    EXPECT_EQ(QList<int>({dot, line, plane}), QList<int>({0, 0, 0}));
}

TEST(ExportFeature, KeepsTheCountersWhenGathering)
{
    exportFeature exporter;
    exporter.setFeatureTagCount(7, 8, 9);
    exporter.getMetaStructInfo(sceneOf(1, 1, 1));
    int dot = 0, line = 0, plane = 0;
    savedAndLoaded(exporter).getFeatureTagCount(dot, line, plane);
    EXPECT_EQ(QList<int>({dot, line, plane}), QList<int>({7, 8, 9}));
}

TEST(ExportFeature, GathersAllFeaturesInSceneOrder)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (const char* prefix : {"c", "a", "b"}) addDot(scene, {}, tableOf(prefix));
    EXPECT_EQ(prefixesOfDots(savedAndLoaded(exporterOf(scene))), QStringList({"c", "a", "b"}));
}

TEST(ExportFeature, GathersWhatTheAssemblyFunctionsBuild)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    createAutoScaleShpereAndTable("d", scene, {1, 2, 3}, 4, "Point", 5, featureStateNormal, true);
    CArrowMeta::structArrowMeta line;
    line.endPos.set(6, 7, 8);
    createArrowAndTable(featureStateNormal, line, scene, 9, "line", 10);
    createPlaneAndTable(featureStateNormal, "p", scene, std::vector<osg::Vec3f>(4), {0, 0, 1}, 11, "Plane", 12);

    const importFeature importer = savedAndLoaded(exporterOf(scene));
    EXPECT_EQ(importer.getAutoScaleShpereMetaInfo().first().cneterPos, osg::Vec3f(1, 2, 3));
    EXPECT_TRUE(importer.getAutoScaleShpereTableInfo().first().isBottom);
    EXPECT_EQ(importer.getArrowMetaInfo().size(), 1) << "the normal arrows of planes are no lines";
    EXPECT_EQ(importer.getArrowTableInfo().first().tableNameIndexSuffix, 10);
    EXPECT_EQ(importer.getPlaneTableInfo().first().renderIndex, 11);
}

TEST(ExportFeature, ReplacesWhatItGatheredBefore)
{
    const osg::ref_ptr<osg::Group> scene = sceneOf(2, 1, 1);
    exportFeature exporter = exporterOf(scene);
    exporter.getMetaStructInfo(scene);
    const importFeature importer = savedAndLoaded(exporter);
    EXPECT_EQ(importer.getAutoScaleShpereMetaInfo().size(), 2);
    EXPECT_EQ(importer.getArrowMetaInfo().size(), 1);
    EXPECT_EQ(importer.getPlaneMetaInfo().size(), 1);
}

TEST(ExportFeature, DropsWhatItGatheredBeforeWhenThereIsNoRoot)
{
    exportFeature exporter = exporterOf(sceneOf(2, 1, 1));
    exporter.getMetaStructInfo(nullptr);
    EXPECT_TRUE(savedAndLoaded(exporter).getAutoScaleShpereMetaInfo().isEmpty());
}

TEST(ExportFeature, WritesWhatItGatheredWhateverRootItIsGivenLater)
{
    exportFeature exporter = exporterOf(sceneOf(1, 0, 0));
    const TestFolder folder;
    exporter.createXML(new osg::Group, folder.path(), "first.xml");
    exporter.createXML(sceneOf(5, 5, 5), folder.path(), "second.xml");
    EXPECT_EQ(folder.read("first.xml"), folder.read("second.xml"));
}

TEST(ExportFeature, MakesTheCommonRootWhenGathering)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    exporterOf(scene);
    EXPECT_TRUE(findOrCreateFeatureRootNode(scene, featureAll, false));
    EXPECT_FALSE(findOrCreateFeatureRootNode(scene, featureDot, false)) << "but no root of a kind";
}

class ExportFeatureOfLabellessFeatures : public testing::TestWithParam<featureType>
{};

/// A scene with one feature of a kind, without a label.
osg::ref_ptr<osg::Group> sceneWithLabelless(featureType kind)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    PlaneRecord plane = planeOf({{}, {}, {}, {}});
    if (kind == featureDot) hang(scene, kind, new CAutoScaleSphereMeta({}));
    if (kind == featureLine) hang(scene, kind, new CArrowMeta({}));
    if (kind == featurePlane) hang(scene, kind, new CPlaneMeta(plane));
    return scene;
}

TEST_P(ExportFeatureOfLabellessFeatures, SavesThemWithADefaultLabel)
{
    const importFeature importer = savedAndLoaded(exporterOf(sceneWithLabelless(GetParam())));
    const QVector<TableRecord> tables =
        importer.getAutoScaleShpereTableInfo() + importer.getArrowTableInfo() + importer.getPlaneTableInfo();
    ASSERT_EQ(tables.size(), 1);
    EXPECT_EQ(tables.first().tableNamePrefix, TableRecord().tableNamePrefix);
    EXPECT_EQ(importer.getAutoScaleShpereMetaInfo().size() + importer.getArrowMetaInfo().size() +
                  importer.getPlaneMetaInfo().size(),
              1);
}

INSTANTIATE_TEST_SUITE_P(ExportFeature, ExportFeatureOfLabellessFeatures,
                         testing::Values(featureDot, featureLine, featurePlane),
                         [](const auto& variant) { return "Kind" + std::to_string(variant.param); });

TEST(ExportFeature, SavesTheFirstOfTwoLabels)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    addDot(scene, {}, tableOf("first"))->addChild(new CTableMeta(tableOf("second")));
    EXPECT_EQ(prefixesOfDots(savedAndLoaded(exporterOf(scene))), QStringList("first"));
}

TEST(ExportFeature, PassesOverALabelThatIsNotMarkedAsOne)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> dot = addDot(scene, {}, tableOf("unmarked"));
    dot->getChild(dot->getNumChildren() - 1)->setUserValue("feature_type", 4.0f);
    dot->addChild(new CTableMeta(tableOf("marked")));
    EXPECT_EQ(prefixesOfDots(savedAndLoaded(exporterOf(scene))), QStringList("marked"));
}

TEST(ExportFeature, PassesOverWhatIsMarkedAsALabelAndIsNone)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> dot = addDot(scene, {}, tableOf("label"));
    const osg::ref_ptr<osg::Group> impostor = new osg::Group;
    impostor->setUserValue("feature_type", static_cast<int>(featureTable));
    dot->insertChild(0, impostor);
    EXPECT_EQ(prefixesOfDots(savedAndLoaded(exporterOf(scene))), QStringList("label"));
}

TEST(ExportFeature, PassesOverWhatIsNoFeatureOfTheKind)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    createFlagAutoScaleShpereAndTable("flag", scene, {}, 1, "Point", 1, featureDot, true, true);
    findOrCreateShpere("sphere", scene, {});
    hang(scene, featureDot, new featureBaseNode);
    hang(scene, featureDot, new CArrowMeta({}));
    addDot(scene, {}, tableOf("dot"));
    EXPECT_EQ(prefixesOfDots(savedAndLoaded(exporterOf(scene))), QStringList("dot"));
}

/// A scene whose dot root has this child 0, or none.
osg::ref_ptr<osg::Group> sceneWithDotContent(osg::Node* content)
{
    const osg::ref_ptr<osg::Group> scene = sceneOf(1, 1, 0);
    const osg::ref_ptr<osg::Group> root = findOrCreateFeatureRootNode(scene, featureDot, false);
    root->removeChildren(0, root->getNumChildren());
    if (content) root->addChild(content);
    return scene;
}

struct Content
{
    const char* description;
    osg::ref_ptr<osg::Node> (*build)();
};

class ExportFeatureBrokenRoot : public testing::TestWithParam<Content>
{};

TEST_P(ExportFeatureBrokenRoot, GivesNoFeaturesOfItsKindAlone)
{
    const importFeature importer = savedAndLoaded(exporterOf(sceneWithDotContent(GetParam().build())));
    EXPECT_EQ(importer.getAutoScaleShpereMetaInfo().size(), 0);
    EXPECT_EQ(importer.getArrowMetaInfo().size(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    ExportFeature, ExportFeatureBrokenRoot,
    testing::Values(Content{"WithoutChildren", []() -> osg::ref_ptr<osg::Node> { return nullptr; }},
                    Content{"WithALeafAsChild", []() -> osg::ref_ptr<osg::Node> { return new osg::Node; }},
                    Content{"WithAnEmptyGroup", []() -> osg::ref_ptr<osg::Node> { return new osg::Group; }}),
    [](const auto& variant) { return variant.param.description; });

TEST(ExportFeature, LeavesACommonRootWithoutTransformAsItIs)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> root = findOrCreateFeatureRootNode(scene, featureAll, true);
    root->setChild(0, new osg::Group);
    exporterOf(scene);
    EXPECT_EQ(root->getNumChildren(), 1u);
    EXPECT_STREQ(root->getChild(0)->className(), "Group");
}

TEST(ExportFeature, CopiesWithAllItHolds)
{
    exportFeature original = exporterOf(sceneOf(2, 1, 1));
    original.setFeatureTagCount(7, 8, 9);
    const exportFeature copy(original);
    exportFeature assigned;
    assigned = original;
    original.getMetaStructInfo(nullptr);
    for (const exportFeature& each : {copy, assigned}) {
        const importFeature importer = savedAndLoaded(each);
        EXPECT_EQ(importer.getAutoScaleShpereMetaInfo().size(), 2);
        EXPECT_EQ(importer.getPlaneTableInfo().size(), 1);
    }
}

} // namespace
