// The "Frontend" and "File filter" pages: the launcher and file-filter
// records in their lists, the fields of the chosen record, New, Delete, Up
// and Down, choosing files and folders, trying a program, and files dropped
// on the launcher list. The records reach the settings file only on save.
#include "ui/config/frmConfig.h"

#include <shellapi.h>

#include "core/messages_win.h"
#include "core/strings_win.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "files/variables_win.h"
#include "res/string_ids.h"
#include "run/external_programs.h"
#include "settings/lists_win.h"
#include "ui/config/config_parts.h"
#include "ui/config/config_rules.h"
#include "ui/config/config_shell_win.h"

namespace zorvi {

using namespace config_parts;

namespace {

constexpr int kFilterList = 0;
constexpr int kProgramList = 1;
constexpr char kExeFilter[] = "EXE file(*.exe)|*.exe|All files(*.*)|*.*";
constexpr char kExeComFilter[] = "EXE/COM file(*.exe/*.com)|*.exe;*.com|All files(*.*)|*.*";
constexpr char kAllFilter[] = "All files(*.*)|*.*";

void FillRecordList(HWND list, const std::vector<std::string>& names,
                    std::optional<std::size_t> select) {
    // Hundreds of records go in without a redraw each.
    SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    SendMessageW(list, LB_RESETCONTENT, 0, 0);
    for (const std::string& name : names) {
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Widen(name).c_str()));
    }
    SendMessageW(list, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(list, nullptr, TRUE);
    SendMessageW(list, LB_SETCURSEL,
                 select ? static_cast<WPARAM>(*select) : static_cast<WPARAM>(-1), 0);
}

void RenameListEntry(HWND list, std::size_t index, const std::string& name) {
    SendMessageW(list, LB_DELETESTRING, index, 0);
    SendMessageW(list, LB_INSERTSTRING, index, reinterpret_cast<LPARAM>(Widen(name).c_str()));
    SendMessageW(list, LB_SETCURSEL, index, 0);
}

// The buttons that act on a chosen record: on only when they can do something.
void EnableRecordButtons(HWND remove, HWND up, HWND down, std::optional<std::size_t> selected,
                         std::size_t count) {
    EnableWindow(remove, selected.has_value());
    EnableWindow(up, selected && *selected > 0);
    EnableWindow(down, selected && *selected + 1 < count);
}

template <typename Record>
std::vector<std::string> Names(const std::vector<Record>& records) {
    std::vector<std::string> names;
    names.reserve(records.size());
    for (const Record& record : records) names.push_back(record.item);
    return names;
}

}  // namespace

std::optional<std::size_t> frmConfig::Selected(int list) const {
    const LRESULT index = SendMessageW(List1(list), LB_GETCURSEL, 0, 0);
    const std::size_t count = list == kProgramList ? programs_.size() : filters_.size();
    if (index == LB_ERR || index < 0 || static_cast<std::size_t>(index) >= count)
        return std::nullopt;
    return static_cast<std::size_t>(index);
}

void frmConfig::LoadRecords() {
    programs_ = settings::ReadExternalPrograms(MainFile());
    filters_ = settings::ReadFilters(MainFile());
    ShowRecordLists();
}

void frmConfig::ShowRecordLists() {
    ShowProgramList(programs_.empty() ? std::nullopt : std::optional<std::size_t>(0));
    ShowFilterList(filters_.empty() ? std::nullopt : std::optional<std::size_t>(0));
}

void frmConfig::ShowProgramList(std::optional<std::size_t> select) {
    FillRecordList(List1(kProgramList), Names(programs_), select);
    ShowProgramFields();
}

void frmConfig::ShowFilterList(std::optional<std::size_t> select) {
    FillRecordList(List1(kFilterList), Names(filters_), select);
    ShowFilterFields();
}

void frmConfig::ShowProgramFields() {
    const std::optional<std::size_t> selected = Selected(kProgramList);
    const settings::ExternalProgramRecord none;
    const settings::ExternalProgramRecord& record = selected ? programs_[*selected] : none;
    filling_ = true;
    const std::string* texts[] = {&record.item, &record.command, &record.option,
                                  &record.startUpFolder};
    for (int field = kFrontendName; field <= kFrontendFolder; ++field) {
        SetText(txtFrontend_[static_cast<std::size_t>(field)], *texts[field]);
    }
    SetComboIndex(cboCombo(6), WindowStateListIndex(record.windowState));
    SetChecked(chkAutoRun_, record.autoRun);
    SetChecked(chkCheck(6), record.autoShutDown);
    filling_ = false;
    for (const HWND field : txtFrontend_) EnableWindow(field, selected.has_value());
    for (const HWND control :
         {cboCombo(6), chkAutoRun_, chkCheck(6), cmdCommand(kExecuteFrontend),
          cmdCommand(kReferFrontendCommand), cmdCommand(kReferFrontendFolder)}) {
        EnableWindow(control, selected.has_value());
    }
    EnableRecordButtons(cmdCommand(kDeleteFrontend), cmdCommand(kUpFrontend),
                        cmdCommand(kDownFrontend), selected, programs_.size());
}

