// Numbered menu captions, the configuration order, the tray tip and the
// launch-error texts.
#include <gtest/gtest.h>

#include "res/string_ids.h"
#include "ui/main/menu_text.h"

namespace zorvi {
namespace {

TEST(MenuText, NumberedCaptionsShowEveryAmpersand) {
    EXPECT_EQ(NumberedMenuCaption(1, "Default"), "&1 : Default");
    EXPECT_EQ(NumberedMenuCaption(12, "R&B && Co"), "&12 : R&&B &&&& Co");
    EXPECT_EQ(NumberedMenuCaption(3, ""), "&3 : ");
}

TEST(MenuText, ConfigurationsSortWithoutRegardToCase) {
    EXPECT_EQ(SortConfigurationNames({"beta", "Alpha", "alpha", "_x", "Gamma", "b"}),
              (std::vector<std::string>{"_x", "Alpha", "alpha", "b", "beta", "Gamma"}));
}

TEST(MenuText, TrayTipNamesWatchStateAndFile) {
    EXPECT_EQ(TrayTipText("Zorvi", "0.1", true, "a.mml"), "Zorvi v0.1 [ON]\r\na.mml");
    EXPECT_EQ(TrayTipText("Zorvi", "0.1a", false, ""), "Zorvi v0.1a [OFF]\r\n");
}

TEST(MenuText, LaunchErrorsHaveTheirTexts) {
    const struct {
        unsigned long error;
        int id;
    } cases[] = {{2, ids::kFileNotFound},  {3, ids::kPathNotFound}, {8, ids::kOutOfMemory},
                 {14, ids::kOutOfMemory},  {126, ids::kDllNotFound}, {1157, ids::kDllNotFound},
                 {5, ids::kUnknownError},  {0, ids::kUnknownError}};
    for (const auto& c : cases) EXPECT_EQ(LaunchErrorTextId(c.error), c.id) << c.error;
}

}  // namespace
}  // namespace zorvi
