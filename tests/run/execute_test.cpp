// The process runner against real processes: the stand-in tools and Wine's own cmd.exe.
#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/mdlMain.h"
#include "files/path_win.h"
#include "run/clsExecute.h"
#include "support/temp_folder.h"
#include "support/wait.h"

namespace zorvi {
namespace {

using testing::TempFolder;
using testing::WaitUntil;
using namespace std::chrono_literals;

constexpr DWORD kUnchanged = 12345;
const HANDLE kUntouched = reinterpret_cast<HANDLE>(static_cast<INT_PTR>(0x5a5a0));

std::string Tool(const char* name) { return mdlFile::GetAppFolder() + name; }

// zplayer.exe's record of one start.
struct Start {
    std::string commandLine;
    std::string folder;
    std::vector<std::string> arguments;
};

std::vector<Start> ReadStarts(const std::string& text) {
    std::vector<Start> starts;
    for (const auto& [key, value] : testing::KeyValueLines(text)) {
        if (key == "cmdline") {
            starts.push_back({value, {}, {}});
        } else if (!starts.empty() && key == "cwd") {
            starts.back().folder = value;
        } else if (!starts.empty() && key.rfind("arg", 0) == 0) {
            starts.back().arguments.push_back(value);
        }
    }
    return starts;
}

// Points zplayer.exe at a record file for the length of one test.
class PlayerRecord {
public:
    explicit PlayerRecord(const TempFolder& folder) : folder_(folder) {
        SetEnvironmentVariableA("ZPLAYER_RECORD", (folder / "record.txt").c_str());
    }
    ~PlayerRecord() { SetEnvironmentVariableA("ZPLAYER_RECORD", nullptr); }
    PlayerRecord(const PlayerRecord&) = delete;
    PlayerRecord& operator=(const PlayerRecord&) = delete;
    std::vector<Start> Starts() const { return ReadStarts(folder_.Read("record.txt")); }
    bool WaitForStarts(std::size_t count) const {
        return WaitUntil([&] { return Starts().size() >= count; });
    }

private:
    const TempFolder& folder_;
};

// A zcompiler.exe told to run until killed. Attach() takes hold of the
// process by the id it writes, while it surely runs, so the test can end it
// whether or not the runner still holds a handle, and the id cannot pass to
// another process meanwhile.
class HangingCompiler {
public:
    explicit HangingCompiler(const TempFolder& folder)
        : folder_(folder), pidFile_(folder / "pid.txt"), input_(folder / "hang.mml") {
        folder.Write("hang.mml", "pid=" + pidFile_ + "\r\nhang=1\r\n");
    }
    ~HangingCompiler() { Release(); }
    HangingCompiler(const HangingCompiler&) = delete;
    HangingCompiler& operator=(const HangingCompiler&) = delete;

    const std::string& Input() const { return input_; }
    // Forgets the process of an earlier start; the next start writes its own id.
    void Reset() {
        Release();
        DeleteFileA(pidFile_.c_str());
    }
    bool Attach() {
        Release();
        DWORD id = 0;
        WaitUntil([&] {
            const std::string text = folder_.Read("pid.txt");
            if (text.size() < 3 || text.substr(text.size() - 2) != "\r\n") return false;
            id = static_cast<DWORD>(std::strtoul(text.c_str(), nullptr, 10));
            return true;
        });
        if (id != 0) {
            const DWORD access =
                PROCESS_TERMINATE | SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION;
            process_ = OpenProcess(access, FALSE, id);
        }
        return process_ != nullptr;
    }
    bool Running() const { return process_ && WaitForSingleObject(process_, 0) == WAIT_TIMEOUT; }
    // The exit code once the process has ended within the limit.
    std::optional<DWORD> WaitForEnd() const {
        DWORD code = 0;
        if (!process_ || WaitForSingleObject(process_, 15000) != WAIT_OBJECT_0 ||
            !GetExitCodeProcess(process_, &code)) {
            return std::nullopt;
        }
        return code;
    }

private:
    void Release() {
        if (!process_) return;
        if (Running()) {
            TerminateProcess(process_, 99);
            WaitForSingleObject(process_, 15000);
        }
        CloseHandle(process_);
        process_ = nullptr;
    }

