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

    // The entries keep their mnemonics in Japanese, typed as a user would.
    const auto choose = [&](char mnemonic) {
        PostMessageW(main, WM_KEYDOWN, VK_F9, 0);
        const HWND menu = zorvi.WaitForWindow(L"#32768");
        PostMessageW(menu, WM_KEYDOWN, static_cast<WPARAM>(mnemonic), 0);
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
    ASSERT_TRUE(choose('X'));
    EXPECT_EQ(zorvi.WaitForExit(), std::optional<DWORD>(0));
}

}  // namespace
}  // namespace zorvi::testing
