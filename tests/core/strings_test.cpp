// The string table as the resource loader gives it, in both languages.
#include <gtest/gtest.h>

#include "core/mdlMain.h"
#include "core/strings_win.h"

namespace zorvi {
namespace {

TEST(Strings, TextsStandAtTheirIdPlusTheLanguageOffset) {
    mdlMain::SetLanguageOffset(LanguageOffsetFor("japanese"));  // only "Japanese" is Japanese
    EXPECT_EQ(LoadText(309), L"Configuration file not found.");
    mdlMain::SetLanguageOffset(LanguageOffsetFor("Japanese"));
    EXPECT_EQ(LoadText(505), L"Zorvi はすでに起動しています。コマンドモードからは実行できません。");
    EXPECT_EQ(LoadText(2), L"");  // the Japanese help is one text, at 1001
    mdlMain::SetLanguageOffset(0);
}

}  // namespace
}  // namespace zorvi
