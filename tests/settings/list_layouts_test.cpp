// Key names, counts and texts of the list layouts, and list cleaning.
#include <gtest/gtest.h>

#include <climits>

#include "settings/list_layouts.h"

namespace zorvi::settings {
namespace {

using Writes = std::vector<std::pair<std::string, std::string>>;

Writes KeysAndValues(const std::vector<IniWrite>& writes, const std::string& section) {
    Writes pairs;
    for (const auto& write : writes) {
        EXPECT_EQ(write.section, section);
        pairs.emplace_back(write.key, write.value);
    }
    return pairs;
}

TEST(ListLayouts, KeyNames) {
    const struct {
        std::string actual, expected;
    } cases[] = {
        {NumberedKey("Item", 1), "Item1"},       {NumberedKey("Line", 12), "Line12"},
        {HistorySlotKey(0), "His00"},            {HistorySlotKey(9), "His09"},
        {HistorySlotKey(10), "His010"},          {HistorySlotKey(31), "His031"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        EXPECT_EQ(c.actual, c.expected);
    }
}

TEST(ListLayouts, StoredCountsAreBounded) {
    const struct {
        int stored, read;
    } cases[] = {{-1, 0}, {INT_MIN, 0}, {0, 0}, {3, 3}, {kMaxListEntries, kMaxListEntries},
                 {INT_MAX, kMaxListEntries}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.stored);
        EXPECT_EQ(EntriesToRead(c.stored), c.read);
    }
}

TEST(ListLayouts, CountedListWritesCountFirst) {
    const CountedList list{"EditorList", "ItemCount", "Item"};
    EXPECT_EQ(KeysAndValues(CountedListWrites(list, {"C:\\a.exe", "", "C:\\b.exe"}), "EditorList"),
              (Writes{{"ItemCount", "3"}, {"Item1", "C:\\a.exe"}, {"Item2", ""},
                      {"Item3", "C:\\b.exe"}}));
    EXPECT_EQ(KeysAndValues(CountedListWrites(list, {}), "EditorList"),
              (Writes{{"ItemCount", "0"}}));
}

// The count key holds the index of the last line; a reader takes keys 1 to
// the count, so the last line comes back only when it is empty.
TEST(ListLayouts, TextBlockWritesAndWhatReadsBack) {
    const TextBlock block{"Script", "Line", "Line"};
    const struct {
        const char* text;
        Writes writes;
        const char* readBack;
    } cases[] = {
        {"a\r\nb", {{"Line", "1"}, {"Line1", "a"}, {"Line2", "b"}}, "a\r\n"},
        {"a\r\nb\r\n", {{"Line", "2"}, {"Line1", "a"}, {"Line2", "b"}, {"Line3", ""}}, "a\r\nb\r\n"},
        {"", {{"Line", "0"}, {"Line1", ""}}, ""},
        {"\r\n", {{"Line", "1"}, {"Line1", ""}, {"Line2", ""}}, "\r\n"},
        {"one", {{"Line", "0"}, {"Line1", "one"}}, ""},
        // A lone CR or LF is part of its line.
        {"a\nb\rc", {{"Line", "0"}, {"Line1", "a\nb\rc"}}, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(std::string(c.text)));
        const auto writes = TextBlockWrites(block, c.text);
        EXPECT_EQ(KeysAndValues(writes, "Script"), c.writes);
        // What a reader gets: keys 1 to the count.
        std::vector<std::string> read;
        const int count = std::stoi(writes.front().value);
        for (int i = 1; i <= count; ++i) read.push_back(writes[static_cast<std::size_t>(i)].value);
        EXPECT_EQ(JoinTextBlockLines(read), c.readBack);
    }
}

TEST(ListLayouts, NormalisingRemovesEmptyLines) {
    const struct {
        const char* text;
        const char* normalised;
        const char* saved;
    } cases[] = {
        {"", "", ""},
        {"a", "a", "a\r\n"},
        {"a\r\nb", "a\r\nb", "a\r\nb\r\n"},
        {"a\r\nb\r\n", "a\r\nb\r\n", "a\r\nb\r\n"},
        {"a\r\n\r\nb", "a\r\nb", "a\r\nb\r\n"},
        {"a\r\n\r\n\r\nb", "a\r\nb", "a\r\nb\r\n"},
        {"a\r\n\r\n\r\n\r\n\r\n\r\n\r\nb\r\n\r\nc", "a\r\nb\r\nc", "a\r\nb\r\nc\r\n"},
        {"\r\n\r\na", "\r\na", "\r\na\r\n"},
        {"a\r\n\r\n", "a\r\n", "a\r\n"},
        {"\r\n\r\n\r\n", "\r\n", "\r\n"},
        {"a\n\nb", "a\n\nb", "a\n\nb\r\n"},
        {"a\r\r\n\nb", "a\r\r\n\nb", "a\r\r\n\nb\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(std::string(c.text)));
        EXPECT_EQ(NormaliseTextBlock(c.text), c.normalised);
        EXPECT_EQ(TextBlockForSaving(c.text), c.saved);
        // Saving again changes nothing.
        EXPECT_EQ(TextBlockForSaving(TextBlockForSaving(c.text)), c.saved);
    }
}

TEST(ListLayouts, ExternalProgramRecordsNeverWriteAutoShutDown) {
    const std::vector<ExternalProgramRecord> records = {
        {"Edit", "C:\\ed.exe", "$fp$", "C:\\", 3, true, true},
        {"View", "", "", "", 1, false, false},
    };
    EXPECT_EQ(KeysAndValues(ExternalProgramWrites(records), "ExternalProgram"),
              (Writes{{"ItemCount", "2"},
                      {"Item1", "Edit"}, {"Command1", "C:\\ed.exe"}, {"Option1", "$fp$"},
                      {"StartUpFolder1", "C:\\"}, {"AutoRun1", "1"}, {"WindowState1", "3"},
                      {"Item2", "View"}, {"Command2", ""}, {"Option2", ""},
                      {"StartUpFolder2", ""}, {"AutoRun2", "0"}, {"WindowState2", "1"}}));
}

TEST(ListLayouts, FilterRecords) {
    const std::vector<FilterRecord> records = {{"MML", "mml;mus", "fast"}, {"Text", "txt", ""}};
    EXPECT_EQ(KeysAndValues(FilterWrites(records), "Filter"),
              (Writes{{"ItemCount", "2"}, {"Item1", "MML"}, {"Extension1", "mml;mus"},
                      {"Default1", "fast"}, {"Item2", "Text"}, {"Extension2", "txt"},
                      {"Default2", ""}}));
    EXPECT_EQ(KeysAndValues(FilterWrites({}), "Filter"), (Writes{{"ItemCount", "0"}}));
}

TEST(ListLayouts, CleaningKeepsFirstOccurrencesOfExistingFiles) {
    const auto exists = [](const std::string& entry) { return entry.find("gone") == std::string::npos; };
    using List = std::vector<std::string>;
    const struct {
        const char* name;
        List entries, cleaned;
    } cases[] = {
        {"nothing", {}, {}},
        {"empties", {"", "a", "", ""}, {"a"}},
        {"same twice", {"C:\\p.exe", "C:\\q.exe", "C:\\p.exe"}, {"C:\\p.exe", "C:\\q.exe"}},
        {"case counts", {"C:\\p.exe", "c:\\P.EXE"}, {"C:\\p.exe", "c:\\P.EXE"}},
        {"missing files", {"gone1", "b", "gone2", "c"}, {"b", "c"}},
        {"order kept", {"z", "gone", "a", "z", "m", "a"}, {"z", "a", "m"}},
        {"blank is not empty", {" ", " "}, {" "}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(CleanList(c.entries, exists), c.cleaned);
    }
}

TEST(ListLayouts, CleaningAsksOnceForEachDistinctEntry) {
    std::vector<std::string> asked;
    const auto exists = [&](const std::string& entry) {
        asked.push_back(entry);
        return true;
    };
    CleanList({"$hp$a.exe", "", "$hp$a.exe", "b"}, exists);
    EXPECT_EQ(asked, (std::vector<std::string>{"$hp$a.exe", "b"}));
}

}  // namespace
}  // namespace zorvi::settings
