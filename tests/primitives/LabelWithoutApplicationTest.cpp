#include "support/Config.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <gtest/gtest.h>

#include <osg/io_utils>

#include <QCoreApplication>
#include <QFontMetrics>
#include <QGuiApplication>

#include <cmath>

// This program has a main of its own: its tests run without an application object of Qt, or bring
// one of their own.
namespace {
using namespace KelvOsgTools;

struct MeasuredLabel
{
    explicit MeasuredLabel(const QString& text) : table(new CTableMeta(kelvtest::labelSaying(text)))
    {
        const auto* const fill = kelvtest::firstBelow<osg::Geometry>(*table, "squareNode");
        const auto& corners = dynamic_cast<const osg::Vec2Array&>(*fill->getVertexArray());
        left = corners[1].x();
        bottom = corners[1].y();
        right = corners[3].x();
        top = corners[3].y();
        drawn = kelvtest::firstBelow<osgText::Text>(*table, "textNode")->getBoundingBox();
    }

    osg::ref_ptr<CTableMeta> table;
    float left = 0.0f;
    float bottom = 0.0f;
    float right = 0.0f;
    float top = 0.0f;
    osg::BoundingBox drawn;
};

void expectRectangleOfTheLaidOutText(const MeasuredLabel& label)
{
    EXPECT_FLOAT_EQ(label.left, -label.right);
    EXPECT_EQ(label.bottom, 10.0f);
    EXPECT_EQ(label.right - label.left, std::ceil(label.drawn.xMax() - label.drawn.xMin()));
    EXPECT_EQ(label.top - label.bottom, std::ceil(label.drawn.yMax() - label.drawn.yMin()));
}

TEST(LabelWithoutApplication, IsMeasuredFromItsLaidOutText)
{
    ASSERT_EQ(QCoreApplication::instance(), nullptr);
    const kelvtest::RestoredConfig config;
    config->setFontPath(QStringLiteral(KELVOSGTOOLS_TEST_FONT));
    const MeasuredLabel label(QStringLiteral("Gap 12"));
    expectRectangleOfTheLaidOutText(label);
    EXPECT_GT(label.right, 10.0f);
    EXPECT_GT(label.top, 18.0f);
}

TEST(LabelWithoutApplication, GrowsWithItsText)
{
    EXPECT_GT(MeasuredLabel(QStringLiteral("a longer text")).right, MeasuredLabel(QStringLiteral("text")).right);
}

TEST(LabelWithoutApplication, IsMeasuredFromItsLaidOutTextUnderAnApplicationWithoutFonts)
{
    int count = 1;
    char name[] = "program";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(count, arguments);
    expectRectangleOfTheLaidOutText(MeasuredLabel(QStringLiteral("Gap 12")));
}

TEST(LabelWithoutApplication, MakesWholeFeatures)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    EXPECT_NE(kelvtest::addDot(scene, "dot"), nullptr);
    EXPECT_NE(kelvtest::addFlagDot(scene, "flag"), nullptr);
    EXPECT_NE(kelvtest::addLine(scene, "line"), nullptr);
    EXPECT_NE(kelvtest::addPlane(scene, "plane"), nullptr);
    for (CTableMeta* label : kelvtest::nodesOfType<CTableMeta>(*scene)) label->updateLanguage();
    EXPECT_TRUE(kelvtest::isFiniteEverywhere(*scene));
}

TEST(LabelWithoutApplication, StandsWithABlankText)
{
    const MeasuredLabel label(QStringLiteral(" "));
    EXPECT_TRUE(std::isfinite(label.right));
    EXPECT_GT(label.top, 10.0f);
}

TEST(LabelBuiltAfterTheApplication, IsMeasuredInTheFontFileThatWasSetBefore)
{
    const kelvtest::RestoredConfig config;
    config->setFontPath(QStringLiteral(KELVOSGTOOLS_OTHER_TEST_FONT));
    int count = 1;
    char name[] = "program";
    char* arguments[] = {name, nullptr};
    const QGuiApplication application(count, arguments);
    const QString text = QStringLiteral("Wide mill 123");
    const MeasuredLabel label(text);
    const QFontMetrics metrics(QFont(QStringLiteral("DejaVu Sans Mono"), 14));
    EXPECT_EQ(label.right - label.left, static_cast<float>(metrics.horizontalAdvance(text)));
    EXPECT_EQ(label.top - label.bottom, static_cast<float>(metrics.height()));
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
