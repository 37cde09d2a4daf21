#!/usr/bin/env bash
# CTest's emulator for Windows programs: runs one program under Wine in the
# private world of the build tree. Usage: wine-run.sh HARNESS_DIR PROGRAM ARGS...
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=wine-env.sh
. "$here/wine-env.sh" "${1:?usage: wine-run.sh HARNESS_DIR PROGRAM [ARGS...]}"
shift
# Under Wine a program's children share its output: one that outlives the
# test program (a help viewer, a player) would hold CTest's pipe open until
# the time-out. The output goes through a file, shown once the program ends;
# stop.sh ends whatever is left.
output=$(mktemp "$HARNESS_DIR/output.XXXXXX")
wine "$@" >"$output" 2>&1 </dev/null
status=$?
cat "$output"
rm -f "$output"
exit $status
