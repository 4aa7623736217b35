#include "FeatureListModel.h"
#include "MeasureScene.h"
#include "Measuring.h"
#include "ViewportWidget.h"
#include "viewer/WindowDriver.h"

#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QUrl>

namespace viewer {
namespace {

using namespace KelvOsgTools;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using viewertest::WindowDriver;

const osg::Vec3f kLeft(-70, -40, 10); // on the top of the plate
const osg::Vec3f kRight(70, -40, 10);
const osg::Vec3f kMiddle(0, -40, 10);
const osg::Vec3f kBehind(52, 0, 10);
constexpr float kPixelInMesh = 0.6f; // a window position is that exact; the plate is seen at a slant

class ViewerWindowTest : public ::testing::Test
{
protected:
    ViewerWindowTest() { m_driver.openMesh(*viewertest::samplePart()); }

    const std::vector<Feature>& features() { return m_driver.document().features(); }

    void place(Qt::Key tool, const std::vector<osg::Vec3f>& points)
    {
        m_driver.press(tool);
        for (const osg::Vec3f& point : points) m_driver.clickPoint(point);
        m_driver.press(Qt::Key_S);
        m_driver.moveTo(kCorner);
    }

    osg::ref_ptr<osg::Node> flag(const QString& name, featureType kind)
    {
        return findFeatureByName(name.toStdString(), m_driver.window().scene().root(), kind);
    }

    /// The colour in the middle between two pixels is that of one of them: looks at all around.
    bool isSeenAt(const osg::Vec3f& point, bool (*hasColour)(const QColor&))
    {
        const QImage picture = m_driver.picture();
        const QPoint middle = m_driver.positionOf(point) * m_driver.viewport().devicePixelRatio();
        for (int dx = -2; dx <= 2; ++dx)
            for (int dy = -2; dy <= 2; ++dy)
                if (hasColour(picture.pixelColor(middle + QPoint(dx, dy)))) return true;
        return false;
    }

    static bool isOrange(const QColor& c) { return c.red() > c.green() + 40 && c.green() > c.blue() + 30; }
    static bool isBlue(const QColor& c) { return c.blue() > c.red() + 120; }
    static bool isGreen(const QColor& c) { return c.green() > c.red() + 60 && c.green() > c.blue() + 40; }
    static bool isRed(const QColor& c)
    {
        return c.red() > 120 && c.green() < 0.45 * c.red() && c.blue() < 0.5 * c.red();
    }

