// $variable$ expansion against a made-up machine, console compiler and target.
#include <gtest/gtest.h>

#include <map>

#include "files/variables.h"
#include "support/shift_jis.h"

namespace zorvi::mdlFile {
namespace {

// Short forms the made-up file system knows; other paths have none.
const std::map<std::string, std::string> kShortForms = {
    {"C:\\My Music\\My Song File.mml", "C:\\MYMUSI~1\\MYSONG~1.MML"},
    {"D:\\Tools\\MML Compiler\\compiler.exe", "D:\\Tools\\MMLCOM~1\\COMPIL~1.EXE"},
};

struct Machine {
    std::string windowsFolder = "C:\\windows";
    std::string desktop = "C:\\users\\me\\Desktop";
    std::string documents = "C:\\users\\me\\MYDOCU~1\\";
    std::string program = "C:\\Program Files\\Zorvi\\";
    std::string shortProgram = "C:\\PROGRA~1\\Zorvi\\";
    std::string console = "D:\\Tools\\MML Compiler\\compiler.exe";
    std::string target = "C:\\My Music\\My Song File.mml";

    VariableFacts Facts() const {
        return {
            SystemFacts{[this] { return windowsFolder; }, [this] { return desktop; },
                        [this] { return documents; }, [this] { return program; },
                        [this] { return shortProgram; }},
            [](const std::string& path) {
                const auto found = kShortForms.find(path);
                return found == kShortForms.end() ? path : found->second;
            },
            [this] { return console; },
            [this] { return target; },
        };
    }
};

std::string Expand(const std::string& text, const Machine& machine, bool shortFolders = false,
                   bool shortNames = false) {
    return ExpandVariablesWith(text, shortFolders, shortNames, machine.Facts());
}

TEST(Variables, SystemTokens) {
    const Machine machine;
    const struct {
        const char* text;
        const char* expected;
    } cases[] = {
        {"$systemroot$", "C:\\windows\\"},
        {"$windir$", "C:\\windows\\"},
        {"$desktop$", "C:\\users\\me\\Desktop\\"},
        {"$mydocument$", "C:\\users\\me\\MYDOCU~1\\"},
        {"$homedrive$", "C:"},
        {"$hd$", "C:"},
        {"$homeroot$", "C:\\"},
        {"$hr$", "C:\\"},
        {"$homepath$", "C:\\PROGRA~1\\Zorvi\\"},
        {"$hp$", "C:\\PROGRA~1\\Zorvi\\"},
        {"$homepath2$", "C:\\PROGRA~1\\Zorvi"},
        {"$hp2$", "C:\\PROGRA~1\\Zorvi"},
        {"$WINDIR$", "C:\\windows\\"},
        {"$HomePath2$", "C:\\PROGRA~1\\Zorvi"},
        {"$Hp$x.exe /o $hP$", "C:\\PROGRA~1\\Zorvi\\x.exe /o C:\\PROGRA~1\\Zorvi\\"},
        // "$hp$" is done before "$hp2$", so it eats the first "$" of the pair.
        {"$hp$hp2$", "C:\\PROGRA~1\\Zorvi\\hp2$"},
        {"$$hd$$", "$C:$"},
        {"$temp$", "$temp$"},
        {"$home$ $hp", "$home$ $hp"},
        {"$", "$"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(ExpandSystemVariablesWith(c.text, machine.Facts().system), c.expected);
        EXPECT_EQ(Expand(c.text, machine), c.expected);
    }
}

TEST(Variables, ProgramInADriveRoot) {
    Machine machine;
    machine.program = "E:\\";
    machine.shortProgram = "E:\\";
    const struct {
        const char* text;
        const char* expected;
    } cases[] = {{"$hd$", "E:"}, {"$hr$", "E:\\"}, {"$hp$", "E:\\"}, {"$hp2$", "E:\\"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(ExpandSystemVariablesWith(c.text, machine.Facts().system), c.expected);
    }
}

TEST(Variables, ConsoleAndTargetTokensLongAndShort) {
    const Machine machine;
    // Expected with long names, short folders only, short names only, both.
    const struct {
        const char* longToken;
        const char* shortToken;
        const char* expected[4];
    } cases[] = {
        {"$progroot$", "$pr$", {"D:\\", "D:\\", "D:\\", "D:\\"}},
        {"$progdrive$", "$pd$", {"D:", "D:", "D:", "D:"}},
        {"$progpath$", "$pp$",
         {"D:\\Tools\\MML Compiler\\", "D:\\Tools\\MMLCOM~1\\", "D:\\Tools\\MML Compiler\\",
          "D:\\Tools\\MMLCOM~1\\"}},
        {"$progpath2$", "$pp2$",
         {"D:\\Tools\\MML Compiler", "D:\\Tools\\MMLCOM~1", "D:\\Tools\\MML Compiler",
          "D:\\Tools\\MMLCOM~1"}},
        {"$progname$", "$pn$", {"compiler.exe", "compiler.exe", "COMPIL~1.EXE", "COMPIL~1.EXE"}},
        {"$fileroot$", "$fr$", {"C:\\", "C:\\", "C:\\", "C:\\"}},
        {"$filedrive$", "$fd$", {"C:", "C:", "C:", "C:"}},
        {"$filepath$", "$fp$",
         {"C:\\My Music\\", "C:\\MYMUSI~1\\", "C:\\My Music\\", "C:\\MYMUSI~1\\"}},
        {"$filepath2$", "$fp2$",
         {"C:\\My Music", "C:\\MYMUSI~1", "C:\\My Music", "C:\\MYMUSI~1"}},
        {"$filename$", "$fn$",
         {"My Song File.mml", "My Song File.mml", "MYSONG~1.MML", "MYSONG~1.MML"}},
        {"$filename2$", "$fn2$", {"My Song File", "My Song File", "MYSONG~1", "MYSONG~1"}},
        {"$extension2$", "$ext2$", {"mml", "mml", "MML", "MML"}},
        {"$extension$", "$ext$", {".mml", ".mml", ".MML", ".MML"}},
    };
    for (const auto& c : cases) {
        for (int flags = 0; flags < 4; ++flags) {
            const bool shortFolders = (flags & 1) != 0;
            const bool shortNames = (flags & 2) != 0;
            for (const char* token : {c.longToken, c.shortToken}) {
                SCOPED_TRACE(std::string(token) + " shortFolders=" + std::to_string(shortFolders) +
                             " shortNames=" + std::to_string(shortNames));
                EXPECT_EQ(Expand(token, machine, shortFolders, shortNames), c.expected[flags]);
            }
        }
    }
}

TEST(Variables, TargetShapes) {
    const struct {
        const char* target;
        const char* text;
        const char* expected;
    } cases[] = {
        {"C:\\Music\\song.mml", "$fd$|$fr$|$fp$|$fp2$", "C:|C:\\|C:\\Music\\|C:\\Music"},
        {"C:\\Music\\song.mml", "$fn$|$fn2$|$ext$|$ext2$", "song.mml|song|.mml|mml"},
        {"C:\\song.mml", "$fp$|$fp2$|$fn$", "C:\\|C:\\|song.mml"},
        {"C:\\Music\\song", "[$ext2$]|$ext$|$fn2$|$fn$", "[]|.|song|song"},
        {"C:\\Music\\a.b.", "[$ext2$]|$ext$|$fn2$", "[]|.|ab"},
        {"C:\\a.b\\song", "[$ext2$]|$fn2$|$fp$", "[]|song|C:\\a.b\\"},
        {"C:\\Music\\song.mml.mml", "$fn2$|$ext$", "song|.mml"},
        {"C:\\Music\\Song.MML.mml", "$fn2$|$ext2$", "Song|mml"},
        {"C:\\Music\\song.mmlx.mml", "$fn2$", "songx"},
        {"C:\\Music\\v1.2", "$fn2$|$ext$", "v1|.2"},
        {"\\\\server\\share\\song.mml", "$fd$|$fp$|$fn$", "\\\\|\\\\server\\share\\|song.mml"},
        {"", "[$fd$|$fr$|$fp$|$fp2$|$fn$|$fn2$|$ext2$]|$ext$", "[||||||]|."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.target) + " " + c.text);
        Machine machine;
        machine.target = c.target;
        EXPECT_EQ(Expand(c.text, machine), c.expected);
    }
}

TEST(Variables, ConsoleShapes) {
    const struct {
        const char* console;
        const char* text;
        const char* expected;
    } cases[] = {
        // Without a console every console token is empty, but "$pr$" keeps its "\".
        {"", "[$progroot$|$pr$|$pd$|$pp$|$pp2$|$pn$]", "[|\\||||]"},
        {"C:\\mc.exe", "$progroot$|$pr$|$pp$|$pp2$|$pn$", "C:\\|C:\\|C:\\|C:\\|mc.exe"},
        {"mc.exe", "[$pd$|$pp$|$pp2$]|$pn$", "[mc||]|mc.exe"},
        {"$hp$bin\\mc.exe", "$pd$|$pp$|$pn$", "C:|C:\\PROGRA~1\\Zorvi\\bin\\|mc.exe"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.console) + " " + c.text);
        Machine machine;
        machine.console = c.console;
        EXPECT_EQ(Expand(c.text, machine), c.expected);
    }
}

TEST(Variables, CaseRepeatsAndStrayDollars) {
    Machine machine;
    machine.target = "C:\\Music\\song.mml";
    const struct {
        const char* text;
        const char* expected;
    } cases[] = {
        {"$FP$$FN$", "C:\\Music\\song.mml"},
        {"$Fn2$.$EXT2$", "song.mml"},
        {"$PROGPATH$$ProgName$", "D:\\Tools\\MML Compiler\\compiler.exe"},
        {"$fn$ $fn$ $FN$", "song.mml song.mml song.mml"},
        {"$pp$mc.exe $fn$ > $fp2$\\$fn2$.log",
         "D:\\Tools\\MML Compiler\\mc.exe song.mml > C:\\Music\\song.log"},
        {"$", "$"},
        {"$$", "$$"},
        {"$fp", "$fp"},
        {"fp$", "fp$"},
        {"$$fp$$", "$C:\\Music\\$"},
        {"$fp$fn$", "C:\\Music\\fn$"},
        {"$temp$.bat", "$temp$.bat"},
        {"$unknown$ $fn$", "$unknown$ song.mml"},
        {"$ f n $", "$ f n $"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(Expand(c.text, machine), c.expected);
    }
}

TEST(Variables, InsertedValuesMeetOnlyLaterTokens) {
    const struct {
        const char* console;
        const char* target;
        const char* desktop;
        const char* text;
        const char* expected;
    } cases[] = {
        // "$fn$" comes after "$pp$", so a folder spelt like it is replaced too.
        {"C:\\$fn$\\mc.exe", "C:\\Music\\song.mml", "C:\\d", "$pp$", "C:\\song.mml\\"},
        {"C:\\x\\mc.exe", "C:\\$ext$\\song.mml", "C:\\d", "$fp$", "C:\\.mml\\"},
        // "$pp$" comes before "$fp$": the folder keeps its name.
        {"C:\\x\\mc.exe", "C:\\$pp$\\song.mml", "C:\\d", "$fp$", "C:\\$pp$\\"},
        // System tokens go first, whatever they bring in is expanded afterwards.
        {"C:\\x\\mc.exe", "C:\\Music\\song.mml", "C:\\$fn2$", "$desktop$", "C:\\song\\"},
        {"C:\\x\\mc.exe", "C:\\Music\\song.mml", "C:\\$hd$", "$desktop$", "C:\\C:\\"},
        {"C:\\x\\mc.exe", "C:\\Music\\song.mml", "C:\\$windir$", "$desktop$", "C:\\$windir$\\"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.console) + " " + c.target + " " + c.desktop + " " + c.text);
        Machine machine;
        machine.console = c.console;
        machine.target = c.target;
        machine.desktop = c.desktop;
        EXPECT_EQ(Expand(c.text, machine), c.expected);
    }
}

// Shift-JIS names whose characters end in the byte of "\\" (表 0x95 0x5C,
// ソ 0x83 0x5C) or of an ASCII letter (ア 0x83 0x41, ヂ 0x83 0x61).
TEST(Variables, DoubleByteNamesStayWhole) {
    const struct {
        const char* console;
        const char* target;
        const char* shortProgram;
        const char* text;
        const char* expected;
    } cases[] = {
        {"D:\\mc.exe", "C:\\\x95\x5c\\\x83\x5c.mml", "C:\\Z\\", "$fd$|$fp$|$fp2$|$fn$",
         "C:|C:\\\x95\x5c\\|C:\\\x95\x5c|\x83\x5c.mml"},
        {"D:\\mc.exe", "C:\\\x95\x5c\\\x83\x5c.mml", "C:\\Z\\", "$fn2$|$ext2$|$ext$",
         "\x83\x5c|mml|.mml"},
        {"D:\\mc.exe", "C:\\\x83\x5c\\\x95\x5c", "C:\\Z\\", "$fp$|$fn$|$fn2$|[$ext2$]",
         "C:\\\x83\x5c\\|\x95\x5c|\x95\x5c|[]"},
        // A double-byte extension: ア and ヂ differ only in a byte that is a letter.
        {"D:\\mc.exe", "C:\\M\\a.\x83\x61.\x83\x41", "C:\\Z\\", "$fn2$|$ext2$",
         "a.\x83\x61|\x83\x41"},
        {"D:\\\x95\x5c\\mc.exe", "C:\\a.mml", "C:\\Z\\", "$pp$|$pp2$|$pn$|$pd$",
         "D:\\\x95\x5c\\|D:\\\x95\x5c|mc.exe|D:"},
        {"D:\\mc.exe", "C:\\a.mml", "C:\\\x95\x5c", "$hp$|$hp2$",
         "C:\\\x95\x5c\\|C:\\\x95\x5c"},
        // A relative name: the "drive" is its first two characters.
        {"\x95\x5c\x83\x5c.exe", "C:\\a.mml", "C:\\Z\\", "$pd$|$pn$",
         "\x95\x5c\x83\x5c|\x95\x5c\x83\x5c.exe"},
    };
    const testing::ShiftJisCodePage shiftJis;
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.target) + " " + c.text);
        Machine machine;
        machine.console = c.console;
        machine.target = c.target;
        machine.shortProgram = c.shortProgram;
        EXPECT_EQ(Expand(c.text, machine), c.expected);
    }
}

TEST(Variables, TextWithoutDollarAsksNothing) {
    int asked = 0;
    const auto fact = [&asked] {
        ++asked;
        return std::string("C:\\x\\y.mml");
    };
    const VariableFacts facts{
        SystemFacts{fact, fact, fact, fact, fact},
        [&asked](const std::string& path) {
            ++asked;
            return path;
        },
        fact,
        fact,
    };
    for (const char* text : {"", "mc.exe song.mml", "fp", "%1 > log.txt"}) {
        SCOPED_TRACE(text);
        for (int flags = 0; flags < 4; ++flags) {
            EXPECT_EQ(ExpandVariablesWith(text, (flags & 1) != 0, (flags & 2) != 0, facts), text);
        }
        EXPECT_EQ(ExpandSystemVariablesWith(text, facts.system), text);
    }
    EXPECT_EQ(asked, 0);
    // The counting facts do answer when a token wants them.
    EXPECT_EQ(ExpandVariablesWith("$fn$", false, false, facts), "y.mml");
    EXPECT_GT(asked, 0);
}

}  // namespace
}  // namespace zorvi::mdlFile
