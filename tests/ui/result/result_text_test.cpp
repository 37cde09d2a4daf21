// The result window's text: verdicts, line ends, NULs, the cut and streaming.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "ui/result/result_text.h"

namespace zorvi {
namespace {

const ResultTexts kTexts{L"Zorvi", L"Detect compiling error.", L"Generated 0 byte file.",
                         L"Log file not found."};
const std::wstring kRule(78, L'-');
const std::wstring kErrorHeader = L"Zorvi:Detect compiling error.\r\n" + kRule + L"\r\n";
const std::wstring kZeroHeader = L"Zorvi:Generated 0 byte file.\r\n" + kRule + L"\r\n";

// One byte, one character: the single-byte code pages.
std::wstring Latin1(std::string_view bytes) {
    std::wstring text;
    for (const char c : bytes) text += static_cast<wchar_t>(static_cast<unsigned char>(c));
    return text;
}

// A double-byte code page in miniature: a byte of 0x80 or more leads, and with
// the byte after it makes one character; a lead byte at the end gives "?".
std::wstring DoubleByte(std::string_view bytes) {
    std::wstring text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (byte < 0x80) {
            text += static_cast<wchar_t>(byte);
        } else if (i + 1 < bytes.size()) {
            text += static_cast<wchar_t>(0x3000 + static_cast<unsigned char>(bytes[++i]));
        } else {
            text += L'?';
        }
    }
    return text;
}

std::wstring Build(int mode, std::string_view log) { return BuildResultText(mode, kTexts, log, Latin1); }

std::wstring BuildInChunks(int mode, std::string_view log, std::size_t chunk,
                           const DecodeLogBytes& decode = Latin1) {
    ResultTextBuilder builder(mode, kTexts, log.size(), decode);
    for (std::size_t at = 0; at < log.size(); at += chunk) builder.Feed(log.substr(at, chunk));
    return builder.Finish();
}

// A log of numbered LF-ended lines, and what it shows before any cut.
std::string NumberedLines(std::size_t count) {
    std::string log;
    for (std::size_t i = 0; i < count; ++i) log += "line " + std::to_string(i) + "\n";
    return log;
}
std::wstring WithCrLf(const std::string& log) {
    std::wstring text;
    for (const char c : log) {
        if (c == '\n') text += L'\r';
        text += static_cast<wchar_t>(static_cast<unsigned char>(c));
    }
    return text;
}

TEST(ResultText, MissingLogGivesTheNoticeOfEachMode) {
    const struct {
        int mode;
        const wchar_t* expected;
    } cases[] = {
        {0, L"Zorvi:Log file not found.\r\n"},
        {1, L"Zorvi:Detect compiling error.(Log file not found.)\r\n"},
        {2, L"Zorvi:Generated 0 byte file.(Log file not found.)\r\n"},
        {3, L""},
        {-1, L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mode);
        EXPECT_EQ(MissingLogText(c.mode, kTexts), c.expected);
    }
}

TEST(ResultText, LinesComeOutWithCrLf) {
    using namespace std::string_literals;
    const struct {
        const char* name;
        int mode;
        std::string log;
        std::wstring expected;
        DecodeLogBytes decode = Latin1;
    } cases[] = {
        {"empty, plain", 0, "", L""},
        {"empty, compile error", 1, "", kErrorHeader},
        {"empty, zero bytes", 2, "", kZeroHeader},
        {"LF", 0, "a\nbc\n", L"a\r\nbc\r\n"},
        {"CR LF", 0, "a\r\nbc\r\n", L"a\r\nbc\r\n"},
        {"unterminated last line", 0, "a\nbc", L"a\r\nbc\r\n"},
        {"mixed ends", 0, "a\r\nb\nc", L"a\r\nb\r\nc\r\n"},
        {"empty lines", 0, "\n\r\n\n", L"\r\n\r\n\r\n"},
        {"verdict before the log", 1, "x.mml(3): error\n",
         kErrorHeader + L"x.mml(3): error\r\n"},
        {"zero-byte verdict", 2, "done\r\n", kZeroHeader + L"done\r\n"},
        // Only LF ends a line; a CR elsewhere is a character of the line.
        {"bare CR inside a line", 0, "a\rb\n", L"a\rb\r\n"},
        {"CR before CR LF", 0, "a\r\r\n", L"a\r\r\n"},
        {"CR at the very end", 0, "ab\r", L"ab\r\r\n"},
        // The buffer holds twice the log's length: a one-byte log loses its LF.
        {"one byte", 0, "x", L"x\r"},
        {"one byte after an empty line", 0, "\nx", L"\r\nx\r"},
        {"two bytes", 0, "xy", L"xy\r\n"},
        // Invalid double-byte text: a lead byte without its trail byte. Each
        // line is decoded alone, so the line end is never taken as a trail.
        {"lone lead byte before LF", 0, "a\x82\nb\x82\xa0\n", L"a?\r\nb\x30a0\r\n", DoubleByte},
        {"lone lead byte before CR LF", 0, "a\x82\r\nb\r\n", L"a?\r\nb\r\n", DoubleByte},
        {"lone lead byte ending the log", 0, "ok\nab\x82", L"ok\r\nab?\r\n", DoubleByte},
        {"lone lead byte as the whole log", 0, "\x82", L"?\r", DoubleByte},
        // A CR ending the log is a character of the line, here a trail byte.
        {"lead byte before a CR ending the log", 1, "a\x82\r", kErrorHeader + L"a\x300d\r\n",
         DoubleByte},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(BuildResultText(c.mode, kTexts, c.log, c.decode), c.expected);
    }
}

TEST(ResultText, ANulIsWhereTheNextLineIsWrittenAndTheShownTextEnds) {
    using namespace std::string_literals;
    const struct {
        const char* name;
        int mode;
        std::string log;
        std::wstring expected;
    } cases[] = {
        {"NUL in the last line", 0, "ok\n\0tail\n"s, L"ok\r\n"},
        {"next line overwrites from the NUL", 0, "ab\0cd\nef\n"s, L"abef\r\n\n"},
        {"longer rest of an earlier line stays", 0, "ab\0cdefgh\nx\n"s, L"abx\r\nefgh\r\n"},
        {"an earlier NUL behind the new line ends it", 0, "ab\0cd\0efgh\nx\n"s, L"abx\r\n"},
        {"NUL right before the line end", 0, "ab\0\ncd\n"s, L"abcd\r\n"},
        {"NUL first", 0, "\0abc\n"s, L""},
        {"with a verdict", 1, "a\0b\n"s, kErrorHeader + L"a"},
        {"last line only", 3, "first\nla\0st\n"s, L"la"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Build(c.mode, c.log), c.expected);
    }
}

TEST(ResultText, OtherModesShowTheLastLineRead) {
    const struct {
        int mode;
        std::string log;
        std::wstring expected;
    } cases[] = {
        {3, "a\nb\nc\n", L"c"},
        {3, "a\nb\nlast", L"last"},
        {-1, "a\r\nb\r\n", L"b"},
        {99, "a\n\n", L""},
        {3, "", L""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mode);
        EXPECT_EQ(Build(c.mode, c.log), c.expected);
    }
}

TEST(ResultText, LongLogsAreCutTo65535CharactersVerdictIncluded) {
    const std::string log = NumberedLines(20000);
    const std::wstring full = WithCrLf(log);
    ASSERT_GT(full.size(), kResultTextLimit);
    const struct {
        int mode;
        std::wstring header;
    } cases[] = {{0, L""}, {1, kErrorHeader}, {2, kZeroHeader}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mode);
        const std::wstring text = Build(c.mode, log);
        ASSERT_EQ(text.size(), kResultTextLimit);
        EXPECT_EQ(text, c.header + full.substr(0, kResultTextLimit - c.header.size()));
    }
}

