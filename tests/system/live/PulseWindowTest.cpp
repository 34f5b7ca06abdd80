// Window, form, engine and PulseAudio adapter in real time, on a private server whose null sink returns what
// is played.

#include <gtest/gtest.h>

#include <QApplication>
#include <QEventLoop>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <numbers>

#include "platform/pulse/PulseSoundSystem.h"
#include "platform/qt/QtEventLoop.h"
#include "support/CaptureTap.h"
#include "support/MachineLoad.h"
#include "support/PhaseTrack.h"
#include "support/PulseServer.h"
#include "support/QtWait.h"
#include "support/World.h"
#include "ui/MainWindow.h"
#include "ui/ProgramStyle.h"
#include "ui/widgets/FrequencySlider.h"

namespace sonavex {
namespace {

constexpr std::uint32_t kRateHz = 32000;
constexpr std::chrono::milliseconds kBlock{64};
constexpr double kPeak = 8191.75;
constexpr double kSmallestJump = 0.002;

class PulseWindow : public testing::Test, protected WorldOf<QtEventLoop> {
protected:
    PulseWindow() : WorldOf([](const std::exception_ptr&) { ADD_FAILURE() << "an error left a handler"; }) {}
    void SetUp() override {
        store.Save("Signal Generator", "Level", "0");
        form.Frame.SetSize(980, 640);
        form.Form_Load();
        window.ShowPlaced();
        form.TabStrip1.SetIndex(1);
        ASSERT_TRUE(WaitInQt(kPatience, [this] { return form.Instrument.Engine.PlaybackStarts > 0; }));
        ASSERT_STREQ(form.lblInput.Caption().c_str(), "Monitor of TestCard");
    }
    void TearDown() override {
        form.Form_QueryUnload();
        EXPECT_TRUE(log.Of("Message").empty()) << log.Of("Message").front();
    }

    static void Wait(int blocks) { WaitInQt(blocks * kBlock); }

    template <class Widget>
    Widget& Find(const char* name) {
        return *window.findChild<Widget*>(name);
    }
    void Click(const char* button) { QTest::mouseClick(&Find<QPushButton>(button), Qt::LeftButton); }
    void Type(const char* name, const QString& text) {
        auto& box = Find<QLineEdit>(name);
        box.setFocus();
        box.selectAll();
        QTest::keyClicks(&box, text);
        QTest::keyClick(&box, Qt::Key_Return);
        QApplication::processEvents();
    }
    void Key(const char* name, Qt::Key key) {
        QTest::keyClick(&Find<QWidget>(name), key);
        QApplication::processEvents();
    }

    std::uint64_t Disturbances() const {
        const CaptureStatistics counts = form.Instrument.Engine.CaptureCounts();
        return form.Instrument.Engine.Overruns + counts.segmentsLost + counts.framesMissing;
    }
    bool Silent() const {
        constexpr std::size_t kEnough = 4 * kBlockFrames;
        const auto& heard = tap.Samples();
        return heard.size() >= kEnough &&
               std::all_of(heard.end() - kEnough, heard.end(), [](std::int16_t s) { return s == 0; });
    }
    // Records from silence on while `play` starts and plays, and stops with the same button. Repeats if the
    // stream had gaps, because they come from a busy machine and not from the generator.
    template <class Play>
    void Record(const char* button, Play play) {
        for (int attempt = 0; attempt < 5; ++attempt) {
            tap.Forget();
            ASSERT_TRUE(WaitInQt(kPatience, [this] { return Silent(); }));
            const std::uint64_t before = Disturbances();
            tap.Forget();
            play();
            const bool torn = Disturbances() != before;
            if (!torn) samples = tap.Samples();
            Click(button);
            if (!torn) return;
        }
        FAIL() << "the stream was torn five times";
    }
    // Waits until everything played has returned.
    void WaitForTheEnd() {
        const std::size_t soFar = tap.Samples().size();
        ASSERT_TRUE(WaitInQt(kPatience, [&] { return tap.Samples().size() >= soFar + 12 * kBlockFrames; }));
    }
    void ExpectContinuous(std::size_t changes) const {
        const PhaseTrack track(samples);
        EXPECT_LT(track.LargestJump(), kSmallestJump);
        EXPECT_LT(track.LargestResidue(), 1.0);
        EXPECT_GE(track.Changes(), changes);
    }

