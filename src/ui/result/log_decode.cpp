// Reading a compiler's log in the encoding it was written in.
#include "ui/result/log_decode.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace zorvi {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr wchar_t kReplacement = 0xFFFD;

// The shape of a sequence by its first byte, after the table of well-formed
// UTF-8: how many bytes follow, the bits the first one carries and the range
// the second byte must lie in (narrower after E0, ED, F0 and F4, which shuts
// out overlong forms, surrogates and code points beyond U+10FFFF). A length
// of 0 marks a byte that cannot start a character.
struct Lead {
    int following = 0;
    unsigned bits = 0;
    unsigned char lower = 0x80;
    unsigned char upper = 0xBF;
};

constexpr Lead MakeLead(unsigned byte) {
    if (byte >= 0xC2 && byte <= 0xDF) return {1, byte & 0x1Fu};
    if (byte == 0xE0) return {2, 0, 0xA0, 0xBF};
    if (byte == 0xED) return {2, 0x0D, 0x80, 0x9F};
    if (byte >= 0xE1 && byte <= 0xEF) return {2, byte & 0x0Fu};
    if (byte == 0xF0) return {3, 0, 0x90, 0xBF};
    if (byte == 0xF4) return {3, 4, 0x80, 0x8F};
    if (byte >= 0xF1 && byte <= 0xF3) return {3, byte & 0x07u};
    return {};
}

constexpr std::array<Lead, 256> MakeLeads() {
    std::array<Lead, 256> leads{};
    for (unsigned byte = 0; byte < 256; ++byte) leads[byte] = MakeLead(byte);
    return leads;
}

// Looked up, not computed: every byte of a log passes here.
constexpr std::array<Lead, 256> kLeads = MakeLeads();

bool IsContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

// The bytes after a lead that stand all in one piece: whether they make a
// well-formed character, and which.
bool WholeCharacter(const unsigned char* at, const Lead& lead, char32_t& character) {
    if (at[1] < lead.lower || at[1] > lead.upper) return false;
    character = (lead.bits << 6) | (at[1] & 0x3Fu);
    for (int i = 2; i <= lead.following; ++i) {
        if (!IsContinuation(at[i])) return false;
        character = (character << 6) | (at[i] & 0x3Fu);
    }
    return true;
}

// Skips ASCII eight bytes at a time, as long as it lasts.
const unsigned char* SkipAscii(const unsigned char* at, const unsigned char* end) {
    while (end - at >= 8) {
        std::uint64_t eight;
        std::memcpy(&eight, at, 8);
        if ((eight & 0x8080808080808080ULL) != 0) break;
        at += 8;
    }
    return at;
}

}  // namespace

void Utf8Check::Feed(std::string_view bytes) {
    const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto* const end = at + bytes.size();
    // First the rest of a character that the last piece left open.
    for (; valid_ && needed_ > 0 && at < end; ++at) {
        if (*at < lower_ || *at > upper_) valid_ = false;
        lower_ = 0x80;
        upper_ = 0xBF;
        --needed_;
    }
    while (valid_ && at < end) {
        at = SkipAscii(at, end);
        if (at == end) break;
        if (*at < 0x80) {
            ++at;
            continue;
        }
        sawNonAscii_ = true;
        const Lead& lead = kLeads[*at];
        char32_t character = 0;
        if (lead.following == 0) {
            valid_ = false;
        } else if (end - at > lead.following) {
            valid_ = WholeCharacter(at, lead, character);
            at += lead.following + 1;
        } else {
            // The character goes on in the next piece.
            needed_ = lead.following;
            lower_ = lead.lower;
            upper_ = lead.upper;
            Feed(std::string_view(reinterpret_cast<const char*>(at + 1),
                                  static_cast<std::size_t>(end - at - 1)));
            return;
        }
    }
}

