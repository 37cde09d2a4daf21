// The change notification of the target's folder, waited for on a thread of
// its own that only posts to the window.
#include "ui/main/folder_watch.h"

namespace zorvi {
namespace {

constexpr DWORD kChanges =
    FILE_NOTIFY_CHANGE_LAST_WRITE | FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_SIZE;
// While the window has not taken the last message, changes are looked at no
// more often than this: a folder that changes all the time costs no processor.
constexpr DWORD kBusyPauseMs = 5;

}  // namespace

bool FolderWatch::Watch(HWND window, UINT message, const std::string& folder) {
    if (Active() && folder == folder_ && window == window_) return true;
    Stop();
    UniqueChangeNotification notification(FindFirstChangeNotificationA(folder.c_str(), FALSE,
                                                                       kChanges));
    if (!notification) return false;
    stop_.reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (!stop_) return false;
    folder_ = folder;
    window_ = window;
    message_ = message;
    pending_ = false;
    ended_ = false;
    try {
        thread_ = std::thread([this, handle = notification.release()] { Run(handle); });
    } catch (...) {
        return false;
    }
    return true;
}

void FolderWatch::Run(HANDLE handle) {
    const UniqueChangeNotification notification(handle);
    const HANDLE waits[2] = {stop_.get(), notification.get()};
    bool stopped = false;
    for (;;) {
        const DWORD woken = WaitForMultipleObjects(2, waits, FALSE, INFINITE);
        stopped = woken == WAIT_OBJECT_0;
        if (woken != WAIT_OBJECT_0 + 1) break;  // stopped, or the wait failed
        if (!pending_.exchange(true)) PostMessageW(window_, message_, 0, 0);
        // A folder that was removed cannot be watched on: the timer takes over.
        if (!FindNextChangeNotification(notification.get()) ||
            GetFileAttributesA(folder_.c_str()) == INVALID_FILE_ATTRIBUTES) {
            break;
        }
        if (pending_ && WaitForSingleObject(stop_.get(), kBusyPauseMs) == WAIT_OBJECT_0) {
            stopped = true;
            break;
        }
    }
    ended_ = true;
    // The window learns that it must look for changes by its timer again.
    if (!stopped && !pending_.exchange(true)) PostMessageW(window_, message_, 0, 0);
}

void FolderWatch::Stop() {
    if (thread_.joinable()) {
        SetEvent(stop_.get());
        thread_.join();
    }
    stop_.reset();
    folder_.clear();
    ended_ = false;
}

}  // namespace zorvi
