#!/usr/bin/env bash
# The kernel rig: boots a Debian kernel under QEMU (pure emulation) with an
# initramfs that holds this build's programs, and runs guest.sh inside it as
# /init. The guest makes panels through uhid, a second 16550 UART (/dev/ttyS1
# in the guest) carries the PTT lines, and uinput takes the injected keys. The
# guest prints one "RIG <scenario> PASS|FAIL <detail>" line per scenario; this
# script adds the serial-line figures measured from QEMU's serial_write trace
# and exits 0 when every scenario passed.
#
#   tools/kernelrig/rig.sh [BUILD_DIR]        (default: build)
#
# Environment: DIALIX_RIG_CACHE (downloads and the unpacked kernel; default
# .cache/kernelrig), DIALIX_RIG_TIMEOUT (seconds for the guest; default 480),
# DIALIX_RIG_ONLY (space-separated scenario groups to run: probe session
# hotplug two serial keys), DIALIX_RIG_OPEN_BOUND_US and DIALIX_RIG_STRICT_OPEN
# (how long the PTT lines may be up when the port opens: serial-figures.sh).
# Everything it writes stays in the cache and in
# BUILD_DIR/kernelrig; nothing of this machine is touched but packages
# (qemu-system-x86 is installed when missing).
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
BUILD="$(cd "${1:-$ROOT/build}" && pwd)"
CACHE="${DIALIX_RIG_CACHE:-$ROOT/.cache/kernelrig}"
RUN="$BUILD/kernelrig"
TIMEOUT="${DIALIX_RIG_TIMEOUT:-480}"
MODULES="virtio virtio_ring virtio_pci_legacy_dev virtio_pci_modern_dev virtio_pci virtio_console hid hid-generic uhid uinput evdev"
say() { echo "rig: $*"; }
start=$SECONDS

# --- what the guest needs, from Debian's registry --------------------------
if ! command -v qemu-system-x86_64 >/dev/null; then
    say "installing qemu-system-x86"
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends qemu-system-x86 >/dev/null
fi
mkdir -p "$CACHE/debs"
kernel_pkg=$(apt-cache depends linux-image-amd64 2>/dev/null | sed -n 's/^ *Depends: \(linux-image-[0-9].*-amd64\)$/\1/p' | head -n1)
if [ -z "$kernel_pkg" ]; then
    apt-get update -qq
    kernel_pkg=$(apt-cache depends linux-image-amd64 | sed -n 's/^ *Depends: \(linux-image-[0-9].*-amd64\)$/\1/p' | head -n1)
fi
for pkg in "$kernel_pkg" busybox-static; do
    if ! ls "$CACHE/debs/${pkg}_"*.deb >/dev/null 2>&1; then
        say "downloading $pkg"
        (cd "$CACHE/debs" && apt-get download -qq "$pkg" 2>/dev/null)
    fi
