// The result window: shows the compiler's log, keeps its place, hides or
// closes itself on the keys and the focus rules of the program.
#include "ui/result/frmResult.h"

#include <commctrl.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "core/instance_win.h"
#include "core/mdlMain.h"
#include "core/strings_win.h"
#include "core/wide_win.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "res/resource.h"
#include "res/string_ids.h"
#include "settings/ini_win.h"
#include "ui/main/key_move.h"
#include "ui/main/mdlHotKey.h"
#include "ui/main/mdlView.h"
#include "ui/result/error_line_win.h"
#include "ui/result/log_decode.h"
#include "ui/result/result_text.h"
#include "ui/text_font_win.h"

namespace zorvi {
namespace {

// The AutoClose hide waits until the change of activation is over.
constexpr UINT kHideAfterDeactivate = WM_APP + 1;
constexpr UINT_PTR kTextBoxSubclass = 1;
constexpr int kTextMargin = 4;  // pixels at 96 dots per inch
constexpr DWORD kReadChunk = 64 * 1024;

namespace keys = settings::main_file;

ResultTexts CurrentTexts() {
    return {Widen(mdlMain::AppTitle()), LoadText(ids::kCompileErrorDetected),
            LoadText(ids::kZeroByteFileGenerated), LoadText(ids::kLogFileNotFound),
            LoadText(ids::kCompileStopped)};
}

std::wstring Caption(const std::string& log, bool named) {
    std::wstring caption = Widen(mdlMain::AppTitle()) + L" - " + LoadText(ids::kMenuLogWindow);
    if (named) caption += L" - " + Widen(mdlFile::GetFileName(log));
    return caption;
}

// The log as long as it was when opened, streamed through the builder so
// that a huge log costs no more memory than what can be shown, and read as
// UTF-8 or in ResultWindow/LogCodePage. Nullopt when it cannot be opened or
// read (locked, vanished).
std::optional<std::wstring> ReadLogText(const std::string& log, int mode) {
    const UniqueHandle file(CreateFileA(log.c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    if (!file) return std::nullopt;
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(file.get(), &size) || size.QuadPart < 0) return std::nullopt;
    const auto length = static_cast<std::uint64_t>(size.QuadPart);
    const unsigned codePage =
        UsableCodePage(ReadIniInt(keys::kLogCodePage, mdlMain::MainSettingsPath()));
    LogTextBuilder builder(mode, CurrentTexts(), length, [codePage](std::string_view bytes) {
        return WidenFrom(bytes, codePage);
    });
    std::string chunk(kReadChunk, '\0');
    std::uint64_t left = length;
    while (left > 0 && builder.WantsMore()) {
        const DWORD wanted = left < kReadChunk ? static_cast<DWORD>(left) : kReadChunk;
        DWORD got = 0;
        if (!ReadFile(file.get(), chunk.data(), wanted, &got, nullptr)) return std::nullopt;
        if (got == 0) break;  // shorter now than when it was opened
        builder.Feed(std::string_view(chunk.data(), got));
        left -= got;
    }
    return builder.Finish();
}

bool IsCloseKey(int keyCode) {
    return keyCode == VK_ESCAPE || (keyCode >= VK_F1 && keyCode <= VK_F12);
}

bool AutoCloseOn() { return ReadIniFlag(keys::kAutoClose, mdlMain::MainSettingsPath()); }

std::function<void(const std::string&)>& BeforeLogRead() {
    static std::function<void(const std::string&)> hook;
    return hook;
}

}  // namespace

frmResult::~frmResult() {
    // Destroyed here, while the window's handlers still have their object.
    DestroyNative();
}

bool frmResult::Create() {
    if (Handle() != nullptr) return true;
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    const HICON icon = LoadIconW(instance, MAKEINTRESOURCEW(IDI_APP));
    const ScreenDpi dpi = GetScreenDpi();
    // Owned by the application window, so that a second start finds it as
    // the last active popup; WS_EX_APPWINDOW keeps its own taskbar button.
    if (!CreateNative(WS_EX_APPWINDOW, Caption({}, false).c_str(), WS_OVERLAPPEDWINDOW, 0, 0,
                      TwipsToPixels(keys::kResultWidth.fallback, dpi.x),
                      TwipsToPixels(keys::kResultHeight.fallback, dpi.y), ApplicationWindow(),
                      icon)) {
        return false;
    }
    const auto smallIcon = static_cast<HICON>(
        LoadImageW(instance, MAKEINTRESOURCEW(IDI_APP), IMAGE_ICON, GetSystemMetrics(SM_CXSMICON),
                   GetSystemMetrics(SM_CYSMICON), LR_SHARED));
    if (smallIcon != nullptr) {
        SendMessageW(Handle(), WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(smallIcon));
    }

    txtText_ = CreateWindowExW(
        WS_EX_CLIENTEDGE, L"EDIT", L"",
        WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_HSCROLL | ES_MULTILINE | ES_READONLY |
            ES_AUTOVSCROLL | ES_AUTOHSCROLL | ES_NOHIDESEL,
        0, 0, 0, 0, Handle(), nullptr, instance, nullptr);
    if (txtText_ == nullptr) {
        DestroyWindow(Handle());
        return false;
    }
    ApplyFont({});
    SendMessageW(txtText_, EM_SETLIMITTEXT, kResultTextLimit, 0);
    const int margin = MulDiv(kTextMargin, dpi.x, 96);
    SendMessageW(txtText_, EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN,
                 MAKELPARAM(margin, margin));
    SetWindowSubclass(txtText_, &frmResult::TextBoxProc, kTextBoxSubclass,
                      reinterpret_cast<DWORD_PTR>(this));

    RECT client{};
    GetClientRect(Handle(), &client);
    MoveWindow(txtText_, 0, 0, client.right, client.bottom, FALSE);

    const std::string& settingsFile = mdlMain::MainSettingsPath();
    MoveWindowOnScreen(Handle(), ReadIniInt(keys::kResultLeft, settingsFile),
                       ReadIniInt(keys::kResultTop, settingsFile),
                       ReadIniInt(keys::kResultWidth, settingsFile),
                       ReadIniInt(keys::kResultHeight, settingsFile));
    return true;
}

void frmResult::ShowResult(int mode, const std::string& logPath) {
    if (Handle() == nullptr && !Create()) return;
    // An unreadable log (locked, vanished since the existence test) keeps the
    // previous text, and beside the main window the result window stays as it
    // was. A command-line run has nothing but this window: left hidden, the
    // run would end without a word, so there it is shown all the same.
    const bool showUnread = !mdlMain::InteractiveMode();
    try {
        const bool named = !logPath.empty() || !mdlMain::TargetFile().empty();
        const std::string log =
            logPath.empty() ? mdlFile::ChangeExtension(mdlMain::TargetFile(), "log") : logPath;
        const bool exists = mdlFile::FileExists(log);
        if (exists && BeforeLogRead()) BeforeLogRead()(log);
        const std::optional<std::wstring> text =
            exists ? ReadLogText(log, mode) : MissingLogText(mode, CurrentTexts());
        if (text) {
            shownMode_ = mode;
            shownMissing_ = !exists;
            shownFrame_ = exists ? VerdictHeader(mode, CurrentTexts())
                                 : MissingLogText(mode, CurrentTexts());
            ApplyFont(*text);
            SetWindowTextW(txtText_, text->c_str());
            captionLog_ = named ? log : std::string();
            SetWindowTextW(Handle(), Caption(captionLog_, named).c_str());
        } else if (!showUnread) {
            return;
        }
    } catch (...) {
        if (!showUnread) return;  // out of memory: as unreadable
    }
    SetForegroundWindow(Handle());
    ShowWindow(Handle(), SW_RESTORE);
}

void frmResult::ApplyFont(std::wstring_view shown) {
    UniqueFont font = CreateFontFor(MessageFont(), shown);
    SendMessageW(txtText_, WM_SETFONT,
                 reinterpret_cast<WPARAM>(font ? font.get() : GetStockObject(DEFAULT_GUI_FONT)),
                 TRUE);
    // Let go of the old font only once the box no longer draws with it.
    font_ = std::move(font);
}

void frmResult::ChangeLangResult() {
    if (Handle() == nullptr) return;
    SetWindowTextW(Handle(), Caption(captionLog_, !captionLog_.empty()).c_str());
    if (shownFrame_.empty()) return;
    const std::wstring frame = shownMissing_ ? MissingLogText(shownMode_, CurrentTexts())
                                             : VerdictHeader(shownMode_, CurrentTexts());
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(txtText_)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(
        GetWindowTextW(txtText_, text.data(), static_cast<int>(text.size()))));
    // Only a frame still standing as it was shown is replaced; the log after
    // it is kept, cut again to what the box can hold.
    if (text.compare(0, shownFrame_.size(), shownFrame_) != 0) return;
    text.replace(0, shownFrame_.size(), frame);
    if (text.size() > kResultTextLimit) text.resize(kResultTextLimit);
    shownFrame_ = frame;
    ApplyFont(text);
    SetWindowTextW(txtText_, text.c_str());
}

void frmResult::HideResult() {
    if (Handle() == nullptr) return;
    if (!mdlMain::InteractiveMode()) {
        Unload();
        return;
    }
    ShowWindow(Handle(), SW_HIDE);
}

void frmResult::Unload() {
    if (Handle() == nullptr) return;
    // A minimised or maximised window would store a place the user never chose.
    if (IsNormalWindowState(Handle())) SavePlacement();
    if (!mdlMain::InteractiveMode() || mdlMain::ShuttingDown()) {
        DestroyWindow(Handle());
        return;
    }
    // Kept for the next ShowResult, with its place and its text.
    ShowWindow(Handle(), SW_HIDE);
}

void frmResult::SavePlacement() {
    const auto box = GetWindowBoxTwips(Handle());
    if (!box) return;
    const std::string& file = mdlMain::MainSettingsPath();
    WriteIni(keys::kResultTop.section, keys::kResultTop.name, box->top, file);
    WriteIni(keys::kResultLeft.section, keys::kResultLeft.name, box->left, file);
    WriteIni(keys::kResultWidth.section, keys::kResultWidth.name, box->width, file);
    WriteIni(keys::kResultHeight.section, keys::kResultHeight.name, box->height, file);
}

bool frmResult::Form_KeyDown(int keyCode, int shiftState) {
    if (MoveWindowByKey(Handle(), keyCode, shiftState)) return true;
    if (!IsCloseKey(keyCode)) return false;
    if (shiftState == 0) {
        // Interactive: hide; a command-line run: unload, which ends it.
        HideResult();
        return true;
    }
    // Alt alone is not ours: the system's own Alt keys (Alt+F4) keep working.
    if (shiftState == kAltBit) return false;
    if (keyCode == VK_ESCAPE && AutoCloseOn()) HideResult();
    // F1-F12 with Shift or Ctrl have no use here, and the box has none either.
    return true;
}

LRESULT CALLBACK frmResult::TextBoxProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                        UINT_PTR id, DWORD_PTR data) noexcept {
    auto* self = reinterpret_cast<frmResult*>(data);
    if (IsOpenLineRequest(message, wParam)) return OpenErrorLine(hwnd, message, wParam, lParam);
    switch (message) {
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
        try {
            // The window may be gone after this; touch nothing of it then.
            if (self->Form_KeyDown(static_cast<int>(wParam), CurrentShiftState())) return 0;
        } catch (...) {
            return 0;
        }
        break;
    case WM_CHAR:
        // Esc has been dealt with as a key; the box must not act on it again.
        if (wParam == VK_ESCAPE) return 0;
        break;
    case WM_NCDESTROY:
        RemoveWindowSubclass(hwnd, &frmResult::TextBoxProc, id);
        break;
    default:
        break;
    }
    return DefSubclassProc(hwnd, message, wParam, lParam);
}

