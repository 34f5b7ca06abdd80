#include "support/ReferenceAnalysis.h"

#include <algorithm>
#include <cmath>

#include "core/text/Numbers.h"
#include "support/ReferenceMath.h"

namespace sonavex::reference {
namespace {

std::vector<Complex> Join(std::span<const double> re, std::span<const double> im) {
    std::vector<Complex> joined;
    for (std::size_t i = 0; i < 4096; ++i) joined.emplace_back(re[i], im[i]);
    return joined;
}

}  // namespace

void Analysis::SetUp(std::int32_t lowHz, std::int32_t highHz) {
    binWidth_ = static_cast<float>(sampleRate_ / 4096.0);
    std::vector<double> taps = Bandpass(static_cast<long double>(lowHz) / sampleRate_,
                                        static_cast<long double>(highHz) / sampleRate_, 2048);
    taps.resize(4096);
    const std::vector<Complex> response = Dft(Join(taps, std::vector<double>(4096)));
    for (std::size_t k = 0; k < 4096; ++k) {
        filter_.mag[k] = static_cast<double>(std::abs(response[k]));
        filter_.phase[k] = static_cast<double>(std::arg(response[k]));
    }
}

void Analysis::Process(std::span<const std::int16_t> captured, std::span<std::int16_t> playback,
                       BlockFill& generator) {
    histIndex = histIndex + 1;
    if (histIndex > 18) {
        histIndex = 0;
        std::fill(history_.begin(), history_.end(), std::array<std::array<double, 8>, 2>{});
    }
    std::vector<double> chanA(4097);
    std::vector<double> chanB(4097);
    for (std::size_t i = 0; i <= 4094; i += 2) {
        chanA[i / 2] = captured[i + 1];
        chanB[i / 2] = captured[i];
    }
    ShowInputLevel(chanA, chanB);

    const std::vector<Complex> transformed = Dft(Join(chanA, chanB));
    Polar spectrum;
    for (std::size_t k = 0; k < 4096; ++k) {
        const auto re = static_cast<double>(transformed[k].real());
        const auto im = static_cast<double>(transformed[k].imag());
        spectrum.mag[k] = std::sqrt(re * re + im * im) * filter_.mag[k];
        spectrum.phase[k] = std::atan2(im, re) + filter_.phase[k];
    }
    inputMagnitudes = spectrum.mag;
    FindFundamental();
    TestLock();
    if (locked) {
        MeasureHarmonics();
    } else {
        lbltest.fill("");
        lblDb.fill("");
        lblThd = "N/A";
    }
    FilterBack(spectrum);
    OverlapAdd();
    if (chkMuteOutput) {
        std::fill(outputA.begin(), outputA.end(), 0.0);
        std::fill(outputB.begin(), outputB.end(), 0.0);
    }
    ShowOutputLevel();
    generator.FillGeneratorBlock(outputA, outputB, 2048);
    Limit();
    for (std::size_t i = 0; i <= 2047; ++i) {
        playback[2 * i] = static_cast<std::int16_t>(std::nearbyint(outputB[i]));
        playback[2 * i + 1] = static_cast<std::int16_t>(std::nearbyint(outputA[i]));
    }
}

void Analysis::ShowInputLevel(std::span<const double> chanA, std::span<const double> chanB) {
    double inputPeak = *std::max_element(chanB.begin(), chanB.begin() + 4096);
    const double inputPeakB = *std::max_element(chanA.begin(), chanA.begin() + 4096);
    if (inputPeakB > inputPeak) inputPeak = inputPeakB;
    if (inputPeak >= 32760.0 || inputPeak <= 0.0) {
        prgADC = 32760.0F;
        LblLevel = "Ovr";
    } else {
        prgADC = static_cast<float>(inputPeak);
        LblLevel = Format(inputPeak / 32760.0 * 100.0, Pattern::kWhole);
    }
}

void Analysis::FindFundamental() {
    peakMag = 0;
    peakBin = 0;
    for (std::int32_t k = 1; k <= 2048; ++k) {
        const double magnitude = inputMagnitudes[static_cast<std::size_t>(k)];
        if (peakMag < magnitude) {
            peakMag = static_cast<std::int32_t>(std::nearbyint(magnitude));
            peakBin = k;
        }
    }
}

void Analysis::TestLock() {
    const double measuredHz = std::floor(static_cast<double>(binWidth_) * peakBin);
    if (chkAuto) txtFreq = std::to_string(static_cast<std::int32_t>(measuredHz));
    const double fundamentalHz = std::nearbyint(Val(txtFreq));
    locked = fundamentalHz - 14 < measuredHz && measuredHz < fundamentalHz + 14 && fundamentalHz != 0.0;
}

void Analysis::FilterBack(const Polar& spectrum) {
    std::vector<double> re(4096);
    std::vector<double> im(4096);
    for (std::size_t k = 0; k < 4096; ++k) {
        re[k] = spectrum.mag[k] * std::cos(spectrum.phase[k]);
        im[k] = spectrum.mag[k] * std::sin(spectrum.phase[k]);
    }
    const std::vector<Complex> filtered = InverseDft(Join(re, im));
    for (std::size_t i = 0; i < 4096; ++i) {
        outputA[i] = static_cast<double>(filtered[i].real());
        outputB[i] = static_cast<double>(filtered[i].imag());
    }
}

void Analysis::OverlapAdd() {
    for (std::size_t i = 0; i <= 2045; ++i) {
        outputA[i] += tailA[i];
        outputB[i] += tailB[i];
    }
    for (std::size_t i = 0; i <= 2045; ++i) {
        tailA[i] = outputA[2048 + i];
        tailB[i] = outputB[2048 + i];
    }
}

Analysis::Polar Analysis::ToPolar(std::size_t count) const {
    Polar polar;
    for (std::size_t i = 0; i < count; ++i) {
        polar.mag[i] = std::sqrt(outputA[i] * outputA[i] + outputB[i] * outputB[i]);
        polar.phase[i] = std::atan2(outputB[i], outputA[i]);
    }
    return polar;
}

void Analysis::ShowOutputLevel() {
    Polar polar = ToPolar(2048);
    outputPeak = *std::max_element(polar.mag.begin(), polar.mag.begin() + 2048);
    if (outputPeak > 32760.0) outputPeak = 32760.0;  // equals scaling all samples
    prgDAC = static_cast<float>(outputPeak);
    if (chkMuteOutput)
        lblDACLevel = "Muted";
    else if (outputPeak >= 32760.0)
        lblDACLevel = "Ovr";
    else
        lblDACLevel = Format(outputPeak / 32760.0 * 100.0, Pattern::kWhole);
}

void Analysis::Limit() {
    Polar polar = ToPolar(2048);
    synthPeak = *std::max_element(polar.mag.begin(), polar.mag.begin() + 2048);
    for (std::size_t i = 0; i < 2048; ++i) {
        if (synthPeak > 32760.0) polar.mag[i] *= 32760.0 / synthPeak;
        outputA[i] = polar.mag[i] * std::cos(polar.phase[i]);
        outputB[i] = polar.mag[i] * std::sin(polar.phase[i]);
    }
}

}  // namespace sonavex::reference
