// The three layouts of the launcher strip, icon sizes and status bar texts.
#include <gtest/gtest.h>

#include <climits>

#include "ui/main/layout.h"

namespace zorvi {
namespace {

TEST(Layout, ModesCycleThroughThree) {
    const struct {
        int mode, normal, next;
    } cases[] = {{0, 0, 1},  {1, 1, 2},       {2, 2, 0},      {3, 0, 1},
                 {-1, 0, 1}, {INT_MAX, 0, 1}, {INT_MIN, 0, 1}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mode);
        EXPECT_EQ(NormalizeMode(c.mode), c.normal);
        EXPECT_EQ(NextMode(c.mode), c.next);
    }
    int mode = 0;
    for (int i = 0; i < 3; ++i) mode = NextMode(mode);
    EXPECT_EQ(mode, 0);
}

TEST(Layout, IconSizeOutsideOneToSixtyFourIsSixteen) {
    const struct {
        int size, used;
    } cases[] = {{0, 16}, {1, 1}, {16, 16}, {32, 32}, {64, 64}, {65, 16}, {255, 16}, {-3, 16}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.size);
        EXPECT_EQ(NormalizeIconSize(c.size), c.used);
    }
}

TEST(Layout, LengthsScaleWithTheDpi) {
    const struct {
        int length, dpi, scaled;
    } cases[] = {{16, 96, 16}, {16, 144, 24}, {16, 120, 20},
                 {5, 144, 8},  {16, 0, 0},    {-4, 144, -6}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.length) + "@" + std::to_string(c.dpi));
        EXPECT_EQ(ScaleForDpi(c.length, c.dpi), c.scaled);
    }
}

LayoutMetrics Strip(int clientWidth, int dpi = 96) {
    LayoutMetrics m;
    m.clientWidth = clientWidth;
    m.windowWidth = clientWidth;
    m.toolbarHeight = 28;
    m.launcherLeft = 150;
    m.launcherTop = 2;
    m.launcherHeight = 24;
    m.comboHeight = 20;
    m.statusHeight = 20;
    m.dpi = dpi;
    return m;
}

TEST(Layout, EachModePlacesOneListMember) {
    const struct {
        int mode;
        bool toolbar, member0, member1;
        int top, minHeight;
    } cases[] = {
        {0, true, true, false, 2, 48},   // at the top of button 7
        {1, true, false, true, 29, 70},  // under the toolbar, one 20-twip gap
        {2, false, false, true, 0, 41},
        {7, true, true, false, 2, 48},  // out of range: layout 0
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mode);
        const LauncherLayout layout = ComputeLayout(c.mode, Strip(400));
        EXPECT_EQ(layout.mode, c.mode == 7 ? 0 : c.mode);
        EXPECT_EQ(layout.toolbarVisible, c.toolbar);
        EXPECT_EQ(layout.member0.visible, c.member0);
        EXPECT_EQ(layout.member1.visible, c.member1);
        const ListPlacement& shown = c.member0 ? layout.member0 : layout.member1;
        EXPECT_EQ(shown.top, c.top);
        EXPECT_EQ(layout.minClientHeight, c.minHeight);
    }
}

TEST(Layout, ListFillsTheStretchedLauncherButton) {
    // 40 twips in from button 7's left, 100 twips short of the right edge,
    // the list 20 twips narrower than the button.
    const LauncherLayout at96 = ComputeLayout(0, Strip(400));
    EXPECT_EQ(at96.member0.left, 153);
    ASSERT_TRUE(at96.launcherWidth.has_value());
    EXPECT_EQ(*at96.launcherWidth, 400 - 153 - 7);
    ASSERT_TRUE(at96.member0.width.has_value());
    EXPECT_EQ(*at96.member0.width, 400 - 153 - 7 - 1);

    const LauncherLayout at144 = ComputeLayout(0, Strip(600, 144));
    EXPECT_EQ(at144.member0.left, 154);
    EXPECT_EQ(*at144.launcherWidth, 600 - 154 - 10);
    EXPECT_EQ(*at144.member0.width, 600 - 154 - 10 - 2);

    // Layout 0 measures from the window's outer width, frame included.
    LayoutMetrics framed = Strip(400);
    framed.windowWidth = 416;
    EXPECT_EQ(*ComputeLayout(0, framed).launcherWidth, 416 - 153 - 7);

    const LauncherLayout free1 = ComputeLayout(1, Strip(400));
    EXPECT_EQ(free1.member1.left, 0);
    EXPECT_EQ(free1.member1.width, 400);
}

TEST(Layout, WidthsThatDoNotComputeAreNotApplied) {
    const struct {
        int clientWidth;
        bool launcher, list;
    } cases[] = {{160, true, false}, {150, false, false}, {0, false, false}, {161, true, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.clientWidth);
        const LauncherLayout layout = ComputeLayout(0, Strip(c.clientWidth));
        EXPECT_EQ(layout.launcherWidth.has_value(), c.launcher);
        EXPECT_EQ(layout.member0.width.has_value(), c.list);
    }
    EXPECT_FALSE(ComputeLayout(1, Strip(-5)).member1.width.has_value());
}

TEST(Layout, StatusTexts) {
    const struct {
        const char* text;
        int count;
        const char* shown;
    } cases[] = {{"", 0, "OK"},       {"", 2, "NG"},          {"", 1, "NG"},
                 {"", -1, "NoInfo."}, {"fast", 0, "fast/OK"}, {"x", -1, "x/NoInfo."}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.shown);
        EXPECT_EQ(StatusPanel3Text(c.text, c.count), c.shown);
    }
    EXPECT_TRUE(PlayerPanelEnabled("-", false));
    EXPECT_TRUE(PlayerPanelEnabled("*", false));
    EXPECT_TRUE(PlayerPanelEnabled("play.exe", true));
    EXPECT_FALSE(PlayerPanelEnabled("play.exe", false));
    EXPECT_FALSE(PlayerPanelEnabled("", false));
}

TEST(Layout, StatusPanelsShareTheWidth) {
    const struct {
        int width, player, tools;
        std::array<int, 3> edges;
    } cases[] = {
        {300, 100, 60, {140, 240, -1}},
        {100, 100, 60, {0, 40, -1}},
        {50, 100, 60, {0, 0, -1}},
        {-10, 100, 60, {0, 0, -1}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.width);
        EXPECT_EQ(StatusPanelEdges(c.width, c.player, c.tools), c.edges);
    }
}

}  // namespace
}  // namespace zorvi
