#!/usr/bin/env bash
# Makes a delay-load import library for one system DLL from MinGW's own
# import library: the same functions, bound on their first call instead of
# at process start. Usage: make-delaylib.sh DLTOOL NM IMPORTLIB DLLNAME OUT
set -euo pipefail
dlltool=$1 nm=$2 importlib=$3 dll=$4 out=$5
def="$out.def"
{
    echo "LIBRARY $dll"
    echo "EXPORTS"
    # Data exports (none are used) cannot be delay-loaded.
    "$nm" -g "$importlib" | awk '$2 == "I" && $3 ~ /^__imp_/ { sub(/^__imp_/, "", $3); print $3 }' |
        grep -v -E '^(_|\.)' | sort -u
} >"$def"
"$dlltool" --input-def "$def" --dllname "$dll" --output-delaylib "$out"
