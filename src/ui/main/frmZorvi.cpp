// The main window, the launcher strip: its life from creation to unload, the
// toolbar and status bar, the three layouts, the target file and its watch
// timer, the history menu and the key preview.
#include "ui/main/frmZorvi.h"

#include <commdlg.h>
#include <windowsx.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "core/mdlMain.h"
#include "core/messages_win.h"
#include "core/strings_win.h"
#include "core/version.h"
#include "core/wide_win.h"
#include "core/text.h"
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
#include "ui/main/mdlHotKey.h"
#include "ui/main/mdlView.h"
#include "ui/main/watch.h"
#include "ui/result/frmResult.h"

namespace zorvi {
namespace {

namespace keys = settings::main_file;
namespace config_keys = settings::config_file;

constexpr UINT_PTR kWatchTimerId = 1;
constexpr int kComboId = 3001;
constexpr int kIconCount = 8;  // resource icons 101..108: image n is icon 100 + n
// The launcher list opens this many closed-list heights downwards.
constexpr int kDropDownRows = 8;

const std::string& MainFile() { return mdlMain::MainSettingsPath(); }

std::wstring Caption(const std::string& target) {
    return Widen(MainCaption(target, mdlMain::AppTitle(), VersionText(ThisVersion())));
}

// The target's last-write time in FILETIME ticks; nullopt when it is no file.
std::optional<std::uint64_t> LastWriteTime(const std::string& path) {
    if (path.empty() || !mdlFile::FileExists(path)) return std::nullopt;
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
    return (static_cast<std::uint64_t>(data.ftLastWriteTime.dwHighDateTime) << 32) |
           data.ftLastWriteTime.dwLowDateTime;
}

bool EndsWithExe(const std::string& path) { return AsciiLower(path).ends_with(".exe"); }

int Height(const RECT& rect) { return rect.bottom - rect.top; }
int Width(const RECT& rect) { return rect.right - rect.left; }

// The per-monitor DPI of a window where the system can tell it (Windows 10
// and Wine), else the screen's.
UINT WindowDpi(HWND window) {
    using GetDpiForWindowFunction = UINT(WINAPI*)(HWND);
    static const auto getDpiForWindow =
        reinterpret_cast<GetDpiForWindowFunction>(reinterpret_cast<void*>(
            GetProcAddress(GetModuleHandleW(L"user32.dll"), "GetDpiForWindow")));
    if (getDpiForWindow != nullptr && window != nullptr) {
        if (const UINT dpi = getDpiForWindow(window); dpi != 0) return dpi;
    }
    return static_cast<UINT>(GetScreenDpi().x);
}

// The message font at a DPI, so that a window on a 144-DPI screen reads as
// large as its icons.
NONCLIENTMETRICSW MetricsForDpi(UINT dpi) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    using ForDpiFunction = BOOL(WINAPI*)(UINT, UINT, PVOID, UINT, UINT);
    static const auto forDpi = reinterpret_cast<ForDpiFunction>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"user32.dll"), "SystemParametersInfoForDpi")));
    if (forDpi == nullptr || !forDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, dpi)) {
        SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    }
    return metrics;
}

// A 32-bit image of an icon in grey and half transparent: how a disabled
// button shows its icon, drawn from the same crisp drawing. Null on failure.
UniqueBitmap GreyedImage(HICON icon, int size) {
    ICONINFO info{};
    if (icon == nullptr || !GetIconInfo(icon, &info)) return {};
    const UniqueBitmap color(info.hbmColor);
    const UniqueBitmap mask(info.hbmMask);
    BITMAPINFO format{};
    format.bmiHeader.biSize = sizeof format.bmiHeader;
    format.bmiHeader.biWidth = size;
    format.bmiHeader.biHeight = -size;  // top-down
    format.bmiHeader.biPlanes = 1;
    format.bmiHeader.biBitCount = 32;
    format.bmiHeader.biCompression = BI_RGB;
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(size) *
                                      static_cast<std::size_t>(size));
    const UniqueScreenDC screen(GetDC(nullptr));
    const bool read = color && GetDIBits(screen.get(), color.get(), 0, static_cast<UINT>(size),
                                         pixels.data(), &format, DIB_RGB_COLORS) == size;
    void* bits = nullptr;
    UniqueBitmap greyed;
    if (read) greyed.reset(CreateDIBSection(screen.get(), &format, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!greyed) return {};
    for (std::uint32_t& pixel : pixels) {
        const std::uint32_t alpha = pixel >> 24;
        const std::uint32_t red = (pixel >> 16) & 0xFF, green = (pixel >> 8) & 0xFF,
                            blue = pixel & 0xFF;
        const std::uint32_t luminance = (red * 299 + green * 587 + blue * 114) / 1000;
        const std::uint32_t grey = 112 + luminance * 96 / 255;
        pixel = ((alpha * 3 / 5) << 24) | (grey << 16) | (grey << 8) | grey;
    }
    std::copy(pixels.begin(), pixels.end(), static_cast<std::uint32_t*>(bits));
    return greyed;
}

}  // namespace

// ---------------------------------------------------------------- tmrTimer1

void WatchTimer::SetEnabled(bool enabled) {
    enabled_ = enabled;
    Apply();
}

void WatchTimer::SetHeld(bool held) {
    held_ = held;
    Apply();
}

void WatchTimer::SetInterval(unsigned milliseconds) {
    interval_ = milliseconds;
    // A running timer takes the new period at once.
    if (running_) SetTimer(window_, id_, interval_, nullptr);
}

