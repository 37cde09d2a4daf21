// The main window's target file and watch timer, and the history of targets.
#include "ui/main/frmZorvi.h"

#include <commdlg.h>

#include <vector>

#include "core/mdlMain.h"
#include "core/messages_win.h"
#include "core/strings_win.h"
#include "core/text.h"
#include "core/wide_win.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "files/variables_win.h"
#include "res/resource.h"
#include "res/string_ids.h"
#include "run/clsExecute.h"
#include "run/play.h"
#include "run/required_tools.h"
#include "settings/ini_win.h"
#include "settings/lists_win.h"
#include "ui/main/keymap.h"
#include "ui/main/layout.h"
#include "ui/main/main_parts.h"
#include "ui/main/mdlHotKey.h"
#include "ui/main/mdlView.h"
#include "ui/main/watch.h"
#include "ui/result/frmResult.h"

namespace zorvi {

using namespace main_parts;

void WatchTimer::SetEnabled(bool enabled) {
    enabled_ = enabled;
    Apply();
}

void WatchTimer::SetHeld(bool held) {
    held_ = held;
    Apply();
}

void WatchTimer::SetInterval(unsigned milliseconds) {
    interval_ = milliseconds;
    // A running timer takes the new period at once.
    if (running_) SetTimer(window_, id_, Period(), nullptr);
}

void WatchTimer::SetStretched(bool stretched) {
    if (stretched == stretched_) return;
    stretched_ = stretched;
    if (running_) SetTimer(window_, id_, Period(), nullptr);
}

void WatchTimer::Apply() {
    const bool wanted = enabled_ && !held_ && window_ != nullptr;
    if (wanted && !running_) {
        running_ = SetTimer(window_, id_, Period(), nullptr) != 0;
    } else if (!wanted && running_) {
        // KillTimer also drops a tick already waiting in the queue.
        KillTimer(window_, id_);
        running_ = false;
    }
}

void frmZorvi::ChangeTimerIntarval(int interval) {
    // Never a period of 0 or less: see EffectiveTimerInterval.
    tmrTimer1.SetInterval(EffectiveTimerInterval(interval));
}

void frmZorvi::SetFile(const std::string& path) {
    const std::string file = mdlFile::UnquotePath(path);
    if (!mdlFile::FileExists(file)) return;
    const int code = blnAutoChangeConfigBystrGetExtension(file);
    if (NeedsTargetConfirmation(code, mdlFile::GetExtension(file)) && !blnSetFileInfo(file)) return;
    SetWatchFile(file);
    WatchFileOptionChk();
}

bool frmZorvi::blnSetFileInfo(const std::string& path) {
    const std::wstring text =
        Widen(path) + L"\r" + LoadText(ids::kConfirmSetTarget) + L"\r" + LoadText(ids::kAskOk);
    return ShowCheckMessage(Handle(), text, MB_OKCANCEL | MB_ICONINFORMATION) == IDOK;
}

int frmZorvi::blnAutoChangeConfigBystrGetExtension(const std::string& path) {
    std::string configuration;
    const FilterCode code = ExtensionFilter(path, configuration);
    if (code == FilterCode::Found) {
        WriteIni(keys::kDefault.section, keys::kDefault.name, configuration, MainFile());
        ViewChange_DefinedScript();
        ViewChange_Player();
    }
    return static_cast<int>(code);
}

void frmZorvi::SetWatchFile(const std::string& path) {
    const bool wasWatching = tmrTimer1.Enabled();
    tmrTimer1.SetEnabled(false);
    missingTarget_ = {};
    if (!path.empty()) mdlMain::SetTargetFile(path);
    const std::string& target = mdlMain::TargetFile();
    if (const auto written = LastWriteTime(target)) {
        storedTimestamp_ = *written;
        SetWindowTextW(Handle(), Caption(target).c_str());
        tmrTimer1.SetEnabled(wasWatching);
        // Watching goes on with the new target: its view names it.
        if (wasWatching) ViewChange_OnOff(true);
    } else {
        mdlMain::SetTargetFile({});
        SetWindowTextW(Handle(), Caption({}).c_str());
    }
    ViewUpdate();
    RefreshTrayIcon();
    UpdateFolderWatch();
}

void frmZorvi::WatchFileOptionChk() {
    if (mdlMain::TargetFile().empty()) {
        ViewChange_OnOff(false);
        ViewUpdate();
        return;
    }
    const std::string& file = MainFile();
    if (ReadIniFlag(keys::kAutoMinimize, file)) ShowWindow(Handle(), SW_MINIMIZE);
    if (ReadIniFlag(keys::kAutoOpen, file)) StartEditor(Handle());
    if (ReadIniFlag(keys::kAutoWatch, file)) ViewChange_OnOff(true);
    HistoryUpdate();
    ViewUpdate();
}

void frmZorvi::ViewChange_OnOff(bool on) {
    const std::string& target = mdlMain::TargetFile();
    const std::wstring name = target.empty() ? L"(No focus)" : Widen(mdlFile::GetFileName(target));
    SetButtonImage(kOnOff, on ? 4 : 5);
    SendMessageW(toolbar_, TB_CHECKBUTTON, CommandOf(kOnOff), MAKELPARAM(on ? TRUE : FALSE, 0));
    toolTips_[kOnOff - 1] = LoadText(ids::kToolbarWatchMode) + (on ? L"=ON" : L"=OFF");
    watchMenuCaption_ = name + (on ? L" [ON]" : L" [OFF]");
    tmrTimer1.SetEnabled(on);
    RefreshTrayIcon();
    UpdateFolderWatch();
}

void frmZorvi::UpdateFolderWatch() {
    const std::string& target = mdlMain::TargetFile();
    // The timer stays on as well: it sees changes on drives that send no
    // notifications, and a folder that has gone.
    if (tmrTimer1.Enabled() && !target.empty()) {
        folderWatch_.Watch(Handle(), kFolderChangedMessage, mdlFile::GetParentFolder(target));
    } else {
        folderWatch_.Stop();
    }
    StretchWatchTimer();
}

void frmZorvi::StretchWatchTimer() {
    // A missing target is looked at on every tick, so that it is let go in time.
    tmrTimer1.SetStretched(folderWatch_.Active() && missingTarget_.ticks == 0);
}

void frmZorvi::LookAgainSoon() {
    if (tmrTimer1.Enabled()) SetTimer(Handle(), kLookAgainTimerId, kLookAgainMs, nullptr);
}

void frmZorvi::OnFolderChanged() {
    folderWatch_.Taken();
    // The watch has waited for the burst to end: the target is looked at
    // now. The notifications may have ended (the folder went): then the tick
    // lets the timer take over.
    if (tmrTimer1.Enabled()) {
        OnTimerTick();
    } else {
        StretchWatchTimer();
    }
}

void frmZorvi::WatchToggle() {
    // The time is read again first, so a change made while not watching does
    // not compile at once.
    SetWatchFile(mdlMain::TargetFile());
    ViewChange_OnOff(!tmrTimer1.Enabled());
}

void frmZorvi::OnTimerTick() {
    const std::string target = mdlMain::TargetFile();
    const auto written = LastWriteTime(target);
    const TickAction action =
        WatchTick(compiling_, written, storedTimestamp_, missingTarget_, GetTickCount64());
    StretchWatchTimer();
    switch (action) {
    case TickAction::Nothing: return;
    case TickAction::Release: ReleaseTarget(); return;
    case TickAction::Compile: {
        tmrTimer1.SetHeld(true);
        RunCompile();
        const AfterTickCompile after =
            AfterTickCompileRule(tmrTimer1.Enabled(), target, mdlMain::TargetFile());
        if (after.storeTime) storedTimestamp_ = *written;
        if (tmrTimer1.Enabled() && !after.resumeTimer) ViewChange_OnOff(false);
        tmrTimer1.SetHeld(false);
        return;
    }
    }
}

void frmZorvi::ReleaseTarget() {
    mdlMain::SetTargetFile({});
    SetWindowTextW(Handle(), Caption({}).c_str());
    ViewChange_OnOff(false);
    ViewUpdate();
}

void frmZorvi::RunCompile() {
    if (compileCommand_) compileCommand_(*this);
    // A save made while it ran was refused by the ticks meanwhile; with the
    // timer stretched the next one is far off, so the target is looked at
    // again at once.
    LookAgainSoon();
    if (closeAfterCompile_ && !compiling_) PostMessageW(Handle(), WM_CLOSE, 0, 0);
}

void frmZorvi::CMD_ShowFileDialog() {
    const std::string folder = mdlFile::GetParentFolder(history_[0]);
    const std::string initial =
        !folder.empty() && mdlFile::IsFolder(folder) ? folder : mdlFile::GetAppFolder();
    std::string name;
    if (!mdlFile::BrowseForFile(Handle(), Narrow(LoadText(ids::kToolbarSetTargetFile)),
                                strGetFilter(), OFN_HIDEREADONLY | OFN_PATHMUSTEXIST, initial,
                                name) ||
        name.empty()) {
        return;
    }
    if (!mdlFile::FileExists(name)) {
        // A new name starts an empty file, so that it can be watched and edited.
        const UniqueHandle created(CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr,
                                               CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    }
    SetWatchFile(name);
    blnAutoChangeConfigBystrGetExtension(name);
    WatchFileOptionChk();
}

std::string frmZorvi::strGetFilter() {
    std::vector<mdlFile::FilterEntry> entries;
    for (const auto& record : settings::ReadFilters(MainFile())) {
        entries.push_back({record.item, record.extension});
    }
    return mdlFile::BuildFilterText(entries);
}

void frmZorvi::HistoryLoad() {
    const std::vector<std::string> slots = settings::ReadHistorySlots(MainFile());
    for (std::size_t i = 0; i < history_.size(); ++i) {
        history_[i] = i < slots.size() ? slots[i] : std::string();
    }
    storedHistory_ = history_;
    RebuildHistoryMenu();
    HistoryUpdate();
}

void frmZorvi::HistoryUpdate() {
    const std::string& target = mdlMain::TargetFile();
    history_ =
        HistoryInsert(target.empty() ? std::string() : mdlFile::GetLongPath(target), history_);
    if (history_ == storedHistory_) return;
    // Only the slots that changed: a start-up that changes nothing writes nothing.
    for (std::size_t slot = 0; slot < history_.size(); ++slot) {
        if (history_[slot] == storedHistory_[slot]) continue;
        settings::WriteHistorySlot(static_cast<int>(slot), history_[slot], MainFile());
    }
    storedHistory_ = history_;
    RebuildHistoryMenu();
}

void frmZorvi::HistoryClear() {
    history_.fill({});
    HistoryUpdate();
}

void frmZorvi::HistorySelect(int slot) {
    if (slot < 0 || slot >= kHistorySize) return;
    // A copy: SetFile rewrites the history it was taken from.
    const std::string file = history_[static_cast<std::size_t>(slot)];
    SetFile(file);
}

}  // namespace zorvi
