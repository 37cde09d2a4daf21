// Where a window may go on the screen: the one correction that keeps a window
// reachable, and the conversions between twips and pixels.
#pragma once

#include <optional>

namespace zorvi {

// A window's outer rectangle as left, top, width and height, in one unit.
struct WindowBox {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    bool operator==(const WindowBox&) const = default;
};

// The parts of a new placement that were asked for; the rest stays as it is.
struct RequestedBox {
    std::optional<int> left;
    std::optional<int> top;
    std::optional<int> width;
    std::optional<int> height;
};

struct ScreenExtent {
    int width = 0;
    int height = 0;
};

// The box to move a window to: the requested values over the current ones,
// then at most one correction, the first that applies of: top below 0 -> 0;
// left below 0 -> 0; top at or past the screen's bottom -> screen height minus
// the current height; left at or past the screen's right edge -> screen width
// minus the current width. Nullopt when a negative size was asked for.
std::optional<WindowBox> CorrectPlacement(const RequestedBox& requested, const WindowBox& current,
                                          ScreenExtent screen);

// 1440 twips to the inch; rounded to the nearest pixel (halves away from zero).
int TwipsToPixels(int twips, int dotsPerInch);
int PixelsToTwips(int pixels, int dotsPerInch);

}  // namespace zorvi
