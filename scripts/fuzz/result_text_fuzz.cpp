// Fuzzes the result window's text: the builder fed a log in pieces of random
// sizes must give what a plain model of the text box's buffer gives, never
// more than the box holds.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "ui/result/result_text.h"

using namespace zorvi;
using zorvi::fuzz::Check;

namespace {

// Code pages of several widths: one character per byte, two per byte (as
// many as a text box could be handed), one per double-byte pair, and eight
// per byte so that small logs reach the text box's limit too.
DecodeLogBytes Decoder(int kind) {
    return [kind](std::string_view bytes) {
        std::wstring text;
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            const auto byte = static_cast<unsigned char>(bytes[at]);
            switch (kind) {
                case 0: text += static_cast<wchar_t>(byte); break;
                case 1:
                    text += static_cast<wchar_t>(byte);
                    if (byte != 0) text += L'~';
                    break;
                case 2:
                    if (byte >= 0x81 && at + 1 < bytes.size()) {
                        text += static_cast<wchar_t>(byte << 8 | static_cast<unsigned char>(bytes[++at]));
                    } else {
                        text += static_cast<wchar_t>(byte);
                    }
                    break;
                default:
                    text += static_cast<wchar_t>(byte);
                    if (byte != 0) text.append(7, static_cast<wchar_t>(L'a' + byte % 26));
            }
        }
        return text;
    };
}

// A text never ends on the first unit of a pair: wherever a text is cut, that
// would be half a character, and the decoders of real code pages never end
// on one (these do).
std::wstring WithoutHalfAtEnd(std::wstring text) {
    if (!text.empty() && text.back() >= 0xD800 && text.back() <= 0xDBFF) text.pop_back();
    return text;
}

// The text box's buffer as the builder's contract describes it, kept whole.
std::wstring Model(int mode, const ResultTexts& texts, std::string_view log,
                   const DecodeLogBytes& decode) {
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    for (std::size_t lf = log.find('\n'); lf != std::string_view::npos; lf = log.find('\n', start)) {
        std::string_view line = log.substr(start, lf - start);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        lines.push_back(line);
        start = lf + 1;
    }
    if (start < log.size()) lines.push_back(log.substr(start));

    if (mode != kResultPlain && mode != kResultCompileError && mode != kResultZeroByteOutput &&
        mode != kResultStopped) {
        std::wstring last = lines.empty() ? std::wstring() : decode(lines.back());
        last = last.substr(0, last.find(L'\0'));
        return WithoutHalfAtEnd(last.substr(0, kResultTextLimit));
    }
    std::wstring buffer(2 * log.size(), L'\0');
    std::size_t firstNul = 0;
    for (const std::string_view line : lines) {
        const std::wstring written = decode(line) + L"\r\n";
        std::copy_n(written.begin(), std::min(written.size(), buffer.size() - firstNul),
                    buffer.begin() + static_cast<std::ptrdiff_t>(firstNul));
        firstNul = std::min(buffer.find(L'\0', firstNul), buffer.size());
    }
    return WithoutHalfAtEnd(
        (VerdictHeader(mode, texts) + buffer.substr(0, firstNul)).substr(0, kResultTextLimit));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider provider(data, size);
    const int mode = provider.ConsumeIntegralInRange<int>(-1, 5);
    const DecodeLogBytes decode = Decoder(provider.ConsumeIntegralInRange<int>(0, 3));
    ResultTexts texts{L"Zorvi", L"Detect compiling error.", L"Generated 0 byte file.",
                      L"Log file not found.", L"Compiling was stopped."};
    // A long title leaves little room for the log, so that small logs reach
    // the text box's limit too; one longer than the box leaves none.
    // Both are rare and costly, and so never what an input too short to say
    // anything gets.
    switch (provider.ConsumeIntegralInRange<int>(0, 31)) {
        case 30: texts.title.assign(kResultTextLimit - 400 + provider.ConsumeIntegral<std::uint8_t>(), L'T'); break;
        case 31: texts.title.assign(kResultTextLimit + 3, L'T'); break;
        default: break;
    }
    const int repeats = provider.ConsumeIntegralInRange<int>(1, 2);
    const std::size_t largestPiece = provider.PickValueInArray<std::size_t>({1, 2, 7, 64, 4096});
    std::minstd_rand pieces(provider.ConsumeIntegral<std::uint32_t>());
    std::string log;
    const std::string body = provider.ConsumeRemainingBytesAsString();
    for (int i = 0; i < repeats; ++i) log += body;

    // Read as the window reads a file: piece after piece until the builder
    // wants no more.
    ResultTextBuilder builder(mode, texts, log.size(), decode);
    for (std::size_t at = 0; at < log.size() && builder.WantsMore();) {
        const std::size_t piece = std::min<std::size_t>(1 + pieces() % largestPiece, log.size() - at);
        builder.Feed(std::string_view(log).substr(at, piece));
        at += piece;
    }
    const std::wstring shown = builder.Finish();
    Check(shown.size() <= kResultTextLimit, "the text fits the text box");
    Check(shown == BuildResultText(mode, texts, log, decode), "pieces of any size give one text");
    Check(shown == Model(mode, texts, log, decode), "the text is what the buffer shows");
    return 0;
}
