// Moving and resizing a window by key: which keys, how far.
#include <gtest/gtest.h>

#include <climits>

#include "ui/main/key_move.h"

namespace zorvi {
namespace {

constexpr int kShift = 1, kCtrl = 2, kAlt = 4;
constexpr int kLeft = 37, kUp = 38, kRight = 39, kDown = 40, kEnter = 13, kF5 = 116;

TEST(KeyMove, ModifiersChooseMoveOrResizeAndTheStep) {
    const struct {
        int key;
        int shift;
        bool allowResize;
        std::optional<KeyMove> expected;
    } cases[] = {
        {kLeft, kCtrl, true, KeyMove{-512, 0, 0, 0}},
        {kRight, kCtrl, true, KeyMove{512, 0, 0, 0}},
        {kUp, kCtrl, true, KeyMove{0, -512, 0, 0}},
        {kDown, kCtrl, true, KeyMove{0, 512, 0, 0}},
        {kLeft, kCtrl | kAlt, true, KeyMove{-32, 0, 0, 0}},
        {kDown, kCtrl | kAlt, true, KeyMove{0, 32, 0, 0}},
        {kLeft, kCtrl | kShift, true, KeyMove{0, 0, -256, 0}},
        {kRight, kCtrl | kShift, true, KeyMove{0, 0, 256, 0}},
        {kUp, kCtrl | kShift, true, KeyMove{0, 0, 0, -256}},
        {kDown, kCtrl | kShift, true, KeyMove{0, 0, 0, 256}},
        {kRight, kCtrl | kShift | kAlt, true, KeyMove{0, 0, 16, 0}},
        {kUp, kCtrl | kShift | kAlt, true, KeyMove{0, 0, 0, -16}},
        // Without resizing, only the moves remain.
        {kLeft, kCtrl, false, KeyMove{-512, 0, 0, 0}},
        {kDown, kCtrl | kAlt, false, KeyMove{0, 32, 0, 0}},
        {kLeft, kCtrl | kShift, false, std::nullopt},
        {kDown, kCtrl | kShift | kAlt, false, std::nullopt},
        // Not the mover's.
        {kLeft, 0, true, std::nullopt},
        {kLeft, kShift, true, std::nullopt},
        {kLeft, kAlt, true, std::nullopt},
        {kLeft, kShift | kAlt, true, std::nullopt},
        {kEnter, kCtrl, true, std::nullopt},
        {kF5, kCtrl | kShift, true, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "key " << c.key << ", shift " << c.shift
                                        << (c.allowResize ? ", resizing" : ""));
        EXPECT_EQ(KeyMoveFor(c.key, c.shift, c.allowResize), c.expected);
    }
}

TEST(KeyMove, AValueThatDoesNotComputeIsNotApplied) {
    const WindowBox box{1500, 1500, 7200, 3700};
    const struct {
        const char* name;
        WindowBox from;
        KeyMove move;
        std::optional<WindowBox> expected;
    } cases[] = {
        {"move left", box, {-512, 0, 0, 0}, WindowBox{988, 1500, 7200, 3700}},
        {"move off the left edge", {100, 0, 10, 10}, {-512, 0, 0, 0}, WindowBox{-412, 0, 10, 10}},
        {"taller", box, {0, 0, 0, 256}, WindowBox{1500, 1500, 7200, 3956}},
        {"narrowed to nothing", {0, 0, 256, 10}, {0, 0, -256, 0}, WindowBox{0, 0, 0, 10}},
        {"narrower than nothing", {0, 0, 100, 10}, {0, 0, -256, 0}, std::nullopt},
        {"shorter than nothing", {0, 0, 10, 15}, {0, 0, 0, -16}, std::nullopt},
        {"left overflows", {INT_MIN, 0, 10, 10}, {-512, 0, 0, 0}, std::nullopt},
        {"top overflows", {0, INT_MAX, 10, 10}, {0, 32, 0, 0}, std::nullopt},
        {"height overflows", {0, 0, 10, INT_MAX}, {0, 0, 0, 16}, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ApplyKeyMove(c.from, c.move), c.expected);
    }
}

}  // namespace
}  // namespace zorvi
