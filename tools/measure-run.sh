#!/usr/bin/env bash
# Measures how long a point of a run takes on a private PulseAudio loop at 48000 Hz, in real time: the time without the
# delay of the path, as a ratio to two records. The limit is 1.3.
# Argument: samples of a record, 65536 by default.
set -euo pipefail
# shellcheck source=tools/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/build.sh"

length="${1:-65536}"
build_preset dev sonavex-measure
# shellcheck source=tools/private-sound.sh
source "$root/tools/private-sound.sh"
start_private_sound s24le

# Each line of a point is preceded by the time at which it was printed.
"$root/build/dev/bin/sonavex-measure" sweep --rate 48000 --output card --input card.monitor --over frequency \
    --list 100,997,1500,3000,6000 --length "$length" 2>"$work/progress" |
    while read -r line; do echo "$EPOCHREALTIME $line"; done >"$work/points"

# The first point measures the path as well.
awk -v length_="$length" '
    match($0, /"path_delay_ms":[0-9.]+/) {
        path += substr($0, RSTART + 16, RLENGTH - 16) / 1000
        last = $1
        if (++points == 1) first = $1
    }
    !/"valid":true/ || !/"attempts":1,/ { repeated++ }
    END {
        if (points < 5 || repeated) { print "A point was not measured at the first attempt."; exit 1 }
        seconds = (last - first) / (points - 1)
        printf "a point                  %6.2f s\n", seconds
        printf "ratio to two records     %6.2f\n", (seconds - path / points) / (2 * length_ / 48000)
    }' "$work/points"
