// Where a configuration's file lives.
#pragma once

#include <string>

namespace zorvi {

// appFolder ends with a backslash; an empty name gives "...\cfg\.ini".
std::string PresetPath(const std::string& appFolder, const std::string& name);

}  // namespace zorvi
