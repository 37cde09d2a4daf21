// The configuration window's rules without a window: numbers and names it
// takes, window-state positions, record moves, dropped files, access keys,
// and the launcher record as it is written.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "settings/list_layouts.h"
#include "ui/config/config_rules.h"

namespace zorvi {
namespace {

TEST(ConfigRules, WholeNumbers) {
    const struct {
        const char* typed;
        WholeNumberRange range;
        std::optional<int> taken;
    } cases[] = {
        {"250", kTimerIntervalRange, 250}, {" 250 ", kTimerIntervalRange, 250},
        {"10", kTimerIntervalRange, 10},   {"60000", kTimerIntervalRange, 60000},
        {"9", kTimerIntervalRange, {}},    {"60001", kTimerIntervalRange, {}},
        {"0", kTimerIntervalRange, {}},    {"-5", kTimerIntervalRange, {}},
        {"abc", kTimerIntervalRange, {}},  {"99999999999", kTimerIntervalRange, {}},
        {"", kTimerIntervalRange, {}},     {"1e3", kTimerIntervalRange, {}},
        {"+20", kTimerIntervalRange, {}},  {"2 0", kTimerIntervalRange, {}},
        {"8", kIconSizeRange, 8},          {"64", kIconSizeRange, 64},
        {"65", kIconSizeRange, {}},        {"7", kIconSizeRange, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed);
        EXPECT_EQ(ParseWholeNumber(c.typed, c.range), c.taken);
    }
}

TEST(ConfigRules, WindowStateListPositions) {
    const struct {
        int stored, position;
    } shown[] = {{1, 0}, {2, 1}, {3, 2}, {0, 0}, {4, 0}, {-1, 0}};
    for (const auto& c : shown) EXPECT_EQ(WindowStateListIndex(c.stored), c.position) << c.stored;
    const struct { int position, stored; } saved[] = {{0, 1}, {1, 2}, {2, 3}, {-1, 1}, {3, 1}};
    for (const auto& c : saved) {
        EXPECT_EQ(WindowStateFromListIndex(c.position), c.stored) << c.position;
    }
}

TEST(ConfigRules, TextBlockLines) {
    const auto lines = [](int count) {
        std::string text;
        for (int i = 0; i < count; ++i) text += "echo\r\n";
        return text;
    };
    const struct {
        std::string text;
        std::size_t count;
        bool fits;
    } cases[] = {{"", 0, true},
                 {"a\r\nb", 2, true},
                 {"a\r\n\r\nb\r\n", 2, true},
                 {lines(4096), 4096, true},
                 {lines(4097), 4097, false},
                 {lines(10000), 10000, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.count);
        EXPECT_EQ(TextBlockLineCount(c.text), c.count);
        EXPECT_EQ(TextBlockFits(c.text), c.fits);
    }
}

TEST(ConfigRules, ConfigurationNames) {
    const struct {
        std::string typed;
        std::size_t folder;
        NameProblem problem;
    } cases[] = {
        {"fast", 20, NameProblem::None},
        {"a:b\\c/d*e?f\"g<h>i|j", 20, NameProblem::None},
        {"", 20, NameProblem::Empty},
        {"   ", 20, NameProblem::Empty},
        {"CON", 20, NameProblem::Reserved},
        {"nul", 20, NameProblem::Reserved},
        {"com1.x", 20, NameProblem::Reserved},
        {"console", 20, NameProblem::None},
        {std::string(300, 'n'), 20, NameProblem::TooLong},
        {std::string(231, 'n'), 20, NameProblem::None},
        {std::string(232, 'n'), 20, NameProblem::TooLong},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed.substr(0, 12));
        EXPECT_EQ(CheckConfigurationName(c.typed, c.folder), c.problem);
    }
}

TEST(ConfigRules, MovingAndRemovingRecords) {
    const struct {
        const char* name;
        std::size_t index;
        int delta;  // 0: remove
        std::vector<int> after;
        std::optional<std::size_t> selected;
    } cases[] = {
        {"up", 1, -1, {2, 1, 3}, 0},        {"down", 1, 1, {1, 3, 2}, 2},
        {"first up", 0, -1, {1, 2, 3}, 0},  {"last down", 2, 1, {1, 2, 3}, 2},
        {"remove middle", 1, 0, {1, 3}, 1}, {"remove last", 2, 0, {1, 2}, 1},
        {"outside", 5, 1, {1, 2, 3}, 5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<int> list = {1, 2, 3};
        const auto selected = c.delta == 0 ? RemoveEntry(list, c.index)
                                           : std::optional(MoveEntry(list, c.index, c.delta));
        EXPECT_EQ(list, c.after);
        EXPECT_EQ(selected, c.selected);
    }
    std::vector<int> one = {7};
    EXPECT_EQ(RemoveEntry(one, 0), std::nullopt);
}

TEST(ConfigRules, DroppedFiles) {
    const struct {
        const char* path;
        bool folder;
        DropKind kind;
    } kinds[] = {{"C:\\t\\m2m.exe", false, DropKind::Program},
                 {"C:\\t\\M2M.EXE", false, DropKind::Program},
                 {"C:\\t\\Editor.lnk", false, DropKind::Shortcut},
                 {"C:\\t\\notes.txt", false, DropKind::Refused},
                 {"C:\\t\\tools.exe", true, DropKind::Refused},
                 {"C:\\t\\tools", true, DropKind::Refused}};
    for (const auto& c : kinds) EXPECT_EQ(ClassifyDroppedFile(c.path, c.folder), c.kind) << c.path;

    using settings::ExternalProgramRecord;
    const struct {
        const char* dropped;
        LaunchTarget target;
        ExternalProgramRecord record;
    } records[] = {
        {"C:\\t\\m2m.exe",
         {"C:\\t\\m2m.exe", "", "", 1},
         {"m2m", "C:\\t\\m2m.exe", "", "C:\\t", 1}},
        {"C:\\x.exe", {"C:\\x.exe", "", "", 1}, {"x", "C:\\x.exe", "", "C:\\", 1}},
        {"C:\\L\\My Editor.lnk",
         {"D:\\ed\\ed.exe", "-n", "D:\\w", 7},
         {"My Editor", "D:\\ed\\ed.exe", "-n", "D:\\w", 2}},
        {"C:\\L\\Seq.lnk", {"D:\\s.exe", "", "", 3}, {"Seq", "D:\\s.exe", "", "D:\\", 3}},
    };
    for (const auto& c : records) {
        EXPECT_EQ(RecordForDroppedFile(c.dropped, c.target), c.record) << c.dropped;
    }
    const struct {
        int show, state;
    } states[] = {{1, 1}, {2, 2}, {6, 2}, {7, 2}, {3, 3}, {0, 1}, {10, 1}};
    for (const auto& c : states) EXPECT_EQ(WindowStateForShowCommand(c.show), c.state) << c.show;
}

TEST(ConfigRules, RequiredFileEntries) {
    const struct {
        const char* compiler;
        const char* chosen;
        const char* entry;
    } cases[] = {{"C:\\mml\\", "C:\\mml\\mc.exe", "mc.exe"},
                 {"C:\\mml", "C:\\MML\\data\\v.dat", "data\\v.dat"},
                 {"C:\\mml\\", "D:\\other\\x.dat", "x.dat"},
                 {"", "D:\\other\\x.dat", "x.dat"}};
    for (const auto& c : cases)
        EXPECT_EQ(RequiredFileEntry(c.compiler, c.chosen), c.entry) << c.chosen;
}

TEST(ConfigRules, AccessKeys) {
    std::string taken = "n";
    EXPECT_EQ(ChooseMnemonics({"New", "Up", "Down", "", "Refer", "Refer", "Name"}, taken),
              (std::vector<char>{'e', 'u', 'd', 0, 'r', 'f', 'a'}));
    EXPECT_EQ(taken, "neudrfa");
    std::string full = "abcdefghijklmnopqrstuvwxyz";
    EXPECT_EQ(ChooseMnemonics({"Apply"}, full), std::vector<char>{0});

    const struct {
        const wchar_t* caption;
        char letter;
        const wchar_t* marked;
    } cases[] = {{L"Work folder", 'f', L"Work &folder"},
                 {L"Refer", 'f', L"Re&fer"},
                 {L"Up", 0, L"Up"},
                 {L"R&B", 'b', L"R&&&B"},
                 {L"名前", 'n', L"名前(&N)"},
                 {L"Zorvi の起動時に実行", 'z', L"&Zorvi の起動時に実行"}};
    for (const auto& c : cases) EXPECT_EQ(WithMnemonic(c.caption, c.letter), c.marked);
}

TEST(ConfigRules, FormattedTexts) {
    EXPECT_EQ(FormatText(L"{0} from {1} to {2}.", {L"Timer", L"10", L"60000"}),
              L"Timer from 10 to 60000.");
    EXPECT_EQ(FormatText(L"{1}{0}{9}{x}", {L"a", L"b"}), L"ba{9}{x}");
}

// The shut-down flag travels with its record, in its place after the window state.
TEST(ConfigRules, LauncherRecordsWriteTheirShutDownFlag) {
    const std::vector<settings::ExternalProgramRecord> records = {
        {"Edit", "C:\\ed.exe", "", "", 3, true, true}, {"View", "", "", "", 1, false, false}};
    std::vector<std::string> written;
    for (const auto& write : settings::ExternalProgramWrites(records)) {
        written.push_back(write.key + "=" + write.value);
    }
    EXPECT_EQ(written,
              (std::vector<std::string>{"ItemCount=2", "Item1=Edit", "Command1=C:\\ed.exe",
                                        "Option1=", "StartUpFolder1=", "AutoRun1=1",
                                        "WindowState1=3", "AutoShutDown1=1", "Item2=View",
                                        "Command2=", "Option2=", "StartUpFolder2=", "AutoRun2=0",
                                        "WindowState2=1", "AutoShutDown2=0"}));
}

}  // namespace
}  // namespace zorvi
