// Values written into a batch script: escaped for where they stand, so that
// the command interpreter passes them on as they are and runs nothing else.
#include <gtest/gtest.h>

#include "files/variables.h"

namespace zorvi::mdlFile {
namespace {

TEST(BatchEscape, EachCharacterTheInterpreterActsOnIsEscapedForItsPlace) {
    const struct {
        const char* value;
        const char* outside;
        const char* inside;
    } cases[] = {
        {"a b.mml", "a b.mml", "a b.mml"},
        {"b&notepad&.mml", "b^&notepad^&.mml", "b&notepad&.mml"},
        {"|<>^()!", "^|^<^>^^^(^)^!", "|<>^()!"},
        {"100%.mml", "100%%.mml", "100%%.mml"},
        {"%PATH%", "%%PATH%%", "%%PATH%%"},
        {",;='", ",;='", ",;='"},
        // The second byte of a double-byte character is never escaped: in
        // the native build no byte leads, so 0x5E passes as the caret it is.
        {"\x95\x5e", "\x95^\x5e", "\x95\x5e"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value);
        EXPECT_EQ(EscapeForBatch(c.value, false), c.outside);
        EXPECT_EQ(EscapeForBatch(c.value, true), c.inside);
    }
}

TEST(BatchEscape, ScriptLinesEscapeByTheQuotesBeforeEachToken) {
    VariableFacts facts;
    facts.targetFile = [] { return std::string("C:\\M&M (1)\\b&c%.mml"); };
    facts.console = [] { return std::string("C:\\t!\\mc.exe"); };
    const auto script = [&](const char* text) {
        return ExpandVariablesWith(text, false, false, facts, true);
    };
    EXPECT_EQ(script("\"$pp$mc.exe\" \"$fp$$fn$\" > $fn2$.log"),
                     "\"C:\\t!\\mc.exe\" \"C:\\M&M (1)\\b&c%%.mml\" > b^&c%%.log");
    // Quotes are counted per line: an odd one does not carry over.
    EXPECT_EQ(script("echo \"$fn$\r\ncopy $fn$ x"),
                     "echo \"b&c%%.mml\r\ncopy b^&c%%.mml x");
    // Outside a script nothing is touched.
    EXPECT_EQ(ExpandVariablesWith("$fn$", false, false, facts), "b&c%.mml");
}

}  // namespace
}  // namespace zorvi::mdlFile
