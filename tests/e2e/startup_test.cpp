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
BOOL CALLBACK CountIcon(HWND child, LPARAM found) {
    wchar_t windowClass[32] = {};
    GetClassNameW(child, windowClass, 32);
    if (lstrcmpiW(windowClass, L"Static") == 0 &&
        (GetWindowLongW(child, GWL_STYLE) & SS_TYPEMASK) == SS_ICON) {
        ++*reinterpret_cast<int*>(found);
    }
    return TRUE;
}

// The notices are information boxes with one OK button.
void ExpectInformationBox(HWND box) {
    int icons = 0;
    EnumChildWindows(box, CountIcon, reinterpret_cast<LPARAM>(&icons));
    EXPECT_EQ(icons, 1) << "no icon in the box";
    EXPECT_NE(GetDlgItem(box, IDOK), nullptr);
    for (int other : {IDCANCEL, IDYES, IDNO}) {
        const HWND button = GetDlgItem(box, other);
        EXPECT_TRUE(button == nullptr || !IsWindowVisible(button)) << "button " << other;
    }
}

void AnswerBoxAndExpectExit(Running& zorvi, const std::wstring& text, int button = IDOK) {
    const HWND box = WaitForMessageBox(zorvi.Id(), "Zorvi - Check");
    ASSERT_NE(box, nullptr) << "no check box appeared";
    EXPECT_EQ(MessageBoxText(box), text);
    ExpectInformationBox(box);
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
    const struct {
        const char* language;
        const wchar_t* text;
    } cases[] = {{"Japanese", L"ファイルが見つかりません。\r\n"},
                 {"japanese", L"File not found.\r\n"},
                 {"English", L"File not found.\r\n"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.language);
        Installation installation;
        installation.Files().Write("Zorvi.ini",
                                   std::string("[Setting]\r\nLanguage=") + c.language + "\r\n");
        Running zorvi(installation, "-compilenow missing.mml");
        AnswerBoxAndExpectExit(zorvi, c.text);
    }
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

// A settings file that cannot be read is no error: every value is its default.
TEST(Startup, UnreadableSettingsFileGivesDefaults) {
    const struct {
        const char* name;
        bool asFolder;
    } cases[] = {{"settings file is a folder", true}, {"settings file locked", false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Installation installation;
        HANDLE lock = INVALID_HANDLE_VALUE;
        if (c.asFolder) {
            ASSERT_TRUE(CreateDirectoryA(installation.SettingsFile().c_str(), nullptr));
        } else {
            installation.Files().Write("Zorvi.ini", "[Setting]\r\nLanguage=Japanese\r\n");
            lock = CreateFileA(installation.SettingsFile().c_str(), GENERIC_READ | GENERIC_WRITE, 0,
                               nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
            ASSERT_NE(lock, INVALID_HANDLE_VALUE);
        }
        {
            // English, because Language could not be read.
            Running command(installation, "-compilenow missing.mml");
            AnswerBoxAndExpectExit(command, L"File not found.\r\n");
        }
        Running zorvi(installation, "");
        const HWND main = zorvi.WaitForWindow(kMainClass, kMainCaption);
        ASSERT_NE(main, nullptr);
        PostMessageW(main, WM_CLOSE, 0, 0);
        EXPECT_TRUE(zorvi.WaitForExit().has_value());
        if (lock != INVALID_HANDLE_VALUE) CloseHandle(lock);
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
