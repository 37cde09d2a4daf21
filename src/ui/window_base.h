// The small base every Zorvi window derives from: it registers the class,
// ties the native window to its C++ object and forwards messages to the
// derived window's HandleMessage, whose type it knows, so no virtual call
// is involved.
#pragma once

#include <windows.h>
#include <commctrl.h>

namespace zorvi {

template <typename Derived>
class BaseWindow {
public:
    BaseWindow(const BaseWindow&) = delete;
    BaseWindow& operator=(const BaseWindow&) = delete;

    HWND Handle() const { return hwnd_; }

protected:
    BaseWindow() = default;
    // The derived window destroys its window in its own destructor, while its
    // handlers still have their object (DestroyNative). Should one remain, it
    // is cut loose first so that no message reaches the part already gone.
    ~BaseWindow() {
        if (hwnd_ == nullptr) return;
        SetWindowLongPtrW(hwnd_, GWLP_USERDATA, 0);
        const HWND orphan = hwnd_;
        hwnd_ = nullptr;
        DestroyWindow(orphan);
    }

    // Destroys the window, with every message of its end handled by the
    // derived window; nothing when there is none.
    void DestroyNative() {
        if (hwnd_ != nullptr) DestroyWindow(hwnd_);
    }

    // Registers the class on first use and creates the window with this object
    // attached; the derived class names its class with a static ClassName().
    bool CreateNative(DWORD exStyle, const wchar_t* caption, DWORD style, int x, int y, int width,
                      int height, HWND owner, HICON icon = nullptr, HICON smallIcon = nullptr) {
        // The common controls are loaded with the first window that may hold
        // them, so a run that shows none never loads them.
        static const bool controlsReady = [] {
            INITCOMMONCONTROLSEX controls{sizeof controls, ICC_WIN95_CLASSES | ICC_TAB_CLASSES};
            return InitCommonControlsEx(&controls) != FALSE;
        }();
        (void)controlsReady;
        const HINSTANCE instance = GetModuleHandleW(nullptr);
        WNDCLASSEXW windowClass{};
        windowClass.cbSize = sizeof windowClass;
        if (!GetClassInfoExW(instance, Derived::ClassName(), &windowClass)) {
            windowClass.cbSize = sizeof windowClass;
            windowClass.lpfnWndProc = &BaseWindow::WindowProc;
            windowClass.hInstance = instance;
            windowClass.hCursor = LoadCursor(nullptr, IDC_ARROW);
            windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
            windowClass.hIcon = icon;
            windowClass.hIconSm = smallIcon != nullptr ? smallIcon : icon;
            windowClass.lpszClassName = Derived::ClassName();
            if (RegisterClassExW(&windowClass) == 0) return false;
        }
        CreateWindowExW(exStyle, Derived::ClassName(), caption, style, x, y, width, height, owner,
                        nullptr, instance, this);
        return hwnd_ != nullptr;
    }

private:
    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam,
                                       LPARAM lParam) noexcept {
        BaseWindow* self = nullptr;
        if (message == WM_NCCREATE) {
            auto* create = reinterpret_cast<CREATESTRUCTW*>(lParam);
            self = static_cast<BaseWindow*>(create->lpCreateParams);
            self->hwnd_ = hwnd;
            SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
        } else {
            self = reinterpret_cast<BaseWindow*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
        }
        if (self == nullptr) return DefWindowProcW(hwnd, message, wParam, lParam);
        LRESULT result = 0;
        try {
            result = static_cast<Derived*>(self)->HandleMessage(message, wParam, lParam);
        } catch (...) {
            // Nothing may unwind into the system's dispatcher; the message
            // counts as handled by default processing.
            result = DefWindowProcW(hwnd, message, wParam, lParam);
        }
        if (message == WM_NCDESTROY) {
            SetWindowLongPtrW(hwnd, GWLP_USERDATA, 0);
            self->hwnd_ = nullptr;
        }
        return result;
    }

    HWND hwnd_ = nullptr;
};

}  // namespace zorvi
