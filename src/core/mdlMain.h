// Start-up (Main) and the process-wide state every other module reads.
#pragma once

#include <string>
#include <string_view>

namespace zorvi::mdlMain {

// The application title; a second instance appends a blank to its own so
// that looking for the first one's window does not find itself.
const std::string& AppTitle();
void SetAppTitle(std::string title);
const std::string& MainSettingsPath();  // program folder + title + ".ini", fixed at start-up
int LanguageOffset();                   // 0 English, 1000 Japanese
bool InteractiveMode();                 // true while the main window runs
bool UseAltPopUp();
void SetUseAltPopUp(bool on);  // the configuration window, after a save
const std::string& TargetFile();
void SetTargetFile(std::string path);
bool ShuttingDown();
void SetShuttingDown();

// Tests drive the state that start-up would otherwise set.
void SetMainSettingsPath(std::string path);
void SetLanguageOffset(int offset);
void SetInteractiveMode(bool interactive);
// A test that has closed a main window carries on as if it had not.
void ClearShuttingDownForTesting();

// Windows that keep the program alive; the last one to close ends the message loop.
void WindowOpened();
void WindowClosed();
int OpenWindows();

// Splits the command line and takes one of the three roads. Returns the
// process exit code; RunMessageLoop then serves whatever windows it opened.
int Main(std::string_view commandLine);
int RunMessageLoop(int exitCode);

}  // namespace zorvi::mdlMain

namespace zorvi {
// The main settings file, as the windows read and write it.
inline const std::string& MainFile() { return mdlMain::MainSettingsPath(); }
}  // namespace zorvi