done
kver=${kernel_pkg#linux-image-}
KDIR="$CACHE/$kver"
if [ ! -f "$KDIR/vmlinuz" ]; then
    rm -rf "$KDIR.tmp" && mkdir -p "$KDIR.tmp"
    dpkg-deb --fsys-tarfile "$CACHE/debs/${kernel_pkg}_"*.deb |
        tar -x -C "$KDIR.tmp" --wildcards './boot/vmlinuz-*' './lib/modules/*/kernel/drivers/hid/*.ko' \
            './lib/modules/*/kernel/drivers/input/*' './lib/modules/*/kernel/drivers/virtio/*' \
            './lib/modules/*/kernel/drivers/char/virtio_console.ko'
    mv "$KDIR.tmp"/boot/vmlinuz-* "$KDIR.tmp/vmlinuz"
    rm -rf "$KDIR" && mv "$KDIR.tmp" "$KDIR"
fi
BUSYBOX="$CACHE/busybox"
if [ ! -x "$BUSYBOX" ]; then
    dpkg-deb --fsys-tarfile "$CACHE/debs/busybox-static_"*.deb | tar -xO ./bin/busybox >"$BUSYBOX.tmp"
    chmod +x "$BUSYBOX.tmp" && mv "$BUSYBOX.tmp" "$BUSYBOX"
fi
say "kernel $kver and busybox ready after $((SECONDS - start)) s"

# --- the initramfs ----------------------------------------------------------
HOSTBIN="$BUILD/tools/host/dialix-host"
PROGRAMS=("$BUILD/tools/probe/dialix-probe" "$HOSTBIN" "$BUILD/tools/kernelrig/dialix-uhidpanel"
          "$BUILD/tests/keys/tst_senderkeytosystemlinux" "$BUILD/tools/kernelrig/libdialix-rig-nohotplug.so")
PLUGIN=$(find "$BUILD/plugins" -name libdialix.so | head -n1)
OFFSCREEN=$(find /usr/lib/x86_64-linux-gnu/qt5/plugins/platforms -name libqoffscreen.so | head -n1)
for f in "${PROGRAMS[@]}" "$PLUGIN" "$OFFSCREEN"; do
    [ -f "$f" ] || { say "missing $f (build first: scripts/build.sh $BUILD)"; exit 2; }
done
STAGE="$RUN/root"
rm -rf "$STAGE" && mkdir -p "$STAGE"/{bin,opt/dialix,lib/rig,etc/udev/rules.d,usr/lib/x86_64-linux-gnu/qt5/plugins/platforms}
cp "$BUSYBOX" "$STAGE/bin/busybox"
cp "${PROGRAMS[@]}" "$PLUGIN" "$STAGE/opt/dialix/"
cp "$OFFSCREEN" "$STAGE/usr/lib/x86_64-linux-gnu/qt5/plugins/platforms/"
cp /bin/udevadm "$STAGE/bin/udevadm"
ln -s udevadm "$STAGE/bin/systemd-udevd"
cp "$ROOT/packaging/70-dialix.rules" "$STAGE/etc/udev/rules.d/"
cp "$ROOT/tools/kernelrig/guest.sh" "$STAGE/init"
chmod +x "$STAGE/init"
for f in "${PROGRAMS[@]}" "$PLUGIN" "$OFFSCREEN" /bin/udevadm; do
    ldd "$f" | awk '/=> \//{print $3} /^\t\/lib/{print $1}'
done | sort -u | while read -r lib; do
    # Our own shared libraries are found through the build tree's RUNPATH,
    # which does not exist in the guest (and may lie under its fresh /tmp):
    # they go where the guest's loader looks by default.
    case "$lib" in
    /lib/* | /lib64/* | /usr/lib/*) dest="$lib" ;;
    *) dest="/usr/lib/x86_64-linux-gnu/$(basename "$lib")" ;;
    esac
    mkdir -p "$STAGE$(dirname "$dest")"
    cp -L "$lib" "$STAGE$dest"
done
printf 'root:x:0:0:root:/root:/bin/sh\noperator:x:1000:1000:operator:/tmp:/bin/sh\n' >"$STAGE/etc/passwd"
printf 'root:x:0:\ndialout:x:20:\nplugdev:x:46:operator\noperator:x:1000:\n' >"$STAGE/etc/group"
# The modules in load order, each after what it depends on.
: >"$STAGE/lib/rig/order"
load() {
    grep -qx "$1" "$STAGE/lib/rig/order" && return
    local file
    file=$(find "$KDIR/lib/modules" -name "$1.ko" | head -n1)
    [ -n "$file" ] || { say "module $1 not in the kernel package"; exit 2; }
    for dep in $(strings -a "$file" | sed -n 's/^depends=//p' | tr ',' ' '); do load "$dep"; done
    cp "$file" "$STAGE/lib/rig/" && echo "$1" >>"$STAGE/lib/rig/order"
}
for m in $MODULES; do load "$m"; done
echo "${DIALIX_RIG_ONLY:-probe session hotplug two serial keys}" >"$STAGE/lib/rig/only"

# Unchanged contents reuse the last image.
sum=$(cd "$STAGE" && find . -type f -o -type l | sort | xargs -d '\n' ls -lLn --time-style=+%s 2>/dev/null | md5sum | cut -c1-32)
IMAGE="$RUN/initramfs.cpio"
if [ "$(cat "$IMAGE.sum" 2>/dev/null)" != "$sum" ]; then
    (cd "$STAGE" && find . | "$BUSYBOX" cpio -o -H newc 2>/dev/null) >"$IMAGE"
    echo "$sum" >"$IMAGE.sum"
    say "initramfs $(($(stat -c %s "$IMAGE") / 1048576)) MiB after $((SECONDS - start)) s"
else
    say "initramfs unchanged, reused"
fi

# --- the boot ---------------------------------------------------------------
# No UART at ttyS0: the second one (ttyS1, I/O 0x2f8) is the only one QEMU
# emulates, so every serial_write in the trace is the PTT port's. The guest's
# console and results go through a virtio console.
rm -f "$RUN/console.log" "$RUN/serial-trace.log" "$RUN/ttyS1.out"
booted=$SECONDS
status=0
timeout --foreground -k 10 "$TIMEOUT" qemu-system-x86_64 -accel tcg -nodefaults -display none -no-reboot \
    -m 1024 -smp 1 -kernel "$KDIR/vmlinuz" -initrd "$IMAGE" \
    -append "console=hvc0 quiet panic=-1 rdinit=/init" \
    -serial none -serial "file:$RUN/ttyS1.out" \
    -device virtio-serial-pci -chardev "file,id=out,path=$RUN/console.log" -device virtconsole,chardev=out \
    -trace serial_write -D "$RUN/serial-trace.log" -msg timestamp=on || status=$?
say "guest ran $((SECONDS - booted)) s (qemu exit $status)"
[ "$status" -eq 124 ] && say "the guest did not finish within $TIMEOUT s"

# --- results ----------------------------------------------------------------
tr -d '\r' <"$RUN/console.log" >"$RUN/guest.log" || true
bash "$ROOT/tools/kernelrig/serial-figures.sh" "$RUN/guest.log" "$RUN/serial-trace.log" >>"$RUN/guest.log" || true
# What the operator sees with two enabled tabs is what the guide tells.
told=FAIL
tr '\n' ' ' <"$ROOT/docs/guide.md" | grep -q 'two enabled tabs would both act on every key press' && told=PASS
echo "RIG guide-two-controllers $told docs/guide.md: two enabled tabs would both act on every key press" >>"$RUN/guest.log"
grep -E '^(RIG|  )' "$RUN/guest.log" || true
passed=$(grep -c '^RIG .* PASS' "$RUN/guest.log" || true)
failed=$(grep -c '^RIG .* FAIL' "$RUN/guest.log" || true)
if ! grep -q '^RIG-END' "$RUN/guest.log"; then
    say "the guest did not reach the end; its log: $RUN/guest.log"
    tail -n 30 "$RUN/guest.log"
    failed=$((failed + 1))
fi
say "$passed passed, $failed failed in $((SECONDS - start)) s (logs in $RUN)"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
