#include "app/measure/SelfTest.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <string_view>

#include "core/analyzer/MeasureLines.h"
#include "core/analyzer/MeasureTone.h"
#include "core/stimulus/ParseStimulus.h"
#include "core/stimulus/RenderStimulus.h"
#include "core/stimulus/SampleWord.h"

namespace sonavex::measure {
namespace {

using Samples = std::vector<double>;

constexpr double kRateHz = 48000.0;
constexpr std::size_t kLength = 65536;
constexpr double kLevelDbfs = -1.0;
constexpr double kSelfResidualDb = -280.0;
constexpr int kDoubleBits = 53;

// Tolerances of values that only rounding errors change.
constexpr double kExactDb = 1e-5;
constexpr double kExactDegrees = 1e-3;
constexpr double kExactFrequency = 1e-9;  // relative
constexpr double kExactDc = 1e-9;
constexpr double kExactPercent = 1e-9;  // of intermodulation

// What the fit leaves of several tones in doubles.
constexpr double kTonesResidualDb = -220.0;

double Amplitude(double decibels) {
    return std::pow(10.0, decibels / 20.0);
}

double NumberOf(const Value& value) {
    return value.value.value_or(std::numeric_limits<double>::quiet_NaN());
}

StimulusSignal Stimulate(std::string_view text, double levelDbfs, bool snap = false) {
    return RenderStimulus(PlanStimulus({ParseStimulus(text), kRateHz, kLength, levelDbfs, snap}));
}

Samples SamplesOf(const StimulusSignal& signal) {
    Samples samples(kLength);
    signal.Fill(0, samples);
    return samples;
}

// The samples as words with dither. Double precision passes unchanged.
Samples Loop(Samples samples, int bits) {
    if (bits == kDoubleBits) return samples;
    const SampleRounder rounder(DitheredWord(bits));
    for (std::size_t frame = 0; frame < samples.size(); ++frame)
        samples[frame] = std::ldexp(rounder.Round(samples[frame], frame, 0), -31);
    return samples;
}

std::string WordName(int bits) {
    return bits == kDoubleBits ? "double" : std::to_string(bits) + " bit";
}

// A device under test whose distortion is known in closed form: y = x + a x^2 + b x^3.
struct Polynomial {
    double a = 0.002;
    double b = -0.001;

    double operator()(double x) const { return x + x * x * (a + b * x); }
    double Dc(double peak) const { return a * peak * peak / 2.0; }
    double First(double peak) const { return peak + 0.75 * b * peak * peak * peak; }
    double Second(double peak) const { return a * peak * peak / 2.0; }
    double Third(double peak) const { return -b * peak * peak * peak / 4.0; }

    // Of two tones: a tone, the products f1 + f2 and f2 - f1, and f2 + 2 f1 and f2 - 2 f1.
    double Tone(double peak, double other) const { return First(peak) + 1.5 * b * peak * other * other; }
    double Sum(double peak1, double peak2) const { return a * peak1 * peak2; }
    double DoubleSum(double peak1, double peak2) const { return -0.75 * b * peak1 * peak1 * peak2; }
};

// Peak amplitude of an odd harmonic of a sine of amplitude 1 that is clipped at `limit`.
double ClippedHarmonic(int order, double limit) {
    const double angle = std::asin(limit);
    const double k = order;
    const double below =
        order == 1 ? angle / 2.0 - std::sin(2.0 * angle) / 4.0
                   : std::sin((k - 1) * angle) / (2 * (k - 1)) - std::sin((k + 1) * angle) / (2 * (k + 1));
    return 4.0 / std::numbers::pi * (below + limit * std::cos(k * angle) / k);
}

class SelfTester {
public:
    std::vector<SelfCheck> Run() {
        Sines();
        for (const int bits : {24, 16}) Quantisation(bits);
        Harmonics(kDoubleBits, kExactDb);
        Harmonics(24, 5e-4);
        Harmonics(16, 0.03);
        Square();
        Noise();
        Clipping();
        Modulation();
        DifferenceTones();
        for (const int bits : {kDoubleBits, 24}) Multitone(bits);
        Voids();
        return checks_;
    }

private:
    Reading Measure(const Samples& samples, int bits, bool live = false) {
        const Record record{samples, kRateHz, bits, bits == kDoubleBits, live, {}};
        return AnalyzeTone(plan_, record, settings_);
    }

