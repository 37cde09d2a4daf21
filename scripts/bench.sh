#!/usr/bin/env bash
# Benchmarks, run on demand (not a test): the example compiler mmlc on a
# generated 10 000-bar song (natively, its output read back by midicsv); what
# Zorvi adds to a command-line compile over running the same batch file with
# "cmd /C" directly, and the time and peak memory to show a 10 MB and a 1 GB
# log in the result window. The Zorvi parts run under a private Wine prefix
# and Xvfb in build/windows/bench, on files in a temporary folder that is
# removed afterwards.
#   Usage: scripts/bench.sh [compile runs, default 10] [log sizes in MB, default "10 1024"]
#   ZORVI_BENCH_BUILD=DIR builds and runs in DIR instead of build/windows.
#   ZORVI_BENCH_ONLY=mmlc measures mmlc alone (no Wine needed).
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
runs=${1:-10}
sizes=${2:-"10 1024"}
build=${ZORVI_BENCH_BUILD:-"$root/build/windows"}
jobs=$(nproc 2>/dev/null || echo 2)

harness="$build/bench"
work=$(mktemp -d /tmp/zorvi-bench.XXXXXX)
cleanup() {
    "$root/tests/harness/stop.sh" "$harness" >/dev/null 2>&1 || true
    rm -rf "$work"
}
trap cleanup EXIT

now_ms() { date +%s%3N; }

# Mean wall time in milliseconds of running "$@" $runs times.
mean_ms() {
    local total=0 start
    for ((i = 0; i < runs; i++)); do
        start=$(now_ms)
        "$@" >/dev/null 2>&1
        total=$((total + $(now_ms) - start))
    done
    echo $((total / runs))
}

# ---------------------------------------------------------------------- mmlc
# An optimised native build (the host preset's has sanitizers). The song has
# one line per bar and track: eight eighth notes in A, a loop of four
# quarters in B, a tied whole note in C; midicsv must find every note and the
# end of the song where the bars put it.
bars=10000
native="$root/build/bench-native"
cmake -S "$root" -B "$native" -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$native" --target mmlc -j "$jobs" >/dev/null
awk -v bars="$bars" 'BEGIN {
    print "#title Benchmark"
    print "A t132 o4 l8"
    print "C o4 v70"
    for (bar = 0; bar < bars; bar++) {
        print "A c d e f g a b > c <"
        print "B [ c4 g4 ]2"
        print "C e2&e2"
    }
}' >"$work/long.mml"
notes=$((bars * (8 + 4 + 1)))
echo "== mmlc (native, optimised): $bars bars, 3 tracks, $notes notes, $(($(stat -c %s "$work/long.mml") / 1024)) KB of MML"
mmlc_ms=$(mean_ms "$native/mmlc" "$work/long.mml")
/usr/bin/time -f '%U %S %M' -o "$work/time.txt" "$native/mmlc" "$work/long.mml" >/dev/null
read -r user_s system_s peak_kb <"$work/time.txt"
midicsv "$work/long.mid" "$work/long.csv"
read_notes=$(awk -F', ' '$3 == "Note_on_c" && $6 > 0' "$work/long.csv" | wc -l)
song_end=$(awk -F', ' '$3 == "End_track" && $2 > end { end = $2 } END { print end + 0 }' "$work/long.csv")
printf 'mmlc long.mml                  : %s ms (mean of %s), processor %.0f ms, peak RSS %d MB, %d KB of MIDI\n' \
    "$mmlc_ms" "$runs" "$(awk -v u="$user_s" -v s="$system_s" 'BEGIN { print (u + s) * 1000 }')" \
    $((peak_kb / 1024)) $(($(stat -c %s "$work/long.mid") / 1024))
echo "midicsv reads                  : $read_notes notes, the end at tick $song_end (expected $notes, $((bars * 1920)))"
[ "$read_notes" -eq "$notes" ] && [ "$song_end" -eq $((bars * 1920)) ] ||
    { echo "midicsv does not read the song that was written" >&2; exit 1; }
