#!/bin/sh
# Installs and uninstalls silently under a new Wine and looks at what is there after each.
# Usage: tools/windows/install_test.sh SETUP.EXE
set -eu
setup=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
wine=$(command -v wine64 || command -v /usr/lib/wine/wine64)
server=$(command -v wineserver || command -v /usr/lib/wine/wineserver)
WINEPREFIX=$(mktemp -d)
export WINEPREFIX WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="

leave() {
    "$server" --kill || true
    rm -rf "$WINEPREFIX"
}
trap leave EXIT

fail() {
    echo "The installer for Windows: $*." >&2
    exit 1
}
# registry KEY [VALUE]
registry() {
    if [ $# -gt 1 ]; then
        set -- "$1" /v "$2"
    else
        set -- "$1" /ve
    fi
    "$wine" reg query "HKCU\\$1" "$2" ${3:+"$3"} 2>/dev/null | tr -d '\r' | sed -n 's/^.*REG_SZ *//p'
}
expect() {
    test "$1" = "$2" || fail "\"$2\" where \"$1\" was expected"
}

"$wine" "$setup" /S 2>/dev/null || fail "exit status $?"
user=$(find "$WINEPREFIX/drive_c/users" -maxdepth 1 -name "$(id -un)")
program="$user/AppData/Local/Programs/TARN Prep"
menu="$user/AppData/Roaming/Microsoft/Windows/Start Menu/Programs/TARN Prep"
test -f "$program/tarnprep.exe" || fail "the program is not there"
test -f "$menu/TARN Prep.lnk" || fail "the start menu has no entry"
expect TARNPrep.DataFile "$(registry 'Software\Classes\.fcd')"
there=$(registry 'Software\Classes\TARNPrep.DataFile\shell\open\command')
case $there in
*'\TARN Prep\tarnprep.exe" "%1"') ;;
*) fail "data files are opened by \"$there\"" ;;
esac
expect "TARN Prep" "$(registry 'Software\Microsoft\Windows\CurrentVersion\Uninstall\TARN Prep' DisplayName)"

# A second run leaves a sample as the user changed it.
sample=$(find "$program/Costs" -type f | head -n 1)
echo changed >"$sample"
cp "$sample" "$program/Costs/MINE26.FCD"
"$wine" "$setup" /S 2>/dev/null || fail "exit status $? when it is there already"
expect changed "$(cat "$sample")"

# It goes on as a copy of itself, which can take the original away.
"$wine" "$program/uninstall.exe" /S 2>/dev/null || fail "exit status $? of the uninstaller"
"$server" --wait
left=$(cd "$program" && find . -type f ! -path './Costs/*')
expect "" "$left"
test -f "$program/Costs/MINE26.FCD" || fail "the uninstaller took a data file away"
test ! -e "$menu" || fail "the start menu keeps its entry"
expect "" "$(registry 'Software\Classes\.fcd')"
expect "" "$(registry 'Software\Microsoft\Windows\CurrentVersion\Uninstall\TARN Prep' DisplayName)"
echo "Installed, installed again and uninstalled; the data files are still there."
