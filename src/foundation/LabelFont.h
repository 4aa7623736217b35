#pragma once

#include <QString>

#include <string>

namespace KelvOsgTools::detail {

/// Size of a label's text in the units of its plane.
struct TextExtent
{
    int width = 0;
    int height = 0;
};

/// Whether Qt can measure text: without a QGuiApplication a font metric aborts the process.
bool canMeasureText();

/// Makes Qt resolve the family named by a font path to the font in that file, so that labels are
/// measured in the font they are drawn in. Does nothing if the path names no file, or before there
/// is a QGuiApplication: labels therefore ask again.
void registerLabelFont(const QString& path);

/// Advance width and font height of text in the font of the configuration. Needs canMeasureText().
TextExtent measureText(const QString& text, int fontSize);

/// The configured font path as OpenSceneGraph wants file names: in the local 8-bit encoding.
std::string labelFontFile();

} // namespace KelvOsgTools::detail
