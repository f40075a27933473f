# A virtual display and the player, for scripts that source this file and set `build`.
display_pid=""

close_display() {
    test -z "$display_pid" || kill "$display_pid" 2>/dev/null || true
}
trap close_display EXIT

# open_display WIDTHxHEIGHTxDEPTH
open_display() {
    number=$(mktemp)
    Xvfb -displayfd 3 -screen 0 "$1" -nolisten tcp 3>"$number" >/dev/null 2>&1 &
    display_pid=$!
    tries=0
    while [ ! -s "$number" ]; do
        tries=$((tries + 1))
        if [ $tries -gt 200 ]; then
            echo "The virtual display did not start." >&2
            exit 1
        fi
        sleep 0.05
    done
    DISPLAY=":$(cat "$number")"
    export DISPLAY
    rm -f "$number"
}

# play_script PROGRAM_FOLDER SCRIPT PICTURE_FOLDER [DATA_FILE]
play_script() {
    program=$1
    script=$2
    pictures=$3
    shift 3
    : >"$pictures/started"
    QT_QPA_PLATFORM=xcb QT_PLUGIN_PATH="$build/tour-player" QT_QPA_GENERIC_PLUGINS=tarntour \
        TARN_TOUR_SCRIPT="$script" TARN_TOUR_PICTURES="$pictures" \
        timeout 120 "$program/tarnprep" "$@"
}
