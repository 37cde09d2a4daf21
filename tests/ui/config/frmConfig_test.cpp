// The configuration window in this process, beside a main window, against
// the settings of a fresh folder: driven through its controls as a user
// would (texts typed, boxes ticked, buttons clicked, files dropped) and read
// back from the files and the main window.
#include <gtest/gtest.h>

#include <windows.h>

#include <shlobj.h>

#include <deque>
#include <fstream>
#include <functional>
#include <sstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/mdlMain.h"
#include "core/messages_win.h"
#include "core/strings_win.h"
#include "core/wide_win.h"
#include "files/path_win.h"
#include "settings/ini_win.h"
#include "support/temp_folder.h"
#include "support/wait.h"
#include "ui/config/frmConfig.h"
#include "ui/dialogs/InputBox.h"
#include "ui/main/frmZorvi.h"
#include "ui/main/mdlView.h"
#include "ui/main/placement.h"

namespace zorvi {
namespace {

using testing::TempFolder;
using testing::WindowText;

void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}
std::string Bytes(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

void Click(HWND button) { SendMessageW(button, BM_CLICK, 0, 0); }
void Type(HWND box, const std::string& text) {
    SendMessageW(box, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(Widen(text).c_str()));
}
bool IsChecked(HWND box) { return SendMessageW(box, BM_GETCHECK, 0, 0) == BST_CHECKED; }
void Tick(HWND box) {
    if (!IsChecked(box)) Click(box);
}
// A choice from a list, with the notice the list sends its window.
void Choose(HWND box, int index, bool listBox = false) {
    SendMessageW(box, listBox ? LB_SETCURSEL : CB_SETCURSEL, static_cast<WPARAM>(index), 0);
    SendMessageW(GetParent(box), WM_COMMAND,
                 MAKEWPARAM(GetDlgCtrlID(box), listBox ? LBN_SELCHANGE : CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(box));
}

void MakeShortcut(const std::string& link, const std::string& target,
                  const std::string& arguments) {
    CoInitialize(nullptr);
    IShellLinkA* shortcut = nullptr;
    IPersistFile* file = nullptr;
    CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                     reinterpret_cast<void**>(&shortcut));
    shortcut->SetPath(target.c_str());
    shortcut->SetArguments(arguments.c_str());
    shortcut->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&file));
    file->Save(Widen(link).c_str(), TRUE);
    file->Release();
    shortcut->Release();
    CoUninitialize();
}

// Files as the shell hands them to a window they are dropped on.
HDROP MakeDrop(const std::vector<std::string>& paths) {
    std::string list;
    for (const auto& path : paths) list += path + '\0';
    list += '\0';
    const HGLOBAL memory = GlobalAlloc(GHND, sizeof(DROPFILES) + list.size());
    auto* drop = static_cast<DROPFILES*>(GlobalLock(memory));
    drop->pFiles = sizeof(DROPFILES);
    CopyMemory(reinterpret_cast<char*>(drop) + sizeof(DROPFILES), list.data(), list.size());
    GlobalUnlock(memory);
    return static_cast<HDROP>(memory);
}

// A main window and its configuration window. Message boxes are recorded
// and answered OK; the input box answers from a queue. Configurations live
// in the test program's own cfg folder, under names of this process.
class Configure : public ::testing::Test {
protected:
    void SetUp() override {
        mdlMain::SetMainSettingsPath(folder / "Zorvi.ini");
        mdlMain::SetLanguageOffset(0);
        previousBox_ = SetMessageBoxFunction(
            [this](HWND, const std::wstring& text, const std::wstring&, UINT) {
                boxes.push_back(text);
                return IDOK;
            });
        previousInput_ = SetInputBoxFunction([this](HWND, const std::wstring&) {
            std::optional<std::wstring> answer;
            if (!inputs.empty()) {
                answer = Widen(inputs.front());
                inputs.pop_front();
            }
            return answer;
        });
    }
    void TearDown() override {
        ReleaseConfigWindow();
        main.reset();
        SetMessageBoxFunction(std::move(previousBox_));
        SetInputBoxFunction(std::move(previousInput_));
        mdlMain::SetLanguageOffset(0);
        mdlMain::SetTargetFile({});
        for (const auto& name : names_) {
            for (const char* extension : {".ini", ".txt"}) {
                DeleteFileA(Cfg(name, extension).c_str());
            }
        }
    }

