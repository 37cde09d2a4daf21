// The ordered writes of saving a configuration: the main settings file's
// options and lists and the configuration's own file, in the one order the
// configuration window has always kept.
#include "settings/config_save.h"

#include <array>

#include "files/path_text.h"

namespace zorvi::settings {
namespace {

std::string Flag(bool on) { return on ? "1" : "0"; }

char AsciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

class Planner {
public:
    explicit Planner(ConfigurationSavePlan& plan) : plan_(plan) {}

    void Main(const TextKey& key, std::string value, VisibleChange change = VisibleChange::None) {
        Add(SettingsFileRole::Main, key.section, key.name, std::move(value), change);
    }
    void Main(const IntKey& key, int value, VisibleChange change = VisibleChange::None) {
        Add(SettingsFileRole::Main, key.section, key.name, std::to_string(value), change);
    }
    void Main(const IntKey& key, bool on) {
        Add(SettingsFileRole::Main, key.section, key.name, Flag(on), VisibleChange::None);
    }
    void Config(const TextKey& key, std::string value) {
        Add(SettingsFileRole::Configuration, key.section, key.name, std::move(value),
            VisibleChange::None);
    }
    void Config(const IntKey& key, int value) {
        Add(SettingsFileRole::Configuration, key.section, key.name, std::to_string(value),
            VisibleChange::None);
    }
    void Config(const IntKey& key, bool on) {
        Add(SettingsFileRole::Configuration, key.section, key.name, Flag(on),
            VisibleChange::None);
    }
    void All(SettingsFileRole file, std::vector<IniWrite> writes) {
        for (auto& write : writes) plan_.writes.push_back({file, std::move(write)});
    }

private:
    void Add(SettingsFileRole file, const char* section, const char* key, std::string value,
             VisibleChange change) {
        plan_.writes.push_back({file, {section, key, std::move(value)}, change});
    }

    ConfigurationSavePlan& plan_;
};

}  // namespace

std::string SafeConfigurationName(std::string_view name) {
    // Whatever follows a NUL would never reach the platform's file name.
    return mdlFile::MakeSafeFileName(mdlFile::TrimNull(name));
}

bool IsReservedDeviceName(std::string_view name) {
    // The device wins whatever follows the first dot ("nul.txt" is NUL too).
    std::string stem(name.substr(0, name.find('.')));
    while (!stem.empty() && stem.back() == ' ') stem.pop_back();
    for (char& c : stem) c = AsciiUpper(c);
    static constexpr std::array<std::string_view, 4> kPlain = {"CON", "PRN", "AUX", "NUL"};
    for (auto device : kPlain) {
        if (stem == device) return true;
    }
    return stem.size() == 4 && (stem.starts_with("COM") || stem.starts_with("LPT")) &&
           stem[3] >= '1' && stem[3] <= '9';
}

ConfigurationSavePlan PlanConfigurationSave(const ConfigurationValues& values,
                                            const StoredVisibleSettings& stored) {
    ConfigurationSavePlan plan;
    plan.name = SafeConfigurationName(values.name);
    plan.script = TextBlockForSaving(values.script);
    plan.required = TextBlockForSaving(values.required);
    if (plan.name.empty()) return plan;

    namespace mf = main_file;
    namespace cf = config_file;
    Planner add(plan);

    add.Main(mf::kDefault, plan.name);

    // Only the topmost state is compared first: writing it changes the window at once.
    if (int{values.alwaysTop} != stored.alwaysTop) {
        add.Main(mf::kAlwaysTop, int{values.alwaysTop}, VisibleChange::AlwaysTop);
    }
    add.Main(mf::kAutoSetFile, values.autoSetFile);
    add.Main(mf::kAutoOpen, values.autoOpen);
    add.Main(mf::kAutoWatch, values.autoWatch);
    add.Main(mf::kAutoMinimize, values.autoMinimize);
    add.Main(mf::kTaskTray, values.taskTray);
    add.Main(mf::kUseAltPopUp, values.useAltPopUp);
    add.Main(mf::kAutoShutDown, values.autoShutDown);
    add.Main(mf::kAutoClose, values.autoClose);
    add.Main(mf::kEditor, values.editor);
    add.Main(mf::kEditorWindowState, values.editorWindowState);
    add.Main(mf::kUseAssociatedEditor, values.useAssociatedEditor);

    add.Config(cf::kUseCUI, values.useCUI);
    add.Config(cf::kConsole, values.console);
    add.Config(cf::kCUIWindowState, values.cuiWindowState);
    add.Config(cf::kExtension, values.extension);
    add.Config(cf::kForceShortName, values.forceShortName);
    add.Config(cf::kStepMode, values.stepMode);
    add.Config(cf::kDetectError, values.detectError);
    add.Config(cf::kUseGUI, values.useGUI);
    add.Config(cf::kPlayer, values.player);
    add.Config(cf::kGUIWindowState, values.guiWindowState);
    add.Config(cf::kUseAssociated, values.useAssociated);

    add.All(SettingsFileRole::Configuration, TextBlockWrites(cf::kScript, plan.script));
    add.All(SettingsFileRole::Configuration, TextBlockWrites(cf::kRequired, plan.required));

    add.Main(mf::kTimerInterval, values.timerInterval);
    if (int{values.iconSize} != stored.iconSize) {
        add.Main(mf::kIconSize, int{values.iconSize}, VisibleChange::IconSize);
    }
    // Only the two transitions count: a stored "japanese" (lower case) already
    // means English, so choosing English then writes nothing.
    const bool storedJapanese = stored.language == kJapanese;
    if (values.japanese != storedJapanese) {
        add.Main(mf::kLanguage, values.japanese ? kJapanese : kEnglish, VisibleChange::Language);
    }

    add.All(SettingsFileRole::Main, ExternalProgramWrites(values.externalPrograms));
    add.All(SettingsFileRole::Main, FilterWrites(values.filters));
    return plan;
}

}  // namespace zorvi::settings
