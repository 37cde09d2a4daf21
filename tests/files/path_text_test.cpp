// Path text operations that need no file system.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <map>
#include <set>
#include <vector>

#include "files/path_text.h"
#include "support/shift_jis.h"

namespace zorvi::mdlFile {
namespace {

using testing::ShiftJisCodePage;

// Shift-JIS characters whose second byte is an ASCII character the helpers look for.
#define HYO "\x95\x5c"  // 表, ends in the byte of "\"
#define SO "\x83\x5c"   // ソ, likewise
#define PO "\x83\x7c"   // ポ, ends in the byte of "|"
#define A_KANA "\x83\x41"  // ア, ends in the byte of "A"
#define DI "\x83\x61"      // ヂ, ends in the byte of "a"

TEST(PathText, TrimNull) {
    using namespace std::string_literals;
    EXPECT_EQ(TrimNull("abc"), "abc");
    EXPECT_EQ(TrimNull("ab\0cd"s), "ab");
    EXPECT_EQ(TrimNull("\0abc"s), "");
    EXPECT_EQ(TrimNull(""), "");
}

TEST(PathText, LongPathTakesTheCaseOnDisk) {
    // Upper-cased prefixes as the search sees them, and the names on disk.
    const std::map<std::string, std::string> disk = {
        {"C:\\PROGRAM FILES", "Program Files"},
        {"C:\\PROGRAM FILES\\ZORVI", "Zorvi"},
        {"C:\\SONGS", "Songs"},
        {"C:\\SONGS\\A.MML", "a.mml"},
        {"\\\\SERVER\\SHARE\\DIR", "Dir"},
        {"\\\\SERVER\\SHARE\\DIR\\F.TXT", "f.txt"},
        {"SONG.MML", "Song.mml"},
        // Double-byte names are looked up with their bytes as they are.
        {"C:\\" HYO, HYO},
        {"C:\\" HYO "\\" DI ".MML", DI ".mml"},
    };
    const FindEntryName find = [&](const std::string& path) -> std::optional<std::string> {
        const auto found = disk.find(path);
        if (found == disk.end()) return std::nullopt;
        return found->second;
    };
    const struct {
        const char* path;
        const char* expected;
    } cases[] = {
        {"c:\\program files\\", "C:\\Program Files"},
        {"c:\\program files\\zorvi", "C:\\Program Files\\Zorvi"},
        {"  c:\\songs\\A.MML  ", "C:\\Songs\\a.mml"},
        {"C:\\", "C:\\"},
        {"c:", "C:\\"},
        {"c:\\missing\\a.mml", ""},
        {"c:\\songs\\missing.mml", ""},
        {"\\\\server\\share\\dir\\f.txt", "\\\\SERVER\\SHARE\\Dir\\f.txt"},
        {"\\\\server\\share", ""},
        {"\\\\server", ""},
        {"", ""},
        {"   ", ""},
        // Without a drive the root is empty and the result starts with "\".
        {"song.mml", "\\Song.mml"},
        {"c:\\" HYO "\\" DI ".mml", "C:\\" HYO "\\" DI ".mml"},
        {"c:\\" HYO "\\", "C:\\" HYO},
        {"c:\\" HYO "\\" A_KANA ".mml", ""},  // ア is not ヂ
    };
    const ShiftJisCodePage shiftJis;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(LongPathOf(c.path, find), c.expected);
    }
}

TEST(PathText, NameExtensionAndBaseName) {
    using namespace std::string_literals;
    const std::string longName = std::string(400, 'a');
    const struct {
        std::string path, name, extension, baseName;
    } cases[] = {
        {"C:\\dir\\song.mml", "song.mml", "mml", "song"},
        {"song.mml", "song.mml", "mml", "song"},
        {"C:\\a.b\\file", "file", "", "fil"},  // the folder's dot does not count
        {"x.tar.gz", "x.tar.gz", "gz", "x.tar"},
        {"song.mml.mml", "song.mml.mml", "mml", "song.mml"},
        {"README", "README", "", "READM"},  // no extension: the last character goes
        {"C:\\songs\\README", "README", "", "READM"},
        {".mml", ".mml", "mml", ""},
        {"C:\\dir\\.mml", ".mml", "mml", ""},
        {"a.", "a.", "", "a"},
        {"C:\\dir\\", "", "", ""},
        {"C:\\a.b\\", "", "", ""},
        {"", "", "", ""},
        {"C:", "C:", "", "C"},
        {"\\\\server\\share\\f.txt", "f.txt", "txt", "f"},
        {"\\\\server\\share", "share", "", "shar"},
        {"C:\\dir/sub/x.y", "dir/sub/x.y", "y", "dir/sub/x"},  // only "\" separates
        // Bytes of double-byte names pass through whole.
        {"C:\\\x8b\xc8\\\x89\xcc.mml", "\x89\xcc.mml", "mml", "\x89\xcc"},
        {"C:\\" + longName + ".mml", longName + ".mml", "mml", longName},
        // The second byte of 表 and ソ is no folder separator.
        {"C:\\" HYO "\\" SO ".mml", SO ".mml", "mml", SO},
        {"C:\\dir\\" HYO SO, HYO SO, "", HYO},  // the last character goes whole
        {"C:\\dir\\" HYO, HYO, "", ""},
        {"C:\\dir\\a." HYO, "a." HYO, HYO, "a"},
        {SO, SO, "", ""},
    };
    const ShiftJisCodePage shiftJis;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(GetFileName(c.path), c.name);
        EXPECT_EQ(GetExtension(c.path), c.extension);
        EXPECT_EQ(GetBaseName(c.path), c.baseName);
    }
}

