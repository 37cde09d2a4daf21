// Drives the real zorvi.exe as a user would: installs it into a fresh folder,
// starts it, finds its windows and answers its message boxes.
#include "support/driver.h"

#include <thread>

namespace zorvi::testing {
namespace {

struct WindowQuery {
    DWORD processId;
    std::string windowClass;
    std::string caption;
    HWND found = nullptr;
};

BOOL CALLBACK MatchWindow(HWND window, LPARAM param) {
    auto* query = reinterpret_cast<WindowQuery*>(param);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    char windowClass[256] = {};
    GetClassNameA(window, windowClass, sizeof windowClass);
    if (owner != query->processId || query->windowClass != windowClass ||
        !IsWindowVisible(window)) {
        return TRUE;
    }
    char caption[512] = {};
    GetWindowTextA(window, caption, sizeof caption);
    if (query->caption != caption) return TRUE;
    query->found = window;
    return FALSE;
}

HWND FindProcessWindow(DWORD processId, const char* windowClass, const std::string& caption,
                       std::chrono::milliseconds limit) {
    WindowQuery query{processId, windowClass, caption};
    WaitUntil(
        [&] {
            EnumWindows(MatchWindow, reinterpret_cast<LPARAM>(&query));
            return query.found != nullptr;
        },
        limit);
    return query.found;
}

}  // namespace

Installation::Installation() {
    // The product sits one folder above the test programs.
    const std::string builtProgram = BesideTestProgram("..\\zorvi.exe");
    if (!CopyFileA(builtProgram.c_str(), Exe().c_str(), FALSE)) {
        throw std::runtime_error("cannot copy " + builtProgram);
    }
}

Running::Running(const Installation& installation, const std::string& arguments,
                 const std::string& workingFolder) {
    // Built by appending: GCC 12 warns falsely about "x" + temporary.
    std::string commandLine = "\"";
    commandLine += installation.Exe();
    commandLine += "\" ";
    commandLine += arguments;
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION info{};
    const std::string folder = workingFolder.empty() ? installation.Folder() : workingFolder;
    if (!CreateProcessA(installation.Exe().c_str(), commandLine.data(), nullptr, nullptr, FALSE,
                        0, nullptr, folder.c_str(), &startup, &info)) {
        throw std::runtime_error("cannot start " + installation.Exe());
    }
    CloseHandle(info.hThread);
    process_ = info.hProcess;
    processId_ = info.dwProcessId;
}

Running::~Running() {
    if (!HasEnded()) {
        TerminateProcess(process_, 99);
        WaitForSingleObject(process_, 5000);
    }
    CloseHandle(process_);
}

std::optional<DWORD> Running::WaitForExit(std::chrono::milliseconds limit) {
    if (WaitForSingleObject(process_, static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0) {
        return std::nullopt;
    }
    DWORD code = 0;
    GetExitCodeProcess(process_, &code);
    return code;
}

bool Running::HasEnded() { return WaitForSingleObject(process_, 0) == WAIT_OBJECT_0; }

HWND Running::WaitForWindow(const char* windowClass, const std::string& caption,
                            std::chrono::milliseconds limit) {
    return FindProcessWindow(processId_, windowClass, caption, limit);
}

HWND WaitForMessageBox(DWORD processId, const std::string& caption,
                       std::chrono::milliseconds limit) {
    return FindProcessWindow(processId, "#32770", caption, limit);
}

std::wstring MessageBoxText(HWND box) {
    // The text of a message box is the static control with id 0xFFFF.
    return WindowText(GetDlgItem(box, 0xFFFF));
}

void PressButton(HWND box, int buttonId) {
    SendMessageW(GetDlgItem(box, buttonId), BM_CLICK, 0, 0);
}


}  // namespace zorvi::testing
