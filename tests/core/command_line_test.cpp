// The command line as users type it: tokens, switches, presets and the file.
#include <gtest/gtest.h>

#include <random>
#include <set>

#include "core/command_line.h"

namespace zorvi {
namespace {

using Tokens = std::vector<std::string>;

TEST(CommandLine, TokenizesAsTyped) {
    const struct {
        const char* line;
        Tokens tokens;
    } cases[] = {
        {"", {}},
        {"   \t  ", {}},
        {"song.mml", {"song.mml"}},
        {"  song.mml  ", {"song.mml"}},
        {"a  b", {"a", "", "b"}},
        {"\tsong.mml\t-x", {"song.mml", "-x"}},
        {"-compilenow song.mml", {"-compilenow", "song.mml"}},
        {"-a   -b", {"-a", "-b"}},
        {"\"C:\\My Songs\\a.mml\" next", {"\"C:\\My Songs\\a.mml\"", "", "next"}},
        {"\"C:\\My Songs\\a.mml\"", {"\"C:\\My Songs\\a.mml\""}},
        {"\"unclosed path here", {"\"unclosed path here"}},
        {"\"a\"b c", {"\"a\"b c"}},
        {"-preset=\"my set\" song.mml", {"-preset=\"my set\"", "song.mml"}},
        {"/x\"y z\" w", {"/x\"y z\"", "w"}},
        // A switch at the end, or a quote that never closes, takes the rest.
        {"song.mml -showlog", {"song.mml", "-showlog"}},
        {"-compilenow", {"-compilenow"}},
        {"-preset=\"open name", {"-preset=\"open name"}},
        {"-preset=\"open name -play", {"-preset=\"open name -play"}},
        {"\"C:\\a b\" -play", {"\"C:\\a b\"", "", "-play"}},
        {"-preset=\"ab\"x", {"-preset=\"ab\"x"}},
        {"-play\"a\"b", {"-play\"a\"b"}},
        {"-preset=\"a b\"x", {"-preset=\"a b\"", "x"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        EXPECT_EQ(TokenizeCommandLine(c.line), c.tokens);
    }
}

// A small file system: these files exist, "C:\dir" is a folder.
CommandLine Interpret(const char* line) {
    static const std::set<std::string> files = {"C:\\songs\\a.mml", "b.mml", "C:\\My Songs\\a.mml",
                                                "song.mml"};
    const CommandLineFacts facts{
        .unquote =
            [](const std::string& path) {
                const bool quoted = path.size() >= 2 && path.front() == '"' && path.back() == '"';
                return quoted ? path.substr(1, path.size() - 2) : path;
            },
        .isExistingFile = [](const std::string& path) { return files.contains(path); },
    };
    return InterpretCommandLine(TokenizeCommandLine(line), "C:\\Z\\", facts);
}

TEST(CommandLine, ReadsSwitchesPresetAndFile) {
    const struct {
        const char* line;
        bool compileNow, play, showLog;
        const char* preset;
        const char* file;
    } cases[] = {
        {"", false, false, false, "", ""},
        {"-compilenow C:\\songs\\a.mml", true, false, false, "", "C:\\songs\\a.mml"},
        {"/CompileNow /PLAY /ShowLog nothere.mml", true, true, true, "", ""},
        {"/PRESET=fast /compilenow song.mml", true, false, false, "C:\\Z\\cfg\\fast.ini", "song.mml"},
        {"-preset=fast.ini", false, false, false, "C:\\Z\\cfg\\fast.ini.ini", ""},
        {"-preset=\"My Set\" b.mml", false, false, false, "C:\\Z\\cfg\\my set.ini", "b.mml"},
        // The path already ends in ".ini", so a second preset gains nothing.
        {"-preset=a -preset=b", false, false, false, "C:\\Z\\cfg\\b", ""},
        {"-preset=", false, false, false, "C:\\Z\\cfg\\.ini", ""},
        {"missing.mml b.mml C:\\songs\\a.mml", false, false, false, "", "b.mml"},
        {"\"C:\\My Songs\\a.mml\"", false, false, false, "", "C:\\My Songs\\a.mml"},
        {"C:\\dir", false, false, false, "", ""},
        {"-unknown -compilenowx -playx /show-log song.mml", false, false, false, "", "song.mml"},
        {"- / song.mml", false, false, false, "", "song.mml"},
        {"song.mml -compilenow", true, false, false, "", "song.mml"},
        {"song.mml -showlog", false, false, true, "", "song.mml"},
        {"-compilenow \"C:\\My Songs\\a.mml\" -play", true, true, false, "", "C:\\My Songs\\a.mml"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        const CommandLine args = Interpret(c.line);
        EXPECT_EQ(args.compileNow, c.compileNow);
        EXPECT_EQ(args.play, c.play);
        EXPECT_EQ(args.showLog, c.showLog);
        EXPECT_EQ(args.presetPath, c.preset);
        EXPECT_EQ(args.file, c.file);
    }
}

TEST(CommandLine, LongLinesEndQuickly) {
    std::string line;
    while (line.size() < 32 * 1024) line += "-x ";
    line += "\"never closed -play";
    const Tokens tokens = TokenizeCommandLine(line);
    ASSERT_EQ(tokens.size(), (32 * 1024 + 2) / 3 + 1);
    EXPECT_EQ(tokens.back(), "\"never closed -play");
}

// Whatever is typed, tokenising ends and every token is a piece of the line.
TEST(CommandLine, AnyTextTokenizesWithinItsLength) {
    std::mt19937 random(20261121);
    const std::string alphabet = "ab \"-/\t=";
    for (int round = 0; round < 5000; ++round) {
        std::string line(random() % 40, ' ');
        for (char& c : line) c = alphabet[random() % alphabet.size()];
        SCOPED_TRACE(line);
        std::size_t total = 0;
        for (const std::string& token : TokenizeCommandLine(line)) {
            EXPECT_EQ(token.find('\t'), std::string::npos);
            total += token.size();
        }
        EXPECT_LE(total, line.size());
    }
}

}  // namespace
}  // namespace zorvi