void frmConfig::FillFilterConfigurations(const std::string& chosen) {
    const HWND combo = cboFilterConfiguration_;
    SendMessageW(combo, CB_RESETCONTENT, 0, 0);
    // The empty entry: files of this type switch to no other configuration.
    SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L""));
    int selected = 0;
    for (const std::string& name : configurationNames_) {
        const auto index = static_cast<int>(
            SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Widen(name).c_str())));
        if (name == chosen) selected = index;
    }
    // A configuration that no longer exists stays chosen rather than being lost.
    if (!chosen.empty() && selected == 0) {
        selected = static_cast<int>(
            SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Widen(chosen).c_str())));
    }
    SetComboIndex(combo, selected);
}

void frmConfig::ShowFilterFields() {
    const std::optional<std::size_t> selected = Selected(kFilterList);
    const settings::FilterRecord none;
    const settings::FilterRecord& record = selected ? filters_[*selected] : none;
    filling_ = true;
    SetText(txtFilter(kFilterName), record.item);
    SetText(txtFilter(kFilterExtension), record.extension);
    FillFilterConfigurations(record.configuration);
    filling_ = false;
    for (const HWND control :
         {txtFilter(kFilterName), txtFilter(kFilterExtension), cboFilterConfiguration_}) {
        EnableWindow(control, selected.has_value());
    }
    EnableRecordButtons(cmdCommand(kDeleteFilter), cmdCommand(kUpFilter), cmdCommand(kDownFilter),
                        selected, filters_.size());
}

void frmConfig::OnProgramFieldChanged(HWND control) {
    const std::optional<std::size_t> selected = Selected(kProgramList);
    if (filling_ || !selected) return;
    settings::ExternalProgramRecord& record = programs_[*selected];
    if (control == txtFrontend(kFrontendName)) {
        record.item = Text(control);
        RenameListEntry(List1(kProgramList), *selected, record.item);
    } else if (control == txtFrontend(kFrontendCommand)) {
        record.command = Text(control);
    } else if (control == txtFrontend(kFrontendOption)) {
        record.option = Text(control);
    } else if (control == txtFrontend(kFrontendFolder)) {
        record.startUpFolder = Text(control);
    } else if (control == cboCombo(6)) {
        record.windowState = WindowStateFromListIndex(ComboIndex(control));
    } else if (control == chkAutoRun_) {
        record.autoRun = Checked(control);
    } else if (control == chkCheck(6)) {
        record.autoShutDown = Checked(control);
    }
}

void frmConfig::OnFilterFieldChanged(HWND control) {
    const std::optional<std::size_t> selected = Selected(kFilterList);
    if (filling_ || !selected) return;
    settings::FilterRecord& record = filters_[*selected];
    if (control == txtFilter(kFilterName)) {
        record.item = Text(control);
        RenameListEntry(List1(kFilterList), *selected, record.item);
    } else if (control == txtFilter(kFilterExtension)) {
        record.extension = Text(control);
    } else if (control == cboFilterConfiguration_) {
        const int chosen = ComboIndex(control);
        const auto length = SendMessageW(control, CB_GETLBTEXTLEN, static_cast<WPARAM>(chosen), 0);
        if (chosen < 0 || length < 0) return;
        std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
        SendMessageW(control, CB_GETLBTEXT, static_cast<WPARAM>(chosen),
                     reinterpret_cast<LPARAM>(text.data()));
        record.configuration = Narrow(text.c_str());
    }
}

void frmConfig::OnListCommand(int index) {
    const std::string newName = Narrow(LoadText(ids::kNewEntryName));
    // No reader goes past this many records, so no more are made.
    const auto full = [](std::size_t count) {
        return count >= static_cast<std::size_t>(settings::kMaxListEntries);
    };
    const std::optional<std::size_t> program = Selected(kProgramList);
    const std::optional<std::size_t> filter = Selected(kFilterList);
    switch (index) {
    case kNewFrontend:
        if (full(programs_.size())) {
            MessageBeep(MB_ICONEXCLAMATION);
            return;
        }
        programs_.emplace_back();
        programs_.back().item = newName;
        ShowProgramList(programs_.size() - 1);
        SetFocus(txtFrontend(kFrontendName));
        SendMessageW(txtFrontend(kFrontendName), EM_SETSEL, 0, -1);
        break;
    case kDeleteFrontend:
        if (program) ShowProgramList(RemoveEntry(programs_, *program));
        break;
    case kUpFrontend:
    case kDownFrontend:
        if (program) ShowProgramList(MoveEntry(programs_, *program, index == kUpFrontend ? -1 : 1));
        break;
    case kNewFilter:
        if (full(filters_.size())) {
            MessageBeep(MB_ICONEXCLAMATION);
            return;
        }
        filters_.emplace_back();
        filters_.back().item = newName;
        ShowFilterList(filters_.size() - 1);
        SetFocus(txtFilter(kFilterName));
        SendMessageW(txtFilter(kFilterName), EM_SETSEL, 0, -1);
        break;
    case kDeleteFilter:
        if (filter) ShowFilterList(RemoveEntry(filters_, *filter));
        break;
    case kUpFilter:
    case kDownFilter:
        if (filter) ShowFilterList(MoveEntry(filters_, *filter, index == kUpFilter ? -1 : 1));
        break;
    default: break;
    }
}

