#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/history/HistoryView.h"
#include "core/precise/display/frmAnalyzer.h"
#include "support/AnalyzerNeeds.h"
#include "support/FormRig.h"
#include "support/InlineBackground.h"
#include "support/MemoryFiles.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::StartsWith;
using Kind = StateChip::Kind;

// The Analyzer next to a running block meter, on a stepped card that loops back.
class frmAnalyzerTest : public testing::Test {
protected:
    frmAnalyzerTest() {
        Settings(rig.store).Save(keys::kSampleRate, "5");
        DeviceUnderTestModel model;
        model.bits = 24;
        model.delayFrames = 300;
        rig.card.Card().SetDeviceUnderTest(model);
        rig.form.Form_Load();
        Run(2500ms);
        files.sounds["/tmp/take 3.wav"] = {
            .rateHz = 8000, .channels = 2, .frames = 40000, .sample = [](std::int64_t frame) {
                return 0.5 * std::sin(2.0 * std::numbers::pi * 1000.0 / 8000.0 * static_cast<double>(frame));
            }};
    }

    std::int32_t Rate() { return rig.form.Instrument.Shared.SampleRate; }
    void Run(std::chrono::milliseconds time) {
        for (auto passed = 0ms; passed < time; passed += 20ms) {
            rig.card.Card().Step(static_cast<std::size_t>(Rate() / 50));
            rig.loop.Advance(20ms);
        }
    }
    // Advances the time while the card delivers nothing.
    void Stall(std::chrono::milliseconds time) {
        for (auto passed = 0ms; passed < time; passed += 20ms) rig.loop.Advance(20ms);
    }
    // True when the chip shows the kind in time.
    bool Becomes(Kind kind, std::chrono::milliseconds limit = 60s) {
        for (auto passed = 0ms; passed < limit && form.Chip.State() != kind; passed += 100ms) Run(100ms);
        return form.Chip.State() == kind;
    }
    void ExpectNoFigure() {
        EXPECT_EQ(form.Readings.lblThd.Caption(), "none");
        for (const ReadingRow& row : form.Readings.Rows) EXPECT_EQ(row.value.Caption(), "");
        EXPECT_TRUE(form.Readings.Harmonics.Rows().empty());
        EXPECT_TRUE(form.Spectrum.Shown().markers.empty());
        EXPECT_FALSE(form.Spectrum.Shown().noisePerBinDbfs);
    }
    void Play() {
        form.Show();
        form.Stimulus.cmdStart.Press();
        ASSERT_TRUE(Becomes(Kind::kValid)) << form.Chip.Text();
    }
    // What an export of the present reading records.
    ExportedMeasurement Exported() {
        ExportedMeasurement exported;
        form.AskForExport = [&](const ExportedMeasurement& measurement) {
            exported = measurement;
            return std::optional<frmAnalyzer::ExportTarget>();
        };
        form.cmdExport.Press();
        return exported;
    }
    std::vector<std::string> RulesOfExport() {
        std::vector<std::string> names;
        for (const RuleResult& rule : Exported().reading.rules) names.push_back(rule.rule);
        return names;
    }
    FormRig rig;
    InlineBackground background{rig.loop};
    MemoryFiles files;
    HistoryInMemory stored{background};
    frmAnalyzer form{AnalyzerNeeds(rig.form, rig.loop, background, rig.dialogs, files, stored.history)};
};

TEST_F(frmAnalyzerTest, SettlesAndThenShowsAValidReading) {
    form.Show();
    EXPECT_EQ(form.Chip.Text(), "SETTLING 0 of 8");
    ExpectNoFigure();
    form.Stimulus.cmdStart.Press();
    ASSERT_TRUE(Becomes(Kind::kValid)) << form.Chip.Text();
    EXPECT_EQ(form.Stimulus.cmdStart.Caption(), "Stop");
    EXPECT_EQ(form.lblAverages.Caption(), "8 of 8");
    EXPECT_EQ(form.Readings.Rows[ReadingsPanel::kLevel].value.Caption(), "-1.000");
    EXPECT_FALSE(form.Readings.lblThd.Quiet() && !form.Readings.lblThd.Caption().starts_with("\u2264"));
    ASSERT_NE(form.Spectrum.Shown().live, nullptr);
    EXPECT_EQ(form.Spectrum.Shown().live->name, "Left, live");
    EXPECT_NE(form.Waves.Shown(), nullptr);
    EXPECT_EQ(form.lblRate.Caption(), std::to_string(Rate()) + " Hz");
}

