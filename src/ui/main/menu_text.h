// The texts of the main window's menus and tray icon that need no platform:
// numbered entries, the tray tip, launch errors and the version lines.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zorvi {

// "&" + number + " : " + name. An "&" of the name is doubled, so that it is
// shown rather than taken for a mnemonic.
std::string NumberedMenuCaption(int number, std::string_view name);


// title + " v" + version + " [ON]" or " [OFF]" + CR LF + the target's file name.
std::string TrayTipText(std::string_view title, std::string_view version, bool watching,
                        std::string_view fileName);

// The string id of the message for a failed launch, by the system's error
// number: "File not found.", "Path not found.", "Out of memory.",
// "DLL not found.", else "Unknown error.".
int LaunchErrorTextId(unsigned long systemError);

}  // namespace zorvi
