#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/audio/FineStream.h"
#include "core/audio/StreamEngine.h"
#include "core/audio/UsedBits.h"
#include "core/ports/Background.h"
#include "core/precise/BurstSearch.h"
#include "core/precise/RecordAnalysis.h"
#include "core/precise/RecordCollection.h"

namespace sonavex {

enum class PreciseState {
    kSettling,  // until the first record after a start or a change is complete
    kValid,
    kVoid,  // also while the record after an interruption is collected
    kOverload,
    kUnsteady,
};

// The live precise measurement: collects records from the fine capture of the engine, measures them in the
// background, averages, and reports readings. A new reading follows after each quarter of a record, or after
// the shift of the settings; readings that the background cannot keep up with are skipped.
class PreciseMeter {
public:
    // All must outlive this object.
    struct Needs {
        StreamEngine& engine;
        FineStream& fine;
        UsedBits& usedBits;
        Background& background;
    };

    explicit PreciseMeter(const Needs& needs);
    ~PreciseMeter();
    PreciseMeter(const PreciseMeter&) = delete;
    PreciseMeter& operator=(const PreciseMeter&) = delete;

    // Begins with the next captured frame. Call it again after a change of settings or of the rate.
    // std::invalid_argument for a length that RecordPlan refuses.
    void Start(const PreciseSettings& settings);
    void Stop();

    // Call at once after a change of what FineStream plays. The record then begins when the change has
    // arrived at the input: frames written before it, the delay of the path, 50 ms.
    void StimulusChanged();
    // Call at once after a path burst was started: measures the delay of the path with it, for the changes
    // that follow. No record is collected before the next StimulusChanged.
    void BurstStarted();
    // Whether the delay of the path was measured since playback and capture were started.
    bool DelayKnown() const;
    // The next stimulus after silence measures it again.
    void ForgetDelay();

    // What a burst has told about the stimuli that follow it.
    struct StimulusArrival {
        std::uint64_t firstFrame = 0;  // number of the captured frame in which their frame 0, the burst's
                                       // first one, arrived, within about 1 ms
        double delaySeconds = 0;       // from the output's queue to the input
    };
    // Empty when no burst was found since the last silence, and after a gap in the output or the input.
    std::optional<StimulusArrival> Arrival() const;
    // Call when the stimuli have ended.
    void StimulusEnded() { arrivedFrame_.reset(); }

    PreciseState State() const noexcept { return state_; }
    // Frames of the present record, and of a complete one: "settling 12000 of 65536".
    std::size_t Collected() const noexcept { return records_ ? records_->Collected() : 0; }
    std::size_t Length() const noexcept { return records_ ? records_->Length() : 0; }
    // What interrupted the present record, for example "512 frames lost". Empty after a start or a change.
    const std::string& Interruption() const noexcept { return interruption_; }

    // Called for each reading, and once when an interruption has made the readings void. May call Start,
    // Stop and StimulusChanged.
    std::function<void(const LinesReading& reading)> OnReading;
    // Called for each complete collection of the settings' `collected` samples, full scale 1. May call Start,
    // Stop and StimulusChanged.
    std::function<void(std::vector<double> samples)> OnRecord;
    // Called when the path burst has arrived or cannot arrive any more: the stimulus may follow it.
    std::function<void()> OnBurstEnded;
    // The newest record of the last reading, and what its fit leaves. Empty in a void reading, except for the
    // record of an overload.
    const std::vector<double>& Samples() const noexcept { return newest_.samples; }
    const std::vector<double>& Residual() const noexcept { return newest_.residual; }
    // What it contains alone; without values when Samples are empty.
    const RecordAnalysis& Newest() const noexcept { return newest_; }
    // Of the records of the last reading; empty when Samples are and when the settings do not ask for it.
    const MeanSpectrum& Spectrum() const noexcept { return spectrum_; }
    // The same, without a copy: the meter has neither until the next reading.
    RecordAnalysis TakeNewest() { return std::exchange(newest_, {}); }
    MeanSpectrum TakeSpectrum() { return std::exchange(spectrum_, {}); }
    // A void reading that says how far the present record is.
    LinesReading Unfinished();
    const RecordPlan& Plan() const noexcept { return *plan_; }

private:
    // What the engine has counted about the output.
    struct OutputCounts {
        std::uint64_t playbackStarts = 0;
        std::uint64_t missing = 0;
        std::uint64_t underruns = 0;
        std::uint64_t overruns = 0;
        bool operator==(const OutputCounts&) const = default;
    };
    // The start of playback and of the capture that a measured delay belongs to.
    struct Starts {
        std::uint64_t playback = 0;
        std::uint64_t capture = 0;
        bool operator==(const Starts&) const = default;
    };
    // Frames that the devices have left out: later frames arrive at another time.
    struct Gaps {
        OutputCounts output;
        std::uint64_t inputMissing = 0;
        bool operator==(const Gaps&) const = default;
    };
    void Take(const FineFrames& block);
    void ListenForBurst(const FineFrames& block);
    void EndSearch();
    void Submit();
    void Measure(std::vector<double> samples, std::uint64_t firstFrame);
    struct Result;
    void Receive(Result& result, const std::shared_ptr<RecordAverage>& average);
    void Report(Result& result);
    bool LimitedBy16Bit() const;
    LinesReading VoidReading(VoidCode code, const std::string& sentence) const;
    void BeginAverage();

    bool Playing() const;
    OutputCounts CountOutput() const;
    Starts PresentStarts() const;
    Gaps PresentGaps() const;
    std::uint64_t CapturedFrames() const;
    std::uint64_t Frames(double seconds) const;
    std::uint64_t DelayFrames() const;
    void NoticeOutput();
    void BeginAgain(std::uint64_t frame);
    void Interrupt(std::uint64_t frame, std::string cause);
    void NoteInterruption();
    Record RecordConditions() const;

    Needs needs_;
    PreciseSettings settings_;
    std::shared_ptr<const RecordPlan> plan_;
    std::optional<RecordCollection> records_;
    // Used by the background alone. Every start, change and interruption replaces it.
    std::shared_ptr<RecordAverage> average_;
    RecordAnalysis newest_;
    MeanSpectrum spectrum_;
    PreciseState state_ = PreciseState::kSettling;
    std::string interruption_;
    bool awaitingFirstBlock_ = false;
    OutputCounts output_;
    std::optional<BurstSearch> search_;
    std::uint64_t burstWritten_ = 0;            // captured frames when the burst was written
    std::optional<std::uint64_t> delayFrames_;  // from a written frame to its capture
    Starts delayStarts_;
    std::optional<std::uint64_t> arrivedFrame_;  // of the burst's first frame
    Gaps arrivalGaps_;                           // when the burst was written
    std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace sonavex
