#!/bin/sh
# Runs the fuzz targets one after another.
# Usage: tools/fuzz.sh [SECONDS each, default 60] [NAME of one target]
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-60}
wanted=${2:-}
build="$root/build-fuzz"

"$root/tools/build.sh" "$build" fuzzers -DCMAKE_CXX_COMPILER=clang++ -DTARN_FUZZ=ON -DTARN_TESTS=OFF
mkdir -p "$build/findings"
if [ -n "$wanted" ] && [ ! -f "$root/fuzz/${wanted}_fuzz.cpp" ]; then
    echo "There is no fuzz target $wanted." >&2
    exit 2
fi
status=0
for source in "$root"/fuzz/*_fuzz.cpp; do
    name=$(basename "$source" _fuzz.cpp)
    if [ -n "$wanted" ] && [ "$wanted" != "$name" ]; then
        continue
    fi
    kept="$build/corpus/$name"
    start="$root/fuzz/corpus/$name"
    mkdir -p "$kept"
    set -- -max_total_time="$seconds" -timeout=10 -rss_limit_mb=1024 -print_final_stats=1 \
        -artifact_prefix="$build/findings/$name-"
    if [ -f "$root/fuzz/dictionaries/$name.dict" ]; then
        set -- "$@" -dict="$root/fuzz/dictionaries/$name.dict"
    fi
    set -- "$@" "$kept"
    if [ -d "$start" ]; then
        set -- "$@" "$start"
    fi
    echo "Fuzzing $name for $seconds s ..."
    if "$build/bin/${name}_fuzz" "$@" >"$build/$name.log" 2>&1; then
        grep -E 'number_of_executed_units|new_units_added' "$build/$name.log"
    else
        tail -n 40 "$build/$name.log"
        status=1
    fi
done
exit $status
