// How a launch is shown and how its parameter text is passed: the decisions
// of the process runner that need no platform.
#pragma once

#include <string>

namespace zorvi {

// The stored window-state code as a show command: 2 -> SW_MINIMIZE (6),
// 3 -> SW_MAXIMIZE (3), anything else, 0 ("Hide") included -> SW_SHOWNORMAL (1).
int ShowCommandForWindowState(int windowState);

// The parameter text as it is handed to the shell: wrapped whole in double
// quotes when it contains a blank, unchanged otherwise.
std::string QuoteParameters(const std::string& parameters);

// How a launch hands its parameter text over: as one argument (QuoteParameters,
// for a path), or as it stands, for a command line the user wrote with quotes
// of their own (the editor's line arguments).
enum class ParameterText { OneArgument, AsWritten };

}  // namespace zorvi
