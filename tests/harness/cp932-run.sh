#!/usr/bin/env bash
# CTest's emulator for the runs on a Japanese system (ANSI code page 932,
# Shift-JIS). Wine takes the code page from the locale a program starts in,
# and the programs it starts inherit it; Wine maps file names with that
# locale too, so it must exist: a private ja_JP.UTF-8 is built once into the
# harness folder from glibc's locale sources (Debian's "locales").
# Usage: cp932-run.sh HARNESS_DIR PROGRAM ARGS...
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
harness_dir=${1:?usage: cp932-run.sh HARNESS_DIR PROGRAM [ARGS...]}
locales="$harness_dir/locale"
if [ ! -d "$locales/ja_JP.UTF-8" ]; then
    mkdir -p "$locales"
    # Built aside and moved in whole, so that parallel runs never see half of it.
    scratch=$(mktemp -d "$locales/build.XXXXXX")
    localedef -c -i ja_JP -f UTF-8 "$scratch/ja_JP.UTF-8" >/dev/null 2>&1 || true
    mv -T "$scratch/ja_JP.UTF-8" "$locales/ja_JP.UTF-8" 2>/dev/null || true
    rm -rf "$scratch"
    if [ ! -d "$locales/ja_JP.UTF-8" ]; then
        echo "cannot build the ja_JP.UTF-8 locale (is Debian's 'locales' installed?)" >&2
        exit 1
    fi
fi
export LOCPATH="$locales" LC_ALL=ja_JP.UTF-8 ZORVI_TEST_CODE_PAGE=932
exec "$here/wine-run.sh" "$@"
