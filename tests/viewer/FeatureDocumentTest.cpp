#include "FeatureDocument.h"
#include "FeatureFile.h"
#include "FeatureListModel.h"
#include "LabelLanguage.h"
#include "MeasureScene.h"

#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <osg/ValueObject>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace viewer {
namespace {

using namespace KelvOsgTools;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::vector<osg::Vec3f> kDotClicks{{1, 2, 3}};
const std::vector<osg::Vec3f> kLineClicks{{0, 0, 0}, {3, 4, 0}};
const std::vector<osg::Vec3f> kPlaneClicks{{0, 0, 0}, {10, 0, 0}, {10, 20, 0}};

class FeatureDocumentTest : public ::testing::Test
{
protected:
    FeatureDocumentTest() { installLabelLanguage(QLocale::English); }

    void createOneOfEach()
    {
        m_document.create(featureDot, kDotClicks, true);
        m_document.create(featureLine, kLineClicks, true);
        m_document.create(featurePlane, kPlaneClicks, true);
    }

    const Feature& feature(int row) const { return m_document.features().at(std::size_t(row)); }
    QString file(const char* name = "features.xml") const { return QDir(m_folder.path()).filePath(name); }

    QStringList labels() const
    {
        QStringList texts;
        for (const Feature& each : m_document.features()) texts << labelText(each);
        return texts;
    }

