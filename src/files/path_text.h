// Path text operations that need no file system: the platform-free half of mdlFile.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Every operation that looks for "\", ".", ":" or another ASCII character
// steps over whole double-byte characters, as the lead-byte test that the
// platform sets at start-up (SetLeadByteTest, core/text.h) says; results for
// single-byte text do not depend on it.
namespace zorvi::mdlFile {

// Every platform path call goes through buffers of this many characters.
inline constexpr std::size_t kPathBuffer = 300;

// The characters MakeSafeFileName replaces, in the order it replaces them.
inline constexpr std::string_view InvalidFileNameChars = "\\/:,;*?\"<>|";

// The text before the first NUL; the whole text when it holds none.
std::string TrimNull(std::string_view text);

// The text after the last "\" (the whole text when there is none).
std::string GetFileName(std::string_view path);
// Within GetFileName, the text after the last "."; empty when the name has none.
std::string GetExtension(std::string_view path);
// The file name without its extension. A name without any extension loses its
// last character (README gives READM; a double-byte one goes whole), as it always has.
std::string GetBaseName(std::string_view path);

// Portable twins of the shell's path calls, with the same results on
// "\"-separated paths, for logic that must not ask Windows.
std::string AppendBackslash(std::string_view path);  // PathAddBackslashA
std::string StripBackslash(std::string_view path);   // PathRemoveBackslashA
std::string StripFileSpec(std::string_view path);    // PathRemoveFileSpecA

// Folder (with "\", empty for a bare name) & base name & "." & extension; no
// dot when the extension is empty. Built from the twins, so it gives what the
// platform's GetFolderOf would.
std::string ChangeExtension(std::string_view path, std::string_view extension);

// Every character of InvalidFileNameChars becomes "_" (never the second byte
// of a double-byte character, such as the 0x5C of 表).
std::string MakeSafeFileName(std::string_view name);

// Paths of 48 characters or more lose folders after the first "\" to "...",
// one at a time, until they are shorter or no folder is left: C:\...\work\piece.mml.
std::string ShortenPathForDisplay(std::string_view path);

// Empties later exact duplicates (after an ascending sort when sortFirst), then,
// unless keepBlanks, drops every empty entry.
void RemoveDuplicates(std::vector<std::string>& list, bool sortFirst, bool keepBlanks);

// folder & "\MML000" ... "\MML999": the first for which fileExists is false;
// the MML999 name when all of them exist. No extension.
std::string UniqueTempName(std::string_view folder,
                           const std::function<bool(const std::string&)>& fileExists);

// The length of the longest start of text that is at most limit bytes and does
// not end between the two bytes of a double-byte character.
std::size_t CharBoundaryCut(std::string_view text, std::size_t limit,
                            const std::function<bool(unsigned char)>& isLeadByte);

// A file dialog filter written "Name|*.ext|Name|*.ext" in the NUL-separated
// form the dialog takes: every "|" becomes NUL, and it ends with one NUL.
std::string NulSeparatedFilter(std::string_view barSeparated);

// One entry of the file-type list in the main settings file.
struct FilterEntry {
    std::string name;        // Item<i>
    std::string extensions;  // Extension<i>, e.g. ".mml;.mus"
};
// The target file dialog's filter, NUL-separated: one pair per entry with "*"
// before each extension, or the MML/MUS/Text/All files list when there are none.
std::string BuildFilterText(const std::vector<FilterEntry>& entries);

// The on-disk name of the last component of a path, as a directory search
// finds it; nullopt when nothing matches.
using FindEntryName = std::function<std::optional<std::string>(const std::string& path)>;

// The true-case long form of a path, built one component at a time: the root
// stays upper case ("C:", "\\SERVER\SHARE"), every other component takes the
// case found on disk, and there is no trailing backslash. Empty when a
// component is missing or a network path lacks its share.
std::string LongPathOf(std::string_view path, const FindEntryName& findEntryName);

}  // namespace zorvi::mdlFile
