// Wakes the main window when something changes in the target's folder, so a
// save is compiled at once instead of at the next tick of the watch timer.
#pragma once

#include <windows.h>

#include <atomic>
#include <string>
#include <thread>

#include "core/handles_win.h"

namespace zorvi {

class FolderWatch {
public:
    FolderWatch() = default;
    ~FolderWatch() { Stop(); }
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    // Posts message to window once a burst of changes in folder is over: at
    // most one message waits at a time, however many changes come. Watching
    // the folder already watched changes nothing. False when the folder
    // cannot be watched (gone, or a drive that sends no notifications): the
    // watch timer is then the only way changes are seen.
    bool Watch(HWND window, UINT message, const std::string& folder);
    void Stop();
    // The window has taken the message: the next change may post another.
    void Taken() { pending_ = false; }
    bool Active() const { return thread_.joinable() && !ended_; }

private:
    void Run(HANDLE notification);

    std::string folder_;
    HWND window_ = nullptr;
    UINT message_ = 0;
    UniqueHandle stop_;
    std::thread thread_;
    std::atomic<bool> pending_{false};
    std::atomic<bool> ended_{false};
};

}  // namespace zorvi
