// The main window's platform-free rules: history, key moves, placement, the
// key map, the three layouts and status texts, the watch decisions, numbered
// menu captions, the tray tip, the launch-error texts and the about window's
// labels and help-file check.
#include <gtest/gtest.h>

#include <climits>

#include "res/string_ids.h"
#include "support/rows.h"
#include "ui/dialogs/about_text.h"
#include "ui/main/history.h"
#include "ui/main/key_move.h"
#include "ui/main/keymap.h"
#include "ui/main/layout.h"
#include "ui/main/menu_text.h"
#include "ui/main/placement.h"
#include "ui/main/watch.h"

namespace zorvi {
namespace {

using testing::ExpectRows;
using S = std::string;
using std::nullopt;
using Box = std::optional<WindowBox>;
using Int2 = std::tuple<int, int>;

HistorySlots Slots(std::initializer_list<const char*> entries) {
    HistorySlots slots;
    std::copy(entries.begin(), entries.end(), slots.begin());
    return slots;
}

TEST(History, TheTargetGoesOnTopOnce) {
    ExpectRows<std::tuple<S, HistorySlots>, HistorySlots>(HistoryInsert, {
        {{"b", Slots({"a", "b", "c"})}, Slots({"b", "a", "c"})},
        {{"A", Slots({"a"})}, Slots({"A", "a"})},  // case matters
        {{"", Slots({"", "a", "", "a", "b"})}, Slots({"a", "b"})},
    });
    HistorySlots slots;
    for (int i = 0; i < 33; ++i) slots = HistoryInsert(std::to_string(i), slots);
    EXPECT_EQ(slots[0], "32");
    EXPECT_EQ(slots[31], "1");  // the oldest fell off
    const HistorySlots again = HistoryInsert("1", slots);  // a full list only reorders
    EXPECT_EQ(again[1], "32");
    EXPECT_EQ(again[31], "2");
    ExpectRows<std::tuple<int, S>, S>(HistoryCaption, {
        {{0, "C:\\a"}, "&0 : C:\\a"}, {{3, "C:\\R&B"}, "&3 : C:\\R&&B"}, {{31, ""}, "&31 : "},
    });
}

constexpr int kShift = kShiftBit, kCtrl = kCtrlBit, kAlt = kAltBit;
constexpr int kLeft = kKeyLeft, kUp = kKeyUp, kRight = kKeyRight, kDown = kKeyDown;

TEST(KeyMove, ModifiersChooseMoveOrResizeAndTheStep) {
    using Move = std::optional<KeyMove>;
    ExpectRows<std::tuple<int, int, bool>, Move>(KeyMoveFor, {
        {{kLeft, kCtrl, true}, KeyMove{-512, 0, 0, 0}},
        {{kUp, kCtrl, true}, KeyMove{0, -512, 0, 0}},
        {{kRight, kCtrl | kAlt, true}, KeyMove{32, 0, 0, 0}},
        {{kDown, kCtrl | kAlt, false}, KeyMove{0, 32, 0, 0}},
        {{kLeft, kCtrl | kShift, true}, KeyMove{0, 0, -256, 0}},
        {{kDown, kCtrl | kShift, true}, KeyMove{0, 0, 0, 256}},
        {{kRight, kCtrl | kShift | kAlt, true}, KeyMove{0, 0, 16, 0}},
        {{kUp, kCtrl | kShift | kAlt, true}, KeyMove{0, 0, 0, -16}},
        {{kLeft, kCtrl | kShift, false}, nullopt}, {{kLeft, 0, true}, nullopt},
        {{kLeft, kShift, true}, nullopt}, {{kLeft, kAlt, true}, nullopt},
        {{kLeft, kShift | kAlt, true}, nullopt}, {{13, kCtrl, true}, nullopt},
    });
    // A value that leaves the int range, or a negative size, is not applied.
    ExpectRows<std::tuple<WindowBox, KeyMove>, Box>(ApplyKeyMove, {
        {{{1500, 1500, 7200, 3700}, {-512, 0, 0, 0}}, WindowBox{988, 1500, 7200, 3700}},
        {{{100, 0, 256, 10}, {0, 0, -256, 0}}, WindowBox{100, 0, 0, 10}},
        {{{0, 0, 100, 10}, {0, 0, -256, 0}}, nullopt}, {{{0, 0, 10, 15}, {0, 0, 0, -16}}, nullopt},
        {{{INT_MIN, 0, 10, 10}, {-512, 0, 0, 0}}, nullopt},
        {{{0, INT_MAX, 10, 10}, {0, 32, 0, 0}}, nullopt},
        {{{0, 0, 10, INT_MAX}, {0, 0, 0, 16}}, nullopt},
    });
}

TEST(Placement, AtMostOneCorrectionInItsOrder) {
    // On a 1280 x 1024 screen, the window now at 100, 100, 400 x 300.
    ExpectRows<RequestedBox, Box>([](const RequestedBox& requested) {
        return CorrectPlacement(requested, {100, 100, 400, 300}, {1280, 1024});
    }, {
        {{}, WindowBox{100, 100, 400, 300}}, {{10, -5, 400, 300}, WindowBox{10, 0, 400, 300}},
        {{50, nullopt, nullopt, nullopt}, WindowBox{50, 100, 400, 300}},
        {{-5, 10, 400, 300}, WindowBox{0, 10, 400, 300}},
        {{-5, -5, 400, 300}, WindowBox{-5, 0, 400, 300}},  // above and left: only the top
        {{-5, 5000, 400, 300}, WindowBox{0, 5000, 400, 300}},
        {{10, 1024, 400, 500}, WindowBox{10, 724, 400, 500}},  // with the current height
        {{10, 1023, 400, 300}, WindowBox{10, 1023, 400, 300}},
        {{1280, 10, 600, 300}, WindowBox{880, 10, 600, 300}},  // with the current width
        {{2000, 2000, 400, 300}, WindowBox{2000, 724, 400, 300}},
        {{0, 0, 0, 0}, WindowBox{0, 0, 0, 0}}, {{0, 0, -1, 300}, nullopt},
        {{nullopt, nullopt, nullopt, -300}, nullopt},
    });
    // Rounded to the nearest, halves away from zero.
    ExpectRows<Int2, int>(TwipsToPixels, {
        {{3700, 96}, 247}, {{7, 96}, 0}, {{8, 96}, 1}, {{-512, 96}, -34}, {{45, 16}, 1},
        {{-45, 16}, -1}, {{7200, 144}, 720}, {{INT_MAX, 96}, 143165576},
    });
    ExpectRows<Int2, int>(PixelsToTwips, {{{247, 96}, 3705}, {{1, 144}, 10}, {{5, 0}, 0}});
}

constexpr int FKey(int n) { return 111 + n; }

TEST(KeyMap, FunctionKeysAndModifiers) {
    using C = MainCommand;
    ExpectRows<int, MainCommand>([](int n) { return MainKeyCommand(FKey(n), 0, false); }, {
        {1, C::Help}, {2, C::SetFile}, {3, C::WatchToggle}, {4, C::None}, {5, C::Compile},
        {6, C::Play}, {7, C::ShowLog}, {8, C::Configure}, {9, C::PopupMenu}, {10, C::None},
        {11, C::Minimize}, {12, C::Exit},
    });
    ExpectRows<std::tuple<int, int, bool>, MainCommand>(MainKeyCommand, {
        {{'A', 0, false}, C::None}, {{FKey(1), kCtrl, false}, C::About},
        {{FKey(2), kCtrl, false}, C::NextLayout}, {{FKey(12), kCtrl, false}, C::NextLayout},
        {{FKey(13), kCtrl, false}, C::None}, {{FKey(5), kShift, false}, C::None},
        {{FKey(5), kCtrl | kShift, false}, C::None}, {{FKey(5), kCtrl | kAlt | kShift, true}, C::None},
        {{FKey(5), kAlt, false}, C::None}, {{FKey(5), kAlt, true}, C::PopupMenu},
        // Alt with the system's keys (F4, Space, Tab, Esc) is left to the system.
        {{FKey(4), kAlt, true}, C::None}, {{' ', kAlt, true}, C::None}, {{9, kAlt, true}, C::None},
        {{27, kAlt, true}, C::None}, {{'X', kAlt, true}, C::PopupMenu},
    });
}

TEST(Layout, ModesIconSizesDpiAndStatusBar) {
    const auto modes = [](int mode) { return std::pair(NormalizeMode(mode), NextMode(mode)); };
    ExpectRows<int, std::pair<int, int>>(modes, {
        {1, {1, 2}}, {2, {2, 0}}, {3, {0, 1}}, {-1, {0, 1}}, {INT_MAX, {0, 1}},
    });
    ExpectRows<int, int>(NormalizeIconSize, {{0, 16}, {1, 1}, {64, 64}, {65, 16}, {-3, 16}});
    ExpectRows<Int2, int>(ScaleForDpi, {
        {{16, 144}, 24}, {{5, 144}, 8}, {{16, 0}, 0}, {{-4, 144}, -6},
    });
    ExpectRows<std::tuple<S, int>, S>(StatusPanel3Text, {
        {{"", 0}, "OK"}, {{"", 1}, "NG"}, {{"", -1}, "NoInfo."}, {{"x", 0}, "x/OK"},
    });
    ExpectRows<std::tuple<S, bool>, bool>(PlayerPanelEnabled, {
        {{"-", false}, true}, {{"*", false}, true}, {{"p", true}, true}, {{"p", false}, false},
    });
    ExpectRows<std::tuple<int, int, int>, std::array<int, 3>>(StatusPanelEdges, {
        {{300, 100, 60}, {140, 240, -1}}, {{100, 100, 60}, {0, 40, -1}},
        {{50, 100, 60}, {0, 0, -1}}, {{-10, 100, 60}, {0, 0, -1}},
    });
}

// mode, toolbar shown, list member 0 and 1 shown, the shown one's left and top,
// the stretched launcher button's width, the list's width, the least client height.
using Width = std::optional<int>;
using Placed = std::tuple<int, bool, bool, bool, int, int, Width, Width, int>;

TEST(Layout, EachModePlacesOneListMember) {
    const auto layout = [](int mode, int clientWidth, int dpi) {
        // The outer width is what layout 0 measures from; 16 pixels of frame.
        const LauncherLayout l =
            ComputeLayout(mode, {clientWidth, clientWidth + 16, 28, 150, 2, 24, 20, 20, dpi});
        const ListPlacement& shown = l.member0.visible ? l.member0 : l.member1;
        return Placed(l.mode, l.toolbarVisible, l.member0.visible, l.member1.visible, shown.left,
                      shown.top, l.launcherWidth, shown.width, l.minClientHeight);
    };
    // The list sits 40 twips in from button 7, at its top; the button ends 100 twips
    // short of the window's outer right edge, and the list is 20 twips narrower.
    // Widths that do not compute are not applied.
    ExpectRows<std::tuple<int, int, int>, Placed>(layout, {
        {{0, 400, 96}, {0, true, true, false, 153, 2, 256, 255, 48}},
        {{0, 600, 144}, {0, true, true, false, 154, 2, 452, 450, 48}},
        {{7, 400, 96}, {0, true, true, false, 153, 2, 256, 255, 48}},
        {{1, 400, 96}, {1, true, false, true, 0, 29, nullopt, 400, 70}},
        {{2, 400, 96}, {2, false, false, true, 0, 0, nullopt, 400, 41}},
        {{0, 144, 96}, {0, true, true, false, 153, 2, 0, nullopt, 48}},
        {{0, 134, 96}, {0, true, true, false, 153, 2, nullopt, nullopt, 48}},
        {{1, -5, 96}, {1, true, false, true, 0, 29, nullopt, nullopt, 70}},
    });
}

TEST(Watch, ConfirmationTickAndTimer) {
    ExpectRows<std::tuple<int, S>, bool>(NeedsTargetConfirmation, {
        {{0, "MmL"}, false}, {{0, "MUS"}, false}, {{0, "txt"}, false}, {{0, "c"}, true},
        {{0, ""}, true}, {{0, "mmlx"}, true}, {{1, "mml"}, true}, {{2, "c"}, false},
        {{3, "c"}, false}, {{4, "c"}, false},
    });
    // One tick, or a run of ticks whose missing-target state carries over:
    // (compiling, last-write time, clock) for each; the actions they give.
    using Time = std::optional<std::uint64_t>;
    using Ticks = std::vector<std::tuple<bool, Time, std::uint64_t>>;
    const auto ticks = [](const Ticks& run) {
        MissingTarget missing;
        std::vector<TickAction> actions;
        for (const auto& [compiling, written, now] : run) {
            actions.push_back(WatchTick(compiling, written, 100, missing, now));
        }
        return actions;
    };
    using A = TickAction;
    ExpectRows<Ticks, std::vector<A>>(ticks, {
        {{{false, 100, 0}}, {A::Nothing}}, {{{false, 200, 0}}, {A::Compile}},
        {{{false, 50, 0}}, {A::Compile}},  // the clock was set back
        {{{true, 200, 0}}, {A::Nothing}},
        // Gone: let go on the second tick after, and never before 500 ms.
        {{{false, nullopt, 0}, {false, nullopt, 250}, {false, nullopt, 500}},
         {A::Nothing, A::Nothing, A::Release}},
        {{{false, nullopt, 0}, {false, nullopt, 10}, {false, nullopt, 20}, {false, nullopt, 500}},
         {A::Nothing, A::Nothing, A::Nothing, A::Release}},
        // A safe save: back on the next tick with a new time, compiled once.
        {{{false, nullopt, 0}, {false, 300, 250}, {false, nullopt, 500}, {false, nullopt, 750}},
         {A::Nothing, A::Compile, A::Nothing, A::Nothing}},
        {{{true, nullopt, 0}, {true, nullopt, 600}, {false, nullopt, 700}},
         {A::Nothing, A::Nothing, A::Nothing}},
    });
    ExpectRows<int, unsigned>(EffectiveTimerInterval, {
        {250, 250}, {10, 10}, {9, 10}, {0, 10}, {-5, 10}, {INT_MAX, INT_MAX},
    });
    ExpectRows<S, S>([](const S& target) { return MainCaption(target, "Zorvi", "0.1"); }, {
        {"", "Zorvi v0.1"}, {"C:\\s\\x y.MML", "x y.MML - Zorvi v0.1"},
    });
    // After a compile that a tick started: the watch still on, the target before and
    // after -> store the time read before, resume the timer (with a new target too).
    const auto after = [](bool on, const S& before, const S& now) {
        const AfterTickCompile rule = AfterTickCompileRule(on, before, now);
        return std::pair(rule.storeTime, rule.resumeTimer);
    };
    ExpectRows<std::tuple<bool, S, S>, std::pair<bool, bool>>(after, {
        {{true, "a", "a"}, {true, true}}, {{false, "a", "a"}, {true, false}},
        {{true, "a", "A"}, {false, true}}, {{false, "a", "b"}, {false, false}},
    });
}

TEST(MenuText, CaptionsTipsErrorsAndAboutLabels) {
    ExpectRows<std::tuple<int, S>, S>(NumberedMenuCaption, {
        {{1, "Default"}, "&1 : Default"}, {{12, "R&B && Co"}, "&12 : R&&B &&&& Co"},
    });
    EXPECT_EQ(TrayTipText("Zorvi", "0.1", true, "a.mml"), "Zorvi v0.1 [ON]\r\na.mml");
    EXPECT_EQ(TrayTipText("Zorvi", "0.1a", false, ""), "Zorvi v0.1a [OFF]\r\n");
    ExpectRows<unsigned long, int>(LaunchErrorTextId, {
        {2, ids::kFileNotFound}, {3, ids::kPathNotFound}, {8, ids::kOutOfMemory},
        {14, ids::kOutOfMemory}, {126, ids::kDllNotFound}, {1157, ids::kDllNotFound},
        {5, ids::kUnknownError}, {0, ids::kUnknownError},
    });
    EXPECT_EQ(VersionLabel({0, 14, 3}), "Version 0.14c");
    EXPECT_EQ(BuildLabel("20041201"), "Build 20041201");
    EXPECT_EQ(AboutCaption("Zorvi"), "Zorvi - About");
    ExpectRows<S, bool>(LooksLikeHelpFile, {
        {S("ITSF\3\0\0\0", 8), true}, {"ITSF", true}, {"", false}, {"<html>", false},
        {"itsf", false},
    });
}

}  // namespace
}  // namespace zorvi
