#include "support/Translator.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <gtest/gtest.h>

namespace {
using namespace KelvOsgTools;
using kelvtest::InstalledTranslator;

QHash<QString, QString> germanWords()
{
    return {{QStringLiteral("Point"), QStringLiteral("Punkt")},  {QStringLiteral("line"), QStringLiteral("Linie")},
            {QStringLiteral("Plane"), QStringLiteral("Fläche")}, {QStringLiteral("Gap"), QStringLiteral("Spalt")},
            {QStringLiteral("point"), QStringLiteral("falsch")}, {QStringLiteral("Line"), QStringLiteral("falsch")},
            {QStringLiteral("plane"), QStringLiteral("falsch")}};
}

TEST(LanguageTranslate, ReturnsEveryWordAsItIsWithoutATranslator)
{
    for (const char* const word : {"Point", "line", "Plane", "point", "Table", "", "Spaltmaß", "测量", "نقطة"})
        EXPECT_EQ(languageTranslate(QString::fromUtf8(word)), QString::fromUtf8(word));
}

TEST(LanguageTranslate, TranslatesTheThreeLabelWords)
{
    const InstalledTranslator translator(germanWords());
    EXPECT_EQ(languageTranslate(QStringLiteral("Point")), QStringLiteral("Punkt"));
    EXPECT_EQ(languageTranslate(QStringLiteral("line")), QStringLiteral("Linie"));
    EXPECT_EQ(languageTranslate(QStringLiteral("Plane")), QStringLiteral("Fläche"));
}

TEST(LanguageTranslate, TellsUpperFromLowerCase)
{
    const InstalledTranslator translator(germanWords());
    for (const char* const word : {"point", "Line", "plane", "POINT"})
        EXPECT_EQ(languageTranslate(QString::fromLatin1(word)), QLatin1String(word));
}

TEST(LanguageTranslate, TranslatesNoOtherWord)
{
    const InstalledTranslator translator(germanWords());
    for (const char* const word : {"Gap", "Point ", "Point1", "Points", ""})
        EXPECT_EQ(languageTranslate(QString::fromLatin1(word)), QLatin1String(word));
}

TEST(LanguageTranslate, AsksInTheGenericObjectContext)
{
    const InstalledTranslator translator(germanWords(), QStringLiteral("Labels"));
    EXPECT_EQ(languageTranslate(QStringLiteral("Point")), QStringLiteral("Point"));
}

} // namespace
