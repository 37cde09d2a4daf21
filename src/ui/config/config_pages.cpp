// The configuration window's controls: made once, in tab order; labelled from
// the string table with access keys; placed for the window's size, its DPI
// and the length of the texts of the language shown.
#include "ui/config/frmConfig.h"

#include <commctrl.h>

#include <algorithm>

#include "core/strings_win.h"
#include "core/wide_win.h"
#include "files/path_text.h"
#include "res/string_ids.h"
#include "ui/config/config_ids.h"
#include "ui/config/config_parts.h"
#include "ui/config/config_rules.h"
#include "ui/main/main_parts.h"

namespace zorvi {
namespace {

using config_parts::Place;

constexpr int kWindowGroup = -1;
constexpr DWORD kTabStop = WS_TABSTOP | WS_GROUP;
constexpr DWORD kEditStyle = kTabStop | ES_AUTOHSCROLL;
constexpr DWORD kCheckStyle = kTabStop | BS_AUTOCHECKBOX;
constexpr DWORD kButtonStyle = kTabStop | BS_PUSHBUTTON;
constexpr DWORD kListStyle = kTabStop | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT | WS_VSCROLL;
constexpr DWORD kScriptStyle = kTabStop | ES_MULTILINE | ES_AUTOVSCROLL | ES_AUTOHSCROLL |
                               ES_WANTRETURN | WS_VSCROLL | WS_HSCROLL;
constexpr int kWindowStateLists[] = {1, 3, 5, 6};

int WidthOf(const RECT& rect) { return rect.right - rect.left; }
int HeightOf(const RECT& rect) { return rect.bottom - rect.top; }

// Gives a page the tab control's own background where the system draws one.
void UseTabBackground(HWND page) {
    using EnableTextureFunction = HRESULT(WINAPI*)(HWND, DWORD);
    const HMODULE theme = GetModuleHandleW(L"uxtheme.dll");
    if (theme == nullptr) return;
    const auto enable = reinterpret_cast<EnableTextureFunction>(
        reinterpret_cast<void*>(GetProcAddress(theme, "EnableThemeDialogTexture")));
    constexpr DWORD kEnableTab = 0x00000006;  // ETDT_ENABLE | ETDT_USETABTEXTURE
    if (enable != nullptr) enable(page, kEnableTab);
}

}  // namespace

int frmConfig::Scale(int pixelsAt96) const { return MulDiv(pixelsAt96, dpi_, 96); }

HWND frmConfig::AddControl(HWND parent, const wchar_t* windowClass, DWORD style, int id,
                           DWORD exStyle) {
    return CreateWindowExW(exStyle, windowClass, L"", WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0,
                           parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                           GetModuleHandleW(nullptr), nullptr);
}

HWND frmConfig::AddLabel(HWND parent, int captionId) {
    const HWND label = AddControl(parent, L"STATIC", SS_LEFT, -1);
    captions_.push_back({label, captionId, static_cast<int>(GetWindowLongPtrW(parent, GWLP_ID))});
    return label;
}

HWND frmConfig::CreatePage(int index) {
    // An empty child dialog per page: it tabs into its controls and takes the
    // tab control's background, as property pages do.
    struct alignas(4) EmptyDialog {
        DLGTEMPLATE head;
        WORD menu, windowClass, title;
    } page{};
    page.head.style = WS_CHILD | WS_CLIPSIBLINGS | DS_CONTROL;
    const HWND window =
        CreateDialogIndirectParamW(GetModuleHandleW(nullptr), &page.head, Handle(),
                                   &frmConfig::PageProc, reinterpret_cast<LPARAM>(this));
    if (window == nullptr) return nullptr;
    SetWindowLongPtrW(window, GWLP_ID, index);
    UseTabBackground(window);
    return window;
}

void frmConfig::CreateControls() {
    namespace id = config_ids;
    const auto command = [this](HWND parent, int index, DWORD style = kButtonStyle) {
        cmdCommand_[static_cast<std::size_t>(index)] =
            AddControl(parent, L"BUTTON", style, id::CommandId(index));
        const int group = parent == Handle() ? kWindowGroup
                                             : static_cast<int>(GetWindowLongPtrW(parent, GWLP_ID));
        captions_.push_back({cmdCommand_[static_cast<std::size_t>(index)], ids::kConfigOk + index,
                             group, index != kOk && index != kCancel});
    };
    const auto captioned = [this](HWND parent, HWND control, int captionId, bool mnemonic = true) {
        captions_.push_back(
            {control, captionId, static_cast<int>(GetWindowLongPtrW(parent, GWLP_ID)), mnemonic});
        return control;
    };
    const auto frame = [&](HWND parent, int captionId) {
        frames_[static_cast<std::size_t>(captionId - ids::kFrameLanguage)] =
            captioned(parent, AddControl(parent, L"BUTTON", BS_GROUPBOX, -1), captionId, false);
    };
    const auto check = [&](HWND parent, int controlId, int captionId) {
        return captioned(parent, AddControl(parent, L"BUTTON", kCheckStyle, controlId), captionId);
    };
    const auto edit = [this](HWND parent, int controlId) {
        const HWND box = AddControl(parent, L"EDIT", kEditStyle, controlId, WS_EX_CLIENTEDGE);
        // Longer values would not read back whole.
        SendMessageW(box, EM_LIMITTEXT, mdlFile::kPathBuffer - 1, 0);
        return box;
    };
    const auto combo = [this](HWND parent, int index, DWORD kind) {
        const HWND box =
            AddControl(parent, WC_COMBOBOXW, kTabStop | WS_VSCROLL | kind, id::kComboBase + index);
        cboCombo_[static_cast<std::size_t>(index)] = box;
        return box;
    };
    const auto list = [this](HWND parent, int index, DWORD exStyle) {
        List1_[static_cast<std::size_t>(index)] = AddControl(
            parent, WC_LISTBOXW, kListStyle, id::kListBase + index, WS_EX_CLIENTEDGE | exStyle);
    };

    // The selector row, in the window itself.
    lblSelector_ = AddControl(Handle(), L"STATIC", SS_LEFT, -1);
    captions_.push_back({lblSelector_, ids::kToolbarConfigure, kWindowGroup});
    combo(Handle(), 0, CBS_DROPDOWN | CBS_AUTOHSCROLL);
    command(Handle(), kNewConfigure);
    command(Handle(), kDeleteConfigure);
    tabStrip_ = AddControl(Handle(), WC_TABCONTROLW, WS_TABSTOP | WS_CLIPSIBLINGS, -1);
    for (int index = 0; index < kPages; ++index) {
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = const_cast<wchar_t*>(L"");
        SendMessageW(tabStrip_, TCM_INSERTITEMW, static_cast<WPARAM>(index),
                     reinterpret_cast<LPARAM>(&item));
        fraConfig_[static_cast<std::size_t>(index)] = CreatePage(index);
    }

    // Basic configure.
    HWND page = fraConfig_[kBasicPage];
    frame(page, ids::kFrameOption);
    for (int i = 0; i < 9; ++i) {
        chkOption_[static_cast<std::size_t>(i)] =
            check(page, id::kOptionBase + i, ids::kOptionAlwaysTop + i);
    }
    AddLabel(page, ids::kLabelTimerInterval);
    txtText_[0] = edit(page, id::kTextBase + 0);
    // The units follow their boxes: an access key there would lead onwards.
    AddLabel(page, ids::kLabelMsec);
    captions_.back().mnemonic = false;
    AddLabel(page, ids::kLabelIconSize);
    txtText_[1] = edit(page, id::kTextBase + 1);
    AddLabel(page, ids::kLabelPt);
    captions_.back().mnemonic = false;
    frame(page, ids::kFrameEditor);
    combo(page, 4, CBS_DROPDOWN | CBS_AUTOHSCROLL);
    command(page, kReferEditor);
    AddLabel(page, ids::kLabelEditorWindowState);
    combo(page, 5, CBS_DROPDOWNLIST);
    chkCheck_[5] = check(page, id::kCheckBase + 5, ids::kCheckUseAssociatedEditor);
    frame(page, ids::kFrameLanguage);
    optLanguage_[0] = captioned(
        page, AddControl(page, L"BUTTON", kTabStop | BS_AUTORADIOBUTTON, id::kLanguageBase),
        ids::kLanguageEnglish);
    optLanguage_[1] =
        captioned(page, AddControl(page, L"BUTTON", BS_AUTORADIOBUTTON, id::kLanguageBase + 1),
                  ids::kLanguageJapanese);

    // Compile configure.
    page = fraConfig_[kCompilePage];
    frame(page, ids::kFrameConsoleApplication);
    chkCheck_[0] = check(page, id::kCheckBase + 0, ids::kCheckUseConsole);
    txtText_[2] = edit(page, id::kTextBase + 2);
    command(page, kReferConsole);
    AddLabel(page, ids::kLabelConsoleWindowState);
    combo(page, 1, CBS_DROPDOWNLIST);
    AddLabel(page, ids::kLabelGeneratedExtension);
    txtText_[3] = edit(page, id::kTextBase + 3);
    for (const int i : {2, 3, 4}) {
        chkCheck_[static_cast<std::size_t>(i)] =
            check(page, id::kCheckBase + i, ids::kCheckUseConsole + i);
    }
    frame(page, ids::kFramePlayer);
    chkCheck_[1] = check(page, id::kCheckBase + 1, ids::kCheckUsePlayer);
    combo(page, 2, CBS_DROPDOWN | CBS_AUTOHSCROLL);
    command(page, kReferPlayer);
    AddLabel(page, ids::kLabelPlayerWindowState);
    combo(page, 3, CBS_DROPDOWNLIST);
    chkCheck_[7] = check(page, id::kCheckBase + 7, ids::kCheckUseAssociatedPlayer);

    // BAT script.
    page = fraConfig_[kScriptPage];
    txtScript_[0] = AddControl(page, L"EDIT", kScriptStyle, id::kScriptBase, WS_EX_CLIENTEDGE);
    frame(page, ids::kFrameRequiredFiles);
    txtScript_[1] = AddControl(page, L"EDIT", kScriptStyle, id::kScriptBase + 1, WS_EX_CLIENTEDGE);
    command(page, kReferRequiredFile);
    for (const HWND script : txtScript_) SendMessageW(script, EM_LIMITTEXT, 0, 0);

    // Frontend.
    page = fraConfig_[kFrontendPage];
    frame(page, ids::kFrameFileFrontend);
    list(page, 1, WS_EX_ACCEPTFILES);
    for (const int index :
         {kNewFrontend, kDeleteFrontend, kUpFrontend, kDownFrontend, kExecuteFrontend}) {
        command(page, index);
    }
    for (int field = kFrontendName; field <= kFrontendFolder; ++field) {
        AddLabel(page, ids::kLabelFrontendName + field);
        txtFrontend_[static_cast<std::size_t>(field)] = edit(page, id::kFrontendBase + field);
        if (field == kFrontendCommand) command(page, kReferFrontendCommand);
        if (field == kFrontendFolder) command(page, kReferFrontendFolder);
    }
    AddLabel(page, ids::kLabelFrontendWindowState);
    combo(page, 6, CBS_DROPDOWNLIST);
    chkAutoRun_ = check(page, id::kFrontendAutoRun, ids::kCheckFrontendAutoRun);
    chkCheck_[6] = check(page, id::kCheckBase + 6, ids::kCheckShutdownOnExit);

    // File filter.
    page = fraConfig_[kFilterPage];
    frame(page, ids::kFrameFileFilter);
    list(page, 0, 0);
    for (const int index : {kNewFilter, kDeleteFilter, kUpFilter, kDownFilter}) {
        command(page, index);
    }
    AddLabel(page, ids::kLabelFilterName);
    txtFilter_[kFilterName] = edit(page, id::kFilterBase + kFilterName);
    AddLabel(page, ids::kLabelFilterExtension);
    txtFilter_[kFilterExtension] = edit(page, id::kFilterBase + kFilterExtension);
    AddLabel(page, ids::kSelectUsedConfigure);
    cboFilterConfiguration_ = AddControl(
        page, WC_COMBOBOXW, kTabStop | WS_VSCROLL | CBS_DROPDOWNLIST, id::kFilterConfiguration);

    // OK, Cancel, Apply, in the order the system's dialogs have them.
    command(Handle(), kOk, kTabStop | BS_DEFPUSHBUTTON);
    command(Handle(), kCancel);
    command(Handle(), kApply);
    // Below the pages, so that it never paints over them; last in the tab order.
    SetWindowPos(tabStrip_, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);

    SetWindowSubclass(List1_[1], &frmConfig::ListProc, 1, reinterpret_cast<DWORD_PTR>(this));
    for (const int index : kWindowStateLists) FillWindowStateList(cboCombo(index));
}

void frmConfig::FillWindowStateList(HWND combo) {
    const LRESULT selected = SendMessageW(combo, CB_GETCURSEL, 0, 0);
    SendMessageW(combo, CB_RESETCONTENT, 0, 0);
    for (int id = ids::kWindowStateNormal; id <= ids::kWindowStateMaximized; ++id) {
        SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(LoadText(id).c_str()));
    }
    SendMessageW(combo, CB_SETCURSEL, selected == CB_ERR ? 0 : static_cast<WPARAM>(selected), 0);
}

