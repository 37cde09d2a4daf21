// The real zorvi.exe in one session: the launcher's programs that start with
// it, its round trip through the task tray, and its popup menu opened with F9
// and answered from the keyboard.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "support/driver.h"

namespace zorvi::testing {
namespace {

TEST(PopupAndTray, AutoRunThenTrayAndBackThenF9Exit) {
    Installation installation;
    const std::string player = BesideTestProgram("zplayer.exe");
    installation.Write("Zorvi.ini", "[Option]\r\nTaskTray=1\r\n[ExternalProgram]\r\nItemCount=2\r\n"
                                    "Item1=Not at start\r\nCommand1=" + player +
                                    "\r\nOption1=first\r\nItem2=Player\r\nCommand2=" + player +
                                    "\r\nOption2=second\r\nAutoRun2=1\r\n");
    SetEnvironmentVariableA("ZPLAYER_RECORD", (installation / "record.txt").c_str());
    Running zorvi(installation, "");
    SetEnvironmentVariableA("ZPLAYER_RECORD", nullptr);
    const HWND main = zorvi.WaitForWindow(L"ZorviMain");
    ASSERT_NE(main, nullptr);
    ASSERT_TRUE(WaitUntil([&] { return installation.Read("record.txt").size() > 0; }));
    // Starts go in the list's order: one before it would have shown by now.
    EXPECT_NE(installation.Read("record.txt").find("arg1=second"), std::string::npos);
    EXPECT_EQ(installation.Read("record.txt").find("arg1=first"), std::string::npos);

    PostMessageW(main, WM_KEYDOWN, VK_F11, 0);
    ASSERT_TRUE(WaitUntil([&] { return !IsWindowVisible(main); }));
    // The shell reports the icon's double click on the window's own message.
    PostMessageW(main, WM_APP + 2, 1, WM_LBUTTONDBLCLK);
    ASSERT_TRUE(WaitUntil([&] { return IsWindowVisible(main) && !IsIconic(main); }));

    PostMessageW(main, WM_KEYDOWN, VK_F9, 0);
    const HWND menu = zorvi.WaitForWindow(L"#32768");
    ASSERT_NE(menu, nullptr);
    // "E&xit" by its mnemonic, as a user would type it.
    PostMessageW(menu, WM_KEYDOWN, 'X', 0);
    PostMessageW(menu, WM_CHAR, 'x', 0);
    EXPECT_EQ(zorvi.WaitForExit(), std::optional<DWORD>(0));
}

}  // namespace
}  // namespace zorvi::testing
