#!/usr/bin/env bash
# Builds both presets and runs every test: zorvi.exe and its tests under a
# private Wine, and the platform-free logic natively (with ASan and UBSan).
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

build() {
    cmake --preset "$1" >/dev/null && cmake --build --preset "$1" -j "$jobs"
}

# The native build runs beside everything else at the lowest priority: it
# takes what the Windows build leaves (its links are mostly one at a time)
# and then the processor time that the Windows tests, which mostly wait for
# Wine and the display, do not use. Its output is shown after.
host_log="$root/build/host-build.log"
mkdir -p "$root/build"
echo "== host: build, beside the rest (at ${SECONDS} s)"
nice -n 19 bash -c "$(declare -f build); jobs=$jobs; build host" >"$host_log" 2>&1 &
host_job=$!

echo "== windows: build (at ${SECONDS} s)"
windows_built=1
build windows || { echo "== windows: build FAILED"; status=1; windows_built=0; }

if [ "$windows_built" -eq 1 ]; then
    echo "== windows: tests (at ${SECONDS} s)"
    ctest --preset windows -j "$jobs" || status=1
fi
if wait "$host_job"; then
    echo "== host: built; tests (at ${SECONDS} s)"
    ctest --preset host -j "$jobs" || status=1
else
    tail -n 40 "$host_log"
    echo "== host: build FAILED (the whole output: $host_log)"
    status=1
fi
wait "$prefix_job" 2>/dev/null || true
echo "== done after ${SECONDS} s"
exit $status
