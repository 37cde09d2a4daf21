// The string table: texts at their ids, in both languages.
#include <gtest/gtest.h>

#include "core/mdlMain.h"
#include "core/strings_win.h"

namespace zorvi {
namespace {

class LanguageScope {
public:
    explicit LanguageScope(int offset) : saved_(mdlMain::LanguageOffset()) {
        mdlMain::SetLanguageOffset(offset);
    }
    ~LanguageScope() { mdlMain::SetLanguageOffset(saved_); }

private:
    int saved_;
};

TEST(Strings, EnglishTextsStandAtTheirIds) {
    LanguageScope english(0);
    const struct {
        int id;
        const wchar_t* text;
    } cases[] = {
        {101, L"Set target file"},
        {104, L"Execute Compile"},
        {130, L"&About"},
        {146, L"E&xit"},
        {180, L"Basic configure"},
        {254, L"Minilized automatically when file is set"},
        {258, L"Shotdown all programs called from Zorvi, when it terminated"},
        {273, L"Maximized"},
        {300, L"This file is set as a target."},
        {302, L" not found."},
        {305, L"Log file not found."},
        {309, L"Configuration file not found."},
        {400, L"File not found."},
        {412, L"Unknown error."},
        {505, L"Zorvi has already started. Cannot execute from command mode."},
        {506, L" is not found. Do you execute using a default setup?"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        EXPECT_EQ(LoadText(c.id), c.text);
    }
}

TEST(Strings, SeparatorsHoldExclamationMark) {
    LanguageScope english(0);
    for (int id : {100, 108, 147, 170, 185, 216, 243, 259, 288, 289}) {
        SCOPED_TRACE(id);
        EXPECT_EQ(LoadText(id), L"!");
    }
}

TEST(Strings, ShortcutHelpListsTheKeys) {
    LanguageScope english(0);
    const std::wstring help = LoadText(1);
    EXPECT_EQ(help.rfind(L"Shortcut Key (Main Window)", 0), 0u);
    EXPECT_NE(help.find(L"[F5]\tExecute compiling\r\n"), std::wstring::npos);
    EXPECT_NE(help.find(L"[F12]\tExit Zorvi"), std::wstring::npos);
}

TEST(Strings, JapaneseTextsAndMissingIds) {
    LanguageScope japanese(1000);
    EXPECT_EQ(LoadText(505), L"Zorvi はすでに起動しています。コマンドモードからは実行できません。");
    EXPECT_EQ(LoadText(100), L"!");
    EXPECT_FALSE(LoadText(1).empty());
    // The Japanese help is one text: there is no second half.
    EXPECT_EQ(LoadText(2), L"");
    LanguageScope english(0);
    EXPECT_EQ(LoadText(111), L"");
    EXPECT_EQ(LoadText(60000), L"");
}

TEST(Strings, OnlyExactJapaneseSelectsJapanese) {
    const struct {
        const char* setting;
        int offset;
    } cases[] = {{"Japanese", 1000}, {"japanese", 0}, {"JAPANESE", 0}, {"Japanese ", 0},
                 {"English", 0},     {"", 0},         {"French", 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.setting);
        EXPECT_EQ(LanguageOffsetFor(c.setting), c.offset);
    }
}

}  // namespace
}  // namespace zorvi
