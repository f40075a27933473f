#!/bin/sh
# Compiles the engine, its tools and its tests for Windows with Debian's cross compiler, and runs
# the tests where Wine is installed. Usage: tools/windows.sh [GTEST OPTION...]
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build-windows"

"$root/tools/build.sh" "$build" all -DTARN_ENGINE_ONLY=ON -DTARN_TESTS=ON \
    -DCMAKE_TOOLCHAIN_FILE="$root/tools/windows/mingw-w64.cmake"

wine=$(command -v wine64 || command -v /usr/lib/wine/wine64 || true)
if [ -z "$wine" ]; then
    echo "Wine is not installed; the tests were compiled only."
    exit 0
fi
# A system of their own, so that no settings of this user's count.
export WINEPREFIX="$build/wine" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
"$wine" "$build/bin/jet_tests.exe" "$@"
