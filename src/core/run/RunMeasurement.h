#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/audio/Instrument.h"
#include "core/ports/EventLoop.h"
#include "core/precise/PreciseMeasurement.h"
#include "core/run/MeasuredRun.h"
#include "core/run/RunPhase.h"
#include "core/run/RunPreview.h"
#include "core/run/RunResult.h"

namespace sonavex {

// Measures a run on an instrument: plays each point, waits until the device under test has settled, and
// stores the average of two records. A point that is void or unsteady is measured once more. While a device
// is lost the run pauses; after its return it begins the point again. It always ends with a ramp.
class RunMeasurement {
public:
    // All must outlive this object. While a run is active it handles the readings of the measurement.
    struct Needs {
        EventLoop& loop;
        sonavex::Instrument& instrument;
        PreciseMeasurement& measurement;
        Background& background;
    };

    explicit RunMeasurement(const Needs& needs);
    // Cancels.
    ~RunMeasurement();
    RunMeasurement(const RunMeasurement&) = delete;
    RunMeasurement& operator=(const RunMeasurement&) = delete;

    // RunError and StimulusError for a run that cannot be played; nothing is heard then, and the results of
    // the run before are kept. Not while a run is active.
    void Start(const RunPlan& plan);
    // Throws what Start would, and changes nothing.
    void RequirePlayable(const RunPlan& plan) const;
    // Measures the void and the missing points of `run` and keeps the others, without a preview. Otherwise
    // like Start; also
    // RunError for a run at another rate and for results of other points. The new points count as measured
    // after a loss if a device was lost since the last run of this object, or if there was none.
    void Continue(const MeasuredRun& run);
    // Throws what Continue would, and changes nothing.
    void RequireContinuable(const MeasuredRun& run) const;
    // Ends the run and keeps what was measured.
    void Cancel();

    enum class State {
        kIdle,
        kMeasuring,
        kPaused,  // the devices do not run
        kEnding,  // until the ramp has been played
    };
    State Now() const noexcept { return state_; }
    bool Active() const noexcept { return state_ != State::kIdle; }
    // Why a run ended before its last point; empty after Cancel.
    const std::string& Trouble() const noexcept { return trouble_; }

    const std::vector<RunPoint>& Points() const noexcept { return points_; }
    // Of the last Start. Its points do not change when the run measures them.
    const RunPreview& Preview() const noexcept { return preview_; }
    // In the order of the points, as many as are measured. A void point keeps its result until it has been
    // measured again.
    const std::vector<RunPointResult>& Results() const noexcept { return results_; }
    // The point that is measured now or next, from 0; the number of points at the end of a run.
    std::size_t Current() const noexcept { return todo_.empty() ? points_.size() : todo_.back(); }
    std::size_t PointsLeft() const noexcept { return todo_.size(); }
    // Records of the present point.
    int Records() const noexcept { return settling_.Records(); }
    // Estimated from the points that are measured. Without pauses.
    double SecondsLeft() const;

    // After each point. May be empty.
    std::function<void(const RunPointResult& result)> OnPoint;
    // After a change of the state, and when the points of the preview are known. May be empty.
    std::function<void()> OnChanged;

private:
    void CheckSound(const RunPlan& plan, const std::vector<RunPoint>& points) const;
    std::vector<RunPoint> PointsToContinue(const MeasuredRun& run) const;
    bool DevicesRun() const;
    bool NoticeRestart();
    void MeasurePoint();
    void Prepare(const RunPlan& plan, std::vector<RunPoint> points, std::vector<RunPointResult> results);
    void Play(bool afterLoss);
    void BeginAttempt();
    void BeginRecords();
    bool Listening();
    void Take(const LinesReading& values);
    void TakeSweep(const std::vector<double>& samples);
    void Settled(const Reading& record, const ToneMeasurement& newest);
    void Fail(PointFault fault);
    std::size_t Keep(RunPointResult result);
    void Report(std::size_t point);
    RunPointResult ResultOf(Reading reading) const;
    void End(const std::string& trouble);
    void Check();
    void CheckRun();
    void SetState(State state);
    std::chrono::nanoseconds LongestAttempt() const;

    Needs needs_;
    RunPlan plan_;
    PreciseSettings settings_;
    std::vector<RunPoint> points_;
    std::vector<RunPointResult> results_;
    std::vector<std::size_t> todo_;  // points, the next one at the end
    State state_ = State::kIdle;
    std::string trouble_;
    Settling settling_{{}};
    std::optional<ToneMeasurement> previous_;  // the record before
    std::uint64_t previousFrame_ = 0;          // its first one
    RunPhase phase_;
    RunPreview preview_;
    int attempt_ = 1;
    bool waiting_ = false;  // the point begins when the devices run
    bool afterLoss_ = false;
    std::uint64_t captureStarts_ = 0;
    std::chrono::nanoseconds begin_{0};     // of the present attempt
    std::chrono::nanoseconds measured_{0};  // time that `timed_` points took
    std::size_t timed_ = 0;
    std::function<void(const LinesReading&)> formerOnReading_;
    EventLoop::TimerId timer_ = 0;
};

// The time that a run takes when every point settles at once.
double EstimatedSeconds(const RunPlan& plan, std::size_t points, double rateHz);

}  // namespace sonavex
