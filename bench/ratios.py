#!/usr/bin/env python3
"""ratios.py FOLDER: what the benchmarks in FOLDER measured, against their targets.

Reads block.json, sse2.json, window100.json, window200.json (Google Benchmark, with repetitions) and *.start; prints
tables and writes summary.json there. Exit status 1 when a target was missed.
"""

import json
import pathlib
import sys

# Time of the two transforms that every block needs: FFTW with an estimated plan on split arrays.
RATIO_TARGETS = {"BM_Block/0": 3.0, "BM_Block/1": 3.3, "BM_Block/9": 6.0}
SSE2_ALLOWANCE = 3.0
# A reading of 65536 points by the number of lines, in real transforms of that length with an estimated plan.
ANALYZER_TARGETS = {"BM_AnalyzeTone65536/10": 40.0, "BM_AnalyzeTone65536/20": 70.0}
# Readings of 65536 points at 48 kHz follow each other after a quarter of a record. Shares of a core in percent: live
# with 20 lines; a recording, 50 times as fast as it lasts.
READING_INTERVAL_US = 65536 / 4 / 48000 * 1e6
SHARE_TARGETS = {"BM_AnalyzeTone65536/20": 4.0, "BM_AnalyzeTone65536/10": 2.0}
# By scale in percent.
WINDOW_TARGETS_US = {100: {"BM_SpectrumZoom": 4000.0}, 200: {"BM_SpectrumZoom": 8000.0, "BM_MeterUpdate": 1000.0}}
# Columns and pixels of the spectrum plot, by scale: half the time of a repaint.
IMAGE_TARGETS_US = {"BM_SpectrumImage65536/100": 2000.0, "BM_SpectrumImage65536/200": 4000.0}
# Ten thousand readings with curves; the files come from the disk cache in addition.
HISTORY_TARGETS_US = {"BM_OpenHistory10000": 1e6}
START_MS = 300.0
# A point of a run by the length of a record, in virtual time: its time without the path, relative to two records.
RUN_TARGETS = {"BM_RunPoint/32768": 1.3, "BM_RunPoint/65536": 1.3}

MICROSECONDS = {"ns": 1e-3, "us": 1.0, "ms": 1e3}


def medians(file):
    """Median processor time of each benchmark in microseconds; of the timed part where it is timed by hand."""
    result = {}
    for entry in json.loads(file.read_text())["benchmarks"]:
        if entry.get("aggregate_name") != "median":
            continue
        manual = entry["run_name"].endswith("/manual_time")
        time = entry["real_time" if manual else "cpu_time"]
        name = entry["run_name"].removesuffix("/manual_time").split("/iterations:")[0]
        result[name] = time * MICROSECONDS[entry["time_unit"]]
    # The benchmarks ran in shuffled order.
    return dict(sorted(result.items()))


def run_rows(file):
    found = {entry["run_name"].split("/iterations:")[0]: entry["ratio"]
             for entry in json.loads(file.read_text())["benchmarks"] if entry.get("aggregate_name") == "median"
             if "ratio" in entry}
    return [rated(name, found[name], "x", target) for name, target in RUN_TARGETS.items()]


def rated(name, value, unit, target):
    row = {"name": name, "value": round(value, 3), "unit": unit}
    if target is not None:
        row |= {"target": target, "met": value <= target}
    return row


def ratio_rows(times, allowance):
    floor = 2.0 * times["BM_Fft4096"]
    rows = []
    for name, time in times.items():
        if not name.startswith("BM_Block"):
            continue
        target = RATIO_TARGETS.get(name)
        rows.append(rated(name, time / floor, "x", target and target * allowance) | {"us": round(time, 2)})
    return rows


def analyzer_rows(times):
    floor = times["BM_RealFft65536"]
    return [rated(name, times[name] / floor, "x", target) | {"us": round(times[name], 2)}
            for name, target in ANALYZER_TARGETS.items()]


def share_rows(times):
    return [rated(name, 100 * times[name] / READING_INTERVAL_US, "%", target)
            for name, target in SHARE_TARGETS.items()]


def time_rows(times, targets):
    return [rated(name, time, "us", targets.get(name)) for name, time in times.items()]


def start_rows(folder):
    rows = []
    for file in sorted(folder.glob("*.start")):
        word, value = file.read_text().splitlines()[-1].split()
        assert word == "median", file
        rows.append(rated(file.stem, float(value), "ms", START_MS if file.stem == "sonavex" else None))
    return rows


def show(title, rows):
    print(f"\n{title}")
    for row in rows:
        target = f"{row['target']:>8g} {'met' if row['met'] else 'MISSED'}" if "target" in row else ""
        time = f"{row['us']:>10.2f} us" if "us" in row else ""
        print(f"  {row['name']:<28}{row['value']:>10.3f} {row['unit']:<3}{time:<14}{target}".rstrip())


def main(folder):
    block = medians(folder / "block.json")
    sse2 = medians(folder / "sse2.json")
    context = json.loads((folder / "block.json").read_text())["context"]
    tables = {
        "block": ratio_rows(block, 1.0),
        "blockSse2": ratio_rows(sse2, SSE2_ALLOWANCE),
        "analyzer": analyzer_rows(block),
        "shares": share_rows(block),
        "run": run_rows(folder / "block.json"),
        "parts": time_rows({n: t for n, t in block.items() if not n.startswith(("BM_Block", "BM_Analyze", "BM_Run"))},
                           IMAGE_TARGETS_US | HISTORY_TARGETS_US),
        **{f"window{scale}": time_rows(medians(folder / f"window{scale}.json"), targets)
           for scale, targets in WINDOW_TARGETS_US.items()},
        "start": start_rows(folder),
    }
    titles = {
        "block": f"Block path / (2 x BM_Fft4096 = {2 * block['BM_Fft4096']:.2f} us)",
        "blockSse2": f"The same with SSE2 kernels / (2 x BM_Fft4096 = {2 * sse2['BM_Fft4096']:.2f} us)",
        "analyzer": f"Precise reading / (BM_RealFft65536 = {block['BM_RealFft65536']:.2f} us)",
        "run": "Point of a run without the path, in virtual time / two records",
        "parts": "Parts",
        "shares": "Share of a core that readings of 65536 points take at 48 kHz, with 20 and with 10 lines",
        **{f"window{scale}": f"Windows at {scale} % scale: captions, layout and painting"
           for scale in WINDOW_TARGETS_US},
        "start": "Start of the process to the first captured block, simulated card, 48000 Hz",
    }
    print(f"Medians. Load at the beginning: {context['load_avg']}")
    for name, rows in tables.items():
        show(titles[name], rows)
    missed = [row["name"] for rows in tables.values() for row in rows if row.get("met") is False]
    summary = {"date": context["date"], "load": context["load_avg"], **tables, "missed": missed}
    (folder / "summary.json").write_text(json.dumps(summary, indent=2) + "\n")
    return 1 if missed else 0


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.exit(main(pathlib.Path(sys.argv[1])))
