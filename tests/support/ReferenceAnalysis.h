#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "core/dsp/BlockFill.h"

namespace sonavex::reference {

// A literal, step-by-step implementation of the analysis of a block: polar spectra with all phases, plain
// loops, long-double transforms. Slow; for comparison only. Shares no signal processing with the instrument,
// only its number texts.
class Analysis {
public:
    explicit Analysis(std::int32_t sampleRate) : sampleRate_(sampleRate) {}

    void SetUp(std::int32_t lowHz, std::int32_t highHz);
    void Process(std::span<const std::int16_t> captured, std::span<std::int16_t> playback,
                 BlockFill& generator);

    // Inputs by the user.
    bool chkAuto = false;
    bool chkMuteOutput = false;
    bool baselineOn = false;
    std::array<double, 8> baselinePct{};
    std::string txtFreq;

    // Displayed values.
    float prgADC = 0.0F;
    float prgDAC = 0.0F;
    std::string LblLevel;
    std::string lblDACLevel;
    std::array<std::string, 8> lbltest;
    std::array<std::string, 8> lblDb;
    std::string lblThd;
    bool locked = false;

    // Intermediate values.
    std::vector<double> inputMagnitudes;  // filtered input, all bins
    std::int32_t peakBin = 0;
    std::int32_t peakMag = 0;
    std::int32_t histIndex = 0;
    double outputPeak = 0.0;
    double synthPeak = 0.0;
    std::array<double, 8> currentPct{};
    std::array<double, 8> currentDb{};
    std::vector<double> tailA = std::vector<double>(4097);
    std::vector<double> tailB = std::vector<double>(4097);
    // The output signals before rounding: second and first sample of the frames.
    std::vector<double> outputA = std::vector<double>(4097);
    std::vector<double> outputB = std::vector<double>(4097);

private:
    struct Polar {
        std::vector<double> mag = std::vector<double>(4097);
        std::vector<double> phase = std::vector<double>(4097);
    };

    void ShowInputLevel(std::span<const double> chanA, std::span<const double> chanB);
    void FindFundamental();
    void TestLock();
    void MeasureHarmonics();
    void ShowAverages(std::size_t harmonic);
    void FilterBack(const Polar& spectrum);
    void OverlapAdd();
    void ShowOutputLevel();
    void Limit();
    Polar ToPolar(std::size_t count) const;

    std::int32_t sampleRate_;
    float binWidth_ = 0.0F;
    Polar filter_;
    std::vector<std::array<std::array<double, 8>, 2>> history_ =
        std::vector<std::array<std::array<double, 8>, 2>>(19);
};

}  // namespace sonavex::reference
