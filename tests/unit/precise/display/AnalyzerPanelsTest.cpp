#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "core/precise/display/AnalysisPanel.h"
#include "core/precise/display/LevelUnits.h"
#include "core/precise/display/ReadingsPanel.h"
#include "core/precise/display/StimulusPanel.h"
#include "platform/plain/MemorySettingsStore.h"

namespace sonavex {
namespace {

class AnalyzerPanelsTest : public testing::Test {
protected:
    AnalyzerPanelsTest() {
        analysis.Load(48000);
        stimulus.SetConditions(48000, 65536, 24);
        stimulus.Load();
    }
    void Type(TextBox& box, const char* text) {
        box.UserTypes(text);
        box.UserLeaves();
    }

    MemorySettingsStore store;
    Settings settings{store};
    int changes = 0;
    int starts = 0;
    int stops = 0;
    AnalysisPanel analysis{settings, [this] { ++changes; }};
    StimulusPanel stimulus{settings, {[this] { ++starts; }, [this] { ++stops; }, [this] { ++changes; }}};
    ReadingsPanel readings{settings};
};

TEST_F(AnalyzerPanelsTest, OffersLengthsAroundTheDefault) {
    ASSERT_EQ(analysis.Lengths.size(), 7U);
    EXPECT_EQ(analysis.Lengths[0].points, "16k");
    EXPECT_EQ(analysis.Lengths[0].lowestHz, "23.4");
    EXPECT_EQ(analysis.Lengths[6].points, "1M");
    EXPECT_EQ(analysis.Lengths[6].seconds, "21.845");
    EXPECT_EQ(analysis.cmbLength.Text(), "64k points");
    EXPECT_EQ(analysis.lblLength.Caption(), "1.365 s, 0.732 Hz a bin, lowest 5.9 Hz");
    analysis.Load(4000);
    EXPECT_EQ(analysis.Lengths.front().points, "4k");
    analysis.Load(192000);
    EXPECT_EQ(analysis.Lengths.back().points, "1M");
    EXPECT_EQ(analysis.Chosen().length, 262144U);
}

TEST_F(AnalyzerPanelsTest, AChangeOfTheAnalysisIsStored) {
    analysis.cmbLength.UserSelects(3);
    analysis.cmbBand.UserSelects(1);
    analysis.cmbChannel.UserSelects(1);
    analysis.cmbWeighting.UserSelects(2);
    Type(analysis.txtAverages, "16");
    Type(analysis.txtHarmonics, "5");
    EXPECT_EQ(changes, 6);
    AnalysisPanel later(settings, {});
    later.Load(48000);
    const PreciseSettings chosen = later.Chosen();
    EXPECT_EQ(chosen.length, 131072U);
    EXPECT_EQ(chosen.channel, 1U);
    EXPECT_EQ(chosen.averages, 16U);
    EXPECT_EQ(chosen.tone.highestOrder, 5);
    EXPECT_EQ(chosen.tone.band.highHz, 24000.0);
    EXPECT_EQ(later.Weighting(), Weighting::k468);
    EXPECT_EQ(later.lblHarmonics.Caption(), "H2 to H5");
}

TEST_F(AnalyzerPanelsTest, AMonoSourceHasOneChannelAndKeepsTheChosenSide) {
    analysis.cmbChannel.UserSelects(1);
    analysis.Load(48000, AnalysisPanel::Source::kMono);
    EXPECT_EQ(analysis.cmbChannel.Text(), "Mono");
    EXPECT_FALSE(analysis.cmbChannel.Enabled());
    EXPECT_EQ(analysis.Chosen().channel, 0U);
    EXPECT_EQ(analysis.StereoChannel(), 1U);
    analysis.cmbBand.UserSelects(1);
    analysis.Load(48000);
    EXPECT_EQ(analysis.cmbChannel.Text(), "Right");
    EXPECT_TRUE(analysis.cmbChannel.Enabled());
    EXPECT_EQ(analysis.Chosen().channel, 1U);
}

TEST_F(AnalyzerPanelsTest, TextThatIsNoNumberKeepsTheLastOne) {
    for (const char* const text : {"0", "1000", "1.5", "many", ""}) {
        Type(analysis.txtAverages, text);
        EXPECT_EQ(analysis.txtAverages.Text(), "8") << text;
    }
    EXPECT_EQ(changes, 0);
}

TEST_F(AnalyzerPanelsTest, DamagedSettingsCountAsTheDefaults) {
    for (const SettingsKey& key : {keys::kAnalyzerLength, keys::kAnalyzerAverages, keys::kAnalyzerBand,
                                   keys::kAnalyzerShape, keys::kAnalyzerFrequency, keys::kAnalyzerLevel})
        settings.Save(key, "-7x");
    analysis.Load(48000);
    stimulus.Load();
    EXPECT_EQ(analysis.cmbLength.Text(), "64k points");
    EXPECT_EQ(analysis.Averages(), 8U);
    EXPECT_EQ(stimulus.cmbShape.Text(), "Sine");
    EXPECT_EQ(stimulus.txtFrequency.Text(), "1000");
    EXPECT_EQ(stimulus.Chosen().levelDbfs, -1.0);
}

TEST_F(AnalyzerPanelsTest, ShowsTheFrequencyThatIsPlayed) {
    EXPECT_EQ(stimulus.lblPlayed.Caption(), "on bin 1365: 999.756 Hz");
    stimulus.chkSnap.UserSets(false);
    EXPECT_EQ(stimulus.lblPlayed.Caption(), "between bins: 1000.000 Hz");
    Type(stimulus.txtFrequency, "1.5k");
    EXPECT_EQ(stimulus.txtFrequency.Text(), "1500");
    EXPECT_EQ(stimulus.lblPlayed.Caption(), "on bin 2048: 1500.000 Hz");
    EXPECT_EQ(changes, 2);
}

TEST_F(AnalyzerPanelsTest, EveryShapeMakesItsStimulus) {
    constexpr StimulusShape kShapes[] = {
        StimulusShape::kSine,     StimulusShape::kPair,     StimulusShape::kMultitone, StimulusShape::kSquare,
        StimulusShape::kTriangle, StimulusShape::kSawtooth, StimulusShape::kWhiteNoise};
    for (int shape = 0; shape < 7; ++shape) {
        stimulus.cmbShape.UserSelects(shape);
        EXPECT_EQ(stimulus.Chosen().stimulus.shape, kShapes[shape]) << shape;
    }
    EXPECT_EQ(stimulus.Mode(), PreciseMode::kNoise);
    EXPECT_EQ(stimulus.lblPlayed.Caption(), "");
    stimulus.cmbNoise.UserSelects(1);
    EXPECT_EQ(stimulus.Chosen().stimulus.shape, StimulusShape::kPinkNoise);
}

TEST_F(AnalyzerPanelsTest, AnOwnPairHasFrequenciesAndARatio) {
    stimulus.cmbShape.UserSelects(StimulusPanel::kTwoTones);
    EXPECT_FALSE(stimulus.HasOwnPair());
    stimulus.cmbPair.UserSelects(5);
    EXPECT_TRUE(stimulus.HasOwnPair());
    Type(stimulus.txtFrequency, "3000");
    Type(stimulus.txtFrequency2, "3.7k");
    Type(stimulus.txtRatio, "2");
    const Stimulus pair = stimulus.Chosen().stimulus;
    ASSERT_EQ(pair.tones.size(), 2U);
    EXPECT_EQ(pair.tones[0].hertz, 3000.0);
    EXPECT_EQ(pair.tones[1].hertz, 3700.0);
    EXPECT_DOUBLE_EQ(pair.tones[0].amplitude / pair.tones[1].amplitude, 2.0);
}

TEST_F(AnalyzerPanelsTest, AListOfTonesIsAChangeOnlyWhenItDiffers) {
    stimulus.cmbShape.UserSelects(StimulusPanel::kMultitone);
    changes = 0;
    stimulus.txtTones.UserLeaves();
    EXPECT_EQ(changes, 0);
    Type(stimulus.txtTones, "1000@-6,3000@-6");
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(stimulus.Chosen().stimulus.tones.size(), 2U);
    Type(stimulus.txtTones, "tones");
    EXPECT_THROW(stimulus.Chosen(), StimulusError);
    EXPECT_EQ(stimulus.lblPlayed.Caption(), "cannot be played");
}

TEST_F(AnalyzerPanelsTest, TypedTonesMayHaveBlanksSuffixesAndUnits) {
    stimulus.cmbShape.UserSelects(StimulusPanel::kMultitone);
    Type(stimulus.txtTones, "100 , 1k@-6, 3 kHz @ 1.5dB");
    EXPECT_EQ(stimulus.txtTones.Text(), "100@0,1000@-6,3000@1.5");
    const Stimulus tones = stimulus.Chosen().stimulus;
    ASSERT_EQ(tones.tones.size(), 3U);
    EXPECT_DOUBLE_EQ(tones.tones[1].amplitude / tones.tones[0].amplitude, std::pow(10.0, -0.3));
    Type(stimulus.txtTones, " 6/oct ");
    EXPECT_EQ(stimulus.Chosen().stimulus.tonesPerOctave, 6);
}

TEST_F(AnalyzerPanelsTest, ATextThatMakesNoStimulusIsExplained) {
    stimulus.cmbShape.UserSelects(StimulusPanel::kMultitone);
    const std::pair<const char*, const char*> cases[] = {
        {"100, many@-6", "'many' is no frequency. Tones are"},
        {"100@loud", "'loud' is no level. Tones are"},
        {"100,", "'' is no frequency. Tones are"},
        {"-100", "'-100' is no frequency. Tones are"},
        {"40/oct", "The stimulus 'multitone:40/oct' has a"},
        {"30k", "The frequency 30000 Hz is outside"}};
    for (const auto& [typed, sentence] : cases) {
        Type(stimulus.txtTones, typed);
        EXPECT_THAT(stimulus.lblTrouble.Caption(), testing::StartsWith(sentence)) << typed;
    }
    stimulus.ShowTrouble("");
    EXPECT_FALSE(stimulus.lblTrouble.Caption().empty());
    Type(stimulus.txtTones, "3/oct");
    EXPECT_EQ(stimulus.lblTrouble.Caption(), "");
}

TEST_F(AnalyzerPanelsTest, EditsTheTonesAsLines) {
    stimulus.cmbShape.UserSelects(StimulusPanel::kMultitone);
    stimulus.cmdEditTones.Press();
    std::string shown;
    std::optional<std::string> edited;
    stimulus.AskForTones = [&](const std::string& lines) {
        shown = lines;
        return edited;
    };
    changes = 0;
    stimulus.cmdEditTones.Press();
    EXPECT_THAT(shown, testing::StartsWith("19.7754, 0\n"));
    EXPECT_EQ(stimulus.txtTones.Text(), "3/oct") << "canceled";
    edited = shown;
    stimulus.cmdEditTones.Press();
    EXPECT_EQ(stimulus.txtTones.Text(), "3/oct") << "not changed";
    EXPECT_EQ(changes, 0);
    edited = "1k, -6\n\n 3000\n";
    stimulus.cmdEditTones.Press();
    EXPECT_EQ(stimulus.txtTones.Text(), "1000@-6,3000@0");
    EXPECT_EQ(changes, 1);
    edited = "1000, -6\nnone\n";
    stimulus.cmdEditTones.Press();
    EXPECT_EQ(shown, "1000, -6\n3000, 0\n");
    EXPECT_THAT(stimulus.lblTrouble.Caption(), testing::StartsWith("'none' is no frequency"));
    stimulus.cmdEditTones.Press();
    EXPECT_EQ(shown, "1000, -6\nnone\n") << "the text that cannot be read can be corrected";
}

TEST_F(AnalyzerPanelsTest, OneButtonStartsAndStops) {
    EXPECT_EQ(stimulus.cmdStart.Caption(), "Start");
    stimulus.cmdStart.Press();
    stimulus.ShowPlaying(StimulusPlayer::State::kPlaying);
    EXPECT_EQ(stimulus.cmdStart.Caption(), "Stop");
    stimulus.cmdStart.Press();
    EXPECT_EQ(starts, 1);
    EXPECT_EQ(stops, 1);
}

TEST_F(AnalyzerPanelsTest, DitherNamesTheBitsOfTheOutput) {
    EXPECT_EQ(stimulus.cmbDither.Text(), "TPDF, 24 bit");
    stimulus.SetConditions(48000, 65536, 16);
    EXPECT_EQ(stimulus.cmbDither.Text(), "TPDF, 16 bit");
    stimulus.SetConditions(48000, 65536, 0);
    EXPECT_EQ(stimulus.cmbDither.Text(), "TPDF");
    stimulus.cmbDither.UserSelects(1);
    EXPECT_FALSE(stimulus.Chosen().dither);
}

LinesReading ToneReading() {
    LinesReading values;
    values.reading.thdDb = {-102.57, 0.07, false};
    values.reading.thdnDb = {-97.70, 0.04, false};
    values.reading.noiseDbfs = {-100.41, 0.03, false};
    values.reading.noiseADbfs = {-103.25, 0.03, false};
    values.reading.highestOrder = 9;
    values.reading.harmonics = {{2, {-104.01, 0.08, false}, {134.2, 0.5, false}},
                                {8, {-140.66, std::nullopt, true}, {}},
                                {10, {-130.0, 1.0, false}, {0.0, 1.0, false}}};
    return values;
}

TEST_F(AnalyzerPanelsTest, ShowsAReading) {
    readings.Show(ToneReading(), {.band = "20 Hz to 20 kHz"});
    EXPECT_EQ(readings.lblThd.Caption(), "-102.57");
    EXPECT_FALSE(readings.lblThd.Quiet());
    EXPECT_EQ(readings.lblThdSpread.Caption(), "± 0.07 dB");
    EXPECT_EQ(readings.lblThdOther.Caption(), "= 0.000744 %");
    EXPECT_EQ(readings.lblThdReference.Caption(), "H2-H9 re fundamental");
    EXPECT_EQ(readings.Rows[ReadingsPanel::kThdn].value.Caption(), "-97.70");
    EXPECT_EQ(readings.Rows[ReadingsPanel::kThdn].spread.Caption(), "± 0.04");
    EXPECT_EQ(readings.lblNoiseBand.Caption(), "20 Hz to 20 kHz, unweighted");
    readings.ToggleUnit();
    EXPECT_EQ(readings.lblThd.Caption(), "0.000744");
    EXPECT_EQ(readings.lblThdOther.Caption(), "= -102.57 dB");
    readings.Show(ToneReading(), {.weighting = Weighting::kA, .band = "20 Hz to 20 kHz"});
    EXPECT_EQ(readings.Rows[ReadingsPanel::kNoise].value.Caption(), "-103.25");
    EXPECT_EQ(readings.lblNoiseBand.Caption(), "20 Hz to 20 kHz, A-weighted");
}

TEST_F(AnalyzerPanelsTest, TheNotchTakesTheFirstLine) {
    LinesReading reading = ToneReading();
    reading.reading.thdnNotchDb = {-97.93, 0.04, false};
    readings.Show(reading, {});
    readings.mnuNotch.UserChooses();
    EXPECT_EQ(readings.Rows[0].name.Caption(), "THD+N (notch)");
    EXPECT_EQ(readings.Rows[0].value.Caption(), "-97.93");
    EXPECT_EQ(readings.Rows[1].name.Caption(), "THD+N");
    EXPECT_EQ(readings.Rows[1].value.Caption(), "-97.70");
    readings.Clear("last valid 10:42:07");
    EXPECT_EQ(readings.Rows[0].name.Caption(), "THD+N (notch)");

    ReadingsPanel nextStart(settings);
    nextStart.Load();
    nextStart.Show(reading, {});
    EXPECT_EQ(nextStart.Rows[0].value.Caption(), "-97.93");
    readings.mnuThdn.UserChooses();
    EXPECT_EQ(readings.Rows[0].name.Caption(), "THD+N");
    EXPECT_EQ(readings.Rows[0].value.Caption(), "");
    EXPECT_EQ(readings.lblThdSpread.Caption(), "last valid 10:42:07");
}

TEST_F(AnalyzerPanelsTest, NoiseGetsRoomForItsPeaks) {
    stimulus.cmbShape.UserSelects(StimulusPanel::kNoise);
    EXPECT_EQ(stimulus.txtLevel.Text(), "-12.00");
    EXPECT_EQ(stimulus.Chosen().levelDbfs, -12.0);
    Type(stimulus.txtLevel, "-20");
    stimulus.cmbShape.UserSelects(StimulusPanel::kSine);
    stimulus.cmbShape.UserSelects(StimulusPanel::kNoise);
    EXPECT_EQ(stimulus.txtLevel.Text(), "-20.00");
}

TEST_F(AnalyzerPanelsTest, TheMainFigureOfNoiseIsItsWeightedLevel) {
    readings.Show(ToneReading(), {.mode = PreciseMode::kNoise, .weighting = Weighting::kA});
    EXPECT_EQ(readings.lblThdTitle.Caption(), "Noise");
    EXPECT_EQ(readings.lblThd.Caption(), readings.Rows[ReadingsPanel::kNoise].value.Caption());
    EXPECT_EQ(readings.lblThdReference.Caption(), "re full scale");
}

TEST_F(AnalyzerPanelsTest, ShowsSmallValuesWithAShortSpread) {
    readings.SetCalibration(Calibration::From(0.0, 2.0, "2026-11-22 17:05:00"));
    readings.Show(ToneReading(), {});
    readings.Rows[ReadingsPanel::kThdn].unit.UserSelects(1);
    EXPECT_EQ(readings.Rows[ReadingsPanel::kThdn].value.Caption(), "0.001303");
    EXPECT_EQ(readings.Rows[ReadingsPanel::kThdn].spread.Caption(), "± 6e-06");
    readings.Rows[ReadingsPanel::kNoise].unit.UserSelects(LevelUnits::kVolts);
    EXPECT_EQ(readings.Rows[ReadingsPanel::kNoise].value.Caption(), "19.078");
    EXPECT_EQ(readings.Rows[ReadingsPanel::kNoise].unit.Text(), "µV");
    EXPECT_EQ(readings.Rows[ReadingsPanel::kNoise].spread.Caption(), "± 0.066");
    LinesReading louder = ToneReading();
    louder.reading.noiseDbfs.value = -20.0;
    readings.Show(louder, {});
    EXPECT_EQ(readings.Rows[ReadingsPanel::kNoise].value.Caption(), "200.000");
    EXPECT_EQ(readings.Rows[ReadingsPanel::kNoise].unit.Text(), "mV");
    EXPECT_EQ(readings.Rows[ReadingsPanel::kNoise].unit.ListIndex(), LevelUnits::kVolts);
}

TEST_F(AnalyzerPanelsTest, ShowsTheHarmonicsOfTheSum) {
    readings.Show(ToneReading(), {});
    const std::vector<HarmonicsTable::Row>& rows = readings.Harmonics.Rows();
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0], (HarmonicsTable::Row{"H2", "-104.01", "0.08", "134°", rows[0].bar, false}));
    EXPECT_NEAR(rows[0].bar, (150.0 - 104.01) / 60.0, 1e-12);
    EXPECT_EQ(rows[1], (HarmonicsTable::Row{"H8", "≤ -140.6", "", "in the noise", 0.0, true}));
}

