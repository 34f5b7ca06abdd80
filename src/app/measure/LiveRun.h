#pragma once

#include <functional>
#include <string>

#include "app/measure/EndRequest.h"
#include "app/measure/LiveMeasurement.h"
#include "app/measure/SweepOptions.h"
#include "core/run/MeasuredRun.h"
#include "core/run/RunMeasurement.h"
#include "core/run/RunText.h"
#include "platform/plain/WorkerThread.h"

namespace sonavex::measure {

// A run on sound devices, without a window.
class LiveRun {
public:
    // `run` may have results of an earlier program; its rate is 0 if it has none. Throws MeasureError and
    // RunError for a run that cannot be measured at the rate.
    LiveRun(const SweepOptions& options, MeasuredRun run);

    // Measures until the last point, or until the user ends the program; then the tone ends with a ramp.
    // Calls onPoint after each point and onProgress several times a second. Throws MeasureError when a device
    // cannot be used, and StimulusError for a level or dither that it does not take. A device that is lost
    // later pauses the run until it returns or the user ends the program.
    void Run(const std::function<void(const RunPointResult&)>& onPoint,
             const std::function<void()>& onProgress);

    const RunFile& File() const noexcept { return run_.file; }
    const sonavex::RunMeasurement& Measurement() const noexcept { return measured_; }
    // Why the run ended before its last point, unless the user has ended it.
    const std::string& Trouble() const noexcept { return measured_.Trouble(); }
    RunConditions Conditions() const;

private:
    void WaitForPlayback();
    void Begin();
    void RequireSameDevices() const;
    void Wait();
    void WaitForEnd();

    MeasuredRun run_;
    EndRequest end_;
    LiveMeasurement sound_;
    WorkerThread background_;
    PreciseMeasurement measurement_;
    sonavex::RunMeasurement measured_;
    std::size_t points_;
};

}  // namespace sonavex::measure
