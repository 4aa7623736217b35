#pragma once

#include <QLocale>
#include <QTranslator>

namespace viewer {

/// Languages that labels can be shown in.
const QVector<QLocale::Language>& labelLanguages();
QString labelLanguageName(QLocale::Language language);

/// Translates the three words of labels and nothing else.
class LabelTranslator : public QTranslator
{
    Q_OBJECT

public:
    using QTranslator::QTranslator;

    void setLanguage(QLocale::Language language) { m_language = language; }
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* word, const char* disambiguation, int n) const override;

private:
    QLocale::Language m_language = QLocale::English;
};

/// Makes new labels appear in a language; call MeasureScene::updateLanguage() for the others.
void installLabelLanguage(QLocale::Language language);

/// A font file of this machine that has the characters of the language; empty if none is known.
QString labelFontFor(QLocale::Language language);

} // namespace viewer
