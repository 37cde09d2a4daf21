// The font of the texts a window shows, chosen so that Japanese reads as
// Japanese whatever the system's fonts and language.
#include "ui/text_font_win.h"

#include <cwchar>
#include <string>
#include <vector>

namespace zorvi {
namespace {

// Installed with every Japanese Windows and with the East Asian fonts of
// the others; Wine maps it onto a Japanese font of the system.
constexpr wchar_t kJapaneseFace[] = L"MS UI Gothic";

// The characters worth asking about: ASCII is in every font, and halves of
// characters beyond the first plane have no glyph of their own to ask for.
std::wstring CharactersBeyondAscii(std::wstring_view text) {
    std::wstring wanted;
    for (const wchar_t c : text) {
        if (c >= 0x80 && (c < 0xD800 || c > 0xDFFF)) wanted += c;
    }
    return wanted;
}

}  // namespace

LOGFONTW MessageFont() {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0)) {
        return metrics.lfMessageFont;
    }
    LOGFONTW font{};
    GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof font, &font);
    return font;
}

bool FontHasGlyphs(HFONT font, std::wstring_view text) {
    const std::wstring wanted = CharactersBeyondAscii(text);
    if (wanted.empty()) return true;
    const UniqueScreenDC dc(GetDC(nullptr));
    if (!dc || font == nullptr) return false;
    const HGDIOBJ previous = SelectObject(dc.get(), font);
    std::vector<WORD> glyphs(wanted.size());
    const DWORD converted =
        GetGlyphIndicesW(dc.get(), wanted.data(), static_cast<int>(wanted.size()), glyphs.data(),
                         GGI_MARK_NONEXISTING_GLYPHS);
    SelectObject(dc.get(), previous);
    if (converted == GDI_ERROR) return false;
    for (const WORD glyph : glyphs) {
        if (glyph == 0xFFFF) return false;
    }
    return true;
}

UniqueFont CreateFontFor(const LOGFONTW& base, std::wstring_view shown) {
    UniqueFont font(CreateFontIndirectW(&base));
    if (FontHasGlyphs(font.get(), shown)) return font;
    LOGFONTW japanese = base;
    japanese.lfCharSet = DEFAULT_CHARSET;
    wcsncpy(japanese.lfFaceName, kJapaneseFace, LF_FACESIZE - 1);
    japanese.lfFaceName[LF_FACESIZE - 1] = L'\0';
    UniqueFont fallback(CreateFontIndirectW(&japanese));
    if (fallback && FontHasGlyphs(fallback.get(), shown)) return fallback;
    return font;
}

}  // namespace zorvi
