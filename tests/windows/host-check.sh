#!/usr/bin/env bash
# The plug-in as shipped (real hidapi) in the Windows reference host under Wine,
# on the windows platform: it loads, finds no panel (hidapi finds none under
# Wine), shows the one tab "Dialix 1", and opens no dialog: the host's window
# is the only one on the screen. The probe built the same way finds no panel.
#   host-check.sh WINE_RUN HOST.exe PLUGIN.dll PROBE.exe
set -euo pipefail
[ -n "${DISPLAY:-}" ] || exec xvfb-run -a -s "-screen 0 1280x800x24" "$0" "$@"
run=$1 host=$2 plugin=$3 probe=$4
out=$(mktemp)
trap 'rm -f "$out"' EXIT
fail() { echo "host-check: $*" >&2; sed 's/^/  | /' "$out" >&2; exit 1; }

prefix_dir=$(dirname "$host")
while [ ! -f "$prefix_dir/CMakeCache.txt" ]; do prefix_dir=$(dirname "$prefix_dir"); done
# A Wine session that an earlier test started without this X server would
# keep the host's windows off it: wait until that session has ended.
"$run" --wait "$prefix_dir/wine" || true

QT_QPA_PLATFORM=windows "$run" "$host" --plugin "Z:${plugin//\//\\}" >"$out" 2>&1 &
pid=$!
for _ in $(seq 600); do
    grep -q '^tabs' "$out" && break
    kill -0 $pid 2>/dev/null || fail "the host ended"
    sleep 0.1
done
# The deferred start (half a second after the settings) is where a failure
# would show a message box.
# The named windows on the screen. Wine's own helper windows have no name;
# every window of the host has one.
list_windows() {
    windows=()
    while read -r id; do
        xwininfo -id "$id" | grep -q 'Map State: IsViewable' || continue
        name="$(xwininfo -id "$id" | sed -n 's/^xwininfo: Window id: [^ ]* "\(.*\)"$/\1/p')"
        [ -n "$name" ] && windows+=("$name")
    done < <(xwininfo -root -children | sed -n 's/^ *\(0x[0-9a-f]*\) .*/\1/p')
}
# Until the host's window is mapped (a new Wine prefix takes its time), then
# 3 s more for any dialog to come up.
for _ in $(seq 300); do
    list_windows
    [[ " ${windows[*]} " == *"Dialix reference host"* ]] && break
    sleep 0.1
done
sleep 3
list_windows
# Asked to close first (WM_CLOSE to its windows); ended by force when it does not
# within 10 s, which is said below.
closed="closed"
taskkill() {
    "$run" "$prefix_dir/wine/drive_c/windows/system32/taskkill.exe" "$@" /IM "$(basename "$host")" \
        >/dev/null 2>&1 || true
}
taskkill
for _ in $(seq 100); do kill -0 $pid 2>/dev/null || break; sleep 0.1; done
if kill -0 $pid 2>/dev/null; then
    closed="ended by force"
    taskkill /F
    for _ in $(seq 100); do kill -0 $pid 2>/dev/null || break; sleep 0.1; done
fi
kill $pid 2>/dev/null && fail "the host did not end"
sed -i 's/\r$//' "$out"

grep -q '^plugin *Dialix 0.0.1 (Dialix, class ControlDialix)' "$out" || fail "plug-in not loaded"
[ "$(grep '^tabs' "$out")" = "tabs    Dialix 1" ] || fail "tabs other than \"Dialix 1\""
[ "${windows[*]}" = "Dialix reference host" ] || fail "windows on the screen: ${windows[*]}"
rc=0
"$run" "$probe" --list >"$out" 2>&1 || rc=$?
sed -i 's/\r$//' "$out"
# Under Wine 8 hidapi does not start (Wine lacks a configuration-manager call
# it resolves); elsewhere it would find no panel.
{ [ $rc -eq 3 ] && grep -q 'Cannot start the HID library' "$out"; } ||
    { [ $rc -eq 1 ] && grep -q 'No Dialix panel found' "$out"; } ||
    fail "the probe found a panel (exit $rc)"
echo "host-check: loaded, tabs \"Dialix 1\", no dialog, $closed; the probe: $(head -1 "$out")"
