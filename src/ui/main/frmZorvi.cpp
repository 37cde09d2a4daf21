// The main window, the launcher strip: its creation, the commands its
// buttons, keys and dropped files give, its messages and its unload. The
// view, the geometry, the target and watch, the menus, the tray and the
// launcher list each live in a file of their own.
#include "ui/main/frmZorvi.h"

#include <commdlg.h>
#include <windowsx.h>

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
#include "ui/dialogs/about_text.h"
#include "ui/dialogs/frmAbout.h"
#include "ui/main/keymap.h"
#include "ui/main/layout.h"
#include "ui/main/main_parts.h"
#include "ui/main/mdlHotKey.h"
#include "ui/main/mdlView.h"
#include "ui/main/watch.h"
#include "ui/result/frmResult.h"

namespace zorvi {

using namespace main_parts;

namespace {

// The first bytes of a file, enough to tell what kind of file it is; empty
// when it cannot be read.
std::string FirstBytes(const std::string& path) {
    const UniqueHandle file(CreateFileA(path.c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return {};
    char bytes[4] = {};
    DWORD got = 0;
    if (!ReadFile(file.get(), bytes, sizeof bytes, &got, nullptr)) return {};
    return std::string(bytes, got);
}

// The main window's icons, loaded once: its class shows them, and a class
// outlives any one window of it. Given to the class rather than sent to the
// window, they reach the title bar and the taskbar in one step.
struct WindowIcons {
    UniqueIcon big, small;
};

const WindowIcons& MainIcons() {
    static const WindowIcons icons = [] {
        const HINSTANCE instance = GetModuleHandleW(nullptr);
        const auto load = [instance](int width, int height) {
            return UniqueIcon(static_cast<HICON>(LoadImageW(instance, MAKEINTRESOURCEW(IDI_APP),
                                                            IMAGE_ICON, width, height,
                                                            LR_DEFAULTCOLOR)));
        };
        return WindowIcons{load(GetSystemMetrics(SM_CXICON), GetSystemMetrics(SM_CYICON)),
                           load(GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON))};
    }();
    return icons;
}

}  // namespace


frmZorvi::frmZorvi() : compileCommand_(CMD_DoCompile) { menuEnabled_.fill(true); }

frmZorvi::~frmZorvi() {
    // Destroyed here, while the handlers still have their object.
    DestroyNative();
}

bool frmZorvi::Create(HWND owner) {
    const ScreenDpi screen = GetScreenDpi();
    smallIcon_ = MainIcons().small.get();
    // WS_EX_APPWINDOW: owned by the hidden application window (the owner
    // given, or one set once it shows), yet with a taskbar button of its
    // own. Created at the default place and size, so that settings that
    // cannot be applied leave it where it can be seen.
    if (!CreateNative(WS_EX_APPWINDOW | WS_EX_ACCEPTFILES, Caption({}).c_str(),
                      WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0, 0,
                      TwipsToPixels(keys::kMainWidth.fallback, screen.x),
                      TwipsToPixels(keys::kMainHeight.fallback, screen.y), owner,
                      MainIcons().big.get(), smallIcon_)) {
        return false;
    }
    // Double-clicks on the window itself step the layout.
    SetClassLongPtrW(Handle(), GCL_STYLE, GetClassLongPtrW(Handle(), GCL_STYLE) | CS_DBLCLKS);
    tmrTimer1.Attach(Handle(), kWatchTimerId);
    creating_ = true;
    dpi_ = static_cast<int>(Dpi());
    // The controls get their font with the launcher's names (step 10).
    CreateControls();
    mdlMain::WindowOpened();

    // 1. The watch timer: off, at the configured period.
    tmrTimer1.SetEnabled(false);
    ChangeTimerIntarval(ReadIniInt(keys::kTimerInterval, MainFile()));
    // 2. The configurations' folder.
    const std::string configFolder = mdlFile::GetAppFolder() + "cfg";
    if (!mdlFile::IsFolder(configFolder)) CreateDirectoryA(configFolder.c_str(), nullptr);
    // 3. The caption (the icons came with the class).
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
    // 10. The launcher list and the programs that start with Zorvi.
    AddExternalProgram();
    ExternalProgramStartUp();
    // 11. The one layout of the finished window.
    mode_ = ReadIniInt(keys::kMainMode, MainFile());
    creating_ = false;
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
        button(7, kPlay, BTNS_BUTTON | BTNS_DROPDOWN),
        button(8, kLog, BTNS_BUTTON),
        button(1, kLauncher, BTNS_SEP),
    };
    // The launcher slot is a placeholder: its "image" is its width.
    buttons[kLauncher - 1].iBitmap = 0;
    SendMessageW(toolbar_, TB_ADDBUTTONSW, kButtonCount, reinterpret_cast<LPARAM>(buttons));

