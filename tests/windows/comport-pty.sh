#!/usr/bin/env bash
# comport-pty.sh TEST.exe [ARGUMENT ...]
#
# Runs a Windows test under Wine with COM5 on a pseudo-terminal, in a mount
# namespace whose /dev has none of the machine's serial ports; the wineserver
# that opens the pty runs in the same namespace (its /dev/pts is its own). Wine
# drives DTR/RTS with TIOCMGET/TIOCMSET, which a pty refuses: the pty line
# emulation (tests/support/ptyinterpose.cpp) is preloaded into every Wine
# process and shares its state (DIALIX_PTYLINES_SHARED). The prefix is the
# build tree's wine-com/, apart from the one other tests share.
set -euo pipefail
HERE="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
ROOT="$(cd "$HERE/../.." && pwd)"

if [ -z "${DIALIX_IN_NAMESPACE:-}" ]; then
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
    g++ -shared -fPIC -O2 -I"$ROOT" -o "$work/ptylines.so" "$ROOT/tests/support/ptyinterpose.cpp" -ldl
    mkdir "$work/lines"
    DIALIX_IN_NAMESPACE="$work" bwrap --dev-bind / / --dev /dev --die-with-parent -- "$0" "$@"
    exit
fi
work="$DIALIX_IN_NAMESPACE"
program="$(readlink -f "$1")"
shift
build="$(dirname "$program")"
while [ ! -f "$build/CMakeCache.txt" ]; do build="$(dirname "$build")"; done

# The far end: holds the pty's master open, with HUPCL set as a serial port has.
python3 -c '
import os, pty, termios, time
master, slave = pty.openpty()
attrs = termios.tcgetattr(slave)
attrs[2] |= termios.HUPCL
termios.tcsetattr(slave, termios.TCSANOW, attrs)
print(os.ttyname(slave), flush=True)
time.sleep(3600)
' >"$work/pty" </dev/null &
holder=$!
trap 'kill $holder 2>/dev/null || true' EXIT
for _ in $(seq 100); do [ -s "$work/pty" ] && break; sleep 0.1; done
pty=$(cat "$work/pty")

export WINEPREFIX="$build/wine-com" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" WINEARCH=win64
[ -f "$WINEPREFIX/system.reg" ] || wineboot -i >/dev/null 2>&1
wine reg add 'HKLM\Software\Wine\Ports' /v COM5 /d "$pty" /f >/dev/null 2>&1
# The ports are mapped when the wineserver starts.
wineserver -k || true
rc=0
LD_PRELOAD="$work/ptylines.so" DIALIX_PTYLINES_SHARED="$work/lines" wine "$program" "$@" || rc=$?
wineserver -k || true
echo "comport-pty: COM5 was $pty; its lines:"
sed 's/^/comport-pty:   /' "$work/lines/log" 2>/dev/null || true
exit $rc
