#include "support/Config.h"
#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include <gtest/gtest.h>

#include <osg/io_utils>

namespace {
using namespace KelvOsgTools;
using kelvtest::childNames;
using kelvtest::childOf;
using kelvtest::contentOf;

/// What createFlagAutoScaleShpereAndTable takes, with a value for everything.
struct FlagArguments
{
    QString name = QStringLiteral("flag");
    osg::Vec3f point{1.0f, 2.0f, 3.0f};
    int renderIndex = 7;
    QString prefix = QStringLiteral("Gap");
    int suffix = 42;
    featureType kind = featureDot;
    bool useFlagFontSize = true;
    bool unread = false;
};

osg::ref_ptr<CFlagAutoScaleSphereMeta> make(const osg::ref_ptr<osg::Group>& scene, const FlagArguments& flag = {})
{
    return dynamic_cast<CFlagAutoScaleSphereMeta*>(
        createFlagAutoScaleShpereAndTable(flag.name, scene, flag.point, flag.renderIndex, flag.prefix, flag.suffix,
                                          flag.kind, flag.useFlagFontSize, flag.unread)
            .get());
}

CTableMeta::structTableMeta labelRecordOf(osg::Group& flag)
{
    return childOf<CTableMeta>(flag, 1)->getMetaStruct();
}

class FlagDotUnderAnyRoot : public ::testing::TestWithParam<featureType>
{};

TEST_P(FlagDotUnderAnyRoot, HangsUnderTheRootOfItsKind)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    FlagArguments arguments;
    arguments.kind = GetParam();
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = make(scene, arguments);
    ASSERT_NE(flag, nullptr);
    EXPECT_EQ(childNames(*contentOf(*scene, GetParam())), (std::vector<std::string>{"flag"}));
    EXPECT_EQ(contentOf(*scene, GetParam())->getChild(0), flag);
    for (const featureType other : {featureDot, featureLine, featurePlane, featureTable})
        EXPECT_EQ(contentOf(*scene, other) != nullptr, other == GetParam());
}

TEST_P(FlagDotUnderAnyRoot, ReplacesItsNamesakesThereAlone)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const featureType elsewhere = GetParam() == featureTable ? featureDot : featureTable;
    for (const featureType kind : {GetParam(), elsewhere}) kelvtest::addFlagDot(scene, "flag", kind);
    kelvtest::addFlagDot(scene, "other", GetParam());
    const osg::ref_ptr<osg::Group> newer = kelvtest::addFlagDot(scene, "flag", GetParam());
    EXPECT_EQ(childNames(*contentOf(*scene, GetParam())), (std::vector<std::string>{"other", "flag"}));
    EXPECT_EQ(contentOf(*scene, GetParam())->getChild(1), newer);
    EXPECT_EQ(childNames(*contentOf(*scene, elsewhere)), (std::vector<std::string>{"flag"}));
}

INSTANTIATE_TEST_SUITE_P(Kinds, FlagDotUnderAnyRoot,
                         ::testing::Values(featureDot, featureLine, featurePlane, featureTable));

TEST(FlagDotOfAllKinds, HangsBesideTheRootsOfTheKinds)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    kelvtest::addDot(scene, "dot");
    const osg::ref_ptr<osg::Group> flag = kelvtest::addFlagDot(scene, "flag", featureAll);
    EXPECT_EQ(childNames(*contentOf(*scene, featureAll)), (std::vector<std::string>{"featureDotData", "flag"}));
    EXPECT_EQ(contentOf(*scene, featureAll)->getChild(1), flag);
}

class FlagDotOfKindWithoutRoot : public ::testing::TestWithParam<int>
{};

