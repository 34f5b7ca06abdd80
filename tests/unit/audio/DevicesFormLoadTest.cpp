#include "core/ports/SoundErrors.h"
#include "core/support/EndProgram.h"
#include "support/DevicesRig.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

TEST(DevicesLoad, DoesItsStepsInOrder) {
    DevicesRig rig;
    rig.form.Form_Load();
    EXPECT_THAT(rig.log.Lines(), ElementsAre("Screens", "SetBusyPointer on", "EnumerateCapture",
                                             "EnumeratePlayback", "Yield", "SetBusyPointer off"));
    EXPECT_EQ(rig.form.Frame.Caption(), "Select Sound Devices");
}

TEST(DevicesLoad, OffersEveryDeviceButThePrimary) {
    DevicesRig rig;
    rig.form.Form_Load();
    EXPECT_THAT(rig.form.cmbInputMixer.Items(), ElementsAre("Line A", "Line B"));
    EXPECT_THAT(rig.form.cmbOutputMixer.Items(), ElementsAre("Card A", "Card B"));
    EXPECT_EQ(rig.form.cmbInputMixer.ListIndex(), -1);
    EXPECT_EQ(rig.form.cmbOutputMixer.ListIndex(), -1);
}

TEST(DevicesLoad, OffersNothingOfEmptyOrPrimaryOnlyLists) {
    for (const std::size_t entries : {0U, 1U}) {
        DevicesRig rig;
        rig.sound.captureDevices.resize(entries);
        rig.sound.playbackDevices.resize(entries);
        rig.form.Form_Load();
        EXPECT_THAT(rig.form.cmbInputMixer.Items(), IsEmpty());
        EXPECT_THAT(rig.form.cmbOutputMixer.Items(), IsEmpty());
    }
}

TEST(DevicesLoad, SelectsTheStoredDevices) {
    DevicesRig rig;
    rig.store.Save("SoundCard", "Input", "in-b");
    rig.store.Save("SoundCard", "Output", "out-a");
    rig.form.Form_Load();
    EXPECT_EQ(rig.form.cmbInputMixer.Text(), "Line B");
    EXPECT_EQ(rig.form.cmbOutputMixer.Text(), "Card A");
}

TEST(DevicesLoad, DistinguishesIdentifiersByCase) {
    DevicesRig rig;
    rig.store.Save("SoundCard", "Input", "IN-B");
    rig.store.Save("SoundCard", "Output", "out-a ");
    rig.form.Form_Load();
    EXPECT_EQ(rig.form.cmbInputMixer.ListIndex(), -1);
    EXPECT_EQ(rig.form.cmbOutputMixer.ListIndex(), -1);
}

TEST(DevicesLoad, DistinguishesDevicesOfTheSameName) {
    DevicesRig rig;
    rig.sound.playbackDevices[2].description = rig.sound.playbackDevices[1].description;
    rig.store.Save("SoundCard", "Output", "out-b");
    rig.form.Form_Load();
    EXPECT_EQ(rig.form.cmbOutputMixer.ListIndex(), 1);
}

TEST(DevicesLoad, OffersTheSevenRatesAndSelectsTheStoredOne) {
    DevicesRig fresh;
    fresh.form.Form_Load();
    EXPECT_THAT(fresh.form.cmbSampleRate.Items(),
                ElementsAre("48000", "44100", "32000", "22050", "16000", "8000", "4000"));
    EXPECT_EQ(fresh.form.cmbSampleRate.ListIndex(), 1);
    for (int index = 0; index <= 6; ++index) {
        DevicesRig rig;
        rig.store.Save("SoundCard", "SampleRate", std::to_string(index));
        rig.form.Form_Load();
        EXPECT_EQ(rig.form.cmbSampleRate.ListIndex(), index);
    }
}

TEST(DevicesLoad, RefusesAStoredRateThatIsNone) {
    for (const auto& [stored, number] :
         {std::pair{"x", 13}, std::pair{"7", 5}, std::pair{"-2", 5}, std::pair{"9", 5}, std::pair{"-1", 5}}) {
        DevicesRig rig;
        rig.store.Save("SoundCard", "SampleRate", stored);
        const auto error = Raised([&] {
            rig.form.Form_Load();
            return 0;
        });
        ASSERT_TRUE(error.has_value()) << stored;
        EXPECT_EQ(error->Number(), number);
        EXPECT_THAT(error->what(), EndsWith("section \"SoundCard\", key \"SampleRate\", value \"" +
                                            std::string(stored) + "\" (" + rig.store.Location() + ")"));
        EXPECT_EQ(rig.log.Lines().back(), "SetBusyPointer off");
    }
}

TEST(DevicesLoad, ThatFailsShowsTheDevicesInUse) {
    for (const bool running : {true, false}) {
        DevicesRig rig;
        if (running) rig.LoadRunning();
        for (Label* label : {&rig.lblInput, &rig.lblOutput, &rig.lblSampleRate}) label->SetCaption("Stopped");
        rig.store.Save("Windows", "frmDevices Left", "left");
        EXPECT_THROW(rig.form.Form_Load(), RuntimeError);
        EXPECT_EQ(rig.lblInput.Caption(), running ? "Line A" : "Stopped");
        EXPECT_EQ(rig.lblOutput.Caption(), running ? "Card A" : "Stopped");
        EXPECT_EQ(rig.lblSampleRate.Caption(), running ? "32000" : "Stopped");
    }
}

TEST(DevicesLoad, WarnsOnTheNewerGenerationOnly) {
    for (const std::int32_t version : {5, 6, 10}) {
        DevicesRig rig(version);
        rig.form.Form_Load();
        EXPECT_EQ(rig.form.Label5.Visible(), version >= 6) << version;
    }
}

TEST(DevicesLoad, OffersCancelOnlyWhileTheEngineRuns) {
    DevicesRig stopped;
    stopped.form.Form_Load();
    EXPECT_FALSE(stopped.form.cmdCancel.Enabled());
    DevicesRig running;
    running.LoadRunning();
    EXPECT_TRUE(running.form.cmdCancel.Enabled());
}

TEST(DevicesLoad, GoesWhereTheFormWas) {
    DevicesRig rig;
    rig.store.Save("Windows", "frmDevices Left", "40");
    rig.store.Save("Windows", "frmDevices Top", "60");
    rig.form.Form_Load();
    EXPECT_EQ(rig.form.Frame.Left(), 40);
    EXPECT_EQ(rig.form.Frame.Top(), 60);
    DevicesRig fresh;
    fresh.form.Form_Load();
    EXPECT_EQ(fresh.form.Frame.Left(), 710);
    EXPECT_EQ(fresh.form.Frame.Top(), 390);
}

TEST(DevicesLoad, EndsTheProgramWhenDevicesCannotBeListed) {
    for (const char* operation : {"EnumerateCapture", "EnumeratePlayback"}) {
        DevicesRig rig;
        rig.log.Fail(operation, RuntimeError(sound_error::kUninitialized, "no server"));
        try {
            rig.form.Form_Load();
            ADD_FAILURE() << operation << " did not end the program";
        } catch (const EndProgram& end) {
            EXPECT_EQ(end.status, 1);
            EXPECT_FALSE(end.atOnce);
        }
        EXPECT_THAT(
            rig.log.Of("Message"),
            ElementsAre("Message critical No Sound Card found and/or DirectX is currupt.\r\rProgram will "
                        "terminate."));
        EXPECT_EQ(rig.log.Lines().back(), "SetBusyPointer off");
    }
}

}  // namespace
}  // namespace sonavex
