// The main window, the launcher strip: toolbar, launcher list, status bar,
// the target file with its watch timer, the history and the keyboard.
#pragma once

#include <windows.h>

#include <commctrl.h>
#include <shellapi.h>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "run/compile.h"
#include "run/external_programs.h"
#include "ui/main/folder_watch.h"
#include "ui/main/history.h"
#include "ui/main/layout.h"
#include "ui/main/watch.h"
#include "core/handles_win.h"
#include "ui/window_base.h"

namespace zorvi {

// tmrTimer1: the watch timer. Enabled is the watch state the user sees; while
// a compile that a tick started runs, the timer is held off without changing it.
class WatchTimer {
public:
    void Attach(HWND window, UINT_PTR id) { window_ = window, id_ = id; }
    bool Enabled() const { return enabled_; }
    void SetEnabled(bool enabled);
    void SetHeld(bool held);
    void SetInterval(unsigned milliseconds);
    // While the folder's change notifications wake the window, the timer is
    // only a safety net and ticks at the stretched period (the interval, if
    // that is longer): an idle watch then costs next to no processor.
    void SetStretched(bool stretched);
    unsigned Interval() const { return interval_; }
    bool Running() const { return running_; }  // a platform timer is set
    static constexpr unsigned kStretchedMs = 2000;

private:
    void Apply();
    unsigned Period() const { return stretched_ && interval_ < kStretchedMs ? kStretchedMs : interval_; }

    HWND window_ = nullptr;
    UINT_PTR id_ = 0;
    bool enabled_ = false;
    bool held_ = false;
    bool running_ = false;
    bool stretched_ = false;
    unsigned interval_ = 250;
};

class frmZorvi : public BaseWindow<frmZorvi>, public CompileHost {
public:
    static const wchar_t* ClassName() { return L"ZorviMain"; }

    // Toolbar buttons by position, and the command id each sends.
    enum Button { kSetFile = 1, kConfig, kOnOff, kCompile, kPlay, kLog, kLauncher };
    static constexpr int kButtonCount = 7;
    static constexpr int CommandOf(int button) { return 1000 + button; }
    // Entries of button 1's drop-down menu: the slots, then "History clear".
    static constexpr int kHistoryCommand = 2000;
    static constexpr int kHistoryClearCommand = kHistoryCommand + 33;
    // mnuPop's entries: command kPopupCommand + index, caption id 130 + index.
    static constexpr int kPopupCommand = 3000;
    static constexpr int kPopupEntries = 17;
    enum PopupEntry { kPopupRecentUsed = 3, kPopupWatch = 5, kPopupLog = 9, kPopupScript = 12,
                      kPopupPlayer = 13, kPopupShow = 15, kPopupStop = 17 };
    // Configuration entries (mnuScript, button 4) and player entries
    // (mnuPlayer, button 5): the command plus the entry's position.
    static constexpr int kScriptCommand = 10000;
    static constexpr int kPlayerCommand = 20000;
    static constexpr int kMaxMenuEntries = 9000;
    // Tray icon events arrive as this message, the mouse message in lParam.
    static constexpr UINT kTrayMessage = WM_APP + 2;
    // Something changed in the target's folder.
    static constexpr UINT kFolderChangedMessage = WM_APP + 3;

    frmZorvi();
    ~frmZorvi() override;

    // Creates the window hidden, owned by the application window, and runs
    // the window's initialisation.
    bool Create(HWND owner);
    // Sets the target given on the command line (may be empty), or the last
    // used one with AutoSetFile, and shows the window.
    void Start(const std::string& file);

    // Public operations that other windows call.
    int ViewChange_IconSize(int size);  // returns the size used (1..64, else 16)
    void ViewUpdate() override;
    void ViewChange_Player();         // mnuPlayer, button 5's menu and panel 2
    void ViewChange_DefinedScript();  // mnuScript, button 4's menu and panels 1 and 3
    void ChangeTimerIntarval(int interval);
    void ChangeLangZorvi();
    void ApplyAlwaysOnTop();  // Option/AlwaysTop as it is stored

