// The main window's parts: its popup menu, configuration and player menus,
// tray icon and launcher list, read back from the built menus, the settings
// files and the launch record; its keyboard moves, the end of a session, and
// watching through a compile the timer started.
#include <gtest/gtest.h>

#include <windows.h>

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/mdlMain.h"
#include "core/version.h"
#include "core/messages_win.h"
#include "core/wide_win.h"
#include "files/path_win.h"
#include "run/clsExecute.h"
#include "settings/ini_win.h"
#include "support/temp_folder.h"
#include "support/wait.h"
#include "ui/main/frmZorvi.h"

namespace zorvi {
namespace {

using testing::TempFolder;

std::wstring EntryText(HMENU menu, int position) {
    wchar_t text[512] = {};
    GetMenuStringW(menu, static_cast<UINT>(position), text, 512, MF_BYPOSITION);
    return text;
}

// The position of the entry whose caption starts with prefix (or, with
// anywhere, holds it); -1 when none.
int FindEntry(HMENU menu, const std::wstring& prefix, bool anywhere = false) {
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        const std::wstring text = EntryText(menu, i);
        if (anywhere ? text.find(prefix) != std::wstring::npos : text.rfind(prefix, 0) == 0) {
            return i;
        }
    }
    return -1;
}

bool Checked(HMENU menu, int position) {
    return (GetMenuState(menu, static_cast<UINT>(position), MF_BYPOSITION) & MF_CHECKED) != 0;
}

// A main window on the settings of a fresh folder, with configurations in
// the program's own cfg folder (removed afterwards) and boxes recorded.
class Zorvi {
public:
    explicit Zorvi(const std::string& settings, std::vector<std::string> configurations = {},
                   bool withTarget = true)
        : configurations_(std::move(configurations)) {
        CreateDirectoryA(Cfg("").c_str(), nullptr);
        for (const auto& name : configurations_) {
            WriteIni("Option", "UseGUI", "1", Cfg(name));
        }
        folder.Write("Zorvi.ini", settings);
        mdlMain::SetMainSettingsPath(folder / "Zorvi.ini");
        mdlMain::SetInteractiveMode(true);
        previous_ = SetMessageBoxFunction([this](HWND, const std::wstring& text,
                                                  const std::wstring&, UINT) {
            boxes.push_back(text);
            return IDOK;
        });
        window = std::make_unique<frmZorvi>();
        window->Create(nullptr);
        folder.Write("song.mml", "o4 c");
        window->Start(withTarget ? folder / "song.mml" : std::string());
    }
    ~Zorvi() {
        if (window->Handle() != nullptr) window->DeleteIcon();
        window.reset();
        SetMessageBoxFunction(std::move(previous_));
        mdlMain::SetTargetFile({});
        for (const auto& name : configurations_) DeleteFileA(Cfg(name).c_str());
    }
    static std::string Cfg(const std::string& name) {
        return mdlFile::GetAppFolder() + "cfg\\" + name + (name.empty() ? "" : ".ini");
    }
    std::string Setting(const char* section, const char* key, const std::string& file = {}) {
        return ReadIni(section, key, "<none>", file.empty() ? folder / "Zorvi.ini" : file);
    }

