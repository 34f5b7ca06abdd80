# shellcheck shell=bash
# Sourced by other scripts. Sets `root` and the number of parallel tests, and defines build_preset.

# Four slots for each processor. tests/CMakeLists.txt declares how many slots a test takes.
export CTEST_PARALLEL_LEVEL="${CTEST_PARALLEL_LEVEL:-$((4 * $(nproc)))}"

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

# Shows the progress of a build on standard error: a counter on a terminal, otherwise one line at the start and one at
# the end. Prints nothing when everything is up to date.
show_build_steps() {
    local preset="$1" line started="" since=$SECONDS
    while IFS= read -r line; do
        [[ $line =~ ^\[([0-9]+)/([0-9]+)\]\ (.*) ]] || continue
        [[ ${BASH_REMATCH[3]} != *"Re-checking globbed directories"* ]] || continue
        if [[ -t 2 ]]; then
            printf '\r\033[KBuilding %s %s/%s' "$preset" "${BASH_REMATCH[1]}" "${BASH_REMATCH[2]}" >&2
        elif [[ -z $started ]]; then
            echo "Building $preset ..." >&2
        fi
        started=yes
    done
    [[ -n $started ]] || return 0
    [[ ! -t 2 ]] || printf '\r\033[K' >&2
    echo "Building $preset took $((SECONDS - since)) s" >&2
}

# build_preset PRESET [TARGET...]: configures when needed and builds the targets (default: all) in build/PRESET.
# Shows the build log only when the build fails.
build_preset() {
    local preset="$1" log ninja_file="$root/build/$1/build.ninja"
    shift
    mkdir -p "$root/build"
    log="$root/build/$preset.log"
    if [[ ! -e $ninja_file || $root/CMakePresets.json -nt $ninja_file ]]; then
        if ! (cd "$root" && cmake --preset "$preset") >"$log" 2>&1; then
            cat "$log" >&2
            echo "Configuring $preset failed" >&2
            return 1
        fi
    fi
    if ! NINJA_STATUS='[%f/%t] ' cmake --build "$root/build/$preset" ${1:+--target "$@"} 2>&1 </dev/null |
        tee "$log" | show_build_steps "$preset"; then
        cat "$log" >&2
        echo "Building $preset failed" >&2
        return 1
    fi
}