    SelfCheck& Add(const char* value, const char* unit, double expected, double measured) {
        SelfCheck& check = checks_.emplace_back();
        check.signal = signal_;
        check.value = value;
        check.unit = unit;
        check.expected = expected;
        check.measured = measured;
        return check;
    }
    void Near(const char* value, const char* unit, double expected, const Value& measured, double tolerance) {
        Add(value, unit, expected, NumberOf(measured)).tolerance = tolerance;
    }
    void AtMost(const char* value, const char* unit, double limit, const Value& measured) {
        Add(value, unit, limit, NumberOf(measured)).atMost = true;
    }
    void Harmonic(const Reading& reading, std::size_t order, double expectedDbc, double tolerance) {
        const std::string name = "H" + std::to_string(order);
        Near(name.c_str(), "dBc", expectedDbc, reading.harmonics.at(order - 2).levelDbc, tolerance);
    }

    // Frequencies off and on bins; no harmonic of the highest one is in the band.
    void Sines() {
        for (const char* const hertz : {"20.37", "1000.366", "9999.6", "21599"}) Sine(hertz, false);
        Sine("1000", true);
    }
    void Sine(const std::string& hertz, bool snap) {
        const StimulusSignal signal = Stimulate("sine:" + hertz, kLevelDbfs, snap);
        const double played = signal.Lines().front().hertz;
        signal_ = "double, " + hertz + " Hz" + (snap ? " on a bin" : "");
        const Reading reading = Measure(SamplesOf(signal), kDoubleBits);
        Near("frequency", "Hz", played, reading.frequencyHz, played * kExactFrequency);
        Near("level", "dBFS", kLevelDbfs, reading.levelDbfs, kExactDb);
        if (2.0 * played < settings_.band.highHz) AtMost("THD", "dB", kSelfResidualDb, reading.thdDb);
        AtMost("THD+N", "dB", kSelfResidualDb, reading.thdnDb);
    }

    // Dither and rounding alone.
    void Quantisation(int bits) {
        signal_ = WordName(bits) + ", 1000.366 Hz";
        const Reading reading = Measure(Loop(SamplesOf(Stimulate("sine:1000.366", kLevelDbfs)), bits), bits);
        const double noiseDbfs = NoiseOfWordDbfs(bits);
        Near("level", "dBFS", kLevelDbfs, reading.levelDbfs, bits == 24 ? 1e-4 : 0.01);
        Near("noise", "dBFS", noiseDbfs, reading.noiseDbfs, 0.2);
        Near("THD+N", "dB", noiseDbfs - kLevelDbfs, reading.thdnDb, 0.2);
    }

    // Dither and rounding in the band.
    double NoiseOfWordDbfs(int bits) const {
        return 20.0 * std::log10(std::ldexp(1.0, 1 - bits) / std::sqrt(2.0)) + BandDb();
    }

    // The part of white noise in the band, in dB.
    double BandDb() const {
        return 10.0 * std::log10((settings_.band.highHz - settings_.band.lowHz) / (kRateHz / 2.0));
    }

