#!/usr/bin/env bash
# Measures what speed is asked of: the block path against the bare transform, also with the instructions of
# the oldest machines, the rings, the texts, the window at 200 % scale, and the start. Prints tables with the
# targets and writes build/bench/summary.json beside the benchmarks' own files. Best on an idle machine.
# Argument: repetitions, 9 by default. Exit status 1 when a target was missed.
set -euo pipefail
# shellcheck source=tools/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/build.sh"

repetitions="${1:-9}"
bin="$root/build/release/bin"
out="$root/build/bench"
build_preset release sonavex-bench sonavex-bench-sse2 sonavex-window-bench sonavex-start-time sonavex \
    sonavex-measure
mkdir -p "$out"

# measure NAME PROGRAM [ARGUMENT...]: medians into NAME.json, shuffled so that what else the machine does
# meets all of them alike.
measure() {
    local name="$1"
    shift
    echo "Measuring $name ..." >&2
    "$@" --benchmark_repetitions="$repetitions" --benchmark_enable_random_interleaving=true \
        --benchmark_min_time=0.05 --benchmark_out_format=json --benchmark_out="$out/$name.json" \
        >/dev/null 2>"$out/$name.log" || {
        cat "$out/$name.log" >&2
        return 1
    }
}

# start NAME PROGRAM [ARGUMENT...]: an account of its own, 48000 Hz, the simulated card.
start() {
    local name="$1" account
    shift
    echo "Measuring the start of $name ..." >&2
    account="$(mktemp -d)"
    mkdir -p "$account/Sonavex"
    printf '[SoundCard]\nSampleRate=0\n' >"$account/Sonavex/Sonavex.ini"
    XDG_CONFIG_HOME="$account" XDG_RUNTIME_DIR="$account" QT_QPA_PLATFORM=offscreen SONAVEX_SOUND=simulated \
        "$bin/sonavex-start-time" "$repetitions" "$@" >"$out/$name.start" 2>"$out/$name.log" || {
        cat "$out/$name.log" >&2
        rm -rf "$account"
        return 1
    }
    rm -rf "$account"
}

measure block "$bin/sonavex-bench"
# The C library chooses its vector functions by itself; the programs' own kernels are plain already.
GLIBC_TUNABLES=glibc.cpu.hwcaps=-SSE4_1,-SSE4_2,-AVX,-AVX2,-FMA,-AVX512F \
    measure sse2 "$bin/sonavex-bench-sse2" --benchmark_filter='BM_(Fft4096|Block)'
measure window "$bin/sonavex-window-bench"
start sonavex "$bin/sonavex"
start sonavex-measure "$bin/sonavex-measure" run --rate 48000 --tone sine:1000
python3 "$root/bench/ratios.py" "$out"
