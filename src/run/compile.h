// The compile pipeline: the main window's compile command, the command-line
// compile, the extension filter and the run of the written batch script.
#pragma once

#include <windows.h>

#include <string>

#include "run/compile_text.h"

namespace zorvi {

class IniFile;

// What CMD_DoCompile needs from the main window; the main window implements it.
class CompileHost {
public:
    virtual ~CompileHost() = default;
    virtual HWND Owner() const = 0;
    virtual void ViewChange_StatusBar(const std::string& text) = 0;
    virtual void ViewChange_LogView(bool logExists) = 0;
    virtual void ViewUpdate() = 0;
    virtual bool& Compiling() = 0;  // the busy flag
};

// Compiles mdlMain::TargetFile() with the active configuration, shows the
// verdict in the result window and plays the output when so configured.
// A second call while one runs (from inside its wait) returns at once.
void CMD_DoCompile(CompileHost& host);

// The command-line compile of targetFile: presetPath (may be empty) or the
// configuration the extension filter or the settings choose, then the same
// steps as CMD_DoCompile without the main window. Returns 0, 1, 2 or 4
// (stopped); the caller shows the result window.
int DoCompile2(const std::string& targetFile, const std::string& presetPath, bool play);

// Which configuration the main settings' Filter rows give the file.
FilterCode ExtensionFilter(const std::string& file, std::string& configurationName);

// Runs the already written Zorvi.bat through the interpreter named by COMSPEC
// and waits for it. False when nothing could be started; startError then gets
// the system's reason.
bool DosCommandCreate(const IniFile& configuration, bool stepMode, HWND owner,
                      DWORD* startError = nullptr);

// Ends the running compile's interpreter and everything it started; the
// compile then finishes as stopped (result 4). Nothing when none runs.
void StopCompile();

// Where the batch script is written: beside the program, named after it.
std::string ScriptFilePath();

}  // namespace zorvi
