// ztime.exe: the stopwatch of scripts/bench.sh. It runs inside Wine, so every
// time is taken there from CreateProcess on, as a user's system would see it,
// and each measurement alternates with its baseline in the same run.
//
//   ztime compile RUNS FOLDER SONG LAUNCHER SCRIPT
//       "FOLDER\zorvi.exe -compilenow SONG" against "LAUNCHER SCRIPT" (the
//       Zorvi.bat the first one writes), each from CreateProcess to its end.
//   ztime start RUNS FOLDER CLASS PROGRAM BASE_CLASS BASE_PROGRAM
//       PROGRAM, started in FOLDER, to a visible window of CLASS, against
//       BASE_PROGRAM to one of BASE_CLASS; each window is closed again.
//   ztime watch RUNS FOLDER SONG LAUNCHER SCRIPT PROBE STAMP IDLE_SECONDS
//       "FOLDER\zorvi.exe SONG", watch mode on from its settings: the processor
//       time it uses over IDLE_SECONDS, then RUNS rounds of a rewrite of SONG
//       (to FOLDER\Zorvi.bat rewritten, and to the file PROBE appearing, which
//       the compiler writes as it starts) against "LAUNCHER SCRIPT STAMP" (from
//       the performance counter the launcher writes to STAMP just before it
//       starts the interpreter, to PROBE appearing).
//   ztime showlog FOLDER SONG
//       "FOLDER\zorvi.exe -showlog SONG" to the log window showing its text:
//       that time, the text's length and the peak memory; the window is then
//       closed as a user would.
// Prints every run and then the medians and ratios, in milliseconds. Exit
// code 0; 1 when a program did not do its part (said on standard error); 2
// for a wrong command line.
#include <windows.h>
#include <psapi.h>
#include <tlhelp32.h>
#include <winternl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "stopwatch.h"

namespace {

using namespace stopwatch;

constexpr double kStartLimitMs = 20000;
constexpr double kCompileLimitMs = 60000;
constexpr double kLogLimitMs = 10 * 60 * 1000;
// A pause between rounds, so that each starts on a machine at rest.
constexpr DWORD kRestMs = 300;

double CounterToMs(long long count) {
    LARGE_INTEGER frequency{};
    QueryPerformanceFrequency(&frequency);
    return 1000.0 * static_cast<double>(count) / static_cast<double>(frequency.QuadPart);
}

bool Fail(const std::string& what) {
    std::fprintf(stderr, "ztime: %s\n", what.c_str());
    return false;
}

void PrintRatio(const char* name, double value, double base) {
    if (base > 0) std::printf("%-36s: %.2f\n", name, value / base);
}

// A started program; one that is still running when this goes is ended.
class Child {
public:
    Child() = default;
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        if (info_.hProcess == nullptr) return;
        if (WaitForSingleObject(info_.hProcess, 0) == WAIT_TIMEOUT) {
            TerminateProcess(info_.hProcess, 1);
            WaitForSingleObject(info_.hProcess, 5000);
        }
        CloseHandle(info_.hThread);
        CloseHandle(info_.hProcess);
    }

    bool Start(const std::string& program, const std::string& arguments,
               const std::string& folder) {
        std::string line = "\"" + program + "\"";
        if (!arguments.empty()) line += " " + arguments;
        STARTUPINFOA startup{};
        startup.cb = sizeof startup;
        if (!CreateProcessA(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                            folder.c_str(), &startup, &info_)) {
            info_ = {};
            return Fail("cannot start " + program);
        }
        return true;
    }

    // The exit code, or -1 when the program did not end within the limit.
    long WaitEnd(double limitMs) const {
        if (WaitForSingleObject(info_.hProcess, static_cast<DWORD>(limitMs)) != WAIT_OBJECT_0) {
            return -1;
        }
        DWORD code = 0;
        GetExitCodeProcess(info_.hProcess, &code);
        return static_cast<long>(code);
    }

    bool Running() const { return WaitForSingleObject(info_.hProcess, 0) == WAIT_TIMEOUT; }
    HANDLE Process() const { return info_.hProcess; }
    DWORD Id() const { return info_.dwProcessId; }

private:
    PROCESS_INFORMATION info_{};
};

// Polled every millisecond: the poll costs the program far less than a
// millisecond's error would cost the figure.
HWND WaitWindow(const Child& child, const char* windowClass, double limitMs) {
    const double start = NowMs();
    while (NowMs() - start < limitMs && child.Running()) {
        if (const HWND found = FindOwnWindow(child.Id(), windowClass, true)) return found;
        Sleep(1);
    }
    return nullptr;
}

bool CloseAndWait(const Child& child, HWND window) {
    PostMessageW(window, WM_CLOSE, 0, 0);
    return child.WaitEnd(10000) >= 0 || Fail("a program did not end when its window closed");
}

