// Compiles that do exactly what the script says and can be stopped: the
// real zorvi.exe, in a program folder with characters the command
// interpreter acts on, compiles a target whose name has them too, through
// Wine's real cmd.exe; a compiler that hangs is stopped.
#include <gtest/gtest.h>

#include <windows.h>
#include <shlwapi.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

#include "core/handles_win.h"
#include "core/version.h"
#include "support/driver.h"
#include "support/temp_folder.h"
#include "support/wait.h"

namespace zorvi::testing {
namespace {

std::string LongForm(const std::string& path) {
    char buffer[1024] = {};
    const DWORD length = GetLongPathNameA(path.c_str(), buffer, sizeof buffer);
    return length > 0 && length < sizeof buffer ? std::string(buffer, length) : "<" + path + ">";
}

// cfg\t.ini, made active for the zorvi.exe in base\home ("" or ending in "\"):
// the stand-in copied beside it compiles the target and writes its log, then
// the script's second line runs; options go to Zorvi.ini's [Option].
void WriteSetup(const TempFolder& base, const std::string& home, const std::string& secondLine,
                const std::string& options = "") {
    EXPECT_TRUE(CopyFileA(BesideTestProgram("zcompiler.exe").c_str(),
                          (base / (home + "zcompiler.exe")).c_str(), FALSE));
    CreateDirectoryA((base / (home + "cfg")).c_str(), nullptr);
    base.Write(home + "cfg\\t.ini",
               "[Configure]\r\nConsole=" + (base / (home + "zcompiler.exe")) +
                   "\r\nExtension=out\r\n[Option]\r\nUseCUI=1\r\nDetectError=1\r\n"
                   "CUIWindowState=0\r\n[Script]\r\nLine=2\r\n"
                   "Line1=@\"$pp$zcompiler.exe\" \"$fp$$fn$\" > \"$fp$$fn2$.log\"\r\nLine2=" +
                   secondLine + "\r\n");
    base.Write(home + "Zorvi.ini", "[Setting]\r\nDefault=t\r\n[Option]\r\n" + options);
}

// Installs zorvi.exe and the stand-in into base\program and compiles the
// target there from the command line: a quoted value and a bare one, each
// escaped for its place, reach exactly one start of the compiler and an echo.
void ExpectTheNameReachesTheCompiler(const TempFolder& base, const std::string& program,
                                     const std::string& name) {
    const std::string folder = base / program;
    ASSERT_TRUE(CreateDirectoryA(folder.c_str(), nullptr));
    ASSERT_TRUE(CopyFileA(BesideTestProgram("..\\zorvi.exe").c_str(),
                          (folder + "\\zorvi.exe").c_str(), FALSE));
    WriteSetup(base, program + "\\", "@echo $fn$> \"$fp$echo.txt\"");
    const std::string target = folder + "\\" + name;
    const std::string record = base / "args.txt";
    DeleteFileA(record.c_str());
    base.Write(program + "\\" + name, "args=" + record + "\r\n");
    const Running run(folder, "-compilenow \"" + target + "\"");
    ASSERT_EQ(run.WaitForExit(30s), std::optional<DWORD>(0));
    // Exactly one start, with exactly the name (names with blanks go
    // through their short forms); the bare value printed whole.
    const auto lines = KeyValueLines(base.Read("args.txt"));
    ASSERT_EQ(lines.size() >= 3 ? lines[2].first : "", "arg1");
    EXPECT_EQ(LongForm(lines[2].second), target);
    EXPECT_EQ(base.Read("args.txt").find("cmdline=", 1), std::string::npos);
    std::string echoed = base.Read(program + "\\echo.txt");
    ASSERT_TRUE(echoed.ends_with("\r\n"));
    echoed.resize(echoed.size() - 2);
    EXPECT_EQ(LongForm(folder + "\\" + echoed), target);
}

TEST(Names, EveryLegalNameReachesTheCompilerAsItIs) {
    TempFolder base;
    const std::pair<std::string, std::string> cases[] = {
        {"prog & co", "b&notepad&.mml"},
        {"p^%()! ,;='", "t^ %PATH% (1)!,;='.mml"},
        // The longest path the platform takes: 259 characters.
        {"long", std::string(259 - (base / "long\\.mml").size(), 'n') + ".mml"},
    };
    for (const auto& [program, name] : cases) {
        SCOPED_TRACE(name);
        ExpectTheNameReachesTheCompiler(base, program, name);
    }
}

// On a Japanese system (the cp932 registration; elsewhere it skips): the
// second byte of ポ, タ, 表 and ソ is "|", "^", "\" and "\" again.
TEST(ShiftJis, DoubleByteNamesReachTheCompilerAndTheCaption) {
    // The cp932 registration asks for that code page: it must not skip.
    if (const char* wanted = std::getenv("ZORVI_TEST_CODE_PAGE")) {
        ASSERT_EQ(GetACP(), static_cast<UINT>(std::atoi(wanted)));
    }
    if (GetACP() != 932) GTEST_SKIP() << "needs code page 932; runs in the cp932 registration";
    TempFolder base;
    // 表ソ\ポタ表.mml, and ソ 表\タ ポ.mml through short names.
    ExpectTheNameReachesTheCompiler(base, "\x95\x5c\x83\x5c", "\x83\x7c\x83\x5e\x95\x5c.mml");
    ExpectTheNameReachesTheCompiler(base, "\x83\x5c \x95\x5c", "\x83\x5e \x83\x7c.mml");
    // Given as typed, relative to the folder Zorvi starts in and the extension
    // in upper case, the target is named in its case on disk, without its folder.
    Installation zorvi;
    ASSERT_TRUE(CreateDirectoryA((zorvi / "\x95\x5c").c_str(), nullptr));  // 表
    zorvi.Write("\x95\x5c\\\x83\x5c\x95\x5c.mml", "o4 c");                  // 表\ソ表.mml
    Running run(zorvi, "\"\x95\x5c\\\x83\x5c\x95\x5c.MML\"");
    const HWND main = run.WaitForWindow(L"ZorviMain");
    ASSERT_NE(main, nullptr);
    const std::string version = VersionText(ThisVersion());
    EXPECT_EQ(WindowText(main), L"ソ表.mml - Zorvi v" + std::wstring(version.begin(), version.end()));
}

// Command-line compiles of what cannot be compiled, or only by another
// name: a clear message, no start the script did not name, and every file
// still there.
TEST(BadInput, ACompileStartsOnlyWhatTheScriptNames) {
    std::string metacharacters;  // as long as a setting's value can be
    while (metacharacters.size() < 299) metacharacters += "&|<>^()!%$\";,=";
    metacharacters.resize(299);
    const struct {
        const char* name;
        std::string argument;
        std::string extraLine;  // the script's second line
        bool compiled;          // song.mml compiled, once, as song.mml; else refused
    } cases[] = {
        {"a folder", "folder.mml", "", false},
        {"a device", "CON.mml", "", false},
        {"a device in a folder", "sub\\aux.mml", "", false},
        {"ending in a dot", "song.mml.", "", true},
        {"ending in a blank", "\"song.mml \"", "", true},
        {"a script line of metacharacters", "song.mml", metacharacters, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Installation zorvi;
        WriteSetup(zorvi, "", c.extraLine);
        CreateDirectoryA((zorvi / "folder.mml").c_str(), nullptr);
        CreateDirectoryA((zorvi / "sub").c_str(), nullptr);
        const std::string song = "args=" + (zorvi / "args.txt") + "\r\no4 c\r\n";
        zorvi.Write("song.mml", song);
        Running run(zorvi, "-compilenow " + c.argument);
        if (!c.compiled) {
            const HWND box = run.WaitForWindow(L"#32770");
            ASSERT_NE(box, nullptr);
            EXPECT_EQ(MessageBoxText(box), L"File not found.\r\n");
            PressButton(box, IDOK);
        }
        ASSERT_EQ(run.WaitForExit(30s), std::optional<DWORD>(0));
        // One start, of song.mml, or none.
        const auto started = KeyValueLines(zorvi.Read("args.txt"));
        const std::string startedWith = started.size() == 3 ? LongForm(started[2].second) : "";
        EXPECT_EQ(startedWith, c.compiled ? zorvi / "song.mml" : "");
        EXPECT_EQ(zorvi.Read("song.out").empty(), !c.compiled);
        EXPECT_EQ(zorvi.Read("song.mml"), song);
        EXPECT_TRUE(PathIsDirectoryA((zorvi / "folder.mml").c_str()));
        // The script as configured, its lines whole.
        const std::string line = "\r\n" + c.extraLine + "\r\n";
        EXPECT_EQ(zorvi.Read("Zorvi.bat").find(line) != std::string::npos, c.compiled);
    }
}

// Editors that save safely write a new file, delete the target and rename
// the new file to it: watching compiles that once and goes on. A compiler
// that hangs is ended by Esc, and by closing the window after one question.
TEST(Watch, SavesCompileOnceAndAHangingCompileEndsOnEscOrOnClosing) {
    Installation zorvi;
    WriteSetup(zorvi, "", "", "AutoWatch=1\r\nTimerInterval=50\r\n");
    // Each version of the song has its compiles recorded in a file of its own.
    const auto version = [&](const char* record, const std::string& orders = "") {
        return "args=" + (zorvi / record) + "\r\n" + orders + "o4 c\r\n";
    };
    const auto starts = [&](const char* record) { return Starts(zorvi.Read(record)); };
    zorvi.Write("song.mml", version("before.txt"));
    Running run(zorvi, "song.mml");
    const HWND main = run.WaitForWindow(L"ZorviMain");
    ASSERT_NE(main, nullptr);

    zorvi.Write("song.mml.tmp", version("atomic.txt"));
    Touch(zorvi / "song.mml.tmp");
    ASSERT_TRUE(DeleteFileA((zorvi / "song.mml").c_str()));
    ASSERT_TRUE(MoveFileA((zorvi / "song.mml.tmp").c_str(), (zorvi / "song.mml").c_str()));
    ASSERT_TRUE(WaitUntil([&] { return starts("atomic.txt") == 1; })) << "no compile on the save";

    const std::string hang = "pid=" + (zorvi / "pid.txt") + "\r\nlog=started\r\nhang=1\r\n";
    zorvi.Write("song.mml", version("hang.txt", hang));
    Touch(zorvi / "song.mml");
    ASSERT_TRUE(WaitUntil([&] { return zorvi.Read("pid.txt").ends_with("\r\n"); }))
        << "no longer watching";
    // The stand-in writes its id before its log line: stop it once both are there.
    ASSERT_TRUE(WaitUntil([&] { return zorvi.Read("song.log").starts_with("started"); }));
    const DWORD compilerId = static_cast<DWORD>(std::stoul(zorvi.Read("pid.txt")));
    const UniqueHandle compiler(OpenProcess(SYNCHRONIZE, FALSE, compilerId));
    ASSERT_TRUE(compiler);
    PostMessageW(main, WM_KEYDOWN, VK_ESCAPE, 0);
    EXPECT_EQ(WaitForSingleObject(compiler.get(), 15000), WAIT_OBJECT_0);
    // The verdict says why, above the log written so far.
    const HWND text = run.WaitForLogBox(L"started");
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(WindowText(text).find(L"Zorvi:Compiling was stopped."), 0u);

    PostMessageW(main, WM_KEYDOWN, VK_F5, 0);
    ASSERT_TRUE(WaitUntil([&] { return starts("hang.txt") == 2; })) << "no compile on F5";
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
    EXPECT_EQ(starts("hang.txt"), 2);
}

}  // namespace
}  // namespace zorvi::testing
