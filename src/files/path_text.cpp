// Path text operations that need no file system: the platform-free half of mdlFile.
#include "files/path_text.h"

namespace zorvi::mdlFile {
namespace {

std::string AsciiUpper(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return upper;
}

std::string_view TrimBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool IsSlash(char c) { return c == '\\' || c == '/'; }

}  // namespace

std::string TrimNull(std::string_view text) {
    return std::string(text.substr(0, text.find('\0')));
}

std::string LongPathOf(std::string_view path, const FindEntryName& findEntryName) {
    std::string s = AsciiUpper(TrimBlanks(path));
    if (s.empty()) return {};

    std::string root;
    if (s.size() > 1 && IsSlash(s[0]) && IsSlash(s[1])) {
        // Network path: the root runs up to the backslash after the share name.
        const auto serverEnd = s.find('\\', 2);
        if (serverEnd == std::string::npos) return {};
        const auto shareEnd = s.find('\\', serverEnd + 1);
        if (shareEnd == std::string::npos) return {};
        root = s.substr(0, shareEnd);
    } else {
        const auto colon = s.find(':');
        if (colon != std::string::npos) root = s.substr(0, colon + 1);
    }
    if (root.size() + 1 >= s.size()) return root + "\\";

    if (s.back() != '\\') s += '\\';
    std::string built = root;
    auto slash = s.find('\\', root.size() + 1);
    while (slash != std::string::npos) {
        const auto name = findEntryName(s.substr(0, slash));
        if (!name) return {};
        built += "\\" + TrimNull(*name);
        slash = s.find('\\', slash + 1);
    }
    return built;
}

}  // namespace zorvi::mdlFile
