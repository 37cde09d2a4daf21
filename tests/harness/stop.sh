#!/usr/bin/env bash
# Ends what start.sh started: the prefix's wineserver (and with it every Wine
# process of the prefix) and the private Xvfb. Usage: stop.sh HARNESS_DIR
set -uo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=wine-env.sh
. "$here/wine-env.sh" "${1:?usage: stop.sh HARNESS_DIR}"

if [ -d "$WINEPREFIX" ]; then
    wineserver -k >/dev/null 2>&1 || true
    # wineserver -w returns once the server has gone; bound it all the same.
    timeout 20 wineserver -w >/dev/null 2>&1 || true
fi

pidfile="$HARNESS_DIR/xvfb.pid"
if [ -f "$pidfile" ]; then
    pid=$(cat "$pidfile")
    if kill "$pid" 2>/dev/null; then
        for ((i = 0; i < 50; i++)); do
            kill -0 "$pid" 2>/dev/null || break
            sleep 0.1
        done
        kill -9 "$pid" 2>/dev/null || true
    fi
    rm -f "$pidfile"
fi
rm -f "$HARNESS_DIR/display" "$HARNESS_DIR/display.new"
echo "Wine stopped"
