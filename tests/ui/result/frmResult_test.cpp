// The result window in this process: its text, its keys, its place and its
// closing, against real logs and settings files in a fresh folder.
#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>

#include "core/mdlMain.h"
#include "settings/ini_win.h"
#include "support/temp_folder.h"
#include "support/wait.h"
#include "ui/main/mdlView.h"
#include "ui/main/placement.h"
#include "ui/result/frmResult.h"

namespace zorvi {
namespace {

using testing::TempFolder;

const std::wstring kRule(78, L'-');

// The process-wide state a result window reads, pointed at a fresh folder
// with the target piece.mml; everything is put back afterwards.
class ResultScope {
public:
    explicit ResultScope(bool interactive)
        : savedSettings_(mdlMain::MainSettingsPath()),
          savedTarget_(mdlMain::TargetFile()),
          savedInteractive_(mdlMain::InteractiveMode()),
          savedOffset_(mdlMain::LanguageOffset()) {
        mdlMain::SetMainSettingsPath(folder / "Zorvi.ini");
        mdlMain::SetTargetFile(folder / "piece.mml");
        mdlMain::SetInteractiveMode(interactive);
        mdlMain::SetLanguageOffset(0);
    }
    ~ResultScope() {
        mdlMain::SetMainSettingsPath(savedSettings_);
        mdlMain::SetTargetFile(savedTarget_);
        mdlMain::SetInteractiveMode(savedInteractive_);
        mdlMain::SetLanguageOffset(savedOffset_);
    }
    ResultScope(const ResultScope&) = delete;
    ResultScope& operator=(const ResultScope&) = delete;

