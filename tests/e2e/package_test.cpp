// The release as a newcomer meets it: the staged package (what the zip holds)
// in a fresh folder without settings compiles the example songs with F5, and
// a double click on the broken song's error opens the editor at its line.
#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <map>
#include <string>

#include "support/driver.h"

namespace zorvi::testing {
namespace {

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
        PostMessageW(main, WM_KEYDOWN, VK_F7, 0);
        const HWND box = zorvi.WaitForLogBox(L"clean.mid (");
        ASSERT_NE(box, nullptr);
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
    std::map<std::string, std::string> started;
    for (const auto& [key, value] : KeyValueLines(installation.Read("editor.txt"))) {
        started[key] = value;
    }
    EXPECT_EQ(started["arg1"], "-n9");
    EXPECT_EQ(_stricmp(started["arg2"].c_str(), (examples + "broken.mml").c_str()), 0)
        << started["arg2"];
}

}  // namespace
}  // namespace zorvi::testing
