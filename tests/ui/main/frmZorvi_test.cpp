// The main window in this process: created against a settings file in a
// fresh folder, driven with the user's keys, clicks and drops, and read back
// through its caption, toolbar buttons, status panels and the settings file.
// The compile command is replaced by a recorder so that the watch timer's
// rules can be seen from inside a compile.
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>
#include <shlobj.h>

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/mdlMain.h"
#include "core/messages_win.h"
#include "core/version.h"
#include "core/wide_win.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "settings/ini_win.h"
#include "support/temp_folder.h"
#include "ui/main/frmZorvi.h"
#include "ui/main/layout.h"
#include "ui/main/mdlView.h"
#include "ui/main/placement.h"
#include "ui/result/frmResult.h"

namespace zorvi {
namespace {

using namespace std::chrono_literals;
using testing::TempFolder;

const std::wstring kBareCaption = Widen("Zorvi v" + VersionText(ThisVersion()));

std::wstring CaptionFor(const std::string& fileName) {
    return Widen(fileName) + L" - " + kBareCaption;
}

// Serves this thread's messages (timer ticks among them) until the
// condition holds or the time is up.
bool PumpUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit = 3s) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    for (;;) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_QUIT) continue;  // a closed window's farewell
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        if (condition()) return true;
        if (std::chrono::steady_clock::now() >= deadline) return false;
        Sleep(5);
    }
}

void PumpFor(std::chrono::milliseconds time) {
    PumpUntil([] { return false; }, time);
}

std::wstring Text(HWND window) {
    wchar_t text[1024] = {};
    GetWindowTextW(window, text, 1024);
    return text;
}

std::wstring PanelText(HWND statusBar, int index) {
    wchar_t text[512] = {};
    SendMessageW(statusBar, SB_GETTEXTW, static_cast<WPARAM>(index),
                 reinterpret_cast<LPARAM>(text));
    return text;
}

std::uint64_t WriteTime(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data);
    return (static_cast<std::uint64_t>(data.ftLastWriteTime.dwHighDateTime) << 32) |
           data.ftLastWriteTime.dwLowDateTime;
}

