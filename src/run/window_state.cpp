// How a launch is shown and how its parameter text is passed.
#include "run/window_state.h"

namespace zorvi {
namespace {

// The platform's show commands, by number, so this file stays free of <windows.h>.
constexpr int kShowNormal = 1;
constexpr int kMaximize = 3;
constexpr int kMinimize = 6;

}  // namespace

int ShowCommandForWindowState(int windowState) {
    switch (windowState) {
        case 2: return kMinimize;
        case 3: return kMaximize;
        // "Hide" (0) is shown normally on purpose: a hidden console that waits
        // for a key would never end.
        default: return kShowNormal;
    }
}

std::string QuoteParameters(const std::string& parameters) {
    // Callers mostly hand over one path, which must arrive as one argument
    // whatever blanks it holds; so the whole text becomes one argument, even
    // when it already holds quotes or several words.
    if (parameters.find(' ') == std::string::npos) return parameters;
    return "\"" + parameters + "\"";
}

}  // namespace zorvi