unsigned long long WriteTime(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data)) return 0;
    return (static_cast<unsigned long long>(data.ftLastWriteTime.dwHighDateTime) << 32) |
           data.ftLastWriteTime.dwLowDateTime;
}

unsigned long long CreationTime(HANDLE process) {
    FILETIME created{}, ended{}, kernel{}, user{};
    if (!GetProcessTimes(process, &created, &ended, &kernel, &user)) return 0;
    return (static_cast<unsigned long long>(created.dwHighDateTime) << 32) | created.dwLowDateTime;
}

// A process that names the parent's id but is older than the parent is not
// its child: it outlived an earlier process that had the same id.
bool HasChildren(const Child& parent) {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return false;
    const unsigned long long parentCreated = CreationTime(parent.Process());
    PROCESSENTRY32 entry{};
    entry.dwSize = sizeof entry;
    bool found = false;
    for (BOOL more = Process32First(snapshot, &entry); more && !found;
         more = Process32Next(snapshot, &entry)) {
        if (entry.th32ParentProcessID != parent.Id() || entry.th32ProcessID == parent.Id()) {
            continue;
        }
        const HANDLE child =
            OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, entry.th32ProcessID);
        found = child == nullptr || CreationTime(child) >= parentCreated;
        if (child != nullptr) CloseHandle(child);
    }
    CloseHandle(snapshot);
    return found;
}

// Until the compile that Zorvi started has ended: its interpreter is its only child.
bool WaitCompileEnd(const Child& zorvi) {
    const double start = NowMs();
    while (NowMs() - start < kCompileLimitMs && zorvi.Running()) {
        if (!HasChildren(zorvi)) return true;
        Sleep(5);
    }
    return Fail("the compile did not end");
}

std::string ReadAll(const std::string& path) {
    std::string text;
    if (std::FILE* file = std::fopen(path.c_str(), "rb")) {
        char buffer[4096];
        for (std::size_t got; (got = std::fread(buffer, 1, sizeof buffer, file)) > 0;) {
            text.append(buffer, got);
        }
        std::fclose(file);
    }
    return text;
}

// Saved the way an editor saves in place: the same file, cut and written anew.
bool Rewrite(const std::string& path, const std::string& text) {
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                    TRUNCATE_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return Fail("cannot rewrite " + path);
    DWORD written = 0;
    const bool ok = WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written,
                              nullptr) != FALSE;
    CloseHandle(file);
    return ok || Fail("cannot rewrite " + path);
}

// The system's process list, not GetProcessTimes: under Wine 8 the times
// GetProcessTimes gives for another process never advance, while the list's
// are read afresh (in the kernel's 10 ms steps). The entry's layout is the
// documented one, up to the times and the process id.
struct ProcessEntry {
    ULONG nextEntryOffset;
    ULONG numberOfThreads;
    LARGE_INTEGER reserved[3];
    LARGE_INTEGER createTime;
    LARGE_INTEGER userTime;
    LARGE_INTEGER kernelTime;
    UNICODE_STRING imageName;
    LONG basePriority;
    HANDLE uniqueProcessId;
};

double ProcessorMs(DWORD processId) {
    std::vector<unsigned char> list(256 * 1024);
    NTSTATUS status = 0;
    for (int attempt = 0; attempt < 8; ++attempt) {
        ULONG needed = 0;
        status = NtQuerySystemInformation(SystemProcessInformation, list.data(),
                                          static_cast<ULONG>(list.size()), &needed);
        if (status != static_cast<NTSTATUS>(0xC0000004L)) break;  // too small: grow it
        list.resize(std::max<std::size_t>(list.size() * 2, needed + 64 * 1024));
    }
    if (status != 0) return -1;
    for (std::size_t offset = 0; offset + sizeof(ProcessEntry) <= list.size();) {
        ProcessEntry entry;
        std::memcpy(&entry, list.data() + offset, sizeof entry);
        if (reinterpret_cast<ULONG_PTR>(entry.uniqueProcessId) == processId) {
            return static_cast<double>(entry.userTime.QuadPart + entry.kernelTime.QuadPart) /
                   10000.0;
        }
        if (entry.nextEntryOffset == 0) break;
        offset += entry.nextEntryOffset;
    }
    return -1;
}

std::string Quote(const std::string& text) { return "\"" + text + "\""; }

