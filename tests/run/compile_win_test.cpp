// The compile command, play, the extension filter and the required-tools
// check against real files, the stand-in tools and Wine's cmd.exe.
#include <gtest/gtest.h>

#include <windows.h>

#include <shellapi.h>

#include <functional>
#include <utility>
#include <string>
#include <vector>

#include "core/mdlMain.h"
#include "core/messages_win.h"
#include "files/path_win.h"
#include "run/compile.h"
#include "run/play.h"
#include "run/required_tools.h"
#include "ui/result/frmResult.h"
#include "support/temp_folder.h"
#include "support/wait.h"

namespace zorvi {
namespace {

using testing::TempFolder;
using testing::WaitUntil;
using namespace std::chrono_literals;

std::string Tool(const char* name) { return mdlFile::GetAppFolder() + name; }

// The boxes the code under test shows, answered with a fixed button.
class BoxRecorder {
public:
    explicit BoxRecorder(int answer = IDOK) {
        previous_ = SetMessageBoxFunction(
            [this, answer](HWND, const std::wstring& text, const std::wstring& title, UINT) {
                boxes.push_back(title + L"|" + text);
                return answer;
            });
    }
    ~BoxRecorder() { SetMessageBoxFunction(std::move(previous_)); }
    std::vector<std::wstring> boxes;

private:
    MessageBoxFunction previous_;
};

// Settings in a fresh folder, a configuration of a unique name in the
// program's cfg folder (where the compile looks for it), and a title of
// its own so that the batch script beside the test program is this test's.
class Sandbox {
public:
    Sandbox() {
        static int counter = 0;
        name = "wintest-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(counter++);
        CreateDirectoryA((mdlFile::GetAppFolder() + "cfg").c_str(), nullptr);
        configuration = mdlFile::GetAppFolder() + "cfg\\" + name + ".ini";
        previousTitle_ = mdlMain::AppTitle();
        mdlMain::SetAppTitle("Zorvi" + name);
        mdlMain::SetMainSettingsPath(folder / "Zorvi.ini");
        folder.Write("Zorvi.ini", "[Setting]\r\nDefault=" + name + "\r\n");
        SetEnvironmentVariableA("ZPLAYER_RECORD", (folder / "player.txt").c_str());
    }
    ~Sandbox() {
        DeleteFileA(configuration.c_str());
        const std::string script = ScriptFilePath();
        RemoveDirectoryA(script.c_str());
        DeleteFileA(script.c_str());
        mdlMain::SetAppTitle(previousTitle_);
        mdlMain::SetTargetFile("");
        SetEnvironmentVariableA("ZPLAYER_RECORD", nullptr);
    }

    // UseCUI on, the stand-in compiler writing song.out and song.log beside
    // the song; extra is "Section/Key=value" lines that change or add keys.
    void WriteConfiguration(const std::string& extra = "", const std::string& path = "") const {
        std::vector<std::pair<std::string, std::string>> keys{
            {"Configure/Console", Tool("zcompiler.exe")},
            {"Configure/Extension", "out"},
            {"Configure/Player", Tool("zplayer.exe")},
            {"Option/UseCUI", "1"},
            {"Option/CUIWindowState", "2"},
            {"Option/DetectError", "1"},
            {"Script/Line", "1"},
            {"Script/Line1", "$pp$zcompiler.exe $fp$$fn$ $fp$$fn2$.out $fp$$fn2$.log"},
        };
        for (const auto& [key, value] : testing::KeyValueLines(extra)) {
            bool replaced = false;
            for (auto& entry : keys) {
                if (entry.first == key) {
                    entry.second = value;
                    replaced = true;
                }
            }
            if (!replaced) keys.emplace_back(key, value);
        }
        std::string text;
        for (const char* section : {"Configure", "Option", "Script", "Required"}) {
            text += "[" + std::string(section) + "]\r\n";
            for (const auto& [key, value] : keys) {
                if (key.rfind(std::string(section) + "/", 0) == 0) {
                    text += key.substr(key.find('/') + 1) + "=" + value + "\r\n";
                }
            }
        }
        WriteFile(path.empty() ? configuration : path, text);
    }
    std::string Song(const std::string& orders = "") const {
        folder.Write("song.mml", orders + "o4 c\r\n");
        mdlMain::SetTargetFile(folder / "song.mml");
        return folder / "song.mml";
    }
    std::string PlayerRecord() const { return folder.Read("player.txt"); }

