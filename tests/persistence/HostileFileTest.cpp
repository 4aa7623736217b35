#include "PersistenceSupport.h"

#include <gtest/gtest.h>

#include <QFile>

#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <ctime>
#include <thread>

// Files that are damaged, or made to harm.

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

const QByteArray kDotAndTable = "<structSphereMeta><radius>7</radius></structSphereMeta><structTableMeta/>";

int dotsOf(const importFeature& importer)
{
    return importer.getAutoScaleShpereMetaInfo().size();
}

int tablesOf(const importFeature& importer)
{
    return importer.getAutoScaleShpereTableInfo().size();
}

/// How often an element ends in a document.
int countOfEnds(const QByteArray& document, const char* name)
{
    return document.count("</" + QByteArray(name) + ">");
}

TEST(HostileFile, KeepsEveryWholeRecordWhereverTheFileIsCutOff)
{
    const QByteArray whole = savedBytes(sceneOf(2, 1, 1));
    const LoggedMessages silence;
    for (int length = 0; length < whole.size(); ++length) {
        const QByteArray part = whole.left(length);
        const importFeature importer = imported(part);
        ASSERT_EQ(dotsOf(importer), countOfEnds(part, "structSphereMeta")) << length;
        ASSERT_EQ(importer.getArrowMetaInfo().size(), countOfEnds(part, "structArrowMeta")) << length;
        ASSERT_EQ(importer.getPlaneMetaInfo().size(), countOfEnds(part, "structPlaneMeta")) << length;
        ASSERT_EQ(tablesOf(importer) + importer.getArrowTableInfo().size() + importer.getPlaneTableInfo().size(),
                  countOfEnds(part, "structTableMeta"))
            << length;
    }
}

struct Damage
{
    const char* description;
    QByteArray bytes; // of a whole dot with its label, then an error, then another pair
};

class HostileFileWithError : public testing::TestWithParam<Damage>
{};

TEST_P(HostileFileWithError, IsReadUpToTheError)
{
    const LoggedMessages messages;
    const importFeature importer = imported(GetParam().bytes);
    EXPECT_EQ(messages.all().mid(messages.all().size() - 2), (QStringList{"true", "exportFeature : read finished."}));
    EXPECT_EQ(dotsOf(importer), 1);
    EXPECT_EQ(tablesOf(importer), 1);
}

INSTANTIATE_TEST_SUITE_P(
    HostileFile, HostileFileWithError,
    testing::Values(
        Damage{"InASection", "<dotFeatureInfo>" + kDotAndTable + "</x>" + kDotAndTable + "</dotFeatureInfo>"},
        Damage{"InADot",
               "<dotFeatureInfo>" + kDotAndTable + "<structSphereMeta></x>" + kDotAndTable + "</dotFeatureInfo>"},
        Damage{"InALabel",
               "<dotFeatureInfo>" + kDotAndTable + "<structTableMeta></x>" + kDotAndTable + "</dotFeatureInfo>"},
        Damage{"InALeaf", "<dotFeatureInfo>" + kDotAndTable + "<structSphereMeta><radius>1</structSphereMeta>" +
                              kDotAndTable + "</dotFeatureInfo>"},
        Damage{"InTheCounters", "<a><dotFeatureInfo>" + kDotAndTable +
                                    "</dotFeatureInfo><featureTagCountInfo></x><dotFeatureInfo>" + kDotAndTable +
                                    "</dotFeatureInfo></a>"},
        Damage{"BetweenSections", "<a><dotFeatureInfo>" + kDotAndTable + "</dotFeatureInfo>&x<dotFeatureInfo>" +
                                      kDotAndTable + "</dotFeatureInfo></a>"},
        Damage{"AfterTheEnd", "<dotFeatureInfo>" + kDotAndTable + "</dotFeatureInfo><dotFeatureInfo>" + kDotAndTable +
                                  "</dotFeatureInfo>"},
        Damage{"OfAForbiddenCharacter",
               "<dotFeatureInfo>" + kDotAndTable + "\x01" + kDotAndTable + "</dotFeatureInfo>"}),
    [](const auto& variant) { return variant.param.description; });

TEST(HostileFile, LeavesOutARecordThatIsCutOff)
{
    const importFeature importer = imported("<dotFeatureInfo>" + kDotAndTable + "<structSphereMeta><radius>8</radius>");
    EXPECT_EQ(dotsOf(importer), 1);
}

TEST(HostileFile, LeavesOutALabelThatIsCutOff)
{
    const importFeature importer = imported("<dotFeatureInfo>" + kDotAndTable + "<structTableMeta><posX>8</posX>");
    EXPECT_EQ(tablesOf(importer), 1);
}

struct Bytes
{
    const char* description;
    QByteArray bytes;
};

class HostileFileWithoutRecords : public testing::TestWithParam<Bytes>
{};