// Start, the burst that measures the delay of the path, the change at the input, and one record.
TEST_F(frmAnalyzerTest, TheFirstReadingTakesARecordAnd600Ms) {
    form.Show();
    form.Stimulus.cmdStart.Press();
    const auto record = std::chrono::milliseconds(1000 * form.Analysis.Chosen().length / Rate());
    auto passed = 0ms;
    for (; form.Readings.lblThd.Caption() == "none" && passed < 10s; passed += 20ms) Run(20ms);
    EXPECT_GT(passed, record);
    EXPECT_LE(passed, record + 600ms);
}

// The noise line of the plot is where the trace of the noise runs.
TEST_F(frmAnalyzerTest, TheNoiseLineIsAtTheMeanOfTheTrace) {
    form.Show();
    form.Analysis.cmbBand.UserSelects(1);
    form.Stimulus.cmdStart.Press();
    ASSERT_TRUE(Becomes(Kind::kValid));
    const SpectrumPlot::Data& shown = form.Spectrum.Shown();
    ASSERT_TRUE(shown.noisePerBinDbfs);
    double mean = 0;
    std::size_t bins = 0;
    const auto& power = shown.live->power;
    // Between the orders 2 and 3 of 1 kHz.
    for (auto j = static_cast<std::size_t>(2200 / shown.live->binHz); j * shown.live->binHz < 2800; ++j) {
        mean += power[j];
        ++bins;
    }
    EXPECT_NEAR(PowerDecibels(mean / static_cast<double>(bins)), *shown.noisePerBinDbfs, 0.5);
}

TEST_F(frmAnalyzerTest, AQuietNoteTellsThatThePathIsAsAsked) {
    form.Show();
    EXPECT_EQ(form.note.Caption(), "direct, one clock");
    EXPECT_FALSE(form.note.Emphasis());
    rig.form.PathNote.SetCaption("Output: volume of the device 50 %");
    Run(200ms);
    EXPECT_EQ(form.note.Caption(), "Output: volume of the device 50 %");
    EXPECT_TRUE(form.note.Emphasis());
}

// Nothing is said about clocks that are not known to be the same.
TEST_F(frmAnalyzerTest, AnUnknownClockHasNoNote) {
    DeviceUnderTestModel model;
    model.clockOffsetPpm = 2.0;
    rig.card.Card().SetDeviceUnderTest(model);
    form.Show();
    EXPECT_EQ(form.note.Caption(), "");
    EXPECT_FALSE(form.note.Emphasis());
}

TEST_F(frmAnalyzerTest, WhenTheInputStopsNoFigureStays) {
    form.Show();
    form.Stimulus.cmdStart.Press();
    ASSERT_TRUE(Becomes(Kind::kValid));
    Stall(1000ms);
    EXPECT_EQ(form.Chip.State(), Kind::kVoid);
    ExpectNoFigure();
    EXPECT_EQ(form.Spectrum.Shown().live, nullptr);
    EXPECT_EQ(form.Waves.Shown(), nullptr);
    EXPECT_EQ(form.Readings.lblThdSpread.Caption(), "last valid 10:42:07");
    EXPECT_TRUE(form.ReportBlock().empty());
}

TEST_F(frmAnalyzerTest, AfterAnInterruptionItRecoversWithoutAClick) {
    form.Show();
    form.Stimulus.cmdStart.Press();
    ASSERT_TRUE(Becomes(Kind::kValid));
    Stall(1000ms);
    ASSERT_EQ(form.Chip.State(), Kind::kVoid);
    EXPECT_TRUE(Becomes(Kind::kSettling, 5s));
    EXPECT_TRUE(Becomes(Kind::kValid));
}

