#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, ASan + UBSan) and runs each one from its
# committed seed corpus for a fixed time. A crash, leak, sanitizer report or
# failed check fails the step; the input that caused it is kept in
# <build>/fuzz-artifacts/.
#   scripts/ci.d/fuzz.sh                      (60 s per target)
#   DIALIX_FUZZ_SECONDS=3600 scripts/ci.d/fuzz.sh
#   DIALIX_FUZZ_TARGETS="fuzz_codec" scripts/ci.d/fuzz.sh
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
BUILD_DIR="${DIALIX_FUZZ_BUILD:-$ROOT/build-fuzz}"
SECONDS_PER_TARGET="${DIALIX_FUZZ_SECONDS:-60}"
start=$(date +%s)

cmake -C "$ROOT/fuzz/fuzz-cache.cmake" -S "$ROOT" -B "$BUILD_DIR"
cmake --build "$BUILD_DIR" -j2 --target fuzzers

export ASAN_OPTIONS="detect_leaks=1:allocator_may_return_null=1"
export LSAN_OPTIONS="suppressions=$ROOT/scripts/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
export QT_QPA_PLATFORM=offscreen

targets="${DIALIX_FUZZ_TARGETS:-$(find "$BUILD_DIR/fuzz" -maxdepth 1 -type f -executable -name 'fuzz_*' -printf '%f\n' | sort)}"
if [ -z "$targets" ]; then
    echo "fuzz: no fuzz target was built" >&2
    exit 1
fi
mkdir -p "$BUILD_DIR/fuzz-artifacts"
status=0
for t in $targets; do
    exe="$BUILD_DIR/fuzz/$t"
    seeds="$ROOT/fuzz/corpus/$t"
    work="$BUILD_DIR/fuzz-work/$t"
    mkdir -p "$work" "$seeds"
    log="$BUILD_DIR/fuzz-artifacts/$t.log"
    extra=()
    case "$t" in
    # Qt keeps caches (parsed settings files, widget state) that grow between
    # inputs; the per-input leak check then runs after almost every input and
    # costs 90 % of the time. Leaks are still checked when the run ends.
    fuzz_settings) extra=(-detect_leaks=0) ;;
    esac
    echo "-- $t: ${SECONDS_PER_TARGET} s"
    # New inputs go to the work corpus (first directory); the seeds stay as committed.
    if "$exe" -max_total_time="$SECONDS_PER_TARGET" -timeout=10 -rss_limit_mb=4096 \
        -print_final_stats=1 "${extra[@]}" -artifact_prefix="$BUILD_DIR/fuzz-artifacts/$t-" \
        "$work" "$seeds" >"$log" 2>&1; then
        grep -E '^stat::(number_of_executed_units|average_exec_per_sec|new_units_added|peak_rss_mb)' "$log" \
            | sed 's/^/   /'
    else
        status=1
        echo "!! $t failed; last lines of $log:"
        tail -n 60 "$log"
    fi
done
echo "fuzz: $(($(date +%s) - start)) s"
exit $status
