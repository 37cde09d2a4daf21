// A section, or a file section by section, read in one call answers every
// key as the key-by-key profile functions do; the updater writes only what
// changed.
#include <gtest/gtest.h>

#include <windows.h>

#include "settings/ini_win.h"
#include "support/temp_folder.h"

namespace zorvi {
namespace {

using testing::TempFolder;

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
    for (const char* key : {"plain", "empty", "spaced", "dq", "sq", "half", "lone", "number",
                            "minus", "hex", "octal", "binary", "upper", "wide", "plus",
                            "minushex", "letters", "blank", "quoted", "nokey", "Twice",
                            "long", "longnumber", "later", "missing"}) {
        SCOPED_TRACE(key);
        EXPECT_EQ(section.Read(key, "fallback"), ReadIni("List", key, "fallback", file));
        EXPECT_EQ(section.ReadInt(key, 77), ReadIniInt("List", key, 77, file));
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

}  // namespace
}  // namespace zorvi
