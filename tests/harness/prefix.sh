#!/usr/bin/env bash
# Makes the private Wine prefix of a build tree once, with the fonts and
# settings the tests need. scripts/test.sh starts it early, beside the build;
# start.sh calls it again and waits here until the prefix is ready.
# Usage: prefix.sh HARNESS_DIR
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=wine-env.sh
. "$here/wine-env.sh" "${1:?usage: prefix.sh HARNESS_DIR}"

exec 9>"$HARNESS_DIR/prefix.lock"
if ! flock -w 300 9; then
    echo "the Wine prefix is still being made by another run" >&2
    exit 1
fi
# Made the same way whether or not a display is up: without one.
unset DISPLAY
if [ ! -f "$WINEPREFIX/.ready" ]; then
    # Half made by a run that was killed: its server goes with it.
    [ -d "$WINEPREFIX" ] && { wineserver -k >/dev/null 2>&1 || true; }
    rm -rf "$WINEPREFIX"
    wineboot -i </dev/null >"$HARNESS_DIR/wineboot.log" 2>&1
    fonts="$WINEPREFIX/drive_c/windows/Fonts"
    mkdir -p "$fonts"
    # Debian's Wine does not find its own fonts unless they sit in the prefix.
    cp /usr/share/wine/fonts/*.ttf "$fonts/" 2>/dev/null || true
    for f in /usr/share/fonts/opentype/ipafont-gothic/ipagp.ttf \
             /usr/share/fonts/opentype/ipafont-gothic/ipag.ttf; do
        [ -f "$f" ] && cp "$f" "$fonts/"
    done
    wine regedit /S "$(winepath -w "$here/wine.reg" 2>/dev/null)" </dev/null >>"$HARNESS_DIR/wineboot.log" 2>&1
    wineserver -w
    touch "$WINEPREFIX/.ready"
fi
