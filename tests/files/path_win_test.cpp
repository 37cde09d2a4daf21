// Path questions answered by the platform, on real files and folders.
#include <gtest/gtest.h>

#include <windows.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/text.h"
#include "files/path_text.h"
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
    const struct {
        std::string path, expected;
    } quotes[] = {
        {"\"C:\\My Songs\\a.mml\"", "C:\\My Songs\\a.mml"},
        {"C:\\a.mml", "C:\\a.mml"},
        {"\"noclose", "\"noclose"},
        {"\"a\" b", "\"a\" b"},  // only quotes around the whole text go
        {" \"a\"", " \"a\""},
        {"\"\"", ""},
        {"", ""},
    };
    for (const auto& q : quotes) {
        SCOPED_TRACE(q.path);
        EXPECT_EQ(UnquotePath(q.path), q.expected);
    }
    const std::string app = GetAppFolder();
    ASSERT_FALSE(app.empty());
    EXPECT_EQ(app.back(), '\\');
    EXPECT_TRUE(FileExists(app + "win_tests.exe"));
    EXPECT_EQ(AddBackslash("C:"), "C:\\");
    EXPECT_EQ(AddBackslash("C:\\x\\"), "C:\\x\\");
}

// Inputs for the twins; long ones cross MAX_PATH and the 300-character cut.
std::vector<std::string> TwinInputs() {
    std::vector<std::string> inputs = {
        "", "C:", "C:\\", "x:\\", "1:\\a", "C:\\\\", "C:\\\\x", "C:\\dir", "C:\\dir\\",
        "C:\\dir\\\\", "C:\\dir\\file.txt", "C:\\file.txt", "C:\\dir\\file.txt\\\\", "C:file.txt",
        "C:x\\y", "ab:\\c", ":\\a", "C:\\a:b\\c", "file.txt", ".mml", "a\\b", "a\\", "a\\\\b",
        "dir\\\\", "C:\\a.b\\file", "C:\\x ", " C:\\x", "/", "C:/dir/file", "C:\\dir/file",
        "\\", "\\\\", "\\\\\\", "\\\\\\\\", "\\\\\\x", "\\dir", "\\dir\\", "\\file.txt",
        "\\\\server", "\\\\server\\", "\\\\server\\share", "\\\\server\\share\\",
        "\\\\server\\share\\f.txt", "\\\\server\\share\\dir\\f.txt", "\\\\server\\share\\dir\\",
        "\\\\a\\b\\c\\d", "\\\\?\\", "\\\\?\\C:", "\\\\?\\C:\\", "\\\\?\\C:\\x", "\\\\?\\x\\",
        "\\\\?\\UNC\\s\\sh\\", "\\\\?\\UNC\\s\\sh\\f", "\\\\.\\C:\\x",
        "C:\\\x8b\xc8\\\x89\xcc.mml",
        // In Shift-JIS 表 is 0x95 0x5C and ソ 0x83 0x5C: both end in the byte of "\".
        "C:\\\x95\x5c", "C:\\\x95\x5c\\", "C:\\\x95\x5c\\\x83\x5c", "C:\\\x95\x5c\x83\x5c.mml",
        "\x83\x5c", "\x83\x5c\\", "\\\\\x95\x5c\\", "\\\\\x95\x5c\\\x83\x5c\\", "C:\x83\x5c\\x",
        "\x95\x5c:\\", "C:\\a.\x95\x5c", "C:\\\x95\x5c\\\x83",
    };
    for (const std::size_t length : {257, 258, 259, 260, 261, 299, 300, 301, 320}) {
        std::string path = "C:\\" + std::string(length - 3, 'a');
        inputs.push_back(path);
        path.back() = '\\';
        inputs.push_back(path);
        inputs.push_back("\\\\" + std::string(length - 3, 's') + "\\");
        // 表 across the length: in a double-byte code page a cut keeps it whole or drops it.
        inputs.push_back("C:\\" + std::string(length - 4, 'a') + "\x95\x5c\\x");
    }
    return inputs;
}

// What one shell call leaves in a buffer far larger than any input.
template <typename Call>
std::string InBigBuffer(const std::string& path, Call call) {
    std::string buffer(1024, '\0');
    path.copy(buffer.data(), path.size());
    return call(buffer.data()) ? TrimNull(buffer) : std::string("<failed>");
}

