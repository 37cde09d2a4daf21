// Reading and writing single settings keys through the ANSI private-profile
// functions. Nothing is cached: every call goes to the file.
#include "settings/ini_win.h"

#include <windows.h>

#include "core/mdlMain.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "settings/preset.h"

namespace zorvi {

std::string ReadIni(const std::string& section, const std::string& key,
                    const std::string& fallback, const std::string& file) {
    std::string buffer(mdlFile::kPathBuffer, '\0');
    const DWORD length = GetPrivateProfileStringA(section.c_str(), key.c_str(), fallback.c_str(),
                                                  buffer.data(), mdlFile::kPathBuffer,
                                                  file.c_str());
    buffer.resize(std::min<std::size_t>(length, mdlFile::kPathBuffer - 1));
    return mdlFile::TrimNull(buffer);
}

int ReadIniInt(const std::string& section, const std::string& key, int fallback,
               const std::string& file) {
    return static_cast<int>(
        GetPrivateProfileIntA(section.c_str(), key.c_str(), fallback, file.c_str()));
}

bool WriteIni(const std::string& section, const std::string& key, const std::string& value,
              const std::string& file) {
    return WritePrivateProfileStringA(section.c_str(), key.c_str(), value.c_str(),
                                      file.c_str()) != FALSE;
}

bool WriteIni(const std::string& section, const std::string& key, int value,
              const std::string& file) {
    return WriteIni(section, key, std::to_string(value), file);
}

std::string ReadIni(const settings::TextKey& key, const std::string& file) {
    return ReadIni(key.section, key.name, key.fallback, file);
}

int ReadIniInt(const settings::IntKey& key, const std::string& file) {
    return ReadIniInt(key.section, key.name, key.fallback, file);
}

bool ReadIniFlag(const settings::IntKey& key, const std::string& file) {
    const int value = ReadIniInt(key, file);
    return key.test == settings::FlagTest::NonZero ? value != 0 : value == 1;
}

std::string GetDefaultPreset(PresetForm form) {
    const std::string appFolder = mdlFile::GetAppFolder();
    const std::string name = ActivePresetName(
        ReadIni(settings::main_file::kDefault, mdlMain::MainSettingsPath()),
        [&appFolder](const std::string& preset) {
            return mdlFile::FileExists(PresetPath(appFolder, preset));
        });
    if (form == PresetForm::Name) return name;
    return PresetPath(appFolder, name);
}

}  // namespace zorvi
