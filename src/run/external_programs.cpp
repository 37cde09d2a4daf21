// Starting and ending the launcher list's programs.
#include "run/external_programs.h"

#include "core/messages_win.h"
#include "core/strings_win.h"
#include "core/wide_win.h"
#include "files/path_win.h"
#include "files/variables_win.h"
#include "run/clsExecute.h"
#include "run/window_state.h"
#include "settings/ini_win.h"
#include "settings/lists_win.h"
#include "ui/main/menu_text.h"

namespace zorvi {
namespace {

constexpr wchar_t kProcedureName[] = L"ExternalProgram";
constexpr int kNormalWindow = 1;

std::string Expand(const std::string& text) {
    return mdlFile::ExpandVariables(text, false, false, GetDefaultPreset(PresetForm::Path));
}

}  // namespace

void ExternalPrograms::Load(const std::string& mainFile) {
    entries_.clear();
    for (auto& record : settings::ReadExternalPrograms(mainFile)) {
        entries_.push_back({std::move(record), std::nullopt});
    }
}

bool ExternalPrograms::Launch(const std::string& command, const std::string& option,
                              const std::string& folder, int windowState, HWND owner,
                              std::optional<std::size_t>& launch) {
    const std::size_t before = LaunchedPrograms().size();
    DWORD exitCode = 0;
    DWORD error = 0;
    // A state of 0 ("Hide") or one out of range starts a normal window: a
    // launched editor must never be invisible and out of reach.
    if (!ExecuteProgram(command, option, folder, ShowCommandForWindowState(windowState), owner,
                        false, exitCode, &error)) {
        const std::string commandLine = option.empty() ? command : command + " " + option;
        ReportError(owner, static_cast<long>(error),
                    LoadText(LaunchErrorTextId(error)) + L"\r\n" + Widen(commandLine),
                    kProcedureName);
        return false;
    }
    // Recorded only while the main window runs; the record keeps the last start.
    if (LaunchedPrograms().size() > before) launch = LaunchedPrograms().size() - 1;
    return true;
}

bool ExternalPrograms::Start(std::size_t index, HWND owner) {
    if (index >= entries_.size()) return false;
    Entry& entry = entries_[index];
    return Launch(Expand(entry.record.command), Expand(entry.record.option),
                  Expand(entry.record.startUpFolder), entry.record.windowState, owner,
                  entry.lastLaunch);
}

bool ExternalPrograms::StartRecord(const settings::ExternalProgramRecord& record, HWND owner) {
    std::optional<std::size_t> unused;
    return Launch(Expand(record.command), Expand(record.option), Expand(record.startUpFolder),
                  record.windowState, owner, unused);
}

bool ExternalPrograms::StartTyped(const std::string& text, HWND owner) {
    if (text.empty()) return false;
    std::optional<std::size_t> unused;
    return Launch(Expand(text), {}, mdlFile::GetAppFolder(), kNormalWindow, owner, unused);
}

void ExternalPrograms::StartAutoRun(HWND owner) {
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (entries_[i].record.autoRun) Start(i, owner);
    }
}

void ExternalPrograms::EndAutoShutDown() {
    for (Entry& entry : entries_) {
        if (entry.record.autoShutDown && entry.lastLaunch) EndLaunchedProgram(*entry.lastLaunch);
    }
}

}  // namespace zorvi
