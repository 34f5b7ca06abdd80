#include <gmock/gmock.h>

#include "core/ports/SoundErrors.h"
#include "core/support/EndProgram.h"
#include "support/FakeSoundSystem.h"
#include "support/FormRig.h"
#include "support/ReportFakes.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

// The main form on scripted devices, with the selection of devices driven by the test.
struct SelectingForm : World {
    SelectingForm() {
        store.Save("SoundCard", "Output", "out-a");
        store.Save("SoundCard", "Input", "in-a");
    }
    void Load() {
        form.Form_Load();
        log.Clear();
    }
    std::vector<std::string> Captions() const {
        return {form.lblInput.Caption(), form.lblOutput.Caption(), form.lblSampleRate.Caption()};
    }

    FakeSoundSystem sound{log};
    frmMain form{On(sound)};
};

TEST(SelectCard, SaysStoppedUnloadsTheMixersAndShowsTheDialog) {
    SelectingForm world;
    world.Load();
    std::vector<std::string> captions;
    world.form.ShowDeviceDialog = [&] {
        captions = world.Captions();
        world.log.Note("dialog");
    };
    world.form.mnuSelectCard.UserChooses();
    EXPECT_THAT(captions, ElementsAre("Stopped", "Stopped", "Stopped"));
    EXPECT_THAT(world.log.Lines(), ElementsAre("UnloadDialogs", "dialog"));
}

TEST(SelectCard, ChangesDevicesAndRateAndStopsTheSignal) {
    SelectingForm world;
    world.Load();
    world.form.GeneratorPanel.Controls.Command1.Press();
    ASSERT_TRUE(world.form.Instrument.Meter.Generator.SweepRunning);
    bool closed = false;
    world.form.ShowDeviceDialog = [&] {
        frmDevices devices(world.form.DevicesNeeds(world.files, world.help), world.form.DevicesLabels());
        devices.OnClosed = [&] { closed = true; };
        devices.Form_Load();
        EXPECT_EQ(devices.cmbOutputMixer.Text(), "Card A");
        devices.cmbOutputMixer.UserSelects(1);
        devices.cmbInputMixer.UserSelects(1);
        devices.cmbSampleRate.UserSelects(0);
        devices.cmdOkay.Press();
    };
    world.form.mnuSelectCard.UserChooses();
    EXPECT_TRUE(closed);
    EXPECT_THAT(world.Captions(), ElementsAre("Line B", "Card B", "48000"));
    EXPECT_FALSE(world.form.Instrument.Meter.Generator.SweepRunning);
    EXPECT_EQ(world.form.GeneratorPanel.Controls.Command1.Caption(), "Start Current");
    EXPECT_EQ(world.form.GeneratorPanel.Controls.sldStartFreq.Max(), 24000);
    EXPECT_EQ(world.log.Count("SetUpSoundControls"), 1U);
}

// Only its ticks move the sweep, not the time that the devices take.
TEST(SelectCard, DoesNotMoveASweepWhenTheEngineIsRebuilt) {
    SelectingForm world;
    world.store.Save("Signal Generator", "Current Signal Sweep Time", "980");
    world.Load();
    world.form.GeneratorPanel.Controls.Command1.Press();
    world.loop.Advance(std::chrono::milliseconds(10));
    const double& frequencyHz = world.form.Instrument.Meter.Generator.Tones[0].Frequency;
    ASSERT_EQ(frequencyHz, 990.0);
    world.loop.OnYield([&] {
        if (world.form.Instrument.Engine.Restarting()) world.loop.Skip(std::chrono::milliseconds(100));
    });
    EXPECT_TRUE(world.form.Instrument.Engine.ReStart());
    EXPECT_EQ(frequencyHz, 990.0);
    world.loop.Advance(std::chrono::milliseconds(1));
    EXPECT_GE(frequencyHz, 988.0);
}

TEST(SelectCard, StopsMemoryTonesToo) {
    SelectingForm world;
    world.Load();
    MemoryControls& memory = world.form.GeneratorPanel.MemoryControls;
    memory.cmdGenAdd.Press();
    memory.ToneList.UserSelects(0, true);
    memory.cmdStartMemory.Press();
    ASSERT_EQ(memory.cmdStartMemory.Caption(), "Stop Memory");
    frmDevices devices(world.form.DevicesNeeds(world.files, world.help), world.form.DevicesLabels());
    devices.Form_Load();
    devices.cmdOkay.Press();
    EXPECT_EQ(memory.cmdStartMemory.Caption(), "Start Memory");
    EXPECT_FALSE(world.form.Instrument.Meter.Generator.GeneratorRunning);
}

TEST(SelectCard, AtAFailedStartEndsInARunningInstrument) {
    SelectingForm world;
    world.log.Fail("CreateCaptureDevice", RuntimeError(sound_error::kNoDriver, "gone"));
    world.form.ShowDeviceDialog = [&] {
        world.log.Heal("CreateCaptureDevice");
        frmDevices devices(world.form.DevicesNeeds(world.files, world.help), world.form.DevicesLabels());
        devices.Form_Load();
        EXPECT_FALSE(devices.cmdCancel.Enabled());
        devices.cmbInputMixer.UserSelects(1);
        devices.cmdOkay.Press();
    };
    world.form.Form_Load();
    EXPECT_TRUE(world.form.Instrument.Shared.EventsReady);
    EXPECT_THAT(world.Captions(), ElementsAre("Line B", "Card A", "44100"));
    EXPECT_EQ(world.log.Count("WriteErrorLog"), 1U);
}

TEST(EndAtOnce, GivesTheMixersBackAndStoresNothing) {
    SelectingForm world;
    world.Load();
    world.form.GeneratorPanel.MemoryControls.cmdGenAdd.Press();
    const std::size_t stored = world.store.Size();
    world.form.EndAtOnce();
    EXPECT_EQ(world.log.Count("RestoreInitial"), 1U);
    EXPECT_EQ(world.log.Count("SaveAndRestoreInitial"), 0U);
    EXPECT_EQ(world.log.Of("captureBuffer.Stop").size(), 1U);
    EXPECT_EQ(world.log.Of("~captureDevice").size(), 1U);
    EXPECT_EQ(world.store.Size(), stored);
    EXPECT_EQ(world.store.Get("Windows", "LastTab", "(absent)"), "(absent)");
    world.log.Clear();
    world.form.Form_QueryUnload();
    world.form.EndAtOnce();
    EXPECT_THAT(world.log.Lines(), testing::IsEmpty());
}

TEST(EndAtOnce, BeforeTheMixersWereTouchedLeavesThemAlone) {
    SelectingForm world;
    world.log.Fail("CreateCaptureDevice", RuntimeError(sound_error::kNoDriver, "gone"));
    world.form.ShowDeviceDialog = [] { throw EndProgram{1, true}; };
    EXPECT_THROW(world.form.Form_Load(), EndProgram);
    world.form.EndAtOnce();
    EXPECT_EQ(world.log.Count("RestoreInitial"), 0U);
    EXPECT_EQ(world.store.Get("Windows", "frmMain Left", "(absent)"), "(absent)");
}

}  // namespace
}  // namespace sonavex
