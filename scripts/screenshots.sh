#!/usr/bin/env bash
# Regenerates the README's pictures: the main window in each of its three
# layouts at 96 and at 144 DPI, written to docs/main-layout-<n>-<dpi>.png;
# the configuration window's pages at both, docs/config-<page>-<dpi>.png
# (in Japanese to build/windows/shots-ja/, to be looked at); the about
# window, collapsed and expanded, at both, written to docs/about-<dpi>.png
# and docs/about-expanded-<dpi>.png; and docs/getting-started.png: the
# release package as unpacked, after F5 on the example song and F7, with the
# log window moved below the strip. The about window in Japanese and the log
# window after a failed compile, in both languages, go to
# build/windows/shots/ (about*-ja-<dpi>.png, log[-ja]-<dpi>.png), to be
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

# The configuration window with something on every page: two
# configurations, an editor, launcher programs and file filters.
install_config_demo() {
    local dir=$1 language=$2
    install_zorvi "$dir" 0
    # Paths as a user would have them; the files need not exist for the pictures.
    local win='C:\MML'
    cat >"$dir/cfg/Standard.ini" <<END
[Configure]
Console=$win\\mmlc.exe
Extension=mid
Player=$win\\player.exe
[Option]
UseCUI=1
UseGUI=1
CUIWindowState=2
DetectError=1
[Script]
Line=2
Line1=\$pr\$ -o \$fp\$\$fn2\$.mid \$fp\$\$fn\$ > \$fp\$\$fn2\$.log
Line2=echo done
[Required]
ItemCount=2
Item1=mmlc.exe
Item2=voices.dat
END
    printf '[Configure]\r\n' >"$dir/cfg/Fast.ini"
    cat >"$dir/Zorvi.ini" <<END
[Setting]
Default=Standard
Language=$language
Editor=C:\\Tools\\editor.exe
[Option]
AutoSetFile=1
AutoWatch=1
[ExternalProgram]
ItemCount=3
Item1=Text editor
Command1=C:\\Tools\\editor.exe
Option1=\$fp\$\$fn\$
StartUpFolder1=\$fp\$
Item2=Sequencer
Command2=C:\\Program Files\\Seq\\seq.exe
WindowState2=3
Item3=MIDI converter
Command3=C:\\tools\\m2m.exe
[Filter]
ItemCount=2
Item1=MML file
Extension1=.mml
Default1=Standard
Item2=Quick test
Extension2=.mus
Default2=Fast
END
    sed -i 's/$/\r/' "$dir/Zorvi.ini" "$dir/cfg/Standard.ini"
}

# The outer rectangle of an X window as an ImageMagick crop geometry.
geometry_of() {
    xwininfo -id "$1" | awk '/Absolute upper-left X/{x=$4} /Absolute upper-left Y/{y=$4}
        /Width:/{w=$2} /Height:/{h=$2} END{printf "%dx%d+%d+%d", w, h, x, y}'
}

# A window of the program whose title matches, waited for up to 15 s.
wait_window() {
    local found=""
    for ((i = 0; i < 150; i++)); do
        found=$(xdotool search --name "$1" 2>/dev/null | head -n1 || true)
        [ -n "$found" ] && break
        sleep 0.1
    done
    echo "$found"
}

# Opens the configuration window with F8 and takes each page, stepping with Ctrl+Tab.
shoot_config() {
    local dpi=$1 language=$2 out=$3
    local dir="$work/config-$dpi-$language"
    install_config_demo "$dir" "$language"
    (cd "$dir" && exec wine zorvi.exe) >"$work/wine-config-$dpi-$language.log" 2>&1 &
    local pid=$!
    local main config
    main=$(wait_window "^Zorvi v")
    if [ -z "$main" ]; then
        echo "screenshots.sh: no main window at $dpi DPI ($language)" >&2
        kill "$pid" 2>/dev/null || true
        return 1
    fi
    # Wine takes keys only into a window that was clicked: the status bar is safe to click.
    local mx my mh
    read -r mx my mh < <(xwininfo -id "$main" | awk '/Absolute upper-left X/{x=$4}
        /Absolute upper-left Y/{y=$4} /Height:/{h=$2} END{print x, y, h}')
    # F8 again until the window shows: a busy machine may drop the first key.
    config=""
    for ((i = 0; i < 8; i++)); do
        xdotool mousemove $((mx + 12)) $((my + mh - 8)) click 1
        sleep 0.5
        xdotool key F8
        for ((j = 0; j < 20; j++)); do
            sleep 0.1
            config=$(xdotool search --name "^Zorvi - " 2>/dev/null | head -n1 || true)
            [ -n "$config" ] && break 2
        done
    done
    if [ -z "$config" ]; then
        echo "screenshots.sh: no configuration window at $dpi DPI ($language)" >&2
        kill "$pid" 2>/dev/null || true
        return 1
    fi
    for page in basic compile script frontend filter; do
        sleep 1  # let the page finish painting
        import -window root "$work/root.png"
        convert "$work/root.png" -crop "$(geometry_of "$config")" +repage \
            "$out/config-$page-$dpi.png"
        echo "${out#"$root"/}/config-$page-$dpi.png"
        xdotool key ctrl+Tab
    done
    kill "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
}

# Takes a window into the picture $2 once it has finished painting.
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
    main=$(wait_window "^clean.mml - Zorvi")
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
    log=$(wait_window "Log Window - clean.log")
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

mkdir -p "$docs" "$build/shots" "$build/shots-ja"
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
        shoot_config "$dpi" English "$docs"
        shoot_config "$dpi" Japanese "$build/shots-ja"
        if [ "$dpi" = 96 ]; then shoot_package; fi
        shoot_about "$dpi" English "$docs" ""
        shoot_about "$dpi" Japanese "$build/shots" "-ja"
    )
    "$harness/stop.sh" "$dir" >/dev/null
done
