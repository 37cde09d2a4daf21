// Control ids of the configuration window, so that a program driving the
// window from outside finds its controls: id = base + index in the array.
#pragma once

namespace zorvi::config_ids {

inline constexpr int kOptionBase = 100;    // chkOption 0 to 8
inline constexpr int kCheckBase = 120;     // chkCheck 0 to 7
inline constexpr int kComboBase = 140;     // cboCombo 0 to 6
inline constexpr int kTextBase = 160;      // txtText 0 to 3
inline constexpr int kScriptBase = 170;    // txtScript 0 and 1
inline constexpr int kLanguageBase = 180;  // English, Japanese
inline constexpr int kListBase = 190;      // List1 0 (filters) and 1 (programs)
inline constexpr int kCommandBase = 200;   // cmdCommand 3 to 19
inline constexpr int kOk = 1;              // cmdCommand 0 (IDOK: Enter)
inline constexpr int kApply = 201;         // cmdCommand 1
inline constexpr int kCancel = 2;          // cmdCommand 2 (IDCANCEL: Esc)
inline constexpr int kFrontendBase = 230;  // name, command, option, work folder
inline constexpr int kFrontendAutoRun = 240;
inline constexpr int kFilterBase = 250;  // name, extension
inline constexpr int kFilterConfiguration = 260;

inline constexpr int CommandId(int index) {
    return index == 0 ? kOk : index == 2 ? kCancel : kCommandBase + index;
}

}  // namespace zorvi::config_ids
