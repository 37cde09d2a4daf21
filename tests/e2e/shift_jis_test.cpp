// The real zorvi.exe on a Japanese system (ANSI code page 932, Shift-JIS),
// where 表 (0x95 0x5C) and ソ (0x83 0x5C) end in the byte of "\". Registered
// a second time through tests/harness/cp932-run.sh, which gives the test and
// the program it starts that code page under Wine.
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>
#include <string>

#include "core/version.h"
#include "support/driver.h"

namespace zorvi::testing {
namespace {

const std::string kMainCaption = "Zorvi v" + VersionText(ThisVersion());

TEST(ShiftJis, TheMainWindowNamesADoubleByteTarget) {
    // The cp932 registration asks for that code page: it must not skip.
    if (const char* wanted = std::getenv("ZORVI_TEST_CODE_PAGE")) {
        ASSERT_EQ(GetACP(), static_cast<UINT>(std::atoi(wanted)));
    }
    if (GetACP() != 932) GTEST_SKIP() << "needs code page 932; runs in the cp932 registration";
    const struct {
        const char* folder;  // created inside the installation; empty: none
        const char* file;
        const char* name;  // as the caption shows it
    } cases[] = {
        {"", "\x83\x5c\x95\x5c.mml", "\x83\x5c\x95\x5c.mml"},              // ソ表.mml
        {"\x95\x5c", "\x95\x5c\\\x83\x5c.mml", "\x83\x5c.mml"},          // 表\ソ.mml
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        Installation installation;
        if (*c.folder != '\0') {
            ASSERT_TRUE(CreateDirectoryA((installation.Files() / c.folder).c_str(), nullptr));
        }
        installation.Files().Write(c.file, "o4 c");
        // Given as typed: relative to the folder Zorvi starts in, the extension in upper case.
        std::string typed = c.file;
        typed.replace(typed.size() - 3, 3, "MML");
        Running zorvi(installation, "\"" + typed + "\"");
        // The caption names the file in its case on disk, without its folder.
        const HWND main = zorvi.WaitForWindow("ZorviMain", c.name + (" - " + kMainCaption));
        ASSERT_NE(main, nullptr) << "no main window named for the target";
        PostMessageW(main, WM_CLOSE, 0, 0);
        const auto code = zorvi.WaitForExit();
        ASSERT_TRUE(code.has_value());
        EXPECT_EQ(*code, 0u);
    }
}

}  // namespace
}  // namespace zorvi::testing