    const TempFolder& folder_;
    std::string pidFile_;
    std::string input_;
    HANDLE process_ = nullptr;
};

TEST(Execute, ParametersReachTheProgramAsTheQuotingRuleSays) {
    TempFolder folder;
    PlayerRecord record(folder);
    const struct {
        std::string parameters;
        std::string commandLineEnd;
        std::vector<std::string> arguments;
    } cases[] = {
        {"C:\\My Songs\\a.mml", " \"C:\\My Songs\\a.mml\"", {"C:\\My Songs\\a.mml"}},
        {"a.mml", " a.mml", {"a.mml"}},
        {"-x -y", " \"-x -y\"", {"-x -y"}},
        {"", "zplayer.exe\"", {}},
    };
    std::size_t count = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.parameters);
        HANDLE handle = kUntouched;
        DWORD exitCode = kUnchanged;
        clsExecute runner;
        ASSERT_TRUE(runner.RunProgram(Tool("zplayer.exe"), c.parameters, folder.Path(), handle,
                                      exitCode, SW_SHOWNORMAL, nullptr, true));
        EXPECT_EQ(exitCode, 0u);
        EXPECT_NE(handle, kUntouched);
        const auto starts = record.Starts();
        ASSERT_EQ(starts.size(), ++count);
        const Start& start = starts.back();
        ASSERT_GE(start.commandLine.size(), c.commandLineEnd.size()) << start.commandLine;
        EXPECT_EQ(start.commandLine.substr(start.commandLine.size() - c.commandLineEnd.size()),
                  c.commandLineEnd);
        EXPECT_EQ(start.arguments, c.arguments);
        EXPECT_EQ(start.folder, folder.Path());
    }
}

// The compile road: a batch file run by Wine's cmd.exe "/C", which hands
// back the compiler's exit code; the compiler does what its input says.
TEST(Execute, WaitGivesTheExitCodeOfABatchRun) {
    TempFolder folder;
    const std::string input = folder / "song.mml";
    const std::string output = folder / "song.out";
    const std::string log = folder / "song.log";
    const struct {
        std::string commands;
        const char* oldOutput;  // nullptr: none before the run
        DWORD exitCode;
        const char* outputAfter;  // nullptr: no output after the run
        std::string logAfter;
    } cases[] = {
        {"output=ok\r\nlog=line one\r\nlog=line two\r\nexit=0\r\n", nullptr, 0,
         "generated", "line one\r\nline two\r\n"},
        {"exit=3\r\n", nullptr, 3, "generated", ""},
        {"output=none\r\nexit=1\r\n", "old", 1, nullptr, ""},
        {"output=empty\r\nlog=empty one\r\nexit=255\r\n", nullptr, 255, "", "empty one\r\n"},
        {"output=keep\r\nexit=1000\r\n", "old", 1000, "old", ""},
        {"o4 cdefgab\r\nexit=9\r\n", nullptr, 0, "generated", ""},
    };
    folder.Write("run.bat", "@echo off\r\n\"" + Tool("zcompiler.exe") + "\" \"" + input + "\" \"" +
                                output + "\" \"" + log + "\"\r\n");
    const std::string parameters = "/C " + mdlFile::GetShortPath(folder / "run.bat");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.commands);
        DeleteFileA(output.c_str());
        if (c.oldOutput) folder.Write("song.out", c.oldOutput);
        folder.Write("song.mml", c.commands);
        HANDLE handle = nullptr;
        DWORD exitCode = kUnchanged;
        clsExecute runner;
        ASSERT_TRUE(runner.RunProgram("cmd.exe", parameters, "", handle, exitCode,
                                      SW_SHOWNORMAL, nullptr, true));
        EXPECT_EQ(exitCode, c.exitCode);
        if (c.outputAfter == nullptr) {
            EXPECT_FALSE(mdlFile::FileExists(output));
        } else if (std::string(c.outputAfter) == "generated") {
            EXPECT_EQ(folder.Read("song.out"), "zcompiler output of " + input + "\r\n");
        } else {
            EXPECT_TRUE(mdlFile::FileExists(output));
            EXPECT_EQ(folder.Read("song.out"), c.outputAfter);
        }
        EXPECT_EQ(folder.Read("song.log"), c.logAfter);
    }

    // The compiler records what it was given, in the player's form.
    folder.Write("song.mml", "args=" + (folder / "args.txt") + "\r\nsleep=50\r\n");
    HANDLE handle = nullptr;
    DWORD exitCode = kUnchanged;
    clsExecute runner;
    ASSERT_TRUE(runner.RunProgram("cmd.exe", parameters, folder.Path(), handle, exitCode,
                                  SW_SHOWNORMAL, nullptr, true));
    EXPECT_EQ(exitCode, 0u);
    const auto starts = ReadStarts(folder.Read("args.txt"));
    ASSERT_EQ(starts.size(), 1u);
    EXPECT_EQ(starts[0].arguments, (std::vector<std::string>{input, output, log}));
    EXPECT_EQ(starts[0].folder, folder.Path());

    // Given the input alone, the compiler writes its output beside it as ".out".
    DeleteFileA(output.c_str());
    folder.Write("song.mml", "exit=4\r\n");
    ASSERT_TRUE(runner.RunProgram(Tool("zcompiler.exe"), input, "", handle, exitCode,
                                  SW_SHOWNORMAL, nullptr, true));
    EXPECT_EQ(exitCode, 4u);
    EXPECT_TRUE(mdlFile::FileExists(output));
}

