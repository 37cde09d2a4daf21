// The arithmetic of moving and resizing a window with Ctrl and the cursor keys.
#include "ui/main/key_move.h"

#include <cstdint>
#include <limits>

namespace zorvi {
namespace {

constexpr int kMoveStep = 512;
constexpr int kFineMoveStep = 32;
constexpr int kResizeStep = 256;
constexpr int kFineResizeStep = 16;

std::optional<int> Sum(int value, int change) {
    const std::int64_t sum = static_cast<std::int64_t>(value) + change;
    if (sum > std::numeric_limits<int>::max() || sum < std::numeric_limits<int>::min()) {
        return std::nullopt;
    }
    return static_cast<int>(sum);
}

}  // namespace

std::optional<KeyMove> KeyMoveFor(int virtualKey, int shiftState, bool allowResize) {
    int step = 0;
    bool resize = false;
    switch (shiftState) {
    case kCtrlBit: step = kMoveStep; break;
    case kCtrlBit | kAltBit: step = kFineMoveStep; break;
    case kCtrlBit | kShiftBit: step = kResizeStep; resize = true; break;
    case kCtrlBit | kShiftBit | kAltBit: step = kFineResizeStep; resize = true; break;
    default: return std::nullopt;
    }
    if (resize && !allowResize) return std::nullopt;
    int across = 0;
    int down = 0;
    switch (virtualKey) {
    case kKeyLeft: across = -step; break;
    case kKeyRight: across = step; break;
    case kKeyUp: down = -step; break;
    case kKeyDown: down = step; break;
    default: return std::nullopt;
    }
    if (resize) return KeyMove{0, 0, across, down};
    return KeyMove{across, down, 0, 0};
}

std::optional<WindowBox> ApplyKeyMove(const WindowBox& box, const KeyMove& move) {
    const auto left = Sum(box.left, move.dx);
    const auto top = Sum(box.top, move.dy);
    const auto width = Sum(box.width, move.dw);
    const auto height = Sum(box.height, move.dh);
    if (!left || !top || !width || !height || *width < 0 || *height < 0) return std::nullopt;
    return WindowBox{*left, *top, *width, *height};
}

}  // namespace zorvi
