#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "core/analyzer/SpectrumMean.h"
#include "core/ports/MeasurementFiles.h"
#include "core/precise/RecordAnalysis.h"
#include "core/precise/RecordsOf.h"

namespace sonavex {

// The precise measurement of a recording: its records one after the other, or one of them alone. Keeps the
// averages and the newest record, so that memory does not depend on the length of the recording. Used by one
// thread at a time. Throws FileError when the file is damaged.
class RecordingAnalysis {
public:
    // Rate and length are those of the plan; the number of averages of the settings does not count. Throws
    // FileError if the recording lacks the channel.
    RecordingAnalysis(std::unique_ptr<OpenRecording> recording, std::shared_ptr<const RecordPlan> plan,
                      const PreciseSettings& settings);

    // Number of records; empty if the length of the recording is not known.
    std::optional<std::size_t> Records() const { return records_.Count(); }

    // Includes the next record. False when there is none.
    bool MeasureNext();
    // Measures this record alone. Only on a new object.
    void MeasureOnly(std::size_t index);
    // How many records were included.
    std::size_t Measured() const noexcept { return measured_; }

    // Of all records included; one void record voids it. When the level or the frequency of a tone differs
    // between records, the reading contains the newest ones only and has the warning "unsteady tone".
    // Warnings are those of all records. At least one must be included.
    LinesReading Values() const;
    // The newest record, and what its fit leaves: of the newest record with something to fit; empty if there
    // was none.
    const std::vector<double>& Samples() const noexcept { return newest_.samples; }
    const std::vector<double>& Residual() const noexcept { return residual_; }
    const RecordPlan& Plan() const noexcept { return *plan_; }
    // Of the records of the reading; if it is void, of all complete records since a tone last changed.
    const MeanSpectrum& Spectrum() const noexcept { return spectrum_.Mean(); }

private:
    void Include();

    std::unique_ptr<OpenRecording> recording_;
    std::shared_ptr<const RecordPlan> plan_;
    PreciseSettings settings_;
    RecordsOf records_;
    RecordAverage average_;
    SpectrumMean spectrum_;
    RecordAnalysis newest_;
    std::vector<double> residual_;
    std::vector<Void> voids_;
    std::vector<Warning> warnings_;
    std::size_t measured_ = 0;
};

}  // namespace sonavex
