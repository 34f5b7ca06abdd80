#include "support/ReferenceGenerator.h"

#include <algorithm>
#include <cmath>

namespace sonavex::reference {
namespace {

constexpr double kHalfTurn = 3.14159265358979;
constexpr double kTurn = 6.28318530717958;
constexpr double kThreshold = 32760.0;

}  // namespace

void Generator::SetIncrements(ToneRecord& tone) const {
    tone.Period = rateHz / tone.Frequency;
    tone.PhaseIncrement = kTurn / tone.Period;
}

void Generator::UseChangedFrequencies() {
    for (ToneRecord& tone : std::span(tones).first(static_cast<std::size_t>(count))) {
        if (tone.Frequency == tone.LastFrequency) continue;
        tone.LastFrequency = tone.SweepFrequency;
        SetIncrements(tone);
    }
}

// Phase becomes that of the next sample.
void Generator::Advance(ToneRecord& tone) {
    const double at = tone.SampleCount;
    const bool secondHalf = tone.Period / 2.0 < at;
    switch (tone.WaveType) {
        case wave::kSine:
            tone.Phase = std::remainder(tone.Phase + tone.PhaseIncrement, kTurn);
            return;
        case wave::kSquare:
            tone.Phase = secondHalf ? kTurn - kHalfTurn / 2.0 : kHalfTurn / 2.0;
            break;
        case wave::kTriangle:
            tone.Phase = 2.0 * (secondHalf ? tone.Period - at : at) / tone.Period;
            break;
        case wave::kSawtooth:
            tone.Phase = at / tone.Period;
            break;
        default:
            return;
    }
    tone.SampleCount = at < tone.Period ? at + 1.0 : 0.0;
}

double Generator::Next(ToneRecord& tone) const {
    Advance(tone);
    const bool bipolar = tone.WaveType == wave::kSine || tone.WaveType == wave::kSquare;
    return 32767.0 / (count + 1) * (bipolar ? std::sin(tone.Phase) / 2.0 : tone.Phase);
}

void Generator::Fill(std::span<double> first, std::span<double> second) {
    UseChangedFrequencies();
    for (std::size_t i = 0; i < kBlockFrames; ++i) {
        for (std::int32_t j = 0; j < count; ++j) {
            const double sample = Next(tones[static_cast<std::size_t>(j)]);
            first[i] += sample;
            second[i] += sample;
        }
    }
    const double peak = *std::max_element(second.begin(), second.begin() + kBlockFrames);
    if (!(peak > kThreshold)) return;
    for (std::size_t i = 0; i < kBlockFrames; ++i) {
        first[i] *= kThreshold / peak;
        second[i] *= kThreshold / peak;
    }
}

void Generator::SkipBlock() {
    UseChangedFrequencies();
    for (ToneRecord& tone : std::span(tones).first(static_cast<std::size_t>(count)))
        for (int i = 0; i < kBlockFrames; ++i) Advance(tone);
}

void Generator::Tick(bool sweeping) {
    for (ToneRecord& tone : std::span(tones).first(static_cast<std::size_t>(count))) {
        const double left = tone.LoopIncrement > 0.0 ? tone.EndFrequency - tone.SweepFrequency
                                                     : tone.SweepFrequency - tone.EndFrequency;
        // The rounding error at the end of a sweep does not cause another step.
        const bool underWay = left > 1e-9 * std::abs(tone.EndFrequency - tone.StartFrequency);
        if (sweeping && tone.Sweep && underWay) {
            const double next = tone.SweepFrequency + tone.LoopIncrement;
            tone.SweepFrequency = next <= 0.0 && tone.EndFrequency > 0.0 ? tone.EndFrequency : next;
            tone.Frequency = tone.SweepFrequency;
        } else if (tone.Loop) {
            tone.Frequency = tone.SweepFrequency = tone.StartFrequency;
        }
    }
}

}  // namespace sonavex::reference
