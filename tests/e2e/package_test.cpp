// The release as a newcomer meets it: the staged package (what the zip holds)
// in a fresh folder without settings compiles the example songs with F5, and
// a double click on the broken song's error opens the editor at its line.
#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <map>
#include <string>

#include "core/version.h"
#include "support/driver.h"

namespace zorvi::testing {
namespace {

// The main window, captioned with the target's name.
HWND WaitForMain(Running& zorvi, const std::string& song) {
    const HWND main = zorvi.WaitForWindow(L"ZorviMain");
    const std::wstring caption(song.begin(), song.end());
    if (main != nullptr && !WaitUntil([&] { return WindowText(main).rfind(caption, 0) == 0; })) {
        ADD_FAILURE() << "the main window does not name " << song;
    }
    return main;
}

// The log window's text box once its text holds part.
HWND WaitForLogHolding(Running& zorvi, const std::string& log, const std::wstring& part) {
    const HWND window = zorvi.WaitForWindow(L"ZorviResult");
    const std::wstring name(log.begin(), log.end());
    if (window != nullptr && !WaitUntil([&] { return WindowText(window).ends_with(name); })) {
        ADD_FAILURE() << "the log window does not name " << log;
    }
    const HWND box = window != nullptr ? FindWindowExW(window, nullptr, L"Edit", nullptr) : nullptr;
    const bool holds = box != nullptr && WaitUntil([&] {
        return WindowText(box).find(part) != std::wstring::npos;
    });
    if (!holds) ADD_FAILURE() << "the log window never showed the expected text";
    return holds ? box : nullptr;
}

// A double click at the start of the text box's line that holds part.
void DoubleClickLineOf(HWND box, const std::wstring& part) {
    const auto at = WindowText(box).find(part);
    const auto line = SendMessageW(box, EM_LINEFROMCHAR, at, 0);
    const auto start = SendMessageW(box, EM_LINEINDEX, static_cast<WPARAM>(line), 0);
    const auto point = static_cast<DWORD>(SendMessageW(box, EM_POSFROMCHAR, start, 0));
    const LPARAM where = MAKELPARAM(LOWORD(point) + 2, HIWORD(point) + 2);
    PostMessageW(box, WM_LBUTTONDOWN, MK_LBUTTON, where);
    PostMessageW(box, WM_LBUTTONUP, 0, where);
    PostMessageW(box, WM_LBUTTONDBLCLK, MK_LBUTTON, where);
    PostMessageW(box, WM_LBUTTONUP, 0, where);
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
        const HWND main = WaitForMain(zorvi, "clean.mml");
        ASSERT_NE(main, nullptr);
        PostMessageW(main, WM_KEYDOWN, VK_F5, 0);
        ASSERT_TRUE(WaitUntil([&] {
            return installation.Read("examples\\clean.log").find("mmlc: wrote") !=
                   std::string::npos;
        }));
        PostMessageW(main, WM_KEYDOWN, VK_F7, 0);
        const HWND box = WaitForLogHolding(zorvi, "clean.log", L"clean.mid (");
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(WindowText(box).find(L"Detect compiling error."), std::wstring::npos);
        EXPECT_EQ(installation.Read("examples\\clean.mid").substr(0, 4), "MThd");
    }
    // Nothing chosen, nothing written.
    char chosen[300] = {};
    GetPrivateProfileStringA("Setting", "Default", "<none>", chosen, sizeof chosen,
                             (installation / "Zorvi.ini").c_str());
    EXPECT_STREQ(chosen, "<none>");

    CreateDirectoryA((installation.Path() + "\\tools").c_str(), nullptr);
    const std::string editor = installation.Path() + "\\tools\\zplayer.exe";
    ASSERT_TRUE(CopyFileA(BesideTestProgram("zplayer.exe").c_str(), editor.c_str(), FALSE));
    const std::string settings = installation / "Zorvi.ini";
    WritePrivateProfileStringA("Setting", "Editor", editor.c_str(), settings.c_str());
    WritePrivateProfileStringA("Setting", "EditorLineArgs", "-n$line$ \"$fp$$fn$\"",
                               settings.c_str());

    Running zorvi(installation, "\"" + examples + "broken.mml\"");
    PostMessageW(WaitForMain(zorvi, "broken.mml"), WM_KEYDOWN, VK_F5, 0);
    // A failed compile opens the log by itself, verdict first.
    const HWND box = WaitForLogHolding(zorvi, "broken.log", L"broken.mml(9,23): error:");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(WindowText(box).rfind(L"Zorvi:Detect compiling error.\r\n", 0), 0u);

    DoubleClickLineOf(box, L"broken.mml(9,23)");
    const std::string record = "tools\\zplayer.log";
    ASSERT_TRUE(WaitUntil([&] {
        return installation.Read(record).find("\r\narg2=") != std::string::npos;
    }));
    std::map<std::string, std::string> started;
    for (const auto& [key, value] : KeyValueLines(installation.Read(record))) started[key] = value;
    EXPECT_EQ(started["arg1"], "-n9");
    EXPECT_EQ(_stricmp(started["arg2"].c_str(), (examples + "broken.mml").c_str()), 0)
        << started["arg2"];
}

}  // namespace
}  // namespace zorvi::testing
