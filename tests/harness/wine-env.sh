# Sourced by the harness scripts: the private Wine world of one build tree.
# $1 (or HARNESS_DIR) is the harness folder inside the build tree; nothing
# outside it is touched: prefix, scratch home and display all live there.
HARNESS_DIR=${1:-${HARNESS_DIR:?harness folder not given}}
mkdir -p "$HARNESS_DIR"
HARNESS_DIR=$(cd "$HARNESS_DIR" && pwd)
export HARNESS_DIR
export WINEPREFIX="$HARNESS_DIR/prefix"
export WINEARCH=win64
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="
# The prefix links Desktop and Documents into $HOME: keep them private too.
export HOME="$HARNESS_DIR/home"
export XDG_RUNTIME_DIR="$HARNESS_DIR/run"
mkdir -p "$HOME" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
if [ -f "$HARNESS_DIR/display" ]; then
    DISPLAY=$(cat "$HARNESS_DIR/display")
    export DISPLAY
fi
