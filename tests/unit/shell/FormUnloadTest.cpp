#include <gmock/gmock.h>

#include "core/support/EndProgram.h"
#include "support/FakeSoundSystem.h"
#include "support/FormRig.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

TEST(Shutdown, CallsThePortsInItsOrder) {
    World world;
    FakeSoundSystem sound(world.log);
    frmMain form(world.On(sound));
    form.Form_Load();
    world.log.Clear();
    form.Form_QueryUnload();
    std::vector<std::string> order;
    for (const std::string& line : world.log.Lines())
        if (line.find("DestroyEvent") == std::string::npos) order.push_back(line.substr(0, line.find(' ')));
    EXPECT_THAT(order, ElementsAre("captureBuffer.Stop", "playbackBuffer.Stop", "UnloadDialogs",
                                   "SaveAndRestoreInitial", "~playbackDevice", "~playbackBuffer",
                                   "~captureBuffer", "~captureDevice"));
    EXPECT_EQ(world.store.Get("Windows", "LastTab", "none"), "0");
    EXPECT_EQ(world.store.Get("Signal Generator", "NumberOfTones", "none"), "0");
    EXPECT_NE(world.store.Get("Windows", "frmMain Left", "none"), "none");
}

TEST(Shutdown, HappensOnce) {
    FormRig rig;
    rig.form.Form_Load();
    int unloaded = 0;
    rig.form.OnClosed = [&](int) { ++unloaded; };
    rig.form.mnuExit.UserChooses();
    rig.log.Clear();
    rig.form.Form_QueryUnload();
    EXPECT_EQ(unloaded, 1);
    EXPECT_TRUE(rig.log.Lines().empty());
}

TEST(Shutdown, OfAStartThatEndedEarlySavesOnlyWhatWasRead) {
    FormRig rig;
    rig.card.Unplug();
    EXPECT_THROW(rig.form.Form_Load(), EndProgram);
    rig.form.Form_QueryUnload();
    EXPECT_EQ(rig.store.Get("Windows", "LastTab", "none"), "none");
    EXPECT_TRUE(rig.log.Of("SaveAndRestoreInitial").empty());
    EXPECT_NE(rig.store.Get("Windows", "frmMain Left", "none"), "none");
}

TEST(Closing, WaitsForATickToEnd) {
    FormRig rig;
    rig.form.Form_Load();
    bool unloaded = false;
    rig.form.OnClosed = [&](int) { unloaded = true; };
    SignalControls& signal = rig.form.GeneratorPanel.Controls;
    signal.sldEndFreq.UserMoves(5000);
    signal.sldSweepTime.UserMoves(1000);
    signal.sldSweepTime.UserReleases();
    signal.Command1.Press();
    ASSERT_TRUE(rig.form.Instrument.HiTimer1.Enabled());
    bool unloadedInsideTick = false;
    bool asked = false;
    rig.loop.OnYield([&] {
        if (!rig.form.Instrument.HiTimer1.Ticking()) return;
        if (!asked) rig.form.Unload();
        asked = true;
        unloadedInsideTick = unloadedInsideTick || unloaded;
    });
    rig.form.Instrument.HiTimer1.Tick();
    EXPECT_TRUE(asked);
    EXPECT_FALSE(unloadedInsideTick);
    rig.loop.OnYield({});
    rig.loop.DeliverSignals();
    EXPECT_TRUE(unloaded);
}

TEST(Closing, IsTheSameByTheButton) {
    FormRig rig;
    rig.form.Form_Load();
    int unloaded = 0;
    rig.form.OnClosed = [&](int) { ++unloaded; };
    rig.log.Clear();
    rig.form.cmdExit.Press();
    EXPECT_EQ(unloaded, 1);
    EXPECT_THAT(rig.log.Lines(), ElementsAre("UnloadDialogs", "SaveAndRestoreInitial"));
}