    // A configuration name of this process; its files are removed afterwards.
    std::string Name(const std::string& base) {
        names_.push_back("zc" + std::to_string(GetCurrentProcessId()) + base);
        return names_.back();
    }
    static std::string Cfg(const std::string& name, const char* extension = ".ini") {
        return mdlFile::GetAppFolder() + "cfg\\" + name + extension;
    }
    std::string Configuration(const std::string& base, const std::string& text) {
        const std::string name = Name(base);
        CreateDirectoryA((mdlFile::GetAppFolder() + "cfg").c_str(), nullptr);
        WriteBytes(Cfg(name), text);
        return name;
    }
    frmConfig& Open(const std::string& settings, int page = 0) {
        folder.Write("Zorvi.ini", settings);
        main = std::make_unique<frmZorvi>();
        if (!main->Create(nullptr)) throw std::runtime_error("no main window");
        return Show(page);
    }
    frmConfig& Show(int page) {
        ShowConfigWindow(main.get(), page);
        if (ConfigWindow() == nullptr) throw std::runtime_error("no configuration window");
        return *ConfigWindow();
    }
    std::string Setting(const std::string& file, const char* section, const char* key) const {
        return ReadIni(section, key, "<none>", file);
    }
    std::string MainFile() const { return folder / "Zorvi.ini"; }

    TempFolder folder;
    std::unique_ptr<frmZorvi> main;
    std::vector<std::wstring> boxes;
    std::deque<std::string> inputs;

private:
    std::vector<std::string> names_;
    MessageBoxFunction previousBox_;
    InputBoxFunction previousInput_;
};

enum class Act { Tick, Type, Choose };
struct Binding {
    HWND (frmConfig::*control)(int) const;
    int index;
    Act act;
    const char* value;
    bool inConfiguration;
    const char* section;
    const char* key;
    const char* stored;
    const char* shown = nullptr;  // what the reopened control shows, when not value
};

