#!/usr/bin/env bash
# Soak and fault tests (ctest label "soak") of the normal build, at a larger
# scale than the test suite's default short form.
#   scripts/ci.d/soak.sh                       (CI: DIALIX_SOAK_SCALE=0.2, ~15 s)
#   DIALIX_SOAK_SCALE=1 scripts/ci.d/soak.sh   (the long form: 1000 hot-plug
#                                               cycles, a minute of garbage)
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
BUILD_DIR="${DIALIX_SOAK_BUILD:-$ROOT/build}"
export DIALIX_SOAK_SCALE="${DIALIX_SOAK_SCALE:-0.2}"
start=$(date +%s)
if [ ! -f "$BUILD_DIR/CTestTestfile.cmake" ]; then
    "$ROOT/scripts/build.sh" "$BUILD_DIR"
else
    cmake --build "$BUILD_DIR" -j2
fi
cd "$BUILD_DIR"
log="$BUILD_DIR/soak.log"
status=0
ctest -L soak --output-on-failure -V --timeout 1800 >"$log" 2>&1 || status=$?
grep -E 'QINFO|PASS|FAIL|SKIP|Totals|tests passed|Test +#' "$log" || true
if [ "$status" -ne 0 ]; then
    echo "!! soak tests failed; the whole output is in $log"
    tail -n 80 "$log"
fi
echo "soak (scale $DIALIX_SOAK_SCALE): $(($(date +%s) - start)) s"
exit $status
