// The result window in this process: what it shows, and how keys, the close
// box and the focus hide or close it and keep its place. These cases run
// before any main window closes: that sets the program's shutting-down flag
// for good, after which closing always destroys.
#include <gtest/gtest.h>

#include "support/wait.h"
#include "ui/main/mdlView.h"
#include "ui/result/frmResult.h"
#include "ui/text_font_win.h"
#include "ui/window_helpers.h"

namespace zorvi {
namespace {

using testing::WindowText;

// A result window shown for the target piece.mml of a fresh folder, whose
// log says "first", beside the main window (interactive) or in a command-line run.
struct Result : testing::Session {
    Result(bool interactive, const std::string& settings) : Session(settings) {
        EXPECT_FALSE(mdlMain::ShuttingDown()) << "a main window has closed before";
        mdlMain::SetTargetFile(folder / "piece.mml");
        mdlMain::SetInteractiveMode(interactive);
        folder.Write("piece.log", "first\n");
        EXPECT_TRUE(window.Create());
        window.ShowResult(0);
    }
    std::string State() const {
        if (window.Handle() == nullptr) return "closed";
        return IsWindowVisible(window.Handle()) ? "visible" : "hidden";
    }
    int Left() const { return GetWindowBoxTwips(window.Handle()).value_or(WindowBox{}).left; }

    frmResult window;
};

TEST(ResultWindow, ShowsTheLogOfTheTargetWithItsVerdict) {
    const std::wstring made = L"Zorvi:Generated 0 byte file.\r\n" + std::wstring(78, L'-') + L"\r\n";
    // "café" as the system reads it in its own code page.
    wchar_t cafe[8] = {};
    MultiByteToWideChar(CP_ACP, 0, "caf\xE9", 4, cafe, 8);
    const struct {
        const char* log;  // written over the log before; none: deleted
        bool interactive, locked;
        std::wstring text;
        const char* state = "visible";
        std::string codePage = "";  // LogCodePage
    } cases[] = {
        // A log that cannot be read leaves the text (of a first look without a
        // verdict); beside the main window the window stays hidden, while a
        // command-line run has nothing else to show.
        {"second\n", true, true, L"first\r\n", "hidden"},
        {"second\n", false, true, L"first\r\n"},
        {nullptr, true, false, L"Zorvi:Generated 0 byte file.(Log file not found.)\r\n"},
        // UTF-8, else the log's code page when the system has it, else the system's.
        {"\xE3\x81\x82\r\n", true, false, made + L"\x3042\r\n"},
        {"\x82\xA0\x82\xA2\r\n", true, false, made + L"\x3042\x3044\r\n", "visible", "932"},
        {"caf\xE9\r\n", true, false, made + cafe + L"\r\n"},
        {"caf\xE9\r\n", true, false, made + cafe + L"\r\n", "visible", "-1"},
        {"caf\xE9\r\n", true, false, made + cafe + L"\r\n", "visible", "99999"},
        {"caf\xE9\r\n", true, false, made + cafe + L"\r\n", "visible", "1200"},
    };
    // One window throughout: what a row shows is what the next one finds.
    Result result(true, "");
    const std::string log = result.folder / "piece.log";
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << "row " << &c - cases << ", code page " << c.codePage);
        mdlMain::SetInteractiveMode(c.interactive);
        result.folder.Write("Zorvi.ini", "[ResultWindow]\r\nLogCodePage=" + c.codePage + "\r\n");
        ShowWindow(result.window.Handle(), SW_HIDE);
        c.log ? result.folder.Write("piece.log", c.log) : void(DeleteFileA(log.c_str()));
        const HANDLE lock = CreateFileA(log.c_str(), GENERIC_READ, c.locked ? 0 : FILE_SHARE_READ,
                                        nullptr, OPEN_EXISTING, 0, nullptr);
        result.window.ShowResult(2);
        CloseHandle(lock);
        const std::wstring shown = WindowText(result.window.TextBox());
        EXPECT_EQ(shown, c.text);
        EXPECT_EQ(result.State(), c.state);
        EXPECT_EQ(WindowText(result.window.Handle()), L"Zorvi - Log Window - piece.log");
        // Whatever the text, it is drawn in a font that has it.
        const auto font = reinterpret_cast<HFONT>(
            SendMessageW(result.window.TextBox(), WM_GETFONT, 0, 0));
        EXPECT_TRUE(FontHasGlyphs(font, shown));
        // The caption and the verdict line follow the language; the log after it stays.
        mdlMain::SetLanguageOffset(1000);
        result.window.ChangeLangResult();
        EXPECT_EQ(WindowText(result.window.Handle()), L"Zorvi - ログウィンドウ - piece.log");
        EXPECT_EQ(WindowText(result.window.TextBox()) != shown, shown.starts_with(L"Zorvi:"));
        mdlMain::SetLanguageOffset(0);
        result.window.ChangeLangResult();
        EXPECT_EQ(WindowText(result.window.TextBox()), shown);
    }
}

