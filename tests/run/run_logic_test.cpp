// The compile's and the runner's platform-free decisions: batch text, short
// names, $temp$, extension filter, configuration choice, verdict, play target,
// required tools, show commands and parameter quoting.
#include <gtest/gtest.h>

#include <climits>
#include <set>

#include "run/compile_text.h"
#include "run/window_state.h"
#include "settings/list_layouts.h"
#include "support/rows.h"
#include "support/shift_jis.h"

namespace zorvi {
namespace {

using testing::ExpectRows;
using S = std::string;
using S3 = std::tuple<S, S, S>;
using F = FilterCode;

TEST(CompileText, TheBatchText) {
    const auto lineAt = [](int line) { return line < 3 ? "l" + std::to_string(line) : ""; };
    const auto script = [&](int count) { return BuildScriptText(count, lineAt); };
    // Lines not stored are empty; no count reads past the list limit.
    ExpectRows<int, S>(script, {{-3, ""}, {2, "l1\r\nl2\r\n"}, {4, "l1\r\nl2\r\n\r\n\r\n"}});
    EXPECT_EQ(script(INT_MAX).size(), 4 + 2u * settings::kMaxListEntries);
    // Step mode: a "pause" after every line, the last one included; a lone LF ends no line.
    ExpectRows<S, S>(AddStepPauses, {
        {"", ""}, {"a\r\nb\r\n", "a\r\npause\r\nb\r\npause\r\n"},
        {"a\nb\r\nc", "a\nb\r\npause\r\nc"},
    });
    ExpectRows<S, S>(ScriptFileText, {{"", "\r\n"}, {"a\r\n", "a\r\n"}, {"a\r", "a\r\r\n"}});
    ExpectRows<S, std::pair<bool, S>>([](const S& text) {
        return std::pair(HasTempToken(text), ReplaceTempToken(text, "MML000"));
    }, {
        {"zc x.mml $temp", {false, "zc x.mml $temp"}},
        {"zc $TEMP$ > $Temp$.log", {true, "zc MML000 > MML000.log"}},
        {"$te$temp$mp$", {true, "$teMML000mp$"}},
    });
    // Short names when forced or when the file name, not the folder, has a blank.
    ExpectRows<std::tuple<bool, S>, bool>(UseShortNames, {
        {{false, "C:\\s\\piece.mml"}, false}, {{true, "C:\\s\\piece.mml"}, true},
        {{false, "C:\\s\\my song.mml"}, true}, {{false, "C:\\My Songs\\piece.mml"}, false},
    });
}

TEST(CompileText, ExtensionFilterTakesTheFirstMatchingRow) {
    // Each row of the filter list as its extensions and its configuration.
    const auto decide = [](const S& file, const std::vector<S>& list) {
        FilterFacts facts;
        facts.itemCount = static_cast<int>(list.size() / 2);
        facts.extensions = [&](int row) {
            // Rows after the deciding one are never read.
            if (list.at(2 * row - 2) == "unread") ADD_FAILURE() << "row " << row;
            return list.at(2 * row - 2);
        };
        facts.configuration = [&](int row) { return list.at(2 * row - 1); };
        facts.configurationExists = [](const S& name) { return name == "fmp" || name == "pmd"; };
        S configuration;
        const FilterCode code = DecideExtensionFilter(file, facts, configuration);
        return std::pair(code, configuration);
    };
    const testing::ShiftJisCodePage shiftJis;
    ExpectRows<std::tuple<S, std::vector<S>>, std::pair<F, S>>(decide, {
        {{"C:\\a.mml", {}}, {F::None, ""}},
        {{"C:\\a.MML", {"*.mMl;mus", "fmp"}}, {F::Found, "fmp"}},
        {{"C:\\a.ml", {"mml", "fmp"}}, {F::Found, "fmp"}},  // a substring counts
        {{"C:\\a.mml", {"mml", "gone"}}, {F::MissingConfig, "gone"}},
        {{"C:\\a.mml", {"mml", "", "unread", "fmp"}}, {F::NoSwitch, ""}},
        {{"C:\\a.mml", {"txt", "fmp", "mml", "pmd", "unread", ""}}, {F::Found, "pmd"}},
        {{"C:\\a.mml", {"txt", "fmp", "mus", "pmd"}}, {F::NoMatch, ""}},
        // No extension (a dot in the folder does not count) is held by every list.
        {{"C:\\a.mml\\song", {"txt", "pmd"}}, {F::Found, "pmd"}},
        // ベ is 0x83 0x78: its second byte is no "x".
        {{"C:\\a.x", {".\x83x", "pmd"}}, {F::NoMatch, ""}},
        {{"C:\\a.\x83x", {"MML;.\x83x", "pmd"}}, {F::Found, "pmd"}},
    });
    FilterFacts negative;
    negative.itemCount = -1;
    S configuration;
    EXPECT_EQ(DecideExtensionFilter("a.mml", negative, configuration), F::NoMatch);
}

TEST(CompileText, CommandLineCompileChoosesItsConfiguration) {
    const S cfg = "C:\\Z\\cfg\\", gone = cfg + "gone.ini";
    // The preset, whether it exists, the answer to "Use the default setup?", the filter's code.
    const auto choose = [&](const S& preset, bool exists, std::optional<bool> answer,
                            FilterCode code) {
        S asked;
        ConfigurationChoiceFacts facts;
        facts.fileExists = [&](const S& path) { return path == preset && exists; };
        facts.askUseDefault = [&](const S& name) { return asked += name, answer.value_or(false); };
        facts.extensionFilter = [&](S& name) { return name = "byext", code; };
        facts.activeConfigurationPath = [&] { return cfg + "active.ini"; };
        facts.appFolder = "C:\\Z\\";
        const auto chosen = ChooseCompileConfiguration(preset, facts);
        EXPECT_EQ(asked, answer ? "gone.ini" : "");
        return chosen;
    };
    ExpectRows<std::tuple<S, bool, std::optional<bool>, F>, std::optional<S>>(choose, {
        {{cfg + "fast.ini", true, std::nullopt, F::Found}, cfg + "fast.ini"},
        {{gone, false, false, F::Found}, std::nullopt},
        {{gone, false, true, F::Found}, cfg + "byext.ini"},
        {{gone, false, true, F::NoMatch}, cfg + "active.ini"},
        {{"", false, std::nullopt, F::Found}, cfg + "byext.ini"},
        {{"", false, std::nullopt, F::MissingConfig}, cfg + "active.ini"},
    });
}

TEST(CompileText, VerdictPlayTargetInterpreterAndShortNameOwners) {
    const OutputState fresh{true, 10, 200}, empty{true, 0, 200}, old{true, 5, 100};
    // Rename back due, renamed back, detecting errors, the output, its time before the run.
    ExpectRows<VerdictFacts, int>(CompileVerdict, {
        {{false, false, true, fresh, 100}, 0}, {{false, false, true, {}, 0}, 1},
        {{false, false, true, empty, 200}, 2}, {{false, false, true, old, 100}, 1},
        {{false, false, false, {}, 0}, 0}, {{true, false, false, fresh, 0}, 1},
        {{true, true, true, empty, 0}, 2},
    });
    // The extension is compared with the target's whole file name.
    ExpectRows<std::tuple<S, bool, S>, bool>(PlaysGeneratedFile, {
        {{"C:\\s\\a.mml", true, "m"}, true}, {{"C:\\s\\a.mml", false, "m"}, false},
        {{"C:\\s\\a.mml", true, ""}, false}, {{"C:\\s\\a.mml", true, "a.mml"}, false},
    });
    ExpectRows<std::optional<S>, S>(InterpreterProgram, {
        {"C:\\4nt\\4NT.EXE", "4NT.EXE"}, {S(), "cmd.exe"}, {std::nullopt, "cmd.exe"},
    });
    // AutoRun and delayed expansion off; the path quoted twice, as /C drops one pair.
    EXPECT_EQ(InterpreterCommandLine("cmd.exe", "C:\\a&b c\\Zorvi.bat"),
              "\"cmd.exe\" /D /V:OFF /C \"\"C:\\a&b c\\Zorvi.bat\"\"");
    // Who owns a short name: the short path, its true long form, the long path expected.
    const testing::ShiftJisCodePage shiftJis;
    ExpectRows<S3, ShortNameOwner>(ClassifyShortName, {
        {{"C:\\S\\MY_S~AB.log", "", "C:\\S\\my song.log"}, ShortNameOwner::Missing},
        {{"C:\\S\\MY_S~AB.log", "C:\\S\\My Song.LOG", "c:\\s\\my song.log"}, ShortNameOwner::Alias},
        {{"C:\\S\\song.log", "C:\\S\\song.log", "C:\\S\\song.log"}, ShortNameOwner::Alias},
        {{"C:\\MYSO~1\\MY_S~AB.log", "C:\\My Songs\\MY_S~AB.log", "C:\\My Songs\\my song.log"},
         ShortNameOwner::Stray},
        {{"C:\\S\\MY_S~AB.log", "C:\\S\\my songs.log", "C:\\S\\my song.log"},
         ShortNameOwner::Foreign},
        // ア (0x83 0x41) and ヂ (0x83 0x61) differ, whatever the case rules.
        {{"C:\\S\\\x83\x61", "C:\\S\\\x83\x41", "C:\\S\\\x83\x61"}, ShortNameOwner::Foreign},
    });
}

TEST(CompileText, RequiredToolsAreCountedAndListed) {
    ExpectRows<S, S>([](const S& entry) { return RequiredToolPath("C:\\t\\", entry); }, {
        {"sub\\mc.exe", "C:\\t\\sub\\mc.exe"}, {"D:/x/mc.exe", "D:/x/mc.exe"},
        {"\\x\\mc.exe", "\\x\\mc.exe"},
        {"D:mc.exe", "C:\\t\\D:mc.exe"},  // drive-relative is looked for beside the compiler
    });
    // The compiler's folder exists too, as it does on a disk.
    const std::set<S> present{"C:\\t\\", "C:\\t\\mc.exe", "D:\\lib\\voice.dat"};
    using Items = std::vector<S>;
    const auto count = [&](int itemCount, const Items& items) {
        const auto itemAt = [&](int i) { return i > std::ssize(items) ? S() : items[i - 1]; };
        const auto exists = [&](const S& item) {
            return present.contains(RequiredToolPath("C:\\t\\", item));
        };
        const MissingTools result = CountMissingTools(itemCount, itemAt, exists);
        return std::pair(result.count, result.missing);
    };
    ExpectRows<std::tuple<int, Items>, std::pair<int, S>>(count, {
        {{0, {}}, {-1, ""}}, {{-2, {}}, {-1, ""}}, {{2, {"mc.exe", "D:\\lib\\voice.dat"}}, {0, ""}},
        {{3, {"a.exe", "mc.exe", "D:\\lib\\b.dat"}}, {2, "a.exe / D:\\lib\\b.dat"}},
        {{3, {"", "a.exe"}}, {1, "a.exe"}},  // empty entries name no tool: skipped
    });
}

TEST(WindowState, ShowCommandsAndQuoting) {
    ExpectRows<int, int>(ShowCommandForWindowState, {{2, 6}, {3, 3}, {0, 1}, {4, 1}, {-1, 1}});
    ExpectRows<S, S>(QuoteParameters, {
        {"a.mml", "a.mml"}, {"-x -y", "\"-x -y\""}, {"", ""}, {"tab\there", "tab\there"},
        {"\"a b\" c", "\"\"a b\" c\""},  // quoted whole even when it holds quotes
    });
}

}  // namespace
}  // namespace zorvi
