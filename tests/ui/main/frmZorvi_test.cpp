// The main window in this process, against the settings of a fresh folder:
// what it shows (caption, buttons, menus, panels, layouts, place, toolbar
// images) and which command each key, click, drop and menu entry reaches;
// its configuration and player menus and launcher list, read back from the
// settings files and the launch record; and watching through folder changes.
// The tests send the watch timer's ticks; the compile command is a recorder.
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <cstdint>
#include <filesystem>
#include <map>

#include "core/version.h"
#include "core/wide_win.h"
#include "files/path_text.h"
#include "res/resource.h"
#include "run/clsExecute.h"
#include "settings/ini_win.h"
#include "support/wait.h"
#include "ui/main/frmZorvi.h"
#include "ui/main/layout.h"
#include "ui/main/main_parts.h"
#include "ui/main/mdlView.h"
#include "ui/result/frmResult.h"
#include "ui/window_helpers.h"

namespace zorvi {
namespace {

using Z = frmZorvi;
using testing::FindEntry;
using testing::SendKey;
using testing::TempFolder;
using testing::Visible;

// One main window, started with the file given. The compile notes whether
// the watch timer ran meanwhile, and keeps the busy flag as the real one does.
struct Zorvi : testing::Session {
    explicit Zorvi(const std::string& settings = {}, const std::string& file = {})
        : Session(settings) {
        EXPECT_TRUE(window.Create(nullptr));
        window.SetCompileCommand([this](CompileHost& host) {
            host.Compiling() = true;
            compiles += window.WatchTimerRunning() ? "1" : "0";
            if (duringCompile) duringCompile();
            host.Compiling() = false;
        });
        window.Start(file);
    }

    HWND H() const { return window.Handle(); }
    std::string File(const std::string& name) const {  // made when missing
        if (!mdlFile::FileExists(folder / name)) folder.Write(name, "o4 c");
        return folder / name;
    }
    LRESULT Ask(UINT query, int button) const {
        return SendMessageW(window.Toolbar(), query, Z::CommandOf(button), 0);
    }
    void Tick() { SendMessageW(H(), WM_TIMER, 1, 0); }  // tmrTimer1's id

