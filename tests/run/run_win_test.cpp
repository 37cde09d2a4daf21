// The process runner and the compile pipeline against real processes: the
// stand-in compiler and player, and Wine's own cmd.exe running real batch files.
#include <gtest/gtest.h>

#include <windows.h>

#include <regex>
#include <string>
#include <vector>

#include "core/mdlMain.h"
#include "core/messages_win.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "run/clsExecute.h"
#include "run/compile.h"
#include "run/play.h"
#include "settings/ini_win.h"
#include "support/temp_folder.h"
#include "support/wait.h"
#include "ui/result/frmResult.h"

namespace zorvi {
namespace {

using testing::TempFolder;
using Texts = std::vector<std::string>;

constexpr DWORD kUnchanged = 12345;

std::string Tool(const char* name) { return mdlFile::GetAppFolder() + name; }

// Each test's own folder, where zplayer.exe records its starts.
class RunWin : public ::testing::Test {
protected:
    RunWin() {
        SetEnvironmentVariableA("ZPLAYER_RECORD", (folder / "starts.txt").c_str());
        GetCurrentDirectoryA(MAX_PATH, here);
    }
    ~RunWin() override { SetEnvironmentVariableA("ZPLAYER_RECORD", nullptr); }
    // Whether zplayer.exe's latest start ends, within the time limit, with
    // this command-line end, folder and arguments.
    bool StartedLast(const std::string& commandLineEnd, const std::string& cwd,
                     const Texts& arguments) const {
        std::string tail = commandLineEnd + "\r\ncwd=" + cwd + "\r\n";
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            tail += "arg" + std::to_string(i + 1) + "=" + arguments[i] + "\r\n";
        }
        // The stand-in's console line is another test's business.
        static const std::regex console("console=.\r\n");
        return testing::WaitUntil([&] {
            return std::regex_replace(folder.Read("starts.txt"), console, "").ends_with(tail);
        });
    }
    TempFolder folder;
    char here[MAX_PATH] = {};  // where programs started without a folder run
};

// Parameters with a blank reach the program as one argument. A program field
// holding a command with its own argument is no file the shell can open: the
// plain start runs it as it stands, without the launch's parameters and
// folder, except when a waited launch has parameters (an interpreter without
// its "/C script" would be waited for for ever).
TEST_F(RunWin, TheRunnerStartsThroughTheShellOrPlainly) {
    folder.Write("notes.xyzq", "no program opens this");
    const std::string player = Tool("zplayer.exe"), typed = player + " typed";
    const std::string blank = "C:\\My Songs\\a.mml";
    const struct {
        std::string program, parameters;
        bool wait, started;
        std::string commandLineEnd{}, folder{};
        Texts arguments{};
    } cases[] = {
        {player, blank, true, true, " \"" + blank + "\"", folder.Path(), {blank}},
        {typed, "p1 p2", false, true, typed, here, {"typed"}},
        {typed, "", true, true, typed, here, {"typed"}},
        {typed, "p1 p2", true, false},
        {folder / "missing.exe", "", false, false},
        {folder / "notes.xyzq", "", false, false},  // no association, and no box either
        {"", "", false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.program + " | " + c.parameters + (c.wait ? " | waited" : ""));
        UniqueHandle process(CreateEventA(nullptr, TRUE, FALSE, nullptr));
        DWORD exitCode = kUnchanged;
        clsExecute runner;
        EXPECT_EQ(runner.RunProgram(c.program, c.parameters, folder.Path(), process, exitCode,
                                    SW_HIDE, nullptr, c.wait),
                  c.started);
        EXPECT_EQ(runner.StartError() == 0, c.started);
        // Only a running program's handle is handed out, never one closed after the wait.
        EXPECT_EQ(static_cast<bool>(process), c.started && !c.wait);
        EXPECT_EQ(exitCode, c.started && c.wait ? 0 : kUnchanged);
        if (c.started) {
            EXPECT_TRUE(StartedLast(c.commandLineEnd, c.folder, c.arguments))
                << folder.Read("starts.txt");
        }
    }
}

// That the programs end at shut-down is seen in the end-to-end session.
TEST_F(RunWin, LaunchesAreRecordedWhileInteractiveAndLetGoAtShutDown) {
    folder.Write("hang.mml", "hang=1\r\n");
    const std::size_t before = LaunchedPrograms().size();
    DWORD exitCode = kUnchanged;
    for (const bool interactive : {false, true}) {
        mdlMain::SetInteractiveMode(interactive);
        ASSERT_TRUE(ExecuteProgram(Tool("zplayer.exe"), "", "", SW_HIDE, nullptr, true, exitCode));
    }
    ASSERT_TRUE(ExecuteProgram(Tool("zcompiler.exe"), folder / "hang.mml", "", SW_HIDE, nullptr,
                               false, exitCode));
    mdlMain::SetInteractiveMode(false);
    ASSERT_EQ(LaunchedPrograms().size(), before + 2);
    const LaunchedProgram& waited = LaunchedPrograms()[before];
    EXPECT_EQ(waited.FileName, "zplayer.exe");
    EXPECT_EQ(waited.Path, Tool("zplayer.exe"));
    EXPECT_FALSE(waited.ProcessHandle);  // closed after the wait, so not kept at all
    EXPECT_TRUE(LaunchedPrograms()[before + 1].ProcessHandle);
    EndLaunchedPrograms();
    EXPECT_FALSE(LaunchedPrograms()[before + 1].ProcessHandle);
}

// Runs inside a wait's message pump, as a shut-down of the program would.
void CALLBACK AskToQuit(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    PostQuitMessage(7);
}

// A quit that arrives while a program is waited for ends the wait at once and
// is handed on to the message loop further up.
TEST_F(RunWin, AQuitEndsTheWaitAndIsHandedOn) {
    folder.Write("song.mml", "wait=" + (folder / "go") + "\r\n");
    ASSERT_NE(SetTimer(nullptr, 0, 20, AskToQuit), 0u);
    clsExecute runner;
    UniqueHandle process;
    DWORD exitCode = kUnchanged;
    ASSERT_TRUE(runner.RunProgram(Tool("zcompiler.exe"), folder / "song.mml", "", process, exitCode,
                                  SW_HIDE, nullptr, true));
    EXPECT_EQ(exitCode, static_cast<DWORD>(STILL_ACTIVE));
    MSG message{};
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7u);
    folder.Write("go", "");  // the compiler ends, writing song.out on its way out
    EXPECT_TRUE(testing::WaitUntil([&] { return mdlFile::FileExists(folder / "song.out"); }));
}

