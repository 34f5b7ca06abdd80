#pragma once

#include "app/measure/Options.h"
#include "core/audio/Meter.h"

namespace sonavex::measure {

// The commands. Each returns the exit status and throws MeasureError, RuntimeError or EndProgram.
int ListDevices(bool json);
int RunMeasurement(const RunOptions& options);
int MeasureFile(const FileOptions& options);

// Sets the meter's controls from the options: automatic or fixed frequency, output muted or not.
void PrepareMeter(Meter& meter, const MeterOptions& options);

}  // namespace sonavex::measure
