// The about window in this process (labels, sizes, keys, closing), F1 and
// Ctrl+F1 of the main window, the language switch of the about and result
// windows, and the code page of the log window.
#include <gtest/gtest.h>

#include <optional>

#include "core/wide_win.h"
#include "res/build_info.h"
#include "run/clsExecute.h"
#include "settings/ini_win.h"
#include "support/wait.h"
#include "ui/dialogs/about_text.h"
#include "ui/dialogs/frmAbout.h"
#include "ui/main/frmZorvi.h"
#include "ui/main/key_move.h"
#include "ui/main/mdlView.h"
#include "ui/result/frmResult.h"
#include "ui/text_font_win.h"
#include "ui/window_helpers.h"

namespace zorvi {
namespace {

using testing::WindowText;

// The state the windows read, with the target piece.mml of a fresh folder.
struct Scope : testing::Session {
    Scope() {
        mdlMain::SetTargetFile(folder / "piece.mml");
        mdlMain::ClearShuttingDownForTesting();
    }
    ~Scope() { mdlMain::ClearShuttingDownForTesting(); }
};

bool Visible(HWND window) { return IsWindowVisible(window) != FALSE; }
HFONT FontOf(HWND window) {
    return reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0));
}

TEST(AboutWindow, LabelsSizesKeysAndClosing) {
    Scope scope;
    frmAbout& about = AboutWindow();
    about.ShowAbout();
    EXPECT_EQ(WindowText(about.Handle()), L"Zorvi - About");
    EXPECT_EQ(WindowText(about.VersionLabel()), Widen(VersionLabel(ThisVersion())));
    EXPECT_EQ(WindowText(about.BuildLabel()), Widen(std::string("Build ") + ZORVI_BUILD_DATE));
    EXPECT_EQ(std::string(ZORVI_BUILD_DATE).find_first_not_of("0123456789"), std::string::npos);
    // No address given to the build: no link.
    EXPECT_EQ(Visible(about.LinkLabel()), std::string(ZORVI_HOMEPAGE) != "");

    if (about.Expanded()) about.ToggleExpanded();
    const auto press = [&about](int index) { SendMessageW(about.Command(index), BM_CLICK, 0, 0); };
    const auto escape = [](HWND control) { SendMessageW(control, WM_KEYDOWN, VK_ESCAPE, 0); };
    const int kExpanded = kAboutExpandedHeight, kCollapsed = kAboutCollapsedHeight;
    const struct {
        const char* name;
        std::function<void()> act;
        bool visible;
        int height;
    } steps[] = {
        {"expand", [&] { press(1); }, true, kExpanded},
        {"no other size",
         [&] { SetWindowPos(about.Handle(), nullptr, 0, 0, 600, 90, SWP_NOMOVE | SWP_NOZORDER); },
         true, kExpanded},
        {"close box", [&] { SendMessageW(about.Handle(), WM_CLOSE, 0, 0); }, false, kExpanded},
        {"shown again, still expanded", [&] { about.ShowAbout(); }, true, kExpanded},
        {"Esc in the text box", [&] { escape(about.TextBox()); }, false, kExpanded},
        {"shown, collapsed", [&] { about.ShowAbout(), press(1); }, true, kCollapsed},
        {"Esc on a button", [&] { escape(about.Command(1)); }, false, kCollapsed},
        {"expanded twice", [&] { about.ShowAbout(), press(1), press(1); }, true, kCollapsed},
        {"button 0", [&] { press(0); }, false, kCollapsed},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.name);
        step.act();
        ASSERT_NE(about.Handle(), nullptr);
        EXPECT_EQ(Visible(about.Handle()), step.visible);
        EXPECT_EQ(GetWindowBoxTwips(about.Handle())->height, step.height);
        EXPECT_EQ(GetWindowBoxTwips(about.Handle())->width, kAboutWidth);
        EXPECT_EQ(Visible(about.TextBox()), step.visible && step.height == kExpanded);
    }

    // Ctrl+Right moves the window; Ctrl+Shift+Down, a resize elsewhere, does nothing here.
    about.ShowAbout();
    for (const auto& [key, moved] : {std::pair{VK_RIGHT, 512}, std::pair{VK_DOWN, 0}}) {
        const auto before = GetWindowBoxTwips(about.Handle());
        testing::SendKey(about.TextBox(), key,
                         key == VK_DOWN ? std::vector{VK_CONTROL, VK_SHIFT} : std::vector{VK_CONTROL});
        EXPECT_NEAR(GetWindowBoxTwips(about.Handle())->left - before->left, moved, 15) << key;
        EXPECT_EQ(GetWindowBoxTwips(about.Handle())->height, before->height) << key;
    }
    // Shutting down, closing destroys it.
    mdlMain::SetShuttingDown();
    ReleaseAboutWindow();
    EXPECT_EQ(about.Handle(), nullptr);
}

