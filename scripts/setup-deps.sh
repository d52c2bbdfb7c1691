#!/usr/bin/env bash
# Installs every Debian package that the build, the tests, the tools and the
# benchmarks need; `setup-deps.sh windows` adds what the Windows cross build
# and its runs under Wine need (scripts/ci.d/windows.sh). Idempotent: checks first, runs `apt-get update` once when
# something is missing, and prints nothing when everything is there.
set -euo pipefail

PACKAGES=(
    build-essential
    cmake
    pkg-config
    clang-format
    # Qt 5.15
    qtbase5-dev
    qtbase5-dev-tools
    libqt5serialport5-dev
    qttools5-dev
    qttools5-dev-tools
    # USB HID, hot-plug, key injection
    libhidapi-dev
    libudev-dev
    libevdev-dev
    # Headless X for screenshots and xcb tests
    xvfb
    xauth
    libxtst-dev
    # Windows-only sources are syntax-checked with mingw
    mingw-w64
    # Sanitizers and fuzzing
    clang
    libclang-rt-14-dev
    # Hamlib's rigctld: the reference host's real radio (its dummy model)
    libhamlib-utils
    # Hot-plug tests create tun interfaces
    iproute2
    # Packaging checks (udev: udevadm reads the panel's rule)
    dpkg-dev
    lintian
    udev
)

# The Windows build: the -posix cross compilers, the tools that build Qt from
# Debian's source package, Wine, and bubblewrap, which keeps the machine's
# serial ports out of Wine's sight. The offscreen platform needs DejaVu.
WINDOWS_PACKAGES=(
    g++-mingw-w64-x86-64-posix
    gcc-mingw-w64-x86-64-posix
    binutils-mingw-w64-x86-64
    make
    perl
    python3
    xz-utils
    ca-certificates
    wine
    wine64
    bubblewrap
    fonts-dejavu-core
    # The zip and the installer (scripts/windows/package.sh); xvfb-run and
    # xwininfo for the windows platform's tests
    zip
    unzip
    nsis
    x11-utils
)
if [ "${1:-}" = "windows" ]; then
    PACKAGES+=("${WINDOWS_PACKAGES[@]}")
fi

missing=()
for p in "${PACKAGES[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then
    SUDO="sudo"
fi

echo "setup-deps: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
echo "setup-deps: done"