    std::string compiles;  // per compile: 1 when the watch timer ran meanwhile
    std::function<void()> duringCompile;
    frmZorvi window;
};

// One image as the toolbar draws it, over black.
std::vector<std::uint32_t> Drawn(HIMAGELIST list, int image, int side) {
    BITMAPINFO format{{sizeof(BITMAPINFOHEADER), side, -side, 1, 32, BI_RGB, 0, 0, 0, 0, 0}, {}};
    void* bits = nullptr;
    const UniqueBitmap canvas(
        CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &bits, nullptr, 0));
    const HDC dc = CreateCompatibleDC(nullptr);
    const HGDIOBJ previous = SelectObject(dc, canvas.get());
    ImageList_Draw(list, image, dc, 0, 0, ILD_NORMAL);
    SelectObject(dc, previous);
    DeleteDC(dc);
    GdiFlush();
    const auto* pixels = static_cast<const std::uint32_t*>(bits);
    return {pixels, pixels + side * side};
}

TEST(MainWindow, ToolbarImagesDrawAsTheIconsAddedOneByOne) {
    Zorvi z;
    frmZorvi& window = z.window;
    for (const int size : {16, 24, 1, 20, 33, 64}) {
        window.ViewChange_IconSize(size);
        const auto list =
            reinterpret_cast<HIMAGELIST>(SendMessageW(window.Toolbar(), TB_GETIMAGELIST, 0, 0));
        int side = 0;
        ImageList_GetIconSize(list, &side, &side);
        const UniqueImageList reference(
            ImageList_Create(side, side, ILC_COLOR32 | ILC_MASK, main_parts::kIconCount, 0));
        for (int image = 0; image < main_parts::kIconCount; ++image) {
            const UniqueIcon icon(static_cast<HICON>(LoadImageW(GetModuleHandleW(nullptr),
                MAKEINTRESOURCEW(IDI_APP + image), IMAGE_ICON, side, side, LR_DEFAULTCOLOR)));
            ImageList_AddIcon(reference.get(), icon.get());
            EXPECT_TRUE(Drawn(list, image, side) == Drawn(reference.get(), image, side))
                << "size " << size << ", image " << image;
        }
    }
}

std::string Twips(int pixels) { return std::to_string(PixelsToTwips(pixels, GetScreenDpi().x)); }

// What the window shows, as named facts; a step compares those it names.
std::map<std::string, std::string> Facts(Zorvi& z) {
    Z& w = z.window;
    std::map<std::string, std::string> facts;
    std::string caption = Narrow(testing::WindowText(z.H()));
    facts["caption"] = caption.substr(0, caption.find(" v" + VersionText(ThisVersion())));
    // The target within the test's folder, else its name.
    const std::string& target = mdlMain::TargetFile();
    const bool inside = target.starts_with(z.folder.Path() + "\\");
    facts["target"] =
        inside ? target.substr(z.folder.Path().size() + 1) : mdlFile::GetFileName(target);
    for (int button = Z::kSetFile; button <= Z::kLog; ++button) {
        facts["buttons"] += z.Ask(TB_ISBUTTONENABLED, button) ? '1' : '0';
    }
    for (const int item : {2, 3, 5, 7, 8, 9}) facts["menu"] += w.MenuEntryEnabled(item) ? '1' : '0';
    // The watch state shows on the timer, the button, its image and its tip alike.
    const bool on = w.Watching();
    const bool alike = w.WatchTimerRunning() == on && z.Ask(TB_GETBITMAP, Z::kOnOff) == 4 - on &&
                       (z.Ask(TB_ISBUTTONCHECKED, Z::kOnOff) != 0) == on &&
                       w.ToolTipText(Z::kOnOff) == (on ? L"Watch mode=ON" : L"Watch mode=OFF");
    facts["watch"] = (alike ? "" : "half ") + std::string(on ? "on, " : "off, ") +
                     Narrow(w.WatchMenuCaption());
    facts["compiles"] = z.compiles;
    facts["boxes"] = std::to_string(z.boxes.size());
    for (int slot = 0; slot < kHistorySize; ++slot) {
        const std::string stored = z.Setting("History", "His0" + std::to_string(slot));
        const std::string& entry = w.History()[static_cast<std::size_t>(slot)];
        if (!entry.empty()) facts["history"] += mdlFile::GetFileName(entry) + ",";
        if (stored != entry) facts["history"] += "(stored: " + stored + ")";
    }
    wchar_t first[300] = {};
    GetMenuStringW(w.HistoryMenu(), 0, first, 300, MF_BYPOSITION);
    facts["drop-down"] = std::to_string(GetMenuItemCount(w.HistoryMenu())) + ", " + Narrow(first);
    facts["default"] = z.Setting("Setting", "Default");
    facts["panels"] = Narrow(w.StatusPanelText(1) + L"|" + w.StatusPanelText(2) + L"|" +
                             w.StatusPanelText(3)) + (w.PlayerPanelEnabled() ? "" : " grey");
    RECT list{}, status{}, rect{};
    const int member = Visible(w.Combo1(1)) ? 1 : 0;
    GetWindowRect(w.Combo1(member), &list);
    GetWindowRect(w.StatusBar(), &status);
    facts["layout"] = std::to_string(w.Mode()) + (Visible(w.Toolbar()) ? " toolbar" : "") +
                      " list" + std::to_string(member) +
                      (Visible(w.Combo1(1 - member)) ? "+" : "") +
                      (list.bottom > status.top ? " overlap " : " ") +
                      Narrow(testing::WindowText(w.Combo1(member)));
    GetWindowRect(z.H(), &rect);
    facts["place"] = Twips(rect.left) + " " + Twips(rect.top) + " " +
                     Twips(rect.right - rect.left) + " " +
                     std::to_string(rect.bottom - rect.top) + "px" +
                     (MonitorFromRect(&rect, MONITOR_DEFAULTTONULL) ? "" : " off the screen");
    const bool onTop = GetWindowLongPtrW(z.H(), GWL_EXSTYLE) & WS_EX_TOPMOST;
    const char* shown = !Visible(z.H()) ? "no" : IsIconic(z.H()) ? "minimised" : "normal";
    facts["shown"] = shown + std::string(onTop ? " on top" : "") +
                     (w.InTaskTray() ? " in the tray" : "");
    // The popup menu as it opens: its entries, "Show" in the tray, "Recent Used" with a history.
    const HMENU popup = w.PreparePopUp();
    const auto texts = testing::MenuTexts(popup);
    const int recent = testing::FindEntry(popup, L"&Recent Used");
    const UINT recentState = GetMenuState(popup, static_cast<UINT>(recent), MF_BYPOSITION);
    facts["popup"] = std::to_string(texts.size()) + " " +
                     Narrow(texts.front() + L".." + texts.back()) +
                     (testing::FindEntry(popup, L"Show") >= 0 ? " Show" : "") +
                     (recentState & MF_GRAYED ? "" : " recent");
    int icon = 0, height = 0;
    ImageList_GetIconSize(reinterpret_cast<HIMAGELIST>(SendMessageW(w.Toolbar(), TB_GETIMAGELIST,
                                                                    0, 0)), &icon, &height);
    facts["icons"] = std::to_string(icon) + "px " + std::to_string(w.WatchInterval()) + "ms";
    return facts;
}

// Compares the facts named in `expected` ("name=value; ...") with the window's.
void ExpectFacts(Zorvi& z, const std::string& expected) {
    const auto facts = Facts(z);
    std::string actual, wanted;
    for (std::size_t at = 0; at < expected.size(); at += 2) {
        const std::size_t end = std::min(expected.find("; ", at), expected.size());
        const std::string fact = expected.substr(at, end - at);
        const auto found = facts.find(fact.substr(0, fact.find('=')));
        actual += (found == facts.end() ? "no " + fact : found->first + "=" + found->second) + "; ";
        wanted += fact + "; ";
        at = end;
    }
    EXPECT_EQ(actual, wanted);
}

TEST(MainWindow, StepsOfOneSession) {
    // A configuration where the program looks for them, chosen by the filter row of .mml.
    const std::string configuration = mdlFile::GetAppFolder() + "cfg\\zorvi-test.ini";
    CreateDirectoryA((mdlFile::GetAppFolder() + "cfg").c_str(), nullptr);
    std::ofstream(configuration, std::ios::binary)
        << "[Configure]\r\nPlayer=C:\\gone\\play.exe\r\n[Option]\r\nUseGUI=1\r\n"
           "[Required]\r\nItemCount=1\r\nItem1=gone.dat\r\n";
    Zorvi z("[Setting]\r\nDefault=before\r\n[Filter]\r\nItemCount=1\r\nItem1=MML\r\n"
            "Extension1=.mml;.mus\r\nDefault1=zorvi-test\r\n");
    const std::string notes = z.File("notes.txt"), song = z.File("my song.mml");
    CreateDirectoryA((z.folder / "sub").c_str(), nullptr);
    const std::string a = z.File("a.mml"), fresh = z.folder / "sub\\fresh.mml";
    COMBOBOXINFO list{};
    list.cbSize = sizeof list;
    GetComboBoxInfo(z.window.Combo1(0), &list);
    RECT button{}, bar{};
    SendMessageW(z.window.Toolbar(), TB_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&button));
    GetClientRect(z.window.Toolbar(), &bar);
    const std::string place = Facts(z)["place"];  // Ctrl+Right moves it 512 twips
    const std::string moved = "place=" + Twips(TwipsToPixels(512, GetScreenDpi().x)) + " 0 4410 " +
                              place.substr(place.rfind(' ') + 1);
    const auto command = [&z](int id) {
        return [&z, id] { SendMessageW(z.H(), WM_COMMAND, id, 0); };
    };
    const auto key = [](HWND to, int code, std::vector<int> held = {}) {
        return [=] { SendKey(to, code, held); };
    };
    const auto click = [](HWND to, LONG x, LONG y) {
        return [=] { SendMessageW(to, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(x, y)); };
    };
    bool closed = false;
    const struct {
        const char* name;
        std::function<void()> act;
        std::string facts;
    } steps[] = {
        {"no target: watch and log off", [] {},
         "caption=Zorvi; buttons=110110; watch=off, (No focus) [OFF]; panels=before|-|NoInfo.; "
         "popup=16 &About..E&xit"},
        {"a file no filter row takes is confirmed first; Cancel keeps none",
         [&] { z.answer = IDCANCEL, z.window.SetFile(notes); }, "target=; boxes=1"},
        {"a filter row's configuration is switched to, without asking",
         [&] { z.window.SetFile(a); },
         "caption=a.mml - Zorvi; boxes=1; buttons=111110; default=zorvi-test; "
         "panels=zorvi-test|play.exe|NG grey"},
        {"the history keeps the long form, newest first",
         [&] { z.window.SetFile(mdlFile::GetShortPath(song)); },
         "history=my song.mml,a.mml,; drop-down=4, &0 : " + mdlFile::ShortenPathForDisplay(song)},
        {"history entry 1 from a menu", command(Z::kHistoryCommand + 1), "target=a.mml"},
        {"a log beside the target turns the log view on",
         [&] { z.File("a.log"), z.window.ViewUpdate(); }, "buttons=111111; menu=111111"},
        {"the drop-down of button 1",
         [&] {
             NMTOOLBARW note{};
             note.hdr = {z.window.Toolbar(), 0, TBN_DROPDOWN};
             note.iItem = Z::CommandOf(Z::kSetFile);
             const auto open = [&] {
                 SendMessageW(z.H(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&note));
             };
             EXPECT_TRUE(testing::AnswerModal(L"#32768", open, [](HWND menu) {
                 for (const WPARAM k : {VK_DOWN, VK_DOWN, VK_RETURN}) {
                     PostMessageW(menu, WM_KEYDOWN, k, 0);
                 }
             }));
         },
         "target=my song.mml"},
        {"a history entry that is no file is passed over",
         [&] { DeleteFileA(a.c_str()), command(Z::kHistoryCommand + 1)(); },
         "target=my song.mml; boxes=1"},
        {"of dropped files the first", [&] { testing::Drop(z.H(), {z.File("sub\\b.mml"), song}); },
         "target=sub\\b.mml"},
        {"F2 asks in the newest entry's folder; a new name becomes an empty target",
         [&] {
             EXPECT_TRUE(testing::AnswerModal(L"#32770", key(z.H(), VK_F2),
                                              testing::TypeFileName("fresh.mml")));
             EXPECT_TRUE(mdlFile::FileExists(fresh) && z.folder.Read("sub\\fresh.mml").empty());
         },
         "target=sub\\fresh.mml; caption=fresh.mml - Zorvi"},
        {"History clear keeps the target alone", command(Z::kHistoryClearCommand),
         "history=fresh.mml,; drop-down=3, &0 : " + mdlFile::ShortenPathForDisplay(fresh)},
        // Keys reach the window before its controls, one of each kind.
        {"F5 in the launcher list compiles", key(list.hwndItem, VK_F5), "compiles=0"},
        {"Shift+F5 does not", key(z.H(), VK_F5, {VK_SHIFT}), "compiles=0"},
        {"F7 shows the log",
         [&] {
             SendKey(z.window.Toolbar(), VK_F7);
             EXPECT_TRUE(Visible(ResultWindow().Handle()));
             ShowWindow(ResultWindow().Handle(), SW_HIDE);
         },
         "compiles=0"},
        {"Ctrl+Right moves", key(z.H(), VK_RIGHT, {VK_CONTROL}), moved},
        // Watch mode.
        {"F3 watches", key(z.window.Toolbar(), VK_F3), "watch=on, fresh.mml [ON]"},
        // Minimised without it (a start row), the window stays on the task bar.
        {"minimised with TaskTray: into the tray, whose tip follows target and watch",
         [&] {
             WritePrivateProfileStringA("Option", "TaskTray", "1", z.MainFile().c_str());
             ShowWindow(z.H(), SW_MINIMIZE);
             EXPECT_EQ(z.window.TrayTip(),
                       L"Zorvi v" + Widen(VersionText(ThisVersion())) + L" [ON]\r\nfresh.mml");
         },
         "shown=no in the tray; popup=17 &About..E&xit Show recent"},
        {"a double-click on the icon brings the window back",
         [&] { SendMessageW(z.H(), Z::kTrayMessage, 1, WM_LBUTTONDBLCLK); },
         "shown=normal; popup=16 &About..E&xit recent"},
        {"a tick without a save compiles nothing", [&] { z.Tick(); }, "compiles=0"},
        {"a tick after a save compiles, the timer off; a save meanwhile is the next tick's",
         [&] {
             testing::Touch(fresh), z.duringCompile = [&] { testing::Touch(fresh); }, z.Tick();
             z.duringCompile = nullptr, z.Tick(), z.Tick();
         },
         "compiles=000; watch=on, fresh.mml [ON]"},
        {"a tick during a compile of the button does nothing, and closing waits",
         [&] {
             z.duringCompile = [&] {
                 testing::Touch(fresh), z.Tick(), SendMessageW(z.H(), WM_CLOSE, 0, 0);
                 closed = z.H() == nullptr;
             };
             command(Z::CommandOf(Z::kCompile))();
             z.duringCompile = nullptr, z.Tick();
             EXPECT_FALSE(closed);
         },
         "compiles=00010"},
        {"off", [&] { z.window.WatchToggle(); }, "watch=off, fresh.mml [OFF]"},
        {"turned on, the time is read anew",
         [&] { testing::Touch(fresh), z.window.WatchToggle(), z.Tick(); },
         "compiles=00010; watch=on, fresh.mml [ON]"},
        {"another target set during a tick's compile is watched on",
         [&] {
             testing::Touch(fresh), z.duringCompile = [&] { z.window.SetFile(song); }, z.Tick();
         },
         "compiles=000100; watch=on, my song.mml [ON]; target=my song.mml"},
        {"the target gone: let go of once it stays away, two ticks and 500 ms on",
         [&] {
             z.duringCompile = nullptr;
             DeleteFileA(song.c_str());
             testing::WaitUntil([&] { return z.Tick(), mdlMain::TargetFile().empty(); });
         },
         "watch=off, (No focus) [OFF]; target=; caption=Zorvi; buttons=110110"},
        // Layouts: double-clicks and Ctrl+F2..F12 step them; the list's text follows.
        {"a letter in the launcher list stays there",
         [&] { SendMessageW(list.hwndItem, WM_CHAR, 'x', 1); }, "layout=0 toolbar list0 x"},
        {"double-click on the status bar", click(z.window.StatusBar(), 5, 5),
         "layout=1 toolbar list1 x"},
        {"double-click on the window", click(z.H(), 2, 2), "layout=2 list1 x"},
        {"Ctrl+F12", key(z.H(), VK_F12, {VK_CONTROL}), "layout=0 toolbar list0 x; " + moved},
        {"double-click on a button is its click",
         click(z.window.Toolbar(), button.left + 4, button.top + 4), "layout=0 toolbar list0 x"},
        {"double-click beside the buttons",
         click(z.window.Toolbar(), bar.right - 2, bar.bottom - 1), "layout=1 toolbar list1 x"},
        {"FileOpen greys button 1 and its menu entries",
         [&] { z.window.ViewChange_FileOpen(false); }, "buttons=010110; menu=000110"},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.name);
        step.act();
        ExpectFacts(z, step.facts);
    }
    EXPECT_EQ(z.boxes.at(0), Widen(notes + "\rThis file is set as a target.\rOK?"));
    DeleteFileA(configuration.c_str());
}