    QTemporaryDir m_folder;
    MeasureScene m_scene;
    FeatureDocument m_document{m_scene};
    QString m_error;
};

TEST_F(FeatureDocumentTest, NumbersTheFeaturesOfEachKind)
{
    createOneOfEach();
    m_document.create(featureDot, kDotClicks, true);
    EXPECT_THAT(labels(), ElementsAre("Point1", "Line1", "Plane1", "Point2"));
}

TEST_F(FeatureDocumentTest, HangsEveryFeatureUnderTheRootOfItsKind)
{
    createOneOfEach();
    for (const Feature& each : m_document.features())
        EXPECT_TRUE(findFeatureByName(each.name.toStdString(), m_scene.root(), each.kind)) << qPrintable(each.name);
}

TEST_F(FeatureDocumentTest, GivesAPlaneTheFourthCornerOfItsParallelogram)
{
    m_document.create(featurePlane, kPlaneClicks, true);
    EXPECT_EQ(feature(0).points.at(3), osg::Vec3f(0, 20, 0));
}

TEST_F(FeatureDocumentTest, RefusesAPlaneOfPointsOnOneLine)
{
    EXPECT_FALSE(m_document.create(featurePlane, {{0, 0, 0}, {1, 1, 1}, {2, 2, 2}}, true));
    EXPECT_THAT(m_document.features(), IsEmpty());
}

TEST_F(FeatureDocumentTest, RefusesALineBetweenEqualPoints)
{
    EXPECT_FALSE(m_document.create(featureLine, {{1, 1, 1}, {1, 1, 1}}, true));
}

TEST_F(FeatureDocumentTest, UndoTakesACreatedFeatureOutOfListAndScene)
{
    m_document.create(featureDot, kDotClicks, true);
    const Feature made = feature(0);
    m_document.undoStack().undo();
    EXPECT_THAT(m_document.features(), IsEmpty());
    EXPECT_FALSE(m_scene.nodeOf(made));
}

TEST_F(FeatureDocumentTest, UndoBringsDeletedFeaturesBackInTheirRows)
{
    createOneOfEach();
    const QStringList before = labels();
    m_document.removeRows({0, 2});
    EXPECT_THAT(labels(), ElementsAre("Line1"));
    m_document.undoStack().undo();
    EXPECT_EQ(labels(), before);
    EXPECT_TRUE(m_scene.nodeOf(feature(2)));
}

TEST_F(FeatureDocumentTest, NeverGivesANumberTwice)
{
    m_document.create(featureDot, kDotClicks, true);
    m_document.removeRows({0});
    m_document.create(featureDot, kDotClicks, true);
    EXPECT_EQ(labelText(feature(0)), "Point2");
}

TEST_F(FeatureDocumentTest, RenamesTheLabelAndUndoesIt)
{
    m_document.create(featureDot, kDotClicks, true);
    EXPECT_TRUE(m_document.rename(0, "Datum A"));
    EXPECT_EQ(labelText(feature(0)), "Datum A");
    m_document.undoStack().undo();
    EXPECT_EQ(labelText(feature(0)), "Point1");
}

TEST_F(FeatureDocumentTest, RefusesABlankLabel)
{
    m_document.create(featureDot, kDotClicks, true);
    EXPECT_FALSE(m_document.rename(0, "  "));
    EXPECT_FALSE(m_document.rename(0, "Point1"));
}

TEST_F(FeatureDocumentTest, ShowsTheNewLabelInTheScene)
{
    m_document.create(featureDot, kDotClicks, true);
    m_document.rename(0, "Datum A");
    auto* const dot = dynamic_cast<CAutoScaleSphereMeta*>(m_scene.nodeOf(feature(0)));
    ASSERT_TRUE(dot);
    EXPECT_EQ(dot->getTableInfo().tableNamePrefix, "Datum A");
}

TEST_F(FeatureDocumentTest, GivesTheColourOfADotBackAfterItWasSelected)
{
    m_document.create(featureDot, kDotClicks, true);
    const auto colour = [this] {
        return dynamic_cast<CAutoScaleSphereMeta&>(*m_scene.nodeOf(feature(0))).getShpereDrawableNode()->getColor();
    };
    const osg::Vec4f before = colour();
    m_document.setState(0, featureStateSelected);
    EXPECT_NE(colour(), before);
    m_document.setState(0, featureStateNormal);
    EXPECT_EQ(colour(), before);
}

TEST_F(FeatureDocumentTest, OpensEveryFeatureThatItSaved)
{
    createOneOfEach();
    m_document.create(featureLine, kLineClicks, false); // a solid line
    m_document.rename(0, "Bohrung <1> & \"2\"");
    const std::vector<Feature> saved = m_document.features();
    ASSERT_TRUE(m_document.save(file(), m_error)) << qPrintable(m_error);

    MeasureScene otherScene;
    FeatureDocument other(otherScene);
    ASSERT_TRUE(other.open(file(), m_error)) << qPrintable(m_error);
    ASSERT_EQ(other.features().size(), saved.size());
    for (const std::size_t row : {0, 1, 3}) // lines before planes: the file holds one kind after the other
        EXPECT_TRUE(isSameMeasurement(other.features()[row == 3 ? 2 : row], saved[row])) << row;
    EXPECT_TRUE(isSameMeasurement(other.features()[3], saved[2]));
}

TEST_F(FeatureDocumentTest, SavesTheOrderOfTheListWhateverWasRenamed)
{
    m_document.create(featureDot, {{1, 0, 0}}, true);
    m_document.create(featureDot, {{2, 0, 0}}, true);
    m_document.rename(0, "Datum"); // hangs the first behind the second
    ASSERT_TRUE(m_document.save(file(), m_error));
    ASSERT_TRUE(m_document.open(file(), m_error));
    EXPECT_THAT(labels(), ElementsAre("Datum", "Point2"));
}

TEST_F(FeatureDocumentTest, DoesNotSaveThePreviewOfATool)
{
    m_document.create(featureDot, kDotClicks, true);
    m_scene.showTemporary(featurePlane, kPlaneClicks, true);
    EXPECT_TRUE(m_document.save(file(), m_error)) << qPrintable(m_error);
    ASSERT_TRUE(m_document.open(file(), m_error));
    EXPECT_EQ(m_document.features().size(), 1u);
}

TEST_F(FeatureDocumentTest, GoesOnNumberingAfterOpening)
{
    m_document.create(featureDot, kDotClicks, true);
    m_document.create(featureDot, kDotClicks, true);
    m_document.removeRows({1});
    ASSERT_TRUE(m_document.save(file(), m_error));
    ASSERT_TRUE(m_document.open(file(), m_error));
    m_document.create(featureDot, kDotClicks, true);
    EXPECT_THAT(labels(), ElementsAre("Point1", "Point3"));
}

TEST_F(FeatureDocumentTest, GivesOpenedFeaturesNamesOfTheirOwn)
{
    createOneOfEach();
    m_document.create(featureDot, kDotClicks, true);
    ASSERT_TRUE(m_document.save(file(), m_error));
    ASSERT_TRUE(m_document.open(file(), m_error));
    EXPECT_NE(feature(0).name, feature(1).name);
    for (const Feature& each : m_document.features()) EXPECT_TRUE(m_scene.nodeOf(each));
}

TEST_F(FeatureDocumentTest, TellsWhetherItChangedSinceTheLastSave)
{
    EXPECT_FALSE(m_document.isModified());
    createOneOfEach();
    EXPECT_TRUE(m_document.isModified());
    m_document.save(file(), m_error);
    EXPECT_FALSE(m_document.isModified());
    m_document.undoStack().undo();
    EXPECT_TRUE(m_document.isModified());
}

TEST_F(FeatureDocumentTest, TellsWhenItCannotSave)
{
    createOneOfEach();
    EXPECT_FALSE(m_document.save(file("no-such-folder/features.xml"), m_error));
    EXPECT_FALSE(m_error.isEmpty());
    EXPECT_TRUE(m_document.isModified());
}

TEST_F(FeatureDocumentTest, KeepsItsFeaturesWhenAFileCannotBeRead)
{
    createOneOfEach();
    QFile damaged(file());
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
    damaged.write("<featureInfoXML><contacts>");
    damaged.close();
    EXPECT_FALSE(m_document.open(file(), m_error));
    EXPECT_THAT(m_error.toStdString(), ::testing::HasSubstr("Line 1"));
    EXPECT_EQ(m_document.features().size(), 3u);
}

TEST_F(FeatureDocumentTest, DoesNotTakeAnyXmlForFeatures)
{
    QFile other(file());
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    other.write("<html></html>");
    other.close();
    EXPECT_FALSE(m_document.open(file(), m_error));
}

TEST_F(FeatureDocumentTest, ExportsOneRowOfTheTableForEachFeature)
{
    m_document.create(featureLine, kLineClicks, true);
    m_document.rename(0, "a \"b\", c");
    ASSERT_TRUE(writeCsv(file("list.csv"), m_document.features(), m_error));
    QFile written(file("list.csv"));
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    const QStringList rows = QString::fromUtf8(written.readAll()).split("\r\n");
    EXPECT_EQ(rows.size(), 3); // the head, the line, the end
    EXPECT_EQ(rows[1], QString("\"%1\",\"Line\",\"a \"\"b\"\", c\",0,0,0,3,4,0,,,,,,,5,,,").arg(feature(0).name));
}

TEST_F(FeatureDocumentTest, MarksThePointsOfAToolTemporaryUnderTheirFixedNames)
{
    m_scene.showTemporary(featureLine, {kLineClicks[0]}, true);
    const std::string name = CFlagAutoScaleSphereMeta::flag_feature_line_name_start.toStdString();
    const osg::ref_ptr<osg::Node> flag = findFeatureByName(name, m_scene.root(), featureLine);
    ASSERT_TRUE(flag);
    bool isTemporary = false;
    EXPECT_TRUE(flag->getUserValue("tmpData", isTemporary) && isTemporary);

    m_scene.showTemporary(featureLine, {}, true);
    EXPECT_FALSE(findFeatureByName(name, m_scene.root(), featureLine));
}

TEST_F(FeatureDocumentTest, TranslatesTheLabelsOfTheScene)
{
    m_document.create(featureDot, kDotClicks, true);
    installLabelLanguage(QLocale::German);
    m_scene.updateLanguage();
    const osg::ref_ptr<osgText::Text> text =
        dynamic_cast<CAutoScaleSphereMeta&>(*m_scene.nodeOf(feature(0))).getTextNode();
    EXPECT_EQ(QString::fromStdString(text->getText().createUTF8EncodedString()), "Punkt1");
    EXPECT_EQ(labelText(feature(0)), "Punkt1");
}

TEST_F(FeatureDocumentTest, MovesTheFeaturesWithTheMesh)
{
    m_document.create(featureDot, kDotClicks, true);
    m_scene.setMatrix(osg::Matrixd::translate(100, 0, 0));
    EXPECT_EQ(m_scene.bound().center(), osg::Vec3f(101, 2, 3));
}

TEST_F(FeatureDocumentTest, TheListShowsAndRenamesItsFeatures)
{
    const FeatureListModel list(m_document);
    FeatureListModel editable(m_document);
    createOneOfEach();
    ASSERT_EQ(list.rowCount(), 3);
    EXPECT_EQ(list.index(1, FeatureListModel::Measure).data().toString(), "5");
    EXPECT_EQ(list.index(2, FeatureListModel::Measure).data().toString(), "0.0000, 0.0000, 1.0000");
    EXPECT_EQ(list.index(0, FeatureListModel::Coordinates).data().toString(), "1, 2, 3");
    EXPECT_TRUE(editable.setData(editable.index(0, FeatureListModel::Label), "Datum", Qt::EditRole));
    EXPECT_EQ(list.index(0, FeatureListModel::Label).data().toString(), "Datum");
}

} // namespace
} // namespace viewer
