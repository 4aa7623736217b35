#include "PersistenceSupport.h"

#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/NodeVisitors.h>

#include <osg/MatrixTransform>

#include <gtest/gtest.h>

#include <QLocale>

#include <cmath>
#include <limits>

namespace KelvOsgTools::detail {

/// Reaches the path from an exporter to an importer that goes without a file.
class ImportFeatureAccess
{
public:
    static void takeOver(importFeature& importer, exportFeature* source) { importer.setFeatureStructInfo(source); }
};

} // namespace KelvOsgTools::detail

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

const char* const kReadFinished = "exportFeature : read finished.";

QByteArray element(const QByteArray& name, const QByteArray& content)
{
    return "<" + name + ">" + content + "</" + name + ">";
}

QByteArray dotSection(const QByteArray& content)
{
    return element("dotFeatureInfo", content);
}

DotRecord dotRead(const QByteArray& leaves)
{
    return imported(dotSection(element("structSphereMeta", leaves))).getAutoScaleShpereMetaInfo().value(0);
}

LineRecord lineRead(const QByteArray& leaves)
{
    return imported(element("lineFeatureInfo", element("structArrowMeta", leaves))).getArrowMetaInfo().value(0);
}

PlaneRecord planeRead(const QByteArray& leaves)
{
    return imported(element("planeFeatureInfo", element("structPlaneMeta", leaves))).getPlaneMetaInfo().value(0);
}

TableRecord tableRead(const QByteArray& leaves)
{
    return imported(dotSection(element("structTableMeta", leaves))).getAutoScaleShpereTableInfo().value(0);
}

QList<int> countersOf(importFeature importer)
{
    int dot = -1, line = -1, plane = -1;
    importer.getFeatureTagCount(dot, line, plane);
    return {dot, line, plane};
}

QList<int> countersRead(const QByteArray& leaves)
{
    return countersOf(imported(element("featureTagCountInfo", leaves)));
}

/// The lengths of the six lists.
QList<int> lengthsOf(const importFeature& importer)
{
    return {importer.getAutoScaleShpereMetaInfo().size(), importer.getAutoScaleShpereTableInfo().size(),
            importer.getArrowMetaInfo().size(),           importer.getArrowTableInfo().size(),
            importer.getPlaneMetaInfo().size(),           importer.getPlaneTableInfo().size()};
}

QStringList logOfReading(const QByteArray& bytes)
{
    const LoggedMessages messages;
    imported(bytes);
    return messages.all();
}

/// The features under the root of a kind; empty if there is no such root.
std::vector<osg::ref_ptr<osg::Node>> features(const osg::ref_ptr<osg::Group>& scene, featureType kind)
{
    FindFeatureNodeVisitor search({kind});
    if (const auto root = findOrCreateFeatureRootNode(scene, kind, false)) root->accept(search);
    return search.m_foundNodes;
}

// Reading: what is logged, what is replaced

TEST(ImportFeature, SaysWhichSectionsItFinds)
{
    EXPECT_EQ(logOfReading(savedBytes(sceneOf(1, 1, 1))),
              (QStringList{"featureInfoXML", "contacts", "exportFeature : find  text featureInfo.",
                           "exportFeature : find  text dotFeatureInfo.", "exportFeature : find  text lineFeatureInfo.",
                           "exportFeature : find  text planeFeatureInfo.",
                           "exportFeature : find  text featureTagCountInfo.", kReadFinished}));
}

TEST(ImportFeature, NamesUnknownElementsOutsideSectionsOnly)
{
    EXPECT_EQ(logOfReading("<a><b c='d'/><dotFeatureInfo><e/></dotFeatureInfo><f/></a>"),
              (QStringList{"a", "b", "exportFeature : find  text dotFeatureInfo.", "f", kReadFinished}));
}

struct Place
{
    const char* description;
    const char* path;
    const char* name;
};

class ImportFeatureWithoutPlace : public testing::TestWithParam<Place>
{};

TEST_P(ImportFeatureWithoutPlace, ReadsNothingAndSaysSo)
{
    const LoggedMessages messages;
    importFeature importer = importFeature();
    importer.getFeatureInfoIntoXML(GetParam().path, GetParam().name);
    EXPECT_EQ(messages.all(), QStringList("importFeature : file is not exists."));
}

INSTANTIATE_TEST_SUITE_P(ImportFeature, ImportFeatureWithoutPlace,
                         testing::Values(Place{"NoFolder", "", "a.xml"}, Place{"NoName", "/", ""}),
                         [](const auto& variant) { return variant.param.description; });

