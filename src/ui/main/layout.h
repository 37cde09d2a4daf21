// Where the main window's parts go in each of its three layouts, the icon
// size rule and the status bar's texts and panel edges. Platform-free; all
// lengths are pixels unless a name says twips.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace zorvi {

// Layout 0: the launcher list inside the toolbar; 1: the list under the
// toolbar; 2: the list alone. Any other value is layout 0.
int NormalizeMode(int mode);
// The layout the double-click and Ctrl+F2..F12 step to.
int NextMode(int mode);

// Toolbar icons are 1 to 64 pixels square (at 96 DPI); anything else is 16.
int NormalizeIconSize(int size);

// A length given for 96 DPI, at dpi (rounded to the nearest pixel).
int ScaleForDpi(int length, int dpi);

struct LayoutMetrics {
    int clientWidth = 0;
    int windowWidth = 0;    // the outer width, which layout 0 measures from
    int toolbarHeight = 0;  // of the toolbar when it is shown
    int launcherLeft = 0;   // button 7, in toolbar coordinates
    int launcherTop = 0;
    int launcherHeight = 0;
    int comboHeight = 0;  // a closed launcher list
    int statusHeight = 0;
    int dpi = 96;
};

struct ListPlacement {
    bool visible = false;
    int left = 0;
    int top = 0;
    std::optional<int> width;  // nullopt: the width did not compute, keep the old one
};

struct LauncherLayout {
    int mode = 0;  // the layout applied (normalised)
    bool toolbarVisible = true;
    ListPlacement member0;             // in the toolbar, in its coordinates
    ListPlacement member1;             // free-standing, in client coordinates
    std::optional<int> launcherWidth;  // button 7 stretched to hold member 0
    int minClientHeight = 0;           // toolbar/list and status bar without overlap
};

LauncherLayout ComputeLayout(int mode, const LayoutMetrics& metrics);

// Panel 3: "OK" when every required tool is there (count 0), "NG" when some
// are missing, "NoInfo." when none are listed (-1); after a given text and "/".
std::string RequiredToolsState(int missingCount);
std::string StatusPanel3Text(std::string_view text, int missingCount);
// Panel 2 is drawn enabled for "-" and "*" and for a player that exists.
bool PlayerPanelEnabled(std::string_view text, bool playerExists);

// Right edges of the three panels for a client width; the last runs to the end (-1).
std::array<int, 3> StatusPanelEdges(int clientWidth, int playerWidth, int toolsWidth);

}  // namespace zorvi
