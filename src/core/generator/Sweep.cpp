#include <cmath>

#include "core/generator/Generator.h"
#include "core/support/RuntimeError.h"

namespace sonavex {
namespace {

// Rounding accumulates over a short sweep. The end counts as reached within this fraction of the span,
// because another step may be as long as the whole sweep.
constexpr double kReachedFraction = 1e-9;

// The sweep frequency after the next step.
double NextFrequency(const ToneRecord& tone) {
    const double next = tone.SweepFrequency + tone.LoopIncrement;
    if (!std::isfinite(next)) throw RuntimeError(error_number::kOverflow);
    // Reached only when a step is larger than what is left of the sweep: its end was just moved, or the step
    // was loaded from the settings.
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
        // The number of tones may have changed while events were delivered.
        if (!yield() || i >= NumTones) return;
        StepSweep(Tone(i));
    }
}

void Generator::StepSweep(ToneRecord& tone) {
    if (SweepRunning && tone.Sweep && UnderWay(tone)) {
        // FillGeneratorBlock is reading the frequencies: upward sweeps skip this tick.
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
