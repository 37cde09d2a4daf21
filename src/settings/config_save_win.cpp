// Loading what the configuration window edits, and saving a configuration:
// the backup copy of the file as it was, then every key in its order (keys
// that hold their value already are not rewritten).
#include "settings/config_save_win.h"

#include <windows.h>

#include "core/handles_win.h"

#include "files/path_win.h"
#include "settings/ini_win.h"
#include "settings/lists_win.h"

namespace zorvi::settings {
namespace {

using Status = ConfigurationSaveResult::Status;

std::string SystemText(DWORD code) {
    char* buffer = nullptr;
    const DWORD length = FormatMessageA(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
            FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, code, 0, reinterpret_cast<char*>(&buffer), 0, nullptr);
    const UniqueLocalMemory owned(buffer);
    std::string text = length > 0 && buffer != nullptr ? std::string(buffer, length) : "";
    while (!text.empty() && (text.back() == '\r' || text.back() == '\n' || text.back() == ' ')) {
        text.pop_back();
    }
    return text;
}

// A platform call that fails without saying why still needs a number the
// user can quote.
void Fail(ConfigurationSaveResult& result, DWORD code, const std::string& what) {
    if (code == ERROR_SUCCESS) code = ERROR_WRITE_FAULT;
    const std::string reason = SystemText(code);
    result.status = Status::Failed;
    result.errorNumber = static_cast<long>(code);
    result.errorDescription = reason.empty() ? what : what + ": " + reason;
}

// The configuration's file as it was before this save goes to cfg\<name>.txt.
bool CopyBackup(ConfigurationSaveResult& result, const std::string& backupFile) {
    if (!mdlFile::FileExists(result.configurationFile)) return true;
    // A missing backup is no error; any other reason shows in the copy below.
    DeleteFileA(backupFile.c_str());
    if (CopyFileA(result.configurationFile.c_str(), backupFile.c_str(), FALSE)) return true;
    const DWORD code = GetLastError();
    Fail(result, code, "Cannot copy " + result.configurationFile + " to " + backupFile);
    return false;
}

std::uint8_t ReadIconSize(const std::string& mainFile) {
    const int stored = ReadIniInt(main_file::kIconSize, mainFile);
    // The size is kept as one byte; anything else is not a size the window can show.
    return static_cast<std::uint8_t>(stored >= 0 && stored <= 255 ? stored
                                                                  : main_file::kIconSize.fallback);
}

}  // namespace

std::string ConfigurationFile(const std::string& appFolder, const std::string& safeName) {
    return appFolder + "cfg\\" + safeName + ".ini";
}

std::string ConfigurationBackupFile(const std::string& appFolder, const std::string& safeName) {
    return appFolder + "cfg\\" + safeName + ".txt";
}

namespace {

// Reads the plain fields that belong to file.
void LoadFields(ConfigurationValues& values, SettingsFileRole role, const std::string& file) {
    for (auto fields : {FieldsBeforeTextBlocks(), FieldsAfterTextBlocks()}) {
        for (const PlainField& field : fields) {
            if (field.file != role) continue;
            if (field.text != nullptr) {
                values.*field.text = ReadIni(*field.textKey, file);
            } else if (field.flag != nullptr) {
                values.*field.flag = ReadIniFlag(*field.intKey, file);
            } else {
                values.*field.number = ReadIniInt(*field.intKey, file);
            }
        }
    }
}

}  // namespace

void LoadMainSettings(ConfigurationValues& values, const std::string& mainFile) {
    namespace mf = main_file;
    values.alwaysTop = ReadIniFlag(mf::kAlwaysTop, mainFile);
    LoadFields(values, SettingsFileRole::Main, mainFile);
    values.iconSize = ReadIconSize(mainFile);
    values.japanese = ReadIni(mf::kLanguage, mainFile) == kJapanese;
    values.externalPrograms = ReadExternalPrograms(mainFile);
    values.filters = ReadFilters(mainFile);
}

void LoadConfigurationFile(ConfigurationValues& values, const std::string& configurationFile) {
    namespace cf = config_file;
    LoadFields(values, SettingsFileRole::Configuration, configurationFile);
    values.script = ReadTextBlock(cf::kScript, configurationFile);
    values.required = ReadTextBlock(cf::kRequired, configurationFile);
}

ConfigurationValues LoadConfigurationValues(const std::string& name, const std::string& appFolder,
                                            const std::string& mainFile) {
    ConfigurationValues values;
    values.name = SafeConfigurationName(name);
    LoadMainSettings(values, mainFile);
    LoadConfigurationFile(values, ConfigurationFile(appFolder, values.name));
    return values;
}

ConfigurationSaveResult SaveConfiguration(const ConfigurationValues& values,
                                          const std::string& appFolder,
                                          const std::string& mainFile,
                                          const SaveProgress& progress) {
    const StoredVisibleSettings stored{
        .alwaysTop = ReadIniInt(main_file::kAlwaysTop, mainFile),
        .iconSize = ReadIniInt(main_file::kIconSize, mainFile),
        .language = ReadIni(main_file::kLanguage, mainFile),
    };
    const ConfigurationSavePlan plan = PlanConfigurationSave(values, stored);

    ConfigurationSaveResult result;
    result.name = plan.name;
    result.script = plan.script;
    result.required = plan.required;
    if (plan.name.empty()) {
        result.status = Status::EmptyName;
        return result;
    }
    result.configurationFile = ConfigurationFile(appFolder, plan.name);
    const std::string backupFile = ConfigurationBackupFile(appFolder, plan.name);

    // Refused before anything is written: such a name would open a device,
    // or a path the profile functions cannot take.
    if (IsReservedDeviceName(plan.name)) {
        Fail(result, ERROR_INVALID_NAME, "The configuration name " + plan.name + " is reserved");
        return result;
    }
    if (result.configurationFile.size() >= MAX_PATH || mainFile.size() >= MAX_PATH) {
        Fail(result, ERROR_FILENAME_EXCED_RANGE, "Cannot write " + result.configurationFile);
        return result;
    }
    if (!CopyBackup(result, backupFile)) return result;

    IniUpdater updater;
    for (const auto& planned : plan.writes) {
        const std::string& file =
            planned.file == SettingsFileRole::Main ? mainFile : result.configurationFile;
        if (!updater.Write(planned.write.section, planned.write.key, planned.write.value, file)) {
            const DWORD code = GetLastError();
            Fail(result, code,
                 "Cannot write " + planned.write.section + "/" + planned.write.key + " to " + file);
            return result;
        }
        switch (planned.change) {
            case VisibleChange::AlwaysTop: result.alwaysTopChanged = true; break;
            case VisibleChange::IconSize: result.iconSizeChanged = true; break;
            case VisibleChange::Language: result.languageChanged = true; break;
            case VisibleChange::None: break;
        }
        if (progress) progress();
    }
    result.status = Status::Saved;
    return result;
}

}  // namespace zorvi::settings
