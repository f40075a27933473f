#!/bin/sh
# Unpacks the archive for Windows into a folder whose name is of another script and tries the commands in it under a
# new Wine, with nothing else in the environment and from another folder: what the programs need has to lie beside them.
# Usage: tools/windows/archive_test.sh ARCHIVE.zip
set -eu
archive=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
wine=$(command -v wine64 || command -v /usr/lib/wine/wine64)
server=$(command -v wineserver || command -v /usr/lib/wine/wineserver)
work=$(mktemp -d)
folder="$work/Żółć 山 🔥"

leave() {
    WINEPREFIX="$work/wine" "$server" --kill || true
    rm -rf "$work"
}
trap leave EXIT

fail() {
    echo "The archive for Windows: $*." >&2
    exit 1
}
# run PROGRAM [ARGUMENT...]
run() {
    program=$1
    shift
    (cd / && env -i HOME="$work" PATH=/usr/bin:/bin LANG=C.UTF-8 WINEPREFIX="$work/wine" WINEDEBUG=-all \
        WINEDLLOVERRIDES="mscoree,mshtml=" "$wine" "$there/$program.exe" "$@" 2>/dev/null) | tr -d '\r'
}
# named PATH; as a program for Windows names it
named() {
    echo "Z:$1" | sed 's|/|\\|g'
}
# finds_sound FILE
finds_sound() {
    case $(run jetdoctor "$1") in
    *": clean" | *" clean") ;;
    *) fail "jetdoctor does not find $1 sound" ;;
    esac
}

mkdir "$folder"
(cd "$folder" && cmake -E tar xf "$archive")
there=$(find "$folder" -mindepth 1 -maxdepth 1 -name 'TARNPrep-*')
sample=$(find "$there/Costs" -name '*.FCD' | sort | head -n 1)
test -n "$sample" || fail "there is no sample"
for license in LICENSE.txt LICENSE.charts.txt fonts/LICENSE.txt licenses/LGPL-3.txt licenses/GPL-3.txt; do
    test -s "$there/$license" || fail "$license is missing"
done

finds_sound "$(named "$sample")"
# Longer than a path could be once.
long=$work/$(printf '%0120d' 1)/$(printf '%0120d' 2)/$(printf '%0120d' 3)
mkdir -p "$long"
cp "$sample" "$long/Ünit ж.FCD"
finds_sound "$(named "$long/Ünit ж.FCD")"
# On a server, as Wine has them.
mkdir -p "$work/wine/dosdevices/unc/server"
ln -s "$long" "$work/wine/dosdevices/unc/server/share"
finds_sound '\\server\share\Ünit ж.FCD'
finds_sound '//server/share/Ünit ж.FCD'

case $(run fcdtool check "$(named "$long/Ünit ж.FCD")") in
*"$(named "$long/Ünit ж.FCD"): "*) ;;
*) fail "fcdtool does not print a file's name as it is" ;;
esac
run jetsql "$(named "$sample")" "SELECT Name FROM FMZList" | grep -q 'Wilderness' || fail "jetsql does not read a zone"
run fcdtool report "$(named "$sample")" --to "$(named "$work/Bericht ß.pdf")"
test "$(head -c 4 "$work/Bericht ß.pdf")" = "%PDF" || fail "there is no report"
pdftotext "$work/Bericht ß.pdf" - | grep -q 'Wilderness' || fail "the report has no text"
echo "The archive was unpacked and its commands tried, with names of other scripts, long ones and those of servers."
