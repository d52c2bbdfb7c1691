#!/usr/bin/env bash
# Checks the Debian package: its control fields and dependencies, its maintainer
# scripts, its contents (unpacked with dpkg-deb -x, then check-tree.sh), a run of
# the installed reference host as an unprivileged user, and lintian. Exits 1 on the first group of problems.
#   tests/packaging/check-deb.sh dialix_<version>_<arch>.deb
set -euo pipefail
HERE="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
SRC="$(cd "$HERE/../.." && pwd)"
DEB="$(realpath "$1")"
SCRATCH="$(mktemp -d)"
trap 'rm -rf "$SCRATCH"' EXIT
failures=0
fail() {
    echo "check-deb: $*" >&2
    failures=$((failures + 1))
}
field() { dpkg-deb -f "$DEB" "$1"; }

# Control fields.
version=$(sed -n 's/^project(dialix VERSION \([0-9.]*\).*/\1/p' "$SRC/CMakeLists.txt")
[ "$(field Package)" = dialix ] || fail "Package is '$(field Package)'"
[ "$(field Version)" = "$version-1" ] || fail "Version is '$(field Version)', not $version-1"
[ "$(field Architecture)" = "$(dpkg --print-architecture)" ] || fail "Architecture is '$(field Architecture)'"
[ "$(field Section)" = hamradio ] || fail "Section is '$(field Section)'"
[ -n "$(field Maintainer)" ] || fail "no Maintainer"

# Dependencies: the runtime packages of Qt, hidapi, udev and libevdev (the key
# injector's virtual keyboard) by name...
depends=$(field Depends)
# One package name a line (alternatives included, versions dropped).
depends_names=$(tr ',|' '\n\n' <<<"$depends" | sed 's/(.*//; s/[[:space:]]//g')
depends_on() { grep -qxF "$1" <<<"$depends_names"; }
for pkg in libqt5core5a libqt5gui5 libqt5widgets5 libqt5serialport5 libhidapi-hidraw0 libudev1 \
    libevdev2 libc6 libstdc++6; do
    depends_on "$pkg" || fail "Depends lacks $pkg: $depends"
done

# Contents.
dpkg-deb -x "$DEB" "$SCRATCH/root"
bash "$HERE/check-tree.sh" "$SCRATCH/root" || failures=$((failures + 1))

