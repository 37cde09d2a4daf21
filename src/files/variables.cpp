// $variable$ substitution in command templates: every rule of the expansion,
// with the few facts it needs about the machine handed in as callbacks.
#include "files/variables.h"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <utility>

#include "core/text.h"
#include "files/path_text.h"

namespace zorvi::mdlFile {
namespace {

// A fact fetched the first time it is wanted. Asking Windows for special
// folders and short names is slow enough to matter for every script line,
// and most lines use few tokens.
template <typename T>
class Lazy {
public:
    explicit Lazy(std::function<T()> fetch) : fetch_(std::move(fetch)) {}
    Lazy(const Lazy&) = delete;
    Lazy& operator=(const Lazy&) = delete;

    const T& operator()() {
        if (!value_) value_.emplace(fetch_ ? fetch_() : T{});
        return *value_;
    }

private:
    std::function<T()> fetch_;
    std::optional<T> value_;
};

bool HasDollar(std::string_view text) { return text.find('$') != std::string_view::npos; }

// Whether position at stands inside double quotes of its line. A quote is
// never the second byte of a double-byte character, so bytes can be counted.
bool InsideQuotes(std::string_view text, std::size_t at) {
    const std::size_t lineEnd =
        at == 0 ? std::string_view::npos : text.find_last_of("\r\n", at - 1);
    bool inside = false;
    for (std::size_t i = lineEnd == std::string_view::npos ? 0 : lineEnd + 1; i < at; ++i) {
        if (text[i] == '"') inside = !inside;
    }
    return inside;
}

// Replaces every occurrence of token, ASCII letters matching without regard
// to case, in one left-to-right pass: what this token inserts is not searched
// for it again, but later tokens do search it. Only single-byte letters are
// folded and matches are whole characters, so the second byte of a
// double-byte character is never taken for a letter of a token (an extension
// token may itself hold such characters). The value is asked for only when
// the token occurs.
// In a batch script each value is escaped for where it stands: inside or
// outside double quotes, counted from the start of its line.
template <typename Value>
void ReplaceAll(std::string& text, std::string_view token, Value&& value, bool forBatch = false) {
    if (token.empty()) return;
    // Most tokens are absent: a byte search with every ASCII letter folded
    // finds any place the token could match, without copying the text.
    const auto fold = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    if (std::search(text.begin(), text.end(), token.begin(), token.end(),
                    [&](char a, char b) { return fold(a) == fold(b); }) == text.end()) {
        return;
    }
    const std::string lowerToken = AsciiLower(token);
    const std::string lowerText = AsciiLower(text);
    auto found = FindText(lowerText, lowerToken);
    if (found == std::string::npos) return;
    const std::string& replacement = value();
    std::string result;
    std::size_t copied = 0;
    while (found != std::string::npos) {
        result.append(text, copied, found - copied);
        result += forBatch ? EscapeForBatch(replacement, InsideQuotes(text, found)) : replacement;
        copied = found + lowerToken.size();
        found = FindText(lowerText, lowerToken, copied);
    }
    result.append(text, copied);
    text = std::move(result);
}

// One row of a table: the long form first, then the short one, sharing one value.
void ReplaceTokens(std::string& text, std::initializer_list<std::string_view> tokens,
                   const std::function<std::string()>& value, bool forBatch = false) {
    std::optional<std::string> fetched;
    for (const std::string_view token : tokens) {
        ReplaceAll(
            text, token,
            [&]() -> const std::string& {
                if (!fetched) fetched = value();
                return *fetched;
            },
            forBatch);
    }
}

// The system variables, with their facts shared by the three texts that one
// ExpandVariables call expands (the console path, the target, the text).
class SystemVariables {
public:
    explicit SystemVariables(const SystemFacts& facts)
        : windowsFolder_(facts.windowsFolder),
          desktopFolder_(facts.shortDesktopFolder),
          documentsFolder_(facts.shortDocumentsFolder),
          programFolder_(facts.programFolder),
          shortProgramFolder_(facts.shortProgramFolder) {}

