// Compiles that do exactly what the script says and can be stopped: the
// real zorvi.exe, in a program folder with characters the command
// interpreter acts on, compiles a target whose name has them too, through
// Wine's real cmd.exe; a compiler that hangs is stopped with Esc.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "core/handles_win.h"
#include "support/driver.h"
#include "support/temp_folder.h"
#include "support/wait.h"

namespace zorvi::testing {
namespace {

// Runs the program's command line; its exit code, or nothing when it did
// not end in time (it is ended then).
std::optional<DWORD> RunToEnd(std::string commandLine, std::chrono::milliseconds limit) {
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &started)) {
        return std::nullopt;
    }
    const UniqueHandle process(started.hProcess), thread(started.hThread);
    if (WaitForSingleObject(process.get(), static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0) {
        TerminateProcess(process.get(), 1);
        return std::nullopt;
    }
    DWORD code = 0;
    GetExitCodeProcess(process.get(), &code);
    return code;
}

std::string LongForm(const std::string& path) {
    char buffer[1024] = {};
    const DWORD length = GetLongPathNameA(path.c_str(), buffer, sizeof buffer);
    return length > 0 && length < sizeof buffer ? std::string(buffer, length) : "<" + path + ">";
}

TEST(Names, EveryLegalNameReachesTheCompilerAsItIs) {
    TempFolder base;
    const struct {
        std::string program;  // the folder zorvi.exe stands in
        std::string target;   // the target's name, in that folder
    } cases[] = {
        {"prog & co", "b&notepad&.mml"},
        {"p^%()! ,;='", "t^ %PATH% (1)!,;='.mml"},
        // The longest path the platform takes: 259 characters.
        {"long", std::string(259 - (base / "long\\.mml").size(), 'n') + ".mml"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.target);
        const std::string folder = base / c.program;
        ASSERT_TRUE(CreateDirectoryA(folder.c_str(), nullptr));
        CreateDirectoryA((folder + "\\cfg").c_str(), nullptr);
        ASSERT_TRUE(CopyFileA(BesideTestProgram("..\\zorvi.exe").c_str(),
                              (folder + "\\zorvi.exe").c_str(), FALSE));
        ASSERT_TRUE(CopyFileA(BesideTestProgram("zcompiler.exe").c_str(),
                              (folder + "\\zcompiler.exe").c_str(), FALSE));
        const std::string target = folder + "\\" + c.target;
        const std::string record = base / "args.txt";
        DeleteFileA(record.c_str());
        base.Write(c.program + "\\" + c.target, "args=" + record + "\r\n");
        // A quoted value and a bare one: each is escaped for its place.
        base.Write(c.program + "\\cfg\\t.ini",
                   "[Configure]\r\nConsole=" + folder +
                       "\\zcompiler.exe\r\nExtension=out\r\n[Option]\r\nUseCUI=1\r\n"
                       "DetectError=1\r\nCUIWindowState=0\r\n[Script]\r\nLine=2\r\n"
                       "Line1=@\"$pp$zcompiler.exe\" \"$fp$$fn$\"\r\n"
                       "Line2=@echo $fn$> \"$fp$echo.txt\"\r\n");
        base.Write(c.program + "\\Zorvi.ini", "[Setting]\r\nDefault=t\r\n");
        const auto code = RunToEnd("\"" + folder + "\\zorvi.exe\" -compilenow \"" + target + "\"",
                                   std::chrono::seconds(30));
        ASSERT_TRUE(code.has_value()) << "the compile did not end";
        EXPECT_EQ(*code, 0u);
        // Exactly one start, with exactly the name (names with blanks go
        // through their short forms); the bare value printed whole.
        const auto lines = KeyValueLines(base.Read("args.txt"));
        ASSERT_EQ(lines.size() >= 3 ? lines[2].first : "", "arg1");
        EXPECT_EQ(LongForm(lines[2].second), target);
        EXPECT_EQ(base.Read("args.txt").find("cmdline=", 1), std::string::npos);
        std::string echoed = base.Read(c.program + "\\echo.txt");
        ASSERT_TRUE(echoed.ends_with("\r\n"));
        echoed.resize(echoed.size() - 2);
        EXPECT_EQ(LongForm(folder + "\\" + echoed), target);
    }
}

TEST(StopCompile, EscEndsAHangingCompilerAndShowsWhy) {
    Installation installation;
    const TempFolder& files = installation;
    CreateDirectoryA((files / "cfg").c_str(), nullptr);
    files.Write("cfg\\t.ini", "[Configure]\r\nConsole=" + BesideTestProgram("zcompiler.exe") +
                                   "\r\nExtension=out\r\n[Option]\r\nUseCUI=1\r\nDetectError=1\r\n"
                                   "CUIWindowState=0\r\n[Script]\r\nLine=1\r\n"
                                   "Line1=@\"$pp$zcompiler.exe\" \"$fp$$fn$\" > \"$fp$$fn2$.log\"\r\n");
    files.Write("Zorvi.ini", "[Setting]\r\nDefault=t\r\n");
    const std::string pidFile = files / "pid.txt";
    files.Write("song.mml", "pid=" + pidFile + "\r\nlog=started\r\nhang=1\r\n");
    Running zorvi(installation, "\"" + (files / "song.mml") + "\"");
    const HWND main = zorvi.WaitForWindow(L"ZorviMain");
    ASSERT_NE(main, nullptr);
    PostMessageW(main, WM_KEYDOWN, VK_F5, 0);
    ASSERT_TRUE(WaitUntil([&] { return files.Read("pid.txt").ends_with("\r\n"); }));
    const DWORD compilerId = static_cast<DWORD>(std::stoul(files.Read("pid.txt")));
    const UniqueHandle compiler(OpenProcess(SYNCHRONIZE, FALSE, compilerId));
    ASSERT_TRUE(compiler);
    PostMessageW(main, WM_KEYDOWN, VK_ESCAPE, 0);
    EXPECT_EQ(WaitForSingleObject(compiler.get(), 15000), WAIT_OBJECT_0);
    // The verdict says why, above the log written so far.
    const HWND result = zorvi.WaitForWindow(L"ZorviResult");
    ASSERT_NE(result, nullptr);
    const HWND text = FindWindowExW(result, nullptr, L"EDIT", nullptr);
    ASSERT_TRUE(WaitUntil([&] { return WindowText(text).find(L"started") != std::wstring::npos; }));
    EXPECT_EQ(WindowText(text).find(L"Zorvi:Compiling was stopped."), 0u);
}

}  // namespace
}  // namespace zorvi::testing
