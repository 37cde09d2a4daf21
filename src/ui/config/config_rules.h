// The decisions of the configuration window that need no platform: which
// numbers and names it accepts, window-state list positions, moving records
// in its lists, what a dropped file becomes, and the mnemonics of its captions.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "settings/list_layouts.h"

namespace zorvi {

// A whole-number field and the values it takes.
struct WholeNumberRange {
    int lowest;
    int highest;
};
// The watch timer: 10 ms is the shortest period Windows keeps, and a target
// looked at less than once a minute is hardly watched.
inline constexpr WholeNumberRange kTimerIntervalRange{10, 60000};
// The sizes the toolbar can draw its icons at.
inline constexpr WholeNumberRange kIconSizeRange{8, 64};

// The number typed, when it is nothing but decimal digits (blanks around
// them allowed) and lies in the range; nullopt otherwise ("abc", "-5", "1e3",
// a number too large for any int).
std::optional<int> ParseWholeNumber(std::string_view text, WholeNumberRange range);

// Window-state lists offer Normal, Minimized, Maximized: the stored state is
// the position plus one. A stored 0 or a value out of range shows as Normal.
int WindowStateListIndex(int storedState);
int WindowStateFromListIndex(int listIndex);

// How many lines a text block saved from this text gives its reader.
std::size_t TextBlockLineCount(std::string_view text);
// Whether every line of it comes back: readers stop at kMaxListEntries.
bool TextBlockFits(std::string_view text);

enum class NameProblem {
    None,
    Empty,     // nothing but blanks once made safe
    Reserved,  // CON, NUL, LPT1, ...: a device, not a file
    TooLong,   // cfg\<name>.ini would not fit in a Windows path
};
// What stands against saving a configuration under the typed name, in a
// program folder (with its backslash) of the given length.
NameProblem CheckConfigurationName(std::string_view typed, std::size_t appFolderLength);

// Moves the entry at index one place up (delta -1) or down (+1); returns
// where it now is, or index itself when it cannot move.
template <typename T>
std::size_t MoveEntry(std::vector<T>& list, std::size_t index, int delta) {
    if (index >= list.size()) return index;
    if (delta < 0 && index == 0) return index;
    if (delta > 0 && index + 1 >= list.size()) return index;
    const std::size_t other = delta < 0 ? index - 1 : index + 1;
    std::swap(list[index], list[other]);
    return other;
}

// Removes the entry at index; returns the entry to select afterwards (the
// one that took its place, else the new last one), nullopt when none is left.
template <typename T>
std::optional<std::size_t> RemoveEntry(std::vector<T>& list, std::size_t index) {
    if (index < list.size()) list.erase(list.begin() + static_cast<std::ptrdiff_t>(index));
    if (list.empty()) return std::nullopt;
    return index < list.size() ? index : list.size() - 1;
}

// A file dropped on the launcher list: a program is taken as it is, a
// shortcut is followed to its target, anything else is refused.
enum class DropKind { Program, Shortcut, Refused };
DropKind ClassifyDroppedFile(std::string_view path, bool isFolder);

// What a shortcut (or a program itself) says about starting it.
struct LaunchTarget {
    std::string path;
    std::string arguments;
    std::string workingFolder;  // empty: the program's own folder
    int showCommand = 1;        // SW_SHOWNORMAL and the other SW_ values
};
// The launcher record for a dropped file: named after the file dropped
// (the shortcut's own name reads better than its target's), starting the
// target in its working folder with the shortcut's window state.
settings::ExternalProgramRecord RecordForDroppedFile(std::string_view droppedPath,
                                                     const LaunchTarget& target);
// SW_SHOWMINIMIZED, SW_MINIMIZE and SW_SHOWMINNOACTIVE give 2 (minimized),
// SW_SHOWMAXIMIZED 3, every other command 1 (normal).
int WindowStateForShowCommand(int showCommand);

// The entry of the required-files list for a file chosen in the compiler's
// folder: its path below that folder; the bare file name for a file elsewhere.
std::string RequiredFileEntry(std::string_view compilerFolder, std::string_view chosenFile);

// One access key per caption, chosen from the English captions so that the
// keys stay the same in every language: the first free letter that starts
// a word, else the first free letter. Letters in `taken` (lower case) are
// not used; every letter chosen is added to it. 0 where no letter is free.
std::vector<char> ChooseMnemonics(const std::vector<std::string>& englishCaptions,
                                  std::string& taken);
// The caption with its access key marked: "&" before the letter where the
// caption has it (at a word start if it can), else "(&X)" after it, as
// Japanese captions show their keys. Any "&" of the caption itself is doubled.
std::wstring WithMnemonic(std::wstring_view caption, char letter);

// The pattern with {0}, {1}, ... replaced by the arguments.
std::wstring FormatText(std::wstring_view pattern, const std::vector<std::wstring>& arguments);

}  // namespace zorvi
