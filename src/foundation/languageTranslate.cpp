#include <KelvOsgTools/FeatureFunctions.h>

#include <QObject>

namespace KelvOsgTools {

QString languageTranslate(const QString& word)
{
    if (word == QLatin1String("Point")) return QObject::tr("Point");
    if (word == QLatin1String("line")) return QObject::tr("line");
    if (word == QLatin1String("Plane")) return QObject::tr("Plane");
    return word;
}

} // namespace KelvOsgTools