    void WriteLog(const std::string& bytes) const { folder.Write("piece.log", bytes); }
    std::string LogPath() const { return folder / "piece.log"; }
    std::string Settings() const { return folder.Read("Zorvi.ini"); }
    bool SettingsExist() const {
        return GetFileAttributesA((folder / "Zorvi.ini").c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    TempFolder folder;

private:
    std::string savedSettings_;
    std::string savedTarget_;
    bool savedInteractive_;
    int savedOffset_;
};

// Modifier keys held down for this thread while it lives.
class HeldKeys {
public:
    explicit HeldKeys(std::initializer_list<int> keys) {
        GetKeyboardState(saved_);
        BYTE state[256];
        CopyMemory(state, saved_, sizeof state);
        for (const int key : keys) state[key] |= 0x80;
        SetKeyboardState(state);
    }
    ~HeldKeys() { SetKeyboardState(saved_); }
    HeldKeys(const HeldKeys&) = delete;
    HeldKeys& operator=(const HeldKeys&) = delete;

private:
    BYTE saved_[256];
};

// Serves what has been posted to this thread so far.
void PumpMessages() {
    MSG message;
    for (int i = 0; i < 10000 && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); ++i) {
        if (message.message == WM_QUIT) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

std::string NumberedLines(int count) {
    std::string log;
    for (int i = 0; i < count; ++i) log += "line " + std::to_string(i) + "\n";
    return log;
}

enum class Shown { Visible, Hidden, Closed };

Shown StateOf(const frmResult& window) {
    if (window.Handle() == nullptr) return Shown::Closed;
    return IsWindowVisible(window.Handle()) ? Shown::Visible : Shown::Hidden;
}

const char* Name(Shown shown) {
    return shown == Shown::Visible ? "visible" : shown == Shown::Hidden ? "hidden" : "closed";
}

TEST(ResultWindow, ShowsTheLogOfTheTargetWithTheVerdict) {
    using namespace std::string_literals;
    const struct {
        const char* name;
        int mode;
        std::optional<std::string> log;  // nullopt: no log file
        int languageOffset;
        std::wstring expected;
    } cases[] = {
        {"no log, plain", 0, std::nullopt, 0, L"Zorvi:Log file not found.\r\n"},
        {"no log, compile error", 1, std::nullopt, 0,
         L"Zorvi:Detect compiling error.(Log file not found.)\r\n"},
        {"no log, Japanese", 2, std::nullopt, 1000,
         L"Zorvi:0 バイトのファイルが生成されました。(ログファイルが見つかりません。)\r\n"},
        {"empty log, plain", 0, "", 0, L""},
        {"empty log, zero bytes", 2, "", 0,
         L"Zorvi:Generated 0 byte file.\r\n" + kRule + L"\r\n"},
        {"line ends", 0, "a\r\nb\nc", 0, L"a\r\nb\r\nc\r\n"},
        {"compile error", 1, "piece.mml(12): unknown command\r\n", 0,
         L"Zorvi:Detect compiling error.\r\n" + kRule + L"\r\npiece.mml(12): unknown command\r\n"},
        {"NUL bytes end the text", 0, "ok\n\0\0\0garbage\n"s, 0, L"ok\r\n"},
        {"another mode: the last line", 5, "first\nlast\n", 0, L"last"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ResultScope scope(true);
        mdlMain::SetLanguageOffset(c.languageOffset);
        if (c.log) scope.WriteLog(*c.log);
        frmResult window;
        ASSERT_TRUE(window.Create());
        EXPECT_FALSE(IsWindowVisible(window.Handle()));
        window.ShowResult(c.mode);
        EXPECT_EQ(testing::WindowText(window.TextBox()), c.expected);
        EXPECT_TRUE(IsWindowVisible(window.Handle()));
    }
}

TEST(ResultWindow, ALongLogIsCutAtTheTextBoxLimit) {
    ResultScope scope(true);
    scope.WriteLog(NumberedLines(20000));
    frmResult window;
    ASSERT_TRUE(window.Create());
    for (const int mode : {0, 1}) {
        SCOPED_TRACE(mode);
        window.ShowResult(mode);
        const std::wstring text = testing::WindowText(window.TextBox());
        EXPECT_EQ(text.size(), 65535u);
        EXPECT_EQ(text.rfind(mode == 1 ? L"Zorvi:Detect compiling error.\r\n" : L"line 0\r\n", 0),
                  0u);
    }
    const std::wstring caption = testing::WindowText(window.Handle());
    EXPECT_NE(caption.find(L"piece.log"), std::wstring::npos) << caption.c_str();
}

// Holds the log unreadable while it lives: locked by an open without
// sharing, or deleted right after its existence test, before the read.
class UnreadableLog {
public:
    enum class Way { Locked, Vanishing };
    UnreadableLog(const std::string& path, Way way) {
        if (way == Way::Vanishing) {
            SetBeforeLogReadForTesting([](const std::string& log) { DeleteFileA(log.c_str()); });
            hooked_ = true;
            return;
        }
        lock_ = CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    ~UnreadableLog() { Release(); }
    UnreadableLog(const UnreadableLog&) = delete;
    UnreadableLog& operator=(const UnreadableLog&) = delete;

    bool Held() const { return hooked_ || lock_ != INVALID_HANDLE_VALUE; }
    void Release() {
        if (hooked_) SetBeforeLogReadForTesting(nullptr);
        hooked_ = false;
        if (lock_ != INVALID_HANDLE_VALUE) CloseHandle(lock_);
        lock_ = INVALID_HANDLE_VALUE;
    }

private:
    HANDLE lock_ = INVALID_HANDLE_VALUE;
    bool hooked_ = false;
};

TEST(ResultWindow, AnUnreadableLogKeepsThePreviousText) {
    using Way = UnreadableLog::Way;
    const struct {
        const char* name;
        Way way;
        bool interactive;
        bool shownBefore;           // "first" was shown, then the window hidden
        std::wstring textUnread;    // while the log cannot be read
        bool visibleUnread;
        std::wstring textAfter;     // once it is released
    } cases[] = {
        {"locked, beside the main window: stays hidden", Way::Locked, true, true, L"first\r\n",
         false, L"second\r\n"},
        {"locked, command-line run: shown all the same", Way::Locked, false, true, L"first\r\n",
         true, L"second\r\n"},
        {"locked, command-line run, first show: shown empty", Way::Locked, false, false, L"", true,
         L"second\r\n"},
        {"vanishing, beside the main window", Way::Vanishing, true, true, L"first\r\n", false,
         L"Zorvi:Log file not found.\r\n"},
        {"vanishing, command-line run", Way::Vanishing, false, false, L"", true,
         L"Zorvi:Log file not found.\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ResultScope scope(c.interactive);
        frmResult window;
        ASSERT_TRUE(window.Create());
        if (c.shownBefore) {
            scope.WriteLog("first\n");
            window.ShowResult(0);
            ASSERT_EQ(testing::WindowText(window.TextBox()), L"first\r\n");
            ShowWindow(window.Handle(), SW_HIDE);
        }
        scope.WriteLog("second\n");

        UnreadableLog unreadable(scope.LogPath(), c.way);
        ASSERT_TRUE(unreadable.Held());
        window.ShowResult(1);
        EXPECT_EQ(GetFileAttributesA(scope.LogPath().c_str()) == INVALID_FILE_ATTRIBUTES,
                  c.way == Way::Vanishing);
        EXPECT_EQ(testing::WindowText(window.TextBox()), c.textUnread);
        EXPECT_EQ(IsWindowVisible(window.Handle()) != FALSE, c.visibleUnread);
        unreadable.Release();

        window.ShowResult(0);
        EXPECT_EQ(testing::WindowText(window.TextBox()), c.textAfter);
        EXPECT_TRUE(IsWindowVisible(window.Handle()));
    }
}

TEST(ResultWindow, KeysHideOrCloseAsTheModeAndAutoCloseSay) {
    const struct {
        const char* name;
        bool interactive;
        const char* autoClose;
        std::initializer_list<int> held;
        UINT message;
        int key;
        Shown expected;
    } cases[] = {
        {"Esc hides", true, "0", {}, WM_KEYDOWN, VK_ESCAPE, Shown::Hidden},
        {"F1 hides", true, "0", {}, WM_KEYDOWN, VK_F1, Shown::Hidden},
        {"F12 hides", true, "0", {}, WM_KEYDOWN, VK_F12, Shown::Hidden},
        {"F10 comes as a system key and hides", true, "0", {}, WM_SYSKEYDOWN, VK_F10,
         Shown::Hidden},
        {"Esc in a command-line run closes", false, "0", {}, WM_KEYDOWN, VK_ESCAPE, Shown::Closed},
        {"F7 in a command-line run closes", false, "0", {}, WM_KEYDOWN, VK_F7, Shown::Closed},
        {"Shift+Esc without AutoClose stays", true, "0", {VK_SHIFT}, WM_KEYDOWN, VK_ESCAPE,
         Shown::Visible},
        {"Shift+Esc with AutoClose hides", true, "1", {VK_SHIFT}, WM_KEYDOWN, VK_ESCAPE,
         Shown::Hidden},
        {"Ctrl+Shift+Esc with AutoClose 2 hides", true, "2", {VK_CONTROL, VK_SHIFT}, WM_KEYDOWN,
         VK_ESCAPE, Shown::Hidden},
        {"Ctrl+Esc with AutoClose in a command-line run closes", false, "1", {VK_CONTROL},
         WM_KEYDOWN, VK_ESCAPE, Shown::Closed},
        {"Shift+F5 stays", true, "1", {VK_SHIFT}, WM_KEYDOWN, VK_F5, Shown::Visible},
        {"Alt+F5 stays", true, "1", {VK_MENU}, WM_SYSKEYDOWN, VK_F5, Shown::Visible},
        {"a letter stays", true, "1", {}, WM_KEYDOWN, 'A', Shown::Visible},
        {"Ctrl+Left moves and stays", false, "1", {VK_CONTROL}, WM_KEYDOWN, VK_LEFT,
         Shown::Visible},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ResultScope scope(c.interactive);
        WriteIni("ResultWindow", "AutoClose", c.autoClose, mdlMain::MainSettingsPath());
        scope.WriteLog("log\n");
        frmResult window;
        ASSERT_TRUE(window.Create());
        window.ShowResult(0);
        ASSERT_EQ(StateOf(window), Shown::Visible);
        {
            HeldKeys held(c.held);
            SendMessageW(window.TextBox(), c.message, static_cast<WPARAM>(c.key), 1);
        }
        EXPECT_STREQ(Name(StateOf(window)), Name(c.expected));
    }
}

TEST(ResultWindow, CtrlWithTheCursorKeysMovesAndResizesByTheirSteps) {
    const struct {
        const char* name;
        std::initializer_list<int> held;
        int key;
        WindowBox change;  // twips
    } cases[] = {
        {"Ctrl+Left", {VK_CONTROL}, VK_LEFT, {-512, 0, 0, 0}},
        {"Ctrl+Down", {VK_CONTROL}, VK_DOWN, {0, 512, 0, 0}},
        {"Ctrl+Alt+Right", {VK_CONTROL, VK_MENU}, VK_RIGHT, {32, 0, 0, 0}},
        {"Ctrl+Shift+Down", {VK_CONTROL, VK_SHIFT}, VK_DOWN, {0, 0, 0, 256}},
        {"Ctrl+Shift+Left", {VK_CONTROL, VK_SHIFT}, VK_LEFT, {0, 0, -256, 0}},
        {"Ctrl+Shift+Alt+Up", {VK_CONTROL, VK_SHIFT, VK_MENU}, VK_UP, {0, 0, 0, -16}},
    };
    const ScreenDpi dpi = GetScreenDpi();
    // One pixel either way: positions are whole pixels.
    const int pixelX = PixelsToTwips(1, dpi.x);
    const int pixelY = PixelsToTwips(1, dpi.y);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ResultScope scope(true);
        scope.WriteLog("log\n");
        frmResult window;
        ASSERT_TRUE(window.Create());
        window.ShowResult(0);
        MoveWindowOnScreen(window.Handle(), 3000, 3000, 7200, 3700);
        const auto before = GetWindowBoxTwips(window.Handle());
        ASSERT_TRUE(before.has_value());
        {
            HeldKeys held(c.held);
            SendMessageW(window.TextBox(), WM_KEYDOWN, static_cast<WPARAM>(c.key), 1);
        }
        const auto after = GetWindowBoxTwips(window.Handle());
        ASSERT_TRUE(after.has_value());
        EXPECT_NEAR(after->left, before->left + c.change.left, pixelX);
        EXPECT_NEAR(after->top, before->top + c.change.top, pixelY);
        EXPECT_NEAR(after->width, before->width + c.change.width, pixelX);
        EXPECT_NEAR(after->height, before->height + c.change.height, pixelY);
    }
}

TEST(ResultWindow, PlacesItselfFromTheSettings) {
    const struct {
        const char* name;
        const char* settings;
        WindowBox expected;
    } cases[] = {
        {"no settings file", nullptr, {0, 0, 7200, 3700}},
        {"stored place", "[ResultWindow]\r\nLeft=1440\r\nTop=720\r\nWidth=6000\r\nHeight=3000\r\n",
         {1440, 720, 6000, 3000}},
        {"above the screen comes down", "[ResultWindow]\r\nLeft=1440\r\nTop=-2000\r\n",
         {1440, 0, 7200, 3700}},
    };
    const ScreenDpi dpi = GetScreenDpi();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ResultScope scope(true);
        if (c.settings != nullptr) scope.folder.Write("Zorvi.ini", c.settings);
        frmResult window;
        ASSERT_TRUE(window.Create());
        const auto box = GetWindowBoxTwips(window.Handle());
        ASSERT_TRUE(box.has_value());
        EXPECT_NEAR(box->left, c.expected.left, PixelsToTwips(1, dpi.x));
        EXPECT_NEAR(box->top, c.expected.top, PixelsToTwips(1, dpi.y));
        EXPECT_NEAR(box->width, c.expected.width, PixelsToTwips(1, dpi.x));
        EXPECT_NEAR(box->height, c.expected.height, PixelsToTwips(1, dpi.y));
    }
}

TEST(ResultWindow, ClosingSavesThePlaceOnlyInTheNormalState) {
    const struct {
        const char* name;
        bool interactive;
        int showCommand;
        bool saved;
        Shown after;
    } cases[] = {
        {"normal, interactive", true, SW_SHOWNORMAL, true, Shown::Hidden},
        {"minimised, interactive", true, SW_MINIMIZE, false, Shown::Hidden},
        {"maximised, interactive", true, SW_MAXIMIZE, false, Shown::Hidden},
        {"normal, command line", false, SW_SHOWNORMAL, true, Shown::Closed},
        {"minimised, command line", false, SW_MINIMIZE, false, Shown::Closed},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ResultScope scope(c.interactive);
        scope.WriteLog("log\n");
        frmResult window;
        ASSERT_TRUE(window.Create());
        window.ShowResult(0);
        MoveWindowOnScreen(window.Handle(), 1440, 720, 6000, 3000);
        const auto box = GetWindowBoxTwips(window.Handle());
        ASSERT_TRUE(box.has_value());
        ShowWindow(window.Handle(), c.showCommand);
        SendMessageW(window.Handle(), WM_CLOSE, 0, 0);

        EXPECT_STREQ(Name(StateOf(window)), Name(c.after));
        if (c.saved) {
            char expected[200];
            std::snprintf(expected, sizeof expected,
                          "[ResultWindow]\r\nTop=%d\r\nLeft=%d\r\nWidth=%d\r\nHeight=%d\r\n",
                          box->top, box->left, box->width, box->height);
            EXPECT_EQ(scope.Settings(), expected);
        } else {
            EXPECT_FALSE(scope.SettingsExist()) << scope.Settings();
        }
    }
}

TEST(ResultWindow, AutoCloseHidesTheWindowWhenItLosesTheFocus) {
    const struct {
        const char* autoClose;
        bool interactive;
        Shown expected;
    } cases[] = {
        {"0", true, Shown::Visible},
        {"1", true, Shown::Hidden},
        {"-1", true, Shown::Hidden},
        {"0", false, Shown::Visible},
        // A command-line run has no way back to a hidden window.
        {"1", false, Shown::Closed},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.autoClose << (c.interactive ? ", interactive" : ", command line"));
        ResultScope scope(c.interactive);
        WriteIni("ResultWindow", "AutoClose", c.autoClose, mdlMain::MainSettingsPath());
        scope.WriteLog("log\n");
        frmResult window;
        ASSERT_TRUE(window.Create());
        window.ShowResult(0);
        SetActiveWindow(window.Handle());
        ASSERT_EQ(GetFocus(), window.TextBox());
        const HWND other = CreateWindowExW(0, L"STATIC", L"elsewhere", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                                           600, 600, 200, 100, nullptr, nullptr,
                                           GetModuleHandleW(nullptr), nullptr);
        ASSERT_NE(other, nullptr);
        SetActiveWindow(other);
        PumpMessages();
        EXPECT_STREQ(Name(StateOf(window)), Name(c.expected));
        DestroyWindow(other);
    }
}

// Every way the window goes ends a command-line run: the loop that serves it
// returns, and the window is gone, not hidden.
TEST(ResultWindow, ACommandLineRunLastsUntilTheWindowCloses) {
    HWND other = nullptr;  // the window that takes the focus
    const struct {
        const char* name;
        const char* autoClose;
        std::function<void(frmResult&)> leave;  // what the user does, served by the loop
    } cases[] = {
        {"Esc", "0",
         [](frmResult& window) { PostMessageW(window.TextBox(), WM_KEYDOWN, VK_ESCAPE, 1); }},
        {"close box", "0",
         [](frmResult& window) { PostMessageW(window.Handle(), WM_CLOSE, 0, 0); }},
        {"another window takes the focus, with AutoClose", "1",
         [&other](frmResult& window) {
             SetActiveWindow(window.Handle());
             other = CreateWindowExW(0, L"STATIC", L"elsewhere", WS_OVERLAPPEDWINDOW | WS_VISIBLE,
                                     600, 600, 200, 100, nullptr, nullptr,
                                     GetModuleHandleW(nullptr), nullptr);
             SetActiveWindow(other);
         }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ResultScope scope(false);
        WriteIni("ResultWindow", "AutoClose", c.autoClose, mdlMain::MainSettingsPath());
        scope.WriteLog("log\n");
        frmResult& window = ResultWindow();
        // Never shown: nothing to wait for.
        EXPECT_EQ(RunResultWindowUntilClosed(), 0);

        window.ShowResult(1);
        ASSERT_TRUE(IsWindowVisible(window.Handle()));
        // Should the user's action go astray, the window is closed all the same after a while.
        static HWND shown = nullptr;
        shown = window.Handle();
        const UINT_PTR timer =
            SetTimer(nullptr, 0, 10000, [](HWND, UINT, UINT_PTR, DWORD) { DestroyWindow(shown); });
        c.leave(window);
        const DWORD started = GetTickCount();
        EXPECT_EQ(RunResultWindowUntilClosed(), 0);
        EXPECT_LT(GetTickCount() - started, 5000u);
        KillTimer(nullptr, timer);
        EXPECT_EQ(window.Handle(), nullptr);
        EXPECT_FALSE(IsWindow(shown));
        if (other != nullptr) DestroyWindow(other);
        other = nullptr;
        // A command-line run's close saves the place like any other.
        EXPECT_NE(scope.Settings().find("\r\nTop="), std::string::npos) << scope.Settings();
    }
}

}  // namespace
}  // namespace zorvi