    // The view of one command: its toolbar button and popup-menu entries.
    void ViewChange_FileOpen(bool enabled);
    void ViewChange_OnOffButton(bool enabled);
    void ViewChange_Compile(bool enabled);
    void ViewChange_Play(bool enabled);
    void ViewChange_LogView(bool enabled) override;
    // Panel 1 (configuration), 2 (player, greyed unless path exists or the
    // text is "-" or "*"), 3 (required tools: text + "/" + state).
    void ViewChange_StatusBar(int panel, const std::string& text, const std::string& path);
    void ViewChange_StatusBar(const std::string& text) override;  // panel 1

    // The layout: 0 list in the toolbar, 1 list under it, 2 list alone.
    int Mode() const { return mode_; }
    void SetMode(int mode) { mode_ = mode; }
    void ChangeLauncherPos();
    void NextLayout();  // double-click, Ctrl+F2 ... Ctrl+F12

    // Target file and watch mode.
    void SetFile(const std::string& path);
    bool blnSetFileInfo(const std::string& path);
    int blnAutoChangeConfigBystrGetExtension(const std::string& path);
    void SetWatchFile(const std::string& path);
    void WatchFileOptionChk();
    void ViewChange_OnOff(bool on);
    void WatchToggle();
    void CMD_ShowFileDialog();
    std::string strGetFilter();

    // History.
    void HistoryLoad();
    void HistoryUpdate();
    void HistoryClear();
    void HistorySelect(int slot);  // a history entry chosen from a menu
    const HistorySlots& History() const { return history_; }
    HMENU HistoryMenu() const { return historyMenu_.get(); }

    // Popup menu and toolbar drop-downs.
    void CMD_ShowPopUp();
    // mnuPop as CMD_ShowPopUp opens it: "&Recent Used" greyed without a
    // history, "Show" only while in the tray. Owned by the window.
    HMENU PreparePopUp();
    HMENU ScriptMenu() const { return scriptMenu_.get(); }
    HMENU PlayerMenu() const { return playerMenu_.get(); }
    // Runs the command of a menu entry or toolbar button, as a choice would.
    void OnCommand(int id);

    // Task tray.
    void AddIcon();
    void DeleteIcon();
    void CMD_OutIconFromTaskTray();
    bool InTaskTray() const { return inTray_; }
    std::wstring TrayTip() const;

    // Launcher list.
    void AddExternalProgram();
    void ExternalProgramStartUp();
    bool Combo1_KeyDown(int keyCode, int shift);  // Enter runs the selection or the typed text
    const ExternalPrograms& Launcher() const { return launcher_; }

    // The about and configuration windows are opened through these.
    using WindowCommand = std::function<void(int page)>;
    void SetAboutCommand(WindowCommand command) { aboutCommand_ = std::move(command); }
    void SetConfigCommand(WindowCommand command) { configCommand_ = std::move(command); }
    void ShowAbout();
    void ShowConfig(int page);

    // Keys: the window sees them before its controls. True when the key was used.
    bool Form_KeyDown(int keyCode, int shift);

    // CompileHost.
    HWND Owner() const override { return Handle(); }
    bool& Compiling() override { return compiling_; }

    // What tests read back and put in.
    HWND Toolbar() const { return toolbar_; }
    HWND StatusBar() const { return statusBar_; }
    HWND Combo1(int member) const { return combo_[member & 1]; }
    bool Watching() const { return tmrTimer1.Enabled(); }
    bool WatchTimerRunning() const { return tmrTimer1.Running(); }
    unsigned WatchInterval() const { return tmrTimer1.Interval(); }
    const std::wstring& ToolTipText(int button) const {
        return toolTips_[(button - 1) % kButtonCount];
    }
    const std::wstring& StatusPanelText(int panel) const { return panelText_[(panel - 1) % 3]; }
    bool PlayerPanelEnabled() const { return playerPanelEnabled_; }
    const std::wstring& WatchMenuCaption() const { return watchMenuCaption_; }
    bool MenuEntryEnabled(int index) const { return menuEnabled_[index % menuEnabled_.size()]; }
    int IconSize() const { return iconSize_; }
    using CompileCommand = std::function<void(CompileHost&)>;
    void SetCompileCommand(CompileCommand command) { compileCommand_ = std::move(command); }

private:
    friend class BaseWindow<frmZorvi>;
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK ChildProc(HWND window, UINT message, WPARAM wParam,
                                      LPARAM lParam) noexcept;