TEST_F(Configure, EveryControlIsSavedToItsKeyAndShownAgain) {
    using F = frmConfig;
    const Binding bindings[] = {
        {&F::chkOption, 0, Act::Tick, "", false, "Option", "AlwaysTop", "1"},
        {&F::chkOption, 1, Act::Tick, "", false, "Option", "AutoSetFile", "1"},
        {&F::chkOption, 2, Act::Tick, "", false, "Option", "AutoOpen", "1"},
        {&F::chkOption, 3, Act::Tick, "", false, "Option", "AutoWatch", "1"},
        {&F::chkOption, 4, Act::Tick, "", false, "Option", "AutoMinimize", "1"},
        {&F::chkOption, 5, Act::Tick, "", false, "Option", "TaskTray", "1"},
        {&F::chkOption, 6, Act::Tick, "", false, "Option", "UseAltPopUp", "1"},
        {&F::chkOption, 7, Act::Tick, "", false, "ResultWindow", "AutoClose", "1"},
        {&F::chkOption, 8, Act::Tick, "", false, "Option", "AutoShutDown", "1"},
        {&F::chkCheck, 0, Act::Tick, "", true, "Option", "UseCUI", "1"},
        {&F::chkCheck, 1, Act::Tick, "", true, "Option", "UseGUI", "1"},
        {&F::chkCheck, 2, Act::Tick, "", true, "Option", "ForceShortName", "1"},
        {&F::chkCheck, 3, Act::Tick, "", true, "Option", "DetectError", "1"},
        {&F::chkCheck, 4, Act::Tick, "", true, "Option", "StepMode", "1"},
        {&F::chkCheck, 5, Act::Tick, "", false, "Option", "UseAssociatedEditor", "1"},
        {&F::chkCheck, 7, Act::Tick, "", true, "Option", "UseAssociated", "1"},
        {&F::cboCombo, 1, Act::Choose, "2", true, "Option", "CUIWindowState", "3"},
        {&F::cboCombo, 2, Act::Type, "C:\\p\\play.exe", true, "Configure", "Player",
         "C:\\p\\play.exe"},
        {&F::cboCombo, 3, Act::Choose, "1", true, "Option", "GUIWindowState", "2"},
        {&F::cboCombo, 4, Act::Type, "C:\\e\\ed.exe", false, "Setting", "Editor", "C:\\e\\ed.exe"},
        {&F::cboCombo, 5, Act::Choose, "2", false, "Option", "EditorWindowState", "3"},
        {&F::txtText, 0, Act::Type, "500", false, "Option", "TimerInterval", "500"},
        {&F::txtText, 1, Act::Type, "32", false, "Option", "IconSize", "32"},
        {&F::txtText, 2, Act::Type, "C:\\m\\mc.exe", true, "Configure", "Console", "C:\\m\\mc.exe"},
        {&F::txtText, 3, Act::Type, "mdx", true, "Configure", "Extension", "mdx"},
        {&F::txtScript, 0, Act::Type, "a\r\nb", true, "Script", "Line", "2", "a\r\nb\r\n"},
        {&F::txtScript, 0, Act::Type, "a\r\nb", true, "Script", "Line2", "b", "a\r\nb\r\n"},
        {&F::txtScript, 1, Act::Type, "mc.exe", true, "Required", "Item1", "mc.exe", "mc.exe\r\n"},
    };
    const std::string name = Configuration("bind", "[Configure]\r\n");
    frmConfig* window = &Open("[Setting]\r\nDefault=" + name + "\r\n");
    for (const auto& b : bindings) {
        const HWND control = (window->*b.control)(b.index);
        switch (b.act) {
        case Act::Tick: Tick(control); break;
        case Act::Type: Type(control, b.value); break;
        case Act::Choose: Choose(control, std::stoi(b.value)); break;
        }
    }
    Click(window->cmdCommand(frmConfig::kOk));
    ASSERT_EQ(ConfigWindow(), nullptr) << "OK closes the window";
    EXPECT_TRUE(boxes.empty());
    for (const auto& b : bindings) {
        SCOPED_TRACE(b.key);
        EXPECT_EQ(Setting(b.inConfiguration ? Cfg(name) : MainFile(), b.section, b.key), b.stored);
    }
    // The main window took over what shows at once.
    EXPECT_EQ(main->WatchInterval(), 500u);
    EXPECT_EQ(main->IconSize(), 32);
    EXPECT_NE(GetWindowLongPtrW(main->Handle(), GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
    EXPECT_TRUE(mdlMain::UseAltPopUp());

    window = &Show(0);
    for (const auto& b : bindings) {
        SCOPED_TRACE(b.key);
        const HWND control = (window->*b.control)(b.index);
        switch (b.act) {
        case Act::Tick: EXPECT_TRUE(IsChecked(control)); break;
        case Act::Type: EXPECT_EQ(WindowText(control), Widen(b.shown ? b.shown : b.value)); break;
        case Act::Choose:
            EXPECT_EQ(SendMessageW(control, CB_GETCURSEL, 0, 0), std::stoi(b.value));
            break;
        }
    }
    mdlMain::SetUseAltPopUp(false);
}

TEST_F(Configure, SelectorNames) {
    const std::string colon = Name("a:b");
    const std::string saved = Name("a_b");
    const struct {
        std::string typed;
        std::string saved;  // empty: refused, nothing written
        std::wstring box;
    } cases[] = {
        {colon, saved, L""},
        {"", "", LoadText(9)},
        {"CON", "", L"\"CON\" cannot be used as a configuration name."},
        {"NUL", "", L"\"NUL\" cannot be used as a configuration name."},
        {std::string(300, 'n'), "",
         L"\"" + std::wstring(300, L'n') + L"\" cannot be used as a configuration name."},
    };
    const std::string settings = "[Setting]\r\nDefault=\r\n[Option]\r\nIconSize=20\r\n";
    frmConfig& window = Open(settings);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed.substr(0, 12));
        boxes.clear();
        const std::string before = Bytes(MainFile());
        Type(window.cboCombo(0), c.typed);
        Click(window.cmdCommand(frmConfig::kApply));
        ASSERT_EQ(ConfigWindow(), &window) << "Apply keeps the window open";
        if (c.saved.empty()) {
            EXPECT_EQ(boxes, std::vector<std::wstring>{c.box});
            EXPECT_EQ(Bytes(MainFile()), before);
        } else {
            EXPECT_TRUE(boxes.empty());
            EXPECT_TRUE(mdlFile::FileExists(Cfg(c.saved)));
            EXPECT_EQ(Setting(MainFile(), "Setting", "Default"), c.saved);
            EXPECT_EQ(WindowText(window.cboCombo(0)), Widen(c.saved));
        }
    }
    EXPECT_FALSE(mdlFile::FileExists(Cfg("")));
}

