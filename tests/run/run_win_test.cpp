// The process runner and the compile pipeline against real processes: the
// stand-in compiler and player, and Wine's own cmd.exe running real batch files.
#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <fstream>
#include <iterator>
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
std::wstring Wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

struct Start {  // one start as zplayer.exe records it
    std::string commandLine, folder;
    Texts arguments;
};

// Each test's own folder, where zplayer.exe records its starts.
class RunWin : public ::testing::Test {
protected:
    RunWin() { SetEnvironmentVariableA("ZPLAYER_RECORD", (folder / "starts.txt").c_str()); }
    ~RunWin() override { SetEnvironmentVariableA("ZPLAYER_RECORD", nullptr); }
    std::vector<Start> Starts() const {
        std::vector<Start> starts;
        for (const auto& [key, value] : testing::KeyValueLines(folder.Read("starts.txt"))) {
            if (key == "cmdline") starts.push_back({value, {}, {}});
            if (starts.empty() || key == "cmdline") continue;
            (key == "cwd" ? starts.back().folder : starts.back().arguments.emplace_back()) = value;
        }
        return starts;
    }
    // The latest start, once there have been count starts.
    Start Latest(std::size_t count) const {
        if (!testing::WaitUntil([&] { return Starts().size() >= count; })) return {};
        return Starts().back();
    }
    TempFolder folder;
};

// Parameters with a blank reach the program as one argument. A program field
// holding a command with its own argument is no file the shell can open: the
// plain start runs it as it stands, without the launch's parameters and
// folder, except when a waited launch has parameters (an interpreter without
// its "/C script" would be waited for for ever).
TEST_F(RunWin, TheRunnerStartsThroughTheShellOrPlainly) {
    folder.Write("notes.xyzq", "no program opens this");
    const std::string player = Tool("zplayer.exe"), typed = player + " typed";
    char here[MAX_PATH] = {};
    GetCurrentDirectoryA(MAX_PATH, here);
    const struct {
        std::string program, parameters;
        bool wait, started;
        std::string commandLineEnd{}, folder{};
        Texts arguments{};
    } cases[] = {
        {player, "C:\\My Songs\\a.mml", true, true, " \"C:\\My Songs\\a.mml\"", folder.Path(),
         {"C:\\My Songs\\a.mml"}},
        {player, "-x -y", false, true, " \"-x -y\"", folder.Path(), {"-x -y"}},
        {player, "a.mml", true, true, " a.mml", folder.Path(), {"a.mml"}},
        {typed, "p1 p2", false, true, typed, here, {"typed"}},
        {typed, "", true, true, typed, here, {"typed"}},
        {typed, "p1 p2", true, false},
        {folder / "missing.exe", "", false, false},
        {folder / "notes.xyzq", "", false, false},  // no association, and no box either
        {"", "", false, false},
    };
    std::size_t starts = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.program + " | " + c.parameters + (c.wait ? " | waited" : ""));
        UniqueHandle process(CreateEventA(nullptr, TRUE, FALSE, nullptr));
        DWORD exitCode = kUnchanged;
        clsExecute runner;
        EXPECT_EQ(runner.RunProgram(c.program, c.parameters, folder.Path(), process, exitCode,
                                    SW_MINIMIZE, nullptr, c.wait),
                  c.started);
        EXPECT_EQ(runner.StartError() == 0, c.started);
        // Only a running program's handle is handed out, never one closed after the wait.
        EXPECT_EQ(static_cast<bool>(process), c.started && !c.wait);
        EXPECT_EQ(exitCode, c.started && c.wait ? 0 : kUnchanged);
        if (!c.started) continue;
        const Start start = Latest(++starts);
        EXPECT_TRUE(start.commandLine.ends_with(c.commandLineEnd)) << start.commandLine;
        EXPECT_EQ(start.folder, c.folder);
        EXPECT_EQ(start.arguments, c.arguments);
    }
}

