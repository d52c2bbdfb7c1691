#!/usr/bin/env bash
# Makes what a Windows operator installs, from a Windows build tree:
#   <build>/package/dialix-<version>-win64.zip        unpack and copy (guide, "Windows")
#   <build>/package/dialix-<version>-win64-setup.exe  NSIS installer (when makensis is there)
#
#   scripts/windows/package.sh [build-windows]
#
# The files come from the list CMake wrote (<build>/package/manifest.txt, see
# packaging/windows/CMakeLists.txt). The DLLs each binary imports are followed
# through the list's DLL directories: the plug-in gets the compiler's runtime
# but not Qt's DLLs, which the host ships; the probe gets everything it needs.
# Windows' own DLLs (those mingw-w64 has an import library for) stay behind. A
# DLL found nowhere stops the script, so nothing is left out silently.
set -euo pipefail
ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
BUILD="$(cd "${1:-$ROOT/build-windows}" && pwd)"
MANIFEST="$BUILD/package/manifest.txt"
OBJDUMP="${MINGW_OBJDUMP:-x86_64-w64-mingw32-objdump}"
SYSLIB="${MINGW_SYSLIB:-/usr/x86_64-w64-mingw32/lib}"

[ -f "$MANIFEST" ] || { echo "package: $MANIFEST missing (configure and build first)" >&2; exit 1; }

version="" plugin="" probe=""
qms=() docs=() dlldirs=() hostdlls=()
while read -r kind value; do
    case "$kind" in
        version) version="$value" ;;
        plugin) plugin="$value" ;;
        probe) probe="$value" ;;
        qm) qms+=("$value") ;;
        doc) docs+=("$value") ;;
        dlldir) dlldirs+=("$value") ;;
        hostdll) hostdlls+=("$value") ;;
    esac
done <"$MANIFEST"

lower() { tr '[:upper:]' '[:lower:]' <<<"$1"; }

# The DLL names a PE file imports.
imports() { "$OBJDUMP" -p "$1" | sed -n 's/^\s*DLL Name: //p'; }

# Every DLL of the DLL directories by its lower-case name; the first directory
# that has a name wins.
declare -A dll_index=()
for dir in "${dlldirs[@]}"; do
    for f in "$dir"/*.[dD][lL][lL]; do
        [ -f "$f" ] || continue
        key=$(lower "$(basename "$f")")
        [ -n "${dll_index[$key]:-}" ] || dll_index[$key]="$f"
    done
done

# Windows' own DLLs: mingw-w64 has an import library for each of them.
is_system() {
    local base
    base=$(lower "${1%.*}")
    [[ "$base" == api-ms-win-* ]] && return 0
    [ -f "$SYSLIB/lib$base.a" ]
}

# Copies `binary` and every DLL it needs, recursively, into `dest`; DLLs named in
# `skip` (lower case, space separated) are left to whoever loads the binary.
deploy() {
    local binary="$1" dest="$2" skip="$3" queue=("$1") seen=" " name path dll
    mkdir -p "$dest"
    cp "$binary" "$dest/"
    while [ ${#queue[@]} -gt 0 ]; do
        path="${queue[0]}"
        queue=("${queue[@]:1}")
        while read -r dll; do
            [ -n "$dll" ] || continue
            name=$(lower "$dll")
            [[ "$seen" == *" $name "* ]] && continue
            seen+="$name "
            [[ " $skip " == *" $name "* ]] && continue
            if [ "$name" = "qt5serialport.dll" ]; then
                # The build's own Qt5SerialPort.dll only stands in for the tests.
                echo "package: $(basename "$binary") needs Qt5SerialPort.dll, which only the host may ship" >&2
                exit 1
            fi
            found="${dll_index[$name]:-}"
            if [ -n "$found" ]; then
                cp "$found" "$dest/"
                queue+=("$found")
            elif ! is_system "$dll"; then
                echo "package: $(basename "$path") needs $dll, found in none of: ${dlldirs[*]}" >&2
                exit 1
            fi
        done < <(imports "$path" | tr -d '\r')
    done
}

name="dialix-$version-win64"
out="$BUILD/package"
stage="$out/$name"
rm -rf "$stage" "$out/$name.zip" "$out/$name-setup.exe"

host_skip=""
for dll in "${hostdlls[@]}"; do host_skip+="$(lower "$dll") "; done
deploy "$plugin" "$stage/plugin" "$host_skip"
[ -n "$probe" ] && deploy "$probe" "$stage/probe" ""
mkdir -p "$stage/translations" "$stage/doc/images"
for qm in "${qms[@]}"; do cp "$qm" "$stage/translations/"; done
for doc in "${docs[@]}"; do
    case "$doc" in
        *.png) cp "$doc" "$stage/doc/images/" ;;
        *) cp "$doc" "$stage/doc/" ;;
    esac
done
# Fixed times, so that the same build packs to the same bytes.
find "$stage" -exec touch -h -d "@${SOURCE_DATE_EPOCH:-0}" {} +
(cd "$out" && find "$name" -print | LC_ALL=C sort | zip -q -X -D "$name.zip" -@)
echo "package: $out/$name.zip"
(cd "$out" && unzip -Z1 "$name.zip" | sed 's/^/package:   /')

if command -v makensis >/dev/null; then
    makensis -V2 -DVERSION="$version" -DSTAGE="$stage" -DOUTFILE="$out/$name-setup.exe" \
        "$ROOT/packaging/windows/dialix.nsi"
    echo "package: $out/$name-setup.exe"
else
    echo "package: makensis not found, no installer (scripts/setup-deps.sh installs nsis)"
fi
