// The real zorvi.exe in Japanese: its popup menu, the about window it opens,
// a failed compile's verdict above a UTF-8 log in the log window; and on a
// Japanese system, a double-byte target's name in its caption.
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>
#include <string>

#include "core/version.h"
#include "support/driver.h"

namespace zorvi::testing {
namespace {

TEST(Japanese, MenuAboutAndVerdictReadInJapanese) {
    Installation installation;
    const TempFolder& files = installation;
    CreateDirectoryA((files / "cfg").c_str(), nullptr);
    files.Write("cfg\\chain.ini",
                "[Configure]\r\nConsole=" + BesideTestProgram("zcompiler.exe") +
                    "\r\nExtension=out\r\n[Option]\r\nUseCUI=1\r\nCUIWindowState=2\r\n"
                    "DetectError=1\r\n[Script]\r\nLine=1\r\n"
                    "Line1=$pp$zcompiler.exe $fp$$fn$ $fp$$fn2$.out $fp$$fn2$.log\r\n");
    files.Write("Zorvi.ini", "[Setting]\r\nDefault=chain\r\nLanguage=Japanese\r\n");
    // No output, and a log line in UTF-8: "E1: 不明な音符" (unknown note).
    files.Write("song.mml",
                "output=none\r\nlog=E1: \xE4\xB8\x8D\xE6\x98\x8E\xE3\x81\xAA\xE9\x9F\xB3"
                "\xE7\xAC\xA6\r\no4 c\r\n");
    Running zorvi(installation, "song.mml");
    const HWND main = zorvi.WaitForWindow(L"ZorviMain");
    ASSERT_NE(main, nullptr);

    // The popup's first entry keeps its mnemonic in Japanese: A opens the
    // about window, as there is no help file.
    PostMessageW(main, WM_KEYDOWN, VK_F9, 0);
    const HWND menu = zorvi.WaitForWindow(L"#32768");
    ASSERT_NE(menu, nullptr);
    PostMessageW(menu, WM_KEYDOWN, 'A', 0);
    PostMessageW(menu, WM_CHAR, 'a', 0);
    const HWND about = zorvi.WaitForWindow(L"ZorviAbout");
    ASSERT_NE(about, nullptr);
    EXPECT_EQ(WindowText(about), L"Zorvi - About");
    EXPECT_NE(WindowText(FindWindowExW(about, nullptr, L"Button", L"ショートカットキー")),
              L"");
    PostMessageW(about, WM_CLOSE, 0, 0);
    ASSERT_TRUE(WaitUntil([&] { return !IsWindowVisible(about); }));

    // F5: the compile fails, and the log window says so in Japanese.
    PostMessageW(main, WM_KEYDOWN, VK_F5, 0);
    const HWND result = zorvi.WaitForWindow(L"ZorviResult");
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(WindowText(result), L"Zorvi - ログウィンドウ - song.log");
    const std::wstring text = WindowText(FindWindowExW(result, nullptr, L"Edit", nullptr));
    EXPECT_EQ(text, L"Zorvi:コンパイルエラーを検出しました。\r\n" + std::wstring(78, L'-') +
                        L"\r\nE1: 不明な音符\r\n");
    PostMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_TRUE(zorvi.WaitForExit().has_value());
}

// Run under code page 932 (Shift-JIS) by the cp932 registration; elsewhere it
// skips. 表 (0x95 0x5C) and ソ (0x83 0x5C) end in the byte of "\".
TEST(ShiftJis, TheMainWindowNamesADoubleByteTarget) {
    // The cp932 registration asks for that code page: it must not skip.
    if (const char* wanted = std::getenv("ZORVI_TEST_CODE_PAGE")) {
        ASSERT_EQ(GetACP(), static_cast<UINT>(std::atoi(wanted)));
    }
    if (GetACP() != 932) GTEST_SKIP() << "needs code page 932; runs in the cp932 registration";
    Installation zorvi;
    ASSERT_TRUE(CreateDirectoryA((zorvi / "\x95\x5c").c_str(), nullptr));  // 表
    zorvi.Write("\x95\x5c\\\x83\x5c\x95\x5c.mml", "o4 c");                  // 表\ソ表.mml
    // Given as typed: relative to the folder Zorvi starts in, the extension in upper case.
    Running run(zorvi, "\"\x95\x5c\\\x83\x5c\x95\x5c.MML\"");
    const HWND main = run.WaitForWindow(L"ZorviMain");
    ASSERT_NE(main, nullptr);
    // The caption names the file in its case on disk, without its folder.
    const std::string version = VersionText(ThisVersion());
    EXPECT_EQ(WindowText(main), L"ソ表.mml - Zorvi v" + std::wstring(version.begin(), version.end()));
    PostMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_EQ(run.WaitForExit(), std::optional<DWORD>(0));
}

}  // namespace
}  // namespace zorvi::testing
