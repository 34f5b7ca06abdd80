#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "support/PanelModel.h"

namespace sonavex {
namespace {

using Playing = PanelModel::Playing;

constexpr double kRelative = 1e-12;
constexpr double kPhase = 1e-6;  // radians; grows with the sines' samples

bool Same(double a, double b) {
    return std::abs(a - b) <= kRelative * std::max({1.0, std::abs(a), std::abs(b)});
}

void ExpectTone(const ToneRecord& tone, const ToneRecord& expected, bool sounds) {
    EXPECT_EQ(tone.WaveType, expected.WaveType);
    EXPECT_EQ(tone.Sweep, expected.Sweep);
    EXPECT_EQ(tone.Loop, expected.Loop);
    EXPECT_EQ(tone.SweepTime, expected.SweepTime);
    EXPECT_EQ(tone.StartFrequency, expected.StartFrequency);
    EXPECT_EQ(tone.EndFrequency, expected.EndFrequency);
    EXPECT_PRED2(Same, tone.LoopIncrement, expected.LoopIncrement);
    if (!sounds) return;
    EXPECT_PRED2(Same, tone.Frequency, expected.Frequency);
    EXPECT_PRED2(Same, tone.SweepFrequency, expected.SweepFrequency);
    EXPECT_PRED2(Same, tone.LastFrequency, expected.LastFrequency);
    EXPECT_PRED2(Same, tone.Period, expected.Period);
    EXPECT_EQ(tone.SampleCount, expected.SampleCount);
    EXPECT_NEAR(std::remainder(tone.Phase - expected.Phase, 2.0 * std::numbers::pi), 0.0, kPhase);
}

void ExpectGenerator(const Generator& generator, const PanelModel& model) {
    EXPECT_EQ(generator.GeneratorRunning, model.running);
    EXPECT_EQ(generator.SweepRunning, model.sweeping);
    EXPECT_EQ(generator.GeneratorState, model.state);
    EXPECT_EQ(generator.NumTones, model.generator.count);
    EXPECT_FALSE(generator.ToneUpdateBusy);
    for (std::int32_t i = 0; i < kToneRecords; ++i) {
        SCOPED_TRACE("tone " + std::to_string(i));
        const bool sounds = model.running && i < model.generator.count;
        const auto at = static_cast<std::size_t>(i);
        // A record that is not playing keeps old values, partly of other tones.
        if (i == 0 || sounds) ExpectTone(generator.Tones[at], model.generator.tones[at], sounds);
    }
}

void ExpectSignal(const SignalControls& signal, const PanelModel& model) {
    const bool usable = model.playing != Playing::kMemory;
    EXPECT_EQ(signal.cmbType.ListIndex(), model.type);
    EXPECT_EQ(signal.sldStartFreq.Value(), model.startHz);
    EXPECT_EQ(signal.sldEndFreq.Value(), model.endHz);
    EXPECT_EQ(signal.sldSweepTime.Value(), model.sweepMs);
    EXPECT_EQ(signal.sldLevel.Value(), model.level);
    EXPECT_EQ(signal.chkLoop.Checked(), model.loopChecked);
    EXPECT_EQ(signal.txtGenFreq.Text(), model.startText);
    EXPECT_EQ(signal.txtGenEndFreq.Text(), model.endText);
    EXPECT_EQ(signal.txtSweepTime.Text(), model.sweepText);
    for (const Control* control :
         std::initializer_list<const Control*>{&signal.cmbType, &signal.sldStartFreq, &signal.txtGenFreq,
                                               &signal.sldSweepTime, &signal.txtSweepTime})
        EXPECT_EQ(control->Enabled(), usable);
    EXPECT_EQ(signal.Command1.Enabled(), usable && !model.stimulusPlays);
    EXPECT_EQ(signal.sldEndFreq.Enabled(), model.endUsable);
    EXPECT_EQ(signal.txtGenEndFreq.Enabled(), model.endUsable);
    EXPECT_EQ(signal.chkLoop.Enabled(), model.loopUsable);
    EXPECT_TRUE(signal.sldLevel.Enabled());
    EXPECT_EQ(signal.Command1.Caption(),
              model.playing == Playing::kCurrent ? "Stop Current" : "Start Current");
    EXPECT_EQ(signal.picGenRunning.BackColor(),
              model.playing == Playing::kNothing ? kGeneratorStopped : kGeneratorPlaying);
}

void ExpectList(const MemoryControls& memory, const PanelModel& model) {
    ASSERT_EQ(memory.ToneList.Count(), static_cast<std::int32_t>(model.list.size()));
    for (std::int32_t i = 0; i < memory.ToneList.Count(); ++i) {
        EXPECT_EQ(memory.ToneList.List(i), model.list[static_cast<std::size_t>(i)].line);
        EXPECT_EQ(memory.ToneList.Selected(i), model.list[static_cast<std::size_t>(i)].selected);
    }
    EXPECT_EQ(memory.ToneList.Locked(), model.playing != Playing::kNothing);
    EXPECT_EQ(memory.cmdGenAdd.Enabled(), model.addUsable);
    EXPECT_EQ(memory.cmdRemove.Enabled(), model.removeUsable);
    EXPECT_EQ(memory.cmdStartMemory.Enabled(), model.memoryUsable && !model.stimulusPlays);
    EXPECT_EQ(memory.cmdStartMemory.Caption(),
              model.playing == Playing::kMemory ? "Stop Memory" : "Start Memory");
}

}  // namespace

void ExpectAsModelled(const GeneratorPanel& panel, const Generator& generator, bool ticking,
                      const PanelModel& model) {
    ExpectGenerator(generator, model);
    ExpectSignal(panel.Controls, model);
    ExpectList(panel.MemoryControls, model);
    EXPECT_EQ(ticking, model.ticking);
}

}  // namespace sonavex