TEST_F(RunWin, LaunchesAreRecordedWhileInteractiveAndEndedAtShutDown) {
    folder.Write("hang.mml", "hang=1\r\n");
    const std::size_t before = LaunchedPrograms().size();
    DWORD exitCode = kUnchanged;
    ASSERT_TRUE(ExecuteProgram(Tool("zplayer.exe"), "", "", SW_SHOWNORMAL, nullptr, true, exitCode));
    EXPECT_EQ(LaunchedPrograms().size(), before);
    mdlMain::SetInteractiveMode(true);
    ASSERT_TRUE(ExecuteProgram(Tool("zplayer.exe"), "", "", SW_SHOWNORMAL, nullptr, true, exitCode));
    ASSERT_TRUE(ExecuteProgram(Tool("zcompiler.exe"), folder / "hang.mml", "", SW_SHOWNORMAL,
                               nullptr, false, exitCode));
    mdlMain::SetInteractiveMode(false);
    ASSERT_EQ(LaunchedPrograms().size(), before + 2);
    const LaunchedProgram& waited = LaunchedPrograms()[before];
    const LaunchedProgram& running = LaunchedPrograms()[before + 1];
    EXPECT_EQ(waited.FileName, "zplayer.exe");
    EXPECT_EQ(waited.Path, Tool("zplayer.exe"));
    EXPECT_FALSE(waited.ProcessHandle);  // closed after the wait, so not kept at all
    HANDLE watch = nullptr;
    ASSERT_TRUE(DuplicateHandle(GetCurrentProcess(), running.ProcessHandle.get(), GetCurrentProcess(),
                                &watch, 0, FALSE, DUPLICATE_SAME_ACCESS));
    const UniqueHandle watched(watch);
    EXPECT_EQ(WaitForSingleObject(watch, 0), static_cast<DWORD>(WAIT_TIMEOUT));
    EndLaunchedPrograms();
    EXPECT_FALSE(running.ProcessHandle);
    ASSERT_EQ(WaitForSingleObject(watch, 15000), WAIT_OBJECT_0);
    ASSERT_TRUE(GetExitCodeProcess(watch, &exitCode));
    EXPECT_EQ(exitCode, 0u);  // ended by the pass, not by its own safety net
    EndLaunchedPrograms();    // a second pass finds nothing to end
}

// Runs inside a wait's message pump: aborts the runner, or else asks to quit.
clsExecute* abortee = nullptr;
void CALLBACK InterruptWait(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    abortee ? abortee->Abort() : PostQuitMessage(7);
}

