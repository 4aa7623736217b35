#include "PersistenceSupport.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QLocale>
#include <QProcess>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

// The file that a scene is saved as, and what of it comes back.

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

QByteArray stored(const char* name)
{
    QFile file(QStringLiteral(KELVOSGTOOLS_GOLDEN_DIR "/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The content of the only leaf of that name.
QByteArray leaf(const QByteArray& document, const QByteArray& name)
{
    const int start = document.indexOf("<" + name + ">") + name.size() + 2;
    return document.mid(start, document.indexOf("</" + name + ">") - start);
}

QByteArray savedDot(const DotRecord& dot, const TableRecord& table = {})
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    addDot(scene, dot, table);
    return savedBytes(scene);
}

QByteArray savedPlane(const std::vector<osg::Vec3f>& corners)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    addPlane(scene, planeOf(corners), {});
    return savedBytes(scene);
}

DotRecord dotOfRadius(float radius)
{
    DotRecord dot;
    dot.radius = radius;
    return dot;
}

float radiusComingBack(float radius)
{
    return imported(savedDot(dotOfRadius(radius))).getAutoScaleShpereMetaInfo().first().radius;
}

QString prefixComingBack(const QString& prefix)
{
    return imported(savedDot({}, tableOf(prefix))).getAutoScaleShpereTableInfo().first().tableNamePrefix;
}

bool haveSameBits(float a, float b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(FeatureFile, EqualsTheStoredFileByteForByte)
{
    EXPECT_EQ(savedBytes(sceneOf(2, 1, 1)), stored("two-dots-a-line-and-a-plane.xml"));
}

TEST(FeatureFile, HasStartAndEndTagsOfEmptySections)
{
    EXPECT_EQ(savedBytes(new osg::Group), stored("no-features.xml"));
}

TEST(FeatureFile, EndsWithOneEmptyLine)
{
    EXPECT_TRUE(savedBytes(new osg::Group).endsWith("    </contacts>\n</featureInfoXML>\n\n"));
}

struct NumberFormat
{
    const char* description;
    float value;
    const char* text;
};

class FeatureFileNumbers : public testing::TestWithParam<NumberFormat>
{};

TEST_P(FeatureFileNumbers, AreWrittenWithNineSignificantDigits)
{
    EXPECT_EQ(leaf(savedDot(dotOfRadius(GetParam().value)), "radius"), GetParam().text);
}

constexpr float kInfinity = std::numeric_limits<float>::infinity();
INSTANTIATE_TEST_SUITE_P(FeatureFile, FeatureFileNumbers,
                         testing::Values(NumberFormat{"OneTenth", 0.1f, "0.100000001"}, NumberFormat{"One", 1.0f, "1"},
                                         NumberFormat{"SevenTenths", 0.7f, "0.699999988"},
                                         NumberFormat{"SmallInExponentForm", 0.00001f, "9.99999975e-06"},
                                         NumberFormat{"LargeInExponentForm", 1e20f, "1.00000002e+20"},
                                         NumberFormat{"Negative", -3.0f, "-3"}, NumberFormat{"Zero", 0.0f, "0"},
                                         NumberFormat{"Infinity", kInfinity, "inf"},
                                         NumberFormat{"NegativeInfinity", -kInfinity, "-inf"},
                                         NumberFormat{"NoNumber", std::nanf(""), "nan"}),
                         [](const auto& variant) { return variant.param.description; });

TEST(FeatureFile, WritesNumbersAlikeInALocaleWithDecimalCommas)
{
    QLocale::setDefault(QLocale(QLocale::German));
    const QByteArray written = savedBytes(sceneOf(2, 1, 1));
    QLocale::setDefault(QLocale::c());
    EXPECT_EQ(written, stored("two-dots-a-line-and-a-plane.xml"));
}

TEST(FeatureFile, BringsBackFloatsBitForBit)
{
    std::mt19937 random(20240229);
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    std::vector<osg::Vec3f> points(20000);
    for (osg::Vec3f& point : points)
        for (int axis = 0; axis < 3;) {
            const auto bits = static_cast<std::uint32_t>(random());
            std::memcpy(&point[axis], &bits, sizeof bits);
            if (!std::isnan(point[axis]) && bits != 0x80000000) ++axis;
        }
    addPlane(scene, planeOf({points[0], points[1], points[2], points[3]}), {});
    for (std::size_t i = 4; i < points.size(); i += 2) {
        LineRecord line;
        line.isLineArrow = true; // the cheaper one to build
        line.startPos = points[i];
        line.endPos = points[i + 1];
        const osg::ref_ptr<CArrowMeta> arrow = new CArrowMeta(line);
        hang(scene, featureLine, arrow);
    }

    const importFeature importer = imported(savedBytes(scene));
    std::vector<osg::Vec3f> read = importer.getPlaneMetaInfo().first().pointVec;
    for (const LineRecord& line : importer.getArrowMetaInfo()) read.insert(read.end(), {line.startPos, line.endPos});
    ASSERT_EQ(read.size(), points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
        for (int axis = 0; axis < 3; ++axis)
            ASSERT_TRUE(haveSameBits(points[i][axis], read[i][axis])) << points[i][axis] << " " << read[i][axis];
}

TEST(FeatureFile, BringsBackTheSmallestFloat)
{
    const float smallest = std::numeric_limits<float>::denorm_min();
    EXPECT_EQ(radiusComingBack(smallest), smallest);
}

// Nine digits of the largest float are rounded upwards, out of the range of toFloat().
TEST(FeatureFile, BringsBackTheLargestFloatAsInfinity)
{
    EXPECT_EQ(radiusComingBack(std::numeric_limits<float>::max()), kInfinity);
}

TEST(FeatureFile, BringsBackNegativeZeroAsZero)
{
    EXPECT_TRUE(haveSameBits(radiusComingBack(-0.0f), 0.0f));
}

TEST(FeatureFile, BringsBackNoNumberAsNoNumber)
{
    EXPECT_TRUE(std::isnan(radiusComingBack(std::nanf("17"))));
}

struct Number
{
    const char* description;
    int value;
};

class FeatureFileIntegers : public testing::TestWithParam<Number>
{};

TEST_P(FeatureFileIntegers, ComeBackUnchanged)
{
    const importFeature importer = imported(savedDot({}, tableOf("Point", GetParam().value)));
    EXPECT_EQ(importer.getAutoScaleShpereTableInfo().first().tableNameIndexSuffix, GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(FeatureFile, FeatureFileIntegers,
                         testing::Values(Number{"MinusOne", -1}, Number{"Three", 3},
                                         Number{"Smallest", std::numeric_limits<int>::min()},
                                         Number{"Largest", std::numeric_limits<int>::max()}),
                         [](const auto& variant) { return variant.param.description; });

TEST(FeatureFile, EscapesMarkupInLabels)
{
    EXPECT_EQ(leaf(savedDot({}, tableOf("a&b<c>\"d'")), "tableNamePrefix"), "a&amp;b&lt;c&gt;&quot;d'");
}

struct Text
{
    const char* description;
    QString text;
};

class FeatureFileTexts : public testing::TestWithParam<Text>
{};

TEST_P(FeatureFileTexts, ComeBackUnchanged)
{
    EXPECT_EQ(prefixComingBack(GetParam().text), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(FeatureFile, FeatureFileTexts,
                         testing::Values(Text{"Empty", ""}, Text{"Markup", "&<>\"'"}, Text{"EntityLookalike", "&amp;"},
                                         Text{"EndOfCdata", "]]>"}, Text{"Blanks", "  a  b  "},
                                         Text{"OnlyBlanks", "   "}, Text{"TabAndLineFeed", "a\tb\nc"},
                                         Text{"CarriageReturn", "\ra\r\nb\r\r"},
                                         Text{"GreekAndChinese", QString::fromUtf8("Ω 点")},
                                         Text{"BeyondTheBasicPlane", QString::fromUtf8("𝛼")},
                                         Text{"Long", QString(1000000, 'x')}),
                         [](const auto& variant) { return variant.param.description; });

TEST(FeatureFile, BringsBackEveryCharacterThatXmlAllows)
{
    QString allowed = "\t\n\r";
    for (ushort c = 0x20; c < 0xFFFE; ++c)
        if (!QChar::isSurrogate(c)) allowed.append(QChar(c));
    for (const uint c : {0x10000u, 0x1FFFEu, 0x10FFFFu}) allowed.append(QString::fromUcs4(&c, 1));
    EXPECT_EQ(prefixComingBack(allowed), allowed);
}

class FeatureFileForbiddenCharacters : public testing::TestWithParam<Text>
{};

TEST_P(FeatureFileForbiddenCharacters, AreLeftOutAlone)
{
    const importFeature importer = imported(savedDot({}, tableOf("before" + GetParam().text + "after")));
    EXPECT_EQ(importer.getAutoScaleShpereTableInfo().first().tableNamePrefix, "beforeafter");
    EXPECT_EQ(importer.getAutoScaleShpereTableInfo().first().renderIndex, 1) << "read to the end of the record";
}

INSTANTIATE_TEST_SUITE_P(FeatureFile, FeatureFileForbiddenCharacters,
                         testing::Values(Text{"Null", QChar(0)}, Text{"Bell", QChar(7)}, Text{"Escape", QChar(0x1B)},
                                         Text{"VerticalTab", QChar(0xB)}, Text{"FormFeed", QChar(0xC)},
                                         Text{"LastControl", QChar(0x1F)}, Text{"NonCharacterFffe", QChar(0xFFFE)},
                                         Text{"NonCharacterFfff", QChar(0xFFFF)},
                                         Text{"LoneHighSurrogate", QChar(0xD800)},
                                         Text{"LoneLowSurrogate", QChar(0xDFFF)},
                                         Text{"SurrogatesInWrongOrder", QString(QChar(0xDC00)) + QChar(0xD800)}),
                         [](const auto& variant) { return variant.param.description; });

TEST(FeatureFile, DropsAHighSurrogateBeforeAWholePair)
{
    const QString pair = QString::fromUtf8("𝛼");
    EXPECT_EQ(prefixComingBack(QChar(0xD800) + pair + QChar(0xDC00)), pair);
}

TEST(FeatureFile, KeepsAllNamesAfterAForbiddenCharacter)
{
    EXPECT_EQ(savedDot({}, tableOf(QString("Point") + QChar(7))), savedDot({}, tableOf("Point")));
}

TEST(FeatureFile, HoldsAsManyCornersAsThePlane)
{
    const QByteArray three = savedPlane({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    EXPECT_EQ(leaf(three, "pointVec_0X") + leaf(three, "pointVec_1Y") + leaf(three, "pointVec_2Z"), "159");
    EXPECT_FALSE(three.contains("pointVec_3"));
    EXPECT_TRUE(savedPlane(std::vector<osg::Vec3f>(11)).contains("<pointVec_10Z>0</pointVec_10Z>"));
}

TEST(FeatureFile, BringsBackAPlaneOfThreeCornersWithAFourthAtTheOrigin)
{
    const std::vector<osg::Vec3f> read =
        imported(savedPlane({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}})).getPlaneMetaInfo().first().pointVec;
    EXPECT_EQ(read, (std::vector<osg::Vec3f>{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {0, 0, 0}}));
}

TEST(FeatureFile, BringsBackOnlyFourCornersOfAPlane)
{
    const std::vector<osg::Vec3f> read =
        imported(savedPlane(std::vector<osg::Vec3f>(12, osg::Vec3f(1, 1, 1)))).getPlaneMetaInfo().first().pointVec;
    EXPECT_EQ(read, std::vector<osg::Vec3f>(4, osg::Vec3f(1, 1, 1)));
}

TEST(FeatureFile, IsTheSameAfterLoadingAndSavingAgain)
{
    const QByteArray saved = savedBytes(sceneOf(5, 4, 3));
    EXPECT_EQ(savedBytes(sceneOfAll(imported(saved))), saved);
}

osg::ref_ptr<osg::Group> sceneWithPlaneOf(std::size_t corners)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    addPlane(scene, planeOf(std::vector<osg::Vec3f>(corners)), {});
    return scene;
}

osg::ref_ptr<osg::Group> sceneWithOddNumbers()
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (const float value : {kInfinity, -kInfinity, std::nanf(""), 1e-45f, 3e38f, -1e-6f})
        addDot(scene, dotOfRadius(value), tableOf("odd & <ends>"));
    return scene;
}

struct ValidScene
{
    const char* description;
    osg::ref_ptr<osg::Group> (*build)();
    int counter;
};

class FeatureFileSchema : public testing::TestWithParam<ValidScene>
{};

TEST_P(FeatureFileSchema, AcceptsTheFile)
{
    const TestFolder folder;
    const osg::ref_ptr<osg::Group> scene = GetParam().build();
    exportFeature exporter;
    exporter.getMetaStructInfo(scene);
    exporter.setFeatureTagCount(GetParam().counter, 0, 0);
    exporter.createXML(scene, folder.path(), "saved.xml");

    QProcess check;
    check.setProcessChannelMode(QProcess::MergedChannels);
    check.start(KELVOSGTOOLS_XMLLINT,
                {"--noout", "--nonet", "--schema", KELVOSGTOOLS_FEATURE_SCHEMA, folder.pathOf("saved.xml")});
    ASSERT_TRUE(check.waitForFinished());
    EXPECT_EQ(check.exitCode(), 0) << check.readAll().constData();
}

INSTANTIATE_TEST_SUITE_P(FeatureFile, FeatureFileSchema,
                         testing::Values(ValidScene{"WithoutFeatures", [] { return sceneOf(0, 0, 0); }, 0},
                                         ValidScene{"OfAllKinds", [] { return sceneOf(3, 2, 2); }, 3},
                                         ValidScene{"WithoutCounters", [] { return sceneOf(1, 1, 1); }, -1},
                                         ValidScene{"OfAPlaneWithoutCorners", [] { return sceneWithPlaneOf(0); }, 0},
                                         ValidScene{"OfAPlaneWithThreeCorners", [] { return sceneWithPlaneOf(3); }, 0},
                                         ValidScene{"OfAPlaneWithSevenCorners", [] { return sceneWithPlaneOf(7); }, 0},
                                         ValidScene{"OfOddNumbers", sceneWithOddNumbers, 0}),
                         [](const auto& variant) { return variant.param.description; });

TEST(FeatureFileSchemaItself, RejectsALeafInTheWrongPlace)
{
    const TestFolder folder;
    folder.write("wrong.xml", savedBytes(sceneOf(1, 0, 0)).replace("radius>", "ratio>"));
    EXPECT_NE(QProcess::execute(KELVOSGTOOLS_XMLLINT, {"--noout", "--nonet", "--schema", KELVOSGTOOLS_FEATURE_SCHEMA,
                                                       folder.pathOf("wrong.xml")}),
              0);
}

} // namespace