# ...and, in general, every library that a packaged binary needs comes from a
# package named in Depends, or from this package itself. The library is looked
# up where the loader finds it (ldd), and its owner asked of dpkg.
while read -r elf; do
    for lib in $(readelf -d "$elf" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p'); do
        # ldd names the dynamic loader (needed for thread-local storage) by
        # its path alone, without "=>".
        path=$(ldd "$elf" | awk -v lib="$lib" '$1 == lib && $2 == "=>" { print $3 }
            substr($1, length($1) - length(lib)) == "/" lib { print $1 }')
        case "$path" in
        "$SCRATCH"/root/*) continue ;;
        "" | "not") fail "${elf#"$SCRATCH"/root/} needs $lib, which is not found"; continue ;;
        esac
        owner=$( (dpkg -S "$path" 2>/dev/null || dpkg -S "$(realpath "$path")" 2>/dev/null || true) \
            | head -1 | cut -d: -f1)
        if [ -z "$owner" ]; then
            fail "${elf#"$SCRATCH"/root/} needs $path, which no installed package provides"
        elif ! depends_on "$owner"; then
            fail "${elf#"$SCRATCH"/root/} needs $lib from $owner, which is not in Depends"
        fi
    done
done < <(find "$SCRATCH/root" -type f \( -perm -u+x -o -name '*.so*' \) -exec sh -c 'readelf -h "$1" >/dev/null 2>&1 && echo "$1"' sh {} \;)

# Files belong to root.
if dpkg-deb -c "$DEB" | awk '{print $2}' | grep -v '^root/root$' >&2; then
    fail "files not owned by root/root (above)"
fi

# Maintainer scripts: ours (udev reload), executable, no ldconfig.
dpkg-deb -e "$DEB" "$SCRATCH/control"
for script in postinst postrm; do
    [ -x "$SCRATCH/control/$script" ] || fail "no executable $script"
    cmp -s "$SCRATCH/control/$script" "$SRC/packaging/$script" || fail "$script is not packaging/$script"
    sh -n "$SCRATCH/control/$script" || fail "$script has a syntax error"
done
if grep -l ldconfig "$SCRATCH"/control/post* >&2; then
    fail "a maintainer script calls ldconfig"
fi

# The installed reference host, started as a user would start it: no arguments,
# an unprivileged account with a home of its own, no display and no network. It
# must find the installed virtual-panel plug-in by itself, play its session
# offscreen, and keep its settings and screenshots in the user's XDG folders
# (the installed tree is not writable for that user).
# The session's options page lists serial ports, and Qt opens every 8250 UART it
# lists to probe it: where the test build's pty guard exists, it keeps the
# session away from this machine's own serial ports.
GUARD="${DIALIX_TTY_GUARD:-}"
for g in "$(dirname "$DEB")/tests/support/libdialix_ptylines.so" \
    "$SRC/build/tests/support/libdialix_ptylines.so"; do
    [ -z "$GUARD" ] && [ -f "$g" ] && GUARD="$g"
done
run_as_user() {
    local home="$1"
    shift
    local env=(env -i HOME="$home" PATH=/usr/bin:/bin LANG=C.UTF-8 XDG_RUNTIME_DIR="$home/run")
    if [ -n "$GUARD" ]; then
        env+=(LD_PRELOAD="$SCRATCH/guard.so")
    fi
    if [ "$(id -u)" -eq 0 ]; then
        # A uid that no account has; unshare drops the network first.
        local net=(unshare --net)
        unshare --net true 2>/dev/null || net=()
        "${net[@]}" setpriv --reuid="$HOST_UID" --regid="$HOST_UID" --clear-groups \
            "${env[@]}" "$@"
    else
        "${env[@]}" "$@"
    fi
}
host="$SCRATCH/root/usr/bin/dialix-host"
if [ -x "$host" ]; then
    HOST_UID=${DIALIX_HOST_UID:-64123}
    home="$SCRATCH/home"
    mkdir -p -m 0700 "$home/run"
    if [ -n "$GUARD" ]; then
        install -m 0644 "$GUARD" "$SCRATCH/guard.so"
    fi
    chmod 0755 "$SCRATCH"
    if [ "$(id -u)" -eq 0 ]; then
        chown -R "$HOST_UID:$HOST_UID" "$home"
    fi
    before=$failures
    if ! (cd "$home" && run_as_user "$home" timeout 300 "$host") >"$SCRATCH/host.log" 2>&1; then
        tail -20 "$SCRATCH/host.log" >&2
        fail "the installed dialix-host did not finish its session as an unprivileged user"
    fi
    grep -q "^plugin .* from $SCRATCH/root/usr/lib/dialix/libdialix_virtual.so\$" "$SCRATCH/host.log" \
        || fail "the installed dialix-host did not load the installed virtual-panel plug-in"
    [ -f "$home/.config/dialix-host/host.ini" ] \
        || fail "the installed dialix-host kept no settings in ~/.config/dialix-host"
    [ -f "$home/Pictures/dialix-host/virtual-panel-1.png" ] \
        || fail "the installed dialix-host saved no screenshots in ~/Pictures/dialix-host"
    if [ "$failures" -eq "$before" ]; then
        echo "check-deb: the installed dialix-host ran as uid $HOST_UID:" \
            "$(grep -c '^command' "$SCRATCH/host.log") commands," \
            "$(grep -c '^led' "$SCRATCH/host.log") LED changes," \
            "$(find "$home/Pictures/dialix-host" -name '*.png' | wc -l) screenshots"
    fi
fi

# lintian: no errors or warnings; explained findings are in the package's
# overrides (packaging/lintian-overrides). Informational tags are shown.
if command -v lintian >/dev/null; then
    lintian --display-info --fail-on error,warning "$DEB" 2>&1 | grep -v '^running with root privileges' \
        || true
    if ! lintian --fail-on error,warning "$DEB" >/dev/null 2>&1; then
        fail "lintian reports errors or warnings (above)"
    fi
else
    fail "lintian is not installed (scripts/setup-deps.sh installs it)"
fi

if [ "$failures" -ne 0 ]; then
    echo "check-deb: $failures problem(s) in $DEB" >&2
    exit 1
fi
echo "check-deb: $DEB is fine"
