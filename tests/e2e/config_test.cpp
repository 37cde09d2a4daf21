// The configuration window of the real zorvi.exe: F8 opens it, a new
// compiler typed into its page is saved with OK, and F5 then runs that
// compiler (the stand-in records every start it makes).
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "core/version.h"
#include "support/driver.h"
#include "ui/config/config_ids.h"

namespace zorvi::testing {
namespace {

// The control with this id anywhere inside the window (the pages are windows too).
HWND FindControl(HWND window, int id) {
    struct Search {
        int id;
        HWND found;
    } search{id, nullptr};
    EnumChildWindows(
        window,
        [](HWND child, LPARAM param) -> BOOL {
            auto* s = reinterpret_cast<Search*>(param);
            if (GetDlgCtrlID(child) != s->id) return TRUE;
            s->found = child;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

TEST(ConfigRun, F8ChangesTheCompilerAndF5RunsTheNewOne) {
    Installation installation;
    const auto path = [&](const std::string& name) { return installation / name; };
    for (const char* folder : {"old", "new", "cfg"})
        CreateDirectoryA(path(folder).c_str(), nullptr);
    for (const char* folder : {"old", "new"}) {
        ASSERT_TRUE(CopyFileA(BesideTestProgram("zcompiler.exe").c_str(),
                              path(std::string(folder) + "\\zcompiler.exe").c_str(), FALSE));
    }
    installation.Write(
        "cfg\\chain.ini", "[Configure]\r\nConsole=" + path("old\\zcompiler.exe") +
                              "\r\nExtension=out\r\n[Option]\r\nUseCUI=1\r\nCUIWindowState=2\r\n"
                              "[Script]\r\nLine=1\r\nLine1=$pp$zcompiler.exe $fp$$fn$\r\n");
    installation.Write("Zorvi.ini", "[Setting]\r\nDefault=chain\r\n");
    installation.Write("song.mml", "args=" + path("starts.txt") + "\r\no4 c\r\n");

    Running zorvi(installation, "song.mml");
    const HWND main = zorvi.WaitForWindow(L"ZorviMain");
    ASSERT_NE(main, nullptr);
    PostMessageW(main, WM_KEYDOWN, VK_F8, 0);
    const HWND config = zorvi.WaitForWindow(L"ZorviConfig");
    ASSERT_NE(config, nullptr);
    const HWND console = FindControl(config, config_ids::kTextBase + 2);
    const std::string oldCompiler = path("old\\zcompiler.exe");
    ASSERT_EQ(WindowText(console), std::wstring(oldCompiler.begin(), oldCompiler.end()));
    const std::string newCompiler = path("new\\zcompiler.exe");
    SendMessageA(console, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(newCompiler.c_str()));
    // Enter in the field is OK, as in any dialog.
    PostMessageW(console, WM_KEYDOWN, VK_RETURN, 0);
    ASSERT_TRUE(WaitUntil([&] { return !IsWindow(config); }));

    PostMessageW(main, WM_KEYDOWN, VK_F5, 0);
    ASSERT_TRUE(WaitUntil(
        [&] { return installation.Read("starts.txt").find("cmdline=") != std::string::npos; }));
    const std::string starts = installation.Read("starts.txt");
    EXPECT_NE(starts.find("\\new\\zcompiler.exe"), std::string::npos) << starts;
    EXPECT_EQ(starts.find("\\old\\zcompiler.exe"), std::string::npos) << starts;
    // Closing during the compile asks whether to stop it: yes.
    PostMessageW(main, WM_CLOSE, 0, 0);
    HWND box = nullptr;
    ASSERT_TRUE(WaitUntil([&] {
        box = FindWindowW(L"#32770", nullptr);
        return zorvi.WaitForExit(std::chrono::milliseconds(0)).has_value() || box != nullptr;
    }));
    if (box != nullptr) PressButton(box, IDYES);
    EXPECT_TRUE(zorvi.WaitForExit().has_value());
}

}  // namespace
}  // namespace zorvi::testing
