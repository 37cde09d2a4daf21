// Starting other programs through the shell, waiting for them while the
// windows stay alive, and ending the recorded ones at shut-down.
#include "run/clsExecute.h"

#include <shellapi.h>

#include <cstdint>
#include <utility>

#include "core/mdlMain.h"
#include "files/path_text.h"
#include "run/window_state.h"

namespace zorvi {
namespace {

constexpr DWORD kPollMilliseconds = 100;
// A window that posts itself a message for every one it handles would keep
// the pump busy for ever; after this many the wait checks its process again.
constexpr int kMessagesPerRound = 10000;

std::vector<LaunchedProgram>& Launched() {
    static std::vector<LaunchedProgram> list(1);
    return list;
}

// Hands the waiting messages to their windows. False when WM_QUIT came: it
// is posted again so that the message loop further up ends as it should.
bool PumpMessages() {
    MSG message;
    for (int handled = 0;
         handled < kMessagesPerRound && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);
         ++handled) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return false;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return true;
}

}  // namespace

clsExecute::~clsExecute() { aborted_ = true; }

bool clsExecute::RunProgram(const std::string& program, const std::string& parameters,
                            const std::string& directory, UniqueHandle& process,
                            DWORD& exitCode, int showCommand, HWND ownerWindow, bool wait,
                            ParameterText text) {
    startError_ = ERROR_SUCCESS;
    process.reset();
    // An empty name names nothing: neither the shell nor the plain start is asked.
    if (program.empty()) {
        startError_ = ERROR_FILE_NOT_FOUND;
        return false;
    }
    std::string quoted;
    try {
        quoted = text == ParameterText::AsWritten ? parameters : QuoteParameters(parameters);
    } catch (...) {
        startError_ = ERROR_NOT_ENOUGH_MEMORY;
        return false;
    }

    SHELLEXECUTEINFOA info{};
    info.cbSize = sizeof info;
    // SEE_MASK_FLAG_NO_UI is our own addition: without it the shell may show a
    // modal box of its own (a document without association does so under
    // Wine), and the runner must never show one; the plain start below takes
    // over instead.
    info.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_FLAG_NO_UI;
    info.hwnd = ownerWindow;
    info.lpVerb = "open";
    info.lpFile = program.c_str();
    info.lpParameters = quoted.empty() ? nullptr : quoted.c_str();
    info.lpDirectory = directory.empty() ? nullptr : directory.c_str();
    info.nShow = showCommand;
    if (ShellExecuteExA(&info) != TRUE) {
        startError_ = GetLastError();
        // The plain start would drop the parameters: a waited interpreter
        // without its "/C script" is an interactive one, and the wait would
        // never end. Only launches that lose nothing by it may fall back.
        if (wait && !parameters.empty()) return false;
        return StartWithoutShell(program, process, exitCode, wait);
    }

    UniqueHandle started(info.hProcess);
    if (wait) {
        WaitForEnd(started.get(), exitCode);
    } else {
        process = std::move(started);
    }
    return true;
}

// The way in when the shell refuses (no association, no file of that name):
// a plain process start with the program text as the whole command line. A
// command typed with its arguments into the program field starts this way.
// The launch's own parameters, show command and folder are not passed: the
// text is started as it stands.
bool clsExecute::StartWithoutShell(const std::string& program, UniqueHandle& process,
                                   DWORD& exitCode, bool wait) {
    PROCESS_INFORMATION started{};
    try {
        std::string commandLine = program;
        STARTUPINFOA startup{};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESHOWWINDOW;
        startup.wShowWindow = SW_SHOWNORMAL;
        if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                            nullptr, &startup, &started)) {
            startError_ = GetLastError();
            started = {};
        }
    } catch (...) {
        startError_ = ERROR_NOT_ENOUGH_MEMORY;
        started = {};
    }
    UniqueHandle thread(started.hThread);
    UniqueHandle handle(started.hProcess);
    if (started.dwProcessId == 0) return false;
    startError_ = ERROR_SUCCESS;
    if (wait) {
        // Our own handle stays open meanwhile, so the id cannot pass to
        // another process before it is opened here; waiting needs SYNCHRONIZE.
        UniqueHandle waited(OpenProcess(PROCESS_QUERY_INFORMATION | SYNCHRONIZE, TRUE,
                                        started.dwProcessId));
        WaitForEnd(waited.get(), exitCode);
    } else {
        // Handed over like a shell start's, so the shut-down pass can end it.
        process = std::move(handle);
    }
    return true;
}

