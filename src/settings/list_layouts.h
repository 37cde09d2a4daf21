// Key names, counts and texts of the four list layouts of the settings files
// (counted list, record list, text block, numbered slots), and list cleaning.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/schema.h"

namespace zorvi::settings {

// A hand-edited count (2147483647, say) must not keep a reader busy for
// hours or fill the memory: no reader goes past this many entries.
inline constexpr int kMaxListEntries = 4096;

// The menu and the configuration window list this many configurations at
// most, the first in the order below.
inline constexpr std::size_t kMaxConfigurations = 9000;

// Configuration names in case-insensitive order (ASCII letters folded), the
// same on every file system; equal names keep the order they came in.
std::vector<std::string> SortConfigurationNames(std::vector<std::string> names);

// Prefix + number in plain decimal: ("Item", 3) gives "Item3".
std::string NumberedKey(std::string_view prefix, int number);
// "His0" + slot: His00 ... His09, His010 ... His031.
std::string HistorySlotKey(int slot);

// How many entries a stored count asks a reader for: none for a negative
// count, never more than kMaxListEntries.
int EntriesToRead(int storedCount);

// One key to write, in the order a writer must keep.
struct IniWrite {
    std::string section;
    std::string key;
    std::string value;
};

// Count first, then Item1 ... ItemN.
std::vector<IniWrite> CountedListWrites(const CountedList& list,
                                        const std::vector<std::string>& entries);

// Text blocks. Written: the text split at CR LF into lines L0..Lk, the count
// key gets k, line Lj goes to key j+1. Read: keys 1 to the count, each
// followed by CR LF, so a last line without a line break is written but not
// read back.
std::vector<std::string> SplitTextBlock(std::string_view text);
std::string JoinTextBlockLines(const std::vector<std::string>& lines);
std::vector<IniWrite> TextBlockWrites(const TextBlock& block, std::string_view text);
// Every CR LF CR LF becomes CR LF until none is left: empty lines go, a
// single leading or trailing line break stays.
std::string NormaliseTextBlock(std::string_view text);
// The text a save stores: normalised, and ending with CR LF unless it is
// empty, so that the reader's count does not drop the last line typed.
std::string TextBlockForSaving(std::string_view text);

// One launcher entry of ExternalProgram.
struct ExternalProgramRecord {
    std::string item;
    std::string command;
    std::string option;
    std::string startUpFolder;
    int windowState = main_file::external_program::kWindowState.fallback;
    bool autoRun = false;
    bool autoShutDown = false;

    bool operator==(const ExternalProgramRecord&) const = default;
};

// One file type of Filter and the configuration it switches to.
struct FilterRecord {
    std::string item;
    std::string extension;
    std::string configuration;  // Default<i>

    bool operator==(const FilterRecord&) const = default;
};

// ItemCount, then per record Item, Command, Option, StartUpFolder, AutoRun,
// WindowState, AutoShutDown. The shut-down flag travels with its record, so
// moving or deleting records in the configuration window keeps it with its
// program.
std::vector<IniWrite> ExternalProgramWrites(const std::vector<ExternalProgramRecord>& records);
// ItemCount, then per record Item, Extension, Default.
std::vector<IniWrite> FilterWrites(const std::vector<FilterRecord>& records);

// Whether an editor or player entry, once its variables are expanded, names
// an existing file.
using ExistsAfterExpansion = std::function<bool(const std::string& entry)>;

// Empty entries, exact (case-sensitive) repeats and entries that name no
// existing file are dropped; the first occurrence of each keeps its place.
std::vector<std::string> CleanList(const std::vector<std::string>& entries,
                                   const ExistsAfterExpansion& exists);

}  // namespace zorvi::settings