TEST(Ending, KeepsItsStatusAndWaitsForATickToo) {
    FormRig rig;
    rig.form.Form_Load();
    std::vector<int> statuses;
    rig.form.OnClosed = [&](int status) { statuses.push_back(status); };
    SignalControls& signal = rig.form.GeneratorPanel.Controls;
    signal.sldSweepTime.UserMoves(1000);
    signal.sldSweepTime.UserReleases();
    signal.Command1.Press();
    bool asked = false;
    rig.loop.OnYield([&] {
        if (!asked) rig.form.Guard.Run([] { throw EndProgram{3}; });
        asked = true;
        EXPECT_TRUE(statuses.empty());
    });
    rig.form.Instrument.HiTimer1.Tick();
    rig.loop.OnYield({});
    rig.form.Unload();
    rig.loop.DeliverSignals();
    EXPECT_TRUE(asked);
    EXPECT_THAT(statuses, ElementsAre(3));
}

TEST(Closing, WaitsForARestartOfTheEngine) {
    FormRig rig;
    rig.form.Form_Load();
    bool unloaded = false;
    rig.form.OnClosed = [&](int) { unloaded = true; };
    bool asked = false;
    rig.loop.OnYield([&] {
        if (!asked) rig.form.Unload();
        asked = true;
        EXPECT_FALSE(unloaded);
    });
    EXPECT_TRUE(rig.form.Instrument.Engine.ReStart());
    EXPECT_TRUE(asked);
    rig.loop.OnYield({});
    rig.loop.DeliverSignals();
    EXPECT_TRUE(unloaded);
}

class FailingStep : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(OfTheShutdown, FailingStep,
                         testing::Values("UnloadDialogs", "SaveAndRestoreInitial"));

TEST_P(FailingStep, IsShownAndLosesNoOther) {
    World world;
    FakeSoundSystem sound(world.log);
    frmMain form(world.On(sound));
    form.Form_Load();
    int status = -1;
    form.OnClosed = [&](int asked) { status = asked; };
    world.log.Fail(GetParam(), RuntimeError(error_number::kInvalidCall, "broken"));
    world.log.Clear();
    form.Unload();
    EXPECT_EQ(status, 0);
    EXPECT_THAT(world.log.Of("Message"), ElementsAre("Message critical Run-time error '5':\r\rbroken"));
    EXPECT_EQ(world.log.Count("WriteLine"), 1U);
    EXPECT_EQ(world.log.Count("SaveAndRestoreInitial"), 1U);
    EXPECT_EQ(world.log.Count("~captureBuffer"), 1U);
    EXPECT_EQ(world.store.Get("Windows", "LastTab", "none"), "0");
    EXPECT_EQ(world.store.Get("Signal Generator", "NumberOfTones", "none"), "0");
    EXPECT_NE(world.store.Get("Windows", "frmMain Top", "none"), "none");
}

TEST(StreamError, OfThePlaybackSideIsShownOnce) {
    World world;
    FakeSoundSystem sound(world.log);
    frmMain form(world.On(sound));
    form.Form_Load();
    world.log.Fail("playbackBuffer.GetCurrentPosition", RuntimeError(error_number::kInvalidCall, "stuck"));
    world.log.Clear();
    const auto fire = [&](std::size_t segment) {
        try {
            sound.FireSegment(segment);
        } catch (const RuntimeError&) {
            form.Guard.StreamError(std::current_exception());
        }
    };
    fire(0);
    fire(1);
    EXPECT_EQ(world.log.Count("Message"), 1U);
    EXPECT_EQ(world.log.Count("playbackBuffer.GetCurrentPosition"), 2U);
    world.log.Heal("playbackBuffer.GetCurrentPosition");
    fire(2);
    world.log.Fail("playbackBuffer.GetCurrentPosition", RuntimeError(error_number::kInvalidCall, "stuck"));
    fire(3);
    EXPECT_EQ(world.log.Count("Message"), 2U);
}

