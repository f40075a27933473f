#!/bin/sh
# Builds the portable archive and the Debian package into build-package/.
# Usage: packaging/build.sh [portable|deb]   (without an argument, both)
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
out=$root/build-package
version=$(sed -n 's/^project(TARNPrep VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")

"$root/tools/setup.sh" package
# Optimized as what the tests run on is, and stripped afterwards.
"$root/tools/build.sh" "$out/build" program -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTARN_TESTS=OFF
for kind in ${1:-portable deb}; do
    "$root/packaging/$kind/build.sh" "$root" "$out" "$version"
done
