#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

#include "support/PanelRig.h"

namespace sonavex {
namespace {

// Long random sequences of user actions, reproducible by seed.
class PanelSequence : public PanelRig, public testing::WithParamInterface<std::uint32_t> {
protected:
    PanelSequence() { Init(); }

    std::int32_t Any(std::int32_t low, std::int32_t high) {
        return std::uniform_int_distribution<std::int32_t>(low, high)(random_);
    }
    void MoveAny(Slider& slider) {
        if (!slider.Enabled()) return;
        slider.UserMoves(Any(0, 3) == 0 ? slider.Min() : Any(slider.Min() - 10, slider.Max() + 10));
        if (Any(0, 1) == 0) slider.UserReleases();
    }
    void TypeAny(TextBox& box) {
        static const std::vector<std::string> texts{"",      "abc", "0",     "-5",   "19.99", "20",  "440",
                                                    "1e300", "1e4", "22050", "1e-9", "10000", "2.5", "1000"};
        if (!box.Enabled()) return;
        const std::string& text = texts[static_cast<std::size_t>(Any(0, static_cast<int>(texts.size()) - 1))];
        if (Any(0, 9) == 0)
            box.SetText(text);
        else
            box.UserTypes(text);
        if (Any(0, 1) == 0) box.UserLeaves();
    }
    void SelectAny() {
        if (memory.ToneList.Count() > 0) Select(Any(0, memory.ToneList.Count() - 1), Any(0, 2) > 0);
    }
    void Act() {
        const std::function<void()> actions[] = {
            [this] { MoveAny(signal.sldStartFreq); },
            [this] { MoveAny(signal.sldEndFreq); },
            [this] { MoveAny(signal.sldSweepTime); },
            [this] { MoveAny(signal.sldLevel); },
            [this] { TypeAny(signal.txtGenFreq); },
            [this] { TypeAny(signal.txtGenEndFreq); },
            [this] { TypeAny(signal.txtSweepTime); },
            [this] {
                if (signal.cmbType.Enabled()) signal.cmbType.UserSelects(Any(0, 3));
            },
            [this] {
                if (signal.chkLoop.Enabled()) signal.chkLoop.UserSets(Any(0, 1) == 1);
            },
            [this] { signal.Command1.Press(); },
            [this] { memory.cmdGenAdd.Press(); },
            [this] { memory.cmdGenAdd.Press(); },
            [this] {
                if (Any(0, 2) == 0) memory.cmdRemove.Press();
            },
            [this] { memory.cmdStartMemory.Press(); },
            [this] { SelectAny(); },
            [this] { SelectAny(); },
            [this] { loop.Advance(std::chrono::milliseconds(Any(0, 50))); },
            [this] { bench.Fill(); },
            [this] { panel.StopPlaying(); },
            [this] { ChangeRate(); },
        };
        actions[static_cast<std::size_t>(Any(0, static_cast<int>(std::size(actions)) - 1))]();
    }
    // As a change of rate does: stops, sets new limits, shows clamped values.
    void ChangeRate() {
        panel.StopPlaying();
        bench.shared.SampleRate = Any(0, 1) == 0 ? 8000 : 44100;
        signal.sldStartFreq.SetMax(bench.shared.SampleRate / 2);
        signal.sldEndFreq.SetMax(bench.shared.SampleRate / 2);
        panel.FollowLimits();
    }

    bool CurrentPlays() const { return signal.Command1.Caption() == "Stop Current"; }
    bool MemoryPlays() const { return memory.cmdStartMemory.Caption() == "Stop Memory"; }

    void CheckPlaying() {
        const bool playing = CurrentPlays() || MemoryPlays();
        EXPECT_FALSE(CurrentPlays() && MemoryPlays());
        EXPECT_EQ(generator.SweepRunning, playing);
        EXPECT_EQ(generator.GeneratorRunning, playing);
        EXPECT_EQ(Shown(kGeneratorPlaying), playing);
        EXPECT_EQ(Shown(kGeneratorStopped), !playing);
        EXPECT_EQ(memory.ToneList.Locked(), playing);
        EXPECT_EQ(signal.Command1.Enabled(), !MemoryPlays());
        EXPECT_EQ(signal.sldStartFreq.Enabled(), !MemoryPlays());
        EXPECT_TRUE(signal.sldLevel.Enabled());
        EXPECT_EQ(memory.cmdGenAdd.Enabled(), !playing && memory.ToneList.Count() < 8);
        CheckClock(playing);
    }
    // The clock runs exactly when a playing tone sweeps.
    void CheckClock(bool playing) {
        const auto* last = generator.Tones.begin() + generator.NumTones;
        const bool sweeps =
            std::any_of(generator.Tones.cbegin(), last, [](const ToneRecord& tone) { return tone.Sweep; });
        EXPECT_EQ(timer.Enabled(), playing && sweeps);
        EXPECT_LE(loop.Timers(), 1U);
    }
    void CheckTable() {
        EXPECT_GE(generator.NumTones, 0);
        EXPECT_LE(generator.NumTones, 9);
        EXPECT_LE(memory.ToneList.Count(), 8);
        if (written_ || memory.ToneList.Count() > 0) {
            written_ = true;
            EXPECT_EQ(Stored("NumberOfTones"), std::to_string(memory.ToneList.Count()));
        }
        for (const ToneRecord& tone : generator.Tones) {
            EXPECT_TRUE(std::isfinite(tone.Frequency) && tone.Frequency >= 0.0);
            EXPECT_TRUE(std::isfinite(tone.LoopIncrement));
        }
        EXPECT_EQ(Stored("Level"), std::to_string(signal.sldLevel.Value()));
        EXPECT_EQ(volumes.back(), signal.sldLevel.Value());
    }

    std::mt19937 random_{GetParam()};
    bool written_ = false;
};

TEST_P(PanelSequence, KeepsThePanelConsistent) {
    SCOPED_TRACE("seed " + std::to_string(GetParam()));
    int starts = 0;
    for (int step = 0; step < 4000 && !HasFailure(); ++step) {
        const bool playedBefore = generator.SweepRunning;
        ASSERT_NO_THROW(Act()) << "step " << step;
        CheckPlaying();
        CheckTable();
        if (generator.SweepRunning && !playedBefore) ++starts;
        EXPECT_FALSE(HasFailure()) << "step " << step;
        log.Clear();
    }
    // Proves that the sequence played.
    EXPECT_GT(starts, 50);
}

INSTANTIATE_TEST_SUITE_P(Seeds, PanelSequence, testing::Values(1U, 2U, 3U, 20261121U),
                         [](const auto& seed) { return "Seed" + std::to_string(seed.param); });

}  // namespace
}  // namespace sonavex