// The interpreter's start: its own console, or none for window state 0, and
// an end that the wait sees at once. (A start that fails is a road of the compile.)
TEST_F(RunWin, AConsoleOnlyWhenShownAndTheEndSeenAtOnce) {
    std::string line = "\"";
    line += Tool("zplayer.exe") + "\" x";
    for (const bool noConsole : {true, false}) {
        SCOPED_TRACE(noConsole);
        DeleteFileA((folder / "starts.txt").c_str());
        clsExecute runner;
        DWORD exitCode = kUnchanged;
        ASSERT_TRUE(runner.RunConsole(line, SW_HIDE, noConsole, nullptr, exitCode));
        EXPECT_EQ(exitCode, 0u);
        EXPECT_NE(folder.Read("starts.txt").find(noConsole ? "console=0" : "console=1"),
                  std::string::npos);
        // The old wait slept 100 ms a round; now the end wakes it.
        ASSERT_TRUE(runner.NoticeDelayMs().has_value());
        EXPECT_LT(*runner.NoticeDelayMs(), 100.0);
    }
}

// "Section/Key=value" lines into a settings file.
void WriteKeys(const std::string& lines, const std::string& file) {
    for (const auto& [key, value] : testing::KeyValueLines(lines)) {
        WriteIni(key.substr(0, key.find('/')), key.substr(key.find('/') + 1), value, file);
    }
}

// The main window as the compile command sees it: every call written down.
class RecordingHost : public CompileHost {
public:
    HWND Owner() const override { return nullptr; }
    void ViewChange_StatusBar(const std::string& text) override { calls.push_back(text); }
    void ViewChange_LogView(bool on) override { calls.push_back(on ? "log on" : "log off"); }
    void ViewUpdate() override { calls.push_back("update"); }
    bool& Compiling() override { return compiling; }
    bool compiling = false;
    Texts calls;
};