// The process's own lead bytes, as Main sets them at start-up. The twins test
// also runs under code page 932 (LC_ALL=ja_JP.UTF-8, see tests/CMakeLists.txt),
// where the double-byte inputs are read as Shift-JIS by the shell calls too.
class ProcessCodePage {
public:
    ProcessCodePage() {
        SetLeadByteTest([](unsigned char byte) { return IsDBCSLeadByte(byte) != FALSE; });
    }
    ~ProcessCodePage() { SetLeadByteTest(nullptr); }
    ProcessCodePage(const ProcessCodePage&) = delete;
    ProcessCodePage& operator=(const ProcessCodePage&) = delete;
};

// The code page that the run was started for, when it names one.
void ExpectTheRequestedCodePage() {
    if (const char* wanted = std::getenv("ZORVI_TEST_CODE_PAGE")) {
        ASSERT_EQ(GetACP(), static_cast<UINT>(std::atoi(wanted)));
    }
}

TEST(PathWin, TwinsMatchTheShellCalls) {
    ExpectTheRequestedCodePage();
    const ProcessCodePage codePage;
    for (const std::string& path : TwinInputs()) {
        SCOPED_TRACE(path);
        const std::string added =
            InBigBuffer(path, [](char* b) { return PathAddBackslashA(b) != nullptr; });
        EXPECT_EQ(AppendBackslash(path), added == "<failed>" ? "" : added);
        EXPECT_EQ(StripBackslash(path),
                  InBigBuffer(path, [](char* b) { return PathRemoveBackslashA(b) != nullptr; }));
        EXPECT_EQ(StripFileSpec(path), InBigBuffer(path, [](char* b) {
                      PathRemoveFileSpecA(b);
                      return true;
                  }));

        // The wrappers see at most the first 300 characters.
        const std::string cut = path.substr(0, CharBoundaryCut(path, kPathBuffer, IsLeadByte));
        EXPECT_EQ(AddBackslash(path), AppendBackslash(cut));
        EXPECT_EQ(RemoveBackslash(path), StripBackslash(cut));
        const std::string parent = StripFileSpec(cut);
        EXPECT_EQ(GetParentFolder(path), parent == cut ? "" : parent);
        EXPECT_EQ(ChangeExtension(path, "log"), GetFolderOf(path) + GetBaseName(path) + ".log");
    }
}

TEST(PathWin, ParentFolders) {
    const struct {
        std::string path, parent, folder, withoutBackslash;
    } cases[] = {
        {"song.mml", "", "", "song.mml"},
        {"C:\\", "", "", "C:\\"},
        {"C:", "", "", "C:"},
        {"C:\\songs\\song.mml", "C:\\songs", "C:\\songs\\", "C:\\songs\\song.mml"},
        {"C:\\song.mml", "C:\\", "C:\\", "C:\\song.mml"},
        {"C:\\songs\\", "C:\\songs", "C:\\songs\\", "C:\\songs"},
        {"\\\\server\\share\\f.txt", "\\\\server\\share", "\\\\server\\share\\",
         "\\\\server\\share\\f.txt"},
        {"\\\\server\\share\\", "\\\\server\\share", "\\\\server\\share\\", "\\\\server\\share"},
        {"\\\\server\\", "\\\\server", "\\\\server\\", "\\\\server\\"},
        {"", "", "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(GetParentFolder(c.path), c.parent);
        EXPECT_EQ(GetFolderOf(c.path), c.folder);
        EXPECT_EQ(RemoveBackslash(c.path), c.withoutBackslash);
    }
}

TEST(PathWin, OverlongPathsAreCutBeforeTheCall) {
    TempFolder folder;
    folder.Write("a.mml", "");
    const std::string real = folder / "a.mml";
    // A real file followed by junk: past 300 characters nothing of the junk is seen.
    const std::string overlong = real + "\\" + std::string(400, 'x');
    std::string quoted(402, 'q');
    quoted.front() = quoted.back() = '"';
    const std::string deep = "C:\\" + std::string(400, 'd') + "\\";
    EXPECT_FALSE(PathExists(overlong));
    EXPECT_FALSE(FileExists(overlong));
    EXPECT_FALSE(IsFolder(overlong));
    EXPECT_EQ(GetShortPath(overlong), overlong);
    EXPECT_EQ(GetLongPath(overlong), "");
    EXPECT_EQ(UnquotePath(quoted), quoted.substr(0, kPathBuffer));
    EXPECT_EQ(AddBackslash(deep), "");
    EXPECT_EQ(RemoveBackslash(deep), deep.substr(0, kPathBuffer));
    EXPECT_EQ(GetParentFolder(deep), "C:\\");
    EXPECT_EQ(GetFolderOf(deep), "C:\\");
    EXPECT_FALSE(DeleteFileEx(overlong, false, "", false));
    EXPECT_TRUE(FileExists(real));
}

TEST(PathWin, WindowsAndSpecialFolders) {
    const std::string windows = GetWindowsFolder();
    ASSERT_FALSE(windows.empty());
    EXPECT_NE(windows.back(), '\\');
    EXPECT_TRUE(IsFolder(windows));
    EXPECT_EQ(_stricmp(windows.c_str(), std::getenv("windir")), 0);

    const struct {
        int folderId;
        int code;
    } cases[] = {
        {CSIDL_PERSONAL, 0},
        {CSIDL_DESKTOP, 0},
        {CSIDL_WINDOWS, 0},
        {CSIDL_DRIVES, 1},   // "My Computer" has no file-system path
        {0x7ff0, 2},         // no such folder
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.folderId);
        std::string path = "unchanged";
        EXPECT_EQ(GetSpecialFolder(nullptr, c.folderId, path), c.code);
        if (c.code == 0) {
            EXPECT_TRUE(IsFolder(path));
            EXPECT_EQ(GetSpecialFolderPath(c.folderId), path);
        } else {
            EXPECT_EQ(path, "unchanged");
            EXPECT_EQ(GetSpecialFolderPath(c.folderId), "");
        }
    }
    std::string windowsPath;
    ASSERT_EQ(GetSpecialFolder(nullptr, CSIDL_WINDOWS, windowsPath), 0);
    EXPECT_EQ(_stricmp(RemoveBackslash(windowsPath).c_str(), windows.c_str()), 0);
}

