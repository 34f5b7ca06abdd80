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

// Devices "out-a" and "in-a" run at 96000 and 192000 Hz, and are stored.
struct FastDevicesRig : DevicesRig {
    FastDevicesRig() {
        sound.extendedRates = {{"out-a", {96000, 176400, 192000}},
                               {"in-a", {88200, 96000, 192000}},
                               {"out-b", {88200}},
                               {"in-b", {88200, 96000}}};
        store.Save("SoundCard", "Output", "out-a");
        store.Save("SoundCard", "Input", "in-a");
        store.Save("SoundCard", "SampleRate", "2");
    }
};

TEST(DevicesLoad, OffersTheRatesOfBothDevicesBelowTheSeven) {
    FastDevicesRig rig;
    rig.form.Form_Load();
    EXPECT_THAT(rig.form.cmbSampleRate.Items(),
                ElementsAre("48000", "44100", "32000", "22050", "16000", "8000", "4000", "96000", "192000"));
    EXPECT_EQ(rig.form.cmbSampleRate.Text(), "32000");
}

TEST(DevicesLoad, OffersTheSevenRatesAloneWithoutBothDevices) {
    for (const char* key : {"Output", "Input"}) {
        FastDevicesRig rig;
        rig.store.Save("SoundCard", key, "gone");
        rig.form.Form_Load();
        EXPECT_EQ(rig.form.cmbSampleRate.Count(), 7);
    }
}

TEST(DevicesLoad, OffersTheSevenRatesAloneWhereADeviceCannotBeAsked) {
    for (const char* operation : {"ExtendedPlaybackRates", "ExtendedCaptureRates"}) {
        FastDevicesRig rig;
        rig.log.Fail(operation, RuntimeError(sound_error::kNoDriver, "gone"));
        rig.form.Form_Load();
        EXPECT_EQ(rig.form.cmbSampleRate.Count(), 7);
    }
}

TEST(DevicesLoad, SelectsTheStoredExtendedRate) {
    FastDevicesRig rig;
    rig.store.Save("Face", "ExtendedSampleRate", "192000");
    rig.form.Form_Load();
    EXPECT_EQ(rig.form.cmbSampleRate.Text(), "192000");
    // Neither offered nor an extended rate.
    for (const char* stored : {"88200", "16000", "x"}) {
        FastDevicesRig other;
        other.store.Save("Face", "ExtendedSampleRate", stored);
        other.form.Form_Load();
        EXPECT_EQ(other.form.cmbSampleRate.Text(), "32000") << stored;
    }
}

TEST(DevicesSelection, OffersTheRatesOfTheSelectedDevices) {
    FastDevicesRig rig;
    rig.form.Form_Load();
    rig.form.cmbOutputMixer.UserSelects(1);
    EXPECT_THAT(rig.form.cmbSampleRate.Items(),
                ElementsAre("48000", "44100", "32000", "22050", "16000", "8000", "4000", "88200"));
    rig.form.cmbOutputMixer.UserSelects(0);
    rig.form.cmbInputMixer.UserSelects(1);
    EXPECT_EQ(rig.form.cmbSampleRate.Items().back(), "96000");
    EXPECT_EQ(rig.form.cmbSampleRate.Count(), 8);
}

TEST(DevicesSelection, KeepsTheSelectedRateWhileItIsOffered) {
    FastDevicesRig rig;
    rig.form.Form_Load();
    rig.form.cmbSampleRate.UserSelects(5);
    rig.form.cmbInputMixer.UserSelects(1);
    EXPECT_EQ(rig.form.cmbSampleRate.Text(), "8000");
    rig.form.cmbSampleRate.UserSelects(7);
    EXPECT_EQ(rig.form.cmbSampleRate.Text(), "96000");
    rig.form.cmbInputMixer.UserSelects(0);
    EXPECT_EQ(rig.form.cmbSampleRate.Text(), "96000");
    rig.form.cmbOutputMixer.UserSelects(1);
    EXPECT_EQ(rig.form.cmbSampleRate.Text(), "32000");
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
