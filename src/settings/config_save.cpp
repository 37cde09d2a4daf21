// The ordered writes of saving a configuration: the main settings file's
// options and lists and the configuration's own file, in the one order the
// configuration window has always kept.
#include "settings/config_save.h"

#include <array>

#include "core/text.h"
#include "files/path_text.h"

namespace zorvi::settings {
namespace {

using V = ConfigurationValues;
using R = SettingsFileRole;
namespace mf = main_file;
namespace cf = config_file;

constexpr PlainField Flag(R file, bool V::*field, const IntKey& key) {
    return {file, field, nullptr, nullptr, &key, nullptr};
}
constexpr PlainField Number(R file, int V::*field, const IntKey& key) {
    return {file, nullptr, field, nullptr, &key, nullptr};
}
constexpr PlainField Text(R file, std::string V::*field, const TextKey& key) {
    return {file, nullptr, nullptr, field, nullptr, &key};
}

constexpr std::array kBeforeTextBlocks{
    Flag(R::Main, &V::autoSetFile, mf::kAutoSetFile),
    Flag(R::Main, &V::autoOpen, mf::kAutoOpen),
    Flag(R::Main, &V::autoWatch, mf::kAutoWatch),
    Flag(R::Main, &V::autoMinimize, mf::kAutoMinimize),
    Flag(R::Main, &V::taskTray, mf::kTaskTray),
    Flag(R::Main, &V::useAltPopUp, mf::kUseAltPopUp),
    Flag(R::Main, &V::autoShutDown, mf::kAutoShutDown),
    Flag(R::Main, &V::autoClose, mf::kAutoClose),
    Text(R::Main, &V::editor, mf::kEditor),
    Number(R::Main, &V::editorWindowState, mf::kEditorWindowState),
    Flag(R::Main, &V::useAssociatedEditor, mf::kUseAssociatedEditor),
    Flag(R::Configuration, &V::useCUI, cf::kUseCUI),
    Text(R::Configuration, &V::console, cf::kConsole),
    Number(R::Configuration, &V::cuiWindowState, cf::kCUIWindowState),
    Text(R::Configuration, &V::extension, cf::kExtension),
    Flag(R::Configuration, &V::forceShortName, cf::kForceShortName),
    Flag(R::Configuration, &V::stepMode, cf::kStepMode),
    Flag(R::Configuration, &V::detectError, cf::kDetectError),
    Flag(R::Configuration, &V::useGUI, cf::kUseGUI),
    Text(R::Configuration, &V::player, cf::kPlayer),
    Number(R::Configuration, &V::guiWindowState, cf::kGUIWindowState),
    Flag(R::Configuration, &V::useAssociated, cf::kUseAssociated),
};
constexpr std::array kAfterTextBlocks{
    Number(R::Main, &V::timerInterval, mf::kTimerInterval),
};

class Planner {
public:
    explicit Planner(ConfigurationSavePlan& plan) : plan_(plan) {}

    void Main(const TextKey& key, std::string value, VisibleChange change = VisibleChange::None) {
        Add(R::Main, key.section, key.name, std::move(value), change);
    }
    void Main(const IntKey& key, int value, VisibleChange change) {
        Add(R::Main, key.section, key.name, std::to_string(value), change);
    }
    void Fields(std::span<const PlainField> fields, const V& values) {
        for (const PlainField& field : fields) {
            if (field.text != nullptr) {
                Add(field.file, field.textKey->section, field.textKey->name, values.*field.text,
                    VisibleChange::None);
            } else {
                const std::string value = field.flag != nullptr ? (values.*field.flag ? "1" : "0")
                                                                : std::to_string(values.*field.number);
                Add(field.file, field.intKey->section, field.intKey->name, value,
                    VisibleChange::None);
            }
        }
    }
    void All(SettingsFileRole file, std::vector<IniWrite> writes) {
        for (auto& write : writes) plan_.writes.push_back({file, std::move(write)});
    }

private:
    void Add(R file, const char* section, const char* key, std::string value,
             VisibleChange change) {
        plan_.writes.push_back({file, {section, key, std::move(value)}, change});
    }

    ConfigurationSavePlan& plan_;
};

}  // namespace

std::span<const PlainField> FieldsBeforeTextBlocks() { return kBeforeTextBlocks; }
std::span<const PlainField> FieldsAfterTextBlocks() { return kAfterTextBlocks; }

std::string SafeConfigurationName(std::string_view name) {
    // Whatever follows a NUL would never reach the platform's file name.
    return mdlFile::MakeSafeFileName(mdlFile::TrimNull(name));
}

bool IsReservedDeviceName(std::string_view name) {
    // The device wins whatever follows the first dot ("nul.txt" is NUL too).
    std::string stem = AsciiUpper(name.substr(0, name.find('.')));
    while (!stem.empty() && stem.back() == ' ') stem.pop_back();
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

    Planner add(plan);

    add.Main(mf::kDefault, plan.name);

    // Only the topmost state is compared first: writing it changes the window at once.
    if (int{values.alwaysTop} != stored.alwaysTop) {
        add.Main(mf::kAlwaysTop, int{values.alwaysTop}, VisibleChange::AlwaysTop);
    }
    add.Fields(kBeforeTextBlocks, values);

    add.All(SettingsFileRole::Configuration, TextBlockWrites(cf::kScript, plan.script));
    add.All(SettingsFileRole::Configuration, TextBlockWrites(cf::kRequired, plan.required));

    add.Fields(kAfterTextBlocks, values);
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
