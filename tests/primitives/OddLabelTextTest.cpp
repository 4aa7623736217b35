#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <gtest/gtest.h>

#include <osg/io_utils>

#include <limits>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

QString drawnText(CTableMeta& label)
{
    return textOf(*firstBelow<osgText::Text>(label, "textNode"));
}

float widthOf(CTableMeta& label)
{
    const osg::BoundingBox box = firstBelow<osg::Geometry>(label, "squareNode")->getBoundingBox();
    return box.xMax() - box.xMin();
}

TEST(LongLabel, OfAHundredThousandCharactersIsOneOfAThousandAHundredTimesAsWide)
{
    const osg::ref_ptr<CTableMeta> longLabel = new CTableMeta(labelSaying(QString(100000, 'x')));
    const osg::ref_ptr<CTableMeta> shorter = new CTableMeta(labelSaying(QString(1000, 'x')));
    EXPECT_EQ(drawnText(*longLabel), QString(100000, 'x'));
    EXPECT_NEAR(widthOf(*longLabel), 100.0f * widthOf(*shorter), widthOf(*shorter));
    EXPECT_TRUE(isFiniteEverywhere(*longLabel));
}

TEST(LongLabel, OfAHundredThousandCharactersChangesStateAndLanguage)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> dot = createAutoScaleShpereAndTable(
        "dot", scene, osg::Vec3f(), 1, QString(100000, QChar(0x6d4b)), 7, featureStateSelected, false);
    ASSERT_TRUE(dot);
    CTableMeta& label = *nodesOfType<CTableMeta>(*dot).front();
    dynamic_cast<CFeatureMetaObject&>(*dot).setState(featureStateHighlighted);
    label.updateLanguage();
    EXPECT_EQ(drawnText(label), QString(100000, QChar(0x6d4b)) + '7');
    EXPECT_EQ(firstBelow<osgText::Text>(label, "textNode")->getColor(), osg::Vec4f(0, 1, 0, 1));
}

struct OddText
{
    const char* name;
    QString text;
};

void PrintTo(const OddText& text, std::ostream* stream)
{
    *stream << text.name;
}

class OddLabelText : public ::testing::TestWithParam<OddText>
{};

TEST_P(OddLabelText, IsKeptCharacterByCharacterAndHasARectangle)
{
    const osg::ref_ptr<CTableMeta> label = new CTableMeta(labelSaying(GetParam().text));
    EXPECT_EQ(drawnText(*label), GetParam().text);
    EXPECT_EQ(label->getMetaStruct().tableNamePrefix, GetParam().text);
    EXPECT_GT(widthOf(*label), 0.0f);
    EXPECT_TRUE(isFiniteEverywhere(*label));
}

INSTANTIATE_TEST_SUITE_P(Texts, OddLabelText,
                         ::testing::Values(OddText{"Hebrew", QString::fromUtf8("מישור א")},
                                           OddText{"Arabic", QString::fromUtf8("نقطة ١")},
                                           OddText{"BothDirections", QString::fromUtf8("Punkt نقطة 12 מישור")},
                                           OddText{"CombiningMarks", QString::fromUtf8("e\u0301\u0302\u0303 a\u030a")},
                                           OddText{"ManyMarksOnOneLetter", "Z" + QString(200, QChar(0x0301))},
                                           OddText{"MarkWithoutALetter", QString(QChar(0x0301)) + "x"},
                                           OddText{"DirectionMarks", QString::fromUtf8("\u202ea\u202cb\u200f")},
                                           OddText{"OutsideTheBasicPlane", QString::fromUtf8("😀 𝔘")},
                                           OddText{"Lines", "one\ntwo\tthree"}),
                         [](const auto& text) { return std::string(text.param.name); });

class ExtremeIndex : public ::testing::TestWithParam<int>
{};

TEST_P(ExtremeIndex, StandsBehindThePrefixAndInTheRecord)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    createAutoScaleShpereAndTable("dot", scene, osg::Vec3f(), GetParam(), "Dot ", GetParam(), featureStateNormal,
                                  false);
    CTableMeta& label = *nodesOfType<CTableMeta>(*findFeatureByName("dot", scene, featureDot)).front();
    EXPECT_EQ(drawnText(label), "Dot " + QString::number(GetParam()));
    EXPECT_EQ(label.getMetaStruct().tableNameIndexSuffix, GetParam());
    EXPECT_EQ(label.getMetaStruct().renderIndex, GetParam());
}

TEST_P(ExtremeIndex, IsAFeatureNameAsAnyOther)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const std::string name = std::to_string(GetParam());
    const osg::ref_ptr<osg::Group> dot = addDot(scene, name);
    EXPECT_EQ(findFeatureByName(name, scene, featureDot), dot);
}

INSTANTIATE_TEST_SUITE_P(Indices, ExtremeIndex,
                         ::testing::Values(std::numeric_limits<int>::min(), std::numeric_limits<int>::max()),
                         [](const auto& index) { return index.param < 0 ? "Smallest" : "Largest"; });

} // namespace