TEST_F(RunWin, TheWaitServesMessagesAndEndsWhenAbortedOrAskedToQuit) {
    for (const bool quit : {false, true}) {
        SCOPED_TRACE(quit ? "quit" : "abort");
        DeleteFileA((folder / "go").c_str());
        folder.Write("song.mml", "wait=" + (folder / "go") + "\r\n");
        clsExecute runner;
        abortee = quit ? nullptr : &runner;
        ASSERT_NE(SetTimer(nullptr, 0, 20, InterruptWait), 0u);
        UniqueHandle process;
        DWORD exitCode = kUnchanged;
        ASSERT_TRUE(runner.RunProgram(Tool("zcompiler.exe"), folder / "song.mml", "", process,
                                      exitCode, SW_MINIMIZE, nullptr, true));
        EXPECT_EQ(exitCode, static_cast<DWORD>(STILL_ACTIVE));
        EXPECT_EQ(runner.Aborted(), !quit);
        MSG message{};  // the quit is handed on to the loop further up
        EXPECT_EQ(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) != FALSE, quit);
        EXPECT_EQ(message.wParam, quit ? 7u : 0u);
        folder.Write("go", "");  // the compiler ends, writing song.out on its way out
        EXPECT_TRUE(testing::WaitUntil([&] { return mdlFile::FileExists(folder / "song.out"); }));
        DeleteFileA((folder / "song.out").c_str());
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
        previousBox_ = SetMessageBoxFunction([this](HWND, const std::wstring& text,
                                                    const std::wstring& title, UINT) {
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
    // The stand-in compiler writing song.out and song.log beside the song;
    // extra "Section/Key=value" lines change or add keys.
    void Configure(const std::string& extra = "") const {
        const std::string keys =
            "Configure/Console=" + Tool("zcompiler.exe") + "\nConfigure/Extension=out\n" +
            "Configure/Player=$pp$zplayer.exe\nOption/UseCUI=1\nOption/CUIWindowState=2\n" +
            "Option/DetectError=1\nOption/UseGUI=0\nScript/Line=1\n" +
            "Script/Line1=$pp$zcompiler.exe $fp$$fn$ $fp$$fn2$.out $fp$$fn2$.log\n" +
            "Required/ItemCount=1\nRequired/Item1=zcompiler.exe\n" + extra;
        for (const auto& [key, value] : testing::KeyValueLines(keys)) {
            const auto slash = key.find('/');
            WriteIni(key.substr(0, slash), key.substr(slash + 1), value, configuration);
        }
    }
    // The target, whose leading lines are orders for the stand-in compiler.
    std::string Song(const std::string& orders, const std::string& file = "song.mml") const {
        folder.Write(file, orders + "o4 c\r\n");
        mdlMain::SetTargetFile(folder / file);
        return folder / file;
    }

    std::string name, configuration;
    std::vector<std::wstring> boxes;

private:
    MessageBoxFunction previousBox_;
};

TEST_F(Compile, VerdictsOfRealRunsThroughCmd) {
    CreateDirectoryA((folder / "tools").c_str(), nullptr);
    const struct {
        const char* name;
        const char* song;
        std::string extra, orders;
        const char* oldOutput;  // nullptr: none before the run
        int code;
        Texts files;  // the folder afterwards, Zorvi.ini aside
    } cases[] = {
        {"no output", "song.mml", "", "output=none\r\n", nullptr, 1, {"song.log", "song.mml"}},
        {"an old output left as it was", "song.mml", "", "output=keep\r\n", "old", 1,
         {"song.log", "song.mml", "song.out"}},
        {"zero bytes", "song.mml", "", "output=empty\r\n", nullptr, 2,
         {"song.log", "song.mml", "song.out"}},
        {"a blank in the name: run with short names, renamed back", "my song.mml", "", "", "old",
         0, {"my song.log", "my song.mml", "my song.out"}},
        // $temp$ names a fresh file in the compiler's folder, gone afterwards;
        // without detection no output is no error.
        {"$temp$", "song.mml",
         "Configure/Console=" + (folder / "tools\\mc.exe") + "\nRequired/ItemCount=0\n" +
             "Option/DetectError=0\nScript/Line=2\nScript/Line1=echo $temp$>$pp$$temp$\n" +
             "Script/Line2=copy $pp$$temp$ $pp$seen.txt",
         "", nullptr, 0, {"song.mml", "tools\\seen.txt"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Configure(c.extra);
        const std::string song = Song(c.orders, c.song);
        if (c.oldOutput) folder.Write(mdlFile::GetFileName(mdlFile::ChangeExtension(song, "out")), c.oldOutput);
        EXPECT_EQ(DoCompile2(song, configuration, false), c.code);
        EXPECT_TRUE(boxes.empty());
        Texts files, names;
        for (const std::string sub : {"", "tools\\"}) {
            mdlFile::GetPathFile2Array(folder / (sub + "*"), names, false);
            for (names.pop_back(); const std::string& file : names) {
                if (file == "Zorvi.ini") continue;
                files.push_back(sub + file);
                if (file == "seen.txt") {
                    EXPECT_EQ(folder.Read(files.back()), "MML000\r\n");
                }
                DeleteFileA((folder / files.back()).c_str());
            }
        }
        std::ranges::sort(files);
        EXPECT_EQ(files, c.files);
    }
}

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

// The compile command keeps the names it started with to the end: the result
// window shows this compile's log, the player gets this compile's output.
TEST_F(Compile, TheCommandRunsTheScriptItWroteAndKeepsItsNames) {
    CreateDirectoryA((folder / "my songs").c_str(), nullptr);
    folder.Write("other.mml", "");
    folder.Write("other.out", "");
    changedTarget = folder / "other.mml";
    goFile = folder / "go";
    const std::string songs = mdlFile::GetShortPath(folder / "my songs") + "\\";
    for (const bool error : {false, true}) {
        SCOPED_TRACE(error ? "compile error" : "success");
        Configure("Option/UseGUI=1");
        DeleteFileA(goFile.c_str());
        Song("wait=" + goFile + "\r\nlog=this compile\r\n" + (error ? "output=none\r\n" : ""),
             "my songs\\song.mml");
        RecordingHost host;
        reenteringHost = &host;
        busyAtReentry.clear();
        SetTimer(nullptr, 0, 20, CompileAgainAndChangeTheTarget);
        CMD_DoCompile(host);
        EXPECT_FALSE(host.compiling);
        EXPECT_EQ(busyAtReentry, std::vector<bool>{true});
        const Texts success = {"Now Converting to song.out", "log on", "update", name};
        EXPECT_EQ(host.calls, error ? Texts({success[0], name}) : success);
        EXPECT_TRUE(boxes.empty());
        std::ifstream script(ScriptFilePath(), std::ios::binary);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(script), {}),
                  mdlFile::GetShortPath(mdlFile::GetAppFolder()) + "zcompiler.exe " + songs + "song.mml " + songs +
                      "song.out " + songs + "song.log\r\n");
        if (error) {
            const std::wstring text = testing::WindowText(ResultWindow().TextBox());
            EXPECT_NE(text.find(L"Detect compiling error."), std::wstring::npos) << text;
            EXPECT_TRUE(text.ends_with(L"\r\nthis compile\r\n")) << text;
            ReleaseResultWindow();
            continue;
        }
        const Start start = Latest(1);
        EXPECT_EQ(start.arguments, Texts{folder / "my songs\\song.out"});
        EXPECT_TRUE(start.commandLine.ends_with("\"" + start.arguments.at(0) + "\"")) << start.commandLine;
    }
}

TEST_F(Compile, EveryStopClearsTheFlagAndShowsTheConfigurationsName) {
    const std::string converting = "Now Converting to song.out", script = ScriptFilePath();
    char savedComSpec[MAX_PATH] = {};
    GetEnvironmentVariableA("COMSPEC", savedComSpec, MAX_PATH);
    const struct {
        const char* name;
        std::string extra;  // "-": no configuration file
        const char* song;   // the target, which may be missing
        bool busy;
        const char* comSpec;
        Texts calls;
        std::wstring box{}, boxEnd{};
    } cases[] = {
        {"busy", "", "song.mml", true, nullptr, {}},
        {"target missing", "", "gone.mml", false, nullptr, {name}},
        {"configuration missing", "-", "song.mml", false, nullptr, {name},
         L" - Check|Configuration file not found."},
        {"compiler folder missing", "Configure/Console=" + (folder / "no\\zc.exe"), "song.mml",
         false, nullptr, {converting, name}, L" - Check|DOS program folder not found."},
        {"required tools missing", "Required/ItemCount=2\nRequired/Item1=a.exe\nRequired/Item2=zplayer.exe",
         "song.mml", false, nullptr, {converting, name}, L" - Check|a.exe not installed"},
        // A folder in its place; under Wine as root a read-only folder can still be written.
        {"the script cannot be written", "", "song.mml", false, nullptr, {converting, name},
         L" - Error|" + Wide(script) + L"\r\n", L" (5:Compile)"},
        {"no console: only the player, which is missing",
         "Option/UseCUI=0\nOption/UseGUI=1\nConfigure/Player=C:\\nowhere\\player.exe", "song.mml",
         false, nullptr, {converting, "update", name},
         L" - Check|Windows program not found.\r\nC:\\nowhere\\player.exe"},
        // The interpreter is found by the name alone; one that is not found is reported.
        {"interpreter in another folder", "", "song.mml", false, "C:\\nowhere\\cmd.exe",
         {converting, "log on", "update", name}},
        {"no such interpreter", "", "song.mml", false, "C:\\nowhere\\nocmd.exe", {converting, name},
         L" - Error|nocmd.exe\r\n", L":Compile)"},
        // Started bare, the interpreter would wait for typed commands, and the compile for it.
        {"a switch in COMSPEC", "", "song.mml", false, "C:\\windows\\system32\\cmd.exe /Q",
         {converting, name}, L" - Error|cmd.exe /Q\r\n", L":Compile)"},
    };
    folder.Write("song.mml", "o4 c\r\n");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        c.extra == "-" ? void(DeleteFileA(configuration.c_str())) : Configure(c.extra);
        if (c.boxEnd == L" (5:Compile)") CreateDirectoryA(script.c_str(), nullptr);
        SetEnvironmentVariableA("COMSPEC", c.comSpec ? c.comSpec : savedComSpec);
        mdlMain::SetTargetFile(folder / c.song);
        boxes.clear();
        RecordingHost host;
        host.compiling = c.busy;
        abortee = nullptr;
        const UINT_PTR guard = SetTimer(nullptr, 0, 10000, InterruptWait);
        CMD_DoCompile(host);
        KillTimer(nullptr, guard);
        MSG quit;
        EXPECT_FALSE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) << "waited 10 s";
        EXPECT_EQ(host.compiling, c.busy);
        EXPECT_EQ(host.calls, c.calls);
        RemoveDirectoryA(script.c_str());
        // An output exactly when the compile ran to its end.
        EXPECT_EQ(DeleteFileA((folder / "song.out").c_str()) != FALSE, c.calls.size() == 4);
        ASSERT_EQ(boxes.size(), c.box.empty() ? 0u : 1u);
        if (c.box.empty()) continue;
        EXPECT_NE(boxes[0].find(c.box), std::wstring::npos) << boxes[0];
        EXPECT_TRUE(boxes[0].ends_with(c.boxEnd)) << boxes[0];
    }
    SetEnvironmentVariableA("COMSPEC", savedComSpec);
}