TEST(Execute, WithoutWaitTheHandleStaysOpenForTheCaller) {
    TempFolder folder;
    PlayerRecord record(folder);
    HANDLE handle = nullptr;
    DWORD exitCode = kUnchanged;
    clsExecute runner;
    ASSERT_TRUE(runner.RunProgram(Tool("zplayer.exe"), "now", "", handle, exitCode,
                                  SW_SHOWNORMAL, nullptr, false));
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(exitCode, kUnchanged);
    ASSERT_EQ(WaitForSingleObject(handle, 15000), WAIT_OBJECT_0);
    DWORD ended = kUnchanged;
    EXPECT_TRUE(GetExitCodeProcess(handle, &ended));
    EXPECT_EQ(ended, 0u);
    EXPECT_TRUE(CloseHandle(handle));
    ASSERT_TRUE(record.WaitForStarts(1));
    EXPECT_EQ(record.Starts()[0].arguments, std::vector<std::string>{"now"});
}

// A program field holding a command with its own argument is no file the
// shell can open; the plain start runs it, without the launch's parameters.
// A waited launch with parameters never does: losing them would turn an
// interpreter's "/C script" run into an interactive one, waited for ever.
TEST(Execute, ShellRefusalFallsBackToAPlainStartWithoutParameters) {
    TempFolder folder;
    PlayerRecord record(folder);
    const std::string program = Tool("zplayer.exe") + " typed";
    const struct {
        const char* name;
        bool wait;
        const char* parameters;
        bool started;
    } cases[] = {
        {"not waited", false, "p1 p2", true},
        {"waited, without parameters", true, "", true},
        {"waited, with parameters: nothing starts", true, "p1 p2", false},
    };
    std::size_t count = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        HANDLE handle = kUntouched;
        DWORD exitCode = kUnchanged;
        clsExecute runner;
        EXPECT_EQ(runner.RunProgram(program, c.parameters, folder.Path(), handle, exitCode,
                                    SW_MINIMIZE, nullptr, c.wait),
                  c.started);
        EXPECT_EQ(handle, c.started ? kUntouched : nullptr);
        EXPECT_EQ(exitCode, c.wait && c.started ? 0u : kUnchanged);
        if (!c.started) {
            EXPECT_NE(runner.StartError(), 0u);
            EXPECT_FALSE(WaitUntil([&] { return record.Starts().size() > count; }, 500ms));
            continue;
        }
        EXPECT_EQ(runner.StartError(), 0u);
        ASSERT_TRUE(record.WaitForStarts(++count));
        const Start start = record.Starts().back();
        EXPECT_EQ(start.commandLine, program);
        EXPECT_EQ(start.arguments, std::vector<std::string>{"typed"});
    }
}

