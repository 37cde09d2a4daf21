// The main window's menus: the popup menu mnuPop with its history,
// configuration and player submenus, and the drop-down menus of toolbar
// buttons 1, 4 and 5.
#include "ui/main/frmZorvi.h"

#include "core/mdlMain.h"
#include "core/strings_win.h"
#include "core/wide_win.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "res/string_ids.h"
#include "run/compile.h"
#include "run/play.h"
#include "settings/ini_win.h"
#include "settings/lists_win.h"
#include "ui/main/main_parts.h"
#include "ui/main/menu_text.h"
#include "ui/result/frmResult.h"

namespace zorvi {

using namespace main_parts;

namespace {

void AppendEntry(HMENU menu, UINT flags, UINT_PTR id, const std::string& caption) {
    AppendMenuW(menu, MF_STRING | flags, id, Widen(caption).c_str());
}

}  // namespace

void frmZorvi::RebuildHistoryMenu() {
    UniqueMenu menu(BuildHistoryMenu());
    if (menu) historyMenu_ = std::move(menu);
}

HMENU frmZorvi::BuildHistoryMenu() const {
    const HMENU menu = CreatePopupMenu();
    if (menu == nullptr) return nullptr;
    for (int slot = 0; slot < kHistorySize; ++slot) {
        const std::string& entry = history_[static_cast<std::size_t>(slot)];
        if (entry.empty()) continue;
        AppendEntry(menu, 0, static_cast<UINT_PTR>(kHistoryCommand + slot),
                    HistoryCaption(slot, mdlFile::ShortenPathForDisplay(entry)));
    }
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(menu, MF_STRING, kHistoryClearCommand, LoadText(ids::kHistoryClear).c_str());
    return menu;
}

HMENU frmZorvi::BuildScriptMenu() const {
    const HMENU menu = CreatePopupMenu();
    if (menu == nullptr) return nullptr;
    const std::string current = GetDefaultPreset(PresetForm::Name);
    for (std::size_t i = 0; i < scriptNames_.size(); ++i) {
        const bool checked = AsciiLower(scriptNames_[i]) == AsciiLower(current);
        AppendEntry(menu, checked ? MF_CHECKED : 0, kScriptCommand + i,
                    NumberedMenuCaption(static_cast<int>(i) + 1, scriptNames_[i]));
    }
    return menu;
}

HMENU frmZorvi::BuildPlayerMenu() const {
    const HMENU menu = CreatePopupMenu();
    if (menu == nullptr) return nullptr;
    const std::string configuration = GetDefaultPreset(PresetForm::Path);
    const bool associated = ReadIniFlag(config_keys::kUseAssociated, configuration);
    const std::string player = ReadIni(config_keys::kPlayer, configuration);
    AppendEntry(menu, associated ? MF_CHECKED : 0, kPlayerCommand,
                NumberedMenuCaption(1, Narrow(LoadText(ids::kCheckUseAssociatedPlayer))));
    for (std::size_t i = 0; i < playerPaths_.size(); ++i) {
        const bool checked = !associated && AsciiLower(playerPaths_[i]) == AsciiLower(player);
        AppendEntry(menu, checked ? MF_CHECKED : 0, kPlayerCommand + i + 1,
                    NumberedMenuCaption(static_cast<int>(i) + 2,
                                        mdlFile::ShortenPathForDisplay(playerPaths_[i])));
    }
    return menu;
}

// Every configuration listed has a command of its own.
static_assert(settings::kMaxConfigurations <= frmZorvi::kMaxMenuEntries);

void frmZorvi::ViewChange_DefinedScript() {
    scriptNames_ = settings::ConfigurationNames(mdlFile::GetAppFolder(), true);
    if (UniqueMenu menu(BuildScriptMenu()); menu) scriptMenu_ = std::move(menu);
    // The status bar shows the active configuration and whether its tools are there.
    ViewChange_StatusBar(1, GetDefaultPreset(PresetForm::Name), {});
    ViewChange_StatusBar(3, {}, GetDefaultPreset(PresetForm::Path));
}

void frmZorvi::ViewChange_Player() {
    playerPaths_ = settings::ReadCountedList(settings::main_file::kPlayerList, MainFile());
    if (playerPaths_.size() > kMaxMenuEntries) playerPaths_.resize(kMaxMenuEntries);
    if (UniqueMenu menu(BuildPlayerMenu()); menu) playerMenu_ = std::move(menu);
    ViewChange_PlayerPanel();
}

void frmZorvi::ChooseScript(std::size_t index) {
    if (index >= scriptNames_.size()) return;
    WriteIni(keys::kDefault.section, keys::kDefault.name, scriptNames_[index], MainFile());
    ViewChange_DefinedScript();
    ViewChange_Player();
}

void frmZorvi::ChoosePlayer(std::size_t index) {
    const std::string configuration = GetDefaultPreset(PresetForm::Path);
    if (index == 0) {
        WriteIni(config_keys::kUseAssociated.section, config_keys::kUseAssociated.name, "1",
                 configuration);
    } else if (index <= playerPaths_.size()) {
        WriteIni(config_keys::kUseAssociated.section, config_keys::kUseAssociated.name, "0",
                 configuration);
        WriteIni(config_keys::kPlayer.section, config_keys::kPlayer.name, playerPaths_[index - 1],
                 configuration);
    } else {
        return;
    }
    ViewChange_Player();
}

HMENU frmZorvi::PreparePopUp() {
    UniqueMenu popup(CreatePopupMenu());
    if (!popup) return nullptr;
    const bool hasHistory = !history_[0].empty();
    for (int index = 0; index < kPopupEntries; ++index) {
        // "Show" is there only while the window lives in the tray.
        if (index == kPopupShow && !inTray_) continue;
        const std::wstring caption = LoadText(ids::kMenuAbout + index);
        if (caption == L"-") {
            AppendMenuW(popup.get(), MF_SEPARATOR, 0, nullptr);
            continue;
        }
        HMENU submenu = nullptr;
        if (index == kPopupRecentUsed) submenu = BuildHistoryMenu();
        if (index == kPopupScript) submenu = BuildScriptMenu();
        if (index == kPopupPlayer) submenu = BuildPlayerMenu();
        bool enabled = menuEnabled_[static_cast<std::size_t>(index)];
        if (index == kPopupRecentUsed) enabled = enabled && hasHistory;
        const UINT state = enabled ? MF_ENABLED : MF_GRAYED;
        const std::wstring& text =
            index == kPopupWatch && !watchMenuCaption_.empty() ? watchMenuCaption_ : caption;
        if (submenu != nullptr) {
            AppendMenuW(popup.get(), MF_POPUP | state, reinterpret_cast<UINT_PTR>(submenu),
                        text.c_str());
        } else {
            AppendMenuW(popup.get(), MF_STRING | state,
                        static_cast<UINT_PTR>(kPopupCommand + index), text.c_str());
        }
        if (index == kPopupLog && compiling_) {
            AppendMenuW(popup.get(), MF_STRING, kPopupCommand + kPopupStop,
                        LoadText(ids::kMenuStopCompiling).c_str());
        }
    }
    popupMenu_ = std::move(popup);
    return popupMenu_.get();
}

void frmZorvi::CMD_ShowPopUp() {
    const HMENU menu = PreparePopUp();
    if (menu == nullptr) return;
    POINT at{};
    GetCursorPos(&at);
    // Without the window in front the menu would not close when the user
    // clicks elsewhere; the posted message lets it close at once.
    SetForegroundWindow(Handle());
    const int chosen = static_cast<int>(
        TrackPopupMenuEx(menu, TPM_LEFTALIGN | TPM_RIGHTBUTTON | TPM_RETURNCMD, at.x, at.y,
                         Handle(), nullptr));
    PostMessageW(Handle(), WM_NULL, 0, 0);
    if (chosen != 0) OnCommand(chosen);
}

void frmZorvi::ShowDropDown(int button, HMENU menu) {
    if (menu == nullptr) return;
    RECT rect{};
    SendMessageW(toolbar_, TB_GETRECT, CommandOf(button), reinterpret_cast<LPARAM>(&rect));
    MapWindowPoints(toolbar_, nullptr, reinterpret_cast<POINT*>(&rect), 2);
    TPMPARAMS params{};
    params.cbSize = sizeof params;
    params.rcExclude = rect;
    SetForegroundWindow(Handle());
    const int chosen = static_cast<int>(
        TrackPopupMenuEx(menu, TPM_LEFTALIGN | TPM_TOPALIGN | TPM_RETURNCMD | TPM_VERTICAL,
                         rect.left, rect.bottom, Handle(), &params));
    PostMessageW(Handle(), WM_NULL, 0, 0);
    if (chosen != 0) OnCommand(chosen);
}

bool frmZorvi::OnMenuCommand(int id) {
    if (id >= kHistoryCommand && id < kHistoryCommand + kHistorySize) {
        HistorySelect(id - kHistoryCommand);
    } else if (id == kHistoryClearCommand) {
        HistoryClear();
    } else if (id >= kScriptCommand && id < kScriptCommand + kMaxMenuEntries) {
        ChooseScript(static_cast<std::size_t>(id - kScriptCommand));
    } else if (id >= kPlayerCommand && id <= kPlayerCommand + kMaxMenuEntries) {
        ChoosePlayer(static_cast<std::size_t>(id - kPlayerCommand));
    } else if (id >= kPopupCommand && id <= kPopupCommand + kPopupStop) {
        switch (id - kPopupCommand) {
        case 0: ShowHelp(); break;
        case 2: CMD_ShowFileDialog(); break;
        case kPopupWatch: WatchToggle(); break;
        case 7: RunCompile(); break;
        case 8: CMD_DoPlay({}, Handle()); break;
        case 9: ResultWindow().ShowResult(0); break;
        case 11: ShowConfig(0); break;
        case kPopupShow: CMD_OutIconFromTaskTray(); break;
        case kPopupStop: StopCompile(); break;
        case 16: PostMessageW(Handle(), WM_CLOSE, 0, 0); break;
        default: break;
        }
    } else {
        return false;
    }
    return true;
}

}  // namespace zorvi