TEST_F(frmAnalyzerTest, AnOverloadShowsThePlotsWithoutFigures) {
    form.Show();
    DeviceUnderTestModel model;
    model.bits = 24;
    model.gain = 2.0;
    rig.card.Card().SetDeviceUnderTest(model);
    form.Stimulus.cmdStart.Press();
    ASSERT_TRUE(Becomes(Kind::kOverload)) << form.Chip.Text();
    EXPECT_EQ(form.Chip.Text(), "OVERLOAD");
    ExpectNoFigure();
    EXPECT_NE(form.Spectrum.Shown().live, nullptr);
    EXPECT_NE(form.Waves.Shown(), nullptr);
}

TEST_F(frmAnalyzerTest, HoldKeepsTheReadingAndGoesOn) {
    form.Show();
    form.Stimulus.cmdStart.Press();
    ASSERT_TRUE(Becomes(Kind::kValid));
    form.cmdHold.Press();
    EXPECT_EQ(form.cmdHold.Caption(), "Go on");
    EXPECT_EQ(form.Chip.Text(), "HELD 10:42:07");
    const std::string held = form.Readings.Rows[ReadingsPanel::kNoise].value.Caption();
    Run(3s);
    EXPECT_EQ(form.Readings.Rows[ReadingsPanel::kNoise].value.Caption(), held);
    form.cmdHold.Press();
    EXPECT_EQ(form.Chip.State(), Kind::kSettling);
    EXPECT_TRUE(Becomes(Kind::kValid));
}

TEST_F(frmAnalyzerTest, SingleHoldsAfterOneFullSetOfAverages) {
    form.Show();
    form.Stimulus.cmdStart.Press();
    ASSERT_TRUE(Becomes(Kind::kValid));
    form.cmdSingle.Press();
    EXPECT_EQ(form.Chip.State(), Kind::kSettling);
    ASSERT_TRUE(Becomes(Kind::kOff));
    EXPECT_THAT(form.Chip.Text(), StartsWith("HELD"));
    EXPECT_EQ(form.lblAverages.Caption(), "8 of 8");
}

TEST_F(frmAnalyzerTest, AChangeOfTheAnalysisBeginsTheAveragesAgain) {
    form.Show();
    form.Stimulus.cmdStart.Press();
    ASSERT_TRUE(Becomes(Kind::kValid));
    form.Analysis.cmbChannel.UserSelects(1);
    EXPECT_EQ(form.Chip.Text(), "SETTLING 0 of 8");
    ExpectNoFigure();
    ASSERT_TRUE(Becomes(Kind::kValid));
    EXPECT_EQ(form.lblLegendLive.Caption(), "Right, live");
    EXPECT_EQ(form.lblLegendSide.Caption(), "Right");
}

TEST_F(frmAnalyzerTest, KeepsATraceUntilItIsRemoved) {
    form.Show();
    form.cmdKeep.Press();
    EXPECT_EQ(form.Spectrum.Kept(), nullptr);
    form.Stimulus.cmdStart.Press();
    ASSERT_TRUE(Becomes(Kind::kValid));
    form.cmdKeep.Press();
    ASSERT_NE(form.Spectrum.Kept(), nullptr);
    EXPECT_EQ(form.lblLegendKept.Caption(), "A, 10:42");
    form.cmdRemoveKept.Press();
    EXPECT_EQ(form.Spectrum.Kept(), nullptr);
    EXPECT_EQ(form.lblLegendKept.Caption(), "");
}

TEST_F(frmAnalyzerTest, StoresTheReadingWithTheKeptTrace) {
    form.Show();
    form.mnuStoreReading.UserChooses();
    EXPECT_EQ(rig.log.Count("Message"), 1U) << "there is no reading yet";
    EXPECT_TRUE(stored.history.Entries().empty());
    form.Stimulus.cmdStart.Press();
    ASSERT_TRUE(Becomes(Kind::kValid));
    form.cmdKeep.Press();
    form.mnuStoreReading.UserChooses();
    ASSERT_EQ(stored.history.Entries().size(), 2U);
    const HistoryEntry& entry = stored.history.Entries().front();
    EXPECT_EQ(entry.state, HistoryState::kValid);
    EXPECT_EQ(entry.time, "2026-11-23 10:42:07");
    EXPECT_EQ(FigureOf(entry, "thd_db", 2), form.Readings.lblThd.Caption());
    const auto details = stored.history.Details(entry.id);
    ASSERT_TRUE(details);
    EXPECT_GT(details->curve.levelsDbfs.size(), 600U);
    EXPECT_LE(details->curve.levelsDbfs.size(), HistoryCurve::kMostColumns);
}

