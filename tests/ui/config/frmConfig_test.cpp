// The configuration window in this process, beside a main window, against
// the settings of a fresh folder: driven through its controls as a user
// would (texts typed, boxes ticked, buttons clicked, files dropped) and read
// back from the files and the main window.
#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <optional>

#include "core/strings_win.h"
#include "core/wide_win.h"
#include "support/wait.h"
#include "ui/config/frmConfig.h"
#include "ui/dialogs/InputBox.h"
#include "ui/main/frmZorvi.h"
#include "ui/main/mdlView.h"
#include "ui/main/placement.h"
#include "ui/window_helpers.h"

namespace zorvi {
namespace {

using testing::Bytes;
using testing::CfgPath;
using testing::WindowText;

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

// A main window and its configuration window on a session's settings; the
// input box answers from a queue.
class Configure : public ::testing::Test {
protected:
    Configure() {
        previousInput_ = SetInputBoxFunction([this](HWND, const std::wstring&) {
            std::optional<std::wstring> answer;
            if (!inputs.empty()) answer = Widen(inputs.front()), inputs.pop_front();
            return answer;
        });
    }
    ~Configure() override {
        ReleaseConfigWindow();
        main.reset();
        SetInputBoxFunction(std::move(previousInput_));
    }

    frmConfig& Open(const std::string& settings, int page = 0) {
        s.folder.Write("Zorvi.ini", settings);
        main = std::make_unique<frmZorvi>();
        if (!main->Create(nullptr)) throw std::runtime_error("no main window");
        return Show(page);
    }
    frmConfig& Show(int page) {
        ShowConfigWindow(main.get(), page);
        if (ConfigWindow() == nullptr) throw std::runtime_error("no configuration window");
        return *ConfigWindow();
    }