TEST_P(FlagDotOfKindWithoutRoot, IsNotMadeAndLeavesNoTrace)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    EXPECT_EQ(kelvtest::addFlagDot(scene, "flag", static_cast<featureType>(GetParam())), nullptr);
    EXPECT_EQ(scene->getNumChildren(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Kinds, FlagDotOfKindWithoutRoot, ::testing::Values(featureFlagDot, -1, 6, 99));

TEST(FlagDotAssembly, NamesAndMarksTheFlag)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = make(new osg::Group);
    EXPECT_EQ(flag->getName(), "flag");
    EXPECT_EQ(kelvtest::kindOf(*flag), 5);
    EXPECT_EQ(flag->getCenterPos(), osg::Vec3f(1.0f, 2.0f, 3.0f));
}

TEST(FlagDotAssembly, MakesARedSphereOfRadiusFour)
{
    const kelvtest::RestoredConfig config;
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = make(new osg::Group);
    EXPECT_EQ(flag->getChild(0)->getName(), "SphereMeta");
    const auto* const drawable = kelvtest::firstBelow<osg::ShapeDrawable>(*flag, "drawableShpere");
    EXPECT_EQ(drawable->getTessellationHints()->getDetailRatio(), 3.0f);
    // Born selected: 5 pixels larger. Any other state gives the record's radius.
    flag->setState(featureStateNormal);
    EXPECT_EQ(dynamic_cast<const osg::Sphere*>(drawable->getShape())->getRadius(), 4.0f);
}

TEST(FlagDotAssembly, MakesFlagsThatAreSelectedFromTheStart)
{
    const kelvtest::RestoredConfig config;
    featureFlagDotConfig colours;
    colours.selectedColor.set(0.1f, 0.2f, 0.3f, 1.0f);
    config->setFlagDotConfig(colours);
    featurePlaneConfig labelColours;
    labelColours.tableSelectedColor.set(0.4f, 0.5f, 0.6f, 1.0f);
    config->setPlaneConfig(labelColours);

    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = make(new osg::Group);
    const auto* const drawable = kelvtest::firstBelow<osg::ShapeDrawable>(*flag, "drawableShpere");
    EXPECT_EQ(drawable->getColor(), colours.selectedColor);
    EXPECT_EQ(dynamic_cast<const osg::Sphere*>(drawable->getShape())->getRadius(), 9.0f);
    EXPECT_EQ(kelvtest::firstBelow<osgText::Text>(*flag, "textNode")->getColor(), labelColours.tableSelectedColor);
}

TEST(FlagDotAssembly, FillsTheLabelRecord)
{
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = make(new osg::Group);
    const CTableMeta::structTableMeta record = labelRecordOf(*flag);
    EXPECT_EQ(record.textColor, osg::Vec4f(0.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_EQ(record.pos, osg::Vec3f(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(record.backgroundColor, osg::Vec3f(1.0f, 1.0f, 1.0f));
    EXPECT_EQ(record.tableNamePrefix, QStringLiteral("Gap"));
    EXPECT_EQ(record.tableNameIndexSuffix, 42);
    EXPECT_EQ(record.renderIndex, 7);
    EXPECT_TRUE(record.isAutoScale);
    EXPECT_FALSE(record.isBottom);
    EXPECT_EQ(childOf(*flag, 1)->getName(), "showTableNode");
}

TEST(FlagDotAssembly, TakesTheFlagOrTheNormalFontSize)
{
    const kelvtest::RestoredConfig config;
    config->setNormalTableFontSize(23);
    config->setFlagTableFontSize(29);
    FlagArguments arguments;
    arguments.useFlagFontSize = true;
    EXPECT_EQ(labelRecordOf(*make(new osg::Group, arguments)).fontSize, 29);
    arguments.useFlagFontSize = false;
    EXPECT_EQ(labelRecordOf(*make(new osg::Group, arguments)).fontSize, 23);
}

TEST(FlagDotAssembly, DoesNotReadItsLastArgument)
{
    FlagArguments arguments;
    arguments.unread = true;
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = make(new osg::Group, arguments);
    EXPECT_FALSE(labelRecordOf(*flag).isBottom);
    EXPECT_EQ(labelRecordOf(*flag).fontSize, 19);
}

} // namespace
