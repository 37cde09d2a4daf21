// zplayer.exe: a stand-in player for the tests; it only records how it was started.
//
// Each start appends one record to the record file and ends with exit code 0:
//   cmdline=<the command line, as GetCommandLineA gives it>
//   cwd=<the working folder>
//   console=<1 when it has a console window, else 0>
//   arg1=<first argument, as the C runtime splits the command line>, arg2=..., one line each
// Lines end with CRLF; a record begins with its "cmdline=" line. The record file is
// the path in ZPLAYER_RECORD, or zplayer.log beside zplayer.exe when that is not set.
#include <windows.h>

#include <fstream>
#include <string>

int main(int argc, char** argv) {
    char buffer[MAX_PATH + 1] = {};
    DWORD length = GetEnvironmentVariableA("ZPLAYER_RECORD", buffer, sizeof buffer);
    std::string recordPath(buffer, length < sizeof buffer ? length : 0);
    if (recordPath.empty()) {
        const std::string exe(buffer, GetModuleFileNameA(nullptr, buffer, MAX_PATH));
        recordPath = exe.substr(0, exe.find_last_of('\\') + 1) + "zplayer.log";
    }
    length = GetCurrentDirectoryA(sizeof buffer, buffer);
    std::ofstream record(recordPath, std::ios::binary | std::ios::app);
    record << "cmdline=" << GetCommandLineA() << "\r\ncwd="
           << std::string(buffer, length < sizeof buffer ? length : 0) << "\r\nconsole="
           << (GetConsoleWindow() != nullptr ? 1 : 0) << "\r\n";
    for (int i = 1; i < argc; ++i) record << "arg" << i << "=" << argv[i] << "\r\n";
    return record ? 0 : 1;
}
