// zdesktop.exe: holds Wine's desktop open for the length of a test run.
//
// Wine's desktop process ends a while after its last client has gone, and the
// next program that needs a window starts it again as its own child; under
// CTest that child inherits the test's output pipe, and the test seems to run
// until the desktop goes idle. The harness starts this once with its output
// going to a log; "wineserver -k" ends it with everything else.
#include <windows.h>

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    // Any window call connects the process to the desktop; it has no window of
    // its own to serve. Bounded all the same, should the harness never end it: one day.
    if (GetDesktopWindow() == nullptr) return 1;
    WaitForSingleObject(GetCurrentProcess(), 24 * 60 * 60 * 1000);
    return 0;
}
