// The application title and the version text shown in captions and the about window.
#include "core/version.h"

#include <string_view>

#include "res/version.h"

namespace zorvi {

static_assert(std::string_view(ZORVI_TITLE) == "Zorvi");

VersionRecord ThisVersion() {
    return {ZORVI_VERSION_MAJOR, ZORVI_VERSION_MINOR, ZORVI_VERSION_REVISION};
}

std::string VersionText(const VersionRecord& version) {
    std::string text = std::to_string(version.major) + "." + std::to_string(version.minor);
    // Only revisions that map onto a letter get one; anything else would
    // print punctuation or control characters into the caption.
    if (version.revision >= 1 && version.revision <= 26) {
        text += static_cast<char>(version.revision + 96);
    }
    return text;
}

}  // namespace zorvi