    void Harmonics(int bits, double tolerance) {
        signal_ = WordName(bits) + ", known harmonics";
        const StimulusSignal signal = Stimulate("sine:1000.366", kLevelDbfs);
        const double peak = signal.Lines().front().amplitude;
        const Polynomial device;
        Samples samples = SamplesOf(signal);
        std::transform(samples.begin(), samples.end(), samples.begin(), device);
        const Reading reading = Measure(Loop(samples, bits), bits);
        const double first = device.First(peak);
        Harmonic(reading, 2, Decibels(device.Second(peak) / first), tolerance);
        if (bits == 16) return;
        Harmonic(reading, 3, Decibels(device.Third(peak) / first), tolerance);
        Near("THD", "dB", Decibels(std::hypot(device.Second(peak), device.Third(peak)) / first),
             reading.thdDb, tolerance);
        if (bits != kDoubleBits) return;
        Near("phase of H2", "degrees", -90.0, reading.harmonics.at(0).phaseDegrees, kExactDegrees);
        Near("phase of H3", "degrees", 0.0, reading.harmonics.at(1).phaseDegrees, kExactDegrees);
        Near("DC", "FS", device.Dc(peak), reading.dc, kExactDc);
    }

    void Square() {
        signal_ = "double, square of 997 Hz";
        const Reading reading = Measure(SamplesOf(Stimulate("square:997", kLevelDbfs)), kDoubleBits);
        double sum = 0;
        for (const int order : {3, 5, 7, 9}) {
            Harmonic(reading, static_cast<std::size_t>(order), Decibels(1.0 / order), kExactDb);
            sum += 1.0 / (order * order);
        }
        Near("THD", "dB", Decibels(std::sqrt(sum)), reading.thdDb, kExactDb);
    }

    void Noise() {
        constexpr double kNoiseDbfs = -61.0;
        constexpr double kAWeightedDb = -2.84;  // of white noise from 20 Hz to 20 kHz at this rate
        signal_ = "double, white noise";
        Samples samples = SamplesOf(Stimulate("sine:1000.366", kLevelDbfs));
        const Samples noise = SamplesOf(Stimulate("white", kNoiseDbfs));
        std::transform(samples.begin(), samples.end(), noise.begin(), samples.begin(), std::plus<>());
        const Reading reading = Measure(samples, kDoubleBits);
        Near("noise", "dBFS", kNoiseDbfs + BandDb(), reading.noiseDbfs, 0.15);
        Near("noise A", "dBFS", kNoiseDbfs + kAWeightedDb, reading.noiseADbfs, 0.25);
        Near("SNR", "dB", kLevelDbfs - kNoiseDbfs - BandDb(), reading.snrDb, 0.15);
    }

    void Clipping() {
        constexpr double kLimit = 0.7;  // of the peak
        signal_ = "double, clipped sine";
        Samples samples = SamplesOf(Stimulate("sine:1000.366", kLevelDbfs));
        const double limit = kLimit * Amplitude(kLevelDbfs);
        for (double& sample : samples) sample = std::clamp(sample, -limit, limit);
        const Reading reading = Measure(samples, kDoubleBits);
        for (const int order : {3, 5, 7, 9})
            Harmonic(reading, static_cast<std::size_t>(order),
                     Decibels(std::abs(ClippedHarmonic(order, kLimit) / ClippedHarmonic(1, kLimit))), 1e-4);
    }

    // The intermodulation of two tones through the polynomial.
    Intermodulation MeasurePolynomial(const StimulusSignal& signal) {
        Samples samples = SamplesOf(signal);
        std::transform(samples.begin(), samples.end(), samples.begin(), Polynomial());
        return MakePairReading(plan_, MeasurePair(plan_, {samples, kRateHz}, {}, settings_.band),
                               settings_.band)
            .intermodulation;
    }
    void Ratio(const char* value, double expected, const Value& measured) {
        Add(value, "%", 100.0 * expected, 100.0 * NumberOf(measured)).tolerance = kExactPercent;
    }

    // 60 Hz and 7 kHz, 4:1.
    void Modulation() {
        signal_ = "double, SMPTE";
        const StimulusSignal signal = Stimulate("smpte", kLevelDbfs);
        const double low = signal.Lines().at(0).amplitude;
        const double high = signal.Lines().at(1).amplitude;
        const Polynomial device;
        const Intermodulation measured = MeasurePolynomial(signal);
        const double d2 = 2.0 * device.Sum(low, high) / device.Tone(high, low);
        const double d3 = 2.0 * device.DoubleSum(low, high) / device.Tone(high, low);
        Ratio("mod d2", d2, measured.modD2);
        Ratio("mod d3", d3, measured.modD3);
        Ratio("mod", std::hypot(d2, d3), measured.mod);
    }

