// Starting other programs: the runner clsExecute, the launch operation
// ExecuteProgram and the list of launched programs ended at shut-down.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "core/handles_win.h"
#include "run/window_state.h"

namespace zorvi {

// One launch through the shell, optionally waited for while the program's
// windows keep receiving their messages.
class clsExecute {
public:
    clsExecute() = default;
    ~clsExecute();
    clsExecute(const clsExecute&) = delete;
    clsExecute& operator=(const clsExecute&) = delete;

    // True when a program was started. Without a wait the caller is handed
    // the open process handle; after a wait, or when nothing started, process
    // is left empty, so no caller ever holds a handle that is closed. The
    // plain start used when the shell refuses passes no parameters; a waited
    // launch with parameters never takes it. exitCode is written only while
    // waiting.
    bool RunProgram(const std::string& program, const std::string& parameters,
                    const std::string& directory, UniqueHandle& process, DWORD& exitCode,
                    int showCommand, HWND ownerWindow, bool wait,
                    ParameterText text = ParameterText::OneArgument);
    // Starts a console program by its whole command line in a console of its
    // own, shown with showCommand, or with no console window at all; inside
    // job when one is given (its children follow it there), and waits for it
    // like a waited RunProgram. A failure leaves StartError() set.
    bool RunConsole(const std::string& commandLine, int showCommand, bool noConsole, HANDLE job,
                    DWORD& exitCode);
    // Ends the program RunConsole waits for; nothing when none.
    void Terminate() {
        if (running_ != nullptr) TerminateProcess(running_, 1);
    }
    bool Aborted() const { return aborted_; }
    // How long after the program's end the last wait returned, in
    // milliseconds, from the system's own record of when it ended; nullopt
    // when no waited program ended.
    std::optional<double> NoticeDelayMs() const { return noticeDelayMs_; }
    void Abort() { aborted_ = true; }  // ends a running wait after its current round
    // Why the last RunProgram started nothing: the system's error number,
    // taken at once (the plain start's when that was tried); 0 after a start.
    DWORD StartError() const { return startError_; }

private:
    bool StartWithoutShell(const std::string& program, UniqueHandle& process, DWORD& exitCode,
                           bool wait);
    void WaitForEnd(HANDLE process, DWORD& exitCode);

    bool aborted_ = false;
    HANDLE running_ = nullptr;  // borrowed while RunConsole waits
    std::optional<double> noticeDelayMs_;
    DWORD startError_ = 0;
};

struct LaunchedProgram {
    std::string FileName;  // what follows the last "\" of Path
    std::string Path;      // the program as it was given to the launch
    UniqueHandle ProcessHandle;  // empty once the program was waited for or ended
};

// Starts a program through a fresh clsExecute and records the launch while
// mdlMain::InteractiveMode() holds. A handle that is not recorded is closed.
// startError, when given, receives the runner's StartError().
bool ExecuteProgram(const std::string& program, const std::string& parameters,
                    const std::string& directory, int showCommand, HWND ownerWindow, bool wait,
                    DWORD& exitCode, DWORD* startError = nullptr,
                    ParameterText text = ParameterText::OneArgument);
// ExecuteProgram with the recording decided by the caller.
bool LaunchAndRecord(bool record, const std::string& program, const std::string& parameters,
                     const std::string& directory, int showCommand, HWND ownerWindow, bool wait,
                     DWORD& exitCode, DWORD* startError = nullptr,
                     ParameterText text = ParameterText::OneArgument);

const std::vector<LaunchedProgram>& LaunchedPrograms();  // element 0 is an unused placeholder
// Ends the program and lets its handle go; an entry without a handle is left alone.
void EndProcess(LaunchedProgram& program);
void EndLaunchedPrograms();  // EndProcess on entries 1..n
void EndLaunchedProgram(std::size_t index);  // EndProcess on one entry, if there is one

}  // namespace zorvi
