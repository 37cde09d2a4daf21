// The about window's texts.
#include <gtest/gtest.h>

#include "ui/dialogs/about_text.h"

namespace zorvi {
namespace {

TEST(AboutText, VersionLabelCarriesTheRevisionLetter) {
    const struct {
        int revision;
        const char* label;
    } cases[] = {{0, "Version 0.14"}, {1, "Version 0.14a"}, {3, "Version 0.14c"},
                 {26, "Version 0.14z"}};
    for (const auto& c : cases) EXPECT_EQ(VersionLabel({0, 14, c.revision}), c.label);
    EXPECT_EQ(BuildLabel("20041201"), "Build 20041201");
    EXPECT_EQ(AboutCaption("Zorvi"), "Zorvi - About");
}

}  // namespace
}  // namespace zorvi
