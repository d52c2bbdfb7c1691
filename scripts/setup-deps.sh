#!/usr/bin/env bash
# Installs every Debian package that the build, the tests, the tools and the
# benchmarks need. Idempotent: checks first, runs `apt-get update` once when
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
    # Hot-plug tests create tun interfaces
    iproute2
    # Packaging checks (udev: udevadm reads the panel's rule)
    dpkg-dev
    lintian
    udev
    # The Windows zip and installer (scripts/windows/package.sh)
    zip
    unzip
    nsis
)

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