    const QPoint kCorner{5, 5}; // beside mesh and features
    WindowDriver m_driver;
};

TEST_F(ViewerWindowTest, PlacesADotWhereTheMeshIsClicked)
{
    place(Qt::Key_D, {kLeft});
    ASSERT_THAT(features(), SizeIs(1));
    EXPECT_LT((features()[0].points[0] - kLeft).length(), kPixelInMesh);
    EXPECT_TRUE(isSeenAt(features()[0].points[0], isOrange));
}

TEST_F(ViewerWindowTest, PlacesALineOfTwoClicks)
{
    place(Qt::Key_L, {kLeft, kRight});
    ASSERT_THAT(features(), SizeIs(1));
    EXPECT_NEAR((features()[0].points[1] - features()[0].points[0]).length(), 140.0f, 2 * kPixelInMesh);
    EXPECT_TRUE(isSeenAt((kLeft * 3 + kRight) / 4, isBlue)); // beside the label
}

TEST_F(ViewerWindowTest, PlacesAPlaneOfThreeClicksWithItsNormal)
{
    place(Qt::Key_P, {{20, -45, 10}, {54, -45, 10}, {52, -20, 10}});
    ASSERT_THAT(features(), SizeIs(1));
    EXPECT_LT((normalOf(features()[0].points) - osg::Vec3f(0, 0, 1)).length(), 0.01f);
    EXPECT_TRUE(isSeenAt({40, -45, 10}, isRed)); // its border
}

TEST_F(ViewerWindowTest, MakesNoFeatureBesideTheMesh)
{
    m_driver.press(Qt::Key_D);
    m_driver.click(kCorner);
    EXPECT_THAT(features(), IsEmpty());
}

TEST_F(ViewerWindowTest, SnapsTheEndOfALineToADot)
{
    place(Qt::Key_D, {kLeft});
    place(Qt::Key_L, {kLeft, kRight});
    EXPECT_EQ(features()[1].points[0], features()[0].points[0]);
}

TEST_F(ViewerWindowTest, FlagsTheClickedPointsWhileAToolWaits)
{
    m_driver.press(Qt::Key_L);
    m_driver.clickPoint(kLeft);
    EXPECT_TRUE(flag(CFlagAutoScaleSphereMeta::flag_feature_line_name_start, featureLine));
    EXPECT_TRUE(isSeenAt(kLeft, isRed));
    m_driver.clickPoint(kRight);
    m_driver.moveTo(kCorner);
    EXPECT_FALSE(flag(CFlagAutoScaleSphereMeta::flag_feature_line_name_start, featureLine));
}

TEST_F(ViewerWindowTest, PreviewsTheLineToTheCursor)
{
    m_driver.press(Qt::Key_L);
    m_driver.clickPoint(kLeft);
    m_driver.moveTo(m_driver.positionOf(kRight));
    EXPECT_TRUE(isSeenAt((kLeft * 3 + kRight) / 4, isBlue));
    m_driver.moveTo(m_driver.positionOf({-70, 40, 10}));
    EXPECT_FALSE(isSeenAt((kLeft * 3 + kRight) / 4, isBlue));
    EXPECT_THAT(features(), IsEmpty());
}

TEST_F(ViewerWindowTest, EscapeForgetsTheClicksAndThenTheTool)
{
    m_driver.press(Qt::Key_L);
    m_driver.clickPoint(kLeft);
    m_driver.press(Qt::Key_Escape);
    EXPECT_FALSE(flag(CFlagAutoScaleSphereMeta::flag_feature_line_name_start, featureLine));
    EXPECT_EQ(m_driver.window().measuring().tool().kind(), ToolKind::Line);
    m_driver.press(Qt::Key_Escape);
    EXPECT_EQ(m_driver.window().measuring().tool().kind(), ToolKind::Select);
}

TEST_F(ViewerWindowTest, HighlightsTheFeatureUnderTheCursor)
{
    place(Qt::Key_L, {kLeft, kRight});
    m_driver.moveTo(m_driver.positionOf((kLeft * 3 + kRight) / 4));
    EXPECT_EQ(m_driver.document().state(0), featureStateHighlighted);
    EXPECT_TRUE(isSeenAt((kLeft * 3 + kRight) / 4, isGreen));
    m_driver.moveTo(kCorner);
    EXPECT_EQ(m_driver.document().state(0), featureStateNormal);
    EXPECT_TRUE(isSeenAt((kLeft * 3 + kRight) / 4, isBlue));
}

TEST_F(ViewerWindowTest, HighlightsTheFeatureWhoseLabelIsUnderTheCursor)
{
    place(Qt::Key_D, {kLeft});
    constexpr int kIntoLabel = 20; // upwards from the dot, in pixels of the device
    m_driver.moveTo(m_driver.positionOf(features()[0].points[0]) -
                    QPoint(0, int(kIntoLabel / m_driver.viewport().devicePixelRatioF())));
    EXPECT_EQ(m_driver.document().state(0), featureStateHighlighted);
}

TEST_F(ViewerWindowTest, SelectsWhatIsClickedInListAndView)
{
    place(Qt::Key_L, {kLeft, kRight});
    m_driver.click(m_driver.positionOf((kLeft * 3 + kRight) / 4));
    EXPECT_TRUE(m_driver.window().list().selectionModel()->isRowSelected(0, {}));
    EXPECT_TRUE(isSeenAt((kLeft * 3 + kRight) / 4, isRed));
    m_driver.click(kCorner);
    EXPECT_FALSE(m_driver.window().list().selectionModel()->hasSelection());
}

TEST_F(ViewerWindowTest, ShowsInTheViewWhatIsSelectedInTheList)
{
    place(Qt::Key_D, {kLeft, kRight});
    m_driver.window().list().selectRow(1);
    EXPECT_EQ(m_driver.document().state(1), featureStateSelected);
    EXPECT_TRUE(isSeenAt(features()[1].points[0], isRed));
    EXPECT_FALSE(isSeenAt(features()[0].points[0], isRed));
}

TEST_F(ViewerWindowTest, DeletesTheSelectionAndUndoesIt)
{
    place(Qt::Key_L, {kLeft, kRight});
    m_driver.click(m_driver.positionOf((kLeft * 3 + kRight) / 4));
    m_driver.press(Qt::Key_Delete);
    EXPECT_THAT(features(), IsEmpty());
    EXPECT_FALSE(isSeenAt((kLeft * 3 + kRight) / 4, isRed));
    m_driver.press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_THAT(features(), SizeIs(1));
    m_driver.moveTo(kCorner);
    EXPECT_TRUE(isSeenAt((kLeft * 3 + kRight) / 4, isBlue));
}

TEST_F(ViewerWindowTest, SelectsAPlaneThatLiesOnTheMesh)
{
    place(Qt::Key_P, {{20, -45, 10}, {54, -45, 10}, {52, -20, 10}});
    m_driver.click(m_driver.positionOf({48, -40, 10}));
    EXPECT_EQ(m_driver.document().state(0), featureStateSelected);
}

TEST_F(ViewerWindowTest, BringsSavedFeaturesBack)
{
    place(Qt::Key_D, {kLeft});
    place(Qt::Key_L, {kLeft, kRight});
    place(Qt::Key_P, {kMiddle, kBehind, kRight});
    const std::vector<Feature> saved = features();
    const QString file = QDir(m_driver.folder()).filePath("features.xml");
    ASSERT_TRUE(m_driver.window().saveFeatures(file));
    EXPECT_FALSE(m_driver.window().isWindowModified());
    m_driver.document().clear();
    EXPECT_FALSE(isSeenAt(kLeft, isOrange));
    ASSERT_TRUE(m_driver.window().openFeatures(file));
    ASSERT_THAT(features(), SizeIs(3));
    for (std::size_t i = 0; i < saved.size(); ++i) EXPECT_TRUE(isSameMeasurement(features()[i], saved[i])) << i;
    EXPECT_TRUE(isSeenAt(saved[0].points[0], isOrange));
}

TEST_F(ViewerWindowTest, SwitchesTheLanguageOfLabelsAndList)
{
    place(Qt::Key_D, {kLeft});
    const QImage english = m_driver.picture();
    m_driver.window().setLanguage(QLocale::Chinese);
    const QString label = m_driver.window().list().model()->index(0, FeatureListModel::Label).data().toString();
    EXPECT_EQ(label, QString::fromUtf8("点1"));
    EXPECT_NE(m_driver.picture(), english);
    m_driver.window().setLanguage(QLocale::English);
    EXPECT_EQ(m_driver.picture(), english);
}

TEST_F(ViewerWindowTest, HidesTheFeaturesOfAKind)
{
    place(Qt::Key_D, {kLeft});
    m_driver.press(Qt::Key_1, Qt::ControlModifier);
    EXPECT_FALSE(isSeenAt(features()[0].points[0], isOrange));
    m_driver.moveTo(m_driver.positionOf(features()[0].points[0]));
    EXPECT_EQ(m_driver.document().state(0), featureStateNormal);
    m_driver.press(Qt::Key_1, Qt::ControlModifier);
    m_driver.moveTo(kCorner);
    EXPECT_TRUE(isSeenAt(features()[0].points[0], isOrange));
}

TEST_F(ViewerWindowTest, ZoomsToTheCursor)
{
    const QPoint before = m_driver.positionOf(kRight);
    m_driver.wheel(before, 4);
    EXPECT_LE((m_driver.positionOf(kRight) - before).manhattanLength(), 2);
    EXPECT_GT((m_driver.positionOf(kLeft) - before).manhattanLength(), 700);
}

TEST_F(ViewerWindowTest, TurnsWithALeftDragAndShiftsWithAMiddleOne)
{
    m_driver.press(Qt::Key_D);
    const osg::Vec3d look = m_driver.viewport().camera().lookVector();
    m_driver.drag({100, 100}, {200, 130});
    EXPECT_GT((m_driver.viewport().camera().lookVector() - look).length(), 0.1);
    const QPoint before = m_driver.positionOf(m_driver.viewport().camera().centre());
    m_driver.drag({100, 100}, {150, 130}, Qt::MiddleButton);
    EXPECT_THAT(features(), IsEmpty()); // a drag is no click
    EXPECT_NE(m_driver.positionOf(kRight), before);
}

TEST_F(ViewerWindowTest, ShowsThePickedCoordinatesInTheStatusBar)
{
    m_driver.moveTo(m_driver.positionOf(kRight));
    const QString text = m_driver.window().findChild<QLabel*>("coordinates")->text();
    const QStringList numbers = text.section(':', 1).split(',');
    ASSERT_EQ(numbers.size(), 3);
    EXPECT_NEAR(numbers[0].toDouble(), 70.0, kPixelInMesh);
    m_driver.moveTo(kCorner);
    EXPECT_TRUE(m_driver.window().findChild<QLabel*>("coordinates")->text().isEmpty());
}

TEST_F(ViewerWindowTest, RenamesALabelInTheList)
{
    place(Qt::Key_D, {kLeft});
    m_driver.window().list().selectRow(0);
    m_driver.press(Qt::Key_F2);
    auto* const editor = m_driver.window().list().findChild<QLineEdit*>();
    ASSERT_TRUE(editor);
    editor->setText("Datum");
    QTest::keyClick(editor, Qt::Key_Return);
    QTest::qWait(0); // lists take what was entered once the key was handled
    EXPECT_EQ(labelText(features()[0]), "Datum");
}

TEST_F(ViewerWindowTest, CopiesTheCoordinatesOfTheSelection)
{
    place(Qt::Key_D, {kLeft});
    m_driver.window().list().selectRow(0);
    m_driver.press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_NEAR(QApplication::clipboard()->text().section('\t', 0, 0).toDouble(), kLeft.x(), kPixelInMesh);
}

TEST_F(ViewerWindowTest, FliesToASelectedFeature)
{
    place(Qt::Key_D, {kLeft});
    m_driver.window().list().selectRow(0);
    m_driver.press(Qt::Key_Space);
    const QPoint middle = m_driver.viewport().rect().center();
    EXPECT_LE((m_driver.positionOf(features()[0].points[0]) - middle).manhattanLength(), 2);
}

/// Answers the next message box, and tells what it said.
class BoxAnswer
{
public:
    explicit BoxAnswer(QMessageBox::StandardButton button)
    {
        QTimer::singleShot(0, [this, button] { answer(button); });
    }

