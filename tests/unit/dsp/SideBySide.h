#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <span>
#include <string>

#include "core/generator/Generator.h"
#include "support/AnalysisRig.h"
#include "support/ReferenceAnalysis.h"

namespace sonavex {

// Relative to the largest value of the compared vector.
inline constexpr double kTolerance = 1e-12;

inline double Largest(std::span<const double> values) {
    double largest = 0.0;
    for (const double value : values) largest = std::max(largest, std::fabs(value));
    return largest;
}

inline void ExpectClose(std::span<const double> got, std::span<const double> expected, std::size_t count,
                        double largest, const char* what) {
    const double allowed = kTolerance * largest;
    for (std::size_t i = 0; i < count; ++i) ASSERT_NEAR(got[i], expected[i], allowed) << what << ' ' << i;
}

// Compares the instrument's analysis with the literal one; each has its own generator.
class SideBySide {
public:
    SideBySide(std::int32_t rate, std::int32_t lowHz)
        : rig_(rate, lowHz), literal_(rate), ours_(rig_.shared), theirs_(rig_.shared) {
        literal_.SetUp(lowHz, rate / 2 - 100);
        Automatic(false);
        Mute(false);
        rig_.generator.fill = [this](std::span<double> first, std::span<double> second, std::int32_t count) {
            ours_.FillGeneratorBlock(first, second, count);
        };
    }

    void Automatic(bool on) {
        rig_.controls.chkAuto.SetValue(on ? 1 : 0);
        literal_.chkAuto = on;
    }
    void Frequency(const std::string& text) {
        rig_.controls.txtFreq.SetText(text);
        literal_.txtFreq = text;
    }
    void Mute(bool on) {
        rig_.controls.chkMuteOutput.SetValue(on ? 1 : 0);
        literal_.chkMuteOutput = on;
    }
    void Baseline(double pct) {
        rig_.controls.chkBaseline.SetValue(1);
        literal_.baselineOn = true;
        for (std::size_t i = 0; i < 8; ++i)
            rig_.state->BaselinePct[i] = literal_.baselinePct[i] = pct * static_cast<double>(i);
    }
    void Play(std::int16_t waveType, double frequencyHz) {
        for (Generator* generator : {&ours_, &theirs_}) {
            auto& tone = generator->Tones[static_cast<std::size_t>(generator->NumTones++)];
            tone.WaveType = waveType;
            tone.Frequency = tone.StartFrequency = tone.SweepFrequency = frequencyHz;
            generator->ResetTonePhases();
            generator->SetGeneratorRunning(true);
        }
    }

    void Feed(const StereoSignal& signal, int blocks) {
        for (int i = 0; i < blocks && !testing::Test::HasFatalFailure(); ++i) {
            SCOPED_TRACE("block " + std::to_string(++block_));
            const Block captured = MakeBlock(signal, next_);
            next_ += static_cast<std::int64_t>(kTestBlockFrames);
            rig_.Feed(captured);
            Block literalPlayback{};
            literal_.Process(captured, literalPlayback, theirs_);
            CompareReadings();
            CompareVectors();
        }
    }

    std::int32_t PeakBin() const { return rig_.state->PeakBin; }
    const MeasurementControls& Shown() const { return rig_.controls; }

private:
    void CompareReadings() {
        const MeasurementControls& shown = rig_.controls;
        ASSERT_EQ(rig_.state->HistIndex, literal_.histIndex);
        ASSERT_EQ(rig_.state->PeakBin, literal_.peakBin);
        ASSERT_EQ(rig_.state->PeakMag, literal_.peakMag);
        ASSERT_EQ(rig_.state->FreqLocked, literal_.locked);
        EXPECT_EQ(shown.txtFreq.Text(), literal_.txtFreq);
        EXPECT_EQ(shown.picLocked.BackColor(), literal_.locked ? kLightGreen : kLightRed);
        EXPECT_EQ(shown.GenLocked.BackColor(), shown.picLocked.BackColor());
        EXPECT_EQ(shown.prgADC.Value(), literal_.prgADC);
        EXPECT_EQ(shown.LblLevel.Caption(), literal_.LblLevel);
        EXPECT_FLOAT_EQ(shown.prgDAC.Value(), literal_.prgDAC);
        EXPECT_EQ(shown.lblDACLevel.Caption(), literal_.lblDACLevel);
        EXPECT_EQ(shown.lblThd.Caption(), literal_.lblThd);
        for (std::size_t i = 0; i < 8; ++i) {
            EXPECT_EQ(shown.lbltest[i].Caption(), literal_.lbltest[i]) << i;
            EXPECT_EQ(shown.lblDb[i].Caption(), literal_.lblDb[i]) << i;
            EXPECT_EQ(rig_.state->CurrentPct[i], literal_.currentPct[i]) << i;
            EXPECT_NEAR(rig_.state->CurrentDb[i], literal_.currentDb[i], 1e-6) << i;
        }
    }

    void CompareVectors() {
        const modDSP::State& state = *rig_.state;
        ExpectClose(state.SpecMag, literal_.inputMagnitudes, 2049, Largest(literal_.inputMagnitudes),
                    "SpecMag");
        // Both channels are parts of one complex signal.
        const double largest = std::max(Largest(literal_.tailA), Largest(literal_.tailB));
        ExpectClose(state.TailA, literal_.tailA, 2046, largest, "TailA");
        ExpectClose(state.TailB, literal_.tailB, 2046, largest, "TailB");
        const double scale = std::max(1.0, literal_.synthPeak);
        ASSERT_NEAR(state.SynthPeak, literal_.synthPeak, kTolerance * scale);
        ASSERT_NEAR(state.OutputPeak, literal_.outputPeak, kTolerance * scale);
        const double loudest = std::max(Largest(literal_.outputA), Largest(literal_.outputB));
        ExpectClose(state.SpecRe, literal_.outputA, kTestBlockFrames, loudest, "output A");
        ExpectClose(state.SpecIm, literal_.outputB, kTestBlockFrames, loudest, "output B");
        for (std::size_t i = 0; i < kTestBlockFrames; ++i) {
            // The literal value rounded; either neighbour if it is on the half.
            ASSERT_NEAR(rig_.playback[2 * i], literal_.outputB[i], 0.5 + kTolerance * scale) << i;
            ASSERT_NEAR(rig_.playback[2 * i + 1], literal_.outputA[i], 0.5 + kTolerance * scale) << i;
        }
    }

    AnalysisRig rig_;
    reference::Analysis literal_;
    Generator ours_;
    Generator theirs_;
    std::int64_t next_ = 0;
    int block_ = 0;
};

}  // namespace sonavex
