// Form_KeyDown's table: F1 to F12 alone, with Ctrl, and Alt with anything
// but the system's own keys.
#include "ui/main/keymap.h"

#include "ui/main/key_move.h"

namespace zorvi {
namespace {

constexpr int kF1 = 112;
constexpr int kF2 = 113;
constexpr int kF12 = 123;

// Alt with these is the system's own: close (F4), the window menu (Space),
// switching windows (Tab, Esc). They must reach the default processing,
// popup or not.
bool IsSystemAltKey(int keyCode) {
    constexpr int kTab = 9, kEscape = 27, kSpace = 32, kF4 = 115;
    return keyCode == kF4 || keyCode == kSpace || keyCode == kTab || keyCode == kEscape;
}

MainCommand PlainKey(int keyCode) {
    switch (keyCode - kF1 + 1) {
    case 1: return MainCommand::Help;
    case 2: return MainCommand::SetFile;
    case 3: return MainCommand::WatchToggle;
    case 5: return MainCommand::Compile;
    case 6: return MainCommand::Play;
    case 7: return MainCommand::ShowLog;
    case 8: return MainCommand::Configure;
    case 9: return MainCommand::PopupMenu;
    case 11: return MainCommand::Minimize;
    case 12: return MainCommand::Exit;
    default: return MainCommand::None;  // F4, F10 and every other key
    }
}

}  // namespace

MainCommand MainKeyCommand(int keyCode, int shift, bool useAltPopUp) {
    switch (shift) {
    case 0: return PlainKey(keyCode);
    case kCtrlBit:
        if (keyCode == kF1) return MainCommand::About;
        if (keyCode >= kF2 && keyCode <= kF12) return MainCommand::NextLayout;
        return MainCommand::None;
    case kAltBit:
        return useAltPopUp && !IsSystemAltKey(keyCode) ? MainCommand::PopupMenu
                                                       : MainCommand::None;
    default:
        // Shift alone and every combination of two or three modifiers.
        return MainCommand::None;
    }
}

}  // namespace zorvi