rm -f "$work/long.mml" "$work/long.mid" "$work/long.csv"
[ "${ZORVI_BENCH_ONLY:-}" = mmlc ] && exit 0

# ------------------------------------------------------------------ Zorvi
cmake --preset windows -S "$root" -B "$build" >/dev/null
cmake --build "$build" --target zorvi zcompiler -j "$jobs" >/dev/null
"$root/tests/harness/start.sh" "$harness" >/dev/null
# shellcheck source=../tests/harness/wine-env.sh
. "$root/tests/harness/wine-env.sh" "$harness"

# An installation: zorvi.exe, the stand-in compiler and one configuration.
mkdir -p "$work/cfg" "$work/tools"
cp "$build/zorvi.exe" "$work/"
cp "$build/tests/zcompiler.exe" "$work/tools/"
win() { winepath -w "$1" 2>/dev/null; }
printf '[Setting]\r\nDefault=bench\r\n[ResultWindow]\r\nAutoClose=0\r\n' >"$work/Zorvi.ini"
printf '[Configure]\r\nConsole=%s\r\nExtension=out\r\n[Option]\r\nUseCUI=1\r\nCUIWindowState=2\r\nDetectError=1\r\n[Script]\r\nLine=1\r\nLine1=$pp$zcompiler.exe $fp$$fn$ $fp$$fn2$.out $fp$$fn2$.log\r\n' \
    "$(win "$work/tools/zcompiler.exe")" >"$work/cfg/bench.ini"
printf 'log=benchmark\r\no4 cdefgab>c\r\n' >"$work/song.mml"
song=$(win "$work/song.mml")

echo "== Command-line compile, mean of $runs runs"
wine "$work/zorvi.exe" -compilenow "$song" >/dev/null 2>&1
[ -f "$work/song.out" ] && [ -f "$work/Zorvi.bat" ] || { echo "the compile did not run" >&2; exit 1; }
zorvi_ms=$(mean_ms wine "$work/zorvi.exe" -compilenow "$song")
cmd_ms=$(mean_ms wine cmd /C "$(win "$work/Zorvi.bat")")
echo "zorvi.exe -compilenow song.mml : ${zorvi_ms} ms"
echo "cmd /C Zorvi.bat               : ${cmd_ms} ms"
awk -v a="$zorvi_ms" -v b="$cmd_ms" 'BEGIN { if (b > 0) printf "ratio                          : %.2f\n", a / b }'

# The closer: waits for the result window, notes when it shows its text and
# how long that text is, then closes it the way a user would. A tiny Windows
# program, built here so the benchmark needs nothing beyond the build tools.
cat >"$work/closer.cpp" <<'EOF'
#include <windows.h>
#include <cstdio>
static long long EpochMs() {
    FILETIME t; GetSystemTimeAsFileTime(&t);
    ULARGE_INTEGER u{{t.dwLowDateTime, t.dwHighDateTime}};
    return static_cast<long long>((u.QuadPart - 116444736000000000ULL) / 10000ULL);
}
int main() {
    for (int i = 0; i < 6000; ++i) {  // 10 minutes at most
        HWND window = FindWindowW(L"ZorviResult", nullptr);
        HWND box = window ? FindWindowExW(window, nullptr, L"Edit", nullptr) : nullptr;
        if (window && box && IsWindowVisible(window)) {
            const LRESULT length = SendMessageW(box, WM_GETTEXTLENGTH, 0, 0);
            std::printf("%lld %lld\n", EpochMs(), static_cast<long long>(length));
            PostMessageW(window, WM_CLOSE, 0, 0);
            return 0;
        }
        Sleep(20);
    }
    return 1;
}
EOF
x86_64-w64-mingw32-g++-posix -O2 -static -o "$work/closer.exe" "$work/closer.cpp"

