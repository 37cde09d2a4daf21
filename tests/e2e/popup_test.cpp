// The real zorvi.exe in one session, in Japanese: the launcher's programs that
// start with it, and its popup menu opened with F9 and answered from the keyboard.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "support/driver.h"

namespace zorvi::testing {
namespace {

TEST(Popup, AutoRunThenAboutAndExitInJapanese) {
    Installation installation;
    const std::string player = BesideTestProgram("zplayer.exe");
    installation.Write("Zorvi.ini", "[Setting]\r\nLanguage=Japanese\r\n"
                                    "[ExternalProgram]\r\nItemCount=2\r\nItem1=Not at start\r\n"
                                    "Command1=" + player + "\r\nOption1=first\r\nItem2=Player\r\n"
                                    "Command2=" + player + "\r\nOption2=second\r\nAutoRun2=1\r\n");
    SetEnvironmentVariableA("ZPLAYER_RECORD", (installation / "record.txt").c_str());
    Running zorvi(installation, "");
    SetEnvironmentVariableA("ZPLAYER_RECORD", nullptr);
    const HWND main = zorvi.WaitForWindow(L"ZorviMain");
    ASSERT_NE(main, nullptr);
    ASSERT_TRUE(WaitUntil([&] { return installation.Read("record.txt").size() > 0; }));
    // Starts go in the list's order: one before it would have shown by now.
    EXPECT_NE(installation.Read("record.txt").find("arg1=second"), std::string::npos);
    EXPECT_EQ(installation.Read("record.txt").find("arg1=first"), std::string::npos);

    // The entries keep their mnemonics in Japanese, typed as a user would. The
    // menu acts on the character alone; a key posted beside it could come back
    // as a second character, left for the next menu.
    const auto choose = [&](char mnemonic) {
        HWND menu = nullptr;
        for (int press = 0; press < 3 && menu == nullptr; ++press) {
            PostMessageW(main, WM_KEYDOWN, VK_F9, 0);
            menu = zorvi.WaitForWindow(L"#32768", 3s);
        }
        PostMessageW(menu, WM_CHAR, static_cast<WPARAM>(mnemonic + 'a' - 'A'), 0);
        return menu != nullptr;
    };
    // There is no help file: A opens the about window.
    ASSERT_TRUE(choose('A'));
    const HWND about = zorvi.WaitForWindow(L"ZorviAbout");
    ASSERT_NE(about, nullptr);
    EXPECT_NE(FindWindowExW(about, nullptr, L"Button", L"ショートカットキー"), nullptr);
    PostMessageW(about, WM_CLOSE, 0, 0);
    ASSERT_TRUE(WaitUntil([&] { return !IsWindowVisible(about); }));
    // Under Wine the first F9 after the about window went can open no menu,
    // or one that closes at once and takes the character with it, while the
    // main window is made active again: F9 and the choice are repeated then.
    std::optional<DWORD> exit;
    for (int attempt = 0; attempt < 3 && !exit; ++attempt) {
        ASSERT_TRUE(choose('X'));
        exit = zorvi.WaitForExit(3s);
    }
    EXPECT_EQ(exit, std::optional<DWORD>(0));
}

}  // namespace
}  // namespace zorvi::testing
