// The writes of saving a configuration: their order, the safe name and the
// three settings compared before they are written.
#include <gtest/gtest.h>

#include "settings/config_save.h"
#include "support/shift_jis.h"

namespace zorvi::settings {
namespace {

// "M Option/AutoSetFile=1" or "C Script/Line=0": file, section, key and value in one text.
std::vector<std::string> Describe(const ConfigurationSavePlan& plan) {
    std::vector<std::string> lines;
    for (const auto& planned : plan.writes) {
        lines.push_back(std::string(planned.file == SettingsFileRole::Main ? "M " : "C ") +
                        planned.write.section + "/" + planned.write.key + "=" +
                        planned.write.value);
    }
    return lines;
}

TEST(ConfigSave, SafeNames) {
    const struct {
        std::string typed;
        std::string safe;
    } cases[] = {
        {"fast", "fast"},
        // The name ends at a NUL, as any text handed to the platform does.
        {std::string("ab\0:x", 5), "ab"},
        {"a:b?c", "a_b_c"},
        {"x/y\\z", "x_y_z"},
        {"\\/:,;*?\"<>|", "___________"},
        {"..\\..\\evil", ".._.._evil"},
        {"my set.v2", "my set.v2"},
        // Shift-JIS 表 and ソ end in the byte of "\\": they stay as they are.
        {"\x95\x5c:\x83\x5c", "\x95\x5c_\x83\x5c"},
    };
    const testing::ShiftJisCodePage shiftJis;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed);
        EXPECT_EQ(SafeConfigurationName(c.typed), c.safe);
    }
}