LRESULT frmResult::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_SIZE:
        if (txtText_ != nullptr) MoveWindow(txtText_, 0, 0, LOWORD(lParam), HIWORD(lParam), TRUE);
        return 0;
    case WM_ACTIVATE:
        if (LOWORD(wParam) == WA_INACTIVE) {
            if (AutoCloseOn()) PostMessageW(Handle(), kHideAfterDeactivate, 0, 0);
            return 0;
        }
        if (txtText_ != nullptr) SetFocus(txtText_);
        return 0;
    case WM_SETFOCUS:
        if (txtText_ != nullptr) SetFocus(txtText_);
        return 0;
    case kHideAfterDeactivate:
        // Activated again meanwhile: the user came back, so it stays.
        if (GetActiveWindow() != Handle()) HideResult();
        return 0;
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
        if (Form_KeyDown(static_cast<int>(wParam), CurrentShiftState())) return 0;
        break;
    case WM_CTLCOLORSTATIC:
        // A read-only box is grey by default; a log reads better on the window colour.
        if (reinterpret_cast<HWND>(lParam) == txtText_) {
            const auto dc = reinterpret_cast<HDC>(wParam);
            SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
            SetBkColor(dc, GetSysColor(COLOR_WINDOW));
            return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
        }
        break;
    case WM_CLOSE:
        Unload();
        return 0;
    case WM_DESTROY:
        txtText_ = nullptr;
        return 0;
    default:
        break;
    }
    return DefWindowProcW(Handle(), message, wParam, lParam);
}

namespace {
frmResult& ResultWindowObject() {
    static frmResult window;
    return window;
}
}  // namespace

frmResult& ResultWindow() {
    frmResult& window = ResultWindowObject();
    if (window.Handle() == nullptr) window.Create();
    return window;
}

void ReleaseResultWindow() { ResultWindowObject().Unload(); }

void RelabelResultWindow() { ResultWindowObject().ChangeLangResult(); }

void SetBeforeLogReadForTesting(std::function<void(const std::string& log)> hook) {
    BeforeLogRead() = std::move(hook);
}

int RunResultWindowUntilClosed() {
    frmResult& window = ResultWindow();
    MSG message{};
    while (window.Handle() != nullptr && IsWindowVisible(window.Handle())) {
        const BOOL got = GetMessageW(&message, nullptr, 0, 0);
        if (got == 0) return static_cast<int>(message.wParam);
        if (got < 0) break;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0;
}

}  // namespace zorvi