TEST_F(frmAnalyzerTest, NamesTheLastValidReadingWithTheHistoryOnlyIfItIsStored) {
    form.Show();
    form.Stimulus.cmdStart.Press();
    ASSERT_TRUE(Becomes(Kind::kValid));
    form.cmdHold.Press();
    form.mnuStoreReading.UserChooses();
    form.cmdHold.Press();
    EXPECT_EQ(form.Readings.lblThdSpread.Caption(), "last valid 10:42:07, in History");
    stored.history.Delete(stored.history.Entries().front().id);
    form.Stimulus.cmdStart.Press();
    EXPECT_EQ(form.Readings.lblThdSpread.Caption(), "last valid 10:42:07");
}

TEST_F(frmAnalyzerTest, ShowsTwoStoredReadingsAsKeptTraces) {
    form.Show();
    form.Stimulus.cmdStart.Press();
    ASSERT_TRUE(Becomes(Kind::kValid));
    form.mnuStoreReading.UserChooses();
    form.mnuStoreReading.UserChooses();
    std::optional<frmAnalyzer::Tab> front;
    form.ShowTab = [&front](frmAnalyzer::Tab tab) { front = tab; };
    const auto& rows = form.History.List.Rows();
    ASSERT_EQ(rows.size(), 3U);
    form.History.List.UserSelects({rows[1].id, rows[2].id});
    form.History.cmdCompare.Press();
    EXPECT_EQ(front, frmAnalyzer::Tab::kSpectrum);
    ASSERT_NE(form.Spectrum.KeptSecond(), nullptr);
    EXPECT_EQ(form.lblLegendKeptSecond.Caption(), "10:42:07");
    form.cmdKeep.Press();
    EXPECT_EQ(form.Spectrum.KeptSecond(), nullptr);
    EXPECT_EQ(form.lblLegendKeptSecond.Caption(), "");
}

TEST_F(frmAnalyzerTest, ARecordingTakesThePlaceOfTheDevices) {
    form.Show();
    form.Stimulus.cmdStart.Press();
    form.OpenRecording("/tmp/take 3.wav");
    Run(200ms);
    EXPECT_EQ(form.lblRecording.Caption(), "take 3.wav");
    EXPECT_EQ(form.lblInput.Caption(), "");
    EXPECT_EQ(form.lblRate.Caption(), "8000 Hz");
    EXPECT_EQ(form.Chip.Text(), "VALID");
    EXPECT_THAT(form.note.Caption(), StartsWith("recording, "));
    EXPECT_EQ(form.Readings.Rows[ReadingsPanel::kLevel].value.Caption(), "-6.021");
    EXPECT_EQ(form.Stimulus.cmdStart.Caption(), "Start");
    Run(3s);
    EXPECT_EQ(form.Chip.Text(), "VALID");

    form.Recording.cmdLive.Press();
    EXPECT_EQ(form.lblRecording.Caption(), "");
    EXPECT_EQ(form.lblRate.Caption(), std::to_string(Rate()) + " Hz");
    EXPECT_EQ(form.Chip.State(), Kind::kSettling);
    ExpectNoFigure();
}

TEST_F(frmAnalyzerTest, AMonoRecordingIsMeasuredFromItsOnlyChannel) {
    files.sounds["/tmp/mono.wav"] = files.sounds["/tmp/take 3.wav"];
    files.sounds["/tmp/mono.wav"].channels = 1;
    form.Show();
    form.Analysis.cmbChannel.UserSelects(1);
    form.OpenRecording("/tmp/mono.wav");
    Run(200ms);
    EXPECT_EQ(form.Chip.Text(), "VALID");
    EXPECT_EQ(form.Readings.Rows[ReadingsPanel::kLevel].value.Caption(), "-6.021");
    EXPECT_EQ(form.lblLegendLive.Caption(), "Mono, recording");
    EXPECT_EQ(rig.log.Count("Message"), 0U);
    EXPECT_THAT(form.Sweep.lblConditions.Caption(), HasSubstr("right channel"));
    form.OpenRecording("/tmp/take 3.wav");
    Run(200ms);
    EXPECT_EQ(form.lblLegendLive.Caption(), "Right, recording");
}

