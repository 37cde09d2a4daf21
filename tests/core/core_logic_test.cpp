// The core rules: the command line's tokens and switches, the text helpers
// under a double-byte code page, and the version text.
#include <gtest/gtest.h>

#include <set>

#include "core/command_line.h"
#include "core/text.h"
#include "core/version.h"
#include "support/rows.h"
#include "support/shift_jis.h"

namespace zorvi {
namespace {

using testing::ExpectRows;
using S = std::string;
using Tokens = std::vector<S>;
constexpr auto npos = std::string_view::npos;

TEST(CommandLine, TokenizesAsTyped) {
    ExpectRows<S, Tokens>(TokenizeCommandLine, {
        {"   \t  ", {}}, {"\tsong.mml\t-x", {"song.mml", "-x"}}, {"-a   -b", {"-a", "-b"}},
        {"a  b", {"a", "", "b"}},  // a run of blanks between words leaves empty tokens
        {"\"C:\\My Songs\\a.mml\" next", {"\"C:\\My Songs\\a.mml\"", "", "next"}},
        {"\"a\"b c", {"\"a\"b c"}},  // a quoted word ends at a quote and a blank
        {"-preset=\"a b\"x y", {"-preset=\"a b\"", "x", "y"}}, {"-play\"a\"b", {"-play\"a\"b"}},
        // A switch at the end, or a quote that never closes, takes the rest.
        {"song.mml -showlog", {"song.mml", "-showlog"}}, {"\"unclosed path", {"\"unclosed path"}},
        {"-preset=\"open name -play", {"-preset=\"open name -play"}},
    });
}

// "cpl|preset|file": the switches compileNow, play and showLog that are on, the
// preset path, the file. These files exist; "C:\dir" is a folder.
S Interpret(const S& line) {
    static const std::set<S> files = {"b.mml", "C:\\My Songs\\a.mml", "song.mml"};
    CommandLineFacts facts;
    facts.unquote = [](const S& p) { return p.starts_with('"') ? p.substr(1, p.size() - 2) : p; };
    facts.isExistingFile = [](const S& path) { return files.contains(path); };
    const CommandLine args = InterpretCommandLine(TokenizeCommandLine(line), "C:\\Z\\", facts);
    S text = S(args.compileNow ? "c" : "") + (args.play ? "p" : "") + (args.showLog ? "l" : "");
    return text + "|" + args.presetPath + "|" + args.file;
}

TEST(CommandLine, ReadsSwitchesPresetAndFile) {
    ExpectRows<S, S>(Interpret, {
        {"/CompileNow /PLAY /ShowLog nothere.mml", "cpl||"},
        {"/PRESET=fast song.mml -compilenow", "c|C:\\Z\\cfg\\fast.ini|song.mml"},
        {"-preset=\"My Set\" b.mml", "|C:\\Z\\cfg\\my set.ini|b.mml"},
        // ".ini" is added when the path before this switch lacks it.
        {"-preset=fast.ini", "|C:\\Z\\cfg\\fast.ini.ini|"},
        {"-preset=a -preset=b", "|C:\\Z\\cfg\\b|"},
        {"missing.mml C:\\dir b.mml song.mml", "||b.mml"},
        {"\"C:\\My Songs\\a.mml\" -play", "p||C:\\My Songs\\a.mml"},
        {"-unknown -compilenowx /show-log - song.mml", "||song.mml"},
    });
}

// Shift-JIS: 表 0x95 0x5C and ソ 0x83 0x5C end in the byte of "\", ア 0x83 0x41
// in that of "A", ベ 0x83 0x78 in that of "x". Without a lead-byte test (as in
// code page 1252, where 0x83 0x41 is "ƒA") every byte stands alone. The other
// scans are seen through the path text built on them.
TEST(Text, ScansStepOverWholeDoubleByteCharacters) {
    EXPECT_EQ(FindChar("\x95\x5c", '\\'), 1u);
    EXPECT_EQ(AsciiLower("\x83\x41"), "\x83\x61");
    const testing::ShiftJisCodePage shiftJis;
    EXPECT_EQ(AsciiLower("a\x83\x41Z\x83"), "a\x83\x41z\x83");  // a lead byte at the end: alone
    EXPECT_EQ(AsciiUpper("a\x83\x61"), "A\x83\x61");
    ExpectRows<std::tuple<S, S, std::size_t>, std::size_t>(FindText, {
        {{"\x95\x5c", "\\", 0}, npos}, {{"\x95\x5c\x83\x5c.\\", "\\", 0}, 5},
        {{"ab", "", 1}, 1}, {{"ab", "", 3}, npos}, {{"\x83x.x", "x", 0}, 3},
        {{"a.\x83\x41", ".\x83", 0}, npos},  // would end inside ア
        {{"a.\x83\x41.\x83", ".\x83", 0}, 4}, {{"x\x83\x41x\x83\x41", "\x83\x41", 3}, 4},
    });
}

TEST(Version, TextFromRecord) {
    ExpectRows<VersionRecord, S>(VersionText, {
        {{0, 14, 3}, "0.14c"}, {{0, 14, 0}, "0.14"}, {{1, 0, 26}, "1.0z"}, {{2, 5, 27}, "2.5"},
        {{2, 5, -1}, "2.5"},
    });
    EXPECT_EQ(VersionText(ThisVersion()).find_first_not_of("0123456789.abcdefghijklmnopqrstuvwxyz"),
              npos);
}

}  // namespace
}  // namespace zorvi