// Results measured from Wine's shlwapi; win_tests holds the same twins against
// the real calls on these and more inputs.
TEST(PathText, TwinsOfTheShellPathCalls) {
    const std::string long259 = "C:\\" + std::string(255, 'a') + "\\";
    const std::string long260 = "C:\\" + std::string(256, 'a') + "\\";
    const std::string uncRoot259 = "\\\\" + std::string(256, 's') + "\\";
    const std::string uncRoot260 = "\\\\" + std::string(257, 's') + "\\";
    const struct {
        std::string path, added, removed, fileSpecRemoved;
    } cases[] = {
        {"", "", "", ""},
        {"C:", "C:\\", "C:", "C:"},
        {"C:\\", "C:\\", "C:\\", "C:\\"},
        {"x:\\", "x:\\", "x:\\", "x:\\"},
        {"C:\\\\", "C:\\\\", "C:\\", "C:\\"},
        {"C:\\dir", "C:\\dir\\", "C:\\dir", "C:\\"},
        {"C:\\dir\\", "C:\\dir\\", "C:\\dir", "C:\\dir"},
        {"C:\\dir\\\\", "C:\\dir\\\\", "C:\\dir\\", "C:\\dir\\"},
        {"C:\\dir\\file.txt", "C:\\dir\\file.txt\\", "C:\\dir\\file.txt", "C:\\dir"},
        {"C:\\file.txt", "C:\\file.txt\\", "C:\\file.txt", "C:\\"},
        {"C:file.txt", "C:file.txt\\", "C:file.txt", "C:"},
        {"C:\\\\x", "C:\\\\x\\", "C:\\\\x", "C:\\"},
        {"C:x\\y", "C:x\\y\\", "C:x\\y", "C:x"},
        {"ab:\\c", "ab:\\c\\", "ab:\\c", "ab:\\"},
        {"file.txt", "file.txt\\", "file.txt", ""},
        {".mml", ".mml\\", ".mml", ""},
        {"a\\", "a\\", "a", "a"},
        {"a\\\\b", "a\\\\b\\", "a\\\\b", "a\\"},
        {"/", "/\\", "/", ""},
        {"C:/dir/file", "C:/dir/file\\", "C:/dir/file", "C:"},
        {"\\", "\\", "\\", "\\"},
        {"\\file.txt", "\\file.txt\\", "\\file.txt", "\\"},
        {"\\dir\\", "\\dir\\", "\\dir", "\\dir"},
        {"\\\\", "\\\\", "\\\\", "\\\\"},
        {"\\\\\\", "\\\\\\", "\\\\\\", "\\\\"},
        {"\\\\\\\\", "\\\\\\\\", "\\\\\\", "\\\\\\"},
        {"\\\\server", "\\\\server\\", "\\\\server", "\\\\"},
        {"\\\\server\\", "\\\\server\\", "\\\\server\\", "\\\\server"},
        {"\\\\server\\share", "\\\\server\\share\\", "\\\\server\\share", "\\\\server"},
        {"\\\\server\\share\\", "\\\\server\\share\\", "\\\\server\\share", "\\\\server\\share"},
        {"\\\\server\\share\\f.txt", "\\\\server\\share\\f.txt\\", "\\\\server\\share\\f.txt",
         "\\\\server\\share"},
        {"\\\\?\\C:\\", "\\\\?\\C:\\", "\\\\?\\C:", "\\\\?\\C:\\"},
        {"\\\\?\\C:\\x", "\\\\?\\C:\\x\\", "\\\\?\\C:\\x", "\\\\?\\C:\\"},
        // From MAX_PATH characters on adding fails; a long server name is still a root.
        {long259, long259, long259.substr(0, 258), long259.substr(0, 258)},
        {long260, "", long260.substr(0, 259), long260.substr(0, 259)},
        {uncRoot259, uncRoot259, uncRoot259, uncRoot259.substr(0, 258)},
        {uncRoot260, "", uncRoot260, uncRoot260.substr(0, 259)},
        // A path ending in 表 or ソ does not end in "\".
        {"C:\\" HYO, "C:\\" HYO "\\", "C:\\" HYO, "C:\\"},
        {"C:\\" HYO "\\", "C:\\" HYO "\\", "C:\\" HYO, "C:\\" HYO},
        {"C:\\" HYO "\\" SO, "C:\\" HYO "\\" SO "\\", "C:\\" HYO "\\" SO, "C:\\" HYO},
        {SO, SO "\\", SO, ""},
        {"\\\\" HYO "\\", "\\\\" HYO "\\", "\\\\" HYO "\\", "\\\\" HYO},
        {"\\\\" HYO "\\" SO "\\", "\\\\" HYO "\\" SO "\\", "\\\\" HYO "\\" SO,
         "\\\\" HYO "\\" SO},
        // The whole character after a drive colon is stepped over.
        {"C:" SO "\\x", "C:" SO "\\x\\", "C:" SO "\\x", "C:" SO},
    };
    const ShiftJisCodePage shiftJis;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(AppendBackslash(c.path), c.added);
        EXPECT_EQ(StripBackslash(c.path), c.removed);
        EXPECT_EQ(StripFileSpec(c.path), c.fileSpecRemoved);
    }
}

