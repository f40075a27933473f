#!/bin/sh
# Takes the pictures of the help pages from the program itself, with the sample data file.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
build=${TARN_BUILD:-$root/build}
pictures=$root/help/pages/pictures

# shellcheck source=tools/tour/display.sh
. "$here/display.sh"
work=$(mktemp -d)
trap 'rm -rf "$work"; close_display' EXIT
mkdir -p "$pictures"
cp -r "$build/TARNPrep" "$work/program"
# Twice as many pixels as the pages show: sharp on screens of either kind, and not ragged where a
# page has less room.
open_display 2048x1536x24
QT_SCALE_FACTOR=2
export QT_SCALE_FACTOR
play_script "$work/program" "$here/pictures-start.txt" "$pictures"
sample=$(find "$work/program/Costs" -iname '*.fcd' | head -n 1)
play_script "$work/program" "$here/pictures-worksheets.txt" "$pictures" "$sample"
rm -f "$pictures/started"
