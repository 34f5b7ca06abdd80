#include <cmath>

#include "core/generator/Generator.h"
#include "core/support/RuntimeError.h"

namespace sonavex {
namespace {

// The steps of a short sweep do not add up to its end exactly. What is left of rounding must not cost
// another step, which may be as long as the sweep: within this part of the span the end is reached.
constexpr double kReachedFraction = 1e-9;

// The sweep frequency after one more step.
double NextFrequency(const ToneRecord& tone) {
    const double next = tone.SweepFrequency + tone.LoopIncrement;
    if (!std::isfinite(next)) throw RuntimeError(error_number::kOverflow);
    // There is no sound at or below 0 Hz. Only a step that is longer than its sweep asks, as that of an
    // end that was moved a moment ago, or a stored one.
    if (next <= 0.0 && tone.EndFrequency > 0.0) return tone.EndFrequency;
    return next;
}

}  // namespace

bool Generator::UnderWay(const ToneRecord& tone) {
    const double left = tone.LoopIncrement > 0.0 ? tone.EndFrequency - tone.SweepFrequency
                                                 : tone.SweepFrequency - tone.EndFrequency;
    return left > kReachedFraction * std::abs(tone.EndFrequency - tone.StartFrequency);
}

void Generator::AdvanceSweep(const std::function<bool()>& yield) {
    if (!yield()) return;
    for (std::int32_t i = 0; i < NumTones; ++i) {
        // The number of tones may have changed while the system delivered its events.
        if (!yield() || i >= NumTones) return;
        StepSweep(Tone(i));
    }
}

void Generator::StepSweep(ToneRecord& tone) {
    if (SweepRunning && tone.Sweep && UnderWay(tone)) {
        // The fill is looking at the frequencies: an upward sweep stands still for this tick.
        if (tone.LoopIncrement > 0.0 && ToneUpdateBusy) return;
        const double next = NextFrequency(tone);
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
