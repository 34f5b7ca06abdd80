#include "ui/AnalyzerRig.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sonavex {
namespace {

void Choose(ComboBox& choice, std::vector<std::string> items, std::int32_t index) {
    choice.SetItems(std::move(items));
    choice.SetListIndex(index);
}

void FillStimulus(StimulusPanel& panel) {
    Choose(panel.cmbLevelUnit, {"dBFS", "dBV", "dBu", "V"}, 0);
    Choose(panel.cmbDither, {"TPDF, 24 bit", "Off"}, 0);
    panel.txtFrequency.SetText("19999.756");
    panel.txtFrequency2.SetText("20000");
    panel.txtRatio.SetText("4:1");
    panel.txtTones.SetText("100, 1k, 10k");
    panel.lblPlayed.SetCaption("on bin 1365: 999.756 Hz");
    panel.txtLevel.SetText("-120.00");
    panel.lblLevelNote.SetCaption("1.783 V rms, calibrated");
    panel.cmdCalibrate.SetCaption("Calibrate\u2026");
    panel.lblPlaying.SetCaption("playing");
    panel.shpPlaying.SetBackColor(kLightGreen);
}

void FillAnalysis(AnalysisPanel& panel) {
    panel.lblLength.SetCaption("1.365 s, 0.732 Hz a bin, lowest 5.9 Hz");
    panel.txtAverages.SetText("100");
    panel.txtHarmonics.SetText("10");
    panel.lblHarmonics.SetCaption("H2 to H10");
}

void FillReadings(ReadingsPanel& panel) {
    panel.lblThdTitle.SetCaption("THD");
    panel.lblNoiseBand.SetCaption("20 Hz to 20 kHz, 468-weighted");
    panel.lblThd.SetCaption("-102.57");
    panel.lblThdSpread.SetCaption("\u00B1 0.07 dB");
    panel.lblThdOther.SetCaption("= 0.000744 %");
    panel.lblThdReference.SetCaption("H2-H10 re fundamental");
    struct Line {
        const char* name;
        const char* value;
        std::vector<std::string> units;
        const char* spread;
    };
    const Line lines[] = {{"THD+N", "-97.70", {"dB", "%"}, "\u00B1 0.04"},
                          {"THD+N (notch)", "-97.93", {"dB", "%"}, "\u00B1 0.04"},
                          {"SINAD", "97.70", {"dB"}, "\u00B1 0.04"},
                          {"SNR", "99.41", {"dB"}, "\u00B1 0.03"},
                          {"ENOB re FS", "16.10", {"bit"}, "\u00B1 0.01"},
                          {"Noise", "-100.41", {"dBFS", "dBV", "dBu", "V"}, "\u00B1 0.03"},
                          {"Frequency", "19999.7559", {"Hz"}, "\u00B1 0.0001"},
                          {"Level", "-100.000", {"dBFS", "dBV", "dBu", "V"}, "\u00B1 0.001"}};
    for (std::size_t i = 0; i < std::size(lines); ++i) {
        panel.Rows[i].name.SetCaption(lines[i].name);
        panel.Rows[i].value.SetCaption(lines[i].value);
        Choose(panel.Rows[i].unit, lines[i].units, 0);
        panel.Rows[i].spread.SetCaption(lines[i].spread);
    }
    panel.Harmonics.Show({{"H2", "-104.01", "0.08", "134\u00B0", 0.77},
                          {"H3", "-109.05", "0.15", "-177\u00B0", 0.68},
                          {"H4", "-121.15", "0.61", "41\u00B0", 0.48},
                          {"H5", "-116.94", "0.38", "102\u00B0", 0.55},
                          {"H6", "-132.77", "2.33", "78\u00B0", 0.3},
                          {"H7", "-125.72", "11.04", "149\u00B0", 0.4},
                          {"H8", "\u2264 -140.7", "", "in the noise", 0.0, true},
                          {"H9", "-132.57", "2.28", "145\u00B0", 0.3}},
                         false);
}

void FillForm(frmAnalyzer& form) {
    form.lblInput.SetCaption("USB Audio Line In 1-2");
    form.lblOutput.SetCaption("USB Audio Line Out 1-2");
    form.lblRate.SetCaption("192000 Hz");
    form.lblBits.SetCaption("24 bit");
    form.note.SetCaption("direct, one clock");
    form.Chip.Show(StateChip::Kind::kValid, "VALID");
    form.lblLegendLive.SetCaption("Left, live");
    form.lblLegendSide.SetCaption("Right");
    form.lblLegendKept.SetCaption("A, 10:42");
    form.prgAverages.SetValue(form.prgAverages.Max());
    form.lblAverages.SetCaption("100 of 100");
    FillStimulus(form.Stimulus);
    FillAnalysis(form.Analysis);
    FillReadings(form.Readings);
}

constexpr std::chrono::milliseconds kCardStep{20};
constexpr double kTakeRateHz = 48000;

double SineAt(double hertz, std::int64_t frame) {
    return std::sin(2.0 * std::numbers::pi * hertz / kTakeRateHz * static_cast<double>(frame));
}

}  // namespace