TEST(ResultText, TheCutCountsCharactersNotBytes) {
    // 40000 double-byte characters: 80000 bytes, but only 40000 characters.
    std::string wide;
    for (int i = 0; i < 40000; ++i) wide += "\x82\xa0";
    const std::wstring text = BuildResultText(0, kTexts, wide + "\n", DoubleByte);
    EXPECT_EQ(text, std::wstring(40000, wchar_t{0x30a0}) + L"\r\n");

    std::string longer;
    for (int i = 0; i < 70000; ++i) longer += "\x82\xa0";
    for (const std::size_t chunk : {std::size_t{7}, std::size_t{4096}, longer.size()}) {
        SCOPED_TRACE(chunk);
        EXPECT_EQ(BuildInChunks(0, longer, chunk, DoubleByte),
                  std::wstring(kResultTextLimit, wchar_t{0x30a0}));
        EXPECT_EQ(BuildInChunks(3, longer, chunk, DoubleByte),
                  std::wstring(kResultTextLimit, wchar_t{0x30a0}));
    }
}

TEST(ResultText, ChunkSizeDoesNotChangeTheText) {
    using namespace std::string_literals;
    const std::string logs[] = {
        "",
        "a\r\nb\nc",
        "split CR LF\r\nacross\r\nchunks\r\n",
        "bare\rcr\r\r\n\r",
        "ab\0cdefgh\nx\nyz\0\n"s,
        "x",
        NumberedLines(9000),
        std::string(70000, 'y') + "\nshort\n",
    };
    for (const auto& log : logs) {
        for (const int mode : {0, 1, 2, 3}) {
            const std::wstring whole = Build(mode, log);
            for (const std::size_t chunk : {1u, 7u, 4096u}) {
                SCOPED_TRACE(testing::Message() << "log of " << log.size() << " bytes, mode "
                                                << mode << ", chunks of " << chunk);
                EXPECT_EQ(BuildInChunks(mode, log, chunk), whole);
            }
        }
    }
}

TEST(ResultText, AHugeLogIsNeverHeldWhole) {
    // 64 MiB in one line and in many: the decoder only ever sees what can be
    // shown, and a plain log says early that the rest cannot matter.
    const std::string chunk(1 << 20, 'z');
    const std::string lines = NumberedLines(60000);
    for (const int mode : {0, 1, 3}) {
        SCOPED_TRACE(mode);
        std::size_t largest = 0;
        const DecodeLogBytes measuring = [&largest](std::string_view bytes) {
            largest = std::max(largest, bytes.size());
            return Latin1(bytes);
        };
        ResultTextBuilder oneLine(mode, kTexts, std::uint64_t{64} << 20, measuring);
        for (int i = 0; i < 64 && oneLine.WantsMore(); ++i) oneLine.Feed(chunk);
        const std::wstring text = oneLine.Finish();
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
