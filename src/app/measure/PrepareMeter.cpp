#include "app/measure/Commands.h"
#include "core/text/Numbers.h"

namespace sonavex::measure {

void PrepareMeter(Meter& meter, const MeterOptions& options) {
    MeasurementControls& controls = meter.Controls;
    controls.chkAuto.SetValue(options.frequencyHz ? 0 : 1);
    if (options.frequencyHz) controls.txtFreq.SetText(CStr(*options.frequencyHz));
    controls.chkMuteOutput.SetValue(options.noMute ? 0 : 1);
}

}  // namespace sonavex::measure
