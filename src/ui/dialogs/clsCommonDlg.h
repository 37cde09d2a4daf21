// The open-file dialog behind a handful of properties, so a window can ask
// for a file without a dialog control of its own.
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

    HWND Owner = nullptr;
    DWORD FilterIndex = 0;  // 1-based pair shown first
    DWORD Flags = 0;        // OFN_* as they are
    std::string DialogTitle = "Open File";
    std::string InitDir;
    std::string FileName;            // in: proposed name; out: the choice
    std::int32_t MaxFileSize = 255;  // characters of the file-name buffer
    bool CancelError = false;        // report cancelling through CancelButton
    bool CancelButton = false;       // out
    DWORD ErrNumber = 0;             // out: the platform's extended error code

    void ShowOpen();

private:
    std::string filter_;
};

}  // namespace zorvi
