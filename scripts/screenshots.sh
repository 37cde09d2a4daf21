#!/usr/bin/env bash
# Regenerates the README's pictures of the main window: each of its three
# layouts at 96 and at 144 DPI, written to docs/main-layout-<n>-<dpi>.png;
# and of the about window, collapsed and expanded, at both, written to
# docs/about-<dpi>.png and docs/about-expanded-<dpi>.png. The about window in
# Japanese and the log window after a failed compile, in both languages, go
# to build/windows/shots/ (about*-ja-<dpi>.png, log[-ja]-<dpi>.png), to be
# looked at.
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
cmake --build --preset windows --target zorvi -j 2 >/dev/null

work=$(mktemp -d)
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

# The window of this process with that caption, once it shows; its geometry.
wait_window() {
    local pattern=$1 window=""
    for ((i = 0; i < 150; i++)); do
        window=$(xdotool search --name "$pattern" 2>/dev/null | head -n1 || true)
        [ -n "$window" ] && break
        sleep 0.1
    done
    echo "$window"
}
geometry_of() {
    xwininfo -id "$1" | awk '/Absolute upper-left X/{x=$4} /Absolute upper-left Y/{y=$4}
        /Width:/{w=$2} /Height:/{h=$2} END{printf "%dx%d+%d+%d", w, h, x, y}'
}
crop_window() {
    sleep 1  # let it finish painting
    import -window root "$work/root.png"
    convert "$work/root.png" -crop "$(geometry_of "$1")" +repage "$2"
    echo "${2#"$root"/}"
}

# The about window by Ctrl+F1 from the main window, then expanded from the
# keyboard (Tab to the second button, Enter); and the log window after a
# compile that produced nothing, above a UTF-8 log.
shoot_about() {
    local dpi=$1 language=$2 out=$3 tag=$4
    local dir="$work/about-$dpi-$tag"
    install_zorvi "$dir" 0
    sed -i "s/^Default=Standard\r\$/Default=Standard\r\nLanguage=$language\r/" "$dir/Zorvi.ini"
    (cd "$dir" && exec wine zorvi.exe "$(winepath -w "$dir/songs/Overture.mml")") \
        >"$work/about-$dpi-$tag.log" 2>&1 &
    local pid=$!
    local main
    main=$(wait_window "^Overture.mml - Zorvi")
    if [ -z "$main" ]; then
        echo "screenshots.sh: no main window at $dpi DPI ($language)" >&2
        kill "$pid" 2>/dev/null || true
        return 1
    fi
    sleep 1
    xdotool mousemove --window "$main" 150 8 click 1
    xdotool key ctrl+F1
    local about
    about=$(wait_window "^Zorvi - About$")
    if [ -n "$about" ]; then
        crop_window "$about" "$out/about$tag-$dpi.png"
        xdotool key Tab Return
        crop_window "$about" "$out/about-expanded$tag-$dpi.png"
    else
        echo "screenshots.sh: no about window at $dpi DPI ($language)" >&2
    fi
    kill "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true

    # A configuration whose script makes no output: the compile fails.
    printf '[Configure]\r\nConsole=%s\\tools\\mmlc.exe\r\nExtension=mid\r\n[Option]\r\nUseCUI=1\r\nDetectError=1\r\nCUIWindowState=2\r\n[Script]\r\nLine=1\r\nLine1=rem $fn$\r\n' \
        "$(winepath -w "$dir")" >"$dir/cfg/Broken.ini"
    printf 'mmlc 1.0\r\nOverture.mml(2): E12: \xe4\xb8\x8d\xe6\x98\x8e\xe3\x81\xaa\xe9\x9f\xb3\xe7\xac\xa6 "q"\r\n1 error\r\n' \
        >"$dir/songs/Overture.log"
    (cd "$dir" && exec wine zorvi.exe -preset=Broken -compilenow \
        "$(winepath -w "$dir/songs/Overture.mml")") >>"$work/about-$dpi-$tag.log" 2>&1 &
    pid=$!
    local log
    log=$(wait_window "^Zorvi - .* - Overture.log$")
    if [ -n "$log" ]; then
        crop_window "$log" "$build/shots/log$tag-$dpi.png"
    else
        echo "screenshots.sh: no log window at $dpi DPI ($language)" >&2
    fi
    kill "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
}

mkdir -p "$docs" "$build/shots"
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
        shoot_about "$dpi" English "$docs" ""
        shoot_about "$dpi" Japanese "$build/shots" "-ja"
    )
    "$harness/stop.sh" "$dir" >/dev/null
done