    std::string Expand(std::string_view text, bool forBatch = false) {
        std::string result(text);
        if (!HasDollar(result)) return result;
        const auto replace = [&](std::initializer_list<std::string_view> tokens,
                                 const std::function<std::string()>& value) {
            ReplaceTokens(result, tokens, value, forBatch);
        };
        replace({"$systemroot$", "$windir$"},
                      [&] { return AppendBackslash(windowsFolder_()); });
        replace({"$desktop$"}, [&] { return AppendBackslash(desktopFolder_()); });
        replace({"$mydocument$"},
                      [&] { return AppendBackslash(documentsFolder_()); });
        // "home" is the program's own folder, not the user's profile.
        replace({"$homedrive$", "$hd$"},
                      [&] { return std::string(LeadingChars(programFolder_(), 2)); });
        replace({"$homeroot$", "$hr$"},
                      [&] { return std::string(LeadingChars(programFolder_(), 3)); });
        replace({"$homepath$", "$hp$"},
                      [&] { return AppendBackslash(shortProgramFolder_()); });
        replace({"$homepath2$", "$hp2$"},
                      [&] { return StripFileSpec(AppendBackslash(shortProgramFolder_())); });
        return result;
    }

private:
    Lazy<std::string> windowsFolder_;
    Lazy<std::string> desktopFolder_;
    Lazy<std::string> documentsFolder_;
    Lazy<std::string> programFolder_;
    Lazy<std::string> shortProgramFolder_;
};

struct PathParts {
    std::string drive;   // the first two characters, never shortened
    std::string folder;  // without its trailing "\", except for a root
    std::string name;
};

PathParts SplitPath(const std::string& path, bool shortFolders, bool shortNames,
                    const std::function<std::string(const std::string&)>& shortPath) {
    PathParts parts{std::string(LeadingChars(path, 2)), StripFileSpec(path), GetFileName(path)};
    if (!shortPath || !(shortFolders || shortNames)) return parts;
    // Only the folder is asked for when only the folder is used: every name
    // looked up costs the file system a search of its folder.
    if (!shortNames) {
        parts.folder = shortPath(parts.folder);
        return parts;
    }
    const std::string shortForm = shortPath(path);
    if (shortFolders) parts.folder = StripFileSpec(shortForm);
    parts.name = GetFileName(shortForm);
    return parts;
}

std::string Ask(const std::function<std::string()>& fact) { return fact ? fact() : std::string(); }

// Built by appending: GCC 12 warns falsely (-Wrestrict) about "." + a temporary.
std::string DotExtension(std::string_view name) {
    std::string dotExtension = ".";
    dotExtension += GetExtension(name);
    return dotExtension;
}

}  // namespace

std::string EscapeForBatch(std::string_view value, bool insideQuotes) {
    std::string escaped;
    escaped.reserve(value.size());
    for (std::size_t at = 0; at < value.size();) {
        const std::size_t length = CharLength(value, at);
        const char c = value[at];
        if (length == 1 && c == '%') {
            // Expanded even inside quotes: only doubling keeps it a character.
            escaped += '%';
        } else if (length == 1 && !insideQuotes &&
                   std::string_view("&|<>^()!").find(c) != std::string_view::npos) {
            escaped += '^';
        }
        escaped.append(value.substr(at, length));
        at += length;
    }
    return escaped;
}

std::string ExpandLineVariable(std::string_view text, int line) {
    std::string result(text);
    // Replaced before the other tokens, so that a folder that happens to be
    // called "$line$" in an expanded path stays as it is.
    ReplaceAll(result, "$line$", [line] { return std::to_string(line); });
    return result;
}

std::string ExpandSystemVariablesWith(std::string_view text, const SystemFacts& facts) {
    return SystemVariables(facts).Expand(text);
}

std::string ExpandVariablesWith(std::string_view text, bool shortFolders, bool shortNames,
                                const VariableFacts& facts, bool forBatch) {
    std::string result(text);
    if (!HasDollar(result)) return result;
    const auto replace = [&](std::initializer_list<std::string_view> tokens,
                             const std::function<std::string()>& value) {
        ReplaceTokens(result, tokens, value, forBatch);
    };

    SystemVariables system(facts.system);
    Lazy<PathParts> console([&] {
        return SplitPath(system.Expand(Ask(facts.console)), shortFolders, shortNames,
                         facts.shortPath);
    });
    Lazy<PathParts> target([&] {
        return SplitPath(system.Expand(Ask(facts.targetFile)), shortFolders, shortNames,
                         facts.shortPath);
    });

    result = system.Expand(result, forBatch);
    replace({"$progroot$"}, [&] { return AppendBackslash(console().drive); });
    // Unlike "$progroot$", always appended: an empty console gives a lone "\".
    replace({"$pr$"}, [&] { return console().drive + "\\"; });
    replace({"$progdrive$", "$pd$"}, [&] { return console().drive; });
    replace({"$progpath$", "$pp$"},
                  [&] { return AppendBackslash(console().folder); });
    replace({"$progpath2$", "$pp2$"},
                  [&] { return StripBackslash(console().folder); });
    replace({"$progname$", "$pn$"}, [&] { return console().name; });
    replace({"$fileroot$", "$fr$"}, [&] { return AppendBackslash(target().drive); });
    replace({"$filedrive$", "$fd$"}, [&] { return target().drive; });
    replace({"$filepath$", "$fp$"},
                  [&] { return AppendBackslash(target().folder); });
    replace({"$filepath2$", "$fp2$"},
                  [&] { return StripBackslash(target().folder); });
    replace({"$filename$", "$fn$"}, [&] { return target().name; });
    // The extension comes from the name as used, so short names give the short
    // extension; every repeat of it goes (song.mml.mml gives song), and a name
    // without one loses all its dots.
    replace({"$filename2$", "$fn2$"}, [&] {
        std::string name = target().name;
        ReplaceAll(name, DotExtension(name), [] { return std::string(); });
        return name;
    });
    replace({"$extension2$", "$ext2$"}, [&] { return GetExtension(target().name); });
    replace({"$extension$", "$ext$"}, [&] { return DotExtension(target().name); });
    return result;
}

}  // namespace zorvi::mdlFile