std::wstring DecodeUtf8(std::string_view bytes) {
    // Never more units than bytes: written in place, then cut to length.
    std::wstring text(bytes.size(), L'\0');
    wchar_t* out = text.data();
    const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto* const end = at + bytes.size();
    while (at < end) {
        if (*at < 0x80) {
            *out++ = static_cast<wchar_t>(*at++);
            continue;
        }
        const Lead& lead = kLeads[*at];
        char32_t character = 0;
        if (lead.following > 0 && end - at > lead.following &&
            WholeCharacter(at, lead, character)) {
            // Characters beyond the first plane take two units, from four bytes.
            if (character < 0x10000) {
                *out++ = static_cast<wchar_t>(character);
            } else {
                character -= 0x10000;
                *out++ = static_cast<wchar_t>(0xD800 + (character >> 10));
                *out++ = static_cast<wchar_t>(0xDC00 + (character & 0x3FF));
            }
            at += lead.following + 1;
            continue;
        }
        // Ill-formed, or cut off by the end of the piece: the longest start
        // of a character that is still right counts as one.
        std::ptrdiff_t taken = 1;
        if (lead.following > 0 && taken < end - at && at[1] >= lead.lower && at[1] <= lead.upper) {
            for (++taken; taken <= lead.following && taken < end - at && IsContinuation(at[taken]);
                 ++taken) {
            }
        }
        // A part of a character at the end shows nothing; elsewhere it is replaced.
        if (lead.following > 0 && at + taken == end && taken <= lead.following) break;
        *out++ = kReplacement;
        at += taken;
    }
    text.resize(static_cast<std::size_t>(out - text.data()));
    return text;
}

LogTextBuilder::LogTextBuilder(int mode, const ResultTexts& texts, std::uint64_t logLength,
                               DecodeLogBytes codePage)
    : logLength_(logLength),
      utf8_(std::in_place, mode, texts, logLength,
            [](std::string_view bytes) { return DecodeUtf8(bytes); }),
      codePage_(mode, texts, logLength, std::move(codePage)) {}

void LogTextBuilder::Feed(std::string_view bytes) {
    seen_ += bytes.size();
    if (!headTaken_) {
        const std::size_t take = std::min(kByteOrderMark.size() - head_.size(), bytes.size());
        head_.append(bytes.substr(0, take));
        bytes.remove_prefix(take);
        // A mark may arrive a byte at a time.
        if (head_.size() < kByteOrderMark.size() && kByteOrderMark.starts_with(head_)) return;
        TakeHead();
    }
    FeedBoth(bytes);
}

void LogTextBuilder::TakeHead() {
    headTaken_ = true;
    marked_ = head_ == kByteOrderMark;
    check_.Feed(head_);
    codePage_.Feed(head_);
    if (!check_.Valid()) {
        utf8_.reset();
    } else if (!marked_) {
        utf8_->Feed(head_);
    }
    head_.clear();
}

void LogTextBuilder::FeedBoth(std::string_view bytes) {
    if (bytes.empty()) return;
    check_.Feed(bytes);
    // Once a byte is out of place the UTF-8 reading has lost; it costs nothing more.
    if (utf8_ && !check_.Valid()) utf8_.reset();
    if (utf8_) utf8_->Feed(bytes);
    codePage_.Feed(bytes);
}

bool LogTextBuilder::WantsMore() const {
    return !headTaken_ || codePage_.WantsMore() || (utf8_ && utf8_->WantsMore());
}

std::wstring LogTextBuilder::Finish() {
    if (!headTaken_) TakeHead();
    // A character left open at the very end of the log is a broken one; where
    // the reading stopped early, the rest of it was simply never read.
    const bool wholeLogRead = seen_ >= logLength_;
    readAsUtf8_ = utf8_.has_value() && (check_.Complete() || !wholeLogRead) &&
                  (marked_ || check_.SawNonAscii());
    return readAsUtf8_ ? utf8_->Finish() : codePage_.Finish();
}

}  // namespace zorvi
