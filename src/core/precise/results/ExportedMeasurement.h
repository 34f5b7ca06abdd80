#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "core/analyzer/SpectrumMean.h"
#include "core/precise/results/AnalyzedReading.h"

namespace sonavex {

// A reading with everything that an export states about it.
struct ExportedMeasurement {
    std::string version;    // of the program: "2.1.14"
    std::string time;       // local time of the reading: "2026-11-22 17:05:00"
    std::string recording;  // file; empty for a live measurement
    std::string channel;    // "left", "right"
    // Of a reading without voids, for example "SETTLING 3 of 8"; empty for VALID.
    std::string state = {};
    AnalyzedReading reading;
};

// The mean power spectrum of records that overlap by 75 %.
struct ExportedSpectrum {
    double rateHz = 0;
    std::size_t length = 1;  // samples of a record
    double enbwBins = 1;     // of the window
    std::size_t records = 0;
    // By bin from 0 Hz to half the rate. A full-scale sine on a bin gives 1.
    std::vector<double> power;

    // The plan is that of the mean.
    static ExportedSpectrum Of(MeanSpectrum mean, const RecordPlan& plan);
    double BinHz() const noexcept { return rateHz / static_cast<double>(length); }
};

// All texts are UTF-8, with numbers in the "C" locale.

// The conditions, one in each line without a line end: program, time, devices or recording, rate, bits,
// stimulus, analysis, state, path notes, rules.
std::vector<std::string> ConditionsOf(const ExportedMeasurement& measurement);

// One object: the names of AnalyzedJson, `program`, `version`, `time`, `recording`, `channel`, `state`, and
// `spectrum` with `bin_hz`, `records` and the levels `level_dbfs` of the bins.
std::string ExportedJson(const ExportedMeasurement& measurement, const ExportedSpectrum& spectrum);

// A line for each value, after lines with the conditions that begin with '#': name, value, unit, uncertainty
// (95 %), bound (1 if noise hides the value). Undefined values are empty.
std::string ReadingsCsv(const ExportedMeasurement& measurement);

// Frequency and level in dBFS of each bin, after lines that begin with '#': the conditions, scale, window.
std::string SpectrumCsv(const std::vector<std::string>& conditions, const ExportedSpectrum& spectrum);

// For the clipboard: values and conditions as text.
std::string CopiedText(const ExportedMeasurement& measurement);

// For the printed report: lines of at most 70 characters. Empty for a void reading.
std::vector<std::string> ReportLines(const ExportedMeasurement& measurement);

}  // namespace sonavex
