// The settings files' list layouts, list cleaning, the ordered writes of
// saving a configuration with its safe name and the three compared settings,
// and the active configuration when none is named.
#include <gtest/gtest.h>

#include <climits>
#include <set>

#include "settings/config_save.h"
#include "settings/list_layouts.h"
#include "settings/preset.h"
#include "support/rows.h"

namespace zorvi::settings {
namespace {

using testing::ExpectRows;
using S = std::string;
using List = std::vector<S>;

// The writes in one line, file and section named each time they change:
// "M Option: AutoOpen=0 AutoWatch=1 | C Script: Line=0 Line1=". A list alone shows as "M".
S Describe(const std::vector<PlannedWrite>& writes) {
    S text, place;
    for (const auto& [file, write, change] : writes) {
        const S next = (file == SettingsFileRole::Main ? "M " : "C ") + write.section + ":";
        if (next != place) text += (text.empty() ? "" : " | ") + (place = next);
        text += " " + write.key + "=" + write.value;
    }
    return text;
}
S Describe(const std::vector<IniWrite>& writes) {
    std::vector<PlannedWrite> planned;
    for (const IniWrite& write : writes) planned.push_back({SettingsFileRole::Main, write});
    return Describe(planned);
}

TEST(ListLayouts, KeysCountsAndTextBlocks) {
    ExpectRows<int, S>(HistorySlotKey, {{0, "His00"}, {9, "His09"}, {10, "His010"}});
    ExpectRows<int, int>(EntriesToRead, {{INT_MIN, 0}, {3, 3}, {INT_MAX, kMaxListEntries}});
    EXPECT_EQ(SortConfigurationNames({"beta", "Alpha", "alpha", "_x", "Gamma", "b"}),
              (List{"_x", "Alpha", "alpha", "b", "beta", "Gamma"}));
    EXPECT_EQ(Describe(CountedListWrites({"EditorList", "ItemCount", "Item"}, {"a", "", "b"})),
              "M EditorList: ItemCount=3 Item1=a Item2= Item3=b");
    // The count key holds the index of the last line; a reader takes keys 1 to
    // the count, so the last line comes back only when it is empty.
    ExpectRows<S, std::pair<S, S>>([](const S& text) {
        const auto writes = TextBlockWrites({"Script", "Line", "Line"}, text);
        List read;
        for (int i = 1; i <= std::stoi(writes.front().value); ++i) read.push_back(writes[i].value);
        return std::pair(Describe(writes), JoinTextBlockLines(read));
    }, {
        {"a\r\nb", {"M Script: Line=1 Line1=a Line2=b", "a\r\n"}},
        {"a\r\nb\r\n", {"M Script: Line=2 Line1=a Line2=b Line3=", "a\r\nb\r\n"}},
        {"", {"M Script: Line=0 Line1=", ""}},
        {"a\nb\rc", {"M Script: Line=0 Line1=a\nb\rc", ""}},  // a lone CR or LF stays in its line
    });
}

TEST(ListLayouts, SavingRemovesEmptyLinesAndEndsTheLast) {
    ExpectRows<S, std::pair<S, S>>([](const S& text) {
        const S saved = TextBlockForSaving(text);
        EXPECT_EQ(TextBlockForSaving(saved), saved);
        return std::pair(NormaliseTextBlock(text), saved);
    }, {
        {"", {"", ""}}, {"a", {"a", "a\r\n"}}, {"a\r\n\r\n\r\nb", {"a\r\nb", "a\r\nb\r\n"}},
        {"a\r\n\r\n\r\n\r\n\r\n\r\n\r\nb\r\n\r\nc", {"a\r\nb\r\nc", "a\r\nb\r\nc\r\n"}},
        {"\r\n\r\na", {"\r\na", "\r\na\r\n"}},  // a single leading line break stays
        {"\r\n\r\n\r\n", {"\r\n", "\r\n"}}, {"a\n\nb", {"a\n\nb", "a\n\nb\r\n"}},
        {"a\r\r\n\nb", {"a\r\r\n\nb", "a\r\r\n\nb\r\n"}},
    });
}

TEST(ListLayouts, CleaningKeepsFirstOccurrencesOfExistingFiles) {
    List asked;
    const auto clean = [&](const List& entries) {
        return CleanList(entries, [&](const S& entry) {
            asked.push_back(entry);
            return !entry.starts_with("gone");
        });
    };
    ExpectRows<List, List>(clean, {
        {{}, {}}, {{"", "C:\\p", "gone", "c:\\P", "C:\\p", " ", " "}, {"C:\\p", "c:\\P", " "}},
        {{"z", "gone", "a", "z", "m", "a"}, {"z", "a", "m"}},
    });
    // Once for each distinct entry.
    EXPECT_EQ(asked, (List{"C:\\p", "gone", "c:\\P", " ", "z", "gone", "a", "m"}));
}

TEST(ConfigSave, NamesAndEveryKeyInItsOrder) {
    ExpectRows<S, S>(SafeConfigurationName, {
        {S("ab\0:x", 5), "ab"},  // the name ends at a NUL, as any text handed to the platform
        {"..\\..\\evil", ".._.._evil"},
    });
    ExpectRows<S, bool>(IsReservedDeviceName, {
        {"con", true}, {"Nul", true}, {"aux.txt", true}, {"COM1", true}, {"lpt9", true},
        {"PRN ", true}, {"COM0", false}, {"COM10", false}, {"console", false}, {"LPT", false},
        {"", false},
    });
    const ConfigurationValues values{
        .name = "fa:st", .alwaysTop = true, .autoSetFile = true, .autoWatch = true,
        .taskTray = true, .autoShutDown = true, .autoClose = true, .editor = "ed.exe",
        .editorWindowState = 2, .useAssociatedEditor = true, .timerInterval = 500,
        .iconSize = 24, .japanese = true,
        .externalPrograms = {{"Tool", "t.exe", "-x", "C:\\w", 3, true, true}},
        .filters = {{"MML", "mml", "fast"}, {"Text", "txt", ""}},
        .useCUI = true, .console = "mc.exe", .cuiWindowState = 2, .extension = "m",
        .stepMode = true, .useGUI = true, .player = "pl.exe", .guiWindowState = 3,
        .useAssociated = true, .script = "$pr$\r\n\r\necho", .required = ""};
    const ConfigurationSavePlan plan = PlanConfigurationSave(values, StoredVisibleSettings{});
    EXPECT_EQ(plan.name, "fa_st");
    EXPECT_EQ(plan.script, "$pr$\r\necho\r\n");
    // AutoShutDown<i> of a launcher record is saved with the record.
    EXPECT_EQ(Describe(plan.writes),
              "M Setting: Default=fa_st | M Option: AlwaysTop=1 AutoSetFile=1 AutoOpen=0"
              " AutoWatch=1 AutoMinimize=0 TaskTray=1 UseAltPopUp=0 AutoShutDown=1"
              " | M ResultWindow: AutoClose=1 | M Setting: Editor=ed.exe"
              " | M Option: EditorWindowState=2 UseAssociatedEditor=1 | C Option: UseCUI=1"
              " | C Configure: Console=mc.exe | C Option: CUIWindowState=2"
              " | C Configure: Extension=m | C Option: ForceShortName=0 StepMode=1"
              " DetectError=0 UseGUI=1 | C Configure: Player=pl.exe"
              " | C Option: GUIWindowState=3 UseAssociated=1"
              " | C Script: Line=2 Line1=$pr$ Line2=echo Line3= | C Required: ItemCount=0 Item1="
              " | M Option: TimerInterval=500 IconSize=24 | M Setting: Language=Japanese"
              " | M ExternalProgram: ItemCount=1 Item1=Tool Command1=t.exe Option1=-x"
              " StartUpFolder1=C:\\w AutoRun1=1 WindowState1=3 AutoShutDown1=1 | M Filter: ItemCount=2"
              " Item1=MML Extension1=mml Default1=fast Item2=Text Extension2=txt Default2=");
    // Without a name (or one that starts with a NUL) nothing is written.
    ConfigurationValues unnamed;
    unnamed.name = S("\0x", 2);
    EXPECT_TRUE(PlanConfigurationSave(unnamed, {}).writes.empty());
}

TEST(ConfigSave, VisibleSettingsAreWrittenOnlyWhenTheyDiffer) {
    // Chosen topmost, icon size and Japanese, and what is stored -> the writes
    // marked as visible changes, with the mark.
    const auto visible = [](bool alwaysTop, int iconSize, bool japanese,
                            StoredVisibleSettings stored) {
        ConfigurationValues values;
        values.name = "x";
        values.alwaysTop = alwaysTop;
        values.iconSize = static_cast<std::uint8_t>(iconSize);
        values.japanese = japanese;
        S text;
        for (const auto& [file, write, change] : PlanConfigurationSave(values, stored).writes) {
            if (change == VisibleChange::None) continue;
            text += " " + write.key + "=" + write.value + "/" + std::to_string(int(change));
        }
        return text;
    };
    ExpectRows<std::tuple<bool, int, bool, StoredVisibleSettings>, S>(visible, {
        {{false, 16, false, {0, 16, "English"}}, ""}, {{true, 48, true, {1, 48, "Japanese"}}, ""},
        {{true, 32, true, {0, 16, "English"}}, " AlwaysTop=1/1 IconSize=32/2 Language=Japanese/3"},
        {{false, 16, false, {1, 32, "Japanese"}}, " AlwaysTop=0/1 IconSize=16/2 Language=English/3"},
        // "japanese" in lower case already gives English texts.
        {{false, 16, false, {0, 16, "japanese"}}, ""},
        {{false, 16, true, {0, 16, "japanese"}}, " Language=Japanese/3"},
        {{true, 16, false, {2, 16, "English"}}, " AlwaysTop=1/1"},  // a hand-set 2
        {{false, 44, false, {0, 300, "English"}}, " IconSize=44/2"},
    });
}

TEST(Preset, ExampleStandsInForAMissingDefault) {
    using Names = std::set<S>;
    ExpectRows<std::tuple<S, Names>, S>([](const S& stored, const Names& existing) {
        return ActivePresetName(stored, [&](const S& name) { return existing.contains(name); });
    }, {
        {{"", {"Example", "mine"}}, "Example"},   // a first start
        {{"gone", {"Example"}}, "Example"},       // the chosen file was deleted
        {{"mine", {"Example", "mine"}}, "mine"},  // a choice is kept
        {{"", {"mine"}}, ""},                     // no example: as stored
        {{"gone", {}}, "gone"},                   // ... so the compile names it
    });
}

}  // namespace
}  // namespace zorvi::settings
