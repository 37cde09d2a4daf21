// The file dialog wrapper: its properties, and real dialogs answered by a helper thread.
#include <gtest/gtest.h>

#include <windows.h>
#include <cderr.h>
#include <commdlg.h>
#include <dlgs.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "files/path_text.h"
#include "files/path_win.h"
#include "support/temp_folder.h"
#include "ui/dialogs/clsCommonDlg.h"

namespace zorvi {
namespace {

using namespace std::string_literals;
using testing::TempFolder;

TEST(CommonDlg, DefaultsAndFilterForms) {
    clsCommonDlg dialog;
    EXPECT_EQ(dialog.Filter(), "All Files (*.*)\0*.*\0"s);
    EXPECT_EQ(dialog.DialogTitle, "Open File");
    EXPECT_EQ(dialog.FileTitle, std::string(254, ' '));
    EXPECT_EQ(dialog.MaxFileSize, 255);
    EXPECT_EQ(dialog.DefaultExt, "\0"s);
    char current[MAX_PATH] = {};
    GetCurrentDirectoryA(MAX_PATH, current);
    EXPECT_EQ(dialog.InitDir, current);

    const struct {
        std::string set, stored;
    } filters[] = {
        {"A|*.a", "A\0*.a\0"s},
        {"A|*.a|", "A\0*.a\0"s},
        {"EXE file(*.exe)|*.exe|All files(*.*)|*.*",
         "EXE file(*.exe)\0*.exe\0All files(*.*)\0*.*\0"s},
        {"MML\0*.mml;*.mus"s, "MML\0*.mml;*.mus\0"s},
    };
    for (const auto& f : filters) {
        SCOPED_TRACE(f.set);
        dialog.SetFilter(f.set);
        EXPECT_EQ(dialog.Filter(), f.stored);
    }
}

TEST(CommonDlg, ErrorTextsFollowThePlatformCodes) {
    const struct {
        DWORD code;
        long number;
    } cases[] = {
        {FNERR_BUFFERTOOSMALL, 20476}, {FNERR_INVALIDFILENAME, 20477},
        {FNERR_SUBCLASSFAILURE, 20478}, {CFERR_NOFONTS, 24574},
        {PDERR_PRINTERNOTFOUND, 28660}, {PDERR_RETDEFFAILURE, 28668},
        {PDERR_SETUPFAILURE, 28670},    {CDERR_INITIALIZATION, 32765},
        {CDERR_FINDRESFAILURE, 32761},  {CDERR_MEMALLOCFAILURE, 32758},
        {CDERR_DIALOGFAILURE, 32768},   {0, 32767},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code);
        EXPECT_EQ(clsCommonDlg::ErrorNumberOf(c.code), c.number);
        clsCommonDlg dialog;
        dialog.ErrNumber = c.code;
        EXPECT_EQ(dialog.ErrDescription(), clsCommonDlg::ErrorText(c.number));
    }
    EXPECT_EQ(clsCommonDlg::ErrorText(20476), L"メンバ lpstrFile が指すバッファが小さすぎます。");
    EXPECT_EQ(clsCommonDlg::ErrorText(32768), L"関数がダイアログ ボックスをロードできません。");
    EXPECT_EQ(clsCommonDlg::ErrorText(28671), clsCommonDlg::ErrorText(28668));
    EXPECT_EQ(clsCommonDlg::ErrorText(32760), clsCommonDlg::ErrorText(32761));
    EXPECT_NE(clsCommonDlg::ErrorText(32755), clsCommonDlg::ErrorText(32767));
    for (const long unknown : {0L, 1L, 32767L, 40000L}) {
        EXPECT_EQ(clsCommonDlg::ErrorText(unknown), L"未知のｴﾗｰです。");
    }
}

TEST(CommonDlg, OwnerWindowLendsItsFontAttributes) {
    const HDC screen = GetDC(nullptr);
    const int dotsPerInch = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    const struct {
        int height, weight;
        bool italic, underline, strikeOut;
    } cases[] = {
        {-16, FW_BOLD, true, false, true},
        {-24, FW_NORMAL, false, true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.height);
        const HWND window = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr,
                                            nullptr, GetModuleHandleA(nullptr), nullptr);
        ASSERT_NE(window, nullptr);
        const HFONT font = CreateFontA(c.height, 0, 0, 0, c.weight, c.italic, c.underline,
                                       c.strikeOut, DEFAULT_CHARSET, 0, 0, 0, 0, "Tahoma");
        SendMessageA(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        clsCommonDlg dialog;
        dialog.SetOwner(window);
        EXPECT_EQ(dialog.Owner(), window);
        EXPECT_EQ(dialog.FontBold, c.weight >= FW_BOLD);
        EXPECT_EQ(dialog.FontItalic, c.italic);
        EXPECT_EQ(dialog.FontUnderline, c.underline);
        EXPECT_EQ(dialog.FontStrikethru, c.strikeOut);
        EXPECT_DOUBLE_EQ(dialog.FontSize, -c.height * 72.0 / dotsPerInch);
        DestroyWindow(window);
        DeleteObject(font);
    }
}

TEST(CommonDlg, OtherActionsShowNothing) {
    for (const int action : {0, 3, -1}) {
        SCOPED_TRACE(action);
        clsCommonDlg dialog;
        dialog.CancelError = true;
        dialog.FileName = "kept.mml";
        dialog.Action = static_cast<std::int16_t>(action);
        dialog.Show();
        EXPECT_FALSE(dialog.CancelButton);
        EXPECT_EQ(dialog.FileName, "kept.mml");
    }
}

// Waits for the dialog titled title on the test's own thread and answers it
// once it is shown; if the answer does not close it (or it never shows), every
// dialog of the test thread is cancelled when the time is up, so no test hangs.
class DialogAnswerer {
public:
    DialogAnswerer(std::string title, std::function<void(HWND)> answer)
        : testThread_(GetCurrentThreadId()),
          worker_([this, title = std::move(title), answer = std::move(answer)] {
              Run(title, answer);
          }) {}
    ~DialogAnswerer() { Finish(); }

