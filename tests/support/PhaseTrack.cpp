#include "support/PhaseTrack.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>

namespace sonavex {
namespace {

constexpr std::size_t kFitFrames = 2048;

// x[n-1] + x[n+1] = 2 cos(w) x[n] for every sine, solved for w by least squares.
double Frequency(std::span<const std::int16_t> block) {
    double product = 0.0;
    double square = 0.0;
    for (std::size_t i = 1; i + 1 < block.size(); ++i) {
        product += static_cast<double>(block[i]) * (block[i - 1] + block[i + 1]);
        square += 2.0 * block[i] * block[i];
    }
    return square == 0.0 ? 0.0 : std::acos(std::clamp(product / square, -1.0, 1.0));
}

// The best-fitting sine of that frequency: a sin + b cos by the normal equations.
SineBlock Fit(std::span<const std::int16_t> block, double radiansPerSample) {
    double ss = 0.0;
    double sc = 0.0;
    double cc = 0.0;
    double xs = 0.0;
    double xc = 0.0;
    for (std::size_t i = 0; i < block.size(); ++i) {
        const double s = std::sin(radiansPerSample * static_cast<double>(i));
        const double c = std::cos(radiansPerSample * static_cast<double>(i));
        ss += s * s;
        sc += s * c;
        cc += c * c;
        xs += block[i] * s;
        xc += block[i] * c;
    }
    const double determinant = ss * cc - sc * sc;
    const double a = (xs * cc - xc * sc) / determinant;
    const double b = (xc * ss - xs * sc) / determinant;
    SineBlock sine{radiansPerSample, std::hypot(a, b), std::atan2(b, a), 0.0};
    for (std::size_t i = 0; i < block.size(); ++i) {
        const double fitted =
            sine.peak * std::sin(sine.firstPhase + radiansPerSample * static_cast<double>(i));
        sine.residue = std::max(sine.residue, std::abs(block[i] - fitted));
    }
    return sine;
}

// The frequency estimate is biased; searches next to it for the smallest residue.
SineBlock FitBest(std::span<const std::int16_t> block) {
    double radians = Frequency(block);
    for (int pass = 0; pass < 3; ++pass) {
        // The phase error between the two halves gives the frequency error.
        const std::size_t half = block.size() / 2;
        const SineBlock first = Fit(block.first(half), radians);
        const SineBlock second = Fit(block.subspan(half), radians);
        const double predicted = first.firstPhase + radians * static_cast<double>(half);
        radians +=
            std::remainder(second.firstPhase - predicted, 2.0 * std::numbers::pi) / static_cast<double>(half);
    }
    return Fit(block, radians);
}

}  // namespace

PhaseTrack::PhaseTrack(std::span<const std::int16_t> recording) {
    const auto first =
        std::find_if(recording.begin(), recording.end(), [](std::int16_t sample) { return sample != 0; });
    auto rest = recording.subspan(static_cast<std::size_t>(first - recording.begin()));
    for (; rest.size() >= kFitFrames; rest = rest.subspan(kFitFrames))
        blocks_.push_back(FitBest(rest.first(kFitFrames)));
}

double PhaseTrack::LargestJump() const {
    double largest = 0.0;
    for (std::size_t i = 1; i < blocks_.size(); ++i) {
        const SineBlock& before = blocks_[i - 1];
        // A change of frequency applies from the first step of the block.
        const double reached = before.firstPhase +
                               before.radiansPerSample * static_cast<double>(kFitFrames - 1) +
                               blocks_[i].radiansPerSample;
        largest = std::max(largest,
                           std::abs(std::remainder(blocks_[i].firstPhase - reached, 2.0 * std::numbers::pi)));
    }
    return largest;
}

double PhaseTrack::LargestResidue() const {
    double largest = 0.0;
    for (const SineBlock& block : blocks_) largest = std::max(largest, block.residue);
    return largest;
}

std::size_t PhaseTrack::Changes() const {
    std::size_t changes = 0;
    for (std::size_t i = 1; i < blocks_.size(); ++i)
        if (std::abs(blocks_[i].radiansPerSample - blocks_[i - 1].radiansPerSample) > 1e-5) ++changes;
    return changes;
}

int LargestStep(std::span<const std::int16_t> samples) {
    int largest = 0;
    for (std::size_t i = 1; i < samples.size(); ++i)
        largest = std::max(largest, std::abs(samples[i] - samples[i - 1]));
    return largest;
}

int LargestMagnitude(std::span<const std::int16_t> samples) {
    int largest = 0;
    for (const std::int16_t sample : samples) largest = std::max(largest, std::abs(int{sample}));
    return largest;
}

}  // namespace sonavex