    TempFolder folder;
    std::unique_ptr<frmZorvi> window;
    std::vector<std::wstring> boxes;

private:
    std::vector<std::string> configurations_;
    MessageBoxFunction previous_;
};

TEST(MainMenus, PopupShowsRecentUsedWithAHistoryAndShowOnlyInTheTray) {
    const struct {
        bool history, tray;
    } cases[] = {{false, false}, {true, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.history);
        Zorvi zorvi("", {}, c.history);
        if (c.tray) zorvi.window->AddIcon();
        const HMENU popup = zorvi.window->PreparePopUp();
        ASSERT_NE(popup, nullptr);
        EXPECT_EQ(GetMenuItemCount(popup), c.tray ? 17 : 16);
        EXPECT_EQ(FindEntry(popup, L"Show") >= 0, c.tray);
        const int recent = FindEntry(popup, L"&Recent Used");
        ASSERT_GE(recent, 0);
        EXPECT_EQ((GetMenuState(popup, static_cast<UINT>(recent), MF_BYPOSITION) & MF_GRAYED) == 0,
                  c.history);
        // The watch entry carries the watch view, the rest their captions.
        EXPECT_EQ(EntryText(popup, 0), L"&About");
        EXPECT_EQ(EntryText(popup, GetMenuItemCount(popup) - 1), L"E&xit");
    }
}

TEST(MainMenus, ChoosingAConfigurationOrAPlayerWritesItAndMovesTheCheck) {
    const std::string tag = "zm" + std::to_string(GetCurrentProcessId());
    const std::string first = tag + "a", second = tag + "B&c";
    Zorvi zorvi("[Setting]\r\nDefault=" + first + "\r\n[PlayerList]\r\nItemCount=1\r\nItem1=" +
                    mdlFile::GetAppFolder() + "zplayer.exe\r\n",
                {second, first});
    frmZorvi& window = *zorvi.window;
    const HMENU popup = window.PreparePopUp();
    const HMENU scripts = GetSubMenu(popup, FindEntry(popup, L"Script setting"));
    const HMENU players = GetSubMenu(popup, FindEntry(popup, L"Player setting"));
    ASSERT_NE(scripts, nullptr);
    ASSERT_NE(players, nullptr);
    // Case-insensitive order, whatever the folder's; the "&" of a name is
    // doubled so that it shows.
    const int firstAt = FindEntry(scripts, Widen(" : " + first), true);
    const int secondAt = FindEntry(scripts, Widen(" : " + tag + "B&&c"), true);
    ASSERT_GE(firstAt, 0);
    EXPECT_EQ(secondAt, firstAt + 1);
    EXPECT_TRUE(Checked(scripts, firstAt));

    // The popup's submenu and the toolbar's drop-down give the same commands.
    window.OnCommand(static_cast<int>(GetMenuItemID(window.ScriptMenu(), secondAt)));
    EXPECT_EQ(zorvi.Setting("Setting", "Default"), second);
    EXPECT_TRUE(Checked(window.ScriptMenu(), secondAt));
    EXPECT_FALSE(Checked(window.ScriptMenu(), firstAt));
    EXPECT_EQ(window.StatusPanelText(1), Widen(second));

    const std::string configuration = Zorvi::Cfg(second);
    window.OnCommand(static_cast<int>(GetMenuItemID(players, FindEntry(players, L"&2"))));
    EXPECT_EQ(zorvi.Setting("Option", "UseAssociated", configuration), "0");
    EXPECT_EQ(zorvi.Setting("Configure", "Player", configuration),
              mdlFile::GetAppFolder() + "zplayer.exe");
    EXPECT_TRUE(Checked(window.PlayerMenu(), 1));
    EXPECT_EQ(window.StatusPanelText(2), L"zplayer.exe");
    window.OnCommand(static_cast<int>(GetMenuItemID(window.PlayerMenu(), 0)));
    EXPECT_EQ(zorvi.Setting("Option", "UseAssociated", configuration), "1");
    EXPECT_TRUE(Checked(window.PlayerMenu(), 0));
    EXPECT_EQ(window.StatusPanelText(2), L"*");
}

TEST(MainMenus, TrayTipFollowsTargetAndWatchAndTrayIsUsedOnlyWhenAsked) {
    for (const bool tray : {false, true}) {
        SCOPED_TRACE(tray);
        Zorvi zorvi(tray ? "[Option]\r\nTaskTray=1\r\n" : "");
        frmZorvi& window = *zorvi.window;
        ShowWindow(window.Handle(), SW_MINIMIZE);
        EXPECT_EQ(window.InTaskTray(), tray);
        EXPECT_EQ(IsWindowVisible(window.Handle()) != FALSE, !tray);
        if (!tray) continue;
        window.WatchToggle();
        const std::wstring prefix = L"Zorvi v" + Widen(VersionText(ThisVersion()));
        EXPECT_EQ(window.TrayTip(), prefix + L" [ON]\r\nsong.mml");
        zorvi.folder.Write("b.mml", "o4 d");
        window.SetFile(zorvi.folder / "b.mml");
        EXPECT_EQ(window.TrayTip(), prefix + L" [ON]\r\nb.mml");
        // A double click on the icon brings the window back.
        SendMessageW(window.Handle(), frmZorvi::kTrayMessage, 1, WM_LBUTTONDBLCLK);
        EXPECT_FALSE(window.InTaskTray());
        EXPECT_TRUE(IsWindowVisible(window.Handle()));
    }
}

int Starts(const TempFolder& folder) {
    int count = 0;
    for (const auto& [key, value] : testing::KeyValueLines(folder.Read("record.txt"))) {
        count += key == "cmdline";
    }
    return count;
}

TEST(MainMenus, LauncherStartsTheChoiceOrTheTypedTextAndEndsWhatIsMarked) {
    const std::string app = mdlFile::GetAppFolder();
    TempFolder files;
    files.Write("hang.mml", "hang=1\r\n");
    SetEnvironmentVariableA("ZPLAYER_RECORD", (files / "record.txt").c_str());
    // Three records counted, two written: the third has no command.
    Zorvi zorvi("[ExternalProgram]\r\nItemCount=3\r\nItem1=Player\r\nCommand1=" + app +
                "zplayer.exe\r\nOption1=$fn$\r\nWindowState1=9\r\nItem2=Hang\r\nCommand2=" + app +
                "zcompiler.exe\r\nOption2=" + (files / "hang.mml") + "\r\nAutoShutDown2=1\r\n");
    frmZorvi& window = *zorvi.window;
    const HWND list = window.Combo1(0);
    ASSERT_EQ(SendMessageW(list, CB_GETCOUNT, 0, 0), 3);
    const auto enterOn = [&](int entry) {
        SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(entry), 0);
        return window.Combo1_KeyDown(VK_RETURN, 0);
    };

