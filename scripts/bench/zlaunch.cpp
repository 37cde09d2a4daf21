// zlaunch.exe: the baseline of the benchmark's compile. It runs a batch file
// the plainest way a launcher can, with the interpreter switches Zorvi uses,
// in a new minimised console, and waits for it; like zorvi.exe it has no
// console of its own.
//   Usage: zlaunch.exe SCRIPT [STAMP]
//   STAMP, when given, receives the performance counter read just before the
//   interpreter is started, so that its start can be timed on its own.
//   Exit code: the interpreter's; 2 for a wrong command line, 3 when the
//   interpreter cannot start or does not end within ten minutes.
#include <windows.h>

#include <cstdio>
#include <string>

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        std::fprintf(stderr, "usage: zlaunch SCRIPT [STAMP]\n");
        return 2;
    }
    // The outer quotes go to the interpreter's /C rule, the inner ones keep the path whole.
    std::string line = "cmd.exe /D /V:OFF /C \"\"";
    line += argv[1];
    line += "\"\"";
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_SHOWMINNOACTIVE;
    PROCESS_INFORMATION started{};
    LARGE_INTEGER stamp{};
    QueryPerformanceCounter(&stamp);
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, CREATE_NEW_CONSOLE,
                        nullptr, nullptr, &startup, &started)) {
        return 3;
    }
    // Written while the interpreter starts, so the stamp costs its start nothing.
    if (argc == 3) {
        if (std::FILE* file = std::fopen(argv[2], "wb")) {
            std::fprintf(file, "%lld\n", static_cast<long long>(stamp.QuadPart));
            std::fclose(file);
        }
    }
    DWORD code = 3;
    if (WaitForSingleObject(started.hProcess, 10 * 60 * 1000) == WAIT_OBJECT_0) {
        GetExitCodeProcess(started.hProcess, &code);
    } else {
        TerminateProcess(started.hProcess, 3);
    }
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    return static_cast<int>(code);
}