TEST_F(Configure, CancelAndTheCloseBoxDiscardEveryEdit) {
    const std::string name = Configuration("keep", "[Configure]\r\nConsole=C:\\old.exe\r\n");
    const std::string settings =
        "[Setting]\r\nDefault=" + name + "\r\n[Option]\r\nTimerInterval=300\r\n";
    for (const bool closeBox : {false, true}) {
        SCOPED_TRACE(closeBox ? "close box" : "Cancel");
        frmConfig& window = Open(settings);
        const std::string mainBefore = Bytes(MainFile());
        const std::string configurationBefore = Bytes(Cfg(name));
        Type(window.txtText(0), "900");
        Type(window.txtText(2), "C:\\new.exe");
        Tick(window.chkOption(0));
        Click(window.cmdCommand(frmConfig::kNewFrontend));
        if (closeBox) {
            SendMessageW(window.Handle(), WM_CLOSE, 0, 0);
        } else {
            Click(window.cmdCommand(frmConfig::kCancel));
        }
        EXPECT_EQ(ConfigWindow(), nullptr);
        EXPECT_EQ(Bytes(MainFile()), mainBefore);
        EXPECT_EQ(Bytes(Cfg(name)), configurationBefore);
        EXPECT_EQ(WindowText(Show(0).txtText(0)), L"300");
        ReleaseConfigWindow();
    }
}

TEST_F(Configure, AConfigurationChosenByAFileFilterShowsOnTheNextShowConfig) {
    const std::string first = Configuration("first", "[Configure]\r\nConsole=first.exe\r\n");
    const std::string second = Configuration("second", "[Configure]\r\nConsole=second.exe\r\n");
    frmConfig& window = Open("[Setting]\r\nDefault=" + first +
                             "\r\n[Filter]\r\nItemCount=1\r\n"
                             "Item1=Z\r\nExtension1=.zzb\r\nDefault1=" +
                             second + "\r\n");
    EXPECT_EQ(WindowText(window.txtText(2)), L"first.exe");
    folder.Write("song.zzb", "o4 c");
    main->SetFile(folder / "song.zzb");
    ASSERT_EQ(Setting(MainFile(), "Setting", "Default"), second);
    Show(0);
    EXPECT_EQ(WindowText(window.cboCombo(0)), Widen(second));
    EXPECT_EQ(WindowText(window.txtText(2)), L"second.exe");
}

std::vector<std::wstring> MenuCaptions(HMENU menu) {
    std::vector<std::wstring> captions;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        wchar_t text[300] = {};
        GetMenuStringW(menu, static_cast<UINT>(i), text, 300, MF_BYPOSITION);
        captions.push_back(text);
    }
    return captions;
}
bool InMenu(HMENU menu, const std::string& name) {
    for (const auto& caption : MenuCaptions(menu)) {
        if (caption.ends_with(L" : " + Widen(name))) return true;
    }
    return false;
}

