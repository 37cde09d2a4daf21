// Path text operations that need no file system: the platform-free half of mdlFile.
#include "files/path_text.h"

#include <algorithm>

#include "core/text.h"

namespace zorvi::mdlFile {
namespace {

// PathAddBackslashA refuses texts this long (MAX_PATH).
constexpr std::size_t kShellMaxPath = 260;

// Captions and menus show paths shorter than this as they are.
constexpr std::size_t kDisplayWidth = 48;

std::string_view TrimBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool IsSlash(char c) { return c == '\\' || c == '/'; }

// PathIsRootA's verdict on a path ending in "\": a drive root "X:\", a lone
// "\", or "\\" followed by at most one more "\" (server or server\share),
// however long.
bool IsRootEndingInBackslash(std::string_view path) {
    if (path.empty()) return false;
    if (path[0] == '\\') {
        if (path.size() == 1) return true;
        if (path[1] != '\\') return false;
        const auto first = FindChar(path, '\\', 2);
        return first == std::string_view::npos ||
               FindChar(path, '\\', first + 1) == std::string_view::npos;
    }
    return path.size() == 3 && !IsLeadByte(static_cast<unsigned char>(path[0])) &&
           path[1] == ':' && path[2] == '\\';
}

}  // namespace

std::string TrimNull(std::string_view text) {
    return std::string(text.substr(0, text.find('\0')));
}

std::string GetFileName(std::string_view path) {
    const auto slash = FindLastChar(path, '\\');
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string GetExtension(std::string_view path) {
    const std::string name = GetFileName(path);
    const auto dot = FindLastChar(name, '.');
    return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

std::string GetBaseName(std::string_view path) {
    const std::string name = GetFileName(path);
    // The extension and the character before it go: the dot, or for a name
    // without a dot its last character (both bytes of a double-byte one).
    const auto dot = FindLastChar(name, '.');
    if (dot != std::string::npos) return name.substr(0, dot);
    if (name.empty()) return {};
    return name.substr(0, LastCharStart(name));
}

std::string AppendBackslash(std::string_view path) {
    std::string text = TrimNull(path);
    if (text.size() >= kShellMaxPath) return {};
    if (!text.empty() && !EndsWithChar(text, '\\')) text += '\\';
    return text;
}

std::string StripBackslash(std::string_view path) {
    std::string text = TrimNull(path);
    if (EndsWithChar(text, '\\') && !IsRootEndingInBackslash(text)) text.pop_back();
    return text;
}

std::string StripFileSpec(std::string_view path) {
    std::string text = TrimNull(path);
    // Walk as the platform does, a whole character at a time: one or two
    // leading backslashes are kept, a drive colon keeps itself and the
    // backslash after it (and the character after the colon is stepped over),
    // otherwise the text is cut at the last backslash (or emptied when there is none).
    std::size_t i = 0;
    std::size_t cut = 0;
    if (i < text.size() && text[i] == '\\') cut = ++i;
    if (i < text.size() && text[i] == '\\') cut = ++i;
    while (i < text.size()) {
        if (CharLength(text, i) == 1 && text[i] == '\\') {
            cut = i;
        } else if (CharLength(text, i) == 1 && text[i] == ':') {
            cut = ++i;
            if (i < text.size() && CharLength(text, i) == 1 && text[i] == '\\') ++cut;
        }
        if (i < text.size()) i += CharLength(text, i);
    }
    if (cut < text.size()) text.erase(cut);
    return text;
}

std::string ChangeExtension(std::string_view path, std::string_view extension) {
    // The folder as GetFolderOf gives it: of the first kPathBuffer characters,
    // empty when nothing could be removed.
    const std::string text = TrimNull(path);
    const std::string whole = text.substr(0, CharBoundaryCut(text, kPathBuffer, IsLeadByte));
    const std::string parent = StripFileSpec(whole);
    const std::string folder = AppendBackslash(parent == whole ? std::string() : parent);
    std::string changed = folder + GetBaseName(path);
    if (!extension.empty()) {
        changed += '.';
        changed += extension;
    }
    return changed;
}

std::string MakeSafeFileName(std::string_view name) {
    std::string safe(name);
    for (const char invalid : InvalidFileNameChars) safe = ReplaceChar(safe, invalid, '_');
    return safe;
}

std::string ShortenPathForDisplay(std::string_view path) {
    std::string current(path);
    if (current.size() < kDisplayWidth) return current;
    const auto firstSlash = FindChar(current, '\\');
    if (firstSlash == std::string::npos) return current;
    const std::string head = current.substr(0, firstSlash + 1);
    std::size_t kept = firstSlash;  // the "\" after which folders are dropped
    // Each pass but the first makes the text shorter, so path.size() passes suffice.
    for (std::size_t pass = 0; pass <= path.size() && current.size() >= kDisplayWidth; ++pass) {
        const auto next = FindChar(current, '\\', kept + 1);
        if (next == std::string::npos) break;
        current = head + "..." + current.substr(next);
        kept = FindChar(current, '\\', head.size());
    }
    return current;
}

void RemoveDuplicates(std::vector<std::string>& list, bool sortFirst, bool keepBlanks) {
    if (sortFirst) {
        std::sort(list.begin(), list.end());
        for (std::size_t i = list.size(); i-- > 1;) {
            if (list[i] == list[i - 1]) list[i].clear();
        }
    } else {
        for (std::size_t i = 0; i + 1 < list.size(); ++i) {
            for (std::size_t j = i + 1; j < list.size(); ++j) {
                if (list[j] == list[i]) list[j].clear();
            }
        }
    }
    if (!keepBlanks) std::erase_if(list, [](const std::string& entry) { return entry.empty(); });
}

std::string UniqueTempName(std::string_view folder,
                           const std::function<bool(const std::string&)>& fileExists) {
    std::string candidate;
    for (int number = 0; number <= 999; ++number) {
        const std::string digits = std::to_string(number);
        candidate = std::string(folder) + "\\MML" + std::string(3 - digits.size(), '0') + digits;
        if (!fileExists(candidate)) break;
    }
    return candidate;
}

std::size_t CharBoundaryCut(std::string_view text, std::size_t limit,
                            const std::function<bool(unsigned char)>& isLeadByte) {
    if (text.size() <= limit) return text.size();
    std::size_t end = 0;
    while (end < limit) {
        const std::size_t width =
            isLeadByte(static_cast<unsigned char>(text[end])) && end + 1 < text.size() ? 2 : 1;
        if (end + width > limit) break;
        end += width;
    }
    return end;
}

std::string NulSeparatedFilter(std::string_view barSeparated) {
    std::string filter = ReplaceChar(barSeparated, '|', '\0');
    if (filter.empty() || filter.back() != '\0') filter += '\0';
    return filter;
}

std::string BuildFilterText(const std::vector<FilterEntry>& entries) {
    std::string filter;
    if (entries.empty()) {
        filter = "MML File (*.mml)|*.mml|MUS File (*.mus)|*.mus|Text File (*.txt)|*.txt|"
                 "All files (*.*)|*.*";
    } else {
        for (const FilterEntry& entry : entries) {
            filter += entry.name + "|*";
            for (const char c : entry.extensions) {
                filter += c;
                if (c == ';') filter += '*';
            }
            filter += '|';
        }
        filter.pop_back();
    }
    return ReplaceChar(filter, '|', '\0');
}

std::string LongPathOf(std::string_view path, const FindEntryName& findEntryName) {
    std::string s = AsciiUpper(TrimBlanks(path));
    if (s.empty()) return {};

    std::string root;
    if (s.size() > 1 && IsSlash(s[0]) && IsSlash(s[1])) {
        // Network path: the root runs up to the backslash after the share name.
        const auto serverEnd = FindChar(s, '\\', 2);
        if (serverEnd == std::string::npos) return {};
        const auto shareEnd = FindChar(s, '\\', serverEnd + 1);
        if (shareEnd == std::string::npos) return {};
        root = s.substr(0, shareEnd);
    } else {
        const auto colon = FindChar(s, ':');
        if (colon != std::string::npos) root = s.substr(0, colon + 1);
    }
    if (root.size() + 1 >= s.size()) return root + "\\";

    if (!EndsWithChar(s, '\\')) s += '\\';
    std::string built = root;
    // The character after the root (its "\") is stepped over whole.
    auto slash = FindChar(s, '\\', root.size() + CharLength(s, root.size()));
    while (slash != std::string::npos) {
        const auto name = findEntryName(s.substr(0, slash));
        if (!name) return {};
        built += '\\';
        built += TrimNull(*name);
        slash = FindChar(s, '\\', slash + 1);
    }
    return built;
}

}  // namespace zorvi::mdlFile
