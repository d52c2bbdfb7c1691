#!/usr/bin/env bash
# The README's main job: installs what is missing, builds everything and runs it.
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
"$ROOT/scripts/setup-deps.sh"
BUILD_TYPE=Release "$ROOT/scripts/build.sh" "$ROOT/build-release"
"$ROOT/scripts/bench.sh" "$ROOT/build-release"