TEST(PathWin, ShortPathsOfRealFiles) {
    TempFolder folder;
    CreateDirectoryA((folder / "My Long Folder").c_str(), nullptr);
    folder.Write("My Long Folder\\my song file.mml", "");
    folder.Write("short.mml", "");
    const struct {
        std::string path;
        bool expectTilde;
    } cases[] = {
        {folder / "My Long Folder\\my song file.mml", true},
        {folder / "My Long Folder", true},
        {folder / "short.mml", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        const std::string shortPath = GetShortPath(c.path);
        EXPECT_EQ(GetFileName(shortPath).find('~') != std::string::npos, c.expectTilde);
        EXPECT_EQ(shortPath.find(' '), std::string::npos);
        EXPECT_TRUE(PathExists(shortPath));
        EXPECT_EQ(GetLongPath(shortPath), GetLongPath(c.path));
    }
    const std::string missing = folder / "no such file.mml";
    EXPECT_EQ(GetShortPath(missing), missing);
    EXPECT_EQ(GetShortPath(""), "");
}

TEST(PathWin, DeleteFileEx) {
    const struct {
        const char* name;
        std::vector<std::string> files;  // made before the call; "+name" read-only
        std::string path;                // relative to the folder
        bool changeExtension;
        const char* extension;
        bool useShortName;
        bool deleted;
        std::vector<std::string> left;
    } cases[] = {
        {"plain", {"a.mml"}, "a.mml", false, "", false, true, {}},
        {"missing", {"a.mml"}, "b.mml", false, "", false, false, {"a.mml"}},
        {"other extension", {"a.mml", "a.mid"}, "a.mml", true, "mid", false, true, {"a.mml"}},
        {"extension missing", {"a.mml"}, "a.mml", true, "mid", false, false, {"a.mml"}},
        {"wildcard", {"x.tmp", "y.tmp", "z.mml"}, "*.tmp", false, "", false, true, {"z.mml"}},
        {"read-only", {"+r.mml"}, "r.mml", false, "", false, false, {"r.mml"}},
        {"folder path", {"a.mml"}, "", false, "", false, false, {"a.mml"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TempFolder folder;
        for (std::string file : c.files) {
            const bool readOnly = file[0] == '+';
            if (readOnly) file.erase(0, 1);
            folder.Write(file, "x");
            if (readOnly) SetFileAttributesA((folder / file).c_str(), FILE_ATTRIBUTE_READONLY);
        }
        EXPECT_EQ(DeleteFileEx(folder / c.path, c.changeExtension, c.extension, c.useShortName),
                  c.deleted);
        std::vector<std::string> left;
        GetPathFile2Array(folder / "*", left, false);
        left.pop_back();
        std::sort(left.begin(), left.end());
        EXPECT_EQ(left, c.left);
        for (const std::string& file : left) {
            SetFileAttributesA((folder / file).c_str(), FILE_ATTRIBUTE_NORMAL);
        }
    }
}

TEST(PathWin, DeleteFileExLeavesAnOpenFile) {
    TempFolder folder;
    folder.Write("busy.mml", "x");
    const HANDLE open = CreateFileA((folder / "busy.mml").c_str(), GENERIC_READ, 0, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(open, INVALID_HANDLE_VALUE);
    EXPECT_FALSE(DeleteFileEx(folder / "busy.mml", false, "", false));
    CloseHandle(open);
    EXPECT_TRUE(FileExists(folder / "busy.mml"));
    EXPECT_TRUE(DeleteFileEx(folder / "busy.mml", false, "", false));
    EXPECT_FALSE(PathExists(folder / "busy.mml"));
}

TEST(PathWin, DeleteFileExThroughTheShortName) {
    TempFolder folder;
    const std::string source = folder / "my song file.mml";
    folder.Write("my song file.mml", "o4 c");
    const std::string shortSource = GetShortPath(source);
    ASSERT_NE(shortSource, source);
    // A tool given the short name writes its output under that name.
    const std::string output = ChangeExtension(shortSource, "mid");
    folder.Write(GetFileName(output), "MThd");
    ASSERT_TRUE(FileExists(output));

    EXPECT_TRUE(DeleteFileEx(source, true, "mid", true));
    EXPECT_FALSE(PathExists(output));
    EXPECT_TRUE(FileExists(source));
    EXPECT_TRUE(DeleteFileEx(source, false, "", true));
    EXPECT_FALSE(PathExists(source));
}

TEST(PathWin, FileListsEndWithAnEmptyEntry) {
    TempFolder folder;
    folder.Write("b.ini", "");
    folder.Write("a.ini", "");
    folder.Write("README", "");
    folder.Write("x.txt", "");
    folder.Write("hidden.ini", "");
    SetFileAttributesA((folder / "hidden.ini").c_str(), FILE_ATTRIBUTE_HIDDEN);
    CreateDirectoryA((folder / "sub.ini").c_str(), nullptr);
    const struct {
        std::string pattern;
        bool baseNamesOnly;
        bool found;
        std::vector<std::string> names;  // sorted, without the closing empty entry
    } cases[] = {
        {folder / "*.ini", false, true, {"a.ini", "b.ini"}},
        {folder / "*.ini", true, true, {"a", "b"}},
        {folder / "READ*", true, true, {"READM"}},  // README loses its last letter
        {folder / "*.none", false, false, {}},
        {folder / "missing\\*.ini", false, false, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.pattern);
        std::vector<std::string> list = {"stale", "entries"};
        EXPECT_EQ(GetPathFile2Array(c.pattern, list, c.baseNamesOnly), c.found);
        ASSERT_FALSE(list.empty());
        EXPECT_EQ(list.back(), "");
        list.pop_back();
        std::sort(list.begin(), list.end());
        EXPECT_EQ(list, c.names);
    }
}

TEST(PathWin, UniqueTempNames) {
    TempFolder folder;
    const std::string console = folder / "mc.exe";
    EXPECT_EQ(GetUniqueTempName(console), folder / "MML000");
    EXPECT_EQ(GetUniqueTempName(folder.Path() + "\\"), folder / "MML000");
    // A folder of that name is no file and does not take the number.
    CreateDirectoryA((folder / "MML000").c_str(), nullptr);
    EXPECT_EQ(GetUniqueTempName(console), folder / "MML000");
    RemoveDirectoryA((folder / "MML000").c_str());

    char name[16];
    for (int n = 0; n < 1000; ++n) {
        std::snprintf(name, sizeof name, "MML%03d", n);
        folder.Write(name, "");
    }
    EXPECT_EQ(GetUniqueTempName(console), folder / "MML999");
    DeleteFileA((folder / "MML417").c_str());
    EXPECT_EQ(GetUniqueTempName(console), folder / "MML417");
}

}  // namespace
}  // namespace zorvi::mdlFile
