#pragma once

#include <QString>

#include <string>

namespace KelvOsgTools::detail {

/// The whole content of a file or resource. One that cannot be opened is told to Qt's critical log
/// and gives an empty text.
std::string readShaderText(const QString& path);

} // namespace KelvOsgTools::detail