TEST(Execute, NothingStartedGivesFalseAndNoHandle) {
    TempFolder folder;
    folder.Write("notes.xyzq", "no program opens this");
    const std::size_t recorded = LaunchedPrograms().size();
    const std::string cases[] = {
        folder / "missing.exe",
        folder / "notes.xyzq",  // no association: the shell must not show a box
        folder.Path() + "\\missing folder\\tool.exe",
        "",
    };
    for (const auto& program : cases) {
        SCOPED_TRACE(program);
        for (bool wait : {true, false}) {
            HANDLE handle = kUntouched;
            DWORD exitCode = kUnchanged;
            clsExecute runner;
            EXPECT_FALSE(runner.RunProgram(program, "a b", "", handle, exitCode, SW_SHOWNORMAL,
                                           nullptr, wait));
            EXPECT_EQ(handle, nullptr);
            EXPECT_EQ(exitCode, kUnchanged);
            EXPECT_NE(runner.StartError(), 0u);
            DWORD ignored = 0;
            EXPECT_FALSE(
                LaunchAndRecord(true, program, "", "", SW_SHOWNORMAL, nullptr, wait, ignored));
        }
    }
    EXPECT_EQ(LaunchedPrograms().size(), recorded);
}

TEST(Execute, LaunchesAreRecordedOnlyWhileInteractive) {
    TempFolder folder;
    PlayerRecord record(folder);
    const std::string program = Tool("zplayer.exe");
    ASSERT_FALSE(mdlMain::InteractiveMode());
    const std::size_t before = LaunchedPrograms().size();
    ASSERT_GE(before, 1u);
    DWORD exitCode = kUnchanged;

    // Not interactive, as in a command-line compile: nothing recorded.
    ASSERT_TRUE(ExecuteProgram(program, "one", "", SW_SHOWNORMAL, nullptr, false, exitCode));
    ASSERT_TRUE(ExecuteProgram(program, "two", "", SW_SHOWNORMAL, nullptr, true, exitCode));
    EXPECT_EQ(exitCode, 0u);
    EXPECT_EQ(LaunchedPrograms().size(), before);

    // Recorded without a wait: the entry holds an open handle.
    ASSERT_TRUE(
        LaunchAndRecord(true, program, "three", "", SW_SHOWNORMAL, nullptr, false, exitCode));
    ASSERT_EQ(LaunchedPrograms().size(), before + 1);
    const LaunchedProgram open = LaunchedPrograms().back();
    EXPECT_EQ(open.FileName, "zplayer.exe");
    EXPECT_EQ(open.Path, program);
    EXPECT_FALSE(open.handleClosed);
    ASSERT_NE(open.ProcessHandle, nullptr);
    EXPECT_EQ(WaitForSingleObject(open.ProcessHandle, 15000), WAIT_OBJECT_0);

    // Recorded after a wait: the runner has closed the handle already.
    exitCode = kUnchanged;
    ASSERT_TRUE(LaunchAndRecord(true, program, "four", "", SW_SHOWNORMAL, nullptr, true, exitCode));
    EXPECT_EQ(exitCode, 0u);
    ASSERT_EQ(LaunchedPrograms().size(), before + 2);
    EXPECT_TRUE(LaunchedPrograms().back().handleClosed);
    EXPECT_EQ(LaunchedPrograms()[0].Path, "");

    ASSERT_TRUE(record.WaitForStarts(4));
    std::vector<std::string> order;
    for (const Start& start : record.Starts()) order.push_back(start.arguments.at(0));
    std::sort(order.begin(), order.end());
    EXPECT_EQ(order, (std::vector<std::string>{"four", "one", "three", "two"}));
    EndLaunchedPrograms();
    EXPECT_TRUE(LaunchedPrograms()[before].handleClosed);
}

