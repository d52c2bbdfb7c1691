#!/usr/bin/env bash
# Checks an installed tree of the dialix package: what `cmake --install` with
# DESTDIR puts there, or what `dpkg-deb -x` unpacks. Prints every problem and
# exits 1 when there was one.
#   tests/packaging/check-tree.sh ROOT
set -uo pipefail
SRC="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
ROOT="$1"
failures=0
fail() {
    echo "check-tree: $*" >&2
    failures=$((failures + 1))
}

plugin_dir="$(qmake -query QT_INSTALL_PLUGINS 2>/dev/null || echo /usr/lib/x86_64-linux-gnu/qt5/plugins)/quorvane2"
plugin="${plugin_dir#/}/libdialix.so"
rule=usr/lib/udev/rules.d/70-dialix.rules
doc=usr/share/doc/dialix

# Every file of the package, with its mode; nothing else may be there (no test
# programs, no virtual-panel probe, no static libraries or headers).
expected=$(
    cat <<EOF
0644 $rule
0644 $doc/changelog.Debian.gz
0644 $doc/copyright
0644 $doc/guide.md
0644 usr/share/lintian/overrides/dialix
0644 usr/share/man/man1/dialix-host.1.gz
0644 usr/share/man/man1/dialix-probe.1.gz
0644 $plugin
0644 usr/lib/dialix/libdialix_virtual.so
0644 usr/lib/dialix/libdialix_virtualpanel.so
0755 usr/bin/dialix-host
0755 usr/bin/dialix-probe
EOF
    for image in "$SRC"/docs/images/*.png; do
        [ -e "$image" ] && echo "0644 $doc/images/$(basename "$image")"
    done
)
actual=$(cd "$ROOT" && find . -type f -printf '%m %P\n' | sed 's/^\([0-7]\{3\}\) /0\1 /')
if ! diff <(sort -k2 <<<"$expected") <(sort -k2 <<<"$actual") >/dev/null; then
    fail "the files differ from the expected list (< expected, > found):"
    diff <(sort -k2 <<<"$expected") <(sort -k2 <<<"$actual") | grep '^[<>]' >&2
fi

# Every picture that the guide shows is there.
for image in $(grep -o '](images/[^)]*)' "$ROOT/$doc/guide.md" 2>/dev/null | sed 's/^](//; s/)$//'); do
    [ -f "$ROOT/$doc/$image" ] || fail "the guide shows $image, which is not installed"
done

# The rule matches the ids the panel class opens, as the kernel names the HID
# device: bus 0003 (USB), vendor and product in upper-case hex.
protocol="$SRC/plugins/panels/dialix/source/panelprotocol.h"
vendor=$(sed -n 's/.*VendorId = 0x\([0-9A-Fa-f]*\);.*/\1/p' "$protocol" | tr 'a-f' 'A-F')
product=$(sed -n 's/.*ProductId = 0x\([0-9A-Fa-f]*\);.*/\1/p' "$protocol" | tr 'a-f' 'A-F')
[ -n "$vendor" ] && [ -n "$product" ] || fail "cannot read the panel's ids from panelprotocol.h"
active=$(grep -v '^[[:space:]]*#' "$ROOT/$rule" 2>/dev/null | grep 'hidraw')
for want in 'KERNEL=="hidraw\*"' "KERNELS==\"0003:$vendor:$product\.\*\"" 'TAG+="uaccess"'; do
    grep -q "$want" <<<"$active" || fail "the rule lacks $want"
done

# udev itself reads the rule without complaint: in a private mount namespace
# where the rules directory holds this rule only (root and unshare needed).
# (A chroot whose root is not a mount point cannot make a private namespace.)
if [ "$(id -u)" -eq 0 ] && command -v unshare >/dev/null && command -v udevadm >/dev/null \
    && [ -d /sys/class/net/lo ] && unshare -m true 2>/dev/null; then
    log=$(unshare -m sh -c 'mount -t tmpfs none /etc/udev/rules.d \
        && cp "$1" /etc/udev/rules.d/ && sed -i "s/^#KERNEL/KERNEL/" /etc/udev/rules.d/70-dialix.rules \
        && udevadm test -a add /sys/class/net/lo 2>&1' sh "$ROOT/$rule")
    grep -q 'Reading rules file: /etc/udev/rules.d/70-dialix.rules' <<<"$log" \
        || fail "udevadm did not read the rule"
    if grep '70-dialix.rules:[0-9]' <<<"$log" >&2; then
        fail "udevadm found errors in the rule (above)"
    fi
else
    echo "check-tree: rule syntax not checked (needs root, a private mount namespace and udevadm)"
fi

# Binaries: no run path into the build tree, the real plug-in does not need the
# virtual panel, and every library they need is found from the installed places.
for elf in usr/bin/dialix-probe usr/bin/dialix-host "$plugin" usr/lib/dialix/libdialix_virtual.so; do
    [ -f "$ROOT/$elf" ] || continue
    runpath=$(readelf -d "$ROOT/$elf" | sed -n 's/.*(R\(UN\)\{0,1\}PATH).*\[\(.*\)\]/\2/p')
    case "$runpath" in
    *"$SRC"* | *build*) fail "$elf has a run path into the build tree: $runpath" ;;
    esac
    missing=$(ldd "$ROOT/$elf" 2>&1 | grep 'not found')
    [ -z "$missing" ] || fail "$elf: $missing"
done
if readelf -d "$ROOT/$plugin" 2>/dev/null | grep -q 'libdialix_virtualpanel'; then
    fail "the plug-in for real panels needs the virtual panel"
fi

# The plug-in carries the host's interface id in its metadata, and exports the
# key injector that the host's key-control classes call.
grep -aq 'Brindlecraft.Quorvane2.plugin' "$ROOT/$plugin" 2>/dev/null \
    || fail "the plug-in's metadata lacks its interface id"
exports=$(nm -D --defined-only "$ROOT/$plugin" 2>/dev/null)
grep -q ' _ZN17SenderKeyToSystem8instanceEv$' <<<"$exports" \
    || fail "the plug-in does not export SenderKeyToSystem::instance()"

# The installed probe runs.
version=$("$ROOT/usr/bin/dialix-probe" --version 2>&1)
[[ "$version" == "dialix-probe "[0-9]* ]] || fail "dialix-probe --version says: $version"

if [ "$failures" -ne 0 ]; then
    echo "check-tree: $failures problem(s) in $ROOT" >&2
    exit 1
fi
echo "check-tree: $ROOT is complete"