void WatchTimer::Apply() {
    const bool wanted = enabled_ && !held_ && window_ != nullptr;
    if (wanted && !running_) {
        running_ = SetTimer(window_, id_, interval_, nullptr) != 0;
    } else if (!wanted && running_) {
        // KillTimer also drops a tick already waiting in the queue.
        KillTimer(window_, id_);
        running_ = false;
    }
}

// ---------------------------------------------------------------- creation

frmZorvi::frmZorvi() : compileCommand_(CMD_DoCompile) { menuEnabled_.fill(true); }

frmZorvi::~frmZorvi() {
    // Destroyed here, while the handlers still have their object.
    DestroyNative();
}

bool frmZorvi::Create(HWND owner) {
    const ScreenDpi screen = GetScreenDpi();
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    bigIcon_.reset(static_cast<HICON>(LoadImageW(instance, MAKEINTRESOURCEW(IDI_APP), IMAGE_ICON,
                                                 GetSystemMetrics(SM_CXICON),
                                                 GetSystemMetrics(SM_CYICON), LR_DEFAULTCOLOR)));
    // WS_EX_APPWINDOW: owned by the hidden application window, yet with a
    // taskbar button of its own. Created at the default place and size, so
    // that settings that cannot be applied leave it where it can be seen.
    if (!CreateNative(WS_EX_APPWINDOW | WS_EX_ACCEPTFILES, Caption({}).c_str(),
                      WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0, 0,
                      TwipsToPixels(keys::kMainWidth.fallback, screen.x),
                      TwipsToPixels(keys::kMainHeight.fallback, screen.y), owner, bigIcon_.get())) {
        return false;
    }
    // Double-clicks on the window itself step the layout.
    SetClassLongPtrW(Handle(), GCL_STYLE, GetClassLongPtrW(Handle(), GCL_STYLE) | CS_DBLCLKS);
    tmrTimer1.Attach(Handle(), kWatchTimerId);
    dpi_ = static_cast<int>(Dpi());
    CreateControls();
    ApplyFonts();
    mdlMain::WindowOpened();

    // 1. The watch timer: off, at the configured period.
    tmrTimer1.SetEnabled(false);
    ChangeTimerIntarval(ReadIniInt(keys::kTimerInterval, MainFile()));
    // 2. The configurations' folder.
    const std::string configFolder = mdlFile::GetAppFolder() + "cfg";
    if (!mdlFile::IsFolder(configFolder)) CreateDirectoryA(configFolder.c_str(), nullptr);
    // 3. Icon and caption.
    smallIcon_.reset(static_cast<HICON>(
        LoadImageW(instance, MAKEINTRESOURCEW(IDI_APP), IMAGE_ICON, GetSystemMetrics(SM_CXSMICON),
                   GetSystemMetrics(SM_CYSMICON), LR_DEFAULTCOLOR)));
    SendMessageW(Handle(), WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(bigIcon_.get()));
    SendMessageW(Handle(), WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(smallIcon_.get()));
    SetWindowTextW(Handle(), Caption({}).c_str());
    // 4. The place the window had when it was last closed.
    PlaceFromSettings();
    // 5.-8.
    HistoryLoad();
    ChangeLangZorvi();
    ViewChange_IconSize(ReadIniInt(keys::kIconSize, MainFile()));
    ViewChange_DefinedScript();
    ViewChange_Player();
    // 9.
    ApplyAlwaysOnTop();
    // 10. The launcher list (AddExternalProgram) and its start-up run join
    // with the launcher itself; until then the list is empty.
    // 11.
    mode_ = ReadIniInt(keys::kMainMode, MainFile());
    ChangeLauncherPos();
    compiling_ = false;
    return true;
}

