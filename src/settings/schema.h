// Every section and key of Zorvi's settings files, with its default and how a
// flag is tested. No other file spells a key or repeats a default.
#pragma once

namespace zorvi::settings {

struct TextKey {
    const char* section;
    const char* name;
    const char* fallback;
};

// How a stored flag counts as on. The difference is deliberate and kept:
// some readers accept any non-zero value, others only exactly 1.
enum class FlagTest { ExactlyOne, NonZero };

struct IntKey {
    const char* section;
    const char* name;
    int fallback;
    FlagTest test = FlagTest::ExactlyOne;  // used only when the value is a flag
};

// Whether a value read for a flag key turns the flag on.
constexpr bool FlagHolds(const IntKey& key, int value) {
    return key.test == FlagTest::NonZero ? value != 0 : value == 1;
}

// A counted list: CountKey = N, then Prefix1 ... PrefixN. Record lists use the
// same count key, and every field of record i is its own key: field name + i.
struct CountedList {
    const char* section;
    const char* countKey;
    const char* itemPrefix;
};

// A text block: one key per line, and a count key that holds the index of
// the last line (the number of lines minus one), not the number of lines.
struct TextBlock {
    const char* section;
    const char* countKey;
    const char* linePrefix;
};

// Main settings file (Zorvi.ini beside the program).
namespace main_file {
inline constexpr TextKey kDefault{"Setting", "Default", ""};
inline constexpr TextKey kLanguage{"Setting", "Language", "English"};
inline constexpr TextKey kEditor{"Setting", "Editor", ""};
// The editor's arguments for opening the target at a line ("$line$" and the
// usual tokens), as they stand on its command line; empty: the target alone.
inline constexpr TextKey kEditorLineArgs{"Setting", "EditorLineArgs", ""};

// The launcher window, in twips.
inline constexpr IntKey kMainLeft{"Main", "Left", 0};
inline constexpr IntKey kMainTop{"Main", "Top", 0};
inline constexpr IntKey kMainWidth{"Main", "Width", 4410};
inline constexpr IntKey kMainHeight{"Main", "Height", 1064};
inline constexpr IntKey kMainMode{"Main", "Mode", 0};

inline constexpr IntKey kAlwaysTop{"Option", "AlwaysTop", 0, FlagTest::NonZero};
inline constexpr IntKey kAutoSetFile{"Option", "AutoSetFile", 0, FlagTest::ExactlyOne};
inline constexpr IntKey kAutoOpen{"Option", "AutoOpen", 0, FlagTest::ExactlyOne};
inline constexpr IntKey kAutoWatch{"Option", "AutoWatch", 0, FlagTest::ExactlyOne};
inline constexpr IntKey kAutoMinimize{"Option", "AutoMinimize", 0, FlagTest::ExactlyOne};
inline constexpr IntKey kTaskTray{"Option", "TaskTray", 0, FlagTest::ExactlyOne};
inline constexpr IntKey kUseAltPopUp{"Option", "UseAltPopUp", 0, FlagTest::NonZero};
inline constexpr IntKey kAutoShutDown{"Option", "AutoShutDown", 0, FlagTest::ExactlyOne};
inline constexpr IntKey kTimerInterval{"Option", "TimerInterval", 250};         // milliseconds
inline constexpr IntKey kIconSize{"Option", "IconSize", 16};                    // 0 to 255
inline constexpr IntKey kEditorWindowState{"Option", "EditorWindowState", 1};  // window state
inline constexpr IntKey kUseAssociatedEditor{"Option", "UseAssociatedEditor", 0,
                                             FlagTest::ExactlyOne};

// The result window's own reader of AutoClose defaults to off, the compile
// pipeline's to on; the two defaults differ on purpose.
inline constexpr IntKey kAutoClose{"ResultWindow", "AutoClose", 0, FlagTest::NonZero};
inline constexpr IntKey kAutoCloseAfterCompile{"ResultWindow", "AutoClose", 1, FlagTest::NonZero};
inline constexpr IntKey kResultLeft{"ResultWindow", "Left", 0};
inline constexpr IntKey kResultTop{"ResultWindow", "Top", 0};
inline constexpr IntKey kResultWidth{"ResultWindow", "Width", 7200};
inline constexpr IntKey kResultHeight{"ResultWindow", "Height", 3700};
// The code page of logs that are not UTF-8. 0, and any value the system
// cannot convert from, stands for the system's ANSI code page.
inline constexpr IntKey kLogCodePage{"ResultWindow", "LogCodePage", 0};

inline constexpr IntKey kConfigureLeft{"ConfigureWindow", "Left", 0};
inline constexpr IntKey kConfigureTop{"ConfigureWindow", "Top", 0};

inline constexpr CountedList kEditorList{"EditorList", "ItemCount", "Item"};
inline constexpr CountedList kPlayerList{"PlayerList", "ItemCount", "Item"};

// Launcher records: the fields below, numbered from 1 up to the count.
inline constexpr CountedList kExternalPrograms{"ExternalProgram", "ItemCount", "Item"};
namespace external_program {
inline constexpr TextKey kItem{"ExternalProgram", "Item", ""};
inline constexpr TextKey kCommand{"ExternalProgram", "Command", ""};
inline constexpr TextKey kOption{"ExternalProgram", "Option", ""};
inline constexpr TextKey kStartUpFolder{"ExternalProgram", "StartUpFolder", ""};
inline constexpr IntKey kWindowState{"ExternalProgram", "WindowState", 1};
inline constexpr IntKey kAutoRun{"ExternalProgram", "AutoRun", 0, FlagTest::NonZero};
// End this program when Zorvi ends; saved with its record.
inline constexpr IntKey kAutoShutDown{"ExternalProgram", "AutoShutDown", 0, FlagTest::NonZero};
}  // namespace external_program

// File types and the configuration each switches to.
inline constexpr CountedList kFilters{"Filter", "ItemCount", "Item"};
namespace filter {
inline constexpr TextKey kItem{"Filter", "Item", ""};
inline constexpr TextKey kExtension{"Filter", "Extension", ""};
inline constexpr TextKey kDefault{"Filter", "Default", ""};
}  // namespace filter

// History slots: "His0" followed by the slot number, His00 to His031.
inline constexpr const char* kHistorySection = "History";
inline constexpr const char* kHistorySlotPrefix = "His0";
inline constexpr int kHistorySlots = 32;
}  // namespace main_file

// Configuration files (cfg\<name>.ini beside the program).
namespace config_file {
inline constexpr TextKey kConsole{"Configure", "Console", ""};
inline constexpr TextKey kExtension{"Configure", "Extension", ""};
inline constexpr TextKey kPlayer{"Configure", "Player", ""};

inline constexpr IntKey kUseCUI{"Option", "UseCUI", 0, FlagTest::NonZero};
inline constexpr IntKey kCUIWindowState{"Option", "CUIWindowState", 1};
inline constexpr IntKey kForceShortName{"Option", "ForceShortName", 0, FlagTest::NonZero};
inline constexpr IntKey kStepMode{"Option", "StepMode", 0, FlagTest::NonZero};
inline constexpr IntKey kDetectError{"Option", "DetectError", 0, FlagTest::ExactlyOne};
// The play command takes any non-zero UseGUI; the compile pipeline plays
// afterwards only when it is exactly 1.
inline constexpr IntKey kUseGUI{"Option", "UseGUI", 0, FlagTest::NonZero};
inline constexpr IntKey kUseGUIAfterCompile{"Option", "UseGUI", 0, FlagTest::ExactlyOne};
inline constexpr IntKey kGUIWindowState{"Option", "GUIWindowState", 1};
// The play command takes any non-zero UseAssociated; the player menu checks
// its "associated program" entry only for exactly 1.
inline constexpr IntKey kUseAssociated{"Option", "UseAssociated", 0, FlagTest::NonZero};
inline constexpr IntKey kUseAssociatedMenuCheck{"Option", "UseAssociated", 0,
                                                FlagTest::ExactlyOne};

inline constexpr TextBlock kScript{"Script", "Line", "Line"};
inline constexpr TextBlock kRequired{"Required", "ItemCount", "Item"};
}  // namespace config_file

// The only value of Setting/Language that selects the Japanese texts (case-sensitive).
inline constexpr const char* kJapanese = "Japanese";
// What the configuration window writes when the English choice replaces Japanese.
inline constexpr const char* kEnglish = "English";

}  // namespace zorvi::settings