echo "== Showing a log (-showlog), peak memory of the Zorvi process"
line='song.mml(1234) : warning W042: note length exceeds the bar'
for kind in early full; do
    for mb in $sizes; do
        # Realistic compiler lines, about 60 bytes each. Plain lines fill the
        # text box's 65535 characters within the first 1.1 MB, and the reader
        # stops there ("early"). Lines that each begin with a NUL put every
        # next line back at the start of the text, so nothing fills it and
        # every byte of the log is read and decoded ("full").
        if [ "$kind" = early ]; then
            head -c $((mb * 1024 * 1024)) < <(yes "$line") >"$work/song.log"
        else
            head -c $((mb * 1024 * 1024)) < <(yes "@$line" | tr '@' '\000') >"$work/song.log"
        fi
        wine "$work/closer.exe" >"$work/closer.txt" 2>/dev/null &
        closer=$!
        start=$(now_ms)
        /usr/bin/time -f '%e %M' -o "$work/time.txt" wine "$work/zorvi.exe" -showlog "$song" >/dev/null 2>&1 || true
        wait "$closer" || { echo "the result window did not show for ${mb} MB ($kind)" >&2; exit 1; }
        read -r shown length <"$work/closer.txt"
        read -r wall peak_kb <"$work/time.txt"
        printf '%6s MB log, %-5s read: shown after %6d ms (%s characters in the box), run %6.2f s, peak RSS %d MB\n' \
            "$mb" "$kind" $((shown - start)) "$length" "$wall" $((peak_kb / 1024))
    done
done
rm -f "$work/song.log"

