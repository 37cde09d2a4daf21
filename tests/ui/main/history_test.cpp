// The history's slots: insertion at the top, duplicates, the oldest falling
// off, and the captions of the history menus.
#include <gtest/gtest.h>

#include "ui/main/history.h"

namespace zorvi {
namespace {

HistorySlots Slots(std::initializer_list<const char*> entries) {
    HistorySlots slots;
    std::size_t i = 0;
    for (const char* entry : entries) slots[i++] = entry;
    return slots;
}

TEST(History, InsertPutsTheTargetOnTopOnce) {
    const struct {
        const char* name;
        const char* target;
        HistorySlots old;
        HistorySlots expected;
    } cases[] = {
        {"into an empty list", "C:\\a.mml", Slots({}), Slots({"C:\\a.mml"})},
        {"same file twice", "C:\\a.mml", Slots({"C:\\a.mml"}), Slots({"C:\\a.mml"})},
        {"moves an older entry up", "C:\\b.mml", Slots({"C:\\a.mml", "C:\\b.mml", "C:\\c.mml"}),
         Slots({"C:\\b.mml", "C:\\a.mml", "C:\\c.mml"})},
        {"case matters", "C:\\A.MML", Slots({"C:\\a.mml"}), Slots({"C:\\A.MML", "C:\\a.mml"})},
        {"no target only compacts", "", Slots({"", "C:\\a.mml", "", "C:\\a.mml", "C:\\b.mml"}),
         Slots({"C:\\a.mml", "C:\\b.mml"})},
        {"duplicates among the old slots go", "C:\\n.mml", Slots({"C:\\x", "C:\\x", "C:\\y"}),
         Slots({"C:\\n.mml", "C:\\x", "C:\\y"})},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(HistoryInsert(c.target, c.old), c.expected);
    }
}

TEST(History, The33rdFilePushesTheOldestOut) {
    HistorySlots slots;
    for (int i = 0; i < 33; ++i) slots = HistoryInsert("C:\\f" + std::to_string(i) + ".mml", slots);
    EXPECT_EQ(slots[0], "C:\\f32.mml");
    EXPECT_EQ(slots[31], "C:\\f1.mml");
    for (const auto& slot : slots) EXPECT_NE(slot, "C:\\f0.mml");
    // A full list taking one of its own entries only reorders.
    const HistorySlots again = HistoryInsert("C:\\f1.mml", slots);
    EXPECT_EQ(again[0], "C:\\f1.mml");
    EXPECT_EQ(again[1], "C:\\f32.mml");
    EXPECT_EQ(again[31], "C:\\f2.mml");
}

TEST(History, CaptionsCarryTheirNumberAsAccelerator) {
    const struct {
        int index;
        const char* display;
        const char* caption;
    } cases[] = {
        {0, "C:\\a.mml", "&0 : C:\\a.mml"},
        {10, "C:\\...\\b.mml", "&10 : C:\\...\\b.mml"},
        {3, "C:\\R&B\\c.mml", "&3 : C:\\R&&B\\c.mml"},
        {31, "", "&31 : "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.caption);
        EXPECT_EQ(HistoryCaption(c.index, c.display), c.caption);
    }
}

}  // namespace
}  // namespace zorvi