// Each row starts a window, reads what it shows, closes it with keys (or ends
// the session) and reads the place saved: only a window in its normal state saves one.
TEST(MainWindow, StartSettingsAndClosing) {
    testing::TempFolder files;
    files.Write("Given.mml", "");
    files.Write("Last.mml", "");
    const auto icons = [](int size) {
        return "icons=" + std::to_string(ScaleForDpi(size, GetScreenDpi().x)) + "px ";
    };
    const struct {
        const char* name;
        std::string settings, file, facts;
        std::vector<int> keys;  // Left and F5 with Ctrl, F4 with Alt; 0: the session ends
        std::string saved;      // Left Top Width Height Mode; "?": where it was
    } cases[] = {
        {"placed off the screen; on top, icons, timer, layout",
         "[Option]\r\nAlwaysTop=1\r\nIconSize=32\r\nTimerInterval=1000\r\n[Main]\r\nMode=2\r\n"
         "Left=1000000000\r\nTop=1000000000\r\nWidth=6000\r\nHeight=1500\r\n", "",
         "shown=normal on top; " + icons(32) + "1000ms; layout=2 list1 ",
         {VK_LEFT, VK_F5, VK_F4}, "? 6000 1500 0 "},
        {"the file given, in its case on disk; minimised", "[Main]\r\nLeft=1500\r\n",
         files / "given.MML", "caption=Given.mml - Zorvi; shown=normal; watch=off, ",
         {VK_F11, VK_F12}, "1500     "},
        {"the last file, minimised and watched",
         "[Option]\r\nAutoSetFile=1\r\nAutoMinimize=1\r\nAutoWatch=1\r\n[History]\r\nHis00=" +
             (files / "Last.mml") + "\r\n",
         "", "target=Last.mml; shown=minimised; watch=on, Last.mml [ON]", {VK_F12}, "     "},
        // Ctrl+Left at the left edge takes the window off it, 512 twips; last, as
        // the end of the session marks the whole program as shutting down.
        {"first start", "", "",
         "caption=Zorvi; shown=normal; layout=0 toolbar list0 ; " + icons(16) + "250ms",
         {VK_LEFT, 0}, "-510 0 4410 1064 0 "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Zorvi z(c.settings, c.file);
        ExpectFacts(z, c.facts);
        EXPECT_EQ(Facts(z)["place"].find("off the screen"), std::string::npos);
        RECT place{};
        for (const int key : c.keys) {
            GetWindowRect(z.H(), &place);
            if (key == 0) {
                SendMessageW(z.H(), WM_ENDSESSION, TRUE, 0);
            } else {
                SendKey(z.H(), key, key == VK_F4                     ? std::vector{VK_MENU}
                                    : key == VK_LEFT || key == VK_F5 ? std::vector{VK_CONTROL}
                                                                     : std::vector<int>{});
            }
        }
        testing::ServeQueue();
        EXPECT_EQ(z.H() == nullptr, c.keys.back() != 0) << "only the session end leaves it";
        std::string saved, expected = c.saved;
        for (const char* name : {"Left", "Top", "Width", "Height", "Mode"}) {
            saved += z.Setting("Main", name) + " ";
        }
        if (expected[0] == '?') expected.replace(0, 1, Twips(place.left) + " " + Twips(place.top));
        EXPECT_EQ(saved, expected);
    }
}

bool Checked(HMENU menu, int position) {
    return (GetMenuState(menu, static_cast<UINT>(position), MF_BYPOSITION) & MF_CHECKED) != 0;
}

TEST(MainMenus, ChoosingAConfigurationOrAPlayerWritesItAndMovesTheCheck) {
    Zorvi zorvi("[PlayerList]\r\nItemCount=1\r\nItem1=" + mdlFile::GetAppFolder() +
                "zplayer.exe\r\n");
    const std::string second = zorvi.Configuration("B&c", "[Option]\r\nUseGUI=1\r\n");
    const std::string first = zorvi.Configuration("a", "[Option]\r\nUseGUI=1\r\n");
    const std::string tag = first.substr(0, first.size() - 1), last = tag + "1997";
    // A thousand configurations and more, empty: the menus are built all the same.
    for (int i = 1000; i < 1998; ++i) zorvi.Configuration(std::to_string(i), "");
    WriteIni("Setting", "Default", first, zorvi.MainFile());
    frmZorvi& window = zorvi.window;
    window.ViewChange_DefinedScript();
    const HMENU popup = window.PreparePopUp();
    const HMENU scripts = GetSubMenu(popup, FindEntry(popup, L"Script setting"));
    const HMENU players = GetSubMenu(popup, FindEntry(popup, L"Player setting"));
    ASSERT_NE(players, nullptr);
    EXPECT_GE(GetMenuItemCount(scripts), 1000);
    // Case-insensitive order, whatever the folder's; the "&" of a name is
    // doubled so that it shows.
    const int firstAt = FindEntry(scripts, Widen(" : " + first));
    ASSERT_GE(firstAt, 0);
    EXPECT_EQ(FindEntry(scripts, Widen(" : " + tag + "B&&c")), firstAt + 1);
    EXPECT_TRUE(Checked(scripts, firstAt));

    // The popup's submenu and the toolbar's drop-down give the same commands.
    const HMENU menu = window.ScriptMenu();
    window.OnCommand(static_cast<int>(GetMenuItemID(menu, FindEntry(menu, Widen(last)))));
    EXPECT_EQ(zorvi.Setting("Setting", "Default"), last);
    window.OnCommand(static_cast<int>(GetMenuItemID(window.ScriptMenu(), firstAt + 1)));
    EXPECT_EQ(zorvi.Setting("Setting", "Default"), second);
    EXPECT_TRUE(Checked(window.ScriptMenu(), firstAt + 1));
    EXPECT_FALSE(Checked(window.ScriptMenu(), firstAt));
    EXPECT_EQ(window.StatusPanelText(1), Widen(second));

    const std::string configuration = testing::CfgPath(second);
    window.OnCommand(static_cast<int>(GetMenuItemID(players, FindEntry(players, L"&2"))));
    EXPECT_EQ(zorvi.Setting("Option", "UseAssociated", configuration), "0");
    EXPECT_EQ(zorvi.Setting("Configure", "Player", configuration),
              mdlFile::GetAppFolder() + "zplayer.exe");
    EXPECT_TRUE(Checked(window.PlayerMenu(), 1));
    EXPECT_EQ(window.StatusPanelText(2), L"zplayer.exe");
    window.OnCommand(static_cast<int>(GetMenuItemID(window.PlayerMenu(), 0)));
    EXPECT_EQ(zorvi.Setting("Option", "UseAssociated", configuration), "1");
    EXPECT_TRUE(Checked(window.PlayerMenu(), 0));
    EXPECT_EQ(window.StatusPanelText(2), L"*");
}

TEST(MainMenus, LauncherStartsTheChoiceOrTheTypedTextAndEndsWhatIsMarked) {
    const std::string app = mdlFile::GetAppFolder();
    TempFolder files;
    files.Write("hang.mml", "hang=1\r\n");
    SetEnvironmentVariableA("ZPLAYER_RECORD", (files / "record.txt").c_str());
    const auto starts = [&] { return testing::Starts(files.Read("record.txt")); };
    // Three records counted, two written: the third has no command.
    Zorvi zorvi("[ExternalProgram]\r\nItemCount=3\r\nItem1=Player\r\nCommand1=" + app +
                "zplayer.exe\r\nOption1=$fn$\r\nWindowState1=9\r\nItem2=Hang\r\nCommand2=" + app +
                "zcompiler.exe\r\nOption2=" + (files / "hang.mml") + "\r\nAutoShutDown2=1\r\n");
    frmZorvi& window = zorvi.window;
    const HWND list = window.Combo1(0);
    ASSERT_EQ(SendMessageW(list, CB_GETCOUNT, 0, 0), 3);
    const auto enterOn = [&](int entry) {
        SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(entry), 0);
        return window.Combo1_KeyDown(VK_RETURN, 0);
    };

    // The option is expanded at the start: it names the target of now.
    zorvi.folder.Write("b.mml", "o4 d");
    window.SetFile(zorvi.folder / "b.mml");
    ASSERT_TRUE(enterOn(0));
    ASSERT_TRUE(enterOn(0));
    ASSERT_TRUE(testing::WaitUntil([&] { return starts() == 2; }));
    EXPECT_NE(files.Read("record.txt").find("arg1=b.mml"), std::string::npos);
    EXPECT_EQ(window.Launcher().LastLaunch(0), LaunchedPrograms().size() - 1);

    // Typed text runs as a command.
    SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(-1), 0);
    SetWindowTextW(list, Widen(app + "zplayer.exe").c_str());
    ASSERT_TRUE(window.Combo1_KeyDown(VK_RETURN, 0));
    ASSERT_TRUE(testing::WaitUntil([&] { return starts() == 3; }));

    // A record that cannot start says why and with what; nothing is recorded.
    const std::size_t launched = LaunchedPrograms().size();
    enterOn(2);
    ASSERT_EQ(zorvi.boxes.size(), 1u);
    EXPECT_EQ(zorvi.boxes[0].rfind(L"File not found.\r\n", 0), 0u) << zorvi.boxes[0];
    EXPECT_EQ(LaunchedPrograms().size(), launched);

    // The free-standing list, made when a layout first shows it, has the same
    // entries in the same font.
    window.NextLayout();
    const HWND free = window.Combo1(1);
    EXPECT_EQ(SendMessageW(free, CB_GETCOUNT, 0, 0), 3);
    EXPECT_EQ(SendMessageW(free, WM_GETFONT, 0, 0), SendMessageW(list, WM_GETFONT, 0, 0));
    window.NextLayout();
    window.NextLayout();

    // Only the record marked to end with Zorvi is ended.
    enterOn(1);
    const std::size_t hanging = *window.Launcher().LastLaunch(1);
    ASSERT_TRUE(LaunchedPrograms()[hanging].ProcessHandle);
    HANDLE watched = nullptr;
    DuplicateHandle(GetCurrentProcess(), LaunchedPrograms()[hanging].ProcessHandle.get(),
                    GetCurrentProcess(), &watched, SYNCHRONIZE, FALSE, 0);
    const UniqueHandle watch(watched);
    SendMessageW(window.Handle(), WM_CLOSE, 0, 0);
    EXPECT_EQ(WaitForSingleObject(watch.get(), 10000), WAIT_OBJECT_0);
    SetEnvironmentVariableA("ZPLAYER_RECORD", nullptr);
}

