// $variable$ expansion on this machine: real short names, configuration files
// and the active configuration named by the main settings file.
#include <gtest/gtest.h>

#include <windows.h>
#include <shlobj.h>

#include <string>
#include <utility>

#include "core/mdlMain.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "files/variables_win.h"
#include "settings/ini_win.h"
#include "support/temp_folder.h"

namespace zorvi::mdlFile {
namespace {

using zorvi::testing::TempFolder;

// The process-wide state these tests change, put back afterwards.
class SavedState {
public:
    SavedState() : target_(mdlMain::TargetFile()), mainSettings_(mdlMain::MainSettingsPath()) {}
    ~SavedState() {
        mdlMain::SetTargetFile(target_);
        mdlMain::SetMainSettingsPath(mainSettings_);
    }
    SavedState(const SavedState&) = delete;
    SavedState& operator=(const SavedState&) = delete;

private:
    std::string target_;
    std::string mainSettings_;
};

bool Contains(const std::string& text, char c) { return text.find(c) != std::string::npos; }

std::string AsciiUpper(std::string text) {
    for (char& c : text) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return text;
}

// A configuration file in the program's own cfg folder, removed afterwards
// together with the folder when this made it.
class ActiveConfiguration {
public:
    explicit ActiveConfiguration(std::string path) : path_(std::move(path)) {
        const std::string folder = path_.substr(0, path_.find_last_of('\\'));
        if (CreateDirectoryA(folder.c_str(), nullptr)) madeFolder_ = folder;
    }
    ~ActiveConfiguration() {
        DeleteFileA(path_.c_str());
        if (!madeFolder_.empty()) RemoveDirectoryA(madeFolder_.c_str());
    }
    ActiveConfiguration(const ActiveConfiguration&) = delete;
    ActiveConfiguration& operator=(const ActiveConfiguration&) = delete;
    const std::string& Path() const { return path_; }

private:
    std::string path_;
    std::string madeFolder_;
};

TEST(VariablesWin, SystemTokensOnThisMachine) {
    char windows[MAX_PATH] = {};
    ASSERT_GT(GetWindowsDirectoryA(windows, MAX_PATH), 0u);
    char module[MAX_PATH] = {};
    ASSERT_GT(GetModuleFileNameA(nullptr, module, MAX_PATH), 0u);
    const std::string program(module, std::string(module).find_last_of('\\') + 1);

    EXPECT_EQ(ExpandSystemVariables("$windir$|$SystemRoot$"),
              std::string(windows) + "\\|" + windows + "\\");
    EXPECT_EQ(ExpandSystemVariables("$hd$|$homeroot$"),
              program.substr(0, 2) + "|" + program.substr(0, 3));
    EXPECT_EQ(ExpandSystemVariables("no tokens here"), "no tokens here");

    // Folders come in their short form with a trailing "\"; the names Wine
    // makes up for them are its own, so check that they lead back.
    const struct {
        const char* token;
        std::string longFolder;
    } folders[] = {
        {"$hp$", program},
        {"$desktop$", GetSpecialFolderPath(CSIDL_DESKTOP)},
        {"$mydocument$", GetSpecialFolderPath(CSIDL_PERSONAL)},
    };
    for (const auto& f : folders) {
        SCOPED_TRACE(f.token);
        ASSERT_TRUE(IsFolder(f.longFolder));
        const std::string expanded = ExpandSystemVariables(f.token);
        ASSERT_FALSE(expanded.empty());
        EXPECT_EQ(expanded.back(), '\\');
        EXPECT_FALSE(Contains(expanded, '$'));
        EXPECT_EQ(GetLongPath(expanded), GetLongPath(f.longFolder));
    }
    const std::string homePath = ExpandSystemVariables("$homepath$");
    EXPECT_EQ(ExpandSystemVariables("$hp2$"), homePath.substr(0, homePath.size() - 1));
}

TEST(VariablesWin, ShortFoldersAndShortNames) {
    SavedState saved;
    TempFolder folder;
    ASSERT_TRUE(CreateDirectoryA((folder / "My Long Folder").c_str(), nullptr));
    ASSERT_TRUE(CreateDirectoryA((folder / "My Tools Folder").c_str(), nullptr));
    folder.Write("My Long Folder\\my song file.mml", "o4 c");
    folder.Write("My Tools Folder\\mml compiler.exe", "");
    const std::string targetFolder = folder / "My Long Folder";
    const std::string target = targetFolder + "\\my song file.mml";
    const std::string consoleFolder = folder / "My Tools Folder";
    const std::string console = consoleFolder + "\\mml compiler.exe";
    const std::string configuration = folder / "song.ini";
    ASSERT_TRUE(WriteIni("Configure", "Console", console, configuration));
    mdlMain::SetTargetFile(target);

    // shortened: Wine's 8.3 form, which must lead back to longForm; otherwise
    // the result is longForm exactly.
    const struct {
        const char* text;
        bool shortFolders, shortNames;
        std::string longForm;
        bool shortened;
    } cases[] = {
        {"$fp$$fn$", false, false, target, false},
        {"$fp$$fn$", true, false, target, true},
        {"$fp$$fn$", false, true, target, true},
        {"$fp$$fn$", true, true, target, true},
        {"$filepath2$\\$filename2$$extension$", false, false, target, false},
        {"$filepath2$\\$filename2$$extension$", true, true, target, true},
        {"$fp$", false, true, targetFolder + "\\", false},
        {"$fp$", true, false, targetFolder + "\\", true},
        {"$fp2$", true, true, targetFolder, true},
        {"$fn$", true, false, "my song file.mml", false},
        {"$fn2$|$ext2$", true, false, "my song file|mml", false},
        {"$fd$|$fr$", true, true, target.substr(0, 2) + "|" + target.substr(0, 2) + "\\", false},
        {"$pp$$pn$", false, false, console, false},
        {"$pp$$pn$", true, false, console, true},
        {"$pp$$pn$", false, true, console, true},
        {"$progpath2$\\$progname$", true, true, console, true},
        {"$pp$", false, true, consoleFolder + "\\", false},
        {"$pn$", true, false, "mml compiler.exe", false},
        {"$pd$|$pr$", true, true, console.substr(0, 2) + "|" + console.substr(0, 2) + "\\", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.text) + " shortFolders=" + std::to_string(c.shortFolders) +
                     " shortNames=" + std::to_string(c.shortNames));
        const std::string expanded =
            ExpandVariables(c.text, c.shortFolders, c.shortNames, configuration);
        if (!c.shortened) {
            EXPECT_EQ(expanded, c.longForm);
            continue;
        }
        EXPECT_NE(expanded, c.longForm);
        EXPECT_TRUE(Contains(expanded, '~')) << expanded;
        EXPECT_EQ(GetLongPath(expanded), GetLongPath(c.longForm)) << expanded;
    }

