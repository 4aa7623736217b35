#include "support/Config.h"

#include <KelvOsgTools/CFeatureConfig.h>

#include <gtest/gtest.h>

#include <osg/io_utils>

#include <type_traits>

namespace {
using namespace KelvOsgTools;

const osg::Vec4f kGreen(0.0f, 1.0f, 0.0f, 1.0f);
const osg::Vec4f kRed(1.0f, 0.0f, 0.0f, 1.0f);

template <typename Record>
void expectDefaultColours(const Record& record)
{
    EXPECT_EQ(record.tableHighlightedColor, kGreen);
    EXPECT_EQ(record.tableSelectedColor, kRed);
    EXPECT_EQ(record.highlightedColor, kGreen);
    EXPECT_EQ(record.selectedColor, kRed);
}

/// A record of four colours that differ from each other and from the defaults.
template <typename Record>
Record distinctColours(float seed)
{
    Record record;
    record.tableHighlightedColor.set(seed, 0.1f, 0.2f, 0.3f);
    record.tableSelectedColor.set(seed, 0.4f, 0.5f, 0.6f);
    record.highlightedColor.set(seed, 0.7f, 0.8f, 0.9f);
    record.selectedColor.set(seed, 0.15f, 0.25f, 0.35f);
    return record;
}

template <typename Record>
void expectSameColours(const Record& a, const Record& b)
{
    EXPECT_EQ(a.tableHighlightedColor, b.tableHighlightedColor);
    EXPECT_EQ(a.tableSelectedColor, b.tableSelectedColor);
    EXPECT_EQ(a.highlightedColor, b.highlightedColor);
    EXPECT_EQ(a.selectedColor, b.selectedColor);
}

/// Sets every field to a value that is not its default.
void fill(CFeatureConfig& config)
{
    config.setDotConfig(distinctColours<featureDotConfig>(0.01f));
    config.setFlagDotConfig(distinctColours<featureFlagDotConfig>(0.02f));
    config.setArrowConfig(distinctColours<featureArrowConfig>(0.03f));
    config.setPlaneConfig(distinctColours<featurePlaneConfig>(0.04f));
    config.setFontPath(QStringLiteral("Any Family"));
    config.setPlaneMinThresholdValue(2.5f);
    config.setLanguage(static_cast<languageType>(1031));
    config.setNormalTableFontSize(21);
    config.setFlagTableFontSize(22);
}

void expectFilled(const CFeatureConfig& config)
{
    expectSameColours(config.getDotConfig(), distinctColours<featureDotConfig>(0.01f));
    expectSameColours(config.getFlagDotConfig(), distinctColours<featureFlagDotConfig>(0.02f));
    expectSameColours(config.getArrowConfig(), distinctColours<featureArrowConfig>(0.03f));
    expectSameColours(config.getPlaneConfig(), distinctColours<featurePlaneConfig>(0.04f));
    EXPECT_EQ(config.getFontPath(), QStringLiteral("Any Family"));
    EXPECT_EQ(config.getPlaneMinThresholdValue(), 2.5f);
    EXPECT_EQ(config.getLanguage(), 1031);
    EXPECT_EQ(config.getNormalTableFontSize(), 21);
    EXPECT_EQ(config.getFlagTableFontSize(), 22);
}

void expectDefaults(const CFeatureConfig& config)
{
    expectDefaultColours(config.getDotConfig());
    expectDefaultColours(config.getFlagDotConfig());
    expectDefaultColours(config.getArrowConfig());
    expectDefaultColours(config.getPlaneConfig());
    EXPECT_EQ(config.getFontPath(), QString());
    EXPECT_EQ(config.getPlaneMinThresholdValue(), 0.01f);
    EXPECT_EQ(config.getLanguage(), 1033);
    EXPECT_EQ(config.getNormalTableFontSize(), 14);
    EXPECT_EQ(config.getFlagTableFontSize(), 19);
}

// What a static object of the host sees while the host itself is still being loaded.
const CFeatureConfig* const kSeenAtLoad = CFeatureConfig::sigleFeatureConfig();

template <typename Record>
class ColourRecord : public ::testing::Test
{};
using ColourRecords = ::testing::Types<featureDotConfig, featureFlagDotConfig, featureArrowConfig, featurePlaneConfig>;
TYPED_TEST_SUITE(ColourRecord, ColourRecords);

TYPED_TEST(ColourRecord, IsGreenWhenHighlightedAndRedWhenSelectedByDefault)
{
    expectDefaultColours(TypeParam());
}

TYPED_TEST(ColourRecord, HoldsFourColoursInOrder)
{
    const TypeParam record{{1, 0, 0, 0}, {2, 0, 0, 0}, {3, 0, 0, 0}, {4, 0, 0, 0}};
    EXPECT_EQ(record.tableHighlightedColor.r(), 1.0f);
    EXPECT_EQ(record.tableSelectedColor.r(), 2.0f);
    EXPECT_EQ(record.highlightedColor.r(), 3.0f);
    EXPECT_EQ(record.selectedColor.r(), 4.0f);
    static_assert(sizeof(TypeParam) == 4 * sizeof(osg::Vec4f));
}

TEST(CFeatureConfig, StandsFromTheMomentTheLibraryIsLoaded)
{
    EXPECT_NE(kSeenAtLoad, nullptr);
}

TEST(CFeatureConfig, IsTheSameInstanceAlways)
{
    EXPECT_EQ(CFeatureConfig::sigleFeatureConfig(), kSeenAtLoad);
    EXPECT_EQ(CFeatureConfig::sigleFeatureConfig(), CFeatureConfig::sigleFeatureConfig());
}

TEST(CFeatureConfig, HasTheDefaultsWhenFresh)
{
    expectDefaults(*CFeatureConfig::sigleFeatureConfig());
}

TEST(CFeatureConfig, ReturnsWhatWasSet)
{
    const kelvtest::RestoredConfig restored;
    fill(*CFeatureConfig::sigleFeatureConfig());
    expectFilled(*CFeatureConfig::sigleFeatureConfig());
}

TEST(CFeatureConfig, KeepsTheRecordsOfTheKindsApart)
{
    const kelvtest::RestoredConfig config;
    config->setFlagDotConfig(distinctColours<featureFlagDotConfig>(0.5f));
    expectDefaultColours(config->getDotConfig());
    expectDefaultColours(config->getArrowConfig());
    expectDefaultColours(config->getPlaneConfig());
}

TEST(CFeatureConfig, PassesAnyLanguageThrough)
{
    const kelvtest::RestoredConfig config;
    for (const int language : {0, -1, 1031, 2052, 2147483647}) {
        config->setLanguage(static_cast<languageType>(language));
        EXPECT_EQ(config->getLanguage(), language);
    }
}

TEST(CFeatureConfig, CopiesTheRecordThatIsSet)
{
    const kelvtest::RestoredConfig config;
    featureDotConfig record = distinctColours<featureDotConfig>(0.5f);
    config->setDotConfig(record);
    record.selectedColor.set(0.0f, 0.0f, 0.0f, 0.0f);
    expectSameColours(config->getDotConfig(), distinctColours<featureDotConfig>(0.5f));
}

TEST(CFeatureConfig, GivesItsCopyEveryField)
{
    const kelvtest::RestoredConfig restored;
    fill(*CFeatureConfig::sigleFeatureConfig());
    const CFeatureConfig copy(*CFeatureConfig::sigleFeatureConfig());
    expectFilled(copy);
}

TEST(CFeatureConfig, TakesEveryFieldByAssignment)
{
    const kelvtest::RestoredConfig restored;
    CFeatureConfig target(*CFeatureConfig::sigleFeatureConfig());
    fill(*CFeatureConfig::sigleFeatureConfig());
    target = *CFeatureConfig::sigleFeatureConfig();
    expectFilled(target);
}

TEST(CFeatureConfig, IsIndependentOfItsCopy)
{
    CFeatureConfig copy(*CFeatureConfig::sigleFeatureConfig());
    fill(copy);
    expectDefaults(*CFeatureConfig::sigleFeatureConfig());
}

TEST(CFeatureConfig, IsMadeByTheLibraryOnly)
{
    static_assert(!std::is_default_constructible_v<CFeatureConfig>);
    static_assert(std::is_copy_constructible_v<CFeatureConfig>);
    static_assert(std::is_copy_assignable_v<CFeatureConfig>);
    static_assert(std::is_destructible_v<CFeatureConfig>);
}

template <typename Result>
using ConstGetter = Result (CFeatureConfig::*)() const;

TEST(CFeatureConfig, ReturnsRecordsAndFontPathByReferenceAndTheRestByValue)
{
    static_assert(std::is_same_v<decltype(&CFeatureConfig::getDotConfig), ConstGetter<const featureDotConfig&>>);
    static_assert(
        std::is_same_v<decltype(&CFeatureConfig::getFlagDotConfig), ConstGetter<const featureFlagDotConfig&>>);
    static_assert(std::is_same_v<decltype(&CFeatureConfig::getArrowConfig), ConstGetter<const featureArrowConfig&>>);
    static_assert(std::is_same_v<decltype(&CFeatureConfig::getPlaneConfig), ConstGetter<const featurePlaneConfig&>>);
    static_assert(std::is_same_v<decltype(&CFeatureConfig::getFontPath), ConstGetter<const QString&>>);
    static_assert(std::is_same_v<decltype(&CFeatureConfig::getPlaneMinThresholdValue), ConstGetter<float>>);
    static_assert(std::is_same_v<decltype(&CFeatureConfig::getLanguage), ConstGetter<languageType>>);
    static_assert(std::is_same_v<decltype(&CFeatureConfig::getNormalTableFontSize), ConstGetter<int>>);
    static_assert(std::is_same_v<decltype(&CFeatureConfig::getFlagTableFontSize), ConstGetter<int>>);
}

TEST(CFeatureConfig, OutlivesTheStaticObjectsOfTheHost)
{
    const auto useAfterMain = [] {
        std::atexit([] {
            const bool alive = CFeatureConfig::sigleFeatureConfig()->getFontPath() == QLatin1String("kept");
            std::_Exit(alive ? 0 : 1);
        });
        CFeatureConfig::sigleFeatureConfig()->setFontPath(QStringLiteral("kept"));
        std::exit(2);
    };
    EXPECT_EXIT(useAfterMain(), ::testing::ExitedWithCode(0), "");
}

} // namespace
