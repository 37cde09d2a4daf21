// What the window tests share: the settings and boxes of a session, keys sent
// with modifiers held, dropped files, menus read back, serving this thread's
// queue, and answering a menu or dialog from inside its modal loop.
#pragma once

#include <windows.h>

#include <shlobj.h>

#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "core/mdlMain.h"
#include "core/messages_win.h"
#include "files/path_win.h"
#include "support/temp_folder.h"

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

// Files as the shell hands them to a window they are dropped on (ANSI names).
inline void Drop(HWND window, const std::vector<std::string>& files) {
    std::string names;
    for (const auto& file : files) names += file + '\0';
    const HGLOBAL memory = GlobalAlloc(GHND, sizeof(DROPFILES) + names.size() + 1);
    auto* drop = static_cast<DROPFILES*>(GlobalLock(memory));
    drop->pFiles = sizeof(DROPFILES);
    names.copy(reinterpret_cast<char*>(drop + 1), names.size());
    GlobalUnlock(memory);
    SendMessageW(window, WM_DROPFILES, reinterpret_cast<WPARAM>(memory), 0);
}

// The captions of a menu's entries, in order.
inline std::vector<std::wstring> MenuTexts(HMENU menu) {
    std::vector<std::wstring> texts;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        wchar_t text[512] = {};
        GetMenuStringW(menu, static_cast<UINT>(i), text, 512, MF_BYPOSITION);
        texts.push_back(text);
    }
    return texts;
}

// The position of the first entry whose caption holds part; -1 when none.
inline int FindEntry(HMENU menu, const std::wstring& part) {
    const auto texts = MenuTexts(menu);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (texts[i].find(part) != std::wstring::npos) return static_cast<int>(i);
    }
    return -1;
}

inline std::string Bytes(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

// A configuration file in the program's own cfg folder, where the windows look for them.
inline std::string CfgPath(const std::string& name, const char* extension = ".ini") {
    return mdlFile::GetAppFolder() + "cfg\\" + name + extension;
}

// What the windows read, in a fresh folder whose Zorvi.ini holds the settings
// given; message boxes are recorded and answered with `answer`; configurations
// made through Configuration are removed afterwards. Put back afterwards.
struct Session {
    explicit Session(const std::string& settings = {}) {
        folder.Write("Zorvi.ini", settings);
        mdlMain::SetMainSettingsPath(folder / "Zorvi.ini");
        mdlMain::SetTargetFile({});
        mdlMain::SetInteractiveMode(true);
        mdlMain::SetLanguageOffset(0);
        CreateDirectoryA(CfgPath("", "").c_str(), nullptr);
    }
    ~Session() {
        SetMessageBoxFunction(std::move(previous));
        mdlMain::SetTargetFile({});
        mdlMain::SetLanguageOffset(0);
        for (const auto& name : configurations_) DeleteFileA(CfgPath(name).c_str());
        // The backups a save left, found at once rather than tried name by name.
        WIN32_FIND_DATAA found;
        const HANDLE find = FindFirstFileA(CfgPath(Tag(), "*.txt").c_str(), &found);
        for (BOOL more = find != INVALID_HANDLE_VALUE; more; more = FindNextFileA(find, &found)) {
            DeleteFileA(CfgPath(found.cFileName, "").c_str());
        }
        if (find != INVALID_HANDLE_VALUE) FindClose(find);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // A configuration name of this process; its files are removed afterwards.
    std::string Name(const std::string& base) {
        configurations_.push_back(Tag() + base);
        return configurations_.back();
    }
    std::string Configuration(const std::string& base,
                              const std::string& text = "[Configure]\r\n") {
        const std::string name = Name(base);
        std::ofstream(CfgPath(name), std::ios::binary) << text;
        return name;
    }
    std::string MainFile() const { return folder / "Zorvi.ini"; }
    std::string Setting(const char* section, const std::string& key,
                        const std::string& file = {}) const {
        char value[300] = {};
        GetPrivateProfileStringA(section, key.c_str(), "", value, 300,
                                 (file.empty() ? MainFile() : file).c_str());
        return value;
    }

    TempFolder folder;
    std::vector<std::wstring> boxes;
    int answer = IDOK;
    MessageBoxFunction previous = SetMessageBoxFunction(
        [this](HWND, const std::wstring& text, const std::wstring&, UINT) {
            return boxes.push_back(text), answer;
        });

private:
    static std::string Tag() {
        return std::string("z").append(std::to_string(GetCurrentProcessId()));
    }
    std::vector<std::string> configurations_;
};

inline bool Visible(HWND window) { return IsWindowVisible(window) != FALSE; }

// An answer to a file dialog: the name typed into its name box (a combo box
// in the explorer style), then OK.
inline std::function<void(HWND)> TypeFileName(std::string name) {
    return [name](HWND dialog) {
        const HWND combo = GetDlgItem(dialog, 0x47C);
        SetWindowTextA(combo ? combo : GetDlgItem(dialog, 0x480), name.c_str());
        PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    };
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
