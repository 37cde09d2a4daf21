// Small text helpers shared by the platform-free logic.
#pragma once

#include <string>
#include <string_view>

namespace zorvi {

// Lower-cases ASCII letters only, so the lead and trail bytes of double-byte
// ANSI text (Shift-JIS paths) pass through untouched.
std::string AsciiLower(std::string_view text);

}  // namespace zorvi
