#!/bin/sh
# Renders the options page under a virtual X server with the real xcb platform
# and saves it to docs/images/: options-page.png, options-page-sample.png (with
# functions assigned) and options-page-de.png (the same in German).
#   scripts/screenshot-options.sh [build-dir]   (default: build)
set -eu
cd "$(dirname "$0")/.."
BUILD_DIR=${1:-build}
if [ ! -f "$BUILD_DIR/CMakeCache.txt" ]; then
    cmake -S . -B "$BUILD_DIR"
fi
cmake --build "$BUILD_DIR" -j2 --target dialix-panelshot
mkdir -p docs/images
SHOT="$BUILD_DIR/tools/panelshot/dialix-panelshot"
QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1280x800x24" "$SHOT" docs/images/options-page.png
QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1280x800x24" "$SHOT" --sample docs/images/options-page-sample.png
QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1280x800x24" "$SHOT" --sample --locale de docs/images/options-page-de.png
