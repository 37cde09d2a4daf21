// $variable$ expansion with the facts that Windows and the settings supply.
#pragma once

#include <string>

namespace zorvi {
class IniFile;
}

namespace zorvi::mdlFile {

// The folders of the system and of the program itself.
std::string ExpandSystemVariables(const std::string& text);
// The system variables, then those of the console compiler of the
// configuration (the active one when configurationPath is empty) and of the
// target file. A text without "$" comes back as it is, with nothing read.
std::string ExpandVariables(const std::string& text, bool shortFolders, bool shortNames,
                            const std::string& configurationPath);
// The same, with the console compiler read from a configuration already open.
std::string ExpandVariables(const std::string& text, bool shortFolders, bool shortNames,
                            const IniFile& configuration);
// ExpandVariables for the lines of a batch script: short folders, and every
// value escaped for the command interpreter where it stands.
std::string ExpandScriptVariables(const std::string& script, bool shortNames,
                                  const IniFile& configuration);

}  // namespace zorvi::mdlFile
