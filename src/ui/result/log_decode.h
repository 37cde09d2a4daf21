// Reading a compiler's log in the encoding it was written in: UTF-8 when its
// bytes are well-formed UTF-8, else the code page the user named.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ui/result/result_text.h"

namespace zorvi {

// Checks bytes for well-formed UTF-8 as they arrive, in pieces of any size,
// with no memory beyond the character being read.
class Utf8Check {
public:
    void Feed(std::string_view bytes);
    // Nothing ill-formed so far; a character that is still open counts as fine.
    bool Valid() const { return valid_; }
    // No character is left open.
    bool Complete() const { return needed_ == 0; }
    // A byte of 0x80 or more was seen.
    bool SawNonAscii() const { return sawNonAscii_; }

private:
    int needed_ = 0;  // continuation bytes still to come
    unsigned char lower_ = 0x80;  // the range the next continuation byte must lie in
    unsigned char upper_ = 0xBF;
    bool valid_ = true;
    bool sawNonAscii_ = false;
};

// UTF-8 to UTF-16. A character cut off at the end is left out; an ill-formed
// byte becomes U+FFFD. NUL bytes stay NUL characters.
std::wstring DecodeUtf8(std::string_view bytes);

// The result window's text of a log whose encoding is found while it is read.
// The log is read both ways at once, so nothing has to be read twice: as UTF-8
// (a byte-order mark at its start dropped) and through the code page decoder.
// UTF-8 wins when every byte read is well-formed UTF-8 and either a mark or a
// byte of 0x80 or more was seen; plain ASCII goes through the code page, which
// reads it the same way, or correctly for the 7-bit code pages. Reading may
// stop once both texts are complete; the part never read does not count.
class LogTextBuilder {
public:
    LogTextBuilder(int mode, const ResultTexts& texts, std::uint64_t logLength,
                   DecodeLogBytes codePage);

    void Feed(std::string_view bytes);
    bool WantsMore() const;
    std::wstring Finish();
    // After Finish: whether the text was read as UTF-8.
    bool ReadAsUtf8() const { return readAsUtf8_; }

private:
    void FeedBoth(std::string_view bytes);
    void TakeHead();

    std::uint64_t logLength_;
    std::uint64_t seen_ = 0;
    std::string head_;  // the first bytes, held until it is known whether they are a mark
    bool headTaken_ = false;
    bool marked_ = false;
    Utf8Check check_;
    std::optional<ResultTextBuilder> utf8_;  // dropped once the log proves not to be UTF-8
    ResultTextBuilder codePage_;
    bool readAsUtf8_ = false;
};

}  // namespace zorvi
