// The configuration window: its loading and placement, its messages and
// keys, OK / Apply / Cancel, the configuration selector with New and
// Delete, and the one instance the program keeps.
#include "ui/config/frmConfig.h"

#include <commctrl.h>

#include <memory>

#include "core/instance_win.h"
#include "core/messages_win.h"
#include "core/strings_win.h"
#include "files/path_win.h"
#include "res/resource.h"
#include "res/string_ids.h"
#include "settings/ini_win.h"
#include "settings/lists_win.h"
#include "ui/config/config_parts.h"
#include "ui/config/config_rules.h"
#include "ui/dialogs/InputBox.h"
#include "ui/main/frmZorvi.h"
#include "ui/main/key_move.h"
#include "ui/main/main_parts.h"
#include "ui/main/mdlHotKey.h"
#include "ui/main/mdlView.h"

namespace zorvi {

using namespace config_parts;
namespace keys = settings::main_file;

namespace {

// A new configuration starts as an empty section, which reads as every default.
constexpr char kNewConfigurationText[] = "[Configure]\r\n";

}  // namespace

frmConfig::frmConfig(frmZorvi* main) : main_(main), appFolder_(mdlFile::GetAppFolder()) {}

frmConfig::~frmConfig() {
    // Destroyed here, while the handlers still have their object.
    DestroyNative();
}

bool frmConfig::Create() {
    if (Handle() != nullptr) return true;
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    bigIcon_.reset(static_cast<HICON>(LoadImageW(instance, MAKEINTRESOURCEW(IDI_APP), IMAGE_ICON,
                                                 GetSystemMetrics(SM_CXICON),
                                                 GetSystemMetrics(SM_CYICON), LR_DEFAULTCOLOR)));
    smallIcon_.reset(static_cast<HICON>(
        LoadImageW(instance, MAKEINTRESOURCEW(IDI_CONFIG), IMAGE_ICON,
                   GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON), LR_DEFAULTCOLOR)));
    const ScreenDpi screen = GetScreenDpi();
    // Owned by the application window, like the log window: a second start
    // of Zorvi finds it as the last active popup.
    if (!CreateNative(WS_EX_APPWINDOW | WS_EX_CONTROLPARENT, L"", WS_OVERLAPPEDWINDOW, 0, 0,
                      TwipsToPixels(kStandardWidth, screen.x),
                      TwipsToPixels(kStandardHeight, screen.y), ApplicationWindow(),
                      bigIcon_.get())) {
        return false;
    }
    SendMessageW(Handle(), WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(bigIcon_.get()));
    SendMessageW(Handle(), WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(smallIcon_.get()));
    dpi_ = static_cast<int>(main_parts::WindowDpi(Handle()));
    CreateControls();
    ApplyFont();
    ChangeLangConfig();
    RefreshConfigurationList();
    LoadConfigure();
    // Until a configuration is chosen its controls show the defaults.
    ShowConfigurationValues(settings::ConfigurationValues{});
    SynchronizeSelector(false);
    SelectPage(kBasicPage);

    MoveWindowOnScreen(Handle(), ReadIniInt(keys::kConfigureLeft, MainFile()),
                       ReadIniInt(keys::kConfigureTop, MainFile()), kStandardWidth, std::nullopt);
    RECT placed{};
    GetWindowRect(Handle(), &placed);
    placedPixels_ = {placed.left, placed.top};
    return true;
}

void frmConfig::ShowConfig(int page) {
    if (Handle() == nullptr) return;
    if (page >= 1 && page <= kPages) SelectPage(page - 1);
    SynchronizeSelector(true);
    const bool wasVisible = IsWindowVisible(Handle()) != FALSE;
    SetForegroundWindow(Handle());
    ShowWindow(Handle(), SW_RESTORE);
    if (!wasVisible) SetFocus(cboCombo(0));
}

void frmConfig::SelectPage(int page) {
    if (page < 0 || page >= kPages) return;
    page_ = page;
    SendMessageW(tabStrip_, TCM_SETCURSEL, static_cast<WPARAM>(page), 0);
    for (int index = 0; index < kPages; ++index) {
        ShowWindow(fraConfig(index), index == page ? SW_SHOW : SW_HIDE);
    }
}

std::string frmConfig::SelectorText() const { return Text(cboCombo(0)); }

