// zcompiler.exe: a stand-in MML compiler for the tests; its input file says what to do.
//
// Usage: zcompiler.exe INPUT [OUTPUT [LOG]]. OUTPUT defaults to INPUT with the
// extension of its file name replaced by "out" (".out" appended when it has
// none). The log lines go to standard output, and to LOG (replaced, CRLF) when given.
// INPUT's leading "key=value" lines are orders; the first other line ends them:
//   output=ok     write OUTPUT: "zcompiler output of INPUT" CRLF (the default)
//   output=none   write nothing, and delete an OUTPUT that exists
//   output=empty  write OUTPUT with 0 bytes
//   output=keep   leave OUTPUT as it is (an old one stays old)
//   log=TEXT      one log line (repeatable, in order)
//   wait=PATH     first wait until PATH exists (the test makes it; 60 s safety net)
//   hang=1        after writing, run until killed (10-minute safety net, exit 124)
//   pid=PATH      write this process's id and CRLF to PATH at once
//   args=PATH     append the command line to PATH as zplayer.exe records it
// INPUT unreadable: a message on standard error, nothing written, exit code 2.
#include <windows.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <string>

int main(int argc, char** argv) {
    std::ifstream source(argc > 1 ? argv[1] : "", std::ios::binary);
    if (!source) {
        std::fprintf(stderr, "zcompiler: cannot read %s\n", argc > 1 ? argv[1] : "(no INPUT)");
        return 2;
    }
    const std::string input = argv[1];
    std::map<std::string, std::string> orders{{"output", "ok"}, {"hang", "0"}};
    std::string log;
    for (std::string line; std::getline(source, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        static const std::set<std::string> kKeys{"output", "log", "wait", "hang", "pid", "args"};
        static const std::set<std::string> kOutputs{"ok", "none", "empty", "keep"};
        const auto equals = line.find('=');
        const std::string key = line.substr(0, equals), value = line.substr(equals + 1);
        if (equals == std::string::npos || !kKeys.count(key)) break;
        if (key == "output" && !kOutputs.count(value)) break;
        if (key == "log") log += value + "\r\n";
        else orders[key] = value;
    }
    source.close();

    if (orders.count("pid")) {
        std::ofstream(orders["pid"], std::ios::binary) << GetCurrentProcessId() << "\r\n";
    }
    if (orders.count("args")) {
        std::ofstream record(orders["args"], std::ios::binary | std::ios::app);
        char folder[MAX_PATH + 1] = {};
        const bool fits = GetCurrentDirectoryA(sizeof folder, folder) < sizeof folder;
        record << "cmdline=" << GetCommandLineA() << "\r\ncwd=" << (fits ? folder : "") << "\r\n";
        for (int i = 1; i < argc; ++i) record << "arg" << i << "=" << argv[i] << "\r\n";
    }
    for (int round = 0; orders.count("wait") && round < 6000 &&
                        GetFileAttributesA(orders["wait"].c_str()) == INVALID_FILE_ATTRIBUTES;
         ++round) {
        Sleep(10);
    }

    const std::size_t slash = input.find_last_of("\\/"), dot = input.rfind('.');
    const bool dotted = dot != std::string::npos && (slash == std::string::npos || dot > slash);
    const std::string output =
        argc > 2 ? argv[2] : (dotted ? input.substr(0, dot) : input) + ".out";
    if (orders["output"] == "ok") {
        std::ofstream(output, std::ios::binary) << "zcompiler output of " << input << "\r\n";
    } else if (orders["output"] == "empty") {
        std::ofstream(output, std::ios::binary);
    } else if (orders["output"] == "none") {
        DeleteFileA(output.c_str());
    }
    std::fwrite(log.data(), 1, log.size(), stdout);
    std::fflush(stdout);
    if (argc > 3) std::ofstream(argv[3], std::ios::binary) << log;

    // Our own process never signals while we run: a wait that only a kill ends.
    if (orders["hang"] != "0") return WaitForSingleObject(GetCurrentProcess(), 10 * 60 * 1000), 124;
    return 0;
}
