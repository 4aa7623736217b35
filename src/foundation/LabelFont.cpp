#include "foundation/LabelFont.h"

#include <KelvOsgTools/CFeatureConfig.h>

#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QGuiApplication>

namespace KelvOsgTools::detail {
namespace {

/// What Qt seeks substitutes for when it is asked for the family path: it takes commas for
/// separators of families, and seeks for each of them. The last one holds the name of the file.
QString soughtFamily(const QString& path)
{
    return path.section(QLatin1Char(','), -1).trimmed();
}

} // namespace

bool canMeasureText()
{
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

void registerLabelFont(const QString& path)
{
    if (path.isEmpty() || !canMeasureText()) return;
    const QString family = soughtFamily(path);
    if (!QFont::substitutes(family).isEmpty() || !QFileInfo(path).isFile()) return;

    const QStringList families = QFontDatabase::applicationFontFamilies(QFontDatabase::addApplicationFont(path));
    // A file that holds no font gets the default family, so that it is not read again for every label.
    QFont::insertSubstitution(family, families.value(0, QFont().family()));
}

TextExtent measureText(const QString& text, int fontSize)
{
    const QFontMetrics metrics(QFont(CFeatureConfig::sigleFeatureConfig()->getFontPath(), fontSize));
    return {metrics.horizontalAdvance(text), metrics.height()};
}

std::string labelFontFile()
{
    return QFile::encodeName(CFeatureConfig::sigleFeatureConfig()->getFontPath()).toStdString();
}

} // namespace KelvOsgTools::detail
