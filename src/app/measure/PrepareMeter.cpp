#include <algorithm>

#include "app/measure/Commands.h"
#include "app/measure/MeasureError.h"
#include "core/settings/SampleRates.h"
#include "core/text/Numbers.h"

namespace sonavex::measure {

std::optional<double> FrequencyHz(const MeterOptions& options, std::int32_t rateHz) {
    if (!options.frequency) return std::nullopt;
    const std::int32_t highestHz = std::max(rateHz, SampleRateTable[0]) / 2;
    if (IsNumeric(*options.frequency)) {
        const double frequencyHz = CDbl(*options.frequency);
        if (frequencyHz >= 1.0 && frequencyHz <= highestHz) return frequencyHz;
    }
    throw MeasureError("--frequency takes 1 to " + CStr(highestHz) + " Hz, not '" + *options.frequency +
                       "'.");
}

void PrepareMeter(Meter& meter, const MeterOptions& options, std::int32_t rateHz) {
    MeasurementControls& controls = meter.Controls;
    const std::optional<double> frequencyHz = FrequencyHz(options, rateHz);
    controls.chkAuto.SetValue(frequencyHz ? 0 : 1);
    if (frequencyHz) controls.txtFreq.SetText(CStr(*frequencyHz));
    controls.chkMuteOutput.SetValue(options.noMute ? 0 : 1);
}

}  // namespace sonavex::measure
