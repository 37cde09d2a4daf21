// zorvi.exe: hands the raw command line to Main and serves the windows it opens.
#include <windows.h>

#include "core/mdlMain.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR commandLine, int) {
    const int exitCode = zorvi::mdlMain::Main(commandLine != nullptr ? commandLine : "");
    return zorvi::mdlMain::RunMessageLoop(exitCode);
}
