// The compile pipeline: writes the configured script as Zorvi.bat, runs it
// through the command interpreter, repairs short names and judges the output.
// Every decision is in compile_text.cpp; this file asks Windows and the settings.
#include "run/compile.h"

#include <new>
#include <optional>

#include "core/mdlMain.h"
#include "core/messages_win.h"
#include "core/strings_win.h"
#include "core/text.h"
#include "core/wide_win.h"
#include "files/path_text.h"
#include "files/path_win.h"
#include "files/variables_win.h"
#include "res/string_ids.h"
#include "run/clsExecute.h"
#include "run/play.h"
#include "run/required_tools.h"
#include "run/window_state.h"
#include "settings/ini_win.h"
#include "settings/list_layouts.h"
#include "settings/preset.h"
#include "settings/schema.h"
#include "ui/result/frmResult.h"
#include "ui/result/result_text.h"

namespace zorvi {
namespace {

namespace cfg = settings::config_file;

constexpr wchar_t kProcedureName[] = L"Compile";
// The status bar's text while a compile runs; the same in every language.
constexpr char kNowConvertingTo[] = "Now Converting to ";
constexpr long kOutOfMemoryNumber = 7;  // the number the error report has always used for it

// A failure that the compile traps and reports with ReportError.
struct TrappedError {
    long number = 0;
    std::wstring description;
};

std::wstring SystemMessage(DWORD error) {
    wchar_t* text = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, error, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    const UniqueLocalMemory owned(text);
    std::wstring message = length > 0 && text != nullptr ? std::wstring(text, length) : L"";
    while (!message.empty() && (message.back() == L'\n' || message.back() == L'\r')) {
        message.pop_back();
    }
    return message.empty() ? LoadText(ids::kUnknownError) : message;
}

// The failed path on the first line, the system's reason on the second.
TrappedError PlatformError(const std::string& path, DWORD error) {
    return {static_cast<long>(error), Widen(path) + L"\r\n" + SystemMessage(error)};
}

// The compile whose interpreter runs now, so that the user can stop it.
struct RunningCompile {
    clsExecute* runner = nullptr;
    bool stopRequested = false;
};

RunningCompile& Running() {
    static RunningCompile running;
    return running;
}

// Every process a compile starts runs in this job; closing its last handle,
// which the system does when Zorvi ends whichever way, ends them all.
HANDLE CompileJob() {
    static const UniqueHandle job = [] {
        UniqueHandle created(CreateJobObjectA(nullptr, nullptr));
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
        limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
        if (created && !SetInformationJobObject(created.get(), JobObjectExtendedLimitInformation,
                                                &limits, sizeof limits)) {
            created.reset();
        }
        return created;
    }();
    return job.get();
}

std::string Interpreter() {
    std::optional<std::string> comSpec;
    std::string buffer(32767, '\0');
    const DWORD length = GetEnvironmentVariableA("COMSPEC", buffer.data(),
                                                 static_cast<DWORD>(buffer.size()));
    if (length > 0 && length < buffer.size()) comSpec = buffer.substr(0, length);
    return InterpreterProgram(comSpec);
}

std::optional<OutputState> ReadOutputState(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!mdlFile::FileExists(path) ||
        !GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data)) {
        return std::nullopt;
    }
    OutputState state;
    state.exists = true;
    state.size = (static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
    state.lastWrite = (static_cast<std::uint64_t>(data.ftLastWriteTime.dwHighDateTime) << 32) |
                      data.ftLastWriteTime.dwLowDateTime;
    return state;
}

std::string ReadScript(const IniFile& configuration) {
    const auto& block = cfg::kScript;
    const int lines = configuration.ReadInt(block.section, block.countKey, 0);
    return BuildScriptText(lines, [&](int line) {
        return configuration.Read(block.section, settings::NumberedKey(block.linePrefix, line), "");
    });
}

// The file a short name of the target leads to, seen from the compile that
// expects longPath (the target with this extension).
ShortNameOwner ShortNameOwnerOf(const std::string& shortPath, const std::string& longPath) {
    const std::string found = mdlFile::FileExists(shortPath) ? mdlFile::GetLongPath(shortPath) : "";
    return ClassifyShortName(shortPath, found, longPath);
}

// Before the run: what the tool chain will write through the short name must
// not meet an old file. Another file's short name is left alone.
bool DeleteShortNamed(const std::string& shortTarget, const std::string& target,
                      const std::string& extension) {
    const std::string shortPath = mdlFile::ChangeExtension(shortTarget, extension);
    const ShortNameOwner owner =
        ShortNameOwnerOf(shortPath, mdlFile::ChangeExtension(target, extension));
    if (owner != ShortNameOwner::Alias && owner != ShortNameOwner::Stray) return false;
    return DeleteFileA(shortPath.c_str()) != FALSE;
}

// After the run: a file written through the short name gets the long name.
// True when the long-named file is there afterwards.
bool RenameBack(const std::string& shortTarget, const std::string& target,
                const std::string& extension) {
    const std::string shortPath = mdlFile::ChangeExtension(shortTarget, extension);
    const std::string longPath = mdlFile::ChangeExtension(target, extension);
    switch (ShortNameOwnerOf(shortPath, longPath)) {
    case ShortNameOwner::Alias:
        return true;  // it already is the long-named file
    case ShortNameOwner::Stray:
        if (FindChar(mdlFile::GetFileName(shortPath), '~') != std::string::npos) {
            DeleteFileA(longPath.c_str());
        }
        return MoveFileA(shortPath.c_str(), longPath.c_str()) != FALSE;
    case ShortNameOwner::Missing:
    case ShortNameOwner::Foreign:
        break;
    }
    return false;
}

bool WriteScriptFile(const std::string& path, const std::string& text, TrappedError& error) {
    UniqueHandle file(CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        error = PlatformError(path, GetLastError());
        return false;
    }
    DWORD written = 0;
    const bool ok = WriteFile(file.get(), text.data(), static_cast<DWORD>(text.size()), &written,
                              nullptr) != FALSE &&
                    written == text.size();
    const DWORD writeError = GetLastError();
    file.reset();
    if (!ok) {
        error = PlatformError(path, writeError == ERROR_SUCCESS ? ERROR_WRITE_FAULT : writeError);
        // A half-written script must not be run by a later compile either.
        DeleteFileA(path.c_str());
    }
    return ok;
}

// How the shared part of a compile ended.
enum class Stage {
    NoConsole,  // UseCUI is off: nothing was compiled, playing may follow
    Stopped,    // a notice was shown; nothing more happens
    Failed,     // a trapped failure, to be reported
    Compiled,   // the script ran; code holds the verdict
};

struct Outcome {
    Stage stage = Stage::Stopped;
    int code = 0;
    TrappedError error;
};

Outcome EndedAt(Stage stage) {
    Outcome outcome;
    outcome.stage = stage;
    return outcome;
}

// The names one compile works on, taken once when it starts: a target
// changed meanwhile (a drop, the history) is never touched by this compile.
struct CompileNames {
    std::string target;
    std::string extension;
    std::string output;
    std::string log;
};

CompileNames NamesFor(const std::string& target, const IniFile& configuration) {
    CompileNames names;
    names.target = target;
    names.extension = configuration.Read(cfg::kExtension);
    names.output = mdlFile::ChangeExtension(target, names.extension);
    names.log = mdlFile::ChangeExtension(target, "log");
    return names;
}

// From the compiler's folder to the verdict: the part both drivers share.
// Each section of the configuration is read once, at the first key asked of
// it, so a compile costs a handful of file reads, not one per key.
Outcome RunCompileSteps(const CompileNames& names, const IniFile& configuration, HWND owner) {
    const std::string console = mdlFile::ExpandSystemVariables(configuration.Read(cfg::kConsole));
    const std::string consoleFolder = mdlFile::GetFolderOf(console);

    if (!configuration.ReadFlag(cfg::kUseCUI)) return EndedAt(Stage::NoConsole);

    if (!mdlFile::PathExists(consoleFolder)) {
        ShowCheckMessage(owner, LoadText(ids::kDosProgramFolderNotFound), MB_ICONINFORMATION);
        return EndedAt(Stage::Stopped);
    }
    std::string missing;
    const int missingCount = RequiredToolsCheck(configuration, consoleFolder, missing);
    if (missingCount > 0) {
        ShowCheckMessage(owner, RequiredToolsMessage(missingCount, missing), MB_ICONINFORMATION);
        return EndedAt(Stage::Stopped);
    }

    std::uint64_t oldLastWrite = 0;
    if (const auto before = ReadOutputState(names.output)) oldLastWrite = before->lastWrite;

    std::string script = ReadScript(configuration);

    const bool shortNames = UseShortNames(configuration.ReadFlag(cfg::kForceShortName),
                                          names.target);
    // Asked of the file system only when the short name is used.
    const std::string shortTarget = shortNames ? mdlFile::GetShortPath(names.target) : "";
    if (shortNames) {
        DeleteShortNamed(shortTarget, names.target, "LOG");
        if (DeleteShortNamed(shortTarget, names.target, names.extension)) oldLastWrite = 0;
    }

    script = mdlFile::ExpandScriptVariables(script, shortNames, configuration);
    const bool stepMode = configuration.ReadFlag(cfg::kStepMode);
    if (stepMode) script = AddStepPauses(script);

    std::string tempName;
    if (HasTempToken(script)) {
        tempName = mdlFile::GetUniqueTempName(console);
        DeleteFileA(tempName.c_str());
        script = ReplaceTempToken(script, mdlFile::GetFileName(tempName));
    }

    Outcome outcome = EndedAt(Stage::Compiled);
    const std::string scriptPath = ScriptFilePath();
    if (!WriteScriptFile(scriptPath, ScriptFileText(script), outcome.error)) {
        outcome.stage = Stage::Failed;
    } else if (DWORD startError = ERROR_SUCCESS;
               !DosCommandCreate(configuration, stepMode, owner, &startError)) {
        outcome.stage = Stage::Failed;
        outcome.error = PlatformError(Interpreter(), startError);
    }
    if (!tempName.empty()) DeleteFileA(tempName.c_str());
    if (outcome.stage == Stage::Failed) return outcome;

    VerdictFacts verdict;
    if (shortNames) {
        verdict.renameBackDue = true;
        RenameBack(shortTarget, names.target, "log");
        verdict.outputRenamedBack = RenameBack(shortTarget, names.target, names.extension);
    }
    verdict.detectError = configuration.ReadFlag(cfg::kDetectError);
    verdict.output = ReadOutputState(names.output).value_or(OutputState{});
    verdict.oldLastWrite = oldLastWrite;
    // A stopped compile is a failure whatever it left behind.
    outcome.code = Running().stopRequested ? kResultStopped : CompileVerdict(verdict);
    return outcome;
}

FilterFacts FilterFactsOfSettings() {
    const std::string& settingsFile = mdlMain::MainSettingsPath();
    namespace filter = settings::main_file::filter;
    return {
        .itemCount = ReadIniInt(settings::main_file::kFilters.section,
                                settings::main_file::kFilters.countKey, 0, settingsFile),
        .extensions =
            [&settingsFile](int row) {
                return ReadIni(filter::kExtension.section,
                               settings::NumberedKey(filter::kExtension.name, row),
                               filter::kExtension.fallback, settingsFile);
            },
        .configuration =
            [&settingsFile](int row) {
                return ReadIni(filter::kDefault.section,
                               settings::NumberedKey(filter::kDefault.name, row),
                               filter::kDefault.fallback, settingsFile);
            },
        .configurationExists =
            [](const std::string& name) {
                return mdlFile::FileExists(PresetPath(mdlFile::GetAppFolder(), name));
            },
    };
}

void CompileCommand(CompileHost& host) {
    const HWND owner = host.Owner();
    const std::string target = mdlMain::TargetFile();
    if (!mdlFile::FileExists(target)) return;

    const IniFile configuration(GetDefaultPreset());
    if (!mdlFile::FileExists(configuration.Path())) {
        ShowCheckMessage(owner, LoadText(ids::kConfigurationFileNotFound), MB_ICONINFORMATION);
        return;
    }
    const CompileNames names = NamesFor(target, configuration);
    host.ViewChange_StatusBar(kNowConvertingTo + mdlFile::GetFileName(names.output));

    const Outcome outcome = RunCompileSteps(names, configuration, owner);
    switch (outcome.stage) {
    case Stage::Stopped:
        return;
    case Stage::Failed:
        ReportError(owner, outcome.error.number, outcome.error.description, kProcedureName);
        return;
    case Stage::Compiled:
        if (outcome.code != 0) {
            // The log of this compile, even if the target has changed meanwhile.
            ResultWindow().ShowResult(outcome.code, names.log);
            return;
        }
        host.ViewChange_LogView(mdlFile::FileExists(names.log));
        if (ReadIniFlag(settings::main_file::kAutoCloseAfterCompile, mdlMain::MainSettingsPath())) {
            ResultWindow().HideResult();
        }
        break;
    case Stage::NoConsole:
        break;
    }
    if (configuration.ReadFlag(cfg::kUseGUIAfterCompile)) {
        CMD_DoPlay(configuration.Path(), owner, names.target);
    }
    host.ViewUpdate();
}

}  // namespace

