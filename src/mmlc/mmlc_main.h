// The mmlc command line as a function: arguments in, messages out on the two
// streams, the exit code back. main() only hands it the process's own.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace mmlc {

inline constexpr int kExitOk = 0;
// The song has errors, or a file could not be read or written.
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;

// args: the arguments after the program's name.
int MmlcMain(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

// song.mml -> song.mid; a name without an extension gets ".mid" added.
std::string DefaultOutputPath(const std::string& source);

}  // namespace mmlc