TEST_F(Configure, NewAndDeleteConfigurations) {
    const std::string name = Name("made");
    frmConfig& window = Open("[Setting]\r\nDefault=\r\n");
    inputs = {name};
    Click(window.cmdCommand(frmConfig::kNewConfigure));
    EXPECT_EQ(Bytes(Cfg(name)), "[Configure]\r\n");
    EXPECT_EQ(WindowText(window.cboCombo(0)), Widen(name));
    EXPECT_TRUE(InMenu(main->ScriptMenu(), name));
    Type(window.txtText(2), "C:\\made.exe");
    Click(window.cmdCommand(frmConfig::kApply));
    EXPECT_EQ(Bytes(Cfg(name, ".txt")), "[Configure]\r\n");  // the state before the save
    Click(window.cmdCommand(frmConfig::kDeleteConfigure));
    EXPECT_EQ(boxes, std::vector<std::wstring>{L"Delete OK?"});
    EXPECT_FALSE(mdlFile::FileExists(Cfg(name)));
    EXPECT_TRUE(mdlFile::FileExists(Cfg(name, ".txt")));
    EXPECT_FALSE(InMenu(main->ScriptMenu(), name));
    // Cancelled or empty names make nothing.
    for (const char* answer : {"", "   "}) {
        inputs = {answer};
        Click(window.cmdCommand(frmConfig::kNewConfigure));
    }
    Click(window.cmdCommand(frmConfig::kNewConfigure));
    EXPECT_EQ(boxes.size(), 1u);
}

TEST_F(Configure, LauncherAndFilterRecordsAreSavedInTheirOrder) {
    const std::string name = Configuration("records", "[Configure]\r\n");
    folder.Write("tool.exe", "");
    folder.Write("gone.exe", "");
    CreateDirectoryA((folder / "dir").c_str(), nullptr);
    MakeShortcut(folder / "Good.lnk", folder / "tool.exe", "-a");
    MakeShortcut(folder / "Broken.lnk", folder / "gone.exe", "");
    DeleteFileA((folder / "gone.exe").c_str());
    frmConfig& window = Open("[Setting]\r\nDefault=" + name +
                                 "\r\n[ExternalProgram]\r\nItemCount=1\r\n"
                                 "Item1=Old\r\nCommand1=old.exe\r\nAutoShutDown1=1\r\n[Filter]\r\n"
                                 "ItemCount=1\r\nItem1=Text\r\nExtension1=.txt\r\n",
                             4);
    Click(window.cmdCommand(frmConfig::kNewFrontend));
    EXPECT_EQ(WindowText(window.txtFrontend(frmConfig::kFrontendName)), L"(New)");
    Type(window.txtFrontend(frmConfig::kFrontendName), "Two");
    Type(window.txtFrontend(frmConfig::kFrontendCommand), "C:\\two.exe");
    Type(window.txtFrontend(frmConfig::kFrontendOption), "-x");
    Type(window.txtFrontend(frmConfig::kFrontendFolder), "C:\\w");
    Choose(window.cboCombo(6), 2);
    Tick(window.chkFrontendAutoRun());
    Click(window.cmdCommand(frmConfig::kUpFrontend));
    Click(window.cmdCommand(frmConfig::kNewFrontend));
    Click(window.cmdCommand(frmConfig::kDeleteFrontend));
    SendMessageW(window.List1(1), WM_DROPFILES,
                 reinterpret_cast<WPARAM>(MakeDrop({folder / "tool.exe", folder / "dir",
                                                    folder / "Broken.lnk", folder / "Good.lnk"})),
                 0);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_NE(boxes[0].find(L"Cannot drag and drop this.\r\n" + Widen(folder / "dir")),
              std::wstring::npos);
    EXPECT_NE(boxes[0].find(Widen(folder / "gone.exe") + L", which does not exist."),
              std::wstring::npos);
    EXPECT_EQ(SendMessageW(window.List1(1), LB_GETCOUNT, 0, 0), 4);

    window.SelectPage(frmConfig::kFilterPage);
    Click(window.cmdCommand(frmConfig::kNewFilter));
    Type(window.txtFilter(frmConfig::kFilterName), "Song");
    Type(window.txtFilter(frmConfig::kFilterExtension), ".sng");
    const HWND configurations = window.cboFilterConfiguration();
    Choose(configurations,
           static_cast<int>(SendMessageW(configurations, CB_FINDSTRINGEXACT, 0,
                                         reinterpret_cast<LPARAM>(Widen(name).c_str()))));
    Click(window.cmdCommand(frmConfig::kUpFilter));
    Click(window.cmdCommand(frmConfig::kOk));
    ASSERT_EQ(ConfigWindow(), nullptr);

    const std::string tool = folder / "tool.exe";
    const std::vector<std::vector<std::string>> programs = {
        // Item, Command, Option, StartUpFolder, WindowState, AutoRun, AutoShutDown
        {"Two", "C:\\two.exe", "-x", "C:\\w", "3", "1", "0"},
        {"Old", "old.exe", "", "", "1", "0", "1"},
        {"tool", tool, "", folder.Path(), "1", "0", "0"},
        {"Good", tool, "-a", folder.Path(), "1", "0", "0"},
    };
    EXPECT_EQ(Setting(MainFile(), "ExternalProgram", "ItemCount"), "4");
    const char* fields[] = {"Item",        "Command", "Option",      "StartUpFolder",
                            "WindowState", "AutoRun", "AutoShutDown"};
    for (std::size_t i = 0; i < programs.size(); ++i) {
        for (std::size_t f = 0; f < std::size(fields); ++f) {
            const std::string key = fields[f] + std::to_string(i + 1);
            EXPECT_EQ(Setting(MainFile(), "ExternalProgram", key.c_str()), programs[i][f]) << key;
        }
    }
    EXPECT_EQ(main->Launcher().Count(), 4u);  // the launcher list took them over
    const std::vector<std::pair<const char*, std::string>> filters = {
        {"ItemCount", "2"}, {"Item1", "Song"},      {"Extension1", ".sng"}, {"Default1", name},
        {"Item2", "Text"},  {"Extension2", ".txt"}, {"Default2", ""}};
    for (const auto& [key, value] : filters)
        EXPECT_EQ(Setting(MainFile(), "Filter", key), value) << key;
}

