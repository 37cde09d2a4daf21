// zcompiler.exe: a stand-in MML compiler for the tests; its input file tells it what to do.
//
// Usage:  zcompiler.exe INPUT [OUTPUT [LOG]]
//   INPUT   the "MML" file. Its leading lines are commands (below); reading
//           stops at the first line that is not one. Everything after is ignored.
//   OUTPUT  the file to generate. When left out: INPUT with its extension
//           (the text after the last "." of the file name) replaced by "out",
//           or with ".out" appended when the name has no extension
//           (C:\songs\a.mml -> C:\songs\a.out).
//   LOG     when given, the log lines are also written to this file (created
//           or replaced, one line per "log=" command, CRLF, empty when there
//           are none). The log lines always go to standard output, so a
//           script may redirect them instead: zcompiler.exe a.mml > a.log
//
// Commands, one per line, "key=value", no blanks around "=":
//   output=ok      write OUTPUT: "zcompiler output of INPUT" + CRLF (the default)
//   output=none    write nothing, and delete an OUTPUT that already exists
//   output=empty   write OUTPUT with 0 bytes
//   output=keep    leave OUTPUT exactly as it is (an old one stays old)
//   log=TEXT       one log line (repeatable; the lines keep their order)
//   exit=N         end with exit code N (decimal; default 0)
//   wait=PATH      before writing anything, wait until PATH exists (the test
//                  creates it when the compile may end); a safety net gives up
//                  after 60 seconds
//   hang=1         after writing, keep running until killed (a safety net ends
//                  it with exit code 124 after 10 minutes); hang=0 does not
//   pid=PATH       write this process's id (decimal, then CRLF) to PATH at once;
//                  a reader that sees the CRLF has the whole number
//   args=PATH      append the command line and the arguments to PATH, in the
//                  same form as zplayer.exe records them (see zplayer.cpp)
// Unknown keys end the command lines like any other text.
// INPUT missing or unreadable: a message on standard error, nothing written, exit code 2.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace {

struct Orders {
    std::string output = "ok";
    std::vector<std::string> logLines;
    int exitCode = 0;
    std::string waitPath;
    bool hang = false;
    std::string pidPath;
    std::string argsPath;
};

bool ReadOrder(const std::string& line, Orders& orders) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) return false;
    const std::string key = line.substr(0, equals);
    const std::string value = line.substr(equals + 1);
    if (key == "output") {
        if (value != "ok" && value != "none" && value != "empty" && value != "keep") return false;
        orders.output = value;
    } else if (key == "log") {
        orders.logLines.push_back(value);
    } else if (key == "exit") {
        orders.exitCode = std::atoi(value.c_str());
    } else if (key == "wait") {
        orders.waitPath = value;
    } else if (key == "hang") {
        orders.hang = value != "0";
    } else if (key == "pid") {
        orders.pidPath = value;
    } else if (key == "args") {
        orders.argsPath = value;
    } else {
        return false;
    }
    return true;
}

std::string DefaultOutput(const std::string& input) {
    const std::size_t slash = input.find_last_of("\\/");
    const std::size_t dot = input.rfind('.');
    const bool hasExtension =
        dot != std::string::npos && (slash == std::string::npos || dot > slash);
    return hasExtension ? input.substr(0, dot) + ".out" : input + ".out";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: zcompiler INPUT [OUTPUT [LOG]]\n");
        return 2;
    }
    const std::string input = argv[1];
    std::ifstream source(input, std::ios::binary);
    if (!source) {
        std::fprintf(stderr, "zcompiler: cannot read %s\n", input.c_str());
        return 2;
    }
    Orders orders;
    for (std::string line; std::getline(source, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!ReadOrder(line, orders)) break;
    }
    source.close();

    if (!orders.pidPath.empty()) {
        std::ofstream(orders.pidPath, std::ios::binary | std::ios::trunc)
            << GetCurrentProcessId() << "\r\n";
    }
    if (!orders.argsPath.empty()) {
        std::ofstream record(orders.argsPath, std::ios::binary | std::ios::app);
        char folder[MAX_PATH + 1] = {};
        const DWORD folderLength = GetCurrentDirectoryA(sizeof folder, folder);
        record << "cmdline=" << GetCommandLineA() << "\r\n"
               << "cwd=" << (folderLength < sizeof folder ? folder : "") << "\r\n";
        for (int i = 1; i < argc; ++i) record << "arg" << i << "=" << argv[i] << "\r\n";
    }
    if (!orders.waitPath.empty()) {
        for (int round = 0; round < 6000 && GetFileAttributesA(orders.waitPath.c_str()) ==
                                                INVALID_FILE_ATTRIBUTES;
             ++round) {
            Sleep(10);
        }
    }

    const std::string output = argc > 2 ? argv[2] : DefaultOutput(input);
    if (orders.output == "ok") {
        std::ofstream(output, std::ios::binary | std::ios::trunc)
            << "zcompiler output of " << input << "\r\n";
    } else if (orders.output == "empty") {
        std::ofstream(output, std::ios::binary | std::ios::trunc);
    } else if (orders.output == "none") {
        DeleteFileA(output.c_str());
    }

    std::string log;
    for (const std::string& line : orders.logLines) log += line + "\r\n";
    std::fwrite(log.data(), 1, log.size(), stdout);
    std::fflush(stdout);
    if (argc > 3) std::ofstream(argv[3], std::ios::binary | std::ios::trunc) << log;

    if (orders.hang) {
        // Our own process never signals while we run: a wait that only a kill ends.
        WaitForSingleObject(GetCurrentProcess(), 10 * 60 * 1000);
        return 124;
    }
    return orders.exitCode;
}
