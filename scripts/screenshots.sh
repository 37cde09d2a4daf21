#!/usr/bin/env bash
# Regenerates the README's pictures of the main window: each of its three
# layouts at 96 and at 144 DPI, written to docs/main-layout-<n>-<dpi>.png,
# and docs/getting-started.png: the release package as unpacked, after F5 on
# the example song and F7, with the log window moved below the strip.
# Runs zorvi.exe under private Wine prefixes and Xvfb displays of its own
# (build/windows/shots-<dpi>), takes the whole screen with ImageMagick's
# "import -window root" and crops it to the window.
# Needs: the windows preset's tool chain, wine64, Xvfb, imagemagick, xdotool.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
harness="$root/tests/harness"
build="$root/build/windows"
docs="$root/docs"

cmake --preset windows -S "$root" >/dev/null
cmake --build --preset windows --target package -j 2 >/dev/null

# A name that is its own 8.3 form: the compile shows folders in their short
# form, and the log in the getting-started picture should read plainly.
work=$(mktemp -d /tmp/zshotXXX)
started=()
cleanup() {
    for dir in "${started[@]}"; do "$harness/stop.sh" "$dir" >/dev/null 2>&1 || true; done
    rm -rf "$work"
}
trap cleanup EXIT

# A small installation that shows every part of the strip: a configuration
# whose tools are there, a player, a target file and some history.
install_zorvi() {
    local dir=$1 mode=$2
    rm -rf "$dir"
    mkdir -p "$dir/cfg" "$dir/tools" "$dir/songs"
    cp "$build/zorvi.exe" "$dir/"
    printf 'o4 l8 cdefgab>c\r\n' >"$dir/songs/Overture.mml"
    printf 'o3 l4 c e g\r\n' >"$dir/songs/Nocturne.mml"
    : >"$dir/tools/mmlc.exe"
    : >"$dir/tools/player.exe"
    local win
    win=$(winepath -w "$dir")
    cat >"$dir/cfg/Standard.ini" <<EOF
[Configure]
Console=$win\\tools\\mmlc.exe
Extension=mid
Player=$win\\tools\\player.exe
[Option]
UseCUI=1
UseGUI=1
[Required]
ItemCount=1
Item1=mmlc.exe
EOF
    cat >"$dir/Zorvi.ini" <<EOF
[Main]
Left=0
Top=0
Width=4410
Height=1064
Mode=$mode
[Setting]
Default=Standard
[History]
His00=$win\\songs\\Nocturne.mml
EOF
    sed -i 's/$/\r/' "$dir/Zorvi.ini" "$dir/cfg/Standard.ini"
}

shoot() {
    local dpi=$1 mode=$2
    local dir="$work/zorvi-$dpi-$mode"
    install_zorvi "$dir" "$mode"
    (cd "$dir" && exec wine zorvi.exe "$(winepath -w "$dir/songs/Overture.mml")") \
        >"$work/wine-$dpi-$mode.log" 2>&1 &
    local pid=$!
    local window=""
    for ((i = 0; i < 150; i++)); do
        window=$(xdotool search --name "^Overture.mml - Zorvi" 2>/dev/null | head -n1 || true)
        [ -n "$window" ] && break
        sleep 0.1
    done
    if [ -z "$window" ]; then
        echo "screenshots.sh: no main window at $dpi DPI, layout $mode" >&2
        kill "$pid" 2>/dev/null || true
        return 1
    fi
    sleep 1  # let the toolbar and status bar finish painting
    local geometry
    geometry=$(xwininfo -id "$window" | awk '/Absolute upper-left X/{x=$4} /Absolute upper-left Y/{y=$4}
        /Width:/{w=$2} /Height:/{h=$2} END{printf "%dx%d+%d+%d", w, h, x, y}')
    import -window root "$work/root.png"
    convert "$work/root.png" -crop "$geometry" +repage "$docs/main-layout-$mode-$dpi.png"
    echo "docs/main-layout-$mode-$dpi.png ($geometry)"
    kill "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
}

# Waits up to 15 s for a window whose name matches $1; prints its id.
find_window() {
    local window=""
    for ((i = 0; i < 150; i++)); do
        window=$(xdotool search --name "$1" 2>/dev/null | head -n1 || true)
        [ -n "$window" ] && break
        sleep 0.1
    done
    echo "$window"
}

# x y right bottom of a window on the screen.
window_box() {
    xwininfo -id "$1" | awk '/Absolute upper-left X/{x=$4} /Absolute upper-left Y/{y=$4}
        /Width:/{w=$2} /Height:/{h=$2} END{print x, y, x + w, y + h}'
}

# The staged release (build/windows/package) in an empty folder, as a
# newcomer starts it: no settings, the example song as the target.
shoot_package() {
    local dir="$work/Zorvi"
    rm -rf "$dir"
    cp -r "$build/package" "$dir"
    (cd "$dir" && exec wine zorvi.exe "$(winepath -w "$dir/examples/clean.mml")") \
        >"$work/wine-package.log" 2>&1 &
    local pid=$!
    local main log
    main=$(find_window "^clean.mml - Zorvi")
    if [ -z "$main" ]; then
        echo "screenshots.sh: the package's main window did not show" >&2
        kill "$pid" 2>/dev/null || true
        return 1
    fi
    sleep 1  # Wine takes keys only once the window is up and focused
    xdotool mousemove 150 60 click 1
    sleep 0.5
    xdotool key F5
    for ((i = 0; i < 150; i++)); do
        grep -q "mmlc: wrote" "$dir/examples/clean.log" 2>/dev/null && break
        sleep 0.1
    done
    sleep 1  # the compile's end: the log file is written before Zorvi judges it
    xdotool key F7
    log=$(find_window "Log Window - clean.log")
    if [ -z "$log" ]; then
        echo "screenshots.sh: no log window after F5 and F7" >&2
        kill "$pid" 2>/dev/null || true
        return 1
    fi
    # The log window opens where the strip is: Ctrl+Down (512 twips) and
    # Ctrl+Alt+Down (32 twips) move it just below.
    for key in ctrl+Down ctrl+Down ctrl+alt+Down ctrl+alt+Down ctrl+alt+Down ctrl+alt+Down; do
        xdotool key "$key"
        sleep 0.2
    done
    sleep 1
    local box
    box=$( (window_box "$main"; window_box "$log") | awk 'NR==1{x=$1; y=$2; r=$3; b=$4}
        {if ($1<x) x=$1; if ($2<y) y=$2; if ($3>r) r=$3; if ($4>b) b=$4}
        END{printf "%dx%d+%d+%d", r - x, b - y, x, y}')
    import -window root "$work/root.png"
    convert "$work/root.png" -crop "$box" +repage "$docs/getting-started.png"
    echo "docs/getting-started.png ($box)"
    kill "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
}

mkdir -p "$docs"
for dpi in 96 144; do
    dir="$build/shots-$dpi"
    "$harness/start.sh" "$dir" >/dev/null
    started+=("$dir")
    (
        # shellcheck source=../tests/harness/wine-env.sh
        . "$harness/wine-env.sh" "$dir"
        wine reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD \
            /d "$dpi" /f >/dev/null 2>&1
        for mode in 0 1 2; do shoot "$dpi" "$mode"; done
        if [ "$dpi" = 96 ]; then shoot_package; fi
    )
    "$harness/stop.sh" "$dir" >/dev/null
done
