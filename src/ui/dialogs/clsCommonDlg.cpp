// The open-file dialog behind a handful of properties.
#include "ui/dialogs/clsCommonDlg.h"

#include <commdlg.h>

#include <exception>

#include "files/path_text.h"

namespace zorvi {
namespace {

// The chosen path; with multiple selection the folder and the names stay
// NUL-separated up to the closing pair of NULs. A single path is cut at its
// own NUL so that the tail of a longer proposed name cannot follow it.
std::string ChosenFileName(const std::string& buffer, bool multipleSelection) {
    if (!multipleSelection) return mdlFile::TrimNull(buffer);
    const auto end = buffer.find(std::string_view("\0\0", 2));
    if (end != std::string::npos) return buffer.substr(0, end);
    return buffer.substr(0, buffer.find_last_not_of('\0') + 1);
}

}  // namespace

clsCommonDlg::clsCommonDlg() : filter_(mdlFile::NulSeparatedFilter("All Files (*.*)|*.*|")) {
    std::string folder(mdlFile::kPathBuffer, '\0');
    const DWORD length = GetCurrentDirectoryA(static_cast<DWORD>(folder.size()), folder.data());
    if (length > 0 && length < folder.size()) InitDir = mdlFile::TrimNull(folder);
}

void clsCommonDlg::SetFilter(std::string_view filter) {
    filter_ = mdlFile::NulSeparatedFilter(filter);
}

void clsCommonDlg::ShowOpen() {
    try {
        CancelButton = false;
        ErrNumber = 0;

        // The proposed name, cut to leave room for its NUL, in a NUL-filled
        // buffer of MaxFileSize characters (at least one).
        const std::size_t fileSize = MaxFileSize > 1 ? static_cast<std::size_t>(MaxFileSize) : 1;
        std::string fileBuffer = FileName.substr(0, fileSize - 1);
        fileBuffer.resize(fileSize, '\0');

        OPENFILENAMEA record{};
        // The record without the Windows 2000 tail, as the program has always passed it.
        record.lStructSize = OPENFILENAME_SIZE_VERSION_400A;
        record.hwndOwner = Owner;
        record.hInstance = nullptr;
        record.lpstrFilter = filter_.c_str();
        record.lpstrCustomFilter = nullptr;
        record.nFilterIndex = FilterIndex;
        record.lpstrFile = fileBuffer.data();
        record.nMaxFile = static_cast<DWORD>(fileBuffer.size());
        record.lpstrInitialDir = InitDir.c_str();
        record.lpstrTitle = DialogTitle.c_str();
        record.Flags = Flags;

        const BOOL result = GetOpenFileNameA(&record);
        if (result == 1) {
            FileName = ChosenFileName(fileBuffer, (Flags & OFN_ALLOWMULTISELECT) != 0);
        } else if (result == 0) {
            // Cancelled, or failed without saying why: the same to the caller.
            if (CancelError) {
                CancelButton = true;
                FileName.clear();
            }
        } else {
            ErrNumber = CommDlgExtendedError();
        }
    } catch (const std::exception&) {
        // Out of memory for the buffers: the dialog simply did not happen.
    }
}

}  // namespace zorvi
