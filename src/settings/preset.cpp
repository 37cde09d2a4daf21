// Where a configuration's file lives, and which configuration is the active one.
#include "settings/preset.h"

namespace zorvi {

std::string PresetPath(const std::string& appFolder, const std::string& name) {
    return appFolder + "cfg\\" + name + ".ini";
}

std::string ActivePresetName(const std::string& storedName,
                             const std::function<bool(const std::string& name)>& presetExists) {
    // A release unpacked into an empty folder has no Zorvi.ini: its first
    // compile must work all the same. A stored name whose file is gone falls
    // back too, but only to a configuration that is there; otherwise the name
    // stays, so that the compile can say that its file is missing.
    if (!storedName.empty() && presetExists(storedName)) return storedName;
    if (presetExists(kExamplePreset)) return kExamplePreset;
    return storedName;
}

}  // namespace zorvi
