// Splitting Zorvi's command line into tokens and reading its switches.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zorvi {

// Cuts the raw command line (the text after the program name) into tokens.
// Empty tokens are part of the result: runs of blanks leave them behind.
std::vector<std::string> TokenizeCommandLine(std::string_view commandLine);

struct CommandLine {
    bool compileNow = false;
    bool play = false;
    bool showLog = false;
    std::string presetPath;  // empty: the active configuration
    std::string file;        // empty: none given, or none that exists
};

// The two facts about the file system that reading the tokens needs.
struct CommandLineFacts {
    std::function<std::string(const std::string&)> unquote;  // strip enclosing quotes
    std::function<bool(const std::string&)> isExistingFile;   // a file, not a folder
};

// Reads the tokens in order; appFolder ends with a backslash.
CommandLine InterpretCommandLine(const std::vector<std::string>& tokens,
                                 const std::string& appFolder,
                                 const CommandLineFacts& facts);

}  // namespace zorvi