    // The option is expanded at the start: it names the target of now.
    zorvi.folder.Write("b.mml", "o4 d");
    window.SetFile(zorvi.folder / "b.mml");
    ASSERT_TRUE(enterOn(0));
    ASSERT_TRUE(enterOn(0));
    ASSERT_TRUE(testing::WaitUntil([&] { return Starts(files) == 2; }));
    EXPECT_NE(files.Read("record.txt").find("arg1=b.mml"), std::string::npos);
    EXPECT_EQ(window.Launcher().LastLaunch(0), LaunchedPrograms().size() - 1);

    // Typed text runs as a command.
    SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(-1), 0);
    SetWindowTextW(list, Widen(app + "zplayer.exe").c_str());
    ASSERT_TRUE(window.Combo1_KeyDown(VK_RETURN, 0));
    ASSERT_TRUE(testing::WaitUntil([&] { return Starts(files) == 3; }));

    // A record that cannot start says why and with what; nothing is recorded.
    const std::size_t launched = LaunchedPrograms().size();
    enterOn(2);
    ASSERT_EQ(zorvi.boxes.size(), 1u);
    EXPECT_EQ(zorvi.boxes[0].rfind(L"File not found.\r\n", 0), 0u) << zorvi.boxes[0];
    EXPECT_EQ(LaunchedPrograms().size(), launched);

    // Only the record marked to end with Zorvi is ended.
    enterOn(1);
    const std::size_t hanging = *window.Launcher().LastLaunch(1);
    ASSERT_TRUE(LaunchedPrograms()[hanging].ProcessHandle);
    const HANDLE process = LaunchedPrograms()[hanging].ProcessHandle.get();
    HANDLE watched = nullptr;
    DuplicateHandle(GetCurrentProcess(), process, GetCurrentProcess(), &watched, SYNCHRONIZE,
                    FALSE, 0);
    const UniqueHandle watch(watched);
    SendMessageW(window.Handle(), WM_CLOSE, 0, 0);
    EXPECT_EQ(WaitForSingleObject(watch.get(), 10000), WAIT_OBJECT_0);
    SetEnvironmentVariableA("ZPLAYER_RECORD", nullptr);
}

