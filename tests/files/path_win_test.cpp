// Path questions answered by the platform, on real files and folders.
#include <gtest/gtest.h>

#include <windows.h>

#include "files/path_win.h"
#include "support/temp_folder.h"

namespace zorvi::mdlFile {
namespace {

using zorvi::testing::TempFolder;

TEST(PathWin, FilesAreNotFolders) {
    TempFolder folder;
    folder.Write("Song.mml", "o4 c");
    CreateDirectoryA((folder / "Sub Dir").c_str(), nullptr);
    const struct {
        std::string path;
        bool exists, isFolder, isFile;
    } cases[] = {
        {folder / "Song.mml", true, false, true},
        {folder / "song.MML", true, false, true},
        {folder / "Sub Dir", true, true, false},
        {folder / "missing.mml", false, false, false},
        {"", false, false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(PathExists(c.path), c.exists);
        EXPECT_EQ(IsFolder(c.path), c.isFolder);
        EXPECT_EQ(FileExists(c.path), c.isFile);
    }
}

TEST(PathWin, LongPathGivesTheCaseOnDisk) {
    TempFolder folder;
    CreateDirectoryA((folder / "My Songs").c_str(), nullptr);
    folder.Write("My Songs\\Piece One.MML", "");
    const std::string expected = GetLongPath(folder.Path()) + "\\My Songs\\Piece One.MML";
    EXPECT_EQ(GetLongPath(folder / "my songs\\piece one.mml"), expected);
    EXPECT_EQ(GetLongPath(folder / "MY SONGS\\PIECE ONE.MML"), expected);
    EXPECT_EQ(GetLongPath(folder / "my songs\\missing.mml"), "");
    EXPECT_EQ(expected.substr(0, 2), "C:");
}

TEST(PathWin, UnquoteAndFolders) {
    EXPECT_EQ(UnquotePath("\"C:\\My Songs\\a.mml\""), "C:\\My Songs\\a.mml");
    EXPECT_EQ(UnquotePath("C:\\a.mml"), "C:\\a.mml");
    EXPECT_EQ(UnquotePath("\"noclose"), "\"noclose");
    const std::string app = GetAppFolder();
    ASSERT_FALSE(app.empty());
    EXPECT_EQ(app.back(), '\\');
    EXPECT_TRUE(FileExists(app + "win_tests.exe"));
    EXPECT_EQ(AddBackslash("C:"), "C:\\");
    EXPECT_EQ(AddBackslash("C:\\x\\"), "C:\\x\\");
}

}  // namespace
}  // namespace zorvi::mdlFile
