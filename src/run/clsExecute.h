// Starting other programs: the runner clsExecute, the launch operation
// ExecuteProgram and the list of launched programs ended at shut-down.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace zorvi {

// One launch through the shell, optionally waited for while the program's
// windows keep receiving their messages.
class clsExecute {
public:
    clsExecute() = default;
    ~clsExecute();
    clsExecute(const clsExecute&) = delete;
    clsExecute& operator=(const clsExecute&) = delete;

    // True when a program was started. After a wait the handle given back is
    // already closed (only its value remains); without a wait it is open and
    // the caller owns it. The plain start used when the shell refuses passes
    // no parameters and leaves processHandle as it was; a waited launch with
    // parameters never takes it. Nothing started sets processHandle to 0.
    // exitCode is written only while waiting.
    bool RunProgram(const std::string& program, const std::string& parameters,
                    const std::string& directory, HANDLE& processHandle, DWORD& exitCode,
                    int showCommand, HWND ownerWindow, bool wait);
    bool Aborted() const { return aborted_; }
    void Abort() { aborted_ = true; }  // ends a running wait after its current round
    // Why the last RunProgram started nothing: the system's error number,
    // taken at once (the plain start's when that was tried); 0 after a start.
    DWORD StartError() const { return startError_; }

private:
    bool StartWithoutShell(const std::string& program, HANDLE& processHandle, DWORD& exitCode,
                           bool wait);
    void WaitForEnd(HANDLE process, DWORD& exitCode);

    bool aborted_ = false;
    DWORD startError_ = 0;
};

struct LaunchedProgram {
    std::string FileName;         // what follows the last "\" of Path
    std::string Path;             // the program as it was given to the launch
    HANDLE ProcessHandle = nullptr;
    bool handleClosed = true;     // nothing may touch ProcessHandle any more
};

// Starts a program through a fresh clsExecute and records the launch while
// mdlMain::InteractiveMode() holds. A handle that is not recorded is closed.
bool ExecuteProgram(const std::string& program, const std::string& parameters,
                    const std::string& directory, int showCommand, HWND ownerWindow, bool wait,
                    DWORD& exitCode);
// ExecuteProgram with the recording decided by the caller.
bool LaunchAndRecord(bool record, const std::string& program, const std::string& parameters,
                     const std::string& directory, int showCommand, HWND ownerWindow, bool wait,
                     DWORD& exitCode);

const std::vector<LaunchedProgram>& LaunchedPrograms();  // element 0 is an unused placeholder
// TerminateProcess + CloseHandle, once; never on a handle already closed.
void EndProcess(LaunchedProgram& program);
void EndLaunchedPrograms();  // EndProcess on entries 1..n

}  // namespace zorvi
