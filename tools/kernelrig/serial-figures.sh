#!/usr/bin/env bash
# The PTT port's modem lines, measured from QEMU's serial_write trace of the
# guest's only 16550 (ttyS1): every write to the modem control register
# (offset 4; bit 0 DTR, bit 1 RTS) with QEMU's time stamp, split into phases by
# the marks that the guest writes to the scratch register (offset 7) and names
# in its log ("RIG-MARK 0xa1 ptt-press"). Prints per phase and line how often
# the line rose, how long it was high in all and its state at the phase's end,
# then one RIG verdict per phase:
#   start         the host starts and opens the port: Linux raises both lines
#                 when a tty opens, and the plug-in drops them at once; each
#                 line may rise once, for at most DIALIX_RIG_OPEN_BOUND_US in
#                 all (default 50000: the emulated guest is slow), and is low
#                 at the end (DIALIX_RIG_STRICT_OPEN=1: no rise at all)
#   ptt-press     both lines high at the end
#   ptt-release   both lines low at the end, neither rose
#   idle, hotplug, exit   neither line rose, both low at the end
#   serial-trace  the trace had MCR writes and every mark
#   serial-figures.sh GUEST_LOG TRACE
set -euo pipefail
log=$1
trace=$2
grep -q '^RIG-MARK' "$log" || exit 0
awk -v strict="${DIALIX_RIG_STRICT_OPEN:-0}" -v bound="${DIALIX_RIG_OPEN_BOUND_US:-50000}" '
FNR == NR { if ($1 == "RIG-MARK") { name[tolower($2)] = $3; order[++marks] = tolower($2) } next }
/serial_write/ {
    split($1, t, "[@:]"); now = t[2] + 0
    addr = $(NF - 2); val = hex($NF)
    if (addr == "0x07" && (sprintf("0x%02x", val) in name)) {
        close_phase(now); phase = name[sprintf("0x%02x", val)]; seen[phase] = 1; start[phase] = now
        next
    }
    if (addr != "0x04") next
    ++writes
    for (b = 0; b < 2; ++b) {
        high = int(val / (b ? 2 : 1)) % 2
        if (high && !state[b]) { since[b] = now; if (phase != "") rises[phase, b]++ }
        if (!high && state[b] && phase != "") time[phase, b] += now - (since[b] > start[phase] ? since[b] : start[phase])
        state[b] = high
    }
}
function hex(s,   v, i) {
    v = 0; s = tolower(substr(s, 3))
    for (i = 1; i <= length(s); ++i) v = v * 16 + index("0123456789abcdef", substr(s, i, 1)) - 1
    return v
}
function close_phase(now,   b) {
    if (phase == "") return
    for (b = 0; b < 2; ++b) {
        if (state[b]) time[phase, b] += now - (since[b] > start[phase] ? since[b] : start[phase])
        endstate[phase, b] = state[b]
    }
}
function figure(p, b) {
    return sprintf("%s rose %d times, high %.0f us in all, %s at the end", b ? "RTS" : "DTR",
                   rises[p, b], time[p, b] * 1e6, endstate[p, b] ? "HIGH" : "low")
}
function verdict(p, ok) { printf "RIG serial-%s %s %s; %s\n", p, ok ? "PASS" : "FAIL", figure(p, 0), figure(p, 1) }
END {
    close_phase(now)
    for (i = 1; i <= marks; ++i) {
        p = name[order[i]]
        if (p == "end" || !(p in seen)) continue
        rose = rises[p, 0] + rises[p, 1]
        if (p == "start")
            verdict(p, !(strict && rose) && rises[p, 0] <= 1 && rises[p, 1] <= 1 \
                && time[p, 0] * 1e6 <= bound && time[p, 1] * 1e6 <= bound \
                && !endstate[p, 0] && !endstate[p, 1])
        else if (p == "ptt-press") verdict(p, endstate[p, 0] && endstate[p, 1])
        else verdict(p, !rose && !endstate[p, 0] && !endstate[p, 1])
    }
    missing = 0
    for (i = 1; i <= marks; ++i) if (!(name[order[i]] in seen)) missing++
    printf "RIG serial-trace %s %d MCR writes, %d of %d marks found\n", (writes && !missing) ? "PASS" : "FAIL", writes, marks - missing, marks
}' "$log" "$trace"
