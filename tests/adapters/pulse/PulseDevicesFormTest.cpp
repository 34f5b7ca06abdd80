// Selecting other devices while the instrument measures, on real servers.

#include <gmock/gmock.h>

#include <chrono>
#include <cmath>
#include <string>

#include "core/report/DesktopErrorLog.h"
#include "core/text/Numbers.h"
#include "platform/plain/PlainEventLoop.h"
#include "platform/pulse/PulseSoundSystem.h"
#include "support/PipeWireServer.h"
#include "support/PulseServer.h"
#include "support/ReportFakes.h"
#include "support/World.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::EndsWith;
using testing::HasSubstr;

const NullSink kCard{"card", 48000, "TestCard"};
const NullSink kOther{"other", 48000, "OtherCard"};

// The instrument without its window on a server, capturing the monitor of the sink that it plays on.
class ServerForm : public WorldOf<PlainEventLoop> {
public:
    explicit ServerForm(const SoundServer& server) : sound(loop, server.Address()) {
        store.Save("SoundCard", "Output", "card");
        store.Save("SoundCard", "Input", "card.monitor");
        store.Save("SoundCard", "SampleRate", "0");
    }

    // Plays a sine and waits until its frequency is read to the nearest bin.
    bool Measures() {
        CommandButton& start = form.GeneratorPanel.Controls.Command1;
        if (start.Caption() == "Start Current") start.Press();
        const std::uint64_t before = form.Instrument.Engine.Blocks;
        const MeasurementControls& meter = form.Instrument.Meter.Controls;
        const double lineHz = form.Instrument.Shared.SampleRate / 4096.0;
        return loop.RunUntil(
            [&] {
                return form.Instrument.Engine.Blocks > before + 40 &&
                       meter.picLocked.BackColor() == kLightGreen &&
                       std::abs(Val(meter.txtFreq.Text()) - 1000.0) <= lineHz;
            },
            20s);
    }
    static void Select(ComboBox& list, const std::string& text) {
        for (std::int32_t i = 0; i < list.Count(); ++i)
            if (list.Items()[static_cast<std::size_t>(i)] == text) list.UserSelects(i);
        EXPECT_EQ(list.Text(), text);
    }
    // Number of a sink in the server's list, by name.
    static std::string NumberOf(const SoundServer& server, const std::string& sink) {
        const std::string list = "\n" + server.Control({"list", "short", "sinks"});
        const std::size_t end = list.find("\t" + sink + "\t");
        const std::size_t begin = list.rfind('\n', end) + 1;
        return list.substr(begin, end - begin);
    }

    Settings settings{store};
    PulseSoundSystem sound;
    DesktopErrorLog report{{settings, sound, desktop, files, FixedTime}};
    frmMain form{On(sound, report)};
};

// The loaded selection form over the instrument.
struct Selection {
    explicit Selection(ServerForm& rig)
        : form(rig.form.DevicesNeeds(rig.files, rig.help), rig.form.DevicesLabels()) {
        form.OnClosed = [this] { closed = true; };
        form.Form_Load();
    }
    frmDevices form;
    bool closed = false;
};

void CheckSelectionOn(const SoundServer& server) {
    ServerForm rig(server);
    rig.form.Form_Load();
    ASSERT_TRUE(rig.Measures());
    rig.form.ShowDeviceDialog = [&] {
        Selection selection(rig);
        EXPECT_EQ(selection.form.cmbOutputMixer.Text(), "TestCard");
        EXPECT_TRUE(selection.form.cmdCancel.Enabled());
        ServerForm::Select(selection.form.cmbOutputMixer, "OtherCard");
        ServerForm::Select(selection.form.cmbInputMixer, "Monitor of OtherCard");
        selection.form.cmdOkay.Press();
        EXPECT_TRUE(selection.closed);
    };
    rig.form.mnuSelectCard.UserChooses();
    EXPECT_EQ(rig.form.lblOutput.Caption(), "OtherCard");
    EXPECT_EQ(rig.form.lblInput.Caption(), "Monitor of OtherCard");
    EXPECT_EQ(rig.store.Get("SoundCard", "Output", ""), "other");
    EXPECT_FALSE(rig.form.Instrument.Meter.Generator.SweepRunning);
    EXPECT_TRUE(rig.Measures());
    EXPECT_THAT(server.Control({"list", "short", "sink-inputs"}),
                HasSubstr("\t" + ServerForm::NumberOf(server, "other") + "\t"));
    EXPECT_EQ(rig.log.Count("Append"), 0U);
    rig.form.Form_QueryUnload();
}

