#!/bin/sh
# Builds for Windows with Debian's cross compiler and runs under Wine what can be run there: the engine with its tools
# and tests, then the programs upon the libraries that tools/windows/libraries.py builds once.
# Usage: tools/windows.sh [engine|program|package]   (without an argument, the engine)
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
toolchain=$root/tools/windows/mingw-w64.cmake

if ! command -v x86_64-w64-mingw32-g++-posix >/dev/null; then
    echo "The cross compiler is not installed, so nothing is built for Windows."
    exit 0
fi
wine=$(command -v wine64 || command -v /usr/lib/wine/wine64 || true)

engine() {
    build=$root/build-windows
    "$root/tools/build.sh" "$build" all -DTARN_ENGINE_ONLY=ON -DTARN_TESTS=ON \
        -DCMAKE_TOOLCHAIN_FILE="$toolchain"
    if [ -z "$wine" ]; then
        echo "Wine is not installed; the tests were compiled only."
        return
    fi
    # A system of their own, so that no settings of this user's count.
    WINEPREFIX="$build/wine" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" \
        "$wine" "$build/bin/jet_tests.exe"
}

program() {
    if [ -z "$wine" ]; then
        echo "Wine is not installed; it makes the files beside the programs, which are left out."
        return
    fi
    build=$root/build-windows-program
    libraries=$("$root/tools/windows/libraries.py")
    mkdir -p "$build"
    "$root/tools/build.sh" "$build" program -DTARN_TESTS=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DTARN_WINDOWS_LIBRARIES="$libraries" \
        "-DCMAKE_CROSSCOMPILING_EMULATOR=env;WINEPREFIX=$build/wine;WINEDEBUG=-all;WINEDLLOVERRIDES=mscoree,mshtml=;$wine"
}

package() {
    if [ -n "$wine" ]; then
        program
        "$root/packaging/windows/build.sh" "$build" "$libraries" "$root/build-package"
    fi
}

for part in ${1:-engine}; do
    "$part"
done
