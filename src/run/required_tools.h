// The check of the files a configuration needs, and its words.
#pragma once

#include <string>

namespace zorvi {

class IniFile;

// -1 when the configuration lists no required files, 0 when all exist,
// otherwise how many are missing; missing gets their names joined by " / ".
// Entries are expanded first; relative ones are looked for in folder.
int RequiredToolsCheck(const IniFile& configuration, const std::string& folder,
                       std::string& missing);

// "No information of required tools.", "Required tool(s) already installed."
// or the missing list, a blank and "not installed".
std::wstring RequiredToolsMessage(int count, const std::string& missing);

}  // namespace zorvi
