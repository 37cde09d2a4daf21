// The main window's geometry: placing it from the settings, the three
// layouts, fitting the height to them, DPI changes and saving the place.
#include "ui/main/frmZorvi.h"

#include <algorithm>

#include "core/mdlMain.h"
#include "core/messages_win.h"
#include "core/strings_win.h"
#include "core/text.h"
#include "core/wide_win.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "files/variables_win.h"
#include "res/resource.h"
#include "res/string_ids.h"
#include "run/clsExecute.h"
#include "run/play.h"
#include "run/required_tools.h"
#include "settings/ini_win.h"
#include "settings/lists_win.h"
#include "ui/main/keymap.h"
#include "ui/main/layout.h"
#include "ui/main/main_parts.h"
#include "ui/main/mdlHotKey.h"
#include "ui/main/mdlView.h"
#include "ui/main/watch.h"
#include "ui/result/frmResult.h"
#include "ui/text_font_win.h"

namespace zorvi {

using namespace main_parts;

void frmZorvi::ApplyFonts() {
    NONCLIENTMETRICSW metrics = MetricsForDpi(Dpi());
    // The launcher list shows names the user gave, Japanese ones included.
    std::wstring shown;
    for (std::size_t i = 0; i < launcher_.Count(); ++i) shown += Widen(launcher_.Record(i).item);
    UniqueFont font = CreateFontFor(metrics.lfMessageFont, shown);
    if (!font) return;
    for (const HWND control : {statusBar_, combo_[0], combo_[1]}) {
        if (control != nullptr) {
            SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), TRUE);
        }
    }
    font_ = std::move(font);
}

UINT frmZorvi::Dpi() const { return WindowDpi(Handle()); }

void frmZorvi::PlaceFromSettings() {
    const std::string& file = MainFile();
    placedTwips_ = {ReadIniInt(keys::kMainLeft, file), ReadIniInt(keys::kMainTop, file),
                    ReadIniInt(keys::kMainWidth, file), ReadIniInt(keys::kMainHeight, file)};
    const ScreenDpi dpi = GetScreenDpi();
    placedPixels_ = {
        TwipsToPixels(placedTwips_.left, dpi.x), TwipsToPixels(placedTwips_.top, dpi.y),
        TwipsToPixels(placedTwips_.width, dpi.x), TwipsToPixels(placedTwips_.height, dpi.y)};
    fitting_ = true;
    MoveWindowOnScreen(Handle(), placedTwips_.left, placedTwips_.top, placedTwips_.width,
                       placedTwips_.height);
    // The shared placement corrects one axis per call; a window stored off
    // the screen on both axes needs a second look to come back into view.
    for (int pass = 0; pass < 2; ++pass) {
        RECT rect{};
        GetWindowRect(Handle(), &rect);
        if (MonitorFromRect(&rect, MONITOR_DEFAULTTONULL) != nullptr) break;
        MoveWindowOnScreen(Handle(), std::nullopt, std::nullopt, std::nullopt, std::nullopt);
    }
    fitting_ = false;
    RECT rect{};
    GetWindowRect(Handle(), &rect);
    // The height asked for stays the user's even where the layout needs more;
    // a height the screen could not hold is replaced by what it got.
    userHeight_ = placedPixels_.height > 0 && Height(rect) >= placedPixels_.height
                      ? placedPixels_.height
                      : Height(rect);
}

LayoutMetrics frmZorvi::MeasureLayout() const {
    RECT client{}, window{}, toolbar{}, status{}, combo{}, launcher{};
    GetClientRect(Handle(), &client);
    GetWindowRect(Handle(), &window);
    GetWindowRect(toolbar_, &toolbar);
    GetWindowRect(statusBar_, &status);
    // The members share style and font, and so their height.
    GetWindowRect(combo_[1] != nullptr ? combo_[1] : combo_[0], &combo);
    SendMessageW(toolbar_, TB_GETITEMRECT, kLauncher - 1, reinterpret_cast<LPARAM>(&launcher));
    LayoutMetrics metrics;
    metrics.clientWidth = Width(client);
    metrics.windowWidth = Width(window);
    metrics.toolbarHeight = Height(toolbar);
    metrics.launcherLeft = launcher.left;
    metrics.launcherTop = launcher.top;
    metrics.launcherHeight = Height(launcher);
    metrics.comboHeight = Height(combo);
    metrics.statusHeight = Height(status);
    metrics.dpi = static_cast<int>(Dpi());
    return metrics;
}

