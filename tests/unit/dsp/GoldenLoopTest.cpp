#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <memory>
#include <numbers>
#include <string>

#include "core/audio/Meter.h"
#include "core/settings/SampleRates.h"
#include "core/text/Numbers.h"
#include "support/Blocks.h"
#include "support/Golden.h"

namespace sonavex {
namespace {

constexpr std::string_view kNotAvailable = "N/A";

// The meter with its own output as input, one block later, bit for bit.
class WiredMeter {
public:
    explicit WiredMeter(std::int32_t rate, double phase = 0.0) {
        shared_.SampleRate = rate;
        meter = std::make_unique<Meter>(shared_);
        meter->SetUpAnalysis(25, rate / 2 - 100);
        meter->Controls.chkAuto.SetValue(1);
        meter->Controls.chkMuteOutput.SetValue(1);
        meter->Generator.NumTones = 1;
        meter->Generator.Tones[0].Frequency = 1000;
        meter->Generator.ResetTonePhases();
        meter->Generator.Tones[0].Phase = phase;
        meter->Generator.SetGeneratorRunning(true);
    }

    // Steps until 19 good blocks in a row are shown.
    void Settle() {
        do {
            const Block captured = playback_;
            meter->ProcessCapturedBlock(captured, playback_);
        } while (!meter->Settled() && meter->Blocks() < 100);
    }

    const std::string& Total() const { return meter->Controls.lblThd.Caption(); }

