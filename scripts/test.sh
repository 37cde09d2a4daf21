#!/usr/bin/env bash
# Builds both presets and runs every test: the platform-free logic natively
# (with ASan and UBSan), then zorvi.exe and its tests under a private Wine.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
bash scripts/deps.sh || exit 1

jobs=$(nproc 2>/dev/null || echo 2)
# Making the Wine prefix takes half a minute of mostly waiting: it is done
# while the programs build (the Windows tests' start waits for it).
harness="$root/build/windows/harness"
bash tests/harness/prefix.sh "$harness" >/dev/null 2>&1 &
prefix_job=$!
status=0
for preset in host windows; do
    echo "== $preset: build (at ${SECONDS} s)"
    if ! { cmake --preset "$preset" >/dev/null && cmake --build --preset "$preset" -j "$jobs"; }; then
        echo "== $preset: build FAILED"
        status=1
        continue
    fi
    echo "== $preset: tests (at ${SECONDS} s)"
    ctest --preset "$preset" -j "$jobs" || status=1
done
wait "$prefix_job" 2>/dev/null || true
echo "== done after ${SECONDS} s"
exit $status
