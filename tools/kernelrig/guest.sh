#!/bin/busybox sh
# /init of the kernel rig's guest (see rig.sh). Runs the scenarios against the
# shipped programs on the guest's real kernel: panels made through uhid, read
# through the real hidraw driver and Debian's hidapi; the PTT port on the
# guest's 16550 (ttyS1); keys through uinput. One "RIG name PASS|FAIL detail"
# line per check; "RIG-MARK value phase" lines name the time marks written to
# the UART's scratch register for the serial-line figures; "RIG-END" last.
/bin/busybox --install -s /bin
export PATH=/opt/dialix:/bin HOME=/tmp QT_QPA_PLATFORM=offscreen
mkdir -p /proc /sys /dev && mount -t proc proc /proc && mount -t sysfs sysfs /sys && mount -t devtmpfs devtmpfs /dev
mkdir -p /run /tmp && mount -t tmpfs tmpfs /run && mount -t tmpfs tmpfs /tmp && chmod 1777 /tmp
for m in $(cat /lib/rig/order); do insmod /lib/rig/$m.ko; done
i=0
while [ ! -e /dev/hvc0 ] && [ $i -lt 100 ]; do sleep 0.1; i=$((i + 1)); done
exec >/dev/hvc0 2>&1 </dev/null
echo "RIG-BOOT $(uname -r), $(cut -d' ' -f1 /proc/uptime) s after start"
D=/opt/dialix
ONLY=" $(cat /lib/rig/only) "

verdict() { if [ "$2" = 0 ]; then echo "RIG $1 PASS $3"; else echo "RIG $1 FAIL $3"; fi; }
# waitfor SECONDS COMMAND...: true once COMMAND succeeds
waitfor() {
    local n=$(($1 * 10)); shift
    while [ $n -gt 0 ]; do "$@" 2>/dev/null && return 0; sleep 0.1; n=$((n - 1)); done
    return 1
}
nodes() { [ "$(ls /sys/class/hidraw | wc -l)" = "$1" ]; }
# panel NAME SERIAL VARIANT ACTION...: a uhid panel in the background, its
# events in /tmp/NAME.log
panel() {
    local name=$1 count=$(ls /sys/class/hidraw | wc -l); shift
    dialix-uhidpanel "$@" >/tmp/$name.log 2>&1 &
    eval "pid_$name=$!"
    waitfor 20 nodes $((count + 1)) || echo "RIG-NOTE panel $name has no hidraw node"
}
unplug() { eval "kill \$pid_$1; wait \$pid_$1"; }
outputs() { grep '^output' /tmp/$1.log | cut -c8- | tr '\n' ',' | sed 's/,$//'; }
# options LINE...: the plug-in's own settings file beside the host
options() { printf '%s\n' "$@" >$D/options.ini; }
host() {
    (cd $D && exec env "$@" ./dialix-host --plugin $D/libdialix.so --settings /tmp/host.ini) >/tmp/host.log 2>&1 &
    HOST=$!
    waitfor 90 grep -q '^tabs' /tmp/host.log || echo "RIG-NOTE the host shows no tabs"
}
host_stop() {
    kill -TERM $HOST
    waitfor 60 eval '! kill -0 $HOST' || { echo "RIG-NOTE the host does not end; killed"; kill -9 $HOST; }
    wait $HOST
}
tabs() { grep '^tabs' /tmp/host.log | cut -c9- | tr '\n' '|' | sed 's/|$//'; }
mark() {
    printf "\\$(printf %o $1)" | dd of=/dev/port bs=1 seek=767 conv=notrunc 2>/dev/null
    echo "RIG-MARK $1 $2"
}
# cputicks PID [THREAD-NAME]: user+system ticks of the process or its thread
cputicks() {
    local t
    for t in /proc/$1/task/*; do
        [ -z "$2" ] || [ "$(cat $t/comm)" = "$2" ] || continue
        cut -d')' -f2 $t/stat | awk '{s += $12 + $13} END {print s}'
        return
    done
}
uptime_cs() { awk '{printf "%d\n", $1 * 100}' /proc/uptime; }
as_operator() { su -s /bin/sh operator -c "$*"; }


# --- the probe: lists, permission versus absence ------------------------------
if [ "${ONLY#* probe }" != "$ONLY" ]; then
    panel p1 DLX-RIG-1 plain17 hold
    dialix-probe --list >/tmp/out 2>&1; code=$?
    grep -q 'serial number: DLX-RIG-1' /tmp/out && grep -q 'access: *ok' /tmp/out && [ $code = 0 ]
    verdict probe-lists $? "root: exit $code, $(grep -c '^[0-9]*\. /dev/hidraw' /tmp/out) panel, $(grep 'access:' /tmp/out | tr -s ' ')"
    as_operator dialix-probe >/tmp/out 2>&1; code=$?
    grep -q 'access: *no permission' /tmp/out && [ $code = 2 ]
    verdict probe-no-permission $? "operator, node $(stat -c '%a %U:%G' /dev/hidraw*): exit $code, $(grep 'access:' /tmp/out | tr -s ' ')"
    for v in plain17 id1 plain16; do
        panel d DLX-RIG-D $v wait-open 1 sleep 500 key 3 down sleep 200 key 3 up hold
        node=$(ls /sys/class/hidraw | tail -n1)
        as_operator dialix-probe --descriptor --panel /dev/$node >/tmp/out 2>&1; code=$?
        warned=$(grep -c '^Warning' /tmp/out)
        [ $v = plain16 ] && want=1 || want=0
        [ $code = 0 ] && [ $warned = $want ]
        verdict "probe-descriptor-$v" $? "exit $code; $(grep -E 'report|Warning' /tmp/out | tr -s ' ' | tr '\n' ';')"
        # The decoding through the real hidraw driver and hidapi.
        dialix-probe --events --panel /dev/$node --duration 6 >/tmp/out 2>&1
        got=$(grep -E 'key 3|Ignored' /tmp/out | sed 's/^ *[0-9.]* *//' | sort -u | tr '\n' ';')
        [ $v = plain16 ] && want='Ignored a report of 16 bytes (a panel report has 17).;' \
            || want='key 3 pressed;key 3 released;'
        [ "$got" = "$want" ]; verdict "probe-events-$v" $? "$got"
        unplug d
    done
    unplug p1
    waitfor 10 nodes 0
    as_operator dialix-probe >/tmp/out 2>&1; code=$?
    [ $code = 1 ]; verdict probe-absent $? "operator, no panel: exit $code, $(head -n1 /tmp/out)"
fi

echo "RIG-END"
poweroff -f
