// The interpreter's start: its own console, or none for window state 0, and
// an end that the wait sees at once.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "run/clsExecute.h"
#include "support/temp_folder.h"
#include "support/wait.h"

namespace zorvi {
namespace {

TEST(ConsoleRun, AConsoleOnlyWhenShownAndTheEndSeenAtOnce) {
    testing::TempFolder folder;
    SetEnvironmentVariableA("ZPLAYER_RECORD", (folder / "record.txt").c_str());
    for (const bool noConsole : {true, false}) {
        SCOPED_TRACE(noConsole);
        DeleteFileA((folder / "record.txt").c_str());
        clsExecute runner;
        DWORD exitCode = 0;
        ASSERT_TRUE(runner.RunConsole("\"" + testing::BesideTestProgram("zplayer.exe") + "\" x",
                                      SW_SHOWMINNOACTIVE, noConsole, nullptr, exitCode));
        EXPECT_EQ(exitCode, 0u);
        EXPECT_NE(folder.Read("record.txt").find(noConsole ? "console=0" : "console=1"),
                  std::string::npos);
        // The old wait slept 100 ms a round; now the end wakes it.
        ASSERT_TRUE(runner.NoticeDelayMs().has_value());
        EXPECT_LT(*runner.NoticeDelayMs(), 100.0);
    }
    SetEnvironmentVariableA("ZPLAYER_RECORD", nullptr);
    // A program that cannot start says why and waits for nothing.
    clsExecute runner;
    DWORD exitCode = 0;
    EXPECT_FALSE(runner.RunConsole("\"C:\\\\no\\\\such.exe\"", SW_SHOWNORMAL, false, nullptr,
                                   exitCode));
    EXPECT_NE(runner.StartError(), 0u);
}

}  // namespace
}  // namespace zorvi