void frmConfig::ApplyFont() {
    const NONCLIENTMETRICSW metrics = main_parts::MetricsForDpi(static_cast<UINT>(dpi_));
    UniqueFont font(CreateFontIndirectW(&metrics.lfMessageFont));
    const HFONT chosen = font ? font.get() : static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    EnumChildWindows(
        Handle(),
        [](HWND child, LPARAM value) -> BOOL {
            SendMessageW(child, WM_SETFONT, static_cast<WPARAM>(value), FALSE);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(chosen));
    // The old font goes only now that no control uses it.
    font_ = std::move(font);
}

void frmConfig::ChangeLangConfig() {
    SetWindowTextW(
        Handle(), (Widen(mdlMain::AppTitle()) + L" - " + LoadText(ids::kToolbarConfigure)).c_str());
    for (int index = 0; index < kPages; ++index) {
        const std::wstring text = LoadText(ids::kTabBasicConfigure + index);
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = const_cast<wchar_t*>(text.c_str());
        SendMessageW(tabStrip_, TCM_SETITEMW, static_cast<WPARAM>(index),
                     reinterpret_cast<LPARAM>(&item));
    }
    // Access keys: the window's own controls first, then each page with the
    // window's letters kept out, so that no key stands for two controls.
    // Labels and buttons choose before check boxes: a page has more
    // switches than letters, and a field without a key is harder to reach.
    const auto isSwitch = [](HWND control) {
        const auto type = GetWindowLongPtrW(control, GWL_STYLE) & BS_TYPEMASK;
        wchar_t windowClass[16] = {};
        GetClassNameW(control, windowClass, 16);
        return lstrcmpiW(windowClass, L"Button") == 0 &&
               (type == BS_AUTOCHECKBOX || type == BS_AUTORADIOBUTTON);
    };
    std::string windowLetters;
    for (int group = kWindowGroup; group < kPages; ++group) {
        std::vector<const Captioned*> members;
        std::vector<std::string> english;
        for (const bool switches : {false, true}) {
            for (const Captioned& entry : captions_) {
                if (entry.group != group || isSwitch(entry.control) != switches) continue;
                members.push_back(&entry);
                english.push_back(entry.mnemonic ? Narrow(LoadEnglishText(entry.captionId)) : "");
            }
        }
        std::string taken = windowLetters;
        const std::vector<char> letters = ChooseMnemonics(english, taken);
        if (group == kWindowGroup) windowLetters = taken;
        for (std::size_t i = 0; i < members.size(); ++i) {
            SetWindowTextW(members[i]->control,
                           WithMnemonic(LoadText(members[i]->captionId), letters[i]).c_str());
        }
    }
    for (const int index : kWindowStateLists) FillWindowStateList(cboCombo(index));
    Layout();
}

int frmConfig::TextWidth(HWND control) const {
    const int length = GetWindowTextLengthW(control);
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(control, text.data(), length + 1)));
    const UniqueScreenDC screen(GetDC(nullptr));
    if (!screen) return 0;
    const HGDIOBJ old = SelectObject(screen.get(), font_.get());
    RECT rect{};
    DrawTextW(screen.get(), text.c_str(), static_cast<int>(text.size()), &rect,
              DT_CALCRECT | DT_SINGLELINE);
    SelectObject(screen.get(), old);
    return WidthOf(rect);
}

