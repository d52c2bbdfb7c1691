#!/usr/bin/env bash
# Configures and builds one build directory.
#   scripts/build.sh [BUILD_DIR] [extra cmake arguments...]
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
BUILD_DIR="${1:-$ROOT/build}"
shift || true
cmake -S "$ROOT" -B "$BUILD_DIR" -DCMAKE_BUILD_TYPE="${BUILD_TYPE:-Debug}" -DDIALIX_WERROR=ON "$@"
cmake --build "$BUILD_DIR" -j2