TEST_F(frmAnalyzerTest, TheNoteNamesWhatLimitsARecording) {
    files.sounds["/tmp/loud.wav"] = files.sounds["/tmp/take 3.wav"];
    files.sounds["/tmp/loud.wav"].sample = [](std::int64_t frame) {
        return std::clamp(
            1.1 * std::sin(2.0 * std::numbers::pi * 1000.0 / 8000.0 * static_cast<double>(frame) + 0.1), -1.0,
            1.0);
    };
    form.OpenRecording("/tmp/loud.wav");
    Run(200ms);
    EXPECT_EQ(form.Chip.Text(), "VALID");
    EXPECT_THAT(form.note.Caption(), testing::EndsWith(", samples reach full scale"));
    EXPECT_TRUE(form.note.Emphasis());
}

TEST_F(frmAnalyzerTest, ExportsTheReadingOfTheClick) {
    form.Show();
    form.cmdExport.Press();
    EXPECT_THAT(rig.log.Lines(), testing::Contains(HasSubstr("There is no reading to export.")));
    form.OpenRecording("/tmp/take 3.wav");
    Run(200ms);
    form.AskForExport =
        [](const ExportedMeasurement& measurement) -> std::optional<frmAnalyzer::ExportTarget> {
        EXPECT_EQ(measurement.time, "2026-11-23 10:42:07");
        return frmAnalyzer::ExportTarget{"/tmp/out.csv", ExportKind::kReadingsCsv};
    };
    form.cmdExport.Press();
    EXPECT_THAT(files.texts["/tmp/out.csv"], HasSubstr("take 3.wav"));
    files.full = true;
    form.cmdExport.Press();
    EXPECT_EQ(form.Chip.Text(), "VALID");
}

TEST_F(frmAnalyzerTest, ThePrintedReportGetsAValidReadingOnly) {
    EXPECT_TRUE(form.ReportBlock().empty());
    form.Show();
    EXPECT_TRUE(form.ReportBlock().empty());
    form.OpenRecording("/tmp/take 3.wav");
    Run(200ms);
    EXPECT_FALSE(form.ReportBlock().empty());
    form.Unload();
    EXPECT_TRUE(form.ReportBlock().empty());
}

TEST_F(frmAnalyzerTest, ClosingEndsTheStimulusAndNotTheBlockMeter) {
    form.Show();
    form.Stimulus.cmdStart.Press();
    ASSERT_TRUE(Becomes(Kind::kValid));
    form.Unload();
    Run(500ms);
    EXPECT_EQ(form.Stimulus.cmdStart.Caption(), "Start");
    EXPECT_TRUE(rig.form.StreamTrouble.Caption().empty());
    EXPECT_FALSE(form.WasOpen());
}

TEST_F(frmAnalyzerTest, OpensAgainAfterTheProgramEndedWithIt) {
    form.UnloadForNextStart();
    EXPECT_FALSE(form.WasOpen());
    form.Show();
    form.UnloadForNextStart();
    EXPECT_TRUE(form.WasOpen());
}

TEST_F(frmAnalyzerTest, NothingPlaysAfterTheProgramEndedOverTheCalibration) {
    form.Show();
    form.ShowCalibrate = [this](frmCalibrate& dialog) {
        dialog.cmdPlay_Click();
        Run(200ms);
        throw EndProgram{};
    };
    EXPECT_THROW(form.Stimulus.cmdCalibrate.Press(), EndProgram);
    Run(3s);
    form.UnloadForNextStart();
    Run(500ms);
    EXPECT_EQ(form.Stimulus.cmdStart.Caption(), "Start");
    EXPECT_EQ(form.Chip.State(), Kind::kOff);
    ExpectNoFigure();
}