// Serves this thread's messages until the condition holds or the time is up.
bool PumpUntil(const std::function<bool()>& condition) {
    return testing::WaitUntil([&] {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        return condition();
    });
}

TEST(MainParts, FolderChangesWakeTheWatchAndTheTimerTakesOverWhenTheFolderGoes) {
    // The timer's own period is far away: only the notification can compile.
    Zorvi zorvi("[Option]\r\nTimerInterval=600000\r\n");
    frmZorvi& window = *zorvi.window;
    std::vector<std::string> compiled;
    window.SetCompileCommand(
        [&](CompileHost&) { compiled.push_back(zorvi.folder.Read("song.mml")); });
    window.WatchToggle();
    // A burst of writes before anything is served: compiled once, the last.
    for (const char* text : {"o4 c", "o4 cd", "o4 cde", "o4 cdef"}) {
        zorvi.folder.Write("song.mml", text);
    }
    ASSERT_TRUE(PumpUntil([&] { return compiled.size() == 1; }));
    EXPECT_EQ(compiled[0], "o4 cdef");

    // A new target in another folder: the notification follows it.
    TempFolder other;
    other.Write("b.mml", "o4 d");
    window.SetFile(other / "b.mml");
    window.SetCompileCommand([&](CompileHost&) { compiled.push_back(other.Read("b.mml")); });
    other.Write("b.mml", "o4 de");
    ASSERT_TRUE(PumpUntil([&] { return compiled.size() == 2; }));
    EXPECT_EQ(compiled[1], "o4 de");

    // The folder goes: the timer's ticks let the target go.
    std::filesystem::remove_all(other.Path());
    ASSERT_TRUE(PumpUntil([&] {
        SendMessageW(window.Handle(), WM_TIMER, 1, 0);
        return mdlMain::TargetFile().empty();
    }));
    EXPECT_FALSE(window.Watching());
}

TEST(MainParts, KeyMovesGoWhereTheKeysSteerAndTheSessionEndKeepsThePlace) {
    Zorvi zorvi("[Main]\r\nLeft=0\r\nTop=0\r\nMode=2\r\n");
    frmZorvi& window = *zorvi.window;
    // Ctrl+Left at the left edge takes the window off it, 512 twips.
    ASSERT_TRUE(window.Form_KeyDown(VK_LEFT, 2));
    RECT rect{};
    GetWindowRect(window.Handle(), &rect);
    EXPECT_LT(rect.left, 0);
    SendMessageW(window.Handle(), WM_ENDSESSION, TRUE, 0);
    EXPECT_EQ(zorvi.Setting("Main", "Left"), "-510");  // twips of the pixels it moved
    EXPECT_EQ(zorvi.Setting("Main", "Mode"), "2");
}

TEST(MainParts, WatchGoesOnWithATargetSetDuringATickCompile) {
    Zorvi zorvi("");
    frmZorvi& window = *zorvi.window;
    zorvi.folder.Write("b.mml", "o4 d");
    int compiles = 0;
    window.SetCompileCommand([&](CompileHost&) {
        // A drop while the timer's compile runs.
        if (++compiles == 1) window.SetFile(zorvi.folder / "b.mml");
    });
    window.WatchToggle();
    ASSERT_TRUE(window.Watching());
    zorvi.folder.Write("song.mml", "o4 e");
    FILETIME later{};
    GetSystemTimeAsFileTime(&later);
    reinterpret_cast<ULARGE_INTEGER*>(&later)->QuadPart += 20'000'000;
    {
        const UniqueHandle file(CreateFileA((zorvi.folder / "song.mml").c_str(),
                                            FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0,
                                            nullptr));
        SetFileTime(file.get(), nullptr, nullptr, &later);
    }
    SendMessageW(window.Handle(), WM_TIMER, 1, 0);
    EXPECT_EQ(compiles, 1);
    EXPECT_TRUE(window.Watching());
    EXPECT_EQ(mdlMain::TargetFile(), zorvi.folder / "b.mml");
}

}  // namespace
}  // namespace zorvi
