// The key handler every window shares: Ctrl (and Shift, Alt) with the cursor
// keys move and resize the window.
#pragma once

#include <windows.h>

namespace zorvi {

// The modifier state of the key being handled: Shift 1, Ctrl 2, Alt 4.
int CurrentShiftState();

// Moves or resizes the window for a mover key (see KeyMoveFor). True when the
// key is one of the mover's, so that no control should see it, even when the
// window could not go any further.
bool MoveWindowByKey(HWND window, int virtualKey, int shiftState, bool allowResize = true);

}  // namespace zorvi
