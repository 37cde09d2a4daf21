// The open-file and save-file dialogs behind a handful of properties, so a
// window can ask for a file without a dialog control of its own.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zorvi {

class clsCommonDlg {
public:
    clsCommonDlg();  // InitDir starts as the current folder

    // Set as "Name|*.ext|..." (or already NUL-separated); kept NUL-separated.
    void SetFilter(std::string_view filter);
    const std::string& Filter() const { return filter_; }

    // Also copies the window's font attributes into the Font* fields.
    void SetOwner(HWND owner);
    HWND Owner() const { return owner_; }

    DWORD FilterIndex = 0;  // 1-based pair shown first
    DWORD Flags = 0;        // OFN_* as they are
    std::string DialogTitle = "Open File";
    std::string InitDir;
    std::string FileName;                           // in: proposed name; out: the choice
    std::string FileTitle = std::string(254, ' ');  // out: the chosen name without folder
    std::int32_t MaxFileSize = 255;                 // characters of the file-name buffer
    std::string DefaultExt = std::string(1, '\0');  // appended when the user types none
    bool CancelError = false;                       // report cancelling through CancelButton
    bool CancelButton = false;                      // out
    std::int16_t Action = 0;                        // 1 open, 2 save; see Show
    DWORD ErrNumber = 0;                            // out: the platform's extended error code

    // The owner's font; the file dialogs do not use it.
    bool FontBold = false;
    bool FontItalic = false;
    double FontSize = 0;  // points
    bool FontStrikethru = false;
    bool FontUnderline = false;

    void ShowOpen();  // Action = 1, then Show
    void ShowSave();  // Action = 2, then Show
    void Show();      // the dialog that Action names; other values do nothing

    std::wstring ErrDescription() const;  // the text for ErrNumber
    // The text for an error number of the table (20476 ... 32768).
    static std::wstring ErrorText(long number);
    // The table's number for an extended error code of the platform.
    static long ErrorNumberOf(DWORD extendedError);

private:
    std::string filter_;
    HWND owner_ = nullptr;
};

}  // namespace zorvi
