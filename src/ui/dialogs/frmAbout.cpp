// The about window: shows what this build is and the shortcut keys, keeps
// its two fixed sizes, moves with the shared keys and hides when closed.
#include "ui/dialogs/frmAbout.h"

#include <commctrl.h>

#include <utility>

#include "core/mdlMain.h"
#include "core/strings_win.h"
#include "core/version.h"
#include "core/wide_win.h"
#include "res/build_info.h"
#include "res/resource.h"
#include "res/string_ids.h"
#include "run/clsExecute.h"
#include "ui/dialogs/about_text.h"
#include "ui/main/key_move.h"
#include "ui/main/mdlHotKey.h"
#include "ui/main/mdlView.h"
#include "ui/text_font_win.h"

namespace zorvi {
namespace {

constexpr int kLinkId = 3;
constexpr int kCommandId = 10;  // cmdCommand n has the id kCommandId + n
constexpr UINT_PTR kControlSubclass = 1;
// The link's colours: unvisited, and visited (red 127, green 0, blue 127).
constexpr COLORREF kLinkColour = RGB(0, 0, 255);
constexpr COLORREF kVisitedColour = RGB(127, 0, 127);

// Places at 96 dots per inch, scaled to the screen.
constexpr int kMargin = 8;
constexpr int kLogoSize = 32;
constexpr int kButtonWidth = 100;
constexpr int kButtonHeight = 23;
constexpr int kLineHeight = 16;
constexpr int kTitleHeight = 22;
constexpr int kTextTop = 94;  // under the link: the collapsed window ends about here
constexpr int kTabStop = 54;  // dialog units: keys in one column, their meaning in the next

}  // namespace

frmAbout::frmAbout(std::string homePage) : homePage_(std::move(homePage)) {}

frmAbout::~frmAbout() {
    // Destroyed here, while the window's handlers still have their object.
    DestroyNative();
}

int frmAbout::Scaled(int pixels) const { return MulDiv(pixels, dpi_, 96); }

SIZE frmAbout::WindowSize() const {
    const ScreenDpi dpi = GetScreenDpi();
    return {TwipsToPixels(kAboutWidth, dpi.x),
            TwipsToPixels(expanded_ ? kAboutExpandedHeight : kAboutCollapsedHeight, dpi.y)};
}

bool frmAbout::Create(HWND owner) {
    if (Handle() != nullptr) return true;
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    dpi_ = GetScreenDpi().x;
    const SIZE size = WindowSize();
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const int left = work.left + (work.right - work.left - size.cx) / 2;
    const int top = work.top + (work.bottom - work.top - size.cy) / 2;
    // A caption and a close box only: the user cannot size the window.
    if (!CreateNative(WS_EX_DLGMODALFRAME, Widen(AboutCaption(mdlMain::AppTitle())).c_str(),
                      WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN, left, top, size.cx,
                      size.cy, owner, LoadIconW(instance, MAKEINTRESOURCEW(IDI_APP)))) {
        return false;
    }
    CreateControls();
    ChangeLangAbout();
    return true;
}

void frmAbout::CreateControls() {
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    const auto child = [&](const wchar_t* windowClass, DWORD style, int id, DWORD exStyle = 0) {
        return CreateWindowExW(exStyle, windowClass, L"", WS_CHILD | WS_VISIBLE | style, 0, 0, 0,
                               0, Handle(), reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                               instance, nullptr);
    };
    picLogo_ = child(L"STATIC", SS_ICON | SS_CENTERIMAGE, 0);
    lblTitle_ = child(L"STATIC", SS_LEFT | SS_NOPREFIX, 0);
    lblVersion_ = child(L"STATIC", SS_LEFT | SS_NOPREFIX, 0);
    lblBuild_ = child(L"STATIC", SS_LEFT | SS_NOPREFIX, 0);
    lblLabel2_ = child(L"STATIC", SS_LEFT | SS_NOPREFIX | SS_NOTIFY | SS_ENDELLIPSIS, kLinkId);
    cmdCommand_[0] = child(L"BUTTON", BS_DEFPUSHBUTTON | WS_TABSTOP, kCommandId);
    // A button that stays pressed while the keys are shown.
    cmdCommand_[1] = child(L"BUTTON", BS_CHECKBOX | BS_PUSHLIKE | WS_TABSTOP, kCommandId + 1);
    txtText_ = child(L"EDIT", ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | WS_VSCROLL | WS_TABSTOP,
                     0, WS_EX_CLIENTEDGE);
    ShowWindow(txtText_, SW_HIDE);
    // No address, no link: the label is there but never seen.
    if (homePage_.empty()) ShowWindow(lblLabel2_, SW_HIDE);

    const int logoSize = Scaled(kLogoSize);
    logo_.reset(static_cast<HICON>(LoadImageW(instance, MAKEINTRESOURCEW(IDI_APP), IMAGE_ICON,
                                              logoSize, logoSize, LR_DEFAULTCOLOR)));
    SendMessageW(picLogo_, STM_SETICON, reinterpret_cast<WPARAM>(logo_.get()), 0);

    SetWindowTextW(lblTitle_, Widen(mdlMain::AppTitle()).c_str());
    SetWindowTextW(lblVersion_, Widen(zorvi::VersionLabel(ThisVersion())).c_str());
    SetWindowTextW(lblBuild_, Widen(zorvi::BuildLabel(ZORVI_BUILD_DATE)).c_str());
    SetWindowTextW(lblLabel2_, Widen(homePage_).c_str());
    const int tabStop = kTabStop;
    SendMessageW(txtText_, EM_SETTABSTOPS, 1, reinterpret_cast<LPARAM>(&tabStop));
    for (const HWND control : {cmdCommand_[0], cmdCommand_[1], txtText_}) {
        SetWindowSubclass(control, &frmAbout::ControlProc, kControlSubclass,
                          reinterpret_cast<DWORD_PTR>(this));
    }
    Layout();
}

void frmAbout::Layout() {
    RECT client{};
    GetClientRect(Handle(), &client);
    const int margin = Scaled(kMargin);
    const int buttonWidth = Scaled(kButtonWidth);
    const int buttonHeight = Scaled(kButtonHeight);
    const int buttonLeft = client.right - margin - buttonWidth;
    const int textLeft = margin + Scaled(kLogoSize) + margin;
    const int labelWidth = buttonLeft - margin - textLeft;
    const int line = Scaled(kLineHeight);
    MoveWindow(picLogo_, margin, margin, Scaled(kLogoSize), Scaled(kLogoSize), FALSE);
    MoveWindow(lblTitle_, textLeft, margin - Scaled(2), labelWidth, Scaled(kTitleHeight), FALSE);
    MoveWindow(lblVersion_, textLeft, Scaled(30), labelWidth, line, FALSE);
    MoveWindow(lblBuild_, textLeft, Scaled(46), labelWidth, line, FALSE);
    // The address may be long: it has the whole width beside the logo.
    MoveWindow(lblLabel2_, textLeft, Scaled(70), client.right - margin - textLeft, line, FALSE);
    MoveWindow(cmdCommand_[0], buttonLeft, margin, buttonWidth, buttonHeight, FALSE);
    MoveWindow(cmdCommand_[1], buttonLeft, margin + buttonHeight + Scaled(6), buttonWidth,
               buttonHeight, FALSE);
    const int textTop = Scaled(kTextTop);
    MoveWindow(txtText_, margin, textTop, client.right - 2 * margin,
               client.bottom - margin - textTop, FALSE);
    InvalidateRect(Handle(), nullptr, TRUE);
}

void frmAbout::ApplyFonts(const std::wstring& shown) {
    UniqueFont font = CreateFontFor(MessageFont(), shown);
    if (!font) return;
    // The title and the link are the same face as the rest, larger and bold,
    // or underlined.
    LOGFONTW face{};
    GetObjectW(font.get(), sizeof face, &face);
    LOGFONTW title = face;
    title.lfHeight = face.lfHeight * 3 / 2;
    title.lfWeight = FW_BOLD;
    LOGFONTW link = face;
    link.lfUnderline = TRUE;
    UniqueFont titleFont(CreateFontIndirectW(&title));
    UniqueFont linkFont(CreateFontIndirectW(&link));
    const auto set = [](HWND control, const UniqueFont& chosen) {
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(chosen.get()), TRUE);
    };
    for (const HWND control : {lblVersion_, lblBuild_, cmdCommand_[0], cmdCommand_[1], txtText_}) {
        set(control, font);
    }
    set(lblTitle_, titleFont ? titleFont : font);
    set(lblLabel2_, linkFont ? linkFont : font);
    // The old fonts go only once no control draws with them.
    font_ = std::move(font);
    titleFont_ = std::move(titleFont);
    linkFont_ = std::move(linkFont);
}

