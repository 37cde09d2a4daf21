// Drives the real zorvi.exe as a user would: installs it into a fresh folder,
// starts it, finds its windows and answers its message boxes.
#include "support/driver.h"

#include <stdexcept>

namespace zorvi::testing {

Installation::Installation() {
    // The product sits one folder above the test programs.
    const std::string built = BesideTestProgram("..\\zorvi.exe");
    if (!CopyFileA(built.c_str(), (*this / "zorvi.exe").c_str(), FALSE)) {
        throw std::runtime_error("cannot copy " + built);
    }
}

std::string Installation::Setting(const char* section, const char* key) const {
    char value[300] = {};
    GetPrivateProfileStringA(section, key, "", value, sizeof value, (*this / "Zorvi.ini").c_str());
    return value;
}

Running::Running(const std::string& folder, const std::string& arguments) {
    // Built by appending: GCC 12 warns falsely about "x" + temporary.
    std::string commandLine = "\"";
    commandLine += folder + "\\zorvi.exe\" " + arguments;
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION info{};
    if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                        folder.c_str(), &startup, &info)) {
        throw std::runtime_error("cannot start " + commandLine);
    }
    CloseHandle(info.hThread);
    process_ = info.hProcess;
    id_ = info.dwProcessId;
}

Running::~Running() {
    TerminateProcess(process_, 99);  // fails harmlessly once it has ended
    WaitForSingleObject(process_, 5000);
    CloseHandle(process_);
}

std::optional<DWORD> Running::WaitForExit(std::chrono::milliseconds limit) const {
    DWORD code = 0;
    if (WaitForSingleObject(process_, static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(process_, &code)) {
        return std::nullopt;
    }
    return code;
}

HWND Running::WaitForWindow(const wchar_t* windowClass, std::chrono::milliseconds limit) const {
    HWND found = nullptr;
    WaitUntil([&] {
        for (found = FindWindowExW(nullptr, nullptr, windowClass, nullptr); found != nullptr;
             found = FindWindowExW(nullptr, found, windowClass, nullptr)) {
            DWORD owner = 0;
            GetWindowThreadProcessId(found, &owner);
            if (owner == id_ && IsWindowVisible(found)) return true;
        }
        return false;
    }, limit);
    return found;
}

HWND Running::WaitForLogBox(const std::wstring& part, std::chrono::milliseconds limit) const {
    const HWND window = WaitForWindow(L"ZorviResult", limit);
    const HWND box = window != nullptr ? FindWindowExW(window, nullptr, L"Edit", nullptr) : nullptr;
    const auto holds = [&] { return WindowText(box).find(part) != std::wstring::npos; };
    return box != nullptr && WaitUntil(holds, limit) ? box : nullptr;
}

}  // namespace zorvi::testing
