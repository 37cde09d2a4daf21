// Small text helpers shared by the platform-free logic, and the one fact they
// need about the ANSI code page: which bytes start a double-byte character.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zorvi {

// In a double-byte code page (Shift-JIS) the second byte of a character may
// be "\", "|", "~" or an ASCII letter: 表 is 0x95 0x5C. Every scan for such a
// byte steps over whole characters, so a second byte is never taken for one.
// The platform names the lead bytes of its code page once at start-up; until
// then (and in the native build) no byte leads.
using LeadByteTest = bool (*)(unsigned char byte);
void SetLeadByteTest(LeadByteTest test);  // nullptr: no lead bytes
bool IsLeadByte(unsigned char byte);

// 2 for a lead byte with a byte after it, else 1 (also at the end of the text).
std::size_t CharLength(std::string_view text, std::size_t at);
// Where the last character starts; npos for an empty text.
std::size_t LastCharStart(std::string_view text);
// Whether the text ends in the single-byte character c.
bool EndsWithChar(std::string_view text, char c);
// The single-byte character c at a character start, searching from from (a
// character start); npos when there is none.
std::size_t FindChar(std::string_view text, char c, std::size_t from = 0);
std::size_t FindLastChar(std::string_view text, char c);
// The first occurrence of what that starts at a character start at or after
// from and does not end inside a character; npos when there is none.
std::size_t FindText(std::string_view text, std::string_view what, std::size_t from = 0);
// Every single-byte character c becomes replacement.
std::string ReplaceChar(std::string_view text, char c, char replacement);
// The first count characters.
std::string_view LeadingChars(std::string_view text, std::size_t count);

// Lower-cases single-byte ASCII letters only: the bytes of double-byte
// characters pass through untouched.
std::string AsciiLower(std::string_view text);
std::string AsciiUpper(std::string_view text);

}  // namespace zorvi
