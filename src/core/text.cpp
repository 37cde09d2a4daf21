// Small text helpers shared by the platform-free logic, and the lead-byte
// test of the ANSI code page that every scan over path text relies on.
#include "core/text.h"

#include <atomic>

namespace zorvi {
namespace {

bool NoLeadBytes(unsigned char) { return false; }

// Set once by the platform before any text is looked at; atomic so that a
// test changing it never races a helper thread reading it.
std::atomic<LeadByteTest>& LeadByteTestSlot() {
    static std::atomic<LeadByteTest> test{NoLeadBytes};
    return test;
}

// Changes the case of single-byte ASCII letters between from and to.
std::string ChangeAsciiCase(std::string_view text, char from, char to) {
    std::string changed(text);
    for (std::size_t at = 0; at < changed.size(); at += CharLength(changed, at)) {
        char& c = changed[at];
        if (c >= from && c <= static_cast<char>(from + 25)) c = static_cast<char>(c - from + to);
    }
    return changed;
}

}  // namespace

void SetLeadByteTest(LeadByteTest test) {
    LeadByteTestSlot().store(test != nullptr ? test : NoLeadBytes, std::memory_order_relaxed);
}

bool IsLeadByte(unsigned char byte) {
    return LeadByteTestSlot().load(std::memory_order_relaxed)(byte);
}

std::size_t CharLength(std::string_view text, std::size_t at) {
    return at + 1 < text.size() && IsLeadByte(static_cast<unsigned char>(text[at])) ? 2 : 1;
}

std::size_t LastCharStart(std::string_view text) {
    std::size_t last = std::string_view::npos;
    for (std::size_t at = 0; at < text.size(); at += CharLength(text, at)) last = at;
    return last;
}

bool EndsWithChar(std::string_view text, char c) {
    return !text.empty() && text.back() == c && LastCharStart(text) == text.size() - 1;
}

std::size_t FindChar(std::string_view text, char c, std::size_t from) {
    for (std::size_t at = from; at < text.size(); at += CharLength(text, at)) {
        if (text[at] == c && CharLength(text, at) == 1) return at;
    }
    return std::string_view::npos;
}

std::size_t FindLastChar(std::string_view text, char c) {
    std::size_t found = std::string_view::npos;
    for (std::size_t at = 0; at < text.size(); at += CharLength(text, at)) {
        if (text[at] == c && CharLength(text, at) == 1) found = at;
    }
    return found;
}

std::size_t FindText(std::string_view text, std::string_view what, std::size_t from) {
    if (what.empty()) return from <= text.size() ? from : std::string_view::npos;
    // A byte search finds the candidates; only one where a character starts
    // counts, and the characters are stepped over once from "from" on.
    std::size_t at = from;
    for (std::size_t found = text.find(what, from); found != std::string_view::npos;
         found = text.find(what, found + 1)) {
        while (at < found) at += CharLength(text, at);
        if (at != found) continue;
        // The match must not take the first byte of a character that goes on after it.
        std::size_t end = at;
        while (end < at + what.size()) end += CharLength(text, end);
        if (end == at + what.size()) return at;
    }
    return std::string_view::npos;
}

std::string ReplaceChar(std::string_view text, char c, char replacement) {
    std::string replaced(text);
    for (std::size_t at = 0; at < replaced.size(); at += CharLength(replaced, at)) {
        if (replaced[at] == c && CharLength(replaced, at) == 1) replaced[at] = replacement;
    }
    return replaced;
}

std::string_view LeadingChars(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    for (std::size_t taken = 0; taken < count && end < text.size(); ++taken) {
        end += CharLength(text, end);
    }
    return text.substr(0, end);
}

std::string AsciiLower(std::string_view text) { return ChangeAsciiCase(text, 'A', 'a'); }
std::string AsciiUpper(std::string_view text) { return ChangeAsciiCase(text, 'a', 'A'); }

}  // namespace zorvi