void frmZorvi::CreateControls() {
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    toolbar_ = CreateWindowExW(0, TOOLBARCLASSNAMEW, nullptr,
                               WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS |
                                   TBSTYLE_FLAT | TBSTYLE_TOOLTIPS | CCS_NODIVIDER | CCS_TOP,
                               0, 0, 0, 0, Handle(), nullptr, instance, nullptr);
    SendMessageW(toolbar_, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    SendMessageW(toolbar_, TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_DRAWDDARROWS);
    // Images are 0-based here: image n of the list is index n - 1.
    const auto button = [](int image, int position, BYTE style) {
        TBBUTTON b{};
        b.iBitmap = image - 1;
        b.idCommand = CommandOf(position);
        b.fsState = TBSTATE_ENABLED;
        b.fsStyle = style;
        return b;
    };
    TBBUTTON buttons[kButtonCount] = {
        button(2, kSetFile, BTNS_BUTTON | BTNS_DROPDOWN),
        button(3, kConfig, BTNS_BUTTON),
        button(5, kOnOff, BTNS_CHECK),
        button(6, kCompile, BTNS_BUTTON | BTNS_DROPDOWN),
        button(7, kPlay, BTNS_BUTTON),
        button(8, kLog, BTNS_BUTTON),
        button(1, kLauncher, BTNS_SEP),
    };
    // The launcher slot is a placeholder: its "image" is its width.
    buttons[kLauncher - 1].iBitmap = 0;
    SendMessageW(toolbar_, TB_ADDBUTTONSW, kButtonCount, reinterpret_cast<LPARAM>(buttons));

    statusBar_ = CreateWindowExW(0, STATUSCLASSNAMEW, nullptr,
                                 WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | SBARS_SIZEGRIP, 0, 0, 0,
                                 0, Handle(), nullptr, instance, nullptr);

    // Combo1: member 0 sits in the toolbar's launcher slot, member 1 stands free.
    for (int member = 0; member < 2; ++member) {
        const HWND parent = member == 0 ? toolbar_ : Handle();
        combo_[member] = CreateWindowExW(
            0, WC_COMBOBOXW, L"",
            WS_CHILD | WS_TABSTOP | WS_VSCROLL | WS_CLIPSIBLINGS | CBS_DROPDOWN | CBS_AUTOHSCROLL,
            0, 0, 100, 200, parent,
            reinterpret_cast<HMENU>(static_cast<INT_PTR>(kComboId + member)), instance, nullptr);
    }

    // Key preview and double-clicks: every control reports to the window first.
    const auto watch = [this](HWND control) {
        if (control != nullptr) {
            SetWindowSubclass(control, &frmZorvi::ChildProc, 1, reinterpret_cast<DWORD_PTR>(this));
        }
    };
    watch(toolbar_);
    watch(statusBar_);
    for (const HWND combo : combo_) {
        watch(combo);
        COMBOBOXINFO info{};
        info.cbSize = sizeof info;
        if (GetComboBoxInfo(combo, &info)) watch(info.hwndItem);
    }
}

void frmZorvi::ApplyFonts() {
    NONCLIENTMETRICSW metrics = MetricsForDpi(Dpi());
    UniqueFont font(CreateFontIndirectW(&metrics.lfMessageFont));
    if (!font) return;
    for (const HWND control : {statusBar_, combo_[0], combo_[1]}) {
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), TRUE);
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

void frmZorvi::ApplyAlwaysOnTop() {
    const bool onTop = ReadIniFlag(keys::kAlwaysTop, MainFile());
    SetWindowPos(Handle(), onTop ? HWND_TOPMOST : HWND_NOTOPMOST, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void frmZorvi::Start(const std::string& file) {
    if (!file.empty()) {
        SetFile(mdlFile::GetLongPath(file));
    } else if (ReadIniFlag(keys::kAutoSetFile, MainFile()) && mdlFile::FileExists(history_[0])) {
        SetFile(history_[0]);
    }
    if (mdlMain::TargetFile().empty()) {
        // The state without a target file: caption, watch view and buttons.
        SetWatchFile({});
        WatchFileOptionChk();
    }
    // AutoMinimize has already shown the window minimised while the file was
    // set; showing it normally now would undo that.
    ShowWindow(Handle(), IsIconic(Handle()) ? SW_SHOWMINNOACTIVE : SW_SHOWNORMAL);
    UpdateWindow(Handle());
}

// ---------------------------------------------------------------- view

int frmZorvi::ViewChange_IconSize(int size) {
    size = NormalizeIconSize(size);
    iconSize_ = size;
    const int pixels = ScaleForDpi(size, static_cast<int>(Dpi()));
    UniqueImageList list(ImageList_Create(pixels, pixels, ILC_COLOR32 | ILC_MASK, kIconCount, 0));
    UniqueImageList greyed(ImageList_Create(pixels, pixels, ILC_COLOR32, kIconCount, 0));
    if (!list || !greyed) return size;
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    for (int image = 1; image <= kIconCount; ++image) {
        // Each icon file holds drawings for several sizes: the nearest one is
        // taken rather than a 32-pixel drawing shrunk.
        const UniqueIcon icon(
            static_cast<HICON>(LoadImageW(instance, MAKEINTRESOURCEW(IDI_APP + image - 1),
                                          IMAGE_ICON, pixels, pixels, LR_DEFAULTCOLOR)));
        ImageList_AddIcon(list.get(), icon.get());
        if (const UniqueBitmap grey = GreyedImage(icon.get(), pixels)) {
            ImageList_Add(greyed.get(), grey.get(), nullptr);
        } else {
            ImageList_AddIcon(greyed.get(), icon.get());
        }
    }
    SendMessageW(toolbar_, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(list.get()));
    SendMessageW(toolbar_, TB_SETDISABLEDIMAGELIST, 0, reinterpret_cast<LPARAM>(greyed.get()));
    // The old lists go only now that the toolbar has let go of them.
    images_ = std::move(list);
    disabledImages_ = std::move(greyed);
    const int dpi = static_cast<int>(Dpi());
    SendMessageW(toolbar_, TB_SETBITMAPSIZE, 0, MAKELPARAM(pixels, pixels));
    SendMessageW(toolbar_, TB_SETPADDING, 0, MAKELPARAM(ScaleForDpi(7, dpi), ScaleForDpi(6, dpi)));
    SendMessageW(toolbar_, TB_SETBUTTONSIZE, 0,
                 MAKELPARAM(pixels + ScaleForDpi(7, dpi), pixels + ScaleForDpi(6, dpi)));
    SetButtonImage(kSetFile, 2);
    SetButtonImage(kConfig, 3);
    SetButtonImage(kOnOff, tmrTimer1.Enabled() ? 4 : 5);
    SetButtonImage(kCompile, 6);
    SetButtonImage(kPlay, 7);
    SetButtonImage(kLog, 8);
    SendMessageW(toolbar_, TB_AUTOSIZE, 0, 0);
    Layout();
    FitHeightToLayout();
    return size;
}

void frmZorvi::SetButtonImage(int button, int image) {
    SendMessageW(toolbar_, TB_CHANGEBITMAP, CommandOf(button), MAKELPARAM(image - 1, 0));
}

void frmZorvi::SetButtonEnabled(int button, bool enabled) {
    SendMessageW(toolbar_, TB_ENABLEBUTTON, CommandOf(button),
                 MAKELPARAM(enabled ? TRUE : FALSE, 0));
}

void frmZorvi::SetMenuEnabled(int index, bool enabled) {
    menuEnabled_[static_cast<std::size_t>(index) % menuEnabled_.size()] = enabled;
}

void frmZorvi::ViewChange_FileOpen(bool enabled) {
    SetButtonEnabled(kSetFile, enabled);
    SetMenuEnabled(2, enabled);
    SetMenuEnabled(3, enabled);
}

void frmZorvi::ViewChange_OnOffButton(bool enabled) {
    SetButtonEnabled(kOnOff, enabled);
    SetMenuEnabled(5, enabled);
}

void frmZorvi::ViewChange_Compile(bool enabled) {
    SetButtonEnabled(kCompile, enabled);
    SetMenuEnabled(7, enabled);
}

void frmZorvi::ViewChange_Play(bool enabled) {
    SetButtonEnabled(kPlay, enabled);
    SetMenuEnabled(8, enabled);
}

void frmZorvi::ViewChange_LogView(bool enabled) {
    SetButtonEnabled(kLog, enabled);
    SetMenuEnabled(9, enabled);
}

void frmZorvi::ViewUpdate() {
    const std::string& target = mdlMain::TargetFile();
    if (!target.empty()) {
        ViewChange_OnOffButton(true);
        ViewChange_Compile(true);
        ViewChange_Play(true);
    } else {
        // Compile and play stay as they were: the pipeline reports the missing file itself.
        ViewChange_OnOffButton(false);
    }
    ViewChange_LogView(!target.empty() &&
                       mdlFile::FileExists(mdlFile::ChangeExtension(target, "log")));
}

void frmZorvi::ViewChange_StatusBar(const std::string& text) { ViewChange_StatusBar(1, text, {}); }

void frmZorvi::ViewChange_StatusBar(int panel, const std::string& text, const std::string& path) {
    switch (panel) {
    case 1:
        panelText_[0] = Widen(text);
        SendMessageW(statusBar_, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(panelText_[0].c_str()));
        break;
    case 2: SetPlayerPanel(text, zorvi::PlayerPanelEnabled(text, mdlFile::FileExists(path))); break;
    case 3: {
        // path: the configuration whose required tools are counted.
        const std::string console =
            mdlFile::ExpandSystemVariables(ReadIni(config_keys::kConsole, path));
        std::string missing;
        const int count = RequiredToolsCheck(path, mdlFile::GetFolderOf(console), missing);
        panelText_[2] = Widen(StatusPanel3Text(text, count));
        SendMessageW(statusBar_, SB_SETTEXTW, 2, reinterpret_cast<LPARAM>(panelText_[2].c_str()));
        break;
    }
    default: break;
    }
}

void frmZorvi::DrawPlayerPanel(const DRAWITEMSTRUCT& item) {
    const int saved = SaveDC(item.hDC);
    if (font_) SelectObject(item.hDC, font_.get());
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, GetSysColor(playerPanelEnabled_ ? COLOR_BTNTEXT : COLOR_GRAYTEXT));
    RECT rect = item.rcItem;
    rect.left += ScaleForDpi(4, static_cast<int>(Dpi()));
    DrawTextW(item.hDC, panelText_[1].c_str(), static_cast<int>(panelText_[1].size()), &rect,
              DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
    RestoreDC(item.hDC, saved);
}

void frmZorvi::ViewChange_DefinedScript() {
    // The configuration menus join with the popup menu; the status bar shows
    // the active configuration and whether its tools are there.
    ViewChange_StatusBar(1, GetDefaultPreset(PresetForm::Name), {});
    ViewChange_StatusBar(3, {}, GetDefaultPreset(PresetForm::Path));
}

void frmZorvi::ViewChange_Player() {
    // Panel 2: "-" when the configuration plays nothing, "*" for the program
    // associated with the output, else the player's file name; only a player
    // ending in ".exe" is tested for existence.
    const std::string configuration = GetDefaultPreset(PresetForm::Path);
    if (!ReadIniFlag(config_keys::kUseGUI, configuration)) {
        SetPlayerPanel("-", true);
    } else if (ReadIniFlag(config_keys::kUseAssociated, configuration)) {
        SetPlayerPanel("*", true);
    } else {
        const std::string player =
            mdlFile::ExpandSystemVariables(ReadIni(config_keys::kPlayer, configuration));
        SetPlayerPanel(mdlFile::GetFileName(player),
                       !player.empty() && (!EndsWithExe(player) || mdlFile::FileExists(player)));
    }
}

void frmZorvi::SetPlayerPanel(const std::string& text, bool enabled) {
    panelText_[1] = Widen(text);
    playerPanelEnabled_ = enabled;
    // Drawn by the window so that a missing player can be greyed out.
    SendMessageW(statusBar_, SB_SETTEXTW, 1 | SBT_OWNERDRAW, 0);
    InvalidateRect(statusBar_, nullptr, TRUE);
}

void frmZorvi::ChangeTimerIntarval(int interval) {
    // Never a period of 0 or less: see EffectiveTimerInterval.
    tmrTimer1.SetInterval(EffectiveTimerInterval(interval));
}

void frmZorvi::ChangeLangZorvi() {
    for (int button = 1; button <= kButtonCount; ++button) {
        toolTips_[button - 1] = LoadText(ids::kToolbarSetTargetFile + button - 1);
    }
    toolTips_[kOnOff - 1] += tmrTimer1.Enabled() ? L"=ON" : L"=OFF";
    RebuildHistoryMenu();
}

// ---------------------------------------------------------------- layout

int frmZorvi::MinClientHeight() const {
    if (toolbar_ == nullptr || statusBar_ == nullptr) return 0;
    RECT toolbar{}, status{}, combo{}, launcher{};
    GetWindowRect(toolbar_, &toolbar);
    GetWindowRect(statusBar_, &status);
    GetWindowRect(combo_[1], &combo);
    SendMessageW(toolbar_, TB_GETITEMRECT, kLauncher - 1, reinterpret_cast<LPARAM>(&launcher));
    LayoutMetrics metrics;
    metrics.toolbarHeight = Height(toolbar);
    metrics.statusHeight = Height(status);
    metrics.comboHeight = Height(combo);
    metrics.launcherHeight = Height(launcher);
    metrics.dpi = static_cast<int>(Dpi());
    return ComputeLayout(mode_, metrics).minClientHeight;
}

void frmZorvi::Layout() {
    if (toolbar_ == nullptr || statusBar_ == nullptr) return;
    // A window in the tray or on the taskbar has nothing to lay out.
    if (IsIconic(Handle())) return;
    RECT client{};
    GetClientRect(Handle(), &client);
    SendMessageW(statusBar_, WM_SIZE, 0, 0);
    // The launcher slot holds list member 0 in layout 0 only; elsewhere it
    // would leave a stray divider after the buttons.
    SendMessageW(toolbar_, TB_HIDEBUTTON, CommandOf(kLauncher),
                 MAKELPARAM(NormalizeMode(mode_) == 0 ? FALSE : TRUE, 0));
    SendMessageW(toolbar_, TB_AUTOSIZE, 0, 0);
    RECT toolbar{}, status{}, combo{}, launcher{};
    GetWindowRect(toolbar_, &toolbar);
    GetWindowRect(statusBar_, &status);
    GetWindowRect(combo_[1], &combo);
    SendMessageW(toolbar_, TB_GETITEMRECT, kLauncher - 1, reinterpret_cast<LPARAM>(&launcher));

    LayoutMetrics metrics;
    metrics.clientWidth = Width(client);
    metrics.toolbarHeight = Height(toolbar);
    metrics.launcherLeft = launcher.left;
    metrics.launcherTop = launcher.top;
    metrics.launcherHeight = Height(launcher);
    metrics.comboHeight = Height(combo);
    metrics.statusHeight = Height(status);
    metrics.dpi = static_cast<int>(Dpi());
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

void frmZorvi::FitHeightToLayout() {
    if (!IsNormalWindowState(Handle())) return;
    RECT window{};
    GetWindowRect(Handle(), &window);
    RECT frame{0, 0, 0, 0};
    AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrW(Handle(), GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongPtrW(Handle(), GWL_EXSTYLE)));
    const int wanted = std::max(userHeight_, MinClientHeight() + Height(frame));
    if (wanted == Height(window)) return;
    fitting_ = true;
    SetWindowPos(Handle(), nullptr, 0, 0, Width(window), wanted,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    fitting_ = false;
}

void frmZorvi::ChangeLauncherPos() {
    mode_ = NormalizeMode(mode_);
    // The list state moves to the member that is shown: the typed text when
    // nothing is selected, else the selected entry.
    const auto carry = [](HWND from, HWND to) {
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
        carry(combo_[0], combo_[1]);
    } else if (mode_ == 0) {
        carry(combo_[1], combo_[0]);
    }
    Layout();
    FitHeightToLayout();
    InvalidateRect(Handle(), nullptr, TRUE);
}

void frmZorvi::NextLayout() {
    mode_ = NextMode(mode_);
    ChangeLauncherPos();
}

// ---------------------------------------------------------------- target file

void frmZorvi::SetFile(const std::string& path) {
    const std::string file = mdlFile::UnquotePath(path);
    if (!mdlFile::FileExists(file)) return;
    const int code = blnAutoChangeConfigBystrGetExtension(file);
    if (NeedsTargetConfirmation(code, mdlFile::GetExtension(file)) && !blnSetFileInfo(file)) return;
    SetWatchFile(file);
    WatchFileOptionChk();
}

bool frmZorvi::blnSetFileInfo(const std::string& path) {
    const std::wstring text =
        Widen(path) + L"\r" + LoadText(ids::kConfirmSetTarget) + L"\r" + LoadText(ids::kAskOk);
    return ShowCheckMessage(Handle(), text, MB_OKCANCEL | MB_ICONINFORMATION) == IDOK;
}

int frmZorvi::blnAutoChangeConfigBystrGetExtension(const std::string& path) {
    std::string configuration;
    const FilterCode code = ExtensionFilter(path, configuration);
    if (code == FilterCode::Found) {
        WriteIni(keys::kDefault.section, keys::kDefault.name, configuration, MainFile());
        ViewChange_DefinedScript();
        ViewChange_Player();
    }
    return static_cast<int>(code);
}

void frmZorvi::SetWatchFile(const std::string& path) {
    const bool wasWatching = tmrTimer1.Enabled();
    tmrTimer1.SetEnabled(false);
    if (!path.empty()) mdlMain::SetTargetFile(path);
    const std::string& target = mdlMain::TargetFile();
    if (const auto written = LastWriteTime(target)) {
        storedTimestamp_ = *written;
        SetWindowTextW(Handle(), Caption(target).c_str());
        tmrTimer1.SetEnabled(wasWatching);
    } else {
        mdlMain::SetTargetFile({});
        SetWindowTextW(Handle(), Caption({}).c_str());
    }
    ViewUpdate();
}

void frmZorvi::WatchFileOptionChk() {
    if (mdlMain::TargetFile().empty()) {
        ViewChange_OnOff(false);
        ViewUpdate();
        return;
    }
    // The tray icon's tip follows the target once the tray joins.
    const std::string& file = MainFile();
    if (ReadIniFlag(keys::kAutoMinimize, file)) ShowWindow(Handle(), SW_MINIMIZE);
    if (ReadIniFlag(keys::kAutoOpen, file)) StartEditor(Handle());
    if (ReadIniFlag(keys::kAutoWatch, file)) ViewChange_OnOff(true);
    HistoryUpdate();
    ViewUpdate();
}

void frmZorvi::ViewChange_OnOff(bool on) {
    const std::string& target = mdlMain::TargetFile();
    const std::wstring name = target.empty() ? L"(No focus)" : Widen(mdlFile::GetFileName(target));
    SetButtonImage(kOnOff, on ? 4 : 5);
    SendMessageW(toolbar_, TB_CHECKBUTTON, CommandOf(kOnOff), MAKELPARAM(on ? TRUE : FALSE, 0));
    toolTips_[kOnOff - 1] = LoadText(ids::kToolbarWatchMode) + (on ? L"=ON" : L"=OFF");
    watchMenuCaption_ = name + (on ? L" [ON]" : L" [OFF]");
    tmrTimer1.SetEnabled(on);
}

void frmZorvi::WatchToggle() {
    // The time is read again first, so a change made while not watching does
    // not compile at once.
    SetWatchFile(mdlMain::TargetFile());
    ViewChange_OnOff(!tmrTimer1.Enabled());
}

void frmZorvi::OnTimerTick() {
    const std::string target = mdlMain::TargetFile();
    const auto written = LastWriteTime(target);
    switch (WatchTick(compiling_, written, storedTimestamp_)) {
    case TickAction::Nothing: return;
    case TickAction::Release: ReleaseTarget(); return;
    case TickAction::Compile: {
        tmrTimer1.SetHeld(true);
        RunCompile();
        const AfterTickCompile after =
            AfterTickCompileRule(tmrTimer1.Enabled(), target, mdlMain::TargetFile());
        if (after.storeTime) storedTimestamp_ = *written;
        if (tmrTimer1.Enabled() && !after.resumeTimer) ViewChange_OnOff(false);
        tmrTimer1.SetHeld(false);
        return;
    }
    }
}

void frmZorvi::ReleaseTarget() {
    mdlMain::SetTargetFile({});
    SetWindowTextW(Handle(), Caption({}).c_str());
    ViewChange_OnOff(false);
    ViewUpdate();
}

void frmZorvi::RunCompile() {
    if (compileCommand_) compileCommand_(*this);
}

void frmZorvi::CMD_ShowFileDialog() {
    const std::string folder = mdlFile::GetParentFolder(history_[0]);
    const std::string initial =
        !folder.empty() && mdlFile::IsFolder(folder) ? folder : mdlFile::GetAppFolder();
    std::string name;
    if (!mdlFile::BrowseForFile(Handle(), Narrow(LoadText(ids::kToolbarSetTargetFile)),
                                strGetFilter(), OFN_HIDEREADONLY | OFN_PATHMUSTEXIST, initial,
                                name) ||
        name.empty()) {
        return;
    }
    if (!mdlFile::FileExists(name)) {
        // A new name starts an empty file, so that it can be watched and edited.
        const UniqueHandle created(CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr,
                                               CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    }
    SetWatchFile(name);
    blnAutoChangeConfigBystrGetExtension(name);
    WatchFileOptionChk();
}

std::string frmZorvi::strGetFilter() {
    std::vector<mdlFile::FilterEntry> entries;
    for (const auto& record : settings::ReadFilters(MainFile())) {
        entries.push_back({record.item, record.extension});
    }
    return mdlFile::BuildFilterText(entries);
}

// ---------------------------------------------------------------- history

void frmZorvi::HistoryLoad() {
    const std::vector<std::string> slots = settings::ReadHistorySlots(MainFile());
    for (std::size_t i = 0; i < history_.size(); ++i) {
        history_[i] = i < slots.size() ? slots[i] : std::string();
    }
    HistoryUpdate();
}

void frmZorvi::HistoryUpdate() {
    const std::string& target = mdlMain::TargetFile();
    history_ =
        HistoryInsert(target.empty() ? std::string() : mdlFile::GetLongPath(target), history_);
    for (int slot = 0; slot < kHistorySize; ++slot) {
        settings::WriteHistorySlot(slot, history_[static_cast<std::size_t>(slot)], MainFile());
    }
    RebuildHistoryMenu();
}

void frmZorvi::HistoryClear() {
    history_.fill({});
    HistoryUpdate();
}

void frmZorvi::HistorySelect(int slot) {
    if (slot < 0 || slot >= kHistorySize) return;
    // A copy: SetFile rewrites the history it was taken from.
    const std::string file = history_[static_cast<std::size_t>(slot)];
    SetFile(file);
}

void frmZorvi::RebuildHistoryMenu() {
    UniqueMenu menu(CreatePopupMenu());
    if (!menu) return;
    for (int slot = 0; slot < kHistorySize; ++slot) {
        const std::string& entry = history_[static_cast<std::size_t>(slot)];
        if (entry.empty()) continue;
        const std::wstring caption =
            Widen(HistoryCaption(slot, mdlFile::ShortenPathForDisplay(entry)));
        AppendMenuW(menu.get(), MF_STRING, static_cast<UINT_PTR>(kHistoryCommand + slot),
                    caption.c_str());
    }
    AppendMenuW(menu.get(), MF_SEPARATOR, 0, nullptr);
    AppendMenuW(menu.get(), MF_STRING, kHistoryClearCommand, LoadText(ids::kHistoryClear).c_str());
    historyMenu_ = std::move(menu);
}

void frmZorvi::ShowHistoryDropDown() {
    RECT button{};
    SendMessageW(toolbar_, TB_GETRECT, CommandOf(kSetFile), reinterpret_cast<LPARAM>(&button));
    MapWindowPoints(toolbar_, nullptr, reinterpret_cast<POINT*>(&button), 2);
    TPMPARAMS params{};
    params.cbSize = sizeof params;
    params.rcExclude = button;
    SetForegroundWindow(Handle());
    const int chosen = static_cast<int>(TrackPopupMenuEx(
        historyMenu_.get(), TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RETURNCMD | TPM_VERTICAL,
        button.left, button.bottom, Handle(), &params));
    PostMessageW(Handle(), WM_NULL, 0, 0);
    if (chosen != 0) OnCommand(chosen);
}

// ---------------------------------------------------------------- commands and keys

void frmZorvi::OnCommand(int id) {
    if (id >= kHistoryCommand && id < kHistoryCommand + kHistorySize) {
        HistorySelect(id - kHistoryCommand);
        return;
    }
    switch (id) {
    case kHistoryClearCommand: HistoryClear(); break;
    case CommandOf(kSetFile): CMD_ShowFileDialog(); break;
    case CommandOf(kConfig): break;  // the configuration window joins later
    case CommandOf(kOnOff): WatchToggle(); break;
    case CommandOf(kCompile): RunCompile(); break;
    case CommandOf(kPlay): CMD_DoPlay({}, Handle()); break;
    case CommandOf(kLog): ResultWindow().ShowResult(0); break;
    case CommandOf(kLauncher): ShowHelp(); break;
    default: break;
    }
}

void frmZorvi::ShowHelp() {
    const std::string helpFile = mdlFile::GetAppFolder() + mdlMain::AppTitle() + ".CHM";
    if (mdlFile::FileExists(helpFile)) {
        DWORD exitCode = 0;
        ExecuteProgram(helpFile, {}, {}, SW_SHOWNORMAL, Handle(), false, exitCode);
    }
    // Without a help file the about window answers; it joins later.
}

bool frmZorvi::Form_KeyDown(int keyCode, int shift) {
    if (MoveWindowByKey(Handle(), keyCode, shift, true)) return true;
    switch (MainKeyCommand(keyCode, shift, mdlMain::UseAltPopUp())) {
    case MainCommand::None: return false;
    case MainCommand::Help: ShowHelp(); break;
    case MainCommand::About: break;  // the about window joins later
    case MainCommand::SetFile: CMD_ShowFileDialog(); break;
    case MainCommand::WatchToggle: WatchToggle(); break;
    case MainCommand::Compile: RunCompile(); break;
    case MainCommand::Play: CMD_DoPlay({}, Handle()); break;
    case MainCommand::ShowLog: ResultWindow().ShowResult(0); break;
    case MainCommand::Configure: break;  // the configuration window joins later
    case MainCommand::PopupMenu: break;  // the popup menu joins later
    case MainCommand::Minimize: ShowWindow(Handle(), SW_MINIMIZE); break;
    case MainCommand::Exit: PostMessageW(Handle(), WM_CLOSE, 0, 0); break;
    case MainCommand::NextLayout: NextLayout(); break;
    }
    return true;
}

bool frmZorvi::PreviewKey(UINT message, WPARAM key) {
    const bool used = Form_KeyDown(static_cast<int>(key), CurrentShiftState());
    // F10 would open the system menu: it is one of the keys that do nothing.
    return used || (message == WM_SYSKEYDOWN && key == VK_F10);
}

void frmZorvi::OnChildDoubleClick(HWND child, LPARAM lParam) {
    if (child == toolbar_) {
        // A double-click on a button is two clicks of that button, not a
        // layout change; the empty part and the launcher slot step the layout.
        POINT point{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
        if (SendMessageW(toolbar_, TB_HITTEST, 0, reinterpret_cast<LPARAM>(&point)) >= 0) return;
    }
    NextLayout();
}

LRESULT CALLBACK frmZorvi::ChildProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                     UINT_PTR id, DWORD_PTR data) noexcept {
    auto* self = reinterpret_cast<frmZorvi*>(data);
    try {
        switch (message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            if (self->PreviewKey(message, wParam)) return 0;
            break;
        case WM_LBUTTONDBLCLK:
            if (window == self->toolbar_ || window == self->statusBar_) {
                self->OnChildDoubleClick(window, lParam);
            }
            break;
        case WM_COMMAND:
            // Member 0 lives in the toolbar; its notes belong to the window.
            if (window == self->toolbar_ && reinterpret_cast<HWND>(lParam) == self->combo_[0]) {
                return SendMessageW(self->Handle(), message, wParam, lParam);
            }
            break;
        case WM_NCDESTROY: RemoveWindowSubclass(window, &frmZorvi::ChildProc, id); break;
        default: break;
        }
    } catch (...) {
        // Nothing may unwind into the system's dispatcher.
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

void frmZorvi::OnDropFiles(HDROP drop) {
    std::string first;
    if (DragQueryFileA(drop, 0xFFFFFFFF, nullptr, 0) > 0) {
        std::string buffer(mdlFile::kPathBuffer, '\0');
        const UINT length = DragQueryFileA(drop, 0, buffer.data(), mdlFile::kPathBuffer);
        first = mdlFile::TrimNull(buffer.substr(0, length));
    }
    DragFinish(drop);
    if (!first.empty()) SetFile(first);
}

// ---------------------------------------------------------------- unload

void frmZorvi::Unload() {
    mdlMain::SetShuttingDown();
    tmrTimer1.SetEnabled(false);
    ReleaseResultWindow();
    SaveGeometry();
    if (ReadIniFlag(keys::kAutoShutDown, MainFile())) EndLaunchedPrograms();
    DestroyWindow(Handle());
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

// ---------------------------------------------------------------- messages

LRESULT frmZorvi::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE: {
        Layout();
        if (wParam == SIZE_RESTORED && !fitting_ && toolbar_ != nullptr) {
            RECT window{};
            GetWindowRect(Handle(), &window);
            if (Height(window) != knownHeight_) userHeight_ = Height(window);
        }
        if (wParam == SIZE_RESTORED) {
            RECT window{};
            GetWindowRect(Handle(), &window);
            knownHeight_ = Height(window);
        }
        return 0;
    }
    case WM_GETMINMAXINFO: {
        auto* info = reinterpret_cast<MINMAXINFO*>(lParam);
        if (toolbar_ != nullptr && !IsIconic(Handle())) {
            RECT frame{0, 0, 0, 0};
            AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongPtrW(Handle(), GWL_STYLE)),
                               FALSE, static_cast<DWORD>(GetWindowLongPtrW(Handle(), GWL_EXSTYLE)));
            info->ptMinTrackSize.y =
                std::max<LONG>(info->ptMinTrackSize.y, MinClientHeight() + Height(frame));
            info->ptMinTrackSize.x =
                std::max<LONG>(info->ptMinTrackSize.x, ScaleForDpi(120, static_cast<int>(Dpi())));
        }
        return 0;
    }
    case WM_COMMAND:
        if (lParam == 0 || reinterpret_cast<HWND>(lParam) == toolbar_) OnCommand(LOWORD(wParam));
        return 0;
    case WM_NOTIFY: {
        const auto* header = reinterpret_cast<const NMHDR*>(lParam);
        if (header->code == TTN_GETDISPINFOW) {
            auto* info = reinterpret_cast<NMTTDISPINFOW*>(lParam);
            const auto button = static_cast<int>(info->hdr.idFrom) - CommandOf(0);
            if (button >= 1 && button <= kButtonCount) {
                info->lpszText = const_cast<wchar_t*>(toolTips_[button - 1].c_str());
            }
            return 0;
        }
        if (header->code == TBN_DROPDOWN && header->hwndFrom == toolbar_) {
            const auto* note = reinterpret_cast<const NMTOOLBARW*>(lParam);
            if (note->iItem == CommandOf(kSetFile)) ShowHistoryDropDown();
            return TBDDRET_DEFAULT;
        }
        break;
    }
    case WM_DRAWITEM: {
        const auto* item = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
        if (item->hwndItem == statusBar_ && item->itemID == 1) {
            DrawPlayerPanel(*item);
            return TRUE;
        }
        break;
    }
    case WM_TIMER:
        if (wParam == kWatchTimerId) OnTimerTick();
        return 0;
    case WM_DROPFILES: OnDropFiles(reinterpret_cast<HDROP>(wParam)); return 0;
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
        if (PreviewKey(message, wParam)) return 0;
        break;
    case WM_LBUTTONDBLCLK: NextLayout(); return 0;
    case WM_DPICHANGED: {
        const auto* suggested = reinterpret_cast<const RECT*>(lParam);
        const int oldDpi = dpi_;
        dpi_ = HIWORD(wParam);
        fitting_ = true;
        SetWindowPos(Handle(), nullptr, suggested->left, suggested->top, Width(*suggested),
                     Height(*suggested), SWP_NOZORDER | SWP_NOACTIVATE);
        fitting_ = false;
        userHeight_ = MulDiv(userHeight_, dpi_, oldDpi > 0 ? oldDpi : 96);
        ApplyFonts();
        ViewChange_IconSize(iconSize_);
        return 0;
    }
    case WM_CLOSE:
        // Closing waits for a running compile to end.
        if (CanUnload()) Unload();
        return 0;
    case WM_DESTROY:
        tmrTimer1.SetEnabled(false);
        mdlMain::SetShuttingDown();
        mdlMain::WindowClosed();
        return 0;
    default: break;
    }
    return DefWindowProcW(Handle(), message, wParam, lParam);
}

}  // namespace zorvi
