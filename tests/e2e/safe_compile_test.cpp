// The real zorvi.exe compiling from the command line, in Japanese, through
// Wine's real cmd.exe: each road (a failing compile, the log shown, the log
// alone, a missing preset declined, a name that is no file) does exactly what
// the script says, even when the program's folder and the target's name hold
// characters the command interpreter acts on.
#include <gtest/gtest.h>

#include <windows.h>
#include <shlwapi.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "core/version.h"
#include "support/driver.h"

namespace zorvi::testing {
namespace {

// The path in its long form, as the platform gives it: short names and case undone.
std::string LongForm(const std::string& path) {
    char buffer[1024] = {};
    const DWORD length = GetLongPathNameA(path.c_str(), buffer, sizeof buffer);
    return length > 0 && length < sizeof buffer ? std::string(buffer, length) : "<" + path + ">";
}

const std::string kEcho = "@echo $fn$> \"$fp$echo.txt\"";

// One command-line run of zorvi.exe, installed with the stand-in in a
// program folder of a fresh folder, in Japanese.
struct CommandLineRun {
    const char* name;
    std::string program = "zorvi";  // the program's folder
    std::string file = "song.mml";  // the target there; "": the longest name the platform takes
    std::string switches = "-compilenow";
    std::string given{};            // the target as typed; "": its whole path, quoted
    std::string orders{};           // for the stand-in compiler
    std::string secondLine = kEcho;
    std::wstring shown{};           // the log window's text, or a box's "caption|text"
    int button = 0;                 // that answers the box
    bool started = true;            // the compiler ran once, given exactly the target's name
};

// The run shows what the row says, starts only what the script names (the
// names with blanks go through their short forms), prints the bare value
// whole, and leaves the settings and the target as they were.
void ExpectTheRun(const CommandLineRun& c) {
    SCOPED_TRACE(c.name);
    TempFolder base;
    const std::string folder = base / c.program, home = c.program + "\\";
    ASSERT_TRUE(CreateDirectoryA(folder.c_str(), nullptr));
    CreateDirectoryA((folder + "\\cfg").c_str(), nullptr);
    for (const std::string name : {"zorvi.exe", "zcompiler.exe"}) {
        const std::string built = BesideTestProgram(name == "zorvi.exe" ? "..\\" + name : name);
        ASSERT_TRUE(CopyFileA(built.c_str(), (folder + "\\" + name).c_str(), FALSE));
    }
    // cfg\t.ini, made active: the stand-in compiles the target and writes its
    // log, then the script's second line runs.
    base.Write(home + "cfg\\t.ini",
               "[Configure]\r\nConsole=" + folder + "\\zcompiler.exe\r\nExtension=out\r\n"
               "[Option]\r\nUseCUI=1\r\nDetectError=1\r\nCUIWindowState=0\r\n[Script]\r\nLine=2\r\n"
               "Line1=@\"$pp$zcompiler.exe\" \"$fp$$fn$\" > \"$fp$$fn2$.log\"\r\nLine2=" +
                   c.secondLine + "\r\n");
    const std::string settings = "[Setting]\r\nDefault=t\r\nLanguage=Japanese\r\n"
                                 "[PlayerList]\r\nItemCount=1\r\nItem1=C:\\gone.exe\r\n";
    base.Write(home + "Zorvi.ini", settings);
    CreateDirectoryA((folder + "\\folder.mml").c_str(), nullptr);
    const std::string file =
        c.file.empty() ? std::string(259 - (folder + "\\.mml").size(), 'n') + ".mml" : c.file;
    const std::string target = folder + "\\" + file;
    const std::string song = "args=" + (base / "args.txt") + "\r\n" + c.orders + "o4 c\r\n";
    base.Write(home + file, song);
    const std::string given = c.given.empty() ? "\"" + target + "\"" : c.given;
    const Running run(folder, c.switches + " " + given);
    if (c.button != 0) {
        const HWND box = run.WaitForWindow(L"#32770");
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(WindowText(box) + L"|" + MessageBoxText(box), c.shown);
        PressButton(box, c.button);
    } else if (!c.shown.empty()) {
        // Closing the log window ends the run.
        const HWND text = run.WaitForLogBox({});
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(WindowText(text), c.shown);
        PostMessageW(GetParent(text), WM_CLOSE, 0, 0);
    }
    ASSERT_EQ(run.WaitForExit(30s), std::optional<DWORD>(0));
    const auto lines = KeyValueLines(base.Read("args.txt"));
    if (!c.started) {
        EXPECT_TRUE(lines.empty());
    } else if (lines.size() != 3 || lines[2].first != "arg1") {
        ADD_FAILURE() << "not one start with one argument: " << base.Read("args.txt");
    } else {
        EXPECT_EQ(LongForm(lines[2].second), target);
    }
    // The script as configured, its lines whole.
    const std::string script = base.Read(home + "Zorvi.bat");
    EXPECT_EQ(c.secondLine == kEcho ? !script.empty()
                                    : script.find("\r\n" + c.secondLine + "\r\n") != script.npos,
              c.started);
    if (c.started && c.secondLine == kEcho) {
        std::string echoed = base.Read(home + "echo.txt");
        ASSERT_TRUE(echoed.ends_with("\r\n"));
        echoed.resize(echoed.size() - 2);
        EXPECT_EQ(LongForm(folder + "\\" + echoed), target);
    }
    EXPECT_EQ(base.Read(home + file), song);
    EXPECT_TRUE(PathIsDirectoryA((folder + "\\folder.mml").c_str()));
    // Only the main window's start rebuilds the player list.
    EXPECT_TRUE(base.Read(home + "Zorvi.ini").starts_with(settings));
}

TEST(CommandLineRuns, EachRoadStartsOnlyWhatTheScriptNamesWithTheNameAsItIs) {
    const std::wstring rule = L"\r\n" + std::wstring(78, L'-') + L"\r\n";
    std::string metacharacters;  // as long as a setting's value can be
    while (metacharacters.size() < 299) metacharacters += "&|<>^()!%$\";,=";
    metacharacters.resize(299);
    // The stand-in's console output, which the script sends to the log, is
    // in text mode: its lines end in CR CR LF.
    const CommandLineRun runs[] = {
        {.name = "a failing compile", .orders = "output=none\r\nlog=E1 bad\r\n",
         .shown = L"Zorvi:コンパイルエラーを検出しました。" + rule + L"E1 bad\r\r\n"},
        {.name = "a compile showing its log", .switches = "-compilenow -showlog",
         .orders = "log=fine\r\n", .shown = L"fine\r\r\n"},
        {.name = "the log alone", .switches = "-showlog",
         .shown = L"Zorvi:ログファイルが見つかりません。\r\n", .started = false},
        {.name = "no such preset: declined", .switches = "-preset=gone -compilenow",
         .shown = L"Zorvi - Check|gone.ini が見つかりません。既定の設定で実行しますか？",
         .button = IDNO, .started = false},
        {.name = "a folder", .given = "folder.mml",
         .shown = L"Zorvi - Check|ファイルが見つかりません。\r\n", .button = IDOK, .started = false},
        {.name = "ending in a dot", .given = "song.mml."},
        {.name = "ending in a blank", .given = "\"song.mml \""},
        {.name = "a script line of metacharacters", .secondLine = metacharacters},
        {.name = "&", .program = "prog & co", .file = "b&notepad&.mml"},
        {.name = "the others", .program = "p^%()! ,;='", .file = "t^ %PATH% (1)!,;='.mml"},
        {.name = "the longest path the platform takes: 259 characters", .program = "long",
         .file = ""},
    };
    for (const CommandLineRun& run : runs) ExpectTheRun(run);
}

// On a Japanese system (the cp932 registration; elsewhere it skips): the
// second byte of ポ, タ, 表 and ソ is "|", "^", "\" and "\" again.
TEST(ShiftJis, DoubleByteNamesReachTheCompilerAndTheCaption) {
    // The cp932 registration asks for that code page: it must not skip.
    if (const char* wanted = std::getenv("ZORVI_TEST_CODE_PAGE")) {
        ASSERT_EQ(GetACP(), static_cast<UINT>(std::atoi(wanted)));
    }
    if (GetACP() != 932) GTEST_SKIP() << "needs code page 932; runs in the cp932 registration";
    // 表ソ\ポタ表.mml, and ソ 表\タ ポ.mml through short names.
    ExpectTheRun({.name = "1", .program = "\x95\x5c\x83\x5c",
                  .file = "\x83\x7c\x83\x5e\x95\x5c.mml"});
    ExpectTheRun({.name = "2", .program = "\x83\x5c \x95\x5c", .file = "\x83\x5e \x83\x7c.mml"});
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

}  // namespace
}  // namespace zorvi::testing
