// A fresh folder for one test, removed with everything in it afterwards.
#pragma once

#include <string>

namespace zorvi::testing {

class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // The folder's Windows path, without a trailing backslash.
    const std::string& Path() const { return path_; }
    // Path() + "\" + name.
    std::string operator/(const std::string& name) const { return path_ + "\\" + name; }
    // Bytes exactly as given (no line-end translation); Read gives "" for no file.
    void Write(const std::string& name, const std::string& bytes) const;
    std::string Read(const std::string& name) const;

private:
    std::string path_;
};

// Moves a file's last-write time on by ten seconds, as a save would.
void Touch(const std::string& path);

}  // namespace zorvi::testing
