#include <cmath>

#include "support/PanelModel.h"
#include "support/PanelRig.h"

namespace sonavex {
namespace {

// Long random sequences of user actions, reproducible by seed. After every action the panel is compared with
// the model.
class PanelSequence : public PanelRig, public testing::WithParamInterface<std::uint32_t> {
protected:
    PanelSequence() { Init(); }

    void Act() {
        switch (random_.Pick(16)) {
            case 0:
                return Wait(std::chrono::milliseconds(random_.Pick(50)));
            case 1:
                bench.Fill();
                return model_.FillBlock();
            case 2:
                panel.StopPlaying();
                return model_.StopPlaying();
            case 3:
                return ChangeRate(random_.Pick(2) == 0 ? 8000 : 44100);
            case 4:
                return SetText(random_.Text(22050));
            default:
                return Use(NextAction(random_, bench.shared.SampleRate, UserAction::kPanelKinds));
        }
    }

    void CheckPanel() {
        ExpectAsModelled(panel, generator, timer.Enabled(), model_);
        EXPECT_LE(loop.Timers(), 1U);
        EXPECT_LE(generator.NumTones, 9);
        EXPECT_LE(memory.ToneList.Count(), 8);
        if (memory.ToneList.Count() > 0) listed_ = true;
        if (listed_) {
            EXPECT_EQ(Stored("NumberOfTones"), std::to_string(memory.ToneList.Count()));
        }
        for (const ToneRecord& tone : generator.Tones) {
            EXPECT_TRUE(std::isfinite(tone.Frequency) && tone.Frequency >= 0.0);
            EXPECT_TRUE(std::isfinite(tone.LoopIncrement));
        }
        EXPECT_EQ(Stored("Level"), std::to_string(signal.sldLevel.Value()));
        EXPECT_EQ(volumes.back(), signal.sldLevel.Value());
    }

private:
    void Use(const UserAction& action) {
        SCOPED_TRACE(Describe(action));
        Perform(action, panel, [](const auto& event) { event(); });
        model_.Apply(action);
    }
    void Wait(std::chrono::milliseconds time) {
        loop.Advance(time);
        model_.Pass(time);
    }
    // As a change of rate does: stops, sets new limits, shows clamped values.
    void ChangeRate(std::int32_t rateHz) {
        panel.StopPlaying();
        bench.shared.SampleRate = rateHz;
        signal.sldStartFreq.SetMax(rateHz / 2);
        signal.sldEndFreq.SetMax(rateHz / 2);
        panel.FollowLimits();
        model_.StopPlaying();
        model_.FollowRate(rateHz);
    }
    // A text that no user typed.
    void SetText(const std::string& text) {
        const std::pair<TextBox*, std::string*> boxes[] = {{&signal.txtGenFreq, &model_.startText},
                                                           {&signal.txtGenEndFreq, &model_.endText},
                                                           {&signal.txtSweepTime, &model_.sweepText}};
        const auto& [box, modelled] = boxes[static_cast<std::size_t>(random_.Pick(3))];
        box->SetText(text);
        *modelled = text;
    }

    SeededRandomness random_{GetParam()};
    PanelModel model_{bench.shared.SampleRate};
    bool listed_ = false;
};

TEST_P(PanelSequence, KeepsThePanelConsistent) {
    SCOPED_TRACE("seed " + std::to_string(GetParam()));
    int starts = 0;
    for (int step = 0; step < 4000 && !HasFailure(); ++step) {
        const bool playedBefore = generator.SweepRunning;
        ASSERT_NO_THROW(Act()) << "step " << step;
        CheckPanel();
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
