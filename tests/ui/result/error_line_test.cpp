// From an error message to its line: which line of the target a log line
// names, and the "$line$" of the editor's arguments.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "files/variables.h"
#include "support/rows.h"
#include "support/shift_jis.h"
#include "ui/result/error_line.h"

namespace zorvi {
namespace {

using testing::ExpectRows;
using S = std::string;
using Line = std::optional<int>;

TEST(ErrorLine, NamedLineOfTheTarget) {
    const auto forBroken = [](const S& logLine) { return ErrorLineFor(logLine, "broken.mml"); };
    ExpectRows<S, Line>(forBroken, {
        {"broken.mml(9,23): error: '[' is never closed with ']'", 9},
        {"Z:\\Songs\\BROKEN.MML(12,1): error: x", 12},    // a full path, another case
        {"songs/broken.mml:7:3: error: x", 7}, {"broken.mml:7: warning: x", 7},
        {"\"C:broken.mml(6)\"", 6}, {"from broken.mml:3:", 3}, {"broken.mml(007", 7},
        {"other.mml(3,1): error: see broken.mml(8,2)", 8},  // the target's, not the first
        {"broken.mml(2,1) and broken.mml(5,1)", 2},
        {"unbroken.mml(3,1): error: x", std::nullopt},     // the tail of another name
        {"broken.mml.bak(3,1): error: x", std::nullopt},
        {"broken.mml:7 error", std::nullopt}, {"broken.mml( 7", std::nullopt},
        {"broken.mml(0,1): error", std::nullopt}, {"broken.mml(1234567890,1)", std::nullopt},
        {"mmlc: 1 error, 0 warnings; broken.mid not written", std::nullopt},
        {"", std::nullopt}, {"broken.mml", std::nullopt},
        // Without a double-byte code page 0x5C is a "\" before the name.
        {"\x95\x5C" "broken.mml(3,1)", 3},
    });
    EXPECT_EQ(ErrorLineFor("song.mml(4,1): error", ""), std::nullopt);
    // In Shift-JIS 0x95 0x5C is one character (表), and the name is the tail of "表broken.mml".
    const testing::ShiftJisCodePage shiftJis;
    EXPECT_EQ(forBroken("\x95\x5C" "broken.mml(3,1)"), std::nullopt);
    EXPECT_EQ(forBroken("\x95\x5C\\broken.mml(3,1)"), 3);
}

TEST(ErrorLine, LineVariableLeavesTheOtherTokens) {
    ExpectRows<std::tuple<S, int>, S>(mdlFile::ExpandLineVariable, {
        {{"-n$line$ \"$fp$$fn$\"", 9}, "-n9 \"$fp$$fn$\""},
        {{"+$LINE$ $Line$:$line$ $lines$", 120}, "+120 120:120 $lines$"},
        {{"$fn$", 3}, "$fn$"}, {{"", 3}, ""},
    });
}

}  // namespace
}  // namespace zorvi