TEST_F(frmAnalyzerTest, ClosedOverTheCalibrationItStaysClosed) {
    form.Show();
    form.ShowCalibrate = [this](frmCalibrate& dialog) {
        dialog.cmdPlay_Click();
        Run(200ms);
        form.Unload();
    };
    form.Stimulus.cmdCalibrate.Press();
    Run(5s);
    EXPECT_EQ(form.Stimulus.cmdStart.Caption(), "Start");
    EXPECT_EQ(form.Chip.State(), Kind::kOff);
    ExpectNoFigure();
}

// The figures of a tone are over when the tone is.
TEST_F(frmAnalyzerTest, NoFigureStaysWhenTheStimulusStops) {
    Play();
    form.Stimulus.cmdStart.Press();
    Run(100ms);
    EXPECT_EQ(form.Chip.State(), Kind::kSettling) << form.Chip.Text();
    ExpectNoFigure();
}

TEST_F(frmAnalyzerTest, AHeldReadingKeepsItsState) {
    form.Show();
    form.Stimulus.cmdStart.Press();
    for (auto passed = 0ms; form.lblAverages.Caption() != "3 of 8" && passed < 20s; passed += 20ms) Run(20ms);
    form.cmdHold.Press();
    EXPECT_EQ(form.Chip.Text(), "SETTLING 3 of 8, held 10:42:07");
    EXPECT_EQ(form.Chip.State(), Kind::kSettling);
    EXPECT_EQ(Exported().state, "SETTLING 3 of 8");
    Run(2s);
    EXPECT_EQ(form.Chip.Text(), "SETTLING 3 of 8, held 10:42:07");
}

// Its figures would appear under the name of another device, with the calibration of that device.
TEST_F(frmAnalyzerTest, AChangeOfTheDeviceEndsTheHold) {
    Play();
    form.cmdHold.Press();
    rig.form.Instrument.Engine.ListedInputId = "another";
    Run(200ms);
    EXPECT_EQ(form.cmdHold.Caption(), "Hold");
    EXPECT_EQ(form.Chip.State(), Kind::kSettling) << form.Chip.Text();
    ExpectNoFigure();
}

TEST_F(frmAnalyzerTest, TheNoteNamesThePathAndTheLimit) {
    form.Show();
    form.Stimulus.txtFrequency.UserTypes("3000");
    form.Stimulus.txtFrequency.UserLeaves();
    Play();
    rig.form.PathNote.SetCaption("the output is resampled");
    Run(200ms);
    EXPECT_THAT(form.note.Caption(), StartsWith("the output is resampled; no harmonic lies in the band"));
}

TEST_F(frmAnalyzerTest, AnExportNamesTheStimulusThatPlays) {
    Play();
    const std::string playing = "sine:1000 at -1.00 dBFS, both sides, dither TPDF, 24 bit, on an odd bin";
    EXPECT_EQ(Exported().reading.stimulus, playing);
    form.Stimulus.cmbShape.UserSelects(StimulusPanel::kMultitone);
    form.Stimulus.txtTones.UserTypes("tones");
    form.Stimulus.txtTones.UserLeaves();
    Run(200ms);
    form.Stimulus.cmbShape.UserSelects(StimulusPanel::kSine);
    ASSERT_TRUE(Becomes(Kind::kValid)) << form.Chip.Text();
    EXPECT_EQ(Exported().reading.stimulus, playing);
}

// The live reading goes on while the user chooses the file.
TEST_F(frmAnalyzerTest, ThePictureShowsTheSpectrumOfTheClick) {
    Play();
    const SpectrumTrace* const clicked = form.Spectrum.Shown().live.get();
    form.AskForExport = [this](const ExportedMeasurement&) {
        Stall(1s);
        EXPECT_EQ(form.Spectrum.Shown().live, nullptr);
        return frmAnalyzer::ExportTarget{"/tmp/out.png", ExportKind::kPicture};
    };
    const SpectrumTrace* drawn = nullptr;
    form.DrawPlot = [&](ExportKind, const std::vector<std::string>&) {
        drawn = form.Spectrum.Shown().live.get();
        return std::string("picture");
    };
    form.cmdExport.Press();
    EXPECT_EQ(drawn, clicked);
    EXPECT_EQ(form.Spectrum.Shown().live, nullptr);
    EXPECT_EQ(files.texts["/tmp/out.png"], "picture");
}

