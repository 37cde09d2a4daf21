// Single settings keys against real files through the platform's profile functions.
#include <gtest/gtest.h>

#include "core/mdlMain.h"
#include "files/path_win.h"
#include "settings/ini_win.h"
#include "support/temp_folder.h"

namespace zorvi {
namespace {

using testing::TempFolder;

TEST(Ini, MissingFileSectionOrKeyGiveTheDefault) {
    TempFolder folder;
    folder.Write("Zorvi.ini", "[Main]\r\nLeft=120\r\n");
    const std::string file = folder / "Zorvi.ini";
    const std::string missing = folder / "none.ini";
    const struct {
        const char* section;
        const char* key;
        std::string file;
    } cases[] = {
        {"Main", "Left", missing}, {"Nope", "Left", file}, {"Main", "Nope", file}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.section) + "/" + c.key);
        EXPECT_EQ(ReadIni(c.section, c.key, "fallback", c.file), "fallback");
        EXPECT_EQ(ReadIniInt(c.section, c.key, -7, c.file), -7);
    }
    EXPECT_FALSE(mdlFile::PathExists(missing));
}

TEST(Ini, NamesMatchWithoutRegardToCase) {
    TempFolder folder;
    folder.Write("z.ini", "[Setting]\r\nLanguage=Japanese\r\n");
    EXPECT_EQ(ReadIni("setting", "LANGUAGE", "", folder / "z.ini"), "Japanese");
    EXPECT_EQ(ReadIni(settings::main_file::kLanguage, folder / "z.ini"), "Japanese");
}

TEST(Ini, LongValuesAreCutTo299Characters) {
    TempFolder folder;
    const std::string file = folder / "z.ini";
    for (std::size_t length : {298u, 299u, 300u, 400u, 2000u}) {
        SCOPED_TRACE(length);
        std::string value(length, 'v');
        value.back() = 'E';
        ASSERT_TRUE(WriteIni("S", "K", value, file));
        EXPECT_EQ(ReadIni("S", "K", "", file), value.substr(0, 299));
    }
}

TEST(Ini, IntegersFollowThePlatformRules) {
    TempFolder folder;
    const struct {
        const char* stored;
        int expected;
    } cases[] = {{"12abc", 12}, {"-5", -5}, {"abc", 0}, {" 7", 7}, {"0", 0}, {"250", 250}};
    std::string text = "[N]\r\n";
    for (const auto& c : cases) text += std::string("k") + c.stored + "=" + c.stored + "\r\n";
    folder.Write("n.ini", text);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.stored);
        EXPECT_EQ(ReadIniInt("N", std::string("k") + c.stored, 99, folder / "n.ini"), c.expected);
    }
}

TEST(Ini, FirstWriteCreatesFileAndSection) {
    TempFolder folder;
    const std::string file = folder / "Zorvi.ini";
    ASSERT_TRUE(WriteIni("Main", "Width", 4410, file));
    ASSERT_TRUE(WriteIni("Setting", "Default", "fast", file));
    EXPECT_EQ(folder.Read("Zorvi.ini"), "[Main]\r\nWidth=4410\r\n[Setting]\r\nDefault=fast\r\n");
    EXPECT_EQ(ReadIniInt("Main", "Width", 0, file), 4410);
}

TEST(Ini, FlagsUseTheTestOfTheirKey) {
    TempFolder folder;
    const std::string file = folder / "z.ini";
    const struct {
        const char* stored;
        bool exactlyOne, nonZero;
    } cases[] = {{"1", true, true}, {"2", false, true}, {"-1", false, true}, {"0", false, false},
                 {"x", false, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.stored);
        WriteIni("Option", "AutoSetFile", c.stored, file);
        WriteIni("Option", "UseAltPopUp", c.stored, file);
        EXPECT_EQ(ReadIniFlag(settings::main_file::kAutoSetFile, file), c.exactlyOne);
        EXPECT_EQ(ReadIniFlag(settings::main_file::kUseAltPopUp, file), c.nonZero);
    }
}

TEST(Ini, BinaryOrEmptyFilesReadAsDefaults) {
    TempFolder folder;
    std::string binary;
    for (int i = 0; i < 4096; ++i) binary += static_cast<char>((i * 7919) % 256);
    folder.Write("bin.ini", binary);
    folder.Write("empty.ini", "");
    for (const char* name : {"bin.ini", "empty.ini"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(ReadIni(settings::main_file::kLanguage, folder / name), "English");
        EXPECT_EQ(ReadIniInt("Main", "Width", 4410, folder / name), 4410);
    }
}

TEST(Ini, ActiveConfigurationPathAndName) {
    TempFolder folder;
    const std::string saved = mdlMain::MainSettingsPath();
    mdlMain::SetMainSettingsPath(folder / "Zorvi.ini");
    const std::string cfg = mdlFile::GetAppFolder() + "cfg\\";
    EXPECT_EQ(GetDefaultPreset(), cfg + ".ini");
    EXPECT_EQ(GetDefaultPreset(PresetForm::Name), "");
    WriteIni("Setting", "Default", "fast", folder / "Zorvi.ini");
    EXPECT_EQ(GetDefaultPreset(), cfg + "fast.ini");
    EXPECT_EQ(GetDefaultPreset(PresetForm::Name), "fast");
    mdlMain::SetMainSettingsPath(saved);
}

}  // namespace
}  // namespace zorvi