TEST(PathText, ChangeExtensionKeepsFolderAndBaseName) {
    const std::string deepFolder = "C:\\" + std::string(270, 'd');
    const struct {
        std::string path, extension, expected;
    } cases[] = {
        {"C:\\songs\\piece.mml", "log", "C:\\songs\\piece.log"},
        {"C:\\songs\\piece.mml", "", "C:\\songs\\piece"},
        {"C:\\song.mml", "log", "C:\\song.log"},
        {"song.mml", "mid", "song.mid"},  // no folder: nothing before the name
        {"C:\\a.b\\file", "txt", "C:\\a.b\\fil.txt"},
        {"C:\\songs\\README", "txt", "C:\\songs\\READM.txt"},
        {"x.tar.gz", "", "x.tar"},
        {"C:\\songs\\.mml", "log", "C:\\songs\\.log"},
        {"\\\\server\\share\\f.txt", "log", "\\\\server\\share\\f.log"},
        {"C:\\dir\\", "log", "C:\\dir\\.log"},
        // A folder too long for the shell to add its "\" is lost, as with the platform.
        {deepFolder + "\\a.mml", "log", "a.log"},
        // The platform sees only the first 300 characters when it looks for the folder.
        {"C:\\" + std::string(310, 'f') + "\\", "log", "C:\\.log"},
        {"C:\\" HYO "\\" SO ".mml", "log", "C:\\" HYO "\\" SO ".log"},
        {"C:\\" HYO "\\" SO, "txt", "C:\\" HYO "\\.txt"},
    };
    const ShiftJisCodePage shiftJis;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path + " -> " + c.extension);
        EXPECT_EQ(ChangeExtension(c.path, c.extension), c.expected);
    }
}

