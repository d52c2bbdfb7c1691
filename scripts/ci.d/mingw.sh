#!/usr/bin/env bash
# Syntax-checks the Windows-only sources with the mingw-w64 cross compiler
# against Qt's headers, so that Windows code cannot rot on a Linux CI.
# Windows-only files: *_win.cpp and *_win.h.
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
cd "$ROOT"

CXX="${MINGW_CXX:-x86_64-w64-mingw32-g++}"
if ! command -v "$CXX" >/dev/null; then
    echo "mingw: $CXX not found (scripts/setup-deps.sh installs mingw-w64)" >&2
    exit 1
fi

QT_INCLUDE="${QT_INCLUDE:-$(qmake -query QT_INSTALL_HEADERS 2>/dev/null || echo /usr/include/x86_64-linux-gnu/qt5)}"
FLAGS=(-std=c++17 -fsyntax-only -Wall -Wextra -Werror
       -DUNICODE -D_UNICODE -DWIN32_LEAN_AND_MEAN -DNOMINMAX
       -I"$ROOT" -isystem "$QT_INCLUDE")
# Qt's headers are Linux builds' and warn under mingw: include them as system
# headers so that only our own code is held to -Werror.
for module in QtCore QtGui QtWidgets QtSerialPort; do
    FLAGS+=(-isystem "$QT_INCLUDE/$module")
done

mapfile -t sources < <(git ls-files '*_win.cpp')
mapfile -t headers < <(git ls-files '*_win.h')

if [ ${#sources[@]} -eq 0 ] && [ ${#headers[@]} -eq 0 ]; then
    echo "mingw: no Windows-only sources"
    exit 0
fi

status=0
for file in "${sources[@]}"; do
    echo "mingw: $file"
    "$CXX" "${FLAGS[@]}" "$file" || status=1
done
for file in "${headers[@]}"; do
    echo "mingw: $file"
    # Through an including file, so that the header is not the main file.
    echo "#include \"$file\"" | "$CXX" "${FLAGS[@]}" -x c++ - || status=1
done
exit $status