TEST_F(Configure, TheLanguageChangesInEveryWindowAtOnce) {
    frmConfig& window = Open("[Setting]\r\nDefault=\r\n");
    Type(window.cboCombo(0), Name("lang"));
    Click(window.optLanguage(1));
    Click(window.cmdCommand(frmConfig::kApply));
    EXPECT_EQ(Setting(MainFile(), "Setting", "Language"), "Japanese");
    EXPECT_EQ(mdlMain::LanguageOffset(), 1000);
    // Japanese texts stand at their English id + 1000.
    EXPECT_EQ(main->ToolTipText(1), LoadEnglishText(1101));
    EXPECT_EQ(MenuCaptions(main->PreparePopUp())[0], LoadEnglishText(1130));
    EXPECT_EQ(WindowText(window.Handle()), L"Zorvi - " + LoadEnglishText(1102));
    EXPECT_EQ(WindowText(window.cmdCommand(frmConfig::kCancel)), LoadEnglishText(1152));
    Click(window.optLanguage(0));
    Click(window.cmdCommand(frmConfig::kApply));
    EXPECT_EQ(Setting(MainFile(), "Setting", "Language"), "English");
    EXPECT_EQ(main->ToolTipText(1), L"Set target file");
    EXPECT_EQ(WindowText(window.cmdCommand(frmConfig::kCancel)), L"Cancel");
}

TEST_F(Configure, ADoubleClickOnAPageRestoresTheStandardSize) {
    frmConfig& window = Open("");
    RECT rect{};
    GetWindowRect(window.Handle(), &rect);
    MoveWindow(window.Handle(), rect.left, rect.top, 900, 800, TRUE);
    SendMessageW(window.fraConfig(0), WM_LBUTTONDBLCLK, 0, 0);
    GetWindowRect(window.Handle(), &rect);
    const ScreenDpi dpi = GetScreenDpi();
    EXPECT_EQ(rect.right - rect.left, TwipsToPixels(7400, dpi.x));
    EXPECT_EQ(rect.bottom - rect.top, TwipsToPixels(7000, dpi.y));
}

