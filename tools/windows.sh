#!/bin/sh
# Builds for Windows with Debian's cross compiler and runs under Wine what can be run there: the engine with its tools
# and tests, then the programs upon the libraries that tools/windows/libraries.py builds once.
# Usage: tools/windows.sh [engine|program|package|start|tests]...
#   engine    the engine alone, with its tools and its tests, which run
#   program   all programs
#   package   that, an archive and an installer, which are tried
#   start     that, and how soon the programs show
#   tests     the tests of all else, without windows on a screen; TARN_PLATFORM=windows puts them on a virtual display
# Without an argument it does what `make windows` is to do: the programs, the package, the engine's tests upon them.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
toolchain=$root/tools/windows/mingw-w64.cmake
window_tests="platform base datafile import worksheets shell gui"

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
    "$root/tools/windows/run_tests.py" "$build" "" jet_tests
}

# built TARGETS
built() {
    build=$root/build-windows-program
    libraries=$("$root/tools/windows/libraries.py")
    mkdir -p "$build"
    "$root/tools/build.sh" "$build" "$1" -DTARN_GATES=OFF -DTARN_PRECOMPILE=ON -DCMAKE_BUILD_TYPE=Release \
        "-DCMAKE_CXX_FLAGS_RELEASE=-O2 -DNDEBUG" \
        -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DTARN_WINDOWS_LIBRARIES="$libraries" \
        "-DCMAKE_CROSSCOMPILING_EMULATOR=env;WINEPREFIX=$build/wine;WINEDEBUG=-all;WINEDLLOVERRIDES=mscoree,mshtml=;$wine"
}

program() {
    built program
}

package() {
    built program
    packed
}

packed() {
    "$root/packaging/windows/build.sh" "$build" "$libraries" "$root/build-package"
    "$root/tools/windows/archive_test.sh" "$root"/build-package/TARNPrep-*-windows.zip &
    archive_test=$!
    setup=$(find "$root/build-package" -name 'TARNPrep-*-setup.exe')
    if [ -n "$setup" ]; then
        "$root/tools/windows/install_test.sh" "$setup"
    fi
    wait "$archive_test"
}

# How soon the programs show, beside the least that a program with a window can be.
start() {
    package
    built bare_window
    folder=$(find "$root/build-package/windows" -mindepth 1 -maxdepth 1 -name 'TARNPrep-*')
    measured=$(mktemp -d)
    cp -r "$folder/." "$build/bin/bare_window.exe" "$measured"
    "$root/tools/windows/start_time.py" "$measured/bare_window.exe" "$measured/tarnprep.exe" "$measured/tarnreview.exe"
    rm -rf "$measured"
}

# Packing keeps one processor busy; meanwhile the engine's tests are compiled, which wait for nothing of it.
everything() {
    built program
    packed &
    package=$!
    built jet_tests
    "$root/tools/windows/run_tests.py" "$build" "$libraries" jet_tests
    wait "$package"
}

tests() {
    programs=""
    for folder in $window_tests; do
        programs="$programs ${folder}_tests"
    done
    built "program$programs"
    # shellcheck disable=SC2086
    "$root/tools/windows/run_tests.py" "$build" "$libraries" $programs
}

if [ $# -eq 0 ]; then
    set -- everything
fi
for part in "$@"; do
    if [ -z "$wine" ] && [ "$part" != engine ]; then
        echo "Wine is not installed; it makes the files beside the programs, which are left out."
        continue
    fi
    "$part"
done
