// Keeping windows on the screen, and twips against pixels.
#include <gtest/gtest.h>

#include <climits>

#include "ui/main/placement.h"

namespace zorvi {
namespace {

TEST(Placement, AtMostOneCorrectionInItsOrder) {
    const ScreenExtent screen{1280, 1024};
    const WindowBox current{100, 100, 400, 300};
    const struct {
        const char* name;
        RequestedBox requested;
        WindowBox expected;
    } cases[] = {
        {"nothing asked keeps the window", {}, {100, 100, 400, 300}},
        {"on the screen as asked", {10, 20, 500, 600}, {10, 20, 500, 600}},
        {"only the left asked", {50, std::nullopt, std::nullopt, std::nullopt},
         {50, 100, 400, 300}},
        {"above the screen", {10, -5, 400, 300}, {10, 0, 400, 300}},
        {"left of the screen", {-5, 10, 400, 300}, {0, 10, 400, 300}},
        {"above and left: only the top", {-5, -5, 400, 300}, {-5, 0, 400, 300}},
        {"left and below: only the left", {-5, 5000, 400, 300}, {0, 5000, 400, 300}},
        {"below, with the current height", {10, 1024, 400, 500}, {10, 724, 400, 500}},
        {"last row still on the screen", {10, 1023, 400, 300}, {10, 1023, 400, 300}},
        {"right, with the current width", {1280, 10, 600, 300}, {880, 10, 600, 300}},
        {"below and right: only the top", {2000, 2000, 400, 300}, {2000, 724, 400, 300}},
        {"zero size is a size", {0, 0, 0, 0}, {0, 0, 0, 0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto box = CorrectPlacement(c.requested, current, screen);
        ASSERT_TRUE(box.has_value());
        EXPECT_EQ(*box, c.expected);
    }
}

TEST(Placement, NegativeSizesAreNotApplied) {
    const WindowBox current{0, 0, 400, 300};
    for (const RequestedBox& requested :
         {RequestedBox{0, 0, -1, 300}, RequestedBox{0, 0, 400, -1},
          RequestedBox{std::nullopt, std::nullopt, std::nullopt, -300}}) {
        SCOPED_TRACE(requested.width.value_or(0) + requested.height.value_or(0));
        EXPECT_FALSE(CorrectPlacement(requested, current, {1280, 1024}).has_value());
    }
}

TEST(Placement, TwipsAndPixelsRoundToTheNearest) {
    const struct {
        int twips;
        int dpi;
        int pixels;
    } toPixels[] = {
        {7200, 96, 480}, {3700, 96, 247}, {4410, 96, 294}, {512, 96, 34}, {16, 96, 1},
        {7, 96, 0},      {8, 96, 1},      {-512, 96, -34}, {45, 16, 1},   {-45, 16, -1},
        {7200, 144, 720}, {0, 144, 0},    {INT_MAX, 96, 143165576},
    };
    for (const auto& c : toPixels) {
        SCOPED_TRACE(testing::Message() << c.twips << " twips at " << c.dpi);
        EXPECT_EQ(TwipsToPixels(c.twips, c.dpi), c.pixels);
    }
    const struct {
        int pixels;
        int dpi;
        int twips;
    } toTwips[] = {{480, 96, 7200}, {247, 96, 3705}, {1, 144, 10}, {-34, 96, -510}, {0, 96, 0}};
    for (const auto& c : toTwips) {
        SCOPED_TRACE(testing::Message() << c.pixels << " pixels at " << c.dpi);
        EXPECT_EQ(PixelsToTwips(c.pixels, c.dpi), c.twips);
    }
}

}  // namespace
}  // namespace zorvi