void frmConfig::ReferFile(int index) {
    const struct {
        int command;
        HWND field;
        const char* filter;
        int titleId;
    } refers[] = {
        {kReferEditor, cboCombo(4), kExeFilter, ids::kFrameEditor},
        {kReferConsole, txtText(2), kExeComFilter, ids::kFrameConsoleApplication},
        {kReferPlayer, cboCombo(2), kExeFilter, ids::kFramePlayer},
        {kReferFrontendCommand, txtFrontend(kFrontendCommand), kExeFilter,
         ids::kLabelFrontendCommand},
        {kReferRequiredFile, txtScript(1), kAllFilter, ids::kFrameRequiredFiles},
    };
    for (const auto& refer : refers) {
        if (refer.command != index) continue;
        const std::string compilerFolder =
            mdlFile::GetFolderOf(mdlFile::ExpandSystemVariables(Text(txtText(2))));
        const std::string current = refer.command == kReferRequiredFile
                                        ? compilerFolder
                                        : mdlFile::GetFolderOf(Text(refer.field));
        std::string chosen;
        if (!mdlFile::BrowseForFile(Handle(), Narrow(LoadText(refer.titleId)), refer.filter,
                                    OFN_FILEMUSTEXIST | OFN_HIDEREADONLY, current, chosen)) {
            return;
        }
        if (refer.command != kReferRequiredFile) {
            SetText(refer.field, chosen);
            return;
        }
        // Required files are named below the compiler's folder, one per line.
        std::string list = Text(refer.field);
        if (!list.empty() && !list.ends_with("\r\n")) list += "\r\n";
        list += RequiredFileEntry(compilerFolder, chosen) + "\r\n";
        SetText(refer.field, list);
        return;
    }
}

void frmConfig::ReferFolder() {
    if (const auto folder = BrowseForFolder(Handle(), LoadText(ids::kLabelFrontendWorkFolder))) {
        SetText(txtFrontend(kFrontendFolder), *folder);
    }
}

void frmConfig::ExecuteProgramRecord() {
    if (const auto selected = Selected(kProgramList)) {
        ExternalPrograms::StartRecord(programs_[*selected], Handle());
    }
}

void frmConfig::OnDropFiles(HDROP drop) {
    std::vector<std::string> paths;
    const UINT count = DragQueryFileA(drop, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count; ++i) {
        std::string buffer(mdlFile::kPathBuffer, '\0');
        const UINT length = DragQueryFileA(drop, i, buffer.data(), mdlFile::kPathBuffer);
        paths.push_back(mdlFile::TrimNull(buffer.substr(0, length)));
    }
    DragFinish(drop);
    AddDroppedFiles(paths);
}

void frmConfig::AddDroppedFiles(const std::vector<std::string>& paths) {
    std::wstring refused;
    const auto refuse = [&refused](const std::wstring& why) {
        if (!refused.empty()) refused += L"\r\n\r\n";
        refused += why;
    };
    const std::size_t before = programs_.size();
    for (const std::string& path : paths) {
        if (programs_.size() >= static_cast<std::size_t>(settings::kMaxListEntries)) break;
        const std::wstring cannot = LoadText(ids::kCannotDragAndDrop) + L"\r\n" + Widen(path);
        switch (ClassifyDroppedFile(path, mdlFile::IsFolder(path))) {
        case DropKind::Program:
            programs_.push_back(
                RecordForDroppedFile(path, LaunchTarget{path, {}, {}, SW_SHOWNORMAL}));
            break;
        case DropKind::Shortcut: {
            const std::optional<LaunchTarget> target = ReadShortcut(path);
            if (!target) {
                refuse(cannot);
            } else if (target->path.empty() || !mdlFile::PathExists(target->path)) {
                refuse(FormatText(LoadText(ids::kShortcutTargetMissing),
                                  {Widen(path), Widen(target->path)}));
            } else {
                programs_.push_back(RecordForDroppedFile(path, *target));
            }
            break;
        }
        case DropKind::Refused: refuse(cannot); break;
        }
    }
    if (programs_.size() > before) ShowProgramList(programs_.size() - 1);
    if (!refused.empty()) ShowCheckMessage(Handle(), refused, MB_OK | MB_ICONINFORMATION);
}

LRESULT CALLBACK frmConfig::ListProc(HWND list, UINT message, WPARAM wParam, LPARAM lParam,
                                     UINT_PTR id, DWORD_PTR data) noexcept {
    try {
        if (message == WM_DROPFILES) {
            reinterpret_cast<frmConfig*>(data)->OnDropFiles(reinterpret_cast<HDROP>(wParam));
            return 0;
        }
    } catch (...) {
        // Nothing may unwind into the system's dispatcher.
    }
    if (message == WM_NCDESTROY) RemoveWindowSubclass(list, &frmConfig::ListProc, id);
    return DefSubclassProc(list, message, wParam, lParam);
}

}  // namespace zorvi
