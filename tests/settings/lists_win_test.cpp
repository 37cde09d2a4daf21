// The list layouts and the editor and player list rebuild, on real settings files.
#include <gtest/gtest.h>

#include <windows.h>

#include "files/path_win.h"
#include "settings/ini_win.h"
#include "settings/lists_win.h"
#include "support/temp_folder.h"

namespace zorvi::settings {
namespace {

using zorvi::testing::TempFolder;
using List = std::vector<std::string>;

TEST(ListsWin, CountedListRoundTrip) {
    TempFolder folder;
    const std::string file = folder / "Zorvi.ini";
    const std::string longValue = "C:\\" + std::string(400, 'x') + ".exe";
    const struct {
        const char* name;
        List written, readBack;
    } cases[] = {
        {"three", {"C:\\a.exe", "", "C:\\My Tools\\b.exe"}, {"C:\\a.exe", "", "C:\\My Tools\\b.exe"}},
        {"none", {}, {}},
        {"shorter after longer", {"only"}, {"only"}},
        {"long value cut to 299", {longValue}, {longValue.substr(0, 299)}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(WriteCountedList(main_file::kEditorList, c.written, file));
        EXPECT_EQ(ReadCountedList(main_file::kEditorList, file), c.readBack);
    }
    // Entries above the count stay in the file but are not read.
    EXPECT_NE(folder.Read("Zorvi.ini").find("Item3=C:\\My Tools\\b.exe"), std::string::npos);
}

TEST(ListsWin, CountedListWithABadCount) {
    TempFolder folder;
    const struct {
        const char* name;
        const char* text;
        List read;
    } cases[] = {
        {"count above the entries", "[PlayerList]\r\nItemCount=4\r\nItem1=a\r\nItem3=c\r\n",
         {"a", "", "c", ""}},
        {"negative count", "[PlayerList]\r\nItemCount=-3\r\nItem1=a\r\n", {}},
        {"no count", "[PlayerList]\r\nItem1=a\r\n", {}},
        {"count not a number", "[PlayerList]\r\nItemCount=many\r\nItem1=a\r\n", {}},
        {"no file", nullptr, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        if (c.text) folder.Write("z.ini", c.text);
        const std::string file = c.text ? folder / "z.ini" : folder / "missing.ini";
        EXPECT_EQ(ReadCountedList(main_file::kPlayerList, file), c.read);
    }
    // A huge count reads no more than the bound and ends.
    folder.Write("huge.ini", "[PlayerList]\r\nItemCount=2147483647\r\nItem1=a\r\n");
    const List huge = ReadCountedList(main_file::kPlayerList, folder / "huge.ini");
    ASSERT_EQ(huge.size(), static_cast<std::size_t>(kMaxListEntries));
    EXPECT_EQ(huge.front(), "a");
}

// The count key holds the index of the last line; a reader takes keys 1 to
// the count, so text without a final line break loses its last line.
TEST(ListsWin, TextBlockAsymmetry) {
    TempFolder folder;
    const std::string file = folder / "fast.ini";
    const struct {
        const char* typed;
        const char* fileText;
        const char* readBack;
    } cases[] = {
        {"a\r\nb", "[Script]\r\nLine=1\r\nLine1=a\r\nLine2=b\r\n", "a\r\n"},
        {"a\r\nb\r\n", "[Script]\r\nLine=2\r\nLine1=a\r\nLine2=b\r\nLine3=\r\n", "a\r\nb\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(std::string(c.typed)));
        DeleteFileA(file.c_str());
        ASSERT_TRUE(WriteTextBlock(config_file::kScript, c.typed, file));
        EXPECT_EQ(folder.Read("fast.ini"), c.fileText);
        EXPECT_EQ(ReadTextBlock(config_file::kScript, file), c.readBack);
    }
}

TEST(ListsWin, TextBlockReadsWhatAHandEditLeft) {
    TempFolder folder;
    const struct {
        const char* name;
        const char* text;
        const char* read;
    } cases[] = {
        {"count above the lines", "[Required]\r\nItemCount=3\r\nItem1=a.exe\r\n", "a.exe\r\n\r\n\r\n"},
        {"negative count", "[Required]\r\nItemCount=-1\r\nItem1=a.exe\r\n", ""},
        {"no section", "[Other]\r\nItemCount=2\r\n", ""},
        {"gap", "[Required]\r\nItemCount=3\r\nItem1=a\r\nItem3=c\r\n", "a\r\n\r\nc\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        folder.Write("c.ini", c.text);
        EXPECT_EQ(ReadTextBlock(config_file::kRequired, folder / "c.ini"), c.read);
    }
}

TEST(ListsWin, ExternalProgramRecordsRoundTrip) {
    TempFolder folder;
    const std::string file = folder / "Zorvi.ini";
    const std::vector<ExternalProgramRecord> records = {
        {"Editor", "$hp$ed.exe", "-o \"$fp$$fn$\"", "$fp$", 2, true, false},
        {"Viewer", "C:\\v.exe", "", "", 3, false, false},
    };
    ASSERT_TRUE(WriteExternalPrograms(records, file));
    EXPECT_EQ(ReadExternalPrograms(file), records);
    EXPECT_EQ(folder.Read("Zorvi.ini").find("AutoShutDown"), std::string::npos);
    // The platform drops one pair of quotes around a whole value when it reads it.
    ExternalProgramRecord quotedRecord;
    quotedRecord.command = "\"C:\\My Tools\\q.exe\"";
    quotedRecord.option = "\"$fp$$fn$\"";
    ASSERT_TRUE(WriteExternalPrograms({quotedRecord}, folder / "q.ini"));
    const auto quoted = ReadExternalPrograms(folder / "q.ini");
    ASSERT_EQ(quoted.size(), 1u);
    EXPECT_EQ(quoted[0].command, "C:\\My Tools\\q.exe");
    EXPECT_EQ(quoted[0].option, "$fp$$fn$");

    // A hand-set AutoShutDown survives any number of writes, and stays with its number.
    ASSERT_TRUE(WriteIni("ExternalProgram", "AutoShutDown1", "1", file));
    ASSERT_TRUE(WriteExternalPrograms({records[1], records[0]}, file));
    const auto read = ReadExternalPrograms(file);
    ASSERT_EQ(read.size(), 2u);
    EXPECT_EQ(read[0].item, "Viewer");
    EXPECT_TRUE(read[0].autoShutDown);
    EXPECT_FALSE(read[1].autoShutDown);
}

TEST(ListsWin, RecordsWithMissingKeysReadTheirDefaults) {
    TempFolder folder;
    folder.Write("Zorvi.ini",
                 "[ExternalProgram]\r\nItemCount=3\r\nItem1=Only a name\r\n"
                 "Command2=C:\\x.exe\r\nAutoRun2=5\r\nAutoShutDown2=-1\r\nWindowState2=junk\r\n"
                 "[Filter]\r\nItemCount=2\r\nExtension2=mml\r\n");
    const std::string file = folder / "Zorvi.ini";
    const auto programs = ReadExternalPrograms(file);
    ASSERT_EQ(programs.size(), 3u);
    EXPECT_EQ(programs[0], (ExternalProgramRecord{"Only a name", "", "", "", 1, false, false}));
    // AutoRun and AutoShutDown count as on when non-zero; an unreadable state reads 0.
    EXPECT_EQ(programs[1], (ExternalProgramRecord{"", "C:\\x.exe", "", "", 0, true, true}));
    EXPECT_EQ(programs[2], ExternalProgramRecord{});
    EXPECT_EQ(ReadFilters(file), (std::vector<FilterRecord>{{}, {"", "mml", ""}}));
}

TEST(ListsWin, HistorySlots) {
    TempFolder folder;
    const std::string file = folder / "Zorvi.ini";
    EXPECT_EQ(ReadHistorySlots(file), List(32));
    for (int slot = 0; slot < 32; ++slot) {
        ASSERT_TRUE(WriteHistorySlot(slot, "C:\\song" + std::to_string(slot) + ".mml", file));
    }
    const List slots = ReadHistorySlots(file);
    ASSERT_EQ(slots.size(), 32u);
    for (int slot = 0; slot < 32; ++slot) {
        SCOPED_TRACE(slot);
        EXPECT_EQ(slots[static_cast<std::size_t>(slot)], "C:\\song" + std::to_string(slot) + ".mml");
    }
    const std::string text = folder.Read("Zorvi.ini");
    for (const char* key : {"His00=", "His09=", "His010=", "His031="}) {
        EXPECT_NE(text.find(std::string("\r\n") + key), std::string::npos) << key;
    }
    EXPECT_FALSE(WriteHistorySlot(32, "x", file));
    EXPECT_FALSE(WriteHistorySlot(-1, "x", file));
    EXPECT_EQ(text, folder.Read("Zorvi.ini"));
}

class ListRebuild : public ::testing::Test {
protected:
    ListRebuild() {
        CreateDirectoryA((folder / "cfg").c_str(), nullptr);
        CreateDirectoryA((folder / "tools").c_str(), nullptr);
        for (const char* name : {"tools\\play.exe", "tools\\play2.exe", "tools\\ed.exe",
                                 "tools\\ed2.exe"}) {
            folder.Write(name, "MZ");
        }
    }
    std::string Tool(const char* name) const { return folder / (std::string("tools\\") + name); }
    std::string App() const { return folder.Path() + "\\"; }
    std::string Main() const { return folder / "Zorvi.ini"; }

    TempFolder folder;
};

TEST_F(ListRebuild, PlayersFromTheListAndEveryConfiguration) {
    const std::string play = Tool("play.exe"), play2 = Tool("play2.exe");
    folder.Write("Zorvi.ini", "[PlayerList]\r\nItemCount=5\r\nItem1=" + play + "\r\nItem2=" +
                                  folder / "tools\\gone.exe" + "\r\nItem3=\r\nItem4=" + play +
                                  "\r\n");
    folder.Write("cfg\\b.ini", "[Configure]\r\nPlayer=" + play2 + "\r\n");
    folder.Write("cfg\\a.ini", "[Configure]\r\nPlayer=" + play + "\r\n");
    folder.Write("cfg\\c.ini", "[Option]\r\nUseGUI=1\r\n");
    folder.Write("cfg\\d.txt", "[Configure]\r\nPlayer=" + Tool("ed.exe") + "\r\n");
    CreateDirectoryA((folder / "cfg\\folder.ini").c_str(), nullptr);
    // Hidden and system files are no configurations, as for every file search of the program.
    folder.Write("cfg\\hidden.ini", "[Configure]\r\nPlayer=" + Tool("ed.exe") + "\r\n");
    folder.Write("cfg\\system.ini", "[Configure]\r\nPlayer=" + Tool("ed2.exe") + "\r\n");
    ASSERT_TRUE(SetFileAttributesA((folder / "cfg\\hidden.ini").c_str(), FILE_ATTRIBUTE_HIDDEN));
    ASSERT_TRUE(SetFileAttributesA((folder / "cfg\\system.ini").c_str(), FILE_ATTRIBUTE_SYSTEM));

    const List expected = {play, play2};
    EXPECT_EQ(RebuildPlayerList(Main(), App()), expected);
    EXPECT_EQ(ReadCountedList(main_file::kPlayerList, Main()), expected);
    // A second start finds nothing to change.
    EXPECT_EQ(RebuildPlayerList(Main(), App()), expected);
}

TEST_F(ListRebuild, EditorsGainTheCurrentEditorOnce) {
    const std::string ed = Tool("ed.exe"), ed2 = Tool("ed2.exe");
    const struct {
        const char* name;
        std::string fileText;
        List expected;
    } cases[] = {
        {"no file at all", "", {}},
        {"current editor appended", "[Setting]\r\nEditor=" + ed2 + "\r\n[EditorList]\r\nItemCount=1\r\nItem1=" + ed + "\r\n",
         {ed, ed2}},
        {"same editor twice stored once", "[Setting]\r\nEditor=" + ed + "\r\n[EditorList]\r\nItemCount=2\r\nItem1=" + ed + "\r\nItem2=" + ed + "\r\n",
         {ed}},
        {"count above the entries", "[EditorList]\r\nItemCount=40\r\nItem2=" + ed + "\r\n", {ed}},
        {"missing files go", "[Setting]\r\nEditor=" + folder / "none.exe" + "\r\n[EditorList]\r\nItemCount=2\r\nItem1=" + folder / "tools" + "\r\nItem2=" + ed2 + "\r\n",
         {ed2}},
        {"negative count", "[Setting]\r\nEditor=" + ed + "\r\n[EditorList]\r\nItemCount=-2\r\n", {ed}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        DeleteFileA(Main().c_str());
        if (!c.fileText.empty()) folder.Write("Zorvi.ini", c.fileText);
        EXPECT_EQ(RebuildEditorList(Main()), c.expected);
        EXPECT_EQ(ReadCountedList(main_file::kEditorList, Main()), c.expected);
    }
}

TEST_F(ListRebuild, EntriesAreCheckedAfterVariableExpansion) {
    // $hp$ is the program's own folder: here the one holding win_tests.exe.
    folder.Write("Zorvi.ini", "[EditorList]\r\nItemCount=2\r\nItem1=$hp$win_tests.exe\r\n"
                              "Item2=$hp$no such editor.exe\r\n");
    ASSERT_TRUE(mdlFile::FileExists(mdlFile::GetAppFolder() + "win_tests.exe"));
    EXPECT_EQ(RebuildEditorList(Main()), List{"$hp$win_tests.exe"});
}

TEST_F(ListRebuild, LongEntriesAreCutBeforeTheyAreChecked) {
    const std::string longPath = folder / std::string(320, 'p');
    folder.Write("Zorvi.ini", "[PlayerList]\r\nItemCount=1\r\nItem1=" + longPath + "\r\n");
    EXPECT_EQ(RebuildPlayerList(Main(), App()), List{});
    EXPECT_EQ(ReadIniInt("PlayerList", "ItemCount", -1, Main()), 0);
}

}  // namespace
}  // namespace zorvi::settings
