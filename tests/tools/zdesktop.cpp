// zdesktop.exe: holds Wine's desktop open for the length of a test run.
//
// Wine's desktop process (explorer.exe /desktop) ends a little while after
// its last client has gone, and the next program that needs a window starts
// it again as its own child. Under CTest that child inherits the test's output
// pipe and the test appears to run until the desktop goes idle, over a minute
// later. The harness starts this program once, with its output going to a log,
// so the desktop stays up; "wineserver -k" ends it with everything else.
#include <windows.h>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    // Any window call connects the process to the desktop.
    const HWND desktop = GetDesktopWindow();
    if (desktop == nullptr) return 1;
    // A bound, should the harness never end us: one day.
    constexpr DWORD kOneDay = 24 * 60 * 60 * 1000;
    const DWORD start = GetTickCount();
    MSG message;
    while (GetTickCount() - start < kOneDay) {
        if (MsgWaitForMultipleObjects(0, nullptr, FALSE, 60 * 1000, QS_ALLINPUT) == WAIT_OBJECT_0) {
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
                if (message.message == WM_QUIT) return 0;
                DispatchMessageW(&message);
            }
        }
    }
    return 0;
}
