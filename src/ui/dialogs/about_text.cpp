// The about window's texts and sizes, and what makes a file the help file.
#include "ui/dialogs/about_text.h"

namespace zorvi {

std::string AboutCaption(std::string_view title) { return std::string(title) + " - About"; }

std::string VersionLabel(const VersionRecord& version) {
    return "Version " + VersionText(version);
}

std::string BuildLabel(std::string_view buildDate) { return "Build " + std::string(buildDate); }

bool LooksLikeHelpFile(std::string_view firstBytes) { return firstBytes.starts_with("ITSF"); }

}  // namespace zorvi
