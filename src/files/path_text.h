// Path text operations that need no file system: the platform-free half of mdlFile.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zorvi::mdlFile {

// Every platform path call goes through buffers of this many characters.
inline constexpr std::size_t kPathBuffer = 300;

// The text before the first NUL; the whole text when it holds none.
std::string TrimNull(std::string_view text);

// The on-disk name of the last component of a path, as a directory search
// finds it; nullopt when nothing matches.
using FindEntryName = std::function<std::optional<std::string>(const std::string& path)>;

// The true-case long form of a path, built one component at a time: the root
// stays upper case ("C:", "\\SERVER\SHARE"), every other component takes the
// case found on disk, and there is no trailing backslash. Empty when a
// component is missing or a network path lacks its share.
std::string LongPathOf(std::string_view path, const FindEntryName& findEntryName);

}  // namespace zorvi::mdlFile