    testing::Session s;
    std::unique_ptr<frmZorvi> main;
    std::vector<std::wstring>& boxes = s.boxes;
    std::deque<std::string> inputs;

private:
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

TEST_F(Configure, EveryControlIsSavedToItsKeyAndShownAgainInEitherLanguage) {
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
    const std::string name = s.Configuration("bind", "[Configure]\r\n");
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
    // The main window took over what shows at once.
    EXPECT_EQ(main->WatchInterval(), 500u);
    EXPECT_EQ(main->IconSize(), 32);
    EXPECT_NE(GetWindowLongPtrW(main->Handle(), GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
    EXPECT_TRUE(mdlMain::UseAltPopUp());

    window = &Show(0);
    for (const auto& b : bindings) {
        SCOPED_TRACE(b.key);
        EXPECT_EQ(s.Setting(b.section, b.key, b.inConfiguration ? CfgPath(name) : ""), b.stored);
        const HWND control = (window->*b.control)(b.index);
        switch (b.act) {
        case Act::Tick: EXPECT_TRUE(IsChecked(control)); break;
        case Act::Type: EXPECT_EQ(WindowText(control), Widen(b.shown ? b.shown : b.value)); break;
        case Act::Choose:
            EXPECT_EQ(SendMessageW(control, CB_GETCURSEL, 0, 0), std::stoi(b.value));
            break;
        }
    }

    // The language changes in every window at once.
    Click(window->optLanguage(1));
    Click(window->cmdCommand(frmConfig::kApply));
    EXPECT_EQ(s.Setting("Setting", "Language"), "Japanese");
    EXPECT_EQ(mdlMain::LanguageOffset(), 1000);
    // Japanese texts stand at their English id + 1000.
    EXPECT_EQ(main->ToolTipText(1), LoadEnglishText(1101));
    EXPECT_EQ(testing::MenuTexts(main->PreparePopUp())[0], LoadEnglishText(1130));
    EXPECT_EQ(WindowText(window->Handle()), L"Zorvi - " + LoadEnglishText(1102));
    EXPECT_EQ(WindowText(window->cmdCommand(frmConfig::kCancel)), LoadEnglishText(1152));
    Click(window->optLanguage(0));
    Click(window->cmdCommand(frmConfig::kApply));
    EXPECT_EQ(s.Setting("Setting", "Language"), "English");
    EXPECT_EQ(main->ToolTipText(1), L"Set target file");
    EXPECT_EQ(WindowText(window->cmdCommand(frmConfig::kCancel)), L"Cancel");
    mdlMain::SetUseAltPopUp(false);
}

TEST_F(Configure, ConfigurationsAreNamedChosenByAFilterMadeAndDeleted) {
    const std::string first = s.Configuration("first", "[Configure]\r\nConsole=first.exe\r\n");
    const std::string second = s.Configuration("second", "[Configure]\r\nConsole=second.exe\r\n");
    const std::string saved = s.Name("a_b"), name = s.Name("made");
    const struct {
        std::string typed;
        std::string saved;  // empty: refused, nothing written
        std::wstring box;
    } cases[] = {
        {s.Name("a:b"), saved, L""},
        {"", "", LoadText(9)},
        {"CON", "", L"\"CON\" cannot be used as a configuration name."},
    };
    frmConfig& window = Open("[Setting]\r\nDefault=" + first +
                             "\r\n[Filter]\r\nItemCount=1\r\nItem1=Z\r\nExtension1=.zzb\r\n"
                             "Default1=" + second + "\r\n");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed);
        boxes.clear();
        const std::string before = Bytes(s.MainFile());
        Type(window.cboCombo(0), c.typed);
        Click(window.cmdCommand(frmConfig::kApply));
        ASSERT_EQ(ConfigWindow(), &window) << "Apply keeps the window open";
        if (c.saved.empty()) {
            EXPECT_EQ(boxes, std::vector<std::wstring>{c.box});
            EXPECT_EQ(Bytes(s.MainFile()), before);
        } else {
            EXPECT_TRUE(boxes.empty());
            EXPECT_TRUE(mdlFile::FileExists(CfgPath(c.saved)));
            EXPECT_EQ(s.Setting("Setting", "Default"), c.saved);
            EXPECT_EQ(WindowText(window.cboCombo(0)), Widen(c.saved));
        }
    }
    EXPECT_FALSE(mdlFile::FileExists(CfgPath("")));

    // A configuration chosen by a file filter shows on the next ShowConfig.
    EXPECT_EQ(WindowText(window.txtText(2)), L"first.exe");
    s.folder.Write("song.zzb", "o4 c");
    main->SetFile(s.folder / "song.zzb");
    ASSERT_EQ(s.Setting("Setting", "Default"), second);
    Show(0);
    EXPECT_EQ(WindowText(window.cboCombo(0)), Widen(second));
    EXPECT_EQ(WindowText(window.txtText(2)), L"second.exe");
    // While no configuration is named, the example one is in use, and shown.
    std::ofstream(CfgPath("Example"), std::ios::binary) << "[Configure]\r\nConsole=ex.exe\r\n";
    WritePrivateProfileStringA("Setting", "Default", "", s.MainFile().c_str());
    Show(0);
    DeleteFileA(CfgPath("Example").c_str());
    EXPECT_EQ(WindowText(window.cboCombo(0)), L"Example");
    EXPECT_EQ(WindowText(window.txtText(2)), L"ex.exe");

    inputs = {name};
    Click(window.cmdCommand(frmConfig::kNewConfigure));
    EXPECT_EQ(Bytes(CfgPath(name)), "[Configure]\r\n");
    EXPECT_EQ(WindowText(window.cboCombo(0)), Widen(name));
    EXPECT_TRUE(testing::FindEntry(main->ScriptMenu(), L" : " + Widen(name)) >= 0);
    Type(window.txtText(2), "C:\\made.exe");
    Click(window.cmdCommand(frmConfig::kApply));
    EXPECT_EQ(Bytes(CfgPath(name, ".txt")), "[Configure]\r\n");  // the state before the save
    boxes.clear();
    Click(window.cmdCommand(frmConfig::kDeleteConfigure));
    EXPECT_EQ(boxes, std::vector<std::wstring>{L"Delete OK?"});
    EXPECT_FALSE(mdlFile::FileExists(CfgPath(name)));
    EXPECT_TRUE(mdlFile::FileExists(CfgPath(name, ".txt")));
    EXPECT_FALSE(testing::FindEntry(main->ScriptMenu(), L" : " + Widen(name)) >= 0);
    // Cancelled or empty names make nothing.
    for (const char* answer : {"", "   "}) {
        inputs = {answer};
        Click(window.cmdCommand(frmConfig::kNewConfigure));
    }
    Click(window.cmdCommand(frmConfig::kNewConfigure));
    EXPECT_EQ(boxes.size(), 1u);
}

TEST_F(Configure, LauncherAndFilterRecordsAreSavedInTheirOrder) {
    const std::string name = s.Configuration("records", "[Configure]\r\n");
    const testing::TempFolder& folder = s.folder;
    folder.Write("tool.exe", "");
    folder.Write("gone.exe", "");
    CreateDirectoryA((folder / "dir").c_str(), nullptr);
    MakeShortcut(folder / "Good.lnk", folder / "tool.exe", "-a");
    MakeShortcut(folder / "Broken.lnk", folder / "gone.exe", "");
    DeleteFileA((folder / "gone.exe").c_str());
    // Fifty records, loaded and saved whole.
    std::string records = "[ExternalProgram]\r\nItemCount=50\r\nItem1=Old\r\nCommand1=old.exe\r\n"
                          "AutoShutDown1=1\r\n";
    for (int i = 2; i <= 50; ++i) {
        const std::string n = std::to_string(i);
        records += "Item" + n + "=P" + n + "\r\nCommand" + n + "=C:\\p" + n + ".exe\r\n";
    }
    frmConfig& window = Open("[Setting]\r\nDefault=" + name + "\r\n" + records +
                                 "[Filter]\r\nItemCount=1\r\nItem1=Text\r\nExtension1=.txt\r\n",
                             4);
    Click(window.cmdCommand(frmConfig::kNewFrontend));
    EXPECT_EQ(WindowText(window.txtFrontend(frmConfig::kFrontendName)), L"(New)");
    Type(window.txtFrontend(frmConfig::kFrontendName), "Two");
    Type(window.txtFrontend(frmConfig::kFrontendCommand), "C:\\two.exe");
    Type(window.txtFrontend(frmConfig::kFrontendOption), "-x");
    Type(window.txtFrontend(frmConfig::kFrontendFolder), "C:\\w");
    Choose(window.cboCombo(6), 2);
    Tick(window.chkFrontendAutoRun());
    Choose(window.List1(1), 1, true);
    EXPECT_EQ(WindowText(window.txtFrontend(frmConfig::kFrontendName)), L"P2");
    Click(window.cmdCommand(frmConfig::kUpFrontend));
    Click(window.cmdCommand(frmConfig::kNewFrontend));
    Click(window.cmdCommand(frmConfig::kDeleteFrontend));
    testing::Drop(window.List1(1), {folder / "tool.exe", folder / "dir", folder / "Broken.lnk",
                                    folder / "Good.lnk"});
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_NE(boxes[0].find(L"Cannot drag and drop this.\r\n" + Widen(folder / "dir")),
              std::wstring::npos);
    EXPECT_NE(boxes[0].find(Widen(folder / "gone.exe") + L", which does not exist."),
              std::wstring::npos);
    EXPECT_EQ(SendMessageW(window.List1(1), LB_GETCOUNT, 0, 0), 53);

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
    const std::pair<int, std::string> programs[] = {
        // Item, Command, Option, StartUpFolder, WindowState, AutoRun, AutoShutDown
        {1, "P2|C:\\p2.exe|||1|0|0|"}, {2, "Old|old.exe|||1|0|1|"},
        {50, "P50|C:\\p50.exe|||1|0|0|"}, {51, "Two|C:\\two.exe|-x|C:\\w|3|1|0|"},
        {52, "tool|" + tool + "||" + folder.Path() + "|1|0|0|"},
        {53, "Good|" + tool + "|-a|" + folder.Path() + "|1|0|0|"}};
    EXPECT_EQ(s.Setting("ExternalProgram", "ItemCount"), "53");
    for (const auto& [number, expected] : programs) {
        std::string saved;
        for (const char* field : {"Item", "Command", "Option", "StartUpFolder", "WindowState",
                                  "AutoRun", "AutoShutDown"}) {
            saved += s.Setting("ExternalProgram", field + std::to_string(number)) + "|";
        }
        EXPECT_EQ(saved, expected);
    }
    EXPECT_EQ(main->Launcher().Count(), 53u);  // the launcher list took them over
    std::string filters;
    for (const char* key : {"ItemCount", "Item1", "Extension1", "Default1", "Item2", "Extension2",
                            "Default2"}) {
        filters += s.Setting("Filter", key) + "|";
    }
    EXPECT_EQ(filters, "2|Song|.sng|" + name + "|Text|.txt||");
}

// Bad input, a configuration that cannot be written, Cancel and the close box:
// the files stay as they were.
TEST_F(Configure, BadInputCancelAndTheCloseBoxWriteNothing) {
    const std::string name = s.Configuration("bad", "[Configure]\r\nConsole=C:\\a.exe\r\n");
    std::string script;
    for (int i = 0; i < 4097; ++i) script += "echo\r\n";
    const struct {
        HWND (frmConfig::*control)(int) const;
        int index;
        std::string typed;
        std::wstring box;
    } cases[] = {
        {&frmConfig::txtText, 0, "abc", L"Timer interval must be a whole number from 10 to 60000."},
        {&frmConfig::txtText, 1, "100", L"Icon size must be a whole number from 8 to 64."},
        {&frmConfig::txtScript, 0, script,
         L"BAT script has 4097 lines; at most 4096 lines can be saved."},
    };
    frmConfig& window =
        Open("[Setting]\r\nDefault=" + name + "\r\n[Option]\r\nTimerInterval=300\r\n");
    const std::string mainBefore = Bytes(s.MainFile()), configurationBefore = Bytes(CfgPath(name));
    const auto nothingWritten = [&] {
        EXPECT_EQ(Bytes(s.MainFile()), mainBefore);
        EXPECT_EQ(Bytes(CfgPath(name)), configurationBefore);
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.box);
        boxes.clear();
        const HWND field = (window.*c.control)(c.index);
        const std::wstring kept = WindowText(field);
        Type(field, c.typed);
        Click(window.cmdCommand(frmConfig::kOk));
        ASSERT_EQ(ConfigWindow(), &window);
        EXPECT_EQ(boxes, std::vector<std::wstring>{c.box});
        EXPECT_EQ(GetFocus(), field);
        nothingWritten();
        SendMessageW(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(kept.c_str()));
    }

