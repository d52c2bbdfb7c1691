#!/usr/bin/env bash
# The whole test suite built with AddressSanitizer, UndefinedBehaviorSanitizer
# and LeakSanitizer, in its own build directory.
#   scripts/ci.d/asan.sh            (build dir: $DIALIX_ASAN_BUILD or build-asan)
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
BUILD_DIR="${DIALIX_ASAN_BUILD:-$ROOT/build-asan}"
start=$(date +%s)

cmake -S "$ROOT" -B "$BUILD_DIR" -DCMAKE_BUILD_TYPE=Debug -DDIALIX_WERROR=ON \
    -DDIALIX_SANITIZE=address,undefined -DDIALIX_BUILD_BENCH=OFF
cmake --build "$BUILD_DIR" -j2

# The fast unwinder stays on: the slow one (whole stacks through Debian's Qt,
# which has no frame pointers) makes the controller tests 20 times slower. The
# suppressions therefore name the first Qt frame of each allocation. An
# impossible allocation returns null as glibc's malloc does, so that Qt throws
# std::bad_alloc as it would in the field instead of ASan aborting.
export ASAN_OPTIONS="detect_leaks=1:check_initialization_order=1:strict_init_order=1:allocator_may_return_null=1"
export LSAN_OPTIONS="suppressions=$ROOT/scripts/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"

cd "$BUILD_DIR"
ctest --output-on-failure -j2 --timeout 900
echo "asan: $(($(date +%s) - start)) s"
