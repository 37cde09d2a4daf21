// The main window's parts: its configuration and player menus and launcher
// list, read back from the built menus, the settings files and the launch
// record; and watching through folder changes.
#include <gtest/gtest.h>

#include <filesystem>

#include "core/wide_win.h"
#include "run/clsExecute.h"
#include "settings/ini_win.h"
#include "support/wait.h"
#include "ui/main/frmZorvi.h"
#include "ui/window_helpers.h"

namespace zorvi {
namespace {

using testing::FindEntry;
using testing::TempFolder;

bool Checked(HMENU menu, int position) {
    return (GetMenuState(menu, static_cast<UINT>(position), MF_BYPOSITION) & MF_CHECKED) != 0;
}

// A main window on the settings given, started with song.mml of its folder.
struct Zorvi : testing::Session {
    explicit Zorvi(const std::string& settings) : Session(settings) {
        window.Create(nullptr);
        folder.Write("song.mml", "o4 c");
        window.Start(folder / "song.mml");
    }
    frmZorvi window;
};

TEST(MainMenus, ChoosingAConfigurationOrAPlayerWritesItAndMovesTheCheck) {
    Zorvi zorvi("[PlayerList]\r\nItemCount=1\r\nItem1=" + mdlFile::GetAppFolder() +
                "zplayer.exe\r\n");
    const std::string second = zorvi.Configuration("B&c", "[Option]\r\nUseGUI=1\r\n");
    const std::string first = zorvi.Configuration("a", "[Option]\r\nUseGUI=1\r\n");
    const std::string tag = first.substr(0, first.size() - 1), last = tag + "1997";
    // A thousand configurations and more, empty: the menus are built all the same.
    for (int i = 1000; i < 1998; ++i) zorvi.Configuration(std::to_string(i), "");
    WriteIni("Setting", "Default", first, zorvi.MainFile());
    frmZorvi& window = zorvi.window;
    window.ViewChange_DefinedScript();
    const HMENU popup = window.PreparePopUp();
    const HMENU scripts = GetSubMenu(popup, FindEntry(popup, L"Script setting"));
    const HMENU players = GetSubMenu(popup, FindEntry(popup, L"Player setting"));
    ASSERT_NE(players, nullptr);
    EXPECT_GE(GetMenuItemCount(scripts), 1000);
    // Case-insensitive order, whatever the folder's; the "&" of a name is
    // doubled so that it shows.
    const int firstAt = FindEntry(scripts, Widen(" : " + first));
    ASSERT_GE(firstAt, 0);
    EXPECT_EQ(FindEntry(scripts, Widen(" : " + tag + "B&&c")), firstAt + 1);
    EXPECT_TRUE(Checked(scripts, firstAt));

    // The popup's submenu and the toolbar's drop-down give the same commands.
    const HMENU menu = window.ScriptMenu();
    window.OnCommand(static_cast<int>(GetMenuItemID(menu, FindEntry(menu, Widen(last)))));
    EXPECT_EQ(zorvi.Setting("Setting", "Default"), last);
    window.OnCommand(static_cast<int>(GetMenuItemID(window.ScriptMenu(), firstAt + 1)));
    EXPECT_EQ(zorvi.Setting("Setting", "Default"), second);
    EXPECT_TRUE(Checked(window.ScriptMenu(), firstAt + 1));
    EXPECT_FALSE(Checked(window.ScriptMenu(), firstAt));
    EXPECT_EQ(window.StatusPanelText(1), Widen(second));

    const std::string configuration = testing::CfgPath(second);
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
    frmZorvi& window = zorvi.window;
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
    HANDLE watched = nullptr;
    DuplicateHandle(GetCurrentProcess(), LaunchedPrograms()[hanging].ProcessHandle.get(),
                    GetCurrentProcess(), &watched, SYNCHRONIZE, FALSE, 0);
    const UniqueHandle watch(watched);
    SendMessageW(window.Handle(), WM_CLOSE, 0, 0);
    EXPECT_EQ(WaitForSingleObject(watch.get(), 10000), WAIT_OBJECT_0);
    SetEnvironmentVariableA("ZPLAYER_RECORD", nullptr);
}

// Serves this thread's messages until the condition holds or the time is up.
bool PumpUntil(const std::function<bool()>& condition) {
    return testing::WaitUntil([&] { return testing::ServeQueue(), condition(); });
}

TEST(MainParts, FolderChangesWakeTheWatchAndTheTimerTakesOverWhenTheFolderGoes) {
    // The timer's own period is far away: only the notification can compile.
    Zorvi zorvi("[Option]\r\nTimerInterval=600000\r\n");
    frmZorvi& window = zorvi.window;
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

}  // namespace
}  // namespace zorvi
