#!/usr/bin/env bash
# make_icons.sh - regenerates Zorvi's Windows icon files (<id>.ico) from the SVG drawings in
# this folder. The .ico files are committed, so the normal build never runs this script; run it
# by hand after editing an SVG and commit the changed .ico files together with the SVG.
#
# Needs (Debian/Ubuntu package names):
#   librsvg2-bin  - rsvg-convert, renders the SVGs
#   imagemagick   - convert (ImageMagick 6) or magick (ImageMagick 7), packs the .ico files
#
# Usage: make_icons.sh [OUTPUT_DIR]      (default: the folder this script lives in)
#
# Every .ico holds 16, 20, 24, 32, 48 and 64 px images as 32-bit BMP with alpha, plus a 256 px
# image stored as PNG (the form Windows expects for 256 px). The 16 and 20 px images are drawn
# from NAME-16.svg (a simplified, pixel-aligned drawing) where one exists, the others from
# NAME.svg (drawn on a 32-unit grid). The output carries no timestamps, so the same SVGs and
# tool versions give byte-identical .ico files.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
out=${1:-$here}
mkdir -p "$out"

# resource id -> drawing name
icons=(
    "101 app"        # application icon, launcher slot, about window logo
    "102 setfile"    # Set target file
    "103 config"     # Configure
    "104 watch_on"   # Watch mode on
    "105 watch_off"  # Watch mode off
    "106 compile"    # Execute compile
    "107 play"       # Play
    "108 log"        # Log view
)
sizes=(16 20 24 32 48 64 256)
small_max=20   # sizes up to this use NAME-16.svg when present

die() { echo "make_icons.sh: $*" >&2; exit 1; }

command -v rsvg-convert >/dev/null || die "rsvg-convert not found (install librsvg2-bin)"
# The version text is read whole: with pipefail, "grep -q" ending the pipe
# early could fail the test on a version that has the name.
if command -v magick >/dev/null && [[ $(magick -version 2>/dev/null) == *ImageMagick* ]]; then
    im=(magick)
elif command -v convert >/dev/null && [[ $(convert -version 2>/dev/null) == *ImageMagick* ]]; then
    im=(convert)
else
    die "ImageMagick not found (install imagemagick)"
fi

tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

export SOURCE_DATE_EPOCH=0
for entry in "${icons[@]}"; do
    read -r id name <<<"$entry"
    [ -f "$here/$name.svg" ] || die "missing $here/$name.svg"
    pngs=()
    for size in "${sizes[@]}"; do
        svg="$here/$name.svg"
        if [ "$size" -le "$small_max" ] && [ -f "$here/$name-16.svg" ]; then
            svg="$here/$name-16.svg"
        fi
        png="$tmp/$name-$size.png"
        rsvg-convert --width "$size" --height "$size" --format png \
            --output "$png" "$svg"
        pngs+=("$png")
    done
    # -type TrueColorAlpha keeps every small image 32-bit with alpha (no palette reduction);
    # -strip and the excluded chunks keep dates and text out of the 256 px PNG entry.
    "${im[@]}" "${pngs[@]}" -strip -type TrueColorAlpha \
        -define png:exclude-chunks=date,time,tEXt,zTXt,iTXt \
        -define png:color-type=6 -define png:bit-depth=8 \
        "ico:$out/$id.ico.tmp"
    mv -f "$out/$id.ico.tmp" "$out/$id.ico"
    echo "wrote $out/$id.ico ($name)"
done
