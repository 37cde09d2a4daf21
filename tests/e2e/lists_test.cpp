// The player and editor lists of the real zorvi.exe: cleaned when the main
// window starts, left as they are by a command-line compile.
#include <gtest/gtest.h>

#include <windows.h>

#include <fstream>
#include <string>
#include <vector>

#include "core/version.h"
#include "support/driver.h"

namespace zorvi::testing {
namespace {

using List = std::vector<std::string>;

const std::string kBareCaption = "Zorvi v" + VersionText(ThisVersion());

void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::string CountedListText(const char* section, const List& items) {
    std::string text = std::string("[") + section + "]\r\nItemCount=" +
                       std::to_string(items.size()) + "\r\n";
    for (std::size_t i = 0; i < items.size(); ++i) {
        text += "Item" + std::to_string(i + 1) + "=" + items[i] + "\r\n";
    }
    return text;
}

// The list as stored: ItemCount, then Item1 to Item<count>.
List StoredList(const std::string& file, const char* section) {
    const int count =
        static_cast<int>(GetPrivateProfileIntA(section, "ItemCount", -1, file.c_str()));
    List items;
    for (int i = 1; i <= count && i <= 100; ++i) {
        char value[300] = {};
        GetPrivateProfileStringA(section, ("Item" + std::to_string(i)).c_str(), "<none>", value,
                                 sizeof value, file.c_str());
        items.emplace_back(value);
    }
    return items;
}

// An installation whose lists hold a repeat and a missing program, with one
// configuration "a" that names a player the lists do not have yet and that
// compiles with the stand-in compiler.
class StoredLists : public ::testing::Test {
protected:
    StoredLists() {
        CreateDirectoryA(Path("tools").c_str(), nullptr);
        CreateDirectoryA(Path("cfg").c_str(), nullptr);
        for (const char* tool : {"play.exe", "cfgplay.exe", "ed.exe", "ed2.exe"}) {
            WriteBytes(Tool(tool), "MZ");
        }
        CopyFileA(BesideTestProgram("zcompiler.exe").c_str(), Tool("zcompiler.exe").c_str(), FALSE);
        WriteBytes(installation.SettingsFile(),
                   "[Setting]\r\nDefault=a\r\nEditor=" + Tool("ed2.exe") + "\r\n" +
                       CountedListText("PlayerList", kPlayers) +
                       CountedListText("EditorList", kEditors));
        WriteBytes(Path("cfg\\a.ini"),
                   "[Configure]\r\nConsole=" + Tool("zcompiler.exe") +
                       "\r\nExtension=out\r\nPlayer=" + Tool("cfgplay.exe") +
                       "\r\n[Option]\r\nUseCUI=1\r\nCUIWindowState=2\r\nDetectError=1\r\n"
                       "UseGUI=0\r\n[Script]\r\nLine=1\r\n"
                       "Line1=$pp$zcompiler.exe $fp$$fn$ $fp$$fn2$.out $fp$$fn2$.log\r\n");
        WriteBytes(Path("song.mml"), "o4 cdefg\r\n");
    }

    std::string Path(const std::string& name) const { return installation.Files() / name; }
    std::string Tool(const std::string& name) const { return Path("tools\\" + name); }
    List Players() const { return StoredList(installation.SettingsFile(), "PlayerList"); }
    List Editors() const { return StoredList(installation.SettingsFile(), "EditorList"); }

    Installation installation;
    const List kPlayers = {Tool("play.exe"), Tool("gone.exe"), Tool("play.exe")};
    const List kEditors = {Tool("ed.exe"), Tool("gone.exe"), Tool("ed.exe")};
};

TEST_F(StoredLists, CompileNowLeavesThemAlone) {
    Running zorvi(installation, "-compilenow song.mml");
    const auto code = zorvi.WaitForExit(std::chrono::seconds(30));
    ASSERT_TRUE(code.has_value()) << "Zorvi did not end by itself";
    EXPECT_EQ(*code, 0u);
    // The compile did run: this was no early way out.
    EXPECT_NE(GetFileAttributesA(Path("song.out").c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(Players(), kPlayers);
    EXPECT_EQ(Editors(), kEditors);
}

TEST_F(StoredLists, TheMainWindowCleansThemAtStartUp) {
    Running zorvi(installation, "");
    const HWND main = zorvi.WaitForWindow("ZorviMain", kBareCaption);
    ASSERT_NE(main, nullptr);
    PostMessageW(main, WM_CLOSE, 0, 0);
    const auto code = zorvi.WaitForExit();
    ASSERT_TRUE(code.has_value());
    EXPECT_EQ(*code, 0u);
    // First occurrences stay in place, missing programs go, the configuration's
    // player and the current editor join at the end.
    EXPECT_EQ(Players(), (List{Tool("play.exe"), Tool("cfgplay.exe")}));
    EXPECT_EQ(Editors(), (List{Tool("ed.exe"), Tool("ed2.exe")}));
}

}  // namespace
}  // namespace zorvi::testing