bool Compile(int runs, const std::string& folder, const std::string& song,
             const std::string& launcher, const std::string& script) {
    const std::string zorvi = folder + "\\zorvi.exe";
    std::vector<double> zorviMs, launcherMs;
    const auto timeOne = [&](const std::string& program, const std::string& arguments,
                             std::vector<double>& into) {
        Child child;
        const double start = NowMs();
        if (!child.Start(program, arguments, folder)) return false;
        const long code = child.WaitEnd(kCompileLimitMs);
        const double ms = NowMs() - start;
        if (code != 0) return Fail(program + " ended with " + std::to_string(code));
        into.push_back(ms);
        return true;
    };
    // One uncounted round first: Zorvi.bat is written, the files are in the cache.
    std::vector<double> warmUp;
    for (int run = -1; run < runs; ++run) {
        std::vector<double>& zorviInto = run < 0 ? warmUp : zorviMs;
        std::vector<double>& launcherInto = run < 0 ? warmUp : launcherMs;
        // Every other round the other goes first, so that neither always follows the other.
        const bool zorviFirst = run % 2 == 0 || run < 0;
        for (int turn = 0; turn < 2; ++turn) {
            const bool ok = (turn == 0) == zorviFirst
                                ? timeOne(zorvi, "-compilenow " + Quote(song), zorviInto)
                                : timeOne(launcher, Quote(script), launcherInto);
            if (!ok) return false;
        }
    }
    PrintRuns("zorvi.exe -compilenow, runs:", zorviMs);
    PrintRuns("launcher, runs:", launcherMs);
    PrintMedian("zorvi.exe -compilenow song.mml", zorviMs);
    PrintMedian("launcher, the same Zorvi.bat", launcherMs);
    PrintRatio("ratio", Median(zorviMs), Median(launcherMs));
    return true;
}

bool StartUp(int runs, const std::string& folder, const char* windowClass,
             const std::string& program, const char* baseClass, const std::string& baseProgram) {
    std::vector<double> programMs, baseMs;
    const auto timeOne = [&](const std::string& exe, const char* cls, std::vector<double>* into) {
        Child child;
        const double start = NowMs();
        if (!child.Start(exe, "", folder)) return false;
        const HWND window = WaitWindow(child, cls, kStartLimitMs);
        const double ms = NowMs() - start;
        if (window == nullptr) return Fail(exe + " showed no window of class " + cls);
        if (into != nullptr) into->push_back(ms);
        return CloseAndWait(child, window);
    };
    for (int run = -1; run < runs; ++run) {
        const bool programFirst = run % 2 == 0 || run < 0;
        for (int turn = 0; turn < 2; ++turn) {
            const bool ok = (turn == 0) == programFirst
                                ? timeOne(program, windowClass, run < 0 ? nullptr : &programMs)
                                : timeOne(baseProgram, baseClass, run < 0 ? nullptr : &baseMs);
            if (!ok) return false;
        }
    }
    PrintRuns("zorvi.exe, runs:", programMs);
    PrintRuns("minimal program, runs:", baseMs);
    PrintMedian("zorvi.exe to its visible window", programMs);
    PrintMedian("minimal Win32 program's window", baseMs);
    PrintRatio("ratio", Median(programMs), Median(baseMs));
    return true;
}

