// The whole program with faults of a private sound server.

#include "support/PipeWireServer.h"
#include "support/PulseServer.h"
#include "support/alsa/LoopCards.h"
#include "system/faults/FaultRig.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::IsEmpty;

const NullSink kCard{"card", 32000, "TestCard"};
const NullSink kOther{"other", 32000, "OtherCard"};

constexpr const char* kOnTheServer = "[SoundCard]\nInput=card.monitor\nOutput=card\nSampleRate=2\n";
constexpr const char* kOnBoth = "[SoundCard]\nInput=other.monitor\nOutput=card\nSampleRate=2\n";

class ServerFaults : public FaultRig {
protected:
    ServerFaults() { wire = FineUser::Wire::kMaySkip; }

    static void Use(const SoundServer& server) { setenv("PULSE_SERVER", server.Address().c_str(), 1); }

    // The protocol server dies and returns after a while. Only the loss is reported.
    void CheckDeathOf(SoundServer& server) {
        Use(server);
        Twice([&] {
            ExpectMeasuring();
            server.Kill();
            ExpectLoss("The connection to the sound server was lost.");
            EXPECT_EQ(User().Selections, 0);
            WaitInQt(3s);
            EXPECT_TRUE(Form().Instrument.Watch.Stopped());
            EXPECT_TRUE(Note().isVisible());
            server.Restart();
            ExpectReturn();
            ExpectLoop();
        });
    }

    void CheckUnloadingAt(const SoundServer& server) {
        Use(server);
        Store(kOnTheServer);
        std::string module = server.LoadNullSink(kCard);
        Twice([&] {
            ExpectMeasuring();
            server.Control({"unload-module", module});
            ExpectLoss("has been removed");
            WaitInQt(2s);
            EXPECT_TRUE(Form().Instrument.Watch.Stopped());
            module = server.LoadNullSink(kCard);
            ExpectReturn();
            ExpectLoop();
        });
    }

    // A hung server is not reported by anything; it is detected by missing data.
    void CheckPauseOf(SoundServer& server) {
        Use(server);
        Twice([&] {
            ExpectMeasuring();
            server.Pause();
            ExpectLoss("has stopped delivering sound");
            WaitInQt(3s);
            EXPECT_TRUE(Form().Instrument.Watch.Stopped());
            server.Continue();
            ExpectReturn();
            ExpectLoop();
        });
    }

    // Waits, because PipeWire is slow.
    static void MakeDefault(const SoundServer& server, const std::string& sink) {
        server.Control({"set-default-sink", sink});
        server.Control({"set-default-source", sink + ".monitor"});
        ASSERT_TRUE(WaitInQt(kLimit, [&] {
            return server.Control({"get-default-sink"}) == sink &&
                   server.Control({"get-default-source"}) == sink + ".monitor";
        }));
    }

    // The stream stays on its device; a stream opened later follows the default.
    void CheckDefaultOf(const SoundServer& server) {
        Use(server);
        Twice([&] {
            MakeDefault(server, "card");
            EXPECT_TRUE(Form().Instrument.Engine.ReStart());
            ExpectMeasuring();
            EXPECT_EQ(Form().lblOutput.Caption(), "TestCard");
            MakeDefault(server, "other");
            WaitInQt(500ms);
            ExpectMeasuring();
            EXPECT_EQ(Form().lblOutput.Caption(), "TestCard");
            EXPECT_TRUE(Form().Instrument.Engine.ReStart());
            ExpectMeasuring();
            EXPECT_EQ(Form().lblOutput.Caption(), "OtherCard");
            EXPECT_EQ(Form().lblInput.Caption(), "Monitor of OtherCard");
            ExpectLoop();
            EXPECT_THAT(User().Errors, IsEmpty());
        });
    }

    // Many restarts without a pause.
    void CheckRestartsOn(const SoundServer& server) {
        Use(server);
        Run([&] {
            ExpectMeasuring();
            const auto restart = [&](int times) {
                for (int i = 0; i < times; ++i) {
                    ASSERT_TRUE(Form().Instrument.Engine.ReStart()) << i;
                    if (i % 20 == 0) WaitInQt(30ms);
                }
                ExpectMeasuring();
            };
            restart(20);
            const Holdings before = Holdings::Now();
            restart(200);
            ExpectNothingKept(before);
            EXPECT_THAT(User().Errors, IsEmpty());
        });
    }
};

TEST_F(ServerFaults, PulseAudioKilledAndStartedAgain) {
    PulseServer server({kCard});
    CheckDeathOf(server);
}

