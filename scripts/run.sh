#!/usr/bin/env bash
# Builds zorvi.exe and starts it under Wine, passing the arguments through.
# Arguments that name existing Linux files become Windows paths, so
#   scripts/run.sh -compilenow ~/music/song.mml   works as typed.
# Zorvi uses the current display; without one it starts a private Xvfb.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
bash "$root/scripts/deps.sh"
cmake --preset windows -S "$root" >/dev/null
cmake --build --preset windows --target zorvi -j "$(nproc 2>/dev/null || echo 2)" >/dev/null

export WINEPREFIX=${WINEPREFIX:-$root/build/windows/run-prefix}
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
if [ ! -f "$WINEPREFIX/.ready" ]; then
    echo "Preparing a Wine prefix in $WINEPREFIX (once)..."
    wineboot -i >/dev/null 2>&1
    cp /usr/share/wine/fonts/*.ttf /usr/share/fonts/opentype/ipafont-gothic/*.ttf \
        "$WINEPREFIX/drive_c/windows/Fonts/" 2>/dev/null || true
    wine regedit /S "$(winepath -w "$root/tests/harness/wine.reg")" >/dev/null 2>&1
    wineserver -w
    touch "$WINEPREFIX/.ready"
fi

xvfb_pid=
if [ -z "${DISPLAY:-}" ]; then
    exec 5>"$WINEPREFIX/display"
    Xvfb -displayfd 5 -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
    xvfb_pid=$!
    for ((i = 0; i < 100; i++)); do [ -s "$WINEPREFIX/display" ] && break; sleep 0.1; done
    DISPLAY=":$(tr -d '[:space:]' <"$WINEPREFIX/display")"
    export DISPLAY
    echo "No display was set: Zorvi runs on a private Xvfb at $DISPLAY"
fi

args=()
for arg in "$@"; do
    if [ -e "$arg" ]; then args+=("$(winepath -w "$arg")"); else args+=("$arg"); fi
done
status=0
wine "$root/build/windows/zorvi.exe" "${args[@]}" || status=$?
wineserver -w
[ -n "$xvfb_pid" ] && kill "$xvfb_pid" 2>/dev/null
exit $status
