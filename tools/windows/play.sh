#!/bin/sh
# Plays the main job twice with the same keys: with the archive for Windows, unpacked for a new Wine, and with the
# program of this system. Both have to make the same data file, byte for byte.
# Usage: tools/windows/play.sh [windows|offscreen]   where the windows are: on a virtual display, or nowhere
# Leaves data files and pictures in build-windows-program/played.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
tour=$root/tools/tour
build=$root/build-windows-program
where=${1:-windows}
played=$build/played
wine=$(command -v wine64 || command -v /usr/lib/wine/wine64)
archive=$(find "$root/build-package" -name 'TARNPrep-*-windows.zip')

# shellcheck source=tools/tour/display.sh
. "$tour/display.sh"
rm -rf "$played"
mkdir -p "$played/windows" "$played/here"
(cd "$played" && cmake -E tar xf "$archive" && mv TARNPrep-* windows/program)
cp -r "$root/build/TARNPrep" "$played/here/program"
# A file's catalog says when its tables were made.
export SOURCE_DATE_EPOCH=1767225600 TZ=UTC

# play_there SCRIPT [DATA FILE]
# Wine keeps Qt's variables from its programs, and gives them what has its own name before theirs.
play_there() {
    script=$1
    shift
    WINEPREFIX="$played/wine" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" \
        WINEQT_QPA_PLATFORM="$where" WINEQT_PLUGIN_PATH="Z:$build/tour-player" \
        WINEQT_QPA_GENERIC_PLUGINS=tarntour \
        TARN_TOUR_SCRIPT="Z:$script" TARN_TOUR_PICTURES="Z:$played/windows" \
        timeout 300 "$wine" "$played/windows/program/tarnprep.exe" "$@"
}

data_file() {
    find "$played/$1/program/Costs" -iname 'MHF*.fcd'
}

open_display 1280x900x24
echo "Under Wine:"
play_there "$tour/first-day.txt"
play_there "$tour/next-day.txt" "$(data_file windows)"
echo "On this system:"
build=$root/build
play_script "$played/here/program" "$tour/first-day.txt" "$played/here"
play_script "$played/here/program" "$tour/next-day.txt" "$played/here" "$(data_file here)"
cmp "$(data_file windows)" "$(data_file here)"
echo "Both data files are the same: $(data_file windows)"
