#!/usr/bin/env bash
# The kernel rig (tools/kernelrig/rig.sh): the panel, hot-plug, permissions,
# the PTT lines and key injection on a real Linux kernel booted under QEMU,
# against the programs of the normal build. Downloads the kernel and busybox
# from Debian's registry into .cache/kernelrig on the first run and installs
# qemu-system-x86 when it is missing.
#   scripts/ci.d/kernel.sh            (about 2 minutes warm, 3 cold)
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
BUILD_DIR="${DIALIX_KERNEL_BUILD:-$ROOT/build}"
start=$SECONDS
if [ ! -f "$BUILD_DIR/CTestTestfile.cmake" ]; then
    "$ROOT/scripts/build.sh" "$BUILD_DIR"
else
    cmake --build "$BUILD_DIR" -j2
fi
status=0
timeout -k 20 900 bash "$ROOT/tools/kernelrig/rig.sh" "$BUILD_DIR" || status=$?
echo "kernel rig: $((SECONDS - start)) s"
exit $status
