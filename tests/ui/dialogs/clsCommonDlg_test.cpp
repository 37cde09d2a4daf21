// The file dialog wrapper: its defaults, and real dialogs answered from inside
// their modal loop.
#include <gtest/gtest.h>

#include <windows.h>

#include <commdlg.h>

#include "ui/dialogs/clsCommonDlg.h"
#include "ui/window_helpers.h"

namespace zorvi {
namespace {

using namespace std::string_literals;

using testing::TypeFileName;

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