TEST_F(frmAnalyzerTest, AReferenceOfOtherConditionsIsNotCompared) {
    Play();
    form.mnuKeepReference.UserChooses();
    form.mnuKeepIdle.UserChooses();
    EXPECT_THAT(RulesOfExport(), testing::ElementsAre("source", "source", "idle", "fundamental"));
    form.Analysis.cmbChannel.UserSelects(1);
    ASSERT_TRUE(Becomes(Kind::kValid));
    EXPECT_THAT(RulesOfExport(), testing::ElementsAre("fundamental"));
    form.Analysis.cmbChannel.UserSelects(0);
    ASSERT_TRUE(Becomes(Kind::kValid));
    EXPECT_THAT(RulesOfExport(), testing::ElementsAre("source", "source", "idle", "fundamental"));
}

TEST_F(frmAnalyzerTest, NothingIsCalibratedAfterALoss) {
    Play();
    form.ShowCalibrate = [this](frmCalibrate& dialog) {
        dialog.cmdPlay.Press();
        Run(6s);
        EXPECT_EQ(dialog.cmdPlay.Caption(), "Stop");
        Stall(1s);
        EXPECT_EQ(dialog.cmdPlay.Caption(), "Play 1 kHz");
        dialog.txtVolts.UserTypes("0.5");
        dialog.cmdStore.Press();
        EXPECT_EQ(dialog.lblTrouble.Caption(), "Play the tone first.");
        dialog.cmbChannel.UserSelects(dialog.cmbChannel.Count() - 1);
        EXPECT_EQ(dialog.lblLevel.Caption(), "no valid reading");
    };
    form.Stimulus.cmdCalibrate.Press();
    Run(500ms);
    EXPECT_EQ(form.Stimulus.cmdStart.Caption(), "Start");
}

TEST_F(frmAnalyzerTest, AfterARecordingNoLiveReadingWasTheLast) {
    form.Show();
    form.OpenRecording("/tmp/take 3.wav");
    Run(200ms);
    ASSERT_EQ(form.Chip.Text(), "VALID");
    form.Recording.cmdLive.Press();
    EXPECT_EQ(form.Readings.lblThdSpread.Caption(), "");
}

TEST_F(frmAnalyzerTest, LevelsAreInVoltsOnceCalibrated) {
    form.Show();
    EXPECT_EQ(form.Stimulus.lblLevelNote.Caption(), "not calibrated");
    EXPECT_EQ(form.Stimulus.cmbLevelUnit.Count(), 1);
    form.ShowCalibrate = [this](frmCalibrate& dialog) {
        dialog.cmdPlay_Click();
        Run(200ms);
        EXPECT_EQ(form.Stimulus.cmdStart.Caption(), "Stop");
        dialog.txtVolts.UserTypes("0.5");
        dialog.cmdStore_Click();
    };
    form.Stimulus.cmdCalibrate.Press();
    Run(400ms);
    EXPECT_EQ(form.Stimulus.cmdStart.Caption(), "Start");
    EXPECT_EQ(form.Stimulus.cmbLevelUnit.Count(), 4);
    EXPECT_EQ(form.Stimulus.lblLevelNote.Caption(), "1.409 V rms, calibrated");
    form.Stimulus.txtLevel.UserTypes("500mV");
    form.Stimulus.txtLevel.UserLeaves();
    EXPECT_EQ(form.Stimulus.txtLevel.Text(), "-10.00");
    form.Stimulus.cmbLevelUnit.UserSelects(LevelUnits::kVolts);
    form.Stimulus.txtLevel.UserTypes("123.4567 mV");
    form.Stimulus.txtLevel.UserLeaves();
    const double dbfs = form.Stimulus.Chosen().levelDbfs;
    form.Stimulus.txtFrequency.UserTypes("2000");
    form.Stimulus.txtFrequency.UserLeaves();
    EXPECT_EQ(form.Stimulus.Chosen().levelDbfs, dbfs);
    form.Stimulus.txtLevel.UserTypes("-20 dBFS");
    form.Stimulus.txtLevel.UserLeaves();
    EXPECT_EQ(form.Stimulus.Chosen().levelDbfs, -20.0);
}

}  // namespace
}  // namespace sonavex
