// Key names, counts and texts of the four list layouts of the settings files,
// and list cleaning.
#include "settings/list_layouts.h"

#include <algorithm>

#include "core/text.h"
#include "files/path_text.h"

namespace zorvi::settings {
namespace {

constexpr std::string_view kLineBreak = "\r\n";

std::string Flag(bool on) { return on ? "1" : "0"; }

}  // namespace

std::vector<std::string> SortConfigurationNames(std::vector<std::string> names) {
    std::stable_sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        return AsciiLower(a) < AsciiLower(b);
    });
    return names;
}

std::string NumberedKey(std::string_view prefix, int number) {
    return std::string(prefix) + std::to_string(number);
}

std::string HistorySlotKey(int slot) { return NumberedKey(main_file::kHistorySlotPrefix, slot); }

int EntriesToRead(int storedCount) { return std::clamp(storedCount, 0, kMaxListEntries); }

std::vector<IniWrite> CountedListWrites(const CountedList& list,
                                        const std::vector<std::string>& entries) {
    std::vector<IniWrite> writes;
    writes.reserve(entries.size() + 1);
    writes.push_back({list.section, list.countKey, std::to_string(entries.size())});
    for (std::size_t i = 0; i < entries.size(); ++i) {
        writes.push_back({list.section, NumberedKey(list.itemPrefix, static_cast<int>(i + 1)),
                          entries[i]});
    }
    return writes;
}

std::vector<std::string> SplitTextBlock(std::string_view text) {
    std::vector<std::string> lines;
    for (;;) {
        const auto lineEnd = text.find(kLineBreak);
        lines.emplace_back(text.substr(0, lineEnd));
        if (lineEnd == std::string_view::npos) return lines;
        text.remove_prefix(lineEnd + kLineBreak.size());
    }
}

std::string JoinTextBlockLines(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) {
        text += line;
        text += kLineBreak;
    }
    return text;
}

std::vector<IniWrite> TextBlockWrites(const TextBlock& block, std::string_view text) {
    const std::vector<std::string> lines = SplitTextBlock(text);
    std::vector<IniWrite> writes;
    writes.reserve(lines.size() + 1);
    // The count is the index of the last line, not the number of lines.
    writes.push_back({block.section, block.countKey, std::to_string(lines.size() - 1)});
    for (std::size_t j = 0; j < lines.size(); ++j) {
        writes.push_back({block.section, NumberedKey(block.linePrefix, static_cast<int>(j + 1)),
                          lines[j]});
    }
    return writes;
}

std::string NormaliseTextBlock(std::string_view text) {
    // Each round shortens the text, so the loop ends.
    std::string result(text);
    const std::string doubled = std::string(kLineBreak) + std::string(kLineBreak);
    for (auto at = result.find(doubled); at != std::string::npos; at = result.find(doubled)) {
        std::string next;
        next.reserve(result.size());
        std::size_t from = 0;
        for (; at != std::string::npos; at = result.find(doubled, from)) {
            next.append(result, from, at - from);
            next += kLineBreak;
            from = at + doubled.size();
        }
        next.append(result, from);
        result = std::move(next);
    }
    return result;
}

std::string TextBlockForSaving(std::string_view text) {
    std::string result = NormaliseTextBlock(text);
    if (!result.empty() && !result.ends_with(kLineBreak)) result += kLineBreak;
    return result;
}

std::vector<IniWrite> ExternalProgramWrites(const std::vector<ExternalProgramRecord>& records) {
    namespace ep = main_file::external_program;
    const CountedList& list = main_file::kExternalPrograms;
    std::vector<IniWrite> writes;
    writes.reserve(records.size() * 7 + 1);
    writes.push_back({list.section, list.countKey, std::to_string(records.size())});
    for (std::size_t index = 0; index < records.size(); ++index) {
        const auto& record = records[index];
        const int i = static_cast<int>(index + 1);
        writes.push_back({list.section, NumberedKey(ep::kItem.name, i), record.item});
        writes.push_back({list.section, NumberedKey(ep::kCommand.name, i), record.command});
        writes.push_back({list.section, NumberedKey(ep::kOption.name, i), record.option});
        writes.push_back(
            {list.section, NumberedKey(ep::kStartUpFolder.name, i), record.startUpFolder});
        writes.push_back({list.section, NumberedKey(ep::kAutoRun.name, i), Flag(record.autoRun)});
        writes.push_back({list.section, NumberedKey(ep::kWindowState.name, i),
                          std::to_string(record.windowState)});
        writes.push_back(
            {list.section, NumberedKey(ep::kAutoShutDown.name, i), Flag(record.autoShutDown)});
    }
    return writes;
}

std::vector<IniWrite> FilterWrites(const std::vector<FilterRecord>& records) {
    namespace fi = main_file::filter;
    const CountedList& list = main_file::kFilters;
    std::vector<IniWrite> writes;
    writes.reserve(records.size() * 3 + 1);
    writes.push_back({list.section, list.countKey, std::to_string(records.size())});
    for (std::size_t index = 0; index < records.size(); ++index) {
        const auto& record = records[index];
        const int i = static_cast<int>(index + 1);
        writes.push_back({list.section, NumberedKey(fi::kItem.name, i), record.item});
        writes.push_back({list.section, NumberedKey(fi::kExtension.name, i), record.extension});
        writes.push_back({list.section, NumberedKey(fi::kDefault.name, i), record.configuration});
    }
    return writes;
}

std::vector<std::string> CleanList(const std::vector<std::string>& entries,
                                   const ExistsAfterExpansion& exists) {
    std::vector<std::string> unique = entries;
    mdlFile::RemoveDuplicates(unique, false, false);
    std::vector<std::string> kept;
    for (auto& entry : unique) {
        if (exists && exists(entry)) kept.push_back(std::move(entry));
    }
    return kept;
}

}  // namespace zorvi::settings
