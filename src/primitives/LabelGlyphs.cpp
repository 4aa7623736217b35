#include "primitives/LabelGlyphs.h"

#include "foundation/LabelFont.h"

#include <osg/observer_ptr>
#include <osgDB/Options>

#include <string>

namespace KelvOsgTools::detail {
namespace {

/// A font of the library's own, apart from the one that the host's texts may share.
osg::ref_ptr<osgText::Font> readGlyphs(const std::string& file)
{
    const osg::ref_ptr<osgDB::Options> withoutCache = new osgDB::Options;
    osg::ref_ptr<osgText::Font> font = osgText::readRefFontFile(file, withoutCache);
    // Labels face the screen: filtering for slanted views would change nothing but the time it takes.
    if (font) font->setMaxAnisotropy(1.0f);
    return font;
}

} // namespace

osg::ref_ptr<osgText::Font> labelGlyphs()
{
    static std::string lastFile;
    static osg::observer_ptr<osgText::Font> lastFont;
    static bool lastWasReadable = true;

    const std::string file = labelFontFile();
    osg::ref_ptr<osgText::Font> font;
    if (file == lastFile && (lastFont.lock(font) || !lastWasReadable)) return font;

    font = readGlyphs(file);
    lastFile = file;
    lastFont = font;
    lastWasReadable = font.valid();
    return font;
}

} // namespace KelvOsgTools::detail