void frmConfig::Layout() {
    if (tabStrip_ == nullptr || font_.get() == nullptr) return;
    const Metrics m = Measure();
    RECT client{};
    GetClientRect(Handle(), &client);
    const int margin = Scale(8);
    const int width = WidthOf(client);

    // Selector row: label, box, New, Delete.
    int x = margin;
    const int labelWidth = TextWidth(lblSelector_);
    Place(lblSelector_, x, margin + (m.row - m.text) / 2, labelWidth, m.text);
    x += labelWidth + m.gap * 2;
    const int deleteX = width - margin - m.buttonWidth;
    const int newX = deleteX - m.gap - m.buttonWidth;
    const int buttonY = margin + (m.row - m.button) / 2;
    Place(cboCombo(0), x, margin, newX - m.gap * 2 - x, m.row + Scale(200));
    Place(cmdCommand(kNewConfigure), newX, buttonY, m.buttonWidth, m.button);
    Place(cmdCommand(kDeleteConfigure), deleteX, buttonY, m.buttonWidth, m.button);

    // OK, Cancel, Apply at the bottom right.
    const int bottom = HeightOf(client) - margin - m.button;
    int buttonX = width - margin - 3 * m.buttonWidth - 2 * m.gap;
    for (const int index : {kOk, kCancel, kApply}) {
        Place(cmdCommand(index), buttonX, bottom, m.buttonWidth, m.button);
        buttonX += m.buttonWidth + m.gap;
    }

    // The tab strip between them, the pages in its display area.
    const int tabTop = margin + m.row + Scale(8);
    RECT tab{margin, tabTop, width - margin, bottom - Scale(8)};
    Place(tabStrip_, tab.left, tab.top, WidthOf(tab), HeightOf(tab));
    RECT display{0, 0, WidthOf(tab), HeightOf(tab)};
    SendMessageW(tabStrip_, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&display));
    OffsetRect(&display, tab.left, tab.top);
    for (const HWND page : fraConfig_) {
        Place(page, display.left, display.top, WidthOf(display), HeightOf(display));
    }
    const int pageWidth = WidthOf(display);
    const int pageHeight = HeightOf(display);
    LayoutBasicPage(m, pageWidth, pageHeight);
    LayoutCompilePage(m, pageWidth, pageHeight);
    LayoutScriptPage(m, pageWidth, pageHeight);
    LayoutFrontendPage(m, pageWidth, pageHeight);
    LayoutFilterPage(m, pageWidth, pageHeight);
    InvalidateRect(Handle(), nullptr, TRUE);
}

}  // namespace zorvi
