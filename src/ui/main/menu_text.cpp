// Texts of the main window's menus and tray icon.
#include "ui/main/menu_text.h"

#include "core/text.h"
#include "res/string_ids.h"

namespace zorvi {

std::string NumberedMenuCaption(int number, std::string_view name) {
    std::string caption = "&";  // built in steps: GCC 12 sees a false overlap in "&" + text
    caption += std::to_string(number);
    caption += " : ";
    for (std::size_t at = 0; at < name.size();) {
        // A second byte of a double-byte character is never an "&".
        const std::size_t length = CharLength(name, at);
        if (length == 1 && name[at] == '&') caption += '&';
        caption.append(name.substr(at, length));
        at += length;
    }
    return caption;
}

std::string TrayTipText(std::string_view title, std::string_view version, bool watching,
                        std::string_view fileName) {
    std::string tip(title);
    tip += " v";
    tip += version;
    tip += watching ? " [ON]" : " [OFF]";
    tip += "\r\n";
    tip += fileName;
    return tip;
}

int LaunchErrorTextId(unsigned long systemError) {
    switch (systemError) {
        case 2: return ids::kFileNotFound;    // ERROR_FILE_NOT_FOUND
        case 3: return ids::kPathNotFound;    // ERROR_PATH_NOT_FOUND
        case 8:                               // ERROR_NOT_ENOUGH_MEMORY
        case 14: return ids::kOutOfMemory;    // ERROR_OUTOFMEMORY
        case 126:                             // ERROR_MOD_NOT_FOUND
        case 1157: return ids::kDllNotFound;  // ERROR_DLL_NOT_FOUND
        default: return ids::kUnknownError;
    }
}

}  // namespace zorvi
