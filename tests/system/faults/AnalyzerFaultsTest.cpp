// The whole program with an open Analyzer and faults of private sound servers and of cards.

#include <QComboBox>
#include <cmath>
#include <thread>

#include "support/PipeWireServer.h"
#include "support/PulseServer.h"
#include "support/alsa/LoopCards.h"
#include "support/alsa/PlayedEnd.h"
#include "system/faults/FaultRig.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

const NullSink kAnalyzed{"card", 32000, "TestCard"};
const NullSink kUnused{"other", 32000, "OtherCard"};

// Short records and few averages, so that readings come soon.
constexpr const char* kShortAverages =
    "[SoundCard]\nInput=card.monitor\nOutput=card\nSampleRate=2\n[Analyzer]\nLength=0\nAverages=2\n";
constexpr const char* kShortAveragesOnCard =
    "[SoundCard]\nInput=alsa:card\nOutput=alsa:card\nSampleRate=2\n[Analyzer]\nLength=0\nAverages=2\n";
constexpr const char* kLongAverages =
    "[SoundCard]\nInput=card.monitor\nOutput=card\nSampleRate=2\n[Analyzer]\nLength=0\nAverages=20\n";

class AnalyzerFaults : public FaultRig {
protected:
    using Kind = StateChip::Kind;
    // The time of a reading with these settings, and of the polling, with a busy machine.
    static constexpr auto kNoticeLimit = 2000ms;

    AnalyzerFaults() {
        usesFine = false;
        Store(kShortAverages);
    }

    static void Use(const SoundServer& server) { setenv("PULSE_SERVER", server.Address().c_str(), 1); }

    void StartMeasuring() {
        Analyzer().Show();
        Analyzer().Stimulus.cmdStart.Press();
        ExpectValid();
    }
    // Without a click.
    void ExpectValid() {
        EXPECT_TRUE(WaitInQt(kLimit, [this] { return Analyzer().Chip.State() == Kind::kValid; }))
            << Analyzer().Chip.Text() << Analyzer().Stimulus.lblTrouble.Caption();
        EXPECT_NEAR(std::stod(Analyzer().Readings.Rows[ReadingsPanel::kLevel].value.Caption()), -1.0, 0.01);
    }
    // No figure stays on the screen.
    void ExpectVoid() {
        EXPECT_TRUE(WaitInQt(kNoticeLimit, [this] { return Analyzer().Chip.State() == Kind::kVoid; }))
            << Analyzer().Chip.Text();
        ExpectNoFigure();
    }
    void ExpectNoFigure() {
        EXPECT_EQ(Analyzer().Readings.lblThd.Caption(), "none");
        for (const ReadingRow& row : Analyzer().Readings.Rows) EXPECT_EQ(row.value.Caption(), "");
        EXPECT_TRUE(Analyzer().Readings.Harmonics.Rows().empty());
        EXPECT_EQ(Analyzer().Spectrum.Shown().live, nullptr);
        EXPECT_TRUE(Analyzer().ReportBlock().empty());
    }
    void ExpectReturnOfBoth() {
        EXPECT_TRUE(WaitInQt(kLimit, [this] { return !Form().Instrument.Watch.Stopped(); }));
        ExpectValid();
    }
    // After the selection of devices, which ends the stimulus for good.
    void ExpectValidAfterStart() {
        EXPECT_TRUE(WaitInQt(kLimit, [this] { return !Form().Instrument.Watch.Stopped(); }));
        EXPECT_EQ(Analyzer().Stimulus.cmdStart.Caption(), "Start");
        Analyzer().Stimulus.cmdStart.Press();
        ExpectValid();
    }

    void CheckDeathOf(SoundServer& server) {
        Use(server);
        Run([&] {
            StartMeasuring();
            server.Kill();
            ExpectVoid();
            ExpectLoss("The connection to the sound server was lost.");
            WaitInQt(1s);
            ExpectNoFigure();
            server.Restart();
            ExpectReturnOfBoth();
        });
    }
    void CheckUnloadingAt(const SoundServer& server) {
        Use(server);
        std::string module = server.LoadNullSink(kAnalyzed);
        Run([&] {
            StartMeasuring();
            server.Control({"unload-module", module});
            ExpectVoid();
            ExpectLoss("has been removed");
            module = server.LoadNullSink(kAnalyzed);
            ExpectReturnOfBoth();
        });
    }
    // Nothing reports a hung server.
    void CheckPauseOf(SoundServer& server) {
        Use(server);
        Run([&] {
            StartMeasuring();
            server.Pause();
            ExpectVoid();
            ExpectLoss("has stopped delivering sound");
            server.Continue();
            ExpectReturnOfBoth();
        });
    }
    // damage and repair change the state of the card.
    void CheckCard(const std::function<void(LoopCardState&)>& damage, const std::string& loss,
                   const std::function<void(LoopCardState&)>& repair) {
        setenv("PULSE_SERVER", "unix:/nonexistent/sonavex", 1);
        LoopCards cards(CardList{{"card", "Test card", {32000}, 2, "S32_LE"}});
        Store(kShortAveragesOnCard);
        onSelection = [&](QDialog&) {
            ExpectVoid();
            repair(cards.State("card"));
        };
        Run([&] {
            StartMeasuring();
            damage(cards.State("card"));
            ExpectLoss(loss);
            ExpectValidAfterStart();
        });
    }
};

TEST_F(AnalyzerFaults, PulseAudioKilledAndStartedAgain) {
    PulseServer server({kAnalyzed});
    CheckDeathOf(server);
}

