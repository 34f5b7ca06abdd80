#!/usr/bin/env bash
# Runs sonavex-measure on a private PulseAudio loop while other processes keep the processors busy. Prints the losses
# and the readings.
#   tools/soak-server.sh [SECONDS [BUSY [precise]]]     3600 s; 2 busy processes for each processor; the precise
#                                                       measurement in place of the meter
# Exit status 1 when the measurement fails, when a settled or valid reading is wrong, when blocks that the meter misses
# are not counted as lost, or when the memory grows.
set -euo pipefail
# shellcheck source=tools/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/build.sh"

seconds="${1:-3600}"
busy="${2:-2}"
kind="${3:-meter}"
case "$kind" in
    meter) format=s16le arguments=(run --tone sine:1125) ;;
    precise) format=s24le arguments=(analyze --stimulus sine:997.3) ;;
    *)
        echo "The third argument is 'precise' or nothing." >&2
        exit 1
        ;;
esac
build_preset dev sonavex-measure
# shellcheck source=tools/private-sound.sh
source "$root/tools/private-sound.sh"
start_private_sound "$format"

for ((i = 0; i < busy * $(nproc); ++i)); do
    (while :; do :; done) &
    pids+=($!)
done

# A copy, so that a build during the measurement does not replace the program.
cp "$root/build/dev/bin/sonavex-measure" "$work/"
"$work/sonavex-measure" "${arguments[@]}" --json --rate 48000 --seconds "$seconds" \
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
# The last precise reading may be void.
((status == 0)) || [[ $kind$status == precise2 ]] || { echo "The meter ended with status $status" >&2; exit 1; }

python3 - "$work/readings.jsonl" "$work/minutes" "$seconds" "$kind" <<'PYTHON'
import collections, json, math, os, sys
lines = [json.loads(line) for line in open(sys.argv[1])]
minutes = []
if os.path.exists(sys.argv[2]):
    minutes = [[float(x) for x in line.split()] for line in open(sys.argv[2])]
last = lines[-1]


def meter():
    """Settled readings, wrong ones among them, and blocks that are neither measured nor counted as lost."""
    lost = {key: last[key] for key in ("blocksLost", "framesMissing", "overruns", "underruns")}
    settled = [float(line["thd"]) for line in lines if line["settled"]]
    print(f"{last['block']} blocks, {len(lines)} readings, {len(settled)} of them settled (19 good blocks in a row)")
    print("lost: " + ", ".join(f"{value} {key}" for key, value in lost.items()))
    if settled:
        print(f"total distortion of the settled readings: {min(settled)} to {max(settled)} %")
    # One second (23.4 blocks) of tolerance covers the start and the end.
    uncounted = float(sys.argv[3]) * 48000 / 2048 - last["block"] - last["blocksLost"]
    print(f"blocks neither measured nor counted as lost: {uncounted:.0f}")
    # The loop is digital: only the rounding to 16 bits distorts.
    return settled, [thd for thd in settled if thd > 0.006], uncounted


def precise():
    """Valid readings and wrong ones among them."""
    lost = {key: last[key] for key in ("frames_lost", "frames_missing", "stimulus_frames_missing", "underruns")}
    valid = [line for line in lines if line["valid"]]
    print(f"{len(lines)} readings, {len(valid)} of them valid")
    print("lost: " + ", ".join(f"{value} {key}" for key, value in lost.items()))
    causes = collections.Counter(line["sentences"][0].split(" at ")[0] for line in lines if not line["valid"])
    print("void: " + (", ".join(f"{count} x {cause}" for cause, count in causes.most_common(8)) or "none"))
    # The loop is digital: only the dither of 24 bits is noise. 0.25 dB are six standard deviations of a record.
    noise = 20 * math.log10(2**-23 / math.sqrt(2)) + 10 * math.log10((20000 - 20) / 24000)
    expected = {"frequency_hz": (997.3, 1e-4), "level_dbfs": (-1, 1e-4), "noise_dbfs": (noise, 0.25),
                "thdn_db": (noise + 1, 0.3), "thd_db": (-400, 400 - 150)}
    for key in expected if valid else ():
        values = [line[key] for line in valid]
        print(f"{key}: {min(values):.7g} to {max(values):.7g}")
    wrong = [line for line in valid
             if any(abs(line[key] - value) > tolerance for key, (value, tolerance) in expected.items())]
    return valid, wrong, 0


grown = 0.0
if minutes:
    memory = [kb for kb, _ in minutes]
    grown = memory[-1] - memory[0]
    loads = sorted(load for _, load in minutes)
    print(f"memory {memory[0]:.0f} kB after a minute, {memory[-1]:.0f} kB at the end")
    print(f"load average {loads[0]} to {loads[-1]}, median {loads[len(loads) // 2]}, on {os.cpu_count()} processors")
print("notes: " + ("; ".join(last["notes"]) or "none"))
good, wrong, uncounted = meter() if sys.argv[4] == "meter" else precise()
if not good or wrong or uncounted > 24 or grown > 1024:
    sys.exit(f"FAILED: {len(good)} good readings, {len(wrong)} wrong ones, {uncounted:.0f} blocks missing, "
             f"{grown:.0f} kB more memory")
PYTHON
