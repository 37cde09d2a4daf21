// The shell's services the configuration window uses: following a shortcut
// file (.lnk) to the program it starts, and choosing a folder.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "ui/config/config_rules.h"

namespace zorvi {

// The target, arguments, working folder and show command of the shortcut;
// nullopt when the file cannot be read as a shortcut.
std::optional<LaunchTarget> ReadShortcut(const std::string& path);

// The shell's folder chooser; nullopt when the user cancels.
std::optional<std::string> BrowseForFolder(HWND owner, const std::wstring& title);

}  // namespace zorvi