TEST(ResultWindow, KeysCloseBoxAndFocusHideOrCloseItAndKeepItsPlace) {
    enum Action { kKey, kCloseBox, kFocusAway };
    const struct {
        const char* name;
        bool interactive;
        char autoClose;
        Action action;
        int key;
        std::vector<int> held;
        const char* state;
        bool saved;
        int moved = 0;  // twips to the right
        int show = SW_SHOWNORMAL;
    } cases[] = {
        {"Esc hides", true, '0', kKey, VK_ESCAPE, {}, "hidden", false},
        {"F12 ends a command-line run", false, '0', kKey, VK_F12, {}, "closed", true},
        {"Shift+Esc stays without AutoClose", true, '0', kKey, VK_ESCAPE, {VK_SHIFT}, "visible", false},
        {"Ctrl+Esc hides with AutoClose", true, '1', kKey, VK_ESCAPE, {VK_CONTROL}, "hidden", false},
        {"Shift+F5 stays", true, '1', kKey, VK_F5, {VK_SHIFT}, "visible", false},
        {"Alt+F4 is the system's", true, '0', kKey, VK_F4, {VK_MENU}, "hidden", true},
        {"Ctrl+Left moves", true, '0', kKey, VK_LEFT, {VK_CONTROL}, "visible", false, -512},
        {"close box", true, '0', kCloseBox, 0, {}, "hidden", true},
        {"close box, minimised", true, '0', kCloseBox, 0, {}, "hidden", false, 0, SW_MINIMIZE},
        {"close box, maximised, command line", false, '0', kCloseBox, 0, {}, "closed", false, 0,
         SW_MAXIMIZE},
        {"focus away", true, '0', kFocusAway, 0, {}, "visible", false},
        {"focus away with AutoClose", true, '1', kFocusAway, 0, {}, "hidden", false},
        {"focus away with AutoClose, command line", false, '1', kFocusAway, 0, {}, "closed", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Result result(c.interactive, "[ResultWindow]\r\nLeft=1440\r\nTop=720\r\nWidth=6000\r\n"
                                     "Height=3000\r\nAutoClose=" + std::string(1, c.autoClose));
        const auto placed = GetWindowBoxTwips(result.window.Handle()).value_or(WindowBox{});
        EXPECT_EQ(placed, (WindowBox{1440, 720, 6000, 3000}));
        MoveWindowOnScreen(result.window.Handle(), 2880, std::nullopt, std::nullopt, std::nullopt);
        const int left = result.Left();
        SetActiveWindow(result.window.Handle());
        EXPECT_EQ(GetFocus(), result.window.TextBox());
        ShowWindow(result.window.Handle(), c.show);
        const HWND other = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 600, 600, 50, 50, nullptr,
                                           nullptr, nullptr, nullptr);
        if (c.action == kFocusAway) ShowWindow(other, SW_SHOW), SetActiveWindow(other);
        if (c.action == kKey) testing::SendKey(result.window.TextBox(), c.key, c.held);
        if (c.action == kCloseBox) SendMessageW(result.window.Handle(), WM_CLOSE, 0, 0);
        testing::ServeQueue();
        EXPECT_EQ(result.State(), c.state);
        if (c.moved != 0) {
            EXPECT_NEAR(result.Left(), left + c.moved, 15);
        }
        EXPECT_EQ(result.Setting("ResultWindow", "Left"), std::to_string(c.saved ? left : 1440));
        DestroyWindow(other);
    }
}

}  // namespace
}  // namespace zorvi
