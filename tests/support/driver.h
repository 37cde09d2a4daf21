// Drives the real zorvi.exe as a user would: installs it into a fresh folder,
// starts it, finds its windows and answers its message boxes.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "support/temp_folder.h"
#include "support/wait.h"

namespace zorvi::testing {

// zorvi.exe copied into a folder of its own; its settings file is Zorvi.ini there.
class Installation : public TempFolder {
public:
    Installation();
    // A value of Zorvi.ini, "" when it has none.
    std::string Setting(const char* section, const char* key) const;
};

// The zorvi.exe in a folder, started there; ended at once when the test lets go of it.
class Running {
public:
    Running(const std::string& folder, const std::string& arguments);
    Running(const Installation& installation, const std::string& arguments)
        : Running(installation.Path(), arguments) {}
    ~Running();
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    std::optional<DWORD> WaitForExit(std::chrono::milliseconds limit = 15s) const;
    // A visible top-level window of this process with the class ("#32770": a message box).
    HWND WaitForWindow(const wchar_t* windowClass, std::chrono::milliseconds limit = 15s) const;
    // The text box of the log window, once that shows with part in its text.
    HWND WaitForLogBox(const std::wstring& part, std::chrono::milliseconds limit = 15s) const;

private:
    HANDLE process_ = nullptr;
    DWORD id_ = 0;
};

// A message box's text (its static control 0xFFFF) and pressing one of its buttons.
inline std::wstring MessageBoxText(HWND box) { return WindowText(GetDlgItem(box, 0xFFFF)); }
inline void PressButton(HWND box, int id) { SendMessageW(GetDlgItem(box, id), BM_CLICK, 0, 0); }

}  // namespace zorvi::testing
