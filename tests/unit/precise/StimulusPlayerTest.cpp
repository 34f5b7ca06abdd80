#include <gmock/gmock.h>

#include "core/ports/SoundErrors.h"
#include "core/precise/StimulusPlayer.h"
#include "core/stimulus/ParseStimulus.h"
#include "core/stimulus/RenderStimulus.h"
#include "support/FakeSoundSystem.h"
#include "support/FormRig.h"
#include "support/InlineBackground.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

StimulusChoice ChoiceOf(std::string_view text, double levelDbfs = -1.0) {
    StimulusChoice choice;
    choice.stimulus = ParseStimulus(text);
    choice.levelDbfs = levelDbfs;
    return choice;
}

// The main form on scripted devices with a level of -6 dB.
class StimulusPlayerTest : public testing::Test, public World {
protected:
    void SetUp() override {
        store.Save("Signal Generator", "Level", "-600");
        sound.outputBits = 24;
        form.Form_Load();
        log.Clear();
    }

    void Play(std::string_view text) {
        player.Start(ChoiceOf(text));
        loop.DeliverSignals();
    }
    // The device takes this many samples.
    void Take(std::size_t samples) {
        sound.fineRoom = samples;
        loop.Advance(100ms);
    }
    std::vector<std::string> Volumes() const { return log.Of("playbackBuffer.SetVolume"); }
    std::string RefusalOf(const StimulusChoice& choice) {
        try {
            player.Start(choice);
        } catch (const StimulusError& error) {
            return error.what();
        }
        return "accepted";
    }
    void ExpectStarts(bool enabled) {
        EXPECT_EQ(panel.Controls.Command1.Enabled(), enabled);
        EXPECT_EQ(panel.StimulusPlaying(), !enabled);
    }
    void Lose() {
        sound.Lose({sound_error::kBufferLost, "The card has been removed."});
        loop.Advance(500ms);
    }

    FakeSoundSystem sound{log};
    frmMain form{On(sound)};
    GeneratorPanel& panel = form.GeneratorPanel;
    InlineBackground background{loop};
    StimulusPlayer player{{loop, form.Instrument, background, &form.GeneratorPanel}};
};

TEST_F(StimulusPlayerTest, PlaysAtAVolumeOfZeroDecibels) {
    int changes = 0;
    player.OnChanged = [&] { ++changes; };
    player.Start(ChoiceOf("sine:997"));
    EXPECT_TRUE(player.Active());
    EXPECT_FALSE(sound.fineOn);  // not rendered
    sound.fineRoom = 8192;
    loop.DeliverSignals();
    EXPECT_TRUE(sound.fineOn);
    EXPECT_THAT(Volumes(), ElementsAre("playbackBuffer.SetVolume 0"));
    ASSERT_EQ(player.Lines().size(), 1U);
    EXPECT_EQ(player.Lines()[0].hertz, 997.0);
    EXPECT_EQ(changes, 2);
    std::vector<double> signal(1);
    RenderStimulus(PlanStimulus({ParseStimulus("sine:997"), 32000.0})).Fill(1000, signal);
    ASSERT_EQ(sound.fineQueued.size(), 8192U);
    EXPECT_NEAR(std::ldexp(sound.fineQueued[2000], -31), signal[0], 3e-7);
    EXPECT_EQ(sound.fineQueued[2000] & 0xFF, 0);
}

TEST_F(StimulusPlayerTest, TheLevelSliderIsKeptAndAppliedAfterTheEndHasBeenPlayed) {
    Play("sine:997");
    Take(8192);
    log.Clear();
    panel.Controls.sldLevel.UserMoves(-1200);
    panel.Controls.sldLevel.UserReleases();
    EXPECT_EQ(store.Get("Signal Generator", "Level", ""), "-1200");
    EXPECT_THAT(Volumes(), IsEmpty());
    sound.fineWaiting = 3000;
    player.Stop();
    EXPECT_EQ(sound.fineCuts.back(), 50);
    sound.fineWaiting = 1600;
    Take(0);
    EXPECT_TRUE(player.Active());
    EXPECT_THAT(Volumes(), IsEmpty());
    sound.fineWaiting = 0;
    sound.restingCursors = {.play = 1000 * 4, .write = 9000 * 4};
    Take(8192);
    Take(0);
    EXPECT_TRUE(player.Active());
    sound.restingCursors.play = 9000 * 4;
    Take(0);
    EXPECT_FALSE(player.Active());
    EXPECT_THAT(Volumes(), ElementsAre("playbackBuffer.SetVolume -1200"));
    EXPECT_FALSE(sound.fineOn);
    panel.Controls.sldLevel.UserMoves(-300);
    EXPECT_EQ(Volumes().back(), "playbackBuffer.SetVolume -300");
}