void frmAbout::ChangeLangAbout() {
    if (Handle() == nullptr) return;
    SetWindowTextW(Handle(), Widen(AboutCaption(mdlMain::AppTitle())).c_str());
    // Text 1 then text 2; in Japanese text 1 holds both and 2 has no text.
    const std::wstring keys =
        LoadText(ids::kShortcutHelpMain) + LoadText(ids::kShortcutHelpWindowKeys);
    const std::wstring ok = LoadText(ids::kButtonOk);
    const std::wstring toggle = LoadText(ids::kButtonShortcutKeys);
    ApplyFonts(keys + ok + toggle);
    SetWindowTextW(cmdCommand_[0], ok.c_str());
    SetWindowTextW(cmdCommand_[1], toggle.c_str());
    SetWindowTextW(txtText_, keys.c_str());
}

void frmAbout::ShowAbout() {
    if (Handle() == nullptr && !Create(nullptr)) return;
    ChangeLangAbout();
    ShowWindow(Handle(), SW_SHOWNORMAL);
    SetForegroundWindow(Handle());
    SetFocus(cmdCommand_[0]);
}

void frmAbout::ToggleExpanded() {
    if (Handle() == nullptr) return;
    expanded_ = !expanded_;
    const SIZE size = WindowSize();
    SetWindowPos(Handle(), nullptr, 0, 0, size.cx, size.cy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    ShowWindow(txtText_, expanded_ ? SW_SHOW : SW_HIDE);
    SendMessageW(cmdCommand_[1], BM_SETCHECK, expanded_ ? BST_CHECKED : BST_UNCHECKED, 0);
}

void frmAbout::Unload() {
    if (Handle() == nullptr) return;
    if (mdlMain::ShuttingDown()) {
        DestroyWindow(Handle());
        return;
    }
    // Kept, expanded or not, for the next ShowAbout.
    ShowWindow(Handle(), SW_HIDE);
}

void frmAbout::OpenHomePage() {
    if (homePage_.empty()) return;
    // The shell opens the address in the default browser; nothing waits for
    // it and nothing records it.
    clsExecute runner;
    UniqueHandle process;
    DWORD exitCode = 0;
    runner.RunProgram(homePage_, {}, {}, process, exitCode, SW_SHOWNORMAL, nullptr, false);
    visited_ = true;
    InvalidateRect(lblLabel2_, nullptr, TRUE);
}

bool frmAbout::Form_KeyDown(HWND from, int keyCode, int shiftState) {
    // The window keeps its size: the keys only move it.
    if (MoveWindowByKey(Handle(), keyCode, shiftState, false)) return true;
    if (keyCode == VK_ESCAPE) {
        ShowWindow(Handle(), SW_HIDE);
        return true;
    }
    if (keyCode == VK_TAB && (shiftState == 0 || shiftState == kShiftBit)) {
        const HWND next = GetNextDlgTabItem(Handle(), from, shiftState == kShiftBit);
        if (next != nullptr) SetFocus(next);
        return true;
    }
    // Outside a dialog a button does not take Enter by itself.
    if (keyCode == VK_RETURN && shiftState == 0 &&
        (from == cmdCommand_[0] || from == cmdCommand_[1])) {
        SendMessageW(from, BM_CLICK, 0, 0);
        return true;
    }
    return false;
}

LRESULT CALLBACK frmAbout::ControlProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam,
                                       UINT_PTR id, DWORD_PTR data) noexcept {
    auto* self = reinterpret_cast<frmAbout*>(data);
    switch (message) {
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
        try {
            if (self->Form_KeyDown(hwnd, static_cast<int>(wParam), CurrentShiftState())) return 0;
        } catch (...) {
            return 0;
        }
        break;
    case WM_CHAR:
        // Keys dealt with above must not reach the control a second time.
        if (wParam == VK_ESCAPE || wParam == L'\t' || wParam == L'\r') return 0;
        break;
    case WM_NCDESTROY:
        RemoveWindowSubclass(hwnd, &frmAbout::ControlProc, id);
        break;
    default:
        break;
    }
    return DefSubclassProc(hwnd, message, wParam, lParam);
}