TEST_F(Configure, BadInputIsRefusedAndNothingIsWritten) {
    const std::string name = Configuration("bad", "[Configure]\r\nConsole=C:\\a.exe\r\n");
    std::string script;
    for (int i = 0; i < 10000; ++i) script += "echo\r\n";
    const struct {
        const char* name;
        HWND (frmConfig::*control)(int) const;
        int index;
        std::string typed;
        std::wstring box;
    } cases[] = {
        {"abc", &frmConfig::txtText, 0, "abc",
         L"Timer interval must be a whole number from 10 to 60000."},
        {"zero", &frmConfig::txtText, 0, "0",
         L"Timer interval must be a whole number from 10 to 60000."},
        {"negative", &frmConfig::txtText, 0, "-5",
         L"Timer interval must be a whole number from 10 to 60000."},
        {"huge", &frmConfig::txtText, 0, "99999999999",
         L"Timer interval must be a whole number from 10 to 60000."},
        {"icon", &frmConfig::txtText, 1, "100", L"Icon size must be a whole number from 8 to 64."},
        {"script", &frmConfig::txtScript, 0, script,
         L"BAT script has 10000 lines; at most 4096 lines can be saved."},
    };
    frmConfig& window = Open("[Setting]\r\nDefault=" + name + "\r\n");
    const std::string mainBefore = Bytes(MainFile());
    const std::string configurationBefore = Bytes(Cfg(name));
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        boxes.clear();
        const HWND field = (window.*c.control)(c.index);
        const std::wstring kept = WindowText(field);
        Type(field, c.typed);
        Click(window.cmdCommand(frmConfig::kOk));
        ASSERT_EQ(ConfigWindow(), &window);
        EXPECT_EQ(boxes, std::vector<std::wstring>{c.box});
        EXPECT_EQ(GetFocus(), field);
        EXPECT_EQ(Bytes(MainFile()), mainBefore);
        EXPECT_EQ(Bytes(Cfg(name)), configurationBefore);
        SendMessageW(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(kept.c_str()));
    }

    // A configuration that cannot be written (another program holds it):
    // reported, nothing half-written, the window stays open with the edits.
    boxes.clear();
    Type(window.txtText(2), "C:\\edited.exe");
    Tick(window.chkOption(1));
    const HANDLE held = CreateFileA(Cfg(name).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    Click(window.cmdCommand(frmConfig::kOk));
    CloseHandle(held);
    ASSERT_EQ(ConfigWindow(), &window);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_NE(boxes[0].find(Widen(Cfg(name)) + L" cannot be written."), std::wstring::npos);
    EXPECT_TRUE(boxes[0].ends_with(L":Config-WriteIniFile)")) << boxes[0];
    EXPECT_EQ(Bytes(MainFile()), mainBefore);
    EXPECT_EQ(Bytes(Cfg(name)), configurationBefore);
    EXPECT_EQ(WindowText(window.txtText(2)), L"C:\\edited.exe");
    EXPECT_TRUE(IsChecked(window.chkOption(1)));
}

TEST_F(Configure, FiveHundredLauncherRecordsLoadAndSaveWhole) {
    std::string records = "[ExternalProgram]\r\nItemCount=500\r\n";
    for (int i = 1; i <= 500; ++i) {
        const std::string n = std::to_string(i);
        records += "Item" + n + "=P" + n + "\r\nCommand" + n + "=C:\\p" + n + ".exe\r\nOption" + n +
                   "=\r\nStartUpFolder" + n + "=\r\nAutoRun" + n + "=0\r\nWindowState" + n +
                   "=1\r\nAutoShutDown" + n + "=0\r\n";
    }
    const std::string name = Configuration("many", "[Configure]\r\n");
    frmConfig& window = Open("[Setting]\r\nDefault=" + name + "\r\n" + records, 4);
    EXPECT_EQ(SendMessageW(window.List1(1), LB_GETCOUNT, 0, 0), 500);
    Choose(window.List1(1), 499, true);
    Click(window.cmdCommand(frmConfig::kUpFrontend));
    Click(window.cmdCommand(frmConfig::kOk));
    ASSERT_EQ(ConfigWindow(), nullptr);
    EXPECT_EQ(Setting(MainFile(), "ExternalProgram", "ItemCount"), "500");
    EXPECT_EQ(Setting(MainFile(), "ExternalProgram", "Item499"), "P500");
    EXPECT_EQ(Setting(MainFile(), "ExternalProgram", "Command500"), "C:\\p499.exe");
    EXPECT_EQ(Setting(MainFile(), "ExternalProgram", "Item1"), "P1");
}

}  // namespace
}  // namespace zorvi
