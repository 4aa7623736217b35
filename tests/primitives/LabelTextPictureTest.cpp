#include <KelvOsgTools/CTableMeta.h>

#include "support/PictureRig.h"
#include "support/PictureScenes.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTemporaryFile>
#include <QTranslator>

#include <climits>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

/// Glyph edges, should another version of the font library round them otherwise: a tenth of what
/// one other letter changes in these pictures.
constexpr Tolerance kGlyphEdges{48, 0.002};
constexpr int kStroke = 110; // thin strokes of small glyphs never reach their full colour over the fill

osg::ref_ptr<osg::Image> pictureOf(CTableMeta* label, int width = 160, int height = 50)
{
    PictureRig rig(width, height);
    label->setPosition(osg::Vec3d(0, -height / 2, 0));
    rig.setScene(groupOf({label}));
    return rig.render();
}

osg::ref_ptr<osg::Image> pictureOf(const QString& prefix, int suffix)
{
    CTableMeta::structTableMeta meta = blueOnYellow(prefix);
    meta.tableNameIndexSuffix = suffix;
    return pictureOf(osg::ref_ptr<CTableMeta>(new CTableMeta(meta)));
}

/// What is written inside the label, without its outline.
osg::ref_ptr<osg::Image> insideOf(const osg::Image& picture)
{
    return cut(picture, boxOfColour(picture, kLabelFill).shrunk(1));
}

// What is written

struct LabelText
{
    const char* name;
    QString prefix;
    int suffix;
    QString whole; // as the prefix of a label without number
};

class LabelTextOf : public PictureTest, public ::testing::WithParamInterface<LabelText>
{};

TEST_P(LabelTextOf, IsPrefixAndNumber)
{
    const osg::ref_ptr<osg::Image> expected = pictureOf(GetParam().whole, -1);
    EXPECT_GT(countPixels(*insideOf(*expected), kLabelInk, kStroke), 0);
    // The same text is drawn the same, bit by bit.
    EXPECT_TRUE(alike(*pictureOf(GetParam().prefix, GetParam().suffix), *expected,
                      std::string("label-text-") + GetParam().name, {0, 0.0}));
}

INSTANTIATE_TEST_SUITE_P(Texts, LabelTextOf,
                         ::testing::Values(LabelText{"PrefixAndNumber", "P", 12, "P12"},
                                           LabelText{"PrefixAndZero", "P", 0, "P0"},
                                           LabelText{"PrefixAndNegative", "P", -2, "P-2"},
                                           LabelText{"PrefixAndLargest", "P", INT_MAX, "P2147483647"},
                                           LabelText{"PrefixAndSmallest", "P", INT_MIN, "P-2147483648"},
                                           LabelText{"NumberAlone", "", 7, "7"}, LabelText{"Nothing", "", -1, "Table"}),
                         [](const auto& test) { return test.param.name; });

class LabelTextPicture : public PictureTest
{};

TEST_F(LabelTextPicture, TellsOneTextFromAnother)
{
    EXPECT_FALSE(alike(*pictureOf("P", 12), *pictureOf("P", 13), "label-text-other", {48, 0.002})); // as in kGlyphEdges
}

TEST_F(LabelTextPicture, SpreadsALongTextToBothSidesOfTheAnchor)
{
    const osg::ref_ptr<CTableMeta> label = new CTableMeta(blueOnYellow(QString("long ").repeated(200)));
    const osg::ref_ptr<osg::Image> picture = pictureOf(label);
    const PixelBox fill = boxOfColour(*picture, kLabelFill);
    EXPECT_EQ(fill.left, 0);
    EXPECT_EQ(fill.right, picture->s() - 1);
    EXPECT_GT(countPixels(*insideOf(*picture), kLabelInk, kStroke), 200);
}

// Translation

/// Translates "Point" to a word of choice.
class PointTranslator : public QTranslator
{
public:
    explicit PointTranslator(QString word) : m_word(std::move(word)) { QCoreApplication::installTranslator(this); }
    ~PointTranslator() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* text, const char*, int) const override
    {
        return QString(context) == "QObject" && QString(text) == "Point" ? m_word : QString();
    }

private:
    QString m_word;
};

TEST_F(LabelTextPicture, ShowsTheTranslatedPrefix)
{
    const osg::ref_ptr<osg::Image> expected = pictureOf("Messpunkt", 3);
    const PointTranslator german("Messpunkt");
    EXPECT_TRUE(alike(*pictureOf("Point", 3), *expected, "label-translated", {0, 0.0})); // the same text
}

TEST_F(LabelTextPicture, ChangesTextAndRectangleWithUpdateLanguageAndKeepsItsState)
{
    CTableMeta::structTableMeta meta = blueOnYellow("Messpunkt");
    meta.tableNameIndexSuffix = 3;
    const osg::ref_ptr<CTableMeta> written = new CTableMeta(meta);
    written->setState(featureStateSelected);
    meta.tableNamePrefix = "Point";
    const osg::ref_ptr<CTableMeta> translated = new CTableMeta(meta);
    translated->setState(featureStateSelected);
    const osg::ref_ptr<osg::Image> before = pictureOf(translated);

    const PointTranslator german("Messpunkt");
    EXPECT_TRUE(alike(*pictureOf(translated), *before, "label-not-yet-translated", {0, 0.0})); // not asked to yet
    translated->updateLanguage();
    translated->setPosition(osg::Vec3d());
    EXPECT_TRUE(alike(*pictureOf(translated), *pictureOf(written), "label-updated", {0, 0.0})); // the same text
}

