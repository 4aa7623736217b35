#include "primitives/ShaderText.h"

#include <QDebug>
#include <QFile>

namespace KelvOsgTools::detail {

std::string readShaderText(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        qCritical().noquote() << "Cannot open" << path;
        return {};
    }
    return file.readAll().toStdString();
}

} // namespace KelvOsgTools::detail
