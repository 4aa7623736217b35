#include "foundation/LabelFont.h"

#include <KelvOsgTools/CFeatureConfig.h>

#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QGuiApplication>

namespace KelvOsgTools::detail {

bool canMeasureText()
{
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

void registerLabelFont(const QString& path)
{
    if (path.isEmpty() || !canMeasureText()) return;
    if (!QFont::substitutes(path).isEmpty() || !QFileInfo(path).isFile()) return;

    const QStringList families = QFontDatabase::applicationFontFamilies(QFontDatabase::addApplicationFont(path));
    // A file that holds no font gets the default family, so that it is not read again for every label.
    QFont::insertSubstitution(path, families.value(0, QFont().family()));
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
