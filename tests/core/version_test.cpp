// The version text of captions and the about window.
#include <gtest/gtest.h>

#include "core/version.h"

namespace zorvi {
namespace {

TEST(Version, TextFromRecord) {
    const struct {
        VersionRecord record;
        const char* text;
    } cases[] = {
        {{0, 14, 3}, "0.14c"}, {{0, 14, 0}, "0.14"}, {{1, 2, 1}, "1.2a"},
        {{1, 0, 26}, "1.0z"},  {{2, 5, 27}, "2.5"},  {{2, 5, -1}, "2.5"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(VersionText(c.record), c.text);
    }
}

TEST(Version, ThisProgramHasAPlainVersion) {
    const std::string text = VersionText(ThisVersion());
    EXPECT_EQ(text.find_first_not_of("0123456789.abcdefghijklmnopqrstuvwxyz"), std::string::npos);
    EXPECT_EQ(std::count(text.begin(), text.end(), '.'), 1);
}

}  // namespace
}  // namespace zorvi