// An installation for compiles: a configuration of a unique name in the
// program's cfg folder, where the compile looks for it, settings in the
// test's folder, and a title of its own for the batch file beside the program.
// Every box shown is recorded and answered with OK.
class Compile : public RunWin {
protected:
    Compile() {
        static int counter = 0;
        name = "wintest-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(counter++);
        CreateDirectoryA((mdlFile::GetAppFolder() + "cfg").c_str(), nullptr);
        configuration = mdlFile::GetAppFolder() + "cfg\\" + name + ".ini";
        mdlMain::SetAppTitle("Zorvi" + name);
        mdlMain::SetMainSettingsPath(folder / "Zorvi.ini");
        WriteIni("Setting", "Default", name, folder / "Zorvi.ini");
        WriteIni("ResultWindow", "AutoClose", "0", folder / "Zorvi.ini");
        previousBox_ = SetMessageBoxFunction(
            [this](HWND, const std::wstring& text, const std::wstring& title, UINT) {
                boxes.push_back(title + L"|" + text);
                return IDOK;
            });
    }
    ~Compile() override {
        SetMessageBoxFunction(std::move(previousBox_));
        DeleteFileA(configuration.c_str());
        RemoveDirectoryA(ScriptFilePath().c_str());
        DeleteFileA(ScriptFilePath().c_str());
        mdlMain::SetAppTitle("Zorvi");
        mdlMain::SetTargetFile("");
    }
    // The stand-in compiler writing song.out and song.log beside the song, with
    // no console window; extra "Section/Key=value" lines change or add keys.
    void Configure(const std::string& extra = "") const {
        const std::string keys =
            "Configure/Console=" + Tool("zcompiler.exe") + "\nConfigure/Extension=out\n" +
            "Configure/Player=$pp$zplayer.exe\nOption/UseCUI=1\nOption/CUIWindowState=0\n" +
            "Option/DetectError=1\nOption/UseGUI=0\nScript/Line=1\n" +
            "Script/Line1=$pp$zcompiler.exe $fp$$fn$ $fp$$fn2$.out $fp$$fn2$.log\n" +
            "Required/ItemCount=1\nRequired/Item1=zcompiler.exe\n" + extra;
        WriteKeys(keys, configuration);
    }
    // The target, whose leading lines are orders for the stand-in compiler.
    std::string Song(const std::string& orders, const std::string& file = "song.mml") const {
        folder.Write(file, orders + "\r\no4 c\r\n");
        mdlMain::SetTargetFile(folder / file);
        return folder / file;
    }

    std::string name, configuration;
    std::vector<std::wstring> boxes;

private:
    MessageBoxFunction previousBox_;
};

// What a timer tick or a drop does while the compile waits: another compile
// (refused), another target; then the stand-in compiler may end.
RecordingHost* reenteringHost = nullptr;
std::vector<bool> busyAtReentry;
std::string changedTarget, goFile;

