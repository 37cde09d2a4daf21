#!/usr/bin/env bash
# Soak run, on demand (not a test): Zorvi watches a target that is saved over
# and over, and every save is compiled through Wine's cmd.exe by the stand-in
# compiler. Prints what the Zorvi process holds (handles, GDI and USER
# objects, threads, top-level windows, private memory) after start-up, after
# the first compile and after the last, and any compiler or interpreter
# process still running at the end. Flat counts and nothing left is the goal.
# Runs under a private Wine prefix and Xvfb in build/windows/soak, on an
# installation in a temporary folder that is removed afterwards.
#   Usage: scripts/soak.sh [compiles, default 1000]
#   ZORVI_SOAK_BUILD=DIR builds and runs in DIR instead of build/windows.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
compiles=${1:-1000}
if ! [[ "$compiles" =~ ^[1-9][0-9]*$ ]]; then
    echo "usage: scripts/soak.sh [compiles, a whole number above 0]" >&2
    exit 2
fi
build=${ZORVI_SOAK_BUILD:-"$root/build/windows"}

bash "$root/scripts/deps.sh"
cmake --preset windows -S "$root" -B "$build" >/dev/null
cmake --build "$build" --target zorvi zcompiler zcounts -j 2 >/dev/null

harness="$build/soak"
work=$(mktemp -d /tmp/zorvi-soak.XXXXXX)
cleanup() {
    "$root/tests/harness/stop.sh" "$harness" >/dev/null 2>&1 || true
    rm -rf "$work"
}
trap cleanup EXIT
"$root/tests/harness/start.sh" "$harness" >/dev/null
# shellcheck source=../tests/harness/wine-env.sh
. "$root/tests/harness/wine-env.sh" "$harness"
win() { winepath -w "$1" 2>/dev/null; }

# An installation: zorvi.exe, the stand-in compiler and one configuration
# that runs it hidden. The song tells the compiler to record every start.
mkdir -p "$work/cfg" "$work/tools"
cp "$build/zorvi.exe" "$work/"
cp "$build/tests/zcompiler.exe" "$work/tools/"
cp "$build/tests/zcounts.exe" "$work/"
printf '[Setting]\r\nDefault=soak\r\n[Option]\r\nAutoWatch=1\r\nTimerInterval=50\r\n' >"$work/Zorvi.ini"
# A value that starts and ends with a quote loses both, hence the "@".
printf '[Configure]\r\nConsole=%s\r\nExtension=out\r\n[Option]\r\nUseCUI=1\r\nDetectError=1\r\nCUIWindowState=0\r\n[Script]\r\nLine=1\r\nLine1=@"$pp$zcompiler.exe" "$fp$$fn$"\r\n' \
    "$(win "$work/tools/zcompiler.exe")" >"$work/cfg/soak.ini"
printf 'args=%s\r\no4 cdefgab>c\r\n' "$(win "$work/starts.txt")" >"$work/song.mml"

# zcounts.exe's lines (built from scripts/soak/zcounts.cpp), without Wine's CRs.
counts() { wine "$work/zcounts.exe" "$@" 2>/dev/null | tr -d '\r'; }
# Polls a command every 20 ms for at most $1 seconds.
poll() {
    local limit=$(($1 * 50)); shift
    for ((tick = 0; tick < limit; tick++)); do
        if "$@"; then return 0; fi
        sleep 0.02
    done
    return 1
}
compiled() { [ -f "$work/starts.txt" ] && [ "$(grep -c '^cmdline=' "$work/starts.txt")" -ge "$1" ]; }
nothing_running() { [ "$(counts zcompiler.exe cmd.exe | grep -vc ' none$')" -eq 0 ]; }
zorvi_up() { counts zorvi.exe | grep -Eq 'windows=[1-9]'; }
# The Zorvi process's figures once no compile runs.
zorvi_figures() {
    poll 30 nothing_running || true
    counts zorvi.exe | head -n 1 | grep -Eo '[a-z_]+=-?[0-9]+' | grep -v '^pid=' | tr '\n' ' '
}

(cd "$work" && exec wine zorvi.exe song.mml) >"$harness/zorvi.log" 2>&1 &
if ! poll 60 zorvi_up; then
    echo "soak.sh: zorvi.exe did not start; see $harness/zorvi.log" >&2
    exit 1
fi
started=$(zorvi_figures)

# Each save gets a last-write time of its own, so watch mode sees every one.
base=$(($(date +%s) - 2 * compiles - 100))
save() { touch -m -d "@$((base + 2 * $1))" "$work/song.mml"; }
save 1
poll 30 compiled 1 || { echo "soak.sh: the first save was not compiled" >&2; exit 1; }
first=$(zorvi_figures)
start_s=$(date +%s)
for ((i = 2; i <= compiles; i++)); do
    save "$i"
    if ! poll 30 compiled "$i"; then
        echo "soak.sh: save $i was not compiled within 30 s" >&2
        exit 1
    fi
done
last=$(zorvi_figures)
elapsed=$(($(date +%s) - start_s))
left=$(counts zcompiler.exe cmd.exe conhost.exe)

keys=(handles handle_list gdi gdi_table user windows threads pagefile_kb)
value() { echo "$1" | grep -Eo "(^| )$2=-?[0-9]+" | cut -d= -f2; }
echo "== Soak: $compiles compiles of a watched target ($elapsed s after the first)"
printf '%-22s' ""; printf ' %11s' "${keys[@]}"; echo
for label in start-up first last; do
    case $label in
        start-up) figures=$started; title="after start-up" ;;
        first) figures=$first; title="after 1 compile" ;;
        last) figures=$last; title="after $compiles compiles" ;;
    esac
    printf '%-22s' "$title"
    for key in "${keys[@]}"; do printf ' %11s' "$(value "$figures" "$key")"; done
    echo
done
printf '%-22s' "last - first"
for key in "${keys[@]}"; do printf ' %+11d' $(($(value "$last" "$key") - $(value "$first" "$key"))); done
echo
# Under Wine some of the calls are stubs: say so rather than show flat zeros.
for key in handles gdi user; do
    if [ "$(value "$started" "$key")" = 0 ] && [ "$(value "$last" "$key")" = 0 ]; then
        echo "note: $key is 0 for a process with windows: this platform does not count them that way" \
             "(see handle_list, gdi_table, windows)"
    fi
done
echo "left running:"
echo "$left" | sed 's/^/  /'
status=0
if echo "$left" | grep -vq ' none$'; then
    echo "soak.sh: processes were left running" >&2
    status=1
fi
exit $status
