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

/// What createAutoScaleShpereAndTable takes, with a value for everything.
struct DotArguments
{
    QString name = QStringLiteral("dot");
    osg::Vec3f point{1.0f, 2.0f, 3.0f};
    int renderIndex = 7;
    QString prefix = QStringLiteral("Gap");
    int suffix = 42;
    featureState state = featureStateNormal;
    bool isBottom = false;
};

osg::ref_ptr<CAutoScaleSphereMeta> make(const osg::ref_ptr<osg::Group>& scene, const DotArguments& dot = {})
{
    return dynamic_cast<CAutoScaleSphereMeta*>(createAutoScaleShpereAndTable(dot.name, scene, dot.point,
                                                                             dot.renderIndex, dot.prefix, dot.suffix,
                                                                             dot.state, dot.isBottom)
                                                   .get());
}

CTableMeta* labelOf(osg::Group& feature)
{
    return childOf<CTableMeta>(feature, 1);
}

TEST(CreateTable, MakesALabelOfTheRecord)
{
    const CTableMeta::structTableMeta meta = kelvtest::labelSaying(QStringLiteral("Gap"), 3);
    const osg::ref_ptr<osg::Group> group = createTable(meta);
    auto* const table = dynamic_cast<CTableMeta*>(group.get());
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->getMetaStruct().tableNamePrefix, QStringLiteral("Gap"));
    EXPECT_EQ(table->getMetaStruct().tableNameIndexSuffix, 3);
    EXPECT_EQ(table->getNumParents(), 0u);
}

TEST(CreateTable, MakesANewLabelEveryTime)
{
    EXPECT_NE(createTable({}), createTable({}));
}

TEST(DotAssembly, HangsTheDotUnderItsRoot)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = make(scene);
    ASSERT_NE(dot, nullptr);
    EXPECT_EQ(childNames(*scene), (std::vector<std::string>{"featureData"}));
    ASSERT_EQ(contentOf(*scene, featureDot)->getNumChildren(), 1u);
    EXPECT_EQ(contentOf(*scene, featureDot)->getChild(0), dot);
    EXPECT_EQ(dot->getNumParents(), 1u);
}

TEST(DotAssembly, NamesAndMarksTheDot)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = make(new osg::Group);
    EXPECT_EQ(dot->getName(), "dot");
    EXPECT_EQ(kelvtest::kindOf(*dot), 1);
}

TEST(DotAssembly, FillsTheDotRecord)
{
    const CAutoScaleSphereMeta::structSphereMeta record = make(new osg::Group)->getMetaStruct();
    EXPECT_EQ(record.cneterPos, osg::Vec3f(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(record.nodeName, "feature_dot_auto_scale");
    EXPECT_EQ(record.radius, 3.0f);
    EXPECT_EQ(record.ratio, 3.0f);
    EXPECT_EQ(record.color, osg::Vec4f(1.0f, 1.0f, 1.0f, 1.0f));
}

TEST(DotAssembly, FillsTheLabelRecord)
{
    const kelvtest::RestoredConfig config;
    config->setNormalTableFontSize(23);
    config->setFlagTableFontSize(29);
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = make(new osg::Group);
    const CTableMeta::structTableMeta record = labelOf(*dot)->getMetaStruct();
    EXPECT_EQ(record.textColor, osg::Vec4f(0.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_EQ(record.pos, osg::Vec3f(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(record.backgroundColor, osg::Vec3f(1.0f, 1.0f, 1.0f));
    EXPECT_EQ(record.tableNamePrefix, QStringLiteral("Gap"));
    EXPECT_EQ(record.tableNameIndexSuffix, 42);
    EXPECT_EQ(record.fontSize, 23);
    EXPECT_EQ(record.renderIndex, 7);
    EXPECT_TRUE(record.isAutoScale);
    EXPECT_FALSE(record.isBottom);
}

TEST(DotAssembly, PassesAnEmptyPrefixAndBottomOn)
{
    DotArguments arguments;
    arguments.prefix = QString();
    arguments.isBottom = true;
    const CTableMeta::structTableMeta record = labelOf(*make(new osg::Group, arguments))->getMetaStruct();
    EXPECT_EQ(record.tableNamePrefix, QString());
    EXPECT_TRUE(record.isBottom);
}

TEST(DotAssembly, NamesTheLabelAndLetsTheDotKnowIt)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = make(new osg::Group);
    ASSERT_EQ(dot->getNumChildren(), 2u);
    EXPECT_EQ(labelOf(*dot)->getName(), "showTableNode");
    EXPECT_EQ(dot->getTableInfo().tableNamePrefix, QStringLiteral("Gap"));
    EXPECT_EQ(dot->getTableInfo().tableNameIndexSuffix, 42);
}

TEST(DotAssembly, LeavesANormalDotWhite)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = make(new osg::Group);
    EXPECT_EQ(dot->getShpereDrawableNode()->getColor(), osg::Vec4f(1.0f, 1.0f, 1.0f, 1.0f));
}

TEST(DotAssembly, ShowsTheStateAtOnceOnDotAndLabel)
{
    const kelvtest::RestoredConfig config;
    featureDotConfig dotColours;
    dotColours.highlightedColor.set(0.1f, 0.2f, 0.3f, 1.0f);
    config->setDotConfig(dotColours);
    featurePlaneConfig labelColours;
    labelColours.tableHighlightedColor.set(0.4f, 0.5f, 0.6f, 1.0f);
    config->setPlaneConfig(labelColours);

    DotArguments arguments;
    arguments.state = featureStateHighlighted;
    const osg::ref_ptr<CAutoScaleSphereMeta> dot = make(new osg::Group, arguments);
    EXPECT_EQ(dot->getShpereDrawableNode()->getColor(), dotColours.highlightedColor);
    EXPECT_EQ(dot->getTextNode()->getColor(), labelColours.tableHighlightedColor);
}

TEST(DotAssembly, ReplacesItsNamesakesAndAppends)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> first = kelvtest::addDot(scene, "dot");
    kelvtest::addDot(scene, "other");
    contentOf(*scene, featureDot)->addChild(kelvtest::namedGroup("dot")); // a second one, of the host's making
    const osg::ref_ptr<CAutoScaleSphereMeta> newer = make(scene);
    EXPECT_EQ(childNames(*contentOf(*scene, featureDot)), (std::vector<std::string>{"other", "dot"}));
    EXPECT_EQ(contentOf(*scene, featureDot)->getChild(1), newer);
    EXPECT_EQ(first->getNumParents(), 0u);
}

TEST(DotAssembly, ReplacesNothingOfOtherKindsOrDeeper)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> line = kelvtest::addLine(scene, "dot");
    const osg::ref_ptr<osg::Group> nested = kelvtest::namedGroup("dot");
    kelvtest::addDot(scene, "other")->addChild(nested);
    make(scene);
    EXPECT_EQ(line->getNumParents(), 1u);
    EXPECT_EQ(nested->getNumParents(), 1u);
}

TEST(DotAssembly, TellsUpperFromLowerCaseInNames)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    kelvtest::addDot(scene, "Dot");
    make(scene);
    EXPECT_EQ(childNames(*contentOf(*scene, featureDot)), (std::vector<std::string>{"Dot", "dot"}));
}

TEST(DotAssembly, LetsUnnamedDotsReplaceEachOther)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    kelvtest::addDot(scene, "");
    kelvtest::addDot(scene, "");
    EXPECT_EQ(contentOf(*scene, featureDot)->getNumChildren(), 1u);
}

