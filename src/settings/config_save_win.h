// Loading what the configuration window edits, and saving it: backup copy,
// then every key in its order, against the real files.
#pragma once

#include <functional>
#include <string>

#include "settings/config_save.h"

namespace zorvi::settings {

// appFolder ends with a backslash; the configuration is appFolder + "cfg\" + name + ".ini".
std::string ConfigurationFile(const std::string& appFolder, const std::string& safeName);
std::string ConfigurationBackupFile(const std::string& appFolder, const std::string& safeName);

// The main settings file's part of the values (defaults for what is absent).
void LoadMainSettings(ConfigurationValues& values, const std::string& mainFile);
// The configuration file's part of the values.
void LoadConfigurationFile(ConfigurationValues& values, const std::string& configurationFile);
// Both parts, for the configuration named `name`.
ConfigurationValues LoadConfigurationValues(const std::string& name, const std::string& appFolder,
                                            const std::string& mainFile);

struct ConfigurationSaveResult {
    enum class Status {
        Saved,
        EmptyName,  // nothing written; the window asks for a name
        Failed,     // report errorNumber/errorDescription under kSaveProcedureName
    };
    Status status = Status::Failed;
    long errorNumber = 0;
    std::string errorDescription;

    std::string name;               // the safe name now in Setting/Default
    std::string configurationFile;  // cfg\<name>.ini
    // Which of the three visible settings were written, so the caller applies
    // them; after a failure only those written before it.
    bool alwaysTopChanged = false;
    bool iconSizeChanged = false;
    bool languageChanged = false;
    // The texts as stored, for the edit boxes.
    std::string script;
    std::string required;
};

// Called after every key written: a save of hundreds of records takes
// seconds, and the caller keeps its windows painted meanwhile.
using SaveProgress = std::function<void()>;

// Saves the values as the configuration values.name. A failure leaves the
// keys written before it in place and nothing is rolled back. Only the main
// settings file, cfg\<name>.ini and its backup cfg\<name>.txt are touched.
ConfigurationSaveResult SaveConfiguration(const ConfigurationValues& values,
                                          const std::string& appFolder,
                                          const std::string& mainFile,
                                          const SaveProgress& progress = {});

}  // namespace zorvi::settings
