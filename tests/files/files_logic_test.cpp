// Path text that needs no file system, $variable$ expansion against a
// made-up machine, console compiler and target, and the escapes of values
// written into a batch script, so that the interpreter runs nothing else.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "files/path_text.h"
#include "files/variables.h"
#include "support/rows.h"
#include "support/shift_jis.h"

namespace zorvi::mdlFile {
namespace {

using namespace std::string_literals;
using testing::ExpectRows;
using S = std::string;
using S2 = std::tuple<S, S>;
using S3 = std::tuple<S, S, S>;

// Shift-JIS characters whose second byte is an ASCII character the helpers look for.
#define HYO "\x95\x5c"     // 表, ends in the byte of "\"
#define SO "\x83\x5c"      // ソ, likewise
#define PO "\x83\x7c"      // ポ, ends in the byte of "|"
#define A_KANA "\x83\x41"  // ア, ends in the byte of "A"
#define DI "\x83\x61"      // ヂ, ends in the byte of "a"

TEST(PathText, LongPathTakesTheCaseOnDisk) {
    // Upper-cased prefixes as the search sees them, and the names on disk;
    // double-byte names are looked up with their bytes as they are.
    const std::map<S, S> disk = {
        {"C:\\PROGRAM FILES", "Program Files"}, {"C:\\SONGS", "Songs"}, {"SONG.MML", "Song.mml"},
        {"C:\\SONGS\\A.MML", "a.mml"}, {"\\\\SERVER\\SHARE\\DIR", "Dir"}, {"C:\\" HYO, HYO},
        {"\\\\SERVER\\SHARE\\DIR\\F.TXT", "f.txt"}, {"C:\\" HYO "\\" DI ".MML", DI ".mml"}};
    const FindEntryName find = [&](const S& prefix) {
        return disk.contains(prefix) ? std::optional(disk.at(prefix)) : std::nullopt;
    };
    const testing::ShiftJisCodePage shiftJis;
    ExpectRows<S, S>([&](const S& path) { return LongPathOf(path, find); }, {
        {"c:\\program files\\", "C:\\Program Files"}, {"  c:\\songs\\A.MML  ", "C:\\Songs\\a.mml"},
        {"c:", "C:\\"}, {"c:\\songs\\missing.mml", ""}, {"   ", ""}, {"\\\\server\\share", ""},
        {"\\\\server\\share\\dir\\f.txt", "\\\\SERVER\\SHARE\\Dir\\f.txt"},
        {"song.mml", "\\Song.mml"},  // without a drive the root is empty
        {"c:\\" HYO "\\" DI ".mml", "C:\\" HYO "\\" DI ".mml"},
        {"c:\\" HYO "\\" A_KANA ".mml", ""},  // ア is not ヂ
    });
}

TEST(PathText, NameExtensionBaseNameAndChangedExtension) {
    const testing::ShiftJisCodePage shiftJis;
    const auto parts = [](const S& p) {
        return S3(GetFileName(p), GetExtension(p), GetBaseName(p));
    };
    ExpectRows<S, S3>(parts, {
        {"C:\\a.b\\file", {"file", "", "fil"}},  // no extension: the last character goes
        {"x.tar.gz", {"x.tar.gz", "gz", "x.tar"}}, {".mml", {".mml", "mml", ""}},
        {"a.", {"a.", "", "a"}}, {"C:\\dir\\", {"", "", ""}},
        {"C:\\d/s/x.y", {"d/s/x.y", "y", "d/s/x"}},  // only "\" separates
        {"C:\\" HYO "\\" SO ".mml", {SO ".mml", "mml", SO}},
        {"C:\\dir\\" HYO SO, {HYO SO, "", HYO}},  // the last character goes whole
        {"C:\\dir\\a." HYO, {"a." HYO, HYO, "a"}},
    });
    EXPECT_EQ(TrimNull("\0abc"s), "");
    // A changed extension keeps the folder (as the twins of the shell's path
    // calls give it, tests/files/path_win_test.cpp) and the base name.
    ExpectRows<S2, S>(ChangeExtension, {
        {{"C:\\songs\\piece.mml", "log"}, "C:\\songs\\piece.log"},
        {{"C:\\songs\\piece.mml", ""}, "C:\\songs\\piece"},
        {{"song.mml", "mid"}, "song.mid"},  // no folder: nothing before the name
        {{"C:\\a.b\\README", "txt"}, "C:\\a.b\\READM.txt"}, {{"C:\\dir\\", "log"}, "C:\\dir\\.log"},
        // As the platform: a folder too long for its "\" is lost, and only the
        // first 300 characters are looked at for the folder.
        {{"C:\\" + S(270, 'd') + "\\a.mml", "log"}, "a.log"},
        {{"C:\\" + S(310, 'f') + "\\", "log"}, "C:\\.log"},
        {{"C:\\" HYO "\\" SO, "txt"}, "C:\\" HYO "\\.txt"},
    });
}

TEST(PathText, SafeAndShortenedNames) {
    const testing::ShiftJisCodePage shiftJis;
    ExpectRows<S, S>(MakeSafeFileName, {
        {"C:\\dir\\x?.mml", "C__dir_x_.mml"}, {"\\/:,;*?\"<>|", "___________"},
        {HYO ":" PO "\\" SO, HYO "_" PO "_" SO},  // never the second byte of a character
    });
    const S fortySeven = "C:\\Users\\someone\\Documents\\songs\\work\\piece.mml";
    const S folders = "\\Documents\\songs\\work\\piece name 1.mml";
    ExpectRows<S, S>(ShortenPathForDisplay, {
        {fortySeven, fortySeven},
        {"C:\\Users\\someone2\\Documents\\songs\\work\\piece.mml",
         "C:\\...\\someone2\\Documents\\songs\\work\\piece.mml"},
        {"C:\\Users\\" HYO SO + folders, "C:\\..." + folders},  // 表ソ goes as one folder
        {"C:\\a\\b\\c\\" + S(50, 'x'), "C:\\...\\" + S(50, 'x')},
        {"C:\\" + S(60, 'n'), "C:\\" + S(60, 'n')}, {S(60, 'z'), S(60, 'z')},
        {"\\\\server\\share\\music\\collection\\2024\\spring\\piece.mml",
         "\\...\\music\\collection\\2024\\spring\\piece.mml"},
    });
}

TEST(PathText, ListsTempNamesCutsAndFilters) {
    using List = std::vector<S>;
    const auto unique = [](List list, bool sortFirst, bool keepBlanks) {
        RemoveDuplicates(list, sortFirst, keepBlanks);
        return list;
    };
    ExpectRows<std::tuple<List, bool, bool>, List>(unique, {
        {{{"b", "a", "b", "", "A", "a", "c"}, false, false}, {"b", "a", "A", "c"}},
        {{{"x", "b", "x", "", "x"}, true, true}, {"", "b", "x", "", ""}},
    });
    const std::set<S> taken = {"C:\\t\\MML000", "C:\\t\\MML001", "C:\\t\\MML003"};
    const auto isTaken = [&](const S& name) { return taken.contains(name); };
    EXPECT_EQ(UniqueTempName("C:\\t", isTaken), "C:\\t\\MML002");
    EXPECT_EQ(UniqueTempName("C:\\t", [](const S&) { return true; }), "C:\\t\\MML999");
    EXPECT_EQ(UniqueTempName("", [](const S&) { return false; }), "\\MML000");
    // Cuts never split a double-byte character.
    ExpectRows<std::tuple<S, std::size_t>, std::size_t>([](const S& text, std::size_t limit) {
        return CharBoundaryCut(text, limit, testing::ShiftJisLeadByte);
    }, {
        {{"abc", 5}, 3}, {{"ab" SO, 3}, 2}, {{"a" SO "b", 3}, 3}, {{SO SO "\x83", 4}, 4},
    });
    EXPECT_EQ(CharBoundaryCut("ab" SO, 3, [](unsigned char) { return false; }), 3u);
    const testing::ShiftJisCodePage shiftJis;
    ExpectRows<S, S>(NulSeparatedFilter, {
        {"A|*.a", "A\0*.a\0"s}, {"A|*.a|", "A\0*.a\0"s}, {"", "\0"s},
        {PO "|*.mml", PO "\0*.mml\0"s},  // the second byte of ポ is no separator
    });
    ExpectRows<std::vector<FilterEntry>, S>(BuildFilterText, {
        {{}, "MML File (*.mml)\0*.mml\0MUS File (*.mus)\0*.mus\0Text File (*.txt)\0*.txt\0"
             "All files (*.*)\0*.*"s},
        {{{"MML", ".mml;.mus"}, {"All", ".*"}}, "MML\0*.mml;*.mus\0All\0*.*"s},
        {{{"Odd", "mml;;x"}}, "Odd\0*mml;*;*x"s}, {{{"MML" PO, ".mml"}}, "MML" PO "\0*.mml"s},
    });
}

// The made-up machine. Its desktop folder holds tokens itself: a value
// inserted by one token meets only the tokens expanded after it.
const S kConsole = "D:\\Tools\\MML Compiler\\compiler.exe";
const S kTarget = "C:\\My Music\\My Song File.mml";

SystemFacts System(S shortProgram = "C:\\PROGRA~1\\Zorvi\\") {
    const auto fact = [](const char* value) { return [value] { return S(value); }; };
    return {fact("C:\\windows"), fact("C:\\$hd$\\$windir$\\$fn2$"), fact("C:\\me\\MYDOCU~1\\"),
            fact("C:\\Program Files\\Zorvi\\"), [shortProgram] { return shortProgram; }};
}

// flags: 1 short folders, 2 short names.
S Expand(int flags, const S& console, const S& target, const S& text) {
    static const std::map<S, S> shortForms = {
        {kTarget, "C:\\MYMUSI~1\\MYSONG~1.MML"}, {kConsole, "D:\\Tools\\MMLCOM~1\\COMPIL~1.EXE"},
        {"C:\\My Music", "C:\\MYMUSI~1"}, {"D:\\Tools\\MML Compiler", "D:\\Tools\\MMLCOM~1"}};
    const auto shortPath = [](const S& p) { return shortForms.contains(p) ? shortForms.at(p) : p; };
    const VariableFacts facts{System(), shortPath, [&] { return console; }, [&] { return target; }};
    return ExpandVariablesWith(text, (flags & 1) != 0, (flags & 2) != 0, facts);
}

TEST(Variables, SystemTokens) {
    const S program = "C:\\PROGRA~1\\Zorvi\\";
    const testing::ShiftJisCodePage shiftJis;
    ExpectRows<S2, S>([](const S& shortProgram, const S& text) {
        return ExpandSystemVariablesWith(text, System(shortProgram));
    }, {
        {{program, "$systemroot$|$WinDir$|$mydocument$|$hd$|$homeroot$"},
         "C:\\windows\\|C:\\windows\\|C:\\me\\MYDOCU~1\\|C:|C:\\"},
        {{program, "$HomePath$|$hp2$"}, "C:\\PROGRA~1\\Zorvi\\|C:\\PROGRA~1\\Zorvi"},
        // "$hp$" is done before "$hp2$", so it eats the first "$" of the pair.
        {{program, "$hp$hp2$ $$hd$$ $temp$ $"}, "C:\\PROGRA~1\\Zorvi\\hp2$ $C:$ $temp$ $"},
        {{"E:\\", "$hp$|$homepath2$"}, "E:\\|E:\\"},
        {{"C:\\" HYO, "$hp$|$hp2$"}, "C:\\" HYO "\\|C:\\" HYO},
    });
}

TEST(Variables, ConsoleAndTargetTokensLongAndShort) {
    const S tokens = "$pr$|$pd$|$pp$|$pp2$|$pn$|$fr$|$fd$|$fp$|$fp2$|$fn$|$fn2$|$ext2$|$ext$";
    EXPECT_EQ(Expand(3, kConsole, kTarget,
                     "$progroot$|$progdrive$|$progpath$|$progpath2$|$progname$|$fileroot$|"
                     "$filedrive$|$filepath$|$filepath2$|$filename$|$filename2$|$extension2$|"
                     "$extension$"),
              Expand(3, kConsole, kTarget, tokens));
    ExpectRows<int, S>([&](int flags) { return Expand(flags, kConsole, kTarget, tokens); }, {
        {0, "D:\\|D:|D:\\Tools\\MML Compiler\\|D:\\Tools\\MML Compiler|compiler.exe|C:\\|C:|"
            "C:\\My Music\\|C:\\My Music|My Song File.mml|My Song File|mml|.mml"},
        {1, "D:\\|D:|D:\\Tools\\MMLCOM~1\\|D:\\Tools\\MMLCOM~1|compiler.exe|C:\\|C:|"
            "C:\\MYMUSI~1\\|C:\\MYMUSI~1|My Song File.mml|My Song File|mml|.mml"},
        {2, "D:\\|D:|D:\\Tools\\MML Compiler\\|D:\\Tools\\MML Compiler|COMPIL~1.EXE|C:\\|C:|"
            "C:\\My Music\\|C:\\My Music|MYSONG~1.MML|MYSONG~1|MML|.MML"},
    });
}

TEST(Variables, ShapesOfConsoleAndTarget) {
    const auto expand = [](const S& console, const S& target, const S& text) {
        return Expand(0, console, target, text);
    };
    const testing::ShiftJisCodePage shiftJis;
    ExpectRows<S3, S>(expand, {
        {{kConsole, "C:\\song.mml", "$fp$|$fp2$|$fn$"}, "C:\\|C:\\|song.mml"},
        {{kConsole, "C:\\M\\a.b.", "[$ext2$]|$ext$|$fn2$"}, "[]|.|ab"},  // no extension: dots go
        {{kConsole, "C:\\M\\Song.MML.mmlx.mml", "$fn2$|$ext2$"}, "Songx|mml"},  // every repeat goes
        {{kConsole, "\\\\server\\share\\song.mml", "$fd$|$fp$"}, "\\\\|\\\\server\\share\\"},
        {{kConsole, "", "[$fd$|$fr$|$fp$|$fp2$|$fn$|$fn2$|$ext2$]|$ext$"}, "[||||||]|."},
        // Without a console every console token is empty, but "$pr$" keeps its "\".
        {{"", kTarget, "[$progroot$|$pr$|$pd$|$pp$|$pp2$|$pn$]"}, "[|\\||||]"},
        {{"mc.exe", kTarget, "[$pd$|$pp$|$pp2$]"}, "[mc||]"},
        {{"$hp$bin\\mc.exe", kTarget, "$pd$|$pp$"}, "C:|C:\\PROGRA~1\\Zorvi\\bin\\"},
        {{kConsole, "C:\\M\\s.mml", "$FP$$Fn2$.$EXT2$ $fn$ $ $$ $fp fp$ $$fp$$ $fp$fn$ $x$"},
         "C:\\M\\s.mml s.mml $ $$ $fp fp$ $C:\\M\\$ C:\\M\\fn$ $x$"},
        // Inserted values meet only the tokens after their own ("$fn$" after "$pp$").
        {{"C:\\$fn$\\mc.exe", "C:\\$pp$\\s.mml", "$pp$|$fp$"}, "C:\\s.mml\\|C:\\$pp$\\"},
        {{kConsole, kTarget, "$desktop$"}, "C:\\C:\\$windir$\\My Song File\\"},
        // Double-byte names whose bytes look like "\" or a letter stay whole.
        {{"D:\\" HYO "\\mc.exe", "C:\\" HYO "\\" SO ".mml", "$pp2$|$fp$|$fp2$|$fn$|$fn2$|$ext$"},
         "D:\\" HYO "|C:\\" HYO "\\|C:\\" HYO "|" SO ".mml|" SO "|.mml"},
        {{"D:\\mc.exe", "C:\\M\\a." DI "." A_KANA, "$fn2$|$ext2$"}, "a." DI "|" A_KANA},
        {{HYO SO ".exe", kTarget, "$pd$|$pn$"}, HYO SO "|" HYO SO ".exe"},  // 2 characters
    });
}

// Asking Windows is slow: a text without "$" asks nothing, a token asks once.
TEST(Variables, FactsAreAskedOnlyWhenATokenNeedsThem) {
    int asked = 0;
    const auto fact = [&asked] { return ++asked, S("C:\\x\\y.mml"); };
    const VariableFacts facts{SystemFacts{fact, fact, fact, fact, fact},
                              [&asked](const S& path) { return ++asked, path; }, fact, fact};
    EXPECT_EQ(ExpandVariablesWith("mc.exe %1 > log.txt", true, true, facts), "mc.exe %1 > log.txt");
    EXPECT_EQ(ExpandSystemVariablesWith("a.mml", facts.system), "a.mml");
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(ExpandVariablesWith("$fn$ $fn$", false, false, facts), "y.mml y.mml");
    EXPECT_EQ(asked, 1);
}

TEST(BatchEscape, EachCharacterTheInterpreterActsOnIsEscapedForItsPlace) {
    // Outside quotes and inside them.
    ExpectRows<S, std::pair<S, S>>([](const S& value) {
        return std::pair(EscapeForBatch(value, false), EscapeForBatch(value, true));
    }, {
        {"a b.mml", {"a b.mml", "a b.mml"}}, {",;='", {",;='", ",;='"}},
        {"b&notepad&.mml", {"b^&notepad^&.mml", "b&notepad&.mml"}},
        {"|<>^()!", {"^|^<^>^^^(^)^!", "|<>^()!"}}, {"100%.mml", {"100%%.mml", "100%%.mml"}},
        {"%PATH%", {"%%PATH%%", "%%PATH%%"}},
        // The second byte of a double-byte character is never escaped: without
        // a lead-byte test no byte leads, so 0x5E passes as the caret it is.
        {"\x95\x5e", {"\x95^\x5e", "\x95\x5e"}},
    });
}

TEST(BatchEscape, ScriptLinesEscapeByTheQuotesBeforeEachToken) {
    VariableFacts facts;
    facts.targetFile = [] { return S("C:\\M&M (1)\\b&c%.mml"); };
    facts.console = [] { return S("C:\\t!\\mc.exe"); };
    const auto script = [&](const char* text) {
        return ExpandVariablesWith(text, false, false, facts, true);
    };
    EXPECT_EQ(script("\"$pp$mc.exe\" \"$fp$$fn$\" > $fn2$.log"),
              "\"C:\\t!\\mc.exe\" \"C:\\M&M (1)\\b&c%%.mml\" > b^&c%%.log");
    // Quotes are counted per line: an odd one does not carry over.
    EXPECT_EQ(script("echo \"$fn$\r\ncopy $fn$ x"), "echo \"b&c%%.mml\r\ncopy b^&c%%.mml x");
    // Outside a script nothing is touched.
    EXPECT_EQ(ExpandVariablesWith("$fn$", false, false, facts), "b&c%.mml");
}

}  // namespace
}  // namespace zorvi::mdlFile