    PulseServer server{{{"card", kRateHz, "TestCard"}}};
    PulseSoundSystem pulse{loop, server.Address()};
    CaptureTap tap{pulse};
    frmMain form{On(tap)};
    ui::MainWindow window{form, QString()};
    std::vector<std::int16_t> samples;
};

TEST_F(PulseWindow, MeasuresWhatItPlays) {
    Click("Command1");
    EXPECT_TRUE(WaitInQt(kPatience, [this] {
        const MeterView& shown = form.Instrument.Meter.Display.View();
        return Find<QLineEdit>("txtFreq").text() == "1000" &&
               Find<QLabel>("genLockWord").text() == "LOCKED" && shown.totalInPercent && !shown.settling;
    })) << Find<QLineEdit>("txtFreq").text().toStdString();
    EXPECT_EQ(Find<QLabel>("lockWord").text(), "LOCKED");
    EXPECT_LT(Find<QLabel>("lblThd").text().toDouble(), 0.01);
    EXPECT_EQ(Find<QLabel>("LblLevel").text(), "25");
    EXPECT_EQ(Find<QLabel>("runningWord").text(), "Generator playing");
    Click("Command1");
    EXPECT_TRUE(WaitInQt(kPatience, [this] { return Find<QLabel>("adcWord").text() == "NO SIGNAL"; }));
}

TEST_F(PulseWindow, PlaysEightSinesWithoutClipping) {
    auto& list = Find<QListWidget>("ToneList");
    for (int i = 1; i <= 8; ++i) {
        Type("txtGenFreq", QString::number(250 * i));
        Click("cmdGenAdd");
        QApplication::processEvents();
        list.item(i - 1)->setSelected(true);
        QApplication::processEvents();
    }
    Record("cmdStartMemory", [this] {
        Click("cmdStartMemory");
        Wait(20);
        WaitForTheEnd();
    });
    EXPECT_EQ(form.Instrument.Meter.Generator.NumTones, 8);
    const double eight = 8.0 * 32767.0 / 2.0 / 9.0;
    EXPECT_LT(LargestMagnitude(samples), 32767);
    EXPECT_LE(LargestMagnitude(samples), eight + 0.5);
    EXPECT_GT(LargestMagnitude(samples), 0.75 * eight);
}

TEST_F(PulseWindow, KeepsThePhaseWhileTheSliderMoves) {
    Record("Command1", [this] {
        Type("txtGenFreq", "500");
        Click("Command1");
        for (const Qt::Key key : {Qt::Key_PageUp, Qt::Key_PageUp, Qt::Key_Right, Qt::Key_PageDown,
                                  Qt::Key_Right, Qt::Key_PageDown, Qt::Key_PageDown, Qt::Key_Up}) {
            Wait(3);
            Key("sldStartFreq", key);
        }
        WaitForTheEnd();
    });
    ExpectContinuous(8);
}

TEST_F(PulseWindow, KeepsThePhaseWhileSweeping) {
    Type("txtGenFreq", "300");
    Type("txtSweepTime", "1000");
    Type("txtGenEndFreq", "3000");
    Find<QCheckBox>("chkLoop").click();
    Record("Command1", [this] {
        Click("Command1");
        Wait(40);
        WaitForTheEnd();
    });
    ExpectContinuous(30);
}

TEST_F(PulseWindow, ChangesTheLevelWithoutAJump) {
    Type("txtGenFreq", "100");
    Record("Command1", [this] {
        Key("sldLevel", Qt::Key_End);
        Click("Command1");
        for (const Qt::Key key : {Qt::Key_Home, Qt::Key_End, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End,
                                  Qt::Key_Home, Qt::Key_End}) {
            // The playback buffer is seven blocks ahead.
            Wait(10);
            Key("sldLevel", key);
        }
        WaitForTheEnd();
    });
    const double sine = kPeak * 2.0 * std::numbers::pi * 100.0 / kRateHz;
    EXPECT_LE(LargestStep(samples), sine + kPeak / (0.005 * kRateHz) + 2.0);
    EXPECT_EQ(LargestMagnitude(samples), 8192);
    // The level was lowered in between: half a second of near silence.
    std::size_t quiet = 0;
    for (const std::int16_t sample : samples) quiet += std::abs(sample) <= 1 ? 1 : 0;
    EXPECT_GT(quiet, kRateHz / 2);
}

class SweepTime : public PulseWindow {
protected:
    // Measures a sweep of 2000 ms from the click to its end. Prints the time; docs/dev-log.md has usual
    // values.
    void ExpectItsTime(const char* state) {
        Type("txtGenFreq", "100");
        Type("txtSweepTime", "2000");
        Type("txtGenEndFreq", "1000");
        const auto start = std::chrono::steady_clock::now();
        Click("Command1");
        EXPECT_TRUE(WaitInQt(kPatience, [this] { return !Generator::UnderWay(Tone()); }));
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
        std::printf("sweep of 2000 ms, %s: %.0f ms\n", state, took.count());
        EXPECT_NEAR(Tone().Frequency, 1000.0, 0.45);
        EXPECT_GE(took.count(), 2000.0);
        EXPECT_LE(took.count(), 2100.0);
    }
    const ToneRecord& Tone() const { return form.Instrument.Meter.Generator.Tones[0]; }
};

TEST_F(SweepTime, OnAFreeMachine) {
    ExpectItsTime("idle");
}

TEST_F(SweepTime, OnABusyMachine) {
    const MachineLoad load;
    ExpectItsTime("every processor twice busy");
}

}  // namespace
}  // namespace sonavex
