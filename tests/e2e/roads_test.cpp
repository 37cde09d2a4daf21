// The real zorvi.exe on the users' roads: started with a file and closed, the
// command line's compile and log, a second start, watch mode compiling on a
// save, and F5 in the main window. The stand-in compiler, run by Wine's own
// cmd.exe from Zorvi.bat, takes its orders from the song's first lines.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/version.h"
#include "support/driver.h"

namespace zorvi::testing {
namespace {

const std::string kTitle = "Zorvi v" + VersionText(ThisVersion());
std::wstring Wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

// Zorvi.ini making configuration "chain" active, with a player list to be
// cleaned, and cfg\chain.ini: the stand-in compiler beside the tests writes
// song.out and song.log; the player is one of the stand-ins.
void WriteChain(const Installation& zorvi, const std::string& options = {},
                const std::string& player = "zplayer.exe", char detectError = '1') {
    zorvi.Write("Zorvi.ini", "[Setting]\r\nDefault=chain\r\n[PlayerList]\r\nItemCount=1\r\n"
                             "Item1=C:\\gone.exe\r\n[Option]\r\n" + options);
    CreateDirectoryA((zorvi / "cfg").c_str(), nullptr);
    const std::string compiler = BesideTestProgram("zcompiler.exe");
    zorvi.Write("cfg\\chain.ini",
                "[Configure]\r\nConsole=" + compiler + "\r\nExtension=out\r\nPlayer=" +
                    BesideTestProgram(player) + "\r\n[Option]\r\nUseCUI=1\r\nCUIWindowState=2\r\n"
                    "UseGUI=1\r\nDetectError=" + detectError + "\r\n[Script]\r\nLine=1\r\n"
                    "Line1=\"" + compiler + "\" $fp$$fn$ $fp$$fn2$.out $fp$$fn2$.log\r\n");
}

std::string Setting(const Installation& zorvi, const char* section, const char* key) {
    char value[300] = {};
    GetPrivateProfileStringA(section, key, "", value, 300, (zorvi / "Zorvi.ini").c_str());
    return value;
}

void ExpectExit(const Running& zorvi) {
    const auto code = zorvi.WaitForExit();
    ASSERT_TRUE(code.has_value()) << "Zorvi did not end";
    EXPECT_EQ(*code, 0u);
}

// The main window refuses to close while a compile runs: asked until it goes.
void CloseAndExpectExit(const Running& zorvi, HWND main) {
    WaitUntil([&] {
        PostMessageW(main, WM_CLOSE, 0, 0);
        return zorvi.WaitForExit(100ms).has_value();
    });
    ExpectExit(zorvi);
}

TEST(Roads, TheCommandLine) {
    const std::wstring rule = L"\r\n" + std::wstring(78, L'-') + L"\r\n";
    const struct {
        const char* name;
        std::string arguments, orders;
        bool japanese;
        std::wstring shown;  // the log window's text, or a box's "caption|text"
        int button;          // that answers the box
        bool compiled;
    } cases[] = {
        {"compile", "-compilenow song.mml", "log=fine\r\n", false, L"", 0, true},
        {"compile, failing", "-compilenow song.mml", "output=none\r\nlog=E1 bad\r\n", false,
         L"Zorvi:Detect compiling error." + rule + L"E1 bad\r\n", 0, false},
        {"compile, showing the log", "-compilenow -showlog song.mml", "log=fine\r\n", false,
         L"fine\r\n", 0, true},
        {"the log alone", "-showlog song.mml", "", false, L"Zorvi:Log file not found.\r\n", 0,
         false},
        // The language is read from the settings; the missing path was dropped.
        {"no such file, in Japanese", "-compilenow nosuch.mml", "", true,
         L"Zorvi - Check|ファイルが見つかりません。\r\n", IDOK, false},
        {"no such preset: declined", "-preset=gone -compilenow song.mml", "", false,
         L"Zorvi - Check|gone.ini is not found. Do you execute using a default setup?", IDNO,
         false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Installation zorvi;
        WriteChain(zorvi);
        if (c.japanese) zorvi.Write("Zorvi.ini", "[Setting]\r\nLanguage=Japanese\r\n");
        zorvi.Write("song.mml", c.orders + "o4 c\r\n");
        Running run(zorvi, c.arguments);
        if (c.button != 0) {
            const HWND box = run.WaitForWindow(L"#32770");
            ASSERT_NE(box, nullptr);
            EXPECT_EQ(WindowText(box) + L"|" + MessageBoxText(box), c.shown);
            PressButton(box, c.button);
        } else if (!c.shown.empty()) {
            // Closing the log window ends the run.
            const HWND result = run.WaitForWindow(L"ZorviResult");
            ASSERT_NE(result, nullptr);
            EXPECT_EQ(WindowText(FindWindowExW(result, nullptr, L"Edit", nullptr)), c.shown);
            PostMessageW(result, WM_CLOSE, 0, 0);
        }
        ExpectExit(run);
        EXPECT_EQ(zorvi.Read("song.out").empty(), !c.compiled);
        // Only the main window's start rebuilds the player list.
        EXPECT_EQ(Setting(zorvi, "PlayerList", "Item1"), c.japanese ? "" : "C:\\gone.exe");
    }
}

// One session of the main window: started with a file, brought forward by a
// second start, compiling on a save and on F5, each compile followed by the
// player, which closing the window ends.
TEST(Roads, TheMainWindow) {
    Installation zorvi;
    // The stand-in compiler plays too: the "generated file" tells it to say
    // its id and run on. The output is kept as it was, and not judged.
    WriteChain(zorvi, "AutoWatch=1\r\nTimerInterval=50\r\nAutoShutDown=1\r\n", "zcompiler.exe",
               '0');
    zorvi.Write("Song.MML", "output=keep\r\nargs=" + (zorvi / "compiles.txt") + "\r\no4 c\r\n");
    zorvi.Write("Song.out", "pid=" + (zorvi / "player.pid") + "\r\noutput=keep\r\nhang=1\r\n");
    const auto compiledAndPlayed = [&](int compiles) {
        // Every compile appends a record of its start; its player writes the pid file anew.
        DeleteFileA((zorvi / "player.pid").c_str());
        return [&zorvi, compiles] {
            const std::string record = zorvi.Read("compiles.txt");
            int count = 0;
            for (auto at = record.find("cmdline="); at != std::string::npos;
                 at = record.find("cmdline=", at + 1)) {
                ++count;
            }
            return count == compiles && zorvi.Read("player.pid").ends_with("\r\n");
        };
    };
    std::vector<HANDLE> players;
    const auto holdPlayer = [&] {
        players.push_back(OpenProcess(SYNCHRONIZE, FALSE,
                                      static_cast<DWORD>(std::stoul(zorvi.Read("player.pid")))));
    };
    Running run(zorvi, "song.mml");
    const HWND main = run.WaitForWindow(L"ZorviMain");
    ASSERT_NE(main, nullptr);
    // The target in its case on disk.
    EXPECT_EQ(WindowText(main), Wide("Song.MML - " + kTitle));

    ShowWindow(main, SW_MINIMIZE);
    ASSERT_TRUE(WaitUntil([&] { return IsIconic(main) != FALSE; }));
    ExpectExit(Running(zorvi, ""));
    EXPECT_TRUE(WaitUntil([&] { return IsIconic(main) == FALSE; })) << "not brought forward";
    // A command-line compile is refused meanwhile.
    const Running refused(zorvi, "-compilenow song.mml");
    const HWND box = refused.WaitForWindow(L"#32770");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(MessageBoxText(box), L"Zorvi has already started. Cannot execute from command mode.");
    PressButton(box, IDOK);
    ExpectExit(refused);

    const auto saved = compiledAndPlayed(1);
    Touch(zorvi / "Song.MML");
    ASSERT_TRUE(WaitUntil(saved)) << "no compile on the save";
    holdPlayer();
    const auto pressed = compiledAndPlayed(2);
    PostMessageW(main, WM_KEYDOWN, VK_F5, 0);
    ASSERT_TRUE(WaitUntil(pressed)) << "no compile on F5";
    holdPlayer();

    CloseAndExpectExit(run, main);
    for (const HANDLE player : players) {
        EXPECT_EQ(WaitForSingleObject(player, 5000), static_cast<DWORD>(WAIT_OBJECT_0));
        TerminateProcess(player, 1);
        CloseHandle(player);
    }
    EXPECT_EQ(Setting(zorvi, "Main", "Width"), "4410");
    // The window's start cleans the player list and adds the configuration's player.
    EXPECT_EQ(Setting(zorvi, "PlayerList", "Item1"), BesideTestProgram("zcompiler.exe"));
}

}  // namespace
}  // namespace zorvi::testing
