#include "core/precise/PathBurst.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sonavex {
namespace {

constexpr double kSeconds = 0.03;
constexpr double kLowHz = 500.0;
constexpr double kHighHz = 1500.0;

// The search works at about this rate, which is enough for the burst's frequencies.
constexpr double kSearchRateHz = 12000.0;

// Squared correlation coefficient. A sine reaches 0.1, noise within a second 0.05.
constexpr double kLeastCorrelation = 0.4;

double PhaseAt(double seconds) {
    const double slope = (kHighHz - kLowHz) / kSeconds;
    return 2.0 * std::numbers::pi * (kLowHz + 0.5 * slope * seconds) * seconds;
}

double EnvelopeAt(double seconds) {
    const double sine = std::sin(std::numbers::pi * seconds / kSeconds);
    return sine * sine;
}

// Means of `group` samples each.
std::vector<double> Decimated(std::span<const double> samples, std::size_t group) {
    std::vector<double> means;
    for (std::size_t i = 0; i + group <= samples.size(); i += group) {
        double sum = 0.0;
        for (std::size_t j = 0; j < group; ++j) sum += samples[i + j];
        means.push_back(sum / static_cast<double>(group));
    }
    return means;
}

// The burst in both phases.
struct BurstPair {
    explicit BurstPair(double rateHz) {
        const auto count = static_cast<std::size_t>(kSeconds * rateHz);
        for (std::size_t i = 0; i < count; ++i) {
            const double time = (static_cast<double>(i) + 0.5) / rateHz;
            sine.push_back(EnvelopeAt(time) * std::sin(PhaseAt(time)));
            cosine.push_back(EnvelopeAt(time) * std::cos(PhaseAt(time)));
            energy += sine.back() * sine.back();
        }
    }

    // Squared correlation coefficient with as many samples: 1 for a burst in any phase.
    double Correlation(std::span<const double> samples) const {
        double inSine = 0.0;
        double inCosine = 0.0;
        double sum = 0.0;
        double squares = 0.0;
        for (std::size_t i = 0; i < sine.size(); ++i) {
            inSine += samples[i] * sine[i];
            inCosine += samples[i] * cosine[i];
            sum += samples[i];
            squares += samples[i] * samples[i];
        }
        const double samplesEnergy = squares - sum * sum / static_cast<double>(sine.size());
        if (samplesEnergy <= 0.0) return 0.0;
        return (inSine * inSine + inCosine * inCosine) / (energy * samplesEnergy);
    }

    std::vector<double> sine;
    std::vector<double> cosine;
    double energy = 0;
};

}  // namespace

std::vector<double> PathBurst(double rateHz) {
    return BurstPair(rateHz).sine;
}

std::optional<std::size_t> FindPathBurst(std::span<const double> samples, double rateHz) {
    const auto group = static_cast<std::size_t>(std::max(1.0, std::round(rateHz / kSearchRateHz)));
    const std::vector<double> means = Decimated(samples, group);
    const BurstPair burst(rateHz / static_cast<double>(group));
    double highest = kLeastCorrelation;
    std::optional<std::size_t> found;
    for (std::size_t start = 0; start + burst.sine.size() <= means.size(); ++start) {
        const double correlation = burst.Correlation(std::span(means).subspan(start, burst.sine.size()));
        if (correlation <= highest) continue;
        highest = correlation;
        found = start * group;
    }
    return found;
}

}  // namespace sonavex
