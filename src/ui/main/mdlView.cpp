// Window placement shared by the program's windows.
#include "ui/main/mdlView.h"

#include "core/handles_win.h"

namespace zorvi {
namespace {

std::optional<int> ToPixels(std::optional<int> twips, int dotsPerInch) {
    if (!twips) return std::nullopt;
    return TwipsToPixels(*twips, dotsPerInch);
}

}  // namespace

ScreenDpi GetScreenDpi() {
    // The screen's dots per inch stay what they were at start-up until the
    // user signs in again, so the screen is asked once.
    static const ScreenDpi asked = [] {
        ScreenDpi dpi;
        if (const UniqueScreenDC screen(GetDC(nullptr)); screen) {
            dpi.x = GetDeviceCaps(screen.get(), LOGPIXELSX);
            dpi.y = GetDeviceCaps(screen.get(), LOGPIXELSY);
        }
        if (dpi.x <= 0) dpi.x = 96;
        if (dpi.y <= 0) dpi.y = 96;
        return dpi;
    }();
    return asked;
}

bool IsNormalWindowState(HWND window) {
    return IsWindow(window) && !IsIconic(window) && !IsZoomed(window);
}

void MoveWindowOnScreen(HWND window, std::optional<int> left, std::optional<int> top,
                        std::optional<int> width, std::optional<int> height) {
    // A minimised or maximised window cannot be placed; its restored place is
    // the one the user left.
    if (!IsNormalWindowState(window)) return;
    RECT rect{};
    if (!GetWindowRect(window, &rect)) return;
    const WindowBox current{rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
    const ScreenDpi dpi = GetScreenDpi();
    const RequestedBox requested{ToPixels(left, dpi.x), ToPixels(top, dpi.y),
                                 ToPixels(width, dpi.x), ToPixels(height, dpi.y)};
    const ScreenExtent screen{GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    const auto box = CorrectPlacement(requested, current, screen);
    // A window already where it is asked to be is not moved: even a move
    // that changes nothing costs the window system a round of messages.
    if (!box || *box == current) return;
    SetWindowPos(window, nullptr, box->left, box->top, box->width, box->height,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOOWNERZORDER);
}

void MoveWindowExactly(HWND window, const WindowBox& twips) {
    if (!IsNormalWindowState(window) || twips.width < 0 || twips.height < 0) return;
    const ScreenDpi dpi = GetScreenDpi();
    SetWindowPos(window, nullptr, TwipsToPixels(twips.left, dpi.x), TwipsToPixels(twips.top, dpi.y),
                 TwipsToPixels(twips.width, dpi.x), TwipsToPixels(twips.height, dpi.y),
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOOWNERZORDER);
}

std::optional<WindowBox> GetWindowBoxTwips(HWND window) {
    RECT rect{};
    if (!IsWindow(window) || !GetWindowRect(window, &rect)) return std::nullopt;
    const ScreenDpi dpi = GetScreenDpi();
    return WindowBox{PixelsToTwips(rect.left, dpi.x), PixelsToTwips(rect.top, dpi.y),
                     PixelsToTwips(rect.right - rect.left, dpi.x),
                     PixelsToTwips(rect.bottom - rect.top, dpi.y)};
}

}  // namespace zorvi
