// The main window's key map: which command a key with its modifiers stands
// for, once the window mover has declined it. Platform-free.
#pragma once

namespace zorvi {

enum class MainCommand {
    None,
    Help,         // F1: the help file, or the about window when there is none
    About,        // Ctrl+F1
    SetFile,      // F2
    WatchToggle,  // F3
    Compile,      // F5
    Play,         // F6
    ShowLog,      // F7
    Configure,    // F8
    PopupMenu,    // F9; with the Alt popup on, Alt with any key but F4, Space, Tab, Esc
    Minimize,     // F11
    Exit,         // F12
    NextLayout,   // Ctrl+F2 ... Ctrl+F12
};

// shift holds the modifier bits of key_move.h: Shift 1, Ctrl 2, Alt 4.
MainCommand MainKeyCommand(int keyCode, int shift, bool useAltPopUp);

}  // namespace zorvi
