// $variable$ substitution in command templates, decided without asking Windows.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace zorvi::mdlFile {

// The facts behind the system variables. Each is asked at most once per
// expansion, and only when a token needs it.
struct SystemFacts {
    std::function<std::string()> windowsFolder;         // with or without a trailing "\"
    std::function<std::string()> shortDesktopFolder;
    std::function<std::string()> shortDocumentsFolder;
    std::function<std::string()> programFolder;         // long form, e.g. "C:\Program Files\Zorvi\"
    std::function<std::string()> shortProgramFolder;
};

// The facts behind the console ("prog") and target ("file") variables.
struct VariableFacts {
    SystemFacts system;
    // The 8.3 form of a path; the path itself when it has none.
    std::function<std::string(const std::string& path)> shortPath;
    std::function<std::string()> console;     // Configure/Console of the configuration
    std::function<std::string()> targetFile;
};

std::string ExpandSystemVariablesWith(std::string_view text, const SystemFacts& facts);
// forBatch: the text is a batch script, and every value is escaped for the
// command interpreter where it stands (EscapeForBatch), so that a file named
// "a&b.mml" reaches the tool as that name and starts nothing else.
std::string ExpandVariablesWith(std::string_view text, bool shortFolders, bool shortNames,
                                const VariableFacts& facts, bool forBatch = false);

// "$line$" (any case) replaced by the line number, everything else left for
// ExpandVariables: the editor's arguments for opening the target at a line.
std::string ExpandLineVariable(std::string_view text, int line);

// A value as the command interpreter must read it in a batch file: "%"
// doubled everywhere; outside double quotes "^" before each of & | < > ^ ( ) !.
std::string EscapeForBatch(std::string_view value, bool insideQuotes);

}  // namespace zorvi::mdlFile
