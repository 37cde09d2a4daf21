// Fuzzes the command-line tokeniser and the reading of its switches.
#include <cstdint>
#include <string>

#include "core/command_line.h"
#include "core/text.h"
#include "fuzz_support.h"

using namespace zorvi;
using zorvi::fuzz::Check;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view line = fuzz::UseCodePageOf(data, size);
    const std::vector<std::string> tokens = TokenizeCommandLine(line);

    // Every pass takes at least one character, and every token is the next
    // piece of the line, tabs read as blanks.
    Check(tokens.size() <= line.size(), "no more tokens than characters");
    std::string tabless(line);
    for (char& c : tabless) {
        if (c == '\t') c = ' ';
    }
    std::size_t from = 0;
    for (const std::string& token : tokens) {
        const std::size_t at = tabless.find(token, from);
        Check(at != std::string::npos, "each token is the next piece of the line");
        Check(token.empty() || token.front() != ' ', "no token starts with a blank");
        const bool plain = !token.empty() && token.front() != '"' && token.front() != '-' &&
                           token.front() != '/';
        Check(!plain || token.find(' ') == std::string::npos, "a plain word holds no blank");
        from = at + token.size();
    }

    // A file exists when its unquoted name has an even length: the reader
    // must take the first such one and nothing else.
    std::string firstExisting;
    const CommandLineFacts facts{
        [](const std::string& token) {
            std::string unquoted = token;
            if (unquoted.size() >= 2 && unquoted.front() == '"' && unquoted.back() == '"') {
                unquoted = unquoted.substr(1, unquoted.size() - 2);
            }
            return unquoted;
        },
        [&](const std::string& path) {
            const bool exists = path.size() % 2 == 0;
            if (exists && firstExisting.empty()) firstExisting = path;
            return exists;
        },
    };
    const std::string appFolder = "C:\\Zorvi\\";
    const CommandLine read = InterpretCommandLine(tokens, appFolder, facts);
    Check(read.file == firstExisting, "the file is the first existing one named");
    Check(read.presetPath.empty() || read.presetPath.starts_with(appFolder + "cfg\\"),
          "a preset lies in the cfg folder");
    Check(read.presetPath.find('"') == std::string::npos, "a preset path holds no quote");
    return 0;
}
