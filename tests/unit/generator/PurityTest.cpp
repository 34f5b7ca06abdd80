#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

#include "core/dsp/modSPL2VB.h"
#include "support/GeneratorBench.h"

namespace sonavex {
namespace {

constexpr std::int32_t kOrder = 16;
constexpr std::size_t kLength = std::size_t{1} << kOrder;
// Lines next to the fundamental that belong to it: the main lobe of the window.
constexpr std::size_t kLobe = 8;

// Seven-term Blackman-Harris window: side lobes below -180 dB.
double Window(std::size_t i) {
    constexpr double kTerms[] = {0.27105140069342, 0.43329793923448, 0.21812299954311, 0.06592544638803,
                                 0.01081174209837, 0.00077658482522, 0.00001388721735};
    double sum = 0.0;
    double sign = 1.0;
    for (std::size_t term = 0; term < std::size(kTerms); ++term, sign = -sign)
        sum += sign * kTerms[term] *
               std::cos(2 * std::numbers::pi * static_cast<double>(term * i) / static_cast<double>(kLength));
    return sum;
}

std::vector<double> Spectrum(const std::vector<double>& samples) {
    static const modSPL2VB::FftPlan plan(kOrder);
    std::vector<double> inRe(kLength);
    const std::vector<double> inIm(kLength, 0.0);
    std::vector<double> outRe(kLength);
    std::vector<double> outIm(kLength);
    for (std::size_t i = 0; i < kLength; ++i) inRe[i] = samples[i] * Window(i);
    modSPL2VB::nspzrFftNip(plan, inRe, inIm, outRe, outIm, modSPL2VB::kForward);
    std::vector<double> magnitudes(kLength / 2);
    for (std::size_t i = 0; i < magnitudes.size(); ++i) magnitudes[i] = std::hypot(outRe[i], outIm[i]);
    return magnitudes;
}

struct Line {
    std::size_t bin;
    double dbc;
};

// The largest line apart from the fundamental at `bin`.
Line LargestSpur(const std::vector<double>& spectrum, std::size_t bin) {
    Line largest{0, -999.0};
    for (std::size_t i = 0; i < spectrum.size(); ++i) {
        if (i + kLobe >= bin && i <= bin + kLobe) continue;
        const double dbc = 20 * std::log10(std::max(spectrum[i], 1e-30) / spectrum[bin]);
        if (dbc > largest.dbc) largest = {i, dbc};
    }
    return largest;
}

struct Tone {
    std::int32_t rateHz;
    double frequencyHz;
};

// The mean square of a part of a cycle depends on which part it is.
double RmsOverWholeCycles(const std::vector<double>& samples, const Tone& tone) {
    const double cycles = std::floor(static_cast<double>(kLength) * tone.frequencyHz / tone.rateHz);
    const auto count = std::lround(cycles * tone.rateHz / tone.frequencyHz);
    const auto* first = samples.data();
    return std::sqrt(std::inner_product(first, first + count, first, 0.0) / static_cast<double>(count));
}

class Purity : public testing::TestWithParam<Tone> {};

INSTANTIATE_TEST_SUITE_P(Frequencies, Purity,
                         testing::Values(Tone{48000, 20}, Tone{48000, 1000}, Tone{48000, 997},
                                         Tone{48000, 6000}, Tone{44100, 9450}, Tone{48000, 12000},
                                         Tone{48000, 21600}, Tone{44100, 1000}, Tone{44100, 19845},
                                         Tone{32000, 1000}, Tone{22050, 440}, Tone{16000, 7200},
                                         Tone{8000, 1000}, Tone{4000, 1800}));

TEST_P(Purity, HasNoLineAboveMinus80Dbc) {
    GeneratorBench bench(GetParam().rateHz);
    bench.Add(wave::kSine, GetParam().frequencyHz);
    bench.Run();
    std::vector<double> samples = bench.Samples(kLength);
    for (double& sample : samples) sample = std::nearbyint(sample);  // as the 16-bit output has it
    EXPECT_NEAR(RmsOverWholeCycles(samples, GetParam()), 8191.75 / std::numbers::sqrt2, 5.0);
    const auto spectrum = Spectrum(samples);
    const auto bin = static_cast<std::size_t>(
        std::lround(GetParam().frequencyHz / GetParam().rateHz * static_cast<double>(kLength)));
    EXPECT_LE(std::abs(std::max_element(spectrum.begin(), spectrum.end()) - spectrum.begin() -
                       static_cast<std::ptrdiff_t>(bin)),
              1);
    const Line spur = LargestSpur(spectrum, bin);
    EXPECT_LT(spur.dbc, -80.0) << "line " << spur.bin << ", fundamental " << bin;
}

TEST(PurityMeasurement, SeesALineOfMinus79Dbc) {
    std::vector<double> samples(kLength);
    const double level = std::pow(10.0, -79.0 / 20);
    for (std::size_t i = 0; i < kLength; ++i) {
        const double angle = 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(kLength);
        samples[i] = 8191.75 * (std::sin(1365.3 * angle) + level * std::sin(2730.6 * angle));
    }
    const Line spur = LargestSpur(Spectrum(samples), 1365);
    EXPECT_NEAR(spur.dbc, -79.0, 0.5);
    EXPECT_NEAR(static_cast<double>(spur.bin), 2730.6, 1.0);
}

}  // namespace
}  // namespace sonavex
