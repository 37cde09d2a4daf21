// zplayer.exe: a stand-in player for the tests; it only records how it was started.
//
// Each start appends one record to the record file and ends at once with exit code 0:
//   cmdline=<the full command line, as GetCommandLineA gives it>
//   cwd=<the working folder>
//   console=<1 when it has a console window, else 0>
//   arg1=<first argument, as the C runtime splits the command line>
//   arg2=...                  (one line per argument; none when there are none)
// Lines end with CRLF; a new record always begins with its "cmdline=" line.
// The record file is the path in the environment variable ZPLAYER_RECORD, or
// zplayer.log beside zplayer.exe when that variable is not set or empty.
#include <windows.h>

#include <fstream>
#include <string>

int main(int argc, char** argv) {
    std::string recordPath;
    char buffer[MAX_PATH + 1] = {};
    const DWORD length = GetEnvironmentVariableA("ZPLAYER_RECORD", buffer, sizeof buffer);
    if (length > 0 && length < sizeof buffer) recordPath = buffer;
    if (recordPath.empty()) {
        const DWORD exeLength = GetModuleFileNameA(nullptr, buffer, MAX_PATH);
        std::string exe(buffer, exeLength);
        recordPath = exe.substr(0, exe.find_last_of('\\') + 1) + "zplayer.log";
    }
    const DWORD folderLength = GetCurrentDirectoryA(sizeof buffer, buffer);
    const std::string folder(buffer, folderLength < sizeof buffer ? folderLength : 0);

    std::ofstream record(recordPath, std::ios::binary | std::ios::app);
    record << "cmdline=" << GetCommandLineA() << "\r\n" << "cwd=" << folder << "\r\n"
           << "console=" << (GetConsoleWindow() != nullptr ? 1 : 0) << "\r\n";
    for (int i = 1; i < argc; ++i) record << "arg" << i << "=" << argv[i] << "\r\n";
    return record ? 0 : 1;
}
