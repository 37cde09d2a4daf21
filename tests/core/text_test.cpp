// The text helpers under a double-byte code page: case folding and searches
// that never take the second byte of a character for an ASCII one.
#include <gtest/gtest.h>

#include <string>

#include "core/text.h"
#include "support/shift_jis.h"

namespace zorvi {
namespace {

using testing::ShiftJisCodePage;

constexpr auto npos = std::string_view::npos;

TEST(Text, CaseFoldingLeavesDoubleByteCharactersAlone) {
    const struct {
        std::string text, lower, upper;
    } cases[] = {
        {"Song.MML", "song.mml", "SONG.MML"},
        {"", "", ""},
        {"\x83\x41\x83\x61", "\x83\x41\x83\x61", "\x83\x41\x83\x61"},  // アヂ
        {"a\x83\x41Z", "a\x83\x41z", "A\x83\x41Z"},
        {"Z\x83", "z\x83", "Z\x83"},  // a lead byte at the end stands alone
    };
    const ShiftJisCodePage shiftJis;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(AsciiLower(c.text), c.lower);
        EXPECT_EQ(AsciiUpper(c.text), c.upper);
    }
}

TEST(Text, SearchesFindWholeCharactersOnly) {
    const struct {
        std::string text, what;
        std::size_t from, found;
    } cases[] = {
        {"a\\b", "\\", 0, 1},
        {"\x95\x5c", "\\", 0, npos},           // 表
        {"\x95\x5c\\x", "\\", 0, 2},
        {"\x95\x5c\x83\x5c.\\", "\\", 0, 5},    // 表ソ.
        {"ab", "", 1, 1},
        {"ab", "", 3, npos},
        {"\x83x.x", "x", 0, 3},                 // ベ.x
        {"a.\x83\x41", ".\x83", 0, npos},       // would end inside ア
        {"a.\x83\x41.\x83", ".\x83", 0, 4},     // a lone lead byte at the end counts alone
        {"x\x83\x41x\x83\x41", "\x83\x41", 3, 4},
    };
    const ShiftJisCodePage shiftJis;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text + " / " + c.what);
        EXPECT_EQ(FindText(c.text, c.what, c.from), c.found);
        if (c.what.size() == 1 && c.from == 0) {
            EXPECT_EQ(FindChar(c.text, c.what[0]), c.found);
        }
    }
    EXPECT_EQ(FindLastChar("\\\x95\x5c", '\\'), 0u);
    EXPECT_EQ(FindLastChar("\x95\x5c", '\\'), npos);
    EXPECT_TRUE(EndsWithChar("a\\", '\\'));
    EXPECT_FALSE(EndsWithChar("a\x95\x5c", '\\'));
    EXPECT_EQ(ReplaceChar("|\x83|", '|', '_'), "_\x83|");  // |ポ
    EXPECT_EQ(LeadingChars("\x95\x5c\x83\x5cx", 2), "\x95\x5c\x83\x5c");
    EXPECT_EQ(LeadingChars("C:\\x", 3), "C:\\");
    EXPECT_EQ(LeadingChars("a", 3), "a");
}

// As in code page 1252, where 0x83 0x41 is "ƒA".
TEST(Text, WithoutALeadByteTestEveryByteStandsAlone) {
    EXPECT_EQ(FindChar("\x95\x5c", '\\'), 1u);
    EXPECT_EQ(AsciiLower("\x83\x41"), "\x83\x61");
    EXPECT_EQ(LeadingChars("\x95\x5c\x83", 2), "\x95\x5c");
}

}  // namespace
}  // namespace zorvi
