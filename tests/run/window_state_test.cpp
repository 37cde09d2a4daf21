// The runner's platform-free decisions: show commands and parameter quoting.
#include <gtest/gtest.h>

#include "run/window_state.h"

namespace zorvi {
namespace {

TEST(WindowState, StoredCodesBecomeShowCommands) {
    const struct {
        int stored;
        int showCommand;
    } cases[] = {{2, 6}, {3, 3}, {1, 1}, {0, 1}, {4, 1}, {-1, 1}, {6, 1}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.stored);
        EXPECT_EQ(ShowCommandForWindowState(c.stored), c.showCommand);
    }
}

TEST(WindowState, ParametersWithABlankAreQuotedWhole) {
    const struct {
        const char* given;
        const char* passed;
    } cases[] = {
        {"C:\\My Songs\\a.mml", "\"C:\\My Songs\\a.mml\""},
        {"a.mml", "a.mml"},
        {"-x -y", "\"-x -y\""},
        {"\"a b\" c", "\"\"a b\" c\""},
        {"\"C:\\My Songs\\a.mml\"", "\"\"C:\\My Songs\\a.mml\"\""},
        {"/C C:\\ZORVI~1\\ZORVI.BAT", "\"/C C:\\ZORVI~1\\ZORVI.BAT\""},
        {"", ""},
        {" ", "\" \""},
        {"tab\there", "tab\there"},
        {"\"quoted\"", "\"quoted\""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.given);
        EXPECT_EQ(QuoteParameters(c.given), c.passed);
    }
}

}  // namespace
}  // namespace zorvi
