// Visible texts from the string table, in the language of the user interface.
#include "core/strings_win.h"

#include <windows.h>

#include "core/mdlMain.h"
#include "settings/schema.h"

namespace zorvi {

std::wstring LoadText(int englishId) {
    const wchar_t* text = nullptr;
    // With a zero buffer size LoadStringW hands out the resource itself, so
    // texts of any length come back whole.
    const int length = LoadStringW(GetModuleHandleW(nullptr),
                                   static_cast<UINT>(englishId + mdlMain::LanguageOffset()),
                                   reinterpret_cast<wchar_t*>(&text), 0);
    if (length <= 0 || text == nullptr) return {};
    return std::wstring(text, static_cast<std::size_t>(length));
}

int LanguageOffsetFor(const std::string& languageSetting) {
    return languageSetting == settings::kJapanese ? 1000 : 0;
}

}  // namespace zorvi
