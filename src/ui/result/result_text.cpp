// The text the result window shows for a compiler's log.
#include "ui/result/result_text.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace zorvi {
namespace {

// No code page spends more than four bytes on one UTF-16 unit, so this many
// bytes of a line always decode to at least the characters that can be shown.
constexpr std::size_t kMaxBytesPerCharacter = 4;

bool IsVerdictMode(int mode) {
    return mode == kResultCompileError || mode == kResultZeroByteOutput || mode == kResultStopped;
}

const std::wstring& VerdictText(int mode, const ResultTexts& texts) {
    switch (mode) {
        case kResultCompileError: return texts.compileError;
        case kResultStopped: return texts.stopped;
        default: return texts.zeroByteOutput;
    }
}

// Cuts to the text box's limit. A cut there, or where the buffer filled up,
// may fall between the two units of a character beyond the first plane; no
// decoder ends a text on a first unit, so one found there is such a half,
// which would show as garbage.
void CutToLimit(std::wstring& text) {
    if (text.size() > kResultTextLimit) text.resize(kResultTextLimit);
    if (!text.empty() && text.back() >= 0xD800 && text.back() <= 0xDBFF) text.pop_back();
}

std::wstring CutAtNul(std::wstring text) {
    if (const auto nul = text.find(L'\0'); nul != std::wstring::npos) text.resize(nul);
    return text;
}

}  // namespace

std::wstring MissingLogText(int mode, const ResultTexts& texts) {
    if (mode == kResultPlain) return texts.title + L":" + texts.logNotFound + L"\r\n";
    if (!IsVerdictMode(mode)) return {};
    return texts.title + L":" + VerdictText(mode, texts) + L"(" + texts.logNotFound + L")\r\n";
}

std::wstring VerdictHeader(int mode, const ResultTexts& texts) {
    if (!IsVerdictMode(mode)) return {};
    return texts.title + L":" + VerdictText(mode, texts) + L"\r\n" +
           std::wstring(kResultRuleLength, L'-') + L"\r\n";
}

ResultTextBuilder::ResultTextBuilder(int mode, const ResultTexts& texts, std::uint64_t logLength,
                                     DecodeLogBytes decode)
    : lastLineOnly_(mode != kResultPlain && !IsVerdictMode(mode)),
      header_(VerdictHeader(mode, texts)),
      decode_(std::move(decode)),
      capacity_(logLength > std::numeric_limits<std::uint64_t>::max() / 2
                    ? std::numeric_limits<std::uint64_t>::max()
                    : logLength * 2) {
    // The verdict counts against the text box's limit, so less of the log fits.
    const std::size_t logRoom =
        header_.size() < kResultTextLimit ? kResultTextLimit - header_.size() : 0;
    kept_ = static_cast<std::size_t>(std::min<std::uint64_t>(capacity_, logRoom));
    settled_ = !lastLineOnly_ && kept_ == 0;
}

bool ResultTextBuilder::WantsMore() const { return lastLineOnly_ || !settled_; }

std::size_t ResultTextBuilder::CharactersWanted() const {
    if (lastLineOnly_) return kResultTextLimit;
    return kept_ - static_cast<std::size_t>(firstNul_);
}

void ResultTextBuilder::Feed(std::string_view bytes) {
    while (!bytes.empty() && WantsMore()) {
        const std::size_t lineEnd = bytes.find('\n');
        const std::string_view part = bytes.substr(0, lineEnd);
        // Past what can be shown, a line's bytes are only counted as cut.
        const std::size_t limit = kMaxBytesPerCharacter * CharactersWanted() + kMaxBytesPerCharacter;
        const std::size_t room = limit > line_.size() ? limit - line_.size() : 0;
        line_.append(part.substr(0, room));
        lineCut_ = lineCut_ || part.size() > room;
        lineStarted_ = lineStarted_ || !part.empty();
        if (lineEnd == std::string_view::npos) return;
        EndLine(true);
        bytes.remove_prefix(lineEnd + 1);
    }
}

void ResultTextBuilder::EndLine(bool atLineFeed) {
    // The CR of a CR LF belongs to the line end; when the line was cut, its
    // last byte is gone already and nothing may be taken off. A CR that ends
    // the log without an LF stays a character.
    if (atLineFeed && !lineCut_ && !line_.empty() && line_.back() == '\r') line_.pop_back();
    std::wstring line = decode_(line_);
    line_.clear();
    lineStarted_ = false;
    lineCut_ = false;
    if (lastLineOnly_) {
        lastLine_ = CutAtNul(std::move(line));
        CutToLimit(lastLine_);
    } else {
        WriteLine(line);
    }
}

void ResultTextBuilder::WriteLine(const std::wstring& line) {
    if (settled_) return;
    const std::size_t at = static_cast<std::size_t>(firstNul_);
    std::wstring written = line + L"\r\n";
    // The buffer does not grow: whatever passes its end is lost.
    const std::uint64_t room = capacity_ - firstNul_;
    if (written.size() > room) written.resize(static_cast<std::size_t>(room));
    const std::size_t visible = std::min(written.size(), kept_ - at);
    if (buffer_.size() < at + visible) buffer_.resize(at + visible, L'\0');
    std::copy_n(written.begin(), visible, buffer_.begin() + static_cast<std::ptrdiff_t>(at));

    const std::size_t nul = written.find(L'\0');
    if (nul < visible) {
        firstNul_ = at + nul;
        return;
    }
    if (visible < written.size() || at + visible >= kept_) {
        settled_ = true;
        firstNul_ = kept_;
        return;
    }
    // Text left by an earlier, longer line may stand behind this one, up to
    // the NUL that line brought or the end of everything written so far.
    const std::size_t next = buffer_.find(L'\0', at + written.size());
    firstNul_ = next == std::wstring::npos ? buffer_.size() : next;
    if (firstNul_ >= kept_) {
        settled_ = true;
        firstNul_ = kept_;
    }
}

std::wstring ResultTextBuilder::Finish() {
    if (lineStarted_ && WantsMore()) EndLine(false);
    if (lastLineOnly_) return lastLine_;
    std::wstring text =
        header_ + buffer_.substr(0, std::min<std::size_t>(static_cast<std::size_t>(firstNul_),
                                                          buffer_.size()));
    CutToLimit(text);
    return text;
}

std::wstring BuildResultText(int mode, const ResultTexts& texts, std::string_view log,
                             const DecodeLogBytes& decode) {
    ResultTextBuilder builder(mode, texts, log.size(), decode);
    builder.Feed(log);
    return builder.Finish();
}

}  // namespace zorvi
