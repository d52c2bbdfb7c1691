#!/usr/bin/env bash
# The tests that start threads (label "threaded": panel reader threads, queues,
# cross-thread signals), built with ThreadSanitizer in their own build directory.
# Only the executables of those tests are built.
#   scripts/ci.d/tsan.sh            (build dir: $DIALIX_TSAN_BUILD or build-tsan)
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
BUILD_DIR="${DIALIX_TSAN_BUILD:-$ROOT/build-tsan}"
start=$(date +%s)

cmake -S "$ROOT" -B "$BUILD_DIR" -DCMAKE_BUILD_TYPE=Debug -DDIALIX_WERROR=ON \
    -DDIALIX_SANITIZE=thread -DDIALIX_BUILD_BENCH=OFF -DDIALIX_BUILD_TOOLS=ON

# ctest knows the threaded tests once configured; each test is named after its
# executable target.
mapfile -t tests < <(cd "$BUILD_DIR" && ctest -N -L threaded | sed -n 's/^ *Test *#[0-9]*: *//p')
if [ "${#tests[@]}" -eq 0 ]; then
    echo "tsan: no test carries the label 'threaded'" >&2
    exit 1
fi
echo "tsan: ${tests[*]}"
cmake --build "$BUILD_DIR" -j2 --target "${tests[@]}"

export TSAN_OPTIONS="suppressions=$ROOT/scripts/tsan.supp halt_on_error=1 second_deadlock_stack=1"
cd "$BUILD_DIR"
ctest --output-on-failure -j2 -L threaded --timeout 900
echo "tsan: $(($(date +%s) - start)) s"
