#pragma once

#include "app/measure/Options.h"
#include "core/audio/Meter.h"

namespace sonavex::measure {

// The commands. Each returns the exit status and throws MeasureError, RuntimeError or EndProgram.
int ListDevices(bool json);
int RunMeasurement(const RunOptions& options);
int MeasureFile(const FileOptions& options);
int AnalyzeFile(const AnalyzeOptions& options);
int AnalyzeLive(const AnalyzeOptions& options);
int Sweep(const SweepOptions& options);
int SelfTest(bool json);
int ListHistory(const HistoryOptions& options);

// The fixed fundamental in Hz; nothing if automatic. Throws MeasureError if it is not a number from 1 to half
// the sampling rate, or to 24000 at lower rates.
std::optional<double> FrequencyHz(const MeterOptions& options, std::int32_t rateHz);

// Sets the meter's controls from the options: automatic or fixed frequency, output muted or not. Throws as
// FrequencyHz.
void PrepareMeter(Meter& meter, const MeterOptions& options, std::int32_t rateHz);

}  // namespace sonavex::measure