int frmZorvi::MinClientHeight() const {
    if (toolbar_ == nullptr || statusBar_ == nullptr) return 0;
    return ComputeLayout(mode_, MeasureLayout()).minClientHeight;
}

bool frmZorvi::CanLayOut() const {
    // While the window is being built every step would lay it out again:
    // it is laid out once, when it is complete. A window in the tray or on
    // the taskbar has nothing to lay out.
    return toolbar_ != nullptr && statusBar_ != nullptr && !creating_ && !IsIconic(Handle());
}

// What the measures of a layout depend on: the list member the layout
// shows, the launcher slot, and the bars' own sizes.
void frmZorvi::PrepareLayout() {
    SendMessageW(statusBar_, WM_SIZE, 0, 0);
    MakeCombo(NormalizeMode(mode_) == 0 ? 0 : 1);
    // The launcher slot holds list member 0 in layout 0 only; elsewhere it
    // would leave a stray divider after the buttons.
    SendMessageW(toolbar_, TB_HIDEBUTTON, CommandOf(kLauncher),
                 MAKELPARAM(NormalizeMode(mode_) == 0 ? FALSE : TRUE, 0));
    SendMessageW(toolbar_, TB_AUTOSIZE, 0, 0);
}

void frmZorvi::Layout() {
    laidOutSize_ = -1;
    if (!CanLayOut()) return;
    RECT client{};
    GetClientRect(Handle(), &client);
    laidOutSize_ = MAKELPARAM(Width(client), Height(client));
    PrepareLayout();
    const LayoutMetrics metrics = MeasureLayout();
    const LauncherLayout layout = ComputeLayout(mode_, metrics);

    ShowWindow(toolbar_, layout.toolbarVisible ? SW_SHOWNA : SW_HIDE);
    if (layout.launcherWidth) {
        TBBUTTONINFOW info{};
        info.cbSize = sizeof info;
        info.dwMask = TBIF_SIZE;
        info.cx = static_cast<WORD>(std::min(*layout.launcherWidth, 0xFFFF));
        SendMessageW(toolbar_, TB_SETBUTTONINFOW, CommandOf(kLauncher),
                     reinterpret_cast<LPARAM>(&info));
    }
    const int dropHeight = metrics.comboHeight * kDropDownRows;
    const auto place = [&](HWND list, const ListPlacement& placement) {
        if (list == nullptr) return;  // never shown yet
        RECT now{};
        GetWindowRect(list, &now);
        const int width = placement.width.value_or(Width(now));
        SetWindowPos(list, HWND_TOP, placement.left, placement.top, width, dropHeight,
                     SWP_NOACTIVATE | (placement.visible ? SWP_SHOWWINDOW : SWP_HIDEWINDOW));
    };
    place(combo_[0], layout.member0);
    place(combo_[1], layout.member1);

    // Panel 3 holds "NoInfo." at the least, panel 2 a player's name.
    const int dpi = metrics.dpi;
    const auto edges = StatusPanelEdges(Width(client), ScaleForDpi(110, dpi), ScaleForDpi(70, dpi));
    int parts[3] = {edges[0], edges[1], edges[2]};
    SendMessageW(statusBar_, SB_SETPARTS, 3, reinterpret_cast<LPARAM>(parts));
}

bool frmZorvi::FitHeightToLayout() {
    if (!IsNormalWindowState(Handle()) || creating_) return false;
    RECT window{};
    GetWindowRect(Handle(), &window);
    RECT frame{0, 0, 0, 0};
    AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrW(Handle(), GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongPtrW(Handle(), GWL_EXSTYLE)));
    const int wanted = std::max(userHeight_, MinClientHeight() + Height(frame));
    if (wanted == Height(window)) return false;
    fitting_ = true;
    SetWindowPos(Handle(), nullptr, 0, 0, Width(window), wanted,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    fitting_ = false;
    return true;
}

void frmZorvi::LayOutAndFit() {
    // The height is fitted to what the layout will need first: where it has
    // to change, the resize lays the window out, so it is laid out once.
    if (CanLayOut()) PrepareLayout();
    if (!FitHeightToLayout()) Layout();
}

