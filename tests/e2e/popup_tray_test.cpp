// The real zorvi.exe's popup menu opened with F9 and answered from the
// keyboard, its round trip through the task tray, and the launcher's
// programs that start with it.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "support/driver.h"

namespace zorvi::testing {
namespace {

TEST(PopupAndTray, F9OpensTheMenuAndItsExitEntryEndsZorvi) {
    Installation installation;
    Running zorvi(installation, "");
    const HWND main = zorvi.WaitForWindow(L"ZorviMain");
    ASSERT_NE(main, nullptr);
    PostMessageW(main, WM_KEYDOWN, VK_F9, 0);
    const HWND menu = zorvi.WaitForWindow(L"#32768");
    ASSERT_NE(menu, nullptr);
    // "E&xit" by its mnemonic, as a user would type it.
    PostMessageW(menu, WM_KEYDOWN, 'X', 0);
    PostMessageW(menu, WM_CHAR, 'x', 0);
    const auto code = zorvi.WaitForExit();
    ASSERT_TRUE(code.has_value());
    EXPECT_EQ(*code, 0u);
}

TEST(PopupAndTray, MinimisedIntoTheTrayAndBackByDoubleClick) {
    Installation installation;
    installation.Write("Zorvi.ini", "[Option]\r\nTaskTray=1\r\n");
    Running zorvi(installation, "");
    const HWND main = zorvi.WaitForWindow(L"ZorviMain");
    ASSERT_NE(main, nullptr);
    PostMessageW(main, WM_KEYDOWN, VK_F11, 0);
    ASSERT_TRUE(WaitUntil([&] { return !IsWindowVisible(main); }));
    // The shell reports the icon's double click on the window's own message.
    PostMessageW(main, WM_APP + 2, 1, WM_LBUTTONDBLCLK);
    ASSERT_TRUE(WaitUntil([&] { return IsWindowVisible(main) && !IsIconic(main); }));
    PostMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_TRUE(zorvi.WaitForExit().has_value());
}

TEST(PopupAndTray, LauncherProgramsMarkedToRunStartWithZorvi) {
    Installation installation;
    const std::string record = installation / "record.txt";
    SetEnvironmentVariableA("ZPLAYER_RECORD", record.c_str());
    installation.Write(
        "Zorvi.ini", "[ExternalProgram]\r\nItemCount=2\r\nItem1=Not at start\r\nCommand1=" +
                         BesideTestProgram("zplayer.exe") +
                         "\r\nOption1=first\r\nItem2=Player\r\nCommand2=" +
                         BesideTestProgram("zplayer.exe") + "\r\nOption2=second\r\nAutoRun2=1\r\n");
    Running zorvi(installation, "");
    SetEnvironmentVariableA("ZPLAYER_RECORD", nullptr);
    ASSERT_NE(zorvi.WaitForWindow(L"ZorviMain"), nullptr);
    ASSERT_TRUE(WaitUntil([&] { return installation.Read("record.txt").size() > 0; }));
    const std::string starts = installation.Read("record.txt");
    // Starts go in the list's order: one before it would have shown by now.
    EXPECT_NE(starts.find("arg1=second"), std::string::npos);
    EXPECT_EQ(starts.find("arg1=first"), std::string::npos);
}

}  // namespace
}  // namespace zorvi::testing