void frmConfig::RefreshConfigurationList() {
    configurationNames_ = settings::ConfigurationNames(appFolder_, true);
    const std::wstring kept = WideText(cboCombo(0));
    SendMessageW(cboCombo(0), CB_RESETCONTENT, 0, 0);
    for (const std::string& name : configurationNames_) {
        SendMessageW(cboCombo(0), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Widen(name).c_str()));
    }
    SetWindowTextW(cboCombo(0), kept.c_str());
    ShowFilterFields();
}

void frmConfig::SynchronizeSelector(bool reloadRecords) {
    // The configuration in use, which is the example one while none is
    // named: the selector shows what F5 would run.
    const std::string current = settings::SafeConfigurationName(GetDefaultPreset(PresetForm::Name));
    if (current == SelectorText()) return;
    SetText(cboCombo(0), current);
    ViewChangeConfigure(settings::ConfigurationFile(appFolder_, current));
    if (reloadRecords) LoadRecords();
}

void frmConfig::ChooseConfiguration() {
    const LRESULT selected = SendMessageW(cboCombo(0), CB_GETCURSEL, 0, 0);
    if (selected == CB_ERR) return;
    const auto index = static_cast<std::size_t>(selected);
    if (index >= configurationNames_.size()) return;
    ViewChangeConfigure(settings::ConfigurationFile(
        appFolder_, settings::SafeConfigurationName(configurationNames_[index])));
}

bool frmConfig::ReportNameProblem(const std::string& typed) {
    switch (CheckConfigurationName(typed, appFolder_.size())) {
    case NameProblem::None: return false;
    case NameProblem::Empty:
        ShowCheckMessage(Handle(), LoadText(ids::kEnterNewConfigureName),
                         MB_OK | MB_ICONINFORMATION);
        break;
    case NameProblem::Reserved:
    case NameProblem::TooLong:
        ShowCheckMessage(Handle(), FormatText(LoadText(ids::kBadConfigurationName), {Widen(typed)}),
                         MB_OK | MB_ICONEXCLAMATION);
        break;
    }
    SetFocus(cboCombo(0));
    return true;
}

bool frmConfig::SaveFromWindow() {
    const std::string typed = SelectorText();
    if (ReportNameProblem(typed)) return false;
    std::optional<settings::ConfigurationValues> values = ReadControls();
    if (!values) return false;
    values->name = typed;
    return SaveConfigure(*values);
}

void frmConfig::NewConfiguration() {
    const std::optional<std::wstring> answer =
        InputBox(Handle(), LoadText(ids::kEnterNewConfigureName));
    if (!answer) return;
    const std::string typed = Narrow(*answer);
    if (CheckConfigurationName(typed, appFolder_.size()) == NameProblem::Empty) return;
    if (ReportNameProblem(typed)) return;
    const std::string name = settings::SafeConfigurationName(typed);
    const std::string file = settings::ConfigurationFile(appFolder_, name);
    if (!mdlFile::FileExists(file)) {
        CreateDirectoryA((appFolder_ + "cfg").c_str(), nullptr);
        // CREATE_NEW: a file that appeared meanwhile is kept as it is.
        const UniqueHandle created(CreateFileA(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                               FILE_ATTRIBUTE_NORMAL, nullptr));
        DWORD written = 0;
        if (!created || !WriteFile(created.get(), kNewConfigurationText,
                                   sizeof kNewConfigurationText - 1, &written, nullptr)) {
            if (!mdlFile::FileExists(file)) {
                ShowCheckMessage(Handle(),
                                 FormatText(LoadText(ids::kCannotWriteFile), {Widen(file)}),
                                 MB_OK | MB_ICONEXCLAMATION);
                return;
            }
        }
        if (main_ != nullptr) main_->ViewChange_DefinedScript();
    }
    RefreshConfigurationList();
    SetText(cboCombo(0), name);
}

void frmConfig::DeleteConfiguration() {
    const std::string name = settings::SafeConfigurationName(SelectorText());
    if (CheckConfigurationName(name, appFolder_.size()) != NameProblem::None) return;
    const int answer =
        ShowCheckMessage(Handle(), LoadText(ids::kDeletePrompt) + L" " + LoadText(ids::kAskOk),
                         MB_OKCANCEL | MB_ICONQUESTION);
    if (answer != IDOK) return;
    // A missing file is no error; the backup copy stays.
    DeleteFileA(settings::ConfigurationFile(appFolder_, name).c_str());
    if (main_ != nullptr) main_->ViewChange_DefinedScript();
    RefreshConfigurationList();
}

