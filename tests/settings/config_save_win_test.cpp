// Saving a configuration against real files: backup, safe name, key order
// rules, and failures that leave everything outside the program's files alone.
#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>
#include <set>

#include "settings/config_save_win.h"
#include "settings/ini_win.h"
#include "support/temp_folder.h"

namespace zorvi::settings {
namespace {

using zorvi::testing::TempFolder;
using Status = ConfigurationSaveResult::Status;

// An installation in a fresh folder: the program folder with its cfg folder.
class ConfigSaveWin : public ::testing::Test {
protected:
    ConfigSaveWin() { CreateDirectoryA((folder / "cfg").c_str(), nullptr); }

    std::string App() const { return folder.Path() + "\\"; }
    std::string Main() const { return folder / "Zorvi.ini"; }
    ConfigurationSaveResult Save(const ConfigurationValues& values) const {
        return SaveConfiguration(values, App(), Main());
    }
    // Every file under the installation, relative to it.
    std::set<std::string> Files() const {
        std::set<std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.Path())) {
            if (entry.is_regular_file()) {
                files.insert(std::filesystem::relative(entry.path(), folder.Path()).string());
            }
        }
        return files;
    }
    bool Contains(const std::string& name, const std::string& text) const {
        return folder.Read(name).find(text) != std::string::npos;
    }

    TempFolder folder;
};

ConfigurationValues Sample(const std::string& name) {
    ConfigurationValues values;
    values.name = name;
    values.autoSetFile = true;
    values.autoClose = true;
    values.editor = "$hp$ed.exe";
    values.editorWindowState = 3;
    values.timerInterval = 400;
    values.externalPrograms = {{"Tool", "$hp$t.exe", "$fp$", "", 2, true, false}};
    values.filters = {{"MML", "mml", name}};
    values.useCUI = true;
    values.console = "$hp$mc.exe";
    values.extension = "m";
    values.detectError = true;
    values.player = "$hp$play.exe";
    values.guiWindowState = 2;
    values.script = "$pr$ $fn$\r\necho done\r\n";
    values.required = "$hp$mc.exe\r\n";
    return values;
}

TEST_F(ConfigSaveWin, SavedValuesLoadBack) {
    const ConfigurationValues values = Sample("fast");
    const auto result = Save(values);
    ASSERT_EQ(result.status, Status::Saved) << result.errorDescription;
    EXPECT_EQ(result.name, "fast");
    EXPECT_EQ(result.configurationFile, folder / "cfg\\fast.ini");
    EXPECT_EQ(LoadConfigurationValues("fast", App(), Main()), values);
    EXPECT_EQ(ReadIni(main_file::kDefault, Main()), "fast");
    EXPECT_EQ(Files(), (std::set<std::string>{"Zorvi.ini", "cfg\\fast.ini"}));
}

