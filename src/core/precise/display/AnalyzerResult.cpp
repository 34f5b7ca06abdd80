#include "core/precise/display/AnalyzerResult.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <utility>

#include "core/analyzer/AnalysisWindow.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

double AmplitudeOfDecibels(double decibels) {
    return std::pow(10.0, decibels / 20.0);
}

// The strongest tone; its level is the reference of dBc.
std::optional<PlotTone> ReferenceTone(const AnalyzerResult& result) {
    const Reading& reading = result.reading.reading;
    if (result.mode == PreciseMode::kTone) {
        if (!reading.frequencyHz.value || !reading.levelDbfs.value) return std::nullopt;
        return PlotTone{*reading.frequencyHz.value, *reading.levelDbfs.value};
    }
    std::optional<PlotTone> strongest;
    for (const ToneValues& tone : result.reading.tones)
        if (tone.frequencyHz.value && tone.levelDbfs.value &&
            (!strongest || *tone.levelDbfs.value > strongest->levelDbfs))
            strongest = PlotTone{*tone.frequencyHz.value, *tone.levelDbfs.value};
    return strongest;
}

std::vector<SpectrumMarker> HarmonicMarkers(const Reading& reading, const PlotTone& fundamental) {
    std::vector<SpectrumMarker> markers;
    for (const Harmonic& harmonic : reading.harmonics)
        if (harmonic.order <= reading.highestOrder && harmonic.levelDbc.value)
            markers.push_back({harmonic.order, harmonic.order * fundamental.hertz,
                               fundamental.levelDbfs + *harmonic.levelDbc.value, harmonic.levelDbc.atMost});
    return markers;
}

// A sine reads its level in the trace. White noise is therefore higher than its power per bin by the noise
// bandwidth of the window.
std::optional<double> NoisePerBinDbfs(const AnalyzerResult& result) {
    const Reading& reading = result.reading.reading;
    const ExportedSpectrum& spectrum = result.spectrum;
    const double highHz = std::min(reading.band.highHz, 0.5 * spectrum.rateHz);
    if (!reading.noiseDbfs.value || spectrum.power.empty() || highHz <= reading.band.lowHz)
        return std::nullopt;
    const double bins = (highHz - reading.band.lowHz) / spectrum.BinHz();
    return *reading.noiseDbfs.value - 10.0 * std::log10(bins) + 10.0 * std::log10(spectrum.enbwBins);
}

std::string ConditionsText(const AnalyzerResult& result) {
    const std::size_t records = std::max<std::size_t>(result.spectrum.records, 1);
    return std::to_string(result.spectrum.length) + " points, 7-term window, " + std::to_string(records) +
           (records == 1 ? " record" : " averages") + "; shaded: outside the band";
}

std::vector<WaveHarmonic> HarmonicsOf(const Reading& reading, double amplitude) {
    std::vector<WaveHarmonic> harmonics;
    for (const Harmonic& harmonic : reading.harmonics) {
        if (harmonic.levelDbc.atMost || !harmonic.levelDbc.value || !harmonic.phaseDegrees.value) continue;
        harmonics.push_back({harmonic.order, amplitude * AmplitudeOfDecibels(*harmonic.levelDbc.value),
                             *harmonic.phaseDegrees.value * std::numbers::pi / 180.0});
    }
    return harmonics;
}

template <typename Faults, typename Code>
bool HasCode(const Faults& faults, Code code) {
    return std::any_of(faults.begin(), faults.end(),
                       [code](const auto& fault) { return fault.code == code; });
}

// A sentence as a remark: without its full stop.
std::string Remark(std::string sentence) {
    if (!sentence.empty() && sentence.back() == '.') sentence.pop_back();
    return sentence;
}

// A remark that follows another one. A word in capitals, such as THD, keeps them.
std::string Continued(std::string remark) {
    const auto isCapital = [](char letter) { return letter >= 'A' && letter <= 'Z'; };
    if (remark.size() > 1 && isCapital(remark[0]) && !isCapital(remark[1]))
        remark[0] = static_cast<char>(remark[0] - 'A' + 'a');
    return remark;
}

std::string CauseOf(const Void& reason) {
    return reason.code == VoidCode::kDisturbed ? Remark(reason.sentence) : Name(reason.code);
}

