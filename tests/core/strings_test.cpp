// The string table as the resource loader gives it, in both languages.
#include <gtest/gtest.h>

#include "core/mdlMain.h"
#include "core/strings_win.h"

namespace zorvi {
namespace {

TEST(Strings, TextsStandAtTheirIdsPlusTheLanguageOffset) {
    const struct {
        const char* setting;  // Setting/Language
        int id;
        std::wstring text;  // the whole text, or for id 1 its start
    } cases[] = {
        {"English", 101, L"Set target file"},
        {"English", 506, L" is not found. Do you execute using a default setup?"},
        {"English", 100, L"!"},
        {"English", 1, L"Shortcut Key (Main Window)"},
        {"English", 60000, L""},
        {"japanese", 309, L"Configuration file not found."},
        {"Japanese", 505, L"Zorvi はすでに起動しています。コマンドモードからは実行できません。"},
        {"Japanese", 2, L""},  // the Japanese help is one text
    };
    const int saved = mdlMain::LanguageOffset();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        mdlMain::SetLanguageOffset(LanguageOffsetFor(c.setting));
        EXPECT_EQ(LoadText(c.id).substr(0, c.id == 1 ? c.text.size() : std::wstring::npos), c.text);
    }
    mdlMain::SetLanguageOffset(saved);
}

}  // namespace
}  // namespace zorvi
