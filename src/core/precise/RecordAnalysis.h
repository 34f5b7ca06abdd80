#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

#include "core/analyzer/MeasureLines.h"
#include "core/analyzer/MeasureTone.h"
#include "core/analyzer/SpectrumMean.h"
#include "core/analyzer/ToneAverage.h"

namespace sonavex {

enum class PreciseMode {
    kTone,  // a tone and its harmonics
    kPair,  // two tones and their products
    kMultitone,
    kNoise,
};

struct PreciseSettings {
    double rateHz = 48000;
    std::size_t length = 0;   // samples of a record; 0: DefaultRecordLength
    std::size_t channel = 0;  // 0 left, 1 right
    PreciseMode mode = PreciseMode::kTone;
    ToneSettings tone;            // in the other modes only the band counts
    std::vector<double> tonesHz;  // of the modes pair and multitone
    PairSearch pairSearch = PairSearch::kGiven;
    std::size_t averages = 1;  // newest records that count; 0: all since the start or the last change
    std::size_t shift = 0;     // samples from the start of a record to that of the next; 0: a quarter
    std::size_t collected =
        0;                  // not 0: so many samples go to PreciseMeter::OnRecord, and nothing is measured
    bool spectrum = false;  // whether the spectra of these records are averaged, too
};

// What one record contains.
struct RecordAnalysis {
    std::variant<ToneMeasurement, LinesMeasurement> values;
    std::vector<double> samples;
    std::vector<double> residual;  // empty if there was nothing to fit
    std::uint64_t firstFrame = 0;  // number of the captured frame at which `samples` begin; 0 for recordings
};

// Pure; any thread.
RecordAnalysis AnalyzeRecord(const RecordPlan& plan, const PreciseSettings& settings, const Record& record);

// The reading of a record that cannot be analysed.
LinesReading ReadingOfVoid(const RecordPlan& plan, const PreciseSettings& settings, int bits, Void reason);

const std::vector<Void>& VoidsOf(const RecordAnalysis& analysis);
const std::vector<Warning>& WarningsOf(const RecordAnalysis& analysis);

// The rolling average of records, in any mode. Belongs to one thread.
class RecordAverage {
public:
    RecordAverage(std::shared_ptr<const RecordPlan> plan, PreciseSettings settings);

    // The reading that includes this record. Takes time in proportion to the length and to the number of
    // averaged records.
    // shift: samples from the start of the record before to the start of this one; 0: a quarter of a record.
    LinesReading Add(const RecordAnalysis& analysis, std::size_t shift = 0) {
        Include(analysis, shift);
        return Values();
    }
    // The same in two steps: a reading takes time that an intermediate one does not need.
    void Include(const RecordAnalysis& analysis, std::size_t shift = 0);
    // Only after Include.
    LinesReading Values() const;
    // How many records the average contains: 1 after a change of level or frequency. Only after Include.
    std::size_t Records() const;
    // Of the same records. Without those that are void for another reason than overload.
    const MeanSpectrum& Spectrum() const noexcept { return spectrum_.Mean(); }

private:
    void IncludeLines(LinesMeasurement next, std::size_t shift);
    void IncludeSpectrum(const RecordAnalysis& analysis);

    std::shared_ptr<const RecordPlan> plan_;
    PreciseSettings settings_;
    ToneAverage tone_;
    std::deque<LinesMeasurement> newest_;    // only while the number of averages is limited
    std::optional<LinesMeasurement> lines_;  // the average
    SpectrumMean spectrum_;
};

}  // namespace sonavex
