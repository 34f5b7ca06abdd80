#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include "app/measure/EndRequest.h"
#include "app/measure/LiveMeasurement.h"
#include "app/measure/Options.h"
#include "core/precise/PreciseMeasurement.h"
#include "core/precise/results/AnalyzedReading.h"
#include "platform/plain/WorkerThread.h"

namespace sonavex::measure {

// The precise measurement on sound devices, without a window.
class LiveAnalysis {
public:
    // Throws MeasureError and StimulusError for options that cannot be used.
    explicit LiveAnalysis(const AnalyzeOptions& options);

    // Measures until the time is over and there is a reading, or until the user ends the program. Then the
    // stimulus ends with a ramp. Calls onReading for each reading and onProgress several times a second.
    // Without a reading within the time and a grace period, onReading gets a void one. Throws MeasureError
    // when a device cannot be used, is lost or stalls.
    void Run(const std::function<void(const AnalyzedReading&)>& onReading,
             const std::function<void()>& onProgress);

    const PreciseMeter& Meter() const noexcept { return measurement_.Meter; }

private:
    void TakeStimulus(const RecordPlan& plan);
    void WaitForPlayback();
    void Begin();
    void Measure(const std::function<void()>& onProgress);
    void End();
    void Report(const LinesReading& values);
    bool TimeOver();
    void Wait();

    AnalyzeOptions options_;
    std::optional<StimulusChoice> stimulus_;
    EndRequest end_;
    LiveMeasurement sound_;
    WorkerThread background_;
    PreciseMeasurement measurement_;
    std::function<void(const AnalyzedReading&)> onReading_;
    std::chrono::nanoseconds begin_{0};
    std::size_t readings_ = 0;
};

}  // namespace sonavex::measure
