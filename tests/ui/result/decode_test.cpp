// Reading a log as UTF-8 or in its code page: the choice, the mark, the cut
// at the text box's limit and the reading of a huge log.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "ui/result/log_decode.h"

namespace zorvi {
namespace {

using namespace std::string_literals;

const ResultTexts kTexts{L"Zorvi", L"Detect compiling error.", L"Generated 0 byte file.",
                         L"Log file not found."};
const std::wstring kErrorHeader =
    L"Zorvi:Detect compiling error.\r\n" + std::wstring(78, L'-') + L"\r\n";

// The code page stands in as a double-byte one in miniature: a byte of 0x80
// or more leads and, with the byte after it, makes one character (U+4E00 +
// the trail byte); so a log read in the code page is told apart from one
// read as UTF-8.
std::wstring CodePage(std::string_view bytes) {
    std::wstring text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (byte < 0x80) {
            text += static_cast<wchar_t>(byte);
        } else if (i + 1 < bytes.size()) {
            text += static_cast<wchar_t>(0x4E00 + static_cast<unsigned char>(bytes[++i]));
        } else {
            text += L'?';
        }
    }
    return text;
}

// The text, and whether it was read as UTF-8.
std::pair<std::wstring, bool> ReadLog(int mode, const std::string& log, std::size_t chunk) {
    LogTextBuilder builder(mode, kTexts, log.size(), CodePage);
    for (std::size_t at = 0; at < log.size() && builder.WantsMore(); at += chunk) {
        builder.Feed(std::string_view(log).substr(at, chunk));
    }
    std::wstring text = builder.Finish();
    return {text, builder.ReadAsUtf8()};
}

TEST(LogDecode, UsesUtf8OnlyForWellFormedUtf8) {
    const std::string a = "\xE3\x81\x82";  // U+3042
    const struct {
        const char* name;
        int mode;
        std::string log;
        std::wstring expected;
        bool utf8;
    } cases[] = {
        {"UTF-8 without a mark", 0, "x " + a + "\r\n", L"x \x3042\r\n", true},
        {"UTF-8 with a mark", 0, "\xEF\xBB\xBF" + a + "\n", L"\x3042\r\n", true},
        {"a mark before ASCII", 0, "\xEF\xBB\xBFok\n", L"ok\r\n", true},
        {"ASCII goes through the code page", 0, "ok\n", L"ok\r\n", false},
        {"four-byte character", 0, "\xF0\x9F\x8E\xB5\n", L"\xD83C\xDFB5\r\n", true},
        {"NUL ends the text", 0, a + "\0b\n"s, L"\x3042", true},
        {"Shift-JIS", 0, "\x82\xA0\x82\xA2\r\n", L"\x4EA0\x4EA2\r\n", false},
        {"Latin-1", 0, "caf\xE9\n", L"caf?\r\n", false},
        {"a mark, then not UTF-8", 0, "\xEF\xBB\xBF\x82\xA0\n", L"\x4EBB\x4E82?\r\n", false},
        {"UTF-8 then Shift-JIS", 0, a + "\n\x82\xA0\n", L"\x4E81?\r\n\x4EA0\r\n", false},
        {"overlong form", 0, "\xC0\x80\n", L"\x4E80\r\n", false},
        {"surrogate", 0, "\xED\xA0\x80\n", L"\x4EA0?\r\n", false},
        {"cut at the very end", 0, "ok " + a.substr(0, 2), L"ok \x4E81\r\n", false},
        {"half a mark", 0, "\xEF\xBB", L"\x4EBB\r\n", false},
    };
    for (const auto& c : cases) {
        for (const std::size_t chunk : {std::size_t{1}, std::size_t{2}, std::size_t{4096}}) {
            SCOPED_TRACE(testing::Message() << c.name << ", chunks of " << chunk);
            EXPECT_EQ(ReadLog(c.mode, c.log, chunk), std::pair(c.expected, c.utf8));
        }
    }
}

TEST(LogDecode, TheCutAtTheLimitNeverSplitsACharacter) {
    std::string threeBytes, fourBytes;
    for (int i = 0; i < 70000; ++i) threeBytes += "\xE3\x81\x82";
    for (int i = 0; i < 40000; ++i) fourBytes += "\xF0\x9F\x8E\xB5";
    std::wstring pairs;
    for (std::size_t i = 0; i < kResultTextLimit / 2; ++i) pairs += L"\xD83C\xDFB5";
    const struct {
        const char* name;
        int mode;
        const std::string& log;
        std::wstring expected;
    } cases[] = {
        {"three-byte characters", 0, threeBytes, std::wstring(kResultTextLimit, wchar_t{0x3042})},
        {"after the verdict", 1, threeBytes,
         kErrorHeader + std::wstring(kResultTextLimit - kErrorHeader.size(), wchar_t{0x3042})},
        // 65535 is odd: the last pair does not fit and goes whole.
        {"pairs of units", 0, fourBytes, pairs},
        {"last line only", 3, fourBytes, pairs},
    };
    for (const auto& c : cases) {
        for (const std::size_t chunk : {std::size_t{5}, std::size_t{65536}}) {
            SCOPED_TRACE(testing::Message() << c.name << ", chunks of " << chunk);
            EXPECT_EQ(ReadLog(c.mode, c.log, chunk).first, c.expected);
        }
    }
}

TEST(LogDecode, AHugeUtf8LogIsReadOnlyAsFarAsItShows) {
    // 1 GiB of three-byte characters in lines: the reading stops once both
    // readings are full, long before the end.
    std::string chunk;
    while (chunk.size() < (1u << 20)) chunk += "\xE3\x81\x82\xE3\x81\x84 line\n";
    const std::uint64_t length = std::uint64_t{1} << 30;
    LogTextBuilder builder(0, kTexts, length, CodePage);
    std::uint64_t fed = 0;
    while (fed < length && builder.WantsMore()) {
        builder.Feed(chunk);
        fed += chunk.size();
    }
    EXPECT_LE(fed, std::uint64_t{4} << 20);
    const std::wstring text = builder.Finish();
    EXPECT_TRUE(builder.ReadAsUtf8());
    EXPECT_EQ(text.size(), kResultTextLimit);
    EXPECT_EQ(text.substr(0, 9), L"\x3042\x3044 line\r\n");
}

}  // namespace
}  // namespace zorvi