TEST(PathText, SafeFileNames) {
    const struct {
        std::string name, expected;
    } cases[] = {
        {"a:b?c", "a_b_c"},
        {"\\/:,;*?\"<>|", "___________"},
        {"song 1.mml", "song 1.mml"},
        {"", ""},
        {"C:\\dir\\x.mml", "C__dir_x.mml"},
        // Characters are replaced, never the second byte of 表, ソ or ポ.
        {"\x89\xcc|" SO, "\x89\xcc_" SO},
        {HYO ":" PO "\\" SO, HYO "_" PO "_" SO},
    };
    const ShiftJisCodePage shiftJis;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(MakeSafeFileName(c.name), c.expected);
    }
}

TEST(PathText, ShortenPathForDisplay) {
    const std::string fortySeven = "C:\\Users\\someone\\Documents\\songs\\work\\piece.mml";
    ASSERT_EQ(fortySeven.size(), 47u);
    const std::string noFolders = "C:\\" + std::string(60, 'n') + ".mml";
    const struct {
        std::string path, expected;
    } cases[] = {
        {fortySeven, fortySeven},
        {"C:\\Users\\someone2\\Documents\\songs\\work\\piece.mml",
         "C:\\...\\someone2\\Documents\\songs\\work\\piece.mml"},
        {"C:\\Users\\someone\\Documents\\My Music\\songs\\work\\piece.mml",
         "C:\\...\\Documents\\My Music\\songs\\work\\piece.mml"},
        {"C:\\a\\b\\c\\" + std::string(50, 'x'), "C:\\...\\" + std::string(50, 'x')},
        {noFolders, noFolders},
        {std::string(60, 'z'), std::string(60, 'z')},
        {"\\\\server\\share\\music\\collection\\2024\\spring\\piece.mml",
         "\\...\\music\\collection\\2024\\spring\\piece.mml"},
        {"C:\\\\" + std::string(50, 'y'), "C:\\...\\" + std::string(50, 'y')},
        {"", ""},
        // 表ソ goes as one folder.
        {"C:\\Users\\" HYO SO "\\Documents\\songs\\work\\piece name 1.mml",
         "C:\\...\\Documents\\songs\\work\\piece name 1.mml"},
    };
    const ShiftJisCodePage shiftJis;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(ShortenPathForDisplay(c.path), c.expected);
    }
}

TEST(PathText, RemoveDuplicates) {
    using List = std::vector<std::string>;
    const List mixed = {"b", "a", "b", "", "a", "c"};
    const struct {
        List list;
        bool sortFirst, keepBlanks;
        List expected;
    } cases[] = {
        {mixed, false, false, {"b", "a", "c"}},
        {mixed, false, true, {"b", "a", "", "", "", "c"}},
        {mixed, true, false, {"a", "b", "c"}},
        {mixed, true, true, {"", "a", "", "b", "", "c"}},
        {{"A", "a", "A"}, false, false, {"A", "a"}},  // case counts
        {{"x", "x", "x"}, true, true, {"x", "", ""}},
        {{"", ""}, false, false, {}},
        {{}, true, false, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << "sort " << c.sortFirst << " keep " << c.keepBlanks);
        List list = c.list;
        RemoveDuplicates(list, c.sortFirst, c.keepBlanks);
        EXPECT_EQ(list, c.expected);
    }
}