TEST(ImportFeature, DoesNotTakeFeatureMarkForAnEmptyName)
{
    const TestFolder folder;
    folder.write("featureMark", savedBytes(sceneOf(1, 0, 0)));
    importFeature importer;
    importer.getFeatureInfoIntoXML(folder.path(), "");
    EXPECT_TRUE(importer.getAutoScaleShpereMetaInfo().isEmpty());
}

TEST(ImportFeature, SaysThatItCannotOpenAMissingFile)
{
    const TestFolder folder;
    const LoggedMessages messages;
    importFeature importer;
    importer.getFeatureInfoIntoXML(folder.path(), "missing.xml");
    EXPECT_EQ(messages.all(), QStringList("importFeature : cann't open file."));
}

TEST(ImportFeature, KeepsWhatItHoldsWhenAFileCannotBeOpened)
{
    importFeature importer = imported(savedBytes(sceneOf(3, 2, 1)));
    importer.getFeatureInfoIntoXML("/", "no such file");
    importer.getFeatureInfoIntoXML("", "");
    EXPECT_EQ(lengthsOf(importer), QList<int>({3, 3, 2, 2, 1, 1}));
    EXPECT_EQ(countersOf(importer), QList<int>({4, 5, 6}));
}

TEST(ImportFeature, ReplacesWhatItHeldByTheNextFile)
{
    const TestFolder folder;
    folder.write("next.xml", dotSection("<structSphereMeta/>"));
    importFeature importer = imported(savedBytes(sceneOf(3, 2, 1)));
    importer.getFeatureInfoIntoXML(folder.path(), "next.xml");
    EXPECT_EQ(lengthsOf(importer), QList<int>({1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(countersOf(importer), QList<int>({0, 0, 0}));
}

TEST(ImportFeature, BringsBackListsAndCountersOfASavedScene)
{
    const importFeature importer = imported(savedBytes(sceneOf(3, 2, 1)));
    EXPECT_EQ(lengthsOf(importer), QList<int>({3, 3, 2, 2, 1, 1}));
    EXPECT_EQ(countersOf(importer), QList<int>({4, 5, 6}));
}

TEST(ImportFeature, StartsEmpty)
{
    EXPECT_EQ(lengthsOf(importFeature()), QList<int>({0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(countersOf(importFeature()), QList<int>({0, 0, 0}));
}

TEST(ImportFeature, CopiesWithAllItHolds)
{
    const importFeature original = imported(savedBytes(sceneOf(3, 2, 1)));
    const importFeature copy(original);
    importFeature assigned;
    assigned = original;
    for (const importFeature& each : {copy, assigned}) {
        EXPECT_EQ(lengthsOf(each), lengthsOf(original));
        EXPECT_EQ(countersOf(each), countersOf(original));
    }
}

TEST(ImportFeature, GivesBackDefaultNamesBecauseFilesCarryNone)
{
    const importFeature importer = imported(savedBytes(sceneOf(1, 1, 1)));
    EXPECT_EQ(importer.getAutoScaleShpereMetaInfo().first().nodeName, DotRecord().nodeName);
    EXPECT_EQ(importer.getArrowMetaInfo().first().name, LineRecord().name);
    EXPECT_EQ(importer.getPlaneMetaInfo().first().name, "planeMeta");
}

// Where sections stand

struct SectionPlace
{
    const char* description;
    const char* before;
    const char* after;
};

class ImportFeatureSections : public testing::TestWithParam<SectionPlace>
{};

TEST_P(ImportFeatureSections, AreFound)
{
    const QByteArray sections = element("featureTagCountInfo", "<planeTagCount>3</planeTagCount>") +
                                element("planeFeatureInfo", "<structPlaneMeta/><structTableMeta/>") +
                                dotSection("<structSphereMeta/><structTableMeta/>") +
                                element("lineFeatureInfo", "<structArrowMeta/><structTableMeta/>");
    const importFeature importer = imported(GetParam().before + sections + GetParam().after);
    EXPECT_EQ(lengthsOf(importer), QList<int>({1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(countersOf(importer), QList<int>({0, 0, 3}));
}

INSTANTIATE_TEST_SUITE_P(
    ImportFeature, ImportFeatureSections,
    testing::Values(SectionPlace{"DirectlyUnderAnyRoot", "<any>", "</any>"},
                    SectionPlace{"DeepInside", "<a><b><c><d>", "</d></c></b></a>"},
                    SectionPlace{"WithoutContacts", "<featureInfoXML><featureInfo>", "</featureInfo></featureInfoXML>"},
                    SectionPlace{"AfterADeclarationAndComments",
                                 "<?xml version='1.0'?><!-- a --><?b c?><!DOCTYPE a><a><![CDATA[<x>]]>text", "</a>"},
                    SectionPlace{"InANamespace", "<a xmlns='urn:b' xmlns:c='urn:d'>", "</a>"}),
    [](const auto& variant) { return variant.param.description; });

TEST(ImportFeature, FindsASectionThatIsTheRoot)
{
    EXPECT_EQ(lengthsOf(imported(dotSection("<structSphereMeta/>"))), QList<int>({1, 0, 0, 0, 0, 0}));
}

TEST(ImportFeature, AppendsWhatRepeatedSectionsHold)
{
    const QByteArray section = dotSection("<structSphereMeta/><structTableMeta/>");
    EXPECT_EQ(lengthsOf(imported(element("a", section + section))), QList<int>({2, 2, 0, 0, 0, 0}));
}

TEST(ImportFeature, PassesOverRecordsOfAnotherKindInASection)
{
    EXPECT_EQ(lengthsOf(imported(dotSection("<structArrowMeta/><structPlaneMeta/><structSphereMeta/>"))),
              QList<int>({1, 0, 0, 0, 0, 0}));
}

TEST(ImportFeature, CollectsRecordsAndLabelsOfASectionInAnyOrder)
{
    const importFeature importer =
        imported(dotSection("<structTableMeta/><structTableMeta/>" + element("structSphereMeta", "<radius>1</radius>") +
                            "<x/>" + element("structSphereMeta", "<radius>2</radius>")));
    EXPECT_EQ(lengthsOf(importer), QList<int>({2, 2, 0, 0, 0, 0}));
    EXPECT_EQ(importer.getAutoScaleShpereMetaInfo().last().radius, 2.0f);
}

// Leaves of the records

TEST(ImportFeature, ReadsTheLeavesOfADotInAnyOrder)
{
    const DotRecord dot = dotRead("<colorW>9</colorW><colorZ>8</colorZ><colorY>7</colorY><colorX>6</colorX>"
                                  "<ratio>5</ratio><radius>4</radius>"
                                  "<cneterPosZ>3</cneterPosZ><cneterPosY>2</cneterPosY><cneterPosX>1</cneterPosX>");
    EXPECT_EQ(dot.cneterPos, osg::Vec3f(1, 2, 3));
    EXPECT_EQ(dot.radius, 4.0f);
    EXPECT_EQ(dot.ratio, 5.0f);
    EXPECT_EQ(dot.color, osg::Vec4f(6, 7, 8, 9));
}

TEST(ImportFeature, ReadsTheLeavesOfALineInAnyOrder)
{
    const LineRecord line = lineRead("<ratio>12</ratio><radius>11</radius><colorW>10</colorW><colorZ>9</colorZ>"
                                     "<colorY>8</colorY><colorX>7</colorX><endPosZ>6</endPosZ><endPosY>5</endPosY>"
                                     "<endPosX>4</endPosX><startPosZ>3</startPosZ><startPosY>2</startPosY>"
                                     "<startPosX>1</startPosX>");
    EXPECT_EQ(line.startPos, osg::Vec3f(1, 2, 3));
    EXPECT_EQ(line.endPos, osg::Vec3f(4, 5, 6));
    EXPECT_EQ(line.color, osg::Vec4f(7, 8, 9, 10));
    EXPECT_EQ(line.radius, 11.0f);
    EXPECT_EQ(line.ratio, 12.0f);
}

TEST(ImportFeature, ReadsTheLeavesOfAPlaneInAnyOrder)
{
    const PlaneRecord plane = planeRead(
        "<pointVec_3Z>24</pointVec_3Z><pointVec_0X>13</pointVec_0X><pointVec_1Y>17</pointVec_1Y>"
        "<alpha>11</alpha><planeNormalZ>10</planeNormalZ><planeNormalY>9</planeNormalY><planeNormalX>8</planeNormalX>"
        "<lineWidth>7</lineWidth><lineColorZ>6</lineColorZ><lineColorY>5</lineColorY><lineColorX>4</lineColorX>"
        "<planeColorZ>3</planeColorZ><planeColorY>2</planeColorY><planeColorX>1</planeColorX>");
    EXPECT_EQ(plane.planeColor, osg::Vec3f(1, 2, 3));
    EXPECT_EQ(plane.lineColor, osg::Vec3f(4, 5, 6));
    EXPECT_EQ(plane.lineWidth, 7.0f);
    EXPECT_EQ(plane.planeNormal, osg::Vec3f(8, 9, 10));
    EXPECT_EQ(plane.alpha, 11.0f);
    EXPECT_EQ(plane.pointVec, (std::vector<osg::Vec3f>{{13, 0, 0}, {0, 17, 0}, {0, 0, 0}, {0, 0, 24}}));
}

TEST(ImportFeature, ReadsTheLeavesOfALabelInAnyOrder)
{
    const TableRecord table = tableRead(
        "<isBottom>1</isBottom><isAutoScale>0</isAutoScale><renderIndex>12</renderIndex>"
        "<tableNameIndexSuffix>11</tableNameIndexSuffix><tableNamePrefix>Plane</tableNamePrefix>"
        "<backgroundColorZ>10</backgroundColorZ><backgroundColorY>9</backgroundColorY>"
        "<backgroundColorX>8</backgroundColorX><posZ>7</posZ><posY>6</posY><posX>5</posX>"
        "<textColorW>4</textColorW><textColorZ>3</textColorZ><textColorY>2</textColorY><textColorX>1</textColorX>");
    EXPECT_EQ(table.textColor, osg::Vec4f(1, 2, 3, 4));
    EXPECT_EQ(table.pos, osg::Vec3f(5, 6, 7));
    EXPECT_EQ(table.backgroundColor, osg::Vec3f(8, 9, 10));
    EXPECT_EQ(table.tableNamePrefix, "Plane");
    EXPECT_EQ(table.tableNameIndexSuffix, 11);
    EXPECT_EQ(table.renderIndex, 12);
    EXPECT_FALSE(table.isAutoScale);
    EXPECT_TRUE(table.isBottom);
}

TEST(ImportFeature, GivesDefaultsForTheMissingLeavesOfADot)
{
    const DotRecord dot = dotRead("<cneterPosY>2</cneterPosY>");
    EXPECT_EQ(dot.cneterPos, osg::Vec3f(0, 2, 0));
    EXPECT_EQ(dot.radius, DotRecord().radius);
    EXPECT_EQ(dot.color, DotRecord().color);
}

TEST(ImportFeature, GivesDefaultsForTheMissingLeavesOfALine)
{
    const LineRecord line = lineRead("<endPosX>2</endPosX>");
    EXPECT_EQ(line.endPos, osg::Vec3f(2, 0, 0));
    EXPECT_EQ(line.ratio, LineRecord().ratio);
    EXPECT_EQ(line.isLineArrow, LineRecord().isLineArrow);
}

TEST(ImportFeature, GivesDefaultsForTheMissingLeavesOfAPlaneAndFourCorners)
{
    const PlaneRecord plane = planeRead("");
    EXPECT_EQ(plane.planeColor, PlaneRecord().planeColor);
    EXPECT_EQ(plane.alpha, PlaneRecord().alpha);
    EXPECT_EQ(plane.pointVec, std::vector<osg::Vec3f>(4));
}

TEST(ImportFeature, GivesDefaultsForTheMissingLeavesOfALabel)
{
    const TableRecord table = tableRead("<posX>1</posX>");
    EXPECT_EQ(table.tableNamePrefix, "Table");
    EXPECT_EQ(table.tableNameIndexSuffix, -1);
    EXPECT_EQ(table.renderIndex, 1);
    EXPECT_TRUE(table.isAutoScale);
}

TEST(ImportFeature, LetsTheLastOfRepeatedLeavesWin)
{
    EXPECT_EQ(dotRead("<radius>4</radius><ratio>2</ratio><radius>5</radius>").radius, 5.0f);
}

TEST(ImportFeature, SkipsUnknownLeaves)
{
    const DotRecord dot = dotRead("<unknown>1</unknown><Radius>2</Radius><radius2>3</radius2><radius>4</radius><x/>");
    EXPECT_EQ(dot.radius, 4.0f);
}

TEST(ImportFeature, SkipsCornersBeyondTheFourth)
{
    const PlaneRecord plane = planeRead("<pointVec_4X>1</pointVec_4X><pointVec_00X>1</pointVec_00X>"
                                        "<pointVec_0W>1</pointVec_0W><pointVec_10X>1</pointVec_10X>"
                                        "<pointVec_>1</pointVec_><pointVec_.X>1</pointVec_.X>");
    EXPECT_EQ(plane.pointVec, std::vector<osg::Vec3f>(4));
}

// Values of the leaves

struct FloatText
{
    const char* description;
    const char* text;
    float value;
};

class ImportFeatureFloats : public testing::TestWithParam<FloatText>
{};

TEST_P(ImportFeatureFloats, AreReadAsWritten)
{
    EXPECT_EQ(dotRead(element("radius", GetParam().text)).radius, GetParam().value);
}

TEST_P(ImportFeatureFloats, AreReadAlikeInALocaleWithDecimalCommas)
{
    QLocale::setDefault(QLocale(QLocale::German));
    const float read = dotRead(element("radius", GetParam().text)).radius;
    QLocale::setDefault(QLocale::c());
    EXPECT_EQ(read, GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(ImportFeature, ImportFeatureFloats,
                         testing::Values(FloatText{"Fixed", "0.100000001", 0.1f}, FloatText{"Exponent", "1e-3", 1e-3f},
                                         FloatText{"SurroundedByBlanks", " \n2\t", 2.0f},
                                         FloatText{"CharacterReferences", "&#49;&#x32;", 12.0f},
                                         FloatText{"Cdata", "<![CDATA[7]]>", 7.0f}, FloatText{"Empty", "", 0.0f},
                                         FloatText{"Word", "abc", 0.0f}, FloatText{"NumberWithTail", "12abc", 0.0f},
                                         FloatText{"DecimalComma", "1,5", 0.0f},
                                         FloatText{"GroupedDigits", "1,500.5", 0.0f},
                                         FloatText{"Infinity", "inf", std::numeric_limits<float>::infinity()}),
                         [](const auto& variant) { return variant.param.description; });

struct IntegerText
{
    const char* description;
    const char* text;
    int value;
};

class ImportFeatureIntegers : public testing::TestWithParam<IntegerText>
{};

TEST_P(ImportFeatureIntegers, AreReadInBaseTen)
{
    EXPECT_EQ(tableRead(element("renderIndex", GetParam().text)).renderIndex, GetParam().value);
}

TEST_P(ImportFeatureIntegers, AreReadAlikeAsCounters)
{
    EXPECT_EQ(countersRead(element("dotTagCount", GetParam().text)).first(), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(ImportFeature, ImportFeatureIntegers,
                         testing::Values(IntegerText{"Negative", "-7", -7}, IntegerText{"LeadingZero", "010", 10},
                                         IntegerText{"Hexadecimal", "0x10", 0}, IntegerText{"Fraction", "1.5", 0},
                                         IntegerText{"OutOfRange", "2147483648", 0}, IntegerText{"Word", "abc", 0}),
                         [](const auto& variant) { return variant.param.description; });

TEST(ImportFeature, ReadsAnEmptyIntegerAsZero)
{
    EXPECT_EQ(tableRead("<renderIndex></renderIndex>").renderIndex, 0);
}

class ImportFeatureBooleans : public testing::TestWithParam<IntegerText>
{};

TEST_P(ImportFeatureBooleans, AreTrueForEveryNumberButZero)
{
    EXPECT_EQ(tableRead(element("isBottom", GetParam().text)).isBottom, GetParam().value != 0);
}

INSTANTIATE_TEST_SUITE_P(ImportFeature, ImportFeatureBooleans,
                         testing::Values(IntegerText{"Zero", "0", 0}, IntegerText{"One", "1", 1},
                                         IntegerText{"Two", "2", 1}, IntegerText{"MinusOne", "-1", 1},
                                         IntegerText{"TheWordTrue", "true", 0}, IntegerText{"Empty", "", 0}),
                         [](const auto& variant) { return variant.param.description; });

TEST(ImportFeature, ReadsAnEmptyPrefixAsEmpty)
{
    EXPECT_EQ(tableRead("<tableNamePrefix></tableNamePrefix>").tableNamePrefix, "");
    EXPECT_EQ(tableRead("<tableNamePrefix/>").tableNamePrefix, "");
}

TEST(ImportFeature, TakesOnlyTheTokenAfterALeafsStartTagForItsText)
{
    EXPECT_EQ(tableRead("<tableNamePrefix>a<!-- b -->c</tableNamePrefix>").tableNamePrefix, "a");
    EXPECT_EQ(dotRead("<radius><x>5</x></radius><ratio>2</ratio>").radius, 0.0f);
}

// Counters

TEST(ImportFeature, ReadsTheCountersInAnyOrder)
{
    EXPECT_EQ(countersRead("<planeTagCount>3</planeTagCount><x>9</x><arrowTagCount>2</arrowTagCount>"
                           "<dotTagCount>1</dotTagCount>"),
              QList<int>({1, 2, 3}));
}

TEST(ImportFeature, LeavesACounterWithoutTextAsItIs)
{
    EXPECT_EQ(countersRead("<dotTagCount>1</dotTagCount><dotTagCount></dotTagCount><dotTagCount/>"
                           "<dotTagCount><!--5--></dotTagCount>"),
              QList<int>({1, 0, 0}));
}

TEST(ImportFeature, ReadsCountersInTheirSectionOnly)
{
    EXPECT_EQ(countersOf(imported("<a><dotTagCount>1</dotTagCount></a>")), QList<int>({0, 0, 0}));
}

// Rebuilding

TEST(ImportFeature, RebuildsOnlyTheLastFeatureOfEachKindBecauseNamesAreNotSaved)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    imported(savedBytes(sceneOf(3, 2, 2))).createFeature(scene);
    ASSERT_EQ(features(scene, featureDot).size(), 1u);
    EXPECT_EQ(features(scene, featureDot).front()->getName(), DotRecord().nodeName);
    ASSERT_GE(features(scene, featureLine).size(), 1u);
    EXPECT_EQ(features(scene, featureLine).front()->getName(), LineRecord().name);
    ASSERT_EQ(features(scene, featurePlane).size(), 1u);
    EXPECT_EQ(features(scene, featurePlane).front()->getName(), "planeMeta");
}

TEST(ImportFeature, RebuildsADotFromItsPointAndLabel)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> saved = new osg::Group;
    DotRecord dot;
    dot.cneterPos.set(1, 2, 3);
    dot.radius = 77.0f;
    TableRecord table = tableOf("Point", 8);
    table.renderIndex = 9;
    table.isBottom = true;
    addDot(saved, dot, table);

    imported(savedBytes(saved)).createFeature(scene);
    auto* const rebuilt = dynamic_cast<CAutoScaleSphereMeta*>(features(scene, featureDot).at(0).get());
    ASSERT_TRUE(rebuilt);
    EXPECT_EQ(rebuilt->getMetaStruct().cneterPos, osg::Vec3f(1, 2, 3));
    EXPECT_EQ(rebuilt->getMetaStruct().radius, 3.0f) << "as for every new dot, not as saved";
    EXPECT_EQ(rebuilt->getTableInfo().tableNamePrefix, "Point");
    EXPECT_EQ(rebuilt->getTableInfo().tableNameIndexSuffix, 8);
    EXPECT_EQ(rebuilt->getTableInfo().renderIndex, 9);
    EXPECT_FALSE(rebuilt->getTableInfo().isBottom) << "as for every rebuilt label, not as saved";
    EXPECT_EQ(rebuilt->getShpereDrawableNode()->getColor(),
              CFeatureConfig::sigleFeatureConfig()->getDotConfig().highlightedColor);
}

/// The record of the label of a feature.
TableRecord labelOf(const osg::Node& feature)
{
    const osg::Group& group = *feature.asGroup();
    return dynamic_cast<const CTableMeta&>(*group.getChild(group.getNumChildren() - 1)).getMetaStruct();
}

TEST(ImportFeature, RebuildsALineFromItsWholeRecord)
{
    const osg::ref_ptr<osg::Group> saved = new osg::Group;
    LineRecord line;
    line.endPos.set(4, 5, 6);
    line.radius = 0.5f;
    addLine(saved, line, tableOf("line", 8));
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    imported(savedBytes(saved)).createFeature(scene);

    auto* const rebuilt = dynamic_cast<CArrowMeta*>(features(scene, featureLine).at(0).get());
    ASSERT_TRUE(rebuilt);
    EXPECT_EQ(rebuilt->getMetaStruct().endPos, osg::Vec3f(4, 5, 6));
    EXPECT_EQ(rebuilt->getMetaStruct().radius, 0.5f);
    EXPECT_EQ(labelOf(*rebuilt).tableNameIndexSuffix, 8);
}

TEST(ImportFeature, RebuildsAPlaneFromItsCornersAndNormal)
{
    const osg::ref_ptr<osg::Group> saved = new osg::Group;
    PlaneRecord plane = planeOf({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}});
    plane.planeNormal.set(0, 0, 1);
    plane.alpha = 0.25f;
    addPlane(saved, plane, tableOf("Plane", 8));
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    imported(savedBytes(saved)).createFeature(scene);

    auto* const rebuilt = dynamic_cast<CPlaneMeta*>(features(scene, featurePlane).at(0).get());
    ASSERT_TRUE(rebuilt);
    EXPECT_EQ(rebuilt->getPlaneInfo(), plane.pointVec);
    EXPECT_EQ(rebuilt->getMetaStruct().alpha, 0.5f) << "as for every new plane, not as saved";
    EXPECT_EQ(labelOf(*rebuilt).tableNamePrefix, "Plane");
    auto* const normal = dynamic_cast<CArrowMeta*>(rebuilt->getChild(1));
    ASSERT_TRUE(normal);
    EXPECT_EQ(normal->getEndPos(), osg::Vec3f(0, 0, 4));
}

TEST(ImportFeature, SkipsAKindWithUnequalNumbersOfRecordsAndLabelsAlone)
{
    const QByteArray twoDotsOneLabel = dotSection("<structSphereMeta/><structTableMeta/><structSphereMeta/>");
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const LoggedMessages messages;
    imported(savedBytes(sceneOf(0, 1, 1)).replace("<dotFeatureInfo></dotFeatureInfo>", twoDotsOneLabel))
        .createFeature(scene);
    EXPECT_EQ(messages.all().last(), kReadFinished) << "skipped without a message";
    EXPECT_TRUE(features(scene, featureDot).empty());
    EXPECT_FALSE(features(scene, featureLine).empty());
    EXPECT_FALSE(features(scene, featurePlane).empty());
}

struct Mismatch
{
    const char* description;
    const char* section;
    const char* record;
    featureType kind;
};

class ImportFeatureMismatch : public testing::TestWithParam<Mismatch>
{};

TEST_P(ImportFeatureMismatch, IsNotRebuilt)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const QByteArray record = QByteArray("<") + GetParam().record + "/>";
    imported(element(GetParam().section, record + "<structTableMeta/><structTableMeta/>")).createFeature(scene);
    EXPECT_FALSE(findOrCreateFeatureRootNode(scene, GetParam().kind, false));
}

INSTANTIATE_TEST_SUITE_P(ImportFeature, ImportFeatureMismatch,
                         testing::Values(Mismatch{"OfDots", "dotFeatureInfo", "structSphereMeta", featureDot},
                                         Mismatch{"OfLines", "lineFeatureInfo", "structArrowMeta", featureLine},
                                         Mismatch{"OfPlanes", "planeFeatureInfo", "structPlaneMeta", featurePlane}),
                         [](const auto& variant) { return variant.param.description; });

TEST(ImportFeature, MakesOnlyTheCommonRootWhenItHoldsNothing)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    importFeature().createFeature(scene);
    ASSERT_EQ(scene->getNumChildren(), 1u);
    const osg::ref_ptr<osg::Group> root = findOrCreateFeatureRootNode(scene, featureAll, false);
    ASSERT_TRUE(root);
    EXPECT_EQ(root->getChild(0)->asGroup()->getNumChildren(), 0u);
}

TEST(ImportFeature, RebuildsNothingWithoutARoot)
{
    EXPECT_NO_THROW(imported(savedBytes(sceneOf(1, 1, 1))).createFeature(nullptr));
}

TEST(ImportFeature, LeavesTheTransformOfTheCommonRootAsItIs)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> root = findOrCreateFeatureRootNode(scene, featureAll, true);
    auto* const transform = dynamic_cast<osg::MatrixTransform*>(root->getChild(0));
    transform->setMatrix(osg::Matrix::translate(1, 2, 3));
    imported(savedBytes(sceneOf(1, 1, 1))).createFeature(scene);
    EXPECT_EQ(transform->getMatrix(), osg::Matrix::translate(1, 2, 3));
}

TEST(ImportFeature, LeavesACommonRootWithoutTransformAsItIs)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> root = findOrCreateFeatureRootNode(scene, featureAll, true);
    const osg::ref_ptr<osg::Group> content = new osg::Group;
    root->setChild(0, content);
    importFeature().createFeature(scene);
    EXPECT_EQ(root->getNumChildren(), 1u);
    EXPECT_EQ(root->getChild(0), content);
}

// Straight from an exporter

importFeature takenOverFrom(const osg::ref_ptr<osg::Group>& scene)
{
    exportFeature exporter;
    exporter.getMetaStructInfo(scene);
    exporter.setFeatureTagCount(4, 5, 6);
    importFeature importer;
    detail::ImportFeatureAccess::takeOver(importer, &exporter);
    return importer;
}

TEST(ImportFeatureFromAnExporter, RebuildsFeaturesWithTheirNames)
{
    const osg::ref_ptr<osg::Group> saved = new osg::Group;
    for (const char* name : {"dot 1", "dot 2"}) {
        DotRecord dot;
        dot.nodeName = name;
        addDot(saved, dot, {});
    }
    LineRecord line;
    line.name = "line 1";
    addLine(saved, line, {});
    PlaneRecord plane = planeOf(std::vector<osg::Vec3f>(4));
    plane.name = "plane 1";
    addPlane(saved, plane, {});

    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    takenOverFrom(saved).createFeature(scene);
    EXPECT_TRUE(findFeatureByName("dot 1", scene, featureDot));
    EXPECT_TRUE(findFeatureByName("dot 2", scene, featureDot));
    EXPECT_TRUE(findFeatureByName("line 1", scene, featureLine));
    EXPECT_TRUE(findFeatureByName("plane 1", scene, featurePlane));
}

TEST(ImportFeatureFromAnExporter, TakesTheSixListsAndNotTheCounters)
{
    const importFeature importer = takenOverFrom(sceneOf(3, 2, 1));
    EXPECT_EQ(lengthsOf(importer), QList<int>({3, 3, 2, 2, 1, 1}));
    EXPECT_EQ(countersOf(importer), QList<int>({0, 0, 0}));
}

TEST(ImportFeatureFromAnExporter, KeepsWhatItHoldsWithoutAnExporter)
{
    importFeature importer = takenOverFrom(sceneOf(3, 2, 1));
    detail::ImportFeatureAccess::takeOver(importer, nullptr);
    EXPECT_EQ(lengthsOf(importer), QList<int>({3, 3, 2, 2, 1, 1}));
}

TEST(ImportFeatureFromAnExporter, PassesOverAPlaneOfTwoCorners)
{
    const osg::ref_ptr<osg::Group> saved = new osg::Group;
    addPlane(saved, planeOf(std::vector<osg::Vec3f>(2)), {});
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    EXPECT_NO_THROW(takenOverFrom(saved).createFeature(scene));
    EXPECT_TRUE(features(scene, featurePlane).empty());
}

// The constructor that reads a file for nothing

QStringList logOfConstruction(const osg::ref_ptr<osg::Group>& root, const QString& path, const QString& name)
{
    const LoggedMessages messages;
    const importFeature importer(root, path, name);
    EXPECT_EQ(lengthsOf(importer), QList<int>({0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(countersOf(importer), QList<int>({0, 0, 0}));
    return messages.all();
}

TEST(ImportFeatureWithAFile, SaysThatItHasNoRoot)
{
    EXPECT_EQ(logOfConstruction(nullptr, "/", "a"), QStringList("exportFeature Error: root is nullptr."));
}

TEST(ImportFeatureWithAFile, SaysThatAFileExistsAndImportsNothing)
{
    const TestFolder folder;
    folder.write("a.xml", savedBytes(sceneOf(1, 1, 1)));
    EXPECT_EQ(logOfConstruction(new osg::Group, folder.path(), "a.xml"),
              QStringList("exportFeature Error: file exists."));
}

TEST(ImportFeatureWithAFile, TakesFeatureMarkForAnEmptyName)
{
    const TestFolder folder;
    folder.write("featureMark", "<xbel version='1'><folder folded='no'/><Next title='a'/></xbel>");
    EXPECT_EQ(logOfConstruction(new osg::Group, folder.path(), ""), QStringList("exportFeature Error: file exists."));
}

TEST(ImportFeatureWithAFile, SaysThatItCannotOpenAMissingFile)
{
    const TestFolder folder;
    EXPECT_EQ(logOfConstruction(new osg::Group, folder.path(), "a.xml"),
              QStringList("exportFeature Error: cannot open file."));
}

TEST(ImportFeatureWithAFile, GivesTheParsersErrorText)
{
    const TestFolder folder;
    folder.write("a.xml", "<a></b>");
    EXPECT_EQ(logOfConstruction(new osg::Group, folder.path(), "a.xml"),
              (QStringList{"exportFeature Error: file exists.", " Error:  Opening and ending tag mismatch."}));
}

} // namespace
