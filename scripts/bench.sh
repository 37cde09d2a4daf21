#!/usr/bin/env bash
# Benchmarks, run on demand (not a test): the example compiler mmlc on a
# generated 10 000-bar song (natively, its output read back by midicsv); then
# Zorvi under a private Wine prefix and Xvfb in build/windows/bench, on files
# in a temporary folder that is removed afterwards. Every Zorvi time is taken
# inside Wine by the stopwatch scripts/bench/ztime.cpp, from CreateProcess
# on; where there is a baseline, measured the same way, the two alternate run
# by run, so that a shared machine's load falls on both alike:
# - a command-line compile against the same Zorvi.bat run by a minimal
#   launcher (scripts/bench/zlaunch.cpp: a new minimised console, waited for);
# - the time and peak memory to show a 10 MB and a 1 GB log in the log window;
# - start-up to the visible main window against a minimal one-window program;
# - watching: the processor time while nothing changes, and a saved change to
#   Zorvi.bat written and to the compiler running, against the launcher's time
#   from starting the interpreter to the compiler running.
#   Usage: scripts/bench.sh [runs, default 10] [log sizes in MB, default "10 1024"]
#   ZORVI_BENCH_BUILD=DIR builds and runs in DIR instead of build/windows.
#   ZORVI_BENCH_ZORVI=FILE measures this zorvi.exe (another build of it) in
#   place of the one built here; the tools and baselines stay this build's.
#   ZORVI_BENCH_IDLE=SECONDS how long the processor time is watched (60; Wine
#   counts it in 10 ms steps, so shorter spans only grow the step per minute).
#   ZORVI_BENCH_ONLY=mmlc measures mmlc alone (no Wine needed); a list of
#   compile, showlog, start, watch and f5 measures mmlc and only those.
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
# Whether the part named is measured in this run.
part() { [ -z "${ZORVI_BENCH_ONLY:-}" ] || [[ " $ZORVI_BENCH_ONLY " == *" $1 "* ]]; }


# ------------------------------------------------------------------ Zorvi
cmake --preset windows -S "$root" -B "$build" >/dev/null
cmake --build "$build" --target zorvi zcompiler zdesktop ztime zlaunch zminimal zf5 package \
    -j "$jobs" >/dev/null
zorvi_exe=${ZORVI_BENCH_ZORVI:-"$build/zorvi.exe"}
[ -f "$zorvi_exe" ] || { echo "no $zorvi_exe" >&2; exit 1; }
# The desktop keeper holds Wine's desktop process for the whole run, as a
# real desktop is always there: no measured program pays for starting it.
"$root/tests/harness/start.sh" "$harness" "$build/tests/zdesktop.exe" >/dev/null
# shellcheck source=../tests/harness/wine-env.sh
. "$root/tests/harness/wine-env.sh" "$harness"
win() { winepath -w "$1" 2>/dev/null; }
tools="$build/tests"

# An installation (zorvi.exe, the stand-in compiler, one configuration), a
# song in a folder of its own as a user keeps it, and a folder for what the
# compiler and the launcher report.
inst="$work/inst"
mkdir -p "$inst/cfg" "$inst/tools" "$work/songs" "$work/probe"
cp "$zorvi_exe" "$inst/zorvi.exe"
cp "$tools/zcompiler.exe" "$inst/tools/"
w_inst=$(win "$inst")
song=$(win "$work/songs/song.mml")
probe=$(win "$work/probe")
settings() {
    printf '[Setting]\r\nDefault=bench\r\n[ResultWindow]\r\nAutoClose=0\r\n[Option]\r\nTimerInterval=250\r\nAutoWatch=%s\r\n' \
        "$1" >"$inst/Zorvi.ini"
}
printf '[Configure]\r\nConsole=%s\r\nExtension=out\r\n[Option]\r\nUseCUI=1\r\nCUIWindowState=2\r\nDetectError=1\r\n[Script]\r\nLine=1\r\nLine1=$pp$zcompiler.exe $fp$$fn$ $fp$$fn2$.out $fp$$fn2$.log\r\n' \
    "$w_inst\\tools\\zcompiler.exe" >"$inst/cfg/bench.ini"
