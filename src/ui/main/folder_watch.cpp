// The change notification of the target's folder, waited for on a thread of
// its own that only posts to the window.
#include "ui/main/folder_watch.h"

namespace zorvi {
namespace {

constexpr DWORD kChanges =
    FILE_NOTIFY_CHANGE_LAST_WRITE | FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_SIZE;
// A save is often several writes (truncate, write, rename): the window is
// told once the folder has been quiet this long, and at the latest this long
// after the first change, so a burst compiles once. The wait is the thread's
// own, finer than the shortest window timer.
constexpr DWORD kQuietMs = 5;
constexpr ULONGLONG kBurstMs = 50;
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
    // True when Stop asked for the end during the pause.
    const auto stopDuring = [this](DWORD ms) {
        return WaitForSingleObject(stop_.get(), ms) == WAIT_OBJECT_0;
    };
    bool stopped = false;
    for (;;) {
        const DWORD woken = WaitForMultipleObjects(2, waits, FALSE, INFINITE);
        stopped = woken == WAIT_OBJECT_0;
        if (woken != WAIT_OBJECT_0 + 1) break;  // stopped, or the wait failed
        // The burst is waited out. The notification is armed again before
        // each pause, so whatever changes during it shows as one signal: a
        // folder that never rests wakes this thread once a pause, not once a
        // change. A folder that was removed cannot be watched on.
        const ULONGLONG deadline = GetTickCount64() + kBurstMs;
        bool armed = true;
        do {
            armed = FindNextChangeNotification(notification.get()) &&
                    GetFileAttributesA(folder_.c_str()) != INVALID_FILE_ATTRIBUTES;
            stopped = armed && stopDuring(kQuietMs);
        } while (armed && !stopped && GetTickCount64() < deadline &&
                 WaitForSingleObject(notification.get(), 0) == WAIT_OBJECT_0);
        if (stopped) break;
        if (!pending_.exchange(true)) PostMessageW(window_, message_, 0, 0);
        if (!armed) break;  // the timer takes over
        if (pending_ && stopDuring(kBusyPauseMs)) {
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
