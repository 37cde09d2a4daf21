// Window placement shared by the program's windows: moving and sizing in
// twips, kept on the primary screen.
#pragma once

#include <windows.h>

#include <optional>

#include "ui/main/placement.h"

namespace zorvi {

// The screen's dots per inch, across and down.
struct ScreenDpi {
    int x = 96;
    int y = 96;
};
ScreenDpi GetScreenDpi();

// Moves and sizes a window in one step, in twips; a value left out keeps the
// window's current one. At most one correction brings it back on the primary
// screen (see CorrectPlacement). A minimised or maximised window, or a
// negative size, is left alone.
void MoveWindowOnScreen(HWND window, std::optional<int> left, std::optional<int> top,
                        std::optional<int> width, std::optional<int> height);

// Moves and sizes a window in twips exactly as asked, off the screen or onto
// another monitor included: the keyboard's moves go where the user steers.
// A minimised or maximised window, or a negative size, is left alone.
void MoveWindowExactly(HWND window, const WindowBox& twips);

// The window's outer rectangle in twips, screen coordinates; nullopt when the
// window does not exist.
std::optional<WindowBox> GetWindowBoxTwips(HWND window);

// Neither minimised nor maximised.
bool IsNormalWindowState(HWND window);

}  // namespace zorvi
