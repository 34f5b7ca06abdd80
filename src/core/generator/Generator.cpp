#include "core/generator/Generator.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/dsp/modSPL2VB.h"
#include "core/support/RuntimeError.h"
#include "core/support/ScopedFlag.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr double kPi = 3.14159265358979;
constexpr double kTwoPi = 6.28318530717958;
constexpr double kAmplitude = 32767.0;
constexpr double kClippingThreshold = 32760.0;
constexpr std::int32_t kStoppedState = 8;

double Divide(double dividend, double divisor) {
    if (divisor == 0.0) throw RuntimeError(error_number::kDivisionByZero);
    const double quotient = dividend / divisor;
    if (!std::isfinite(quotient)) throw RuntimeError(error_number::kOverflow);
    return quotient;
}

void AdvanceCount(ToneRecord& tone) {
    tone.SampleCount = tone.SampleCount < tone.Period ? tone.SampleCount + 1.0 : 0.0;
}

// A tone whose frequency was never set has a period of 0.
void RequirePeriod(const ToneRecord& tone) {
    if (tone.Period == 0.0) throw RuntimeError(error_number::kDivisionByZero);
}

// Scales both arrays if the second one exceeds the threshold. The first one is not checked.
void GuardAgainstClipping(std::span<double> first, std::span<double> second) {
    const double peak = modSPL2VB::nspdMax(second, kBlockFrames);
    if (!(peak > kClippingThreshold)) return;
    modSPL2VB::nspdbMpy1(kClippingThreshold / peak, first, kBlockFrames);
    modSPL2VB::nspdbMpy1(kClippingThreshold / peak, second, kBlockFrames);
}

}  // namespace

void Generator::SetGeneratorRunning(bool on) noexcept {
    GeneratorRunning = on;
    if (!on) GeneratorState = kStoppedState;
}

ToneRecord& Generator::Tone(std::int32_t index) {
    if (index < 0 || index >= kToneRecords) throw RuntimeError(error_number::kSubscript);
    return Tones[static_cast<std::size_t>(index)];
}

void Generator::UpdateIncrements(ToneRecord& tone) const {
    const double period = Divide(shared_.SampleRate, tone.Frequency);
    tone.PhaseIncrement = Divide(kTwoPi, period);
    tone.Period = period;
}

void Generator::ResetTonePhases() {
    for (std::int32_t i = 0; i < NumTones; ++i) {
        ToneRecord& tone = Tone(i);
        if (tone.Frequency == tone.LastFrequency) continue;
        tone.LastFrequency = tone.Frequency;
        UpdateIncrements(tone);
        tone.SampleCount = 0.0;
        tone.Phase = 0.0;
    }
}

// LastFrequency takes the frequency of the sweep. If the playing frequency differs from it, the next block
// computes the increments again.
void Generator::CheckFrequencies() {
    const ScopedFlag busy(ToneUpdateBusy);
    for (std::int32_t i = 0; i < NumTones; ++i) {
        ToneRecord& tone = Tone(i);
        if (tone.Frequency == tone.LastFrequency) continue;
        tone.LastFrequency = tone.SweepFrequency;
        UpdateIncrements(tone);
    }
}

void Generator::FillGeneratorBlock(std::span<double> first, std::span<double> second, std::int32_t count) {
    if (!GeneratorRunning) return;
    if (NumTones == std::numeric_limits<std::int32_t>::max()) throw RuntimeError(error_number::kOverflow);
    CheckFrequencies();
    const auto samples = static_cast<std::size_t>(std::max(count, 0));
    const std::size_t needed = std::max<std::size_t>(samples, kBlockFrames);
    if (first.size() < needed || second.size() < needed) throw RuntimeError(error_number::kSubscript);
    for (std::int32_t i = 0; i < NumTones; ++i) AddTone(Tone(i), first.first(samples), second.first(samples));
    GuardAgainstClipping(first, second);
}

void Generator::AddTone(ToneRecord& tone, std::span<double> first, std::span<double> second) {
    const bool bipolar = tone.WaveType == wave::kSine || tone.WaveType == wave::kSquare;
    const double amplitude = (bipolar ? kAmplitude / 2.0 : kAmplitude) / (NumTones + 1);
    for (std::size_t start = 0; start < first.size(); start += kChunk) {
        const std::size_t count = std::min(kChunk, first.size() - start);
        switch (tone.WaveType) {
            case wave::kSine:
                MakeSine(tone, count);
                break;
            case wave::kSquare:
                MakeSquare(tone, count);
                break;
            case wave::kTriangle:
                MakeTriangle(tone, count);
                break;
            case wave::kSawtooth:
                MakeSawtooth(tone, count);
                break;
            default:
                std::fill_n(values_.begin(), count, tone.Phase);
                break;
        }
        const auto length = static_cast<std::int32_t>(count);
        modSPL2VB::nspdbMpy1(amplitude, values_, length);
        modSPL2VB::nspdbAdd2(values_, first.subspan(start), length);
        modSPL2VB::nspdbAdd2(values_, second.subspan(start), length);
    }
}

void Generator::MakeSine(ToneRecord& tone, std::size_t count) {
    double phase = tone.Phase;
    // A stored step can pass the end of its sweep by more than the sampling rate: several turns per sample.
    const double increment = std::fmod(tone.PhaseIncrement, kTwoPi);
    for (std::size_t i = 0; i < count; ++i) {
        phase += increment;
        if (phase > kPi) phase -= kTwoPi;
        // A square wave leaves its phase at three quarters of a turn.
        if (phase > kPi) phase -= kTwoPi;
        // The last step of a downward sweep can end below 0 Hz.
        if (phase <= -kPi) phase += kTwoPi;
        angles_[i] = phase;
    }
    tone.Phase = phase;
    modSPL2VB::Sines(angles_, values_, static_cast<std::int32_t>(count));
}

// The sine of a quarter turn or of three quarters.
void Generator::MakeSquare(ToneRecord& tone, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const bool secondHalf = tone.Period / 2.0 < tone.SampleCount;
        tone.Phase = secondHalf ? kTwoPi - kPi / 2.0 : kPi / 2.0;
        angles_[i] = tone.Phase;
        AdvanceCount(tone);
    }
    modSPL2VB::Sines(angles_, values_, static_cast<std::int32_t>(count));
}

void Generator::MakeTriangle(ToneRecord& tone, std::size_t count) {
    RequirePeriod(tone);
    for (std::size_t i = 0; i < count; ++i) {
        const double at = tone.SampleCount;
        const double value = tone.Period / 2.0 < at ? tone.Period - at : at;
        tone.Phase = (value + value) / tone.Period;
        values_[i] = tone.Phase;
        AdvanceCount(tone);
    }
}

void Generator::MakeSawtooth(ToneRecord& tone, std::size_t count) {
    RequirePeriod(tone);
    for (std::size_t i = 0; i < count; ++i) {
        tone.Phase = tone.SampleCount / tone.Period;
        values_[i] = tone.Phase;
        AdvanceCount(tone);
    }
}

void Generator::LoadGeneratorDefaults(const Settings& settings, Slider& sldLevel) {
    defaults_.level = settings.Double(keys::kSynthesisLevel);
    sldLevel.SetValue(CLng(defaults_.level));
    defaults_.name = "test";
    defaults_.enabled = true;
    defaults_.constants = {0.005, 3.0, 5.0};
    defaults_.sampleRate = shared_.SampleRate;
    defaults_.referenceRate = 44100;
    defaults_.blockLength = kBlockFrames;
    GeneratorState = 0;
}

}  // namespace sonavex