TEST_F(ServerFaults, PipeWireKilledAndStartedAgain) {
    PipeWireServer server({kCard});
    CheckDeathOf(server);
}

TEST_F(ServerFaults, SinkOfPulseAudioUnloadedAndLoadedAgain) {
    CheckUnloadingAt(PulseServer({kOther}));
}

TEST_F(ServerFaults, SinkAbove48kHzUnloadedAndLoadedAgain) {
    const NullSink fast{"card", 96000, "TestCard", "s32le"};
    const PulseServer server({kOther});
    Use(server);
    Store(kOnTheServer + std::string("[Face]\nExtendedSampleRate=96000\n"));
    fineBits = 24;
    std::string module = server.LoadNullSink(fast);
    Run([&] {
        ExpectMeasuring();
        server.Control({"unload-module", module});
        ExpectLoss("has been removed");
        module = server.LoadNullSink(fast);
        ExpectReturn();
        EXPECT_EQ(Form().lblSampleRate.Caption(), "96000");
        ExpectFineLoop();
    });
}

TEST_F(ServerFaults, SinkOfPipeWireUnloadedAndLoadedAgain) {
    CheckUnloadingAt(PipeWireServer({kOther}));
}

TEST_F(ServerFaults, SourceUnloadedAndLoadedAgain) {
    const PulseServer server({kCard});
    Use(server);
    Store(kOnBoth);
    std::string module = server.LoadNullSink(kOther);
    Twice([&] {
        ExpectMeasuring();
        server.Control({"unload-module", module});
        ExpectLoss("'Monitor of OtherCard' has been removed");
        module = server.LoadNullSink(kOther);
        ExpectReturn();
        EXPECT_EQ(Form().lblInput.Caption(), "Monitor of OtherCard");
    });
}

// The devices are still listed, so the user is asked to choose and chooses the same once they run.
TEST_F(ServerFaults, SinkSuspendedAndResumed) {
    const PulseServer server({kCard});
    Use(server);
    Store(kOnTheServer);
    onSelection = [&](QDialog&) {
        EXPECT_TRUE(Note().isVisible());
        server.Control({"suspend-sink", "card", "0"});
    };
    Twice([&] {
        ExpectMeasuring();
        server.Control({"suspend-sink", "card", "1"});
        ExpectLoss("has been suspended");
        EXPECT_EQ(User().Selections, 1);
        ExpectReturn();
        ExpectLoop();
    });
}

// A sink suspended briefly during the selection is not reported. Selecting a suspended device gives a second
// message.
TEST_F(ServerFaults, SinkStaysSuspendedAfterTheSelection) {
    const PulseServer server({kCard});
    Use(server);
    Store(kOnTheServer);
    onSelection = [&](QDialog&) {
        if (User().Selections == 2) server.Control({"suspend-sink", "card", "0"});
    };
    Twice([&] {
        ExpectMeasuring();
        server.Control({"suspend-sink", "card", "1"});
        EXPECT_TRUE(WaitInQt(kLimit, [&] { return User().Selections == 2; }));
        ExpectMeasuring();
        EXPECT_EQ(User().Errors.size(), 2U);
    });
}

// PipeWire reports such a sink as running and delivers silence. The meter shows silence, and a restart uses
// the sink again.
TEST_F(ServerFaults, SinkOfPipeWireSuspendedAndResumed) {
    const PipeWireServer server({kCard});
    Use(server);
    Store(kOnTheServer);
    Twice([&] {
        ExpectLoop();
        PlayFine(false);
        Form().GeneratorPanel.Controls.Command1.Press();
        server.Control({"suspend-sink", "card", "1"});
        EXPECT_TRUE(WaitInQt(kLimit, [&] {
            return Form().Instrument.Watch.Stopped() || !Form().Instrument.Meter.Analysis().FreqLocked;
        }));
        server.Control({"suspend-sink", "card", "0"});
        Form().GeneratorPanel.Controls.Command1.Press();
        PlayFine(true);
        EXPECT_TRUE(Form().Instrument.Engine.ReStart());
        ExpectMeasuring();
        ExpectLoop();
    });
}

// The input continues without the output.
TEST_F(ServerFaults, OnlyTheOutputUnloaded) {
    const PulseServer server({kOther});
    Use(server);
    Store(kOnBoth);
    std::string module = server.LoadNullSink(kCard);
    Twice([&] {
        ExpectMeasuring();
        server.Control({"unload-module", module});
        ExpectLoss("'TestCard' has been removed");
        module = server.LoadNullSink(kCard);
        ExpectReturn();
    });
}

