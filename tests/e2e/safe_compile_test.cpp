// Compiles that do exactly what the script says and can be stopped: the
// real zorvi.exe, in a program folder with characters the command
// interpreter acts on, compiles a target whose name has them too, through
// Wine's real cmd.exe; a compiler that hangs is stopped with Esc.
#include <gtest/gtest.h>

#include <windows.h>
#include <shlwapi.h>

#include <optional>
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

// cfg\t.ini, made active: the stand-in beside the tests compiles the target,
// then the script's second line runs; options go to Zorvi.ini's [Option].
void WriteSetup(const Installation& zorvi, const std::string& secondLine,
                const std::string& options) {
    CreateDirectoryA((zorvi / "cfg").c_str(), nullptr);
    zorvi.Write("cfg\\t.ini", "[Configure]\r\nConsole=" + BesideTestProgram("zcompiler.exe") +
                                  "\r\nExtension=out\r\n[Option]\r\nUseCUI=1\r\nDetectError=1\r\n"
                                  "CUIWindowState=0\r\n[Script]\r\nLine=2\r\n"
                                  "Line1=@\"$pp$zcompiler.exe\" \"$fp$$fn$\"\r\nLine2=" +
                                  secondLine + "\r\n");
    zorvi.Write("Zorvi.ini", "[Setting]\r\nDefault=t\r\n[Option]\r\n" + options);
}

struct NameCase {
    std::string program;  // the folder zorvi.exe stands in
    std::string target;   // the target's name, in that folder
};

// Installs zorvi.exe and the stand-in into base\program and compiles the
// target from the command line: a quoted value and a bare one, each escaped
// for its place, reach exactly one start of the compiler and an echo.
void ExpectTheNameReachesTheCompiler(const TempFolder& base, const NameCase& c) {
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

TEST(Names, EveryLegalNameReachesTheCompilerAsItIs) {
    TempFolder base;
    const NameCase cases[] = {
        {"prog & co", "b&notepad&.mml"},
        {"p^%()! ,;='", "t^ %PATH% (1)!,;='.mml"},
        // The longest path the platform takes: 259 characters.
        {"long", std::string(259 - (base / "long\\.mml").size(), 'n') + ".mml"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.target);
        ExpectTheNameReachesTheCompiler(base, c);
    }
}

// On a Japanese system (the cp932 registration): the second byte of ポ, タ,
// 表 and ソ is "|", "^", "\" and "\" again.
TEST(ShiftJis, DoubleByteNamesReachTheCompilerAsTheyAre) {
    if (GetACP() != 932) GTEST_SKIP() << "needs code page 932; runs in the cp932 registration";
    TempFolder base;
    const NameCase cases[] = {
        {"\x95\x5c\x83\x5c", "\x83\x7c\x83\x5e\x95\x5c.mml"},  // 表ソ\ポタ表.mml
        {"\x83\x5c \x95\x5c", "\x83\x5e \x83\x7c.mml"},         // ソ 表\タ ポ.mml: short names
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.program);
        ExpectTheNameReachesTheCompiler(base, c);
    }
}

