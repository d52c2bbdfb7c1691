#!/usr/bin/env bash
# Builds the Windows cross toolchain once and caches it outside the checkout:
# Qt 5.15.8 qtbase for win32-g++ and hidapi 0.13.1's Windows back end, both
# from Debian bookworm's source packages, compiled with the mingw-w64 -posix
# compilers. Idempotent: a finished cache is reused; the last line printed is
# the cache directory. Concurrent callers wait for one another (flock).
#
#   scripts/windows/toolchain.sh          build if needed, print the directory
#   scripts/windows/toolchain.sh --dir    only print where it is (or would be)
#
# Layout of the cache directory:
#   bin/     x86_64-w64-mingw32-{gcc,g++} -> the -posix compilers (Qt's
#            configure calls the unsuffixed names)
#   qt/      the installed qtbase (bin/ holds the Linux moc/rcc/uic and the
#            Windows DLLs, plugins/platforms/ the platform plugins)
#   hidapi/  include/hidapi/hidapi.h and lib/libhidapi.a
#   build.log, times.txt
set -euo pipefail

QT_SRC_PACKAGE=qtbase-opensource-src
QT_VERSION=5.15.8
HIDAPI_VERSION=0.13.1
SUITE=bookworm
JOBS="${JOBS:-$(nproc)}"

QT_CONFIGURE_FLAGS=(
    -xplatform win32-g++ -device-option CROSS_COMPILE=x86_64-w64-mingw32-
    -opensource -confirm-license -release -shared
    -nomake examples -nomake tests
    -no-opengl -no-dbus -no-icu -no-openssl -no-fontconfig -no-direct2d
    -qt-zlib -qt-libpng -qt-libjpeg -qt-pcre -qt-freetype -qt-harfbuzz
    -no-sql-sqlite -no-sql-odbc -no-sql-psql -no-sql-mysql -no-feature-sql
    -no-feature-network -no-feature-xml -no-feature-tabletevent
)

key_input="qt=$QT_VERSION hidapi=$HIDAPI_VERSION suite=$SUITE flags=${QT_CONFIGURE_FLAGS[*]}"
KEY="qt${QT_VERSION}-hidapi${HIDAPI_VERSION}-$(printf '%s' "$key_input" | sha256sum | cut -c1-12)"
CACHE_ROOT="${DIALIX_WINDOWS_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/dialix-windows}"
CACHE="$CACHE_ROOT/$KEY"

log() { echo "toolchain: $*" >&2; }

if [ "${1:-}" = "--dir" ]; then
    echo "$CACHE"
    exit 0
fi

if [ -f "$CACHE/complete" ]; then
    echo "$CACHE"
    exit 0
fi

mkdir -p "$CACHE_ROOT"
exec 9>"$CACHE_ROOT/$KEY.lock"
if ! flock -n 9; then
    log "another build of $KEY is running; waiting for it"
    flock 9
fi
if [ -f "$CACHE/complete" ]; then
    echo "$CACHE"
    exit 0
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then
    SUDO="sudo"
fi

# Source packages: a deb-src entry for the suite, next to the deb entry.
ensure_deb_src() {
    if apt-get source --print-uris -qq "$QT_SRC_PACKAGE" >/dev/null 2>&1; then
        return
    fi
    log "adding a deb-src entry for $SUITE"
    $SUDO tee /etc/apt/sources.list.d/dialix-deb-src.sources >/dev/null <<SRC
Types: deb-src
URIs: http://deb.debian.org/debian
Suites: $SUITE
Components: main
Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg
SRC
    $SUDO apt-get update -qq
}

rm -rf "$CACHE"
mkdir -p "$CACHE/bin" "$CACHE/src"
start=$(date +%s)
exec 3>&2 4>&1
exec > >(tee -a "$CACHE/build.log" >&3) 2>&1

for tool in gcc g++; do
    ln -sf "$(command -v "x86_64-w64-mingw32-$tool-posix")" "$CACHE/bin/x86_64-w64-mingw32-$tool"
done
export PATH="$CACHE/bin:$PATH"

ensure_deb_src
cd "$CACHE/src"
log "fetching $QT_SRC_PACKAGE and hidapi sources"
apt-get source --download-only -qq "$QT_SRC_PACKAGE" hidapi >/dev/null
ls "${QT_SRC_PACKAGE}_$QT_VERSION"*.orig.tar.* "hidapi_$HIDAPI_VERSION"*.orig.tar.* >/dev/null ||
    { log "the suite no longer has qtbase $QT_VERSION and hidapi $HIDAPI_VERSION"; ls; exit 1; }

# hidapi: the Windows back end as a static library. Its header marks every
# hid_* function dllexport on Windows, so linking it into a DLL exports them
# under their own names.
log "building hidapi $HIDAPI_VERSION"
tar xf hidapi_"$HIDAPI_VERSION"*.orig.tar.*
HIDAPI_SRC="$(find . -maxdepth 1 -type d -name 'hidapi*' | head -1)"
mkdir -p "$CACHE/hidapi/include/hidapi" "$CACHE/hidapi/lib"
x86_64-w64-mingw32-gcc -O2 -c -I"$HIDAPI_SRC/hidapi" -I"$HIDAPI_SRC/windows" \
    "$HIDAPI_SRC/windows/hid.c" -o "$CACHE/src/hid.o"
x86_64-w64-mingw32-ar rcs "$CACHE/hidapi/lib/libhidapi.a" "$CACHE/src/hid.o"
cp "$HIDAPI_SRC/hidapi/hidapi.h" "$CACHE/hidapi/include/hidapi/"
cp "$HIDAPI_SRC"/windows/hidapi_winapi.h "$CACHE/hidapi/include/hidapi/" 2>/dev/null || true

log "unpacking qtbase $QT_VERSION"
tar xf "${QT_SRC_PACKAGE}_$QT_VERSION"*.orig.tar.*
QT_SRC="$(find . -maxdepth 1 -type d -name 'qtbase*' | head -1)"
mkdir -p build-qt
cd build-qt
log "configuring qtbase"
t0=$(date +%s)
"../$QT_SRC/configure" -prefix "$CACHE/qt" "${QT_CONFIGURE_FLAGS[@]}" >configure.log 2>&1 ||
    { tail -40 configure.log; exit 1; }
t1=$(date +%s)
log "building qtbase with $JOBS jobs"
make -j"$JOBS" >make.log 2>&1 || { tail -60 make.log; exit 1; }
t2=$(date +%s)
make install >install.log 2>&1 || { tail -40 install.log; exit 1; }
t3=$(date +%s)

cd "$CACHE"
rm -rf "$CACHE/src"
{
    echo "configure $((t1 - t0)) s"
    echo "build $((t2 - t1)) s"
    echo "install $((t3 - t2)) s"
    echo "total $((t3 - start)) s"
} | tee times.txt
touch "$CACHE/complete"
log "done in $((t3 - start)) s"
exec >&4 2>&3
echo "$CACHE"