    statusBar_ = CreateWindowExW(0, STATUSCLASSNAMEW, nullptr,
                                 WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | SBARS_SIZEGRIP, 0, 0, 0,
                                 0, Handle(), nullptr, instance, nullptr);
    // Three panels from the start, so that their texts can be set before
    // the first layout gives them their widths.
    int parts[3] = {1, 2, -1};
    SendMessageW(statusBar_, SB_SETPARTS, 3, reinterpret_cast<LPARAM>(parts));

    // Combo1: member 0 sits in the toolbar's launcher slot, member 1 stands
    // free. Each is made when a layout first shows it: a drop-down list is
    // three windows, and made once the font is chosen it measures itself
    // once, with that font.

    // Key preview and double-clicks: every control reports to the window first.
    WatchChild(toolbar_);
    WatchChild(statusBar_);
}

// The controls' own procedures are replaced rather than chained with
// SetWindowSubclass: that chain finds its data with GetProp on every message
// the control gets, a round trip to the Wine server each, and a control gets
// some two hundred messages while the window is built and laid out. The
// window is found in the control's user data, which the common controls
// leave to the program, and the procedure it had in watched_.
void frmZorvi::WatchChild(HWND control) {
    if (control == nullptr) return;
    for (WatchedChild& child : watched_) {
        if (child.window != nullptr) continue;
        SetWindowLongPtrW(control, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        child.proc = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(
            control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&frmZorvi::ChildProc)));
        if (child.proc != nullptr) child.window = control;
        return;
    }
}

HWND frmZorvi::MakeCombo(int member) {
    if (combo_[member] != nullptr) return combo_[member];
    // Made with no height: the height a drop-down list is made with becomes
    // the height of its list, and the layout that follows sets that anyway.
    // A list of no height is not fitted to whole rows, and the control's own
    // resizes while it is made and given its font leave it as it is: under
    // Wine the list is a top-level window, and every move or resize of one
    // costs some 3 ms there.
    const HWND combo = CreateWindowExW(
        0, WC_COMBOBOXW, L"",
        WS_CHILD | WS_TABSTOP | WS_VSCROLL | WS_CLIPSIBLINGS | CBS_DROPDOWN | CBS_AUTOHSCROLL, 0,
        0, 100, 0, member == 0 ? toolbar_ : Handle(),
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(kComboId + member)),
        GetModuleHandleW(nullptr), nullptr);
    if (combo == nullptr) return nullptr;
    combo_[member] = combo;
    WatchChild(combo);
    COMBOBOXINFO info{};
    info.cbSize = sizeof info;
    if (GetComboBoxInfo(combo, &info)) WatchChild(info.hwndItem);
    // A member made late gets what the other was given.
    if (font_) SendMessageW(combo, WM_SETFONT, reinterpret_cast<WPARAM>(font_.get()), FALSE);
    FillCombo(combo);
    return combo;
}

void frmZorvi::FillCombo(HWND combo) const {
    SendMessageW(combo, CB_RESETCONTENT, 0, 0);
    for (std::size_t i = 0; i < launcher_.Count(); ++i) {
        SendMessageW(combo, CB_ADDSTRING, 0,
                     reinterpret_cast<LPARAM>(Widen(launcher_.Record(i).item).c_str()));
    }
}

