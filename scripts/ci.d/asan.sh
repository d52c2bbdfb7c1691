#!/usr/bin/env bash
# The whole test suite built with AddressSanitizer, UndefinedBehaviorSanitizer
# and LeakSanitizer, in its own build directory.
#   scripts/ci.d/asan.sh            (build dir: $DIALIX_ASAN_BUILD or build-asan)
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
BUILD_DIR="${DIALIX_ASAN_BUILD:-$ROOT/build-asan}"
start=$(date +%s)

cmake -S "$ROOT" -B "$BUILD_DIR" -DCMAKE_BUILD_TYPE=Debug -DDIALIX_WERROR=ON \
    -DDIALIX_SANITIZE=address,undefined -DDIALIX_BUILD_BENCH=OFF \
    -DCMAKE_CXX_COMPILER_LAUNCHER="$ROOT/scripts/asan-cxx.sh" >/dev/null
cmake --build "$BUILD_DIR" -j2

# Debian's Qt has no frame pointers, so the fast unwinder stops at the first Qt
# frame; the slow one gives whole stacks, which the suppressions need to match
# only allocations made inside Qt's offscreen platform plug-in.
export ASAN_OPTIONS="detect_leaks=1:fast_unwind_on_malloc=0:check_initialization_order=1:strict_init_order=1"
export LSAN_OPTIONS="suppressions=$ROOT/scripts/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"

cd "$BUILD_DIR"
ctest --output-on-failure -j2 --timeout 900
echo "asan: $(($(date +%s) - start)) s"