    static void WriteFile(const std::string& path, const std::string& text) {
        const HANDLE file =
            CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        DWORD written = 0;
        ::WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
        CloseHandle(file);
    }

    TempFolder folder;
    std::string name;
    std::string configuration;

private:
    std::string previousTitle_;
};

// The main window as the compile command sees it: every call written down.
class RecordingHost : public CompileHost {
public:
    HWND Owner() const override { return nullptr; }
    void ViewChange_StatusBar(const std::string& text) override { calls.push_back("status:" + text); }
    void ViewChange_LogView(bool logExists) override {
        calls.push_back(logExists ? "log:on" : "log:off");
    }
    void ViewUpdate() override { calls.push_back("update"); }
    bool& Compiling() override { return compiling; }

    bool compiling = false;
    std::vector<std::string> calls;
};

TEST(CompileCommand, ABusyFlagTurnsTheCallAwayUntouched) {
    Sandbox sandbox;
    sandbox.WriteConfiguration();
    sandbox.Song();
    BoxRecorder boxes;
    RecordingHost host;
    host.compiling = true;
    CMD_DoCompile(host);
    EXPECT_TRUE(host.compiling);
    EXPECT_TRUE(host.calls.empty());
    EXPECT_TRUE(boxes.boxes.empty());
    EXPECT_FALSE(mdlFile::FileExists(sandbox.folder / "song.out"));
}

TEST(CompileCommand, EveryStopEndsWithTheStatusBarAndAClearFlag) {
    const struct {
        const char* name;
        std::function<void(Sandbox&)> prepare;
        std::vector<std::string> calls;  // "$name$" stands for the configuration's name
        std::wstring box;                // after the title's "|"
    } cases[] = {
        {"target missing", [](Sandbox& s) { s.WriteConfiguration(); mdlMain::SetTargetFile(s.folder / "gone.mml"); },
         {"status:$name$"}, L""},
        {"configuration missing", [](Sandbox& s) { s.Song(); },
         {"status:$name$"}, L"Configuration file not found."},
        {"compiler folder missing",
         [](Sandbox& s) {
             s.Song();
             s.WriteConfiguration("Configure/Console=" + (s.folder / "no\\zc.exe"));
         },
         {"status:Now Converting to song.out", "status:$name$"}, L"DOS program folder not found."},
        {"required tools missing",
         [](Sandbox& s) {
             s.Song();
             s.WriteConfiguration("Required/ItemCount=2\r\nRequired/Item1=a.exe\r\nRequired/Item2=zplayer.exe");
         },
         {"status:Now Converting to song.out", "status:$name$"}, L"a.exe not installed"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Sandbox sandbox;
        c.prepare(sandbox);
        BoxRecorder boxes;
        RecordingHost host;
        CMD_DoCompile(host);
        EXPECT_FALSE(host.compiling);
        std::vector<std::string> expected;
        for (std::string call : c.calls) {
            if (const auto at = call.find("$name$"); at != std::string::npos) {
                call.replace(at, 6, sandbox.name);
            }
            expected.push_back(call);
        }
        EXPECT_EQ(host.calls, expected);
        if (c.box.empty()) {
            EXPECT_TRUE(boxes.boxes.empty());
        } else {
            ASSERT_EQ(boxes.boxes.size(), 1u);
            EXPECT_EQ(boxes.boxes[0], L"Zorvi" + std::wstring(sandbox.name.begin(), sandbox.name.end()) +
                                          L" - Check|" + c.box);
        }
        EXPECT_FALSE(mdlFile::FileExists(ScriptFilePath()));
    }
}

// A compile started from inside the running one's wait (a timer tick, say).
RecordingHost* reenteringHost = nullptr;
std::vector<bool> busyAtReentry;

void CALLBACK CompileAgain(HWND, UINT, UINT_PTR, DWORD) {
    if (reenteringHost == nullptr) return;
    busyAtReentry.push_back(reenteringHost->compiling);
    CMD_DoCompile(*reenteringHost);
}

TEST(CompileCommand, ASuccessRefreshesTheViewPlaysAndRefusesASecondCompileMeanwhile) {
    Sandbox sandbox;
    sandbox.WriteConfiguration("Option/UseGUI=1");
    sandbox.Song("sleep=700\r\nlog=fine\r\n");
    sandbox.folder.Write("Zorvi.ini", "[Setting]\r\nDefault=" + sandbox.name +
                                          "\r\n[ResultWindow]\r\nAutoClose=0\r\n");
    BoxRecorder boxes;
    RecordingHost host;
    reenteringHost = &host;
    busyAtReentry.clear();
    const UINT_PTR timer = SetTimer(nullptr, 0, 100, CompileAgain);
    CMD_DoCompile(host);
    KillTimer(nullptr, timer);
    reenteringHost = nullptr;

    EXPECT_FALSE(host.compiling);
    ASSERT_FALSE(busyAtReentry.empty()) << "the wait did not serve the timer";
    for (bool busy : busyAtReentry) EXPECT_TRUE(busy);
    // Exactly one compile's calls: the refused ones left no trace.
    EXPECT_EQ(host.calls, (std::vector<std::string>{"status:Now Converting to song.out", "log:on",
                                                    "update", "status:" + sandbox.name}));
    EXPECT_TRUE(boxes.boxes.empty());
    EXPECT_EQ(sandbox.folder.Read("song.log"), "fine\r\n");
    ASSERT_TRUE(WaitUntil([&] { return sandbox.PlayerRecord().find("arg1=") != std::string::npos; }));
    EXPECT_NE(sandbox.PlayerRecord().find("arg1=" + (sandbox.folder / "song.out") + "\r\n"),
              std::string::npos);
    const std::string songs = mdlFile::GetShortPath(sandbox.folder.Path()) + "\\";
    std::string script(4096, '\0');
    const HANDLE file = CreateFileA(ScriptFilePath().c_str(), GENERIC_READ, FILE_SHARE_READ,
                                    nullptr, OPEN_EXISTING, 0, nullptr);
    DWORD read = 0;
    ReadFile(file, script.data(), static_cast<DWORD>(script.size()), &read, nullptr);
    CloseHandle(file);
    script.resize(read);
    EXPECT_EQ(script, mdlFile::GetShortPath(mdlFile::GetAppFolder()) + "zcompiler.exe " + songs +
                          "song.mml " + songs + "song.out " + songs + "song.log\r\n");
}

// What a drop or a history pick does while a compile waits: another target,
// and another configuration made the active one.
std::function<void()> changeMeanwhile;

void CALLBACK ChangeTargetMeanwhile(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    if (changeMeanwhile) changeMeanwhile();
}

TEST(CompileCommand, TheNamesTakenAtTheStartServeTheWholeCompile) {
    const struct {
        const char* name;
        const char* orders;  // for the stand-in compiler
        bool verdictShown;   // a compile error: the result window shows the log
        bool played;         // a success: the player gets the output
    } cases[] = {
        {"a compile error shows this compile's log", "sleep=700\r\noutput=none\r\nlog=this compile\r\n",
         true, false},
        {"a success plays this compile's output", "sleep=700\r\nlog=this compile\r\n", false, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Sandbox sandbox;
        sandbox.WriteConfiguration("Option/UseGUI=1");
        sandbox.Song(c.orders);
        sandbox.folder.Write("other.mml", "o4 d\r\n");
        sandbox.folder.Write("other.out", "other music");
        sandbox.folder.Write("other.log", "the other target's log\r\n");
        changeMeanwhile = [&sandbox] {
            mdlMain::SetTargetFile(sandbox.folder / "other.mml");
            // Now active: a configuration that plays nothing.
            sandbox.folder.Write("Zorvi.ini", "[Setting]\r\nDefault=" + sandbox.name + "-gone\r\n");
        };
        BoxRecorder boxes;
        RecordingHost host;
        const UINT_PTR timer = SetTimer(nullptr, 0, 150, ChangeTargetMeanwhile);
        CMD_DoCompile(host);
        KillTimer(nullptr, timer);
        changeMeanwhile = nullptr;
        ASSERT_EQ(mdlMain::TargetFile(), sandbox.folder / "other.mml") << "the wait did not serve the timer";

        EXPECT_FALSE(host.compiling);
        EXPECT_TRUE(boxes.boxes.empty());
        EXPECT_EQ(sandbox.folder.Read("song.log"), "this compile\r\n");
        const HWND result = ResultWindow().Handle();
        EXPECT_EQ(result != nullptr && IsWindowVisible(result), c.verdictShown);
        if (c.verdictShown) {
            const std::wstring text = testing::WindowText(ResultWindow().TextBox());
            EXPECT_NE(text.find(L"Detect compiling error."), std::wstring::npos) << text;
            EXPECT_TRUE(text.ends_with(L"\r\nthis compile\r\n")) << text;
            EXPECT_NE(testing::WindowText(result).find(L"song.log"), std::wstring::npos);
        }
        if (c.played) {
            ASSERT_TRUE(WaitUntil([&] { return sandbox.PlayerRecord().find("arg1=") != std::string::npos; }));
            EXPECT_NE(sandbox.PlayerRecord().find("arg1=" + (sandbox.folder / "song.out") + "\r\n"),
                      std::string::npos)
                << sandbox.PlayerRecord();
        } else {
            EXPECT_FALSE(WaitUntil([&] { return !sandbox.PlayerRecord().empty(); }, 500ms));
        }
        // Out of the way of the next test; a command-line run's unload destroys it.
        ReleaseResultWindow();
    }
}

TEST(CompileCommand, AScriptThatCannotBeWrittenIsReportedAndTheFlagCleared) {
    Sandbox sandbox;
    sandbox.WriteConfiguration();
    sandbox.Song();
    ASSERT_TRUE(CreateDirectoryA(ScriptFilePath().c_str(), nullptr));
    BoxRecorder boxes;
    RecordingHost host;
    CMD_DoCompile(host);
    EXPECT_FALSE(host.compiling);
    EXPECT_EQ(host.calls, (std::vector<std::string>{"status:Now Converting to song.out",
                                                    "status:" + sandbox.name}));
    ASSERT_EQ(boxes.boxes.size(), 1u);
    const std::wstring& box = boxes.boxes[0];
    EXPECT_NE(box.find(L" - Error|"), std::wstring::npos);
    EXPECT_NE(box.find(L".bat\r\n"), std::wstring::npos);
    EXPECT_EQ(box.substr(box.size() - 11), L"(5:Compile)");
    EXPECT_FALSE(mdlFile::FileExists(sandbox.folder / "song.out"));
}

// Ends a wait that would never end by itself: the wait hands WM_QUIT on and
// returns, so a hanging compile fails its test instead of hanging it.
class HangGuard {
public:
    explicit HangGuard(UINT milliseconds) : timer_(SetTimer(nullptr, 0, milliseconds, Fire)) {
        fired = false;
    }
    ~HangGuard() {
        KillTimer(nullptr, timer_);
        MSG message;
        while (PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) {
        }
    }
    HangGuard(const HangGuard&) = delete;
    HangGuard& operator=(const HangGuard&) = delete;

    static inline bool fired = false;

private:
    static void CALLBACK Fire(HWND, UINT, UINT_PTR timer, DWORD) {
        KillTimer(nullptr, timer);
        fired = true;
        PostQuitMessage(0);
    }
    UINT_PTR timer_;
};

// The error a shell start of this interpreter name gives, read at once: what
// the compile's report must show.
DWORD ShellStartError(const std::string& program) {
    SHELLEXECUTEINFOA info{};
    info.cbSize = sizeof info;
    info.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_FLAG_NO_UI;
    info.lpVerb = "open";
    info.lpFile = program.c_str();
    info.lpParameters = "/C exit";
    info.nShow = SW_HIDE;
    if (ShellExecuteExA(&info)) {
        WaitForSingleObject(info.hProcess, 15000);
        CloseHandle(info.hProcess);
        return ERROR_SUCCESS;
    }
    return GetLastError();
}

TEST(CompileCommand, TheInterpreterIsFoundByTheNameInComSpec) {
    char saved[MAX_PATH] = {};
    const DWORD savedLength = GetEnvironmentVariableA("COMSPEC", saved, MAX_PATH);
    const struct {
        const char* name;
        const char* comSpec;      // nullptr: unset
        const char* refusedName;  // nullptr: it compiles; else the name the report gives
    } cases[] = {
        {"unset", nullptr, nullptr},
        {"empty", "", nullptr},
        {"another folder: only the name counts", "C:\\nowhere\\cmd.exe", nullptr},
        {"no such interpreter", "C:\\nowhere\\nocmd.exe", "nocmd.exe"},
        // The shell finds no "cmd.exe /Q"; started bare instead, the
        // interpreter would wait for typed commands and the compile for it.
        {"a switch in COMSPEC", "C:\\windows\\system32\\cmd.exe /Q", "cmd.exe /Q"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Sandbox sandbox;
        sandbox.WriteConfiguration();
        sandbox.Song();
        SetEnvironmentVariableA("COMSPEC", c.comSpec);
        BoxRecorder boxes;
        RecordingHost host;
        {
            HangGuard guard(10000);
            CMD_DoCompile(host);
            EXPECT_FALSE(HangGuard::fired) << "the compile was still waiting after 10 s";
        }
        EXPECT_FALSE(host.compiling);
        EXPECT_EQ(mdlFile::FileExists(sandbox.folder / "song.out"), c.refusedName == nullptr);
        if (c.refusedName == nullptr) {
            EXPECT_TRUE(boxes.boxes.empty());
            continue;
        }
        const DWORD error = ShellStartError(c.refusedName);
        ASSERT_NE(error, 0u);
        ASSERT_EQ(boxes.boxes.size(), 1u);
        const std::wstring& box = boxes.boxes[0];
        const std::string name = c.refusedName;
        EXPECT_NE(box.find(L" - Error|" + std::wstring(name.begin(), name.end()) + L"\r\n"),
                  std::wstring::npos)
            << box;
        const std::wstring ending = L" (" + std::to_wstring(error) + L":Compile)";
        EXPECT_TRUE(box.ends_with(ending)) << box;
    }
    SetEnvironmentVariableA("COMSPEC", savedLength > 0 && savedLength < MAX_PATH ? saved : nullptr);
}

TEST(Play, ChoosesTheFileAndThePlayer) {
    const struct {
        const char* name;
        std::string options;       // extra keys of the configuration
        const char* songFolder;    // the target's folder inside the sandbox
        bool outputExists;
        const char* played;        // relative to the sandbox; "" for no start
        const wchar_t* box;        // the notice's text up to its second line
    } cases[] = {
        {"player off", "Option/UseGUI=0", "", true, "", L""},
        {"generated file", "Option/UseGUI=1", "", true, "song.out", L""},
        {"any non-zero switches it on", "Option/UseGUI=2", "", true, "song.out", L""},
        {"without the console: the target", "Option/UseGUI=1\r\nOption/UseCUI=0", "", true,
         "song.mml", L""},
        {"no extension: the target", "Option/UseGUI=1\r\nConfigure/Extension=", "",
         true, "song.mml", L""},
        {"nothing generated", "Option/UseGUI=1", "", false, "", L""},
        {"player through variables",
         "Option/UseGUI=1\r\nConfigure/Player=$pp$zplayer.exe", "", true,
         "song.out", L""},
        {"a blank in the path", "Option/UseGUI=1", "my songs", true, "my songs\\song.out",
         L""},
        {"player missing",
         "Option/UseGUI=1\r\nConfigure/Player=C:\\nowhere\\player.exe", "", true,
         "", L"Windows program not found.\r\nC:\\nowhere\\player.exe"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Sandbox sandbox;
        const std::string configuration = sandbox.folder / "play.ini";
        sandbox.WriteConfiguration(c.options, configuration);
        std::string folder = sandbox.folder.Path();
        if (*c.songFolder != '\0') {
            folder += std::string("\\") + c.songFolder;
            CreateDirectoryA(folder.c_str(), nullptr);
        }
        Sandbox::WriteFile(folder + "\\song.mml", "o4 c\r\n");
        if (c.outputExists) Sandbox::WriteFile(folder + "\\song.out", "music");
        mdlMain::SetTargetFile(folder + "\\song.mml");
        BoxRecorder boxes;
        CMD_DoPlay(configuration, nullptr);
        if (*c.played != '\0') {
            const std::string played = sandbox.folder / c.played;
            ASSERT_TRUE(WaitUntil([&] { return sandbox.PlayerRecord().find("arg1=") != std::string::npos; }));
            const std::string record = sandbox.PlayerRecord();
            EXPECT_NE(record.find("\r\narg1=" + played + "\r\n"), std::string::npos) << record;
            EXPECT_EQ(record.find("arg2="), std::string::npos) << record;
            const bool quoted = record.find("\"" + played + "\"") != std::string::npos;
            EXPECT_EQ(quoted, played.find(' ') != std::string::npos) << record;
        } else {
            EXPECT_FALSE(WaitUntil([&] { return !sandbox.PlayerRecord().empty(); }, 500ms));
        }
        if (*c.box == L'\0') {
            EXPECT_TRUE(boxes.boxes.empty());
        } else {
            ASSERT_EQ(boxes.boxes.size(), 1u);
            EXPECT_EQ(boxes.boxes[0].substr(boxes.boxes[0].find(L'|') + 1), c.box);
        }
    }
}

TEST(Editor, OpensTheTargetWhenAutoOpenIsOn) {
    const struct {
        const char* name;
        std::string settings;  // the Option and Setting keys
        const char* songFolder;
        bool started;
    } cases[] = {
        {"auto open off", "[Setting]\r\nEditor=$E$\r\n", "", false},
        {"auto open 2 is not on", "[Option]\r\nAutoOpen=2\r\n[Setting]\r\nEditor=$E$\r\n", "", false},
        {"editor", "[Option]\r\nAutoOpen=1\r\n[Setting]\r\nEditor=$E$\r\n", "", true},
        {"editor through variables", "[Option]\r\nAutoOpen=1\r\n[Setting]\r\nEditor=$hp$zplayer.exe\r\n",
         "", true},
        {"a blank in the target", "[Option]\r\nAutoOpen=1\r\n[Setting]\r\nEditor=$E$\r\n", "my songs",
         true},
        // No program is associated with .mml here: the start fails, silently.
        {"associated program", "[Option]\r\nAutoOpen=1\r\nUseAssociatedEditor=1\r\n[Setting]\r\nEditor=$E$\r\n",
         "", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Sandbox sandbox;
        std::string settings = c.settings;
        if (const auto at = settings.find("$E$"); at != std::string::npos) {
            settings.replace(at, 3, Tool("zplayer.exe"));
        }
        sandbox.folder.Write("Zorvi.ini", settings);
        std::string folder = sandbox.folder.Path();
        if (*c.songFolder != '\0') {
            folder += std::string("\\") + c.songFolder;
            CreateDirectoryA(folder.c_str(), nullptr);
        }
        const std::string target = folder + "\\song.mml";
        Sandbox::WriteFile(target, "o4 c\r\n");
        mdlMain::SetTargetFile(target);
        BoxRecorder boxes;
        StartEditor(nullptr);
        if (c.started) {
            ASSERT_TRUE(WaitUntil([&] { return sandbox.PlayerRecord().find("arg1=") != std::string::npos; }));
            const std::string record = sandbox.PlayerRecord();
            EXPECT_NE(record.find("\r\narg1=" + target + "\r\n"), std::string::npos) << record;
            // Started in the program's folder.
            EXPECT_NE(record.find("cwd=" + mdlFile::RemoveBackslash(mdlFile::GetAppFolder()) + "\r\n"),
                      std::string::npos)
                << record;
        } else {
            EXPECT_FALSE(WaitUntil([&] { return !sandbox.PlayerRecord().empty(); }, 500ms));
        }
        EXPECT_TRUE(boxes.boxes.empty());
    }
}

TEST(RequiredTools, CountsListsAndWords) {
    const struct {
        const char* name;
        std::string section;
        int count;
        const char* missing;
        const wchar_t* message;
    } cases[] = {
        {"nothing listed", "", -1, "", L"No information of required tools."},
        {"zero items", "Required/ItemCount=0\r\nRequired/Item1=a.exe", -1, "",
         L"No information of required tools."},
        {"all there",
         "Required/ItemCount=3\r\nRequired/Item1=zcompiler.exe\r\nRequired/Item2=$pp$zplayer.exe\r\nRequired/Item3=$T$",
         0, "", L"Required tool(s) already installed."},
        {"two missing", "Required/ItemCount=3\r\nRequired/Item1=a.exe\r\nRequired/Item2=zplayer.exe\r\nRequired/Item3=b.dat",
         2, "a.exe / b.dat", L"a.exe / b.dat not installed"},
        {"absolute, missing", "Required/ItemCount=1\r\nRequired/Item1=C:\\nowhere\\x.dll", 1,
         "C:\\nowhere\\x.dll", L"C:\\nowhere\\x.dll not installed"},
        // An entry that is not stored would name the compiler's folder itself.
        {"count beyond the entries", "Required/ItemCount=2\r\nRequired/Item1=zcompiler.exe", 1,
         "Item2", L"Item2 not installed"},
        {"an empty entry", "Required/ItemCount=2\r\nRequired/Item1=\r\nRequired/Item2=zplayer.exe",
         1, "Item1", L"Item1 not installed"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Sandbox sandbox;
        sandbox.folder.Write("data.bin", "x");
        std::string section = c.section;
        if (const auto at = section.find("$T$"); at != std::string::npos) {
            section.replace(at, 3, sandbox.folder / "data.bin");
        }
        const std::string configuration = sandbox.folder / "tools.ini";
        sandbox.WriteConfiguration(section, configuration);
        // The folder is taken with or without its trailing backslash.
        for (std::string folder : {mdlFile::GetAppFolder(), mdlFile::RemoveBackslash(mdlFile::GetAppFolder())}) {
            std::string missing = "left over";
            EXPECT_EQ(RequiredToolsCheck(configuration, folder, missing), c.count) << folder;
            EXPECT_EQ(missing, c.missing);
            EXPECT_EQ(RequiredToolsMessage(c.count, missing), c.message);
        }
    }
}

TEST(ExtensionFilter, ReadsTheFilterRowsOfTheSettings) {
    Sandbox sandbox;
    sandbox.WriteConfiguration();
    const struct {
        const char* name;
        std::string filter;
        FilterCode code;
        std::string configuration;
    } cases[] = {
        {"no rows", "", FilterCode::None, ""},
        {"no match", "ItemCount=1\r\nExtension1=.txt\r\nDefault1=x\r\n", FilterCode::NoMatch, ""},
        {"no switch", "ItemCount=1\r\nExtension1=.mml\r\nDefault1=\r\n", FilterCode::NoSwitch, ""},
        {"configuration missing", "ItemCount=1\r\nExtension1=.MML\r\nDefault1=nothing-here\r\n",
         FilterCode::MissingConfig, "nothing-here"},
        {"found", "ItemCount=2\r\nExtension1=.txt\r\nDefault1=x\r\nExtension2=.mus;.mml\r\nDefault2=" +
                      sandbox.name + "\r\n",
         FilterCode::Found, sandbox.name},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        sandbox.folder.Write("Zorvi.ini", "[Filter]\r\n" + c.filter);
        std::string configuration;
        EXPECT_EQ(ExtensionFilter("C:\\songs\\a.mml", configuration), c.code);
        EXPECT_EQ(configuration, c.configuration);
    }
}

}  // namespace
}  // namespace zorvi
