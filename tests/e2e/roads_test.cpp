// The real zorvi.exe in sessions of its main window: started with a file, a
// second start, watch mode compiling on a safe save, the configuration window,
// F5, a hanging compile stopped by Esc and by closing; in Japanese, the
// launcher's programs that start with it, and its popup menu opened with F9
// and answered from the keyboard. The stand-in compiler, run by Wine's own
// cmd.exe from Zorvi.bat, takes its orders from the song's first lines. And
// the release as a newcomer meets it: the staged package (what the zip holds)
// in a fresh folder without settings compiles the example songs with F5, and
// a double click on the broken song's error opens the editor at its line.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "core/handles_win.h"
#include "core/version.h"
#include "support/driver.h"
#include "ui/config/config_ids.h"

namespace zorvi::testing {
namespace {

// Each compile is followed by the player, which closing the window ends.
TEST(Roads, TheMainWindow) {
    Installation zorvi;
    // Configuration "chain", with a player list to be cleaned: the stand-in
    // compiler beside the tests writes song.out and song.log, and plays too:
    // the "generated file" tells it to say its id and run on. The output is
    // kept as it was, and not judged.
    zorvi.Write("Zorvi.ini", "[Setting]\r\nDefault=chain\r\n[PlayerList]\r\nItemCount=1\r\n"
                             "Item1=C:\\gone.exe\r\n[Option]\r\nAutoWatch=1\r\nTimerInterval=50\r\n"
                             "AutoShutDown=1\r\n");
    CreateDirectoryA((zorvi / "cfg").c_str(), nullptr);
    const std::string standIn = BesideTestProgram("zcompiler.exe");
    zorvi.Write("cfg\\chain.ini",
                "[Configure]\r\nConsole=" + standIn + "\r\nExtension=out\r\nPlayer=" + standIn +
                    "\r\n[Option]\r\nUseCUI=1\r\nCUIWindowState=2\r\nUseGUI=1\r\nDetectError=0\r\n"
                    "[Script]\r\nLine=1\r\n"
                    "Line1=\"$pp$zcompiler.exe\" $fp$$fn$ $fp$$fn2$.out $fp$$fn2$.log\r\n");
    zorvi.Write("Song.out", "pid=" + (zorvi / "player.pid") + "\r\noutput=keep\r\nhang=1\r\n");
    // Each version of the song has its compiles recorded in a file of its own.
    const auto version = [&](const char* record, const std::string& orders = "") {
        return "output=keep\r\nargs=" + (zorvi / record) + "\r\n" + orders + "o4 c\r\n";
    };
    const auto starts = [&](const char* record) { return Starts(zorvi.Read(record)); };
    // Every compile is followed by its player, which writes the pid file anew;
    // the players are held until the end.
    std::vector<UniqueHandle> players;
    const auto compiledAndPlayed = [&](int compiles) {
        if (starts("atomic.txt") != compiles || !zorvi.Read("player.pid").ends_with("\r\n")) {
            return false;
        }
        const auto id = static_cast<DWORD>(std::stoul(zorvi.Read("player.pid")));
        players.emplace_back(OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE, FALSE, id));
        return DeleteFileA((zorvi / "player.pid").c_str()) != FALSE;
    };
    zorvi.Write("Song.MML", version("before.txt"));
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
    HWND box = refused.WaitForWindow(L"#32770");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(MessageBoxText(box), L"Zorvi has already started. Cannot execute from command mode.");
    PressButton(box, IDOK);
    EXPECT_EQ(refused.WaitForExit(), std::optional<DWORD>(0));

    // Editors that save safely write a new file, delete the target and rename
    // the new file to it: watching compiles that once and goes on.
    zorvi.Write("Song.MML.tmp", version("atomic.txt"));
    Touch(zorvi / "Song.MML.tmp");
    ASSERT_TRUE(DeleteFileA((zorvi / "Song.MML").c_str()));
    ASSERT_TRUE(MoveFileA((zorvi / "Song.MML.tmp").c_str(), (zorvi / "Song.MML").c_str()));
    ASSERT_TRUE(WaitUntil([&] { return compiledAndPlayed(1); })) << "no compile on the save";

    // A compiler typed into the configuration window's field, which sits on
    // one of its pages, is saved with Enter, as in any dialog.
    CreateDirectoryA((zorvi / "new").c_str(), nullptr);
    const std::string newCompiler = zorvi / "new\\zcompiler.exe";
    ASSERT_TRUE(CopyFileA(standIn.c_str(), newCompiler.c_str(), FALSE));
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
    // The first compile's command line, then the second's.
    const std::string record = zorvi.Read("atomic.txt");
    const std::size_t second = record.find("cmdline=", 1);
    EXPECT_EQ(record.substr(0, second).find("\\new\\zcompiler.exe"), std::string::npos) << record;
    EXPECT_NE(record.find("\\new\\zcompiler.exe", second), std::string::npos) << record;

