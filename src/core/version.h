// The application title and the version text shown in captions and the about window.
#pragma once

#include <string>

namespace zorvi {

inline constexpr const char* kAppTitle = "Zorvi";

struct VersionRecord {
    int major = 0;
    int minor = 0;
    int revision = 0;
};

VersionRecord ThisVersion();

// "major.minor", plus one lower-case letter for a non-zero revision
// (1 gives "a", 2 gives "b"): version 0.14 revision 3 reads "0.14c".
std::string VersionText(const VersionRecord& version);

}  // namespace zorvi
