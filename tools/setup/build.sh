# shellcheck shell=bash
# Configures and builds, for ./run, ./test and ./bench. To be sourced.

# zuvo_configure ROOT PRESET FOLDER [CMAKE OPTION...]: configures the preset into build/FOLDER.
zuvo_configure() {
    local root="$1" preset="$2" folder="$3"
    shift 3
    local log="$root/build/$folder-configure.log"
    mkdir -p "$root/build"
    # CMake says much about a configuration that is well; it is shown only for one that is not.
    if ! cmake -S "$root" --preset "$preset" -B "$root/build/$folder" "$@" >"$log" 2>&1; then
        cat "$log" >&2
        echo "The configuration failed." >&2
        return 1
    fi
}

# zuvo_build ROOT FOLDER [TARGET...]: builds the targets in build/FOLDER, all if none is named, with every core.
zuvo_build() {
    local root="$1" folder="$2"
    shift 2
    local targets=()
    if [[ $# -gt 0 ]]; then
        targets=(--target "$@")
    fi
    if ! cmake --build "$root/build/$folder" --parallel "$(nproc)" "${targets[@]}"; then
        echo "The build failed." >&2
        return 1
    fi
}
