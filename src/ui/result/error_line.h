// Which line of the target a line of the compiler's log points at, so that a
// double click on an error message can open the target there.
#pragma once

#include <optional>
#include <string_view>

namespace zorvi {

// The line number that logLine gives for the file named targetName, in the
// two forms compilers write: "name(line" (song.mml(9,23): error: ...) and
// "name:line:" (song.mml:9:23: error: ...). The name is compared without
// regard to case and may stand as a bare name or end a path (C:\songs\song.mml,
// songs/song.mml). Nullopt when the line names no line of that file, and for
// a line number of 0 or one of more than nine digits.
std::optional<int> ErrorLineFor(std::string_view logLine, std::string_view targetName);

}  // namespace zorvi