void CALLBACK CompileAgainAndChangeTheTarget(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    busyAtReentry.push_back(reenteringHost->compiling);
    CMD_DoCompile(*reenteringHost);
    mdlMain::SetTargetFile(changedTarget);
    CloseHandle(CreateFileA(goFile.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
}

// A compile of a song in a folder with a blank (the script it wrote runs only
// with short folders) during which the target changes; the calls the host saw.
Texts CompileChangedMidway(const std::string& orders, const TempFolder& folder) {
    CreateDirectoryA((folder / "my songs").c_str(), nullptr);
    folder.Write("other.mml", "");
    folder.Write("other.out", "");
    changedTarget = folder / "other.mml";
    goFile = folder / "go";
    DeleteFileA(goFile.c_str());  // left by an earlier compile
    folder.Write("my songs\\song.mml", "wait=" + goFile + "\r\nlog=this compile\r\n" + orders);
    mdlMain::SetTargetFile(folder / "my songs\\song.mml");
    RecordingHost host;
    reenteringHost = &host;
    busyAtReentry.clear();
    SetTimer(nullptr, 0, 20, CompileAgainAndChangeTheTarget);
    CMD_DoCompile(host);
    EXPECT_FALSE(host.compiling);
    EXPECT_EQ(busyAtReentry, std::vector<bool>{true});
    return host.calls;
}

// The compile command keeps the names it started with to the end: the player
// gets this compile's output, the result window shows this compile's log and
// verdict. The player's console and the result window come forward: these
// cases run apart, holding the desktop.
class CompileOnScreen : public Compile {};
TEST_F(CompileOnScreen, TheCommandRunsTheScriptItWroteAndKeepsItsNames) {
    Configure("Option/UseGUI=1");
    EXPECT_EQ(CompileChangedMidway("", folder),
              (Texts{"Now Converting to song.out", "log on", "update", name}));
    const std::string output = folder / "my songs\\song.out";
    EXPECT_TRUE(StartedLast(" \"" + output + "\"", here, {output})) << folder.Read("starts.txt");
    // A zero-byte output: the result window comes up with this compile's log.
    EXPECT_EQ(CompileChangedMidway("output=empty\r\n", folder),
              (Texts{"Now Converting to song.out", name}));
    EXPECT_TRUE(boxes.empty());
    const std::wstring text = testing::WindowText(ResultWindow().TextBox());
    EXPECT_NE(text.find(L"Generated 0 byte file."), std::wstring::npos) << text;
    EXPECT_TRUE(text.ends_with(L"\r\nthis compile\r\n")) << text;
    ReleaseResultWindow();
}

// Every road of the compile command, run through Wine's cmd.exe: the stops
// and their notices, COMSPEC, $temp$ and short names; the verdicts through the
// command-line compile, which returns them rather than showing a window.
TEST_F(Compile, EveryRoadClearsTheFlagAndEndsWithTheConfigurationsName) {
    const std::string script = ScriptFilePath();
    const std::wstring wideScript(script.begin(), script.end());
    char comSpec[MAX_PATH] = {};
    GetEnvironmentVariableA("COMSPEC", comSpec, MAX_PATH);
    struct Row {
        const char* name;
        std::string extra{};            // configuration keys; "-": no configuration file
        std::string settings{};         // main settings keys
        std::string orders{};           // for the stand-in compiler
        std::string song = "song.mml";  // "gone": a target that does not exist
        const char* oldOutput = nullptr;
        const char* comSpec = nullptr;  // nullptr: as it was
        bool converting = true;         // the status bar said "Now Converting to ..."
        Texts calls{};                  // then these, then the configuration's name
        std::wstring box{}, boxEnd{};   // the one notice: its text from the title on, its end
        int verdict = -1;               // >= 0: run as the command-line compile, returning this
    };
    const Row rows[] = {
        {.name = "target missing", .song = "gone", .converting = false},
        {.name = "configuration missing", .extra = "-", .converting = false,
         .box = L"Check|Configuration file not found."},
        {.name = "compiler folder missing", .extra = "Configure/Console=" + (folder / "no\\zc.exe"),
         .box = L"Check|DOS program folder not found."},
        {.name = "required tools missing",
         .extra = "Required/ItemCount=2\nRequired/Item1=a.exe\nRequired/Item2=zplayer.exe",
         .box = L"Check|a.exe not installed"},
        // A folder in its place: under Wine as root a read-only folder can still be written.
        {.name = "the script cannot be written", .box = L"Error|" + wideScript + L"\r\n",
         .boxEnd = L" (5:Compile)"},
        {.name = "no console: only the player, which is missing",
         .extra = "Option/UseCUI=0\nOption/UseGUI=1\nConfigure/Player=C:\\nowhere\\p.exe",
         .calls = {"update"}, .box = L"Check|Windows program not found.\r\nC:\\nowhere\\p.exe"},
        {.name = "an old output left as it was", .orders = "output=keep", .oldOutput = "old",
         .verdict = 1},
        // $temp$ names a fresh file in the compiler's folder, gone afterwards;
        // without error detection no output is no error.
        {.name = "$temp$", .extra = "Configure/Console=" + (folder / "mc.exe") +
                                    "\nRequired/ItemCount=0\nOption/DetectError=0\n" +
                                    "Script/Line=1\nScript/Line1=echo x>$pp$$temp$",
         .calls = {"log off", "update"}},
        // The interpreter is found by its name alone.
        {.name = "short names, renamed back; the interpreter elsewhere", .song = "my song.mml",
         .oldOutput = "old", .comSpec = "C:\\nowhere\\cmd.exe", .calls = {"log on", "update"}},
        {.name = "no such interpreter", .comSpec = "C:\\nowhere\\nocmd.exe",
         .box = L"Error|nocmd.exe\r\n", .boxEnd = L" (2:Compile)"},
        // Last, as it changes the settings: Setting/Default names no configuration
        // that exists, so the extension filter chooses it.
        {.name = "a zero-byte output",
         .settings = "Setting/Default=none\nFilter/ItemCount=1\nFilter/Extension1=.txt;.MML\n"
                     "Filter/Default1=" + name,
         .orders = "output=empty", .verdict = 2},
    };
    for (const Row& c : rows) {
        SCOPED_TRACE(c.name);
        c.extra == "-" ? void(DeleteFileA(configuration.c_str())) : Configure(c.extra);
        if (c.boxEnd == L" (5:Compile)") CreateDirectoryA(script.c_str(), nullptr);
        SetEnvironmentVariableA("COMSPEC", c.comSpec ? c.comSpec : comSpec);
        WriteKeys(c.settings, folder / "Zorvi.ini");
        const std::string song = Song(c.orders, c.song);
        if (c.song == "gone") DeleteFileA(song.c_str());
        if (c.oldOutput) folder.Write(mdlFile::GetBaseName(song) + ".out", c.oldOutput);
        boxes.clear();
        RecordingHost host;
        const UINT_PTR guard = SetTimer(nullptr, 0, 10000, AskToQuit);
        if (c.verdict >= 0) {
            EXPECT_EQ(DoCompile2(song, "", false), c.verdict);
        } else {
            CMD_DoCompile(host);
        }
        KillTimer(nullptr, guard);
        MSG quit;
        EXPECT_FALSE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "waited 10 s";
        EXPECT_FALSE(host.compiling);
        Texts calls = c.calls;
        const std::string converting = "Now Converting to " + mdlFile::GetBaseName(song) + ".out";
        if (c.converting) calls.insert(calls.begin(), converting);
        calls.push_back(name);
        EXPECT_EQ(host.calls, c.verdict < 0 ? calls : Texts{});
        ASSERT_EQ(boxes.size(), c.box.empty() ? 0u : 1u);
        if (!c.box.empty()) {
            EXPECT_NE(boxes[0].find(L" - " + c.box), std::wstring::npos) << boxes[0];
            EXPECT_TRUE(boxes[0].ends_with(c.boxEnd)) << boxes[0];
        }
        EXPECT_FALSE(IsWindowVisible(ResultWindow().Handle()));  // no result window came up
        // Nothing is left under a short name, of $temp$, or of a failed run.
        Texts files;
        mdlFile::GetPathFile2Array(folder / "*", files, false);
        for (const std::string& file : files) {
            EXPECT_FALSE(file.find_first_of("~$") != file.npos || file.starts_with("MML")) << file;
            if (file != "Zorvi.ini") DeleteFileA((folder / file).c_str());
        }
        RemoveDirectoryA(script.c_str());
    }
    SetEnvironmentVariableA("COMSPEC", comSpec);
}

// $pp$ with no configuration named is the active configuration's compiler folder.
TEST_F(CompileOnScreen, TheEditorOpensTheTargetInTheProgramsFolder) {
    Configure();
    const std::string song = Song("", "song.mml");
    WriteIni("Option", "AutoOpen", "1", folder / "Zorvi.ini");
    WriteIni("Setting", "Editor", "$pp$zplayer.exe", folder / "Zorvi.ini");
    StartEditor(nullptr);
    EXPECT_TRUE(StartedLast(" " + song, mdlFile::RemoveBackslash(mdlFile::GetAppFolder()), {song}))
        << folder.Read("starts.txt");
}

}  // namespace
}  // namespace zorvi