TEST(DotAssembly, TakesArgumentsOfTheDotThatItReplaces)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const auto* const former = dynamic_cast<CAutoScaleSphereMeta*>(
        kelvtest::addDot(scene, "a name too long for a small string", osg::Vec3f(4.0f, 5.0f, 6.0f)).get());
    const osg::ref_ptr<osg::Group> newer = createAutoScaleShpereAndTable(
        QString::fromStdString(former->getName()), scene, former->getMetaStruct().cneterPos,
        former->getTableInfo().renderIndex, former->getTableInfo().tableNamePrefix,
        former->getTableInfo().tableNameIndexSuffix, featureStateNormal, false);
    ASSERT_NE(newer, nullptr);
    EXPECT_EQ(newer->getName(), "a name too long for a small string");
    EXPECT_EQ(dynamic_cast<CAutoScaleSphereMeta&>(*newer).getCenterPos(), osg::Vec3f(4.0f, 5.0f, 6.0f));
    EXPECT_EQ(contentOf(*scene, featureDot)->getNumChildren(), 1u);
}

// findOrCreateShpere

TEST(FindOrCreateShpere, MakesANamedBlueSphereUnderTheDotRoot)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Node> node = findOrCreateShpere("ball", scene, osg::Vec3f(1.0f, 2.0f, 3.0f));
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node, contentOf(*scene, featureDot)->getChild(0));
    EXPECT_EQ(node->getName(), "ball");
    EXPECT_FALSE(kelvtest::kindOf(*node));

    auto* const geode = dynamic_cast<osg::Geode*>(node.get());
    ASSERT_NE(geode, nullptr);
    ASSERT_EQ(geode->getNumDrawables(), 1u);
    const auto* const drawable = dynamic_cast<osg::ShapeDrawable*>(geode->getDrawable(0));
    const auto* const sphere = dynamic_cast<const osg::Sphere*>(drawable->getShape());
    ASSERT_NE(sphere, nullptr);
    EXPECT_EQ(sphere->getCenter(), osg::Vec3f(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(sphere->getRadius(), 1.0f);
    EXPECT_EQ(drawable->getColor(), osg::Vec4f(0.0f, 0.0f, 0.8f, 0.8f));
    EXPECT_EQ(drawable->getTessellationHints()->getDetailRatio(), 3.0f);
}

TEST(FindOrCreateShpere, ReplacesItsNamesakesAndAppends)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Node> first = findOrCreateShpere("ball", scene, osg::Vec3f());
    kelvtest::addDot(scene, "other");
    const osg::ref_ptr<osg::Node> second = findOrCreateShpere("ball", scene, osg::Vec3f());
    EXPECT_EQ(childNames(*contentOf(*scene, featureDot)), (std::vector<std::string>{"other", "ball"}));
    EXPECT_EQ(contentOf(*scene, featureDot)->getChild(1), second);
    EXPECT_NE(first, second);
}

TEST(FindOrCreateShpere, TakesTheNameOfTheSphereThatItReplaces)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const std::string name = "a name too long for a small string";
    findOrCreateShpere(name, scene, osg::Vec3f());
    const osg::ref_ptr<osg::Node> second =
        findOrCreateShpere(contentOf(*scene, featureDot)->getChild(0)->getName(), scene, osg::Vec3f());
    EXPECT_EQ(second->getName(), name);
    EXPECT_EQ(contentOf(*scene, featureDot)->getNumChildren(), 1u);
}

} // namespace
