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
#   BUILD_WINDOWS_DIR     the build tree (default: build-windows)
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
