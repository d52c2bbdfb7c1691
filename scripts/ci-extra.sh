#!/usr/bin/env bash
# Checks that CI runs beside the test suite: formatting, the Windows-only sources,
# and the sanitizer builds.
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$ROOT"

echo "== clang-format"
files=$(git ls-files '*.cpp' '*.h' | grep -v '^fuzz/corpus/' || true)
if [ -n "$files" ]; then
    clang-format --dry-run --Werror $files
fi

for step in "$ROOT"/scripts/ci.d/*.sh; do
    [ -e "$step" ] || continue
    echo "== $(basename "$step")"
    bash "$step"
done
