// Reading and writing the list layouts of the settings files through the
// private-profile functions, and the start-up rebuild of the editor and
// player lists.
#include "settings/lists_win.h"

#include <windows.h>

#include <algorithm>

#include "core/text.h"
#include "files/path_win.h"
#include "files/variables_win.h"
#include "settings/ini_win.h"

namespace zorvi::settings {
namespace {

// The fields of a record are read from the snapshot of the section their
// record list lives in.
std::string ReadField(const TextKey& field, int index, const IniSection& section) {
    return section.Read(NumberedKey(field.name, index), field.fallback);
}

int ReadField(const IntKey& field, int index, const IniSection& section) {
    return section.ReadInt(NumberedKey(field.name, index), field.fallback);
}

bool ReadFlagField(const IntKey& field, int index, const IniSection& section) {
    return FlagHolds(field, ReadField(field, index, section));
}

int ReadCount(const IniSection& section, const char* countKey) {
    return EntriesToRead(section.ReadInt(countKey, 0));
}

std::vector<std::string> ReadNumbered(const char* section, const char* countKey,
                                      const char* prefix, const std::string& file) {
    const IniSection values(section, file);
    const int count = ReadCount(values, countKey);
    std::vector<std::string> entries;
    entries.reserve(static_cast<std::size_t>(count));
    for (int i = 1; i <= count; ++i) entries.push_back(values.Read(NumberedKey(prefix, i), ""));
    return entries;
}

// Editors and players are offered only while their file is there, whatever
// $variable$ tokens stand in their path.
bool ExistsAfterVariables(const std::string& entry) {
    return mdlFile::FileExists(mdlFile::ExpandVariables(entry, false, false, ""));
}

std::vector<std::string> CleanAndStore(const CountedList& list,
                                       const std::vector<std::string>& entries,
                                       const std::string& mainFile) {
    std::vector<std::string> cleaned = CleanList(entries, ExistsAfterVariables);
    // Nothing is reported: a read-only settings file just keeps its old list.
    WriteCountedList(list, cleaned, mainFile);
    return cleaned;
}

}  // namespace

// Found as every other file search of the program finds them (hidden and
// system files are left out), and sorted before the cut, so that no list
// depends on the order the file system lists them in.
std::vector<std::string> ConfigurationNames(const std::string& appFolder, bool baseNames) {
    std::vector<std::string> names;
    if (!mdlFile::GetPathFile2Array(appFolder + "cfg\\*.ini", names, baseNames)) return {};
    names.pop_back();  // the list's closing empty entry
    names = SortConfigurationNames(std::move(names));
    if (names.size() > kMaxConfigurations) names.resize(kMaxConfigurations);
    return names;
}

bool WriteAll(const std::vector<IniWrite>& writes, const std::string& file) {
    IniUpdater updater;
    for (const auto& write : writes) {
        if (!updater.Write(write.section, write.key, write.value, file)) return false;
    }
    return true;
}

std::vector<std::string> ReadCountedList(const CountedList& list, const std::string& file) {
    return ReadNumbered(list.section, list.countKey, list.itemPrefix, file);
}

bool WriteCountedList(const CountedList& list, const std::vector<std::string>& entries,
                      const std::string& file) {
    return WriteAll(CountedListWrites(list, entries), file);
}

std::string ReadTextBlock(const TextBlock& block, const std::string& file) {
    return JoinTextBlockLines(ReadNumbered(block.section, block.countKey, block.linePrefix, file));
}

bool WriteTextBlock(const TextBlock& block, std::string_view text, const std::string& file) {
    return WriteAll(TextBlockWrites(block, text), file);
}

std::vector<ExternalProgramRecord> ReadExternalPrograms(const std::string& file) {
    namespace ep = main_file::external_program;
    const CountedList& list = main_file::kExternalPrograms;
    const IniSection section(list.section, file);
    const int count = ReadCount(section, list.countKey);
    std::vector<ExternalProgramRecord> records;
    records.reserve(static_cast<std::size_t>(count));
    for (int i = 1; i <= count; ++i) {
        records.push_back({
            .item = ReadField(ep::kItem, i, section),
            .command = ReadField(ep::kCommand, i, section),
            .option = ReadField(ep::kOption, i, section),
            .startUpFolder = ReadField(ep::kStartUpFolder, i, section),
            .windowState = ReadField(ep::kWindowState, i, section),
            .autoRun = ReadFlagField(ep::kAutoRun, i, section),
            .autoShutDown = ReadFlagField(ep::kAutoShutDown, i, section),
        });
    }
    return records;
}

bool WriteExternalPrograms(const std::vector<ExternalProgramRecord>& records,
                           const std::string& file) {
    return WriteAll(ExternalProgramWrites(records), file);
}

std::vector<FilterRecord> ReadFilters(const std::string& file) {
    namespace fi = main_file::filter;
    const CountedList& list = main_file::kFilters;
    const IniSection section(list.section, file);
    const int count = ReadCount(section, list.countKey);
    std::vector<FilterRecord> records;
    records.reserve(static_cast<std::size_t>(count));
    for (int i = 1; i <= count; ++i) {
        records.push_back({
            .item = ReadField(fi::kItem, i, section),
            .extension = ReadField(fi::kExtension, i, section),
            .configuration = ReadField(fi::kDefault, i, section),
        });
    }
    return records;
}

bool WriteFilters(const std::vector<FilterRecord>& records, const std::string& file) {
    return WriteAll(FilterWrites(records), file);
}

std::vector<std::string> ReadHistorySlots(const std::string& file) {
    std::vector<std::string> slots;
    slots.reserve(main_file::kHistorySlots);
    const IniSection section(main_file::kHistorySection, file);
    for (int slot = 0; slot < main_file::kHistorySlots; ++slot) {
        slots.push_back(section.Read(HistorySlotKey(slot), ""));
    }
    return slots;
}

bool WriteHistorySlot(int slot, const std::string& path, const std::string& file) {
    if (slot < 0 || slot >= main_file::kHistorySlots) return false;
    return WriteIni(main_file::kHistorySection, HistorySlotKey(slot), path, file);
}

std::vector<std::string> RebuildPlayerList(const std::string& mainFile,
                                           const std::string& appFolder) {
    std::vector<std::string> entries = ReadCountedList(main_file::kPlayerList, mainFile);
    for (const auto& name : ConfigurationNames(appFolder, false)) {
        entries.push_back(ReadIni(config_file::kPlayer, appFolder + "cfg\\" + name));
    }
    return CleanAndStore(main_file::kPlayerList, entries, mainFile);
}

std::vector<std::string> RebuildEditorList(const std::string& mainFile) {
    std::vector<std::string> entries = ReadCountedList(main_file::kEditorList, mainFile);
    entries.push_back(ReadIni(main_file::kEditor, mainFile));
    return CleanAndStore(main_file::kEditorList, entries, mainFile);
}

}  // namespace zorvi::settings
