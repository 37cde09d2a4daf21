// The platform half of mdlFile: path questions answered by Windows.
#pragma once

#include <windows.h>
#include <commdlg.h>  // the OFN_* flags of BrowseForFile

#include <string>
#include <vector>

namespace zorvi::mdlFile {

std::string GetAppFolder();                 // the executable's folder, with a trailing "\"
std::string GetWindowsFolder();             // no trailing "\"
bool PathExists(const std::string& path);   // files and folders
bool IsFolder(const std::string& path);
bool FileExists(const std::string& path);   // an existing folder is no file
std::string UnquotePath(const std::string& path);  // surrounding double quotes removed

// Paths longer than kPathBuffer characters are cut to it before these calls.
std::string AddBackslash(const std::string& path);     // empty when the call fails
std::string RemoveBackslash(const std::string& path);  // a root keeps its "\"
// The path without its last component; empty when nothing could be removed
// (a bare "C:\" or a name without any "\").
std::string GetParentFolder(const std::string& path);
// AddBackslash(GetParentFolder(path)): "" for a bare name.
std::string GetFolderOf(const std::string& path);

std::string GetLongPath(const std::string& path);   // true case, empty when missing
std::string GetFullPath(const std::string& path);   // relative paths against the current folder
std::string GetShortPath(const std::string& path);  // the 8.3 form; the path itself when missing

// A CSIDL_* folder through the shell: 0 with path set, 1 when the folder has
// no file-system path, 2 when the shell does not know the folder.
int GetSpecialFolder(HWND ownerWindow, int folderId, std::string& path);
// CSIDL_* folder through the shell; empty on failure.
std::string GetSpecialFolderPath(int folderId);

// Deletes the file(s) matching the path (wildcards allowed), taken in its
// short form when useShortName and with ChangeExtension(..., extension)
// applied when changeExtension. False when nothing matched or a deletion failed.
bool DeleteFileEx(const std::string& path, bool changeExtension, const std::string& extension,
                  bool useShortName);

// The normal files matching pattern (e.g. C:\x\*.ini), or their base names.
// list always ends with one extra empty entry, so list.size() - 1 names were
// found; true when there was at least one.
bool GetPathFile2Array(const std::string& pattern, std::vector<std::string>& list,
                       bool baseNamesOnly);

// Parent folder of path & "\MML000" ... "\MML999", the first that is no
// existing file; the MML999 name when all are taken. No extension.
std::string GetUniqueTempName(const std::string& path);

// An "open" dialog (filter "Name|*.ext|..." or NUL-separated, first pair
// shown). False with fileName empty when the user cancels.
bool BrowseForFile(HWND ownerWindow, const std::string& title, const std::string& filter,
                   DWORD flags, const std::string& initialFolder, std::string& fileName);

}  // namespace zorvi::mdlFile