TEST_F(AnalyzerFaults, PipeWireKilledAndStartedAgain) {
    PipeWireServer server({kAnalyzed});
    CheckDeathOf(server);
}

TEST_F(AnalyzerFaults, SinkOfPulseAudioUnloadedAndLoadedAgain) {
    CheckUnloadingAt(PulseServer({kUnused}));
}

TEST_F(AnalyzerFaults, SinkOfPipeWireUnloadedAndLoadedAgain) {
    CheckUnloadingAt(PipeWireServer({kUnused}));
}

TEST_F(AnalyzerFaults, PulseAudioPausedAndContinued) {
    PulseServer server({kAnalyzed});
    CheckPauseOf(server);
}

TEST_F(AnalyzerFaults, PipeWirePausedAndContinued) {
    PipeWireServer server({kAnalyzed});
    CheckPauseOf(server);
}

TEST_F(AnalyzerFaults, CardUnpluggedAndPluggedInAgain) {
    CheckCard([](LoopCardState& card) { card.unplugged = 1; }, "has been removed.",
              [](LoopCardState& card) { card.unplugged = 0; });
}

TEST_F(AnalyzerFaults, CardSuspendedAndResumed) {
    CheckCard([](LoopCardState& card) { card.suspended = 1; }, "has been suspended.",
              [](LoopCardState& card) { card.suspended = 0; });
}

// The program ends while the tone plays.
TEST_F(AnalyzerFaults, TheEndOfTheProgramEndsTheToneWithARamp) {
    setenv("PULSE_SERVER", "unix:/nonexistent/sonavex", 1);
    LoopCards cards(CardList{{"card", "Test card", {32000}, 2, "S32_LE"}});
    Store(kShortAveragesOnCard);
    Run([&] { StartMeasuring(); });
    const PlayedEnd end = EndOf(PlayedBy(cards.State("card")));
    const double peak = std::pow(10.0, -1.0 / 20.0);
    EXPECT_TRUE(end.silent);
    EXPECT_NEAR(end.loudest, peak, 0.01);
    // The slopes of 1 kHz and of its ramp of 5 ms.
    EXPECT_LE(end.largestStep, peak * (2.0 * M_PI * 1000.0 / 32000 + 0.5 * M_PI / 160));
}

// As after the sleep of the system: the time passes and nothing runs.
TEST_F(AnalyzerFaults, ProgramHeldUp) {
    const PulseServer server({kAnalyzed});
    Use(server);
    Store(kLongAverages);
    Run([&] {
        StartMeasuring();
        std::this_thread::sleep_for(2500ms);
        EXPECT_TRUE(WaitInQt(kNoticeLimit, [this] { return Analyzer().Chip.State() != Kind::kValid; }));
        ExpectValid();
    });
}

TEST_F(AnalyzerFaults, AnotherRateSelected) {
    const PulseServer server({kAnalyzed});
    Use(server);
    onSelection = [](QDialog& dialog) {
        dialog.findChild<QComboBox*>(QStringLiteral("cmbSampleRate"))->setCurrentIndex(0);
        Q_EMIT dialog.findChild<QComboBox*>(QStringLiteral("cmbSampleRate"))->activated(0);
    };
    Run([&] {
        StartMeasuring();
        Form().mnuSelectCard.UserChooses();
        EXPECT_TRUE(WaitInQt(kNoticeLimit, [this] { return Analyzer().Chip.State() != Kind::kValid; }));
        ExpectValidAfterStart();
        EXPECT_EQ(Analyzer().lblRate.Caption(), "48000 Hz");
    });
}

// The selection of devices ends the stimulus for good.
TEST_F(AnalyzerFaults, SinkSuspendedAndResumed) {
    const PulseServer server({kAnalyzed});
    Use(server);
    onSelection = [&](QDialog&) {
        ExpectVoid();
        server.Control({"suspend-sink", "card", "0"});
    };
    Run([&] {
        StartMeasuring();
        server.Control({"suspend-sink", "card", "1"});
        ExpectLoss("has been suspended");
        ExpectValidAfterStart();
    });
}

// The averages take longer than any delay of the polling.
TEST_F(AnalyzerFaults, EngineRestarted) {
    Store(kLongAverages);
    const PulseServer server({kAnalyzed});
    Use(server);
    Run([&] {
        StartMeasuring();
        EXPECT_TRUE(Form().Instrument.Engine.ReStart());
        EXPECT_TRUE(WaitInQt(kNoticeLimit, [this] { return Analyzer().Chip.State() != Kind::kValid; }));
        ExpectValid();
    });
}

// Each run ends in another state. The next one begins with an open Analyzer.
TEST_F(AnalyzerFaults, TheProgramEndsInEachState) {
    PulseServer server({kAnalyzed});
    Use(server);
    Run([&] {
        Analyzer().Show();
        EXPECT_EQ(Analyzer().Chip.State(), Kind::kSettling);
    });
    Run([&] {
        EXPECT_TRUE(Analyzer().Loaded());
        Analyzer().Stimulus.cmdStart.Press();
        ExpectValid();
        Analyzer().cmdHold.Press();
        EXPECT_EQ(Analyzer().Chip.State(), Kind::kOff);
    });
    Run([&] {
        Analyzer().Stimulus.cmdStart.Press();
        ExpectValid();
        server.Kill();
        ExpectVoid();
        ExpectLoss("The connection to the sound server was lost.");
    });
}

}  // namespace
}  // namespace sonavex