TEST_F(LabelTextPicture, KeepsItsLanguageInTheScaledLayout)
{
    CTableMeta::structTableMeta meta = blueOnYellow("Point");
    meta.isAutoScale = false;
    const osg::ref_ptr<CTableMeta> label = new CTableMeta(meta);
    const osg::ref_ptr<osg::Image> before = pictureOf(label);

    const PointTranslator german("Messpunkt");
    label->updateLanguage();
    EXPECT_TRUE(alike(*pictureOf(label), *before, "label-scaled-language", {0, 0.0})); // nothing changed
}

// Scripts

struct Script
{
    const char* name;
    const char* text; // UTF-8
    const char* fontFile;
};

class LabelInScript : public PictureTest, public ::testing::WithParamInterface<Script>
{
protected:
    void SetUp() override
    {
        if (GetParam().fontFile[0] == '\0') GTEST_SKIP() << "no font for it here: install fonts-noto-cjk";
        CFeatureConfig::sigleFeatureConfig()->setFontPath(GetParam().fontFile);
    }
};

TEST_P(LabelInScript, LooksAsStored)
{
    const osg::ref_ptr<CTableMeta> label = new CTableMeta(blueOnYellow(QString::fromUtf8(GetParam().text), 16));
    EXPECT_TRUE(
        matchesStored(*pictureOf(label), std::string("primitives/label-script-") + GetParam().name, kGlyphEdges));
}

TEST_P(LabelInScript, IsNotDrawnInBoxesForUnknownCharacters)
{
    const QString text = QString::fromUtf8(GetParam().text);
    const QString unknown(text.size(), QChar(0xE123)); // in no font
    const osg::ref_ptr<osg::Image> known = pictureOf(new CTableMeta(blueOnYellow(text, 16)));
    const osg::ref_ptr<osg::Image> boxes = pictureOf(new CTableMeta(blueOnYellow(unknown, 16)));
    EXPECT_FALSE(alike(*known, *boxes, std::string("label-script-boxes-") + GetParam().name, {100, 0.01}));
}

INSTANTIATE_TEST_SUITE_P(Scripts, LabelInScript,
                         ::testing::Values(Script{"latin", "Größe Łódź", KELVOSGTOOLS_TEST_FONT},
                                           Script{"greek", "Σημείο Άξων", KELVOSGTOOLS_TEST_FONT},
                                           Script{"cyrillic", "Точка Ёж", KELVOSGTOOLS_TEST_FONT},
                                           Script{"arabic", "نقطة", KELVOSGTOOLS_TEST_FONT},
                                           Script{"combining", "A\u030Angstro\u0308m e\u0301", KELVOSGTOOLS_TEST_FONT},
                                           Script{"chinese", "测量点 平面", KELVOSGTOOLS_TEST_CJK_FONT}),
                         [](const auto& test) { return test.param.name; });

// Fonts

class LabelFontPicture : public PictureTest
{
protected:
    /// The label in the font of that path: something is written, and it stays inside.
    static void expectReadable(const QString& fontPath)
    {
        CFeatureConfig::sigleFeatureConfig()->setFontPath(fontPath);
        const osg::ref_ptr<osg::Image> picture = pictureOf(new CTableMeta(blueOnYellow("Point 12", 16)));
        const osg::ref_ptr<osg::Image> inside = insideOf(*picture);
        const PixelBox ink = boxOfDifference(*inside, kLabelFill, 100);
        EXPECT_GT(countPixels(*inside, kLabelInk, kStroke), 60);
        EXPECT_GT(ink.width(), 40);
        EXPECT_GE(ink.height(), 10);
        EXPECT_EQ(boxOfDifference(*picture, kWhite).width(), inside->s() + 4); // two for either outline
    }
};

TEST_F(LabelFontPicture, IsReadableInAFontFile)
{
    expectReadable(KELVOSGTOOLS_TEST_FONT);
}

TEST_F(LabelFontPicture, IsReadableWithoutAFontPath)
{
    expectReadable({});
}

TEST_F(LabelFontPicture, IsReadableWhenTheFontFileIsMissing)
{
    expectReadable("/no/such/font.ttf");
}

TEST_F(LabelFontPicture, IsReadableWhenTheFontFileIsBroken)
{
    QTemporaryFile broken("brokenXXXXXX.ttf");
    ASSERT_TRUE(broken.open());
    broken.write("This is no font.");
    broken.close();
    expectReadable(broken.fileName());
}

TEST_F(LabelFontPicture, ChangesWithTheFontPath)
{
    const osg::ref_ptr<osg::Image> inFile = pictureOf("Point", 12);
    CFeatureConfig::sigleFeatureConfig()->setFontPath({});
    EXPECT_FALSE(alike(*pictureOf("Point", 12), *inFile, "label-other-font", {48, 0.002})); // as in kGlyphEdges
}

TEST_F(LabelFontPicture, IsDrawnInAHugeSize)
{
    const osg::ref_ptr<CTableMeta> label = new CTableMeta(blueOnYellow("I", 120));
    const osg::ref_ptr<osg::Image> picture = pictureOf(label, 120, 200);
    const osg::ref_ptr<osg::Image> inside = insideOf(*picture);
    EXPECT_NEAR(boxOfColour(*inside, kLabelInk, kStroke).height(), 0.73 * 120, 3); // capitals of this font; soft edges
}

} // namespace
