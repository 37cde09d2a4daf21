// The key handler every window shares for moving and resizing itself.
#include "ui/main/mdlHotKey.h"

#include "ui/main/key_move.h"
#include "ui/main/mdlView.h"

namespace zorvi {

int CurrentShiftState() {
    const auto down = [](int key) { return (GetKeyState(key) & 0x8000) != 0; };
    return (down(VK_SHIFT) ? kShiftBit : 0) | (down(VK_CONTROL) ? kCtrlBit : 0) |
           (down(VK_MENU) ? kAltBit : 0);
}

bool MoveWindowByKey(HWND window, int virtualKey, int shiftState, bool allowResize) {
    const auto move = KeyMoveFor(virtualKey, shiftState, allowResize);
    if (!move) return false;
    if (const auto box = GetWindowBoxTwips(window)) {
        if (const auto moved = ApplyKeyMove(*box, *move)) {
            MoveWindowExactly(window, *moved);
        }
    }
    return true;
}

}  // namespace zorvi
