// What the configuration window edits, and the ordered writes that saving it
// makes to the main settings file and to the configuration's own file.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "settings/list_layouts.h"
#include "settings/schema.h"

namespace zorvi::settings {

// The procedure name under which a failed save is reported.
inline constexpr const char* kSaveProcedureName = "Config-WriteIniFile";

// Everything the configuration window edits, as plain values; the window
// binds its controls to these fields.
struct ConfigurationValues {
    std::string name;  // as typed in the selector; made safe for a file name on save

    // Main settings file.
    bool alwaysTop = false;
    bool autoSetFile = false;
    bool autoOpen = false;
    bool autoWatch = false;
    bool autoMinimize = false;
    bool taskTray = false;
    bool useAltPopUp = false;
    bool autoShutDown = false;
    bool autoClose = false;
    std::string editor;
    int editorWindowState = main_file::kEditorWindowState.fallback;
    bool useAssociatedEditor = false;
    int timerInterval = main_file::kTimerInterval.fallback;
    std::uint8_t iconSize = static_cast<std::uint8_t>(main_file::kIconSize.fallback);
    bool japanese = false;
    std::vector<ExternalProgramRecord> externalPrograms;
    std::vector<FilterRecord> filters;

    // Configuration file.
    bool useCUI = false;
    std::string console;
    int cuiWindowState = config_file::kCUIWindowState.fallback;
    std::string extension;
    bool forceShortName = false;
    bool stepMode = false;
    bool detectError = false;
    bool useGUI = false;
    std::string player;
    int guiWindowState = config_file::kGUIWindowState.fallback;
    bool useAssociated = false;
    std::string script;    // Script text block
    std::string required;  // Required text block

    bool operator==(const ConfigurationValues&) const = default;
};

enum class SettingsFileRole { Main, Configuration };

// One plain value of ConfigurationValues and the key it is stored under:
// exactly one of flag, number and text is set, with the matching key.
// Loading and saving both walk the tables below, so the order of the keys
// and their defaults live in one place.
struct PlainField {
    SettingsFileRole file;
    bool ConfigurationValues::*flag = nullptr;
    int ConfigurationValues::*number = nullptr;
    std::string ConfigurationValues::*text = nullptr;
    const IntKey* intKey = nullptr;    // with flag or number
    const TextKey* textKey = nullptr;  // with text
};
// Written after Setting/Default and Option/AlwaysTop, before the text blocks.
std::span<const PlainField> FieldsBeforeTextBlocks();
// Written after the text blocks, before IconSize and Language.
std::span<const PlainField> FieldsAfterTextBlocks();

// The stored values of the three settings that are compared before they are
// written, because changing them shows at once.
struct StoredVisibleSettings {
    int alwaysTop = main_file::kAlwaysTop.fallback;
    int iconSize = main_file::kIconSize.fallback;
    std::string language = main_file::kLanguage.fallback;
};

enum class VisibleChange { None, AlwaysTop, IconSize, Language };

struct PlannedWrite {
    SettingsFileRole file;
    IniWrite write;
    VisibleChange change = VisibleChange::None;  // what the caller must apply once it is written
};

struct ConfigurationSavePlan {
    std::string name;                 // safe name: Setting/Default and cfg\<name>.ini
    std::vector<PlannedWrite> writes; // in the order they must happen
    std::string script;               // the texts as stored, for the edit boxes
    std::string required;
};

// The eleven characters that cannot stand in a file name become "_".
std::string SafeConfigurationName(std::string_view name);
// CON, PRN, AUX, NUL, COM1-9, LPT1-9 (with or without an extension) open a
// device instead of a file, so no configuration may be called that.
bool IsReservedDeviceName(std::string_view name);

// Every write of a save, in its order. Nothing is planned for an empty name.
ConfigurationSavePlan PlanConfigurationSave(const ConfigurationValues& values,
                                            const StoredVisibleSettings& stored);

}  // namespace zorvi::settings