    QString text;

private:
    void answer(QMessageBox::StandardButton button)
    {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box) {
            QTimer::singleShot(10, [this, button] { answer(button); });
            return;
        }
        text = box->text() + box->informativeText();
        box->button(button)->click();
    }
};

TEST_F(ViewerWindowTest, AsksBeforeUnsavedFeaturesAreLost)
{
    place(Qt::Key_D, {kLeft});
    const BoxAnswer cancel(QMessageBox::Cancel);
    EXPECT_FALSE(m_driver.window().close());
    EXPECT_TRUE(m_driver.window().isVisible());
    EXPECT_FALSE(cancel.text.isEmpty());
    const BoxAnswer discard(QMessageBox::Discard);
    EXPECT_TRUE(m_driver.window().close());
}

TEST_F(ViewerWindowTest, TellsWhyAMeshCannotBeRead)
{
    const QString path = QDir(m_driver.folder()).filePath("broken.stl");
    QFile broken(path);
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("no mesh at all");
    broken.close();
    osg::Node* const before = m_driver.window().scene().mesh();
    const BoxAnswer box(QMessageBox::Ok);
    m_driver.window().openMesh(path);
    ASSERT_TRUE(QTest::qWaitFor([&box] { return !box.text.isEmpty(); }, 20000));
    EXPECT_TRUE(box.text.contains("broken.stl")) << qPrintable(box.text);
    EXPECT_EQ(m_driver.window().scene().mesh(), before);
}

TEST_F(ViewerWindowTest, OpensAMeshThatIsDroppedOnIt)
{
    const QString path = viewertest::writeMesh(*viewertest::bumpySquare(4), m_driver.folder(), "dropped.stl");
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    QSignalSpy shown(&m_driver.window(), &MainWindow::meshShown);
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&m_driver.window(), &enter);
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&m_driver.window(), &drop);
    EXPECT_TRUE(shown.wait(20000));
    EXPECT_TRUE(m_driver.window().windowTitle().contains("dropped.stl"));
}

TEST_F(ViewerWindowTest, RemembersTheLastFiles)
{
    const QStringList files = QSettings().value("recentFiles").toStringList();
    ASSERT_FALSE(files.isEmpty());
    EXPECT_EQ(QFileInfo(files.first()).fileName(), "mesh.osgb");
}

TEST_F(ViewerWindowTest, UsesNewColoursForWhatIsSelectedNext)
{
    place(Qt::Key_L, {kLeft, kRight});
    ViewerSettings settings;
    settings.colours[ViewerSettings::Lines].selected = Qt::green;
    m_driver.window().setSettings(settings);
    m_driver.click(m_driver.positionOf((kLeft * 3 + kRight) / 4));
    EXPECT_TRUE(isSeenAt((kLeft * 3 + kRight) / 4, isGreen));
    m_driver.window().setSettings(ViewerSettings());
}

} // namespace
} // namespace viewer
