#include <cmath>

#include "core/generator/Generator.h"
#include "core/text/RuntimeError.h"

namespace sonavex {

void Generator::AdvanceSweep(const std::function<bool()>& yield) {
    if (!yield()) return;
    for (std::int32_t i = 0; i < NumTones; ++i) {
        // The number of tones may have changed while the system delivered its events.
        if (!yield() || i >= NumTones) return;
        StepSweep(Tone(i));
    }
}

void Generator::StepSweep(ToneRecord& tone) {
    const double increment = tone.LoopIncrement;
    const bool upwards = increment > 0.0;
    const bool underWay =
        upwards ? tone.SweepFrequency < tone.EndFrequency : tone.SweepFrequency > tone.EndFrequency;
    if (SweepRunning && tone.Sweep && underWay) {
        // The fill is looking at the frequencies: an upward sweep stands still for this tick.
        if (upwards && ToneUpdateBusy) return;
        const double next = tone.SweepFrequency + increment;
        if (!std::isfinite(next)) throw RuntimeError(error_number::kOverflow);
        tone.SweepFrequency = next;
        tone.Frequency = next;
        return;
    }
    if (!tone.Loop) return;
    tone.Frequency = tone.StartFrequency;
    tone.SweepFrequency = tone.StartFrequency;
    SweepCycleCount = 0;
}

}  // namespace sonavex
