// zdesktop.exe: holds Wine's desktop open for the length of a test run.
//
// Wine's desktop process ends a while after its last client has gone, and the
// next program that needs a window starts it again as its own child; under
// CTest that child inherits the test's output pipe, and the test seems to run
// until the desktop goes idle. The harness starts this once with its output
// going to a log; "wineserver -k" ends it with everything else.
#include <windows.h>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    // Any window call connects the process to the desktop; the queue served
    // keeps it a client. Bounded all the same, should the harness never end it: one day.
    if (GetDesktopWindow() == nullptr) return 1;
    const ULONGLONG end = GetTickCount64() + 24ULL * 60 * 60 * 1000;
    for (MSG message; GetTickCount64() < end;) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 60 * 1000, QS_ALLINPUT);
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_QUIT) return 0;
            DispatchMessageW(&message);
        }
    }
    return 0;
}
