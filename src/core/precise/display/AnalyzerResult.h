#pragma once

#include <memory>
#include <vector>

#include "core/analyzer/LinesReading.h"
#include "core/plot/SpectrumPlot.h"
#include "core/plot/WaveRecord.h"
#include "core/precise/RecordAnalysis.h"
#include "core/precise/display/AnalyzerControls.h"
#include "core/precise/results/ExportedMeasurement.h"

namespace sonavex {

// A reading with the spectrum and the samples that belong to it.
struct AnalyzerResult {
    PreciseMode mode = PreciseMode::kTone;
    LinesReading reading;
    ExportedSpectrum spectrum;      // without power if the reading is void, except for an overload
    double independentSpectra = 1;  // that its mean contains
    std::vector<double> samples;    // of the newest record
    std::vector<double> residual;   // what its fit leaves
    std::vector<double> playedHz;   // the tones of the stimulus as played
    bool recording = false;         // of a recording
    std::vector<RuleResult> rules;  // of validity
};

// The plots of a result. trace: null to draw none.
SpectrumPlot::Data PlottedSpectrum(const AnalyzerResult& result, std::shared_ptr<const SpectrumTrace> trace);
std::shared_ptr<const SpectrumTrace> PlottedTrace(const AnalyzerResult& result, const std::string& name);
// Null without samples.
std::shared_ptr<const WaveRecord> PlottedWaves(const AnalyzerResult& result);

// The chip of a result.
struct ChipState {
    StateChip::Kind kind = StateChip::Kind::kOff;
    std::string text;
    double progress = 0;
};
// averages: number of records after which the average is complete.
ChipState ChipOf(const AnalyzerResult& result, std::size_t averages);
// records: completed parts, also of the first record.
ChipState SettlingChip(double records, std::size_t averages);
ChipState VoidChip(const std::string& cause);

// The remark on the path: what limits the reading. Empty if nothing does.
std::string LimitOf(const AnalyzerResult& result);

}  // namespace sonavex
