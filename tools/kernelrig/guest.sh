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
# options TEXT: the plug-in's settings, in its own file beside the host and in
# the host's settings (which the plug-in reads after its own file)
options() { printf '%s\n' "$1" >$D/options.ini; printf '%s\n' "$1" >/tmp/host.ini; }
host() {
    (cd $D && exec env "$@" ./dialix-host --plugin $D/libdialix.so --settings /tmp/host.ini) >/tmp/host.log 2>&1 &
    HOST=$!
    waitfor 90 grep -q '^tabs' /tmp/host.log || echo "RIG-NOTE the host shows no tabs"
    echo "RIG-NOTE host up at $(cut -d' ' -f1 /proc/uptime) s"
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
# cputicks PID [THREAD-NAME]: user+system ticks of the process, or of its
# thread of that name
cputicks() {
    local t stat=/proc/$1/stat
    if [ -n "$2" ]; then
        stat=
        for t in /proc/$1/task/*; do [ "$(cat $t/comm)" = "$2" ] && stat=$t/stat; done
    fi
    [ -n "$stat" ] && cut -d')' -f2 $stat | awk '{print $12 + $13}'
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

# --- the reference host with libdialix.so: a session --------------------------
SESSION_OPTIONS='[Dialix1]
FunctionButton0=1
FunctionButton1=3
FunctionButton2=25
FunctionButton3=5
FunctionButton4=31
FunctionButton5=30
FunctionDial0=1
Options\KeyLed=true
Options\EncLed=true
Options\Enable=true'
press() { echo key $1 down sleep 300 key $1 up sleep 300; }
# The host's commands and calls; the MOX command's text is normalised.
calls() { grep -E '^(command|radio|paddle)' /tmp/host.log | sed -E 's/^(command +)M[Oo][Xx]( .*)? rx 0.*/\1MOX rx 0/' | tr -s ' ' | tr '\n' ';'; }
if [ "${ONLY#* session }" != "$ONLY" ]; then
    options "$SESSION_OPTIONS"
    panel s DLX-RIG-S plain17 wait-open 2 sleep 1500 $(press 1) $(press 2) $(press 4) $(press 5) \
        $(press 6) turn 0 5 sleep 300 turn 0 -3 sleep 300 $(press 5) $(press 6) turn 1 -2 sleep 300 \
        $(press 19) key 20 down sleep 200 key 21 down sleep 200 key 20 up sleep 200 key 21 up sleep 300 \
        $(press 3) sleep 700 $(press 3) sleep 700 \
        turn 0 1 sleep 50 turn 0 1 sleep 50 turn 0 1 sleep 50 turn 0 1 sleep 50 turn 0 1 sleep 1000 hold
    host
    waitfor 120 grep -q '^hold' /tmp/s.log
    host_stop
    sleep 1
    unplug s
    want='command Band Up rx 0;radio RX1 band 30m, VFO A 10.136000 MHz;command Mode Up rx 0;radio RX1 mode USB;'
    want="${want}command Volume rx 0 step 1;radio RX1 volume -19.0 dB;command VFO rx 1 ch 1 step 5;"
    want="${want}radio RX2 VFO B 7.074050 MHz;command VFO rx 1 ch 1 step -3;radio RX2 VFO B 7.074020 MHz;"
    want="${want}radio RX1 volume -21.0 dB;radio TRX1 MOX on;radio TRX1 MOX off;"
    want="${want}paddle trx 0 src 1 dash closed dot open;paddle trx 0 src 1 dash closed dot closed;"
    want="${want}paddle trx 0 src 1 dash open dot closed;paddle trx 0 src 1 dash open dot open;"
    want="${want}command MOX rx 0;radio TRX1 MOX on;command MOX rx 0;radio TRX1 MOX off;"
    got=$(calls)
    [ "${got#"$want"}" != "$got" ]; ok=$?
    verdict session-commands $ok "$(echo "$want" | tr -cd ';' | wc -c) commands and calls in order"
    [ $ok = 0 ] || echo "RIG-NOTE got: $got"
    spin=${got#"$want"}
    n=$(echo "$spin" | tr ';' '\n' | grep -c 'command VFO rx 0 ch 0 step 1$')
    [ "$(echo "$spin" | tr ';' '\n' | grep -c .)" = $((n * 2)) ] && [ $n -ge 1 ] && [ $n -le 5 ]; ok=$?
    verdict session-vfo-spin $ok "5 reports of +1 at 50 ms: $n VFO commands of step 1 (one pending value per 10 ms tick)"
    [ $ok = 0 ] || echo "RIG-NOTE spin: $spin"
    want='10,18,18,18,18,18,18,18,18,18,10,00,10,18,18,18,18,19,19,1b,1a,1a,18,1c,18,1c,18,18,18,18,10,00'
    got=$(outputs s | sed 's/00 //g')
    [ "$got" = "$want" ] && [ "$(grep -c '^output 00 [0-9a-f]*$' /tmp/s.log)" = 32 ]
    verdict session-leds $? "LED masks (each report 00 MASK): $got"
    [ "$(grep -A5 '^hold' /tmp/s.log | grep '^output' | cut -c8- | tr '\n' ',')" = '00 18,00 18,00 18,00 10,00 00,' ]
    verdict session-close-sequence $? "after the host ended: $(grep -A6 '^hold' /tmp/s.log | tr '\n' ',')"
fi

# --- two enabled controllers, one panel ----------------------------------------
if [ "${ONLY#* two }" != "$ONLY" ]; then
    options '[Dialix1]
FunctionButton0=1
Options\Enable=true
[Dialix2]
FunctionButton0=1
Options\Enable=true'
    panel a DLX-RIG-A plain17 wait-open 2 sleep 1500 $(press 1) sleep 500 hold
    panel b DLX-RIG-B plain17 sleep 3000 $(press 1) sleep 500 hold
    host
    waitfor 120 grep -q '^hold' /tmp/a.log
    waitfor 30 grep -q '^hold' /tmp/b.log
    host_stop
    unplug a; unplug b
    n=$(grep -c '^command Band Up rx 0' /tmp/host.log)
    [ "$(tabs)" = 'Dialix 1, Dialix 2' ] && [ $n = 2 ] && ! grep -q '^open' /tmp/b.log && [ "$(grep -c '^output' /tmp/b.log)" = 0 ]
    verdict two-controllers-one-panel $? "tabs $(tabs); key 1 on the first panel: $n Band Up commands; second panel opened $(grep -c '^open' /tmp/b.log) times, $(grep -c '^output' /tmp/b.log) LED reports, first panel $(grep -c '^output' /tmp/a.log)"
fi

# --- hot-plug through real uevents ----------------------------------------------
# hotplug SOURCE: plug A, plug B, unplug B, unplug A, while the host runs
hotplug() {
    options "$ENABLED"
    host
    panel a DLX-RIG-A plain17 hold; waitfor 30 grep -q '^open' /tmp/a.log
    panel b DLX-RIG-B plain17 hold; waitfor 30 grep -q 'Dialix 2' /tmp/host.log
    sleep 1; unplug b; waitfor 30 eval '[ "$(tabs)" = "Dialix 1|Dialix 1, Dialix 2|Dialix 1" ]'
    sleep 1; unplug a; sleep 2
    host_stop
    [ "$(tabs)" = 'Dialix 1|Dialix 1, Dialix 2|Dialix 1' ] && [ "$(grep -c '^open' /tmp/a.log)" -ge 2 ]
    verdict hotplug-$1 $? "tabs: $(tabs); panel A opened $(grep -c '^open' /tmp/a.log) times; $(grep -c '^open' /tmp/b.log) for B"
}
ENABLED='[Dialix1]
Options\Enable=true'
if [ "${ONLY#* hotplug }" != "$ONLY" ]; then
    hotplug kernel
    # An open panel that is unplugged while nobody closes it (the watcher
    # listens to a subsystem that never changes, see nohotplug.c).
    options "$ENABLED"
    panel a DLX-RIG-A plain17 hold
    host LD_PRELOAD=$D/libdialix-rig-nohotplug.so
    waitfor 30 grep -q '^open' /tmp/a.log
    sleep 2
    t0=$(uptime_cs); c0=$(cputicks $HOST Dialix); p0=$(cputicks $HOST)
    sleep 5
    t1=$(uptime_cs); c1=$(cputicks $HOST Dialix); p1=$(cputicks $HOST)
    unplug a
    sleep 1
    t2=$(uptime_cs); c2=$(cputicks $HOST Dialix); p2=$(cputicks $HOST)
    sleep 5
    t3=$(uptime_cs); c3=$(cputicks $HOST Dialix); p3=$(cputicks $HOST)
    host_stop
    pct() { echo "$1 $2" | awk '{printf "%.1f", 100 * $1 / $2}'; }
    [ -n "$c3" ] && [ $((c3 - c2)) -le $(((t3 - t2) / 100)) ] && grep -q '^nohotplug: hidraw' /tmp/host.log
    verdict hotplug-unplugged-open-panel-cpu $? "reader thread $(pct $((c3 - c2)) $((t3 - t2)))% of a core while unplugged and open (process $(pct $((p3 - p2)) $((t3 - t2)))%); plugged and idle: reader $(pct $((c1 - c0)) $((t1 - t0)))%, process $(pct $((p1 - p0)) $((t1 - t0)))%; host ended $(grep -c . /tmp/host.log) log lines"
fi

# --- the PTT port: the guest's second 16550 -----------------------------------
if [ "${ONLY#* serial }" != "$ONLY" ]; then
    options '[Dialix1]
Options\Enable=true
Options\PttTransferMode=2
Options\PttComName=ttyS1
Options\PttComEnable=true
Options\PttTransferDtr=true
Options\PttTransferRts=true'
    panel a DLX-RIG-A plain17 wait-open 2 sleep 1500 mark 0xa1 key 19 down sleep 500 mark 0xa2 key 19 up \
        sleep 500 mark 0xa3 hold
    mark 0xa0 start
    host
    waitfor 120 grep -q '^hold' /tmp/a.log
    echo "RIG-MARK 0xa1 ptt-press"; echo "RIG-MARK 0xa2 ptt-release"; echo "RIG-MARK 0xa3 idle"
    sleep 1
    mark 0xa4 hotplug
    panel b DLX-RIG-B plain17 hold; waitfor 30 grep -q 'Dialix 2' /tmp/host.log; sleep 2
    mark 0xa5 exit
    host_stop
    mark 0xa6 end
    unplug a; unplug b
    grep -q 'ttyS1' /tmp/host.log && echo "RIG-NOTE host: $(grep -i 'ttyS1' /tmp/host.log)"
fi

# --- key injection through uinput -------------------------------------------------
if [ "${ONLY#* keys }" != "$ONLY" ]; then
    tst_senderkeytosystemlinux -v1 >/tmp/out 2>&1; code=$?
    grep -q '^PASS.*releaseReachesTheVirtualKeyboard' /tmp/out && [ $code = 0 ]
    verdict keys-uinput $? "a lone release: no event within 500 ms; press then release: both read back; $(grep -E '^(PASS|FAIL|SKIP|QINFO).*Keyboard|Totals' /tmp/out | tr -s ' ' | tr '\n' ';')"
fi

# --- udevd with the package's rule ------------------------------------------------
if [ "${ONLY#* probe }" != "$ONLY" ] || [ "${ONLY#* hotplug }" != "$ONLY" ]; then
    systemd-udevd --daemon
    waitfor 20 test -e /run/udev/control
fi
if [ "${ONLY#* probe }" != "$ONLY" ]; then
    panel u DLX-RIG-U plain17 hold
    udevadm settle -t 30
    node=$(ls /dev/hidraw* | tail -n1)
    as_operator dialix-probe >/tmp/out 2>&1; code=$?
    [ "$(stat -c '%a %G' $node)" = '660 plugdev' ] && [ $code = 0 ]
    verdict probe-udev-rule $? "udevd applied 70-dialix.rules: $node $(stat -c '%a %U:%G' $node); operator (in plugdev): exit $code,$(grep 'access:' /tmp/out | tr -s ' ')"
    echo "RIG-NOTE uaccess is not checked: it needs a logind seat, which the guest does not have"
    unplug u
fi
if [ "${ONLY#* hotplug }" != "$ONLY" ]; then
    hotplug udev
fi

echo "RIG-END"
poweroff -f
