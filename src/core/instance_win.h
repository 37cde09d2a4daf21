// One Zorvi at a time: the test for a running instance, and the hidden
// application window by which a later start finds and activates it.
#pragma once

#include <windows.h>

namespace zorvi {

// True when another instance of this program runs. With activate, its window
// is brought to the front and restored first.
bool PrevInstanceRunning(bool activate);

// The hidden top-level window, titled with the application title, that owns
// the main window; created once.
HWND ApplicationWindow();
void RetitleApplicationWindow();

}  // namespace zorvi
