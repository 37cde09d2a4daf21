// Reading and writing single settings keys through the ANSI private-profile functions.
#pragma once

#include <string>

#include "settings/schema.h"

namespace zorvi {

// Values longer than 299 characters come back cut; a value is cut at its first NUL.
std::string ReadIni(const std::string& section, const std::string& key,
                    const std::string& fallback, const std::string& file);
int ReadIniInt(const std::string& section, const std::string& key, int fallback,
               const std::string& file);
// The platform creates the file and the section on the first write.
bool WriteIni(const std::string& section, const std::string& key, const std::string& value,
              const std::string& file);
bool WriteIni(const std::string& section, const std::string& key, int value,
              const std::string& file);

std::string ReadIni(const settings::TextKey& key, const std::string& file);
int ReadIniInt(const settings::IntKey& key, const std::string& file);
// A flag read with the test its key prescribes.
bool ReadIniFlag(const settings::IntKey& key, const std::string& file);

enum class PresetForm { Path, Name };

// The active configuration (Setting/Default, or the example configuration
// when that names none): program folder + "cfg\" + name + ".ini", or only
// the name (for the status bar).
std::string GetDefaultPreset(PresetForm form = PresetForm::Path);

}  // namespace zorvi
