#include "core/generator/CurrentSignal.h"

#include <algorithm>
#include <string>

#include "core/support/RuntimeError.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr double kLowestChecked = 20.0;      // Hz
constexpr double kLongestChecked = 10000.0;  // ms
constexpr double kStoredStepDivisor = 100.0;

}  // namespace

CurrentSignal::CurrentSignal(const GeneratorNeeds& needs, SignalControls& controls, PlayInterlock& interlock)
    : needs_(needs), controls_(controls), interlock_(interlock) {
    controls_.cmbType.SetItems({kWaveNames.begin(), kWaveNames.end()});
    SetLimits();
    TakeEvents();
}

void CurrentSignal::SetLimits() {
    const std::int32_t highest = needs_.shared.SampleRate / 2;
    controls_.sldStartFreq.SetRange(kLowestFrequency, highest);
    controls_.sldEndFreq.SetRange(kLowestFrequency, highest);
    controls_.sldSweepTime.SetRange(0, kLongestSweepMs);
    controls_.sldLevel.SetRange(kLowestLevel, kHighestLevel);
}

void CurrentSignal::TakeEvents() {
    SignalControls& c = controls_;
    c.cmbType.Click.Handle([this] { cmbType_Click(); });
    c.chkLoop.Click.Handle([this] { chkLoop_Click(); });
    c.sldStartFreq.Change.Handle([this] { sldStartFreq_First(); });
    c.sldStartFreq.Release.Handle([this] { sldStartFreq_Second(); });
    c.sldEndFreq.Change.Handle([this] { sldEndFreq_First(); });
    c.sldEndFreq.Release.Handle([this] { sldEndFreq_Second(); });
    c.sldSweepTime.Change.Handle([this] { sldSweepTime_First(); });
    c.sldSweepTime.Release.Handle([this] { sldSweepTime_Second(); });
    c.sldLevel.Change.Handle([this] { sldLevel_First(); });
    c.sldLevel.Release.Handle([this] { sldLevel_Second(); });
    c.txtGenFreq.Change.Handle([this] { txtGenFreq_Change(); });
    c.txtGenFreq.Leave.Handle([this] { sldStartFreq_Second(); });
    c.txtGenEndFreq.Change.Handle([this] { txtGenEndFreq_Change(); });
    c.txtGenEndFreq.Leave.Handle([this] { sldEndFreq_Second(); });
    c.txtSweepTime.Change.Handle([this] { txtSweepTime_Change(); });
    c.txtSweepTime.Leave.Handle([this] { sldSweepTime_Second(); });
    c.Command1.Click.Handle([this] { Command1_Click(); });
}

void CurrentSignal::RestoreLevel() {
    controls_.sldLevel.SetValue(needs_.settings.Long(keys::kLevel));
    sldLevel_First();
}

void CurrentSignal::Restore() {
    ToneRecord& tone = Record();
    const Settings& settings = needs_.settings;
    tone.StartFrequency = settings.Double(keys::kCurrentStart);
    tone.EndFrequency = settings.Double(keys::kCurrentEnd);
    tone.SweepTime = settings.Long(keys::kCurrentSweepTime);
    tone.Sweep = settings.Boolean(keys::kCurrentSweep);
    tone.WaveType = settings.Integer(keys::kCurrentType);
    tone.Loop = settings.Boolean(keys::kCurrentLoop);
    tone.LoopIncrement = settings.Double(keys::kCurrentLoopIncrement);
    if (tone.WaveType < 0 || tone.WaveType >= controls_.cmbType.Count())
        throw settings.Failure(error_number::kInvalidCall, keys::kCurrentType);

    controls_.chkLoop.SetValue(tone.Loop ? 1 : 0);
    SetNearest(controls_.sldStartFreq, tone.StartFrequency);
    sldStartFreq_First();
    SetNearest(controls_.sldEndFreq, tone.EndFrequency);
    sldEndFreq_First();
    controls_.sldSweepTime.SetValue(tone.SweepTime);
    sldSweepTime_First();
    controls_.chkLoop.SetEnabled(tone.SweepTime != 0);
    controls_.cmbType.SetListIndex(tone.WaveType);
}

std::string CurrentSignal::WithRange(const char* message) const {
    return message + ("\r\rValue has to be 20 to " + CStr(needs_.shared.SampleRate / 2));
}