TEST(OpenMessage, DropsAndCountsNotifications) {
    World world;
    FakeSoundSystem sound(world.log);
    frmMain form(world.On(sound));
    form.Form_Load();
    sound.FireSegment(0);
    world.dialogs.WhileMessage = [&] {
        sound.FireSegment(1);
        sound.FireSegment(2);
    };
    form.Guard.Run([] { throw RuntimeError(error_number::kOverflow); });
    EXPECT_EQ(form.Instrument.Engine.DroppedNotifications, 2U);
    EXPECT_EQ(form.Instrument.Engine.Blocks, 1U);
    sound.FireSegment(3);
    EXPECT_EQ(form.Instrument.Engine.Blocks, 2U);
    EXPECT_EQ(form.Instrument.Engine.DroppedNotifications, 2U);
}

TEST(Path, IsShownAndFollowed) {
    World world;
    FakeSoundSystem sound(world.log);
    sound.inputPathNote = "resampled";
    frmMain form(world.On(sound));
    form.Form_Load();
    EXPECT_EQ(form.PathNote.Caption(), "Input: resampled");
    sound.inputPathNote.clear();
    sound.outputPathNote = "volume of the device 50 %";
    world.loop.Advance(std::chrono::milliseconds(1100));
    EXPECT_EQ(form.PathNote.Caption(), "Output: volume of the device 50 %");
    sound.inputPathNote = "resampled";
    world.loop.Advance(std::chrono::milliseconds(1000));
    EXPECT_EQ(form.PathNote.Caption(), "Input: resampled\rOutput: volume of the device 50 %");
    form.Form_QueryUnload();
    EXPECT_EQ(world.loop.Timers(), 0U);
}

TEST(Path, ShowsTheBitsOfTheDevices) {
    World world;
    FakeSoundSystem sound(world.log);
    sound.inputBits = sound.outputBits = 24;
    frmMain form(world.On(sound));
    EXPECT_EQ(form.lblBits.Caption(), "") << "no devices";
    form.Form_Load();
    EXPECT_EQ(form.lblBits.Caption(), "24 bit");
    sound.outputBits = 16;
    sound.outputPathNote = "The samples are converted.";
    world.loop.Advance(std::chrono::milliseconds(1100));
    EXPECT_EQ(form.lblBits.Caption(), "in 24 · out 16 bit");
    EXPECT_EQ(form.PathNote.Caption(), "Output: The samples are converted; 16 bit");
    EXPECT_EQ(form.lblSampleRate.Caption(), std::to_string(form.Instrument.Shared.SampleRate));
    sound.outputPathNote = "The samples are converted, with 16 bits.";
    world.loop.Advance(std::chrono::milliseconds(1000));
    EXPECT_EQ(form.PathNote.Caption(), "Output: The samples are converted, with 16 bits.");
}

TEST(Path, ShowsNoBitsWhileDevicesAreSelected) {
    World world;
    FakeSoundSystem sound(world.log);
    sound.inputBits = sound.outputBits = 24;
    frmMain form(world.On(sound));
    form.Form_Load();
    std::string shown;
    form.ShowDeviceDialog = [&] {
        shown = form.lblSampleRate.Caption() + form.lblBits.Caption();
        world.loop.Advance(std::chrono::milliseconds(1100));
        shown += form.lblBits.Caption();
        sound.inputBits = sound.outputBits = 16;
    };
    form.mnuSelectCard.UserChooses();
    EXPECT_EQ(shown, "Stopped");
    EXPECT_EQ(form.lblBits.Caption(), "16 bit");
}

