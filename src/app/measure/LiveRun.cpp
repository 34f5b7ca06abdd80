#include "app/measure/LiveRun.h"

#include <chrono>
#include <utility>

#include "app/measure/MeasureError.h"
#include "core/ports/SoundErrors.h"
#include "core/support/RuntimeError.h"

namespace sonavex::measure {
namespace {

using namespace std::chrono_literals;

constexpr auto kRunPoll = 50ms;
// A ramp, and what the queues of the devices hold.
constexpr auto kLongestRamp = 3s;

// A device that is lost during a run may return.
constexpr StreamWatch::Policy kRecover{.firstBlock = 2500ms, .recover = true};

RunOptions DevicesOf(const SweepOptions& sweep, const MeasuredRun& run) {
    RunOptions options;
    options.input = sweep.input;
    options.output = sweep.output;
    options.rateHz = sweep.rateHz;
    if (!sweep.rateHz && !run.results.empty())
        options.rateHz = static_cast<std::int32_t>(run.conditions.rateHz);
    return options;
}

std::size_t CheckedPoints(const RunFile& run, double rateHz) {
    const std::vector<RunPoint> points = PointsOf(run.plan, rateHz);
    RequireCoverage(run.limits, points);
    return points.size();
}

void RequireSame(const char* direction, const std::string& present, const std::string& former) {
    if (present != former)
        throw MeasureError("The " + std::string(direction) + " of the run is '" + former + "', not '" +
                           present + "'.");
}

}  // namespace

LiveRun::LiveRun(const SweepOptions& options, MeasuredRun run)
    : run_(std::move(run)),
      sound_(DevicesOf(options, run_), kRecover),
      background_(sound_.Loop()),
      measurement_({sound_.Loop(), sound_.Parts(), background_}),
      measured_({sound_.Loop(), sound_.Parts(), measurement_, background_}),
      points_(CheckedPoints(run_.file, sound_.Parts().Shared.SampleRate)) {}

void LiveRun::Run(const std::function<void(const RunPointResult&)>& onPoint,
                  const std::function<void()>& onProgress) {
    sound_.Start();
    WaitForPlayback();
    measured_.OnPoint = onPoint;
    if (!end_.Noted()) Begin();
    while (measured_.Active() && measured_.Now() != sonavex::RunMeasurement::State::kEnding) {
        onProgress();
        if (end_.Noted()) measured_.Cancel();
        Wait();
    }
    WaitForEnd();
    sound_.Stop();
}

void LiveRun::Begin() {
    if (run_.results.empty()) return measured_.Start(run_.file.plan);
    RequireSameDevices();
    measured_.Continue(run_);
}

void LiveRun::RequireSameDevices() const {
    if (!run_.conditions.stream) throw MeasureError("The run does not name its devices.");
    const StreamDetails present = sound_.Details();
    RequireSame("input", present.input, run_.conditions.stream->input);
    RequireSame("output", present.output, run_.conditions.stream->output);
}

// A device that fails before the run has begun is an error.
void LiveRun::WaitForPlayback() {
    while (sound_.Parts().Engine.PlaybackStarts == 0 && !end_.Noted()) {
        sound_.CheckAlive();
        Wait();
    }
}

// A block that arrives before the loss of its device is reported finds the device lost.
void LiveRun::Wait() {
    try {
        sound_.Loop().Wait(kRunPoll);
    } catch (const RuntimeError& error) {
        if (error.Number() != sound_error::kBufferLost) throw;
        sound_.Parts().Watch.DeviceLost(error);
    }
}

void LiveRun::WaitForEnd() {
    const std::chrono::nanoseconds limit = sound_.Loop().Now() + kLongestRamp;
    while (measured_.Active() && sound_.Loop().Now() < limit) Wait();
}

RunConditions LiveRun::Conditions() const {
    const StreamDetails details = sound_.Details();
    return {static_cast<double>(details.rateHz), points_, details};
}

}  // namespace sonavex::measure
