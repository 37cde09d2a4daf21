// The about window's texts and sizes, and what makes a file the help file.
#pragma once

#include <string>
#include <string_view>

#include "core/version.h"

namespace zorvi {

// The about window's fixed sizes in twips: one width, two heights.
inline constexpr int kAboutWidth = 4470;
inline constexpr int kAboutCollapsedHeight = 1860;
inline constexpr int kAboutExpandedHeight = 4740;

// title + " - About".
std::string AboutCaption(std::string_view title);
// "Version " + the version text: "Version 0.14c".
std::string VersionLabel(const VersionRecord& version);
// "Build " + the build date (yyyymmdd).
std::string BuildLabel(std::string_view buildDate);

// A compiled help file begins with the signature "ITSF"; anything else
// (an empty file, a page saved under the help file's name) is not one.
bool LooksLikeHelpFile(std::string_view firstBytes);

}  // namespace zorvi
