// zminimal.exe: the benchmark's baseline for start-up, the least a Win32
// program does to show one window.
#include <windows.h>

namespace {

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_DESTROY) PostQuitMessage(0);
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = instance;
    windowClass.lpszClassName = L"ZorviBenchMinimal";
    if (RegisterClassW(&windowClass) == 0) return 1;
    // About the size of Zorvi's launcher strip.
    const HWND window = CreateWindowW(L"ZorviBenchMinimal", L"Minimal", WS_OVERLAPPEDWINDOW, 0, 0,
                                      294, 71, nullptr, nullptr, instance, nullptr);
    if (window == nullptr) return 1;
    ShowWindow(window, SW_SHOWNORMAL);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
    return 0;
}
