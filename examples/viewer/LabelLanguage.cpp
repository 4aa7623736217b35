#include "LabelLanguage.h"

#include <KelvOsgTools/CFeatureConfig.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QHash>
#include <QStringList>

namespace viewer {

namespace {

struct Words
{
    QString name;   // of the language, in itself
    int identifier; // the platform's number for it, which the configuration carries
    QHash<QByteArray, QString> translations;
};

const QHash<int, Words>& wordsByLanguage()
{
    static const QHash<int, Words> words{
        {QLocale::English, {QStringLiteral("English"), 1033, {{"line", QStringLiteral("Line")}}}},
        {QLocale::German,
         {QStringLiteral("Deutsch"),
          1031,
          {{"Point", QStringLiteral("Punkt")}, {"line", QStringLiteral("Linie")}, {"Plane", QStringLiteral("Ebene")}}}},
        {QLocale::Chinese,
         {QString::fromUtf8("中文"),
          2052,
          {{"Point", QString::fromUtf8("点")},
           {"line", QString::fromUtf8("直线")},
           {"Plane", QString::fromUtf8("平面")}}}},
    };
    return words;
}

QString firstFileOf(const QStringList& candidates)
{
    for (const QString& file : candidates)
        if (QFileInfo(file).isFile()) return file;
    return {};
}

} // namespace

const QVector<QLocale::Language>& labelLanguages()
{
    static const QVector<QLocale::Language> languages{QLocale::English, QLocale::German, QLocale::Chinese};
    return languages;
}

QString labelLanguageName(QLocale::Language language)
{
    return wordsByLanguage()[language].name;
}

QString LabelTranslator::translate(const char* context, const char* word, const char*, int) const
{
    // The context in which the library looks its words up.
    if (qstrcmp(context, "QObject") != 0) return {};
    return wordsByLanguage()[m_language].translations.value(word);
}

void installLabelLanguage(QLocale::Language language)
{
    static auto* const translator = new LabelTranslator(qApp);
    translator->setLanguage(language);
    QCoreApplication::removeTranslator(translator);
    QCoreApplication::installTranslator(translator);
    KelvOsgTools::CFeatureConfig::sigleFeatureConfig()->setLanguage(
        static_cast<KelvOsgTools::languageType>(wordsByLanguage()[language].identifier));
}

QString labelFontFor(QLocale::Language language)
{
    static const QStringList latin{
        QStringLiteral("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"),
        QStringLiteral("/usr/share/fonts/dejavu-sans-fonts/DejaVuSans.ttf"),
        QStringLiteral("/usr/share/fonts/TTF/DejaVuSans.ttf"),
        QStringLiteral("C:/Windows/Fonts/segoeui.ttf"),
    };
    static const QStringList chinese{
        QStringLiteral("/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc"),
        QStringLiteral("/usr/share/fonts/google-noto-cjk/NotoSansCJK-Regular.ttc"),
        QStringLiteral("/usr/share/fonts/noto-cjk/NotoSansCJK-Regular.ttc"),
        QStringLiteral("C:/Windows/Fonts/msyh.ttc"),
    };
    return firstFileOf(language == QLocale::Chinese ? chinese : latin);
}

} // namespace viewer
