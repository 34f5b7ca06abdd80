# shellcheck shell=bash
# Sourced by the commands at the root of the repository: sets `root` and how many tests run at the same
# time, and defines build_preset.

# Half of the tests mostly wait; tests/CMakeLists.txt says how much of a processor each one takes.
export CTEST_PARALLEL_LEVEL="${CTEST_PARALLEL_LEVEL:-$((2 * $(nproc)))}"

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

# Shows the steps of a build on standard error: one line that is rewritten on a terminal, one line at
# the beginning and one at the end elsewhere. Nothing when there is nothing to build.
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
    echo "Building $preset ended after $((SECONDS - since)) s" >&2
}

# build_preset PRESET [TARGET...]: configures when needed and builds the targets (default: all) in
# build/PRESET. Quiet; shows the whole log when it fails.
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