bool CurrentSignal::CheckFrequency(TextBox& box, const char* message) {
    const std::int32_t highest = needs_.shared.SampleRate / 2;
    if (IsNumeric(box.Text())) {
        const double frequencyHz = CDbl(box.Text());
        if (frequencyHz >= kLowestChecked && frequencyHz <= highest) return true;
    }
    needs_.dialogs.Message(WithRange(message), MessageIcon::kInformation);
    box.SetFocus();
    return false;
}

bool CurrentSignal::CheckEntries() {
    if (!CheckFrequency(controls_.txtGenFreq, "Invalid Start Frequency")) return false;
    if (controls_.sldSweepTime.Value() > 0 &&
        !CheckFrequency(controls_.txtGenEndFreq, "Invalid End Frequency"))
        return false;
    TextBox& box = controls_.txtSweepTime;
    if (IsNumeric(box.Text()) && CDbl(box.Text()) <= kLongestChecked) return true;
    needs_.dialogs.Message("Invalid Sweep Time", MessageIcon::kInformation);
    box.SetFocus();
    return false;
}

// Memory tones use record 0 too, so every value is read from the controls again.
void CurrentSignal::TakeControls() {
    ToneRecord& tone = Record();
    tone.StartFrequency = controls_.sldStartFreq.Value();
    tone.EndFrequency = controls_.sldEndFreq.Value();
    tone.SweepTime = controls_.sldSweepTime.Value();
    tone.Loop = controls_.chkLoop.Checked();
    tone.Sweep = tone.SweepTime != 0;
    tone.WaveType = static_cast<std::int16_t>(controls_.cmbType.ListIndex());
}

void CurrentSignal::UpdateLoopIncrement() {
    ToneRecord& tone = Record();
    if (!tone.Sweep || tone.SweepTime == 0) return;
    tone.LoopIncrement = (tone.EndFrequency - tone.StartFrequency) / tone.SweepTime;
}

// The stored step is a hundredth of the step in use. It does not matter, because every start computes its
// own.
void CurrentSignal::SaveCurrentSignal() {
    TakeControls();
    ToneRecord& tone = Record();
    tone.LoopIncrement =
        tone.Sweep ? (tone.EndFrequency - tone.StartFrequency) / (tone.SweepTime * kStoredStepDivisor) : 0.0;
    Settings& settings = needs_.settings;
    settings.Save(keys::kCurrentLoopIncrement, CStr(tone.LoopIncrement));
    settings.Save(keys::kCurrentStart, CStr(tone.StartFrequency));
    settings.Save(keys::kCurrentEnd, CStr(tone.EndFrequency));
    settings.Save(keys::kCurrentSweepTime, CStr(tone.SweepTime));
    settings.Save(keys::kCurrentSweep, CStr(tone.Sweep));
    settings.Save(keys::kCurrentType, CStr(std::int32_t{tone.WaveType}));
    settings.Save(keys::kCurrentLoop, CStr(tone.Loop));
}

// The value comes from the user or the settings and may exceed any whole number.
void CurrentSignal::SetNearest(Slider& slider, double value) {
    slider.SetValue(
        CLng(std::clamp(value, static_cast<double>(slider.Min()), static_cast<double>(slider.Max()))));
}

void CurrentSignal::FollowLimits() {
    if (controls_.sldStartFreq.Value() != startSeen_) sldStartFreq_First();
    if (controls_.sldEndFreq.Value() != endSeen_) sldEndFreq_First();
}

void CurrentSignal::Command1_Click() {
    if (needs_.generator.SweepRunning) {
        Stop();
    } else if (CheckEntries()) {
        Start();
    }
}

void CurrentSignal::Start() {
    Generator& generator = needs_.generator;
    generator.NumTones = 1;
    TakeControls();
    ToneRecord& tone = Record();
    needs_.EnableHiTimer1(tone.Sweep);
    tone.LastFrequency = 0.0;
    tone.LoopIncrement = 0.0;
    UpdateLoopIncrement();
    tone.SweepFrequency = tone.StartFrequency;
    tone.Frequency = tone.StartFrequency;
    generator.SweepCycleCount = 0;
    generator.ResetTonePhases();
    generator.SetGeneratorRunning(true);
    generator.SweepRunning = true;
    controls_.Command1.SetCaption(SignalControls::kStopCurrent);
    interlock_.Show(Playing::kCurrent);
}

void CurrentSignal::Stop() {
    Generator& generator = needs_.generator;
    generator.SetGeneratorRunning(false);
    generator.SweepRunning = false;
    needs_.EnableHiTimer1(false);
    controls_.Command1.SetCaption(SignalControls::kStartCurrent);
    interlock_.Show(Playing::kNothing);
}

}  // namespace sonavex