    void CreateControls();
    void WatchChild(HWND control);
    HWND MakeCombo(int member);  // the member, made (with its font and entries) when first needed
    void FillCombo(HWND combo) const;
    void ApplyFonts();
    void PlaceFromSettings();
    bool CanLayOut() const;
    void PrepareLayout();
    void Layout();
    bool FitHeightToLayout();  // true when the height changed, and the resize laid it out
    void LayOutAndFit();
    int MinClientHeight() const;
    LayoutMetrics MeasureLayout() const;
    void SetButtonEnabled(int button, bool enabled);
    void SetMenuEnabled(int index, bool enabled);
    void SetButtonImage(int button, int image);
    void RebuildHistoryMenu();
    HMENU BuildHistoryMenu() const;
    HMENU BuildScriptMenu() const;
    HMENU BuildPlayerMenu() const;
    void ShowDropDown(int button, HMENU menu);
    bool OnMenuCommand(int id);
    void ChooseScript(std::size_t index);
    void ChoosePlayer(std::size_t index);
    void ViewChange_PlayerPanel();
    bool NotifyTray(DWORD action);
    void RefreshTrayIcon();
    void OnTrayMessage(LPARAM mouseMessage);
    void OnTaskbarCreated();
    static UINT TaskbarCreatedMessage();
    bool IsComboPart(HWND window) const;
    void RunCompile();
    void OnTimerTick();
    void UpdateFolderWatch();
    void StretchWatchTimer();
    void SetStatusTextLater(const std::wstring& text);
    void LookAgainSoon();
    void OnFolderChanged();
    void ReleaseTarget();
    void OnDropFiles(HDROP drop);
    bool PreviewKey(UINT message, WPARAM key);
    void OnChildDoubleClick(HWND child, LPARAM lParam);
    bool CanUnload();
    void Unload();
    void SaveGeometry();
    void OnSize(WPARAM kind, LPARAM clientSize);
    void OnGetMinMaxInfo(MINMAXINFO& info);
    void OnDpiChanged(int dpi, const RECT& suggested);
    void DrawPlayerPanel(const DRAWITEMSTRUCT& item);
    void SetPlayerPanel(const std::string& text, bool enabled);
    void ShowHelp();
    UINT Dpi() const;

    HWND toolbar_ = nullptr;
    HWND statusBar_ = nullptr;
    std::array<HWND, 2> combo_{};
    // The controls that report to the window first, with the procedures
    // they had: the bars, and each list member with its edit box.
    struct WatchedChild {
        HWND window = nullptr;
        WNDPROC proc = nullptr;
    };
    std::array<WatchedChild, 6> watched_{};
    UniqueImageList images_, disabledImages_;
    UniqueMenu historyMenu_, scriptMenu_, playerMenu_, popupMenu_;
    std::vector<std::string> scriptNames_;
    std::vector<std::string> playerPaths_;
    bool inTray_ = false;
    ExternalPrograms launcher_;
    WindowCommand aboutCommand_, configCommand_;
    UniqueFont font_;
    HICON smallIcon_ = nullptr;  // the class's, for the tray; not this window's to free

    WatchTimer tmrTimer1;
    std::uint64_t storedTimestamp_ = 0;
    MissingTarget missingTarget_;
    FolderWatch folderWatch_;
    bool compiling_ = false;
    bool closeAfterCompile_ = false;  // the user chose to stop the compile and exit
    bool askingToStop_ = false;       // the stop-and-exit question is open
    int mode_ = 0;
    int iconSize_ = 16;
    HistorySlots history_;
    HistorySlots storedHistory_;  // as the settings file holds it
    CompileCommand compileCommand_;

    std::array<std::wstring, kButtonCount> toolTips_;
    std::array<std::wstring, 3> panelText_;
    bool playerPanelEnabled_ = true;
    std::wstring watchMenuCaption_;
    std::array<bool, 17> menuEnabled_{};

    // Geometry: the twips asked for at start-up with their pixels, so that an
    // unmoved window writes back exactly what it read; and the height the
    // user chose, which a layout may enlarge but never replace.
    struct Placed {
        int left = 0, top = 0, width = 0, height = 0;
    };
    Placed placedTwips_, placedPixels_;
    int userHeight_ = 0;
    int knownHeight_ = 0;  // the last height seen in the normal state
    LPARAM laidOutSize_ = -1;  // the client size of the last layout (as WM_SIZE gives it), or -1
    bool fitting_ = false;
    bool creating_ = false;  // Create has not finished: no layout yet
    int dpi_ = 96;
};

}  // namespace zorvi
