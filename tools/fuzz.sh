#!/usr/bin/env bash
# Fuzzes the parsers of external input with libFuzzer: fuzz.sh [--merge] [SECONDS] [TARGET...]
# Builds the preset fuzz and runs each target (default: all of tests/fuzz) for SECONDS of processor time (default: 600).
# The corpus of each target is copied to build/fuzz/work and kept there between runs. Prints for each target the number
# of inputs, the coverage, the processor time, the seeds and the findings; SEED=NUMBER sets the first seed. A finding
# ends the run of its target and is kept in build/fuzz/findings; the exit status is then 1.
# --merge: afterwards (or only, with 0 SECONDS) replaces the inputs of the previous merge in tests/fuzz/corpus by a
# selection of those that reach new code. Inputs whose names are not checksums are kept.
set -euo pipefail
# shellcheck source=tools/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/build.sh"

# Limits for one input, the largest number of merged inputs, and the exit status of an interrupted libFuzzer.
readonly input_seconds=60 memory_mb=2048 kept_inputs=60 interrupted=72
declare -A longest=([tone-line]=256 [stimulus]=256 [run]=2048 [limit-table]=512 [mixer-state]=1024 [settings]=2048 [typing]=600 [wav]=8192 [analyze]=12288 [help]=16384 [history]=8192 [stored-run]=8192)
work="$root/build/fuzz/work"
findings="$root/build/fuzz/findings"
merge=

if [[ ${1:-} == --merge ]]; then
    merge=yes
    shift
fi
seconds="${1:-600}"
if [[ ! $seconds =~ ^[0-9]+$ ]]; then
    echo "usage: fuzz.sh [--merge] [SECONDS] [TARGET...]" >&2
    exit 2
fi
targets=("${@:2}")
((${#targets[@]})) || targets=(tone-line stimulus run limit-table mixer-state settings typing wav analyze help history stored-run)
seed="${SEED:-$((RANDOM * 32768 + RANDOM + 1))}"

for target in "${targets[@]}"; do
    if [[ -z ${longest[$target]:-} ]]; then
        echo "fuzz.sh: unknown target $target; the targets are ${!longest[*]}" >&2
        exit 2
    fi
done

# libfuzzer TARGET ARGUMENT...
libfuzzer() {
    local target="$1"
    shift
    "$root/build/fuzz/bin/sonavex-fuzz-$target" -max_len="${longest[$target]}" -timeout="$input_seconds" \
        -report_slow_units="$input_seconds" -rss_limit_mb="$memory_mb" "$@"
}

# last_of NAME LOG: the last number after the name.
last_of() {
    grep -aoE "$1 *[0-9]+" "$2" | tail -1 | grep -oE '[0-9]+$' || echo 0
}

# fuzz TARGET: runs libFuzzer repeatedly, because it limits elapsed time and this limits processor time.
fuzz() {
    local target="$1" tried=0 slice=0 used_ms=0 status=0 user system log clock
    log="$work/$target.log"
    clock="$(mktemp)"
    mkdir -p "$work/$target" "$findings"
    cp "$root/tests/fuzz/corpus/$target/"* "$work/$target/"
    while ((used_ms < seconds * 1000 && status == 0)); do
        local TIMEFORMAT='%U %S'
        { time libfuzzer "$target" -seed="$((seed + slice))" -print_final_stats=1 \
            -max_total_time="$(((seconds * 1000 - used_ms + 999) / 1000))" \
            -dict="$root/tests/fuzz/dictionaries/$target.dict" -artifact_prefix="$findings/$target-" \
            "$work/$target" >"$log" 2>&1; } 2>"$clock" || status=$?
        read -r user system <"$clock"
        used_ms=$((used_ms + 10#${user//./} + 10#${system//./}))
        tried=$((tried + $(last_of 'number_of_executed_units:' "$log")))
        slice=$((slice + 1))
    done
    rm -f "$clock"
    echo "$target: $tried inputs, coverage $(last_of 'cov:' "$log") edges and $(last_of 'ft:' "$log")" \
        "features, $((used_ms / 1000)) s of processor time, seeds $seed to $((seed + slice - 1))"
    ((status != 0)) || return 0
    if ((status == interrupted)); then
        echo "$target: interrupted"
        exit 130
    fi
    echo "$target: FINDING:"
    grep -aE -A2 '^Not so|ERROR: |runtime error|what\(\)|Test unit written' "$log" | cut -c1-300
    return 1
}

# merge_corpus TARGET: libFuzzer names the merged inputs by their checksum.
merge_corpus() {
    local target="$1" corpus="$root/tests/fuzz/corpus/$1" chosen all step
    chosen="$(mktemp -d)"
    find "$corpus" -type f -regextype posix-extended ! -regex '.*/[0-9a-f]{40}' -exec cp -t "$chosen" {} +
    mkdir -p "$work/$target"
    libfuzzer "$target" -merge=1 "$chosen" "$corpus" "$work/$target" >"$work/$target.merge.log" 2>&1
    find "$corpus" -type f -regextype posix-extended -regex '.*/[0-9a-f]{40}' -delete
    # A selection spread evenly over the lengths.
    mapfile -t all < <(find "$chosen" -type f -regextype posix-extended -regex '.*/[0-9a-f]{40}' \
        -printf '%s %p\n' | sort -n | cut -d' ' -f2)
    step=$(((${#all[@]} + kept_inputs - 1) / kept_inputs))
    for ((i = 0; i < ${#all[@]}; i += step)); do
        cp "${all[$i]}" "$corpus/"
    done
    rm -rf "$chosen"
    echo "$target: $(find "$corpus" -type f | wc -l) inputs kept, $(du -bs "$corpus" | cut -f1) bytes"
}

"$root/tools/install-dependencies.sh" "$root/tools/dependencies.txt" "$root/tools/dependencies-clang.txt"
build_preset fuzz sonavex-fuzz

failed=()
for target in "${targets[@]}"; do
    ((seconds == 0)) || fuzz "$target" || failed+=("$target")
    [[ -z $merge ]] || merge_corpus "$target"
done
if ((${#failed[@]})); then
    echo "Findings in build/fuzz/findings: ${failed[*]}"
    exit 1
fi
