#!/usr/bin/env bash
# Renders the options page as the Windows build draws it (the windows platform
# under Wine, on a virtual X server) into docs/images/: options-page-windows.png
# and options-page-windows-de.png (German, sample assignments).
#   scripts/windows/screenshot-options.sh [build-windows]
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
BUILD="$(cd "${1:-$ROOT/build-windows}" && pwd)"
cmake --build "$BUILD" -j2 --target dialix-panelshot
shot="$BUILD/bin/dialix-panelshot.exe"
images="$ROOT/docs/images"
render() {
    local out="$1"
    shift
    QT_QPA_PLATFORM=windows xvfb-run -a -s "-screen 0 1280x800x24" \
        "$ROOT/scripts/windows/wine-run.sh" "$shot" "$@" "Z:${images//\//\\}\\$out"
}
render options-page-windows.png --sample
render options-page-windows-de.png --sample --locale de
