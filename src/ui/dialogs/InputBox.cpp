// The input box: a dialog built in memory (no resource needed), with the
// prompt, one text box, OK and Cancel.
#include "ui/dialogs/InputBox.h"

#include <vector>

#include "core/mdlMain.h"
#include "core/strings_win.h"
#include "core/wide_win.h"
#include "files/path_text.h"
#include "res/string_ids.h"

namespace zorvi {
namespace {

constexpr int kPromptId = 100;
constexpr int kTextId = 101;
constexpr WORD kButtonClass = 0x0080;
constexpr WORD kEditClass = 0x0081;
constexpr WORD kStaticClass = 0x0082;

// A DLGTEMPLATE and its items, in the words the dialog manager reads; items
// start on DWORD boundaries.
class DialogTemplate {
public:
    DialogTemplate(DWORD style, short width, short height, WORD items) {
        Dword(style);
        Dword(0);
        words_.push_back(items);
        for (const short value : {short{0}, short{0}, width, height}) Short(value);
        words_.push_back(0);  // no menu
        words_.push_back(0);  // the standard dialog class
        Text(L"");            // the caption is set when the box opens
        words_.push_back(8);  // point size of the shell font
        Text(L"MS Shell Dlg");
    }
    void Item(WORD windowClass, DWORD style, short x, short y, short width, short height, WORD id,
              const wchar_t* text) {
        if (words_.size() % 2 != 0) words_.push_back(0);
        Dword(style | WS_CHILD | WS_VISIBLE);
        Dword(0);
        for (const short value : {x, y, width, height}) Short(value);
        words_.push_back(id);
        words_.push_back(0xFFFF);
        words_.push_back(windowClass);
        Text(text);
        words_.push_back(0);  // no creation data
    }
    const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(words_.data()); }

private:
    void Dword(DWORD value) {
        words_.push_back(LOWORD(value));
        words_.push_back(HIWORD(value));
    }
    void Short(short value) { words_.push_back(static_cast<WORD>(value)); }
    void Text(const wchar_t* text) {
        for (; *text != L'\0'; ++text) words_.push_back(static_cast<WORD>(*text));
        words_.push_back(0);
    }

    std::vector<WORD> words_;
};

struct BoxState {
    std::wstring prompt;
    std::wstring answer;
};

INT_PTR CALLBACK BoxProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    try {
        switch (message) {
        case WM_INITDIALOG: {
            SetWindowLongPtrW(box, DWLP_USER, lParam);
            const auto* state = reinterpret_cast<const BoxState*>(lParam);
            SetWindowTextW(box, Widen(mdlMain::AppTitle()).c_str());
            SetDlgItemTextW(box, kPromptId, state->prompt.c_str());
            SetDlgItemTextW(box, IDOK, LoadText(ids::kButtonOk).c_str());
            SetDlgItemTextW(box, IDCANCEL, LoadText(ids::kConfigCancel).c_str());
            // A name must fit the buffers every settings value goes through.
            SendDlgItemMessageW(box, kTextId, EM_LIMITTEXT, mdlFile::kPathBuffer - 1, 0);
            return TRUE;
        }
        case WM_COMMAND:
            if (LOWORD(wParam) == IDOK) {
                auto* state = reinterpret_cast<BoxState*>(GetWindowLongPtrW(box, DWLP_USER));
                const HWND text = GetDlgItem(box, kTextId);
                std::wstring typed(static_cast<std::size_t>(GetWindowTextLengthW(text)) + 1, L'\0');
                typed.resize(static_cast<std::size_t>(
                    GetWindowTextW(text, typed.data(), static_cast<int>(typed.size()))));
                state->answer = std::move(typed);
                EndDialog(box, IDOK);
                return TRUE;
            }
            if (LOWORD(wParam) == IDCANCEL) {
                EndDialog(box, IDCANCEL);
                return TRUE;
            }
            break;
        default: break;
        }
    } catch (...) {
        EndDialog(box, IDCANCEL);
    }
    return FALSE;
}

InputBoxFunction& CurrentFunction() {
    static InputBoxFunction function;
    return function;
}

}  // namespace

InputBoxFunction SetInputBoxFunction(InputBoxFunction function) {
    InputBoxFunction previous = std::move(CurrentFunction());
    CurrentFunction() = std::move(function);
    return previous;
}

std::optional<std::wstring> InputBox(HWND owner, const std::wstring& prompt) {
    if (const InputBoxFunction& function = CurrentFunction()) return function(owner, prompt);
    DialogTemplate dialog(
        WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_SHELLFONT | DS_CENTER, 240, 62, 4);
    dialog.Item(kStaticClass, SS_LEFT | SS_NOPREFIX, 7, 7, 226, 18, kPromptId, L"");
    dialog.Item(kEditClass, ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP | WS_GROUP, 7, 24, 226, 12,
                kTextId, L"");
    dialog.Item(kButtonClass, BS_DEFPUSHBUTTON | WS_TABSTOP | WS_GROUP, 129, 42, 50, 14, IDOK,
                L"OK");
    dialog.Item(kButtonClass, BS_PUSHBUTTON | WS_TABSTOP, 183, 42, 50, 14, IDCANCEL, L"Cancel");
    BoxState state{prompt, {}};
    const INT_PTR pressed = DialogBoxIndirectParamW(GetModuleHandleW(nullptr), dialog.Get(), owner,
                                                    BoxProc, reinterpret_cast<LPARAM>(&state));
    if (pressed != IDOK) return std::nullopt;
    return state.answer;
}

}  // namespace zorvi
