#!/usr/bin/env bash
# Reads the built manual back with an independent CHM reader: the table of
# contents is inside and lists every page of the sources, every page it lists
# is in the file and not empty, and the expected topics carry their titles.
# Usage: check_chm.sh Zorvi.chm path/to/extract_chmLib docs/help
set -uo pipefail
chm=$1 extract=$2 sources=$3

[ -s "$chm" ] || { echo "FAIL: $chm is missing or empty"; exit 1; }
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
"$extract" "$chm" "$work/chm" >/dev/null || { echo "FAIL: $extract cannot read $chm"; exit 1; }
toc=$(find "$work/chm" -maxdepth 1 -iname '*.hhc' | head -n 1)
[ -n "$toc" ] || { echo "FAIL: no table of contents (.hhc) in $chm"; exit 1; }

failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

mapfile -t listed < <(grep -io '<param name="Local" value="[^"]*"' "$toc" | sed 's/.*value="//; s/"$//')
[ ${#listed[@]} -gt 0 ] || fail "the table of contents lists no page"
# Looked up in a table, not by piping the list into "grep -q": with pipefail
# that pipe fails whenever grep stops reading before the list is written.
declare -A inToc
for page in "${listed[@]}"; do inToc[$page]=1; done
for page in "${listed[@]}"; do
    [ -s "$work/chm/$page" ] || fail "$page is in the table of contents but not in the file, or empty"
done
for source in "$sources"/*.html; do
    page=$(basename "$source")
    [ -s "$work/chm/$page" ] || fail "$page is missing from the file, or empty"
    [ -n "${inToc[$page]:-}" ] || fail "$page is not in the table of contents"
done

# The topics the manual promises: each in the table of contents under its
# title, and the page titled so.
while IFS='|' read -r title page; do
    grep -qF "<param name=\"Name\" value=\"$title\">" "$toc" || fail "no topic \"$title\" in the table of contents"
    grep -qF "<title>$title</title>" "$work/chm/$page" 2>/dev/null || fail "$page is not titled \"$title\""
done <<'TOPICS'
Welcome to Zorvi|index.html
Getting started|getting_started.html
The main window|main_window.html
Keyboard shortcuts|keyboard.html
Popup menu and task tray|popup_menu.html
Target file and watch mode|target_file.html
Compiling and playing|compiling.html
The log window|log_window.html
The launcher list|launcher.html
Command line|command_line.html
Configurations and scripts|configurations.html
Script tokens|variables.html
The configuration window|config_window.html
Settings files|settings_files.html
Troubleshooting|troubleshooting.html
TOPICS

if [ "$failures" -gt 0 ]; then
    echo "$failures problem(s) in $chm"
    exit 1
fi
echo "$chm: ${#listed[@]} pages in the table of contents, all present"
