# For the package builders, which source this file: `root`, `out` and `version` are set.

# stage_program FOLDER: the program folder as a user gets it, without what a trial run left in it.
stage_program() {
    mkdir -p "$1"
    cp -r "$out/build/TARNPrep/." "$1/"
    rm -f "$1"/*.LOG "$1"/Costs/*-log
    strip "$1/tarnprep" "$1/tarnreview" "$1/fcdtool"
    strip --strip-unneeded "$1/libtarnhelp.so" "$1/libtarnplots.so" "$1/libtarnpdf.so"
}

# stage_tools FOLDER
stage_tools() {
    mkdir -p "$1"
    for tool in jetdoctor jetdump fcdtool; do
        cp "$out/build/bin/$tool" "$1/"
        strip "$1/$tool"
    done
}

# stage_icons FOLDER: the icons in the usual sizes, for the programs and for their files.
stage_icons() {
    for side in 16 24 32 48 64 128 256; do
        for picture in apps/tarnprep mimetypes/application-x-tarn-prep; do
            mkdir -p "$1/${side}x${side}/$(dirname $picture)"
            rsvg-convert -w "$side" -h "$side" "$root/packaging/icons/tarnprep.svg" \
                -o "$1/${side}x${side}/$picture.png"
        done
        rsvg-convert -w "$side" -h "$side" "$root/packaging/icons/tarnreview.svg" \
            -o "$1/${side}x${side}/apps/tarnreview.png"
    done
    mkdir -p "$1/scalable/apps"
    cp "$root/packaging/icons/tarnprep.svg" "$root/packaging/icons/tarnreview.svg" \
        "$1/scalable/apps/"
}
