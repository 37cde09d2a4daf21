#!/usr/bin/env bash
# Installs the Debian packages that building and testing Zorvi need, when
# any is missing. Run as root (or with sudo available).
set -euo pipefail

packages=(
    cmake make g++ googletest midicsv                 # host build and tests
    g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64  # zorvi.exe
    wine wine64 fonts-wine                            # running it
    xvfb x11-utils xdotool imagemagick                # a private display, screenshots
    fonts-ipafont-gothic                              # Japanese texts
    locales                                           # the code page 932 test runs
    fp-utils libchm-bin                               # the help file and its check
    clang libclang-rt-dev                             # the fuzz preset: libFuzzer, sanitizers
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$package")
    fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=()
[ "$(id -u)" -ne 0 ] && sudo=(sudo)
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
