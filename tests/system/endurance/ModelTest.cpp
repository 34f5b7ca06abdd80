// Random users. After every action the forms are compared with the model.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <deque>
#include <numbers>

#include "core/settings/SampleRates.h"
#include "system/endurance/BenchTop.h"
#include "system/endurance/InstrumentModel.h"

namespace sonavex {
namespace {

constexpr double kRelative = 1e-12;
constexpr double kPhase = 1e-6;  // radians; grows with the sines' samples

std::uint64_t FromEnvironment(const char* name, std::uint64_t fallback) {
    const char* text = std::getenv(name);
    return text == nullptr ? fallback : std::strtoull(text, nullptr, 10);
}

bool Same(double a, double b) {
    return std::abs(a - b) <= kRelative * std::max({1.0, std::abs(a), std::abs(b)});
}

class ModelRun {
public:
    explicit ModelRun(std::uint64_t seed) : user_(seed) {}

    void Run(int actions) {
        ASSERT_TRUE(bench_.Start());
        model_ = std::make_unique<InstrumentModel>(Form().Instrument.Shared.SampleRate);
        for (int i = 0; i < actions && !testing::Test::HasFailure(); ++i) {
            Something();
            if (!testing::Test::HasFailure()) Compare();
            if (testing::Test::HasFailure()) Tell();
        }
    }

private:
    frmMain& Form() { return bench_.Form(); }

    void Note(const std::string& what) {
        history_.push_back(what);
        if (history_.size() > 25) history_.pop_front();
    }

    void Something() {
        const double kind = user_.Between(0.0, 1.0);
        if (kind < 0.02)
            SelectRate();
        else if (kind < 0.03)
            RestartTheProgram();
        else if (kind < 0.04)
            LoseTheCard();
        else
            UseTheWindow();
        const int blocks = user_.Pick(4);
        for (int i = 0; i < blocks; ++i) Block();
    }

    void UseTheWindow() {
        const UserAction action = user_.Next(Form().Instrument.Shared.SampleRate);
        Note(Describe(action));
        bench_.Act([&] { Perform(action, Form()); });
        model_->Apply(action);
    }

    void SelectRate() {
        const std::int32_t index = user_.Pick(static_cast<std::int32_t>(SampleRateTable.size()));
        const std::int32_t rateHz = SampleRateTable[static_cast<std::size_t>(index)];
        Note("rate " + std::to_string(rateHz));
        bench_.SelectRate(index);
        model_->SelectRate(rateHz);
    }

    void RestartTheProgram() {
        Note("program restarted");
        bench_.End();
        ASSERT_TRUE(bench_.Start());
        model_->ProgramRestarts(Form().Instrument.Shared.SampleRate);
    }

    // The generator continues. The stream returns a few seconds after the card.
    void LoseTheCard() {
        Note("card lost");
        // With an invalid typed frequency no block could be measured.
        bench_.Act([this] { Form().Instrument.Meter.Controls.chkAuto.UserSets(true); });
        bench_.Card().Unplug();
        const int blocks = 20 + user_.Pick(20);
        for (int i = 0; i < blocks; ++i) Block();
        EXPECT_FALSE(Form().Instrument.Shared.EventsReady);
        EXPECT_TRUE(Form().Instrument.Watch.Stopped());
        bench_.Card().Plug();
        for (int i = 0; i < 100 && Form().Instrument.Watch.Stopped(); ++i) Block();
        EXPECT_TRUE(Form().Instrument.Shared.EventsReady);
        EXPECT_FALSE(Form().Instrument.Watch.Stopped());
    }

    void Block() {
        const auto time = bench_.BlockTime();
        const std::uint64_t blocks = Form().Instrument.Engine.Blocks;
        const std::uint64_t starts = Form().Instrument.Engine.CaptureStarts;
        bench_.Block();
        model_->CardMoves();
        if (Form().Instrument.Engine.Blocks != blocks) model_->FillBlock();
        model_->Pass(time);
        if (Form().Instrument.Engine.CaptureStarts == starts) return;
        model_->StreamStarts(Form().Instrument.Shared.SampleRate);
        AdoptSweeps();
    }