TEST(ConfigSave, ReservedDeviceNames) {
    const struct {
        const char* name;
        bool reserved;
    } cases[] = {{"CON", true},   {"con", true},     {"Nul", true},  {"aux.txt", true},
                 {"COM1", true},  {"lpt9", true},    {"PRN ", true}, {"COM0", false},
                 {"COM10", false}, {"console", false}, {"fast", false}, {"LPT", false},
                 {"", false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(IsReservedDeviceName(c.name), c.reserved);
    }
}

TEST(ConfigSave, EveryKeyInItsOrder) {
    ConfigurationValues values;
    values.name = "fa:st";
    values.alwaysTop = true;
    values.autoSetFile = true;
    values.autoWatch = true;
    values.taskTray = true;
    values.autoShutDown = true;
    values.autoClose = true;
    values.editor = "$hp$ed.exe";
    values.editorWindowState = 2;
    values.useAssociatedEditor = true;
    values.timerInterval = 500;
    values.iconSize = 24;
    values.japanese = true;
    values.externalPrograms = {{"Tool", "t.exe", "-x", "C:\\w", 3, true, true}};
    values.filters = {{"MML", "mml", "fast"}};
    values.useCUI = true;
    values.console = "$hp$mc.exe";
    values.cuiWindowState = 2;
    values.extension = "m";
    values.stepMode = true;
    values.useGUI = true;
    values.player = "$hp$play.exe";
    values.guiWindowState = 3;
    values.useAssociated = true;
    values.script = "$pr$ $fn$\r\n\r\necho done";
    values.required = "";

    const ConfigurationSavePlan plan = PlanConfigurationSave(values, StoredVisibleSettings{});
    EXPECT_EQ(plan.name, "fa_st");
    EXPECT_EQ(plan.script, "$pr$ $fn$\r\necho done\r\n");
    EXPECT_EQ(plan.required, "");
    EXPECT_EQ(Describe(plan), (std::vector<std::string>{
                                  "M Setting/Default=fa_st",
                                  "M Option/AlwaysTop=1",
                                  "M Option/AutoSetFile=1",
                                  "M Option/AutoOpen=0",
                                  "M Option/AutoWatch=1",
                                  "M Option/AutoMinimize=0",
                                  "M Option/TaskTray=1",
                                  "M Option/UseAltPopUp=0",
                                  "M Option/AutoShutDown=1",
                                  "M ResultWindow/AutoClose=1",
                                  "M Setting/Editor=$hp$ed.exe",
                                  "M Option/EditorWindowState=2",
                                  "M Option/UseAssociatedEditor=1",
                                  "C Option/UseCUI=1",
                                  "C Configure/Console=$hp$mc.exe",
                                  "C Option/CUIWindowState=2",
                                  "C Configure/Extension=m",
                                  "C Option/ForceShortName=0",
                                  "C Option/StepMode=1",
                                  "C Option/DetectError=0",
                                  "C Option/UseGUI=1",
                                  "C Configure/Player=$hp$play.exe",
                                  "C Option/GUIWindowState=3",
                                  "C Option/UseAssociated=1",
                                  "C Script/Line=2",
                                  "C Script/Line1=$pr$ $fn$",
                                  "C Script/Line2=echo done",
                                  "C Script/Line3=",
                                  "C Required/ItemCount=0",
                                  "C Required/Item1=",
                                  "M Option/TimerInterval=500",
                                  "M Option/IconSize=24",
                                  "M Setting/Language=Japanese",
                                  "M ExternalProgram/ItemCount=1",
                                  "M ExternalProgram/Item1=Tool",
                                  "M ExternalProgram/Command1=t.exe",
                                  "M ExternalProgram/Option1=-x",
                                  "M ExternalProgram/StartUpFolder1=C:\\w",
                                  "M ExternalProgram/AutoRun1=1",
                                  "M ExternalProgram/WindowState1=3",
                                  "M Filter/ItemCount=1",
                                  "M Filter/Item1=MML",
                                  "M Filter/Extension1=mml",
                                  "M Filter/Default1=fast",
                              }));
}

TEST(ConfigSave, VisibleSettingsAreWrittenOnlyWhenTheyDiffer) {
    const struct {
        const char* name;
        bool alwaysTop;
        int iconSize;
        bool japanese;
        int storedTop, storedIcon;
        const char* storedLanguage;
        std::vector<std::string> written;  // of the three keys, in order
    } cases[] = {
        {"nothing stored, defaults chosen", false, 16, false, 0, 16, "English", {}},
        {"all three changed", true, 32, true, 0, 16, "English",
         {"M Option/AlwaysTop=1", "M Option/IconSize=32", "M Setting/Language=Japanese"}},
        {"all three back", false, 16, false, 1, 32, "Japanese",
         {"M Option/AlwaysTop=0", "M Option/IconSize=16", "M Setting/Language=English"}},
        {"same as stored", true, 48, true, 1, 48, "Japanese", {}},
        // "japanese" in lower case already gives English texts.
        {"lower-case japanese, English chosen", false, 16, false, 0, 16, "japanese", {}},
        {"lower-case japanese, Japanese chosen", false, 16, true, 0, 16, "japanese",
         {"M Setting/Language=Japanese"}},
        {"unknown language, English chosen", false, 16, false, 0, 16, "French", {}},
        // A hand-set 2 is not the 1 a check box stores.
        {"hand-set topmost 2", true, 16, false, 2, 16, "English", {"M Option/AlwaysTop=1"}},
        {"stored icon size out of a byte", false, 44, false, 0, 300, "English",
         {"M Option/IconSize=44"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ConfigurationValues values;
        values.name = "x";
        values.alwaysTop = c.alwaysTop;
        values.iconSize = static_cast<std::uint8_t>(c.iconSize);
        values.japanese = c.japanese;
        const ConfigurationSavePlan plan = PlanConfigurationSave(values, {c.storedTop, c.storedIcon, c.storedLanguage});
        std::vector<std::string> written;
        for (const auto& planned : plan.writes) {
            const std::string& key = planned.write.key;
            if (key == "AlwaysTop" || key == "IconSize" || key == "Language") {
                written.push_back("M " + planned.write.section + "/" + key + "=" +
                                  planned.write.value);
                EXPECT_EQ(planned.file, SettingsFileRole::Main);
                EXPECT_NE(planned.change, VisibleChange::None);
            } else {
                EXPECT_EQ(planned.change, VisibleChange::None) << key;
            }
        }
        EXPECT_EQ(written, c.written);
    }
}

TEST(ConfigSave, EmptyNamePlansNothing) {
    for (const std::string& name : {std::string(), std::string("\0x", 2)}) {
        SCOPED_TRACE(name.size());
        ConfigurationValues values;
        values.name = name;
        values.script = "a\r\n\r\nb";
        const auto plan = PlanConfigurationSave(values, {});
        EXPECT_TRUE(plan.writes.empty());
        EXPECT_EQ(plan.name, "");
        EXPECT_EQ(plan.script, "a\r\nb\r\n");
    }
}

}  // namespace
}  // namespace zorvi::settings
