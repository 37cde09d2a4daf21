// The arithmetic of moving and resizing a window with Ctrl and the cursor keys.
#pragma once

#include <optional>

#include "ui/main/placement.h"

namespace zorvi {

// Modifier bits of a key stroke.
inline constexpr int kShiftBit = 1;
inline constexpr int kCtrlBit = 2;
inline constexpr int kAltBit = 4;

// Virtual-key codes of the cursor keys.
inline constexpr int kKeyLeft = 37;
inline constexpr int kKeyUp = 38;
inline constexpr int kKeyRight = 39;
inline constexpr int kKeyDown = 40;

// Changes to a window's left, top, width and height, in twips.
struct KeyMove {
    int dx = 0;
    int dy = 0;
    int dw = 0;
    int dh = 0;
    bool operator==(const KeyMove&) const = default;
};

// Ctrl moves by 512 twips, Ctrl+Alt by 32; with resizing allowed Ctrl+Shift
// resizes by 256 and Ctrl+Shift+Alt by 16 (Left narrower, Up shorter).
// Nullopt for every other key or modifier combination.
std::optional<KeyMove> KeyMoveFor(int virtualKey, int shiftState, bool allowResize);

// The box after the change; nullopt when a value leaves the int range or a
// size would become negative, so that nothing is applied.
std::optional<WindowBox> ApplyKeyMove(const WindowBox& box, const KeyMove& move);

}  // namespace zorvi
