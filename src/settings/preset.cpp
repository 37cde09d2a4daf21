// Where a configuration's file lives.
#include "settings/preset.h"

namespace zorvi {

std::string PresetPath(const std::string& appFolder, const std::string& name) {
    return appFolder + "cfg\\" + name + ".ini";
}

}  // namespace zorvi