TEST_F(StimulusPlayerTest, TheGeneratorCannotStartMeanwhile) {
    panel.MemoryControls.cmdGenAdd.Press();
    panel.MemoryControls.ToneList.UserSelects(0, true);
    ASSERT_TRUE(panel.MemoryControls.cmdStartMemory.Enabled());
    Play("sine:997");
    ExpectStarts(false);
    EXPECT_FALSE(panel.MemoryControls.cmdStartMemory.Enabled());
    panel.MemoryControls.ToneList.UserSelects(0, true);
    EXPECT_FALSE(panel.MemoryControls.cmdStartMemory.Enabled());
    player.StopAtOnce();
    ExpectStarts(true);
    EXPECT_TRUE(panel.MemoryControls.cmdStartMemory.Enabled());
}

TEST_F(StimulusPlayerTest, CannotStartWhileTheGeneratorPlays) {
    panel.Controls.Command1.Press();
    EXPECT_EQ(RefusalOf(ChoiceOf("sine:997")), "The generator plays. Stop it before a stimulus is started.");
    EXPECT_FALSE(player.Active());
    panel.Controls.Command1.Press();
    EXPECT_EQ(RefusalOf(ChoiceOf("sine:997")), "accepted");
}

TEST_F(StimulusPlayerTest, ARefusedChangeLeavesWhatPlays) {
    Play("sine:997");
    StimulusChoice choice = ChoiceOf("sine:997");
    choice.ditherBits = 25;
    EXPECT_EQ(RefusalOf(choice), "A dither of 25 bits has no effect: the output takes 24 bits.");
    EXPECT_EQ(RefusalOf(ChoiceOf("sine:997", 0.0)), "The level 0 dBFS is outside -200 to -0.000003 dBFS.");
    EXPECT_THAT(RefusalOf(ChoiceOf("sine:16000")), testing::HasSubstr("at a rate of 32000 Hz"));
    loop.DeliverSignals();
    EXPECT_TRUE(player.Active());
    EXPECT_TRUE(sound.fineOn);
    EXPECT_EQ(player.Lines().at(0).hertz, 997.0);
}

TEST_F(StimulusPlayerTest, NeedsAnOutput) {
    form.Instrument.Engine.Release();
    EXPECT_EQ(RefusalOf(ChoiceOf("sine:997")), "No output device is open.");
}

TEST_F(StimulusPlayerTest, AChangePlaysAfterWhatPlaysNow) {
    Play("sine:997");
    Take(8192);
    sound.fineWaiting = 2000;
    Play("smpte");
    EXPECT_THAT(sound.fineCuts, ElementsAre(0, 50));
    EXPECT_TRUE(sound.fineOn);
    EXPECT_THAT(Volumes(), ElementsAre("playbackBuffer.SetVolume 0"));
    EXPECT_EQ(player.Lines().size(), 2U);
}

TEST_F(StimulusPlayerTest, OkayInTheDeviceDialogStopsItForGood) {
    Play("sine:997");
    form.ShowDeviceDialog = [this] {
        frmDevices devices(form.DevicesNeeds(files, help), form.DevicesLabels());
        devices.Form_Load();
        devices.cmbOutputMixer.UserSelects(1);
        devices.cmbInputMixer.UserSelects(1);
        devices.cmbSampleRate.UserSelects(0);
        log.Clear();
        devices.cmdOkay.Press();
    };
    form.mnuSelectCard.UserChooses();
    loop.Advance(1s);
    EXPECT_FALSE(player.Active());
    EXPECT_FALSE(sound.fineOn);
    ExpectStarts(true);
    // The old buffer and the new one.
    EXPECT_THAT(Volumes(), ElementsAre("playbackBuffer.SetVolume -600", "playbackBuffer.SetVolume -600"));
}

