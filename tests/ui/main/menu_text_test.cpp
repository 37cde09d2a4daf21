// Numbered menu captions, the configuration order, the tray tip, the
// launch-error texts and the about window's labels.
#include <gtest/gtest.h>

#include "res/string_ids.h"
#include "support/rows.h"
#include "ui/dialogs/about_text.h"
#include "ui/main/menu_text.h"

namespace zorvi {
namespace {

using testing::ExpectRows;
using S = std::string;

TEST(MenuText, CaptionsOrderTipsAndErrors) {
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
}

}  // namespace
}  // namespace zorvi
