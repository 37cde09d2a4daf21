// The platform half of mdlFile: path questions answered by Windows.
#pragma once

#include <string>

namespace zorvi::mdlFile {

std::string GetAppFolder();                  // the executable's folder, with a trailing "\"
std::string AddBackslash(const std::string& path);  // empty when the call fails
bool PathExists(const std::string& path);    // files and folders
bool IsFolder(const std::string& path);
bool FileExists(const std::string& path);    // an existing folder is no file
std::string UnquotePath(const std::string& path);
std::string GetLongPath(const std::string& path);   // true case, empty when missing
std::string GetFullPath(const std::string& path);   // relative paths against the current folder

}  // namespace zorvi::mdlFile