std::string ScriptFilePath() { return mdlFile::GetAppFolder() + mdlMain::AppTitle() + ".bat"; }

void CMD_DoCompile(CompileHost& host) {
    // Only the call that set the busy flag may clear it or write the status
    // bar: a compile started from inside another's wait leaves both alone.
    bool& compiling = host.Compiling();
    if (compiling) return;
    compiling = true;
    try {
        CompileCommand(host);
    } catch (const std::bad_alloc&) {
        ReportError(host.Owner(), kOutOfMemoryNumber, LoadText(ids::kOutOfMemory), kProcedureName);
    } catch (...) {
        ReportError(host.Owner(), 0, LoadText(ids::kUnknownError), kProcedureName);
    }
    try {
        host.ViewChange_StatusBar(GetDefaultPreset(PresetForm::Name));
    } catch (...) {
        // Nothing may keep the flag from being cleared.
    }
    compiling = false;
}

int DoCompile2(const std::string& targetFile, const std::string& presetPath, bool play) {
    try {
        mdlMain::SetTargetFile(targetFile);
        const ConfigurationChoiceFacts facts{
            .fileExists = [](const std::string& path) { return mdlFile::FileExists(path); },
            .askUseDefault =
                [](const std::string& presetFileName) {
                    return ShowCheckMessage(nullptr,
                                            Widen(presetFileName) +
                                                LoadText(ids::kConfigNotFoundUseDefault),
                                            MB_YESNO | MB_ICONINFORMATION) == IDYES;
                },
            .extensionFilter =
                [&targetFile](std::string& name) { return ExtensionFilter(targetFile, name); },
            .activeConfigurationPath = [] { return GetDefaultPreset(); },
            .appFolder = mdlFile::GetAppFolder(),
        };
        const std::optional<std::string> configuration =
            ChooseCompileConfiguration(presetPath, facts);
        if (!configuration) return 0;
        if (!mdlFile::FileExists(*configuration)) {
            ShowCheckMessage(nullptr, LoadText(ids::kConfigurationFileNotFound),
                             MB_ICONINFORMATION);
            return 0;
        }
        const IniFile opened(*configuration);
        const Outcome outcome = RunCompileSteps(NamesFor(targetFile, opened), opened, nullptr);
        switch (outcome.stage) {
        case Stage::Stopped:
            return 0;
        case Stage::Failed:
            ReportError(nullptr, outcome.error.number, outcome.error.description, kProcedureName);
            return 0;
        case Stage::Compiled:
            if (outcome.code != 0) return outcome.code;
            break;
        case Stage::NoConsole:
            break;
        }
        if (play) CMD_DoPlay(*configuration, nullptr, targetFile);
        return 0;
    } catch (const std::bad_alloc&) {
        ReportError(nullptr, kOutOfMemoryNumber, LoadText(ids::kOutOfMemory), kProcedureName);
    } catch (...) {
        ReportError(nullptr, 0, LoadText(ids::kUnknownError), kProcedureName);
    }
    return 0;
}