// "-60 dBc within 6 Hz"
std::string SkirtText(const AnalyzerResult& result) {
    const Value& skirt = result.reading.reading.skirtDb;
    if (!skirt.value) return {};
    const double hertz = kGuardBins * result.spectrum.BinHz();
    return WithDecimals(*skirt.value, 0) + " dBc within " + WithDecimals(hertz, hertz < 1.0 ? 1 : 0) + " Hz";
}

}  // namespace

std::shared_ptr<const SpectrumTrace> PlottedTrace(const AnalyzerResult& result, const std::string& name) {
    const ExportedSpectrum& spectrum = result.spectrum;
    if (spectrum.power.empty()) return nullptr;
    auto trace = std::make_shared<SpectrumTrace>();
    trace->name = name;
    trace->power.assign(spectrum.power.begin(), spectrum.power.end());
    trace->binHz = spectrum.BinHz();
    trace->records = result.independentSpectra;
    return trace;
}

SpectrumPlot::Data PlottedSpectrum(const AnalyzerResult& result, std::shared_ptr<const SpectrumTrace> trace) {
    const Reading& reading = result.reading.reading;
    SpectrumPlot::Data data;
    data.bandLowHz = reading.band.lowHz;
    data.bandHighHz = std::min(reading.band.highHz, 0.5 * result.spectrum.rateHz);
    data.rateHz = result.spectrum.rateHz;
    if (trace) data.conditions = ConditionsText(result);
    data.live = std::move(trace);
    if (!reading.Valid()) return data;
    data.fundamental = ReferenceTone(result);
    data.noisePerBinDbfs = NoisePerBinDbfs(result);
    if (result.mode == PreciseMode::kTone && data.fundamental)
        data.markers = HarmonicMarkers(reading, *data.fundamental);
    return data;
}

std::shared_ptr<const WaveRecord> PlottedWaves(const AnalyzerResult& result) {
    if (result.samples.empty()) return nullptr;
    std::optional<double> hertz;
    std::vector<WaveHarmonic> harmonics;
    const std::optional<PlotTone> tone = ReferenceTone(result);
    if (tone && result.mode == PreciseMode::kTone) {
        hertz = tone->hertz;
        harmonics = HarmonicsOf(result.reading.reading, AmplitudeOfDecibels(tone->levelDbfs));
    }
    return EndOfRecord(result.spectrum.rateHz, hertz, std::move(harmonics), result.samples, result.residual);
}

ChipState ChipOf(const AnalyzerResult& result, std::size_t averages) {
    using Kind = StateChip::Kind;
    const Reading& reading = result.reading.reading;
    if (HasCode(reading.voids, VoidCode::kOverload)) return {Kind::kOverload, "OVERLOAD"};
    if (!reading.Valid()) return VoidChip(CauseOf(reading.voids.front()));
    if (HasCode(reading.warnings, WarningCode::kUnsteadyTone)) {
        const std::string skirt = SkirtText(result);
        return {Kind::kUnsteady, skirt.empty() ? "UNSTEADY" : "UNSTEADY " + skirt};
    }
    if (!result.recording && reading.blocks < averages)
        return SettlingChip(static_cast<double>(reading.blocks), averages);
    return {Kind::kValid, "VALID"};
}

ChipState SettlingChip(double records, std::size_t averages) {
    const auto all = static_cast<double>(std::max<std::size_t>(averages, 1));
    return {StateChip::Kind::kSettling,
            "SETTLING " + WithDecimals(std::floor(records), 0) + " of " + WithDecimals(all, 0),
            std::clamp(records / all, 0.0, 1.0)};
}

ChipState VoidChip(const std::string& cause) {
    return {StateChip::Kind::kVoid, "VOID " + Remark(cause)};
}

std::string LimitOf(const AnalyzerResult& result) {
    const Reading& reading = result.reading.reading;
    for (const Warning& warning : reading.warnings)
        if (warning.code == WarningCode::kClipped || warning.code == WarningCode::kImpulsiveNoise ||
            warning.code == WarningCode::kNoHarmonicInBand ||
            (result.recording && warning.code == WarningCode::kUnsteadyTone))
            return Continued(Remark(warning.sentence));
    if (HasCode(reading.warnings, WarningCode::kLimitedBy16Bit)) return "limited by 16 bit";
    for (const RuleResult& rule : result.rules)
        if (!rule.met) return Continued(Remark(rule.sentence));
    return {};
}

}  // namespace sonavex
