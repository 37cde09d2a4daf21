// Splitting Zorvi's command line into tokens and reading its switches.
//
// The rules are old and quirky (a switch must stand before the file, a quoted
// switch value may hold blanks, ".ini" is appended only when the preset path
// does not end with it yet); users' shortcuts depend on them, so they are kept.
// The one change: a switch at the very end, or one whose quote never closes,
// takes the rest of the line instead of stalling the tokeniser.
#include "core/command_line.h"

#include "core/text.h"

namespace zorvi {
namespace {

constexpr std::string_view kBlanks = " ";

std::string_view TrimBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    const auto last = text.find_last_not_of(kBlanks);
    return text.substr(first, last - first + 1);
}

bool IsSwitchLead(char c) { return c == '-' || c == '/'; }

}  // namespace

std::vector<std::string> TokenizeCommandLine(std::string_view commandLine) {
    std::string tabless(commandLine);
    for (char& c : tabless) {
        if (c == '\t') c = ' ';
    }
    std::string_view rest = TrimBlanks(tabless);

    std::vector<std::string> tokens;
    // Every pass consumes at least one character, so this ends.
    while (!rest.empty()) {
        if (rest.front() == '"') {
            // A quoted word ends at a quote followed by a blank; the blank stays.
            const auto close = rest.find("\" ", 1);
            if (close == std::string_view::npos) {
                tokens.emplace_back(rest);
                rest = {};
            } else {
                tokens.emplace_back(rest.substr(0, close + 1));
                rest.remove_prefix(close + 1);
            }
        } else if (IsSwitchLead(rest.front())) {
            const auto blank = rest.find(' ');
            // A switch with no blank after it takes the rest of the line.
            std::size_t length = rest.size();
            if (blank != std::string_view::npos) {
                const std::string_view head = rest.substr(0, blank);
                length = head.size();
                const auto quote = head.find('"');
                if (quote != std::string_view::npos) {
                    // A quoted value may hold blanks: run to the closing quote.
                    const auto close = rest.find('"', quote + 1);
                    length = close == std::string_view::npos ? rest.size() : close + 1;
                }
            }
            tokens.emplace_back(rest.substr(0, length));
            rest = TrimBlanks(rest.substr(length));
        } else {
            const auto blank = rest.find(' ');
            if (blank == std::string_view::npos) {
                tokens.emplace_back(rest);
                rest = {};
            } else {
                tokens.emplace_back(rest.substr(0, blank));
                rest.remove_prefix(blank + 1);
            }
        }
    }
    return tokens;
}

CommandLine InterpretCommandLine(const std::vector<std::string>& tokens,
                                 const std::string& appFolder,
                                 const CommandLineFacts& facts) {
    constexpr std::string_view kPresetSwitch = "preset=";
    CommandLine result;
    for (const std::string& token : tokens) {
        if (token.empty()) continue;
        if (!IsSwitchLead(token.front())) {
            if (!result.file.empty()) continue;
            const std::string path = facts.unquote(token);
            if (facts.isExistingFile(path)) result.file = path;
            continue;
        }
        const std::string name = AsciiLower(token).substr(1);
        if (name == "compilenow") {
            result.compileNow = true;
        } else if (name == "play") {
            result.play = true;
        } else if (name == "showlog") {
            result.showLog = true;
        } else if (name.starts_with(kPresetSwitch)) {
            std::string preset;
            for (char c : std::string_view(name).substr(kPresetSwitch.size())) {
                if (c != '"') preset += c;
            }
            // Looks at the preset path as it stands before this switch, so the
            // first preset= always gains ".ini" and a later one never does.
            if (!AsciiLower(result.presetPath).ends_with(".ini")) preset += ".ini";
            result.presetPath = appFolder + "cfg\\" + preset;
        }
    }
    return result;
}

}  // namespace zorvi
