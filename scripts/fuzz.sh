#!/usr/bin/env bash
# Fuzzes the platform-free logic with libFuzzer: builds the "fuzz" preset
# (clang, ASan, UBSan) and runs every target listed in
# build/fuzz/fuzz_targets.txt for the given seconds, one after another, each
# growing its corpus in build/fuzz/corpus/<target>. An input that crashes a
# target, trips a sanitizer or breaks a property is kept in
# build/fuzz/findings/<target>/ and the run fails; the full output of each
# target is in build/fuzz/logs/<target>.log.
#   Usage: scripts/fuzz.sh [seconds per target, default 60 [executions per target]]
# A target stops at whichever limit it reaches first. ZORVI_FUZZ_ONLY="a b"
# runs only the targets named.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
seconds=${1:-60}
runs=${2:-0}
if ! [[ "$seconds" =~ ^[1-9][0-9]*$ && "$runs" =~ ^[0-9]+$ ]]; then
    echo "usage: scripts/fuzz.sh [seconds per target [executions per target]], whole numbers" >&2
    exit 2
fi

# clang and its runtime (libFuzzer and the sanitizers) come from Debian.
missing=()
for package in clang libclang-rt-dev; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$package")
    fi
done
if [ ${#missing[@]} -gt 0 ]; then
    sudo=()
    [ "$(id -u)" -ne 0 ] && sudo=(sudo)
    echo "Installing: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    "${sudo[@]}" apt-get update -qq &&
        "${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
        { echo "fuzz.sh: could not install ${missing[*]}" >&2; exit 1; }
fi

build="$root/build/fuzz"
mkdir -p "$build/logs"
if ! { cmake --preset fuzz -S "$root" >"$build/logs/configure.log" 2>&1 &&
       cmake --build --preset fuzz -j 2 >"$build/logs/build.log" 2>&1; }; then
    echo "fuzz.sh: the fuzz build failed:" >&2
    tail -n 30 "$build/logs/configure.log" "$build/logs/build.log" >&2
    exit 1
fi

status=0
printf '%-14s %14s %8s %10s %8s %6s\n' target executions seconds 'exec/s' crashes exit
while read -r name program dictionary max_len; do
    if [ -n "${ZORVI_FUZZ_ONLY:-}" ] && ! [[ " $ZORVI_FUZZ_ONLY " == *" $name "* ]]; then
        continue
    fi
    corpus="$build/corpus/$name"
    findings="$build/findings/$name"
    log="$build/logs/$name.log"
    mkdir -p "$corpus" "$findings"
    before=$(find "$findings" -type f | wc -l)
    options=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1
             -artifact_prefix="$findings/")
    [ "$dictionary" != - ] && options+=(-dict="$dictionary")
    [ "${max_len:--}" != - ] && options+=(-max_len="$max_len")
    [ "$runs" -gt 0 ] && options+=(-runs="$runs")
    # libFuzzer ends itself after the given time; the bound is for a target that hangs.
    started=$SECONDS
    timeout --kill-after=10 $((seconds + 120)) "$program" "${options[@]}" "$corpus" >"$log" 2>&1
    code=$?
    took=$((SECONDS - started))
    executions=$(awk '/stat::number_of_executed_units/ {print $2}' "$log" | tail -n 1)
    crashes=$(($(find "$findings" -type f | wc -l) - before))
    rate=$(awk '/stat::average_exec_per_sec/ {print $2}' "$log" | tail -n 1)
    printf '%-14s %14s %8d %10s %8d %6d\n' "$name" "${executions:-?}" "$took" "${rate:-?}" \
        "$crashes" "$code"
    if [ "$code" -ne 0 ] || [ "$crashes" -ne 0 ]; then
        status=1
        grep -E -m 5 'ERROR|property failed|runtime error|SUMMARY' "$log" | sed 's/^/    /'
        newest=$(ls -t "$findings" | head -n 1)
        [ -n "$newest" ] && echo "    input kept in $findings/$newest (replay: $program $findings/$newest)"
    fi
done <"$build/fuzz_targets.txt"
exit $status