TEST(PathText, UniqueTempNameTakesTheFirstFreeNumber) {
    const auto taken = [](std::set<std::string> names) {
        return [names](const std::string& name) { return names.count(name) > 0; };
    };
    std::set<std::string> all;
    for (int n = 0; n < 1000; ++n) {
        char name[32];
        std::snprintf(name, sizeof name, "C:\\t\\MML%03d", n);
        all.insert(name);
    }
    const struct {
        std::string folder;
        std::function<bool(const std::string&)> exists;
        std::string expected;
    } cases[] = {
        {"C:\\t", taken({}), "C:\\t\\MML000"},
        {"C:\\t", taken({"C:\\t\\MML000", "C:\\t\\MML001", "C:\\t\\MML003"}), "C:\\t\\MML002"},
        {"C:\\t", taken({"C:\\t\\MML000.bat"}), "C:\\t\\MML000"},
        {"C:\\t", taken(all), "C:\\t\\MML999"},
        {"", taken({}), "\\MML000"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        EXPECT_EQ(UniqueTempName(c.folder, c.exists), c.expected);
    }
}

TEST(PathText, CutsNeverSplitADoubleByteCharacter) {
    // Shift-JIS lead bytes.
    const auto shiftJisLead = [](unsigned char c) {
        return (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC);
    };
    const struct {
        std::string text;
        std::size_t limit, expected;
    } cases[] = {
        {"abc", 5, 3},
        {"abcdef", 4, 4},
        {"ab\x83\x5c", 3, 2},      // the lead byte would be left alone
        {"ab\x83\x5c", 4, 4},
        {"a\x83\x5c" "b", 3, 3},   // the pair ends at the limit
        {"\x83\x5c\x83\x5c\x83", 4, 4},
        {"abc\x83", 3, 3},         // a lead byte with nothing after it counts alone
        {"\x83", 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(CharBoundaryCut(c.text, c.limit, shiftJisLead), c.expected);
    }
    EXPECT_EQ(CharBoundaryCut("ab\x83\x5c", 3, [](unsigned char) { return false; }), 3u);
}

TEST(PathText, FilterTexts) {
    using namespace std::string_literals;
    const struct {
        std::string bars, expected;
    } conversions[] = {
        {"A|*.a", "A\0*.a\0"s},
        {"A|*.a|", "A\0*.a\0"s},  // already ends in a separator: no second NUL
        {"EXE file(*.exe)|*.exe|All files(*.*)|*.*",
         "EXE file(*.exe)\0*.exe\0All files(*.*)\0*.*\0"s},
        {"MML\0*.mml"s, "MML\0*.mml\0"s},
        {"", "\0"s},
        {PO "|*.mml", PO "\0*.mml\0"s},  // the second byte of ポ is no separator
    };
    const ShiftJisCodePage shiftJis;
    for (const auto& c : conversions) {
        SCOPED_TRACE(c.bars);
        EXPECT_EQ(NulSeparatedFilter(c.bars), c.expected);
    }

    const struct {
        std::vector<FilterEntry> entries;
        std::string expected;
    } builds[] = {
        {{},
         "MML File (*.mml)\0*.mml\0MUS File (*.mus)\0*.mus\0Text File (*.txt)\0*.txt\0"
         "All files (*.*)\0*.*"s},
        {{{"MML", ".mml;.mus"}}, "MML\0*.mml;*.mus"s},
        {{{"MML", ".mml"}, {"All", ".*"}}, "MML\0*.mml\0All\0*.*"s},
        {{{"Odd", "mml;;x"}}, "Odd\0*mml;*;*x"s},
        {{{"", ""}}, "\0*"s},
        {{{"MML" PO, ".mml"}}, "MML" PO "\0*.mml"s},
    };
    for (const auto& c : builds) {
        SCOPED_TRACE(c.entries.size());
        EXPECT_EQ(BuildFilterText(c.entries), c.expected);
    }
}

}  // namespace
}  // namespace zorvi::mdlFile
