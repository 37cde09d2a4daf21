// Where a configuration's file lives, and which configuration is the active one.
#pragma once

#include <functional>
#include <string>

namespace zorvi {

// The configuration that comes with Zorvi (cfg\Example.ini in the release).
inline constexpr const char* kExamplePreset = "Example";

// appFolder ends with a backslash; an empty name gives "...\cfg\.ini".
std::string PresetPath(const std::string& appFolder, const std::string& name);

// The name of the active configuration: Setting/Default as stored, unless it
// is empty or names no file while the example configuration is there; then
// the example. Nothing is written: the choice stays the user's to make.
// presetExists tells whether cfg\<name>.ini exists.
std::string ActivePresetName(const std::string& storedName,
                             const std::function<bool(const std::string& name)>& presetExists);

}  // namespace zorvi
