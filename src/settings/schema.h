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

// Main settings file (Zorvi.ini beside the program).
namespace main_file {
inline constexpr TextKey kDefault{"Setting", "Default", ""};
inline constexpr TextKey kLanguage{"Setting", "Language", "English"};
inline constexpr TextKey kEditor{"Setting", "Editor", ""};

inline constexpr IntKey kAutoSetFile{"Option", "AutoSetFile", 0, FlagTest::ExactlyOne};
inline constexpr IntKey kUseAltPopUp{"Option", "UseAltPopUp", 0, FlagTest::NonZero};

// History slots: "His0" followed by the slot number, His00 to His031.
inline constexpr const char* kHistorySection = "History";
inline constexpr const char* kHistorySlotPrefix = "His0";
inline constexpr int kHistorySlots = 32;
}  // namespace main_file

// The only value of Setting/Language that selects the Japanese texts (case-sensitive).
inline constexpr const char* kJapanese = "Japanese";

}  // namespace zorvi::settings
