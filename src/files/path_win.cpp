// The platform half of mdlFile: path questions answered by Windows. Every call
// uses a fixed buffer of kPathBuffer characters and cuts its answer at the first NUL.
#include "files/path_win.h"

#include <shlobj.h>

#include <exception>

#include "core/handles_win.h"
#include "core/text.h"
#include "files/path_text.h"
#include "ui/dialogs/clsCommonDlg.h"

namespace zorvi::mdlFile {
namespace {

// The first kPathBuffer characters of the path (never half of a double-byte
// character) in a NUL-filled buffer with room for its terminator. The calls
// made on it only ever shorten it, or fail before they would grow it past
// MAX_PATH, so nothing is written outside it.
std::string PathBuffer(const std::string& path) {
    const std::size_t length = CharBoundaryCut(
        path, kPathBuffer, [](unsigned char c) { return IsDBCSLeadByte(c) != FALSE; });
    std::string buffer(kPathBuffer + 1, '\0');
    path.copy(buffer.data(), length);
    return buffer;
}

// The folder part of a search pattern, with its "\" (empty for a bare pattern).
std::string PatternFolder(const std::string& pattern) {
    const auto slash = FindLastChar(pattern, '\\');
    return slash == std::string::npos ? std::string() : pattern.substr(0, slash + 1);
}

bool IsNormalFile(const WIN32_FIND_DATAA& found) {
    return (found.dwFileAttributes &
            (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM)) == 0;
}

// Calls visit with the name of every normal file matching the pattern; the
// search ends when visit returns false.
template <typename Visit>
void ForEachFile(const std::string& pattern, Visit visit) {
    WIN32_FIND_DATAA found{};
    const UniqueFindHandle search(FindFirstFileA(PathBuffer(pattern).c_str(), &found));
    if (!search) return;
    do {
        if (IsNormalFile(found) &&
            !visit(TrimNull(std::string_view(found.cFileName, sizeof found.cFileName)))) {
            break;
        }
    } while (FindNextFileA(search.get(), &found));
}

}  // namespace

std::string GetAppFolder() {
    std::string buffer(kPathBuffer, '\0');
    const DWORD length = GetModuleFileNameA(nullptr, buffer.data(), kPathBuffer);
    if (length == 0 || length >= kPathBuffer) return {};
    std::string folder = TrimNull(buffer);
    folder.erase(FindLastChar(folder, '\\') + 1);
    return AddBackslash(folder);
}

std::string GetWindowsFolder() {
    std::string buffer(kPathBuffer, '\0');
    const UINT length = GetWindowsDirectoryA(buffer.data(), kPathBuffer);
    // A longer answer is the size the buffer would need: nothing was written.
    if (length >= kPathBuffer) return {};
    return TrimNull(buffer.substr(0, length));
}

// The path's attributes as the shell's existence tests read them, without a
// box for a drive that is not ready; INVALID_FILE_ATTRIBUTES when it is not there.
DWORD Attributes(const std::string& path) {
    if (path.empty()) return INVALID_FILE_ATTRIBUTES;
    const UINT previous = SetErrorMode(SEM_FAILCRITICALERRORS);
    const DWORD attributes = GetFileAttributesA(PathBuffer(path).c_str());
    SetErrorMode(previous);
    return attributes;
}

bool PathExists(const std::string& path) { return Attributes(path) != INVALID_FILE_ATTRIBUTES; }

bool IsFolder(const std::string& path) {
    const DWORD attributes = Attributes(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// A device (NUL, COM1, and on most systems a device name with any
// extension: CON.mml) answers like a file, but a tool chain given it would
// read the keyboard or write nowhere. The system names devices in its own
// way when it makes a path whole: "\\.\CON".
namespace {
bool IsDevice(const std::string& path) { return GetFullPath(path).starts_with("\\\\.\\"); }
}  // namespace

bool FileExists(const std::string& path) {
    const DWORD attributes = Attributes(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0 &&
           !IsDevice(path);
}

// The text forms below are the shell's string calls done by their twins in
// path_text.cpp (tests/files compare the two), so that a command-line
// compile never loads the shell's DLL, which brings the window system with it.
std::string UnquotePath(const std::string& path) {
    std::string text = TrimNull(PathBuffer(path));
    // Only quotes around the whole text go.
    if (!text.empty() && text.front() == '"' && text.back() == '"') {
        text.pop_back();
        if (!text.empty()) text.erase(0, 1);
    }
    return text;
}

std::string AddBackslash(const std::string& path) {
    // A path of MAX_PATH characters or more has no room for the backslash: empty.
    return AppendBackslash(TrimNull(PathBuffer(path)));
}

std::string RemoveBackslash(const std::string& path) {
    return StripBackslash(TrimNull(PathBuffer(path)));
}

std::string GetParentFolder(const std::string& path) {
    const std::string text = TrimNull(PathBuffer(path));
    std::string parent = StripFileSpec(text);
    // Nothing to take away: the shell's call reports a failure.
    if (parent == text) return {};
    return parent;
}

std::string GetFolderOf(const std::string& path) { return AddBackslash(GetParentFolder(path)); }

std::string GetLongPath(const std::string& path) {
    return LongPathOf(path, [](const std::string& prefix) -> std::optional<std::string> {
        WIN32_FIND_DATAA found{};
        const UniqueFindHandle search(FindFirstFileA(PathBuffer(prefix).c_str(), &found));
        if (!search) return std::nullopt;
        return TrimNull(std::string_view(found.cFileName, sizeof found.cFileName));
    });
}

std::string GetFullPath(const std::string& path) {
    if (path.empty()) return {};
    std::string buffer(kPathBuffer, '\0');
    const DWORD length =
        GetFullPathNameA(PathBuffer(path).c_str(), kPathBuffer, buffer.data(), nullptr);
    if (length == 0 || length >= kPathBuffer) return path;
    return TrimNull(buffer);
}

std::string GetShortPath(const std::string& path) {
    std::string buffer(kPathBuffer, '\0');
    const DWORD length = GetShortPathNameA(PathBuffer(path).c_str(), buffer.data(), kPathBuffer);
    // Missing, or too long for the buffer (then nothing was written).
    if (length == 0 || length >= kPathBuffer) return path;
    const std::string shortPath = TrimNull(buffer);
    return shortPath.empty() ? path : shortPath;
}

int GetSpecialFolder(HWND ownerWindow, int folderId, std::string& path) {
    LPITEMIDLIST items = nullptr;
    if (SHGetSpecialFolderLocation(ownerWindow, folderId, &items) != S_OK || items == nullptr) {
        return 2;
    }
    std::string buffer(kPathBuffer, '\0');
    const BOOL found = SHGetPathFromIDListA(items, buffer.data());
    CoTaskMemFree(items);
    if (!found) return 1;
    path = TrimNull(buffer);
    return 0;
}

std::string GetSpecialFolderPath(int folderId) {
    std::string path;
    return GetSpecialFolder(nullptr, folderId, path) == 0 ? path : std::string();
}

bool DeleteFileEx(const std::string& path, bool changeExtension, const std::string& extension,
                  bool useShortName) {
    std::string pattern = useShortName ? GetShortPath(path) : path;
    if (changeExtension) pattern = ChangeExtension(pattern, extension);
    // Every match is tried even when one fails, so a locked file does not
    // keep its neighbours.
    const std::string folder = PatternFolder(pattern);
    bool matched = false;
    bool deletedAll = true;
    ForEachFile(pattern, [&](const std::string& name) {
        matched = true;
        if (!DeleteFileA(PathBuffer(folder + name).c_str())) deletedAll = false;
        return true;
    });
    return matched && deletedAll;
}

bool GetPathFile2Array(const std::string& pattern, std::vector<std::string>& list,
                       bool baseNamesOnly) {
    list.assign(1, std::string());
    try {
        ForEachFile(pattern, [&](const std::string& name) {
            list.back() = baseNamesOnly ? GetBaseName(name) : name;
            list.emplace_back();
            return true;
        });
    } catch (const std::exception&) {
        // Out of memory: what was found so far stands.
    }
    return list.size() > 1;
}

std::string GetUniqueTempName(const std::string& path) {
    return UniqueTempName(GetParentFolder(path), FileExists);
}

bool BrowseForFile(HWND ownerWindow, const std::string& title, const std::string& filter,
                   DWORD flags, const std::string& initialFolder, std::string& fileName) {
    clsCommonDlg dialog;
    dialog.Owner = ownerWindow;
    dialog.DialogTitle = title;
    dialog.SetFilter(filter);
    dialog.FilterIndex = 1;
    dialog.Flags = flags;
    dialog.InitDir = initialFolder;
    dialog.CancelError = true;
    dialog.ShowOpen();
    if (dialog.CancelButton) {
        fileName.clear();
        return false;
    }
    fileName = dialog.FileName;
    return true;
}

}  // namespace zorvi::mdlFile