TEST_F(StimulusPlayerTest, ALossInterruptsItUntilTheDevicesAreBack) {
    Play("sine:997");
    Take(8192);
    log.Clear();
    Lose();
    EXPECT_TRUE(player.Active());
    EXPECT_FALSE(sound.fineOn);
    ExpectStarts(false);
    sound.fineQueued.clear();
    sound.fineRoom = 8192;
    loop.Advance(2500ms);
    EXPECT_EQ(form.Instrument.Engine.CaptureStarts, 2U);
    EXPECT_TRUE(sound.fineOn);
    EXPECT_THAT(Volumes(), ElementsAre("playbackBuffer.SetVolume 0", "playbackBuffer.SetVolume 0"));
    // From the beginning, with its ramp.
    ASSERT_EQ(sound.fineQueued.size(), 8192U);
    EXPECT_EQ(sound.fineQueued[0], 0);
    EXPECT_LT(std::abs(sound.fineQueued[20]), 1 << 25);
}

TEST_F(StimulusPlayerTest, StopDuringALossEndsIt) {
    Play("sine:997");
    Lose();
    player.Stop();
    EXPECT_FALSE(player.Active());
    ExpectStarts(true);
    loop.Advance(5s);
    EXPECT_FALSE(sound.fineOn);
    EXPECT_EQ(Volumes().back(), "playbackBuffer.SetVolume -600");
}

TEST_F(StimulusPlayerTest, ADeviceWithFewerBitsAfterALossEndsItWithTheReason) {
    StimulusChoice choice = ChoiceOf("sine:997");
    choice.ditherBits = 24;
    player.Start(choice);
    loop.DeliverSignals();
    sound.outputBits = 16;
    Lose();
    loop.Advance(5s);
    EXPECT_FALSE(player.Active());
    EXPECT_EQ(player.Trouble(), "A dither of 24 bits has no effect: the output takes 16 bits.");
    player.Start(ChoiceOf("sine:997"));
    EXPECT_EQ(player.Trouble(), "");
}

TEST_F(StimulusPlayerTest, AResultForAStoppedStimulusIsIgnored) {
    player.Start(ChoiceOf("square:997"));
    player.Stop();
    EXPECT_FALSE(player.Active());
    loop.DeliverSignals();
    EXPECT_FALSE(sound.fineOn);
    EXPECT_EQ(loop.WaitingSignals(), 0U);
    {
        StimulusPlayer other({loop, form.Instrument, background});
        other.Start(ChoiceOf("square:997"));
    }
    loop.DeliverSignals();
    EXPECT_FALSE(sound.fineOn);
}

// The whole way on a card of 24 bits. The level slider does not change the samples, and the output level
// remains that of the block meter's output.
TEST(StimulusPlayerOnACard, TheCardTakesTheSamplesUnchanged) {
    FormRig rig;
    rig.store.Save("Signal Generator", "Level", "-600");
    DeviceUnderTestModel model;
    model.bits = 24;
    rig.card.Card().SetDeviceUnderTest(model);
    rig.form.Form_Load();
    std::vector<std::int32_t> taken;
    rig.form.Instrument.Fine.SetSink([&](const FineFrames& frames) {
        taken.insert(taken.end(), frames.samples.begin(), frames.samples.end());
    });
    InlineBackground background(rig.loop);
    StimulusPlayer player({rig.loop, rig.form.Instrument, background, &rig.form.GeneratorPanel});
    StimulusChoice choice = ChoiceOf("sine:997");
    choice.dither = false;
    choice.side = StimulusSide::kLeft;
    player.Start(choice);
    for (int block = 0; block < 40; ++block) {
        rig.Step(1);
        rig.loop.Advance(64ms);
    }
    FormRig without;
    without.form.Form_Load();
    without.Step(40);
    EXPECT_EQ(rig.form.Instrument.Meter.Controls.lblDACLevel.Caption(),
              without.form.Instrument.Meter.Controls.lblDACLevel.Caption());
    const auto first = static_cast<std::size_t>(
        std::find_if(taken.begin(), taken.end(), [](auto sample) { return sample != 0; }) - taken.begin());
    ASSERT_LT(first + 40000, taken.size());
    std::vector<double> signal(20000);
    // The first frame is 0.
    RenderStimulus(PlanStimulus({ParseStimulus("sine:997"), 32000.0})).Fill(1, signal);
    const SampleRounder rounder({24, std::nullopt});
    for (std::size_t n = 160; n < signal.size(); ++n) {
        ASSERT_EQ(taken[first + 2 * n], rounder.Round(signal[n], n, 0)) << n;
        ASSERT_EQ(taken[first + 2 * n + 1], 0) << n;
    }
}

}  // namespace
}  // namespace sonavex
