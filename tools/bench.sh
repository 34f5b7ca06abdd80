#!/usr/bin/env bash
# Runs all benchmarks: the block path against the bare transform (also with SSE2 only), rings, texts, the windows at
# 100 % and 200 % scale, and the start of the programs. Prints tables with the targets and writes build/bench/summary.json and
# one file for each benchmark. Use an idle machine.
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

# measure NAME PROGRAM [ARGUMENT...]: writes medians to NAME.json. The repetitions are interleaved at random, so that
# other load on the machine affects all benchmarks equally.
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

# start NAME PROGRAM [ARGUMENT...]: measures the start with a private configuration, 48000 Hz and the simulated card.
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
# sonavex-bench-sse2 has vector loops for SSE2 only; this limits the vector functions of the C library as well.
GLIBC_TUNABLES=glibc.cpu.hwcaps=-SSE4_1,-SSE4_2,-AVX,-AVX2,-FMA,-AVX512F \
    measure sse2 "$bin/sonavex-bench-sse2" --benchmark_filter='BM_(Fft4096|Block)'
for scale in 100 200; do
    QT_SCALE_FACTOR="$((scale / 100))" measure "window$scale" "$bin/sonavex-window-bench"
done
start sonavex "$bin/sonavex"
start sonavex-measure "$bin/sonavex-measure" run --rate 48000 --tone sine:1000
python3 "$root/bench/ratios.py" "$out"
