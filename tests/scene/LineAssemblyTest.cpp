#include "support/Config.h"
#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <gtest/gtest.h>

#include <osg/io_utils>

namespace {
using namespace KelvOsgTools;
using kelvtest::childNames;
using kelvtest::childOf;
using kelvtest::contentOf;

CArrowMeta::structArrowMeta lineRecord()
{
    CArrowMeta::structArrowMeta meta = kelvtest::lineArrow({1.0f, 2.0f, 3.0f}, {4.0f, 8.0f, -6.0f});
    meta.name = "line 1";
    meta.color.set(0.1f, 0.2f, 0.3f, 0.4f);
    meta.radius = 0.7f;
    meta.ratio = 2.0f;
    meta.lineWidth = 5.0f;
    meta.isDepthTest = false;
    meta.isArrowHead = false;
    return meta;
}

osg::ref_ptr<CArrowMeta> make(const osg::ref_ptr<osg::Group>& scene, featureState state = featureStateNormal,
                              const CArrowMeta::structArrowMeta& meta = lineRecord())
{
    return dynamic_cast<CArrowMeta*>(createArrowAndTable(state, meta, scene, 7, QStringLiteral("Gap"), 42).get());
}

TEST(LineAssembly, HangsTheLineUnderItsRoot)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<CArrowMeta> line = make(scene);
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(childNames(*contentOf(*scene, featureLine)), (std::vector<std::string>{"line 1"}));
    EXPECT_EQ(contentOf(*scene, featureLine)->getChild(0), line);
    EXPECT_EQ(kelvtest::kindOf(*line), 2);
}

TEST(LineAssembly, BuildsTheArrowFromTheWholeRecord)
{
    const CArrowMeta::structArrowMeta meta = make(new osg::Group)->getMetaStruct();
    EXPECT_EQ(meta.startPos, osg::Vec3f(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(meta.endPos, osg::Vec3f(4.0f, 8.0f, -6.0f));
    EXPECT_EQ(meta.name, "line 1");
    EXPECT_EQ(meta.color, osg::Vec4f(0.1f, 0.2f, 0.3f, 0.4f));
    EXPECT_EQ(meta.radius, 0.7f);
    EXPECT_EQ(meta.ratio, 2.0f);
    EXPECT_TRUE(meta.isLineArrow);
    EXPECT_EQ(meta.lineWidth, 5.0f);
    EXPECT_FALSE(meta.isDepthTest);
    EXPECT_FALSE(meta.isArrowHead);
}

TEST(LineAssembly, PutsTheLabelAtTheMidpoint)
{
    const kelvtest::RestoredConfig config;
    config->setNormalTableFontSize(23);
    const osg::ref_ptr<CArrowMeta> line = make(new osg::Group);
    const auto* const label = childOf<CTableMeta>(*line, 1);
    ASSERT_NE(label, nullptr);
    const CTableMeta::structTableMeta& record = label->getMetaStruct();
    EXPECT_EQ(record.pos, osg::Vec3f(2.5f, 5.0f, -1.5f));
    EXPECT_EQ(record.textColor, osg::Vec4f(0.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_EQ(record.backgroundColor, osg::Vec3f(1.0f, 1.0f, 1.0f));
    EXPECT_EQ(record.tableNamePrefix, QStringLiteral("Gap"));
    EXPECT_EQ(record.tableNameIndexSuffix, 42);
    EXPECT_EQ(record.fontSize, 23);
    EXPECT_EQ(record.renderIndex, 7);
    EXPECT_TRUE(record.isAutoScale);
    EXPECT_FALSE(record.isBottom);
    EXPECT_EQ(label->getName(), "showTableNode");
}

TEST(LineAssembly, ShowsTheStateAtOnceOnLineAndLabel)
{
    const kelvtest::RestoredConfig config;
    featureArrowConfig colours;
    colours.selectedColor.set(0.1f, 0.2f, 0.3f, 1.0f);
    config->setArrowConfig(colours);
    featurePlaneConfig labelColours;
    labelColours.tableSelectedColor.set(0.4f, 0.5f, 0.6f, 1.0f);
    config->setPlaneConfig(labelColours);

    const osg::ref_ptr<CArrowMeta> line = make(new osg::Group, featureStateSelected);
    const auto* const geometry = kelvtest::firstBelow<osg::Geometry>(*line, "arrowLineNode");
    EXPECT_EQ(kelvtest::overallColour(*geometry), colours.selectedColor);
    EXPECT_EQ(kelvtest::lineWidthOf(*geometry), 6.0f);
    EXPECT_EQ(kelvtest::firstBelow<osgText::Text>(*line, "textNode")->getColor(), labelColours.tableSelectedColor);
}

TEST(LineAssembly, LeavesANormalLineInTheColourOfItsRecord)
{
    const osg::ref_ptr<CArrowMeta> line = make(new osg::Group);
    const auto* const geometry = kelvtest::firstBelow<osg::Geometry>(*line, "arrowLineNode");
    EXPECT_EQ(kelvtest::overallColour(*geometry), osg::Vec4f(0.1f, 0.2f, 0.3f, 0.4f));
}

TEST(LineAssembly, MakesSolidArrowsToo)
{
    const osg::ref_ptr<CArrowMeta> arrow =
        make(new osg::Group, featureStateNormal, kelvtest::solidArrow({}, {0.0f, 0.0f, 10.0f}));
    ASSERT_EQ(arrow->getNumChildren(), 3u);
    EXPECT_EQ(arrow->getName(), "ConeAndCylinderMeta");
    EXPECT_NE(childOf<CTableMeta>(*arrow, 2), nullptr);
}

TEST(LineAssembly, ReplacesItsNamesakesAndAppends)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    kelvtest::addLine(scene, "line 1");
    kelvtest::addLine(scene, "other");
    kelvtest::addDot(scene, "line 1");
    const osg::ref_ptr<CArrowMeta> newer = make(scene);
    EXPECT_EQ(childNames(*contentOf(*scene, featureLine)), (std::vector<std::string>{"other", "line 1"}));
    EXPECT_EQ(contentOf(*scene, featureLine)->getChild(1), newer);
    EXPECT_EQ(contentOf(*scene, featureDot)->getNumChildren(), 1u);
}

TEST(LineAssembly, TakesTheRecordOfTheLineThatItReplaces)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const std::string name = "a name too long for a small string";
    kelvtest::addLine(scene, name, {1.0f, 2.0f, 3.0f}, {4.0f, 5.0f, 6.0f});
    const auto& former = *childOf<CArrowMeta>(*contentOf(*scene, featureLine), 0);
    const osg::ref_ptr<CArrowMeta> newer = make(scene, featureStateNormal, former.getMetaStruct());
    ASSERT_NE(newer, nullptr);
    EXPECT_EQ(newer->getName(), name);
    EXPECT_EQ(newer->getStartPos(), osg::Vec3f(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(newer->getEndPos(), osg::Vec3f(4.0f, 5.0f, 6.0f));
    EXPECT_EQ(contentOf(*scene, featureLine)->getNumChildren(), 1u);
}

} // namespace