# ---------------------------------------------------------------- main window
# Start-up of zorvi.exe to a visible main window against a minimal Win32
# program that opens one window (medians of $runs interleaved runs, and the
# ratio); the processor time zorvi.exe uses per minute while watching an
# unchanged file at 250 ms (its own process, from /proc); and the time from a
# change of the target to the start of its compile (Zorvi.bat rewritten, and
# the compiler running). The stopwatch is a Windows program, so that every
# time is taken inside Wine from CreateProcess on.
win_work="$work/window"
mkdir -p "$win_work/cfg" "$win_work/tools"
cat >"$win_work/minimal.cpp" <<'EOF'
#include <windows.h>
static LRESULT CALLBACK Proc(HWND w, UINT m, WPARAM p, LPARAM l) {
    if (m == WM_DESTROY) PostQuitMessage(0);
    return DefWindowProcW(w, m, p, l);
}
int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
    WNDCLASSW c{};
    c.lpfnWndProc = Proc;
    c.hInstance = instance;
    c.lpszClassName = L"MinimalWindow";
    RegisterClassW(&c);
    HWND w = CreateWindowW(L"MinimalWindow", L"Minimal", WS_OVERLAPPEDWINDOW, 0, 0, 294, 71,
                           nullptr, nullptr, instance, nullptr);
    ShowWindow(w, SW_SHOWNORMAL);
    MSG m;
    while (GetMessageW(&m, nullptr, 0, 0) > 0) DispatchMessageW(&m);
    return 0;
}
EOF
cat >"$win_work/stopwatch.cpp" <<'EOF'
// stopwatch start CLASS FOLDER EXE [ARGS]: ms from CreateProcess to a visible window of CLASS.
// stopwatch latency FOLDER TARGET RUNS: ms from touching TARGET to Zorvi.bat rewritten and to
//   the compiler's pid file (FOLDER\pid.txt), per run; a running zorvi.exe is expected.
#include <windows.h>
#include <cstdio>
#include <string>
static double Now() {
    LARGE_INTEGER f, c;
    QueryPerformanceFrequency(&f);
    QueryPerformanceCounter(&c);
    return 1000.0 * static_cast<double>(c.QuadPart) / static_cast<double>(f.QuadPart);
}
struct Find { DWORD pid; const char* cls; HWND found; };
static BOOL CALLBACK Match(HWND w, LPARAM p) {
    auto* f = reinterpret_cast<Find*>(p);
    DWORD owner = 0;
    GetWindowThreadProcessId(w, &owner);
    char name[64] = {};
    GetClassNameA(w, name, 64);
    if (owner == f->pid && lstrcmpA(name, f->cls) == 0 && IsWindowVisible(w)) { f->found = w; return FALSE; }
    return TRUE;
}
static HWND WaitWindow(DWORD pid, const char* cls, double limitMs) {
    const double start = Now();
    Find f{pid, cls, nullptr};
    while (Now() - start < limitMs) {
        EnumWindows(Match, reinterpret_cast<LPARAM>(&f));
        if (f.found) return f.found;
        Sleep(1);
    }
    return nullptr;
}
static bool Start(const std::string& folder, int argc, char** argv, int first, PROCESS_INFORMATION& info) {
    std::string line;
    for (int i = first; i < argc; ++i) line += std::string(i > first ? " \"" : "\"") + argv[i] + "\"";
    STARTUPINFOA s{};
    s.cb = sizeof s;
    return CreateProcessA(argv[first], line.data(), nullptr, nullptr, FALSE, 0, nullptr, folder.c_str(), &s, &info);
}
static void End(PROCESS_INFORMATION& info, HWND window) {
    if (window) PostMessageW(window, WM_CLOSE, 0, 0);
    if (WaitForSingleObject(info.hProcess, 5000) != WAIT_OBJECT_0) TerminateProcess(info.hProcess, 1);
    CloseHandle(info.hProcess);
    CloseHandle(info.hThread);
}
static unsigned long long Ticks(FILETIME t) { return (static_cast<unsigned long long>(t.dwHighDateTime) << 32) | t.dwLowDateTime; }
static unsigned long long WriteTime(const char* path) {
    WIN32_FILE_ATTRIBUTE_DATA d{};
    return GetFileAttributesExA(path, GetFileExInfoStandard, &d) ? Ticks(d.ftLastWriteTime) : 0;
}
int main(int argc, char** argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "start" && argc > 4) {
        PROCESS_INFORMATION info{};
        const double t0 = Now();
        if (!Start(argv[3], argc, argv, 4, info)) return 2;
        HWND w = WaitWindow(info.dwProcessId, argv[2], 20000);
        const double t1 = Now();
        End(info, w);
        if (!w) return 3;
        std::printf("%.1f\n", t1 - t0);
        return 0;
    }
    if (mode == "latency" && argc > 4) {
        const std::string folder = argv[2];
        const std::string script = folder + "\\Zorvi.bat", pid = folder + "\\pid.txt";
        const std::string output = std::string(argv[3]).substr(0, std::string(argv[3]).rfind('.')) + ".out";
        for (int run = 0; run < atoi(argv[4]); ++run) {
            DeleteFileA(pid.c_str());
            DeleteFileA(output.c_str());
            const unsigned long long before = WriteTime(script.c_str());
            HANDLE f = CreateFileA(argv[3], FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
            FILETIME now;
            GetSystemTimeAsFileTime(&now);
            const double t0 = Now();
            SetFileTime(f, nullptr, nullptr, &now);
            CloseHandle(f);
            double written = -1, running = -1;
            while (Now() - t0 < 20000 && running < 0) {
                if (written < 0 && WriteTime(script.c_str()) != before) written = Now() - t0;
                if (GetFileAttributesA(pid.c_str()) != INVALID_FILE_ATTRIBUTES) running = Now() - t0;
                Sleep(1);
            }
            std::printf("%.1f %.1f\n", written, running);
            // The compile ends before the next change.
            const double t1 = Now();
            while (Now() - t1 < 20000 && GetFileAttributesA(output.c_str()) == INVALID_FILE_ATTRIBUTES) Sleep(5);
            Sleep(500);
        }
        return 0;
    }
    std::fprintf(stderr, "usage: see the top of stopwatch.cpp\n");
    return 1;
}
EOF
x86_64-w64-mingw32-g++-posix -O2 -static -mwindows -o "$win_work/minimal.exe" "$win_work/minimal.cpp"
x86_64-w64-mingw32-g++-posix -O2 -static -mconsole -o "$win_work/stopwatch.exe" "$win_work/stopwatch.cpp"

