#include "support/Config.h"
#include "support/Records.h"
#include "support/SceneQueries.h"
#include "support/Translator.h"

#include <KelvOsgTools/CTableMeta.h>

#include <gtest/gtest.h>

#include <osg/Geode>
#include <osg/io_utils>

#include <QFontMetrics>

#include <cfloat>
#include <limits>
#include <type_traits>

namespace {
using namespace KelvOsgTools;
using kelvtest::labelSaying;
using kelvtest::overallColour;

const osg::Vec4f kBlack(0.0f, 0.0f, 0.0f, 1.0f);

/// A label with its drawables.
struct Label
{
    explicit Label(const CTableMeta::structTableMeta& meta) : table(new CTableMeta(meta)) { look(); }
    explicit Label(CTableMeta* existing) : table(existing) { look(); }

    /// Looks the drawables up anew.
    void look()
    {
        geode = kelvtest::childOf<osg::Geode>(*table, 0);
        outline = kelvtest::childOf<osg::Geometry>(*geode, 0);
        fill = kelvtest::childOf<osg::Geometry>(*geode, 1);
        text = kelvtest::childOf<osgText::Text>(*geode, 2);
    }

    osg::ref_ptr<CTableMeta> table;
    osg::ref_ptr<osg::Geode> geode;
    osg::ref_ptr<osg::Geometry> outline;
    osg::ref_ptr<osg::Geometry> fill;
    osg::ref_ptr<osgText::Text> text;
};

std::vector<osg::Vec2f> cornersOf(const osg::Geometry& geometry)
{
    const auto* const corners = dynamic_cast<const osg::Vec2Array*>(geometry.getVertexArray());
    return corners ? corners->asVector() : std::vector<osg::Vec2f>();
}

/// The corners that a label with that text must have: as wide as the text, as high as the font.
std::vector<osg::Vec2f> cornersAround(const QString& text, int fontSize, const QString& family = {})
{
    const QFontMetrics metrics(QFont(family, fontSize));
    const float half = static_cast<float>(metrics.horizontalAdvance(text) * 0.5);
    const float top = static_cast<float>(metrics.height() + 10);
    return {{-half, top}, {-half, 10.0f}, {half, 10.0f}, {half, top}};
}

CTableMeta::structTableMeta withLayout(bool isAutoScale)
{
    CTableMeta::structTableMeta meta;
    meta.isAutoScale = isAutoScale;
    return meta;
}

// Record

TEST(TableRecord, HasItsDefaults)
{
    const CTableMeta::structTableMeta meta;
    EXPECT_EQ(meta.textColor, kBlack);
    EXPECT_EQ(meta.pos, osg::Vec3f());
    EXPECT_EQ(meta.backgroundColor, osg::Vec3f(1.0f, 1.0f, 1.0f));
    EXPECT_EQ(meta.tableNamePrefix, QStringLiteral("Table"));
    EXPECT_EQ(meta.tableNameIndexSuffix, -1);
    EXPECT_EQ(meta.fontSize, 14);
    EXPECT_EQ(meta.renderIndex, 1);
    EXPECT_TRUE(meta.isAutoScale);
    EXPECT_FALSE(meta.isBottom);
}

TEST(CTableMeta, KeepsACopyOfItsRecord)
{
    CTableMeta::structTableMeta meta;
    meta.textColor.set(0.1f, 0.2f, 0.3f, 0.4f);
    meta.pos.set(1.0f, 2.0f, 3.0f);
    meta.backgroundColor.set(0.5f, 0.6f, 0.7f);
    meta.tableNamePrefix = QStringLiteral("Gap");
    meta.tableNameIndexSuffix = 7;
    meta.fontSize = 20;
    meta.renderIndex = 9;
    meta.isAutoScale = false;
    meta.isBottom = true;
    const osg::ref_ptr<CTableMeta> table = new CTableMeta(meta);
    meta = {};

    const CTableMeta::structTableMeta& kept = table->getMetaStruct();
    EXPECT_EQ(kept.textColor, osg::Vec4f(0.1f, 0.2f, 0.3f, 0.4f));
    EXPECT_EQ(kept.pos, osg::Vec3f(1.0f, 2.0f, 3.0f));
    EXPECT_EQ(kept.backgroundColor, osg::Vec3f(0.5f, 0.6f, 0.7f));
    EXPECT_EQ(kept.tableNamePrefix, QStringLiteral("Gap"));
    EXPECT_EQ(kept.tableNameIndexSuffix, 7);
    EXPECT_EQ(kept.fontSize, 20);
    EXPECT_EQ(kept.renderIndex, 9);
    EXPECT_FALSE(kept.isAutoScale);
    EXPECT_TRUE(kept.isBottom);
}

// What both layouts build

class TableLayout : public ::testing::TestWithParam<bool>
{
protected:
    CTableMeta::structTableMeta meta() const { return withLayout(GetParam()); }
};

TEST_P(TableLayout, IsAnAutoTransformThatKeepsTheClassName)
{
    static_assert(std::is_base_of_v<osg::AutoTransform, CTableMeta>);
    static_assert(std::has_virtual_destructor_v<CTableMeta>);
    EXPECT_STREQ(Label(meta()).table->className(), "AutoTransform");
}

TEST_P(TableLayout, NamesAndMarksTheTable)
{
    const Label label(meta());
    EXPECT_EQ(label.table->getName(), "showTableNode");
    EXPECT_EQ(kelvtest::kindOf(*label.table), 4);
}

TEST_P(TableLayout, HoldsOutlineFillAndTextInOneGeode)
{
    const Label label(meta());
    ASSERT_EQ(label.table->getNumChildren(), 1u);
    EXPECT_EQ(label.geode->getName(), "");
    ASSERT_EQ(label.geode->getNumDrawables(), 3u);
    EXPECT_EQ(label.outline->getName(), "squareLineNode");
    EXPECT_EQ(label.fill->getName(), "squareNode");
    EXPECT_EQ(label.text->getName(), "textNode");
}

TEST_P(TableLayout, DrawsItsTextOnce)
{
    const Label label(meta());
    EXPECT_FALSE(label.text->getEnableDepthWrites()); // which take a second pass
}

TEST_P(TableLayout, SharesOneArrayOfFourCorners)
{
    const Label label(meta());
    EXPECT_EQ(label.outline->getVertexArray(), label.fill->getVertexArray());
    EXPECT_EQ(cornersOf(*label.fill), cornersAround(QStringLiteral("Table"), 14));
}

TEST_P(TableLayout, DrawsTheFillAsAQuadInTheBackgroundColour)
{
    CTableMeta::structTableMeta record = meta();
    record.backgroundColor.set(0.2f, 0.4f, 0.6f);
    const Label label(record);
    EXPECT_EQ(overallColour<osg::Vec3Array>(*label.fill), osg::Vec3f(0.2f, 0.4f, 0.6f));
    ASSERT_EQ(label.fill->getNumPrimitiveSets(), 1u);
    const auto* const quad = dynamic_cast<osg::DrawArrays*>(label.fill->getPrimitiveSet(0));
    EXPECT_EQ(quad->getMode(), static_cast<GLenum>(GL_QUADS));
    EXPECT_EQ(quad->getFirst(), 0);
    EXPECT_EQ(quad->getCount(), 4);
}

TEST_P(TableLayout, DrawsTheOutlineAsALoopTwoPixelsWide)
{
    const Label label(meta());
    ASSERT_EQ(label.outline->getNumPrimitiveSets(), 1u);
    const auto* const loop = dynamic_cast<osg::DrawArrays*>(label.outline->getPrimitiveSet(0));
    EXPECT_EQ(loop->getMode(), static_cast<GLenum>(GL_LINE_LOOP));
    EXPECT_EQ(loop->getFirst(), 0);
    EXPECT_EQ(loop->getCount(), 4);
    EXPECT_EQ(kelvtest::lineWidthOf(*label.outline), 2.0f);
}

TEST_P(TableLayout, LaysTheTextOutThreeUnitsAboveTheBottom)
{
    CTableMeta::structTableMeta record = meta();
    record.fontSize = 21;
    record.textColor.set(0.1f, 0.2f, 0.3f, 0.4f);
    const Label label(record);
    EXPECT_EQ(label.text->getPosition(), osg::Vec3f(0.0f, 13.0f, 0.0f));
    EXPECT_EQ(label.text->getCharacterHeight(), 21.0f);
    EXPECT_EQ(label.text->getFontWidth(), 64u);
    EXPECT_EQ(label.text->getFontHeight(), 64u);
    EXPECT_EQ(label.text->getAxisAlignment(), osgText::TextBase::XY_PLANE);
    EXPECT_EQ(label.text->getAlignment(), osgText::TextBase::CENTER_BOTTOM);
    EXPECT_EQ(label.text->getDrawMode(), static_cast<unsigned int>(osgText::TextBase::TEXT));
    EXPECT_EQ(label.text->getColor(), osg::Vec4f(0.1f, 0.2f, 0.3f, 0.4f));
}

TEST_P(TableLayout, DrawsUnlitWithoutDepthTestInItsRenderBin)
{
    CTableMeta::structTableMeta record = meta();
    record.renderIndex = 11;
    const osg::ref_ptr<osg::Geode> geode = Label(record).geode;
    const osg::StateSet* const state = geode->getStateSet();
    ASSERT_NE(state, nullptr);
    EXPECT_EQ(state->getMode(GL_LIGHTING), static_cast<unsigned int>(osg::StateAttribute::OFF));
    EXPECT_EQ(state->getMode(GL_DEPTH_TEST), static_cast<unsigned int>(osg::StateAttribute::OFF));
    EXPECT_EQ(state->getBinNumber(), 11);
    EXPECT_EQ(state->getBinName(), "RenderBin");
    EXPECT_EQ(state->getRenderBinMode(), osg::StateSet::USE_RENDERBIN_DETAILS);
}

TEST_P(TableLayout, StandsAtItsPositionTurnedToTheScreen)
{
    CTableMeta::structTableMeta record = meta();
    record.pos.set(1.5f, -2.5f, 3.5f);
    const Label label(record);
    EXPECT_EQ(label.table->getPosition(), osg::Vec3d(1.5, -2.5, 3.5));
    EXPECT_EQ(label.table->getAutoRotateMode(), osg::AutoTransform::ROTATE_TO_SCREEN);
    EXPECT_TRUE(label.table->getBound().contains(osg::Vec3f(1.5f, -2.5f, 3.5f)));
}

TEST_P(TableLayout, DoesNotReadIsBottom)
{
    CTableMeta::structTableMeta record = meta();
    const Label top(record);
    record.isBottom = true;
    const Label bottom(record);
    EXPECT_EQ(cornersOf(*bottom.fill), cornersOf(*top.fill));
    EXPECT_EQ(bottom.text->getPosition(), top.text->getPosition());
    EXPECT_EQ(bottom.table->getPosition(), top.table->getPosition());
}

INSTANTIATE_TEST_SUITE_P(Layouts, TableLayout, ::testing::Values(true, false),
                         [](const auto& layout) { return layout.param ? "Normal" : "Scaled"; });

// Where the layouts differ

TEST(NormalTable, KeepsItsSizeOnScreen)
{
    const Label label(withLayout(true));
    EXPECT_TRUE(label.table->getAutoScaleToScreen());
    EXPECT_EQ(label.table->getMinimumScale(), 0.0);
    EXPECT_EQ(label.table->getMaximumScale(), 3.4028234663852886e38);
}

TEST(ScaledTable, KeepsItsSizeInTheScene)
{
    const Label label(withLayout(false));
    EXPECT_FALSE(label.table->getAutoScaleToScreen());
    EXPECT_EQ(label.table->getMinimumScale(), 1.0);
    EXPECT_EQ(label.table->getMaximumScale(), DBL_MAX);
}

TEST(NormalTable, DrawsItsOutlineInTheTextColour)
{
    CTableMeta::structTableMeta meta = withLayout(true);
    meta.textColor.set(0.1f, 0.2f, 0.3f, 0.4f);
    EXPECT_EQ(overallColour(*Label(meta).outline), meta.textColor);
}

TEST(ScaledTable, DrawsItsOutlineInBlack)
{
    CTableMeta::structTableMeta meta = withLayout(false);
    meta.textColor.set(0.1f, 0.2f, 0.3f, 0.4f);
    EXPECT_EQ(overallColour(*Label(meta).outline), kBlack);
}

// Text and rectangle

struct LabelText
{
    const char* name;
    QString prefix;
    int suffix;
    QString text;
};

void PrintTo(const LabelText& text, std::ostream* stream)
{
    *stream << text.name;
}

class TableText : public ::testing::TestWithParam<std::tuple<LabelText, bool>>
{};

TEST_P(TableText, IsPrefixAndIndexInARectangleOfItsSize)
{
    const auto& [expected, isAutoScale] = GetParam();
    CTableMeta::structTableMeta meta = labelSaying(expected.prefix, expected.suffix);
    meta.isAutoScale = isAutoScale;
    meta.fontSize = 17;
    const Label label(meta);
    EXPECT_EQ(kelvtest::textOf(*label.text), expected.text);
    EXPECT_EQ(cornersOf(*label.fill), cornersAround(expected.text, 17));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, TableText,
    ::testing::Combine(
        ::testing::Values(LabelText{"Nothing", "", -1, "Table"}, LabelText{"Zero", "", 0, "0"},
                          LabelText{"Index", "", 12, "12"}, LabelText{"Prefix", "P", -1, "P"},
                          LabelText{"PrefixAndZero", "P", 0, "P0"}, LabelText{"PrefixAndIndex", "P", 12, "P12"},
                          LabelText{"PrefixAndNegative", "P", -2, "P-2"}, LabelText{"Negative", "", -2, "-2"},
                          LabelText{"Largest", "P", 2147483647, "P2147483647"},
                          LabelText{"Smallest", "", -2147483647 - 1, "-2147483648"}, LabelText{"Blank", " ", -1, " "},
                          LabelText{"German", QStringLiteral("Spaltmaß "), 3, QStringLiteral("Spaltmaß 3")},
                          LabelText{"Chinese", QStringLiteral("测量点"), 3, QStringLiteral("测量点3")},
                          LabelText{"Arabic", QStringLiteral("نقطة"), 3, QStringLiteral("نقطة3")},
                          LabelText{"BeyondTheBasicPlane", QStringLiteral("𝛥"), 1, QStringLiteral("𝛥1")}),
        ::testing::Bool()),
    [](const auto& combination) {
        return std::string(std::get<0>(combination.param).name) +
               (std::get<1>(combination.param) ? "Normal" : "Scaled");
    });

TEST(TableRectangle, IsCentredTenUnitsAboveTheAnchorAsHighAsTheFont)
{
    const Label label(labelSaying(QStringLiteral("Gap"), 1));
    const QFontMetrics metrics(QFont(QString(), 14));
    const std::vector<osg::Vec2f> corners = cornersOf(*label.fill);
    ASSERT_EQ(corners.size(), 4u);
    EXPECT_EQ(corners[0].x(), -corners[3].x());
    EXPECT_EQ(corners[3].x() - corners[0].x(), static_cast<float>(metrics.horizontalAdvance(QStringLiteral("Gap1"))));
    EXPECT_EQ(corners[1].y(), 10.0f);
    EXPECT_EQ(corners[0].y(), static_cast<float>(10 + metrics.height()));
}

TEST(TableRectangle, HasAHalfUnitForATextOfOddWidth)
{
    QString text;
    const QFontMetrics metrics(QFont(QString(), 14));
    while (metrics.horizontalAdvance(text) % 2 == 0 && text.size() < 40) text += QLatin1Char('i');
    const int width = metrics.horizontalAdvance(text);
    ASSERT_EQ(width % 2, 1) << "no text of odd width in this font";
    EXPECT_EQ(cornersOf(*Label(labelSaying(text)).fill)[3].x(), static_cast<float>(width) / 2.0f);
}

TEST(TableText, IsTranslatedWhenItIsBuilt)
{
    const kelvtest::InstalledTranslator translator(
        {{"Point", "Punkt"}, {"line", "Linie"}, {"Plane", QStringLiteral("Fläche")}, {"Table", "Tafel"}});
    EXPECT_EQ(kelvtest::textOf(*Label(labelSaying("Point", 3)).text), QStringLiteral("Punkt3"));
    EXPECT_EQ(kelvtest::textOf(*Label(labelSaying("line")).text), QStringLiteral("Linie"));
    EXPECT_EQ(kelvtest::textOf(*Label(labelSaying("Plane", 0)).text), QStringLiteral("Fläche0"));
}

TEST(TableText, OfATableWithoutPrefixAndIndexIsNotTranslated)
{
    const kelvtest::InstalledTranslator translator({{"Table", "Tafel"}});
    EXPECT_EQ(kelvtest::textOf(*Label(labelSaying("")).text), QStringLiteral("Table"));
    EXPECT_EQ(kelvtest::textOf(*Label(labelSaying("Table", 1)).text), QStringLiteral("Table1"));
}

TEST(TableText, IsMeasuredTranslated)
{
    const kelvtest::InstalledTranslator translator({{"Point", "A much longer word"}});
    EXPECT_EQ(cornersOf(*Label(labelSaying("Point")).fill), cornersAround("A much longer word", 14));
}

TEST(TableText, SurvivesAnyFontSize)
{
    for (const int size : {-5, 0, 1, 400}) {
        CTableMeta::structTableMeta meta = labelSaying("Gap");
        meta.fontSize = size;
        const Label label(meta);
        EXPECT_EQ(cornersOf(*label.fill), cornersAround("Gap", size));
        EXPECT_TRUE(kelvtest::isFiniteEverywhere(*label.table));
    }
}

// States

struct StateColour
{
    int state;
    osg::Vec4f color;
};

void PrintTo(const StateColour& state, std::ostream* stream)
{
    *stream << "state " << state.state;
}

const osg::Vec4f kSelected(0.1f, 0.2f, 0.3f, 0.9f);
const osg::Vec4f kHighlighted(0.4f, 0.5f, 0.6f, 0.8f);

/// Gives labels colours of their own, and every other configured colour one that must not appear.
void configureLabelColours(const kelvtest::RestoredConfig& config)
{
    const osg::Vec4f wrong(0.9f, 0.0f, 0.9f, 1.0f);
    config->setDotConfig({wrong, wrong, wrong, wrong});
    config->setFlagDotConfig({wrong, wrong, wrong, wrong});
    config->setArrowConfig({wrong, wrong, wrong, wrong});
    config->setPlaneConfig({kHighlighted, kSelected, wrong, wrong});
}

class TableState : public ::testing::TestWithParam<StateColour>
{};

TEST_P(TableState, ColoursTextAndOutlineFromThePlaneConfiguration)
{
    const kelvtest::RestoredConfig config;
    configureLabelColours(config);
    CTableMeta::structTableMeta meta;
    meta.textColor.set(0.7f, 0.7f, 0.7f, 0.7f);
    const Label label(meta);
    label.table->setState(static_cast<featureState>(GetParam().state));
    EXPECT_EQ(label.text->getColor(), GetParam().color);
    EXPECT_EQ(overallColour(*label.outline), GetParam().color);
}

TEST_P(TableState, LeavesTheFillInTheBackgroundColour)
{
    CTableMeta::structTableMeta meta;
    meta.backgroundColor.set(0.2f, 0.4f, 0.6f);
    const Label label(meta);
    label.table->setState(static_cast<featureState>(GetParam().state));
    EXPECT_EQ(overallColour<osg::Vec3Array>(*label.fill), meta.backgroundColor);
}

TEST_P(TableState, ChangesNothingInTheScaledLayout)
{
    CTableMeta::structTableMeta meta = withLayout(false);
    meta.textColor.set(0.7f, 0.7f, 0.7f, 0.7f);
    const Label label(meta);
    label.table->setState(static_cast<featureState>(GetParam().state));
    EXPECT_EQ(label.text->getColor(), meta.textColor);
    EXPECT_EQ(overallColour(*label.outline), kBlack);
}

INSTANTIATE_TEST_SUITE_P(States, TableState,
                         ::testing::Values(StateColour{2, kSelected}, StateColour{3, kHighlighted},
                                           StateColour{0, kBlack}, StateColour{-1, kBlack}, StateColour{99, kBlack}));

TEST(TableState, StartsNormalSoThatNormalChangesNothing)
{
    CTableMeta::structTableMeta meta;
    meta.textColor.set(0.7f, 0.7f, 0.7f, 0.7f);
    const Label label(meta);
    label.table->setState(featureStateNormal);
    EXPECT_EQ(label.text->getColor(), meta.textColor);
    EXPECT_EQ(overallColour(*label.outline), meta.textColor);
}

TEST(TableState, IsIgnoredWhenItIsThePresentOneEvenIfColoursChanged)
{
    const Label label(labelSaying("Gap"));
    label.table->setState(featureStateSelected);
    const osg::Vec4f other(0.3f, 0.3f, 0.3f, 0.3f);
    label.text->setColor(other);
    label.table->setState(featureStateSelected);
    EXPECT_EQ(label.text->getColor(), other);
}

TEST(TableState, BackToAPlainOneIsBlackNotTheTextColour)
{
    CTableMeta::structTableMeta meta;
    meta.textColor.set(0.7f, 0.7f, 0.7f, 0.7f);
    for (const featureState plain : {featureStateNone, featureStateNormal}) {
        const Label label(meta);
        label.table->setState(featureStateSelected);
        label.table->setState(plain);
        EXPECT_EQ(label.text->getColor(), kBlack);
        EXPECT_EQ(overallColour(*label.outline), kBlack);
    }
}

TEST(TableState, GivesTheOutlineAFreshColourArray)
{
    const Label label(labelSaying("Gap"));
    const osg::ref_ptr<const osg::Array> before = label.outline->getColorArray();
    label.table->setState(featureStateSelected);
    EXPECT_NE(label.outline->getColorArray(), before);
    EXPECT_EQ(overallColour(*label.outline), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST(TableState, ChangesDrawablesThatAreDynamic)
{
    const Label label(labelSaying("Gap"));
    EXPECT_EQ(label.outline->getDataVariance(), osg::Object::DYNAMIC);
    EXPECT_EQ(label.text->getDataVariance(), osg::Object::DYNAMIC);
    label.table->updateLanguage();
    const Label rebuilt(label.table);
    EXPECT_EQ(rebuilt.outline->getDataVariance(), osg::Object::DYNAMIC);
    EXPECT_EQ(rebuilt.text->getDataVariance(), osg::Object::DYNAMIC);
}

TEST(TableState, ReachesTablesHeldAsWhatTheyAre)
{
    struct Counting : CTableMeta
    {
        Counting() : CTableMeta(structTableMeta()) {}
        void setState(featureState) override { ++calls; }
        int calls = 0;
    };
    const osg::ref_ptr<Counting> counting = new Counting;
    static_cast<CTableMeta&>(*counting).setState(featureStateSelected);
    EXPECT_EQ(counting->calls, 1);
}

// Language

TEST(TableLanguage, IsUpdatedInTextAndRectangle)
{
    Label label(labelSaying("Point", 3));
    const kelvtest::InstalledTranslator translator({{"Point", "Messpunkt"}});
    label.table->updateLanguage();
    label.look();
    EXPECT_EQ(kelvtest::textOf(*label.text), QStringLiteral("Messpunkt3"));
    EXPECT_EQ(cornersOf(*label.fill), cornersAround("Messpunkt3", 14));
    EXPECT_EQ(cornersOf(*label.outline), cornersAround("Messpunkt3", 14));
}

TEST(TableLanguage, IsUpdatedInTheHitTest)
{
    const Label label(labelSaying("Point"));
    const kelvtest::InstalledTranslator translator({{"Point", "A very much longer word than before"}});
    const float beside = cornersOf(*label.fill)[3].x() + 5.0f;
    EXPECT_FALSE(label.table->checkClickPointIsInsideTable(osg::Matrixd(), beside, 15.0f));
    label.table->updateLanguage();
    EXPECT_TRUE(label.table->checkClickPointIsInsideTable(osg::Matrixd(), beside, 15.0f));
}

TEST(TableLanguage, IsUpdatedInANewGeodeThatReplacesTheOld)
{
    Label label(labelSaying("Point"));
    const osg::ref_ptr<osg::Geode> before = label.geode;
    label.table->updateLanguage();
    label.look();
    EXPECT_EQ(label.table->getNumChildren(), 1u);
    EXPECT_NE(label.geode, before);
    EXPECT_EQ(before->getNumParents(), 0u);
    EXPECT_EQ(label.table->getName(), "showTableNode");
    EXPECT_EQ(kelvtest::kindOf(*label.table), 4);
}

TEST(TableLanguage, IsUpdatedInThePresentState)
{
    const kelvtest::RestoredConfig config;
    configureLabelColours(config);
    CTableMeta::structTableMeta meta;
    meta.textColor.set(0.7f, 0.7f, 0.7f, 0.7f);
    for (const auto& [state, color] : {std::pair(featureStateSelected, kSelected), {featureStateNormal, kBlack}}) {
        Label label(meta);
        label.table->setState(state);
        label.table->updateLanguage();
        label.look();
        EXPECT_EQ(label.text->getColor(), color);
        EXPECT_EQ(overallColour(*label.outline), color);
    }
}

TEST(TableLanguage, LetsLaterStatesReachTheNewDrawables)
{
    Label label(labelSaying("Point"));
    label.table->updateLanguage();
    label.table->setState(featureStateSelected);
    label.look();
    EXPECT_EQ(label.text->getColor(), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_EQ(overallColour(*label.outline), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST(TableLanguage, DoesNotReachTheScaledLayout)
{
    Label label(Label(withLayout(false)).table);
    const osg::ref_ptr<osg::Geode> before = label.geode;
    label.table->updateLanguage();
    EXPECT_EQ(label.table->getChild(0), before);
}

TEST(TableLanguage, DoesNotReachATableWithoutChildren)
{
    const Label label(labelSaying("Point"));
    label.table->removeChildren(0, 1);
    label.table->updateLanguage();
    EXPECT_EQ(label.table->getNumChildren(), 0u);
}

// Copy

TEST(TableCopy, SharesGeodeRecordAndPlace)
{
    CTableMeta::structTableMeta meta = labelSaying("Gap", 3);
    meta.pos.set(1.0f, 2.0f, 3.0f);
    const Label label(meta);
    const osg::ref_ptr<CTableMeta> copy = new CTableMeta(*label.table);
    EXPECT_EQ(copy->getChild(0), label.geode);
    EXPECT_EQ(copy->getName(), "showTableNode");
    EXPECT_EQ(kelvtest::kindOf(*copy), 4);
    EXPECT_EQ(copy->getPosition(), osg::Vec3d(1.0, 2.0, 3.0));
    EXPECT_EQ(copy->getMetaStruct().tableNamePrefix, QStringLiteral("Gap"));
    EXPECT_TRUE(copy->getAutoScaleToScreen());
    EXPECT_EQ(copy->getAutoRotateMode(), osg::AutoTransform::ROTATE_TO_SCREEN);
}

TEST(TableCopy, ColoursTheSharedDrawables)
{
    const Label label(labelSaying("Gap"));
    const osg::ref_ptr<CTableMeta> copy = new CTableMeta(*label.table);
    copy->setState(featureStateSelected);
    EXPECT_EQ(label.text->getColor(), osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST(TableCopy, TakesTheStateOver)
{
    const Label label(labelSaying("Gap"));
    label.table->setState(featureStateSelected);
    const osg::ref_ptr<CTableMeta> copy = new CTableMeta(*label.table);
    label.text->setColor(kBlack);
    copy->setState(featureStateSelected);
    EXPECT_EQ(label.text->getColor(), kBlack);
}

TEST(TableCopy, IsHitWhereTheTableIs)
{
    const Label label(labelSaying("Gap"));
    const osg::ref_ptr<CTableMeta> copy = new CTableMeta(*label.table);
    EXPECT_TRUE(copy->checkClickPointIsInsideTable(osg::Matrixd(), 0.0f, 15.0f));
    EXPECT_FALSE(copy->checkClickPointIsInsideTable(osg::Matrixd(), 0.0f, 5.0f));
}

// Hit test

/// A label at (10, 20, 30) and the rectangle it covers under the identity.
struct HitLabel
{
    HitLabel() : label(record())
    {
        const std::vector<osg::Vec2f> corners = cornersOf(*label.fill);
        left = 10.0f + corners[1].x();
        right = 10.0f + corners[3].x();
        bottom = 20.0f + corners[1].y();
        top = 20.0f + corners[3].y();
    }

    static CTableMeta::structTableMeta record()
    {
        CTableMeta::structTableMeta meta = labelSaying("Gap", 12);
        meta.pos.set(10.0f, 20.0f, 30.0f);
        return meta;
    }

    bool hit(float x, float y) const { return label.table->checkClickPointIsInsideTable(osg::Matrixd(), x, y); }

    Label label;
    float left = 0.0f;
    float right = 0.0f;
    float bottom = 0.0f;
    float top = 0.0f;
};

TEST(TableHit, IsInsideTheRectangle)
{
    const HitLabel table;
    EXPECT_TRUE(table.hit(10.0f, (table.bottom + table.top) / 2.0f));
    EXPECT_TRUE(table.hit(table.left + 0.25f, table.bottom + 0.25f));
    EXPECT_TRUE(table.hit(table.right - 0.25f, table.top - 0.25f));
}

TEST(TableHit, IsOutsideOnEachEdge)
{
    const HitLabel table;
    const float middle = (table.bottom + table.top) / 2.0f;
    EXPECT_FALSE(table.hit(table.left, middle));
    EXPECT_FALSE(table.hit(table.right, middle));
    EXPECT_FALSE(table.hit(10.0f, table.bottom));
    EXPECT_FALSE(table.hit(10.0f, table.top));
}

TEST(TableHit, IsOutsideBeyondEachEdge)
{
    const HitLabel table;
    const float middle = (table.bottom + table.top) / 2.0f;
    EXPECT_FALSE(table.hit(table.left - 1.0f, middle));
    EXPECT_FALSE(table.hit(table.right + 1.0f, middle));
    EXPECT_FALSE(table.hit(10.0f, table.bottom - 1.0f));
    EXPECT_FALSE(table.hit(10.0f, table.top + 1.0f));
}

TEST(TableHit, DoesNotReachTheAnchorBelowTheRectangle)
{
    EXPECT_FALSE(HitLabel().hit(10.0f, 20.0f));
}

TEST(TableHit, FollowsTheMatrixWithItsPerspectiveDivision)
{
    const HitLabel table;
    osg::Matrixd toWindow;
    toWindow(0, 0) = 4.0; // x * 4 / w, y * 4 / w with w = 2: the anchor comes to lie at (20, 40)
    toWindow(1, 1) = 4.0;
    toWindow(3, 3) = 2.0;
    const float half = (table.right - table.left) / 2.0f;
    EXPECT_TRUE(table.label.table->checkClickPointIsInsideTable(toWindow, 20.0f, 40.0f + 15.0f));
    EXPECT_TRUE(table.label.table->checkClickPointIsInsideTable(toWindow, 20.0f + half - 1.0f, 40.0f + 15.0f));
    EXPECT_FALSE(table.label.table->checkClickPointIsInsideTable(toWindow, 20.0f + half + 1.0f, 40.0f + 15.0f));
}

TEST(TableHit, MultipliesTheAnchorAsARowVector)
{
    const osg::Matrixd toWindow = osg::Matrixd::translate(100.0, 200.0, 0.0);
    EXPECT_TRUE(HitLabel().label.table->checkClickPointIsInsideTable(toWindow, 110.0f, 235.0f));
}

TEST(TableHit, IsTheSameInTheScaledLayout)
{
    CTableMeta::structTableMeta meta = HitLabel::record();
    meta.isAutoScale = false;
    const Label scaled(meta);
    EXPECT_TRUE(scaled.table->checkClickPointIsInsideTable(osg::Matrixd(), 10.0f, 35.0f));
    EXPECT_FALSE(scaled.table->checkClickPointIsInsideTable(osg::Matrixd(), 10.0f, 25.0f));
}

TEST(TableHit, IsNoneForAPositionThatIsNotFinite)
{
    CTableMeta::structTableMeta meta = labelSaying("Gap");
    meta.pos.set(0.0f, std::numeric_limits<float>::infinity(), 0.0f);
    const Label label(meta);
    EXPECT_FALSE(label.table->checkClickPointIsInsideTable(osg::Matrixd(), 0.0f, 15.0f));
}

} // namespace
