#!/usr/bin/env bash
# Runs sonavex-measure on a private PulseAudio loop while other processes keep the processors busy. Prints the losses
# and the readings.
#   tools/soak-server.sh [SECONDS [BUSY]]     3600 s; 2 busy processes for each processor
# Exit status 1 when the meter fails, when a settled reading is wrong, when missing blocks are not counted as lost, or
# when the memory grows.
set -euo pipefail
# shellcheck source=tools/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/build.sh"

seconds="${1:-3600}"
busy="${2:-2}"
build_preset dev sonavex-measure
# shellcheck source=tools/private-sound.sh
source "$root/tools/private-sound.sh"
start_private_sound

for ((i = 0; i < busy * $(nproc); ++i)); do
    (while :; do :; done) &
    pids+=($!)
done

# A copy, so that a build during the measurement does not replace the program.
cp "$root/build/dev/bin/sonavex-measure" "$work/"
"$work/sonavex-measure" run --json --rate 48000 --tone sine:1125 --seconds "$seconds" \
    >"$work/readings.jsonl" 2>"$work/errors.log" &
meter=$!
pids+=("$meter")
# Records memory in kB and load average once a minute.
while sleep 60 && kill -0 "$meter" 2>/dev/null; do
    resident="$(awk '/^VmRSS/ { print $2 }' "/proc/$meter/status" 2>/dev/null || true)"
    [[ -z $resident ]] || echo "$resident $(cut -d' ' -f1 /proc/loadavg)" >>"$work/minutes"
done
status=0
wait "$meter" || status=$?
cat "$work/errors.log" >&2
((status == 0)) || { echo "The meter ended with status $status" >&2; exit 1; }

python3 - "$work/readings.jsonl" "$work/minutes" "$seconds" <<'PYTHON'
import json, os, sys
lines = [json.loads(line) for line in open(sys.argv[1])]
minutes = []
if os.path.exists(sys.argv[2]):
    minutes = [[float(x) for x in line.split()] for line in open(sys.argv[2])]
settled = [float(line["thd"]) for line in lines if line["settled"]]
last = lines[-1]
lost = {key: last[key] for key in ("blocksLost", "framesMissing", "overruns", "underruns")}
# The loop is digital: only the rounding to 16 bits distorts.
wrong = [thd for thd in settled if thd > 0.006]
print(f"{last['block']} blocks, {len(lines)} readings, {len(settled)} of them settled (19 good blocks in a row)")
# One second (23.4 blocks) of tolerance covers the start and the end.
uncounted = float(sys.argv[3]) * 48000 / 2048 - last["block"] - last["blocksLost"]
print("lost: " + ", ".join(f"{value} {key}" for key, value in lost.items()))
if settled:
    print(f"total distortion of the settled readings: {min(settled)} to {max(settled)} %")
grown = 0.0
if minutes:
    memory = [kb for kb, _ in minutes]
    grown = memory[-1] - memory[0]
    loads = sorted(load for _, load in minutes)
    print(f"memory {memory[0]:.0f} kB after a minute, {memory[-1]:.0f} kB at the end")
    print(f"load average {loads[0]} to {loads[-1]}, median {loads[len(loads) // 2]}, on {os.cpu_count()} processors")
print("notes: " + ("; ".join(last["notes"]) or "none"))
print(f"blocks neither measured nor counted as lost: {uncounted:.0f}")
if not settled or wrong or uncounted > 24 or grown > 1024:
    sys.exit(f"FAILED: {len(settled)} settled readings, {len(wrong)} wrong ones, {uncounted:.0f} blocks missing, "
             f"{grown:.0f} kB more memory")
PYTHON
