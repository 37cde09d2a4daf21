// Visible texts from the string table, in the language of the user interface.
#include "core/strings_win.h"

#include <windows.h>

#include "core/mdlMain.h"
#include "settings/schema.h"

namespace zorvi {

namespace {

std::wstring LoadTextAt(int id) {
    const wchar_t* text = nullptr;
    // With a zero buffer size LoadStringW hands out the resource itself, so
    // texts of any length come back whole.
    const int length = LoadStringW(GetModuleHandleW(nullptr), static_cast<UINT>(id),
                                   reinterpret_cast<wchar_t*>(&text), 0);
    if (length <= 0 || text == nullptr) return {};
    return std::wstring(text, static_cast<std::size_t>(length));
}

}  // namespace

std::wstring LoadText(int englishId) { return LoadTextAt(englishId + mdlMain::LanguageOffset()); }

std::wstring LoadEnglishText(int englishId) { return LoadTextAt(englishId); }

int LanguageOffsetFor(const std::string& languageSetting) {
    return languageSetting == settings::kJapanese ? 1000 : 0;
}

}  // namespace zorvi