TEST(Path, ShowsAnInputThatUsesOnly16Bits) {
    World world;
    FakeSoundSystem sound(world.log);
    sound.inputBits = 24;
    sound.outputBits = 32;
    frmMain form(world.On(sound));
    form.Form_Load();
    const auto seconds = [&](int count) {
        for (int i = 0; i < count; ++i) {
            sound.FireSegment(static_cast<std::size_t>(i % 4));
            form.Instrument.Engine.SilentBlocks = 100;
            sound.movedBits = 0x12340000;
            world.loop.Advance(std::chrono::milliseconds(1000));
        }
    };
    seconds(10);
    EXPECT_EQ(form.lblBits.Caption(), "in 24 · out 32 bit");
    seconds(2);
    EXPECT_EQ(form.lblBits.Caption(), "in 24, 16 used · out 32 bit");
    sound.outputBits = 24;
    seconds(1);
    EXPECT_EQ(form.lblBits.Caption(), "24 bit, 16 used");
}

TEST(Restart, BringsBackWhatWasStored) {
    FormRig first;
    first.form.Form_Load();
    first.form.TabStrip1.UserSelects(1);
    first.form.Frame.Move(120, 80);
    first.form.Instrument.Meter.Controls.chkMuteOutput.UserSets(false);
    first.form.GeneratorPanel.Controls.sldStartFreq.UserMoves(440);
    first.form.GeneratorPanel.MemoryControls.cmdGenAdd.Press();
    first.form.Unload();

    FormRig second;
    second.store = first.store;
    second.form.Form_Load();
    EXPECT_EQ(second.form.TabStrip1.Index(), 1);
    EXPECT_EQ(second.form.Frame.Left(), 120);
    EXPECT_EQ(second.form.Frame.Top(), 80);
    EXPECT_FALSE(second.form.Instrument.Meter.Controls.chkMuteOutput.Checked());
    EXPECT_EQ(second.form.GeneratorPanel.Controls.sldStartFreq.Value(), 440);
    ASSERT_EQ(second.form.GeneratorPanel.MemoryControls.ToneList.Count(), 1);
    EXPECT_EQ(second.form.GeneratorPanel.MemoryControls.ToneList.List(0), "440Hz / NA / Sine / NA / No Loop");
}

TEST(LowerRate, ClampsTheFrequenciesAndShowsThem) {
    FormRig rig;
    rig.form.Form_Load();
    rig.form.GeneratorPanel.Controls.sldStartFreq.UserMoves(15000);
    rig.form.GeneratorPanel.Controls.sldEndFreq.UserMoves(15500);
    rig.form.Instrument.Shared.SampleRate = 16000;
    ASSERT_TRUE(rig.form.Instrument.Engine.ReStart());
    EXPECT_EQ(rig.form.GeneratorPanel.Controls.sldEndFreq.Max(), 8000);
    EXPECT_EQ(rig.form.GeneratorPanel.Controls.sldEndFreq.Value(), 8000);
    EXPECT_EQ(rig.form.GeneratorPanel.Controls.txtGenEndFreq.Text(), "8000");
    EXPECT_EQ(rig.form.GeneratorPanel.Controls.sldStartFreq.Max(), 8000);
    EXPECT_EQ(rig.form.GeneratorPanel.Controls.sldStartFreq.Min(), 1);
    EXPECT_EQ(rig.form.GeneratorPanel.Controls.sldStartFreq.Value(), 8000);
    EXPECT_EQ(rig.form.GeneratorPanel.Controls.txtGenFreq.Text(), "8000");
    EXPECT_EQ(rig.form.Instrument.Meter.Generator.Tones[0].StartFrequency, 8000.0);
}

TEST(Level, ReachesThePlaybackBufferThroughTheForm) {
    World world;
    FakeSoundSystem sound(world.log);
    frmMain form(world.On(sound));
    form.Form_Load();
    world.log.Clear();
    form.GeneratorPanel.Controls.sldLevel.UserMoves(-600);
    EXPECT_THAT(world.log.Of("playbackBuffer.SetVolume"), ElementsAre("playbackBuffer.SetVolume -600"));
}

}  // namespace
}  // namespace sonavex
