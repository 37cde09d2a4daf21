// Path questions and $variable$ expansion answered by the platform, on real
// files and folders: the shell's path calls, short and long names, special folders.
#include <gtest/gtest.h>

#include <windows.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "core/mdlMain.h"
#include "core/text.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "files/variables_win.h"
#include "settings/ini_win.h"
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
    ASSERT_EQ(base.substr(0, 2), "C:");
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
}

// Inputs for the twins; long ones cross MAX_PATH and the 300-character cut.
Texts TwinInputs() {
    Texts inputs = {
        "", "C:", "C:\\", "1:\\a", "C:\\\\", "C:\\\\x", "C:\\dir", "C:\\dir\\", "C:\\dir\\\\",
        "C:\\dir\\file.txt", "C:\\file.txt", "C:file.txt", "C:x\\y", "ab:\\c", ":\\a", "C:\\a:b\\c",
        "file.txt", "a\\b", "a\\", "C:\\a.b\\file", " C:\\x", "/", "C:/dir/file", "\\", "\\\\",
        "\\\\\\", "\\\\\\x", "\\dir", "\\dir\\", "\\\\server", "\\\\server\\", "\\\\server\\share",
        "\\\\server\\share\\", "\\\\server\\share\\f.txt", "\\\\server\\share\\dir\\",
        "\\\\a\\b\\c\\d", "\\\\?\\C:\\", "\\\\?\\C:\\x", "\\\\?\\UNC\\s\\sh\\f", "\\\\.\\C:\\x",
        "C:\\\x8b\xc8\\\x89\xcc.mml",
        // In Shift-JIS 表 is 0x95 0x5C and ソ 0x83 0x5C: both end in the byte of "\".
        "C:\\\x95\x5c", "C:\\\x95\x5c\\", "C:\\\x95\x5c\\\x83\x5c", "C:\\\x95\x5c\x83\x5c.mml",
        "\x83\x5c", "\x83\x5c\\", "\\\\\x95\x5c\\", "\\\\\x95\x5c\\\x83\x5c\\", "C:\x83\x5c\\x",
        "\x95\x5c:\\", "C:\\a.\x95\x5c", "C:\\\x95\x5c\\\x83",
    };
    for (const std::size_t length : {258, 259, 260, 261, 299, 300, 301}) {
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

// Also run under code page 932 (see tests/CMakeLists.txt), where the shell
// calls read the double-byte inputs as Shift-JIS, and so must the twins.
TEST(PathWin, TwinsMatchTheShellCalls) {
    if (const char* wanted = std::getenv("ZORVI_TEST_CODE_PAGE")) {
        ASSERT_EQ(GetACP(), static_cast<UINT>(std::atoi(wanted)));
    }
    // The process's own lead bytes, as Main sets them at start-up.
    SetLeadByteTest([](unsigned char byte) { return IsDBCSLeadByte(byte) != FALSE; });
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
    }
    SetLeadByteTest(nullptr);
}

TEST(PathWin, QuotesAndTheSystemsFolders) {
    EXPECT_EQ(UnquotePath("\"C:\\My Songs\\a.mml\""), "C:\\My Songs\\a.mml");
    EXPECT_EQ(UnquotePath("\"a\" b"), "\"a\" b");
    EXPECT_EQ(_stricmp(GetWindowsFolder().c_str(), std::getenv("windir")), 0);
    EXPECT_TRUE(FileExists(GetAppFolder() + "win_tests.exe")) << GetAppFolder();
    // "My Computer" has no file-system path; 0x7ff0 is no folder at all.
    for (const auto& [folderId, code] : {std::pair{CSIDL_PERSONAL, 0}, {CSIDL_DRIVES, 1}, {0x7ff0, 2}}) {
        SCOPED_TRACE(folderId);
        std::string path = "unchanged";
        EXPECT_EQ(GetSpecialFolder(nullptr, folderId, path), code);
        EXPECT_EQ(IsFolder(path), code == 0) << path;
        EXPECT_EQ(GetSpecialFolderPath(folderId), code == 0 ? path : "");
    }
}

TEST(PathWin, DeletingAndListingFiles) {
    // Every row's folder holds these, a read-only r.mml, and the output that a
    // tool wrote under the short name of "my song.mml" ("~" below).
    const Texts files = {"a.mid", "a.mml", "my song.mml", "r.mml", "x.tmp", "y.tmp"};
    const struct {
        std::string path;
        bool changeExtension, useShortName, deleted;
        Texts gone;
    } cases[] = {
        {"a.mml", false, false, true, {"a.mml"}},
        {"b.mml", false, false, false, {}},
        {"a.mml", true, false, true, {"a.mid"}},
        {"*.tmp", false, false, true, {"x.tmp", "y.tmp"}},
        {"r.mml", false, false, false, {}},
        {"my song.mml", true, true, true, {"~"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path + (c.changeExtension ? " as .mid" : ""));
        TempFolder folder;
        Texts left = files;
        for (const std::string& file : files) folder.Write(file, "x");
        SetFileAttributesA((folder / "r.mml").c_str(), FILE_ATTRIBUTE_READONLY);
        left.push_back(GetFileName(ChangeExtension(GetShortPath(folder / "my song.mml"), "mid")));
        ASSERT_TRUE(Has(left.back(), '~'));
        folder.Write(left.back(), "x");

        EXPECT_EQ(DeleteFileEx(folder / c.path, c.changeExtension, "mid", c.useShortName), c.deleted);
        std::erase_if(left, [&](const std::string& f) {
            return std::ranges::count(c.gone, Has(f, '~') ? "~" : f) > 0;
        });
        Texts found;
        EXPECT_TRUE(GetPathFile2Array(folder / "*", found, false));
        EXPECT_EQ(found.back(), "");
        found.pop_back();
        std::ranges::sort(found);
        std::ranges::sort(left);
        EXPECT_EQ(found, left);
        SetFileAttributesA((folder / "r.mml").c_str(), FILE_ATTRIBUTE_NORMAL);
    }
    // Hidden files and folders are left out; a folder called MML000 does not
    // take the temporary name, a file does.
    TempFolder folder;
    for (const char* name : {"b.ini", "a.ini", "hidden.ini"}) folder.Write(name, "");
    SetFileAttributesA((folder / "hidden.ini").c_str(), FILE_ATTRIBUTE_HIDDEN);
    CreateDirectoryA((folder / "sub.ini").c_str(), nullptr);
    CreateDirectoryA((folder / "MML000").c_str(), nullptr);
    Texts names = {"stale"};
    EXPECT_TRUE(GetPathFile2Array(folder / "*.ini", names, true));
    std::ranges::sort(names);
    EXPECT_EQ(names, (Texts{"", "a", "b"}));
    EXPECT_FALSE(GetPathFile2Array(folder / "none\\*.ini", names, false));
    EXPECT_EQ(names, Texts{""});
    EXPECT_EQ(GetUniqueTempName(folder / "mc.exe"), folder / "MML000");
    RemoveDirectoryA((folder / "MML000").c_str());
    folder.Write("MML000", "");
    EXPECT_EQ(GetUniqueTempName(folder / "mc.exe"), folder / "MML001");
}

// The facts the expansion takes from this machine: folders, short names, the
// console of a configuration file, and of the active one.
TEST(VariablesWin, TokensTakeThisMachinesPaths) {
    TempFolder folder;
    CreateDirectoryA((folder / "My Long Folder").c_str(), nullptr);
    const std::string target = folder / "My Long Folder\\my song file.mml";
    const std::string console = folder / "My Long Folder\\mml compiler.exe";
    folder.Write("My Long Folder\\my song file.mml", "");
    folder.Write("My Long Folder\\mml compiler.exe", "");
    ASSERT_TRUE(WriteIni("Configure", "Console", console, folder / "song.ini"));
    const std::string name = "variables-" + std::to_string(GetCurrentProcessId());
    const std::string active = GetAppFolder() + "cfg\\" + name + ".ini";
    CreateDirectoryA((GetAppFolder() + "cfg").c_str(), nullptr);
    ASSERT_TRUE(WriteIni("Configure", "Console", "E:\\Active\\mc.exe", active));
    ASSERT_TRUE(WriteIni("Setting", "Default", name, folder / "Zorvi.ini"));
    const std::string savedMain = mdlMain::MainSettingsPath();
    mdlMain::SetMainSettingsPath(folder / "Zorvi.ini");
    mdlMain::SetTargetFile(target);

    // Folders always come short; an expected value with "~" is the same path
    // in its short form, "=" the same folder, else the very text.
    const struct {
        const char* text;
        bool shortNames;
        const char* configuration;
        std::string expected;
        char match;
    } cases[] = {
        {"$windir$", false, "", GetWindowsFolder() + "\\", ' '},
        {"$desktop$", false, "", AddBackslash(GetSpecialFolderPath(CSIDL_DESKTOP)), '='},
        {"$mydocument$", false, "", AddBackslash(GetSpecialFolderPath(CSIDL_PERSONAL)), '='},
        {"$hp$", false, "", GetAppFolder(), '='},
        {"$fn$", false, "", "my song file.mml", ' '},
        {"$fp$$fn$", true, "", target, '~'},
        {"$fp2$", false, "", folder / "My Long Folder", '~'},
        {"$pn$", false, "song.ini", "mml compiler.exe", ' '},
        {"$pp$$pn$", true, "song.ini", console, '~'},
        {"$pp$$pn$", false, "", "E:\\Active\\mc.exe", ' '},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text + std::string(" in ") + c.configuration);
        const std::string configuration = *c.configuration ? folder / c.configuration : "";
        const std::string expanded = ExpandVariables(c.text, true, c.shortNames, configuration);
        if (c.match == ' ') {
            EXPECT_EQ(expanded, c.expected);
            continue;
        }
        if (c.match == '~') {
            EXPECT_TRUE(Has(expanded, '~')) << expanded;
        }
        EXPECT_EQ(expanded.back() == '\\', c.expected.back() == '\\');
        EXPECT_EQ(GetLongPath(expanded), GetLongPath(c.expected)) << expanded;
    }
    mdlMain::SetMainSettingsPath(savedMain);
    mdlMain::SetTargetFile("");
    DeleteFileA(active.c_str());
}

}  // namespace
}  // namespace zorvi::mdlFile