    // Sweeps pause while the stream is restarted.
    void AdoptSweeps() {
        for (std::size_t i = 0; i < model_->table.size(); ++i) {
            if (!model_->table[i].Sweep) continue;
            const ToneRecord& tone = Form().Instrument.Meter.Generator.Tones[i];
            model_->table[i].Frequency = tone.Frequency;
            model_->table[i].SweepFrequency = tone.SweepFrequency;
        }
    }

    void Compare() {
        CompareGenerator();
        CompareControls();
        CompareList();
        const StreamEngine& engine = Form().Instrument.Engine;
        EXPECT_EQ(engine.PlayBlockIndex, model_->playBlock);
        EXPECT_EQ(engine.RestartPending, model_->priming);
        EXPECT_EQ(engine.RestartCount, model_->primed);
        EXPECT_EQ(engine.PlaybackStarts, model_->playbackStarts);
        EXPECT_EQ(engine.Overruns, model_->overruns);
        EXPECT_EQ(Form().Instrument.Shared.SampleRate, model_->rate);
    }

    void CompareGenerator() {
        const Generator& generator = Form().Instrument.Meter.Generator;
        EXPECT_EQ(generator.GeneratorRunning, model_->running);
        EXPECT_EQ(generator.SweepRunning, model_->sweeping);
        EXPECT_EQ(generator.GeneratorState, model_->state);
        EXPECT_EQ(generator.NumTones, model_->tones);
        EXPECT_FALSE(generator.ToneUpdateBusy);
        EXPECT_EQ(Form().Instrument.HiTimer1.Enabled(), model_->ticking);
        for (std::size_t i = 0; i < generator.Tones.size(); ++i) CompareTone(i);
    }

    void CompareTone(std::size_t i) {
        const ToneRecord& tone = Form().Instrument.Meter.Generator.Tones[i];
        ToneRecord& expected = model_->table[i];
        // A record that is not playing keeps old values, partly of other tones.
        const bool sounds = model_->running && static_cast<std::int32_t>(i) < model_->tones;
        if (i > 0 && !sounds) return;
        EXPECT_EQ(tone.WaveType, expected.WaveType) << i;
        EXPECT_EQ(tone.Sweep, expected.Sweep) << i;
        EXPECT_EQ(tone.Loop, expected.Loop) << i;
        EXPECT_EQ(tone.SweepTime, expected.SweepTime) << i;
        EXPECT_EQ(tone.StartFrequency, expected.StartFrequency) << i;
        EXPECT_EQ(tone.EndFrequency, expected.EndFrequency) << i;
        EXPECT_TRUE(Same(tone.LoopIncrement, expected.LoopIncrement))
            << i << ' ' << tone.LoopIncrement << ' ' << expected.LoopIncrement;
        if (!sounds) return;
        EXPECT_TRUE(Same(tone.Frequency, expected.Frequency))
            << i << ' ' << tone.Frequency << ' ' << expected.Frequency;
        EXPECT_TRUE(Same(tone.SweepFrequency, expected.SweepFrequency)) << i;
        EXPECT_TRUE(Same(tone.LastFrequency, expected.LastFrequency)) << i;
        EXPECT_TRUE(Same(tone.Period, expected.Period)) << i;
        if (tone.WaveType == wave::kSine) {
            EXPECT_LT(std::abs(std::remainder(tone.Phase - expected.Phase, 2.0 * std::numbers::pi)), kPhase)
                << i;
        } else {
            EXPECT_EQ(tone.SampleCount, expected.SampleCount) << i;
            // Phase at which a sine would continue.
            expected.Phase = tone.Phase;
        }
    }

