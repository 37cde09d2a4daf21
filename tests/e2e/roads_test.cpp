// The real zorvi.exe on the users' roads: the command line's compile and log,
// in Japanese, and a session of the main window: started with a file, a
// second start, watch mode compiling on a save, the configuration window, F5,
// and closing. The stand-in compiler, run by Wine's own cmd.exe from
// Zorvi.bat, takes its orders from the song's first lines.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/handles_win.h"
#include "core/version.h"
#include "support/driver.h"
#include "ui/config/config_ids.h"

namespace zorvi::testing {
namespace {

// Zorvi.ini making configuration "chain" active, with a player list to be
// cleaned, and cfg\chain.ini: the stand-in compiler beside the tests writes
// song.out and song.log; the player is one of the stand-ins.
void WriteChain(const Installation& zorvi, const std::string& options = {},
                const std::string& player = "zplayer.exe", char detectError = '1') {
    zorvi.Write("Zorvi.ini", "[Setting]\r\nDefault=chain\r\n[PlayerList]\r\nItemCount=1\r\n"
                             "Item1=C:\\gone.exe\r\n[Option]\r\n" + options);
    CreateDirectoryA((zorvi / "cfg").c_str(), nullptr);
    zorvi.Write("cfg\\chain.ini",
                "[Configure]\r\nConsole=" + BesideTestProgram("zcompiler.exe") +
                    "\r\nExtension=out\r\nPlayer=" + BesideTestProgram(player) +
                    "\r\n[Option]\r\nUseCUI=1\r\nCUIWindowState=2\r\nUseGUI=1\r\nDetectError=" +
                    detectError + "\r\n[Script]\r\nLine=1\r\n"
                    "Line1=\"$pp$zcompiler.exe\" $fp$$fn$ $fp$$fn2$.out $fp$$fn2$.log\r\n");
}

TEST(Roads, TheCommandLine) {
    const std::wstring rule = L"\r\n" + std::wstring(78, L'-') + L"\r\n";
    const struct {
        const char* name;
        std::string arguments, orders;
        std::wstring shown;  // the log window's text, or a box's "caption|text"
        int button;          // that answers the box
        bool compiled;
    } cases[] = {
        {"compile, failing", "-compilenow song.mml", "output=none\r\nlog=E1 bad\r\n",
         L"Zorvi:コンパイルエラーを検出しました。" + rule + L"E1 bad\r\n", 0, false},
        {"compile, showing the log", "-compilenow -showlog song.mml", "log=fine\r\n",
         L"fine\r\n", 0, true},
        {"the log alone", "-showlog song.mml", "", L"Zorvi:ログファイルが見つかりません。\r\n", 0,
         false},
        {"no such preset: declined", "-preset=gone -compilenow song.mml", "",
         L"Zorvi - Check|gone.ini が見つかりません。既定の設定で実行しますか？", IDNO, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Installation zorvi;
        WriteChain(zorvi);
        // The language is read from the settings whatever the road.
        const std::string settings = zorvi / "Zorvi.ini";
        WritePrivateProfileStringA("Setting", "Language", "Japanese", settings.c_str());
        zorvi.Write("song.mml", c.orders + "o4 c\r\n");
        Running run(zorvi, c.arguments);
        if (c.button != 0) {
            const HWND box = run.WaitForWindow(L"#32770");
            ASSERT_NE(box, nullptr);
            EXPECT_EQ(WindowText(box) + L"|" + MessageBoxText(box), c.shown);
            PressButton(box, c.button);
        } else {
            // Whatever its text; closing the log window ends the run.
            const HWND text = run.WaitForLogBox({});
            ASSERT_NE(text, nullptr);
            EXPECT_EQ(WindowText(text), c.shown);
            PostMessageW(GetParent(text), WM_CLOSE, 0, 0);
        }
        EXPECT_EQ(run.WaitForExit(), std::optional<DWORD>(0));
        EXPECT_EQ(zorvi.Read("song.out").empty(), !c.compiled);
        // Only the main window's start rebuilds the player list.
        EXPECT_EQ(zorvi.Setting("PlayerList", "Item1"), "C:\\gone.exe");
    }
}

// One session of the main window: started with a file, brought forward by a
// second start, compiling on a save, its compiler changed with F8 and compiling
// with it on F5, each compile followed by the player, which closing the window ends.
TEST(Roads, TheMainWindow) {
    Installation zorvi;
    // The stand-in compiler plays too: the "generated file" tells it to say
    // its id and run on. The output is kept as it was, and not judged.
    WriteChain(zorvi, "AutoWatch=1\r\nTimerInterval=50\r\nAutoShutDown=1\r\n", "zcompiler.exe",
               '0');
    zorvi.Write("Song.MML", "output=keep\r\nargs=" + (zorvi / "compiles.txt") + "\r\no4 c\r\n");
    zorvi.Write("Song.out", "pid=" + (zorvi / "player.pid") + "\r\noutput=keep\r\nhang=1\r\n");
    // Every compile appends a record of its start; its player writes the pid file anew.
    const auto compiledAndPlayed = [&](int compiles) {
        return Starts(zorvi.Read("compiles.txt")) == compiles &&
               zorvi.Read("player.pid").ends_with("\r\n");
    };
    std::vector<UniqueHandle> players;
    const auto holdPlayer = [&] {
        const auto id = static_cast<DWORD>(std::stoul(zorvi.Read("player.pid")));
        players.emplace_back(OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, id));
        DeleteFileA((zorvi / "player.pid").c_str());
    };
    Running run(zorvi, "song.mml");
    const HWND main = run.WaitForWindow(L"ZorviMain");
    ASSERT_NE(main, nullptr);
    // The target in its case on disk.
    const std::string caption = "Song.MML - Zorvi v" + VersionText(ThisVersion());
    EXPECT_EQ(WindowText(main), std::wstring(caption.begin(), caption.end()));

    ShowWindow(main, SW_MINIMIZE);
    ASSERT_TRUE(WaitUntil([&] { return IsIconic(main) != FALSE; }));
    EXPECT_EQ(Running(zorvi, "").WaitForExit(), std::optional<DWORD>(0));
    EXPECT_TRUE(WaitUntil([&] { return IsIconic(main) == FALSE; })) << "not brought forward";
    // A command-line compile is refused meanwhile.
    const Running refused(zorvi, "-compilenow song.mml");
    const HWND box = refused.WaitForWindow(L"#32770");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(MessageBoxText(box), L"Zorvi has already started. Cannot execute from command mode.");
    PressButton(box, IDOK);
    EXPECT_EQ(refused.WaitForExit(), std::optional<DWORD>(0));

    Touch(zorvi / "Song.MML");
    ASSERT_TRUE(WaitUntil([&] { return compiledAndPlayed(1); })) << "no compile on the save";
    holdPlayer();

    // A compiler typed into the configuration window's field, which sits on
    // one of its pages, is saved with Enter, as in any dialog.
    CreateDirectoryA((zorvi / "new").c_str(), nullptr);
    const std::string newCompiler = zorvi / "new\\zcompiler.exe";
    ASSERT_TRUE(CopyFileA(BesideTestProgram("zcompiler.exe").c_str(), newCompiler.c_str(), FALSE));
    PostMessageW(main, WM_KEYDOWN, VK_F8, 0);
    const HWND config = run.WaitForWindow(L"ZorviConfig");
    HWND console = nullptr;
    for (HWND page = GetWindow(config, GW_CHILD); page != nullptr && console == nullptr;
         page = GetWindow(page, GW_HWNDNEXT)) {
        console = GetDlgItem(page, config_ids::kTextBase + 2);
    }
    ASSERT_NE(console, nullptr);
    SendMessageA(console, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(newCompiler.c_str()));
    PostMessageW(console, WM_KEYDOWN, VK_RETURN, 0);
    ASSERT_TRUE(WaitUntil([&] { return !IsWindow(config); }));
    PostMessageW(main, WM_KEYDOWN, VK_F5, 0);
    ASSERT_TRUE(WaitUntil([&] { return compiledAndPlayed(2); })) << "no compile on F5";
    holdPlayer();
    std::vector<std::string> commands;
    for (const auto& [key, value] : KeyValueLines(zorvi.Read("compiles.txt"))) {
        if (key == "cmdline") commands.push_back(value);
    }
    ASSERT_EQ(commands.size(), 2u);
    EXPECT_EQ(commands[0].find("\\new\\zcompiler.exe"), std::string::npos) << commands[0];
    EXPECT_NE(commands[1].find("\\new\\zcompiler.exe"), std::string::npos) << commands[1];

    // The main window refuses to close while a compile runs: asked until it goes.
    WaitUntil([&] {
        PostMessageW(main, WM_CLOSE, 0, 0);
        return run.WaitForExit(100ms).has_value();
    });
    EXPECT_EQ(run.WaitForExit(), std::optional<DWORD>(0));
    for (const UniqueHandle& player : players) {
        EXPECT_EQ(WaitForSingleObject(player.get(), 5000), static_cast<DWORD>(WAIT_OBJECT_0));
        TerminateProcess(player.get(), 1);
    }
    EXPECT_EQ(zorvi.Setting("Main", "Width"), "4410");
    // The window's start cleans the player list and adds the configuration's player.
    EXPECT_EQ(zorvi.Setting("PlayerList", "Item1"), BesideTestProgram("zcompiler.exe"));
}

}  // namespace
}  // namespace zorvi::testing