// A last line without a line break is saved with one, so it reads back.
TEST_F(ConfigSaveWin, TextBlocksKeepTheirLastLine) {
    const struct {
        const char* typed;
        const char* stored;  // what the edit box gets back, and what reads back
        const char* lines;   // the block as it stands in the file
    } cases[] = {
        {"a\r\nb", "a\r\nb\r\n", "[Script]\r\nLine=2\r\nLine1=a\r\nLine2=b\r\nLine3=\r\n"},
        {"a\r\nb\r\n", "a\r\nb\r\n", "[Script]\r\nLine=2\r\nLine1=a\r\nLine2=b\r\nLine3=\r\n"},
        {"a\r\n\r\n\r\nb\r\n\r\n", "a\r\nb\r\n",
         "[Script]\r\nLine=2\r\nLine1=a\r\nLine2=b\r\nLine3=\r\n"},
        {"", "", "[Script]\r\nLine=0\r\nLine1=\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::PrintToString(std::string(c.typed)));
        DeleteFileA((folder / "cfg\\s.ini").c_str());
        ConfigurationValues values;
        values.name = "s";
        values.script = c.typed;
        const auto result = Save(values);
        ASSERT_EQ(result.status, Status::Saved);
        EXPECT_EQ(result.script, c.stored);
        EXPECT_TRUE(Contains("cfg\\s.ini", c.lines)) << folder.Read("cfg\\s.ini");
        EXPECT_EQ(LoadConfigurationValues("s", App(), Main()).script, c.stored);
    }
}

TEST_F(ConfigSaveWin, EmptyLinesAreRemovedFromBothTexts) {
    ConfigurationValues values = Sample("fast");
    values.script = "one\r\n\r\n\r\ntwo\r\n\r\nthree";
    values.required = "\r\n\r\nC:\\a.exe\r\n\r\nC:\\b.exe\r\n\r\n";
    const auto result = Save(values);
    ASSERT_EQ(result.status, Status::Saved);
    EXPECT_EQ(result.script, "one\r\ntwo\r\nthree\r\n");
    EXPECT_EQ(result.required, "\r\nC:\\a.exe\r\nC:\\b.exe\r\n");
    const auto loaded = LoadConfigurationValues("fast", App(), Main());
    EXPECT_EQ(loaded.script, result.script);
    EXPECT_EQ(loaded.required, result.required);
}

TEST_F(ConfigSaveWin, BackupHoldsTheStateBeforeTheLatestSave) {
    ConfigurationValues values = Sample("fast");
    ASSERT_EQ(Save(values).status, Status::Saved);
    // The first save had nothing to back up.
    EXPECT_EQ(Files().count("cfg\\fast.txt"), 0u);

    for (const char* console : {"second.exe", "third.exe"}) {
        SCOPED_TRACE(console);
        const std::string before = folder.Read("cfg\\fast.ini");
        values.console = console;
        ASSERT_EQ(Save(values).status, Status::Saved);
        EXPECT_EQ(folder.Read("cfg\\fast.txt"), before);
        EXPECT_NE(folder.Read("cfg\\fast.ini"), before);
    }
}

TEST_F(ConfigSaveWin, NamesAreMadeSafe) {
    const struct {
        const char* typed;
        const char* saved;
    } cases[] = {{"fa:st", "fa_st"}, {"my/set", "my_set"}, {"..\\..\\evil", ".._.._evil"},
                 {"a*b?c<d>e|f\"g", "a_b_c_d_e_f_g"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed);
        const auto result = Save(Sample(c.typed));
        ASSERT_EQ(result.status, Status::Saved) << result.errorDescription;
        EXPECT_EQ(result.name, c.saved);
        EXPECT_EQ(ReadIni(main_file::kDefault, Main()), c.saved);
        EXPECT_EQ(Files().count(std::string("cfg\\") + c.saved + ".ini"), 1u);
    }
    EXPECT_EQ(Files().size(), 5u);  // the main file and one file per name, nothing elsewhere
}

TEST_F(ConfigSaveWin, HandSetAutoShutDownSurvivesSaves) {
    ConfigurationValues values = Sample("fast");
    values.externalPrograms = {{"A", "a.exe", "", "", 1, false, false},
                               {"B", "b.exe", "", "", 1, false, false}};
    ASSERT_EQ(Save(values).status, Status::Saved);
    WriteIni("ExternalProgram", "AutoShutDown1", "1", Main());
    for (int save = 0; save < 3; ++save) {
        SCOPED_TRACE(save);
        // Even a record that the window shows with the flag on does not write it.
        values.externalPrograms[1].autoShutDown = true;
        ASSERT_EQ(Save(values).status, Status::Saved);
        const auto loaded = LoadConfigurationValues("fast", App(), Main());
        ASSERT_EQ(loaded.externalPrograms.size(), 2u);
        EXPECT_TRUE(loaded.externalPrograms[0].autoShutDown);
        EXPECT_FALSE(loaded.externalPrograms[1].autoShutDown);
        EXPECT_FALSE(Contains("Zorvi.ini", "AutoShutDown2"));
    }
}

TEST_F(ConfigSaveWin, StaleRecordsAboveTheCountStay) {
    ConfigurationValues values = Sample("fast");
    values.externalPrograms = {{"A", "a.exe", "", "", 1, false, false},
                               {"B", "b.exe", "", "", 1, false, false},
                               {"C", "c.exe", "", "", 3, true, false}};
    values.filters = {{"F1", "mml", ""}, {"F2", "mus", ""}};
    ASSERT_EQ(Save(values).status, Status::Saved);
    values.externalPrograms = {values.externalPrograms[2]};
    values.filters = {};
    ASSERT_EQ(Save(values).status, Status::Saved);
    for (const char* stale : {"Item3=C\r\n", "Command3=c.exe", "WindowState3=3", "Item2=B\r\n",
                              "Extension2=mus"}) {
        EXPECT_TRUE(Contains("Zorvi.ini", stale)) << stale;
    }
    const auto loaded = LoadConfigurationValues("fast", App(), Main());
    EXPECT_EQ(loaded.externalPrograms, values.externalPrograms);
    EXPECT_TRUE(loaded.filters.empty());
}

TEST_F(ConfigSaveWin, ComparedKeysAreNotWrittenWhenUnchanged) {
    const struct {
        const char* name;
        const char* stored;  // the Option and Setting sections as a hand left them
        bool alwaysTop, japanese;
        int iconSize;
        bool topChanged, iconChanged, languageChanged;
        std::vector<const char*> afterwards;
    } cases[] = {
        {"no keys, defaults chosen", "", false, false, 16, false, false, false, {}},
        {"same values in odd spellings",
         "[Option]\r\nAlwaysTop=01\r\nIconSize=016\r\n[Setting]\r\nLanguage=Japanese\r\n", true,
         true, 16, false, false, false,
         {"AlwaysTop=01\r\n", "IconSize=016\r\n", "Language=Japanese\r\n"}},
        {"lower-case japanese with English chosen", "[Setting]\r\nLanguage=japanese\r\n", false,
         false, 16, false, false, false, {"Language=japanese\r\n"}},
        {"all changed", "[Option]\r\nAlwaysTop=1\r\nIconSize=16\r\n", false, true, 32, true,
         true, true, {"AlwaysTop=0\r\n", "IconSize=32\r\n", "Language=Japanese\r\n"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        DeleteFileA(Main().c_str());
        if (*c.stored) folder.Write("Zorvi.ini", c.stored);
        ConfigurationValues values = Sample("fast");
        values.alwaysTop = c.alwaysTop;
        values.japanese = c.japanese;
        values.iconSize = static_cast<std::uint8_t>(c.iconSize);
        const auto result = Save(values);
        ASSERT_EQ(result.status, Status::Saved);
        EXPECT_EQ(result.alwaysTopChanged, c.topChanged);
        EXPECT_EQ(result.iconSizeChanged, c.iconChanged);
        EXPECT_EQ(result.languageChanged, c.languageChanged);
        const std::string text = folder.Read("Zorvi.ini");
        if (c.afterwards.empty()) {
            for (const char* key : {"AlwaysTop", "IconSize", "Language"}) {
                EXPECT_EQ(text.find(key), std::string::npos) << key;
            }
        }
        for (const char* line : c.afterwards) EXPECT_NE(text.find(line), std::string::npos) << line;
    }
}

TEST_F(ConfigSaveWin, LongValuesReadBackCut) {
    ConfigurationValues values = Sample("fast");
    values.console = std::string(400, 'c');
    values.script = std::string(350, 's') + "\r\nshort\r\n";
    values.externalPrograms[0].command = std::string(299, 'x') + "yz";
    ASSERT_EQ(Save(values).status, Status::Saved);
    const auto loaded = LoadConfigurationValues("fast", App(), Main());
    EXPECT_EQ(loaded.console, std::string(299, 'c'));
    EXPECT_EQ(loaded.script, std::string(299, 's') + "\r\nshort\r\n");
    EXPECT_EQ(loaded.externalPrograms[0].command, std::string(299, 'x'));
}

TEST_F(ConfigSaveWin, HandEditedFilesLoadAsDefaults) {
    folder.Write("Zorvi.ini",
                 "[Option]\r\nIconSize=999\r\nTimerInterval=abc\r\n"
                 "[ExternalProgram]\r\nItemCount=2\r\nCommand2=x.exe\r\n"
                 "[Filter]\r\nItemCount=-4\r\nItem1=lost\r\n");
    folder.Write("cfg\\odd.ini", "[Script]\r\nLine=5\r\nLine2=b\r\n[Required]\r\nItemCount=-1\r\n");
    const auto loaded = LoadConfigurationValues("odd", App(), Main());
    EXPECT_EQ(loaded.iconSize, 16);
    EXPECT_EQ(loaded.timerInterval, 0);  // the platform reads no digits as 0
    ASSERT_EQ(loaded.externalPrograms.size(), 2u);
    EXPECT_EQ(loaded.externalPrograms[1].command, "x.exe");
    EXPECT_EQ(loaded.externalPrograms[1].windowState, 1);
    EXPECT_TRUE(loaded.filters.empty());
    EXPECT_EQ(loaded.script, "\r\nb\r\n\r\n\r\n\r\n");
    EXPECT_EQ(loaded.required, "");
    // A configuration that does not exist reads as all defaults.
    ConfigurationValues expected;
    ConfigurationValues missing;
    LoadConfigurationFile(missing, folder / "cfg\\none.ini");
    EXPECT_EQ(missing, expected);
}

TEST_F(ConfigSaveWin, NamesThatCannotBeSavedWriteNothing) {
    const struct {
        std::string name;
        Status status;
    } cases[] = {
        {"", Status::EmptyName},
        {"CON", Status::Failed},
        {"lpt1", Status::Failed},
        {std::string(300, 'n'), Status::Failed},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name.substr(0, 10));
        const auto result = Save(Sample(c.name));
        EXPECT_EQ(result.status, c.status);
        if (c.status == Status::Failed) {
            EXPECT_NE(result.errorNumber, 0);
            EXPECT_FALSE(result.errorDescription.empty());
        }
        EXPECT_TRUE(Files().empty());
    }
}

TEST_F(ConfigSaveWin, MissingOrBlockedConfigurationFolderFails) {
    const struct {
        const char* name;
        bool cfgIsFile;
    } cases[] = {{"cfg missing", false}, {"cfg is a file", true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        DeleteFileA(Main().c_str());
        RemoveDirectoryA((folder / "cfg").c_str());
        DeleteFileA((folder / "cfg").c_str());
        if (c.cfgIsFile) folder.Write("cfg", "not a folder");

        const auto result = Save(Sample("fast"));
        EXPECT_EQ(result.status, Status::Failed);
        EXPECT_NE(result.errorNumber, 0);
        EXPECT_NE(result.errorDescription.find("cfg"), std::string::npos) << result.errorDescription;
        // The main settings written before the failure stay written.
        EXPECT_EQ(ReadIni(main_file::kDefault, Main()), "fast");
        EXPECT_EQ(ReadIniInt(main_file::kEditorWindowState, Main()), 3);
        // Nothing after the failure.
        EXPECT_EQ(ReadIniInt(main_file::kTimerInterval, Main()), 250);
        const std::set<std::string> expected =
            c.cfgIsFile ? std::set<std::string>{"Zorvi.ini", "cfg"} : std::set<std::string>{"Zorvi.ini"};
        EXPECT_EQ(Files(), expected);
        if (c.cfgIsFile) {
            EXPECT_EQ(folder.Read("cfg"), "not a folder");
        }
    }
}

// A file that another program holds open without sharing cannot be written.
class HeldOpen {
public:
    explicit HeldOpen(const std::string& path)
        : handle_(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    ~HeldOpen() {
        if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
    }
    HeldOpen(const HeldOpen&) = delete;
    HeldOpen& operator=(const HeldOpen&) = delete;
    bool Held() const { return handle_ != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle_;
};

TEST_F(ConfigSaveWin, FilesInUseFail) {
    ASSERT_EQ(Save(Sample("fast")).status, Status::Saved);
    ConfigurationValues values = Sample("fast");
    values.console = "changed.exe";
    ASSERT_EQ(Save(values).status, Status::Saved);
    const std::string mainText = folder.Read("Zorvi.ini");
    const std::string configText = folder.Read("cfg\\fast.ini");
    const std::string backupText = folder.Read("cfg\\fast.txt");
    values.editor = "again.exe";
    values.console = "again.exe";

    // The configuration cannot even be copied: the save ends before any key.
    {
        HeldOpen held(folder / "cfg\\fast.ini");
        ASSERT_TRUE(held.Held());
        const auto result = Save(values);
        EXPECT_EQ(result.status, Status::Failed);
        EXPECT_EQ(result.errorNumber, ERROR_SHARING_VIOLATION);
        EXPECT_NE(result.errorDescription.find("fast.txt"), std::string::npos)
            << result.errorDescription;
    }
    EXPECT_EQ(folder.Read("Zorvi.ini"), mainText);
    EXPECT_EQ(folder.Read("cfg\\fast.ini"), configText);

    // The main settings file fails at its first key; the configuration is untouched.
    {
        HeldOpen held(Main());
        ASSERT_TRUE(held.Held());
        const auto result = Save(values);
        EXPECT_EQ(result.status, Status::Failed);
        EXPECT_NE(result.errorNumber, 0);
        EXPECT_NE(result.errorDescription.find("Zorvi.ini"), std::string::npos)
            << result.errorDescription;
        EXPECT_FALSE(result.alwaysTopChanged || result.iconSizeChanged || result.languageChanged);
    }
    EXPECT_EQ(folder.Read("Zorvi.ini"), mainText);
    EXPECT_EQ(folder.Read("cfg\\fast.ini"), configText);
    // The backup was made afresh from the unchanged file.
    EXPECT_EQ(folder.Read("cfg\\fast.txt"), configText);
    EXPECT_NE(backupText, configText);
}

TEST_F(ConfigSaveWin, VisibleChangesWrittenBeforeAFailureAreStillReported) {
    ConfigurationValues values = Sample("fast");
    values.alwaysTop = true;   // written before the configuration file
    values.iconSize = 32;      // written after it
    RemoveDirectoryA((folder / "cfg").c_str());
    const auto result = Save(values);
    EXPECT_EQ(result.status, Status::Failed);
    EXPECT_TRUE(result.alwaysTopChanged);
    EXPECT_FALSE(result.iconSizeChanged);
    EXPECT_EQ(ReadIniInt(main_file::kAlwaysTop, Main()), 1);
    EXPECT_EQ(ReadIniInt(main_file::kIconSize, Main()), 16);
}

}  // namespace
}  // namespace zorvi::settings