    // 19 and 20 kHz of equal level.
    void DifferenceTones() {
        signal_ = "double, CCIF";
        const StimulusSignal signal = Stimulate("ccif", kLevelDbfs);
        const double peak = signal.Lines().at(0).amplitude;
        const Polynomial device;
        const Intermodulation measured = MeasurePolynomial(signal);
        const double tones = 2.0 * device.Tone(peak, peak);
        Ratio("dfd d2", device.Sum(peak, peak) / tones, measured.dfdD2);
        Ratio("dfd d3", 2.0 * device.DoubleSum(peak, peak) / tones, measured.dfdD3);
    }

    void Multitone(int bits) {
        signal_ = WordName(bits) + ", multitone";
        const StimulusSignal signal = Stimulate("multitone:100@0,1000@-10,10000@0", kLevelDbfs);
        std::vector<double> hertz;
        double squares = 0.0;
        for (const StimulusLine& line : signal.Lines()) {
            hertz.push_back(line.hertz);
            squares += line.amplitude * line.amplitude;
        }
        const Samples samples = Loop(SamplesOf(signal), bits);
        const Record record{samples, kRateHz, bits, bits == kDoubleBits};
        const LinesReading reading = MakeMultitoneReading(
            plan_, MeasureMultitone(plan_, record, hertz, settings_.band), settings_.band);
        const Value level = reading.tones.empty() ? Value() : reading.tones.front().levelDbfs;
        Near("first tone", "dBFS", Decibels(signal.Lines().front().amplitude), level,
             bits == kDoubleBits ? kExactDb : 5e-4);
        if (bits == kDoubleBits)
            AtMost("TD+N", "dB", kTonesResidualDb, reading.tdnDb);
        else
            Near("TD+N", "dB", NoiseOfWordDbfs(bits) - 10.0 * std::log10(squares), reading.tdnDb, 0.2);
    }

    // Readings that must not be shown.
    void Voids() {
        const Samples sine = SamplesOf(Stimulate("sine:1000.366", -0.001));
        Samples overload = sine;
        for (double& sample : overload) sample = std::clamp(1.1 * sample, -1.0, 1.0 - std::ldexp(1.0, -15));
        Samples shortened(kLength + 1);
        Stimulate("sine:1000.366", kLevelDbfs).Fill(0, shortened);
        shortened.erase(shortened.begin() + kLength / 3);
        RequireVoid("24 bit, one sample lost", VoidCode::kDisturbed, Measure(Loop(shortened, 24), 24));
        RequireVoid("16 bit, overloaded input", VoidCode::kOverload, Measure(overload, 16, true));
        RequireVoid("double, silence", VoidCode::kSilence, Measure(Samples(kLength), kDoubleBits));
        RequireVoid("double, noise alone", VoidCode::kNoTone,
                    Measure(SamplesOf(Stimulate("white", -20.0)), kDoubleBits));
    }
    void RequireVoid(const char* signal, VoidCode code, const Reading& reading) {
        SelfCheck check;
        check.signal = signal;
        check.value = "void";
        check.expectedCode = Name(code);
        check.measuredCode = reading.voids.empty() ? "valid" : Name(reading.voids.front().code);
        checks_.push_back(check);
    }

    RecordPlan plan_{kLength, kRateHz};
    ToneSettings settings_;
    std::string signal_;
    std::vector<SelfCheck> checks_;
};

}  // namespace

bool SelfCheck::Passed() const {
    if (!expectedCode.empty()) return measuredCode == expectedCode;
    return atMost ? measured <= expected : std::abs(measured - expected) <= tolerance;
}

std::vector<SelfCheck> RunSelfTest() {
    return SelfTester().Run();
}

}  // namespace sonavex::measure
