#include <KelvOsgTools/FeatureTypes.h>

#include <gtest/gtest.h>

#include <type_traits>

namespace {
using namespace KelvOsgTools;

TEST(FeatureType, HasTheNumbersThatScenesStore)
{
    EXPECT_EQ(featureAll, 0);
    EXPECT_EQ(featureDot, 1);
    EXPECT_EQ(featureLine, 2);
    EXPECT_EQ(featurePlane, 3);
    EXPECT_EQ(featureTable, 4);
    EXPECT_EQ(featureFlagDot, 5);
}

TEST(FeatureState, HasTheNumbersThatHostsPass)
{
    EXPECT_EQ(featureStateNone, 0);
    EXPECT_EQ(featureStateNormal, 1);
    EXPECT_EQ(featureStateSelected, 2);
    EXPECT_EQ(featureStateHighlighted, 3);
}

template <typename Enumeration>
class HostEnumeration : public ::testing::Test
{};
using HostEnumerations = ::testing::Types<featureType, featureState, languageType>;
TYPED_TEST_SUITE(HostEnumeration, HostEnumerations);

TYPED_TEST(HostEnumeration, IsAnInt)
{
    static_assert(std::is_same_v<std::underlying_type_t<TypeParam>, int>);
    static_assert(sizeof(TypeParam) == 4);
}

TYPED_TEST(HostEnumeration, IsUnscoped)
{
    static_assert(std::is_convertible_v<TypeParam, int>);
}

TYPED_TEST(HostEnumeration, CarriesValuesWithoutAName)
{
    for (const int value : {-1, 99, 1031, 2147483647}) EXPECT_EQ(static_cast<TypeParam>(value), value);
}

TEST(LanguageType, NamesEnglishOfTheUnitedStates)
{
    EXPECT_EQ(languageEnglishUnitedStates, 1033);
}

} // namespace
