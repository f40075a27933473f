#!/bin/sh
# Makes the archive and the installer for Windows of what was built for it.
# Usage: packaging/windows/build.sh BUILD-FOLDER LIBRARIES OUT-FOLDER
#   LIBRARIES is what tools/windows/libraries.py prints
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$1
libraries=$2
mkdir -p "$3"
out=$(cd "$3" && pwd)
version=$(sed -n 's/^project(TARNPrep VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
stage=$out/windows/TARNPrep-$version

rm -rf "$out/windows"
mkdir -p "$stage"
cmake --install "$build" --prefix "$stage" --component windows --strip >/dev/null
"$root/packaging/windows/collect.py" "$stage" "$libraries"

archive=$out/TARNPrep-$version-windows.zip
rm -f "$archive"
(cd "$out/windows" && cmake -E tar cf "$archive" --format=zip "TARNPrep-$version") &
packing=$!

if ! command -v makensis >/dev/null; then
    wait "$packing"
    echo "$archive"
    echo "makensis (nsis) is not installed, so there is no installer." >&2
    exit 0
fi
# The uninstaller takes away what was installed and nothing else; the variable is the installer's, not the shell's.
list=$out/windows/uninstall.nsh
# shellcheck disable=SC2016
(cd "$stage" && find . -type f ! -path './Costs/*' | sort | sed 's|^\./||; s|/|\\|g; s|.*|Delete "$INSTDIR\\&"|') >"$list"
# shellcheck disable=SC2016
(cd "$stage" && find . -mindepth 1 -type d | sort -r | sed 's|^\./||; s|/|\\|g; s|.*|RMDir "$INSTDIR\\&"|') >>"$list"
makensis -V2 -NOCD "-DVERSION=$version" "-DSTAGE=$stage" "-DLIST=$list" \
    "-DICON=$build/windows/tarnprep.ico" "-DOUT=$out/TARNPrep-$version-setup.exe" \
    "$root/packaging/windows/installer.nsi"
wait "$packing"
echo "$archive"
echo "$out/TARNPrep-$version-setup.exe"
