// The dialogs in this process: the about window (labels, sizes, keys,
// language, closing), F1 and Ctrl+F1 of the main window, and the file dialog
// wrapper's defaults and real dialogs answered from inside their modal loop.
#include <gtest/gtest.h>

#include <commdlg.h>

#include <optional>

#include "core/wide_win.h"
#include "res/build_info.h"
#include "run/clsExecute.h"
#include "support/wait.h"
#include "ui/dialogs/about_text.h"
#include "ui/dialogs/clsCommonDlg.h"
#include "ui/dialogs/frmAbout.h"
#include "ui/main/frmZorvi.h"
#include "ui/main/key_move.h"
#include "ui/main/mdlView.h"
#include "ui/text_font_win.h"
#include "ui/window_helpers.h"

namespace zorvi {
namespace {

using namespace std::string_literals;
using testing::TypeFileName;
using testing::Visible;
using testing::WindowText;

// The state the windows read, with the target piece.mml of a fresh folder.
struct Scope : testing::Session {
    Scope() {
        mdlMain::SetTargetFile(folder / "piece.mml");
        mdlMain::ClearShuttingDownForTesting();
    }
    ~Scope() { mdlMain::ClearShuttingDownForTesting(); }
};

TEST(AboutWindow, LabelsSizesKeysLanguageAndClosing) {
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
        testing::SendKey(about.TextBox(), key, {VK_CONTROL, key == VK_DOWN ? VK_SHIFT : VK_CONTROL});
        EXPECT_NEAR(GetWindowBoxTwips(about.Handle())->left - before->left, moved, 15) << key;
        EXPECT_EQ(GetWindowBoxTwips(about.Handle())->height, before->height) << key;
    }
    // Relabelled in either language.
    for (const bool japanese : {true, false}) {
        SCOPED_TRACE(japanese);
        mdlMain::SetLanguageOffset(japanese ? 1000 : 0);
        about.ChangeLangAbout();
        // The shortcut text, first and second half, in one language.
        const std::wstring keys = WindowText(about.TextBox());
        EXPECT_EQ(WindowText(about.Command(1)), japanese ? L"ショートカットキー" : L"Shortcut Keys");
        EXPECT_EQ(keys.substr(0, 10), japanese ? L"ショートカットキー " : L"Shortcut K");
        EXPECT_NE(keys.find(japanese ? L"(全ウィンドウ共通)" : L"(All Windows)"), keys.npos);
        EXPECT_EQ(keys.find(japanese ? L"(All Windows)" : L"(全ウィンドウ共通)"), keys.npos);
        // Whatever the language, the keys are drawn in a font that has them.
        const auto font = reinterpret_cast<HFONT>(SendMessageW(about.TextBox(), WM_GETFONT, 0, 0));
        EXPECT_TRUE(FontHasGlyphs(font, keys));
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
            {"not a help file", "<html>", 0, false}, {"Ctrl+F1", chm, kCtrlBit, false},
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

TEST(CommonDlg, ChosenCancelledOrTooLong) {
    const clsCommonDlg defaults;
    EXPECT_EQ(defaults.Filter(), "All Files (*.*)\0*.*\0"s);
    EXPECT_EQ(defaults.DialogTitle, "Open File");
    EXPECT_EQ(defaults.MaxFileSize, 255);
    testing::TempFolder folder;
    folder.Write("a.mml", "");
    folder.Write("b.mml", "");
    const auto cancel = [](HWND dialog) { PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0); };
    // Longer than any answer, and without a folder, which would be where the dialog opens.
    const std::string proposed = "proposed" + std::string(150, '-') + ".mml";
    const struct {
        const char* name;
        bool cancelError;
        std::int32_t maxFileSize;
        DWORD flags;
        std::function<void(HWND)> answer;
        std::string fileName;
        bool cancelled;
    } cases[] = {
        {"cancel reported", true, 255, 0, cancel, "", true},
        {"cancel silent: the proposal stays", false, 255, 0, cancel, proposed, false},
        // The longer proposal must not trail after it.
        {"chosen", true, 255, 0, TypeFileName("a.mml"), folder / "a.mml", false},
        {"two chosen: the folder and the names", true, 255, OFN_ALLOWMULTISELECT | OFN_EXPLORER,
         TypeFileName("\"a.mml\" \"b.mml\""), folder.Path() + "\0a.mml\0b.mml"s, false},
        // The chosen path does not fit: it is not returned.
        {"too long for the buffer", true, 8, 0, TypeFileName("a.mml"), "", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        clsCommonDlg dialog;
        dialog.SetFilter("MML File (*.mml)|*.mml");
        dialog.InitDir = folder.Path();
        dialog.FileName = proposed;
        dialog.CancelError = c.cancelError;
        dialog.MaxFileSize = c.maxFileSize;
        dialog.Flags = c.flags;
        EXPECT_TRUE(testing::AnswerModal(L"#32770", [&] { dialog.ShowOpen(); }, c.answer));
        EXPECT_EQ(dialog.CancelButton, c.cancelled);
        EXPECT_EQ(dialog.ErrNumber, 0u);
        EXPECT_EQ(dialog.FileName, c.fileName);
    }
}

}  // namespace
}  // namespace zorvi