    std::unique_ptr<Meter> meter;

private:
    SharedState shared_;
    Block playback_{};
};

// Magnitude of one bin for 2048 samples of a sine, zero-padded to 4096.
double Leakage(double cyclesPerSample, double phase, int bin) {
    std::complex<double> sum = 0.0;
    for (int t = 0; t < 2048; ++t)
        sum += std::sin(2.0 * std::numbers::pi * cyclesPerSample * t + phase) *
               std::polar(1.0, -2.0 * std::numbers::pi * bin * t / 4096.0);
    return std::abs(sum);
}

// Leakage of the unfiltered, unrounded sine alone, in percent of the 2nd to 9th harmonic, averaged over the
// blocks of the second cycle.
double ExpectedTotal(double rate, int peakBin) {
    double total = 0.0;
    for (int block = 17; block < 36; ++block) {
        const double cycles = 1000.0 / rate;
        const double phase = 2.0 * std::numbers::pi * std::fmod(cycles * (2048.0 * block + 1.0), 1.0);
        const double fundamental = Leakage(cycles, phase, peakBin);
        double harm = 0.0;
        for (int n = 2; n <= 9; ++n) harm += std::pow(Leakage(cycles, phase, n * peakBin), 2);
        total += 100.0 * std::sqrt(harm / (fundamental * fundamental + harm));
    }
    return total / 19.0;
}

TEST(GoldenLoop, OneSineAtEveryRate) {
    const Golden golden = ReadGolden("wire-loop-1000hz");
    ASSERT_EQ(golden.rows.size(), SampleRateTable.size());
    for (std::size_t i = 0; i < golden.rows.size(); ++i) {
        Golden::Row row = golden.rows[i];
        ASSERT_EQ(row.at("rateHz"), SampleRateTable[i]);
        WiredMeter wired(SampleRateTable[i]);
        wired.Settle();
        EXPECT_TRUE(wired.meter->Settled()) << row["rateHz"];
        const auto near = [&](double value, const char* column) {
            EXPECT_NEAR(value, row.at(column), golden.tolerance.at(column)) << row["rateHz"] << ' ' << column;
        };
        near(wired.meter->Analysis().PeakBin, "peakBin");
        near(Val(wired.meter->Controls.txtFreq.Text()), "frequencyHz");
        // "N/A" reads as 0.
        near(Val(wired.Total()), "totalPercent");
        near(wired.meter->Controls.prgADC.Value(), "inputPeak");
    }
}

TEST(GoldenLoop, LeakageIsWhatTheoryGives) {
    for (const auto& [rate, bin] : {std::pair{48000, 85}, std::pair{44100, 93}, std::pair{22050, 186}}) {
        WiredMeter wired(rate);
        wired.Settle();
        EXPECT_EQ(wired.meter->Analysis().PeakBin, bin);
        EXPECT_NEAR(Val(wired.Total()), ExpectedTotal(rate, bin), 0.0005) << rate;
    }
}

// Contribution of rounding the samples of one cycle to the harmonics 2 to `highest`, in percent.
double ExpectedRounding(int samplesPerCycle, int highest) {
    const auto bin = [&](int n) {
        std::complex<double> sum = 0.0;
        for (int t = 0; t < samplesPerCycle; ++t) {
            const double angle = 2.0 * std::numbers::pi * t / samplesPerCycle;
            sum += std::nearbyint(8191.75 * std::sin(angle)) * std::polar(1.0, -n * angle);
        }
        return std::norm(sum);
    };
    double harm = 0.0;
    for (int n = 2; n <= highest; ++n) harm += bin(n);
    return 100.0 * std::sqrt(harm / (bin(1) + harm));
}

TEST(GoldenLoop, OnABinOnlyTheRoundingTo16BitIsLeft) {
    WiredMeter at32000(32000);
    at32000.Settle();
    EXPECT_EQ(at32000.meter->Controls.txtFreq.Text(), "1000");
    EXPECT_LT(Val(at32000.Total()), 0.003);
    EXPECT_NEAR(Val(at32000.Total()), ExpectedRounding(32, 9), 0.0002);
    // At 16000 Hz six harmonics fit.
    WiredMeter at16000(16000);
    at16000.Settle();
    EXPECT_EQ(at16000.meter->Controls.txtFreq.Text(), "1000");
    EXPECT_NEAR(Val(at16000.Total()), ExpectedRounding(16, 6), 0.0002);
}

TEST(GoldenLoop, TheTotalDependsLittleOnThePhase) {
    for (double phase = 0.0; phase < 3.0; phase += 0.5) {
        WiredMeter at48000(48000, phase);
        at48000.Settle();
        EXPECT_EQ(at48000.meter->Controls.txtFreq.Text(), "996");
        EXPECT_GE(Val(at48000.Total()), 0.81) << phase;
        EXPECT_LE(Val(at48000.Total()), 0.84) << phase;
        WiredMeter at44100(44100, phase);
        at44100.Settle();
        EXPECT_GE(Val(at44100.Total()), 0.74) << phase;
        EXPECT_LE(Val(at44100.Total()), 0.81) << phase;
    }
}

TEST(GoldenLoop, TheLowRatesHaveNoRoomForHarmonics) {
    WiredMeter at4000(4000);
    at4000.Settle();
    WiredMeter at8000(8000);
    at8000.Settle();
    for (std::size_t i = 0; i < MeasurementControls::kHarmonics; ++i) {
        EXPECT_EQ(at4000.meter->Controls.lbltest[i].Caption(), kNotAvailable) << i;
        EXPECT_EQ(at4000.meter->Controls.lblDb[i].Caption(), kNotAvailable) << i;
        if (i == 0) continue;
        EXPECT_EQ(at8000.meter->Controls.lbltest[i].Caption(), kNotAvailable) << i;
        EXPECT_EQ(at8000.meter->Controls.lblDb[i].Caption(), kNotAvailable) << i;
    }
    EXPECT_EQ(at4000.Total(), kNotAvailable);
    // The 2nd harmonic at 8000 Hz is exactly on a zero, so only rounding can leave a value.
    const std::string& second = at8000.meter->Controls.lbltest[0].Caption();
    EXPECT_TRUE(second == kNotAvailable || second == "0.0000") << second;
    EXPECT_EQ(at8000.Total(), second);
}

}  // namespace
}  // namespace sonavex