void frmZorvi::ChangeLauncherPos() {
    mode_ = NormalizeMode(mode_);
    // The list state moves to the member that is shown: the typed text when
    // nothing is selected, else the selected entry.
    const auto carry = [](HWND from, HWND to) {
        if (from == nullptr || to == nullptr) return;
        const LRESULT selected = SendMessageW(from, CB_GETCURSEL, 0, 0);
        if (selected == CB_ERR) {
            const int length = GetWindowTextLengthW(from);
            std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
            text.resize(static_cast<std::size_t>(GetWindowTextW(from, text.data(), length + 1)));
            SendMessageW(to, CB_SETCURSEL, static_cast<WPARAM>(-1), 0);
            SetWindowTextW(to, text.c_str());
        } else {
            SendMessageW(to, CB_SETCURSEL, static_cast<WPARAM>(selected), 0);
        }
    };
    if (mode_ == 1) {
        carry(combo_[0], MakeCombo(1));
    } else if (mode_ == 0) {
        carry(combo_[1], MakeCombo(0));
    }
    LayOutAndFit();
    InvalidateRect(Handle(), nullptr, TRUE);
}

void frmZorvi::NextLayout() {
    mode_ = NextMode(mode_);
    ChangeLauncherPos();
}

void frmZorvi::SaveGeometry() {
    // A minimised or maximised window would store a place the user never chose.
    if (!IsNormalWindowState(Handle())) return;
    RECT rect{};
    if (!GetWindowRect(Handle(), &rect)) return;
    const ScreenDpi dpi = GetScreenDpi();
    // What was read comes back unchanged unless the window moved: pixels
    // cannot hold every twip value.
    const auto twips = [](int pixels, int placedPixels, int placedTwips, int dotsPerInch) {
        return pixels == placedPixels ? placedTwips : PixelsToTwips(pixels, dotsPerInch);
    };
    const std::string& file = MainFile();
    const auto write = [&file](const settings::IntKey& key, int value) {
        WriteIni(key.section, key.name, value, file);
    };
    write(keys::kMainTop, twips(rect.top, placedPixels_.top, placedTwips_.top, dpi.y));
    write(keys::kMainLeft, twips(rect.left, placedPixels_.left, placedTwips_.left, dpi.x));
    write(keys::kMainWidth, twips(Width(rect), placedPixels_.width, placedTwips_.width, dpi.x));
    write(keys::kMainHeight, twips(userHeight_, placedPixels_.height, placedTwips_.height, dpi.y));
    write(keys::kMainMode, mode_);
}

void frmZorvi::OnSize(WPARAM kind, LPARAM clientSize) {
    // The first show sends the size once more: the layout made for it stands.
    if (kind == SIZE_MINIMIZED || clientSize != laidOutSize_) Layout();
    if (kind != SIZE_RESTORED) return;
    RECT window{};
    GetWindowRect(Handle(), &window);
    // A height the user dragged to is theirs; one the layout fitted is not.
    if (!fitting_ && toolbar_ != nullptr && Height(window) != knownHeight_) {
        userHeight_ = Height(window);
    }
    knownHeight_ = Height(window);
}

void frmZorvi::OnGetMinMaxInfo(MINMAXINFO& info) {
    if (toolbar_ == nullptr || IsIconic(Handle())) return;
    RECT frame{0, 0, 0, 0};
    AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrW(Handle(), GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongPtrW(Handle(), GWL_EXSTYLE)));
    info.ptMinTrackSize.y = std::max<LONG>(info.ptMinTrackSize.y, MinClientHeight() + Height(frame));
    info.ptMinTrackSize.x =
        std::max<LONG>(info.ptMinTrackSize.x, ScaleForDpi(120, static_cast<int>(Dpi())));
}

void frmZorvi::OnDpiChanged(int dpi, const RECT& suggested) {
    const int oldDpi = dpi_;
    dpi_ = dpi;
    fitting_ = true;
    SetWindowPos(Handle(), nullptr, suggested.left, suggested.top, Width(suggested),
                 Height(suggested), SWP_NOZORDER | SWP_NOACTIVATE);
    fitting_ = false;
    userHeight_ = MulDiv(userHeight_, dpi_, oldDpi > 0 ? oldDpi : 96);
    ApplyFonts();
    ViewChange_IconSize(iconSize_);
}

}  // namespace zorvi
