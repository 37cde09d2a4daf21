// Path text operations that need no file system.
#include <gtest/gtest.h>

#include <map>

#include "files/path_text.h"

namespace zorvi::mdlFile {
namespace {

TEST(PathText, TrimNull) {
    using namespace std::string_literals;
    EXPECT_EQ(TrimNull("abc"), "abc");
    EXPECT_EQ(TrimNull("ab\0cd"s), "ab");
    EXPECT_EQ(TrimNull("\0abc"s), "");
    EXPECT_EQ(TrimNull(""), "");
}

TEST(PathText, LongPathTakesTheCaseOnDisk) {
    // Upper-cased prefixes as the search sees them, and the names on disk.
    const std::map<std::string, std::string> disk = {
        {"C:\\PROGRAM FILES", "Program Files"},
        {"C:\\PROGRAM FILES\\ZORVI", "Zorvi"},
        {"C:\\SONGS", "Songs"},
        {"C:\\SONGS\\A.MML", "a.mml"},
        {"\\\\SERVER\\SHARE\\DIR", "Dir"},
        {"\\\\SERVER\\SHARE\\DIR\\F.TXT", "f.txt"},
        {"SONG.MML", "Song.mml"},
    };
    const FindEntryName find = [&](const std::string& path) -> std::optional<std::string> {
        const auto found = disk.find(path);
        if (found == disk.end()) return std::nullopt;
        return found->second;
    };
    const struct {
        const char* path;
        const char* expected;
    } cases[] = {
        {"c:\\program files\\", "C:\\Program Files"},
        {"c:\\program files\\zorvi", "C:\\Program Files\\Zorvi"},
        {"  c:\\songs\\A.MML  ", "C:\\Songs\\a.mml"},
        {"C:\\", "C:\\"},
        {"c:", "C:\\"},
        {"c:\\missing\\a.mml", ""},
        {"c:\\songs\\missing.mml", ""},
        {"\\\\server\\share\\dir\\f.txt", "\\\\SERVER\\SHARE\\Dir\\f.txt"},
        {"\\\\server\\share", ""},
        {"\\\\server", ""},
        {"", ""},
        {"   ", ""},
        // Without a drive the root is empty and the result starts with "\".
        {"song.mml", "\\Song.mml"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(LongPathOf(c.path, find), c.expected);
    }
}

}  // namespace
}  // namespace zorvi::mdlFile
