#pragma once

#include <osg/ref_ptr>
#include <osgText/Font>

namespace KelvOsgTools::detail {

/// The font that label texts are drawn in: that of the configured file; null, which means the
/// default font, where there is none. All labels of a font share it, and it lives as long as one of
/// them does.
osg::ref_ptr<osgText::Font> labelGlyphs();

} // namespace KelvOsgTools::detail