FilterCode ExtensionFilter(const std::string& file, std::string& configurationName) {
    try {
        return DecideExtensionFilter(file, FilterFactsOfSettings(), configurationName);
    } catch (...) {
        return FilterCode::None;
    }
}

bool DosCommandCreate(const IniFile& configuration, bool stepMode, HWND /*owner*/,
                      DWORD* startError) {
    const int windowState = configuration.ReadInt(cfg::kCUIWindowState);
    // Step mode waits for keys: it always has a console to press them in.
    const int showCommand = stepMode ? SW_SHOWNORMAL : ShowCommandForWindowState(windowState);
    const bool noConsole = !stepMode && windowState == 0;
    clsExecute runner;
    DWORD exitCode = 0;
    RunningCompile& running = Running();
    running.runner = &runner;
    running.stopRequested = false;
    const bool started = runner.RunConsole(InterpreterCommandLine(Interpreter(), ScriptFilePath()),
                                           showCommand, noConsole, CompileJob(), exitCode);
    running.runner = nullptr;
    if (startError != nullptr) *startError = runner.StartError();
    return started;
}

bool CompileStopRequested() { return Running().stopRequested; }

void StopCompile() {
    RunningCompile& running = Running();
    if (running.runner == nullptr) return;
    running.stopRequested = true;
    // Everything the script started is in the job; the interpreter is ended
    // by its handle too, in case the job could not take it.
    if (const HANDLE job = CompileJob(); job != nullptr) TerminateJobObject(job, 1);
    running.runner->Terminate();
}

}  // namespace zorvi
