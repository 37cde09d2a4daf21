// Where a window may go on the screen.
#include "ui/main/placement.h"

#include <cstdint>
#include <limits>

namespace zorvi {
namespace {

constexpr std::int64_t kTwipsPerInch = 1440;

// value * numerator / denominator, rounded half away from zero and held in
// the int range, as the platform's MulDiv does for values that fit.
int ScaleRounded(int value, std::int64_t numerator, std::int64_t denominator) {
    if (denominator <= 0) return 0;
    const std::int64_t product = static_cast<std::int64_t>(value) * numerator;
    const std::int64_t half = denominator / 2;
    const std::int64_t scaled =
        product >= 0 ? (product + half) / denominator : -((-product + half) / denominator);
    if (scaled > std::numeric_limits<int>::max()) return std::numeric_limits<int>::max();
    if (scaled < std::numeric_limits<int>::min()) return std::numeric_limits<int>::min();
    return static_cast<int>(scaled);
}

}  // namespace

std::optional<WindowBox> CorrectPlacement(const RequestedBox& requested, const WindowBox& current,
                                          ScreenExtent screen) {
    WindowBox box{requested.left.value_or(current.left), requested.top.value_or(current.top),
                  requested.width.value_or(current.width),
                  requested.height.value_or(current.height)};
    if (box.width < 0 || box.height < 0) return std::nullopt;
    // One correction only, in this order: a window off the screen on both
    // axes comes back on one of them, which is how it has always behaved.
    if (box.top < 0) {
        box.top = 0;
    } else if (box.left < 0) {
        box.left = 0;
    } else if (box.top >= screen.height) {
        box.top = screen.height - current.height;
    } else if (box.left >= screen.width) {
        box.left = screen.width - current.width;
    }
    return box;
}

int TwipsToPixels(int twips, int dotsPerInch) {
    return ScaleRounded(twips, dotsPerInch, kTwipsPerInch);
}

int PixelsToTwips(int pixels, int dotsPerInch) {
    return ScaleRounded(pixels, kTwipsPerInch, dotsPerInch);
}

}  // namespace zorvi