void SetWriteTime(const std::string& path, std::uint64_t ticks) {
    const HANDLE file =
        CreateFileA(path.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE) << path;
    FILETIME time{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    SetFileTime(file, nullptr, nullptr, &time);
    CloseHandle(file);
}

constexpr std::uint64_t kSecond = 10'000'000;  // FILETIME ticks

// A configuration in the test program's own cfg folder, where the program
// looks for configurations; removed afterwards.
class AppConfiguration {
public:
    explicit AppConfiguration(const std::string& text) {
        static int counter = 0;
        name_ = "zt" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(counter++);
        CreateDirectoryA((mdlFile::GetAppFolder() + "cfg").c_str(), nullptr);
        const HANDLE file = CreateFileA(Path().c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL, nullptr);
        DWORD written = 0;
        WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
        CloseHandle(file);
    }
    ~AppConfiguration() { DeleteFileA(Path().c_str()); }
    AppConfiguration(const AppConfiguration&) = delete;
    AppConfiguration& operator=(const AppConfiguration&) = delete;
    const std::string& Name() const { return name_; }
    std::string Path() const { return mdlFile::GetAppFolder() + "cfg\\" + name_ + ".ini"; }

private:
    std::string name_;
};

// One main window against the settings file of a fresh folder. Every
// message box is recorded and answered from a queue (OK when it is empty).
class MainWindow {
public:
    explicit MainWindow(const std::string& settings = {}, const std::string& file = {},
                        bool start = true) {
        mdlMain::SetMainSettingsPath(folder / "Zorvi.ini");
        mdlMain::SetLanguageOffset(0);
        mdlMain::SetTargetFile({});
        if (!settings.empty()) folder.Write("Zorvi.ini", settings);
        previousBoxes_ = SetMessageBoxFunction(
            [this](HWND, const std::wstring& text, const std::wstring&, UINT) {
                boxes.push_back(text);
                if (answers.empty()) return IDOK;
                const int answer = answers.front();
                answers.pop_front();
                return answer;
            });
        window = std::make_unique<frmZorvi>();
        if (!window->Create(nullptr)) throw std::runtime_error("no main window");
        window->SetCompileCommand([this](CompileHost& host) { Compile(host); });
        if (start) window->Start(file);
    }
    ~MainWindow() {
        window.reset();
        SetMessageBoxFunction(std::move(previousBoxes_));
        mdlMain::SetTargetFile({});
    }
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;

    frmZorvi& operator*() { return *window; }
    frmZorvi* operator->() { return window.get(); }
    HWND Handle() const { return window->Handle(); }

    std::string Setting(const char* section, const char* key) const {
        return ReadIni(section, key, "<none>", folder / "Zorvi.ini");
    }
    bool ButtonEnabled(int button) const {
        return SendMessageW(window->Toolbar(), TB_ISBUTTONENABLED, frmZorvi::CommandOf(button),
                            0) != 0;
    }
    bool ButtonChecked(int button) const {
        return SendMessageW(window->Toolbar(), TB_ISBUTTONCHECKED, frmZorvi::CommandOf(button),
                            0) != 0;
    }
    // Closes as the close box does; true when the window went.
    bool Close() {
        SendMessageW(Handle(), WM_CLOSE, 0, 0);
        return window->Handle() == nullptr;
    }
    RECT Rect() const {
        RECT rect{};
        GetWindowRect(Handle(), &rect);
        return rect;
    }
    // A file in the folder, made when it is not there.
    std::string File(const std::string& name, const std::string& text = "o4 c") const {
        if (GetFileAttributesA((folder / name).c_str()) == INVALID_FILE_ATTRIBUTES) {
            folder.Write(name, text);
        }
        return folder / name;
    }

    TempFolder folder;
    std::unique_ptr<frmZorvi> window;
    std::vector<std::wstring> boxes;
    std::deque<int> answers;
    // The stand-in compile keeps the pipeline's busy rule and records what it saw.
    int compiles = 0;
    int refused = 0;
    std::vector<bool> timerRunningDuring;
    std::function<void()> duringCompile;

private:
    void Compile(CompileHost& host) {
        if (host.Compiling()) {
            ++refused;
            return;
        }
        host.Compiling() = true;
        ++compiles;
        timerRunningDuring.push_back(window->WatchTimerRunning());
        if (duringCompile) duringCompile();
        host.Compiling() = false;
    }

    MessageBoxFunction previousBoxes_;
};

// ------------------------------------------------------------ frame

TEST(MainWindow, FirstStartWithoutSettings) {
    MainWindow zorvi;
    const ScreenDpi dpi = GetScreenDpi();
    const RECT rect = zorvi.Rect();
    EXPECT_EQ(rect.left, 0);
    EXPECT_EQ(rect.top, 0);
    EXPECT_EQ(rect.right - rect.left, TwipsToPixels(4410, dpi.x));
    // At least the stored height; more only where the layout needs it.
    EXPECT_GE(rect.bottom - rect.top, TwipsToPixels(1064, dpi.y));
    EXPECT_EQ(zorvi->Mode(), 0);
    EXPECT_EQ(GetWindowLongPtrW(zorvi.Handle(), GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
    EXPECT_EQ(Text(zorvi.Handle()), kBareCaption);
    EXPECT_EQ(zorvi->IconSize(), 16);
    EXPECT_EQ(zorvi->WatchInterval(), 250u);
    EXPECT_TRUE(mdlFile::IsFolder(mdlFile::GetAppFolder() + "cfg"));
    EXPECT_TRUE(IsWindowVisible(zorvi->Combo1(0)));
    EXPECT_FALSE(IsWindowVisible(zorvi->Combo1(1)));
    EXPECT_EQ(SendMessageW(zorvi->Combo1(0), CB_GETCOUNT, 0, 0), 0);
    // No target: watch and log are off, the rest is there.
    const struct {
        int button;
        bool enabled;
    } buttons[] = {{frmZorvi::kSetFile, true}, {frmZorvi::kConfig, true}, {frmZorvi::kOnOff, false},
                   {frmZorvi::kCompile, true}, {frmZorvi::kPlay, true},   {frmZorvi::kLog, false}};
    for (const auto& b : buttons) {
        SCOPED_TRACE(b.button);
        EXPECT_EQ(zorvi.ButtonEnabled(b.button), b.enabled);
    }
    EXPECT_EQ(PanelText(zorvi->StatusBar(), 0), L"");
    EXPECT_EQ(zorvi->StatusPanelText(2), L"-");
    EXPECT_EQ(PanelText(zorvi->StatusBar(), 2), L"NoInfo.");
    EXPECT_EQ(zorvi->ToolTipText(frmZorvi::kOnOff), L"Watch mode=OFF");
    EXPECT_EQ(zorvi->ToolTipText(frmZorvi::kCompile), L"Execute Compile");

    ASSERT_TRUE(zorvi.Close());
    EXPECT_EQ(zorvi.Setting("Main", "Left"), "0");
    EXPECT_EQ(zorvi.Setting("Main", "Top"), "0");
    EXPECT_EQ(zorvi.Setting("Main", "Width"), "4410");
    EXPECT_EQ(zorvi.Setting("Main", "Height"), "1064");
    EXPECT_EQ(zorvi.Setting("Main", "Mode"), "0");
    EXPECT_EQ(zorvi.Setting("History", "His00"), "");
}

TEST(MainWindow, GeometryIsSavedOnlyInTheNormalState) {
    const std::string stored =
        "[Main]\r\nLeft=1500\r\nTop=1200\r\nWidth=6000\r\nHeight=1500\r\nMode=1\r\n";
    const struct {
        const char* name;
        int show;
        bool saved;
    } cases[] = {{"normal", SW_SHOWNORMAL, true},
                 {"minimised", SW_MINIMIZE, false},
                 {"maximised", SW_MAXIMIZE, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        MainWindow zorvi(stored);
        // Moved and switched to another layout, then put into the state.
        zorvi->Form_KeyDown(VK_RIGHT, 2);
        zorvi->NextLayout();
        const RECT moved = zorvi.Rect();
        ShowWindow(zorvi.Handle(), c.show);
        ASSERT_TRUE(zorvi.Close());
        if (c.saved) {
            EXPECT_EQ(zorvi.Setting("Main", "Left"),
                      std::to_string(PixelsToTwips(moved.left, GetScreenDpi().x)));
            EXPECT_EQ(zorvi.Setting("Main", "Top"), "1200");
            EXPECT_EQ(zorvi.Setting("Main", "Width"), "6000");
            EXPECT_EQ(zorvi.Setting("Main", "Height"), "1500");
            EXPECT_EQ(zorvi.Setting("Main", "Mode"), "2");
        } else {
            EXPECT_EQ(zorvi.Setting("Main", "Left"), "1500");
            EXPECT_EQ(zorvi.Setting("Main", "Mode"), "1");
        }
    }
}

TEST(MainWindow, IconSizeOutsideOneToSixtyFourIsSixteen) {
    const struct {
        const char* setting;
        int used;
    } cases[] = {{"0", 16}, {"1", 1}, {"32", 32}, {"64", 64}, {"65", 16}, {"-4", 16}, {"abc", 16}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.setting);
        MainWindow zorvi(std::string("[Option]\r\nIconSize=") + c.setting + "\r\n");
        EXPECT_EQ(zorvi->IconSize(), c.used);
        const auto images =
            reinterpret_cast<HIMAGELIST>(SendMessageW(zorvi->Toolbar(), TB_GETIMAGELIST, 0, 0));
        int width = 0, height = 0;
        ASSERT_TRUE(ImageList_GetIconSize(images, &width, &height));
        const int pixels = ScaleForDpi(c.used, GetScreenDpi().x);
        EXPECT_EQ(width, pixels);
        EXPECT_EQ(height, pixels);
        EXPECT_EQ(ImageList_GetImageCount(images), 8);
        // The toolbar grows with its icons and the window with the toolbar.
        RECT toolbar{};
        GetWindowRect(zorvi->Toolbar(), &toolbar);
        EXPECT_GT(toolbar.bottom - toolbar.top, pixels);
        RECT client{}, status{};
        GetClientRect(zorvi.Handle(), &client);
        GetWindowRect(zorvi->StatusBar(), &status);
        EXPECT_GE(client.bottom, (toolbar.bottom - toolbar.top) + (status.bottom - status.top));
    }
    MainWindow zorvi;
    EXPECT_EQ(zorvi->ViewChange_IconSize(65), 16);
    EXPECT_EQ(zorvi->ViewChange_IconSize(64), 64);
    EXPECT_EQ(zorvi->ViewChange_IconSize(0), 16);
}

// The image list entry each of the first six buttons shows; the seventh is
// the launcher's placeholder, whose iBitmap holds its width.
std::vector<int> ButtonImages(HWND toolbar) {
    std::vector<int> images;
    for (int index = 0; index < frmZorvi::kButtonCount - 1; ++index) {
        TBBUTTON button{};
        SendMessageW(toolbar, TB_GETBUTTON, static_cast<WPARAM>(index),
                     reinterpret_cast<LPARAM>(&button));
        EXPECT_EQ(button.idCommand, frmZorvi::CommandOf(index + 1)) << index;
        images.push_back(button.iBitmap);
    }
    return images;
}

TEST(MainWindow, ToolbarButtonsShowTheirImages) {
    // Images 2, 3, 5 (watch off) or 4 (on), 6, 7 and 8, counted from 1 in the list.
    const std::vector<int> watchOff{1, 2, 4, 5, 6, 7};
    const std::vector<int> watchOn{1, 2, 3, 5, 6, 7};
    const struct {
        const char* name;
        std::function<void(frmZorvi&)> step;
        const std::vector<int>& images;
    } steps[] = {
        {"at start", [](frmZorvi&) {}, watchOff},
        {"icon size 32", [](frmZorvi& w) { w.ViewChange_IconSize(32); }, watchOff},
        {"F3 watches", [](frmZorvi& w) { w.Form_KeyDown(VK_F3, 0); }, watchOn},
        {"icon size 64 while watching", [](frmZorvi& w) { w.ViewChange_IconSize(64); }, watchOn},
        {"F3 again", [](frmZorvi& w) { w.Form_KeyDown(VK_F3, 0); }, watchOff},
        {"icon size 0", [](frmZorvi& w) { w.ViewChange_IconSize(0); }, watchOff},
    };
    MainWindow zorvi;
    zorvi->SetFile(zorvi.File("song.mml"));
    for (const auto& step : steps) {
        SCOPED_TRACE(step.name);
        step.step(*zorvi);
        EXPECT_EQ(ButtonImages(zorvi->Toolbar()), step.images);
    }
}

TEST(MainWindow, AlwaysOnTopFollowsTheSetting) {
    const struct {
        const char* setting;
        bool topmost;
    } cases[] = {{"", false},
                 {"[Option]\r\nAlwaysTop=0\r\n", false},
                 {"[Option]\r\nAlwaysTop=1\r\n", true},
                 {"[Option]\r\nAlwaysTop=7\r\n", true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.setting);
        MainWindow zorvi(c.setting);
        EXPECT_EQ((GetWindowLongPtrW(zorvi.Handle(), GWL_EXSTYLE) & WS_EX_TOPMOST) != 0, c.topmost);
    }
}

// ------------------------------------------------------------ layouts

TEST(MainWindow, LayoutsCycleByDoubleClicksAndCtrlFunctionKeys) {
    const struct {
        const char* name;
        std::function<void(frmZorvi&)> step;
    } triggers[] = {
        {"double-click on the status bar",
         [](frmZorvi& w) {
             SendMessageW(w.StatusBar(), WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(5, 5));
         }},
        {"double-click on the window",
         [](frmZorvi& w) {
             SendMessageW(w.Handle(), WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(2, 2));
         }},
        {"double-click beside the toolbar's buttons",
         [](frmZorvi& w) {
             RECT toolbar{};
             GetClientRect(w.Toolbar(), &toolbar);
             SendMessageW(w.Toolbar(), WM_LBUTTONDBLCLK, MK_LBUTTON,
                          MAKELPARAM(toolbar.right - 2, toolbar.bottom - 1));
         }},
        {"Ctrl+F5", [](frmZorvi& w) { w.Form_KeyDown(VK_F5, 2); }},
        {"Ctrl+F12", [](frmZorvi& w) { w.Form_KeyDown(VK_F12, 2); }},
    };
    for (const auto& trigger : triggers) {
        SCOPED_TRACE(trigger.name);
        MainWindow zorvi;
        const RECT before = zorvi.Rect();
        const struct {
            int mode;
            bool toolbar, member0, member1;
        } expected[] = {{1, true, false, true}, {2, false, false, true}, {0, true, true, false}};
        for (const auto& e : expected) {
            // Before layout 2 hides the toolbar, the double-click goes to a part that is shown.
            if (e.mode == 0 && std::string(trigger.name).find("toolbar") != std::string::npos) {
                SendMessageW(zorvi->StatusBar(), WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(5, 5));
            } else {
                trigger.step(*zorvi);
            }
            SCOPED_TRACE(e.mode);
            EXPECT_EQ(zorvi->Mode(), e.mode);
            EXPECT_EQ(IsWindowVisible(zorvi->Toolbar()) != FALSE, e.toolbar);
            EXPECT_EQ(IsWindowVisible(zorvi->Combo1(0)) != FALSE, e.member0);
            EXPECT_EQ(IsWindowVisible(zorvi->Combo1(1)) != FALSE, e.member1);
            // The list shown never overlaps the status bar.
            RECT list{}, status{};
            GetWindowRect(zorvi->Combo1(e.member0 ? 0 : 1), &list);
            GetWindowRect(zorvi->StatusBar(), &status);
            EXPECT_LE(list.bottom, status.top);
        }
        // Three steps bring back the layout and the size.
        const RECT after = zorvi.Rect();
        EXPECT_EQ(after.bottom - after.top, before.bottom - before.top);
        EXPECT_EQ(after.right - after.left, before.right - before.left);
    }
}

TEST(MainWindow, DoubleClickOnAButtonKeepsTheLayout) {
    MainWindow zorvi;
    RECT button{};
    SendMessageW(zorvi->Toolbar(), TB_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&button));
    SendMessageW(zorvi->Toolbar(), WM_LBUTTONDBLCLK, MK_LBUTTON,
                 MAKELPARAM((button.left + button.right) / 2, (button.top + button.bottom) / 2));
    EXPECT_EQ(zorvi->Mode(), 0);
}

TEST(MainWindow, StoredModeIsAppliedAndCarriesTheListText) {
    const struct {
        const char* mode;
        int applied;
    } cases[] = {{"0", 0}, {"1", 1}, {"2", 2}, {"3", 0}, {"-1", 0}, {"2147483647", 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mode);
        MainWindow zorvi(std::string("[Main]\r\nMode=") + c.mode + "\r\n");
        EXPECT_EQ(zorvi->Mode(), c.applied);
    }
    MainWindow zorvi;
    SetWindowTextW(zorvi->Combo1(0), L"notepad.exe");
    zorvi->NextLayout();
    EXPECT_EQ(Text(zorvi->Combo1(1)), L"notepad.exe");
}

// ------------------------------------------------------------ target file

TEST(MainWindow, SetFileAsksForUnusualFilesAndFollowsTheFilters) {
    AppConfiguration existing("[Configure]\r\nExtension=mid\r\n");
    const std::string filters = "[Setting]\r\nDefault=before\r\n[Filter]\r\nItemCount=1\r\n";
    const struct {
        const char* name;
        std::string settings;
        const char* file;
        std::optional<int> answer;  // the box's answer; none: no box expected
        bool taken;
        std::string defaultAfter;
    } cases[] = {
        {"mixed-case MML", "", "song.MmL", std::nullopt, true, "<none>"},
        {"text file", "", "notes.txt", std::nullopt, true, "<none>"},
        {"C source, OK", "", "prog.c", IDOK, true, "<none>"},
        {"C source, Cancel", "", "prog.c", IDCANCEL, false, "<none>"},
        {"filters, none matches", filters + "Extension1=.xyz\r\nDefault1=other\r\n", "song.mml",
         IDOK, true, "before"},
        {"filters, none matches, Cancel", filters + "Extension1=.xyz\r\n", "song.mml", IDCANCEL,
         false, "before"},
        {"filter names a missing configuration (2)",
         filters + "Extension1=.c;.h\r\nDefault1=nosuchconfiguration\r\n", "prog.c", std::nullopt,
         true, "before"},
        {"filter names a configuration (3)",
         filters + "Extension1=mml;c\r\nDefault1=" + existing.Name() + "\r\n", "prog.c",
         std::nullopt, true, existing.Name()},
        {"filter names none (4)", filters + "Extension1=C\r\nDefault1=\r\n", "prog.c", std::nullopt,
         true, "before"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        MainWindow zorvi(c.settings);
        const std::string previous = zorvi.File("previous.mml");
        zorvi.File(c.file);
        // The previous target is set without filters in the way.
        mdlMain::SetTargetFile(previous);
        zorvi->SetWatchFile(previous);
        if (c.answer) zorvi.answers.push_back(*c.answer);
        zorvi->SetFile(zorvi.folder / c.file);

        ASSERT_EQ(zorvi.boxes.size(), c.answer ? 1u : 0u);
        if (c.answer) {
            EXPECT_EQ(zorvi.boxes[0],
                      Widen(zorvi.folder / c.file) + L"\rThis file is set as a target.\rOK?");
        }
        const std::string expected = c.taken ? zorvi.folder / c.file : previous;
        EXPECT_EQ(mdlMain::TargetFile(), expected);
        EXPECT_EQ(Text(zorvi.Handle()), CaptionFor(mdlFile::GetFileName(expected)));
        EXPECT_EQ(zorvi.Setting("Setting", "Default"), c.defaultAfter);
        if (c.taken) {
            EXPECT_EQ(zorvi->History()[0], mdlFile::GetLongPath(zorvi.folder / c.file));
            EXPECT_EQ(zorvi.Setting("History", "His00"), zorvi->History()[0]);
        } else {
            EXPECT_NE(zorvi->History()[0], mdlFile::GetLongPath(zorvi.folder / c.file));
        }
        if (c.defaultAfter == existing.Name()) {
            EXPECT_EQ(PanelText(zorvi->StatusBar(), 0), Widen(existing.Name()));
        }
    }
}

TEST(MainWindow, StartTakesTheCommandLineFileOrTheLastOne) {
    const struct {
        const char* name;
        const char* settings;
        bool argument;
        bool lastExists;
        const char* expected;  // file name of the target; empty for none
        bool minimised = false;
    } cases[] = {
        {"argument", "", true, true, "Given.mml"},
        {"auto set file", "[Option]\r\nAutoSetFile=1\r\n", false, true, "Last.mml"},
        {"auto set file, last gone", "[Option]\r\nAutoSetFile=1\r\n", false, false, ""},
        {"auto set file off", "[Option]\r\nAutoSetFile=0\r\n", false, true, ""},
        {"auto set file not exactly 1", "[Option]\r\nAutoSetFile=2\r\n", false, true, ""},
        // Setting the file minimises the window, and showing it must not undo that.
        {"argument, auto minimise", "[Option]\r\nAutoMinimize=1\r\n", true, true, "Given.mml",
         true},
        {"auto set file, auto minimise", "[Option]\r\nAutoSetFile=1\r\nAutoMinimize=1\r\n",
         false, true, "Last.mml", true},
        {"auto minimise without a file", "[Option]\r\nAutoMinimize=1\r\n", false, true, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TempFolder files;
        files.Write("Given.mml", "");
        if (c.lastExists) files.Write("Last.mml", "");
        const std::string settings =
            std::string(c.settings) + "[History]\r\nHis00=" + (files / "Last.mml") + "\r\n";
        // Given in lower case: the target takes the case stored on disk.
        MainWindow zorvi(settings, c.argument ? files / "given.MML" : std::string());
        if (*c.expected == '\0') {
            EXPECT_EQ(mdlMain::TargetFile(), "");
            EXPECT_EQ(Text(zorvi.Handle()), kBareCaption);
        } else {
            EXPECT_EQ(mdlMain::TargetFile(), files / c.expected);
            EXPECT_EQ(Text(zorvi.Handle()), CaptionFor(c.expected));
        }
        EXPECT_TRUE(IsWindowVisible(zorvi.Handle()));
        EXPECT_EQ(IsIconic(zorvi.Handle()) != FALSE, c.minimised);
    }
}

TEST(MainWindow, OptionsActWhenAFileIsSet) {
    const struct {
        const char* settings;
        bool watching, minimised;
    } cases[] = {
        {"", false, false},
        {"[Option]\r\nAutoWatch=1\r\n", true, false},
        {"[Option]\r\nAutoWatch=2\r\n", false, false},
        {"[Option]\r\nAutoMinimize=1\r\n", false, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.settings);
        MainWindow zorvi(c.settings);
        zorvi->SetFile(zorvi.File("a.mml"));
        EXPECT_EQ(zorvi->Watching(), c.watching);
        EXPECT_EQ(zorvi.ButtonChecked(frmZorvi::kOnOff), c.watching);
        EXPECT_EQ(IsIconic(zorvi.Handle()) != FALSE, c.minimised);
    }
}

TEST(MainWindow, ViewUpdateFollowsTargetAndLog) {
    MainWindow zorvi;
    zorvi->SetFile(zorvi.File("a.mml"));
    EXPECT_TRUE(zorvi.ButtonEnabled(frmZorvi::kOnOff));
    EXPECT_FALSE(zorvi.ButtonEnabled(frmZorvi::kLog));
    zorvi.File("a.log", "compiled");
    zorvi->ViewUpdate();
    EXPECT_TRUE(zorvi.ButtonEnabled(frmZorvi::kLog));
    EXPECT_TRUE(zorvi->MenuEntryEnabled(9));
    // The pipeline's view changes leave compile and play alone without a target.
    zorvi->ViewChange_Compile(false);
    zorvi->ViewChange_Play(false);
    mdlMain::SetTargetFile({});
    zorvi->ViewUpdate();
    EXPECT_FALSE(zorvi.ButtonEnabled(frmZorvi::kOnOff));
    EXPECT_FALSE(zorvi.ButtonEnabled(frmZorvi::kLog));
    EXPECT_FALSE(zorvi.ButtonEnabled(frmZorvi::kCompile));
    EXPECT_FALSE(zorvi.ButtonEnabled(frmZorvi::kPlay));
    zorvi->ViewChange_FileOpen(false);
    EXPECT_FALSE(zorvi.ButtonEnabled(frmZorvi::kSetFile));
    EXPECT_FALSE(zorvi->MenuEntryEnabled(2));
    EXPECT_FALSE(zorvi->MenuEntryEnabled(3));
}

TEST(MainWindow, FileFilterOfTheDialog) {
    using namespace std::string_literals;
    const struct {
        const char* settings;
        std::string filter;  // every NUL counts
    } cases[] = {
        {"",
         "MML File (*.mml)\0*.mml\0MUS File (*.mus)\0*.mus\0Text File (*.txt)\0*.txt\0"
         "All files (*.*)\0*.*"s},
        {"[Filter]\r\nItemCount=1\r\nItem1=MML\r\nExtension1=.mml;.mus\r\n",
         "MML\0*.mml;*.mus"s},
        {"[Filter]\r\nItemCount=2\r\nItem1=MML\r\nExtension1=.mml\r\n"
         "Item2=C source\r\nExtension2=.c;.h\r\n",
         "MML\0*.mml\0C source\0*.c;*.h"s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.settings);
        MainWindow zorvi(c.settings);
        EXPECT_EQ(zorvi->strGetFilter(), c.filter);
    }
}

// ------------------------------------------------------------ status bar

TEST(MainWindow, StatusBarShowsConfigurationPlayerAndTools) {
    TempFolder tools;
    tools.Write("mmlc.exe", "");
    tools.Write("player.exe", "");
    const std::string console = "[Configure]\r\nConsole=" + (tools / "mmlc.exe") + "\r\n";
    const struct {
        const char* name;
        std::string configuration;
        std::wstring tools;
        std::wstring player;
        bool playerEnabled;
    } cases[] = {
        {"nothing listed, plays nothing", console, L"NoInfo.", L"-", true},
        {"tools there", console + "[Required]\r\nItemCount=1\r\nItem1=mmlc.exe\r\n", L"OK", L"-",
         true},
        {"a tool missing",
         console + "[Required]\r\nItemCount=2\r\nItem1=mmlc.exe\r\nItem2=gone.dat\r\n", L"NG", L"-",
         true},
        {"associated player", console + "[Option]\r\nUseGUI=1\r\nUseAssociated=1\r\n", L"NoInfo.",
         L"*", true},
        {"player there",
         console + "Player=" + (tools / "player.exe") + "\r\n[Option]\r\nUseGUI=1\r\n", L"NoInfo.",
         L"player.exe", true},
        {"player missing",
         console + "Player=" + (tools / "gone.exe") + "\r\n[Option]\r\nUseGUI=1\r\n", L"NoInfo.",
         L"gone.exe", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        AppConfiguration configuration(c.configuration);
        MainWindow zorvi("[Setting]\r\nDefault=" + configuration.Name() + "\r\n");
        EXPECT_EQ(PanelText(zorvi->StatusBar(), 0), Widen(configuration.Name()));
        EXPECT_EQ(zorvi->StatusPanelText(2), c.player);
        EXPECT_EQ(zorvi->PlayerPanelEnabled(), c.playerEnabled);
        EXPECT_EQ(PanelText(zorvi->StatusBar(), 2), c.tools);
    }
    MainWindow zorvi("[Setting]\r\nDefault=nosuchconfiguration\r\n");
    EXPECT_EQ(PanelText(zorvi->StatusBar(), 2), L"NoInfo.");
    zorvi->ViewChange_StatusBar(3, "fast", "");
    EXPECT_EQ(PanelText(zorvi->StatusBar(), 2), L"fast/NoInfo.");
    zorvi->ViewChange_StatusBar("Now Converting to a.mid");
    EXPECT_EQ(PanelText(zorvi->StatusBar(), 0), L"Now Converting to a.mid");
}

// ------------------------------------------------------------ watch mode

TEST(MainWindow, WatchCompilesOnEveryChangeOfTheTime) {
    MainWindow zorvi("[Option]\r\nTimerInterval=50\r\n");
    const std::string song = zorvi.File("song.mml");
    zorvi->SetFile(song);
    zorvi->Form_KeyDown(VK_F3, 0);
    ASSERT_TRUE(zorvi->Watching());
    EXPECT_TRUE(zorvi.ButtonChecked(frmZorvi::kOnOff));
    EXPECT_EQ(zorvi->ToolTipText(frmZorvi::kOnOff), L"Watch mode=ON");
    EXPECT_EQ(zorvi->WatchMenuCaption(), L"song.mml [ON]");
    const std::uint64_t original = WriteTime(song);
    const struct {
        const char* name;
        std::uint64_t time;
    } changes[] = {{"touched", original + 10 * kSecond},
                   {"clock set back", original - 86400 * kSecond},
                   {"touched again", original + 20 * kSecond}};
    int expected = 0;
    for (const auto& change : changes) {
        SCOPED_TRACE(change.name);
        SetWriteTime(song, change.time);
        ++expected;
        EXPECT_TRUE(PumpUntil([&] { return zorvi.compiles == expected; }, 2s));
        // An unchanged time compiles nothing more.
        PumpFor(200ms);
        EXPECT_EQ(zorvi.compiles, expected);
    }
    zorvi->Form_KeyDown(VK_F3, 0);
    EXPECT_FALSE(zorvi->Watching());
    EXPECT_FALSE(zorvi->WatchTimerRunning());
    EXPECT_EQ(zorvi->ToolTipText(frmZorvi::kOnOff), L"Watch mode=OFF");
    SetWriteTime(song, original + 30 * kSecond);
    PumpFor(200ms);
    EXPECT_EQ(zorvi.compiles, expected);
    // Turned on again, the time is read anew: the change made meanwhile is not compiled.
    zorvi->WatchToggle();
    PumpFor(200ms);
    EXPECT_EQ(zorvi.compiles, expected);
}

TEST(MainWindow, WatchReleasesATargetThatIsGone) {
    MainWindow zorvi("[Option]\r\nTimerInterval=50\r\nAutoWatch=1\r\n");
    const std::string song = zorvi.File("song.mml");
    zorvi->SetFile(song);
    ASSERT_TRUE(zorvi->Watching());
    ASSERT_TRUE(DeleteFileA(song.c_str()));
    ASSERT_TRUE(PumpUntil([] { return mdlMain::TargetFile().empty(); }, 2s));
    EXPECT_EQ(Text(zorvi.Handle()), kBareCaption);
    EXPECT_FALSE(zorvi->Watching());
    EXPECT_FALSE(zorvi.ButtonChecked(frmZorvi::kOnOff));
    EXPECT_FALSE(zorvi.ButtonEnabled(frmZorvi::kOnOff));
    EXPECT_EQ(zorvi->WatchMenuCaption(), L"(No focus) [OFF]");
    // Coming back does not bring the watch back; the history still has it.
    zorvi.File("song.mml");
    PumpFor(200ms);
    EXPECT_EQ(zorvi.compiles, 0);
    EXPECT_EQ(mdlMain::TargetFile(), "");
    EXPECT_EQ(zorvi->History()[0], mdlFile::GetLongPath(song));
}

TEST(MainWindow, WatchTimerIsOffWhileItsCompileRuns) {
    MainWindow zorvi("[Option]\r\nTimerInterval=50\r\nAutoWatch=1\r\n");
    const std::string song = zorvi.File("song.mml");
    zorvi->SetFile(song);
    const std::uint64_t original = WriteTime(song);
    // The compile is slow, and the file is saved again while it runs.
    zorvi.duringCompile = [&] {
        EXPECT_TRUE(zorvi->Watching());
        if (zorvi.compiles == 1) SetWriteTime(song, original + 20 * kSecond);
        PumpFor(300ms);
    };
    SetWriteTime(song, original + 10 * kSecond);
    ASSERT_TRUE(PumpUntil([&] { return zorvi.compiles == 2; }, 3s));
    EXPECT_EQ(zorvi.timerRunningDuring, (std::vector<bool>{false, false}));
    EXPECT_EQ(zorvi.refused, 0);
    EXPECT_TRUE(zorvi->WatchTimerRunning());
    PumpFor(200ms);
    EXPECT_EQ(zorvi.compiles, 2);
}

TEST(MainWindow, TicksWaitForAManualCompile) {
    MainWindow zorvi("[Option]\r\nTimerInterval=50\r\nAutoWatch=1\r\n");
    const std::string song = zorvi.File("song.mml");
    zorvi->SetFile(song);
    const std::uint64_t original = WriteTime(song);
    zorvi.duringCompile = [&] {
        if (zorvi.compiles != 1) return;
        // Saved during the compile that F5 started: the ticks meanwhile do nothing.
        SetWriteTime(song, original + 10 * kSecond);
        PumpFor(300ms);
        EXPECT_TRUE(zorvi->WatchTimerRunning());
        // A second F5 reaches the command, which refuses it.
        zorvi->Form_KeyDown(VK_F5, 0);
    };
    zorvi->Form_KeyDown(VK_F5, 0);
    EXPECT_EQ(zorvi.compiles, 1);
    EXPECT_EQ(zorvi.refused, 1);
    // The change is compiled by the next tick.
    EXPECT_TRUE(PumpUntil([&] { return zorvi.compiles == 2; }, 2s));
}

TEST(MainWindow, TickCompileLeavesTheWatchToChangesMadeMeanwhile) {
    const struct {
        const char* name;
        std::function<void(MainWindow&)> meanwhile;
        bool watching;
        const char* target;
    } cases[] = {
        {"nothing", [](MainWindow&) {}, true, "song.mml"},
        {"watch turned off", [](MainWindow& z) { z->Form_KeyDown(VK_F3, 0); }, false, "song.mml"},
        {"another target set", [](MainWindow& z) { z->SetFile(z.File("other.mml")); }, false,
         "other.mml"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        MainWindow zorvi("[Option]\r\nTimerInterval=50\r\n");
        const std::string song = zorvi.File("song.mml");
        zorvi->SetFile(song);
        zorvi->ViewChange_OnOff(true);
        zorvi.duringCompile = [&] { c.meanwhile(zorvi); };
        SetWriteTime(song, WriteTime(song) + 10 * kSecond);
        ASSERT_TRUE(PumpUntil([&] { return zorvi.compiles == 1; }, 2s));
        EXPECT_EQ(zorvi->Watching(), c.watching);
        EXPECT_EQ(zorvi->WatchTimerRunning(), c.watching);
        EXPECT_EQ(zorvi.ButtonChecked(frmZorvi::kOnOff), c.watching);
        EXPECT_EQ(mdlMain::TargetFile(), zorvi.folder / c.target);
        PumpFor(200ms);
        EXPECT_EQ(zorvi.compiles, 1);
    }
}

TEST(MainWindow, TimerIntervalComesFromTheSettings) {
    const struct {
        const char* setting;
        unsigned used;
    } cases[] = {{"", 250},
                 {"[Option]\r\nTimerInterval=1000\r\n", 1000},
                 {"[Option]\r\nTimerInterval=0\r\n", 10},
                 {"[Option]\r\nTimerInterval=-7\r\n", 10}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.setting);
        MainWindow zorvi(c.setting);
        EXPECT_EQ(zorvi->WatchInterval(), c.used);
    }
    MainWindow zorvi;
    zorvi->ChangeTimerIntarval(75);
    EXPECT_EQ(zorvi->WatchInterval(), 75u);
}

TEST(MainWindow, ClosingIsRefusedWhileACompileRuns) {
    MainWindow zorvi;
    zorvi->SetFile(zorvi.File("song.mml"));
    bool stillThere = false;
    zorvi.duringCompile = [&] {
        PostMessageW(zorvi.Handle(), WM_CLOSE, 0, 0);
        zorvi->Form_KeyDown(VK_F12, 0);
        PumpFor(200ms);
        stillThere = IsWindow(zorvi.Handle()) != FALSE;
    };
    zorvi->Form_KeyDown(VK_F5, 0);
    EXPECT_TRUE(stillThere);
    ASSERT_NE(zorvi->Handle(), nullptr);
    EXPECT_TRUE(zorvi.Close());
}

// ------------------------------------------------------------ history

TEST(MainWindow, HistoryKeepsEachFileOnceInItsLongForm) {
    const struct {
        const char* name;
        std::vector<std::string> files;  // set in this order
        std::vector<std::string> expected;
    } cases[] = {
        {"same file twice", {"a.mml", "a.mml"}, {"a.mml"}},
        {"two files", {"a.mml", "b.mml"}, {"b.mml", "a.mml"}},
        {"back to the first", {"a.mml", "b.mml", "a.mml"}, {"a.mml", "b.mml"}},
        {"short, then long",
         {"my song file.mml (short)", "my song file.mml"},
         {"my song file.mml"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        MainWindow zorvi;
        for (std::string file : c.files) {
            const bool shortForm = file.ends_with(" (short)");
            if (shortForm) file.erase(file.size() - 8);
            const std::string path = zorvi.File(file);
            zorvi->SetFile(shortForm ? mdlFile::GetShortPath(path) : path);
        }
        for (std::size_t i = 0; i < kHistorySize; ++i) {
            const std::string expected =
                i < c.expected.size() ? mdlFile::GetLongPath(zorvi.folder / c.expected[i]) : "";
            EXPECT_EQ(zorvi->History()[i], expected) << i;
            EXPECT_EQ(zorvi.Setting("History", ("His0" + std::to_string(i)).c_str()), expected)
                << i;
        }
    }
}

TEST(MainWindow, HistoryComparesWithCase) {
    TempFolder files;
    files.Write("a.mml", "");
    const std::string upper = files / "A.MML";
    MainWindow zorvi("[History]\r\nHis00=" + upper + "\r\n");
    zorvi->SetFile(files / "a.mml");
    EXPECT_EQ(zorvi->History()[0], mdlFile::GetLongPath(files / "a.mml"));
    EXPECT_EQ(zorvi->History()[1], upper);
}

TEST(MainWindow, The33rdFilePushesTheOldestOut) {
    MainWindow zorvi;
    std::vector<std::string> paths;
    for (int i = 0; i < 33; ++i) {
        std::string name = std::to_string(i);
        name.append(".mml").insert(0, 1, 'f');
        paths.push_back(zorvi.File(name));
        zorvi->SetFile(paths.back());
    }
    EXPECT_EQ(zorvi->History()[0], mdlFile::GetLongPath(paths[32]));
    EXPECT_EQ(zorvi->History()[31], mdlFile::GetLongPath(paths[1]));
    EXPECT_EQ(zorvi.Setting("History", "His031"), mdlFile::GetLongPath(paths[1]));
    for (const auto& entry : zorvi->History()) EXPECT_NE(entry, mdlFile::GetLongPath(paths[0]));
    // 32 entries, a separator and "History clear".
    EXPECT_EQ(GetMenuItemCount(zorvi->HistoryMenu()), 34);
}

TEST(MainWindow, HistoryClearKeepsOnlyTheTarget) {
    MainWindow zorvi;
    zorvi->SetFile(zorvi.File("a.mml"));
    zorvi->SetFile(zorvi.File("b.mml"));
    SendMessageW(zorvi.Handle(), WM_COMMAND, frmZorvi::kHistoryClearCommand, 0);
    const std::string target = mdlFile::GetLongPath(zorvi.folder / "b.mml");
    EXPECT_EQ(zorvi->History()[0], target);
    EXPECT_EQ(zorvi->History()[1], "");
    EXPECT_EQ(zorvi.Setting("History", "His01"), "");
    const HMENU menu = zorvi->HistoryMenu();
    ASSERT_EQ(GetMenuItemCount(menu), 3);
    wchar_t caption[512] = {};
    GetMenuStringW(menu, 0, caption, 512, MF_BYPOSITION);
    EXPECT_EQ(std::wstring(caption), L"&0 : " + Widen(mdlFile::ShortenPathForDisplay(target)));
    EXPECT_EQ(GetMenuState(menu, 1, MF_BYPOSITION) & MF_SEPARATOR, static_cast<UINT>(MF_SEPARATOR));
    GetMenuStringW(menu, 2, caption, 512, MF_BYPOSITION);
    EXPECT_EQ(std::wstring(caption), L"History clear");
    // Without a target the list empties.
    mdlMain::SetTargetFile({});
    zorvi->HistoryClear();
    EXPECT_EQ(zorvi->History()[0], "");
    EXPECT_EQ(GetMenuItemCount(zorvi->HistoryMenu()), 2);
}

// The visible popup menu of this thread, if one is open.
HWND ThreadMenuWindow() {
    HWND found = nullptr;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM param) -> BOOL {
            wchar_t name[16] = {};
            GetClassNameW(window, name, 16);
            if (std::wstring(name) != L"#32768" || !IsWindowVisible(window)) return TRUE;
            *reinterpret_cast<HWND*>(param) = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

// Answers the next popup menu of this thread with keys, as a user would: a
// thread timer, which the menu's own loop serves, posts the keys once the
// menu is there, and closes whatever menu is still open when time is up.
class MenuAnswer {
public:
    explicit MenuAnswer(std::vector<WPARAM> keys, std::chrono::milliseconds limit = 5s)
        : keys_(std::move(keys)), deadline_(std::chrono::steady_clock::now() + limit) {
        Current() = this;
        timer_ = SetTimer(nullptr, 0, 20, &MenuAnswer::Tick);
    }
    ~MenuAnswer() {
        KillTimer(nullptr, timer_);
        Current() = nullptr;
    }
    MenuAnswer(const MenuAnswer&) = delete;
    MenuAnswer& operator=(const MenuAnswer&) = delete;
    bool Posted() const { return posted_; }

private:
    static MenuAnswer*& Current() {
        static MenuAnswer* current = nullptr;
        return current;
    }
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
        MenuAnswer* self = Current();
        if (self == nullptr) return;
        if (!self->posted_) {
            if (const HWND menu = ThreadMenuWindow(); menu != nullptr) {
                for (const WPARAM key : self->keys_) PostMessageW(menu, WM_KEYDOWN, key, 0);
                self->posted_ = true;
            }
        }
        if (std::chrono::steady_clock::now() >= self->deadline_) EndMenu();
    }

    std::vector<WPARAM> keys_;
    std::chrono::steady_clock::time_point deadline_;
    UINT_PTR timer_ = 0;
    bool posted_ = false;
};

TEST(MainWindow, HistoryDropDownOfTheFirstButtonSetsTheChosenFile) {
    // The menu lists b.mml, a.mml, a separator and "History clear".
    const struct {
        const char* name;
        std::vector<WPARAM> keys;
        const char* target;
        std::vector<std::string> history;  // the first two slots
    } cases[] = {
        {"first entry", {VK_DOWN, VK_RETURN}, "b.mml", {"b.mml", "a.mml"}},
        {"second entry", {VK_DOWN, VK_DOWN, VK_RETURN}, "a.mml", {"a.mml", "b.mml"}},
        {"History clear", {VK_DOWN, VK_DOWN, VK_DOWN, VK_RETURN}, "b.mml", {"b.mml", ""}},
        {"closed with Esc", {VK_ESCAPE}, "b.mml", {"b.mml", "a.mml"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        MainWindow zorvi;
        zorvi->SetFile(zorvi.File("a.mml"));
        zorvi->SetFile(zorvi.File("b.mml"));
        NMTOOLBARW note{};
        note.hdr.hwndFrom = zorvi->Toolbar();
        note.hdr.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(zorvi->Toolbar()));
        note.hdr.code = TBN_DROPDOWN;
        note.iItem = frmZorvi::CommandOf(frmZorvi::kSetFile);
        // A window of a test running beside this one may take the focus and so
        // close the menu before it has its keys; nothing is chosen then, and
        // the menu is opened again.
        bool answered = false;
        for (int attempt = 0; attempt < 5 && !answered; ++attempt) {
            MenuAnswer answer(c.keys);
            SendMessageW(zorvi.Handle(), WM_NOTIFY, note.hdr.idFrom,
                         reinterpret_cast<LPARAM>(&note));
            answered = answer.Posted();
        }
        EXPECT_TRUE(answered);
        EXPECT_EQ(mdlMain::TargetFile(), zorvi.folder / c.target);
        for (std::size_t i = 0; i < c.history.size(); ++i) {
            const std::string expected =
                c.history[i].empty() ? "" : mdlFile::GetLongPath(zorvi.folder / c.history[i]);
            EXPECT_EQ(zorvi->History()[i], expected) << i;
        }
    }
}

TEST(MainWindow, HistoryEntriesThatAreNoFileAreIgnored) {
    TempFolder files;
    files.Write("real.mml", "");
    const std::string settings = "[History]\r\nHis00=" + files.Path() +
                                 "\r\nHis01=Q:\\no drive\\x.mml\r\nHis02=" + (files / "real.mml") +
                                 "\r\nHis03=\"" + (files / "real.mml") + "\"\r\n";
    MainWindow zorvi(settings);
    const HistorySlots before = zorvi->History();
    for (int slot : {0, 1}) {
        SCOPED_TRACE(slot);
        SendMessageW(zorvi.Handle(), WM_COMMAND, frmZorvi::kHistoryCommand + slot, 0);
        EXPECT_EQ(mdlMain::TargetFile(), "");
        EXPECT_EQ(zorvi->History(), before);
        EXPECT_TRUE(zorvi.boxes.empty());
    }
    SendMessageW(zorvi.Handle(), WM_COMMAND, frmZorvi::kHistoryCommand + 2, 0);
    EXPECT_EQ(mdlMain::TargetFile(), files / "real.mml");
    EXPECT_EQ(zorvi->History()[0], mdlFile::GetLongPath(files / "real.mml"));
    EXPECT_EQ(zorvi->History()[1], files.Path());
}

// ------------------------------------------------------------ keys

TEST(MainWindow, FunctionKeys) {
    const struct {
        const char* name;
        int key, shift;
        std::function<bool(MainWindow&)> happened;
    } cases[] = {
        {"F3 watches", VK_F3, 0, [](MainWindow& z) { return z->Watching(); }},
        {"F5 compiles", VK_F5, 0, [](MainWindow& z) { return z.compiles == 1; }},
        {"Shift+F5 does not", VK_F5, 1, [](MainWindow& z) { return z.compiles == 0; }},
        {"Ctrl+Alt+F5 does not", VK_F5, 6,
         [](MainWindow& z) { return z.compiles == 0 && z->Mode() == 0; }},
        {"F4 does nothing", VK_F4, 0,
         [](MainWindow& z) { return z.compiles == 0 && !z->Watching(); }},
        {"F7 shows the log", VK_F7, 0,
         [](MainWindow&) { return IsWindowVisible(ResultWindow().Handle()) != FALSE; }},
        {"F11 minimises", VK_F11, 0, [](MainWindow& z) { return IsIconic(z.Handle()) != FALSE; }},
        {"F12 closes", VK_F12, 0, [](MainWindow& z) { return z->Handle() == nullptr; }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        MainWindow zorvi;
        zorvi->SetFile(zorvi.File("song.mml"));
        zorvi->Form_KeyDown(c.key, c.shift);
        EXPECT_TRUE(PumpUntil([&] { return c.happened(zorvi); }, 2s));
        if (ResultWindow().Handle() != nullptr) ShowWindow(ResultWindow().Handle(), SW_HIDE);
    }
}

TEST(MainWindow, CtrlArrowsMoveAndResize) {
    const struct {
        const char* name;
        int key, shift;
        int dLeft, dTop, dWidth, dHeight;  // twips
    } cases[] = {
        {"Ctrl+Right", VK_RIGHT, 2, 512, 0, 0, 0},
        {"Ctrl+Up", VK_UP, 2, 0, -512, 0, 0},
        {"Ctrl+Alt+Left", VK_LEFT, 6, -32, 0, 0, 0},
        {"Ctrl+Alt+Down", VK_DOWN, 6, 0, 32, 0, 0},
        {"Ctrl+Shift+Down", VK_DOWN, 3, 0, 0, 0, 256},
        {"Ctrl+Shift+Left", VK_LEFT, 3, 0, 0, -256, 0},
        {"Ctrl+Shift+Alt+Right", VK_RIGHT, 7, 0, 0, 16, 0},
        {"Ctrl+Shift+Alt+Down", VK_DOWN, 7, 0, 0, 0, 16},
        {"Shift+Right", VK_RIGHT, 1, 0, 0, 0, 0},
        {"Right", VK_RIGHT, 0, 0, 0, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        MainWindow zorvi("[Main]\r\nLeft=3000\r\nTop=3000\r\nWidth=6000\r\nHeight=1800\r\n");
        const auto before = GetWindowBoxTwips(zorvi.Handle());
        ASSERT_TRUE(before.has_value());
        zorvi->Form_KeyDown(c.key, c.shift);
        const ScreenDpi dpi = GetScreenDpi();
        const RECT rect = zorvi.Rect();
        EXPECT_EQ(rect.left, TwipsToPixels(before->left + c.dLeft, dpi.x));
        EXPECT_EQ(rect.top, TwipsToPixels(before->top + c.dTop, dpi.y));
        EXPECT_EQ(rect.right - rect.left, TwipsToPixels(before->width + c.dWidth, dpi.x));
        EXPECT_EQ(rect.bottom - rect.top, TwipsToPixels(before->height + c.dHeight, dpi.y));
    }
}

TEST(MainWindow, KeysReachTheWindowBeforeItsControls) {
    MainWindow zorvi;
    zorvi->SetFile(zorvi.File("song.mml"));
    COMBOBOXINFO list{};
    list.cbSize = sizeof list;
    ASSERT_TRUE(GetComboBoxInfo(zorvi->Combo1(0), &list));
    const struct {
        const char* name;
        HWND control;
    } cases[] = {{"launcher list", list.hwndItem},
                 {"toolbar", zorvi->Toolbar()},
                 {"status bar", zorvi->StatusBar()},
                 {"window", zorvi.Handle()}};
    int expected = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        PostMessageW(c.control, WM_KEYDOWN, VK_F5, 0);
        ++expected;
        EXPECT_TRUE(PumpUntil([&] { return zorvi.compiles == expected; }, 1s));
    }
    // The list keeps the keys that are not the window's.
    SetFocus(list.hwndItem);
    PostMessageW(list.hwndItem, WM_CHAR, 'x', 0);
    PumpFor(50ms);
    EXPECT_EQ(Text(zorvi->Combo1(0)), L"x");
}

// ------------------------------------------------------------ drops and bad input

// A drop as the shell hands it over: a DROPFILES block with ANSI names.
HGLOBAL MakeDrop(const std::vector<std::string>& files) {
    std::string names;
    for (const auto& file : files) names += file + '\0';
    names += '\0';
    const HGLOBAL memory = GlobalAlloc(GHND, sizeof(DROPFILES) + names.size());
    auto* drop = static_cast<DROPFILES*>(GlobalLock(memory));
    drop->pFiles = sizeof(DROPFILES);
    drop->fWide = FALSE;
    std::copy(names.begin(), names.end(), reinterpret_cast<char*>(drop + 1));
    GlobalUnlock(memory);
    return memory;
}

TEST(MainWindow, DroppedFilesSetTheFirstFile) {
    const struct {
        const char* name;
        std::vector<std::string> dropped;  // names in the folder; "." is the folder itself
        const char* target;
    } cases[] = {
        {"one file", {"a.mml"}, "a.mml"},
        {"several files", {"b.mml", "a.mml"}, "b.mml"},
        {"a folder", {"."}, ""},
        {"a folder first", {".", "a.mml"}, ""},
        {"a missing file", {"gone.mml"}, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        MainWindow zorvi;
        zorvi.File("a.mml");
        zorvi.File("b.mml");
        std::vector<std::string> paths;
        for (const auto& name : c.dropped) {
            paths.push_back(name == std::string(".") ? zorvi.folder.Path() : zorvi.folder / name);
        }
        SendMessageW(zorvi.Handle(), WM_DROPFILES, reinterpret_cast<WPARAM>(MakeDrop(paths)), 0);
        EXPECT_EQ(mdlMain::TargetFile(), *c.target ? zorvi.folder / c.target : "");
        EXPECT_TRUE(zorvi.boxes.empty());
    }
    MainWindow zorvi;
    SendMessageW(zorvi.Handle(), WM_DROPFILES, reinterpret_cast<WPARAM>(MakeDrop({})), 0);
    EXPECT_EQ(mdlMain::TargetFile(), "");
}

TEST(MainWindow, TargetOnAPathOf259Characters) {
    MainWindow zorvi;
    const std::string folder = zorvi.folder.Path() + "\\";
    ASSERT_LT(folder.size(), 200u);
    const std::string name = std::string(259 - folder.size() - 4, 'n') + ".mml";
    const std::string path = folder + name;
    ASSERT_EQ(path.size(), 259u);
    zorvi.File(name);
    zorvi->SetFile(path);
    EXPECT_EQ(mdlMain::TargetFile(), path);
    EXPECT_EQ(Text(zorvi.Handle()), CaptionFor(name));
    const std::string longForm = mdlFile::GetLongPath(path);
    EXPECT_EQ(longForm.size(), 259u);
    EXPECT_EQ(zorvi->History()[0], longForm);
    ASSERT_TRUE(zorvi.Close());
    EXPECT_EQ(zorvi.Setting("History", "His00"), longForm);
}

TEST(MainWindow, AbsurdGeometryLeavesTheWindowOnScreen) {
    const struct {
        const char* name;
        const char* main;
    } cases[] = {
        {"negative place", "Left=-100000\r\nTop=-100000\r\n"},
        {"far away", "Left=1000000000\r\nTop=1000000000\r\n"},
        {"huge", "Left=1000000000\r\nTop=1000000000\r\nWidth=1000000000\r\nHeight=1000000000\r\n"},
        {"negative size", "Width=-5\r\nHeight=-5\r\n"},
        {"nothing", "Width=0\r\nHeight=0\r\n"},
        {"overflowing", "Left=2147483647\r\nTop=-2147483648\r\nWidth=2147483647\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        MainWindow zorvi(std::string("[Setting]\r\nDefault=keep\r\n[Main]\r\n") + c.main);
        RECT rect = zorvi.Rect();
        EXPECT_NE(MonitorFromRect(&rect, MONITOR_DEFAULTTONULL), nullptr);
        EXPECT_GT(rect.right - rect.left, 0);
        EXPECT_GT(rect.bottom - rect.top, 0);
        // Still usable: the keys move it and it closes, keeping the other settings.
        zorvi->Form_KeyDown(VK_DOWN, 2);
        rect = zorvi.Rect();
        EXPECT_NE(MonitorFromRect(&rect, MONITOR_DEFAULTTONULL), nullptr);
        ASSERT_TRUE(zorvi.Close());
        EXPECT_EQ(zorvi.Setting("Setting", "Default"), "keep");
    }
}

}  // namespace
}  // namespace zorvi
