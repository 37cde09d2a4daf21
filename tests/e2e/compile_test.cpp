// Compiling from the command line with the real zorvi.exe, the stand-in
// compiler and player, and Wine's own cmd.exe running the written Zorvi.bat.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>
#include <vector>

#include "support/driver.h"

namespace zorvi::testing {
namespace {

std::string ShortPath(const std::string& path) {
    char buffer[MAX_PATH] = {};
    const DWORD length = GetShortPathNameA(path.c_str(), buffer, MAX_PATH);
    return length > 0 && length < MAX_PATH ? std::string(buffer, length) : path;
}

bool Exists(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::string ReadBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

// One configuration file, as the configuration window would write it.
struct Config {
    std::string console;  // the compiler; the stand-in by default
    std::string extension = "out";
    std::string player;   // the stand-in player by default
    int useCUI = 1;
    int cuiWindowState = 2;
    int forceShortName = 0;
    int stepMode = 0;
    int detectError = 1;
    int useGUI = 0;
    int useAssociated = 0;
    std::vector<std::string> script{"$pp$zcompiler.exe $fp$$fn$ $fp$$fn2$.out $fp$$fn2$.log"};
    std::optional<int> lineCount;  // Script/Line when it is not the number of lines
    std::vector<std::string> required;

    std::string Text() const {
        std::string text = "[Configure]\r\nConsole=" + console + "\r\nExtension=" + extension +
                           "\r\nPlayer=" + player + "\r\n[Option]\r\n";
        const std::pair<const char*, int> options[] = {
            {"UseCUI", useCUI},       {"CUIWindowState", cuiWindowState},
            {"ForceShortName", forceShortName}, {"StepMode", stepMode},
            {"DetectError", detectError}, {"UseGUI", useGUI},
            {"GUIWindowState", 1},    {"UseAssociated", useAssociated}};
        for (const auto& [key, value] : options) {
            text += std::string(key) + "=" + std::to_string(value) + "\r\n";
        }
        text += "[Script]\r\nLine=" +
                std::to_string(lineCount.value_or(static_cast<int>(script.size()))) + "\r\n";
        for (std::size_t i = 0; i < script.size(); ++i) {
            text += "Line" + std::to_string(i + 1) + "=" + script[i] + "\r\n";
        }
        if (!required.empty()) {
            text += "[Required]\r\nItemCount=" + std::to_string(required.size()) + "\r\n";
            for (std::size_t i = 0; i < required.size(); ++i) {
                text += "Item" + std::to_string(i + 1) + "=" + required[i] + "\r\n";
            }
        }
        return text;
    }
};

// An installation with the stand-in tools in its "tools" folder, one
// configuration "chain" made active, and an MML file whose first lines tell
// the stand-in compiler what to do.
class ToolChain {
public:
    ToolChain() {
        CreateDirectoryA(Tools().c_str(), nullptr);
        CreateDirectoryA(Path("cfg").c_str(), nullptr);
        for (const char* tool : {"zcompiler.exe", "zplayer.exe"}) {
            if (!CopyFileA(BesideTestProgram(tool).c_str(), (Tools() + "\\" + tool).c_str(),
                           FALSE)) {
                throw std::runtime_error(std::string("cannot copy ") + tool);
            }
        }
        config.console = Tools() + "\\zcompiler.exe";
        config.player = Tools() + "\\zplayer.exe";
        WriteSettings("[Setting]\r\nDefault=chain\r\n");
    }

    std::string Folder() const { return installation.Folder(); }
    std::string Path(const std::string& name) const { return installation.Files() / name; }
    std::string Tools() const { return Path("tools"); }
    std::string PlayerRecord() const { return Tools() + "\\zplayer.log"; }
    std::string Script() const { return ReadBytes(Path("Zorvi.bat")); }

    void WriteSettings(const std::string& text) const { WriteBytes(installation.SettingsFile(), text); }
    void WriteConfig(const std::string& name = "chain") const {
        WriteBytes(Path("cfg\\" + name + ".ini"), config.Text());
    }
    // The song's leading lines are the stand-in compiler's orders.
    void WriteSong(const std::string& name, const std::string& orders) const {
        WriteBytes(Path(name), orders + "o4 cdefg\r\n");
    }

    Installation installation;
    Config config;
};

struct WindowSearch {
    DWORD processId;
    HWND found = nullptr;
};

// The result window: a visible top-level window of the process that holds a text box.
BOOL CALLBACK MatchResultWindow(HWND window, LPARAM param) {
    auto* search = reinterpret_cast<WindowSearch*>(param);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner != search->processId || !IsWindowVisible(window)) return TRUE;
    if (FindWindowExW(window, nullptr, L"Edit", nullptr) == nullptr) return TRUE;
    search->found = window;
    return FALSE;
}

HWND WaitForResultWindow(const Running& zorvi) {
    WindowSearch search{zorvi.Id()};
    WaitUntil([&] {
        EnumWindows(MatchResultWindow, reinterpret_cast<LPARAM>(&search));
        return search.found != nullptr;
    });
    return search.found;
}

// Asked of the text box itself: the caption Windows keeps for another
// process's window is not the text of an edit control.
std::wstring ResultText(HWND window) {
    const HWND box = FindWindowExW(window, nullptr, L"Edit", nullptr);
    const auto length = SendMessageW(box, WM_GETTEXTLENGTH, 0, 0);
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    const auto copied = SendMessageW(box, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<std::size_t>(copied));
    return text;
}

// The result window is the only thing left: closing it ends the program.
void CloseAndExpectExit(Running& zorvi, HWND window) {
    PostMessageW(window, WM_CLOSE, 0, 0);
    const auto code = zorvi.WaitForExit();
    ASSERT_TRUE(code.has_value()) << "Zorvi did not end with its result window";
    EXPECT_EQ(*code, 0u);
}

// A run that shows nothing must end by itself.
void ExpectSilentExit(Running& zorvi) {
    const auto code = zorvi.WaitForExit(std::chrono::seconds(30));
    ASSERT_TRUE(code.has_value()) << "Zorvi did not end by itself";
    EXPECT_EQ(*code, 0u);
}

void AnswerBox(Running& zorvi, const char* caption, const std::wstring& text, int button) {
    const HWND box = WaitForMessageBox(zorvi.Id(), caption);
    ASSERT_NE(box, nullptr) << "no box " << caption;
    EXPECT_EQ(MessageBoxText(box), text);
    PressButton(box, button);
}

std::wstring Wide(const std::string& text) { return std::wstring(text.begin(), text.end()); }

const std::wstring kRule(78, L'-');

TEST(CompileNow, SucceedsWithoutAWindowAndLeavesTheExpandedScript) {
    ToolChain chain;
    chain.WriteConfig();
    chain.WriteSong("song.mml", "log=all fine\r\n");
    Running zorvi(chain.installation, "-compilenow song.mml");
    ExpectSilentExit(zorvi);
    const std::string songs = ShortPath(chain.Folder()) + "\\";
    EXPECT_EQ(ReadBytes(chain.Path("song.out")), "zcompiler output of " + songs + "song.mml\r\n");
    EXPECT_EQ(ReadBytes(chain.Path("song.log")), "all fine\r\n");
    EXPECT_EQ(chain.Script(), ShortPath(chain.Tools()) + "\\zcompiler.exe " + songs + "song.mml " +
                                  songs + "song.out " + songs + "song.log\r\n");
}

TEST(CompileNow, ShowLogShowsTheLogAfterASuccess) {
    ToolChain chain;
    chain.WriteConfig();
    chain.WriteSong("song.mml", "log=first line\r\nlog=second line\r\n");
    Running zorvi(chain.installation, "-compilenow -showlog song.mml");
    const HWND result = WaitForResultWindow(zorvi);
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(ResultText(result), L"first line\r\nsecond line\r\n");
    EXPECT_TRUE(Exists(chain.Path("song.out")));
    CloseAndExpectExit(zorvi, result);
}

TEST(CompileNow, PlayHandsTheOutputToThePlayer) {
    const struct {
        const char* folder;
        bool quoted;
    } cases[] = {{"songs", false}, {"my songs", true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.folder);
        ToolChain chain;
        chain.config.useGUI = 1;
        chain.WriteConfig();
        CreateDirectoryA(chain.Path(c.folder).c_str(), nullptr);
        const std::string song = std::string(c.folder) + "\\song.mml";
        chain.WriteSong(song, "");
        Running zorvi(chain.installation, "-compilenow -play \"" + chain.Path(song) + "\"");
        ExpectSilentExit(zorvi);
        const std::string output = chain.Path(std::string(c.folder) + "\\song.out");
        ASSERT_TRUE(Exists(output));
        ASSERT_TRUE(WaitUntil([&] { return Exists(chain.PlayerRecord()); }));
        ASSERT_TRUE(WaitUntil([&] {
            return ReadBytes(chain.PlayerRecord()).find("arg1=") != std::string::npos;
        }));
        const std::string record = ReadBytes(chain.PlayerRecord());
        EXPECT_NE(record.find("\r\narg1=" + output + "\r\n"), std::string::npos) << record;
        EXPECT_EQ(record.find("arg2="), std::string::npos) << record;
        EXPECT_EQ(record.find("\"" + output + "\"") != std::string::npos, c.quoted) << record;
    }
}

TEST(CompileNow, EachVerdictOpensTheResultWindow) {
    const struct {
        const char* name;
        std::string orders;
        bool oldOutput;
        int detectError;
        std::wstring firstLine;  // empty: nothing is shown, the program just ends
    } cases[] = {
        {"output missing", "output=none\r\nlog=E1 bad note\r\n", false, 1,
         L"Zorvi:Detect compiling error."},
        {"zero bytes", "output=empty\r\nlog=E2 empty\r\n", false, 1, L"Zorvi:Generated 0 byte file."},
        {"not rewritten", "output=keep\r\nlog=E3 kept\r\n", true, 1,
         L"Zorvi:Detect compiling error."},
        {"not detecting", "output=none\r\nlog=E4 quiet\r\n", false, 0, L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ToolChain chain;
        chain.config.detectError = c.detectError;
        chain.WriteConfig();
        chain.WriteSong("song.mml", c.orders);
        if (c.oldOutput) {
            WriteBytes(chain.Path("song.out"), "old output\r\n");
            // An hour old, so that any rewrite would show in the time.
            const HANDLE file = CreateFileA(chain.Path("song.out").c_str(), FILE_WRITE_ATTRIBUTES, 0,
                                            nullptr, OPEN_EXISTING, 0, nullptr);
            FILETIME time{};
            GetSystemTimeAsFileTime(&time);
            ULARGE_INTEGER ticks{{time.dwLowDateTime, time.dwHighDateTime}};
            ticks.QuadPart -= 36000000000ULL;
            time = {ticks.LowPart, ticks.HighPart};
            SetFileTime(file, nullptr, nullptr, &time);
            CloseHandle(file);
        }
        Running zorvi(chain.installation, "-compilenow song.mml");
        if (c.firstLine.empty()) {
            ExpectSilentExit(zorvi);
            EXPECT_EQ(ReadBytes(chain.Path("song.log")), "E4 quiet\r\n");
            continue;
        }
        const HWND result = WaitForResultWindow(zorvi);
        ASSERT_NE(result, nullptr);
        const std::wstring log = Wide(ReadBytes(chain.Path("song.log")));
        EXPECT_EQ(ResultText(result), c.firstLine + L"\r\n" + kRule + L"\r\n" + log);
        if (c.oldOutput) {
            EXPECT_EQ(ReadBytes(chain.Path("song.out")), "old output\r\n");
        }
        CloseAndExpectExit(zorvi, result);
    }
}

// Wine's console takes keys posted to its window: that is how the test
// answers each "pause", one at a time, and sees the script wait in between.
// The script names its console, so that other tests' consoles are left alone.
constexpr wchar_t kConsoleTitle[] = L"zorvi step test";

BOOL CALLBACK FindConsole(HWND window, LPARAM param) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    if (!IsWindowVisible(window) || std::wstring(name) != L"WineConsoleClass") return TRUE;
    if (WindowText(window).find(kConsoleTitle) == std::wstring::npos) return TRUE;
    *reinterpret_cast<HWND*>(param) = window;
    return FALSE;
}

HWND WaitForConsole() {
    HWND console = nullptr;
    WaitUntil([&] {
        EnumWindows(FindConsole, reinterpret_cast<LPARAM>(&console));
        return console != nullptr;
    });
    return console;
}

void PressEnter(HWND console) {
    PostMessageW(console, WM_KEYDOWN, VK_RETURN, 0x001C0001);
    PostMessageW(console, WM_CHAR, L'\r', 0x001C0001);
    PostMessageW(console, WM_KEYUP, VK_RETURN, 0xC01C0001);
}

TEST(CompileNow, StepModePausesAfterEveryLineInAShownConsole) {
    ToolChain chain;
    chain.config.stepMode = 1;
    chain.config.cuiWindowState = 2;  // minimized, which step mode overrides
    chain.config.script = {"title zorvi step test", "echo first> $fp$first.txt",
                           chain.config.script[0]};
    chain.WriteConfig();
    chain.WriteSong("song.mml", "");
    Running zorvi(chain.installation, "-compilenow song.mml");

    const HWND console = WaitForConsole();
    ASSERT_NE(console, nullptr) << "the console is not shown";
    EXPECT_FALSE(IsIconic(console));
    const std::string songs = ShortPath(chain.Folder()) + "\\";
    EXPECT_EQ(chain.Script(), "title zorvi step test\r\npause\r\necho first> " + songs +
                                  "first.txt\r\npause\r\n" + ShortPath(chain.Tools()) +
                                  "\\zcompiler.exe " + songs + "song.mml " + songs + "song.out " +
                                  songs + "song.log\r\npause\r\n");
    // Each line waits for its key.
    EXPECT_FALSE(WaitUntil([&] { return Exists(chain.Path("first.txt")); }, 700ms));
    PressEnter(console);
    ASSERT_TRUE(WaitUntil([&] { return Exists(chain.Path("first.txt")); }));
    EXPECT_FALSE(WaitUntil([&] { return Exists(chain.Path("song.out")); }, 700ms));
    PressEnter(console);
    ASSERT_TRUE(WaitUntil([&] { return Exists(chain.Path("song.out")); }));
    // Held by the last pause: Zorvi still waits for the script.
    EXPECT_FALSE(WaitUntil([&] { return zorvi.HasEnded(); }, 700ms));
    PressEnter(console);
    ExpectSilentExit(zorvi);
}

TEST(CompileNow, TempNamesSkipExistingFilesAndAreRemovedAfterwards) {
    const struct {
        const char* name;
        int existing;  // MML000 .. MML<existing - 1> are there before
        const char* used;
    } cases[] = {{"none there", 0, "MML000"}, {"MML000 there", 1, "MML001"},
                 {"all 1000 there", 1000, "MML999"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ToolChain chain;
        chain.config.script = {"copy $fp$$fn$ $pp$$temp$",
                               "$pp$zcompiler.exe $pp$$TEMP$ $fp$$fn2$.out $fp$$fn2$.log"};
        chain.WriteConfig();
        chain.WriteSong("song.mml", "log=via temp\r\n");
        for (int i = 0; i < c.existing; ++i) {
            char name[16];
            std::snprintf(name, sizeof name, "\\MML%03d", i);
            WriteBytes(chain.Tools() + name, "mine");
        }
        Running zorvi(chain.installation, "-compilenow song.mml");
        ExpectSilentExit(zorvi);
        const std::string tools = ShortPath(chain.Tools()) + "\\";
        EXPECT_NE(chain.Script().find("copy " + ShortPath(chain.Folder()) + "\\song.mml " + tools +
                                      c.used + "\r\n"),
                  std::string::npos)
            << chain.Script();
        EXPECT_EQ(ReadBytes(chain.Path("song.log")), "via temp\r\n");
        EXPECT_FALSE(Exists(chain.Tools() + "\\" + c.used)) << "the temporary file was left";
        if (c.existing > 0 && c.existing < 1000) {
            EXPECT_EQ(ReadBytes(chain.Tools() + "\\MML000"), "mine");
        }
        if (c.existing == 1000) {
            EXPECT_EQ(ReadBytes(chain.Tools() + "\\MML998"), "mine");
        }
    }
}

TEST(CompileNow, ABlankInTheNameCompilesThroughShortNamesAndRenamesBack) {
    ToolChain chain;
    chain.WriteConfig();
    chain.WriteSong("my song.mml", "log=short and back\r\n");
    // Output and log of an earlier compile: replaced by the new ones.
    WriteBytes(chain.Path("my song.out"), "old output\r\n");
    WriteBytes(chain.Path("my song.log"), "old log\r\n");
    const std::string shortSong = ShortPath(chain.Path("my song.mml"));
    ASSERT_NE(shortSong.find('~'), std::string::npos);
    const std::string shortBase = shortSong.substr(0, shortSong.rfind('.'));
    Running zorvi(chain.installation, "-compilenow -showlog \"" + chain.Path("my song.mml") + "\"");
    const HWND result = WaitForResultWindow(zorvi);
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(ResultText(result), L"short and back\r\n");
    CloseAndExpectExit(zorvi, result);
    EXPECT_EQ(ReadBytes(chain.Path("my song.out")), "zcompiler output of " + shortSong + "\r\n");
    EXPECT_EQ(ReadBytes(chain.Path("my song.log")), "short and back\r\n");
    EXPECT_NE(chain.Script().find(shortBase + ".out"), std::string::npos) << chain.Script();
    // Nothing is left under the short names themselves.
    WIN32_FIND_DATAA found{};
    const HANDLE search = FindFirstFileA(chain.Path("*").c_str(), &found);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    do {
        EXPECT_EQ(std::string(found.cFileName).find('~'), std::string::npos) << found.cFileName;
    } while (FindNextFileA(search, &found));
    FindClose(search);
}

TEST(CompileNow, WithoutTheConsoleThePlayerGetsTheTargetItself) {
    ToolChain chain;
    chain.config.useCUI = 0;
    chain.config.useGUI = 1;
    chain.WriteConfig();
    chain.WriteSong("song.mml", "");
    Running zorvi(chain.installation, "-compilenow -play song.mml");
    ExpectSilentExit(zorvi);
    ASSERT_TRUE(WaitUntil([&] {
        return ReadBytes(chain.PlayerRecord()).find("arg1=") != std::string::npos;
    }));
    EXPECT_NE(ReadBytes(chain.PlayerRecord()).find("arg1=" + chain.Path("song.mml") + "\r\n"),
              std::string::npos);
    EXPECT_FALSE(Exists(chain.Path("Zorvi.bat"))) << "nothing was to be compiled";
    EXPECT_FALSE(Exists(chain.Path("song.out")));
}

TEST(CompileNow, NoticesStopTheCompile) {
    const struct {
        const char* name;
        std::function<void(ToolChain&)> prepare;
        std::function<std::wstring(const ToolChain&)> text;
    } cases[] = {
        {"configuration missing",
         [](ToolChain& chain) { chain.WriteSettings("[Setting]\r\nDefault=nothing\r\n"); },
         [](const ToolChain&) { return std::wstring(L"Configuration file not found."); }},
        {"compiler folder missing",
         [](ToolChain& chain) { chain.config.console = chain.Path("gone\\zcompiler.exe"); },
         [](const ToolChain&) { return std::wstring(L"DOS program folder not found."); }},
        {"required tools missing",
         [](ToolChain& chain) {
             chain.config.required = {"zcompiler.exe", "a.exe", "$pp$b.dat", "$pp$zplayer.exe"};
         },
         [](const ToolChain& chain) {
             return L"a.exe / " + Wide(chain.Tools()) + L"\\b.dat not installed";
         }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ToolChain chain;
        c.prepare(chain);
        chain.WriteConfig();
        chain.WriteSong("song.mml", "");
        Running zorvi(chain.installation, "-compilenow song.mml");
        AnswerBox(zorvi, "Zorvi - Check", c.text(chain), IDOK);
        ExpectSilentExit(zorvi);
        EXPECT_FALSE(Exists(chain.Path("Zorvi.bat")));
        EXPECT_FALSE(Exists(chain.Path("song.out")));
    }
}

TEST(CompileNow, AMissingPresetAsksForTheDefaultSetup) {
    for (const int answer : {IDYES, IDNO}) {
        SCOPED_TRACE(answer == IDYES ? "Yes" : "No");
        ToolChain chain;
        chain.WriteConfig();
        chain.WriteSong("song.mml", "");
        Running zorvi(chain.installation, "-preset=gone -compilenow song.mml");
        AnswerBox(zorvi, "Zorvi - Check",
                  L"gone.ini is not found. Do you execute using a default setup?", answer);
        ExpectSilentExit(zorvi);
        EXPECT_EQ(Exists(chain.Path("song.out")), answer == IDYES);
    }
}

TEST(CompileNow, PresetAndExtensionFilterChooseTheConfiguration) {
    const struct {
        const char* name;
        std::string arguments;
        bool filter;
        const char* output;
    } cases[] = {
        {"active", "-compilenow song.mml", false, "song.out"},
        {"preset", "-preset=\"other set\" -compilenow song.mml", true, "song.oth"},
        {"filter", "-compilenow song.mml", true, "song.flt"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ToolChain chain;
        chain.WriteConfig();
        chain.config.extension = "oth";
        chain.config.script = {"$pp$zcompiler.exe $fp$$fn$ $fp$$fn2$.oth"};
        chain.WriteConfig("other set");
        chain.config.extension = "flt";
        chain.config.script = {"$pp$zcompiler.exe $fp$$fn$ $fp$$fn2$.flt"};
        chain.WriteConfig("byext");
        if (c.filter) {
            chain.WriteSettings(
                "[Setting]\r\nDefault=chain\r\n[Filter]\r\nItemCount=2\r\nItem1=Text\r\n"
                "Extension1=.txt\r\nDefault1=chain\r\nItem2=MML\r\nExtension2=.MML;.mus\r\n"
                "Default2=byext\r\n");
        }
        chain.WriteSong("song.mml", "");
        Running zorvi(chain.installation, c.arguments);
        ExpectSilentExit(zorvi);
        for (const char* output : {"song.out", "song.oth", "song.flt"}) {
            EXPECT_EQ(Exists(chain.Path(output)), std::string(output) == c.output) << output;
        }
    }
}

TEST(CompileNow, AMissingPlayerIsReported) {
    ToolChain chain;
    chain.config.useGUI = 1;
    chain.config.player = chain.Tools() + "\\noplayer.exe";
    chain.WriteConfig();
    chain.WriteSong("song.mml", "");
    Running zorvi(chain.installation, "-compilenow -play song.mml");
    AnswerBox(zorvi, "Zorvi - Check",
              L"Windows program not found.\r\n" + Wide(chain.config.player), IDOK);
    ExpectSilentExit(zorvi);
    EXPECT_TRUE(Exists(chain.Path("song.out")));
}

TEST(ShowLog, AMissingLogIsSaidInTheWindow) {
    ToolChain chain;
    chain.WriteSong("song.mml", "");
    Running zorvi(chain.installation, "-showlog song.mml");
    const HWND result = WaitForResultWindow(zorvi);
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(ResultText(result), L"Zorvi:Log file not found.\r\n");
    CloseAndExpectExit(zorvi, result);
}

TEST(CompileNow, OddScriptCountsStillRun) {
    const struct {
        const char* name;
        std::vector<std::string> lines;
        std::optional<int> lineCount;
        std::string script;           // Zorvi.bat, with $S$ for the short install folder
        std::wstring resultText;      // empty: a silent success
    } cases[] = {
        {"no lines", {}, std::nullopt, "\r\n",
         L"Zorvi:Detect compiling error.(Log file not found.)\r\n"},
        {"more lines counted than stored", {"$pp$zcompiler.exe $fp$$fn$"}, 4,
         "$T$zcompiler.exe $S$song.mml\r\n\r\n\r\n\r\n", L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ToolChain chain;
        chain.config.script = c.lines;
        chain.config.lineCount = c.lineCount;
        chain.WriteConfig();
        chain.WriteSong("song.mml", "");
        Running zorvi(chain.installation, "-compilenow song.mml");
        if (c.resultText.empty()) {
            ExpectSilentExit(zorvi);
        } else {
            const HWND result = WaitForResultWindow(zorvi);
            ASSERT_NE(result, nullptr);
            EXPECT_EQ(ResultText(result), c.resultText);
            CloseAndExpectExit(zorvi, result);
        }
        std::string expected = c.script;
        for (const auto& [token, value] :
             {std::pair<std::string, std::string>{"$S$", ShortPath(chain.Folder()) + "\\"},
              {"$T$", ShortPath(chain.Tools()) + "\\"}}) {
            for (auto at = expected.find(token); at != std::string::npos; at = expected.find(token)) {
                expected.replace(at, token.size(), value);
            }
        }
        EXPECT_EQ(chain.Script(), expected);
    }
}

TEST(CompileNow, AScriptThatCannotBeWrittenIsReportedAndNotRun) {
    const struct {
        const char* name;
        bool asFolder;  // Zorvi.bat is a folder; else the file is held open without sharing
        const wchar_t* number;
    } cases[] = {{"a folder in the way", true, L"(5:Compile)"},
                 {"held open by another program", false, L"(32:Compile)"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ToolChain chain;
        chain.WriteConfig();
        chain.WriteSong("song.mml", "");
        const std::string script = chain.Path("Zorvi.bat");
        HANDLE held = INVALID_HANDLE_VALUE;
        if (c.asFolder) {
            ASSERT_TRUE(CreateDirectoryA(script.c_str(), nullptr));
        } else {
            // An old script that must not run in place of the new one.
            WriteBytes(script, "echo stale> " + chain.Path("stale.txt") + "\r\n");
            held = CreateFileA(script.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
            ASSERT_NE(held, INVALID_HANDLE_VALUE);
        }
        Running zorvi(chain.installation, "-compilenow -showlog song.mml");
        const HWND box = WaitForMessageBox(zorvi.Id(), "Zorvi - Error");
        ASSERT_NE(box, nullptr);
        const std::wstring text = MessageBoxText(box);
        EXPECT_EQ(text.rfind(Wide(script) + L"\r\n", 0), 0u) << std::string(text.begin(), text.end());
        EXPECT_NE(text.find(c.number), std::wstring::npos);
        PressButton(box, IDOK);
        if (held != INVALID_HANDLE_VALUE) CloseHandle(held);
        // -showlog still shows the (missing) log, then the program ends.
        const HWND result = WaitForResultWindow(zorvi);
        ASSERT_NE(result, nullptr);
        CloseAndExpectExit(zorvi, result);
        EXPECT_FALSE(Exists(chain.Path("song.out")));
        EXPECT_FALSE(Exists(chain.Path("stale.txt")));
    }
}

}  // namespace
}  // namespace zorvi::testing