// Serves this thread's messages until the condition holds or the time is up.
bool PumpUntil(const std::function<bool()>& condition) {
    return testing::WaitUntil([&] { return testing::ServeQueue(), condition(); });
}

TEST(MainParts, FolderChangesWakeTheWatchAndTheTimerTakesOverWhenTheFolderGoes) {
    // The timer's own period is far away: only the notification can compile.
    Zorvi zorvi("[Option]\r\nTimerInterval=600000\r\n");
    frmZorvi& window = zorvi.window;
    window.SetFile(zorvi.File("song.mml"));
    std::vector<std::string> compiled;
    window.SetCompileCommand(
        [&](CompileHost&) { compiled.push_back(zorvi.folder.Read("song.mml")); });
    window.WatchToggle();
    // A burst of writes before anything is served: compiled once, the last.
    for (const char* text : {"o4 c", "o4 cd", "o4 cde", "o4 cdef"}) {
        zorvi.folder.Write("song.mml", text);
    }
    ASSERT_TRUE(PumpUntil([&] { return compiled.size() == 1; }));
    EXPECT_EQ(compiled[0], "o4 cdef");

    // A new target in another folder: the notification follows it.
    TempFolder other;
    other.Write("b.mml", "o4 d");
    window.SetFile(other / "b.mml");
    window.SetCompileCommand([&](CompileHost&) { compiled.push_back(other.Read("b.mml")); });
    other.Write("b.mml", "o4 de");
    ASSERT_TRUE(PumpUntil([&] { return compiled.size() == 2; }));
    EXPECT_EQ(compiled[1], "o4 de");

    // The folder goes: the timer's ticks let the target go.
    std::filesystem::remove_all(other.Path());
    ASSERT_TRUE(PumpUntil([&] {
        SendMessageW(window.Handle(), WM_TIMER, 1, 0);
        return mdlMain::TargetFile().empty();
    }));
    EXPECT_FALSE(window.Watching());
}

}  // namespace
}  // namespace zorvi
