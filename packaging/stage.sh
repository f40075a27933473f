# For the package builders, which source this file: `out` is set.

# stage FOLDER COMPONENT...: puts these parts of what was built under the folder, stripped.
stage() {
    stage_folder=$1
    shift
    for component in "$@"; do
        cmake --install "$out/build" --prefix "$stage_folder" --component "$component" --strip \
            >/dev/null
    done
}