bool clsExecute::RunConsole(const std::string& commandLine, int showCommand, bool noConsole,
                            HANDLE job, DWORD& exitCode) {
    startError_ = ERROR_SUCCESS;
    PROCESS_INFORMATION started{};
    try {
        std::string line = commandLine;
        STARTUPINFOA startup{};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESHOWWINDOW;
        startup.wShowWindow = static_cast<WORD>(showCommand);
        // Suspended until it is in the job, so that nothing it starts escapes.
        const DWORD flags = (noConsole ? CREATE_NO_WINDOW : CREATE_NEW_CONSOLE) |
                            (job != nullptr ? CREATE_SUSPENDED : 0);
        if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, flags, nullptr, nullptr,
                            &startup, &started)) {
            startError_ = GetLastError();
            return false;
        }
    } catch (...) {
        startError_ = ERROR_NOT_ENOUGH_MEMORY;
        return false;
    }
    const UniqueHandle thread(started.hThread);
    const UniqueHandle process(started.hProcess);
    // A job that cannot take it (an older system inside a job of its own)
    // costs only the clean-up of what the script leaves running.
    if (job != nullptr) AssignProcessToJobObject(job, process.get());
    if (job != nullptr) ResumeThread(thread.get());
    running_ = process.get();
    WaitForEnd(process.get(), exitCode);
    running_ = nullptr;
    return true;
}

// Each round reads the exit code, serves the windows, decides, and then
// sleeps until the program ends, a message arrives or 100 ms pass, so an
// ending is seen at once and the windows stay responsive without the wait
// using the processor. The window system's DLL is bound on its first call:
// while it is not loaded there is no window to serve (a command-line
// compile), and the wait does not load it just to ask for messages.
void clsExecute::WaitForEnd(HANDLE process, DWORD& exitCode) {
    noticeDelayMs_.reset();
    const bool serveWindows = GetModuleHandleW(L"user32.dll") != nullptr;
    for (;;) {
        DWORD code = 0;
        const bool known = process != nullptr && GetExitCodeProcess(process, &code);
        if (known) exitCode = code;
        if (serveWindows && !PumpMessages()) return;
        // A handle whose exit code cannot be read will never report an end:
        // stop rather than poll for ever.
        if (known && exitCode != STILL_ACTIVE) {
            FILETIME created{}, exited{}, kernel{}, user{}, now{};
            GetSystemTimeAsFileTime(&now);
            if (GetProcessTimes(process, &created, &exited, &kernel, &user)) {
                const auto ticks = [](const FILETIME& t) {
                    return (static_cast<std::uint64_t>(t.dwHighDateTime) << 32) | t.dwLowDateTime;
                };
                noticeDelayMs_ = static_cast<double>(ticks(now) - ticks(exited)) / 10000.0;
            }
        }
        if (aborted_ || !known || exitCode != STILL_ACTIVE) return;
        if (serveWindows) {
            MsgWaitForMultipleObjectsEx(1, &process, kPollMilliseconds, QS_ALLINPUT,
                                        MWMO_INPUTAVAILABLE);
        } else {
            WaitForSingleObject(process, kPollMilliseconds);
        }
    }
}

bool LaunchAndRecord(bool record, const std::string& program, const std::string& parameters,
                     const std::string& directory, int showCommand, HWND ownerWindow, bool wait,
                     DWORD& exitCode, DWORD* startError, ParameterText text) {
    clsExecute runner;
    UniqueHandle process;
    const bool started = runner.RunProgram(program, parameters, directory, process, exitCode,
                                           showCommand, ownerWindow, wait, text);
    if (startError != nullptr) *startError = runner.StartError();
    if (!started) return false;
    if (record) {
        try {
            Launched().push_back({mdlFile::GetFileName(program), program, std::move(process)});
        } catch (...) {
            // Unrecorded, the program simply outlives Zorvi.
        }
    }
    return true;
}

bool ExecuteProgram(const std::string& program, const std::string& parameters,
                    const std::string& directory, int showCommand, HWND ownerWindow, bool wait,
                    DWORD& exitCode, DWORD* startError, ParameterText text) {
    return LaunchAndRecord(mdlMain::InteractiveMode(), program, parameters, directory,
                           showCommand, ownerWindow, wait, exitCode, startError, text);
}

const std::vector<LaunchedProgram>& LaunchedPrograms() { return Launched(); }

void EndProcess(LaunchedProgram& program) {
    // Failures are of no interest: the program may have ended long ago.
    if (program.ProcessHandle) TerminateProcess(program.ProcessHandle.get(), 0);
    program.ProcessHandle.reset();
}

void EndLaunchedProgram(std::size_t index) {
    auto& list = Launched();
    if (index >= 1 && index < list.size()) EndProcess(list[index]);
}

void EndLaunchedPrograms() {
    auto& list = Launched();
    for (std::size_t i = 1; i < list.size(); ++i) EndProcess(list[i]);
}

}  // namespace zorvi
