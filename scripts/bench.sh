#!/usr/bin/env bash
# Runs every benchmark of a Release build and prints its figures.
#   scripts/bench.sh [BUILD_DIR]
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
BUILD_DIR="${1:-$ROOT/build-release}"
if [ ! -d "$BUILD_DIR" ]; then
    "$ROOT/scripts/setup-deps.sh"
    BUILD_TYPE=Release "$ROOT/scripts/build.sh" "$BUILD_DIR"
fi
export QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-offscreen}"
shopt -s nullglob
for b in "$BUILD_DIR"/bench/*/bench_*; do
    [ -x "$b" ] || continue
    echo "== $(basename "$b")"
    "$b"
done
