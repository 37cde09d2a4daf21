// The string table as the resource loader gives it, in both languages.
#include <gtest/gtest.h>

#include "core/mdlMain.h"
#include "core/strings_win.h"

namespace zorvi {
namespace {

TEST(Strings, TextsStandAtTheirIdPlusTheLanguageOffset) {
    const struct {
        const char* language;  // Setting/Language
        int id;
        std::wstring text;
    } cases[] = {
        {"japanese", 309, L"Configuration file not found."},  // only "Japanese" is Japanese
        {"Japanese", 505, L"Zorvi はすでに起動しています。コマンドモードからは実行できません。"},
        {"Japanese", 2, L""},  // the Japanese help is one text, at 1001
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        mdlMain::SetLanguageOffset(LanguageOffsetFor(c.language));
        EXPECT_EQ(LoadText(c.id), c.text);
    }
    mdlMain::SetLanguageOffset(0);
}

}  // namespace
}  // namespace zorvi