bool Watch(int runs, const std::string& folder, const std::string& song,
           const std::string& launcher, const std::string& script, const std::string& probe,
           const std::string& stamp, int idleSeconds) {
    const std::string text = ReadAll(song);
    if (text.empty()) return Fail("cannot read " + song);
    const std::string zorviScript = folder + "\\Zorvi.bat";
    Child zorvi;
    if (!zorvi.Start(folder + "\\zorvi.exe", Quote(song), folder)) return false;
    const HWND window = WaitWindow(zorvi, "ZorviMain", kStartLimitMs);
    if (window == nullptr) return Fail("zorvi.exe showed no main window");
    // Whatever it does at start is over before the clock runs.
    Sleep(2000);
    if (!WaitCompileEnd(zorvi)) return false;

    const double usedBefore = ProcessorMs(zorvi.Id());
    Sleep(static_cast<DWORD>(idleSeconds) * 1000);
    const double usedAfter = ProcessorMs(zorvi.Id());
    if (usedBefore < 0 || usedAfter < 0 || !zorvi.Running()) {
        return Fail("cannot read zorvi.exe's processor time");
    }
    std::printf("%-36s: %.0f ms per minute (over %d s)\n", "processor time while watching",
                (usedAfter - usedBefore) * 60.0 / idleSeconds, idleSeconds);

    std::vector<double> writtenMs, runningMs, interpreterMs, launcherMs;
    const auto change = [&] {
        DeleteFileA(probe.c_str());
        const unsigned long long before = WriteTime(zorviScript);
        const double start = NowMs();
        if (!Rewrite(song, text)) return false;
        double written = -1;
        while (NowMs() - start < kCompileLimitMs && zorvi.Running()) {
            if (written < 0 && WriteTime(zorviScript) != before) written = NowMs() - start;
            if (Exists(probe)) {
                runningMs.push_back(NowMs() - start);
                if (written < 0) return Fail("the compiler ran, but Zorvi.bat was not rewritten");
                writtenMs.push_back(written);
                return WaitCompileEnd(zorvi);
            }
            Sleep(1);
        }
        return Fail("a change of the target did not start the compiler");
    };
    const auto launch = [&] {
        DeleteFileA(probe.c_str());
        DeleteFileA(stamp.c_str());
        Child child;
        const double start = NowMs();
        if (!child.Start(launcher, Quote(script) + " " + Quote(stamp), folder)) return false;
        double running = -1;
        while (NowMs() - start < kCompileLimitMs && running < 0) {
            if (Exists(probe)) running = NowMs();
            Sleep(1);
        }
        if (running < 0) return Fail("the launcher did not start the compiler");
        if (child.WaitEnd(kCompileLimitMs) != 0) return Fail("the launcher's compile failed");
        const long long started = std::atoll(ReadAll(stamp).c_str());
        if (started <= 0) return Fail("the launcher wrote no stamp");
        interpreterMs.push_back(running - CounterToMs(started));
        launcherMs.push_back(running - start);
        return true;
    };
    for (int run = 0; run < runs; ++run) {
        const bool changeFirst = run % 2 == 0;
        for (int turn = 0; turn < 2; ++turn) {
            if (!((turn == 0) == changeFirst ? change() : launch())) return false;
            Sleep(kRestMs);
        }
    }
    PrintRuns("change to Zorvi.bat, runs:", writtenMs);
    PrintRuns("change to compiler, runs:", runningMs);
    PrintRuns("launcher's interpreter, runs:", interpreterMs);
    PrintMedian("change to Zorvi.bat written", writtenMs);
    PrintMedian("change to the compiler running", runningMs);
    PrintMedian("launcher: interpreter to compiler", interpreterMs);
    PrintMedian("launcher: its own start to compiler", launcherMs);
    PrintRatio("ratio (change / interpreter start)", Median(runningMs), Median(interpreterMs));
    return CloseAndWait(zorvi, window);
}

bool ShowLog(const std::string& folder, const std::string& song) {
    Child zorvi;
    const double start = NowMs();
    if (!zorvi.Start(folder + "\\zorvi.exe", "-showlog " + Quote(song), folder)) return false;
    // Shown with its text: the box is there, whatever it holds.
    HWND shownWindow = nullptr, box = nullptr;
    while (NowMs() - start < kLogLimitMs && zorvi.Running() && box == nullptr) {
        shownWindow = FindOwnWindow(zorvi.Id(), "ZorviResult", true);
        if (shownWindow != nullptr) box = FindWindowExA(shownWindow, nullptr, "Edit", nullptr);
        if (box == nullptr) Sleep(1);
    }
    const double shown = NowMs() - start;
    if (box == nullptr) return Fail("the log window did not show");
    DWORD_PTR length = 0;
    SendMessageTimeoutW(box, WM_GETTEXTLENGTH, 0, 0, SMTO_ABORTIFHUNG, 5000, &length);
    PROCESS_MEMORY_COUNTERS memory{};
    memory.cb = sizeof memory;
    const bool measured = K32GetProcessMemoryInfo(zorvi.Process(), &memory, sizeof memory);
    if (!CloseAndWait(zorvi, shownWindow)) return false;
    std::printf("shown after %.0f ms (%llu characters in the box), ended after %.0f ms, "
                "peak working set %s%llu MB\n",
                shown, static_cast<unsigned long long>(length), NowMs() - start,
                measured ? "" : "unknown: ",
                static_cast<unsigned long long>(memory.PeakWorkingSetSize / (1024 * 1024)));
    return true;
}

int Usage() {
    std::fprintf(stderr, "usage: see the top of scripts/bench/ztime.cpp\n");
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + 1, argv + argc);
    if (args.empty()) return Usage();
    const std::string& mode = args[0];
    const int runs = args.size() > 1 ? std::atoi(args[1].c_str()) : 0;
    bool ok = false;
    if (mode == "compile" && args.size() == 6 && runs > 0) {
        ok = Compile(runs, args[2], args[3], args[4], args[5]);
    } else if (mode == "start" && args.size() == 7 && runs > 0) {
        ok = StartUp(runs, args[2], args[3].c_str(), args[4], args[5].c_str(), args[6]);
    } else if (mode == "watch" && args.size() == 9 && runs > 0 && std::atoi(args[8].c_str()) > 0) {
        ok = Watch(runs, args[2], args[3], args[4], args[5], args[6], args[7],
                   std::atoi(args[8].c_str()));
    } else if (mode == "showlog" && args.size() == 3) {
        ok = ShowLog(args[1], args[2]);
    } else {
        return Usage();
    }
    std::fflush(stdout);
    return ok ? 0 : 1;
}