TEST(PulseDevicesForm, MovesTheMeasurementToAnotherSink) {
    const PulseServer server({kCard, kOther});
    CheckSelectionOn(server);
}

TEST(PulseDevicesForm, MovesTheMeasurementToAnotherSinkOnPipeWire) {
    const PipeWireServer server({kCard, kOther});
    CheckSelectionOn(server);
}

void CheckRatesOn(const SoundServer& server) {
    ServerForm rig(server);
    rig.form.Form_Load();
    for (const char* rate : {"44100", "32000", "48000"}) {
        Selection selection(rig);
        ServerForm::Select(selection.form.cmbSampleRate, rate);
        selection.form.cmdOkay.Press();
        EXPECT_TRUE(selection.closed) << rate;
        EXPECT_EQ(rig.form.lblSampleRate.Caption(), rate);
        EXPECT_TRUE(rig.Measures()) << rate;
    }
    rig.form.Form_QueryUnload();
}

TEST(PulseDevicesForm, ChangesTheRate) {
    const PulseServer server({kCard});
    CheckRatesOn(server);
}

TEST(PulseDevicesForm, ChangesTheRateOnPipeWire) {
    const PipeWireServer server({kCard});
    CheckRatesOn(server);
}

// A card is unloaded between the list and Okay: one record, and another card can be selected.
void CheckVanishedOn(const SoundServer& server) {
    const std::string module = server.LoadNullSink(kOther);
    ServerForm rig(server);
    int shown = 0;
    rig.report.ShowDialog = [&] { ++shown; };
    rig.form.Form_Load();
    Selection selection(rig);
    ServerForm::Select(selection.form.cmbOutputMixer, "OtherCard");
    server.Control({"unload-module", module});
    selection.form.cmdOkay.Press();
    EXPECT_FALSE(selection.closed);
    EXPECT_FALSE(rig.form.Instrument.Shared.EventsReady);
    EXPECT_EQ(shown, 1);
    const std::string record = rig.files.files["Quenby Error.txt"];
    EXPECT_THAT(record, HasSubstr("Check proper sound card installation\n"));
    EXPECT_THAT(record, HasSubstr("88780078/-2005401480/DSERR_NODRIVER\n"));
    EXPECT_THAT(record, HasSubstr("Output Guid: other\n"));
    EXPECT_THAT(record, HasSubstr("TestCard\ncard\nmodule-null-sink.c\n\n"));
    EXPECT_THAT(record, HasSubstr("card.monitor****** Selected *******\n"));
    EXPECT_THAT(record, EndsWith("+ END ++++++++++++++++++++++++++++++++++++++\n"));
    ServerForm::Select(selection.form.cmbOutputMixer, "TestCard");
    selection.form.cmdOkay.Press();
    EXPECT_TRUE(selection.closed);
    EXPECT_EQ(rig.files.files.count("Quenby Error.txt"), 0U);
    EXPECT_TRUE(rig.Measures());
    rig.form.Form_QueryUnload();
}

TEST(PulseDevicesForm, KeepsOpenForAnotherCardWhenOneIsGone) {
    const PulseServer server({kCard});
    CheckVanishedOn(server);
}

// A start with a missing stored card opens the selection, which asks for another one.
TEST(PulseDevicesForm, StartsThroughTheSelectionWhenTheStoredCardIsGone) {
    const PulseServer server({kCard});
    ServerForm rig(server);
    rig.store.Save("SoundCard", "Output", "gone");
    int shown = 0;
    rig.report.ShowDialog = [&] { ++shown; };
    rig.form.ShowDeviceDialog = [&] {
        Selection selection(rig);
        selection.form.cmdOkay.Press();
        EXPECT_THAT(rig.log.Of("Message"),
                    testing::ElementsAre("Message critical Please select valid Playback/Output device"));
        ServerForm::Select(selection.form.cmbOutputMixer, "TestCard");
        selection.form.cmdOkay.Press();
        EXPECT_TRUE(selection.closed);
    };
    rig.form.Form_Load();
    EXPECT_EQ(shown, 1);
    EXPECT_TRUE(rig.Measures());
    rig.form.Form_QueryUnload();
}

}  // namespace
}  // namespace sonavex
