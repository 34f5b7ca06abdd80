#include "core/plot/WaveRecord.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <utility>

namespace sonavex {
namespace {

// Five periods are visible; one more is needed to begin at a zero crossing.
constexpr double kKeptPeriods = 6.0;
// For the phase of the tone, and for the interpolation at both ends.
constexpr double kLeastKeptSamples = 1024.0;

double RadiansPerSample(const WaveRecord& record) {
    return 2.0 * std::numbers::pi / (PeriodSeconds(record) * record.rateHz);
}

// Correlation under a Hann window.
double PhaseOf(const WaveRecord& record) {
    const auto length = static_cast<double>(record.samples.size());
    const double turn = 2.0 * std::numbers::pi / length;
    const double step = RadiansPerSample(record);
    std::complex<double> sum = 0;
    for (std::size_t n = 0; n < record.samples.size(); ++n) {
        const auto time = static_cast<double>(n);
        const double weight = 1.0 - std::cos(turn * (time + 0.5));
        sum += std::polar(weight * record.samples[n], -step * time);
    }
    return std::arg(sum) + 0.5 * std::numbers::pi;
}

}  // namespace

double PeriodSeconds(const WaveRecord& record) {
    return record.fundamentalHz ? 1.0 / *record.fundamentalHz : kSecondsWithoutTone;
}

double HarmonicsAt(const WaveRecord& record, double time) {
    if (record.harmonics.empty()) return 0;
    // Powers of one phasor are faster than one sine for each harmonic.
    const std::complex<double> phasor =
        std::polar(1.0, RadiansPerSample(record) * time + record.phaseRadians);
    std::complex<double> power = 1.0;
    int order = 0;
    double sum = 0;
    for (const WaveHarmonic& harmonic : record.harmonics) {
        for (; order < harmonic.order; ++order) power *= phasor;
        sum += harmonic.amplitude * (power.imag() * std::cos(harmonic.phaseRadians) +
                                     power.real() * std::sin(harmonic.phaseRadians));
    }
    return sum;
}

std::shared_ptr<const WaveRecord> EndOfRecord(double rateHz, std::optional<double> fundamentalHz,
                                              std::vector<WaveHarmonic> harmonics,
                                              std::span<const double> samples,
                                              std::span<const double> residual) {
    WaveRecord record{rateHz, fundamentalHz, 0.0, std::move(harmonics), {}, {}};
    const double wanted = std::ceil(kKeptPeriods * PeriodSeconds(record) * rateHz) + kLeastKeptSamples;
    const std::size_t length = std::min(samples.size(), static_cast<std::size_t>(wanted));
    const auto end = samples.last(length);
    record.samples.assign(end.begin(), end.end());
    if (fundamentalHz) record.phaseRadians = PhaseOf(record);
    if (residual.size() == samples.size() && !residual.empty()) {
        const auto rest = residual.last(length);
        for (std::size_t n = 0; n < length; ++n)
            record.captured.push_back(
                static_cast<float>(rest[n] + HarmonicsAt(record, static_cast<double>(n))));
    }
    return std::make_shared<const WaveRecord>(std::move(record));
}

}  // namespace sonavex
