// Which line of the target a line of the compiler's log points at.
#include "ui/result/error_line.h"

#include <string>

#include "core/text.h"

namespace zorvi {
namespace {

constexpr std::size_t kMaxLineDigits = 9;  // stays within an int

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// What may stand before a file name: nothing, a folder separator, a drive's
// colon, a quote, a blank or an opening bracket. Anything else would make the
// name the tail of another one (mysong.mml is not song.mml).
bool StartsName(std::string_view text, std::size_t previous, std::size_t at) {
    if (at == 0) return true;
    return at - previous == 1 && std::string_view("\\/:\"' \t([<").find(text[previous]) !=
                                     std::string_view::npos;
}

// The number in "(9" or ":9:" at the start of rest.
std::optional<int> LineNumberAt(std::string_view rest) {
    if (rest.empty() || (rest.front() != '(' && rest.front() != ':')) return std::nullopt;
    std::size_t digits = 1;
    while (digits < rest.size() && IsDigit(rest[digits])) ++digits;
    const std::size_t count = digits - 1;
    if (count == 0 || count > kMaxLineDigits) return std::nullopt;
    if (rest.front() == ':' && (digits == rest.size() || rest[digits] != ':')) return std::nullopt;
    const int line = std::stoi(std::string(rest.substr(1, count)));
    if (line == 0) return std::nullopt;
    return line;
}

}  // namespace

std::optional<int> ErrorLineFor(std::string_view logLine, std::string_view targetName) {
    if (targetName.empty()) return std::nullopt;
    // Lower-casing ASCII letters keeps every byte where it was.
    const std::string line = AsciiLower(logLine);
    const std::string name = AsciiLower(targetName);
    std::size_t previous = 0;
    // Whole characters only: the second byte of a double-byte character is
    // never taken for the "\" before a name.
    for (std::size_t at = 0; at < line.size(); previous = at, at += CharLength(line, at)) {
        if (line.compare(at, name.size(), name) != 0 || !StartsName(line, previous, at)) continue;
        if (const auto number = LineNumberAt(std::string_view(line).substr(at + name.size()))) {
            return number;
        }
    }
    return std::nullopt;
}

}  // namespace zorvi
