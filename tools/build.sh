#!/bin/sh
# Configures a build folder if need be and builds in it.
# Usage: tools/build.sh FOLDER "TARGET..."|all [CMAKE OPTION...]
# Says little while all is well; the whole output is in FOLDER/build.log.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
folder=$1
target=$2
shift 2

mkdir -p "$folder"
log="$folder/build.log"
started=$(date +%s)
echo "Building $target in ${folder#"$root"/} ..."
# shellcheck disable=SC2086
if ! {
    cmake -S "$root" -B "$folder" -G Ninja "$@" &&
        ninja -C "$folder" -j "${TARN_JOBS:-$(nproc)}" $target
} >"$log" 2>&1; then
    tail -n 80 "$log" >&2
    echo "The build failed; all of its output is in $log." >&2
    exit 1
fi
echo "Built in $(($(date +%s) - started)) s."