    // A compiler that hangs is ended by Esc, and by closing the window after one question.
    const std::string hang = "pid=" + (zorvi / "pid.txt") + "\r\nlog=started\r\nhang=1\r\n";
    zorvi.Write("Song.MML", version("hang.txt", hang));
    Touch(zorvi / "Song.MML");
    ASSERT_TRUE(WaitUntil([&] { return zorvi.Read("pid.txt").ends_with("\r\n"); }))
        << "no longer watching";
    // The stand-in writes its id before its log line: stop it once both are there.
    ASSERT_TRUE(WaitUntil([&] { return zorvi.Read("Song.log").starts_with("started"); }));
    const DWORD compilerId = static_cast<DWORD>(std::stoul(zorvi.Read("pid.txt")));
    const UniqueHandle compiler(OpenProcess(SYNCHRONIZE, FALSE, compilerId));
    ASSERT_TRUE(compiler);
    PostMessageW(main, WM_KEYDOWN, VK_ESCAPE, 0);
    EXPECT_EQ(WaitForSingleObject(compiler.get(), 15000), WAIT_OBJECT_0);
    // The verdict says why, above the log written so far.
    const HWND text = run.WaitForLogBox(L"started");
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(WindowText(text).find(L"Zorvi:Compiling was stopped."), 0u);
    PostMessageW(main, WM_KEYDOWN, VK_F5, 0);
    ASSERT_TRUE(WaitUntil([&] { return starts("hang.txt") == 2; })) << "no compile on F5";
    PostMessageW(main, WM_CLOSE, 0, 0);
    ASSERT_TRUE(WaitUntil([&] { return (box = FindWindowW(L"#32770", L"Zorvi - Check")); }));
    // Asked again while the question is open, the window answers at once
    // instead of opening a second question inside the first.
    DWORD_PTR answer = 0;
    EXPECT_NE(SendMessageTimeoutW(main, WM_CLOSE, 0, 0, SMTO_NORMAL, 5000, &answer), 0);
    PressButton(box, IDYES);
    EXPECT_EQ(run.WaitForExit(20s), std::optional<DWORD>(0));
    for (const UniqueHandle& player : players) {
        EXPECT_EQ(WaitForSingleObject(player.get(), 5000), static_cast<DWORD>(WAIT_OBJECT_0));
        TerminateProcess(player.get(), 1);
    }
    EXPECT_EQ(starts("before.txt"), 0);
    EXPECT_EQ(starts("atomic.txt"), 2);
    EXPECT_EQ(starts("hang.txt"), 2);
    EXPECT_EQ(zorvi.Setting("Main", "Width"), "4410");
    // The window's start cleans the player list and adds the configuration's player.
    EXPECT_EQ(zorvi.Setting("PlayerList", "Item1"), standIn);
}

TEST(Popup, AutoRunThenAboutAndExitInJapanese) {
    Installation installation;
    const std::string player = BesideTestProgram("zplayer.exe");
    installation.Write("Zorvi.ini", "[Setting]\r\nLanguage=Japanese\r\n"
                                    "[ExternalProgram]\r\nItemCount=2\r\nItem1=Not at start\r\n"
                                    "Command1=" + player + "\r\nOption1=first\r\nItem2=Player\r\n"
                                    "Command2=" + player + "\r\nOption2=second\r\nAutoRun2=1\r\n");
    SetEnvironmentVariableA("ZPLAYER_RECORD", (installation / "record.txt").c_str());
    Running zorvi(installation, "");
    SetEnvironmentVariableA("ZPLAYER_RECORD", nullptr);
    const HWND main = zorvi.WaitForWindow(L"ZorviMain");
    ASSERT_NE(main, nullptr);
    ASSERT_TRUE(WaitUntil([&] { return installation.Read("record.txt").size() > 0; }));
    // Starts go in the list's order: one before it would have shown by now.
    EXPECT_NE(installation.Read("record.txt").find("arg1=second"), std::string::npos);
    EXPECT_EQ(installation.Read("record.txt").find("arg1=first"), std::string::npos);

    // The entries keep their mnemonics in Japanese, typed as a user would. The
    // menu acts on the character alone; a key posted beside it could come back
    // as a second character, left for the next menu.
    const auto choose = [&](char mnemonic) {
        HWND menu = nullptr;
        for (int press = 0; press < 3 && menu == nullptr; ++press) {
            PostMessageW(main, WM_KEYDOWN, VK_F9, 0);
            menu = zorvi.WaitForWindow(L"#32768", 3s);
        }
        PostMessageW(menu, WM_CHAR, static_cast<WPARAM>(mnemonic + 'a' - 'A'), 0);
        return menu != nullptr;
    };
    // There is no help file: A opens the about window.
    ASSERT_TRUE(choose('A'));
    const HWND about = zorvi.WaitForWindow(L"ZorviAbout");
    ASSERT_NE(about, nullptr);
    EXPECT_NE(FindWindowExW(about, nullptr, L"Button", L"ショートカットキー"), nullptr);
    PostMessageW(about, WM_CLOSE, 0, 0);
    ASSERT_TRUE(WaitUntil([&] { return !IsWindowVisible(about); }));
    // Under Wine the first F9 after the about window went can open no menu,
    // or one that closes at once and takes the character with it, while the
    // main window is made active again: F9 and the choice are repeated then.
    std::optional<DWORD> exit;
    for (int attempt = 0; attempt < 3 && !exit; ++attempt) {
        ASSERT_TRUE(choose('X'));
        exit = zorvi.WaitForExit(3s);
    }
    EXPECT_EQ(exit, std::optional<DWORD>(0));
}

TEST(Package, ExamplesCompileOutOfTheBoxAndAnErrorOpensItsLine) {
    Installation installation;
    std::filesystem::copy(BesideTestProgram("..\\package"), installation.Path(),
                          std::filesystem::copy_options::recursive |
                              std::filesystem::copy_options::overwrite_existing);
    const std::string examples = installation.Path() + "\\examples\\";
    {
        // No Zorvi.ini: the example configuration is the active one.
        Running zorvi(installation, "\"" + examples + "clean.mml\"");
        const HWND main = zorvi.WaitForWindow(L"ZorviMain");
        ASSERT_NE(main, nullptr);
        PostMessageW(main, WM_KEYDOWN, VK_F5, 0);
        ASSERT_TRUE(WaitUntil([&] {
            return installation.Read("examples\\clean.log").find("mmlc: wrote") !=
                   std::string::npos;
        }));
        // The log's last line comes before the compile's end, which hides the
        // log window again (ResultWindow/AutoClose): F7 until it stays.
        HWND box = nullptr;
        ASSERT_TRUE(WaitUntil([&] {
            PostMessageW(main, WM_KEYDOWN, VK_F7, 0);
            return (box = zorvi.WaitForLogBox(L"clean.mid (", 1s)) != nullptr;
        }));
        EXPECT_EQ(WindowText(box).find(L"Detect compiling error."), std::wstring::npos);
        EXPECT_EQ(installation.Read("examples\\clean.mid").substr(0, 4), "MThd");
    }
    // Nothing chosen, nothing written.
    EXPECT_EQ(installation.Setting("Setting", "Default"), "");

    // The editor is a stand-in that records how it was started.
    installation.Write("Zorvi.ini", "[Setting]\r\nEditor=" + BesideTestProgram("zplayer.exe") +
                                        "\r\nEditorLineArgs=-n$line$ \"$fp$$fn$\"\r\n");
    SetEnvironmentVariableA("ZPLAYER_RECORD", (installation / "editor.txt").c_str());
    Running zorvi(installation, "\"" + examples + "broken.mml\"");
    SetEnvironmentVariableA("ZPLAYER_RECORD", nullptr);
    PostMessageW(zorvi.WaitForWindow(L"ZorviMain"), WM_KEYDOWN, VK_F5, 0);
    // A failed compile opens the log by itself, verdict first.
    const HWND box = zorvi.WaitForLogBox(L"broken.mml(9,23): error:");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(WindowText(box).rfind(L"Zorvi:Detect compiling error.\r\n", 0), 0u);

    // A double click at the start of the error's line.
    const auto at = WindowText(box).find(L"broken.mml(9,23)");
    const auto line = SendMessageW(box, EM_LINEFROMCHAR, at, 0);
    const auto start = SendMessageW(box, EM_LINEINDEX, static_cast<WPARAM>(line), 0);
    const auto point = static_cast<DWORD>(SendMessageW(box, EM_POSFROMCHAR, start, 0));
    const LPARAM where = MAKELPARAM(LOWORD(point) + 2, HIWORD(point) + 2);
    for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_LBUTTONUP}) {
        PostMessageW(box, message, message == WM_LBUTTONUP ? 0 : MK_LBUTTON, where);
    }
    ASSERT_TRUE(WaitUntil([&] {
        return installation.Read("editor.txt").find("\r\narg2=") != std::string::npos;
    }));
    const auto lines = KeyValueLines(installation.Read("editor.txt"));
    const std::map<std::string, std::string> started(lines.begin(), lines.end());
    EXPECT_EQ(started.at("arg1"), "-n9");
    EXPECT_EQ(_stricmp(started.at("arg2").c_str(), (examples + "broken.mml").c_str()), 0)
        << started.at("arg2");
}

}  // namespace
}  // namespace zorvi::testing
