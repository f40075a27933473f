#!/bin/sh
# Installs what this Debian 12 machine lacks.
# Usage: tools/setup.sh build|test|package|bench|coverage|windows
#   build    the program and the tour
#   test     that, and everything that ./test runs
#   package  that, and the package builders
#   bench    what the benchmarks compare with
#   coverage that of test, and what reads the counts
#   windows  that of build, the cross compiler, what its libraries are built with, and Wine to run what it makes
# Safe to run at any time: with everything there it does nothing and needs no network.
set -eu

build="make cmake ninja-build g++ qt6-base-dev qt6-tools-dev qt6-documentation-tools qt6-l10n-tools
 libqt6sql6-sqlite libxlsxwriter-dev libminizip-dev libqcustomplot-dev libgtest-dev libgmock-dev zlib1g-dev libsqlite3-dev libssl-dev libpq-dev xvfb fonts-dejavu-core python3"
package="dpkg-dev fakeroot"
test="ccache clang clang-tidy clang-format libclang-rt-14-dev mdbtools shellcheck
 pkg-config poppler-utils
 desktop-file-utils appstream shared-mime-info man-db librsvg2-bin
 at-spi2-core dbus-daemon gir1.2-atspi-2.0 python3-gi python3-openpyxl xdotool sqlite3 postgresql-15
 libbenchmark-dev mdbtools-dev $package"
coverage="llvm"
windows="g++-mingw-w64-x86-64-posix libz-mingw-w64-dev googletest wine64 dpkg-dev patch tcl librsvg2-bin nsis
 fonts-wine xdotool poppler-utils"
bench="libbenchmark-dev libsqlite3-dev mdbtools-dev pkg-config valgrind"

case "${1:-build}" in
build) wanted="$build" ;;
test) wanted="$build $test" ;;
package) wanted="$build $test" ;;
bench) wanted="$build $bench" ;;
coverage) wanted="$build $test $coverage" ;;
windows) wanted="$build $windows" ;;
*)
    echo "usage: $0 build|test|package|bench|coverage|windows" >&2
    exit 2
    ;;
esac
# DuckDB comes as a package of Node, which another source than Debian may have brought along.
if [ "${1:-build}" = test ] && ! command -v npm >/dev/null 2>&1; then
    wanted="$wanted nodejs npm"
fi
# A desktop that offers only Wayland needs Qt's plug-in for it.
if [ -n "${WAYLAND_DISPLAY:-}" ] && [ -z "${DISPLAY:-}" ]; then
    wanted="$wanted qt6-wayland"
fi

if ! command -v apt-get >/dev/null 2>&1; then
    echo "This is not a Debian system; going on with what is installed. The Debian names of" >&2
    echo "what is needed:" $wanted >&2
    exit 0
fi

missing=""
for package_name in $wanted; do
    status=$(dpkg-query -W -f '${Status}' "$package_name" 2>/dev/null || true)
    [ "$status" = "install ok installed" ] || missing="$missing $package_name"
done

# What reads the CSV files of roll-ups in the tests; they are left out without it.
install_duckdb() {
    node_folder="${HOME:-/}/.cache/tarnprep/node"
    if [ "$1" != test ] || [ -d "$node_folder/node_modules/@duckdb/node-api" ]; then
        return 0
    fi
    mkdir -p "$node_folder"
    npm install --silent --no-audit --no-fund --prefix "$node_folder" @duckdb/node-api@1 \
        >/dev/null 2>&1 ||
        echo "DuckDB could not be installed; the tests that ask it are left out." >&2
}

if [ -z "$missing" ]; then
    install_duckdb "${1:-build}"
    exit 0
fi

if [ "$(id -u)" -eq 0 ]; then
    as_root="env"
elif command -v sudo >/dev/null 2>&1; then
    as_root="sudo env"
else
    echo "These packages are missing and only root (or sudo) can install them:$missing" >&2
    exit 1
fi

install_missing() {
    # shellcheck disable=SC2086
    $as_root DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300 \
        -o Dpkg::Use-Pty=0 install --no-install-recommends $missing
}

echo "Installing:$missing"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# The package lists of a new machine are empty or old: they are fetched only when that shows.
if ! install_missing >"$log" 2>&1; then
    $as_root apt-get -q -o DPkg::Lock::Timeout=300 update >>"$log" 2>&1 || true
    if ! install_missing >>"$log" 2>&1; then
        cat "$log" >&2
        echo "Installing the packages failed; what apt-get said stands above." >&2
        exit 1
    fi
fi
install_duckdb "${1:-build}"
