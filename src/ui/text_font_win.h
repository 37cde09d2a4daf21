// The font of the texts a window shows, chosen so that Japanese reads as
// Japanese whatever the system's fonts and language.
#pragma once

#include <windows.h>

#include <string_view>

#include "core/handles_win.h"

namespace zorvi {

// The system's message font, as the windows use it for their texts.
LOGFONTW MessageFont();

// A font like base that has a glyph for every character of shown. When base
// lacks one (Wine's text boxes do not borrow glyphs from linked fonts, so a
// Latin message font shows Japanese as boxes there), the same size in the
// Japanese user-interface font is taken, provided that one has them all;
// otherwise base itself.
UniqueFont CreateFontFor(const LOGFONTW& base, std::wstring_view shown);

// Whether the font has a glyph for every character of text beyond ASCII.
bool FontHasGlyphs(HFONT font, std::wstring_view text);

}  // namespace zorvi