void frmConfig::OnCommandButton(int index) {
    switch (index) {
    case kOk:
        if (SaveFromWindow()) Unload();
        break;
    case kApply: SaveFromWindow(); break;
    case kCancel: Unload(); break;
    case kNewConfigure: NewConfiguration(); break;
    case kDeleteConfigure: DeleteConfiguration(); break;
    case kReferFrontendFolder: ReferFolder(); break;
    case kExecuteFrontend: ExecuteProgramRecord(); break;
    case kReferEditor:
    case kReferConsole:
    case kReferPlayer:
    case kReferFrontendCommand:
    case kReferRequiredFile: ReferFile(index); break;
    default: OnListCommand(index); break;
    }
}

void frmConfig::OnCommand(HWND control, int id, int code) {
    if (saving_) return;
    // Enter and Esc arrive as IDOK and IDCANCEL, with or without the button.
    if (id == IDOK || id == IDCANCEL) {
        if (code == BN_CLICKED || control == nullptr) OnCommandButton(id == IDOK ? kOk : kCancel);
        return;
    }
    if (control == nullptr) return;
    for (int index = 0; index < kCommandCount; ++index) {
        if (control == cmdCommand(index)) {
            if (code == BN_CLICKED) OnCommandButton(index);
            return;
        }
    }
    if (control == cboCombo(0)) {
        if (code == CBN_SELCHANGE) ChooseConfiguration();
    } else if (control == List1(0) || control == List1(1)) {
        if (code != LBN_SELCHANGE) return;
        if (control == List1(0)) {
            ShowFilterFields();
        } else {
            ShowProgramFields();
        }
    } else if (code == EN_CHANGE || code == BN_CLICKED || code == CBN_SELCHANGE) {
        OnProgramFieldChanged(control);
        OnFilterFieldChanged(control);
    }
}

bool frmConfig::Form_KeyDown(int keyCode, int shift) {
    return MoveWindowByKey(Handle(), keyCode, shift, true);
}

bool frmConfig::PreTranslate(MSG& message) {
    if (Handle() == nullptr) return false;
    if (message.hwnd != Handle() && !IsChild(Handle(), message.hwnd)) return false;
    if (message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN) {
        const int key = static_cast<int>(message.wParam);
        const int shift = CurrentShiftState();
        if (key == VK_TAB && (shift & ~kShiftBit) == kCtrlBit) {
            SelectPage((page_ + ((shift & kShiftBit) != 0 ? kPages - 1 : 1)) % kPages);
            MoveFocus(GetNextDlgTabItem(fraConfig(page_), nullptr, FALSE));
            return true;
        }
        if (Form_KeyDown(key, shift)) return true;
    }
    return IsDialogMessageW(Handle(), &message) != FALSE;
}