cp "$build/zorvi.exe" "$win_work/"
cp "$build/tests/zcompiler.exe" "$win_work/tools/"
win_inst=$(win "$win_work")
printf 'pid=%s\\pid.txt\r\no4 cdefg\r\n' "$win_inst" >"$win_work/song.mml"
printf '[Configure]\r\nConsole=%s\r\nExtension=out\r\n[Option]\r\nUseCUI=1\r\nCUIWindowState=2\r\n[Script]\r\nLine=1\r\nLine1=$pp$zcompiler.exe $fp$$fn$ $fp$$fn2$.out\r\n' \
    "$(win "$win_work/tools/zcompiler.exe")" >"$win_work/cfg/bench.ini"
window_settings() {
    printf '[Setting]\r\nDefault=bench\r\n[Option]\r\nTimerInterval=250\r\nAutoWatch=%s\r\n' "$1" \
        >"$win_work/Zorvi.ini"
}
stopwatch() { wine "$win_work/stopwatch.exe" "$@" | tr -d '\r'; }
median() { sort -n | awk '{v[NR]=$1} END{if (NR%2) print v[(NR+1)/2]; else printf "%.1f\n", (v[NR/2]+v[NR/2+1])/2}'; }

echo "== Main window: start-up to a visible window, medians of $runs runs each"
: >"$win_work/zorvi.ms"
: >"$win_work/minimal.ms"
for ((i = 0; i < runs; i++)); do
    window_settings 0
    stopwatch start ZorviMain "$win_inst" "$win_inst\\zorvi.exe" >>"$win_work/zorvi.ms"
    stopwatch start MinimalWindow "$win_inst" "$win_inst\\minimal.exe" >>"$win_work/minimal.ms"
done
zorvi_start=$(median <"$win_work/zorvi.ms")
minimal_start=$(median <"$win_work/minimal.ms")
echo "zorvi.exe                      : ${zorvi_start} ms"
echo "minimal Win32 window           : ${minimal_start} ms"
awk -v a="$zorvi_start" -v b="$minimal_start" 'BEGIN { if (b > 0) printf "ratio                          : %.2f\n", a / b }'

echo "== Main window: watching an unchanged file at 250 ms, then changing it"
window_settings 1
(cd "$win_work" && exec wine zorvi.exe song.mml) >/dev/null 2>&1 &
zorvi_pid=$!
for ((i = 0; i < 150; i++)); do
    [ -n "$(xdotool search --name '^song.mml - Zorvi' 2>/dev/null)" ] && break
    sleep 0.1
done
sleep 1
cpu_ticks() { awk '{print $14 + $15}' "/proc/$1/stat"; }
watch_seconds=30
before=$(cpu_ticks "$zorvi_pid")
sleep "$watch_seconds"
after=$(cpu_ticks "$zorvi_pid")
awk -v t=$((after - before)) -v hz="$(getconf CLK_TCK)" -v s="$watch_seconds" \
    'BEGIN { printf "processor time                 : %.0f ms per minute (over %d s, %d ms steps)\n", t * 1000 / hz * 60 / s, s, 1000 / hz }'
stopwatch latency "$win_inst" "$win_inst\\song.mml" "$runs" >"$win_work/latency.ms"
kill "$zorvi_pid" 2>/dev/null || true
wait "$zorvi_pid" 2>/dev/null || true
echo "change to Zorvi.bat written    : $(awk '{print $1}' "$win_work/latency.ms" | median) ms (median)"
echo "change to the compiler running : $(awk '{print $2}' "$win_work/latency.ms" | median) ms (median)"