    // Called when the dialog call has returned.
    void Finish() {
        done_ = true;
        if (worker_.joinable()) worker_.join();
    }
    bool Answered() const { return answered_; }

private:
    void Run(const std::string& title, const std::function<void(HWND)>& answer) {
        using Clock = std::chrono::steady_clock;
        const auto deadline = Clock::now() + std::chrono::seconds(20);
        while (!done_ && Clock::now() < deadline) {
            const HWND dialog = FindWindowA("#32770", title.c_str());
            if (!answered_ && dialog != nullptr && IsWindowVisible(dialog)) {
                answer(dialog);
                answered_ = true;
            }
            Sleep(20);
        }
        const auto lastResort = Clock::now() + std::chrono::seconds(20);
        while (!done_ && Clock::now() < lastResort) {
            EnumThreadWindows(
                testThread_,
                [](HWND window, LPARAM) -> BOOL {
                    char className[16] = {};
                    GetClassNameA(window, className, sizeof className);
                    if (std::string(className) == "#32770") {
                        PostMessageA(window, WM_COMMAND, IDCANCEL, 0);
                    }
                    return TRUE;
                },
                0);
            Sleep(100);
        }
    }

    const DWORD testThread_;
    std::atomic<bool> done_{false};
    std::atomic<bool> answered_{false};
    std::thread worker_;
};

void Cancel(HWND dialog) { SendMessageA(GetDlgItem(dialog, IDCANCEL), BM_CLICK, 0, 0); }

// Types name into the file name box and presses the OK button.
std::function<void(HWND)> TypeAndAccept(std::string name) {
    return [name](HWND dialog) {
        HWND box = GetDlgItem(dialog, cmb13);
        if (box == nullptr) box = GetDlgItem(dialog, edt1);
        SetWindowTextA(box, name.c_str());
        SendMessageA(GetDlgItem(dialog, IDOK), BM_CLICK, 0, 0);
    };
}

std::string UniqueTitle(const std::string& what) {
    return "Zorvi test " + what + " " + std::to_string(GetCurrentProcessId());
}

// The same folder, whatever form either is written in, and the same name: the
// file itself need not exist (a save dialog creates nothing).
bool SamePath(const std::string& a, const std::string& b) {
    const std::string folderA = mdlFile::GetLongPath(mdlFile::GetParentFolder(a));
    const std::string folderB = mdlFile::GetLongPath(mdlFile::GetParentFolder(b));
    return !folderA.empty() && _stricmp(folderA.c_str(), folderB.c_str()) == 0 &&
           mdlFile::GetFileName(a) == mdlFile::GetFileName(b);
}

TEST(CommonDlg, RealDialogsCancelledAndAnswered) {
    TempFolder folder;
    folder.Write("pick.mml", "o4 c");
    const std::string longProposal =
        "C:\\a\\proposed\\name\\that\\is\\longer\\than\\the\\answer.mml";
    const struct {
        const char* name;
        std::int16_t action;
        bool cancelError;
        std::string proposed, defaultExtension;
        std::int32_t maxFileSize;
        std::function<void(HWND)> answer;
        bool cancelled;
        std::string fileName, fileTitle;  // fileName relative to the folder unless absolute
    } cases[] = {
        {"cancel reported", 1, true, "proposed.mml", "", 255, Cancel, true, "", ""},
        {"cancel silent", 1, false, "proposed.mml", "", 255, Cancel, false, "proposed.mml", ""},
        {"open typed", 1, true, longProposal, "", 255, TypeAndAccept("pick.mml"), false,
         "pick.mml", "pick.mml"},
        {"save with default extension", 2, true, "", "mml", 255, TypeAndAccept("fresh"), false,
         "fresh.mml", "fresh.mml"},
        // The chosen path does not fit: it is not returned.
        {"buffer too small", 1, true, "", "", 8, TypeAndAccept("pick.mml"), true, "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        clsCommonDlg dialog;
        dialog.DialogTitle = UniqueTitle(c.name);
        dialog.SetFilter("MML File (*.mml)|*.mml|All files (*.*)|*.*");
        dialog.FilterIndex = 1;
        dialog.InitDir = folder.Path();
        dialog.CancelError = c.cancelError;
        dialog.FileName = c.proposed;
        dialog.MaxFileSize = c.maxFileSize;
        if (!c.defaultExtension.empty()) dialog.DefaultExt = c.defaultExtension;
        {
            DialogAnswerer answerer(dialog.DialogTitle, c.answer);
            dialog.Action = c.action;
            dialog.Show();
            answerer.Finish();
            EXPECT_TRUE(answerer.Answered());
        }
        EXPECT_EQ(dialog.CancelButton, c.cancelled);
        EXPECT_EQ(dialog.ErrNumber, 0u);
        if (c.fileTitle.empty()) {
            EXPECT_EQ(dialog.FileName, c.fileName);
        } else {
            EXPECT_PRED2(SamePath, dialog.FileName, folder / c.fileName);
            EXPECT_EQ(dialog.FileTitle, c.fileTitle);
        }
    }
}

TEST(CommonDlg, MultipleSelectionKeepsFolderAndNamesNulSeparated) {
    TempFolder folder;
    folder.Write("a.mml", "o4 c");
    folder.Write("b.mml", "o4 d");
    const struct {
        const char* name;
        std::string typed;
        std::vector<std::string> names;  // after the folder; none: one whole path
    } cases[] = {
        {"two files", "\"a.mml\" \"b.mml\"", {"a.mml", "b.mml"}},
        {"one file", "b.mml", {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        clsCommonDlg dialog;
        dialog.DialogTitle = UniqueTitle(c.name);
        dialog.SetFilter("MML File (*.mml)|*.mml");
        dialog.FilterIndex = 1;
        dialog.InitDir = folder.Path();
        dialog.CancelError = true;
        // The explorer style is the one that separates the names with NULs.
        dialog.Flags = OFN_ALLOWMULTISELECT | OFN_EXPLORER;
        {
            DialogAnswerer answerer(dialog.DialogTitle, TypeAndAccept(c.typed));
            dialog.ShowOpen();
            answerer.Finish();
            EXPECT_TRUE(answerer.Answered());
        }
        ASSERT_FALSE(dialog.CancelButton);
        EXPECT_EQ(dialog.ErrNumber, 0u);
        if (c.names.empty()) {
            EXPECT_EQ(dialog.FileName.find('\0'), std::string::npos);
            EXPECT_PRED2(SamePath, dialog.FileName, folder / "b.mml");
            continue;
        }
        std::vector<std::string> parts;
        for (std::size_t start = 0; start <= dialog.FileName.size();) {
            const auto nul = std::min(dialog.FileName.find('\0', start), dialog.FileName.size());
            parts.push_back(dialog.FileName.substr(start, nul - start));
            start = nul + 1;
        }
        ASSERT_EQ(parts.size(), c.names.size() + 1) << dialog.FileName;
        EXPECT_EQ(_stricmp(mdlFile::GetLongPath(parts[0]).c_str(),
                           mdlFile::GetLongPath(folder.Path()).c_str()),
                  0)
            << parts[0];
        EXPECT_EQ(std::vector<std::string>(parts.begin() + 1, parts.end()), c.names);
    }
}

TEST(CommonDlg, BrowseForFile) {
    TempFolder folder;
    folder.Write("pick.mml", "o4 c");
    const struct {
        const char* name;
        std::function<void(HWND)> answer;
        bool chosen;
    } cases[] = {
        {"browse cancel", Cancel, false},
        {"browse accept", TypeAndAccept("pick.mml"), true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::string fileName = "stale.mml";
        const std::string title = UniqueTitle(c.name);
        bool chosen = false;
        {
            DialogAnswerer answerer(title, c.answer);
            chosen = mdlFile::BrowseForFile(nullptr, title, "MML File (*.mml)|*.mml", 0,
                                            folder.Path(), fileName);
            answerer.Finish();
            EXPECT_TRUE(answerer.Answered());
        }
        EXPECT_EQ(chosen, c.chosen);
        if (c.chosen) {
            EXPECT_PRED2(SamePath, fileName, folder / "pick.mml");
        } else {
            EXPECT_EQ(fileName, "");
        }
    }
}

}  // namespace
}  // namespace zorvi
