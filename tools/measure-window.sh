#!/usr/bin/env bash
# Measures the whole instrument in its window, on a private X server and a private PulseAudio loop at 48000 Hz. Prints
# the time to the first captured block and to the first reading (18 blocks later), the processor time and the memory.
# xdotool starts the tone; without it silence is measured. Use an idle machine.
# Arguments: duration of the measurement in seconds, 20 by default; then, to measure with an open Analyzer that plays and
# reads a sine: analyzer, the scale in percent (200 by default), and the record length as its place in the list of
# lengths (2 by default: 64k; 6: 1M).
set -euo pipefail
# shellcheck source=tools/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/build.sh"

seconds="${1:-20}"
analyzer="${2:-}"
scale="${3:-200}"
length="${4:-2}"
bin="$root/build/dev/bin"
build_preset dev sonavex sonavex-start-time
# shellcheck source=tools/private-sound.sh
source "$root/tools/private-sound.sh"
export userprofile="$work"
unset QT_QPA_PLATFORM
start_private_sound "$([[ $analyzer ]] && echo s24le || echo s16le)"

Xvfb -displayfd 3 -screen 0 2600x1700x24 -nolisten tcp 3>"$work/display" 2>"$work/x.log" &
pids+=($!)
await "X server" test -s "$work/display"
DISPLAY=":$(cat "$work/display")"
export DISPLAY

mkdir -p "$work/Sonavex"
printf '[SoundCard]\nSampleRate=0\n' >"$work/Sonavex/Sonavex.ini"
window_name='^Sonavex & Function Generator'
settling=0
if [[ $analyzer ]]; then
    printf '[Analyzer]\nOpen=1\nLength=%s\n' "$length" >>"$work/Sonavex/Sonavex.ini"
    window_name='^Analyzer$'
    # Eight records of the longest length overlap by 75 %.
    settling=$((length > 4 ? 90 : 15))
    QT_SCALE_FACTOR="$(awk -v s="$scale" 'BEGIN { print s / 100 }')"
    export QT_SCALE_FACTOR
fi
first_ms="$("$bin/sonavex-start-time" 5 "$bin/sonavex" | sed -n 's/^median //p')"

# F5 starts the current signal, or the stimulus of the Analyzer. Only a focused window receives the key.
start_sine() {
    local window
    window="$(xdotool search --onlyvisible --name "$window_name" | head -n 1)"
    [[ -n $window ]] && xdotool windowfocus --sync "$window" key F5
}

# Whether the sink plays anything but zeros within three seconds.
tone_plays() {
    (($(timeout 3 parec --device=card.monitor --raw 2>/dev/null | tr -d '\0' | head -c 1 | wc -c)))
}

"$bin/sonavex" 2>"$work/sonavex.log" &
program=$!
pids+=("$program")
sleep 3
signal="silence"
if start_sine 2>"$work/xdotool.log" && tone_plays; then signal="a sine"; fi
sleep "$settling"
ticks() { awk '{ print $14 + $15 }' "/proc/$program/stat"; }
before="$(ticks)"
sleep "$seconds"
after="$(ticks)"
resident_kb="$(awk '/^VmRSS/ { print $2 }' "/proc/$program/status")"

awk -v first="$first_ms" -v ticks="$((after - before))" -v hz="$(getconf CLK_TCK)" -v s="$seconds" \
    -v kb="$resident_kb" -v signal="$signal" 'BEGIN {
    printf "first captured block     %6.0f ms after the start of the process\n", first
    printf "first reading            %6.0f ms\n", first + 18 * 2048 / 48
    printf "processor time           %6.1f %% of one core over %d s, measuring %s\n", 100 * ticks / hz / s, s, signal
    printf "resident memory          %6.1f MB\n", kb / 1024
}'