    // Held by another program: reported, nothing half-written, the edits stay.
    boxes.clear();
    Type(window.txtText(2), "C:\\edited.exe");
    Tick(window.chkOption(1));
    const HANDLE held = CreateFileA(CfgPath(name).c_str(), GENERIC_READ, 0, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    Click(window.cmdCommand(frmConfig::kOk));
    CloseHandle(held);
    ASSERT_EQ(ConfigWindow(), &window);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_NE(boxes[0].find(Widen(CfgPath(name)) + L" cannot be written."), std::wstring::npos);
    EXPECT_TRUE(boxes[0].ends_with(L":Config-WriteIniFile)")) << boxes[0];
    nothingWritten();
    EXPECT_EQ(WindowText(window.txtText(2)), L"C:\\edited.exe");
    EXPECT_TRUE(IsChecked(window.chkOption(1)));

    for (const bool closeBox : {false, true}) {
        SCOPED_TRACE(closeBox ? "close box" : "Cancel");
        frmConfig& shown = closeBox ? Show(0) : window;
        Type(shown.txtText(0), "900");
        Type(shown.txtText(2), "C:\\new.exe");
        Tick(shown.chkOption(0));
        Click(shown.cmdCommand(frmConfig::kNewFrontend));
        if (closeBox) {
            SendMessageW(shown.Handle(), WM_CLOSE, 0, 0);
        } else {
            Click(shown.cmdCommand(frmConfig::kCancel));
        }
        EXPECT_EQ(ConfigWindow(), nullptr);
        nothingWritten();
    }
    // A double-click on a page gives the standard size back.
    const HWND shown = Show(0).Handle();
    EXPECT_EQ(WindowText(ConfigWindow()->txtText(0)) + WindowText(ConfigWindow()->txtText(2)),
              L"300C:\\a.exe");
    RECT rect{};
    GetWindowRect(shown, &rect);
    MoveWindow(shown, rect.left, rect.top, 900, 800, TRUE);
    SendMessageW(ConfigWindow()->fraConfig(0), WM_LBUTTONDBLCLK, 0, 0);
    GetWindowRect(shown, &rect);
    const ScreenDpi dpi = GetScreenDpi();
    EXPECT_EQ(rect.right - rect.left, TwipsToPixels(7400, dpi.x));
    EXPECT_EQ(rect.bottom - rect.top, TwipsToPixels(7000, dpi.y));
}

}  // namespace
}  // namespace zorvi
