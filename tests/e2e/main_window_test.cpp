// The main window of the real zorvi.exe: its first start, watch mode with the
// real compile pipeline (Wine's cmd.exe running Zorvi.bat and the stand-in
// compiler), its keys from the keyboard, the options acting at start-up and
// on closing, and settings that make no sense.
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>
#include <dlgs.h>

#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "core/version.h"
#include "support/driver.h"
#include "ui/main/placement.h"

namespace zorvi::testing {
namespace {

const std::string kBareCaption = "Zorvi v" + VersionText(ThisVersion());

std::string ReadBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

bool Exists(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

int CountOf(const std::string& text, const std::string& part) {
    int count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

std::string Setting(const Installation& installation, const char* section, const char* key) {
    char value[300] = {};
    GetPrivateProfileStringA(section, key, "<none>", value, sizeof value,
                             installation.SettingsFile().c_str());
    return value;
}

int ScreenDpi() {
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dpi;
}

struct Search {
    DWORD processId;
    const wchar_t* windowClass;
    HWND found = nullptr;
};

// The visible window of the process with that class, whatever its caption.
HWND WaitForClass(const Running& zorvi, const wchar_t* windowClass,
                  std::chrono::milliseconds limit = std::chrono::seconds(15)) {
    Search search{zorvi.Id(), windowClass};
    WaitUntil(
        [&] {
            EnumWindows(
                [](HWND window, LPARAM param) -> BOOL {
                    auto* s = reinterpret_cast<Search*>(param);
                    DWORD owner = 0;
                    GetWindowThreadProcessId(window, &owner);
                    wchar_t name[64] = {};
                    GetClassNameW(window, name, 64);
                    if (owner != s->processId || std::wstring(name) != s->windowClass ||
                        !IsWindowVisible(window)) {
                        return TRUE;
                    }
                    s->found = window;
                    return FALSE;
                },
                reinterpret_cast<LPARAM>(&search));
            return search.found != nullptr;
        },
        limit);
    return search.found;
}

HWND WaitForMain(const Running& zorvi) { return WaitForClass(zorvi, L"ZorviMain"); }

std::string Caption(HWND window) {
    char caption[512] = {};
    GetWindowTextA(window, caption, sizeof caption);
    return caption;
}

void PressKey(HWND window, WPARAM key) { PostMessageW(window, WM_KEYDOWN, key, 0); }

// Real key strokes, modifiers held, into the window once it is in front.
bool TypeWithModifiers(HWND window, const std::vector<WORD>& modifiers, WORD key) {
    SetForegroundWindow(window);
    if (!WaitUntil([&] { return GetForegroundWindow() == window; }, std::chrono::seconds(3))) {
        return false;
    }
    std::vector<INPUT> inputs;
    const auto add = [&inputs](WORD virtualKey, bool up) {
        INPUT input{};
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = virtualKey;
        input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
        inputs.push_back(input);
    };
    for (const WORD modifier : modifiers) add(modifier, false);
    add(key, false);
    add(key, true);
    for (auto it = modifiers.rbegin(); it != modifiers.rend(); ++it) add(*it, true);
    return SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT)) ==
           inputs.size();
}

// An installation with the stand-in compiler and player and one configuration
// "chain"; the song's leading lines tell the compiler what to do, and
// "args=" makes it record every start. The player is one of the two tools.
class Chain {
public:
    explicit Chain(const std::string& options = "", const std::string& player = "zplayer.exe") {
        CreateDirectoryA(Path("tools").c_str(), nullptr);
        CreateDirectoryA(Path("cfg").c_str(), nullptr);
        for (const char* tool : {"zcompiler.exe", "zplayer.exe"}) {
            if (!CopyFileA(BesideTestProgram(tool).c_str(),
                           Path(std::string("tools\\") + tool).c_str(), FALSE)) {
                throw std::runtime_error(std::string("cannot copy ") + tool);
            }
        }
        installation.Files().Write(
            "cfg\\chain.ini",
            "[Configure]\r\nConsole=" + Path("tools\\zcompiler.exe") +
                "\r\nExtension=out\r\nPlayer=" + Path("tools\\" + player) +
                "\r\n[Option]\r\nUseCUI=1\r\nCUIWindowState=2\r\nDetectError=1\r\nUseGUI=1\r\n"
                "[Script]\r\nLine=1\r\nLine1=$pp$zcompiler.exe $fp$$fn$ $fp$$fn2$.out "
                "$fp$$fn2$.log\r\n");
        installation.Files().Write("Zorvi.ini",
                                   "[Setting]\r\nDefault=chain\r\n[Option]\r\n" + options);
    }