# The compiler writes its process id to pid.txt as it starts.
printf 'pid=%s\\pid.txt\r\nlog=benchmark\r\no4 cdefgab>c\r\n' "$probe" >"$work/songs/song.mml"

# Runs the stopwatch; its output goes through a file, never a pipe (a pipe
# can hold the caller for as long as a Wine helper that inherited it lives).
ztime() {
    local status=0
    wine "$tools/ztime.exe" "$@" >"$work/ztime.out" 2>"$work/ztime.err" || status=$?
    tr -d '\r' <"$work/ztime.out"
    [ "$status" -eq 0 ] || { tr -d '\r' <"$work/ztime.err" >&2; exit 1; }
}

echo "== Zorvi: $zorvi_exe"
echo "machine load at the start:$(uptime | sed 's/.*load average//')"
settings 0
wine "$inst/zorvi.exe" -compilenow "$song" >"$work/wine.out" 2>&1 || true
[ -f "$work/songs/song.out" ] && [ -f "$inst/Zorvi.bat" ] || { echo "the compile did not run" >&2; exit 1; }

if part compile; then
echo "== Command-line compile, medians of $runs runs each (alternating)"
ztime compile "$runs" "$w_inst" "$song" "$(win "$tools/zlaunch.exe")" "$w_inst\\Zorvi.bat"
fi

if part showlog; then
echo "== Showing a log (-showlog)"
line='song.mml(1234) : warning W042: note length exceeds the bar'
for kind in early full; do
    for mb in $sizes; do
        # Realistic compiler lines, about 60 bytes each. Plain lines fill the
        # text box's 65535 characters within the first 1.1 MB, and the reader
        # stops there ("early"). Lines that each begin with a NUL put every
        # next line back at the start of the text, so nothing fills it and
        # every byte of the log is read and decoded ("full").
        if [ "$kind" = early ]; then
            head -c $((mb * 1024 * 1024)) < <(yes "$line") >"$work/songs/song.log"
        else
            head -c $((mb * 1024 * 1024)) < <(yes "@$line" | tr '@' '\000') >"$work/songs/song.log"
        fi
        printf '%6s MB log, %-5s read: ' "$mb" "$kind"
        ztime showlog "$w_inst" "$song"
    done
done
rm -f "$work/songs/song.log"
fi

if part start; then
echo "== Start-up to a visible window, medians of $runs runs each (alternating)"
ztime start "$runs" "$w_inst" ZorviMain "$w_inst\\zorvi.exe" ZorviBenchMinimal "$(win "$tools/zminimal.exe")"
fi

if part watch; then
idle=${ZORVI_BENCH_IDLE:-60}
echo "== Watch mode: $idle s of an unchanged target, then $runs saved changes (medians)"
settings 1
ztime watch "$runs" "$w_inst" "$song" "$(win "$tools/zlaunch.exe")" "$w_inst\\Zorvi.bat" \
    "$probe\\pid.txt" "$probe\\stamp.txt" "$idle"
fi

if part f5; then
echo "== The F5 loop on the example song, medians of $runs runs"
# A fresh copy of the unpacked package, as a user starts it, with no Zorvi.ini yet.
cp -r "$build/package" "$work/package"
cp "$zorvi_exe" "$work/package/zorvi.exe"
wine "$tools/zf5.exe" "$runs" "$(win "$work/package")" >"$work/zf5.out" 2>"$work/zf5.err" ||
    { tr -d '\r' <"$work/zf5.err" >&2; exit 1; }
tr -d '\r' <"$work/zf5.out"
fi
echo "machine load at the end:$(uptime | sed 's/.*load average//')"
