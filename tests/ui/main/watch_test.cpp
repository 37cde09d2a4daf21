// Target confirmation, the watch tick and what follows a compile it started.
#include <gtest/gtest.h>

#include "ui/main/watch.h"

namespace zorvi {
namespace {

TEST(Watch, ConfirmationDependsOnFilterCodeAndExtension) {
    const struct {
        int code;
        const char* extension;
        bool asks;
    } cases[] = {
        {0, "mml", false}, {0, "MmL", false}, {0, "MUS", false}, {0, "txt", false}, {0, "c", true},
        {0, "", true},     {0, "mmlx", true}, {0, "ml", true},   {1, "mml", true},  {1, "c", true},
        {2, "c", false},   {3, "c", false},   {4, "c", false},   {4, "mml", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.code) + " " + c.extension);
        EXPECT_EQ(NeedsTargetConfirmation(c.code, c.extension), c.asks);
    }
}

TEST(Watch, TickComparesTheTimeAndLetsAMissingTargetGoOnlyWhenItStaysAway) {
    // Each row is one tick; missing state carries over within a sequence.
    struct Tick {
        bool compiling;
        std::optional<std::uint64_t> lastWrite;
        std::uint64_t nowMs;
        TickAction expected;
    };
    const struct {
        const char* name;
        std::vector<Tick> ticks;
    } cases[] = {
        {"unchanged", {{false, 100, 0, TickAction::Nothing}}},
        {"touched", {{false, 200, 0, TickAction::Compile}}},
        {"clock set back", {{false, 50, 0, TickAction::Compile}}},
        {"changed while compiling", {{true, 200, 0, TickAction::Nothing}}},
        {"gone for good",
         {{false, std::nullopt, 1000, TickAction::Nothing},
          {false, std::nullopt, 1250, TickAction::Nothing},
          {false, std::nullopt, 1500, TickAction::Release}}},
        {"gone, fast ticks wait for 500 ms",
         {{false, std::nullopt, 0, TickAction::Nothing},
          {false, std::nullopt, 10, TickAction::Nothing},
          {false, std::nullopt, 20, TickAction::Nothing},
          {false, std::nullopt, 499, TickAction::Nothing},
          {false, std::nullopt, 500, TickAction::Release}}},
        {"safe save: back on the next tick, compiled once",
         {{false, std::nullopt, 0, TickAction::Nothing},
          {false, 300, 250, TickAction::Compile},
          {false, std::nullopt, 500, TickAction::Nothing},
          {false, std::nullopt, 750, TickAction::Nothing}}},
        {"gone while compiling",
         {{true, std::nullopt, 0, TickAction::Nothing},
          {true, std::nullopt, 600, TickAction::Nothing},
          {false, std::nullopt, 700, TickAction::Nothing}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        MissingTarget missing;
        for (const Tick& tick : c.ticks) {
            SCOPED_TRACE(tick.nowMs);
            EXPECT_EQ(WatchTick(tick.compiling, tick.lastWrite, 100, missing, tick.nowMs),
                      tick.expected);
        }
    }
}

TEST(Watch, WatchingGoesOnAfterATickCompileWithTheTargetOfNow) {
    const struct {
        const char* name;
        bool watchOn;
        const char* before;
        const char* now;
        bool store, resume;
    } cases[] = {
        {"nothing changed", true, "C:\\a.mml", "C:\\a.mml", true, true},
        {"watch turned off meanwhile", false, "C:\\a.mml", "C:\\a.mml", true, false},
        {"another target set", true, "C:\\a.mml", "C:\\b.mml", false, true},
        {"another target, watch off", false, "C:\\a.mml", "C:\\b.mml", false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const AfterTickCompile after = AfterTickCompileRule(c.watchOn, c.before, c.now);
        EXPECT_EQ(after.storeTime, c.store);
        EXPECT_EQ(after.resumeTimer, c.resume);
    }
}

TEST(Watch, TimerIntervalHasAFloor) {
    const struct {
        int setting;
        unsigned used;
    } cases[] = {
        {250, 250}, {50, 50}, {10, 10}, {9, 10}, {0, 10}, {-5, 10}, {2147483647, 2147483647u}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.setting);
        EXPECT_EQ(EffectiveTimerInterval(c.setting), c.used);
    }
}

TEST(Watch, CaptionNamesTheTargetFileWithoutFolder) {
    const struct {
        const char* target;
        const char* caption;
    } cases[] = {
        {"", "Zorvi v0.1"},
        {"C:\\songs\\Song.MML", "Song.MML - Zorvi v0.1"},
        {"a.mml", "a.mml - Zorvi v0.1"},
        {"\\\\server\\share\\x y.mml", "x y.mml - Zorvi v0.1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.target);
        EXPECT_EQ(MainCaption(c.target, "Zorvi", "0.1"), c.caption);
    }
}

}  // namespace
}  // namespace zorvi