// Command-line compiles of what cannot be compiled, or only by another
// name: a clear message, no start the script did not name, and every file
// still there.
TEST(BadInput, ACompileStartsOnlyWhatTheScriptNames) {
    std::string metacharacters;  // as long as a setting's value can be
    while (metacharacters.size() < 299) metacharacters += "&|<>^()!%$\";,=";
    metacharacters.resize(299);
    const std::wstring notFound = L"File not found.\r\n";
    const struct {
        const char* name;
        std::string argument;
        std::string extraLine;  // the script's second line
        std::wstring box;       // the message shown, if any
        bool compiled;          // song.mml compiled, once, as song.mml
    } cases[] = {
        {"a folder", "folder.mml", "", notFound, false},
        {"a device", "CON.mml", "", notFound, false},
        {"a device in a folder", "sub\\aux.mml", "", notFound, false},
        {"ending in a dot", "song.mml.", "", L"", true},
        {"ending in a blank", "\"song.mml \"", "", L"", true},
        {"a script line of metacharacters", "song.mml", metacharacters, L"", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Installation zorvi;
        WriteSetup(zorvi, c.extraLine, "");
        CreateDirectoryA((zorvi / "folder.mml").c_str(), nullptr);
        CreateDirectoryA((zorvi / "sub").c_str(), nullptr);
        const std::string song = "args=" + (zorvi / "args.txt") + "\r\no4 c\r\n";
        zorvi.Write("song.mml", song);
        Running run(zorvi, "-compilenow " + c.argument);
        if (!c.box.empty()) {
            const HWND box = run.WaitForWindow(L"#32770");
            ASSERT_NE(box, nullptr);
            EXPECT_EQ(MessageBoxText(box), c.box);
            PressButton(box, IDOK);
        }
        ASSERT_EQ(run.WaitForExit(30s), std::optional<DWORD>(0));
        const auto started = KeyValueLines(zorvi.Read("args.txt"));
        EXPECT_EQ(started.size(), c.compiled ? 3u : 0u);
        if (c.compiled && started.size() == 3) {
            EXPECT_EQ(LongForm(started[2].second), zorvi / "song.mml");
        }
        EXPECT_EQ(zorvi.Read("song.out").empty(), !c.compiled);
        EXPECT_EQ(zorvi.Read("song.mml"), song);
        EXPECT_TRUE(PathIsDirectoryA((zorvi / "folder.mml").c_str()));
        // The script as configured, its lines whole.
        if (c.compiled) {
            const std::string line = "\r\n" + c.extraLine + "\r\n";
            EXPECT_NE(zorvi.Read("Zorvi.bat").find(line), std::string::npos);
        }
    }
}

// Editors that save safely write a new file, delete the target and rename
// the new file to it: watching compiles that once and goes on.
TEST(Watch, AnAtomicSaveCompilesOnceAndWatchingGoesOn) {
    Installation zorvi;
    WriteSetup(zorvi, "", "AutoWatch=1\r\nTimerInterval=50\r\n");
    // Each version of the song has its compiles recorded in a file of its own.
    const auto version = [&](const char* record, const char* orders = "") {
        return "args=" + (zorvi / record) + "\r\n" + orders + "o4 c\r\n";
    };
    const auto starts = [&](const char* record) {
        int count = 0;
        for (const auto& line : KeyValueLines(zorvi.Read(record))) {
            count += line.first == "cmdline";
        }
        return count;
    };
    zorvi.Write("song.mml", version("before.txt"));
    Running run(zorvi, "song.mml");
    const HWND main = run.WaitForWindow(L"ZorviMain");
    ASSERT_NE(main, nullptr);

    zorvi.Write("song.mml.tmp", version("atomic.txt"));
    Touch(zorvi / "song.mml.tmp");
    ASSERT_TRUE(DeleteFileA((zorvi / "song.mml").c_str()));
    ASSERT_TRUE(MoveFileA((zorvi / "song.mml.tmp").c_str(), (zorvi / "song.mml").c_str()));
    ASSERT_TRUE(WaitUntil([&] { return starts("atomic.txt") == 1; })) << "no compile on the save";

    zorvi.Write("song.mml", version("plain.txt", "hang=1\r\n"));
    Touch(zorvi / "song.mml");
    ASSERT_TRUE(WaitUntil([&] { return starts("plain.txt") == 1; })) << "no longer watching";
    // A compile still running is stopped on the way out, after one question
    // however often the window is asked to close.
    PostMessageW(main, WM_CLOSE, 0, 0);
    HWND box = nullptr;
    ASSERT_TRUE(WaitUntil([&] { return (box = FindWindowW(L"#32770", L"Zorvi - Check")); }));
    // Asked again while the question is open, the window answers at once
    // instead of opening a second question inside the first.
    DWORD_PTR answer = 0;
    EXPECT_NE(SendMessageTimeoutW(main, WM_CLOSE, 0, 0, SMTO_NORMAL, 5000, &answer), 0);
    PressButton(box, IDYES);
    EXPECT_TRUE(run.WaitForExit(20s).has_value());
    EXPECT_EQ(starts("before.txt"), 0);
    EXPECT_EQ(starts("atomic.txt"), 1);
    EXPECT_EQ(starts("plain.txt"), 1);
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
    // The stand-in writes its id before its log line: stop it once both are there.
    ASSERT_TRUE(WaitUntil([&] { return files.Read("song.log").starts_with("started"); }));
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
