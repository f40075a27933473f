#!/bin/sh
# Plays the main job in the real program on a virtual display: a new file from the template, two
# zones typed in, closed, opened again. Leaves the data file and pictures in build/tour.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
build=${TARN_BUILD:-$root/build}
tour=$build/tour

# shellcheck source=tools/tour/display.sh
. "$here/display.sh"
rm -rf "$tour"
mkdir -p "$tour"
# A copy of the program folder, so that the user's own files and logs stay as they are.
cp -r "$build/TARNPrep" "$tour/program"

echo "Pictures:"
open_display 1024x768x24
play_script "$tour/program" "$here/first-day.txt" "$tour"
data_file=$(find "$tour/program/Costs" -newer "$tour/started" -iname 'MHF*.fcd')
play_script "$tour/program" "$here/next-day.txt" "$tour" "$data_file"
cp "$data_file" "$tour/"
rm -rf "$tour/program" "$tour/started"
echo "Data file:"
echo "  $tour/$(basename "$data_file")"
