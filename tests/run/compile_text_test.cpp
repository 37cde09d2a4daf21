// The compile's platform-free decisions: batch text, short names, $temp$,
// extension filter, configuration choice, verdict, play target, required tools.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <vector>

#include "run/compile_text.h"
#include "support/shift_jis.h"

namespace zorvi {
namespace {

TEST(CompileText, ScriptLinesAreJoinedWithCrLf) {
    const std::map<int, std::string> stored{{1, "zc $fn$"}, {2, "copy a b"}, {3, ""}};
    const struct {
        int count;
        std::string expected;
    } cases[] = {
        {0, ""},
        {-3, ""},
        {1, "zc $fn$\r\n"},
        {2, "zc $fn$\r\ncopy a b\r\n"},
        // More lines asked for than stored: the missing ones are empty lines.
        {5, "zc $fn$\r\ncopy a b\r\n\r\n\r\n\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.count);
        std::vector<int> asked;
        const std::string script = BuildScriptText(c.count, [&](int line) {
            asked.push_back(line);
            const auto found = stored.find(line);
            return found == stored.end() ? std::string() : found->second;
        });
        EXPECT_EQ(script, c.expected);
        for (std::size_t i = 0; i < asked.size(); ++i) EXPECT_EQ(asked[i], static_cast<int>(i + 1));
    }
}

TEST(CompileText, AHugeLineCountEndsAtTheListLimit) {
    int asked = 0;
    const std::string script = BuildScriptText(2147483647, [&](int) {
        ++asked;
        return std::string("x");
    });
    EXPECT_GT(asked, 0);
    EXPECT_LE(asked, 100000);
    EXPECT_EQ(script.size(), static_cast<std::size_t>(asked) * 3);
}

TEST(CompileText, ShortNamesWhenForcedOrTheNameHasABlank) {
    const struct {
        bool force;
        const char* target;
        bool expected;
    } cases[] = {
        {false, "C:\\songs\\piece.mml", false},
        {true, "C:\\songs\\piece.mml", true},
        {false, "C:\\songs\\my song.mml", true},
        // A blank in the folder alone does not count: short folders are always used.
        {false, "C:\\My Songs\\piece.mml", false},
        {false, "my song.mml", true},
        {false, "", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.target);
        EXPECT_EQ(UseShortNames(c.force, c.target), c.expected);
    }
}

TEST(CompileText, StepModePausesAfterEveryLineIncludingTheLast) {
    const struct {
        const char* script;
        const char* expected;
    } cases[] = {
        {"", ""},
        {"a\r\n", "a\r\npause\r\n"},
        {"a\r\nb\r\n", "a\r\npause\r\nb\r\npause\r\n"},
        {"\r\n", "\r\npause\r\n"},
        // A lone LF is no line end of the script; it stays inside its line.
        {"a\nb\r\n", "a\nb\r\npause\r\n"},
        {"tail without end", "tail without end"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.script);
        EXPECT_EQ(AddStepPauses(c.script), c.expected);
    }
}

TEST(CompileText, TheScriptFileEndsWithALineBreak) {
    const struct {
        const char* script;
        const char* expected;
    } cases[] = {
        {"", "\r\n"},
        {"a\r\n", "a\r\n"},
        {"a\r\nb", "a\r\nb\r\n"},
        {"a\r", "a\r\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.script);
        EXPECT_EQ(ScriptFileText(c.script), c.expected);
    }
}

TEST(CompileText, TempTokenIsFoundAndReplacedInAnyCase) {
    const struct {
        const char* script;
        bool has;
        const char* replaced;
    } cases[] = {
        {"zc x.mml\r\n", false, "zc x.mml\r\n"},
        {"zc $temp$\r\n", true, "zc MML000\r\n"},
        {"zc $TEMP$ > $Temp$.log\r\n", true, "zc MML000 > MML000.log\r\n"},
        {"$temp$$temp$", true, "MML000MML000"},
        {"$temp", false, "$temp"},
        {"$te$temp$mp$", true, "$teMML000mp$"},
        {"", false, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.script);
        EXPECT_EQ(HasTempToken(c.script), c.has);
        EXPECT_EQ(ReplaceTempToken(c.script, "MML000"), c.replaced);
    }
}

TEST(CompileText, ExtensionFilterTakesTheFirstMatchingRow) {
    struct Row {
        std::string extensions;
        std::string configuration;
    };
    const std::set<std::string> existing{"fmp", "pmd"};
    const struct {
        const char* name;
        const char* file;
        std::vector<Row> rows;
        FilterCode code;
        const char* configuration;
    } cases[] = {
        {"no rows", "C:\\a.mml", {}, FilterCode::None, ""},
        {"found", "C:\\a.mml", {{"mml;mus", "fmp"}}, FilterCode::Found, "fmp"},
        {"case ignored", "C:\\a.MML", {{"*.mMl", "fmp"}}, FilterCode::Found, "fmp"},
        {"substring counts", "C:\\a.ml", {{"mml", "fmp"}}, FilterCode::Found, "fmp"},
        {"missing configuration", "C:\\a.mml", {{"mml", "gone"}}, FilterCode::MissingConfig,
         "gone"},
        {"empty default", "C:\\a.mml", {{"mml", ""}, {"mml", "fmp"}}, FilterCode::NoSwitch, ""},
        {"first match wins", "C:\\a.mml", {{"txt", "fmp"}, {"mml", "pmd"}, {"mml", "fmp"}},
         FilterCode::Found, "pmd"},
        {"no match", "C:\\a.mml", {{"txt", "fmp"}, {"mus", "pmd"}}, FilterCode::NoMatch, ""},
        {"no extension matches any row", "C:\\readme", {{"txt", "pmd"}}, FilterCode::Found,
         "pmd"},
        {"dot in the folder only", "C:\\a.mml\\song", {{"txt", "pmd"}}, FilterCode::Found,
         "pmd"},
        // ベ is 0x83 0x78: its second byte is no "x".
        {"double-byte extension is not a substring", "C:\\a.x", {{".\x83x", "pmd"}},
         FilterCode::NoMatch, ""},
        {"double-byte extension", "C:\\a.\x83x", {{"MML;.\x83x", "pmd"}}, FilterCode::Found,
         "pmd"},
    };
    const testing::ShiftJisCodePage shiftJis;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        int rowsRead = 0;
        const FilterFacts facts{
            .itemCount = static_cast<int>(c.rows.size()),
            .extensions =
                [&](int row) {
                    ++rowsRead;
                    return c.rows.at(static_cast<std::size_t>(row - 1)).extensions;
                },
            .configuration =
                [&](int row) { return c.rows.at(static_cast<std::size_t>(row - 1)).configuration; },
            .configurationExists = [&](const std::string& name) { return existing.count(name) > 0; },
        };
        std::string configuration;
        EXPECT_EQ(DecideExtensionFilter(c.file, facts, configuration), c.code);
        EXPECT_EQ(configuration, c.configuration);
        // Rows after the deciding one are never read.
        if (std::string(c.name) == "first match wins") {
            EXPECT_EQ(rowsRead, 2);
        }
    }
}

TEST(CompileText, ANegativeFilterCountMatchesNothing) {
    std::string configuration;
    const FilterFacts facts{.itemCount = -1,
                            .extensions = [](int) -> std::string { ADD_FAILURE(); return ""; },
                            .configuration = [](int) -> std::string { return ""; },
                            .configurationExists = [](const std::string&) { return true; }};
    EXPECT_EQ(DecideExtensionFilter("a.mml", facts, configuration), FilterCode::NoMatch);
}

TEST(CompileText, CommandLineCompileChoosesItsConfiguration) {
    const std::string app = "C:\\Zorvi\\";
    const std::string active = app + "cfg\\active.ini";
    const struct {
        const char* name;
        std::string preset;
        bool presetExists;
        std::optional<bool> answer;  // the question's answer, when it must be asked
        FilterCode filter;
        std::optional<std::string> expected;
    } cases[] = {
        {"existing preset", app + "cfg\\fast.ini", true, std::nullopt, FilterCode::Found,
         app + "cfg\\fast.ini"},
        {"missing preset, No", app + "cfg\\gone.ini", false, false, FilterCode::Found,
         std::nullopt},
        {"missing preset, Yes, filter found", app + "cfg\\gone.ini", false, true,
         FilterCode::Found, app + "cfg\\byext.ini"},
        {"missing preset, Yes, no filter", app + "cfg\\gone.ini", false, true,
         FilterCode::NoMatch, active},
        {"no preset, filter found", "", false, std::nullopt, FilterCode::Found,
         app + "cfg\\byext.ini"},
        {"no preset, filter config missing", "", false, std::nullopt, FilterCode::MissingConfig,
         active},
        {"no preset, no filter rows", "", false, std::nullopt, FilterCode::None, active},
        {"no preset, no switch", "", false, std::nullopt, FilterCode::NoSwitch, active},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<std::string> asked;
        const ConfigurationChoiceFacts facts{
            .fileExists = [&](const std::string& path) { return path == c.preset && c.presetExists; },
            .askUseDefault =
                [&](const std::string& fileName) {
                    asked.push_back(fileName);
                    return c.answer.value_or(false);
                },
            .extensionFilter =
                [&](std::string& name) {
                    name = "byext";
                    return c.filter;
                },
            .activeConfigurationPath = [&] { return active; },
            .appFolder = app,
        };
        EXPECT_EQ(ChooseCompileConfiguration(c.preset, facts), c.expected);
        if (c.answer) {
            ASSERT_EQ(asked.size(), 1u);
            EXPECT_EQ(asked[0], c.preset.substr(c.preset.rfind('\\') + 1));
        } else {
            EXPECT_TRUE(asked.empty());
        }
    }
}

TEST(CompileText, VerdictFollowsTheDetectionRules) {
    const OutputState fresh{.exists = true, .size = 10, .lastWrite = 200};
    const struct {
        const char* name;
        VerdictFacts facts;
        int expected;
    } cases[] = {
        {"good", {.detectError = true, .output = fresh, .oldLastWrite = 100}, 0},
        {"good, nothing before", {.detectError = true, .output = fresh, .oldLastWrite = 0}, 0},
        {"missing", {.detectError = true, .output = {}, .oldLastWrite = 0}, 1},
        {"zero bytes", {.detectError = true, .output = {true, 0, 200}, .oldLastWrite = 100}, 2},
        {"zero bytes and old", {.detectError = true, .output = {true, 0, 100}, .oldLastWrite = 100},
         2},
        {"not rewritten", {.detectError = true, .output = {true, 5, 100}, .oldLastWrite = 100}, 1},
        {"not detecting: missing", {.detectError = false, .output = {}, .oldLastWrite = 0}, 0},
        {"not detecting: zero", {.detectError = false, .output = {true, 0, 1}, .oldLastWrite = 0},
         0},
        {"rename back failed",
         {.renameBackDue = true, .outputRenamedBack = false, .detectError = false, .output = fresh},
         1},
        {"rename back worked",
         {.renameBackDue = true, .outputRenamedBack = true, .detectError = true, .output = fresh,
          .oldLastWrite = 0},
         0},
        {"rename back worked, zero bytes",
         {.renameBackDue = true, .outputRenamedBack = true, .detectError = true,
          .output = {true, 0, 5}},
         2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(CompileVerdict(c.facts), c.expected);
    }
}

TEST(CompileText, PlayTakesTheGeneratedFileOnlyWithTheConsoleAndAnExtension) {
    const struct {
        const char* target;
        bool useCUI;
        const char* extension;
        bool expected;
    } cases[] = {
        {"C:\\s\\a.mml", true, "m", true},
        {"C:\\s\\a.mml", false, "m", false},
        {"C:\\s\\a.mml", true, "", false},
        // Compared with the whole file name, not with the extension.
        {"C:\\s\\a.mml", true, "a.mml", false},
        {"C:\\s\\a.mml", true, "mml", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.target) + " / " + c.extension);
        EXPECT_EQ(PlaysGeneratedFile(c.target, c.useCUI, c.extension), c.expected);
    }
}

TEST(CompileText, ShortNamesAreTouchedOnlyWhenTheyAreOurs) {
    const struct {
        const char* name;
        const char* shortPath;
        const char* longForm;
        const char* expected;
        ShortNameOwner owner;
    } cases[] = {
        {"nothing there", "C:\\S\\MY_S~AB.log", "", "C:\\S\\my song.log", ShortNameOwner::Missing},
        {"alias of the expected file", "C:\\S\\MY_S~AB.log", "C:\\S\\my song.log",
         "C:\\S\\my song.log", ShortNameOwner::Alias},
        {"alias, case differs", "C:\\S\\MY_S~AB.log", "C:\\S\\My Song.LOG", "c:\\s\\my song.log",
         ShortNameOwner::Alias},
        {"written through the short name", "C:\\S\\MY_S~AB.log", "C:\\S\\MY_S~AB.log",
         "C:\\S\\my song.log", ShortNameOwner::Stray},
        {"stray, folder in its long form", "C:\\MYSO~1\\MY_S~AB.log", "C:\\My Songs\\MY_S~AB.log",
         "C:\\My Songs\\my song.log", ShortNameOwner::Stray},
        {"someone else's short name", "C:\\S\\MY_S~AB.log", "C:\\S\\my songbook.log",
         "C:\\S\\my song.log", ShortNameOwner::Foreign},
        {"no short form at all", "C:\\S\\song.log", "C:\\S\\song.log", "C:\\S\\song.log",
         ShortNameOwner::Alias},
        // ア (0x83 0x41) and ヂ (0x83 0x61) are different names, whatever the case rules.
        {"double-byte names differ", "C:\\S\\\x83\x61.log", "C:\\S\\\x83\x41.log",
         "C:\\S\\\x83\x61.log", ShortNameOwner::Foreign},
    };
    const testing::ShiftJisCodePage shiftJis;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ClassifyShortName(c.shortPath, c.longForm, c.expected), c.owner);
    }
}

TEST(CompileText, InterpreterComesFromComSpecByName) {
    const struct {
        std::optional<std::string> comSpec;
        const char* expected;
    } cases[] = {
        {"C:\\windows\\system32\\cmd.exe", "cmd.exe"},
        {"C:\\4nt\\4NT.EXE", "4NT.EXE"},
        {"cmd.exe", "cmd.exe"},
        {std::string(), "cmd.exe"},
        {std::nullopt, "cmd.exe"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.comSpec.value_or("(unset)"));
        EXPECT_EQ(InterpreterProgram(c.comSpec), c.expected);
    }
    EXPECT_EQ(InterpreterCommandLine("cmd.exe", "C:\\a&b c\\Zorvi.bat"),
              "\"cmd.exe\" /D /V:OFF /C \"\"C:\\a&b c\\Zorvi.bat\"\"");
}

TEST(CompileText, RequiredToolsAreCountedAndListed) {
    const std::string folder = "C:\\tools\\";
    // The compiler's folder itself exists too, as it does on a disk.
    const std::set<std::string> present{"C:\\tools\\", "C:\\tools\\mc.exe",
                                        "D:\\lib\\voice.dat", "C:\\tools\\sub\\drv.dat"};
    const struct {
        const char* name;
        int count;
        std::vector<std::string> items;
        int expectedCount;
        const char* expectedList;
    } cases[] = {
        {"nothing listed", 0, {}, -1, ""},
        {"negative count", -2, {}, -1, ""},
        {"all there", 3, {"mc.exe", "D:\\lib\\voice.dat", "sub\\drv.dat"}, 0, ""},
        {"two missing", 3, {"a.exe", "mc.exe", "b.dat"}, 2, "a.exe / b.dat"},
        {"absolute missing", 1, {"D:\\lib\\gone.dat"}, 1, "D:\\lib\\gone.dat"},
        // An empty entry names no tool: it is skipped.
        {"count beyond the items", 3, {"mc.exe"}, 0, ""},
        {"an empty entry", 3, {"a.exe", "", "mc.exe"}, 1, "a.exe"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const MissingTools result = CountMissingTools(
            c.count,
            [&](int item) {
                const auto index = static_cast<std::size_t>(item - 1);
                return index < c.items.size() ? c.items[index] : std::string();
            },
            [&](const std::string& item) {
                return present.count(RequiredToolPath(folder, item)) > 0;
            });
        EXPECT_EQ(result.count, c.expectedCount);
        EXPECT_EQ(result.missing, c.expectedList);
    }
}

TEST(CompileText, AbsoluteEntriesStandAsTheyAre) {
    const struct {
        const char* entry;
        const char* expected;
    } cases[] = {
        {"mc.exe", "C:\\t\\mc.exe"},
        {"sub\\mc.exe", "C:\\t\\sub\\mc.exe"},
        {"D:\\x\\mc.exe", "D:\\x\\mc.exe"},
        {"D:/x/mc.exe", "D:/x/mc.exe"},
        {"\\\\srv\\share\\mc.exe", "\\\\srv\\share\\mc.exe"},
        {"\\x\\mc.exe", "\\x\\mc.exe"},
        // Drive-relative is not absolute: it is looked for beside the compiler.
        {"D:mc.exe", "C:\\t\\D:mc.exe"},
        {"", "C:\\t\\"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.entry);
        EXPECT_EQ(RequiredToolPath("C:\\t\\", c.entry), c.expected);
    }
}

}  // namespace
}  // namespace zorvi
