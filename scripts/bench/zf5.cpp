// zf5.exe: the stopwatch of scripts/bench.sh for the F5 loop on the example
// song of the release package, timed inside Wine.
//
//   zf5 RUNS FOLDER
//       Starts "FOLDER\zorvi.exe examples\clean.mml" (a fresh copy of the
//       unpacked package) and waits for its main window. Each run deletes
//       examples\clean.mid and examples\clean.log, sends F5 to the main
//       window and, once the compile is over (the key's handler returns when
//       it is), F7; it is timed from the F5 to the log window shown with the
//       compiler's summary in its text. The log window is then hidden again.
// Prints every run and the median, in milliseconds. Exit code 0; 1 when
// Zorvi did not do its part (said on standard error); 2 for a wrong command
// line.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "stopwatch.h"

namespace {

using namespace stopwatch;

constexpr DWORD kStartLimitMs = 20000;
constexpr DWORD kCompileLimitMs = 60000;
constexpr double kShowLimitMs = 20000;
// A pause between runs, so that each starts on a machine at rest.
constexpr DWORD kRestMs = 300;
// What mmlc writes to its log after a compile that wrote the song.
constexpr wchar_t kSummary[] = L"mmlc: wrote ";

bool Fail(const std::string& what) {
    std::fprintf(stderr, "zf5: %s\n", what.c_str());
    return false;
}

std::wstring BoxText(HWND window) {
    const HWND box = FindWindowExW(window, nullptr, L"Edit", nullptr);
    if (box == nullptr) return {};
    DWORD_PTR length = 0;
    if (!SendMessageTimeoutW(box, WM_GETTEXTLENGTH, 0, 0, SMTO_ABORTIFHUNG, 5000, &length)) {
        return {};
    }
    std::wstring text(length + 1, L'\0');
    DWORD_PTR copied = 0;
    SendMessageTimeoutW(box, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                        SMTO_ABORTIFHUNG, 5000, &copied);
    text.resize(copied);
    return text;
}

// A key as the keyboard sends it: the scan code in bits 16 to 23, repeat count 1.
LPARAM KeyBits(UINT key) {
    return static_cast<LPARAM>((MapVirtualKeyW(key, MAPVK_VK_TO_VSC) << 16) | 1);
}

bool Run(int runs, const std::string& folder) {
    const std::string program = folder + "\\zorvi.exe";
    const std::string song = folder + "\\examples\\clean.mml";
    const std::string midi = folder + "\\examples\\clean.mid";
    const std::string log = folder + "\\examples\\clean.log";
    std::string line = "\"" + program + "\" \"" + song + "\"";
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION zorvi{};
    if (!CreateProcessA(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                        folder.c_str(), &startup, &zorvi)) {
        return Fail("cannot start " + program);
    }
    CloseHandle(zorvi.hThread);
    const auto end = [&](bool ok) {
        if (WaitForSingleObject(zorvi.hProcess, 0) == WAIT_TIMEOUT) {
            if (const HWND main = FindOwnWindow(zorvi.dwProcessId, "ZorviMain", false)) {
                PostMessageW(main, WM_CLOSE, 0, 0);
            }
            if (WaitForSingleObject(zorvi.hProcess, 10000) != WAIT_OBJECT_0) {
                TerminateProcess(zorvi.hProcess, 1);
                WaitForSingleObject(zorvi.hProcess, 5000);
                ok = Fail("zorvi.exe did not end when its window closed");
            }
        }
        CloseHandle(zorvi.hProcess);
        return ok;
    };

    HWND main = nullptr;
    for (const double start = NowMs(); main == nullptr && NowMs() - start < kStartLimitMs;) {
        main = FindOwnWindow(zorvi.dwProcessId, "ZorviMain", true);
        if (main == nullptr) Sleep(5);
    }
    if (main == nullptr) return end(Fail("zorvi.exe showed no main window"));
    // Whatever it does at start is over before the clock runs.
    Sleep(1000);

    std::vector<double> shownMs;
    for (int run = 0; run < runs; ++run) {
        DeleteFileA(midi.c_str());
        DeleteFileA(log.c_str());
        const double start = NowMs();
        DWORD_PTR answer = 0;
        if (!SendMessageTimeoutW(main, WM_KEYDOWN, VK_F5, KeyBits(VK_F5), SMTO_NORMAL,
                                 kCompileLimitMs, &answer)) {
            return end(Fail("the compile did not end"));
        }
        if (!Exists(midi)) return end(Fail("F5 did not write examples\\clean.mid"));
        PostMessageW(main, WM_KEYDOWN, VK_F7, KeyBits(VK_F7));
        HWND shown = nullptr;
        while (shown == nullptr && NowMs() - start < kShowLimitMs) {
            const HWND result = FindOwnWindow(zorvi.dwProcessId, "ZorviResult", true);
            if (result != nullptr && BoxText(result).find(kSummary) != std::wstring::npos) {
                shown = result;
            } else {
                Sleep(1);
            }
        }
        if (shown == nullptr) {
            return end(Fail("the log window did not show the compiler's summary"));
        }
        shownMs.push_back(NowMs() - start);
        ShowWindow(shown, SW_HIDE);
        Sleep(kRestMs);
    }
    PrintRuns("F5 to the log shown, runs:", shownMs);
    PrintMedian("F5 to the log window shown", shownMs);
    return end(true);
}

}  // namespace

int main(int argc, char** argv) {
    const int runs = argc == 3 ? std::atoi(argv[1]) : 0;
    if (runs <= 0) {
        std::fprintf(stderr, "usage: zf5 RUNS FOLDER (see the top of scripts/bench/zf5.cpp)\n");
        return 2;
    }
    const bool ok = Run(runs, argv[2]);
    std::fflush(stdout);
    return ok ? 0 : 1;
}
