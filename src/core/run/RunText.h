#pragma once

#include <optional>
#include <span>
#include <string>

#include "core/precise/results/StreamDetails.h"
#include "core/preview/PreviewAnalysis.h"
#include "core/run/RunFile.h"
#include "core/run/RunLimits.h"

namespace sonavex {

// What is stated beside the points of a run.
struct RunConditions {
    double rateHz = 0;
    std::size_t points = 0;  // of the whole run
    std::optional<StreamDetails> stream;
};

// One line without a line end: `point` (from 1), `points`, `requested_hz`, `played_hz`, `stimulus_dbfs`,
// `gain_db`, `phase_deg`, `path_delay_ms`, `attempts`, `after_loss`, then the names of AnalyzedJson. The
// values of a void point are null. With a run, which belongs into the first line of a file, also `run`: the
// content of its run file. ReadRunLines reads such a file.
std::string RunPointJson(const RunPointResult& result, std::size_t number, const RunConditions& conditions,
                         const RunFile* run = nullptr);

// One line without a line end: `preview`, a list with `requested_hz`, `gain_db`, `gain_noise_db` and
// `harmonics`, which are `order`, `dbc` and `noise_dbc`. ReadRunLines skips it.
std::string PreviewJson(std::span<const PreviewPoint> preview);

// Lines that begin with '#' state run, devices and verdict. Then one line for each measured point: the value,
// its uncertainty (95 %) and whether it is a bound. Values of void points and undefined values are empty.
std::string RunCsv(const RunFile& run, std::span<const RunPointResult> results,
                   const RunConditions& conditions);

// What distinguishes a point from the others: its frequency, as this text, its level, or both: "20 Hz, -1
// dBFS".
std::string PlaceText(std::span<const RunPointResult> results, std::size_t point, const std::string& hertz);

// "FAIL: 2 of 61 points are beyond a limit. Worst: thd -87.10 dB at 20 Hz, limit -90.00 dB."
std::string VerdictSentence(const RunVerdict& verdict, std::span<const RunPointResult> results,
                            std::size_t points);

}  // namespace sonavex
