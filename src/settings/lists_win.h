// Reading and writing the list layouts of the settings files, and the editor
// and player lists that window-mode start-up rebuilds.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "settings/list_layouts.h"
#include "settings/schema.h"

namespace zorvi::settings {

// Writes in order and stops at the first key that cannot be written; the
// keys before it stay written. Keys that hold their value already are left
// alone.
bool WriteAll(const std::vector<IniWrite>& writes, const std::string& file);

// Entries 1 to the stored count (missing entries read empty).
std::vector<std::string> ReadCountedList(const CountedList& list, const std::string& file);
bool WriteCountedList(const CountedList& list, const std::vector<std::string>& entries,
                      const std::string& file);

// Keys 1 to the count, each followed by CR LF (see list_layouts.h for why the
// last line written may not come back).
std::string ReadTextBlock(const TextBlock& block, const std::string& file);
bool WriteTextBlock(const TextBlock& block, std::string_view text, const std::string& file);

std::vector<ExternalProgramRecord> ReadExternalPrograms(const std::string& file);
bool WriteExternalPrograms(const std::vector<ExternalProgramRecord>& records,
                           const std::string& file);
std::vector<FilterRecord> ReadFilters(const std::string& file);
bool WriteFilters(const std::vector<FilterRecord>& records, const std::string& file);

// All 32 history slots, His00 to His031; an empty slot reads empty.
std::vector<std::string> ReadHistorySlots(const std::string& file);
// False for a slot outside 0 to 31.
bool WriteHistorySlot(int slot, const std::string& path, const std::string& file);

// The configurations in appFolder's cfg folder as every list of them shows
// them: the names of the cfg\*.ini files (without ".ini" when baseNames),
// sorted as SortConfigurationNames sorts, at most kMaxConfigurations.
std::vector<std::string> ConfigurationNames(const std::string& appFolder, bool baseNames);

// Stored players plus the player of every cfg\*.ini, cleaned and written back.
// Returns the list as stored.
std::vector<std::string> RebuildPlayerList(const std::string& mainFile,
                                           const std::string& appFolder);
// Stored editors plus Setting/Editor, cleaned and written back.
std::vector<std::string> RebuildEditorList(const std::string& mainFile);

}  // namespace zorvi::settings
