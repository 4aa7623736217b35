#include "support/Config.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/CTableMeta.h>

#include <gtest/gtest.h>

#include <osg/io_utils>
#include <osgText/Font>

#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QFontMetrics>
#include <QTemporaryDir>

namespace {
using namespace KelvOsgTools;

const QString kText = QStringLiteral("Wide mill 123");

/// Width and height of the rectangle of a label that says kText in the configured font.
std::pair<int, int> measuredExtent()
{
    const osg::ref_ptr<CTableMeta> table = new CTableMeta(kelvtest::labelSaying(kText));
    const auto* const fill = kelvtest::firstBelow<osg::Geometry>(*table, "squareNode");
    const auto& corners = dynamic_cast<const osg::Vec2Array&>(*fill->getVertexArray());
    return {static_cast<int>(corners[3].x() - corners[0].x()), static_cast<int>(corners[0].y() - corners[1].y())};
}

/// What Qt says of kText in a family.
std::pair<int, int> extentIn(const QString& family)
{
    const QFontMetrics metrics(QFont(family, 14));
    return {metrics.horizontalAdvance(kText), metrics.height()};
}

/// File of the font that a label draws with; empty for the default font.
std::string drawnFontFile()
{
    const osg::ref_ptr<CTableMeta> table = new CTableMeta(kelvtest::labelSaying(kText));
    const osgText::Font* const font = kelvtest::firstBelow<osgText::Text>(*table, "textNode")->getFont();
    return font ? font->getFileName() : std::string();
}

/// Path of another font file of the folder that the test font lies in.
QString siblingFont(const char* file)
{
    return QFileInfo(QStringLiteral(KELVOSGTOOLS_TEST_FONT)).path() + QLatin1Char('/') + QLatin1String(file);
}

struct FontFile
{
    const char* file;
    const char* family;
};

void PrintTo(const FontFile& font, std::ostream* stream)
{
    *stream << font.file;
}

class LabelFont : public ::testing::TestWithParam<FontFile>
{};

TEST_P(LabelFont, IsMeasuredInTheFamilyOfItsFile)
{
    const kelvtest::RestoredConfig config;
    ASSERT_NE(extentIn(GetParam().family), extentIn(QString())) << "the test needs a font unlike the default one";
    config->setFontPath(siblingFont(GetParam().file));
    EXPECT_EQ(measuredExtent(), extentIn(GetParam().family));
}

TEST_P(LabelFont, IsDrawnFromItsFile)
{
    const kelvtest::RestoredConfig config;
    config->setFontPath(siblingFont(GetParam().file));
    EXPECT_EQ(QFileInfo(QString::fromStdString(drawnFontFile())).fileName(), QLatin1String(GetParam().file));
}

TEST_P(LabelFont, KeepsItsPathAsItWasSet)
{
    const kelvtest::RestoredConfig config;
    config->setFontPath(siblingFont(GetParam().file));
    EXPECT_EQ(config->getFontPath(), siblingFont(GetParam().file));
}

INSTANTIATE_TEST_SUITE_P(Files, LabelFont,
                         ::testing::Values(FontFile{"DejaVuSerif.ttf", "DejaVu Serif"},
                                           FontFile{"DejaVuSansMono.ttf", "DejaVu Sans Mono"}));

TEST(LabelFont, TakesAFileWhosePathIsNotAscii)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("Schrift für 测量.ttf"));
    ASSERT_TRUE(QFile::copy(siblingFont("DejaVuSansMono.ttf"), path));
    const kelvtest::RestoredConfig config;
    config->setFontPath(path);
    EXPECT_EQ(measuredExtent(), extentIn("DejaVu Sans Mono"));
    EXPECT_EQ(drawnFontFile(), path.toStdString());
}

