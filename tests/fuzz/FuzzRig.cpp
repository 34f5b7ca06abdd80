#include "fuzz/FuzzRig.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <initializer_list>

#include "core/support/EndProgram.h"
#include "core/text/Numbers.h"

namespace sonavex::fuzz {
namespace {

constexpr double kPi = 3.14159265358979;
constexpr double kTwoPi = 6.28318530717958;
constexpr double kPhaseOfASquare = kTwoPi - kPi / 2.0;
constexpr std::string_view kMessage = "Message ";
constexpr std::string_view kRunTimeError = "Run-time error '";

bool Within(const Slider& slider) {
    return slider.Min() <= slider.Value() && slider.Value() <= slider.Max();
}

// Whether a label holds a valid reading: nothing, a word, or a finite number.
bool IsReading(const std::string& caption) {
    for (const char* word : {"", "N/A", "Ovr", "Muted"})
        if (caption == word) return true;
    return IsNumeric(caption) && std::isfinite(CDbl(caption));
}

}  // namespace

FuzzRig::FuzzRig(SettingsStore& settingsStore, std::int32_t osMajorVersion, bool plainText)
    : CardWorld(settingsStore), plainText_(plainText) {
    desktop.majorVersion = osMajorVersion;
    form.Frame.SetSize(980, 640);
    form.ShowDeviceDialog = [this] { ShowDevices(); };
    form.OnClosed = [this](int) { ended_ = true; };
}

FuzzRig::~FuzzRig() = default;

bool FuzzRig::Start() {
    try {
        form.Form_Load();
        running_ = true;
        Check(After::kAnAction);
        return true;
    } catch (const EndProgram& end) {
        form.ShutDown(end);
    } catch (const RuntimeError& error) {
        const std::string text = error.what();
        Require(!text.empty(), "an error has a text");
        Require(text.find("key \"") != std::string::npos, "a failed start names the key", text);
        form.Guard.Fatal(std::current_exception());
        form.Form_QueryUnload();
    }
    ended_ = true;
    CheckTexts();
    return false;
}

// As the owner of the forms does: reopens the dialog until it may close.
void FuzzRig::ShowDevices() {
    frmDevices devices(form.DevicesNeeds(files, help), form.DevicesLabels());
    bool open = true;
    devices.OnClosed = [&open] { open = false; };
    devices.Frame.SetSize(500, 300);
    devices.Form_Load();
    if (InDeviceDialog) InDeviceDialog(devices);
    for (int tries = 0; open && tries < 3; ++tries) {
        devices.cmbInputMixer.SetListIndex(devices.cmbInputMixer.Count() - 1);
        devices.cmbOutputMixer.SetListIndex(devices.cmbOutputMixer.Count() - 1);
        devices.cmdOkay.Press();
    }
    Require(!open, "the dialog for devices closes");
}

void FuzzRig::Act(const std::function<void()>& action) {
    if (ended_) return;
    form.Guard.Run(action);
    Check(After::kAnAction);
}

void FuzzRig::Step(int blocks) {
    const std::chrono::nanoseconds block{std::int64_t{2048} * 1'000'000'000 /
                                         form.Instrument.Shared.SampleRate};
    for (int i = 0; i < blocks && !ended_; ++i) {
        const std::uint64_t before = form.Instrument.Engine.Blocks;
        try {
            card.Card().Step(2048);
            loop.Advance(block);
        } catch (...) {
            form.StreamError(std::current_exception());
        }
        Check(form.Instrument.Engine.Blocks > before ? After::kABlock : After::kAnAction);
    }
}

void FuzzRig::ShutDown() {
    if (!ended_) form.Unload();
    Require(ended_, "the instrument ends");
    CheckTexts();
}

std::size_t FuzzRig::ErrorsShown() const {
    std::size_t shown = 0;
    for (const std::string& line : log.Lines())
        if (line.starts_with(kMessage) && line.find(kRunTimeError) != std::string::npos) ++shown;
    return shown;
}

void FuzzRig::Check(After what) {
    Require(fine.Fault().empty(), "the fine frames are in order", fine.Fault());
    CheckReadings();
    CheckGenerator(what);
    CheckTexts();
    CheckMixers();
}

void FuzzRig::CheckReadings() {
    const MeasurementControls& shown = form.Instrument.Meter.Controls;
    const modDSP::State& state = form.Instrument.Meter.Analysis();
    for (std::size_t i = 0; i < modDSP::kHarmonics; ++i) {
        Require(IsReading(shown.lbltest.at(i).Caption()), "a percentage", shown.lbltest.at(i).Caption());
        Require(IsReading(shown.lblDb.at(i).Caption()), "a level", shown.lblDb.at(i).Caption());
        Require(std::isfinite(state.CurrentPct.at(i)) && std::isfinite(state.CurrentDb.at(i)),
                "finite readings");
    }
    for (const Label* label : {&shown.lblThd, &shown.LblLevel, &shown.lblDACLevel})
        Require(IsReading(label->Caption()), "a reading", label->Caption());
    for (const double peak : {state.InputPeak, state.InputPeakB, state.OutputPeak, state.SynthPeak})
        Require(std::isfinite(peak), "a finite peak");
    for (std::size_t i = 0; i < 64; ++i)
        Require(std::isfinite(state.SpecRe.at(i * 32)) && std::isfinite(state.SpecIm.at(i * 32)),
                "a finite output");
}

void FuzzRig::CheckGenerator(After what) {
    const SignalControls& signal = form.GeneratorPanel.Controls;
    for (const Slider* slider :
         {&signal.sldStartFreq, &signal.sldEndFreq, &signal.sldSweepTime, &signal.sldLevel})
        Require(Within(*slider), "a slider is within its limits");
    const Generator& generator = form.Instrument.Meter.Generator;
    if (!generator.GeneratorRunning) return;
    Require(generator.NumTones >= 0 && generator.NumTones <= kToneRecords, "nine tones at most");
    for (std::int32_t i = 0; i < generator.NumTones; ++i) {
        const ToneRecord& tone = generator.Tones.at(static_cast<std::size_t>(i));
        Require(std::isfinite(tone.Frequency) && std::isfinite(tone.Phase), "a finite tone");
        // A square that has become a sine keeps its phase until the next block.
        const bool wasASquare = what == After::kAnAction && tone.Phase == kPhaseOfASquare;
        if (tone.WaveType == wave::kSine && !wasASquare)
            Require(tone.Phase > -kPi && tone.Phase <= kPi, "a phase in its turn", CStr(tone.Phase));
    }
}

void FuzzRig::CheckShown(const std::string& text, const char* what) const {
    if (plainText_) Require(IsUtf8(text), what, text);
}

void FuzzRig::CheckTexts() {
    const std::vector<std::string>& lines = log.Lines();
    for (; linesSeen_ < lines.size(); ++linesSeen_) {
        const std::string& line = lines[linesSeen_];
        if (!line.starts_with(kMessage)) continue;
        Require(line.size() > kMessage.size() + 8, "a message has a text", line);
        CheckShown(line, "a message is UTF-8");
    }
    for (const Label* label : {&form.lblInput, &form.lblOutput, &form.lblSampleRate, &form.StreamTrouble,
                               &form.PathNote, &form.GeneratorPanel.Controls.lblGenLevel})
        CheckShown(label->Caption(), "a caption is UTF-8");
    for (const ListBox::Item& item : form.GeneratorPanel.MemoryControls.ToneList.Items())
        CheckShown(item.text, "a line of the list is UTF-8");
}

void FuzzRig::CheckMixers() {
    std::int32_t status = 0;
    for (const std::int32_t level :
         {mixers.Library.GetMasterVolume(status), mixers.Library.GetMicRecordVolume(status)})
        Require(level >= 0 && level <= 100, "a level is a percentage");
}

}  // namespace sonavex::fuzz