TEST_F(Compile, TheEditorOpensTheTargetInTheProgramsFolder) {
    const std::string song = Song("", "song.mml");
    WriteIni("Option", "AutoOpen", "1", folder / "Zorvi.ini");
    WriteIni("Setting", "Editor", "$hp$zplayer.exe", folder / "Zorvi.ini");
    StartEditor(nullptr);
    const Start start = Latest(1);
    EXPECT_EQ(start.arguments, Texts{song});
    EXPECT_EQ(start.folder + "\\", mdlFile::GetAppFolder());
}

TEST_F(Compile, TheExtensionFilterReadsTheSettingsRows) {
    Configure();
    const std::string settings = folder / "Zorvi.ini";
    for (const auto& [key, value] : testing::KeyValueLines(
             "ItemCount=2\nExtension1=.txt\nDefault1=x\nExtension2=.mus;.MML\nDefault2=" + name)) {
        WriteIni("Filter", key, value, settings);
    }
    std::string chosen;
    EXPECT_EQ(ExtensionFilter("C:\\songs\\a.mml", chosen), FilterCode::Found);
    EXPECT_EQ(chosen, name);
    WriteIni("Filter", "Default2", "nothing-here", settings);
    EXPECT_EQ(ExtensionFilter("C:\\songs\\a.mml", chosen), FilterCode::MissingConfig);
    EXPECT_EQ(chosen, "nothing-here");
}

}  // namespace
}  // namespace zorvi