void frmConfig::MoveFocus(HWND control) {
    if (control == nullptr) return;
    SetFocus(control);
    // A text box reached from the keyboard has its text selected, ready to be typed over.
    if ((SendMessageW(control, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) != 0) {
        SendMessageW(control, EM_SETSEL, 0, -1);
    }
}

void frmConfig::RestoreStandardSize() {
    MoveWindowOnScreen(Handle(), std::nullopt, std::nullopt, kStandardWidth, kStandardHeight);
}

void frmConfig::SavePlacement() {
    // A minimised or maximised window would store a place the user never chose.
    if (!IsNormalWindowState(Handle())) return;
    RECT rect{};
    GetWindowRect(Handle(), &rect);
    // An unmoved window writes nothing, so that Cancel leaves the file as it was.
    if (rect.left == placedPixels_.x && rect.top == placedPixels_.y) return;
    const auto box = GetWindowBoxTwips(Handle());
    if (!box) return;
    WriteIni(keys::kConfigureLeft.section, keys::kConfigureLeft.name, box->left, MainFile());
    WriteIni(keys::kConfigureTop.section, keys::kConfigureTop.name, box->top, MainFile());
}

void frmConfig::Unload() {
    if (Handle() == nullptr) return;
    SavePlacement();
    DestroyWindow(Handle());
}

void frmConfig::OnDpiChanged(int dpi, const RECT& suggested) {
    dpi_ = dpi;
    ApplyFont();
    SetWindowPos(Handle(), nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
                 suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
    Layout();
}

LRESULT frmConfig::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_COMMAND:
        OnCommand(reinterpret_cast<HWND>(lParam), LOWORD(wParam), HIWORD(wParam));
        return 0;
    case WM_NOTIFY: {
        const auto* header = reinterpret_cast<const NMHDR*>(lParam);
        if (header->hwndFrom == tabStrip_ && header->code == TCN_SELCHANGE) {
            SelectPage(static_cast<int>(SendMessageW(tabStrip_, TCM_GETCURSEL, 0, 0)));
        }
        return 0;
    }
    case DM_GETDEFID: return MAKELRESULT(IDOK, DC_HASDEFID);
    case WM_NEXTDLGCTL:
        // What a dialog's own procedure does when Tab or an access key moves on.
        MoveFocus(LOWORD(lParam) != 0 ? reinterpret_cast<HWND>(wParam)
                                      : GetNextDlgTabItem(Handle(), GetFocus(), wParam != 0));
        return 0;
    case WM_SIZE: Layout(); return 0;
    case WM_GETMINMAXINFO: {
        auto* info = reinterpret_cast<MINMAXINFO*>(lParam);
        info->ptMinTrackSize = {Scale(420), Scale(400)};
        return 0;
    }
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
        if (Form_KeyDown(static_cast<int>(wParam), CurrentShiftState())) return 0;
        break;
    case WM_ACTIVATE:
        // The focus comes back to the control that had it.
        if (LOWORD(wParam) == WA_INACTIVE) {
            const HWND focus = GetFocus();
            if (focus != nullptr && IsChild(Handle(), focus)) focus_ = focus;
        } else if (focus_ != nullptr && IsWindow(focus_) && IsWindowVisible(focus_)) {
            SetFocus(focus_);
        }
        return 0;
    case WM_DPICHANGED:
        OnDpiChanged(HIWORD(wParam), *reinterpret_cast<const RECT*>(lParam));
        return 0;
    case WM_CLOSE:
        if (!saving_) Unload();
        return 0;
    default: break;
    }
    return DefWindowProcW(Handle(), message, wParam, lParam);
}

INT_PTR CALLBACK frmConfig::PageProc(HWND page, UINT message, WPARAM wParam,
                                     LPARAM lParam) noexcept {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(page, DWLP_USER, lParam);
        return FALSE;
    }
    auto* self = reinterpret_cast<frmConfig*>(GetWindowLongPtrW(page, DWLP_USER));
    if (self == nullptr) return FALSE;
    try {
        switch (message) {
        case WM_COMMAND:
            self->OnCommand(reinterpret_cast<HWND>(lParam), LOWORD(wParam), HIWORD(wParam));
            return TRUE;
        case WM_LBUTTONDBLCLK: self->RestoreStandardSize(); return TRUE;
        default: break;
        }
    } catch (...) {
        // Nothing may unwind into the system's dispatcher.
    }
    return FALSE;
}

namespace {

std::unique_ptr<frmConfig>& Instance() {
    static std::unique_ptr<frmConfig> window;
    return window;
}

}  // namespace

void ShowConfigWindow(frmZorvi* main, int page) {
    std::unique_ptr<frmConfig>& window = Instance();
    if (!window || window->Handle() == nullptr) {
        // The closed window's object goes only now, outside its own handlers.
        window = std::make_unique<frmConfig>(main);
        if (!window->Create()) {
            window.reset();
            return;
        }
    }
    window->ShowConfig(page);
}

frmConfig* ConfigWindow() {
    const std::unique_ptr<frmConfig>& window = Instance();
    return window && window->Handle() != nullptr ? window.get() : nullptr;
}

void ReleaseConfigWindow() {
    std::unique_ptr<frmConfig>& window = Instance();
    if (window && window->Handle() != nullptr) SendMessageW(window->Handle(), WM_CLOSE, 0, 0);
    window.reset();
}

bool PreTranslateConfigMessage(MSG& message) {
    frmConfig* window = ConfigWindow();
    return window != nullptr && window->PreTranslate(message);
}

}  // namespace zorvi
