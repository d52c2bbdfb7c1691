#!/usr/bin/env bash
# wine-run.sh PROGRAM.exe [ARGUMENT ...]
# wine-run.sh --init PREFIX      only make the prefix (and the starter)
# wine-run.sh --wait PREFIX      wait until the prefix's Wine session has ended
#
# Runs a Windows program of this project under Wine. ctest uses it as the
# emulator of the Windows build (cmake/mingw-w64-toolchain.cmake).
#
# - Wine maps every /dev/ttyS*, /dev/ttyUSB* and /dev/ttyACM* it finds to a COM
#   port. The program therefore runs in a mount namespace (bubblewrap) whose
#   /dev is minimal: the machine's serial ports do not exist there.
# - One Wine prefix per build tree: <build tree>/wine, made on first use. The
#   build tree is the nearest directory above the program with a
#   CMakeCache.txt; DIALIX_WINEPREFIX overrides it.
# - Wine does not pass variables named QT_* to Windows programs: they go in
#   through a small starter (winenv.c). Absolute Unix paths in their values
#   become Z: paths. QT_QPA_FONTDIR defaults to DejaVu (the offscreen
#   platform needs a font directory).
set -euo pipefail
HERE="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"

if [ $# -lt 1 ] || { [[ "$1" == --init || "$1" == --wait ]] && [ $# -ne 2 ]; }; then
    echo "usage: $0 PROGRAM.exe [ARGUMENT ...] | --init PREFIX | --wait PREFIX" >&2
    exit 2
fi
init_only=false
wait_only=false
if [ "$1" = "--init" ] || [ "$1" = "--wait" ]; then
    [ "$1" = "--init" ] && init_only=true || wait_only=true
    prefix="$(readlink -m "$2")"
else
    program="$(readlink -f "$1")"
    shift
    prefix="${DIALIX_WINEPREFIX:-}"
fi

if [ -z "$prefix" ]; then
    dir="$(dirname "$program")"
    while [ "$dir" != / ] && [ ! -f "$dir/CMakeCache.txt" ]; do
        dir="$(dirname "$dir")"
    done
    if [ ! -f "$dir/CMakeCache.txt" ]; then
        echo "wine-run: $program is in no build tree; set DIALIX_WINEPREFIX" >&2
        exit 2
    fi
    prefix="$dir/wine"
fi

export WINEPREFIX="$prefix"
export WINEDEBUG="${WINEDEBUG:--all}"
# No Mono or Gecko installer dialogs.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"
export WINEARCH=win64

# Only the machine's serial ports are kept out: the rest of the file system,
# /tmp (X sockets, the wineserver's socket) included, stays as it is.
sandbox() {
    bwrap --dev-bind / / --dev /dev --die-with-parent -- "$@"
}

if $wait_only; then
    # wineserver -w starts a server when none runs: it too stays in the sandbox.
    [ -f "$prefix/system.reg" ] && sandbox wineserver -w
    exit 0
fi

starter="$prefix/dialix-winenv.exe"
if [ ! -f "$prefix/system.reg" ] || [ ! -f "$starter" ] || [ "$HERE/winenv.c" -nt "$starter" ]; then
    mkdir -p "$prefix"
    (
        flock 9
        if [ ! -f "$prefix/system.reg" ]; then
            sandbox wineboot -i >/dev/null 2>&1
            sandbox wineserver -w
        fi
        if [ ! -f "$starter" ] || [ "$HERE/winenv.c" -nt "$starter" ]; then
            x86_64-w64-mingw32-gcc-posix -O2 -Wall -Wextra "$HERE/winenv.c" \
                -o "$starter.tmp" -lshell32
            mv "$starter.tmp" "$starter"
        fi
    ) 9>"$prefix.lock"
fi

if $init_only; then
    exit 0
fi

winpath() {
    local value="$1"
    if [[ "$value" == /* ]]; then
        value="Z:${value//\//\\}"
    fi
    printf '%s' "$value"
}

assignments=()
: "${QT_QPA_FONTDIR:=/usr/share/fonts/truetype/dejavu}"
export QT_QPA_FONTDIR
while IFS='=' read -r -d '' name value; do
    if [[ "$name" == QT_* ]]; then
        assignments+=("$name=$(winpath "$value")")
    fi
done < <(env -0)

exec bwrap --dev-bind / / --dev /dev --die-with-parent -- \
    wine "$starter" "${assignments[@]}" -- "$program" "$@"