void frmZorvi::ApplyAlwaysOnTop() {
    const bool onTop = ReadIniFlag(keys::kAlwaysTop, MainFile());
    // A window that is not on top need not be told to stay off it.
    if (!onTop && (GetWindowLongPtrW(Handle(), GWL_EXSTYLE) & WS_EX_TOPMOST) == 0) return;
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

void frmZorvi::OnCommand(int id) {
    if (OnMenuCommand(id)) return;
    switch (id) {
    case CommandOf(kSetFile): CMD_ShowFileDialog(); break;
    case CommandOf(kConfig): ShowConfig(0); break;
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
    // A file of that name that is no compiled help (empty, or something else
    // saved under the name) would only get an error from the help viewer, and
    // a viewer that cannot be started gives nothing: the about window then
    // answers the key instead.
    DWORD exitCode = 0;
    if (!mdlFile::FileExists(helpFile) || !LooksLikeHelpFile(FirstBytes(helpFile)) ||
        !ExecuteProgram(helpFile, {}, {}, SW_SHOWNORMAL, Handle(), false, exitCode)) {
        ShowAbout();
    }
}

void frmZorvi::ShowAbout() {
    if (aboutCommand_) aboutCommand_(0);
}

void frmZorvi::ShowConfig(int page) {
    if (configCommand_) configCommand_(page);
}

void frmZorvi::AddExternalProgram() {
    launcher_.Load(MainFile());
    ApplyFonts();
    for (const HWND combo : combo_) {
        if (combo != nullptr) FillCombo(combo);
    }
}

void frmZorvi::ExternalProgramStartUp() { launcher_.StartAutoRun(Handle()); }

bool frmZorvi::Combo1_KeyDown(int keyCode, int shift) {
    if (keyCode != VK_RETURN || shift != 0) return false;
    // The member on show holds the user's choice or text.
    const HWND combo = combo_[NormalizeMode(mode_) == 0 ? 0 : 1];
    const LRESULT selected = SendMessageW(combo, CB_GETCURSEL, 0, 0);
    if (selected != CB_ERR && selected >= 0) {
        launcher_.Start(static_cast<std::size_t>(selected), Handle());
    } else {
        const int length = GetWindowTextLengthW(combo);
        std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
        text.resize(static_cast<std::size_t>(GetWindowTextW(combo, text.data(), length + 1)));
        launcher_.StartTyped(Narrow(text), Handle());
    }
    return true;
}

bool frmZorvi::Form_KeyDown(int keyCode, int shift) {
    if (MoveWindowByKey(Handle(), keyCode, shift, true)) return true;
    if (keyCode == VK_ESCAPE && shift == 0 && compiling_) {
        StopCompile();
        return true;
    }
    switch (MainKeyCommand(keyCode, shift, mdlMain::UseAltPopUp())) {
    case MainCommand::None: return false;
    case MainCommand::Help: ShowHelp(); break;
    case MainCommand::About: ShowAbout(); break;
    case MainCommand::SetFile: CMD_ShowFileDialog(); break;
    case MainCommand::WatchToggle: WatchToggle(); break;
    case MainCommand::Compile: RunCompile(); break;
    case MainCommand::Play: CMD_DoPlay({}, Handle()); break;
    case MainCommand::ShowLog: ResultWindow().ShowResult(0); break;
    case MainCommand::Configure: ShowConfig(0); break;
    case MainCommand::PopupMenu: CMD_ShowPopUp(); break;
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

LRESULT CALLBACK frmZorvi::ChildProc(HWND window, UINT message, WPARAM wParam,
                                     LPARAM lParam) noexcept {
    auto* self = reinterpret_cast<frmZorvi*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    WatchedChild* child = nullptr;
    if (self != nullptr) {
        for (WatchedChild& watched : self->watched_) {
            if (watched.window == window) child = &watched;
        }
    }
    if (child == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    const WNDPROC proc = child->proc;
    try {
        switch (message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            if (self->PreviewKey(message, wParam)) return 0;
            if (message == WM_KEYDOWN && self->IsComboPart(window) &&
                self->Combo1_KeyDown(static_cast<int>(wParam), CurrentShiftState())) {
                return 0;
            }
            break;
        case WM_CHAR:
            // The Enter that ran a program must not also beep in the list.
            if (wParam == VK_RETURN && self->IsComboPart(window)) return 0;
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
        case WM_NCDESTROY:
            // The control's last message: it goes on with its own procedure.
            SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(proc));
            *child = {};
            break;
        default: break;
        }
    } catch (...) {
        // Nothing may unwind into the system's dispatcher.
    }
    return CallWindowProcW(proc, window, message, wParam, lParam);
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

bool frmZorvi::CanUnload() {
    if (!compiling_) return true;
    // The window cannot go while a compile runs inside its handler: stopped
    // on request, the compile ends and the window closes after it.
    // Close requests that come while the question is open (or after it was
    // answered) are the same request: one question, not a stack of them.
    if (closeAfterCompile_ || askingToStop_) return false;
    askingToStop_ = true;
    const bool stop = ShowCheckMessage(Handle(), LoadText(ids::kAskStopCompileAndExit),
                                       MB_YESNO | MB_ICONQUESTION) == IDYES;
    askingToStop_ = false;
    if (stop) {
        closeAfterCompile_ = true;
        StopCompile();
    }
    return false;
}

bool frmZorvi::IsComboPart(HWND window) const {
    for (const HWND combo : combo_) {
        if (combo != nullptr && (window == combo || GetParent(window) == combo)) return true;
    }
    return false;
}

void frmZorvi::Unload() {
    mdlMain::SetShuttingDown();
    tmrTimer1.SetEnabled(false);
    folderWatch_.Stop();
    DeleteIcon();
    ReleaseResultWindow();
    ReleaseAboutWindow();
    SaveGeometry();
    // A program marked to end with Zorvi ends even when the rest live on.
    launcher_.EndAutoShutDown();
    if (ReadIniFlag(keys::kAutoShutDown, MainFile())) EndLaunchedPrograms();
    DestroyWindow(Handle());
}

LRESULT frmZorvi::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        OnSize(wParam, lParam);
        if (wParam == SIZE_MINIMIZED && !inTray_ && ReadIniFlag(keys::kTaskTray, MainFile())) {
            AddIcon();
        }
        return 0;
    case kTrayMessage: OnTrayMessage(lParam); return 0;
    case WM_CONTEXTMENU: CMD_ShowPopUp(); return 0;
    case WM_GETMINMAXINFO: OnGetMinMaxInfo(*reinterpret_cast<MINMAXINFO*>(lParam)); return 0;
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
            if (note->iItem == CommandOf(kSetFile)) ShowDropDown(kSetFile, historyMenu_.get());
            if (note->iItem == CommandOf(kCompile)) ShowDropDown(kCompile, scriptMenu_.get());
            if (note->iItem == CommandOf(kPlay)) ShowDropDown(kPlay, playerMenu_.get());
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
        if (wParam == kLookAgainTimerId) KillTimer(Handle(), kLookAgainTimerId);
        if (wParam == kWatchTimerId || wParam == kLookAgainTimerId) OnTimerTick();
        return 0;
    case kFolderChangedMessage: OnFolderChanged(); return 0;
    case WM_DROPFILES: OnDropFiles(reinterpret_cast<HDROP>(wParam)); return 0;
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
        if (PreviewKey(message, wParam)) return 0;
        break;
    case WM_LBUTTONDBLCLK: NextLayout(); return 0;
    case WM_DPICHANGED:
        OnDpiChanged(HIWORD(wParam), *reinterpret_cast<const RECT*>(lParam));
        return 0;
    case WM_CLOSE:
        if (CanUnload()) Unload();
        return 0;
    case WM_ENDSESSION:
        // Windows ends the process once this returns: keep what a normal
        // exit keeps, the places of the windows and the layout.
        if (wParam != FALSE) {
            mdlMain::SetShuttingDown();
            tmrTimer1.SetEnabled(false);
            DeleteIcon();
            ReleaseResultWindow();
            SaveGeometry();
        }
        return 0;
    case WM_DESTROY:
        tmrTimer1.SetEnabled(false);
        mdlMain::SetShuttingDown();
        mdlMain::WindowClosed();
        return 0;
    default:
        if (message == TaskbarCreatedMessage() && message != 0) {
            OnTaskbarCreated();
            return 0;
        }
        break;
    }
    return DefWindowProcW(Handle(), message, wParam, lParam);
}

}  // namespace zorvi
