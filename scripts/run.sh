#!/usr/bin/env bash
# The README's main job: installs what is missing, builds everything in Release
# and runs the reference host with the plug-in over the virtual panel.
#  - without a display: plays the scripted operator session offscreen, prints
#    every command the plug-in sends to the host and every LED change, saves
#    screenshots of the host window and the virtual panel, and exits;
#  - with a display ($DISPLAY set): opens the host and the virtual panel window
#    for you to use.
# The radio is Hamlib's dummy radio: the host starts `rigctld -m 1 -P RIG` on a
# free loopback port and stops it at exit, and the log shows what the radio
# reports back after each step. Give --rig HOST:PORT or --rig-model N
# --rig-port DEVICE to drive your own radio instead.
# Extra arguments go to the host (e.g. --plugin PATH, --script).
#   DIALIX_OUT   where the session's screenshots go (default: out/session)
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
"$ROOT/scripts/setup-deps.sh"
BUILD_TYPE=Release "$ROOT/scripts/build.sh" "$ROOT/build-release"

HOST="$ROOT/build-release/tools/host/dialix-host"
OUT="${DIALIX_OUT:-$ROOT/out/session}"
mkdir -p "$OUT"
if [ -z "${XDG_RUNTIME_DIR:-}" ]; then
    export XDG_RUNTIME_DIR="$OUT/runtime"
    mkdir -p -m 0700 "$XDG_RUNTIME_DIR"
fi

RIG=(--rig-model 1)
for arg in "$@"; do
    case "$arg" in --rig | --rig=* | --rig-model | --rig-model=*) RIG=() ;; esac
done

if [ -n "${DISPLAY:-}" ]; then
    exec "$HOST" --screenshots "$OUT" --settings "$OUT/host.ini" "${RIG[@]}" "$@"
fi
echo "== scripted session (offscreen); screenshots in $OUT"
# The options page lists serial ports and Qt opens every 8250 UART it lists to
# probe it; a headless session has no use for them, so the test build's pty
# guard keeps it away from the machine's own serial ports.
GUARD="$ROOT/build-release/tests/support/libdialix_ptylines.so"
if [ -f "$GUARD" ]; then
    export LD_PRELOAD="$GUARD${LD_PRELOAD:+:$LD_PRELOAD}"
fi
QT_QPA_PLATFORM=offscreen "$HOST" --script --screenshots "$OUT" --settings "$OUT/host.ini" \
    "${RIG[@]}" "$@"
