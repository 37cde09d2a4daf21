// The result window's text: verdicts, line ends, NULs, the 65535-character cut,
// reading a log in pieces and as UTF-8 or in its code page; and which line of
// the target an error message names, for the editor's "$line$".
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "files/variables.h"
#include "support/rows.h"
#include "support/shift_jis.h"
#include "ui/result/error_line.h"
#include "ui/result/log_decode.h"

namespace zorvi {
namespace {

using namespace std::string_literals;
using testing::ExpectRows;
using S = std::string;
using W = std::wstring;
using Line = std::optional<int>;

const ResultTexts kTexts{L"Zorvi", L"Detect compiling error.", L"Generated 0 byte file.",
                         L"Log file not found.", L"Compiling was stopped."};
const W kErrorHeader = L"Zorvi:Detect compiling error.\r\n" + W(78, L'-') + L"\r\n";
const W kZeroHeader = L"Zorvi:Generated 0 byte file.\r\n" + W(78, L'-') + L"\r\n";

// One byte, one character: the single-byte code pages (ASCII logs only here).
W Latin1(std::string_view bytes) { return W(bytes.begin(), bytes.end()); }

// A double-byte code page in miniature: a byte of 0x80 or more leads, and with
// the byte after it makes one character (U+4E00 + the trail byte, so that it is
// told apart from UTF-8); a lead byte at the end gives "?".
W DoubleByte(std::string_view bytes) {
    W text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const bool pair = byte >= 0x80 && i + 1 < bytes.size();
        text += byte < 0x80 ? byte : pair ? 0x4E00 + static_cast<unsigned char>(bytes[++i]) : L'?';
    }
    return text;
}

// A log's text, built at once; fed in pieces of 1, 7 and 4096 bytes it must come out the same.
W BuildEveryWay(int mode, std::string_view log, const DecodeLogBytes& decode) {
    const W whole = BuildResultText(mode, kTexts, log, decode);
    for (const std::size_t chunk : {1u, 7u, 4096u}) {
        ResultTextBuilder builder(mode, kTexts, log.size(), decode);
        for (std::size_t at = 0; at < log.size(); at += chunk) builder.Feed(log.substr(at, chunk));
        EXPECT_EQ(builder.Finish(), whole) << "in pieces of " << chunk;
    }
    return whole;
}

W Build(int mode, const S& log) { return BuildEveryWay(mode, log, Latin1); }

S NumberedLines(std::size_t count) {
    S log;
    for (std::size_t i = 0; i < count; ++i) log += "line " + std::to_string(i) + "\n";
    return log;
}

TEST(ResultText, TheTextOfEachMode) {
    ExpectRows<int, W>([](int mode) { return MissingLogText(mode, kTexts); }, {
        {0, L"Zorvi:Log file not found.\r\n"}, {3, L""},
        {1, L"Zorvi:Detect compiling error.(Log file not found.)\r\n"},
        {2, L"Zorvi:Generated 0 byte file.(Log file not found.)\r\n"},
        {4, L"Zorvi:Compiling was stopped.(Log file not found.)\r\n"},
    });
    ExpectRows<std::tuple<int, S>, W>(Build, {
        {{1, ""}, kErrorHeader}, {{2, "done\r\n"}, kZeroHeader + L"done\r\n"},
        {{0, "a\r\nb\nc"}, L"a\r\nb\r\nc\r\n"}, {{0, "\n\r\n\n"}, L"\r\n\r\n\r\n"},
        // Only LF ends a line; a CR elsewhere, the log's last byte included, is a character.
        {{0, "a\rb\n"}, L"a\rb\r\n"}, {{0, "a\r\r\n"}, L"a\r\r\n"}, {{0, "ab\r"}, L"ab\r\r\n"},
        // The buffer holds twice the log's length: a one-byte last line loses its LF.
        {{0, "x"}, L"x\r"}, {{0, "\nx"}, L"\r\nx\r"}, {{0, "xy"}, L"xy\r\n"},
        // A NUL is where the next line is written; the shown text ends at the first NUL.
        {{0, "ok\n\0tail\n"s}, L"ok\r\n"}, {{0, "ab\0cd\nef\n"s}, L"abef\r\n\n"},
        {{0, "ab\0cdefgh\nx\n"s}, L"abx\r\nefgh\r\n"},  // the rest of a longer line stays
        {{0, "ab\0cd\0efgh\nx\n"s}, L"abx\r\n"},  // an earlier NUL behind the new line ends it
        {{0, "ab\0\ncd\n"s}, L"abcd\r\n"}, {{0, "\0abc\n"s}, L""},
        {{1, "a\0b\n"s}, kErrorHeader + L"a"},
        // Other modes show the last line read, up to its first NUL.
        {{3, "first\nla\0st\n"s}, L"la"}, {{3, "a\nb\nlast"}, L"last"},
        {{-1, "a\r\nb\r\n"}, L"b"}, {{99, "a\n\n"}, L""},
    });
    // Each line is decoded alone, so a lead byte without its trail never takes the line end.
    ExpectRows<std::tuple<int, S>, W>([](int mode, const S& log) {
        return BuildEveryWay(mode, log, DoubleByte);
    }, {
        {{0, "a\x82\nb\x82\xa0\n"}, L"a?\r\nb\x4ea0\r\n"}, {{0, "a\x82\r\nb\r\n"}, L"a?\r\nb\r\n"},
        {{0, "ok\nab\x82"}, L"ok\r\nab?\r\n"}, {{0, "\x82"}, L"?\r"},
        {{1, "a\x82\r"}, kErrorHeader + L"a\x4e0d\r\n"},  // a CR ending the log is a trail byte
    });
}

TEST(ResultText, LongLogsAreCutTo65535CharactersVerdictIncluded) {
    for (const W& header : {W(), kErrorHeader, kZeroHeader}) {
        const int mode = header.empty() ? 0 : header == kErrorHeader ? 1 : 2;
        const W shown = header + L"a\r\n" + W(kResultTextLimit - 3 - header.size(), L'y');
        EXPECT_EQ(Build(mode, "a\n" + S(70000, 'y')), shown);
    }
    EXPECT_EQ(Build(0, NumberedLines(9000)).size(), kResultTextLimit);
    EXPECT_EQ(Build(3, NumberedLines(9000) + S(70000, 'y')), W(kResultTextLimit, L'y'));
    // 40000 double-byte characters are 80000 bytes but fit; 70000 do not.
    S wide;
    for (int i = 0; i < 40000; ++i) wide += "\x82\xa0";
    EXPECT_EQ(BuildEveryWay(0, wide + "\n", DoubleByte), W(40000, L'\x4ea0') + L"\r\n");
    for (int i = 0; i < 30000; ++i) wide += "\x82\xa0";
    for (const int mode : {0, 3}) {
        EXPECT_EQ(BuildEveryWay(mode, wide, DoubleByte), W(kResultTextLimit, L'\x4ea0')) << mode;
    }
}

TEST(ResultText, AHugeLogIsNeverHeldWhole) {
    // 64 MiB in one line and in many: the decoder sees only what can show, and
    // a plain log says early that the rest cannot matter.
    const S chunk(1 << 20, 'z');
    const S lines = NumberedLines(60000);
    for (const int mode : {0, 1, 3}) {
        SCOPED_TRACE(mode);
        std::size_t largest = 0;
        const DecodeLogBytes measuring = [&largest](std::string_view bytes) {
            largest = std::max(largest, bytes.size());
            return Latin1(bytes);
        };
        ResultTextBuilder oneLine(mode, kTexts, std::uint64_t{64} << 20, measuring);
        for (int i = 0; i < 64 && oneLine.WantsMore(); ++i) oneLine.Feed(chunk);
        const W text = oneLine.Finish();
        EXPECT_EQ(text.size(), kResultTextLimit);
        EXPECT_EQ(text.back(), L'z');
        EXPECT_LE(largest, 4 * kResultTextLimit + 4);
        ResultTextBuilder manyLines(mode, kTexts, lines.size(), Latin1);
        manyLines.Feed(lines);
        EXPECT_EQ(manyLines.WantsMore(), mode == 3);
    }
}

// The text, and whether it was read as UTF-8.
std::pair<W, bool> ReadLog(int mode, const S& log, std::size_t chunk) {
    LogTextBuilder builder(mode, kTexts, log.size(), DoubleByte);
    for (std::size_t at = 0; at < log.size() && builder.WantsMore(); at += chunk) {
        builder.Feed(std::string_view(log).substr(at, chunk));
    }
    W text = builder.Finish();
    return {text, builder.ReadAsUtf8()};
}

TEST(LogDecode, UsesUtf8OnlyForWellFormedUtf8) {
    const S a = "\xE3\x81\x82";  // U+3042
    for (const std::size_t chunk : {1u, 2u, 4096u}) {
        SCOPED_TRACE(chunk);
        ExpectRows<S, std::pair<W, bool>>([&](const S& log) { return ReadLog(0, log, chunk); }, {
            {"x " + a + "\r\n", {L"x \x3042\r\n", true}},
            {"\xEF\xBB\xBF" + a + "\n", {L"\x3042\r\n", true}},  // with a mark
            {"\xEF\xBB\xBFok\n", {L"ok\r\n", true}},
            {"ok\n", {L"ok\r\n", false}},  // ASCII goes through the code page
            {"\xF0\x9F\x8E\xB5\n", {L"\xD83C\xDFB5\r\n", true}},
            {a + "\0b\n"s, {L"\x3042", true}},  // a NUL ends the text
            {"\x82\xA0\x82\xA2\r\n", {L"\x4EA0\x4EA2\r\n", false}},
            {"caf\xE9\n", {L"caf?\r\n", false}},
            {"\xEF\xBB\xBF\x82\xA0\n", {L"\x4EBB\x4E82?\r\n", false}},  // a mark, then not UTF-8
            {a + "\n\x82\xA0\n", {L"\x4E81?\r\n\x4EA0\r\n", false}},
            {"\xC0\x80\n", {L"\x4E80\r\n", false}},        // overlong form
            {"\xED\xA0\x80\n", {L"\x4EA0?\r\n", false}},  // surrogate
            {"ok " + a.substr(0, 2), {L"ok \x4E81\r\n", false}},
            {"\xEF\xBB", {L"\x4EBB\r\n", false}},  // half a mark
        });
    }
}

TEST(LogDecode, TheCutAtTheLimitNeverSplitsACharacter) {
    S threeBytes, fourBytes;
    for (int i = 0; i < 70000; ++i) threeBytes += "\xE3\x81\x82";
    for (int i = 0; i < 40000; ++i) fourBytes += "\xF0\x9F\x8E\xB5";
    W pairs;
    for (std::size_t i = 0; i < kResultTextLimit / 2; ++i) pairs += L"\xD83C\xDFB5";
    for (const std::size_t chunk : {5u, 65536u}) {
        SCOPED_TRACE(chunk);
        ExpectRows<std::tuple<int, S>, W>([&](int mode, const S& log) {
            return ReadLog(mode, log, chunk).first;
        }, {
            {{0, threeBytes}, W(kResultTextLimit, wchar_t{0x3042})},
            {{1, threeBytes}, kErrorHeader + W(kResultTextLimit - kErrorHeader.size(), L'\x3042')},
            // 65535 is odd: the last pair does not fit and goes whole.
            {{0, fourBytes}, pairs}, {{3, fourBytes}, pairs},
        });
    }
}

TEST(LogDecode, AHugeUtf8LogIsReadOnlyAsFarAsItShows) {
    // 1 GiB of three-byte characters in lines: the reading stops once both
    // readings are full, long before the end.
    S chunk;
    while (chunk.size() < (1u << 20)) chunk += "\xE3\x81\x82\xE3\x81\x84 line\n";
    const std::uint64_t length = std::uint64_t{1} << 30;
    LogTextBuilder builder(0, kTexts, length, DoubleByte);
    std::uint64_t fed = 0;
    while (fed < length && builder.WantsMore()) {
        builder.Feed(chunk);
        fed += chunk.size();
    }
    EXPECT_LE(fed, std::uint64_t{4} << 20);
    const W text = builder.Finish();
    EXPECT_TRUE(builder.ReadAsUtf8());
    EXPECT_EQ(text.size(), kResultTextLimit);
    EXPECT_EQ(text.substr(0, 9), L"\x3042\x3044 line\r\n");
}

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
