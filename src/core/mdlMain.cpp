// Start-up: the command line, the language, the single instance, and the three
// roads (compile now, show a log, open the main window). Also the state that
// lives for the whole run.
#include "core/mdlMain.h"

#include <windows.h>

#include <memory>

#include "core/command_line.h"
#include "core/instance_win.h"
#include "core/messages_win.h"
#include "core/strings_win.h"
#include "core/text.h"
#include "core/wide_win.h"
#include "files/path_win.h"
#include "res/string_ids.h"
#include "run/compile.h"
#include "run/play.h"
#include "settings/ini_win.h"
#include "settings/lists_win.h"
#include "ui/config/frmConfig.h"
#include "ui/dialogs/frmAbout.h"
#include "ui/main/frmZorvi.h"
#include "ui/result/frmResult.h"

namespace zorvi::mdlMain {
namespace {

struct ProcessState {
    std::string appTitle = "Zorvi";
    std::string mainSettingsPath;
    int languageOffset = 0;
    bool interactiveMode = false;
    bool useAltPopUp = false;
    std::string targetFile;
    bool shuttingDown = false;
    int openWindows = 0;
};

ProcessState& State() {
    static ProcessState state;
    return state;
}

std::unique_ptr<frmZorvi>& MainWindow() {
    static std::unique_ptr<frmZorvi> window;
    return window;
}

// The result window of a one-shot run; the program ends when it is closed.
void ShowResultUntilClosed(int mode) {
    ResultWindow().ShowResult(mode);
    RunResultWindowUntilClosed();
}

void RunCompileNow(const CommandLine& args) {
    if (PrevInstanceRunning(false)) {
        ShowCheckMessage(nullptr, LoadText(ids::kAlreadyStartedCommandMode),
                         MB_ICONINFORMATION | MB_OK);
        return;
    }
    if (args.file.empty()) {
        // The missing path was dropped while the tokens were read: the second line stays empty.
        ShowCheckMessage(nullptr, LoadText(ids::kFileNotFound) + L"\r\n" + Widen(args.file),
                         MB_ICONINFORMATION);
        return;
    }
    SetTargetFile(args.file);
    State().interactiveMode = false;
    const int result = DoCompile2(args.file, args.presetPath, args.play);
    if (result == 1 || result == 2) {
        ShowResultUntilClosed(result);
    } else if (args.showLog) {
        ShowResultUntilClosed(0);
    }
}

void RunShowLog(const CommandLine& args) {
    if (PrevInstanceRunning(true)) return;
    SetTargetFile(args.file);
    State().interactiveMode = false;
    ShowResultUntilClosed(0);
}

void RunWindowMode(const CommandLine& args) {
    State().interactiveMode = true;
    if (PrevInstanceRunning(true)) return;
    auto& window = MainWindow();
    {
        // Building the window asks the settings for some thirty keys: each
        // section is read once instead.
        const IniReadScope settingsOnce;
        State().useAltPopUp = ReadIniFlag(settings::main_file::kUseAltPopUp, MainSettingsPath());
        settings::RebuildPlayerList(MainSettingsPath(), mdlFile::GetAppFolder());
        settings::RebuildEditorList(MainSettingsPath());
        window = std::make_unique<frmZorvi>();
        if (!window->Create(nullptr)) {
            window.reset();
            return;
        }
    }
    window->SetConfigCommand([](int page) { ShowConfigWindow(MainWindow().get(), page); });
    // F1 without a help file, Ctrl+F1, "&About" and toolbar button 7 end here;
    // owned by the main window, the about window stays in front of it.
    window->SetAboutCommand([owner = window->Handle()](int) { AboutWindow(owner).ShowAbout(); });
    window->Start(args.file);
    // The hidden application window, by which a later start finds this one,
    // owns the main window from here on: made once the main window shows,
    // it does not hold up the start.
    SetWindowLongPtrW(window->Handle(), GWLP_HWNDPARENT,
                      reinterpret_cast<LONG_PTR>(ApplicationWindow()));
    // "-play" in window mode plays with the active configuration.
    if (args.play) CMD_DoPlay({}, window->Handle());
}

}  // namespace

const std::string& AppTitle() { return State().appTitle; }
void SetAppTitle(std::string title) { State().appTitle = std::move(title); }
const std::string& MainSettingsPath() { return State().mainSettingsPath; }
void SetMainSettingsPath(std::string path) { State().mainSettingsPath = std::move(path); }
int LanguageOffset() { return State().languageOffset; }
void SetLanguageOffset(int offset) { State().languageOffset = offset; }
void SetInteractiveMode(bool interactive) { State().interactiveMode = interactive; }
bool InteractiveMode() { return State().interactiveMode; }
bool UseAltPopUp() { return State().useAltPopUp; }
void SetUseAltPopUp(bool on) { State().useAltPopUp = on; }
const std::string& TargetFile() { return State().targetFile; }
void SetTargetFile(std::string path) { State().targetFile = std::move(path); }
bool ShuttingDown() { return State().shuttingDown; }
void SetShuttingDown() { State().shuttingDown = true; }
void ClearShuttingDownForTesting() { State().shuttingDown = false; }

void WindowOpened() { ++State().openWindows; }
void WindowClosed() {
    if (--State().openWindows <= 0) PostQuitMessage(0);
}
int OpenWindows() { return State().openWindows; }

int Main(std::string_view commandLine) {
    // Before any path is looked at: on a double-byte system (Shift-JIS) the
    // path helpers must step over whole characters.
    SetLeadByteTest([](unsigned char byte) { return IsDBCSLeadByte(byte) != FALSE; });
    const std::string appFolder = mdlFile::GetAppFolder();
    CommandLine args = InterpretCommandLine(
        TokenizeCommandLine(commandLine), appFolder,
        {.unquote = mdlFile::UnquotePath, .isExistingFile = mdlFile::FileExists});
    // A relative file is taken against the folder Zorvi was started in, so
    // the long form and every later path built from it stay right.
    args.file = mdlFile::GetFullPath(args.file);

    SetMainSettingsPath(appFolder + AppTitle() + ".ini");
    SetLanguageOffset(LanguageOffsetFor(ReadIni(settings::main_file::kLanguage, MainSettingsPath())));

    if (args.compileNow) {
        RunCompileNow(args);
    } else if (args.showLog) {
        RunShowLog(args);
    } else {
        RunWindowMode(args);
    }
    return 0;
}

int RunMessageLoop(int exitCode) {
    if (OpenWindows() <= 0) return exitCode;
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        // The configuration window's Tab, access keys, Enter and Esc.
        if (PreTranslateConfigMessage(message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    // The secondary windows go before the main window they report to.
    ReleaseConfigWindow();
    MainWindow().reset();
    return exitCode;
}

}  // namespace zorvi::mdlMain
