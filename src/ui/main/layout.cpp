// Geometry of the launcher strip's three layouts and the status bar texts.
#include "ui/main/layout.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "ui/main/placement.h"

namespace zorvi {
namespace {

// a * b / c rounded to the nearest, without overflow, clamped to int.
int MulDivRound(int a, int b, int c) {
    if (c == 0) return 0;
    const std::int64_t product = static_cast<std::int64_t>(a) * b;
    const std::int64_t half = (c > 0 ? c : -c) / 2;
    const std::int64_t rounded = (product >= 0 ? product + half : product - half) / c;
    return static_cast<int>(std::clamp<std::int64_t>(rounded, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

std::optional<int> WidthIfSane(std::int64_t width) {
    if (width < 0 || width > std::numeric_limits<int>::max()) return std::nullopt;
    return static_cast<int>(width);
}

}  // namespace

int NormalizeMode(int mode) { return mode == 1 || mode == 2 ? mode : 0; }

int NextMode(int mode) {
    // Adding one to a stored value such as 2^31-1 must not overflow.
    return NormalizeMode(NormalizeMode(mode) + 1);
}

int NormalizeIconSize(int size) { return size >= 1 && size <= 64 ? size : 16; }

int ScaleForDpi(int length, int dpi) { return MulDivRound(length, dpi, 96); }

LauncherLayout ComputeLayout(int mode, const LayoutMetrics& m) {
    LauncherLayout layout;
    layout.mode = NormalizeMode(mode);
    // The small gaps of the strip, as they were measured in twips.
    const int inset = TwipsToPixels(40, m.dpi);
    const int gap = TwipsToPixels(20, m.dpi);
    const int rightMargin = TwipsToPixels(100, m.dpi);
    switch (layout.mode) {
    case 1:
        layout.member1 = {true, 0, m.toolbarHeight + gap, WidthIfSane(m.clientWidth)};
        layout.minClientHeight = m.toolbarHeight + gap + m.comboHeight + gap + m.statusHeight;
        break;
    case 2:
        layout.toolbarVisible = false;
        layout.member1 = {true, 0, 0, WidthIfSane(m.clientWidth)};
        layout.minClientHeight = m.comboHeight + gap + m.statusHeight;
        break;
    default: {
        const int listLeft = m.launcherLeft + inset;
        layout.launcherWidth =
            WidthIfSane(static_cast<std::int64_t>(m.windowWidth) - listLeft - rightMargin);
        std::optional<int> listWidth;
        if (layout.launcherWidth) listWidth = WidthIfSane(*layout.launcherWidth - gap);
        layout.member0 = {true, listLeft, m.launcherTop, listWidth};
        layout.minClientHeight = std::max(m.toolbarHeight, m.comboHeight) + m.statusHeight;
        break;
    }
    }
    return layout;
}

std::string RequiredToolsState(int missingCount) {
    if (missingCount < 0) return "NoInfo.";
    return missingCount == 0 ? "OK" : "NG";
}

std::string StatusPanel3Text(std::string_view text, int missingCount) {
    if (text.empty()) return RequiredToolsState(missingCount);
    return std::string(text) + "/" + RequiredToolsState(missingCount);
}

bool PlayerPanelEnabled(std::string_view text, bool playerExists) {
    return text == "-" || text == "*" || playerExists;
}

std::array<int, 3> StatusPanelEdges(int clientWidth, int playerWidth, int toolsWidth) {
    const int width = std::max(0, clientWidth);
    const int tools = std::clamp(toolsWidth, 0, width);
    const int player = std::clamp(playerWidth, 0, width - tools);
    return {width - tools - player, width - tools, -1};
}

}  // namespace zorvi
