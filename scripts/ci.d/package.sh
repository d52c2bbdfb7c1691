#!/usr/bin/env bash
# Builds the Debian package the way a distribution would (Release, Debian's
# hardening flags, installed under /usr) in its own build directory, then checks
# its contents, its dependencies and the installed programs, and runs lintian.
#   scripts/ci.d/package.sh            # build-package/dialix_<version>_<arch>.deb
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
BUILD="${DIALIX_PACKAGE_BUILD:-$ROOT/build-package}"
start=$SECONDS

# Debian's compiler and linker flags, with every hardening feature (lintian
# checks for bindnow, fortify and stack protection).
eval "$(cd "$ROOT" && DEB_BUILD_MAINT_OPTIONS=hardening=+all dpkg-buildflags --export=sh)"
cmake -S "$ROOT" -B "$BUILD" \
    -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX=/usr \
    -DDIALIX_BUILD_TESTS=OFF -DDIALIX_BUILD_BENCH=OFF -DDIALIX_BUILD_TOOLS=ON \
    -DCMAKE_C_FLAGS="$CFLAGS $CPPFLAGS" \
    -DCMAKE_CXX_FLAGS="$CXXFLAGS $CPPFLAGS" \
    -DCMAKE_EXE_LINKER_FLAGS="$LDFLAGS" \
    -DCMAKE_SHARED_LINKER_FLAGS="$LDFLAGS" \
    -DCMAKE_MODULE_LINKER_FLAGS="$LDFLAGS"
cmake --build "$BUILD" -j2
echo "package: built in $((SECONDS - start)) s"

rm -f "$BUILD"/dialix_*.deb
(cd "$BUILD" && cpack -G DEB >/dev/null)
deb=$(ls "$BUILD"/dialix_*.deb)
echo "package: $deb"

bash "$ROOT/tests/packaging/check-deb.sh" "$deb"
echo "package: checked in $((SECONDS - start)) s"
