// The result window's text: verdicts, line ends, NULs, the 65535-character cut
// and reading a log in pieces.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/rows.h"
#include "ui/result/result_text.h"

namespace zorvi {
namespace {

using namespace std::string_literals;
using testing::ExpectRows;
using S = std::string;
using W = std::wstring;

const ResultTexts kTexts{L"Zorvi", L"Detect compiling error.", L"Generated 0 byte file.",
                         L"Log file not found.", L"Compiling was stopped."};
const W kErrorHeader = L"Zorvi:Detect compiling error.\r\n" + W(78, L'-') + L"\r\n";
const W kZeroHeader = L"Zorvi:Generated 0 byte file.\r\n" + W(78, L'-') + L"\r\n";

// One byte, one character: the single-byte code pages (ASCII logs only here).
W Latin1(std::string_view bytes) { return W(bytes.begin(), bytes.end()); }

// A double-byte code page in miniature: a byte of 0x80 or more leads, and with
// the byte after it makes one character; a lead byte at the end gives "?".
W DoubleByte(std::string_view bytes) {
    W text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const bool pair = byte >= 0x80 && i + 1 < bytes.size();
        text += byte < 0x80 ? byte : pair ? 0x3000 + static_cast<unsigned char>(bytes[++i]) : L'?';
    }
    return text;
}

W Build(int mode, const S& log) { return BuildResultText(mode, kTexts, log, Latin1); }

W BuildInChunks(int mode, std::string_view log, std::size_t chunk,
                const DecodeLogBytes& decode = Latin1) {
    ResultTextBuilder builder(mode, kTexts, log.size(), decode);
    for (std::size_t at = 0; at < log.size(); at += chunk) builder.Feed(log.substr(at, chunk));
    return builder.Finish();
}

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
        return BuildResultText(mode, kTexts, log, DoubleByte);
    }, {
        {{0, "a\x82\nb\x82\xa0\n"}, L"a?\r\nb\x30a0\r\n"}, {{0, "a\x82\r\nb\r\n"}, L"a?\r\nb\r\n"},
        {{0, "ok\nab\x82"}, L"ok\r\nab?\r\n"}, {{0, "\x82"}, L"?\r"},
        {{1, "a\x82\r"}, kErrorHeader + L"a\x300d\r\n"},  // a CR ending the log is a trail byte
    });
}

TEST(ResultText, LongLogsAreCutTo65535CharactersVerdictIncluded) {
    for (const W& header : {W(), kErrorHeader, kZeroHeader}) {
        const int mode = header.empty() ? 0 : header == kErrorHeader ? 1 : 2;
        const W shown = header + L"a\r\n" + W(kResultTextLimit - 3 - header.size(), L'y');
        EXPECT_EQ(Build(mode, "a\n" + S(70000, 'y')), shown);
    }
    // 40000 double-byte characters are 80000 bytes but fit; 70000 do not, in any pieces.
    S wide;
    for (int i = 0; i < 40000; ++i) wide += "\x82\xa0";
    EXPECT_EQ(BuildResultText(0, kTexts, wide + "\n", DoubleByte), W(40000, L'\x30a0') + L"\r\n");
    for (int i = 0; i < 30000; ++i) wide += "\x82\xa0";
    for (const std::size_t chunk : {std::size_t{7}, wide.size()}) {
        EXPECT_EQ(BuildInChunks(0, wide, chunk, DoubleByte), W(kResultTextLimit, L'\x30a0'));
        EXPECT_EQ(BuildInChunks(3, wide, chunk, DoubleByte), W(kResultTextLimit, L'\x30a0'));
    }
}

TEST(ResultText, ChunkSizeDoesNotChangeTheText) {
    const S logs[] = {"", "split CR LF\r\nacross\r\nchunks\r\nc", "bare\rcr\r\r\n\r",
                      "ab\0cdefgh\nx\nyz\0\n"s, "x", NumberedLines(9000), S(70000, 'y') + "\nz\n"};
    for (const auto& log : logs) {
        for (const int mode : {0, 1, 2, 3}) {
            const W whole = Build(mode, log);
            for (const std::size_t chunk : {1u, 7u, 4096u}) {
                SCOPED_TRACE(::testing::Message() << log.size() << " bytes, mode " << mode
                                                  << ", pieces of " << chunk);
                EXPECT_EQ(BuildInChunks(mode, log, chunk), whole);
            }
        }
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

}  // namespace
}  // namespace zorvi