TEST(LabelFont, TakesAFileWhosePathHoldsACommaOrBrackets)
{
    const QTemporaryDir folder;
    for (const char* const name : {"a, b.ttf", "a [b].ttf", "a 'b'.ttf"}) {
        const QString path = folder.filePath(QLatin1String(name));
        ASSERT_TRUE(QFile::copy(siblingFont("DejaVuSansMono.ttf"), path));
        const kelvtest::RestoredConfig config;
        config->setFontPath(path);
        EXPECT_EQ(measuredExtent(), extentIn("DejaVu Sans Mono")) << name;
    }
}

TEST(LabelFont, TakesAFamilyForMeasuring)
{
    const kelvtest::RestoredConfig config;
    config->setFontPath(QStringLiteral("DejaVu Serif"));
    EXPECT_EQ(measuredExtent(), extentIn("DejaVu Serif"));
}

TEST(LabelFont, IsTheDefaultOneWithoutAPath)
{
    const kelvtest::RestoredConfig config;
    config->setFontPath(QString());
    EXPECT_EQ(measuredExtent(), extentIn(QString()));
}

TEST(LabelFont, MayChangeBetweenLabels)
{
    const kelvtest::RestoredConfig config;
    config->setFontPath(siblingFont("DejaVuSerif.ttf"));
    measuredExtent();
    config->setFontPath(siblingFont("DejaVuSansMono.ttf"));
    EXPECT_EQ(measuredExtent(), extentIn("DejaVu Sans Mono"));
    config->setFontPath(siblingFont("DejaVuSerif.ttf"));
    EXPECT_EQ(measuredExtent(), extentIn("DejaVu Serif"));
}

TEST(LabelFont, IsReadAnewWhenTheLanguageIsUpdated)
{
    const kelvtest::RestoredConfig config;
    const osg::ref_ptr<CTableMeta> table = new CTableMeta(kelvtest::labelSaying(kText));
    config->setFontPath(siblingFont("DejaVuSansMono.ttf"));
    table->updateLanguage();
    const auto* const fill = kelvtest::firstBelow<osg::Geometry>(*table, "squareNode");
    const auto& corners = dynamic_cast<const osg::Vec2Array&>(*fill->getVertexArray());
    EXPECT_EQ(static_cast<int>(corners[3].x() * 2.0f), extentIn("DejaVu Sans Mono").first);
}

enum class Defect
{
    Missing,
    Empty,
    Broken,
    Folder
};

void PrintTo(Defect defect, std::ostream* stream)
{
    const char* const names[] = {"missing", "empty", "broken", "folder"};
    *stream << names[static_cast<int>(defect)];
}

class DefectiveFontFile : public ::testing::TestWithParam<Defect>
{
protected:
    QString path() const
    {
        if (GetParam() == Defect::Folder) return m_folder.path();
        const QString path = m_folder.filePath(QStringLiteral("font.ttf"));
        if (GetParam() == Defect::Missing) return path;
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        if (GetParam() == Defect::Broken) file.write(QByteArray("\0\1\0\0 no font at all", 19).repeated(10));
        return path;
    }

private:
    QTemporaryDir m_folder;
};

TEST_P(DefectiveFontFile, GivesAReadableLabelInTheDefaultFont)
{
    const kelvtest::RestoredConfig config;
    config->setFontPath(path());
    const osg::ref_ptr<CTableMeta> table = new CTableMeta(kelvtest::labelSaying(kText));
    const auto* const text = kelvtest::firstBelow<osgText::Text>(*table, "textNode");
    EXPECT_EQ(kelvtest::textOf(*text), kText);
    EXPECT_GT(text->getBoundingBox().xMax() - text->getBoundingBox().xMin(), 50.0f);
    EXPECT_EQ(measuredExtent(), extentIn(QStringLiteral("a family that Qt does not know")));
}

INSTANTIATE_TEST_SUITE_P(Defects, DefectiveFontFile,
                         ::testing::Values(Defect::Missing, Defect::Empty, Defect::Broken, Defect::Folder));

} // namespace
