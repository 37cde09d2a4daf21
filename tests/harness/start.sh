#!/usr/bin/env bash
# Starts the private Wine world that the Windows tests run in: a prefix inside
# the build tree (made once), a private Xvfb display and a persistent,
# pre-warmed wineserver. stop.sh ends both.
# Usage: start.sh HARNESS_DIR [DESKTOP_KEEPER_EXE]
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=wine-env.sh
. "$here/wine-env.sh" "${1:?usage: start.sh HARNESS_DIR}"

# The prefix first: scripts/test.sh may be making it already.
"$here/prefix.sh" "$HARNESS_DIR"
# A run that was killed may have left its server or display behind.
"$here/stop.sh" "$HARNESS_DIR" >/dev/null 2>&1 || true

# Wait for a condition, at most $1 tenths of a second.
poll() {
    local tenths=$1; shift
    for ((i = 0; i < tenths; i++)); do
        if "$@"; then return 0; fi
        sleep 0.1
    done
    return 1
}

# Xvfb picks a free display itself and writes its number once it accepts clients.
rm -f "$HARNESS_DIR/display" "$HARNESS_DIR/display.new"
setsid Xvfb -displayfd 5 -screen 0 1280x1024x24 -nolisten tcp \
    5>"$HARNESS_DIR/display.new" </dev/null >"$HARNESS_DIR/xvfb.log" 2>&1 &
echo $! >"$HARNESS_DIR/xvfb.pid"
if ! poll 100 test -s "$HARNESS_DIR/display.new"; then
    echo "Xvfb did not start; see $HARNESS_DIR/xvfb.log" >&2
    exit 1
fi
echo ":$(tr -d '[:space:]' <"$HARNESS_DIR/display.new")" >"$HARNESS_DIR/display"
DISPLAY=$(cat "$HARNESS_DIR/display")
export DISPLAY

# A persistent server and its services, started once, make every later
# "wine prog.exe" quick and keep Wine's helpers off CTest's output pipes.
setsid wineserver -p </dev/null >"$HARNESS_DIR/wineserver.log" 2>&1 &
wine cmd /c exit </dev/null >"$HARNESS_DIR/prewarm.log" 2>&1
# Keep the desktop up for the whole run, so that no test starts it as its own
# child (see tests/tools/zdesktop.cpp).
keeper=${2:-}
if [ -n "$keeper" ] && [ -f "$keeper" ]; then
    setsid wine "$keeper" </dev/null >"$HARNESS_DIR/desktop.log" 2>&1 &
fi
echo "Wine ready on display $DISPLAY, prefix $WINEPREFIX"
