// Path questions and $variable$ expansion answered by the platform, on real
// files and folders: the shell's path calls, short and long names, special folders.
#include <gtest/gtest.h>

#include <shlobj.h>
#include <shlwapi.h>
#include <windows.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "core/text.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "files/variables_win.h"
#include "support/temp_folder.h"

namespace zorvi::mdlFile {
namespace {

using zorvi::testing::TempFolder;
using Texts = std::vector<std::string>;

bool Has(const std::string& text, char c) { return text.find(c) != std::string::npos; }

TEST(PathWin, RealFilesAndTheirNames) {
    TempFolder folder;
    CreateDirectoryA((folder / "My Long Folder").c_str(), nullptr);
    folder.Write("My Long Folder\\my song file.mml", "");
    folder.Write("short.mml", "");
    const std::string base = GetLongPath(folder.Path());
    const struct {
        std::string path;
        bool isFolder, isFile;
        std::string longPath;  // empty: missing
        bool tilde;            // the short form's name holds "~"
    } cases[] = {
        {folder / "my long folder\\MY SONG FILE.mml", false, true,
         base + "\\My Long Folder\\my song file.mml", true},
        {folder / "My Long Folder", true, false, base + "\\My Long Folder", true},
        {folder / "short.mml", false, true, base + "\\short.mml", false},
        {folder / "missing.mml", false, false, "", false},
        // Only the first 300 characters are asked about.
        {folder / "short.mml\\" + std::string(400, 'x'), false, false, "", false},
        {"", false, false, "", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path.substr(0, 80));
        EXPECT_EQ(PathExists(c.path), c.isFolder || c.isFile);
        EXPECT_EQ(IsFolder(c.path), c.isFolder);
        EXPECT_EQ(FileExists(c.path), c.isFile);
        EXPECT_EQ(GetLongPath(c.path), c.longPath);
        const std::string shortPath = GetShortPath(c.path);
        if (c.longPath.empty()) {
            EXPECT_EQ(shortPath, c.path);
            continue;
        }
        EXPECT_EQ(Has(GetFileName(shortPath), '~'), c.tilde) << shortPath;
        EXPECT_FALSE(Has(shortPath, ' ')) << shortPath;
        EXPECT_EQ(GetLongPath(shortPath), c.longPath);
    }
    // A device answers like a file, with any extension, in any folder: it is no file.
    for (const char* device : {"CON.mml", "My Long Folder\\aux.mml"}) {
        EXPECT_FALSE(FileExists(folder / device)) << device;
    }
    EXPECT_EQ(UnquotePath("\"C:\\My Songs\\a.mml\""), "C:\\My Songs\\a.mml");
    EXPECT_EQ(UnquotePath("\"a\" b"), "\"a\" b");  // only quotes around the whole text go
}

// What one shell call leaves in a buffer far larger than any input.
template <typename Call>
std::string InBigBuffer(const std::string& path, Call call) {
    std::string buffer(1024, '\0');
    path.copy(buffer.data(), path.size());
    return call(buffer.data()) ? TrimNull(buffer) : std::string("<failed>");
}

// Also run under code page 932 (see tests/CMakeLists.txt), where the shell
// calls read the double-byte inputs as Shift-JIS, and so must the twins.
TEST(PathWin, TwinsMatchTheShellCalls) {
    if (const char* wanted = std::getenv("ZORVI_TEST_CODE_PAGE")) {
        ASSERT_EQ(GetACP(), static_cast<UINT>(std::atoi(wanted)));
    }
    // The process's own lead bytes, as Main sets them at start-up.
    SetLeadByteTest([](unsigned char byte) { return IsDBCSLeadByte(byte) != FALSE; });
    // Inputs for the twins: roots and rests of every shape, and long ones across
    // MAX_PATH and the 300-character cut. In Shift-JIS 表 is 0x95 0x5C and ソ is
    // 0x83 0x5C: both end in the byte of "\".
    Texts inputs = {":\\a",       "ab:\\c",      "1:\\a",
                    "/",          "C:/dir/file", " C:\\x",
                    "C:\\a:b\\c", "\x95\x5c:\\", "C:\\\x8b\xc8\\\x89\xcc.mml"};
    for (const char* root : {"", "C:", "C:\\", "\\", "\\\\", "\\\\\\", "\\\\server",
                             "\\\\server\\share", "\\\\server\\share\\", "\\\\?\\C:\\",
                             "\\\\?\\UNC\\s\\sh\\", "\\\\.\\C:\\", "\\\\\x95\x5c\\"}) {
        for (const char* rest :
             {"", "\\", "dir", "dir\\", "dir\\\\", "a.b\\file.txt", "\x95\x5c",
              "\x95\x5c\\\x83\x5c", "\x83\x5c\\x", "a.\x95\x5c", "\x95\x5c\\\x83"}) {
            inputs.push_back(std::string(root) + rest);
        }
    }
    for (const std::size_t length : {258, 259, 260, 261, 299, 300, 301}) {
        std::string path = "C:\\" + std::string(length - 3, 'a');
        inputs.push_back(path);
        path.back() = '\\';
        inputs.push_back(path);
        inputs.push_back("\\\\" + std::string(length - 3, 's') + "\\");
        // 表 across the length: in a double-byte code page a cut keeps it whole or drops it.
        inputs.push_back("C:\\" + std::string(length - 4, 'a') + "\x95\x5c\\x");
    }
    for (const std::string& path : inputs) {
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
    }
    SetLeadByteTest(nullptr);
}

// The system's folders that the expansion takes from this machine, each in
// its short form with a "\\" (Wine's short names are its own: they must lead
// back). The other tokens' facts come with the compile (tests/run).
TEST(VariablesWin, SystemTokensAreThisMachinesFolders) {
    const struct {
        const char* token;
        std::string folder;
        bool shortened;  // a name in it does not fit 8.3 wherever it runs
    } cases[] = {
        {"$windir$", GetWindowsFolder(), false},
        {"$desktop$", GetSpecialFolderPath(CSIDL_DESKTOP), false},
        {"$mydocument$", GetSpecialFolderPath(CSIDL_PERSONAL), true},  // ...\Documents
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.token);
        const std::string expanded = ExpandSystemVariables(c.token);
        EXPECT_TRUE(expanded.ends_with('\\')) << expanded;
        EXPECT_TRUE(!c.shortened || Has(expanded, '~')) << expanded;
        EXPECT_EQ(GetLongPath(expanded), GetLongPath(c.folder)) << expanded;
    }
}

}  // namespace
}  // namespace zorvi::mdlFile