void AnalyzerRig::Open(QSize size, const std::function<void(frmAnalyzer&)>& change) {
    form.Show();
    FillForm(form);
    if (change) change(form);
    window.resize(size);
    Settle();
    Settle();
}

DeviceUnderTestModel AnalyzerRig::UsualLoop() {
    DeviceUnderTestModel model;
    model.bits = 24;
    model.delayFrames = 300;
    model.referencePeak = 29204.5;  // -1 dBFS
    model.harmonicAmplitudes = {6.3e-6, 3.5e-6, 8.8e-7, 1.4e-6, 2.3e-7, 5.2e-7, 0.0, 2.4e-7};
    model.noiseRms = 0.22;
    return model;
}

void AnalyzerRig::OpenOnCard(QSize size, const DeviceUnderTestModel& model) {
    using namespace std::chrono_literals;
    Settings(rig.store).Save(keys::kSampleRate, "0");
    rig.card.Card().SetDeviceUnderTest(model);
    rig.form.Form_Load();
    Play(2500ms);
    form.Show();
    window.resize(size);
    Settle();
}

void AnalyzerRig::OpenRecording(const std::function<double(std::int64_t frame)>& sample, int channels) {
    files.sounds["/recordings/take 3.wav"] = {
        .rateHz = static_cast<std::int32_t>(kTakeRateHz),
        .channels = channels,
        .frames = 300000,
        .sample = [sample](std::int64_t frame) { return std::clamp(sample(frame), -1.0, 1.0); }};
    form.OpenRecording("/recordings/take 3.wav");
    Play(std::chrono::seconds(2));
    Settle();
}

double AnalyzerRig::ClippingSine(std::int64_t frame) {
    return 1.001 * SineAt(1000, frame);
}

double AnalyzerRig::UnsteadySine(std::int64_t frame) {
    return 0.5 * (1.0 + 0.002 * SineAt(3, frame)) * SineAt(1000, frame);
}

void AnalyzerRig::Calibrate() {
    using Direction = CalibratedChannel::Direction;
    const StreamEngine& engine = rig.form.Instrument.Engine;
    const Calibration calibration = Calibration::From(-1.0, 1.783, "2026-11-22 17:05:00");
    Calibrations calibrations(rig.form.Instrument.Settings);
    calibrations.Store({Direction::kOutput, engine.ListedOutputId, 0, 48000}, calibration);
    calibrations.Store({Direction::kInput, engine.ListedInputId, 0, 48000}, calibration);
}

void AnalyzerRig::Play(std::chrono::milliseconds time) {
    const auto frames = static_cast<std::size_t>(rig.form.Instrument.Shared.SampleRate / 50);
    for (std::chrono::milliseconds passed{0}; passed < time; passed += kCardStep) {
        rig.card.Card().Step(frames);
        rig.loop.Advance(kCardStep);
    }
}

}  // namespace sonavex