TEST_P(HostileFileWithoutRecords, GivesNone)
{
    const LoggedMessages messages;
    const importFeature importer = imported(GetParam().bytes);
    EXPECT_EQ(messages.all().last(), "exportFeature : read finished.");
    EXPECT_EQ(dotsOf(importer) + tablesOf(importer), 0);
}

INSTANTIATE_TEST_SUITE_P(HostileFile, HostileFileWithoutRecords,
                         testing::Values(Bytes{"Empty", ""}, Bytes{"Zeros", QByteArray(10000, '\0')},
                                         Bytes{"Text", "no markup at all"},
                                         Bytes{"HighBytes", QByteArray(10000, '\xFF')},
                                         Bytes{"OnlyADeclaration", "<?xml version='1.0'?>"},
                                         Bytes{"UnknownEncoding", "<?xml version='1.0' encoding='x-none'?><a/>"}),
                         [](const auto& variant) { return variant.param.description; });

QByteArray dotWithPrefix(const QByteArray& prefix)
{
    return "<dotFeatureInfo><structSphereMeta/><structTableMeta><tableNamePrefix>" + prefix +
           "</tableNamePrefix></structTableMeta></dotFeatureInfo>";
}

TEST(HostileFile, ExpandsNoEntityFromAnotherFile)
{
    const TestFolder folder;
    folder.write("secret", "secret");
    const QByteArray declaration =
        "<!DOCTYPE a [<!ENTITY e SYSTEM 'file://" + folder.pathOf("secret").toUtf8() + "'>]>";
    const importFeature importer = imported(declaration + dotWithPrefix("a&e;b"));
    ASSERT_EQ(tablesOf(importer), 1);
    EXPECT_EQ(importer.getAutoScaleShpereTableInfo().first().tableNamePrefix, "ab");
}

QByteArray dotWithEntityInPrefix(const QByteArray& value)
{
    return "<!DOCTYPE a [<!ENTITY e '" + value + "'>]>" + dotWithPrefix("&e;");
}

TEST(HostileFile, ExpandsAShortEntityOfItsOwn)
{
    const importFeature importer = imported(dotWithEntityInPrefix("Point"));
    ASSERT_EQ(tablesOf(importer), 1);
    EXPECT_EQ(importer.getAutoScaleShpereTableInfo().first().tableNamePrefix, "Point");
}

TEST(HostileFile, RefusesAnEntityMuchLongerThanItsReference)
{
    EXPECT_EQ(tablesOf(imported(dotWithEntityInPrefix(QByteArray(100, 'x')))), 0);
}

TEST(HostileFile, RefusesEntitiesThatMultiplyText)
{
    QByteArray declarations = "<!ENTITY e0 'ha'>";
    for (int i = 1; i < 40; ++i) {
        const QByteArray previous = "&e" + QByteArray::number(i - 1) + ";";
        declarations += "<!ENTITY e" + QByteArray::number(i) + " '" + previous + previous + "'>";
    }
    const importFeature importer = imported("<!DOCTYPE a [" + declarations + "]>" + dotWithPrefix("&e39;"));
    EXPECT_EQ(tablesOf(importer), 0);
}

TEST(HostileFile, RefusesAnEndlessDocumentTypeDeclaration)
{
    QByteArray attributes;
    for (int i = 0; i < 10000; ++i) attributes += " a" + QByteArray::number(i) + " CDATA 'v'";
    EXPECT_EQ(dotsOf(imported("<!DOCTYPE a [<!ATTLIST a" + attributes + ">]>" + dotWithPrefix("a"))), 0);
}

TEST(HostileFile, FindsSectionsThatAreDeeplyNested)
{
    const int depth = 90000;
    const LoggedMessages silence;
    const importFeature importer =
        imported(QByteArray("<a>").repeated(depth) + dotWithPrefix("a") + QByteArray("</a>").repeated(depth));
    EXPECT_EQ(dotsOf(importer), 1);
}

TEST(HostileFile, RefusesNestingWithoutEnd)
{
    const LoggedMessages messages;
    const importFeature importer =
        imported("<a>" + dotWithPrefix("a") + QByteArray("<a>").repeated(1000000) + dotWithPrefix("b"));
    EXPECT_EQ(dotsOf(importer), 1);
    EXPECT_LT(messages.all().size(), 110000);
}

TEST(HostileFile, RefusesATagWithAttributesWithoutEnd)
{
    QByteArray attributes;
    for (int i = 0; i < 300000; ++i) attributes += " a" + QByteArray::number(i) + "=''";
    const importFeature importer =
        imported("<a>" + dotWithPrefix("a") + "<b" + attributes + "/>" + dotWithPrefix("b") + "</a>");
    EXPECT_EQ(dotsOf(importer), 1);
}