TEST_F(AnalyzerPanelsTest, AnUnfinishedAverageIsQuiet) {
    readings.Show(ToneReading(), {.settling = true, .quiet = true});
    EXPECT_TRUE(readings.lblThd.Quiet());
    EXPECT_EQ(readings.lblThdSpread.Caption(), "± 0.07 dB so far");
}

TEST_F(AnalyzerPanelsTest, ABoundIsInTheNoise) {
    LinesReading values = ToneReading();
    values.reading.thdDb = {-141.2, std::nullopt, true};
    readings.Show(values, {.settling = true});
    EXPECT_EQ(readings.lblThd.Caption(), "≤ -141.2");
    EXPECT_TRUE(readings.lblThd.Quiet());
    EXPECT_EQ(readings.lblThdSpread.Caption(), "in the noise");
    EXPECT_EQ(readings.lblThdOther.Caption(), "≤ 0.000009 %");
}

TEST_F(AnalyzerPanelsTest, AVoidReadingShowsNoFigureInAnyUnit) {
    readings.Show(ToneReading(), {.band = "20 Hz to 20 kHz"});
    readings.Clear("last valid 10:42:07");
    readings.ToggleUnit();
    EXPECT_EQ(readings.lblThd.Caption(), "none");
    EXPECT_EQ(readings.lblThdSpread.Caption(), "last valid 10:42:07");
    EXPECT_EQ(readings.lblThdOther.Caption(), "");
    EXPECT_EQ(readings.lblThdReference.Caption(), "H2-H9 re fundamental");
    for (const ReadingRow& row : readings.Rows) {
        EXPECT_EQ(row.value.Caption(), "") << row.name.Caption();
        EXPECT_EQ(row.spread.Caption(), "") << row.name.Caption();
    }
    EXPECT_TRUE(readings.Harmonics.Rows().empty());
}

}  // namespace
}  // namespace sonavex