// The value of a handle closed after a wait is soon given to the next handle
// the program opens; the shut-down pass must leave that one alone.
TEST(Execute, ShutDownPassNeverTouchesAClosedHandle) {
    EndLaunchedPrograms();  // the pass over an empty or finished list does nothing
    DWORD exitCode = kUnchanged;
    ASSERT_TRUE(LaunchAndRecord(true, Tool("zplayer.exe"), "", "", SW_SHOWNORMAL, nullptr, true,
                                exitCode));
    const HANDLE closedValue = LaunchedPrograms().back().ProcessHandle;
    ASSERT_NE(closedValue, nullptr);
    ASSERT_TRUE(LaunchedPrograms().back().handleClosed);

    std::vector<HANDLE> events;
    HANDLE reused = nullptr;
    for (int i = 0; i < 64 && reused == nullptr; ++i) {
        HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
        ASSERT_NE(event, nullptr);
        if (event == closedValue) {
            reused = event;
        } else {
            events.push_back(event);
        }
    }
    ASSERT_NE(reused, nullptr) << "the closed handle's value was not given out again";

    EndLaunchedPrograms();
    EndLaunchedPrograms();
    EXPECT_TRUE(SetEvent(reused));
    EXPECT_EQ(WaitForSingleObject(reused, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(reused));
    for (HANDLE event : events) CloseHandle(event);
}

TEST(Execute, EndProcessEndsARunningProgramOnce) {
    TempFolder folder;
    HangingCompiler compiler(folder);
    DWORD exitCode = kUnchanged;
    LaunchedProgram program;
    program.Path = Tool("zcompiler.exe");
    clsExecute runner;
    ASSERT_TRUE(runner.RunProgram(program.Path, compiler.Input(), "", program.ProcessHandle,
                                  exitCode, SW_SHOWNORMAL, nullptr, false));
    program.handleClosed = false;
    ASSERT_TRUE(compiler.Attach());
    ASSERT_TRUE(compiler.Running());

    EndProcess(program);
    EXPECT_TRUE(program.handleClosed);
    EXPECT_EQ(compiler.WaitForEnd(), 0u);
    EndProcess(program);  // closed already: nothing happens
    EXPECT_TRUE(program.handleClosed);

    // The same through the recorded list, as at shut-down.
    compiler.Reset();
    ASSERT_TRUE(LaunchAndRecord(true, Tool("zcompiler.exe"), compiler.Input(), "", SW_SHOWNORMAL,
                                nullptr, false, exitCode));
    ASSERT_FALSE(LaunchedPrograms().back().handleClosed);
    ASSERT_TRUE(compiler.Attach());
    ASSERT_TRUE(compiler.Running());
    EndLaunchedPrograms();
    EXPECT_TRUE(LaunchedPrograms().back().handleClosed);
    EXPECT_EQ(compiler.WaitForEnd(), 0u);
}

// What the wait loop's dispatched messages do, for the test of the moment.
struct WaitProbe {
    clsExecute* runner = nullptr;
    int pings = 0;
    bool quit = false;  // the timer posts WM_QUIT instead of a ping
    HWND window = nullptr;
};
WaitProbe probe;
constexpr UINT kPing = WM_APP + 7;

LRESULT CALLBACK ProbeWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == kPing) {
        ++probe.pings;
        if (probe.runner) probe.runner->Abort();
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

void CALLBACK ProbeTimer(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    if (probe.quit) {
        PostQuitMessage(7);
    } else {
        PostMessageW(probe.window, kPing, 0, 0);
    }
}

// A program that never ends: the wait keeps serving messages, and ends when
// one of them aborts the runner or when the program is asked to quit.
TEST(Execute, WaitServesMessagesUntilAbortedOrQuit) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = ProbeWindowProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"ZorviExecuteProbe";
    RegisterClassW(&windowClass);
    probe.window = CreateWindowExW(0, windowClass.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE,
                                   nullptr, windowClass.hInstance, nullptr);
    ASSERT_NE(probe.window, nullptr);

    for (bool quit : {false, true}) {
        SCOPED_TRACE(quit ? "quit" : "abort");
        TempFolder folder;
        HangingCompiler compiler(folder);
        clsExecute runner;
        probe.runner = &runner;
        probe.pings = 0;
        probe.quit = quit;
        ASSERT_NE(SetTimer(nullptr, 0, 300, ProbeTimer), 0u);
        HANDLE handle = nullptr;
        DWORD exitCode = kUnchanged;
        ASSERT_TRUE(runner.RunProgram(Tool("zcompiler.exe"), compiler.Input(), "", handle,
                                      exitCode, SW_SHOWNORMAL, nullptr, true));
        probe.runner = nullptr;
        EXPECT_EQ(exitCode, static_cast<DWORD>(STILL_ACTIVE));
        ASSERT_TRUE(compiler.Attach());
        EXPECT_TRUE(compiler.Running());
        EXPECT_EQ(runner.Aborted(), !quit);
        EXPECT_EQ(probe.pings, quit ? 0 : 1);
        MSG message;
        const bool quitKept = PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);
        EXPECT_EQ(quitKept, quit);
        if (quitKept) {
            EXPECT_EQ(message.wParam, 7u);
        }
    }
    DestroyWindow(probe.window);
    probe.window = nullptr;
}

}  // namespace
}  // namespace zorvi
