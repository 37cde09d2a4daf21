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
# Builds and tests one preset; false when either fails.
run_preset() {
    local preset=$1
    echo "== $preset: build (at ${SECONDS} s)"
    if ! { cmake --preset "$preset" >/dev/null && cmake --build --preset "$preset" -j "$jobs"; }; then
        echo "== $preset: build FAILED"
        return 1
    fi
    echo "== $preset: tests (at ${SECONDS} s)"
    ctest --preset "$preset" -j "$jobs"
}

# The two presets build side by side: each one's configure steps, links and
# test runs leave the processors idle that the other one's compiles fill.
# The native run's output is printed whole once it is over.
status=0
host_log="$root/build/host-run.log"
mkdir -p "$root/build"
run_preset host >"$host_log" 2>&1 &
host_job=$!
run_preset windows || status=1
wait "$host_job" || status=1
cat "$host_log"
wait "$prefix_job" 2>/dev/null || true
echo "== done after ${SECONDS} s"
exit $status
