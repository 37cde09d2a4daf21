// The settings files as the platform's private-profile functions write and read
// them: single keys, the list layouts, the list rebuilds and the configuration
// save; and the reads of a section, or of a file section by section, in one
// call, which answer every key as the key-by-key reads do.
#include <gtest/gtest.h>

#include <windows.h>

#include "files/path_win.h"
#include "settings/config_save_win.h"
#include "settings/ini_win.h"
#include "settings/lists_win.h"
#include "support/rows.h"
#include "support/temp_folder.h"

namespace zorvi::settings {
namespace {

using zorvi::testing::ExpectRows;
using zorvi::testing::TempFolder;
using Texts = std::vector<std::string>;

TEST(SettingsWin, ProfileFunctionsOnRealFiles) {
    TempFolder folder;
    const std::string file = folder / "Zorvi.ini";
    EXPECT_EQ(ReadIni("Main", "Left", "fallback", file), "fallback");
    EXPECT_EQ(ReadIniInt("Main", "Left", -7, file), -7);
    EXPECT_FALSE(mdlFile::PathExists(file));
    ASSERT_TRUE(WriteIni("Main", "Width", 4410, file));
    ASSERT_TRUE(WriteIni("Setting", "Default", "fast", file));
    EXPECT_EQ(folder.Read("Zorvi.ini"), "[Main]\r\nWidth=4410\r\n[Setting]\r\nDefault=fast\r\n");
    // Stored -> the two flag tests, exactly 1 and non-zero (how the platform
    // reads values is IniSection's comparison).
    ExpectRows<std::string, std::pair<bool, bool>>([&](const std::string& stored) {
        WriteIni("Option", "AutoSetFile", stored, file);
        WriteIni("Option", "UseAltPopUp", stored, file);
        return std::pair(ReadIniFlag(main_file::kAutoSetFile, file),
                         ReadIniFlag(main_file::kUseAltPopUp, file));
    }, {{"12abc", {false, true}}, {"", {false, false}}, {"1", {true, true}}});
}

TEST(SettingsWin, ListsOnDisk) {
    TempFolder folder;
    const std::string file = folder / "Zorvi.ini";
    ASSERT_TRUE(WriteCountedList(main_file::kEditorList, {"a", "", "C:\\My Tools\\b.exe"}, file));
    ASSERT_TRUE(WriteCountedList(main_file::kEditorList, {"only"}, file));
    EXPECT_EQ(ReadCountedList(main_file::kEditorList, file), Texts{"only"});
    ASSERT_TRUE(WriteHistorySlot(10, "C:\\ten.mml", file));
    EXPECT_EQ(ReadHistorySlots(file)[10], "C:\\ten.mml");
    EXPECT_FALSE(WriteHistorySlot(32, "C:\\none.mml", file));  // slots 0 to 31 only
    // Entries above the count stay in the file.
    EXPECT_NE(folder.Read("Zorvi.ini").find("\nItem3=C:\\My Tools\\b.exe\r"), std::string::npos);

    // The rebuilds take the players of cfg\*.ini (not of hidden or system files)
    // and keep the entries that name files, after variable expansion.
    CreateDirectoryA((folder / "cfg").c_str(), nullptr);
    const std::string play = folder / "play.exe", play2 = folder / "p2.exe", ed = folder / "ed.exe";
    for (const char* tool : {"play.exe", "p2.exe", "ed.exe"}) folder.Write(tool, "MZ");
    folder.Write("Zorvi.ini", "[PlayerList]\r\nItemCount=2\r\nItem1=" + play + "\r\nItem2=" +
                                  folder / "gone.exe" + "\r\n[Setting]\r\nEditor=" + play +
                                  "\r\n[EditorList]\r\nItemCount=3\r\nItem1=" + ed +
                                  "\r\nItem2=$hp$win_tests.exe\r\nItem3=$hp$none.exe\r\n");
    folder.Write("cfg\\b.ini", "[Configure]\r\nPlayer=" + play2);
    folder.Write("cfg\\a.ini", "[Configure]\r\nPlayer=" + play);
    for (const auto& [name, attributes] : {std::pair{"t.txt", 0}, {"h.ini", FILE_ATTRIBUTE_HIDDEN},
                                           {"s.ini", FILE_ATTRIBUTE_SYSTEM}}) {
        folder.Write(std::string("cfg\\") + name, "[Configure]\r\nPlayer=" + ed);
        SetFileAttributesA((folder / "cfg\\" + name).c_str(), attributes);
    }
    for (int start = 0; start < 2; ++start) {  // a second start finds nothing to change
        EXPECT_EQ(RebuildPlayerList(file, folder.Path() + "\\"), (Texts{play, play2}));
        EXPECT_EQ(ReadCountedList(main_file::kPlayerList, file), (Texts{play, play2}));
        EXPECT_EQ(RebuildEditorList(file), (Texts{ed, "$hp$win_tests.exe", play}));
    }
}

TEST(IniSection, AnswersAsTheKeyByKeyReads) {
    const std::string lines[] = {
        "plain=C:\\My Tools\\mmlc.exe", "empty=", "  spaced  =  a b  ", "dq=\"x y\"", "sq='x'",
        "half=\"x", "lone=\"", "number=12abc", "minus=-5", "hex=0x10", "octal=0o17",
        "binary=0b101", "upper=0X10", "wide=99999999999", "plus=+3", "minushex=-0x10",
        "letters=abc", "blank=\"  \"", "quoted=\"42\"", "nokey", "twice=first", "TWICE=second",
        ";comment=1", "long=" + std::string(400, 'v'), "longnumber=" + std::string(28, '0') + "12",
    };
    std::string text = "[Other]\r\nplain=elsewhere\r\n[List]\r\n";
    for (const auto& line : lines) text += line + "\r\n";
    // Comment lines are not keys: no key of the program starts with ";".
    text += "[list]\r\nlater=1\r\n";
    TempFolder folder;
    folder.Write("Zorvi.ini", text);
    const std::string file = folder / "Zorvi.ini";

    const IniSection section("list", file);
    const char* const keys[] = {"plain", "empty", "spaced", "dq", "sq", "half", "lone", "number",
                                "minus", "hex", "octal", "binary", "upper", "wide", "plus",
                                "minushex", "letters", "blank", "quoted", "nokey", "Twice",
                                "long", "longnumber", "later", "missing"};
    for (const char* key : keys) {
        SCOPED_TRACE(key);
        EXPECT_EQ(section.Read(key, "fallback"), ReadIni("List", key, "fallback", file));
        EXPECT_EQ(section.ReadInt(key, 77), ReadIniInt("List", key, 77, file));
    }
    // Within a read scope the key reads answer the same, fallbacks with
    // trailing blanks too, and a write is seen by the next read.
    const std::string fallbacks[] = {"fall back  ", "  ", "", std::string(400, 'f')};
    const auto readAll = [&] {
        std::vector<std::pair<std::string, int>> answers;
        for (const char* key : keys) {
            for (const std::string& fallback : fallbacks) {
                answers.emplace_back(ReadIni("List", key, fallback, file),
                                     ReadIniInt("list", key, 9, file));
            }
        }
        return answers;
    };
    const auto direct = readAll();
    {
        const IniReadScope scope;
        EXPECT_EQ(readAll(), direct);
        ASSERT_TRUE(WriteIni("List", "plain", "new", file));
        EXPECT_EQ(IniSection("List", file).Read("plain", ""), "new");
    }
    // A whole file answers from the section each key names, whatever its case.
    const IniFile whole(file);
    for (const char* name : {"LIST", "Other", "None"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(whole.Read(name, "plain", "fallback"), ReadIni(name, "plain", "fallback", file));
        EXPECT_EQ(whole.ReadInt(name, "hex", 77), ReadIniInt(name, "hex", 77, file));
    }
}

TEST(IniSection, TheUpdaterWritesOnlyWhatChanged) {
    TempFolder folder;
    const std::string file = folder / "Zorvi.ini";
    // A section far larger than the first buffer is read whole.
    std::string text = "[List]\r\nKeep=\"same\"\r\n";
    for (int i = 1; i <= 5000; ++i) text += "Item" + std::to_string(i) + "=C:\\tools\\p.exe\r\n";
    folder.Write("Zorvi.ini", text);
    EXPECT_EQ(IniSection("List", file).Read("Item5000", ""), "C:\\tools\\p.exe");

    IniUpdater updater;
    ASSERT_TRUE(updater.Write("List", "Keep", "same", file));        // holds it already
    ASSERT_TRUE(updater.Write("List", "Item5000", "C:\\tools\\p.exe", file));
    EXPECT_EQ(folder.Read("Zorvi.ini"), text);
    ASSERT_TRUE(updater.Write("List", "New", "", file));  // an empty value where no key is
    ASSERT_TRUE(updater.Write("List", "Keep", "other", file));
    ASSERT_TRUE(updater.Write("List", "Keep", "same", file));  // back again in the same save
    EXPECT_EQ(ReadIni("List", "New", "missing", file), "");
    EXPECT_EQ(ReadIni("List", "Keep", "", file), "same");
}

// An installation in a fresh folder: the program folder with its cfg folder.
class ConfigSaveWin : public ::testing::Test {
protected:
    ConfigSaveWin() {
        CreateDirectoryA((folder / "cfg").c_str(), nullptr);
        values.name = "fast";
        values.alwaysTop = values.useCUI = true;
        values.editorWindowState = 3;
        values.timerInterval = 400;
        values.externalPrograms = {{"Tool", "$hp$t.exe", "$fp$", "", 2, true, false}};
        values.filters = {{"MML", "mml", "fast"}};
        values.console = "$hp$mc.exe";
        values.script = "$pr$ $fn$\r\necho done\r\n";
        values.required = "$hp$mc.exe\r\n";
    }
    std::string Main() const { return folder / "Zorvi.ini"; }
    ConfigurationSaveResult Save() const {
        return SaveConfiguration(values, folder.Path() + "\\", Main());
    }
    TempFolder folder;
    ConfigurationValues values;
};

TEST_F(ConfigSaveWin, SavedValuesLoadBackAndTheBackupHoldsThePreviousFile) {
    ASSERT_EQ(Save().status, ConfigurationSaveResult::Status::Saved);
    EXPECT_EQ(LoadConfigurationValues("fast", folder.Path() + "\\", Main()), values);
    EXPECT_FALSE(mdlFile::PathExists(folder / "cfg\\fast.txt"));  // nothing to back up yet
    for (const char* console : {"second.exe", "third.exe"}) {
        const std::string before = folder.Read("cfg\\fast.ini");
        values.console = console;
        ASSERT_EQ(Save().status, ConfigurationSaveResult::Status::Saved);
        EXPECT_EQ(folder.Read("cfg\\fast.txt"), before);
        EXPECT_NE(folder.Read("cfg\\fast.ini").find(console), std::string::npos);
    }
    WriteIni("Option", "IconSize", "999", Main());  // a hand edit beyond one byte
    EXPECT_EQ(LoadConfigurationValues("fast", folder.Path() + "\\", Main()).iconSize, 16);
}

// Keys written before a failure stay written, nothing after it is; names the
// platform cannot take write nothing. (Under Wine as root a read-only folder
// can still be written: a missing cfg folder blocks the writes instead.)
TEST_F(ConfigSaveWin, AFailureKeepsWhatWasWrittenBefore) {
    const struct {
        const char* why;
        std::string name;
        long error;
        bool mainKeys;  // the main settings file's keys were written
    } cases[] = {
        {"cfg missing", "fast", ERROR_PATH_NOT_FOUND, true},
        {"the configuration held open: its backup fails", "fast", ERROR_SHARING_VIOLATION, false},
        {"a device's name", "CON", ERROR_INVALID_NAME, false},
        {"too long a path", std::string(300, 'n'), ERROR_FILENAME_EXCED_RANGE, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        DeleteFileA(Main().c_str());
        if (c.mainKeys) RemoveDirectoryA((folder / "cfg").c_str());
        folder.Write("cfg\\fast.ini", "[Configure]\r\nConsole=old\r\n");
        const HANDLE file = c.error != ERROR_SHARING_VIOLATION
                                ? INVALID_HANDLE_VALUE
                                : CreateFileA((folder / "cfg\\fast.ini").c_str(), GENERIC_READ, 0,
                                              nullptr, OPEN_EXISTING, 0, nullptr);
        values.name = c.name;
        const auto result = Save();
        if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
        CreateDirectoryA((folder / "cfg").c_str(), nullptr);
        EXPECT_EQ(result.status, ConfigurationSaveResult::Status::Failed);
        EXPECT_EQ(result.errorNumber, c.error);
        EXPECT_EQ(result.alwaysTopChanged, c.mainKeys);
        EXPECT_EQ(ReadIni(main_file::kDefault, Main()), c.mainKeys ? c.name : "");
        EXPECT_EQ(ReadIniInt(main_file::kEditorWindowState, Main()), c.mainKeys ? 3 : 1);
        EXPECT_EQ(ReadIniInt(main_file::kTimerInterval, Main()), 250);  // written after cfg
    }
}

}  // namespace
}  // namespace zorvi::settings
