// Starting the real zorvi.exe the ways users do: from a shortcut, from an
// editor's tool menu with switches, and a second time while it runs.
#include <gtest/gtest.h>

#include "core/version.h"
#include "support/driver.h"

namespace zorvi::testing {
namespace {

const std::string kMainCaption = "Zorvi v" + VersionText(ThisVersion());
constexpr char kMainClass[] = "ZorviMain";

// Answers the one box the program shows and expects it to end then.
void AnswerBoxAndExpectExit(Running& zorvi, const std::wstring& text, int button = IDOK) {
    const HWND box = WaitForMessageBox(zorvi.Id(), "Zorvi - Check");
    ASSERT_NE(box, nullptr) << "no check box appeared";
    EXPECT_EQ(MessageBoxText(box), text);
    PressButton(box, button);
    const auto code = zorvi.WaitForExit();
    ASSERT_TRUE(code.has_value()) << "Zorvi did not end after the box";
    EXPECT_EQ(*code, 0u);
}

TEST(Startup, CompileNowOfMissingFileSaysFileNotFound) {
    const struct {
        const char* arguments;
    } cases[] = {{"-compilenow nosuchfile.mml"}, {"-compilenow"}, {"/COMPILENOW \"no such.mml\""}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        Installation installation;
        Running zorvi(installation, c.arguments);
        AnswerBoxAndExpectExit(zorvi, L"File not found.\r\n");
    }
}

TEST(Startup, SwitchAfterTheFileNoLongerHangs) {
    Installation installation;
    installation.Files().Write("song.mml", "o4 cde");
    {
        Running zorvi(installation, "song.mml -showlog");
        // The log window opens for the file; closing it ends the run.
        HWND result = nullptr;
        ASSERT_TRUE(WaitUntil([&] {
            for (result = FindWindowExW(nullptr, nullptr, L"ZorviResult", nullptr); result != nullptr;
                 result = FindWindowExW(nullptr, result, L"ZorviResult", nullptr)) {
                DWORD owner = 0;
                GetWindowThreadProcessId(result, &owner);
                if (owner == zorvi.Id() && IsWindowVisible(result)) return true;
            }
            return false;
        }));
        PostMessageW(result, WM_CLOSE, 0, 0);
        EXPECT_TRUE(zorvi.WaitForExit().has_value());
    }
    {
        Running zorvi(installation, "-compilenow song.mml");
        const HWND box = WaitForMessageBox(zorvi.Id(), "Zorvi - Check");
        ASSERT_NE(box, nullptr);
        // The file was found; what is missing is a configuration to compile it with.
        EXPECT_EQ(MessageBoxText(box), L"Configuration file not found.");
        PressButton(box, IDOK);
        EXPECT_TRUE(zorvi.WaitForExit().has_value());
    }
}

TEST(Startup, WindowModeOpensTheMainWindowAndClosesNormally) {
    Installation installation;
    installation.Files().Write("Song.MML", "o4 c");
    Running zorvi(installation, "song.mml");
    // The target is shown in the caption, in the case stored on disk.
    const HWND main = zorvi.WaitForWindow(kMainClass, "Song.MML - " + kMainCaption);
    ASSERT_NE(main, nullptr);
    PostMessageW(main, WM_CLOSE, 0, 0);
    const auto code = zorvi.WaitForExit();
    ASSERT_TRUE(code.has_value());
    EXPECT_EQ(*code, 0u);
}

TEST(Startup, SecondStartBringsTheFirstToTheFront) {
    Installation installation;
    Running first(installation, "");
    const HWND main = first.WaitForWindow(kMainClass, kMainCaption);
    ASSERT_NE(main, nullptr);
    ShowWindow(main, SW_MINIMIZE);
    ASSERT_TRUE(WaitUntil([&] { return IsIconic(main) != FALSE; }));

    Running second(installation, "");
    const auto code = second.WaitForExit();
    ASSERT_TRUE(code.has_value()) << "the second instance did not end";
    EXPECT_EQ(*code, 0u);
    EXPECT_TRUE(WaitUntil([&] { return IsIconic(main) == FALSE; })) << "first window not restored";
    EXPECT_FALSE(first.HasEnded());

    // Compiling from the command line is refused while the window runs.
    Running command(installation, "-compilenow nosuchfile.mml");
    AnswerBoxAndExpectExit(command,
                           L"Zorvi has already started. Cannot execute from command mode.");

    PostMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_TRUE(first.WaitForExit().has_value());
}

TEST(Startup, JapaneseSettingShowsJapaneseMessages) {
    Installation installation;
    installation.Files().Write("Zorvi.ini", "[Setting]\r\nLanguage=Japanese\r\n");
    Running zorvi(installation, "-compilenow missing.mml");
    const HWND box = WaitForMessageBox(zorvi.Id(), "Zorvi - Check");
    ASSERT_NE(box, nullptr);
    const std::wstring text = MessageBoxText(box);
    EXPECT_NE(text, L"File not found.\r\n");
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(text.substr(text.size() - 2), L"\r\n");
    PressButton(box, IDOK);
    EXPECT_TRUE(zorvi.WaitForExit().has_value());
}

TEST(Startup, BadSettingsAndCommandLinesStillOpenTheWindow) {
    std::string binary;
    for (int i = 0; i < 8192; ++i) binary += static_cast<char>((i * 31 + 7) % 256);
    std::string longLine;
    while (longLine.size() < 30000) longLine += "\"unbalanced -x /y ";
    const struct {
        const char* name;
        std::string settings;
        std::string arguments;
    } cases[] = {
        {"binary settings", binary, ""},
        {"empty settings", "", "-unknown /other"},
        {"long line with open quotes", "[Main]\r\nLeft=abc\r\n", longLine},
        {"auto set file to a missing file",
         "[Option]\r\nAutoSetFile=1\r\n[History]\r\nHis00=C:\\nowhere\\gone.mml\r\n", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Installation installation;
        installation.Files().Write("Zorvi.ini", c.settings);
        Running zorvi(installation, c.arguments);
        const HWND main = zorvi.WaitForWindow(kMainClass, kMainCaption);
        ASSERT_NE(main, nullptr);
        PostMessageW(main, WM_CLOSE, 0, 0);
        const auto code = zorvi.WaitForExit();
        ASSERT_TRUE(code.has_value());
        EXPECT_EQ(*code, 0u);
        // Closing stores the place it had; what could be read is kept.
        char width[16] = {};
        GetPrivateProfileStringA("Main", "Width", "", width, sizeof width,
                                 installation.SettingsFile().c_str());
        EXPECT_STREQ(width, "4410");
        if (c.settings.find("His00=") != std::string::npos) {
            char last[300] = {};
            GetPrivateProfileStringA("History", "His00", "", last, sizeof last,
                                     installation.SettingsFile().c_str());
            EXPECT_STREQ(last, "C:\\nowhere\\gone.mml");
        }
    }
}

TEST(Startup, AutoSetFileReopensTheLastFile) {
    Installation installation;
    installation.Files().Write("Last.mml", "");
    installation.Files().Write(
        "Zorvi.ini",
        "[Option]\r\nAutoSetFile=1\r\n[History]\r\nHis00=" + (installation.Files() / "Last.mml") +
            "\r\n");
    Running zorvi(installation, "");
    const HWND main = zorvi.WaitForWindow(kMainClass, "Last.mml - " + kMainCaption);
    ASSERT_NE(main, nullptr);
    PostMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_TRUE(zorvi.WaitForExit().has_value());
}

}  // namespace
}  // namespace zorvi::testing
