#!/usr/bin/env bash
# CTest's emulator for Windows programs: runs one program under Wine in the
# private world of the build tree. Usage: wine-run.sh HARNESS_DIR PROGRAM ARGS...
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=wine-env.sh
. "$here/wine-env.sh" "${1:?usage: wine-run.sh HARNESS_DIR PROGRAM [ARGS...]}"
shift
exec wine "$@"
