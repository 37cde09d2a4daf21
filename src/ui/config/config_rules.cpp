// The decisions of the configuration window that need no platform.
#include "ui/config/config_rules.h"

#include <cstdint>

#include "core/text.h"
#include "files/path_text.h"
#include "settings/config_save.h"

namespace zorvi {
namespace {

constexpr std::string_view kBlanks = " \t";
// Longest path the profile and file functions take, and what cfg\ and .ini add.
constexpr std::size_t kMaxPath = 260;
constexpr std::size_t kConfigurationPathExtra = sizeof "cfg\\" - 1 + sizeof ".ini" - 1;

// The show commands of a started window, as Windows numbers them.
constexpr int kShowMinimized = 2;
constexpr int kShowMaximized = 3;
constexpr int kMinimize = 6;
constexpr int kShowMinNoActive = 7;

bool IsAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
bool IsWordStart(std::string_view text, std::size_t at) {
    return at == 0 || !IsAsciiLetter(text[at - 1]);
}

}  // namespace

std::optional<int> ParseWholeNumber(std::string_view text, WholeNumberRange range) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return std::nullopt;
    text = text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
    // Ten digits already exceed every range, and no longer run can overflow.
    if (text.size() > 10) return std::nullopt;
    std::int64_t value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') return std::nullopt;
        value = value * 10 + (c - '0');
    }
    if (value < range.lowest || value > range.highest) return std::nullopt;
    return static_cast<int>(value);
}

int WindowStateListIndex(int storedState) {
    return storedState >= 1 && storedState <= 3 ? storedState - 1 : 0;
}

int WindowStateFromListIndex(int listIndex) {
    return listIndex >= 0 && listIndex <= 2 ? listIndex + 1 : 1;
}

std::size_t TextBlockLineCount(std::string_view text) {
    const std::string saved = settings::TextBlockForSaving(text);
    std::size_t lines = 0;
    for (auto at = saved.find("\r\n"); at != std::string::npos; at = saved.find("\r\n", at + 2)) {
        ++lines;
    }
    return lines;
}

bool TextBlockFits(std::string_view text) {
    return TextBlockLineCount(text) <= static_cast<std::size_t>(settings::kMaxListEntries);
}

NameProblem CheckConfigurationName(std::string_view typed, std::size_t appFolderLength) {
    const std::string name = settings::SafeConfigurationName(typed);
    if (name.find_first_not_of(kBlanks) == std::string::npos) return NameProblem::Empty;
    if (settings::IsReservedDeviceName(name)) return NameProblem::Reserved;
    if (appFolderLength + kConfigurationPathExtra + name.size() >= kMaxPath) {
        return NameProblem::TooLong;
    }
    return NameProblem::None;
}

DropKind ClassifyDroppedFile(std::string_view path, bool isFolder) {
    if (isFolder) return DropKind::Refused;
    const std::string extension = AsciiUpper(mdlFile::GetExtension(path));
    if (extension == "EXE") return DropKind::Program;
    if (extension == "LNK") return DropKind::Shortcut;
    return DropKind::Refused;
}

int WindowStateForShowCommand(int showCommand) {
    switch (showCommand) {
    case kShowMinimized:
    case kMinimize:
    case kShowMinNoActive: return 2;
    case kShowMaximized: return 3;
    default: return 1;
    }
}

settings::ExternalProgramRecord RecordForDroppedFile(std::string_view droppedPath,
                                                     const LaunchTarget& target) {
    settings::ExternalProgramRecord record;
    record.item = mdlFile::GetBaseName(droppedPath);
    record.command = target.path;
    record.option = target.arguments;
    record.startUpFolder = target.workingFolder.empty()
                               ? mdlFile::StripBackslash(mdlFile::StripFileSpec(target.path))
                               : target.workingFolder;
    record.windowState = WindowStateForShowCommand(target.showCommand);
    return record;
}

std::string RequiredFileEntry(std::string_view compilerFolder, std::string_view chosenFile) {
    const std::string folder = AsciiLower(mdlFile::AppendBackslash(compilerFolder));
    if (!compilerFolder.empty() && AsciiLower(chosenFile).starts_with(folder)) {
        return std::string(chosenFile.substr(folder.size()));
    }
    return mdlFile::GetFileName(chosenFile);
}

std::vector<char> ChooseMnemonics(const std::vector<std::string>& englishCaptions,
                                  std::string& taken) {
    std::vector<char> letters;
    letters.reserve(englishCaptions.size());
    for (const std::string& caption : englishCaptions) {
        char chosen = 0;
        // Word starts first ("&Up", "Work &folder"), then any letter.
        for (const bool wordStartsOnly : {true, false}) {
            for (std::size_t at = 0; at < caption.size() && chosen == 0; ++at) {
                const char letter = LowerAscii(caption[at]);
                if (!IsAsciiLetter(letter) || taken.find(letter) != std::string::npos) continue;
                if (wordStartsOnly && !IsWordStart(caption, at)) continue;
                chosen = letter;
            }
        }
        if (chosen != 0) taken += chosen;
        letters.push_back(chosen);
    }
    return letters;
}

std::wstring WithMnemonic(std::wstring_view caption, char letter) {
    // Found on the caption's own letters; ASCII only, so a wide text is safe to scan.
    std::string ascii(caption.size(), ' ');
    for (std::size_t i = 0; i < caption.size(); ++i) {
        if (caption[i] < 0x80) ascii[i] = static_cast<char>(caption[i]);
    }
    std::size_t at = std::wstring_view::npos;
    if (letter != 0) {
        for (const bool wordStartsOnly : {true, false}) {
            for (std::size_t i = 0; i < ascii.size() && at == std::wstring_view::npos; ++i) {
                if (LowerAscii(ascii[i]) != letter || !IsAsciiLetter(ascii[i])) continue;
                if (wordStartsOnly && !IsWordStart(ascii, i)) continue;
                at = i;
            }
        }
    }
    std::wstring marked;
    for (std::size_t i = 0; i < caption.size(); ++i) {
        if (i == at) marked += L'&';
        marked += caption[i];
        if (caption[i] == L'&') marked += L'&';
    }
    if (letter != 0 && at == std::wstring_view::npos) {
        marked += L"(&";
        marked += static_cast<wchar_t>(letter - 'a' + 'A');
        marked += L')';
    }
    return marked;
}

std::wstring FormatText(std::wstring_view pattern, const std::vector<std::wstring>& arguments) {
    std::wstring text;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        const std::size_t close = pattern.find(L'}', at);
        if (pattern[at] == L'{' && close != std::wstring_view::npos && close == at + 2 &&
            pattern[at + 1] >= L'0' && pattern[at + 1] <= L'9') {
            const auto index = static_cast<std::size_t>(pattern[at + 1] - L'0');
            if (index < arguments.size()) {
                text += arguments[index];
                at = close;
                continue;
            }
        }
        text += pattern[at];
    }
    return text;
}

}  // namespace zorvi
