// The real zorvi.exe on a Japanese system (ANSI code page 932, Shift-JIS),
// where 表 (0x95 0x5C) and ソ (0x83 0x5C) end in the byte of "\". The cp932
// registration runs it under that code page; elsewhere it skips.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "core/version.h"
#include "support/driver.h"

namespace zorvi::testing {
namespace {

std::wstring Wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

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
    EXPECT_EQ(WindowText(main), L"ソ表.mml - Zorvi v" + Wide(VersionText(ThisVersion())));
    PostMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_EQ(run.WaitForExit(), std::optional<DWORD>(0));
}

}  // namespace
}  // namespace zorvi::testing