    // A short name has no blanks, and its extension is the short one.
    const std::string shortName = ExpandVariables("$fn$", false, true, configuration);
    EXPECT_FALSE(Contains(shortName, ' ')) << shortName;
    EXPECT_EQ(ExpandVariables("$fn2$$ext$", false, true, configuration), shortName);
    EXPECT_EQ(ExpandVariables("$ext2$", false, true, configuration), GetExtension(shortName));
    EXPECT_EQ(AsciiUpper(GetExtension(shortName)), "MML");
}

TEST(VariablesWin, ConsoleOfTheConfigurationFile) {
    SavedState saved;
    TempFolder folder;
    mdlMain::SetTargetFile("C:\\Music\\song.mml");
    folder.Write("plain.ini", "[Configure]\r\nConsole=D:\\Tools\\mc.exe\r\n");
    folder.Write("home.ini", "[Configure]\r\nConsole=$hp$bin\\mc.exe\r\n");
    folder.Write("none.ini", "[Configure]\r\nPlayer=D:\\play.exe\r\n");
    const std::string homePath = ExpandSystemVariables("$hp$");
    const struct {
        const char* file;
        const char* text;
        std::string expected;
    } cases[] = {
        {"plain.ini", "$pp$$pn$ $fn$", "D:\\Tools\\mc.exe song.mml"},
        {"plain.ini", "$PR$|$ProgDrive$|$pp2$", "D:\\|D:|D:\\Tools"},
        {"home.ini", "$pp$$pn$", homePath + "bin\\mc.exe"},
        {"home.ini", "$pd$", homePath.substr(0, 2)},
        // Without a console only "$pr$" gives something: a lone "\".
        {"none.ini", "[$progroot$|$pr$|$pd$|$pp$|$pp2$|$pn$]", "[|\\||||]"},
        {"missing.ini", "[$pr$|$pp$|$pn$]", "[\\||]"},
        {"missing.ini", "mc.exe song.mml", "mc.exe song.mml"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.file) + " " + c.text);
        EXPECT_EQ(ExpandVariables(c.text, false, false, folder / c.file), c.expected);
    }
}

TEST(VariablesWin, EmptyConfigurationPathMeansTheActiveOne) {
    SavedState saved;
    TempFolder folder;
    mdlMain::SetTargetFile("C:\\Music\\song.mml");
    mdlMain::SetMainSettingsPath(folder / "Zorvi.ini");
    const std::string name = "variables-test-" + std::to_string(GetCurrentProcessId());
    ASSERT_TRUE(WriteIni("Setting", "Default", name, folder / "Zorvi.ini"));

    // The active configuration lives in the program's own cfg folder.
    const ActiveConfiguration active(GetAppFolder() + "cfg\\" + name + ".ini");
    ASSERT_EQ(GetDefaultPreset(), active.Path());
    EXPECT_EQ(ExpandVariables("[$pr$|$pn$]", false, false, ""), "[\\|]");

    ASSERT_TRUE(WriteIni("Configure", "Console", "E:\\Active\\mc.exe", active.Path()));
    folder.Write("other.ini", "[Configure]\r\nConsole=F:\\Other\\oc.exe\r\n");
    const struct {
        std::string configuration;
        const char* expected;
    } cases[] = {
        {"", "E:\\Active\\mc.exe song.mml"},
        {folder / "other.ini", "F:\\Other\\oc.exe song.mml"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.configuration);
        EXPECT_EQ(ExpandVariables("$pp$$pn$ $fn$", true, false, c.configuration), c.expected);
    }
}

}  // namespace
}  // namespace zorvi::mdlFile
