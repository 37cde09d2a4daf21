// What the window tests share: keys sent with modifiers held, serving this
// thread's queue, and answering a menu or dialog from inside its modal loop.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace zorvi::testing {

// Sends a key with the modifiers held for this thread, where GetKeyState sees
// them; with Alt it comes as a system key, as from the keyboard.
inline void SendKey(HWND window, int key, const std::vector<int>& held = {}) {
    BYTE saved[256], state[256];
    GetKeyboardState(saved);
    CopyMemory(state, saved, sizeof state);
    bool alt = false;
    for (const int modifier : held) state[modifier] |= 0x80, alt = alt || modifier == VK_MENU;
    SetKeyboardState(state);
    SendMessageW(window, alt ? WM_SYSKEYDOWN : WM_KEYDOWN, static_cast<WPARAM>(key),
                 alt ? (1 | (KF_ALTDOWN << 16)) : 1);
    SetKeyboardState(saved);
}

// Serves what is already queued for this thread.
inline void ServeQueue() {
    MSG message;
    for (int i = 0; i < 10000 && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); ++i) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

// Calls `open`, which shows a menu ("#32768") or dialog ("#32770") of this
// thread, and answers it from inside its modal loop: a thread timer, which the
// loop serves, finds it and calls `answer` once; whatever is still open 10 s on
// is closed, so that no test hangs. True when it was answered.
inline bool AnswerModal(const wchar_t* windowClass, const std::function<void()>& open,
                        std::function<void(HWND)> answer) {
    static struct {
        std::wstring windowClass;
        std::function<void(HWND)> answer;
        ULONGLONG end;
        bool answered;
    } modal;
    modal = {windowClass, std::move(answer), GetTickCount64() + 10000, false};
    MSG quit;  // a closed window's farewell would end the modal loop at once
    PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);
    const UINT_PTR timer = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR, DWORD) {
        HWND shown = nullptr;
        const auto find = [](HWND window, LPARAM found) -> BOOL {
            wchar_t name[16] = {};
            GetClassNameW(window, name, 16);
            if (modal.windowClass != name || !IsWindowVisible(window)) return TRUE;
            return *reinterpret_cast<HWND*>(found) = window, FALSE;
        };
        EnumThreadWindows(GetCurrentThreadId(), find, reinterpret_cast<LPARAM>(&shown));
        if (shown == nullptr) return;
        if (!modal.answered) {
            modal.answered = true, modal.answer(shown);
        } else if (GetTickCount64() > modal.end) {
            modal.windowClass == L"#32768" ? void(EndMenu())
                                           : void(PostMessageW(shown, WM_COMMAND, IDCANCEL, 0));
        }
    });
    open();
    KillTimer(nullptr, timer);
    return modal.answered;
}

}  // namespace zorvi::testing