    void CompareControls() {
        const SignalControls& signal = Form().GeneratorPanel.Controls;
        using Playing = InstrumentModel::Playing;
        const bool usable = model_->playing != Playing::kMemory;
        EXPECT_EQ(signal.cmbType.ListIndex(), model_->type);
        EXPECT_EQ(signal.sldStartFreq.Value(), model_->startHz);
        EXPECT_EQ(signal.sldEndFreq.Value(), model_->endHz);
        EXPECT_EQ(signal.sldSweepTime.Value(), model_->sweepMs);
        EXPECT_EQ(signal.sldLevel.Value(), model_->level);
        EXPECT_EQ(signal.chkLoop.Checked(), model_->loopChecked);
        EXPECT_EQ(signal.txtGenFreq.Text(), model_->startText);
        EXPECT_EQ(signal.txtGenEndFreq.Text(), model_->endText);
        EXPECT_EQ(signal.txtSweepTime.Text(), model_->sweepText);
        EXPECT_EQ(signal.cmbType.Enabled(), usable);
        EXPECT_EQ(signal.sldStartFreq.Enabled(), usable);
        EXPECT_EQ(signal.txtGenFreq.Enabled(), usable);
        EXPECT_EQ(signal.sldSweepTime.Enabled(), usable);
        EXPECT_EQ(signal.txtSweepTime.Enabled(), usable);
        EXPECT_EQ(signal.Command1.Enabled(), usable);
        EXPECT_EQ(signal.sldEndFreq.Enabled(), model_->endUsable);
        EXPECT_EQ(signal.txtGenEndFreq.Enabled(), model_->endUsable);
        EXPECT_EQ(signal.chkLoop.Enabled(), model_->loopUsable);
        EXPECT_TRUE(signal.sldLevel.Enabled());
        EXPECT_EQ(signal.Command1.Caption(),
                  model_->playing == Playing::kCurrent ? "Stop Current" : "Start Current");
        EXPECT_EQ(signal.picGenRunning.BackColor(),
                  model_->playing == Playing::kNothing ? kGeneratorStopped : kGeneratorPlaying);
    }

    void CompareList() {
        const MemoryControls& memory = Form().GeneratorPanel.MemoryControls;
        using Playing = InstrumentModel::Playing;
        ASSERT_EQ(memory.ToneList.Count(), static_cast<std::int32_t>(model_->list.size()));
        for (std::int32_t i = 0; i < memory.ToneList.Count(); ++i) {
            EXPECT_EQ(memory.ToneList.List(i), model_->list[static_cast<std::size_t>(i)].line);
            EXPECT_EQ(memory.ToneList.Selected(i), model_->list[static_cast<std::size_t>(i)].selected);
        }
        EXPECT_EQ(memory.ToneList.Locked(), model_->playing != Playing::kNothing);
        EXPECT_EQ(memory.cmdGenAdd.Enabled(), model_->addUsable);
        EXPECT_EQ(memory.cmdRemove.Enabled(), model_->removeUsable);
        EXPECT_EQ(memory.cmdStartMemory.Enabled(), model_->memoryUsable);
        EXPECT_EQ(memory.cmdStartMemory.Caption(),
                  model_->playing == Playing::kMemory ? "Stop Memory" : "Start Memory");
    }

    void Tell() {
        std::string lines;
        for (const std::string& line : history_) lines += "  " + line + '\n';
        ADD_FAILURE() << "after\n" << lines;
    }

    RandomUser user_;
    BenchTop bench_;
    std::unique_ptr<InstrumentModel> model_;
    std::deque<std::string> history_;
};

// SONAVEX_MODEL_SEQUENCES and SONAVEX_MODEL_SEED select the number of sequences and the first seed.
TEST(Model, AgreesWithTheFormsWhateverTheUserDoes) {
    const std::uint64_t sequences = FromEnvironment("SONAVEX_MODEL_SEQUENCES", 40);
    const std::uint64_t seed = FromEnvironment("SONAVEX_MODEL_SEED", 1);
    for (std::uint64_t i = 0; i < sequences && !HasFailure(); ++i) {
        SCOPED_TRACE("seed " + std::to_string(seed + i));
        ModelRun(seed + i).Run(400);
    }
}

}  // namespace
}  // namespace sonavex
