// The platform half of mdlFile: path questions answered by Windows. Every call
// uses a fixed buffer of kPathBuffer characters and cuts its answer at the first NUL.
#include "files/path_win.h"

#include <windows.h>
#include <shlwapi.h>

#include "files/path_text.h"

namespace zorvi::mdlFile {
namespace {

// A NUL-filled buffer holding at most the first kPathBuffer - 1 characters
// of the path, so the platform never reads or writes past it.
std::string PathBuffer(const std::string& path) {
    std::string buffer(kPathBuffer, '\0');
    path.copy(buffer.data(), kPathBuffer - 1);
    return buffer;
}

}  // namespace

std::string GetAppFolder() {
    std::string buffer(kPathBuffer, '\0');
    const DWORD length = GetModuleFileNameA(nullptr, buffer.data(), kPathBuffer);
    if (length == 0 || length >= kPathBuffer) return {};
    std::string folder = TrimNull(buffer);
    folder.erase(folder.find_last_of('\\') + 1);
    return AddBackslash(folder);
}

std::string AddBackslash(const std::string& path) {
    std::string buffer = PathBuffer(path);
    // A path that fills the buffer has no room for the backslash: the call fails.
    if (PathAddBackslashA(buffer.data()) == nullptr) return {};
    return TrimNull(buffer);
}

bool PathExists(const std::string& path) {
    return !path.empty() && PathFileExistsA(path.c_str()) != FALSE;
}

bool IsFolder(const std::string& path) {
    return !path.empty() && PathIsDirectoryA(path.c_str()) != FALSE;
}

bool FileExists(const std::string& path) { return PathExists(path) && !IsFolder(path); }

std::string UnquotePath(const std::string& path) {
    std::string buffer = PathBuffer(path);
    PathUnquoteSpacesA(buffer.data());
    return TrimNull(buffer);
}

std::string GetLongPath(const std::string& path) {
    return LongPathOf(path, [](const std::string& prefix) -> std::optional<std::string> {
        WIN32_FIND_DATAA found{};
        const HANDLE search = FindFirstFileA(prefix.c_str(), &found);
        if (search == INVALID_HANDLE_VALUE) return std::nullopt;
        FindClose(search);
        return TrimNull(std::string_view(found.cFileName, sizeof found.cFileName));
    });
}

std::string GetFullPath(const std::string& path) {
    if (path.empty()) return {};
    std::string buffer(kPathBuffer, '\0');
    const DWORD length = GetFullPathNameA(path.c_str(), kPathBuffer, buffer.data(), nullptr);
    if (length == 0 || length >= kPathBuffer) return path;
    return TrimNull(buffer);
}

}  // namespace zorvi::mdlFile
