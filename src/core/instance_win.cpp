// One Zorvi at a time: the test for a running instance, and the hidden
// application window by which a later start finds and activates it.
#include "core/instance_win.h"

#include <string>

#include "core/mdlMain.h"
#include "core/wide_win.h"

namespace zorvi {
namespace {

constexpr wchar_t kApplicationClass[] = L"ZorviApplication";

// The test is tied to the executable's name, as a previous-instance flag is:
// copies of zorvi.exe under one name are one program.
std::wstring InstanceObjectName() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring name = path;
    name.erase(0, name.find_last_of(L'\\') + 1);
    for (wchar_t& c : name) {
        if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c - L'A' + L'a');
    }
    return L"Local\\Zorvi.Instance." + name;
}

HWND& ApplicationWindowSlot() {
    static HWND window = nullptr;
    return window;
}

// The window of a running instance to bring forward: the one its application
// window last saw active, else the one that stands on the taskbar for it.
// The main window gets its owner only once it shows, so until it is active
// again its owner has no record of it.
HWND WindowToActivate(HWND application) {
    const HWND last = GetLastActivePopup(application);
    if (last != nullptr && last != application) return last;
    struct Search {
        HWND owner;
        HWND found;
    } search{application, nullptr};
    EnumWindows(
        [](HWND window, LPARAM data) -> BOOL {
            auto& wanted = *reinterpret_cast<Search*>(data);
            if (GetWindow(window, GW_OWNER) != wanted.owner ||
                (GetWindowLongPtrW(window, GWL_EXSTYLE) & WS_EX_APPWINDOW) == 0) {
                return TRUE;
            }
            wanted.found = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

void ActivatePreviousInstance(const std::string& title) {
    const HWND previous = FindWindowW(kApplicationClass, Widen(title).c_str());
    if (previous == nullptr) return;
    const HWND popup = WindowToActivate(previous);
    if (popup == nullptr) return;
    SetForegroundWindow(popup);
    ShowWindow(popup, SW_RESTORE);
}

}  // namespace

bool PrevInstanceRunning(bool activate) {
    // The handle stays open for the life of the process: it is the flag.
    static HANDLE instanceObject = nullptr;
    static bool previousFound = false;
    if (instanceObject == nullptr) {
        instanceObject = CreateMutexW(nullptr, FALSE, InstanceObjectName().c_str());
        previousFound = instanceObject != nullptr && GetLastError() == ERROR_ALREADY_EXISTS;
    }
    if (!previousFound) return false;
    if (activate) {
        // Our own window, should it exist, must not answer the search.
        const std::string title = mdlMain::AppTitle();
        mdlMain::SetAppTitle(title + " ");
        RetitleApplicationWindow();
        ActivatePreviousInstance(title);
    }
    return true;
}

HWND ApplicationWindow() {
    HWND& window = ApplicationWindowSlot();
    if (window != nullptr) return window;
    {
        const HINSTANCE instance = GetModuleHandleW(nullptr);
        WNDCLASSEXW windowClass{};
        windowClass.cbSize = sizeof windowClass;
        windowClass.lpfnWndProc = DefWindowProcW;
        windowClass.hInstance = instance;
        windowClass.lpszClassName = kApplicationClass;
        RegisterClassExW(&windowClass);
        window = CreateWindowExW(WS_EX_TOOLWINDOW, kApplicationClass,
                                 Widen(mdlMain::AppTitle()).c_str(), WS_POPUP, 0, 0, 0, 0,
                                 nullptr, nullptr, instance, nullptr);
    }
    return window;
}

void RetitleApplicationWindow() {
    if (const HWND window = ApplicationWindowSlot(); window != nullptr) {
        SetWindowTextW(window, Widen(mdlMain::AppTitle()).c_str());
    }
}

}  // namespace zorvi
