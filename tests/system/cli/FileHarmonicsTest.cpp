// Recordings with known harmonics read as theory predicts.

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <numbers>
#include <random>

#include "support/Recordings.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using nlohmann::ordered_json;

struct Partial {
    double amplitude = 0.0;
    double phase = 0.0;
};
// Element 0 is the fundamental.
using Spectrum = std::array<Partial, 9>;

Spectrum RandomSpectrum(std::mt19937& random) {
    std::uniform_real_distribution<double> fundamental(0.2, 0.6);
    std::uniform_real_distribution<double> decibels(-60.0, -25.0);
    std::uniform_real_distribution<double> phase(0.0, 2.0 * std::numbers::pi);
    Spectrum spectrum;
    spectrum[0] = {fundamental(random), phase(random)};
    for (std::size_t i = 1; i < spectrum.size(); ++i)
        spectrum[i] = {spectrum[0].amplitude * std::pow(10.0, decibels(random) / 20.0), phase(random)};
    return spectrum;
}

RecordedSignal Played(const Spectrum& spectrum, std::int32_t bin) {
    return [=](std::int64_t frame, int) {
        const double angle = 2.0 * std::numbers::pi * bin / 4096.0 * static_cast<double>(frame);
        double value = 0.0;
        for (std::size_t i = 0; i < spectrum.size(); ++i)
            value += spectrum[i].amplitude * std::sin(static_cast<double>(i + 1) * angle + spectrum[i].phase);
        return value;
    };
}

double Number(const ordered_json& caption) {
    return std::stod(caption.get<std::string>());
}

// Expected: distortion up to each harmonic relative to everything up to it, and the level of each harmonic.
void ExpectTheory(const ordered_json& line, const Spectrum& spectrum) {
    double harmonics = 0.0;
    for (std::size_t i = 1; i < spectrum.size(); ++i) {
        harmonics += spectrum[i].amplitude * spectrum[i].amplitude;
        const double all = harmonics + spectrum[0].amplitude * spectrum[0].amplitude;
        const double ratio = spectrum[i].amplitude / spectrum[0].amplitude;
        EXPECT_NEAR(Number(line["percent"][i - 1]), 100.0 * std::sqrt(harmonics / all), 0.01) << i + 1;
        EXPECT_NEAR(Number(line["db"][i - 1]), 20.0 * std::log10(ratio), 0.3) << i + 1;
    }
    EXPECT_EQ(line["thd"], line["percent"][7]);
}

class FileHarmonics : public testing::TestWithParam<std::int32_t> {};

TEST_P(FileHarmonics, AgreeWithTheory) {
    const std::int32_t rateHz = GetParam();
    std::mt19937 random(static_cast<std::uint32_t>(rateHz));
    // Whole periods per block, with the 9th harmonic inside the band.
    std::uniform_int_distribution<std::int32_t> halfBin(20, 54);
    for (int round = 0; round < 4; ++round) {
        const Spectrum spectrum = RandomSpectrum(random);
        const std::int32_t bin = 2 * halfBin(random);
        const RecordingFile file({rateHz, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT}, Played(spectrum, bin));
        const Outcome outcome = Measure({"file", file.Path(), "--json"});
        EXPECT_EQ(outcome.status, 0);
        const std::vector<ordered_json> lines = outcome.Json();
        ASSERT_EQ(lines.size(), 2U);
        EXPECT_EQ(lines[1]["settled"], true);
        EXPECT_EQ(lines[1]["peakBin"], bin);
        ExpectTheory(lines[1], spectrum);
    }
}

INSTANTIATE_TEST_SUITE_P(Rates, FileHarmonics, testing::Values(48000, 44100, 32000, 22050, 16000),
                         [](const auto& test) { return "Hz" + std::to_string(test.param); });

}  // namespace
}  // namespace sonavex
