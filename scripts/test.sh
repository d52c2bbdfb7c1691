#!/usr/bin/env bash
# The README's test command: installs what is missing, builds, and runs every test.
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
"$ROOT/scripts/setup-deps.sh"
"$ROOT/scripts/build.sh" "$ROOT/build"
cd "$ROOT/build"
ctest --output-on-failure -j2