TEST(AboutWindow, F1OpensTheHelpFileWhenThereIsOneCtrlF1AlwaysTheAboutWindow) {
    Scope scope;
    // A title of its own: the help file beside this test program is ours alone.
    mdlMain::SetAppTitle("ZorviHelpTest");
    const std::string help = mdlFile::GetAppFolder() + "ZorviHelpTest.CHM";
    const std::string chm("ITSF\3\0\0\0", 8);
    {
        // Its about command opens the about window, as at start-up.
        frmZorvi main;
        ASSERT_TRUE(main.Create(nullptr));
        main.SetAboutCommand([owner = main.Handle()](int) { AboutWindow(owner).ShowAbout(); });
        frmAbout& about = AboutWindow(main.Handle());
        const struct {
            const char* name;
            std::optional<std::string> file;  // nullopt: no help file
            int shift;
            bool opened;
        } cases[] = {
            {"no help file", std::nullopt, 0, false}, {"a help file", chm, 0, true},
            {"an empty file", "", 0, false},          {"a page under its name", "<html>", 0, false},
            {"Ctrl+F1", chm, kCtrlBit, false},
        };
        for (const auto& c : cases) {
            SCOPED_TRACE(c.name);
            ShowWindow(about.Handle(), SW_HIDE);
            DeleteFileA(help.c_str());
            if (c.file) std::ofstream(help, std::ios::binary) << *c.file;
            const std::size_t launches = LaunchedPrograms().size();
            main.Form_KeyDown(VK_F1, c.shift);
            const bool opened = LaunchedPrograms().size() > launches;
            EXPECT_EQ(opened, c.opened);
            if (opened) {
                EXPECT_EQ(LaunchedPrograms().back().Path, help);
                EndLaunchedProgram(LaunchedPrograms().size() - 1);
            }
            EXPECT_EQ(Visible(about.Handle()), !c.opened);
        }
    }
    DeleteFileA(help.c_str());
    mdlMain::SetAppTitle("Zorvi");
}

TEST(Language, EveryOpenWindowRelabelsItself) {
    Scope scope;
    frmAbout& about = AboutWindow();
    about.ShowAbout();
    frmResult& result = ResultWindow();
    result.ShowResult(0);
    // Whether the shortcut text holds the second half in English and in Japanese.
    const auto halves = [&about] {
        const std::wstring keys = WindowText(about.TextBox());
        const auto has = [&keys](const wchar_t* part) { return keys.find(part) != keys.npos; };
        return keys.substr(0, 10) + (has(L"(All Windows)") ? L"|en" : L"|") +
               (has(L"(全ウィンドウ共通)") ? L"|ja" : L"|");
    };
    const struct {
        std::function<void()> relabel;
        std::function<std::wstring()> read;
        std::wstring english, japanese;
    } rows[] = {
        {[&] { about.ChangeLangAbout(); }, [&] { return WindowText(about.Command(1)); },
         L"Shortcut Keys", L"ショートカットキー"},
        {[&] { about.ChangeLangAbout(); }, halves, L"Shortcut K|en|", L"ショートカットキー ||ja"},
        {[&] { result.ChangeLangResult(); },
         [&] { return WindowText(result.Handle()).substr(0, 18); }, L"Zorvi - Log Window",
         L"Zorvi - ログウィンドウ - "},
    };
    for (const int offset : {1000, 0}) {
        mdlMain::SetLanguageOffset(offset);
        for (const auto& row : rows) {
            row.relabel();
            EXPECT_EQ(row.read(), offset == 0 ? row.english : row.japanese) << offset;
        }
        // Whatever the language, the keys are drawn in a font that has them.
        EXPECT_TRUE(FontHasGlyphs(FontOf(about.TextBox()), WindowText(about.TextBox())));
    }
    ShowWindow(about.Handle(), SW_HIDE);
    result.HideResult();
}

TEST(LogWindow, ReadsUtf8OrTheLogCodePageAndFallsBackToTheSystemOne) {
    // A line as the system reads it in a code page, for rows that depend on it.
    const auto page = [](UINT codePage, const std::string& line) {
        wchar_t text[64] = {};
        MultiByteToWideChar(codePage, 0, line.data(), static_cast<int>(line.size()), text, 64);
        return std::wstring(text) + L"\r\n";
    };
    const std::wstring cafe = page(CP_ACP, "caf\xE9");
    const struct {
        std::string log;
        std::optional<std::string> codePage;  // nullopt: no LogCodePage key
        std::wstring expected;
    } cases[] = {
        {"\xE3\x81\x82\r\n", std::nullopt, L"\x3042\r\n"},
        {"\xEF\xBB\xBF\xE3\x81\x82\n", "932", L"\x3042\r\n"},
        {"\x82\xA0\x82\xA2\r\n", "932", L"\x3042\x3044\r\n"},
        {"\xE3\x81\x82\n\x82\xA0\n", "932", page(932, "\xE3\x81\x82") + L"\x3042\r\n"},
        {"caf\xE9\r\n", std::nullopt, cafe}, {"caf\xE9\r\n", "0", cafe},
        {"caf\xE9\r\n", "-1", cafe},         {"caf\xE9\r\n", "99999", cafe},
        {"caf\xE9\r\n", "Shift-JIS", cafe},  {"caf\xE9\r\n", "1200", cafe},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.codePage.value_or("none") + ": " + c.log);
        Scope scope;
        scope.folder.Write("piece.log", c.log);
        if (c.codePage) {
            WriteIni("ResultWindow", "LogCodePage", *c.codePage, scope.folder / "Zorvi.ini");
        }
        frmResult& result = ResultWindow();
        result.ShowResult(0);
        const std::wstring shown = WindowText(result.TextBox());
        EXPECT_EQ(shown, c.expected);
        EXPECT_TRUE(FontHasGlyphs(FontOf(result.TextBox()), shown));
        result.HideResult();
    }
}

}  // namespace
}  // namespace zorvi
