#pragma once

#include <QCoreApplication>
#include <QHash>
#include <QString>
#include <QTranslator>

#include <utility>

namespace kelvtest {

/// A translator that knows the given words of a context, installed for the life of this object.
class InstalledTranslator : public QTranslator
{
public:
    InstalledTranslator(QHash<QString, QString> words, QString context = QStringLiteral("QObject"))
        : m_words(std::move(words)), m_context(std::move(context))
    {
        QCoreApplication::installTranslator(this);
    }
    ~InstalledTranslator() override { QCoreApplication::removeTranslator(this); }

    QString translate(const char* context, const char* source, const char* disambiguation, int count) const override
    {
        const bool known = m_context == QLatin1String(context) && !disambiguation && count == -1;
        return known ? m_words.value(QString::fromUtf8(source)) : QString();
    }
    bool isEmpty() const override { return false; }

private:
    QHash<QString, QString> m_words;
    QString m_context;
};

} // namespace kelvtest