// The remaining cards are not the device that was measured, so the program neither asks nor switches.
TEST_F(ServerFaults, ServerKilledWhileACardRemains) {
    const LoopCards cards(CardList{{"spare", "Spare card"}});
    PulseServer server({kCard});
    Use(server);
    Twice([&] {
        ExpectMeasuring();
        server.Kill();
        ExpectLoss("The connection to the sound server was lost.");
        EXPECT_EQ(User().Selections, 0);
        WaitInQt(3s);
        EXPECT_TRUE(Form().Instrument.Watch.Stopped());
        server.Restart();
        ExpectReturn();
        EXPECT_EQ(Form().lblOutput.Caption(), "TestCard");
    });
}

// The device is removed while the selection is open, and selected again when it is back.
TEST_F(ServerFaults, SinkUnloadedWhileDevicesAreSelected) {
    const PulseServer server({kOther});
    Use(server);
    Store(kOnTheServer);
    std::string module = server.LoadNullSink(kCard);
    onSelection = [&](QDialog&) {
        if (User().Selections == 1) {
            server.Control({"unload-module", module});
            EXPECT_TRUE(WaitInQt(kHangLimit, [&] { return Note().isVisible(); }));
        } else {
            module = server.LoadNullSink(kCard);
        }
    };
    Twice([&] {
        ExpectMeasuring();
        Form().mnuSelectCard_Click();
        EXPECT_EQ(User().Selections, 2);
        EXPECT_EQ(User().Errors.size(), 1U);
        ExpectMeasuring();
    });
}

// The level is changed while there is no stream, and applies when the device is back.
TEST_F(ServerFaults, LevelMovedWhileTheServerIsGone) {
    PulseServer server({kCard});
    Use(server);
    Run([&] {
        ExpectMeasuring();
        server.Kill();
        ExpectLoss("The connection to the sound server was lost.");
        Form().GeneratorPanel.Controls.sldLevel.UserMoves(-600);
        server.Restart();
        ExpectReturn();
        PlayFine(false);
        Form().GeneratorPanel.Controls.Command1.Press();
        // Half of a quarter of full scale.
        EXPECT_TRUE(WaitInQt(kLimit, [&] {
            return Form().Instrument.Meter.Controls.LblLevel.Caption() == "13";
        })) << Form().Instrument.Meter.Controls.LblLevel.Caption();
        Form().GeneratorPanel.Controls.Command1.Press();
    });
}

TEST_F(ServerFaults, VolumesChangedMeanwhileAreSaid) {
    const PulseServer server({kCard});
    Use(server);
    Run([&] {
        ExpectMeasuring();
        const auto expectNote = [&](const std::string& note) {
            EXPECT_TRUE(WaitInQt(kLimit, [&] { return Form().PathNote.Caption() == note; }))
                << Form().PathNote.Caption();
        };
        const auto stream = [&](const char* kind) {
            const std::string list = server.Control({"list", "short", kind});
            return list.substr(0, list.find('\t'));
        };
        expectNote("");
        server.Control({"set-sink-volume", "card", "50%"});
        expectNote("Output: volume of the device 50 %");
        server.Control({"set-sink-volume", "card", "100%"});
        server.Control({"set-sink-input-volume", stream("sink-inputs"), "70%"});
        server.Control({"set-source-output-mute", stream("source-outputs"), "1"});
        expectNote("Input: muted by the sound server\rOutput: volume of the stream 70 %");
        server.Control({"set-sink-input-volume", stream("sink-inputs"), "100%"});
        server.Control({"set-source-output-mute", stream("source-outputs"), "0"});
        expectNote("");
    });
}

TEST_F(ServerFaults, PulseAudioPausesAndResumes) {
    PulseServer server({kCard});
    CheckPauseOf(server);
}

TEST_F(ServerFaults, PipeWirePausesAndResumes) {
    PipeWireServer server({kCard});
    CheckPauseOf(server);
}

TEST_F(ServerFaults, DefaultDeviceOfPulseAudioChanged) {
    CheckDefaultOf(PulseServer({kCard, kOther}));
}

TEST_F(ServerFaults, DefaultDeviceOfPipeWireChanged) {
    CheckDefaultOf(PipeWireServer({kCard, kOther}));
}

TEST_F(ServerFaults, TwoHundredRestartsOnPulseAudio) {
    CheckRestartsOn(PulseServer({kCard}));
}

TEST_F(ServerFaults, TwoHundredRestartsOnPipeWire) {
    CheckRestartsOn(PipeWireServer({kCard}));
}

}  // namespace
}  // namespace sonavex