TEST(HostileFile, TakesALabelOfMegabytes)
{
    const QByteArray prefix(3 * 1024 * 1024, 'x');
    const importFeature importer = imported(dotWithPrefix(prefix));
    ASSERT_EQ(tablesOf(importer), 1);
    EXPECT_EQ(importer.getAutoScaleShpereTableInfo().first().tableNamePrefix, QString::fromLatin1(prefix));
}

/// What is read through a pipe that gives start, and then filler up to a gigabyte if it is wanted.
importFeature importedWithEndlessText(const QByteArray& start, const QByteArray& filler)
{
    const TestFolder folder;
    const QString name = folder.pathOf("pipe");
    mkfifo(name.toLocal8Bit().constData(), 0600);
    std::signal(SIGPIPE, SIG_IGN);
    std::thread writer([&] {
        QFile pipe(name);
        pipe.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
        pipe.write(start);
        const QByteArray piece = filler.repeated(65536 / filler.size());
        for (qint64 sent = 0; sent < 1 << 30; sent += piece.size())
            if (pipe.write(piece) < 0) return;
    });
    importFeature importer;
    importer.getFeatureInfoIntoXML(folder.path(), "pipe");
    writer.join();
    return importer;
}

long peakMemoryKilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

struct EndlessText
{
    const char* description;
    const char* start;
    const char* filler;
};

class HostileFileOfAGigabyte : public testing::TestWithParam<EndlessText>
{};

TEST_P(HostileFileOfAGigabyte, IsReadInBoundedMemoryAndKeepsTheRecordsBefore)
{
    const long before = peakMemoryKilobytes();
    const importFeature importer =
        importedWithEndlessText("<a><dotFeatureInfo>" + kDotAndTable + GetParam().start, GetParam().filler);
    EXPECT_EQ(dotsOf(importer), 1);
    EXPECT_EQ(tablesOf(importer), 1);
    EXPECT_LT(peakMemoryKilobytes() - before, 256 * 1024);
}

INSTANTIATE_TEST_SUITE_P(HostileFile, HostileFileOfAGigabyte,
                         testing::Values(EndlessText{"InAPrefix", "<structTableMeta><tableNamePrefix>", "x"},
                                         EndlessText{"InANumber", "<structSphereMeta><radius>", "1"},
                                         EndlessText{"BetweenRecords", "", " "}, EndlessText{"InAComment", "<!--", "x"},
                                         EndlessText{"InAnAttribute", "<x y='", "z"}, EndlessText{"InAName", "<", "n"},
                                         EndlessText{"InCdata", "<![CDATA[", "x"},
                                         EndlessText{"OfReferences", "", "&#49;"}, EndlessText{"OfNesting", "", "<q>"},
                                         EndlessText{"OfInstructions", "<?p ", "x"}),
                         [](const auto& variant) { return variant.param.description; });

TEST(HostileFile, IsReadThroughManyGoodRecordsWhateverTheirNumber)
{
    const int pairs = 50000;
    const importFeature importer = imported("<dotFeatureInfo>" + kDotAndTable.repeated(pairs) + "</dotFeatureInfo>");
    EXPECT_EQ(dotsOf(importer), pairs);
    EXPECT_EQ(tablesOf(importer), pairs);
}

/// Seconds of processor time that reading takes, the shortest of some runs.
double secondsToRead(const QByteArray& piece, int pieces)
{
    const QByteArray document = "<a>" + piece.repeated(pieces) + "</a>";
    double best = 1e9;
    for (int run = 0; run < 3; ++run) {
        const std::clock_t start = std::clock();
        imported(document);
        best = std::min(best, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    return best;
}

class HostileFileOfGrowingSize : public testing::TestWithParam<Bytes>
{};

// Sixteen times the size: linear time is sixteen times as long, quadratic time 256 times.
TEST_P(HostileFileOfGrowingSize, TakesTimeInProportion)
{
    const LoggedMessages silence;
    const QByteArray& piece = GetParam().bytes;
    const int pieces = 200000 / piece.size();
    EXPECT_LT(secondsToRead(piece, 16 * pieces), 64 * (secondsToRead(piece, pieces) + 0.001));
}

INSTANTIATE_TEST_SUITE_P(HostileFile, HostileFileOfGrowingSize,
                         testing::Values(Bytes{"OfRecords", "<dotFeatureInfo>" + kDotAndTable + "</dotFeatureInfo>"},
                                         Bytes{"OfUnknownElements", "<x y='z'/>"}, Bytes{"OfText", "text"},
                                         Bytes{"OfReferences", "&amp;"},
                                         Bytes{"OfNestedNamespaces", "<x xmlns:a='b' xml:c='d'>"},
                                         Bytes{"OfNumbers", "<dotFeatureInfo><structSphereMeta><radius>" +
                                                                QByteArray(5000, '1') +
                                                                "</radius></structSphereMeta></dotFeatureInfo>"}),
                         [](const auto& variant) { return variant.param.description; });

} // namespace