LRESULT frmAbout::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_WINDOWPOSCHANGING: {
        // Whatever asks for another size gets one of the window's own two.
        auto& position = *reinterpret_cast<WINDOWPOS*>(lParam);
        if ((position.flags & SWP_NOSIZE) == 0) {
            const SIZE size = WindowSize();
            position.cx = size.cx;
            position.cy = size.cy;
        }
        return 0;
    }
    case WM_SIZE:
        if (txtText_ != nullptr) Layout();
        return 0;
    case WM_ACTIVATE:
        if (LOWORD(wParam) != WA_INACTIVE && cmdCommand_[0] != nullptr) {
            const HWND focus = GetFocus();
            if (focus == nullptr || GetParent(focus) != Handle()) SetFocus(cmdCommand_[0]);
        }
        return 0;
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
        if (Form_KeyDown(Handle(), static_cast<int>(wParam), CurrentShiftState())) return 0;
        break;
    case WM_COMMAND:
        if (LOWORD(wParam) == kCommandId) Unload();
        if (LOWORD(wParam) == kCommandId + 1) ToggleExpanded();
        if (LOWORD(wParam) == kLinkId && HIWORD(wParam) == STN_CLICKED) OpenHomePage();
        return 0;
    case WM_SETCURSOR:
        if (reinterpret_cast<HWND>(wParam) == lblLabel2_) {
            SetCursor(LoadCursor(nullptr, IDC_HAND));
            return TRUE;
        }
        break;
    case WM_CTLCOLORSTATIC: {
        const auto dc = reinterpret_cast<HDC>(wParam);
        const auto control = reinterpret_cast<HWND>(lParam);
        if (control == txtText_) {
            // The keys read better on the window colour than on grey.
            SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
            SetBkColor(dc, GetSysColor(COLOR_WINDOW));
            return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
        }
        if (control == lblLabel2_) {
            SetTextColor(dc, visited_ ? kVisitedColour : kLinkColour);
            SetBkColor(dc, GetSysColor(COLOR_BTNFACE));
            return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_BTNFACE));
        }
        break;
    }
    case WM_CLOSE:
        Unload();
        return 0;
    case WM_DESTROY:
        picLogo_ = lblTitle_ = lblVersion_ = lblBuild_ = lblLabel2_ = txtText_ = nullptr;
        cmdCommand_ = {};
        return 0;
    default:
        break;
    }
    return DefWindowProcW(Handle(), message, wParam, lParam);
}

namespace {
frmAbout& AboutWindowObject() {
    static frmAbout window(ZORVI_HOMEPAGE);
    return window;
}
}  // namespace

frmAbout& AboutWindow(HWND owner) {
    frmAbout& window = AboutWindowObject();
    if (window.Handle() == nullptr) window.Create(owner);
    return window;
}

void ReleaseAboutWindow() { AboutWindowObject().Unload(); }

}  // namespace zorvi
