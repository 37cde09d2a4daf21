// Playing the generated file and opening the target in the editor, through
// the launch operation that records what it started.
#include "run/play.h"

#include <new>
#include <optional>

#include "core/mdlMain.h"
#include "core/messages_win.h"
#include "core/strings_win.h"
#include "core/wide_win.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "files/variables.h"
#include "files/variables_win.h"
#include "res/string_ids.h"
#include "run/clsExecute.h"
#include "run/compile_text.h"
#include "run/window_state.h"
#include "settings/ini_win.h"
#include "settings/schema.h"

namespace zorvi {
namespace {

namespace cfg = settings::config_file;
namespace main_file = settings::main_file;

constexpr wchar_t kProcedureName[] = L"Play";
constexpr long kOutOfMemoryNumber = 7;

void Play(const std::string& givenConfiguration, HWND owner, const std::string& givenTarget) {
    const std::string configuration =
        givenConfiguration.empty() ? GetDefaultPreset() : givenConfiguration;
    if (!ReadIniFlag(cfg::kUseGUI, configuration)) return;

    const std::string player =
        mdlFile::ExpandVariables(ReadIni(cfg::kPlayer, configuration), false, false, configuration);
    const std::string extension = ReadIni(cfg::kExtension, configuration);
    const std::string target = givenTarget.empty() ? mdlMain::TargetFile() : givenTarget;
    const std::string file =
        PlaysGeneratedFile(target, ReadIniFlag(cfg::kUseCUI, configuration), extension)
            ? mdlFile::ChangeExtension(target, extension)
            : target;
    if (!mdlFile::FileExists(file)) return;

    const int showCommand = ShowCommandForWindowState(ReadIniInt(cfg::kGUIWindowState, configuration));
    DWORD exitCode = 0;
    if (ReadIniFlag(cfg::kUseAssociated, configuration)) {
        ExecuteProgram(file, "", "", showCommand, owner, false, exitCode);
    } else if (mdlFile::FileExists(player)) {
        ExecuteProgram(player, file, "", showCommand, owner, false, exitCode);
    } else {
        ShowCheckMessage(owner, LoadText(ids::kWindowsProgramNotFound) + L"\r\n" + Widen(player),
                         MB_ICONINFORMATION);
    }
}

}  // namespace

void CMD_DoPlay(const std::string& configurationPath, HWND owner, const std::string& targetFile) {
    try {
        Play(configurationPath, owner, targetFile);
    } catch (const std::bad_alloc&) {
        ReportError(owner, kOutOfMemoryNumber, LoadText(ids::kOutOfMemory), kProcedureName);
    } catch (...) {
        ReportError(owner, 0, LoadText(ids::kUnknownError), kProcedureName);
    }
}

namespace {

// The target in the editor: the associated program, or Setting/Editor with
// the target as its one argument, or, for a line and with
// Setting/EditorLineArgs, with those arguments as written. The associated
// program cannot be told a line: it gets the file as always.
void OpenInEditor(HWND owner, std::optional<int> line) {
    const std::string& settingsFile = mdlMain::MainSettingsPath();
    const int showCommand =
        ShowCommandForWindowState(ReadIniInt(main_file::kEditorWindowState, settingsFile));
    const std::string target = mdlMain::TargetFile();
    const std::string folder = mdlFile::GetAppFolder();
    DWORD exitCode = 0;
    if (ReadIniFlag(main_file::kUseAssociatedEditor, settingsFile)) {
        ExecuteProgram(target, "", folder, showCommand, owner, false, exitCode);
        return;
    }
    const std::string editor =
        mdlFile::ExpandVariables(ReadIni(main_file::kEditor, settingsFile), false, false, "");
    const std::string lineArguments = ReadIni(main_file::kEditorLineArgs, settingsFile);
    if (line && !lineArguments.empty()) {
        const std::string arguments = mdlFile::ExpandVariables(
            mdlFile::ExpandLineVariable(lineArguments, *line), false, false, "");
        ExecuteProgram(editor, arguments, folder, showCommand, owner, false, exitCode, nullptr,
                       ParameterText::AsWritten);
        return;
    }
    ExecuteProgram(editor, target, folder, showCommand, owner, false, exitCode);
}

}  // namespace

void StartEditor(HWND owner) {
    try {
        if (!ReadIniFlag(main_file::kAutoOpen, mdlMain::MainSettingsPath())) return;
        OpenInEditor(owner, std::nullopt);
    } catch (...) {
        // Opening the editor is a convenience: a failure stays silent.
    }
}

void OpenEditorAtLine(HWND owner, int line) {
    try {
        if (mdlMain::TargetFile().empty()) return;
        OpenInEditor(owner, line);
    } catch (...) {
        // As StartEditor: the log stays where it was, without a word.
    }
}

}  // namespace zorvi
