// What the files of the configuration window share: its settings file and
// the small reads and writes of control values.
#pragma once

#include <windows.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "core/mdlMain.h"
#include "core/wide_win.h"

namespace zorvi::config_parts {

// Moves a control; a size that a narrow window makes negative is none.
inline void Place(HWND control, int x, int y, int width, int height) {
    MoveWindow(control, x, y, std::max(width, 0), std::max(height, 0), TRUE);
}

inline std::wstring WideText(HWND control) {
    const int length = GetWindowTextLengthW(control);
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(control, text.data(), length + 1)));
    return text;
}
// Settings are ANSI: the text in the system's code page.
inline std::string Text(HWND control) { return Narrow(WideText(control)); }
inline void SetText(HWND control, std::string_view text) {
    SetWindowTextW(control, Widen(text).c_str());
}

inline bool Checked(HWND control) {
    return SendMessageW(control, BM_GETCHECK, 0, 0) == BST_CHECKED;
}
inline void SetChecked(HWND control, bool on) {
    SendMessageW(control, BM_SETCHECK, on ? BST_CHECKED : BST_UNCHECKED, 0);
}

inline int ComboIndex(HWND combo) {
    return static_cast<int>(SendMessageW(combo, CB_GETCURSEL, 0, 0));
}
inline void SetComboIndex(HWND combo, int index) {
    SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
}

}  // namespace zorvi::config_parts
