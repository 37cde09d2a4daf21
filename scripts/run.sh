#!/usr/bin/env bash
# Builds zorvi.exe and starts it under Wine, passing the arguments through.
# Without arguments it builds the release zip instead and starts Zorvi from an
# unpacked copy of it (build/windows/run-package, refreshed when the zip is
# newer; your Zorvi.ini there is kept), with the example song clean.mml as
# its target: press F5 to compile it.
# Arguments that name existing Linux files become Windows paths, so
#   scripts/run.sh -compilenow ~/music/song.mml   works as typed.
# Every other argument reaches Zorvi's command line exactly as given, quotes
# included:   scripts/run.sh '-preset="my set"' -compilenow song.mml
# Zorvi runs in a Wine prefix of its own under build/; it uses the current
# display, and without one it starts a private Xvfb.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
bash "$root/scripts/deps.sh"
cmake --preset windows -S "$root" >/dev/null
build="$root/build/windows"
program="$build/zorvi.exe"
if [ $# -eq 0 ]; then
    cmake --build --preset windows --target package -j "$(nproc 2>/dev/null || echo 2)" >/dev/null
    zip=$(ls -t "$build"/Zorvi-*.zip | head -n1)
    staged="$build/run-package"
    if [ ! -f "$staged/.unpacked" ] || [ "$zip" -nt "$staged/.unpacked" ]; then
        echo "Unpacking $(basename "$zip") into $staged"
        mkdir -p "$staged"
        (cd "$staged" && cmake -E tar xf "$zip")
        touch "$staged/.unpacked"
    fi
    program="$staged/zorvi.exe"
    set -- "$staged/examples/clean.mml"
else
    cmake --build --preset windows --target zorvi -j "$(nproc 2>/dev/null || echo 2)" >/dev/null
fi

# Never the user's own prefix: the settings below are made for Zorvi's runs.
export WINEPREFIX="$root/build/windows/run-prefix"
export WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
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
cleanup() { if [ -n "$xvfb_pid" ]; then kill "$xvfb_pid" 2>/dev/null || true; fi; }
trap cleanup EXIT
if [ -z "${DISPLAY:-}" ]; then
    exec 5>"$WINEPREFIX/display"
    Xvfb -displayfd 5 -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
    xvfb_pid=$!
    for ((i = 0; i < 100; i++)); do [ -s "$WINEPREFIX/display" ] && break; sleep 0.1; done
    DISPLAY=":$(tr -d '[:space:]' <"$WINEPREFIX/display")"
    export DISPLAY
    echo "No display was set: Zorvi runs on a private Xvfb at $DISPLAY"
fi

# Wine would re-quote each argument on its own; a one-line batch file hands
# Zorvi the command line as typed instead.
line="\"$(winepath -w "$program")\""
for arg in "$@"; do
    if [ -e "$arg" ]; then
        arg="\"$(winepath -w "$arg")\""
    elif [[ "$arg" == *" "* && "$arg" != *'"'* ]]; then
        arg="\"$arg\""
    fi
    line+=" ${arg//%/%%}"
done
launcher="$WINEPREFIX/drive_c/zorvi-run.bat"
printf '@%s\r\n@exit /b %%ERRORLEVEL%%\r\n' "$line" >"$launcher"
status=0
wine cmd /c 'C:\zorvi-run.bat' || status=$?
wineserver -w
exit $status
