#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/ports/Background.h"
#include "core/ports/MeasurementFiles.h"
#include "core/precise/RecordingAnalysis.h"

namespace sonavex {

// Measures a recording in the background, all of it or one record, and reports one reading. It reads the
// file again for each measurement.
class RecordingMeasurement {
public:
    // All must outlive this object.
    struct Needs {
        const MeasurementFiles& files;
        Background& background;
    };
    // What is known before the measurement.
    struct Recording {
        std::string path;  // empty: none is open
        std::int32_t rateHz = 0;
        int bits = 0;
        bool floatingPoint = false;
        int channels = 0;
        std::optional<std::int64_t> frames;
    };

    explicit RecordingMeasurement(const Needs& needs) : needs_(needs) {}
    RecordingMeasurement(const RecordingMeasurement&) = delete;
    RecordingMeasurement& operator=(const RecordingMeasurement&) = delete;

    // Ends a measurement. Throws FileError for a file that cannot be read, and then keeps the open one.
    void Open(const std::string& path);
    // Forgets the recording and what was measured.
    void Close();
    const Recording& Opened() const noexcept { return recording_; }

    // Records of this length in the recording that is open; empty if its length is not known.
    std::optional<std::size_t> RecordsOfLength(std::size_t length) const;

    // Starts the measurement of the whole recording, or of one record. The rate of the settings does not
    // count. A new measurement replaces one that runs. Errors are reported by OnFailure.
    // std::invalid_argument for a length that RecordPlan refuses.
    void MeasureAll(const PreciseSettings& settings);
    void MeasureRecord(const PreciseSettings& settings, std::size_t index);
    void Cancel();
    bool Measuring() const noexcept { return job_ != nullptr; }

    // Called after each record of MeasureAll: how many are measured, and of how many.
    std::function<void(std::size_t measured, std::optional<std::size_t> records)> OnProgress;
    // Called when a measurement is complete, with the records, the residual and the spectrum that belong to
    // the reading. No reading is reported before, because a later record may be void.
    std::function<void(const LinesReading& reading, std::shared_ptr<const RecordingAnalysis> analysis)>
        OnReading;
    // Called with a sentence when the recording cannot be measured.
    std::function<void(const std::string& sentence)> OnFailure;

private:
    struct Job;

    void Start(PreciseSettings settings, std::optional<std::size_t> only);
    void Continue();
    void Receive(const Job& job);

    Needs needs_;
    Recording recording_;
    std::shared_ptr<Job> job_;
    std::shared_ptr<const RecordPlan> plan_;
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace sonavex
