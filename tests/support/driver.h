// Drives the real zorvi.exe as a user would: installs it into a fresh folder,
// starts it, finds its windows and answers its message boxes.
#pragma once

#include <windows.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "support/temp_folder.h"
#include "support/wait.h"

namespace zorvi::testing {

// A copy of zorvi.exe in a folder of its own, with its settings beside it.
class Installation {
public:
    Installation();
    std::string Folder() const { return folder_.Path(); }
    std::string Exe() const { return folder_ / "zorvi.exe"; }
    std::string SettingsFile() const { return folder_ / "Zorvi.ini"; }
    const TempFolder& Files() const { return folder_; }

private:
    TempFolder folder_;
};

// One running zorvi.exe; ended at once when the test lets go of it.
class Running {
public:
    Running(const Installation& installation, const std::string& arguments,
            const std::string& workingFolder = {});
    ~Running();
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    // The exit code once the program has ended within the limit.
    std::optional<DWORD> WaitForExit(std::chrono::milliseconds limit = std::chrono::seconds(15));
    bool HasEnded();
    DWORD Id() const { return processId_; }

    // A visible top-level window of this process with this class and caption.
    HWND WaitForWindow(const char* windowClass, const std::string& caption,
                       std::chrono::milliseconds limit = std::chrono::seconds(15));

private:
    HANDLE process_ = nullptr;
    DWORD processId_ = 0;
};

// A message box of the given process, by caption; its text; pressing a button.
HWND WaitForMessageBox(DWORD processId, const std::string& caption,
                       std::chrono::milliseconds limit = std::chrono::seconds(15));
std::wstring MessageBoxText(HWND box);
void PressButton(HWND box, int buttonId);


}  // namespace zorvi::testing
