// The configuration window's rules without a window: numbers and names it
// takes, window-state positions, record moves, dropped files and access keys.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "support/rows.h"
#include "ui/config/config_rules.h"

namespace zorvi {
namespace {

using testing::ExpectRows;
using S = std::string;
using W = std::wstring;
using Ints = std::vector<int>;

TEST(ConfigRules, NumbersNamesAndWindowStates) {
    const auto timer = [](const S& typed) { return ParseWholeNumber(typed, kTimerIntervalRange); };
    ExpectRows<S, std::optional<int>>(timer, {
        {" 250 ", 250}, {"10", 10}, {"60000", 60000}, {"9", {}}, {"60001", {}}, {"-5", {}},
        {"abc", {}}, {"99999999999", {}}, {"", {}}, {"1e3", {}}, {"+20", {}}, {"2 0", {}},
    });
    const auto icon = [](const S& typed) { return ParseWholeNumber(typed, kIconSizeRange); };
    ExpectRows<S, std::optional<int>>(icon, {{"8", 8}, {"64", 64}, {"65", {}}, {"7", {}}});
    ExpectRows<int, int>(WindowStateListIndex, {{1, 0}, {2, 1}, {3, 2}, {0, 0}, {4, 0}, {-1, 0}});
    ExpectRows<int, int>(WindowStateFromListIndex, {{0, 1}, {1, 2}, {2, 3}, {-1, 1}, {3, 1}});
    ExpectRows<int, int>(WindowStateForShowCommand, {
        {1, 1}, {2, 2}, {6, 2}, {7, 2}, {3, 3}, {0, 1}, {10, 1},
    });
    const auto name = [](const S& typed) { return CheckConfigurationName(typed, 20); };
    ExpectRows<S, NameProblem>(name, {
        {"a:b\\c/d*e?f\"g<h>i|j", NameProblem::None}, {"   ", NameProblem::Empty},
        {"CON", NameProblem::Reserved}, {"com1.x", NameProblem::Reserved},
        {"console", NameProblem::None}, {S(231, 'n'), NameProblem::None},
        {S(232, 'n'), NameProblem::TooLong},
    });
    const auto echoes = [](int count) {
        S text;
        for (int i = 0; i < count; ++i) text += "echo\r\n";
        return text;
    };
    ExpectRows<S, std::pair<std::size_t, bool>>([](const S& text) {
        return std::pair(TextBlockLineCount(text), TextBlockFits(text));
    }, {
        {"", {0, true}}, {"a\r\nb", {2, true}}, {"a\r\n\r\nb\r\n", {2, true}},
        {echoes(4096), {4096, true}}, {echoes(4097), {4097, false}},
    });
}

TEST(ConfigRules, MovingAndRemovingRecords) {
    // The index and the move (0: remove) -> the list of {1, 2, 3} after, the selection.
    ExpectRows<std::tuple<std::size_t, int>, std::pair<Ints, std::optional<std::size_t>>>(
        [](std::size_t index, int delta) {
            Ints list = {1, 2, 3};
            const auto selected = delta == 0 ? RemoveEntry(list, index)
                                             : std::optional(MoveEntry(list, index, delta));
            return std::pair(list, selected);
        }, {
            {{1, -1}, {{2, 1, 3}, 0}}, {{1, 1}, {{1, 3, 2}, 2}}, {{0, -1}, {{1, 2, 3}, 0}},
            {{2, 1}, {{1, 2, 3}, 2}}, {{1, 0}, {{1, 3}, 1}}, {{2, 0}, {{1, 2}, 1}},
            {{5, 1}, {{1, 2, 3}, 5}},
        });
    Ints one = {7};
    EXPECT_EQ(RemoveEntry(one, 0), std::nullopt);
}

TEST(ConfigRules, DroppedFilesAndRequiredEntries) {
    ExpectRows<std::tuple<S, bool>, DropKind>(ClassifyDroppedFile, {
        {{"C:\\t\\m2m.exe", false}, DropKind::Program},
        {{"C:\\t\\M2M.EXE", false}, DropKind::Program},
        {{"C:\\t\\Editor.lnk", false}, DropKind::Shortcut},
        {{"C:\\t\\notes.txt", false}, DropKind::Refused},
        {{"C:\\t\\x.exe", true}, DropKind::Refused},
    });
    using settings::ExternalProgramRecord;
    ExpectRows<std::tuple<S, LaunchTarget>, ExternalProgramRecord>(RecordForDroppedFile, {
        {{"C:\\t\\m2m.exe", {"C:\\t\\m2m.exe", "", "", 1}},
         {"m2m", "C:\\t\\m2m.exe", "", "C:\\t", 1}},
        {{"C:\\x.exe", {"C:\\x.exe", "", "", 1}}, {"x", "C:\\x.exe", "", "C:\\", 1}},
        {{"C:\\L\\My Editor.lnk", {"D:\\ed\\ed.exe", "-n", "D:\\w", 7}},
         {"My Editor", "D:\\ed\\ed.exe", "-n", "D:\\w", 2}},
    });
    ExpectRows<std::tuple<S, S>, S>(RequiredFileEntry, {
        {{"C:\\mml\\", "C:\\mml\\mc.exe"}, "mc.exe"},
        {{"C:\\mml", "C:\\MML\\data\\v.dat"}, "data\\v.dat"},
        {{"C:\\mml\\", "D:\\other\\x.dat"}, "x.dat"}, {{"", "D:\\other\\x.dat"}, "x.dat"},
    });
}

TEST(ConfigRules, AccessKeysAndFormattedTexts) {
    S taken = "n";
    EXPECT_EQ(ChooseMnemonics({"New", "Up", "Down", "", "Refer", "Refer", "Name"}, taken),
              (std::vector<char>{'e', 'u', 'd', 0, 'r', 'f', 'a'}));
    EXPECT_EQ(taken, "neudrfa");
    S full = "abcdefghijklmnopqrstuvwxyz";
    EXPECT_EQ(ChooseMnemonics({"Apply"}, full), std::vector<char>{0});
    ExpectRows<std::tuple<W, char>, W>(WithMnemonic, {
        {{L"Work folder", 'f'}, L"Work &folder"}, {{L"Refer", 'f'}, L"Re&fer"}, {{L"Up", 0}, L"Up"},
        {{L"R&B", 'b'}, L"R&&&B"}, {{L"名前", 'n'}, L"名前(&N)"},
        {{L"Zorvi の起動時に実行", 'z'}, L"&Zorvi の起動時に実行"},
    });
    EXPECT_EQ(FormatText(L"{0} from {1} to {2}.", {L"Timer", L"10", L"60000"}),
              L"Timer from 10 to 60000.");
    EXPECT_EQ(FormatText(L"{1}{0}{9}{x}", {L"a", L"b"}), L"ba{9}{x}");
}

}  // namespace
}  // namespace zorvi