    std::string Path(const std::string& name) const { return installation.Files() / name; }
    void WriteSong(const std::string& orders) const {
        installation.Files().Write("song.mml", orders + "args=" + Starts() + "\r\no4 cdefg\r\n");
    }
    std::string Song() const { return Path("song.mml"); }
    std::string Starts() const { return Path("starts.txt"); }
    int Compiles() const { return CountOf(ReadBytes(Starts()), "cmdline="); }

    Installation installation;
};

void Touch(const std::string& path, long long seconds) {
    const HANDLE file = CreateFileA(path.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    FILETIME time{};
    GetFileTime(file, nullptr, nullptr, &time);
    ULARGE_INTEGER ticks{{time.dwLowDateTime, time.dwHighDateTime}};
    ticks.QuadPart += static_cast<unsigned long long>(seconds * 10'000'000LL);
    time = {ticks.LowPart, ticks.HighPart};
    SetFileTime(file, nullptr, nullptr, &time);
    CloseHandle(file);
}

// Closing is refused while a compile runs, so the close box is pressed until
// the program has ended.
void CloseAndExpectExit(Running& zorvi, HWND main) {
    WaitUntil([&] {
        PostMessageW(main, WM_CLOSE, 0, 0);
        return zorvi.WaitForExit(std::chrono::milliseconds(200)).has_value();
    });
    const auto code = zorvi.WaitForExit(std::chrono::milliseconds(100));
    ASSERT_TRUE(code.has_value()) << "Zorvi did not end";
    EXPECT_EQ(*code, 0u);
}

TEST(MainWindowRun, FirstStartOpensAtTheDefaultPlaceAndSavesOnClose) {
    Installation installation;
    Running zorvi(installation, "");
    const HWND main = WaitForMain(zorvi);
    ASSERT_NE(main, nullptr);
    EXPECT_EQ(Caption(main), kBareCaption);
    RECT rect{};
    GetWindowRect(main, &rect);
    EXPECT_EQ(rect.left, 0);
    EXPECT_EQ(rect.top, 0);
    EXPECT_EQ(rect.right - rect.left, TwipsToPixels(4410, ScreenDpi()));
    EXPECT_GE(rect.bottom - rect.top, TwipsToPixels(1064, ScreenDpi()));
    EXPECT_EQ(GetWindowLongW(main, GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
    EXPECT_TRUE(Exists(installation.Files() / "cfg"));
    CloseAndExpectExit(zorvi, main);
    const struct {
        const char* key;
        const char* value;
    } saved[] = {{"Left", "0"}, {"Top", "0"}, {"Width", "4410"}, {"Height", "1064"}, {"Mode", "0"}};
    for (const auto& s : saved) {
        SCOPED_TRACE(s.key);
        EXPECT_EQ(Setting(installation, "Main", s.key), s.value);
    }
}

TEST(MainWindowRun, WatchModeCompilesASavedTargetAndReleasesADeletedOne) {
    Chain chain("TimerInterval=50\r\nAutoWatch=1\r\n");
    chain.WriteSong("log=watched\r\n");
    Running zorvi(chain.installation, "song.mml");
    const HWND main = WaitForMain(zorvi);
    ASSERT_NE(main, nullptr);
    EXPECT_EQ(Caption(main), "song.mml - " + kBareCaption);
    EXPECT_EQ(chain.Compiles(), 0);
    const struct {
        const char* name;
        long long seconds;
    } saves[] = {{"saved", 10}, {"clock set back", -86400}};
    int expected = 0;
    for (const auto& save : saves) {
        SCOPED_TRACE(save.name);
        Touch(chain.Song(), save.seconds);
        ++expected;
        EXPECT_TRUE(WaitUntil([&] { return chain.Compiles() == expected; }));
        EXPECT_TRUE(WaitUntil([&] { return ReadBytes(chain.Path("song.log")) == "watched\r\n"; }));
    }
    EXPECT_TRUE(Exists(chain.Path("song.out")));
    // Deleted while watched: let go of on the next tick.
    ASSERT_TRUE(DeleteFileA(chain.Song().c_str()));
    EXPECT_TRUE(WaitUntil([&] { return Caption(main) == kBareCaption; }));
    // Released means watching stopped: the file coming back compiles nothing.
    const HWND toolbar = FindWindowExW(main, nullptr, TOOLBARCLASSNAMEW, nullptr);
    EXPECT_TRUE(WaitUntil([&] { return SendMessageW(toolbar, TB_ISBUTTONCHECKED, 1003, 0) == 0; }));
    EXPECT_EQ(SendMessageW(toolbar, TB_ISBUTTONENABLED, 1003, 0), 0);
    chain.WriteSong("");
    EXPECT_EQ(Caption(main), kBareCaption);
    EXPECT_EQ(chain.Compiles(), expected);
    CloseAndExpectExit(zorvi, main);
    EXPECT_EQ(Setting(chain.installation, "History", "His00"), chain.Song());
}

TEST(MainWindowRun, ASecondCompileAndClosingAreRefusedWhileOneRuns) {
    Chain chain("TimerInterval=50\r\n");
    chain.WriteSong("sleep=2000\r\npid=" + chain.Path("pid.txt") + "\r\n");
    Running zorvi(chain.installation, "song.mml");
    const HWND main = WaitForMain(zorvi);
    ASSERT_NE(main, nullptr);
    PressKey(main, VK_F5);
    ASSERT_TRUE(WaitUntil([&] { return ReadBytes(chain.Path("pid.txt")).ends_with("\r\n"); }));
    // While it runs: F5 again, F3 (watching), a save, and closing twice.
    PressKey(main, VK_F5);
    PressKey(main, VK_F3);
    const HWND toolbar = FindWindowExW(main, nullptr, TOOLBARCLASSNAMEW, nullptr);
    ASSERT_TRUE(WaitUntil([&] { return SendMessageW(toolbar, TB_ISBUTTONCHECKED, 1003, 0) != 0; }));
    Touch(chain.Song(), 10);
    PressKey(main, VK_F12);
    PostMessageW(main, WM_CLOSE, 0, 0);
    ASSERT_TRUE(WaitUntil([&] { return Exists(chain.Path("song.out")); }));
    EXPECT_FALSE(zorvi.HasEnded());
    EXPECT_TRUE(IsWindow(main));
    // The save made meanwhile is compiled by the first tick after it, once.
    EXPECT_TRUE(WaitUntil([&] { return chain.Compiles() == 2; }));
    // One more save is the third compile: nothing was left queued from the
    // saves and keys that arrived while the first compile ran.
    chain.WriteSong("log=third\r\n");
    Touch(chain.Song(), 20);
    EXPECT_TRUE(WaitUntil([&] { return ReadBytes(chain.Path("song.log")) == "third\r\n"; }));
    EXPECT_EQ(chain.Compiles(), 3);
    CloseAndExpectExit(zorvi, main);
}

TEST(MainWindowRun, FunctionKeysDriveTheCommands) {
    Chain chain;
    chain.WriteSong("log=first line\r\n");
    chain.installation.Files().Write("song.out", "compiled before");
    chain.installation.Files().Write("song.log", "old log\r\n");
    Running zorvi(chain.installation, "song.mml");
    const HWND main = WaitForMain(zorvi);
    ASSERT_NE(main, nullptr);

    // F6 plays the generated file with the player.
    PressKey(main, VK_F6);
    const std::string record = chain.Path("tools\\zplayer.log");
    EXPECT_TRUE(WaitUntil([&] { return ReadBytes(record).find("song.out") != std::string::npos; }));

    // F7 shows the log.
    PressKey(main, VK_F7);
    const HWND result = WaitForClass(zorvi, L"ZorviResult");
    ASSERT_NE(result, nullptr);
    const HWND box = FindWindowExW(result, nullptr, L"Edit", nullptr);
    wchar_t text[256] = {};
    SendMessageW(box, WM_GETTEXT, 256, reinterpret_cast<LPARAM>(text));
    EXPECT_EQ(std::wstring(text), L"old log\r\n");
    PostMessageW(result, WM_CLOSE, 0, 0);
    EXPECT_TRUE(WaitUntil([&] { return !IsWindowVisible(result); }));

    // F2 asks for a file; a new name is made as an empty file and set.
    PressKey(main, VK_F2);
    HWND dialog = nullptr;
    ASSERT_TRUE(WaitUntil([&] {
        dialog = FindWindowA("#32770", "Set target file");
        return dialog != nullptr && IsWindowVisible(dialog);
    }));
    HWND name = GetDlgItem(dialog, cmb13);
    if (name == nullptr) name = GetDlgItem(dialog, edt1);
    SetWindowTextA(name, chain.Path("fresh.mml").c_str());
    SendMessageW(GetDlgItem(dialog, IDOK), BM_CLICK, 0, 0);
    EXPECT_TRUE(WaitUntil([&] { return Caption(main) == "fresh.mml - " + kBareCaption; }));
    EXPECT_EQ(ReadBytes(chain.Path("fresh.mml")), "");

    // F11 minimises, F12 ends the program.
    PressKey(main, VK_F11);
    EXPECT_TRUE(WaitUntil([&] { return IsIconic(main) != FALSE; }));
    PressKey(main, VK_F12);
    const auto code = zorvi.WaitForExit();
    ASSERT_TRUE(code.has_value());
    EXPECT_EQ(*code, 0u);
    // Closed while minimised: the place is not saved.
    EXPECT_EQ(Setting(chain.installation, "Main", "Left"), "<none>");
    EXPECT_EQ(Setting(chain.installation, "History", "His00"), chain.Path("fresh.mml"));
    EXPECT_EQ(Setting(chain.installation, "History", "His01"), chain.Song());
}

TEST(MainWindowRun, ModifierKeysFromTheKeyboard) {
    const int dpi = ScreenDpi();
    const struct {
        const char* name;
        std::vector<WORD> modifiers;
        WORD key;
        int dLeft, dWidth, dHeight;  // twips
        bool compiles;
    } cases[] = {
        {"Ctrl+Left", {VK_CONTROL}, VK_LEFT, -512, 0, 0, false},
        {"Ctrl+Alt+Right", {VK_CONTROL, VK_MENU}, VK_RIGHT, 32, 0, 0, false},
        {"Ctrl+Shift+Down", {VK_CONTROL, VK_SHIFT}, VK_DOWN, 0, 0, 256, false},
        {"Ctrl+Shift+Alt+Left", {VK_CONTROL, VK_SHIFT, VK_MENU}, VK_LEFT, 0, -16, 0, false},
        {"Shift+F5", {VK_SHIFT}, VK_F5, 0, 0, 0, false},
        {"F5", {}, VK_F5, 0, 0, 0, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Chain chain;
        chain.WriteSong("");
        chain.installation.Files().Write(
            "Zorvi.ini",
            "[Setting]\r\nDefault=chain\r\n[Main]\r\nLeft=3000\r\nTop=3000\r\n"
            "Width=6000\r\nHeight=1800\r\n");
        Running zorvi(chain.installation, "song.mml");
        const HWND main = WaitForMain(zorvi);
        ASSERT_NE(main, nullptr);
        RECT before{};
        GetWindowRect(main, &before);
        ASSERT_TRUE(TypeWithModifiers(main, c.modifiers, c.key));
        // Ctrl+Down afterwards: keys are handled in order, so once the window
        // has gone down the key under test has been handled too.
        ASSERT_TRUE(TypeWithModifiers(main, {VK_CONTROL}, VK_DOWN));
        const auto moved = [&](RECT rect) {
            return rect.top == TwipsToPixels(PixelsToTwips(before.top, dpi) + 512, dpi) &&
                   rect.left == TwipsToPixels(PixelsToTwips(before.left, dpi) + c.dLeft, dpi) &&
                   rect.right - rect.left ==
                       TwipsToPixels(PixelsToTwips(before.right - before.left, dpi) + c.dWidth,
                                     dpi) &&
                   rect.bottom - rect.top ==
                       TwipsToPixels(PixelsToTwips(before.bottom - before.top, dpi) + c.dHeight,
                                     dpi);
        };
        EXPECT_TRUE(WaitUntil(
            [&] {
                RECT now{};
                GetWindowRect(main, &now);
                return moved(now) && (!c.compiles || chain.Compiles() == 1);
            },
            std::chrono::seconds(5)));
        // Closing waits for a running compile, so the count is final once Zorvi has ended.
        CloseAndExpectExit(zorvi, main);
        EXPECT_EQ(chain.Compiles(), c.compiles ? 1 : 0);
    }
}

TEST(MainWindowRun, SystemKeysWithAltReachTheSystem) {
    const struct {
        const char* name;
        const char* options;
        WORD key;
        bool closes;  // else the window menu opens
    } cases[] = {
        {"Alt+F4, Alt popup on", "UseAltPopUp=1\r\n", VK_F4, true},
        {"Alt+F4, Alt popup off", "UseAltPopUp=0\r\n", VK_F4, true},
        {"Alt+Space, Alt popup on", "UseAltPopUp=1\r\n", VK_SPACE, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Installation installation;
        installation.Files().Write("Zorvi.ini", std::string("[Option]\r\n") + c.options);
        Running zorvi(installation, "");
        const HWND main = WaitForMain(zorvi);
        ASSERT_NE(main, nullptr);
        ASSERT_TRUE(TypeWithModifiers(main, {VK_MENU}, c.key));
        if (c.closes) {
            const auto code = zorvi.WaitForExit();
            ASSERT_TRUE(code.has_value()) << "Zorvi did not end";
            EXPECT_EQ(*code, 0u);
            continue;
        }
        const HWND menu = WaitForClass(zorvi, L"#32768", std::chrono::seconds(5));
        ASSERT_NE(menu, nullptr) << "no window menu";
        PostMessageW(menu, WM_KEYDOWN, VK_ESCAPE, 0);
        EXPECT_TRUE(WaitUntil([&] { return !IsWindowVisible(menu); }));
        CloseAndExpectExit(zorvi, main);
    }
}

TEST(MainWindowRun, AutoMinimizeKeepsTheWindowMinimisedAtStartUp) {
    const struct {
        const char* name;
        const char* options;
        const char* arguments;
    } cases[] = {
        {"file on the command line", "AutoMinimize=1\r\n", "song.mml"},
        {"last file reopened", "AutoMinimize=1\r\nAutoSetFile=1\r\n", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Installation installation;
        installation.Files().Write("song.mml", "o4 c");
        installation.Files().Write("Zorvi.ini", std::string("[Option]\r\n") + c.options +
                                                    "[History]\r\nHis00=" +
                                                    (installation.Files() / "song.mml") + "\r\n");
        Running zorvi(installation, c.arguments);
        const HWND main = WaitForMain(zorvi);
        ASSERT_NE(main, nullptr);
        // A message sent now is answered only from the message loop, after
        // the start-up has shown the window for good.
        DWORD_PTR answer = 0;
        ASSERT_NE(SendMessageTimeoutW(main, WM_NULL, 0, 0, SMTO_BLOCK, 5000, &answer), 0);
        EXPECT_EQ(Caption(main), "song.mml - " + kBareCaption);
        EXPECT_TRUE(IsIconic(main));
        EXPECT_TRUE(IsWindowVisible(main));
        CloseAndExpectExit(zorvi, main);
    }
}

// A started program, ended and let go of when the test is done with it.
class ProcessGuard {
public:
    explicit ProcessGuard(DWORD id)
        : handle_(OpenProcess(SYNCHRONIZE | PROCESS_TERMINATE | PROCESS_QUERY_LIMITED_INFORMATION,
                              FALSE, id)) {}
    ~ProcessGuard() {
        if (handle_ == nullptr) return;
        TerminateProcess(handle_, 1);
        WaitForSingleObject(handle_, 5000);
        CloseHandle(handle_);
    }
    ProcessGuard(const ProcessGuard&) = delete;
    ProcessGuard& operator=(const ProcessGuard&) = delete;
    HANDLE Handle() const { return handle_; }

private:
    HANDLE handle_;
};

TEST(MainWindowRun, AutoShutDownEndsThePlayerOnClose) {
    const struct {
        const char* name;
        const char* options;
        bool ended;
    } cases[] = {
        {"on", "AutoShutDown=1\r\n", true},
        {"off", "AutoShutDown=0\r\n", false},
        {"not exactly 1", "AutoShutDown=2\r\n", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        // The stand-in compiler is the player here: the "generated file" it is
        // given tells it to tell its id and keep running.
        Chain chain(c.options, "zcompiler.exe");
        chain.WriteSong("");
        const std::string pidFile = chain.Path("player.pid");
        chain.installation.Files().Write(
            "song.out", "pid=" + pidFile + "\r\noutput=keep\r\nhang=1\r\n");
        Running zorvi(chain.installation, "song.mml");
        const HWND main = WaitForMain(zorvi);
        ASSERT_NE(main, nullptr);
        PressKey(main, VK_F6);
        ASSERT_TRUE(WaitUntil([&] { return ReadBytes(pidFile).ends_with("\r\n"); }));
        const ProcessGuard player(static_cast<DWORD>(std::stoul(ReadBytes(pidFile))));
        ASSERT_NE(player.Handle(), nullptr);
        ASSERT_EQ(WaitForSingleObject(player.Handle(), 0), static_cast<DWORD>(WAIT_TIMEOUT));
        CloseAndExpectExit(zorvi, main);
        if (c.ended) {
            EXPECT_EQ(WaitForSingleObject(player.Handle(), 5000), static_cast<DWORD>(WAIT_OBJECT_0));
        } else {
            // Zorvi has ended: nothing is left that could still end the player.
            EXPECT_EQ(WaitForSingleObject(player.Handle(), 0), static_cast<DWORD>(WAIT_TIMEOUT));
        }
    }
}

TEST(MainWindowRun, AbsurdSettingsStillGiveAUsableWindow) {
    const struct {
        const char* name;
        const char* settings;
    } cases[] = {
        {"negative place", "[Main]\r\nLeft=-100000\r\nTop=-100000\r\n"},
        {"far and huge",
         "[Main]\r\nLeft=1000000000\r\nTop=1000000000\r\nWidth=1000000000\r\nHeight="
         "1000000000\r\n"},
        {"negative size and layout", "[Main]\r\nWidth=-5\r\nHeight=-5\r\nMode=-3\r\n"},
        {"icons and timer",
         "[Option]\r\nIconSize=300\r\nTimerInterval=-1\r\nAutoSetFile=1\r\n"
         "[History]\r\nHis00=C:\\\r\nHis01=Q:\\gone\\x.mml\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Installation installation;
        installation.Files().Write("Zorvi.ini", c.settings);
        Running zorvi(installation, "");
        const HWND main = WaitForMain(zorvi);
        ASSERT_NE(main, nullptr);
        RECT rect{};
        GetWindowRect(main, &rect);
        EXPECT_NE(MonitorFromRect(&rect, MONITOR_DEFAULTTONULL), nullptr);
        EXPECT_GT(rect.right - rect.left, 0);
        EXPECT_GT(rect.bottom - rect.top, 0);
        EXPECT_EQ(Caption(main), kBareCaption);
        CloseAndExpectExit(zorvi, main);
    }
}

}  // namespace
}  // namespace zorvi::testing
